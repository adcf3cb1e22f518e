#include "report/corrections.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "quality/delivery.h"

namespace tonewright {

namespace {

std::vector<double> numbers(const CTivVector& transform) {
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(std::max(transform.GetSize(), 0)));
    for (int i = 0; i < transform.GetSize(); ++i) {
        values.push_back(static_cast<double>(transform.GetData(i).AsFloat()));
    }
    return values;
}

/// The polynomial's three values, the offset as strong as it acts.
LinearRgb evaluated(const DeliveryModel& model, const std::vector<double>& transform, const LinearRgb& raw) {
    const auto count = static_cast<std::size_t>(model.GetTerms());
    std::array<double, 10> terms = ToTerms(raw, model.GetTerms());
    terms[0] *= model.GetOffsetWeight();
    LinearRgb value{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t k = 0; k < count; ++k) value[row] += transform[row * count + k] * terms[k];
    }
    return value;
}

}  // namespace

ColorFunction CodedCorrection(const CTivTonewrightDC& settings, const CTivVector& transform) {
    const double gamma = settings.GetGamma();
    // What no channel of a raw color reaches is never saturated.
    constexpr LinearRgb kUnsaturated = {-1, -1, -1};
    return [model = DeliveryModel(settings, transform.GetSize() / 3), values = numbers(transform), gamma,
            kUnsaturated](const LinearRgb& raw) {
        LinearRgb coded = model.Limit(evaluated(model, values, raw), kUnsaturated);
        for (double& channel : coded) channel = std::pow(std::clamp(channel, 0.0, 1.0), gamma);
        return coded;
    };
}

ColorFunction SeenColor(const CTivTonewrightDC& settings, const CTivVector& transform) {
    return [model = DeliveryModel(settings, transform.GetSize() / 3),
            values = numbers(transform)](const LinearRgb& raw) { return ToXyz(evaluated(model, values, raw)); };
}

}  // namespace tonewright
