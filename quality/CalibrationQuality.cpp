#include "quality/CalibrationQuality.h"

#include <algorithm>
#include <cmath>

#include "calibration/fit_transform.h"
#include "foundation/fixed_text.h"
#include "quality/delivery.h"
#include "quality/perceptual_fit.h"

namespace tonewright {

namespace {

constexpr int kTermCounts[] = {4, 7, 10};
constexpr std::size_t kMostSinglePatches = 240;  // patches that are left out one by one
constexpr std::size_t kShares = 10;              // of a greater chart, left out one after the other

std::vector<Lab> toLab(std::span<const Xyz> colors) {
    std::vector<Lab> result;
    for (const Xyz& xyz : colors) result.push_back(XyzToLab(xyz));
    return result;
}

std::vector<Lab> linearToLab(std::span<const LinearRgb> colors) {
    std::vector<Lab> result;
    for (const LinearRgb& rgb : colors) result.push_back(ToLab(rgb));
    return result;
}

/// Fits and judges one calibration's chart, whole or less a patch.
class Judge {
public:
    explicit Judge(const CTivTonewrightDC& calibrated)
        : settings_(calibrated), targets_(GetTargets(calibrated)), targetXyz_(ToXyz(targets_)) {
        if (calibrated.GetRawColors()) words_ = *calibrated.GetRawColors();
        raw_ = NormaliseColors(words_);
        targetLab_ = toLab(targetXyz_);
    }

    bool IsWhole() const { return !raw_.empty() && raw_.size() == targetXyz_.size(); }
    const std::vector<Xyz>& GetTargetXyz() const { return targetXyz_; }
    const CTivVector& GetWords() const { return words_; }

    std::optional<CTivVector> Fit(FitMethod method, int terms) const {
        return FitOf(method, terms, raw_, targets_.colors, targetXyz_);
    }

    ChartDifferences JudgeDelivered(const CTivVector& transform) const {
        const auto delivered = Deliver(settings_, transform, words_);
        if (delivered.size() != targetLab_.size()) return {};
        return Compare(linearToLab(delivered), targetLab_);
    }

    /// Each patch by a fit of all the others (of a chart of very many patches by the others of ten shares); nothing
    /// where one of the fits can't be made.
    ChartDifferences JudgeUnseen(FitMethod method, int terms) const {
        const std::size_t shares = raw_.size() <= kMostSinglePatches ? raw_.size() : kShares;
        std::vector<Lab> seen(raw_.size());
        for (std::size_t share = 0; share < shares; ++share) {
            const auto without = [&](const auto& list) {
                auto kept = list;
                kept.clear();
                for (std::size_t i = 0; i < list.size(); ++i) {
                    if (i % shares != share) kept.push_back(list[i]);
                }
                return kept;
            };
            const auto transform = FitOf(method, terms, without(raw_), without(targets_.colors), without(targetXyz_));
            if (!transform) return {};
            const int count = static_cast<int>((raw_.size() - share + shares - 1) / shares);
            CTivVector left(count, words_.GetFormat(), nullptr, true);
            for (std::size_t i = share, k = 0; i < raw_.size(); i += shares, ++k) {
                left.SetData(static_cast<int>(k), words_.GetData(static_cast<int>(i)));
            }
            const auto delivered = Deliver(settings_, *transform, left);
            if (delivered.empty()) return {};
            for (std::size_t k = 0; k < delivered.size(); ++k) seen[share + k * shares] = ToLab(delivered[k]);
        }
        return Compare(seen, targetLab_);
    }

private:
    std::optional<CTivVector> FitOf(FitMethod method, int terms, const std::vector<NormalisedColor>& raw,
                                    const std::vector<NormalisedColor>& targets,
                                    const std::vector<Xyz>& targetXyz) const {
        if (raw.empty() || raw.size() != targets.size()) return std::nullopt;
        auto transform = FitTransform(raw, targets, targets_.adaptation, terms);
        if (transform && method == FitMethod::Perceptual) {
            RefineTransform(DeliveryModel(settings_, terms), raw, targetXyz, *transform);
        }
        return transform;
    }

