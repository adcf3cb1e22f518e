#include "chart/color_match_impl.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "foundation/symmetric_solve.h"

namespace tonewright {

namespace {

// From values to light: pictures that were made linear twice, linear ones, and the usual codings, some contrasty.
constexpr double kExponents[] = {0.45, 0.7, 1.0, 1.5, 2.2, 2.8};
constexpr double kQuickExponents[] = {0.45, 1.0, 2.2};
constexpr double kCompression = 0.4;  // differences count in about equal steps of lightness
constexpr double kDark = 0.01;        // of white's Y: darker patches weigh as this one
constexpr double kClipped = 252;      // toned level from which a channel tells only that it is bright
constexpr int kSlopeRounds = 3;
constexpr double kMaxSlope = 0.6;  // of the light, over the unit of place
constexpr int kRobustRounds = 8;
constexpr double kLeastError = 0.01;  // of the largest error: smaller ones pull no harder
constexpr double kOutlying = 3;       // times the median error: from there on a patch may be left out
constexpr std::size_t kChannels = 3;

double square(double x) { return x * x; }
double toLight(double level, double exponent) { return std::pow(level / 255, 2 * exponent); }

template <std::size_t N>
double dot(const std::array<double, N>& a, const std::array<double, N>& b) {
    double sum = 0;
    for (std::size_t i = 0; i < N; ++i) sum += a[i] * b[i];
    return sum;
}

/// Adds what is unexplained and the spread of one series of values.
struct Share {
    double error = 0, spread = 0;

    template <class Weight, class Value, class Error>
    void Add(std::size_t count, Weight weight, Value value, Error errorAt) {
        double weights = 0, mean = 0;
        for (std::size_t i = 0; i < count; ++i) {
            weights += weight(i);
            mean += weight(i) * value(i);
        }
        if (weights > 0) mean /= weights;
        for (std::size_t i = 0; i < count; ++i) {
            error += weight(i) * square(errorAt(i));
            spread += weight(i) * square(value(i) - mean);
        }
    }
    double Root() const { return spread > 0 ? std::sqrt(std::min(1.0, error / spread)) : 1; }
};

}  // namespace

/// The state of one fit. Weights are squared.
struct ColorMatcher::Fit {
    Light light, weight, error;
    std::array<Row, kChannels> mix = {};
    std::vector<double> slope;  // of the light at each patch, 1 without any

    explicit Fit(std::size_t count) : light(count), weight(count), error(count), slope(count, 1.0) {}

    double Residual() const {
        const std::size_t count = light.size();
        Share all, chroma;
        std::array<double, kChannels> gain = {};
        for (std::size_t c = 0; c < kChannels; ++c) {
            for (std::size_t i = 0; i < count; ++i) gain[c] += weight[i][c] * light[i][c];
            if (!(gain[c] > 0)) return 1;
            const auto weightAt = [&](std::size_t i) { return weight[i][c] / square(gain[c]); };
            all.Add(
                count, weightAt, [&](std::size_t i) { return light[i][c]; },
                [&](std::size_t i) { return error[i][c]; });
        }
        for (const std::size_t c : {std::size_t{0}, std::size_t{2}}) {  // against green
            const auto weightAt = [&](std::size_t i) { return std::min(weight[i][c], weight[i][1]); };
            chroma.Add(
                count, weightAt, [&](std::size_t i) { return light[i][c] / gain[c] - light[i][1] / gain[1]; },
                [&](std::size_t i) { return error[i][c] / gain[c] - error[i][1] / gain[1]; });
        }
        return std::max(all.Root(), chroma.Root());
    }
};

ColorMatcher::ColorMatcher(std::span<const XyzColor> references) {
    double white = 0;
    for (const XyzColor& color : references) white = std::max(white, color[1]);
    std::array<double, 16> normal = {};
    for (const XyzColor& color : references) {
        design_.push_back({color[0] / white, color[1] / white, color[2] / white, 1.0});
        weights_.push_back(std::pow(std::max(0.0, color[1] / white) + kDark, 2 * (kCompression - 1)));
        for (std::size_t j = 0; j < 4; ++j) {
            for (std::size_t k = 0; k < 4; ++k) {
                normal[4 * j + k] += weights_.back() * design_.back()[j] * design_.back()[k];
            }
        }
    }
    for (std::size_t i = 0; i < design_.size(); ++i) {
        auto a = normal;
        Row column = design_[i];
        for (double& value : column) value *= weights_[i];
        if (!SolveSymmetric(a, column)) column = {};  // colors in a plane: nothing will match
        inverse_.push_back(column);
    }
}

ColorMatcher::QuickLight ColorMatcher::ToQuickLight(const TonedColor& color) {
    QuickLight light;
    for (std::size_t e = 0; e < light.size(); ++e) {
        for (std::size_t c = 0; c < kChannels; ++c) light[e][c] = toLight(color[c], kQuickExponents[e]);
    }
    return light;
}

ColorMatch ColorMatcher::Look(std::span<const QuickLight* const> lights) const {
    ColorMatch best;
    const std::size_t count = design_.size();
    Fit fit(count);
    for (std::size_t i = 0; i < count; ++i) fit.weight[i].fill(weights_[i]);
    for (std::size_t e = 0; e < std::size(kQuickExponents); ++e) {
        fit.mix = {};
        for (std::size_t i = 0; i < count; ++i) {
            fit.light[i] = (*lights[i])[e];
            for (std::size_t c = 0; c < kChannels; ++c) {
                for (std::size_t k = 0; k < 4; ++k) fit.mix[c][k] += inverse_[i][k] * fit.light[i][c];
            }
        }
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t c = 0; c < kChannels; ++c) {
                fit.error[i][c] = fit.light[i][c] - dot(fit.mix[c], design_[i]);
            }
        }
        const double residual = fit.Residual();
        if (residual < best.residual) {
            best.residual = residual;
            best.exponent = kQuickExponents[e];
        }
    }
    return best;
}

