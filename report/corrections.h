#pragma once

#include "calibration/CTivTonewrightDC.h"
#include "report/cube_table.h"

namespace tonewright {

// A calibration as a function of one color, for tables and profiles.

/// The whole correction as a user gets it: transform, limits and gamma, without the steps of words and tables and
/// without the rule for saturated channels, which jumps.
/// @param transform 3 x 4, 3 x 7 or 3 x 10, in the place of the operator's own
ColorFunction CodedCorrection(const CTivTonewrightDC& settings, const CTivVector& transform);

/// What the calibration says that a raw color is: CIE XYZ under D65, without gamma and limits.
ColorFunction SeenColor(const CTivTonewrightDC& settings, const CTivVector& transform);

}  // namespace tonewright
