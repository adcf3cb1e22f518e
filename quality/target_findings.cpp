#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "calibration/CalibrationTables.h"
#include "calibration/svd.h"
#include "foundation/fixed_text.h"
#include "quality/finding_words_impl.h"
#include "quality/findings.h"

namespace tonewright {

// What shows when the measured patches are held against the colors that they should have.

namespace {

constexpr double kLinearFrom = 0.78, kLinearTo = 1.35;  // exponents of a picture that counts as linear
constexpr double kLeastPedestal = -0.02;                // of full scale
constexpr double kSlope = 0.15;                         // of the light, from edge to edge of the chart
constexpr double kSlopeDoubt = 3.0;                     // a slope counts from so many of its standard errors on
constexpr double kBetterOrder = 0.4;                    // an order fits clearly better from this share of the error on
constexpr double kPoorOrder = 0.15;                     // an error below it is that of a chart read as it lies
constexpr double kLeastLuminance = 0.01;                // of a target that the light is judged by
constexpr std::size_t kOrderedPatches = 24;

struct NeutralPatch {
    double luminance;
    std::array<double, 3> raw;  // of full scale
};

bool hasTargets(const MeasuredChart& chart) {
    const auto isColor = [](const Xyz& xyz) {
        return std::all_of(xyz.begin(), xyz.end(), [](double value) { return std::isfinite(value); });
    };
    return !chart.patches.empty() && chart.targets.size() == chart.patches.size() &&
           std::all_of(chart.targets.begin(), chart.targets.end(), isColor);
}

std::vector<NeutralPatch> usableNeutrals(const MeasuredChart& chart) {
    std::vector<NeutralPatch> neutrals;
    if (!hasTargets(chart)) return neutrals;
    const double fullScale = GetChannelFullScale(chart.format);
    for (std::size_t i = 0; i < chart.patches.size(); ++i) {
        const PatchMeasurement& patch = chart.patches[i];
        if (patch.pixels == 0 || IsClipped(patch) || !IsNeutral(XyzToLab(chart.targets[i]))) continue;
        neutrals.push_back(
            {chart.targets[i][1], {patch.mean[0] / fullScale, patch.mean[1] / fullScale, patch.mean[2] / fullScale}});
    }
    return neutrals;
}

/// raw = pedestal + gain x luminance ^ exponent, by channel; of full scale.
struct ToneCurve {
    double exponent = 1;
    std::array<double, 3> pedestal{};
};

/// Fits pedestal and gain of one channel by least squares.
/// @return the pedestal and the squares that are left
std::pair<double, double> fitChannel(const std::vector<NeutralPatch>& neutrals, std::size_t channel, double exponent) {
    double n = 0, x = 0, y = 0, xx = 0, xy = 0;
    for (const NeutralPatch& patch : neutrals) {
        const double power = std::pow(patch.luminance, exponent);
        n += 1;
        x += power;
        y += patch.raw[channel];
        xx += power * power;
        xy += power * patch.raw[channel];
    }
    double gain = (n * xy - x * y) / (n * xx - x * x);
    double pedestal = (y - gain * x) / n;
    if (pedestal < kLeastPedestal) {
        pedestal = kLeastPedestal;
        gain = (xy - pedestal * x) / xx;
    }
    double error = 0;
    for (const NeutralPatch& patch : neutrals) {
        const double rest = patch.raw[channel] - pedestal - gain * std::pow(patch.luminance, exponent);
        error += rest * rest;
    }
    return {pedestal, error};
}

std::optional<ToneCurve> fitToneCurve(const MeasuredChart& chart) {
    const std::vector<NeutralPatch> neutrals = usableNeutrals(chart);
    if (neutrals.size() < 4) return std::nullopt;
    ToneCurve best;
    double least = std::numeric_limits<double>::infinity();
    for (int hundredths = 20; hundredths <= 300; ++hundredths) {
        ToneCurve curve{hundredths / 100.0, {}};
        double error = 0;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const auto [pedestal, left] = fitChannel(neutrals, channel, curve.exponent);
            curve.pedestal[channel] = pedestal;
            error += left;
        }
        if (!(error < least)) continue;  // nor what is no number
        least = error;
        best = curve;
    }
    return std::isfinite(least) ? std::optional(best) : std::nullopt;
}

/// Raw means brought to linear, of full scale.
std::vector<std::array<double, 3>> linearised(const MeasuredChart& chart, const ToneCurve& curve) {
    std::vector<std::array<double, 3>> colors;
    for (const PatchMeasurement& patch : chart.patches) {
        auto color = patch.mean;
        for (std::size_t i = 0; i < 3; ++i) {
            const double above = color[i] / GetChannelFullScale(chart.format) - curve.pedestal[i];
            color[i] = std::pow(std::max(above, 0.0), 1 / curve.exponent);
        }
        colors.push_back(color);
    }
    return colors;
}

bool isLinear(double exponent) { return exponent >= kLinearFrom && exponent <= kLinearTo; }

// ---- how a chart may lie ----

/// The eight ways. A grid of 6 x 4 patches can lie in the first four, one of 4 x 6 in the others.
struct Order {
    const char* name;
    int width, height;                  // of the grid in which the chart lies so
    int (*place)(int row, int column);  // in that grid, of the chart's patch in this row and column
};

constexpr Order kOrders[] = {
    {"lies upright, with its white patch at the lower left", 6, 4, [](int r, int c) { return 6 * r + c; }},
    {"lies the other way round (turned by 180 degrees)", 6, 4, [](int r, int c) { return 6 * (3 - r) + 5 - c; }},
    {"is mirrored, with its rows reversed", 6, 4, [](int r, int c) { return 6 * (3 - r) + c; }},
    {"is mirrored, with its columns reversed", 6, 4, [](int r, int c) { return 6 * r + 5 - c; }},
    {"is turned by 90 degrees clockwise", 4, 6, [](int r, int c) { return 4 * c + 3 - r; }},
    {"is turned by 90 degrees counterclockwise", 4, 6, [](int r, int c) { return 4 * (5 - c) + r; }},
    {"is mirrored and turned by 90 degrees clockwise", 4, 6, [](int r, int c) { return 4 * (5 - c) + 3 - r; }},
    {"is mirrored and turned by 90 degrees counterclockwise", 4, 6, [](int r, int c) { return 4 * c + r; }},
};

/// Which way a row and a column of the chart run: left, right, up or down, each by its first letter.
/// @param at the place of the patch in a row and a column, x to the right and y down
template <class At>
std::pair<char, char> waysOf(At at) {
    const std::array<double, 2> first = at(0, 0);
    const auto way = [&](const std::array<double, 2>& to) {
        const double x = to[0] - first[0], y = to[1] - first[1];
        return std::abs(x) > std::abs(y) ? (x < 0 ? 'l' : 'r') : (y < 0 ? 'u' : 'd');
    };
    return {way(at(0, 5)), way(at(3, 0))};
}

/// An order is one of the patches as they were taken, which may have reversed them already. How the chart lies in the
/// picture is what their places there tell.
const char* nameInPicture(const MeasuredChart& chart, const Order& order) {
    const auto ways =
        waysOf([&](int row, int column) { return chart.places[static_cast<std::size_t>(order.place(row, column))]; });
    for (const Order& lie : kOrders) {
        const auto inGrid = [&](int row, int column) {
            const int place = lie.place(row, column);
            return std::array<double, 2>{1.0 * (place % lie.width), 1.0 * (place / lie.width)};
        };
        if (waysOf(inGrid) == ways) return lie.name;
    }
    return order.name;
}

/// How badly a linear transform explains the targets by colors: the root of the share of their squares that is left.
/// @param place where in `colors` each target's patch is
/// @param ignored the color that says nothing
template <class Place>
double orderError(const std::vector<std::array<double, 3>>& colors, const std::vector<Xyz>& targets, Place place,
                  std::size_t ignored) {
    std::vector<std::pair<std::size_t, std::size_t>> pairs;  // target and color
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const auto color = static_cast<std::size_t>(place(static_cast<int>(i)));
        if (color != ignored) pairs.emplace_back(i, color);
    }
    const auto count = static_cast<std::int32_t>(pairs.size());
    DoubleMatrix design(count, 3);
    for (std::int32_t i = 0; i < count; ++i) {
        const auto& color = colors[pairs[static_cast<std::size_t>(i)].second];
        std::copy(color.begin(), color.end(), design[i]);
    }
    const Svd svd(design);
    double left = 0, all = 0;
    std::vector<double> wanted(pairs.size());
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (std::size_t i = 0; i < wanted.size(); ++i) wanted[i] = targets[pairs[i].first][channel];
        std::array<double, 3> x{};
        svd.Solve(wanted, x);
        for (std::int32_t i = 0; i < count; ++i) {
            const double rest =
                wanted[static_cast<std::size_t>(i)] - x[0] * design[i][0] - x[1] * design[i][1] - x[2] * design[i][2];
            left += rest * rest;
            all += wanted[static_cast<std::size_t>(i)] * wanted[static_cast<std::size_t>(i)];
        }
    }
    return std::sqrt(left / all);
}

