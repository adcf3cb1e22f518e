#pragma once

#include <span>
#include <string>

#include "quality/color_difference.h"

namespace tonewright {

// The plots of a calibration: SVG elements of one size, each with a title and a description for those who don't see it.
// Their parts bear class names, which PlotRules gives their colors.

/// The view box of every plot, in its own units.
inline constexpr int kPlotWidth = 360;
inline constexpr int kPlotHeight = 250;

/// CSS colors.
struct PlotColors {
    std::string text;    ///< arrows, marks of the state before
    std::string soft;    ///< numbers and words
    std::string line;    ///< grid
    std::string edge;    ///< axes, outlines, the lighter bars
    std::string accent;  ///< curve, the darker bars
    std::string bad;     ///< the worst patch
};

/// The style sheet's rules for plots.
std::string PlotRules(const PlotColors& colors);

/// A plot as an SVG file of its own, with its rules inside.
std::string StandalonePlot(const std::string& plot, const PlotColors& colors);

/// A value for each patch.
struct PatchBar {
    int number = 0;  ///< from 1
    std::string name;
    std::string color;  ///< CSS
    double value = 0;
    double before = 0;  ///< marked by a line; negative: none
};

/// Bars of the color differences by patch; the greatest one stands out.
std::string DifferenceBars(std::span<const PatchBar> patches);

struct LabArrow {
    int number = 0;
    std::string color;
    Lab target;
    Lab delivered;
};

/// The a*b* plane with an arrow from each target to what is delivered.
std::string LabPlane(std::span<const LabArrow> patches);

struct ToneStep {
    double target = 0;  ///< L*
    double delivered = 0;
};

/// The lightness of the neutral patches: delivered over target, beside the straight line that a perfect one follows.
std::string ToneCurve(std::span<const ToneStep> steps);

struct NoisePair {
    int number = 0;
    double before = 0;  ///< 8-bit steps
    double after = 0;
};

/// The deviation of each patch before and after the correction.
std::string NoiseBars(std::span<const NoisePair> patches);

}  // namespace tonewright
