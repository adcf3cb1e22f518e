#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "foundation/CTivData.h"

namespace tonewright {

/// Converts a row of `count` pixels, at any address. The rows may be the same one where the pixels are of one size.
/// @param mode 2 scales 8, 10 and 16 bits by shifts, any other keeps the bits; only conversions to and from
///             FormatRgb10 and FormatRgb16 look at it
using FormatRow = void (*)(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, int mode);

/// One pair of formats that CTivImage::ConvertFormat serves. Both forms give the same; the wide one needs AVX2.
struct FormatConversion {
    CTivData::Format source;
    CTivData::Format destination;
    FormatRow plain = nullptr;  ///< null: the pixels are copied as they are
    FormatRow wide = nullptr;
};

/// All pairs, those of one source together.
std::span<const FormatConversion> GetFormatConversions();

}  // namespace tonewright
