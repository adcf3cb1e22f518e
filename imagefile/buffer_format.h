#pragma once

#include <cstdint>

#include "foundation/CTivData.h"

namespace tonewright {

/// The device buffer codes that the CRC image stream and TIFF's "Buffer_Format" carry in a format's place. One-to-one.
/// FormatRgb has none, deliberately (C45): a TIFF knows it by its samples, a CRC image stream does not bring it back.
struct BufferFormat {
    CTivData::Format format;
    std::int32_t code;
};
inline constexpr BufferFormat kBufferFormats[] = {
    {CTivData::FormatByte, 0x11010800},        {CTivData::FormatHsv, 0x610C2000},
    {CTivData::FormatShort, 0x11021000},       {CTivData::FormatYuv, 0x61132000},
    {CTivData::FormatInt, 0x11042000},         {CTivData::FormatComplex, 0x11154000},
    {CTivData::FormatUByte, 0x01010800},       {CTivData::FormatPoint, 0x11164000},
    {CTivData::FormatUShort, 0x01021000},      {CTivData::FormatBinary, 0x01180100},
    {CTivData::FormatUInt, 0x01042000},        {CTivData::FormatFPoint, 0x11174000},
    {CTivData::FormatFloat, 0x11142000},       {CTivData::FormatLab, 0x611C2000},
    {CTivData::FormatCoord3dC16, 0x012A1000},  {CTivData::FormatCoord3dAC16, 0x022B1000},
    {CTivData::FormatCoord3dCR16, 0x022C1000}, {CTivData::FormatCoord3dACRW16, 0x042D1000},
};

/// @return -1 for a format without a code
constexpr std::int32_t bufferFormatOf(CTivData::Format format) {
    for (const BufferFormat& row : kBufferFormats) {
        if (row.format == format) return row.code;
    }
    return -1;
}

/// @return FormatNone for an unknown code
constexpr CTivData::Format formatOfBuffer(std::int32_t code) {
    for (const BufferFormat& row : kBufferFormats) {
        if (row.code == code) return row.format;
    }
    return CTivData::FormatNone;
}

}  // namespace tonewright
