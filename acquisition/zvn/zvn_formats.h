#pragma once

#include <cstdint>

/// Format codes of buffers. Bits 8 to 15 are the bits of a pixel.
inline constexpr std::uint32_t kZvnMono8 = 0x01010800;
inline constexpr std::uint32_t kZvnMono16 = 0x01021000;
inline constexpr std::uint32_t kZvnMono1 = 0x01180100;   ///< pixel x in bit x AND 7
inline constexpr std::uint32_t kZvnRgb32 = 0x61092000;   ///< blue, green, red, reserved
inline constexpr std::uint32_t kZvnRgb10 = 0x610A2000;   ///< red in bits 20 to 29, green in 10 to 19, blue in 0 to 9
inline constexpr std::uint32_t kZvnRgb24 = 0x61081800;   ///< blue, green, red
inline constexpr std::uint32_t kZvnRgbr24 = 0x611F1800;  ///< red, green, blue
inline constexpr std::uint32_t kZvnFloat = 0x11142000;   ///< 32-bit float

constexpr int ZvnBitsPerPixel(std::uint32_t format) { return static_cast<int>(format >> 8 & 0xff); }

/// Bytes of a frame: rows of whole bytes, one after the other.
/// @return 0 for a size below 1, or one whose bits leave 63 bits
constexpr std::uint64_t ZvnFrameBytes(int width, int height, std::uint32_t format) {
    if (width < 1 || height < 1) return 0;
    const auto rowBytes =
        (static_cast<std::uint64_t>(ZvnBitsPerPixel(format)) * static_cast<std::uint64_t>(width) + 7) / 8;
    constexpr std::uint64_t most = (std::uint64_t{1} << 63) / 8;
    return rowBytes > most / static_cast<std::uint64_t>(height) ? 0 : rowBytes * static_cast<std::uint64_t>(height);
}
