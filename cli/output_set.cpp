#include "cli/output_set.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

OutputSet::~OutputSet() {
    std::error_code error;
    for (const Staged& file : staged_) {
        fs::remove(file.name, error);
        if (!file.earlier.empty()) fs::remove(file.earlier, error);
    }
}

std::string OutputSet::PlaceOf(const std::string& path) {
    std::error_code error;
    // Absolute first, since a bare name that isn't there yet would have no folder.
    return path.empty() ? path : fs::weakly_canonical(fs::absolute(path, error), error).native();
}

std::string OutputSet::Stage(const std::string& path) {
    std::error_code error;
    const fs::path target = PlaceOf(path);
    paths_.push_back(path);
    const fs::file_status status = fs::status(target, error);
    const bool isPlace = status.type() == fs::file_type::not_found ||
                         (fs::is_regular_file(status) && ::access(target.c_str(), W_OK) == 0);
    if (!isPlace || ::access(target.parent_path().c_str(), W_OK | X_OK) != 0) return path;
    const std::string own = ".tonewright-" + std::to_string(::getpid()) + "-" + std::to_string(staged_.size());
    const std::string name = (target.parent_path() / (own + target.extension().native())).native();
    staged_.push_back({name, target.native(), {}});
    return name;
}

std::string OutputSet::Renamed(std::string text, const std::string& name, const std::string& path) {
    if (name == path) return text;
    for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + path.size())) {
        text.replace(at, name.size(), path);
    }
    return text;
}

void OutputSet::Commit() {
    std::error_code error;
    for (std::size_t i = 0; i < staged_.size(); ++i) {
        Staged& file = staged_[i];
        const fs::file_status status = fs::status(file.target, error);
        if (fs::exists(status)) {
            fs::permissions(file.name, status.permissions(), error);
            // A second name for the earlier file, from which it comes back. Where links can't be made it goes without.
            fs::create_hard_link(file.target, file.name + ".earlier", error);
            if (!error) file.earlier = file.name + ".earlier";
        }
        fs::rename(file.name, file.target, error);
        if (!error) continue;
        const std::string reason = error.message();
        for (std::size_t k = 0; k < i; ++k) TakeBack(staged_[k]);
        throw WorkFailure(file.target + ": " + reason);
    }
    for (const Staged& file : staged_) {
        if (!file.earlier.empty()) fs::remove(file.earlier, error);
    }
    staged_.clear();
}

void OutputSet::TakeBack(const Staged& file) {
    std::error_code error;
    if (file.earlier.empty()) {
        fs::remove(file.target, error);
    } else {
        fs::rename(file.earlier, file.target, error);
    }
}
