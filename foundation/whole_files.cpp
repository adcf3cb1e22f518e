#include "foundation/whole_files.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "foundation/library_texts.h"
#include "foundation/record_length.h"

namespace tonewright {

void RequireFile(const std::string& path) {
    std::error_code error;
    const std::filesystem::file_type type = std::filesystem::status(path, error).type();
    if (error || type == std::filesystem::file_type::regular) return;
    const bool isFolder = type == std::filesystem::file_type::directory;
    throw WorkFailure(path + ": is a " + (isFolder ? "folder" : "pipe or a device") + ", not a file");
}

void RequireText(const std::string& path) {
    constexpr std::uintmax_t most = 1 << 20;
    RequireFile(path);
    std::error_code error;
    const std::uintmax_t bytes = std::filesystem::file_size(path, error);
    if (!error && bytes > most) throw WorkFailure(path + ": is too long for a text of numbers");
}

std::ifstream OpenFile(const std::string& path) {
    RequireFile(path);
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (file) return file;
    throw WorkFailure(path + ": cannot open file for reading: " + std::generic_category().message(errno));
}

void RequireNoReason(const std::string& path, const std::string& reason) {
    if (!reason.empty()) throw WorkFailure(path + ": " + reason);
}

void Rewind(std::ifstream& file) {
    file.clear();
    file.seekg(0);
}

void RequireWholeImage(const std::string& path) {
    std::ifstream file = OpenFile(path);
    RequireNoReason(path, CheckImageLength(file));
}

CTivVector ReadWholeVector(const std::string& path) {
    std::ifstream file = OpenFile(path);
    RequireNoReason(path, CheckVectorLength(file));
    Rewind(file);
    CTivVector vector;
    Require([&] { return vector.ReadFile(file); }, path, "cannot read the vector");
    return vector;
}

}  // namespace tonewright
