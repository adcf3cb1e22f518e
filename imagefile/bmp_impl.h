#pragma once

#include <array>
#include <cstdint>

// The head of a bitmap file, as it stands in the file, little-endian.
#pragma pack(push, 1)
struct BmpHead {
    char signature[2];
    std::uint32_t fileBytes;
    std::uint16_t reserved[2];
    std::uint32_t pixelOffset;
    std::uint32_t headBytes;
    std::int32_t width;
    std::int32_t height;
    std::uint16_t planes;
    std::uint16_t bitsPerPixel;
    std::uint32_t compression;
    std::uint32_t imageBytes;
    std::int32_t xPixelsPerMeter;
    std::int32_t yPixelsPerMeter;
    std::uint32_t colorsUsed;
    std::uint32_t importantColors;
};
#pragma pack(pop)
static_assert(sizeof(BmpHead) == 54);

inline constexpr std::uint32_t kBmpInfoBytes = 40;
enum BmpCompression : std::uint32_t { BmpPlain = 0, BmpRle8 = 1, BmpRle4 = 2, BmpBitfields = 3 };

/// Masks of red, green, blue.
using BmpMasks = std::array<std::uint32_t, 3>;
inline constexpr BmpMasks kBmpOrdinaryMasks{0xFF0000, 0xFF00, 0xFF};
inline constexpr BmpMasks kBmpTenBitMasks{0x3FF00000, 0xFFC00, 0x3FF};

/// The head that writeBMP gives a picture in FormatRgb, directly before its pixels.
BmpHead bmpColorHead(std::int32_t width, std::int32_t height);

/// Bytes of a row in the file: rows are padded to four.
inline std::int64_t bmpRowBytes(std::int64_t width, int bits) { return (width * bits + 31) / 32 * 4; }
