#pragma once

#include <array>
#include <vector>

#include "calibration/fit_transform.h"
#include "quality/color_difference.h"

namespace tonewright {

/// Linear red, green, blue of the calibration's output space, 0 to 1 inside its range.
using LinearRgb = std::array<double, 3>;

/// By the inverse of the calibration's matrix from XYZ to linear RGB.
Xyz ToXyz(const LinearRgb& color);
LinearRgb ToLinearRgb(const Xyz& color);
Lab ToLab(const LinearRgb& color);

/// Whether a target is that of a neutral patch: its chroma is below 5, where the chart's own lie below 3.
bool IsNeutral(const Lab& target);

/// What a calibration aims at as XYZ under D65, whatever its mode.
std::vector<Xyz> ToXyz(const CalibrationTargets& targets);

}  // namespace tonewright
