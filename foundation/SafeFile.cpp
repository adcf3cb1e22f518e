#include "foundation/SafeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr int kMaxLinks = 40;  // as the system itself follows

/// Follows symbolic links to the name that a rename has to hit. Nothing for links that do not end, and for the process
/// file system, whose links name open files rather than places (/dev/stdout).
std::optional<fs::path> FollowLinks(fs::path path) {
    std::error_code error;
    for (int i = 0; i < kMaxLinks; ++i) {
        const fs::path parent = path.has_parent_path() ? path.parent_path() : fs::path(".");
        if (fs::canonical(parent, error).native().starts_with("/proc/")) return std::nullopt;
        if (!fs::is_symlink(path, error)) return path;
        const fs::path next = fs::read_symlink(path, error);
        if (error) return std::nullopt;
        path = parent / next;  // an absolute link replaces the parent
    }
    return std::nullopt;
}

bool CanWrite(const char* existing) {
    const int file = ::open(existing, O_WRONLY | O_CLOEXEC);
    if (file >= 0) ::close(file);
    return file >= 0;
}

/// A name that no other file of the folder bears, created with `mode` less the process's mask. Empty where the folder
/// takes no file.
std::string CreateBeside(const fs::path& target, mode_t mode) {
    static std::atomic<unsigned> counter{0};
    for (int i = 0; i < 1000; ++i) {
        char name[64];
        std::snprintf(name, sizeof name, ".tonewright-%ld-%u.tmp", static_cast<long>(::getpid()), counter++);
        const std::string path = (target.parent_path() / name).native();
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (file >= 0) {
            ::close(file);
            return path;
        }
        if (errno != EEXIST) break;
    }
    return {};
}

}  // namespace

SafeOutputFile::SafeOutputFile(const std::string& path) {
    const std::optional<fs::path> target = FollowLinks(path);
    if (!target || !OpenBeside(target->native())) stream_.open(path, std::ios::binary | std::ios::trunc);
}

bool SafeOutputFile::OpenBeside(const std::string& target) {
    struct stat earlier {};
    const bool exists = ::stat(target.c_str(), &earlier) == 0;
    if (exists && (!S_ISREG(earlier.st_mode) || !CanWrite(target.c_str()))) return false;
    if (!exists && (errno != ENOENT || !fs::path(target).has_filename())) return false;
    const std::string temporary = CreateBeside(target, exists ? 0600 : 0666);
    if (temporary.empty()) return false;
    stream_.open(temporary, std::ios::binary | std::ios::trunc);
    if (exists) {
        // The owner first, since changing it drops permissions; only some processes may, the others go without.
        if (::chown(temporary.c_str(), earlier.st_uid, earlier.st_gid) != 0) errno = 0;
        ::chmod(temporary.c_str(), earlier.st_mode & 0777);
    }
    target_ = target;
    temporary_ = temporary;
    return true;
}

bool SafeOutputFile::Commit() {
    if (!stream_.is_open()) return false;
    stream_.close();  // flushes, and fails where an earlier write did
    if (stream_.fail()) return false;
    if (temporary_.empty()) return true;
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0) return false;
    temporary_.clear();
    return true;
}

SafeOutputFile::~SafeOutputFile() {
    if (temporary_.empty()) return;
    stream_.close();
    ::unlink(temporary_.c_str());
}
