#include "quality/fit_quality.h"

#include <algorithm>
#include <array>
#include <compare>
#include <numeric>
#include <optional>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/CalibrationTables.h"
#include "quality/color_difference.h"

namespace {

using Vector3 = std::array<double, 3>;
using Matrix3 = std::array<Vector3, 3>;

Matrix3 toMatrix3(const DoubleMatrix& matrix) {
    Matrix3 result{};
    for (int i = 0; i < std::min(matrix.GetRows(), 3); ++i) {
        for (int j = 0; j < std::min(matrix.GetColumns(), 3); ++j) {
            result[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] = matrix[i][j];
        }
    }
    return result;
}

Vector3 cross(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Vector3 multiply(const Matrix3& m, const Vector3& v) { return {dot(m[0], v), dot(m[1], v), dot(m[2], v)}; }

/// The columns of the inverse are the cross products of the rows over the determinant.
Matrix3 inverse(const Matrix3& m) {
    const Matrix3 columns = {cross(m[1], m[2]), cross(m[2], m[0]), cross(m[0], m[1])};
    const double determinant = dot(m[0], columns[0]);
    Matrix3 result{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) result[i][j] = columns[j][i] / determinant;
    }
    return result;
}

/// Red, green and blue as fractions of full scale.
Vector3 normalized(const CTivData& color) {
    const auto channels = [](std::uint64_t word, int bits, double fullScale) {
        const std::uint64_t mask = (std::uint64_t{1} << bits) - 1;
        return Vector3{static_cast<double>(word >> 2 * bits & mask) / fullScale,
                       static_cast<double>(word >> bits & mask) / fullScale,
                       static_cast<double>(word & mask) / fullScale};
    };
    switch (color.GetFormat()) {
        case CTivData::FormatRgb:
            return channels(color.AsRgb(), 8, 255.0);
        case CTivData::FormatRgb10:
            return channels(color.AsRgb10(), 10, 1023.0);
        case CTivData::FormatRgb16:
            return channels(color.AsRgb16(), 16, 65535.0);
        default:
            return {};
    }
}

/// The transform's polynomial at one raw color: linear red, green and blue.
Vector3 transformed(const CTivVector& transform, std::size_t terms, const Vector3& raw) {
    const auto [r, g, b] = raw;
    std::array<double, 10> term = {1, r, g, b, r * r, r * g, r * b, g * g, g * b, b * b};
    if (terms == 7) term = {1, r, g, b, r * r, g * g, b * b};
    Vector3 result{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t k = 0; k < terms; ++k) {
            result[row] +=
                static_cast<double>(transform.GetData(static_cast<int>(row * terms + k)).AsFloat()) * term[k];
        }
    }
    return result;
}

/// What the patches should have been, as XYZ under D65.
std::vector<Xyz> targets(const CTivTonewrightDC& calibrated, const Matrix3& rgbToXyz) {
    std::vector<Xyz> result;
    if (calibrated.GetCalibrationMode() == 1) {
        const CTivVector* colors = calibrated.GetReferenceColors();
        for (int i = 0; i < colors->GetSize(); ++i)
            result.push_back(multiply(rgbToXyz, normalized(colors->GetData(i))));
        return result;
    }
    const Matrix3 adaptation = toMatrix3(*calibrated.GetAdaptationMatrix());
    const auto adapt = [&](const float* xyz) { result.push_back(multiply(adaptation, {xyz[0], xyz[1], xyz[2]})); };
    if (calibrated.GetIlluminant() == -1) {
        const CTivVector* values = calibrated.GetSpectrumValues();
        for (int i = 0; i < values->GetSize(); ++i) adapt(values->GetData(i).AsColorFloat());
        return result;
    }
    const auto& tables = GetCalibrationTables().ReferenceTable;
    const auto reference = tables.find(calibrated.GetIlluminant());
    if (reference == tables.end()) return result;
    for (const auto& quad : reference->second) adapt(quad.data());
    return result;
}

ChartDifferences compare(const std::vector<Xyz>& predicted, const std::vector<Xyz>& target) {
    std::vector<double> deltaE00, deltaE76;
    for (std::size_t i = 0; i < predicted.size(); ++i) {
        const Lab first = XyzToLab(predicted[i]);
        const Lab second = XyzToLab(target[i]);
        deltaE00.push_back(DeltaE2000(first, second));
        deltaE76.push_back(DeltaE76(first, second));
    }
    return {Summarize(std::move(deltaE00)), Summarize(std::move(deltaE76))};
}

}  // namespace

DifferenceSummary Summarize(std::vector<double> patches) {
    DifferenceSummary summary;
    if (patches.empty()) return summary;
    std::vector<double> sorted = patches;
    // A total order, since a transform that is no number gives differences that are none.
    std::sort(sorted.begin(), sorted.end(), [](double a, double b) { return std::strong_order(a, b) < 0; });
    const std::size_t middle = sorted.size() / 2;
    summary.median = sorted.size() % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2.0;
    summary.max = sorted.back();
    summary.mean = std::accumulate(patches.begin(), patches.end(), 0.0) / static_cast<double>(patches.size());
    summary.patches = std::move(patches);
    return summary;
}

FitQuality JudgeFit(const CTivTonewrightDC& calibrated) {
    const CTivVector* raw = calibrated.GetRawColors();
    const CTivVector* transform = calibrated.GetTransform();
    if (!raw || !transform) return {};
    const int terms = calibrated.GetXformSize();
    if ((terms != 4 && terms != 7 && terms != 10) || transform->GetSize() != 3 * terms) return {};
    const Matrix3 rgbToXyz = inverse(toMatrix3(GetCalibrationTables().XyzToRgbMatrix));
    const std::vector<Xyz> target = targets(calibrated, rgbToXyz);
    if (static_cast<int>(target.size()) != raw->GetSize()) return {};

    std::vector<Xyz> fitted, before;
    for (int i = 0; i < raw->GetSize(); ++i) {
        const Vector3 color = normalized(raw->GetData(i));
        fitted.push_back(multiply(rgbToXyz, transformed(*transform, static_cast<std::size_t>(terms), color)));
        before.push_back(multiply(rgbToXyz, color));
    }
    return {compare(fitted, target), compare(before, target)};
}