bool ColorMatcher::FitMix(Fit& fit) const {
    for (std::size_t c = 0; c < kChannels; ++c) {
        std::array<double, 16> a = {};
        Row b = {};
        for (std::size_t i = 0; i < design_.size(); ++i) {
            const double w = fit.weight[i][c] * fit.slope[i];
            for (std::size_t j = 0; j < 4; ++j) {
                for (std::size_t k = 0; k <= j; ++k) a[4 * j + k] += w * fit.slope[i] * design_[i][j] * design_[i][k];
                b[j] += w * design_[i][j] * fit.light[i][c];
            }
        }
        if (!SolveSymmetric(a, b)) return false;
        fit.mix[c] = b;
        for (std::size_t i = 0; i < design_.size(); ++i) {
            fit.error[i][c] = fit.light[i][c] - fit.slope[i] * dot(fit.mix[c], design_[i]);
        }
    }
    return true;
}

bool ColorMatcher::FitSlope(std::span<const PatchSample> samples, Fit& fit) const {
    std::array<double, 4> a = {};
    std::array<double, 2> b = {};
    for (std::size_t i = 0; i < design_.size(); ++i) {
        const ChartPoint& place = samples[i].place;
        for (std::size_t c = 0; c < kChannels; ++c) {
            const double even = dot(fit.mix[c], design_[i]);
            const double w = fit.weight[i][c] * even;
            a[0] += w * even * place.x * place.x;
            a[2] += w * even * place.x * place.y;
            a[3] += w * even * place.y * place.y;
            b[0] += w * place.x * (fit.light[i][c] - even);
            b[1] += w * place.y * (fit.light[i][c] - even);
        }
    }
    if (!SolveSymmetric(a, b)) return false;
    for (double& value : b) value = std::clamp(value, -kMaxSlope, kMaxSlope);
    for (std::size_t i = 0; i < design_.size(); ++i) {
        fit.slope[i] = std::max(0.2, 1 + b[0] * samples[i].place.x + b[1] * samples[i].place.y);
    }
    return true;
}

bool ColorMatcher::FitAll(std::span<const PatchSample> samples, double exponent, Fit& fit) const {
    for (std::size_t i = 0; i < design_.size(); ++i) {
        for (std::size_t c = 0; c < kChannels; ++c) {
            const double level = samples[i].color[c];
            fit.light[i][c] = toLight(level, exponent);
            fit.weight[i][c] = samples[i].isUsed && level < kClipped ? weights_[i] : 0;
        }
    }
    fit.slope.assign(design_.size(), 1.0);
    for (int round = 0; round < kSlopeRounds; ++round) {
        if (!FitMix(fit)) return false;
        if (!FitSlope(samples, fit)) break;
    }
    return FitMix(fit);
}

std::vector<std::size_t> ColorMatcher::FindOutliers(std::span<const PatchSample> samples, double exponent, int allowed,
                                                    Fit& fit) const {
    // Least absolute errors by reweighting: a few wrong colors pull it hardly, as they would pull least squares.
    if (!FitAll(samples, exponent, fit)) return {};
    const Light plain = fit.weight;
    std::vector<double> errors(samples.size());
    for (int round = 0;; ++round) {
        double most = 0;
        for (std::size_t i = 0; i < errors.size(); ++i) {
            double sum = 0;
            for (std::size_t c = 0; c < kChannels; ++c) sum += plain[i][c] * square(fit.error[i][c]);
            errors[i] = std::sqrt(sum);
            most = std::max(most, errors[i]);
        }
        if (round == kRobustRounds) break;
        for (std::size_t i = 0; i < errors.size(); ++i) {
            for (std::size_t c = 0; c < kChannels; ++c) {
                fit.weight[i][c] = plain[i][c] / (errors[i] + kLeastError * most);
            }
        }
        if ((round % 2 == 1 && !FitSlope(samples, fit)) || !FitMix(fit)) return {};
    }
    std::vector<double> sorted = errors;
    std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2), sorted.end());
    const double limit = kOutlying * sorted[sorted.size() / 2];
    std::vector<std::size_t> order(errors.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return errors[a] > errors[b]; });
    order.resize(std::min(order.size(), static_cast<std::size_t>(allowed)));
    std::erase_if(order, [&](std::size_t i) { return errors[i] <= limit; });
    return order;
}

ColorMatch ColorMatcher::Match(std::span<const PatchSample> samples, double exponent, int allowedOutliers) const {
    ColorMatch best;
    Fit fit(design_.size());
    const auto judge = [&](std::span<const PatchSample> kept, double tried) {
        if (!FitAll(kept, tried, fit)) return;
        const double residual = fit.Residual();
        if (residual >= best.residual) return;
        best = {residual, tried, {}};
        for (const PatchSample& sample : kept) best.isUsed.push_back(sample.isUsed);
    };
    for (const double tried : kExponents) {
        if (tried > 1.6 * exponent || exponent > 1.6 * tried) continue;
        judge(samples, tried);
        if (allowedOutliers == 0) continue;
        std::vector<PatchSample> kept(samples.begin(), samples.end());
        for (const std::size_t i : FindOutliers(samples, tried, allowedOutliers, fit)) kept[i].isUsed = false;
        judge(kept, tried);
    }
    return best;
}

}  // namespace tonewright
