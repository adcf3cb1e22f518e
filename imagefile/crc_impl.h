#pragma once

#include <cstddef>
#include <cstdint>

#pragma pack(push, 1)
struct CrcHead {
    std::uint32_t magic;
    std::uint8_t zero1[8];
    std::int32_t width;
    std::int32_t height;
    std::int32_t roiX;
    std::int32_t roiY;
    std::int32_t roiWidth;
    std::int32_t roiHeight;
    std::int32_t formatCode;
    std::uint8_t zero2[24];
    std::int32_t bytesPerPixel;
    std::int32_t bitsPerPixel;
    std::int32_t one;
    std::uint8_t zero3[80];
};

// Everything that follows the version number, as it stands in a file of version 7.
struct CrcFooter {
    std::uint8_t reserved1[32];
    double scale[3];   // X, Y, Z
    double offset[3];  // X, Y, Z
    std::int32_t invalidFlag;
    double invalidZ;
    std::int32_t distanceUnit;
    std::int32_t reserved3;
    std::int32_t reserved4;
    std::uint8_t reserved6[8];
    char unitName[64];
};
#pragma pack(pop)
static_assert(sizeof(CrcHead) == 156);
static_assert(sizeof(CrcFooter) + 4 == 180);

inline constexpr std::uint32_t kCrcMagic = 0x1A435243;  // "CRC" and 0x1A
inline constexpr std::int32_t kCrcVersion = 7;

// The footer grew by blocks: each is there from its version on. Version 5 added none.
struct CrcBlock {
    int firstVersion;
    std::size_t begin;
    std::size_t end;
};
inline constexpr CrcBlock kCrcBlocks[] = {
    {1, 0, offsetof(CrcFooter, scale)},
    {2, offsetof(CrcFooter, scale), offsetof(CrcFooter, reserved3)},
    {3, offsetof(CrcFooter, reserved3), offsetof(CrcFooter, reserved4)},
    {4, offsetof(CrcFooter, reserved4), offsetof(CrcFooter, reserved6)},
    {6, offsetof(CrcFooter, reserved6), offsetof(CrcFooter, unitName)},
    {7, offsetof(CrcFooter, unitName), sizeof(CrcFooter)},
};