/// The slope of the light from left to right and from top to bottom, of its middle, and the standard errors of both.
struct LightSlope {
    double x, y, errorX, errorY;
};

/// Solves mix of channels = luminance x (1 + slope x place), relative to the luminance, for mix and slope at once.
std::optional<LightSlope> fitLight(const MeasuredChart& chart, const ToneCurve& curve) {
    constexpr int unknowns = 5;
    const auto colors = linearised(chart, curve);
    const auto [left, right] = std::minmax_element(chart.places.begin(), chart.places.end(),
                                                   [](const auto& a, const auto& b) { return a[0] < b[0]; });
    const auto [top, bottom] = std::minmax_element(chart.places.begin(), chart.places.end(),
                                                   [](const auto& a, const auto& b) { return a[1] < b[1]; });
    const double width = (*right)[0] - (*left)[0], height = (*bottom)[1] - (*top)[1];
    std::vector<std::size_t> used;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const bool isMeasured = !IsClipped(chart.patches[i]) && chart.patches[i].pixels > 0;
        if (isMeasured && chart.targets[i][1] > kLeastLuminance) used.push_back(i);
    }
    const auto count = static_cast<std::int32_t>(used.size());
    if (count < 2 * unknowns || width <= 0 || height <= 0) return std::nullopt;
    DoubleMatrix design(count, unknowns);
    std::vector<double> wanted(used.size(), 1.0);
    for (std::int32_t row = 0; row < count; ++row) {
        const std::size_t i = used[static_cast<std::size_t>(row)];
        const double luminance = chart.targets[i][1];
        for (std::size_t k = 0; k < 3; ++k) design[row][k] = colors[i][k] / luminance;
        design[row][3] = -((chart.places[i][0] - (*left)[0]) / width - 0.5);
        design[row][4] = -((chart.places[i][1] - (*top)[1]) / height - 0.5);
    }
    const Svd svd(design);
    std::array<double, unknowns> x{};
    svd.Solve(wanted, x);
    double rest = 0;
    for (std::int32_t row = 0; row < count; ++row) {
        double value = -1;
        for (int k = 0; k < unknowns; ++k) value += design[row][k] * x[static_cast<std::size_t>(k)];
        rest += value * value;
    }
    const double variance = rest / (count - unknowns);
    const auto errorOf = [&](int unknown) {
        double sum = 0;
        for (int k = 0; k < unknowns; ++k) {
            const double w = svd.W()[static_cast<std::size_t>(k)];
            if (w > svd.GetThreshold()) sum += std::pow(svd.V()[unknown][k] / w, 2);
        }
        return std::sqrt(variance * sum);
    };
    return LightSlope{x[3], x[4], errorOf(3), errorOf(4)};
}

}  // namespace

