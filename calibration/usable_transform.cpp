#include "calibration/usable_transform.h"

#include <cmath>
#include <fstream>
#include <span>

#include "calibration/coefficient_file.h"
#include "calibration/color_fit.h"

namespace tonewright {

namespace {

constexpr const char* kRowNames[] = {"red", "green", "blue"};
// What can't move a sample of 8 bits by half a step between the darkest and the brightest color.
constexpr float kNoWeight = 0.5f / 255.0f;

/// @return what is wrong with one row, its offset first; empty where nothing is
std::string whyUnusable(std::span<const float> row, const std::string& name) {
    float weight = 0.0f;
    for (const float entry : row) {
        if (!std::isfinite(entry)) return "the " + name + " row of the transform has an entry that is no number";
    }
    for (const float entry : row.subspan(1)) weight += std::abs(entry);
    if (weight >= kNoWeight) return {};
    return "the " + name + " row of the transform has no weight: " + name + " would be the same for every color";
}

}  // namespace

std::string WhyUnusableTransform(const CTivVector& transform, std::int32_t terms) {
    if (!IsTermCount(terms) || transform.GetFormat() != CTivData::FormatFloat || transform.GetSize() != 3 * terms) {
        return "there is no transform of 3 rows of 4, 7 or 10 terms";
    }
    const auto* row = static_cast<const float*>(transform.GetDataPointer());
    for (const char* name : kRowNames) {
        const std::string reason = whyUnusable({row, static_cast<std::size_t>(terms)}, name);
        if (!reason.empty()) return reason;
        row += terms;
    }
    return {};
}

std::string WhyUnusableCoefficients(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return {};
    CoefficientHead head;
    CTivVector transform;
    if (!ReadCoefficients(file, head, transform)) return "the file holds no coefficients";
    return WhyUnusableTransform(transform, head.terms);
}

}  // namespace tonewright
