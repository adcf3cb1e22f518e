#pragma once

#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "foundation/CTivImage.h"
#include "tests/support/library.h"
#include "tests/support/scratch.h"

/// A file that a test writes; its name is not ASCII, so that every test holds names, too.
inline std::string scratchFile(const std::string& name) {
    return scratchFolder() +
           "/pr\xc3\xbc"
           "fung_" +
           name;
}

inline void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string readFile(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

/// The same bytes with a 32-bit little-endian value at an offset.
inline std::string withU32(std::string bytes, std::size_t offset, std::uint32_t value) {
    return bytes.replace(offset, sizeof value, reinterpret_cast<const char*>(&value), sizeof value);
}

inline std::string withU16(std::string bytes, std::size_t offset, std::uint16_t value) {
    return bytes.replace(offset, sizeof value, reinterpret_cast<const char*>(&value), sizeof value);
}

/// An image whose bytes count upward from 1, so that no two neighbours are alike.
inline CTivImage countingImage(int width, int height, CTivData::Format format) {
    CTivImage image(width, height, format, nullptr, true);
    auto* bytes = static_cast<std::uint8_t*>(image.GetData());
    const auto size = static_cast<std::size_t>(CTivImage::GetImageBytes(width, height, format));
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(7 * i + 1);
    return image;
}

inline bool samePixels(const CTivImage& one, const CTivImage& other) {
    return one.GetFormat() == other.GetFormat() && one.GetWidth() == other.GetWidth() &&
           one.GetHeight() == other.GetHeight() &&
           std::memcmp(one.GetData(), other.GetData(),
                       static_cast<std::size_t>(
                           CTivImage::GetImageBytes(one.GetWidth(), one.GetHeight(), one.GetFormat()))) == 0;
}
