#include "cli/files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string_view>
#include <vector>

#include "cli/command.h"
#include "cli/whole_files.h"
#include "foundation/nur_report.h"
#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/buffer_format.h"

namespace {

struct Signature {
    FileKind kind;
    std::string_view bytes;
    bool isName;  ///< a zero-filled name of 32 bytes, of which what lies behind the first zero doesn't count
};

constexpr std::size_t kNameBytes = 32;
constexpr Signature kSignatures[] = {
    {FileKind::Crc, "CRC\x1a", false},
    {FileKind::Png, "\x89PNG\r\n\x1a\n", false},
    {FileKind::Bmp, "BM", false},
    {FileKind::Tiff, "II", false},
    {FileKind::Tiff, "MM", false},
    {FileKind::NativeImage, "CTivImage", true},
    {FileKind::NativeVector, "CTivVector", true},
    {FileKind::Parameters, "CTivTonewrightDC", true},
    {FileKind::Coefficients, "CTivTonewrightDC_XForm", true},
};

constexpr const char* kKindNames[] = {
    nullptr, "bmp", "tiff", "png", "crc", "native image", "native vector", "parameters", "coefficients",
};

constexpr std::pair<const char*, int> kExtensions[] = {
    {".zvk", ImageFileNative}, {".tif", ImageFileTiff}, {".bmp", ImageFileBmp}, {".crc", ImageFileCrc}};

/// Exchanges the two bytes of every word of an image of 16-bit words.
void swapBytes(CTivImage& image) {
    auto* words = static_cast<std::uint16_t*>(image.GetData());
    const auto bytes = CTivImage::GetImageBytes(image.GetWidth(), image.GetHeight(), image.GetFormat());
    std::transform(words, words + bytes / 2, words,
                   [](std::uint16_t word) { return static_cast<std::uint16_t>(word << 8 | word >> 8); });
}

}  // namespace

const char* GetKindName(FileKind kind) { return kKindNames[static_cast<int>(kind)]; }

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

FileKind FindKind(const std::string& path) {
    RequireFile(path);
    std::array<char, kNameBytes + 1> head{};
    std::ifstream file(path, std::ios::binary);
    file.read(head.data(), kNameBytes);
    const std::string_view bytes(head.data(), static_cast<std::size_t>(file.gcount()));
    for (const Signature& signature : kSignatures) {
        const bool matches = signature.isName ? signature.bytes == head.data() : bytes.starts_with(signature.bytes);
        if (matches) return signature.kind;
    }
    return FileKind::Unknown;
}

void RequireKnownFormat(const CTivImage& image, const std::string& path) {
    if (CTivData::GetFormatName(image.GetFormat())) return;
    throw WorkFailure(path + ": CTivImage::Load => unrecognized image data format");
}

CTivImage LoadImageWithRoi(const std::string& path) {
    const FileKind kind = FindKind(path);
    if (kind == FileKind::NativeImage) RequireWholeImage(path);
    CTivImage image;
    Require([&] { return image.Load(path, true); }, path, "cannot read the image");
    RequireKnownFormat(image, path);
    const bool isDeep = image.GetFormat() == CTivData::FormatUShort || image.GetFormat() == CTivData::FormatRgb16;
    if (kind == FileKind::Png && isDeep) swapBytes(image);
    return image;
}

CTivImage LoadImage(const std::string& path) {
    CTivImage image = LoadImageWithRoi(path);
    image.SetRoi({});
    return image;
}

int FindFileFormat(const std::string& path) {
    const std::size_t dot = path.find_last_of("./");
    if (dot == std::string::npos) return -1;
    std::string extension = path.substr(dot);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const auto& [known, format] : kExtensions) {
        if (extension == known) return format;
    }
    return -1;
}

void SaveImage(const CTivImage& image, const std::string& path, int fileFormat) {
    if (fileFormat == ImageFileCrc && bufferFormatOf(image.GetFormat()) < 0) {
        throw WorkFailure(path + ": a .crc file has no code for " + CTivData::GetFormatName(image.GetFormat()) +
                          ", so it could not be loaded again");
    }
    Require([&] { return image.Save(path, fileFormat); }, path, "cannot write the image");
}

namespace {

// What the library reported since the last call began; a session's thread reports, too.
std::mutex libraryMutex;
std::vector<std::string> libraryTexts;
thread_local std::vector<std::string>* ownTexts = nullptr;  ///< a LibraryThread's

std::vector<std::string>& textsOfThread() { return ownTexts ? *ownTexts : libraryTexts; }

void keepLibraryText(const char* text) {
    std::string line = text;
    line.erase(line.find_last_not_of('\n') + 1);
    const std::lock_guard lock(libraryMutex);
    std::vector<std::string>& texts = textsOfThread();
    // A reader that is tried twice fails twice.
    if (std::find(texts.begin(), texts.end(), line) == texts.end()) texts.push_back(line);
}

}  // namespace

void ListenToLibrary() {
    nur_set_user_callback(keepLibraryText);
    CTivManager::SetErrorMode(ErrorModeUser);
}

LibraryThread::LibraryThread() { ownTexts = &texts_; }

LibraryThread::~LibraryThread() { ownTexts = nullptr; }

void ForgetLibraryTexts() {
    const std::lock_guard lock(libraryMutex);
    textsOfThread().clear();
}

void FailWithLibraryTexts(const std::string& subject, const std::string& otherwise) {
    const std::lock_guard lock(libraryMutex);
    std::string text;
    for (const std::string& line : textsOfThread()) text.append(text.empty() ? "" : "\n").append(line);
    if (text.empty()) text = otherwise;
    const bool isNamed = text.substr(0, text.find('\n')).find(subject) != std::string::npos;
    throw WorkFailure(isNamed ? text : subject + ": " + text);
}
