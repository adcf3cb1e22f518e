#pragma once

#include <array>
#include <cstdint>

#include "foundation/CTivData.h"

struct FormatInfo {
    const char* name;
    std::int32_t size;  // bytes of one element
    std::int32_t bits;  // bits of one element
    bool isSigned;
    bool isInteger;
    bool isColor;
    std::int32_t channels;
};

// Indexed by format. Row 9 stands as it does deliberately (C40): its name is the whole literal and the rest is zero.
// FormatColorFloat keeps one channel although it holds four floats, FormatRgb10 three in 32 bits.
inline constexpr std::array<FormatInfo, CTivData::FormatCount> kFormats{{
    {"FormatGeneric", 0, 0, false, false, false, 0},
    {"FormatSync", 0, 0, false, false, false, 0},
    {"FormatVector", 4, 32, false, true, false, 1},
    {"FormatImage", 4, 32, false, true, false, 1},
    {"FormatVolume", 0, 0, false, false, false, 0},
    {"FormatChar", 1, 8, true, true, false, 1},
    {"FormatByte", 1, 8, true, true, false, 1},
    {"FormatShort", 2, 16, true, true, false, 1},
    {"FormatInt", 4, 32, true, true, false, 1},
    {"FormatLong, 4, 32, 1, true, true", 0, 0, false, false, false, 0},
    {"FormatUByte", 1, 8, false, true, false, 1},
    {"FormatUShort", 2, 16, false, true, false, 1},
    {"FormatUInt", 4, 32, false, true, false, 1},
    {"FormatULong", 4, 32, false, true, false, 1},
    {"FormatHex8", 1, 8, false, true, false, 1},
    {"FormatHex16", 2, 16, false, true, false, 1},
    {"FormatHex", 4, 32, false, true, false, 1},
    {"FormatFloat", 4, 32, true, false, false, 1},
    {"FormatDouble", 8, 64, true, false, false, 1},
    {"FormatRgb", 4, 32, false, true, true, 4},
    {"FormatHsv", 4, 32, false, true, true, 4},
    {"FormatYuv", 4, 32, false, true, true, 4},
    {"FormatObsolete3Band", 0, 0, false, false, false, 0},
    {"FormatComplex", 8, 64, true, false, false, 1},
    {"FormatPoint", 8, 64, true, false, false, 1},
    {"FormatString", 4, 32, false, true, false, 1},
    {"FormatFile", 0, 0, false, false, false, 0},
    {"FormatRef", 4, 32, false, true, false, 1},
    {"FormatBinary", 1, 1, false, true, false, 1},
    {"FormatFPoint", 8, 64, true, false, false, 1},
    {"FormatLab", 4, 32, false, true, true, 4},
    {"FormatRect", 16, 128, false, true, false, 1},
    {"FormatColorUByte", 4, 32, false, true, true, 4},
    {"FormatColorFloat", 16, 128, true, false, true, 1},
    {"FormatInt64", 8, 64, true, true, false, 1},
    {"FormatUInt64", 8, 64, false, true, false, 1},
    {"FormatRgb10", 4, 32, false, true, true, 3},
    {"FormatQuad", 4, 32, false, true, false, 1},
    {"FormatSegment", 4, 32, false, true, false, 1},
    {"FormatRgb16", 8, 64, false, true, true, 4},
    {"FormatCoord3dC16", 2, 16, false, true, false, 1},
    {"FormatCoord3dAC16", 4, 32, false, true, false, 2},
    {"FormatCoord3dCR16", 4, 32, false, true, false, 2},
    {"FormatCoord3dACRW16", 8, 64, false, true, false, 4},
}};
static_assert(kFormats.size() == 44);
