#include "quality/fit_quality.h"

#include <algorithm>
#include <compare>
#include <numeric>

#include "calibration/CTivTonewrightDC.h"
#include "chart/PatchMeasurement.h"
#include "quality/delivery.h"

namespace tonewright {

namespace {

/// The transform's polynomial at one raw color: linear red, green and blue.
LinearRgb transformed(const CTivVector& transform, int terms, const LinearRgb& raw) {
    const std::array<double, 10> term = ToTerms(raw, terms);
    LinearRgb result{};
    for (int row = 0; row < 3; ++row) {
        for (int k = 0; k < terms; ++k) {
            result[static_cast<std::size_t>(row)] +=
                static_cast<double>(transform.GetData(row * terms + k).AsFloat()) * term[static_cast<std::size_t>(k)];
        }
    }
    return result;
}

}  // namespace

DifferenceSummary Summarize(std::vector<double> patches) {
    DifferenceSummary summary;
    if (patches.empty()) return summary;
    std::vector<double> sorted = patches;
    // A total order, since a transform that is no number gives differences that are none.
    std::sort(sorted.begin(), sorted.end(), [](double a, double b) { return std::is_lt(std::strong_order(a, b)); });
    const std::size_t middle = sorted.size() / 2;
    summary.median = sorted.size() % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2.0;
    summary.max = sorted.back();
    summary.mean = std::accumulate(patches.begin(), patches.end(), 0.0) / static_cast<double>(patches.size());
    summary.patches = std::move(patches);
    return summary;
}

ChartDifferences Compare(std::span<const Lab> seen, std::span<const Lab> target) {
    std::vector<double> deltaE00, deltaE76;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        deltaE00.push_back(DeltaE2000(seen[i], target[i]));
        deltaE76.push_back(DeltaE76(seen[i], target[i]));
    }
    return {Summarize(std::move(deltaE00)), Summarize(std::move(deltaE76))};
}

FitQuality JudgeFit(const CTivTonewrightDC& calibrated, const CTivVector& transform) {
    const CTivVector* raw = calibrated.GetRawColors();
    const int terms = transform.GetSize() / 3;
    if (!raw || !IsTermCount(terms) || transform.GetSize() != 3 * terms) return {};
    std::vector<Lab> target, fitted, before;
    for (const Xyz& xyz : ToXyz(GetTargets(calibrated))) target.push_back(XyzToLab(xyz));
    if (static_cast<int>(target.size()) != raw->GetSize()) return {};
    for (int i = 0; i < raw->GetSize(); ++i) {
        const LinearRgb color = ToFractions(raw->GetData(i));
        fitted.push_back(ToLab(transformed(transform, terms, color)));
        before.push_back(ToLab(color));
    }
    return {Compare(fitted, target), Compare(before, target)};
}

FitQuality JudgeFit(const CTivTonewrightDC& calibrated) {
    const CTivVector* transform = calibrated.GetTransform();
    return transform ? JudgeFit(calibrated, *transform) : FitQuality{};
}

}  // namespace tonewright
