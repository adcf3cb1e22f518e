#include "cli/output_set.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <set>
#include <system_error>

using namespace tonewright;

namespace fs = std::filesystem;

namespace {

/// Why the system would not open a path for writing; empty where it would.
std::string whyNotOpened(const std::string& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    int reason = file < 0 ? errno : 0;
    if (file >= 0) ::close(file);
    const fs::path folder = fs::path(path).parent_path();
    if (reason == ENOENT && ::access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) != 0) reason = errno;
    return reason == 0 ? std::string() : std::generic_category().message(reason);
}

}  // namespace

std::string OutputSet::PlaceOf(const std::string& path) {
    if (path.empty()) return path;
    std::error_code error;
    // Absolute first, since a bare name that isn't there yet would have no folder.
    const fs::path whole = fs::absolute(path, error);
    const fs::path place = fs::weakly_canonical(whole, error);
    return error ? whole.lexically_normal().native() : place.native();
}

std::string OutputSet::Stage(const std::string& path) {
    const StagedFile& file = files_.emplace_back(path);
    paths_.push_back(path);
    if (file.GetError()) throw WorkFailure(path + ": " + file.GetError().message());
    return file.GetName();
}

std::string OutputSet::Explained(std::string text, const std::string& name, const std::string& path) {
    if (name != path) {
        for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + path.size())) {
            text.replace(at, name.size(), path);
        }
        return text;
    }
    const std::string reason = whyNotOpened(path);
    return reason.empty() ? text : text + ": " + reason;
}

void OutputSet::Commit(const std::function<bool()>& tell) {
    bool isTold = true;
    const auto confirm = [&] {
        isTold = tell();
        return isTold ? std::error_code() : std::make_error_code(std::errc::io_error);
    };
    const auto failure = StagedFile::CommitAll(files_, confirm);
    if (!isTold) throw WorkFailure("cannot write to standard output");
    if (failure) throw WorkFailure(paths_[failure->index] + ": " + failure->error.message());
}

void RequireDifferentPlaces(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs) {
    std::set<std::string> taken, written;
    for (const std::string& input : inputs) taken.insert(OutputSet::PlaceOf(input));
    for (const std::string& path : outputs) {
        if (path.empty()) continue;
        const std::string place = OutputSet::PlaceOf(path);
        if (taken.contains(place)) throw UsageFailure(path + " is to be written, and is an input");
        if (!written.insert(place).second) throw UsageFailure(path + " is to be written twice");
    }
}
