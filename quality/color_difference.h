#pragma once

#include <array>

namespace tonewright {

using Xyz = std::array<double, 3>;  ///< CIE XYZ, Y of white near 1
using Lab = std::array<double, 3>;  ///< CIE L*, a*, b*

/// The white that colors are seen against: D65, Y 1.
inline constexpr Xyz kWhiteD65 = {0.95047, 1.0, 1.08883};

/// CIE 1976 L*a*b* (CIE 15), with the exact rational threshold 216/24389 and slope 24389/27 of the linear part.
Lab XyzToLab(const Xyz& color, const Xyz& white = kWhiteD65);

/// CIE 1976 color difference: the distance of two colors in L*a*b*.
double DeltaE76(const Lab& first, const Lab& second);

/// CIEDE2000 color difference (CIE 142-2001) with the parametric weights kL, kC, kH of 1; hue means and differences
/// after Sharma, Wu and Dalal, "The CIEDE2000 Color-Difference Formula", 2005. Symmetric.
double DeltaE2000(const Lab& first, const Lab& second);

/// What CIEDE2000 is made of: weighted differences of lightness, chroma and hue, and how the last two work on each
/// other. The difference squared is l^2 + c^2 + h^2 + rotation c h; the rotation lies between -2 and 0.
struct DeltaParts {
    double lightness, chroma, hue, rotation;
};
DeltaParts CompareParts(const Lab& first, const Lab& second);

}  // namespace tonewright
