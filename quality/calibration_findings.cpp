#include <algorithm>
#include <cmath>

#include "calibration/usable_transform.h"
#include "foundation/fixed_text.h"
#include "quality/finding_words_impl.h"
#include "quality/findings.h"

namespace tonewright {

namespace {

constexpr double kOverfit = 1.6;  // how many times the difference of patches seen those left out may have

/// Whether red, green or blue has no part in any output channel.
bool hasEmptyColumn(const CTivVector& transform, int terms) {
    for (int column = 1; column <= 3; ++column) {
        const auto isZero = [&](int row) { return transform.GetData(row * terms + column).AsFloat() == 0.0f; };
        if (isZero(0) && isZero(1) && isZero(2)) return true;
    }
    return false;
}

}  // namespace

std::optional<Finding> FindOverfit(const CalibrationQuality& quality, int terms) {
    const double seen = quality.delivered.deltaE00.mean;
    const double unseen = quality.unseen.deltaE00.mean;
    if (quality.unseen.deltaE00.patches.empty() || !(unseen > kOverfit * seen)) return std::nullopt;
    const TermsFigures* better = nullptr;
    for (const TermsFigures& candidate : quality.candidates) {
        if (candidate.terms >= terms || candidate.unseen >= unseen) continue;
        if (!better || candidate.unseen < better->unseen) better = &candidate;
    }
    if (!better) return std::nullopt;
    return Finding{"overfit",
                   Severity::Note,
                   "The " + std::to_string(terms) + " terms follow these patches (mean difference " +
                       FixedText(seen, 1) + ") more closely than other colors (" + FixedText(unseen, 1) + "): with " +
                       std::to_string(better->terms) + " terms colors that were not in the fit come out better (" +
                       FixedText(better->unseen, 1) + ").",
                   {}};
}

std::optional<Finding> FindSingular(const CTivVector& transform) {
    const int terms = transform.GetSize() / 3;
    std::string reason = WhyUnusableTransform(transform, terms);
    if (reason.empty() && hasEmptyColumn(transform, terms))
        reason = "a channel of the camera has no part in the result";
    if (reason.empty()) return std::nullopt;
    return Finding{"singular",
                   Severity::Error,
                   "This is no calibration: " + reason +
                       ". Check the white and the values of the illuminant, and that the picture shows colors.",
                   {}};
}

std::vector<Finding> FindInCalibration(const CalibrationQuality& quality, const CTivVector& transform) {
    std::vector<Finding> findings;
    if (auto finding = FindOverfit(quality, transform.GetSize() / 3)) findings.push_back(std::move(*finding));
    if (auto finding = FindSingular(transform)) findings.push_back(std::move(*finding));
    return findings;
}

}  // namespace tonewright
