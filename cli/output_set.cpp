#include "cli/output_set.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

OutputSet::~OutputSet() {
    std::error_code error;
    for (const Staged& file : staged_) fs::remove(file.name, error);
}

std::string OutputSet::Stage(const std::string& path) {
    std::error_code error;
    const fs::path target = fs::weakly_canonical(path, error);
    paths_.push_back(path);
    const fs::file_status status = fs::status(target, error);
    const bool isPlace = status.type() == fs::file_type::not_found ||
                         (fs::is_regular_file(status) && ::access(target.c_str(), W_OK) == 0);
    if (!isPlace || ::access(target.parent_path().c_str(), W_OK | X_OK) != 0) return path;
    const std::string own = ".tonewright-" + std::to_string(::getpid()) + "-" + std::to_string(staged_.size());
    const std::string name = (target.parent_path() / (own + target.extension().native())).native();
    staged_.push_back({name, target.native()});
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
        const auto& [name, target] = staged_[i];
        const fs::file_status earlier = fs::status(target, error);
        if (fs::exists(earlier)) fs::permissions(name, earlier.permissions(), error);
        fs::rename(name, target, error);
        if (!error) continue;
        const std::string reason = error.message();
        for (std::size_t k = 0; k < i; ++k) fs::remove(staged_[k].target, error);
        throw WorkFailure(target + ": " + reason);
    }
    staged_.clear();
}
