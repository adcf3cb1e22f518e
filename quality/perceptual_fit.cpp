#include "quality/perceptual_fit.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "foundation/symmetric_solve.h"

namespace tonewright {

namespace {

constexpr double kSmooth = 0.1;  // differences below it count by their square, so that the slope stays finite
constexpr double kPull = 0.25;   // see PullWeight
constexpr int kMaxSteps = 60;
constexpr double kEnough = 1e-5;  // of the sum: a step that gains less is the last
constexpr double kStep = 1e-6;    // of a linear channel, for slopes
constexpr double kFirstDamping = 1e-3, kDampingUp = 8.0, kDampingDown = 0.25, kMostDamping = 1e9;

using Residual = std::array<double, 3>;

/// A vector whose length is the CIEDE2000 difference, so that its squares can be fitted.
Residual residualOf(const LinearRgb& delivered, const Lab& target) {
    const auto [l, c, h, rotation] = CompareParts(ToLab(delivered), target);
    return {l, c + rotation * h / 2, h * std::sqrt(std::max(0.0, 1 - rotation * rotation / 4))};
}

double lengthOf(const Residual& residual) {
    return std::sqrt(residual[0] * residual[0] + residual[1] * residual[1] + residual[2] * residual[2] +
                     kSmooth * kSmooth);
}

class Refinement {
public:
    Refinement(const DeliveryModel& model, std::span<const NormalisedColor> raw, std::span<const Xyz> targets,
               std::vector<double> start)
        : model_(model), terms_(static_cast<std::size_t>(model.GetTerms())), start_(std::move(start)) {
        for (const NormalisedColor& color : raw) {
            raw_.push_back({color[0], color[1], color[2]});
            termRows_.push_back(ToTerms(raw_.back(), model.GetTerms()));
            // An offset that the path can't apply is given up, so that a device that does apply it shows the same.
            if (model.GetOffsetWeight() < 1) termRows_.back()[0] = 0;
        }
        for (const Xyz& target : targets) targets_.push_back(XyzToLab(target));
        if (model.GetOffsetWeight() < 1) {
            for (std::size_t row = 0; row < 3; ++row) start_[row * terms_] = 0;
        }
    }

    std::vector<double> Run() const {
        std::vector<double> best = start_;
        double least = Sum(best);
        double damping = kFirstDamping;
        for (int step = 0; step < kMaxSteps && damping < kMostDamping; ++step) {
            const Equations equations = Linearise(best);
            bool isLast = false;
            while (damping < kMostDamping) {
                std::vector<double> damped = equations.matrix;
                for (std::size_t i = 0; i < best.size(); ++i) damped[i * (best.size() + 1)] *= 1 + damping;
                std::vector<double> change = equations.right, next = best;
                const bool isSolved = SolveSymmetric(damped, change, 0);
                for (std::size_t i = 0; isSolved && i < next.size(); ++i) next[i] += change[i];
                const double sum = Sum(next);
                if (isSolved && sum < least) {
                    isLast = least - sum < kEnough * least;
                    best = std::move(next);
                    least = sum;
                    damping *= kDampingDown;
                    break;
                }
                damping *= kDampingUp;
            }
            if (isLast) break;
        }
        return best;
    }

private:
    struct Equations {
        std::vector<double> matrix;
        std::vector<double> right;
    };

    LinearRgb Polynomial(const std::vector<double>& transform, std::size_t patch) const {
        LinearRgb value{};
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t k = 0; k < terms_; ++k) value[row] += transform[row * terms_ + k] * termRows_[patch][k];
        }
        return value;
    }

    Residual At(const LinearRgb& value, std::size_t patch) const {
        return residualOf(model_.Limit(value, raw_[patch]), targets_[patch]);
    }

    /// What is minimised: the differences, and the pull on every number's way from the start.
    double Sum(const std::vector<double>& transform) const {
        double sum = 0;
        for (std::size_t i = 0; i < raw_.size(); ++i) sum += lengthOf(At(Polynomial(transform, i), i));
        for (std::size_t i = 0; i < transform.size(); ++i) {
            sum += PullWeight() * (transform[i] - start_[i]) * (transform[i] - start_[i]) / 2;
        }
        return sum;
    }

    double PullWeight() const { return kPull * static_cast<double>(raw_.size()); }

    /// The normal equations around a transform; a patch counts by the inverse of its difference, so that the squares of
    /// the residuals stand for their lengths.
    Equations Linearise(const std::vector<double>& transform) const {
        const std::size_t n = transform.size();
        Equations equations{std::vector<double>(n * n), std::vector<double>(n)};
        for (std::size_t patch = 0; patch < raw_.size(); ++patch) {
            const LinearRgb value = Polynomial(transform, patch);
            const Residual here = At(value, patch);
            const double weight = 1 / lengthOf(here);
            std::array<Residual, 3> slope{};  // by output channel
            for (std::size_t channel = 0; channel < 3; ++channel) {
                LinearRgb moved = value;
                moved[channel] += kStep;
                const Residual there = At(moved, patch);
                for (std::size_t k = 0; k < 3; ++k) slope[channel][k] = (there[k] - here[k]) / kStep;
            }
            AddPatch(equations, termRows_[patch], slope, here, weight);
        }
        for (std::size_t i = 0; i < n; ++i) {
            equations.matrix[i * n + i] += PullWeight();
            equations.right[i] -= PullWeight() * (transform[i] - start_[i]);
        }
        return equations;
    }

    void AddPatch(Equations& equations, const std::array<double, 10>& term, const std::array<Residual, 3>& slope,
                  const Residual& residual, double weight) const {
        const std::size_t n = 3 * terms_;
        const auto dot = [](const Residual& a, const Residual& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; };
        for (std::size_t row = 0; row < 3; ++row) {
            const double pull = weight * dot(slope[row], residual);
            for (std::size_t k = 0; k < terms_; ++k) equations.right[row * terms_ + k] -= pull * term[k];
            for (std::size_t other = 0; other < 3; ++other) {
                const double product = weight * dot(slope[row], slope[other]);
                for (std::size_t k = 0; k < terms_; ++k) {
                    double* line = &equations.matrix[(row * terms_ + k) * n + other * terms_];
                    for (std::size_t j = 0; j < terms_; ++j) line[j] += product * term[k] * term[j];
                }
            }
        }
    }

    const DeliveryModel& model_;
    std::size_t terms_;
    std::vector<double> start_;
    std::vector<LinearRgb> raw_;
    std::vector<std::array<double, 10>> termRows_;
    std::vector<Lab> targets_;
};

}  // namespace

void RefineTransform(const DeliveryModel& model, std::span<const NormalisedColor> raw, std::span<const Xyz> targets,
                     CTivVector& transform) {
    auto* values = static_cast<float*>(transform.GetDataPointer());
    std::vector<double> start(values, values + transform.GetSize());
    const auto isNumber = [](double value) { return std::isfinite(value); };
    if (!std::all_of(start.begin(), start.end(), isNumber)) return;
    const std::vector<double> refined = Refinement(model, raw, targets, std::move(start)).Run();
    if (!std::all_of(refined.begin(), refined.end(), isNumber)) return;
    std::transform(refined.begin(), refined.end(), values, [](double value) { return static_cast<float>(value); });
}

}  // namespace tonewright
