#pragma once

#include "quality/color_difference.h"

namespace tonewright {

/// The white of the ICC connection space and of CGATS files: D50, Y 1.
inline constexpr Xyz kWhiteD50 = {0.9642, 1.0, 0.8249};

/// A color under D65 as it looks the same under D50 (Bradford, through Little CMS).
Xyz ToD50(const Xyz& color);

}  // namespace tonewright
