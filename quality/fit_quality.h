#pragma once

#include <span>
#include <vector>

#include "quality/color_difference.h"

class CTivTonewrightDC;
class CTivVector;

namespace tonewright {

/// One measure of color difference over the patches of a chart.
struct DifferenceSummary {
    double mean = 0;
    double median = 0;  ///< of an even count the mean of the middle two
    double max = 0;
    std::vector<double> patches;  ///< in the order of the raw colors
};

struct ChartDifferences {
    DifferenceSummary deltaE00;  ///< CIEDE2000
    DifferenceSummary deltaE76;  ///< CIE 1976
};

struct FitQuality {
    ChartDifferences fitted;  ///< with the transform in force
    ChartDifferences before;  ///< the raw colors read as linear RGB, uncalibrated
};

/// Judges a bare transform patch by patch, in double precision, without the limits of its execution.
///
/// Absolute mode compares the transformed raw colors, taken to XYZ by the inverse of XyzToRgbMatrix, with the
/// reference XYZ adapted to D65; relative mode compares them with the reference colors, both read as linear RGB.
/// @param calibrated an operator whose Calibrate succeeded with the colors and settings that it holds now
/// @param transform in the place of the operator's own
/// @return without patches where the transform, the raw colors and the targets do not belong together
FitQuality JudgeFit(const CTivTonewrightDC& calibrated, const CTivVector& transform);
FitQuality JudgeFit(const CTivTonewrightDC& calibrated);  ///< the operator's own transform

/// @param seen, target as many as each other
ChartDifferences Compare(std::span<const Lab> seen, std::span<const Lab> target);

/// @param patches in any order; none gives zeros
DifferenceSummary Summarize(std::vector<double> patches);

}  // namespace tonewright