std::optional<double> EstimateExponent(const MeasuredChart& chart) {
    const auto curve = fitToneCurve(chart);
    return curve ? std::optional(curve->exponent) : std::nullopt;
}

std::optional<Finding> FindCoded(const MeasuredChart& chart) {
    const auto exponent = EstimateExponent(chart);
    if (!exponent || isLinear(*exponent)) return std::nullopt;
    return Finding{"coded",
                   Severity::Warning,
                   "The picture is not linear: its neutral patches follow luminance ^ " + FixedText(*exponent, 2) +
                       ", and a linear camera's follow luminance ^ 1. Turn off gamma, tone curve, contrast and other "
                       "picture styles in the camera, and take the picture again.",
                   {}};
}

std::optional<Finding> FindUneven(const MeasuredChart& chart) {
    if (!hasTargets(chart) || chart.places.size() != chart.patches.size()) return std::nullopt;
    // A picture that may be linear is taken as it is: a slope along the neutral patches looks like a tone curve, too.
    const ToneCurve curve = fitToneCurve(chart).value_or(ToneCurve{});
    const auto slope = fitLight(chart, isLinear(curve.exponent) ? ToneCurve{} : curve);
    if (!slope) return std::nullopt;
    const double size = std::hypot(slope->x, slope->y);
    const double doubt = std::hypot(slope->errorX, slope->errorY);
    if (!(size > kSlope) || size < kSlopeDoubt * doubt) return std::nullopt;
    const bool isAcross = std::abs(slope->x) > std::abs(slope->y);
    const char* side = isAcross ? (slope->x > 0 ? "right" : "left") : (slope->y > 0 ? "bottom" : "top");
    return Finding{"uneven",
                   Severity::Warning,
                   "The light is uneven: it changes by " + Percent(size) +
                       " from edge to edge of the chart and is "
                       "brightest at the " +
                       std::string(side) + ". Move the lamps farther away, use two of them, or divide by a flat field.",
                   {}};
}

