#pragma once

#include <filesystem>
#include <string>

/// A folder of this process alone, gone at its end: tests run side by side.
inline const std::string& scratchFolder() {
    struct Folder {
        Folder() {
            path = (std::filesystem::temp_directory_path() / "tonewright.XXXXXX").string();
            if (!mkdtemp(path.data())) path.clear();
        }
        ~Folder() {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
        std::string path;
    };
    static const Folder folder;
    return folder.path;
}
