#include "foundation/StagedFile.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <set>
#include <utility>

namespace tonewright {

namespace fs = std::filesystem;

namespace {

constexpr int kMaxLinks = 40;              // as the system itself follows
constexpr int kMaxTries = 100;             // of a random name
constexpr std::size_t kMaxExtension = 16;  // bytes that a staged name takes over; a longer one tells no kind of file

/// The staged files of the process. The lock is held while files take their places, so that none is half way when
/// the process ends.
struct Register {
    std::mutex lock;
    std::set<std::string> names;
    bool ending = false;
};

Register& Staged() {
    static Register staged;
    return staged;
}

std::error_code LastError() { return {errno, std::generic_category()}; }

class Descriptor {
public:
    Descriptor(const char* path, int flags, mode_t mode = 0) : file_(::open(path, flags | O_CLOEXEC, mode)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (file_ >= 0) ::close(file_);
    }
    explicit operator bool() const { return file_ >= 0; }
    int Get() const { return file_; }

private:
    int file_;
};

fs::path FolderOf(const fs::path& path) { return path.has_parent_path() ? path.parent_path() : fs::path("."); }

/// Somebody else's link in a folder that everybody may write to. The system doesn't follow these either, but reading
/// links by hand would pass it by.
bool IsPlanted(const fs::path& link) {
    struct stat own {
    }, folder{};
    if (::lstat(link.c_str(), &own) != 0 || ::stat(FolderOf(link).c_str(), &folder) != 0) return true;
    return (folder.st_mode & S_IWOTH) != 0 && own.st_uid != ::geteuid() && own.st_uid != folder.st_uid;
}

/// Follows symbolic links to the name that a rename has to hit. Nothing for links that do not end, for the process
/// file system, whose links name open files rather than places (/dev/stdout), and, with an error, for a planted link.
std::optional<fs::path> FollowLinks(fs::path path, std::error_code& refusal) {
    std::error_code error;
    for (int i = 0; i < kMaxLinks; ++i) {
        const fs::path parent = FolderOf(path);
        if (fs::canonical(parent, error).native().starts_with("/proc/")) return std::nullopt;
        if (!fs::is_symlink(path, error)) return path;
        if (IsPlanted(path)) {
            refusal = std::make_error_code(std::errc::permission_denied);
            return std::nullopt;
        }
        const fs::path next = fs::read_symlink(path, error);
        if (error) return std::nullopt;
        path = parent / next;  // an absolute link replaces the parent
    }
    return std::nullopt;
}

/// A name beside the target that nobody can guess; empty where the system has no random bytes.
std::string RandomNameBeside(const fs::path& target) {
    std::array<std::uint64_t, 2> random{};
    if (::getrandom(random.data(), sizeof random, 0) != static_cast<ssize_t>(sizeof random)) return {};
    char name[64];
    std::snprintf(name, sizeof name, ".tonewright-%016llx%016llx", static_cast<unsigned long long>(random[0]),
                  static_cast<unsigned long long>(random[1]));
    const std::string extension = target.extension().native();
    return (target.parent_path() / (extension.size() > kMaxExtension ? name : name + extension)).native();
}

/// Empty where the folder takes no file.
std::string CreateBeside(const fs::path& target, mode_t mode) {
    for (int i = 0; i < kMaxTries; ++i) {
        std::string path = RandomNameBeside(target);
        if (path.empty()) break;
        if (Descriptor(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode)) return path;
        if (errno != EEXIST) break;
    }
    return {};
}

/// Whether a file beside the target can take its place: it is a regular file that may be written, or none yet.
bool IsReplaceable(const std::string& target, bool& exists) {
    struct stat earlier {};
    exists = ::stat(target.c_str(), &earlier) == 0;
    if (!exists) return errno == ENOENT && fs::path(target).has_filename();
    return S_ISREG(earlier.st_mode) && Descriptor(target.c_str(), O_WRONLY);
}

}  // namespace

StagedFile::StagedFile(const std::string& path, Waits waits) {
    const std::optional<fs::path> target = FollowLinks(path, error_);
    if (error_) return;
    name_ = path;
    bool exists = false;
    if (!target || !IsReplaceable(target->native(), exists)) return;
    const std::scoped_lock lock(Staged().lock);
    if (Staged().ending) {
        name_.clear();
        error_ = std::make_error_code(std::errc::operation_canceled);
        return;
    }
    // Nobody else reads along before the file has the permissions of the one that it replaces.
    std::string created = CreateBeside(*target, exists ? 0600 : 0666);
    if (created.empty()) return;
    name_ = std::move(created);
    target_ = target->native();
    waits_ = (waits == Waits::Always || exists) && !Staged().names.contains(target_);
    Staged().names.insert(name_);
}

StagedFile::StagedFile(StagedFile&& other) noexcept
    : name_(std::move(other.name_)),
      target_(std::exchange(other.target_, {})),
      earlier_(std::move(other.earlier_)),
      error_(other.error_),
      waits_(other.waits_) {}

StagedFile::~StagedFile() {
    if (!IsBeside()) return;
    const std::scoped_lock lock(Staged().lock);
    if (Staged().names.erase(name_) != 0) ::unlink(name_.c_str());
}

/// Owner and permissions of the file that is replaced; the bytes on the disk, where it waits.
std::error_code StagedFile::Prepare() {
    const Descriptor file(name_.c_str(), O_RDONLY | O_NOFOLLOW);
    if (!file) return LastError();
    struct stat earlier {};
    if (::lstat(target_.c_str(), &earlier) == 0 && S_ISREG(earlier.st_mode)) {
        // The owner first, since changing it drops permissions; only some processes may, the others go without.
        if (::fchown(file.Get(), earlier.st_uid, earlier.st_gid) != 0) errno = 0;
        ::fchmod(file.Get(), earlier.st_mode & 0777);
    }
    if (waits_ && ::fsync(file.Get()) != 0 && errno != EINVAL) return LastError();
    return {};
}

std::error_code StagedFile::TakePlace(bool keepEarlier) {
    if (keepEarlier) {
        // A second name for the earlier file, from which it comes back. Where links can't be made it goes without.
        std::string second = RandomNameBeside(target_);
        if (!second.empty() && ::link(target_.c_str(), second.c_str()) == 0) {
            earlier_ = std::move(second);
            Staged().names.insert(earlier_);
        }
    }
    if (std::rename(name_.c_str(), target_.c_str()) == 0) return {};
    const std::error_code error = LastError();
    DropEarlier();
    return error;
}

void StagedFile::GiveBack() {
    std::rename(target_.c_str(), name_.c_str());
    if (!earlier_.empty()) std::rename(earlier_.c_str(), target_.c_str());
    Staged().names.erase(earlier_);
    earlier_.clear();
}

void StagedFile::DropEarlier() {
    if (!earlier_.empty()) ::unlink(earlier_.c_str());
    Staged().names.erase(earlier_);
    earlier_.clear();
}

std::error_code StagedFile::Commit() {
    const std::optional<Failure> failure = CommitAll({this, 1});
    return failure ? failure->error : std::error_code();
}

void StagedFile::GiveBackAll(std::span<StagedFile> files) {
    for (std::size_t i = files.size(); i-- > 0;) {
        if (files[i].IsBeside()) files[i].GiveBack();
    }
}

std::optional<StagedFile::Failure> StagedFile::TakePlaces(std::span<StagedFile> files, bool keepEarlier) {
    const std::scoped_lock lock(Staged().lock);
    if (Staged().ending) return Failure{0, std::make_error_code(std::errc::operation_canceled)};
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!files[i].IsBeside()) continue;
        const std::error_code error = files[i].TakePlace(keepEarlier);
        if (!error) continue;
        GiveBackAll(files.first(i));
        return Failure{i, error};
    }
    return std::nullopt;
}

