#pragma once

#include "foundation/nur_image.h"

namespace tonewright {

/// Target codes of castImage.
enum CastCode : int {
    CAST_UBYTE = 0,
    CAST_BYTE,
    CAST_USHORT,
    CAST_SHORT,
    CAST_FLOAT,
    CAST_FLOAT_ALWAYS,  ///< FormatFloat, the conversion always carried out
    CAST_BINARY,
    CAST_RGB,
    CAST_HSV,
    CAST_YUV,
    CAST_FPOINT,
    CAST_POINT
};

/// @return the code of a format (CAST_FLOAT for FormatFloat), -1 outside the table
int castCode(CTivData::Format format);

}  // namespace tonewright

/// Converts the source's ROI into the destination's, between numeric formats; an empty destination is allocated.
/// @param mode 0 clips to the target's range, 1 fits the source's range to it
/// @return 0, or nur_report's answer with the reason reported
int castImage(const NurImage* source, NurImage* destination, int code, int mode);

/// Brings 16-bit pixels down to 8 bits by the highest bit that any pixel of the ROI uses.
/// @param keepRoiSize an empty destination takes the ROI's size, else the whole image's with the ROI copied
/// @return 0 (also without a destination), or nur_report's answer
int CTivUtilCastImage_16u8u_MapRange(const NurImage* source, NurImage* destination, bool keepRoiSize);
