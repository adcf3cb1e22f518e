#pragma once

#include <array>
#include <span>
#include <vector>

#include "chart/ChartLayout.h"
#include "chart/FoundChart.h"
#include "chart/working_copy_impl.h"

namespace tonewright {

/// A patch of a picture for the match with a chart's.
struct PatchSample {
    TonedColor color = {};
    ChartPoint place;    ///< in a plane, some units wide: a slope of the light over it is allowed for
    bool isUsed = true;  ///< false: it is not in the picture
};

/// How well the colors of a chart explain those of a picture.
struct ColorMatch {
    double residual = 1;  ///< root of the share of the colors' spread that stays unexplained, 0 to 1: of the channels
                          ///< or of their differences (of chroma, that is), whichever is the larger
    double exponent = 1;  ///< from the picture's values to light
    std::vector<bool> isUsed;  ///< false: the patch was left out, as it does not fit
};

/// Explains picture colors by a chart's: each channel of the picture, raised to an exponent, is a linear mix of X, Y, Z
/// and a constant, found by least squares. So neither cast nor coding nor a haze of stray light matters, only whether
/// the colors belong together in this order. Dark patches weigh more, about as the eye has it.
class ColorMatcher {
public:
    explicit ColorMatcher(std::span<const XyzColor> references);

    /// A color in the three exponents of a quick look.
    using QuickLight = std::array<std::array<double, 3>, 3>;
    static QuickLight ToQuickLight(const TonedColor& color);
    /// A quick look: all patches in even light, three exponents.
    /// @param lights as many as references, in the chart's order
    /// @return the least residual and its exponent
    ColorMatch Look(std::span<const QuickLight* const> lights) const;

    /// The whole truth: light may slope over the chart, and up to `allowedOutliers` patches that stand out are left
    /// out.
    /// @param exponent where to begin
    ColorMatch Match(std::span<const PatchSample> samples, double exponent, int allowedOutliers) const;

private:
    using Row = std::array<double, 4>;
    using Light = std::vector<std::array<double, 3>>;
    struct Fit;

    bool FitMix(Fit& fit) const;
    bool FitSlope(std::span<const PatchSample> samples, Fit& fit) const;
    std::vector<std::size_t> FindOutliers(std::span<const PatchSample> samples, double exponent, int allowed,
                                          Fit& fit) const;
    bool FitAll(std::span<const PatchSample> samples, double exponent, Fit& fit) const;

    std::vector<Row> design_;      // X, Y, Z, 1
    std::vector<double> weights_;  // squared
    std::vector<Row> inverse_;     // takes colors to the mix that explains them best
};

}  // namespace tonewright