std::optional<StagedFile::Failure> StagedFile::CommitAll(std::span<StagedFile> files,
                                                         const std::function<std::error_code()>& confirm) {
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (files[i].error_) return Failure{i, files[i].error_};
        if (!files[i].IsBeside()) continue;
        if (const std::error_code error = files[i].Prepare()) return Failure{i, error};
    }
    if (const auto failure = TakePlaces(files, confirm || files.size() > 1)) return failure;
    const std::error_code unconfirmed = confirm ? confirm() : std::error_code();
    std::set<fs::path> folders;
    {
        const std::scoped_lock lock(Staged().lock);
        // Where the process ends meanwhile, the files stay where they are: the earlier ones are gone.
        if (Staged().ending) return Failure{0, std::make_error_code(std::errc::operation_canceled)};
        if (unconfirmed) {
            GiveBackAll(files);
            return Failure{0, unconfirmed};
        }
        for (StagedFile& file : files) {
            if (!file.IsBeside()) continue;
            file.DropEarlier();
            Staged().names.erase(file.name_);
            if (file.waits_) folders.insert(FolderOf(file.target_));
            file.target_.clear();
        }
    }
    for (const fs::path& folder : folders) {
        // The files are in their places; a file system that can't synchronise folders has its own way to keep them.
        const Descriptor place(folder.c_str(), O_RDONLY | O_DIRECTORY);
        if (place) ::fsync(place.Get());
    }
    return std::nullopt;
}

void StagedFile::DropAll() {
    const std::scoped_lock lock(Staged().lock);
    Staged().ending = true;
    for (const std::string& name : Staged().names) ::unlink(name.c_str());
    Staged().names.clear();
}

}  // namespace tonewright