    const CTivTonewrightDC& settings_;
    CalibrationTargets targets_;
    CTivVector words_;
    std::vector<NormalisedColor> raw_;
    std::vector<Xyz> targetXyz_;
    std::vector<Lab> targetLab_;
};

std::vector<TermsFigures> compareTerms(const CTivTonewrightDC& calibrated, const Judge& judge, FitMethod method,
                                       int termsInForce, CalibrationQuality& quality) {
    std::vector<TermsFigures> candidates;
    for (const int terms : kTermCounts) {
        const auto transform = judge.Fit(method, terms);
        if (!transform) continue;
        const ChartDifferences unseen = judge.JudgeUnseen(method, terms);
        if (terms == termsInForce) quality.unseen = unseen;
        candidates.push_back({terms, JudgeFit(calibrated, *transform).fitted.deltaE00.mean,
                              judge.JudgeDelivered(*transform).deltaE00.mean, unseen.deltaE00.mean});
    }
    return candidates;
}

void judgeNeutrals(CalibrationQuality& quality) {
    double sum = 0;
    for (std::size_t i = 0; i < quality.patches.size(); ++i) {
        const JudgedPatch& patch = quality.patches[i];
        if (!IsNeutral(patch.targetLab)) continue;
        quality.neutralPatches.push_back(static_cast<int>(i) + 1);
        sum += std::hypot(patch.deliveredLab[1], patch.deliveredLab[2]);
    }
    if (sum > 0) quality.whiteChroma = sum / static_cast<double>(quality.neutralPatches.size());
}

std::vector<double> toDoubles(const CTivVector& transform) {
    std::vector<double> coefficients;
    coefficients.reserve(static_cast<std::size_t>(std::max(transform.GetSize(), 0)));
    for (int i = 0; i < transform.GetSize(); ++i)
        coefficients.push_back(static_cast<double>(transform.GetData(i).AsFloat()));
    return coefficients;
}

PictureQuality judgePicture(const CTivTonewrightDC& settings, const CTivVector& transform,
                            const ChartInPicture& picture, std::span<const Lab> targets) {
    PictureQuality quality;
    if (!picture.image || picture.areas.size() != targets.size() || picture.measurements.size() != targets.size()) {
        return quality;
    }
    const auto delivered = DeliverPicture(settings, transform, *picture.image, picture.areas);
    if (delivered.size() != targets.size()) return quality;
    quality.delivered = Compare(linearToLab(delivered), targets);
    const DeliveryModel model(settings, transform.GetSize() / 3);
    const std::vector<double> coefficients = toDoubles(transform);
    std::vector<Lab> ofMeans;
    for (const PatchMeasurement& patch : picture.measurements) {
        LinearRgb mean = patch.mean;
        for (double& channel : mean) channel /= GetChannelFullScale(settings.GetCalibratedFormat());
        ofMeans.push_back(ToLab(model.Deliver(coefficients, mean)));
    }
    quality.ofMeans = Compare(ofMeans, targets).deltaE00.mean;
    return quality;
}

/// Passes a patch's spread through `show`, a function of a raw color, by its slopes over the width of the spread.
template <class Show>
std::array<double, 3> passNoise(const PatchMeasurement& patch, double fullScale, Show show) {
    std::array<std::array<double, 3>, 3> slope{};  // by raw channel, then output channel, of one raw word
    for (std::size_t i = 0; i < 3; ++i) {
        const double step = patch.deviation[i];
        if (step <= 0) continue;
        LinearRgb low{}, high{};
        for (std::size_t k = 0; k < 3; ++k) low[k] = high[k] = patch.mean[k] / fullScale;
        low[i] -= step / fullScale;
        high[i] += step / fullScale;
        const LinearRgb below = show(low), above = show(high);
        for (std::size_t k = 0; k < 3; ++k) slope[i][k] = (above[k] - below[k]) / (2 * step);
    }
    const auto& [rg, rb, gb] = patch.covariance;
    std::array<double, 3> result{};
    for (std::size_t k = 0; k < 3; ++k) {
        double variance =
            2 * (slope[0][k] * slope[1][k] * rg + slope[0][k] * slope[2][k] * rb + slope[1][k] * slope[2][k] * gb);
        for (std::size_t i = 0; i < 3; ++i) variance += std::pow(slope[i][k] * patch.deviation[i], 2);
        result[k] = std::sqrt(std::max(variance, 0.0));
    }
    return result;
}

std::vector<PatchNoise> judgeNoise(const CTivTonewrightDC& settings, const CTivVector& transform,
                                   std::span<const PatchMeasurement> measurements) {
    const double fullScale = GetChannelFullScale(settings.GetCalibratedFormat());
    const DeliveryModel model(settings, transform.GetSize() / 3);
    const std::vector<double> coefficients = toDoubles(transform);
    const auto encode = [gamma = static_cast<double>(settings.GetGamma())](LinearRgb color) {
        for (double& channel : color) channel = 255.0 * std::pow(std::clamp(channel, 0.0, 1.0), gamma);
        return color;
    };
    std::vector<PatchNoise> noise;
    for (const PatchMeasurement& patch : measurements) {
        noise.push_back({passNoise(patch, fullScale, encode), passNoise(patch, fullScale, [&](const LinearRgb& raw) {
                             return encode(model.Deliver(coefficients, raw));
                         })});
    }
    return noise;
}

}  // namespace

CalibrationQuality JudgeCalibration(const CTivTonewrightDC& calibrated, const CTivVector& transform,
                                    const ChartInPicture& picture, FitMethod method) {
    const Judge judge(calibrated);
    if (!judge.IsWhole()) return {};
    CalibrationQuality quality;
    VerifiedQuality delivery = JudgeDelivery(calibrated, transform, judge.GetWords(), judge.GetTargetXyz(), picture);
    if (delivery.patches.empty()) return {};
    quality.delivered = std::move(delivery.delivered);
    quality.picture = std::move(delivery.picture);
    quality.before = std::move(delivery.before);
    quality.patches = std::move(delivery.patches);
    quality.fitted = JudgeFit(calibrated, transform).fitted;
    quality.candidates = compareTerms(calibrated, judge, method, transform.GetSize() / 3, quality);
    judgeNeutrals(quality);
    quality.noise = judgeNoise(calibrated, transform, picture.measurements);
    return quality;
}

VerifiedQuality JudgeDelivery(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivVector& raw,
                              std::span<const Xyz> targets, const ChartInPicture& picture) {
    const std::vector<LinearRgb> delivered = Deliver(settings, transform, raw);
    if (delivered.empty() || delivered.size() != targets.size()) return {};
    VerifiedQuality quality;
    std::vector<LinearRgb> measured;
    measured.reserve(delivered.size());
    for (int i = 0; i < raw.GetSize(); ++i) measured.push_back(ToFractions(raw.GetData(i)));
    const std::vector<Lab> measuredLab = linearToLab(measured), targetLab = toLab(targets),
                           deliveredLab = linearToLab(delivered);
    for (std::size_t i = 0; i < targets.size(); ++i) {
        quality.patches.push_back(
            {measured[i], ToLinearRgb(targets[i]), delivered[i], measuredLab[i], targetLab[i], deliveredLab[i]});
    }
    quality.delivered = Compare(deliveredLab, targetLab);
    quality.before = Compare(measuredLab, targetLab);
    quality.picture = judgePicture(settings, transform, picture, targetLab);
    return quality;
}

std::optional<CTivVector> FitCalibration(const CTivTonewrightDC& calibrated, FitMethod method, int terms) {
    return Judge(calibrated).Fit(method, terms);
}

std::string TellPicture(const ChartDifferences& delivered, const PictureQuality& picture) {
    constexpr double kClearly = 0.3;  // CIEDE2000
    if (picture.delivered.deltaE00.patches.empty()) return {};
    const double single = delivered.deltaE00.mean, whole = picture.delivered.deltaE00.mean;
    if (!(std::fabs(whole - single) > kClearly)) return {};  // nor where one is no number
    const bool isNoise = std::fabs(whole - picture.ofMeans) > std::fabs(picture.ofMeans - single);
    return "In the corrected picture: mean " + FixedText(whole, 1) + ", since " +
           (isNoise ? "limits and tone curve bend the mean of noisy pixels"
                    : "single colors are cut to whole levels, of which dark patches have few");
}

int ChooseTerms(std::span<const TermsFigures> candidates) {
    const auto best = std::min_element(candidates.begin(), candidates.end(),
                                       [](const auto& a, const auto& b) { return a.unseen < b.unseen; });
    return best == candidates.end() ? 0 : best->terms;
}

}  // namespace tonewright