std::optional<Finding> FindMisread(const MeasuredChart& chart) {
    if (!hasTargets(chart) || chart.targets.size() != kOrderedPatches || chart.places.size() != kOrderedPatches) {
        return std::nullopt;
    }
    // The tone curve is not known before the order is, so that a linear and a coded reading are both tried.
    const std::vector<std::array<double, 3>> readings[] = {linearised(chart, {}), linearised(chart, {0.45, {}})};
    // The brightest patch has decided the order. If it is not the white one it is a glare, and no patch at all.
    const auto sum = [](const PatchMeasurement& patch) { return patch.mean[0] + patch.mean[1] + patch.mean[2]; };
    const auto brightest = std::max_element(chart.patches.begin(), chart.patches.end(),
                                            [&](const auto& a, const auto& b) { return sum(a) < sum(b); });
    const auto ignored = static_cast<std::size_t>(brightest - chart.patches.begin());
    const auto errorOf = [&](auto place) {
        return std::min(orderError(readings[0], chart.targets, place, ignored),
                        orderError(readings[1], chart.targets, place, ignored));
    };
    const double taken = errorOf([](int i) { return i; });
    const Order* better = nullptr;
    double least = taken;
    for (const Order& order : kOrders) {
        if (order.width != chart.chart.Width || order.height != chart.chart.Height) continue;
        const double error = errorOf([&order](int i) { return order.place(i / 6, i % 6); });
        if (!(error < least)) continue;  // nor what is no number
        least = error;
        better = &order;
    }
    if (!better || taken < kPoorOrder || least > kBetterOrder * taken) return std::nullopt;
    return Finding{
        "orientation",
        Severity::Warning,
        std::string("The patches fit their reference colors clearly better if the chart ") +
            nameInPicture(chart, *better) + " (an error of " + Percent(least) + " instead of " + Percent(taken) +
            "): turn or mirror the picture, or leave out of the rectangle what is brighter than the white patch.",
        {}};
}

std::vector<Xyz> GetChartTargets(int illuminant) {
    const CalibrationTables& tables = GetCalibrationTables();
    const auto reference = tables.ReferenceTable.find(illuminant);
    if (reference == tables.ReferenceTable.end()) return {};
    return ToXyz({reference->second, tables.AdaptationTable.at(GetAdaptationKey(illuminant))});
}

}  // namespace tonewright
