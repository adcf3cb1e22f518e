#include "imagefile/picture_file.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <utility>

#include "foundation/library_texts.h"
#include "foundation/whole_files.h"
#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/buffer_format.h"
#include "imagefile/file_kind.h"

namespace tonewright {

namespace {

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

}  // namespace tonewright
