#pragma once

#include <memory>

#include "primitives/polynomial.h"

namespace tonewright {

/// The output tables of one gamma, for channels of 8, 10 and 16 bits.
///
/// Entry i is the integer part of (i / size) ^ gamma times full scale, the power in double, the product in float32. The
/// divisor is the table's length and not its top index, deliberately (C32), so that the last entry stays short of full
/// scale. What a negative or undefined gamma would throw out of 0 to full scale is limited to it, NaN to 0.
struct GammaTables {
    explicit GammaTables(float gamma);

    GammaTable<PixelRgb> rgb;
    GammaTable<PixelRgb10> rgb10;
    GammaTable<PixelRgb16> rgb16;
};

/// @return the tables of a gamma. Those asked for last are kept, since filling them takes longer than a fit does. Any
///         thread
std::shared_ptr<const GammaTables> GetGammaTables(float gamma);

}  // namespace tonewright
