#include "quality/color_spaces.h"

#include <algorithm>
#include <cmath>

#include "calibration/CalibrationTables.h"

namespace tonewright {

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

struct Matrices {
    Matrix3 toRgb = toMatrix3(GetCalibrationTables().XyzToRgbMatrix);
    Matrix3 toXyz = inverse(toRgb);
};

const Matrices& matrices() {
    static const Matrices both;
    return both;
}

Vector3 firstThree(const NormalisedColor& color) { return {color[0], color[1], color[2]}; }

}  // namespace

Xyz ToXyz(const LinearRgb& color) { return multiply(matrices().toXyz, color); }

LinearRgb ToLinearRgb(const Xyz& color) { return multiply(matrices().toRgb, color); }

Lab ToLab(const LinearRgb& color) { return XyzToLab(ToXyz(color)); }

bool IsNeutral(const Lab& target) { return std::hypot(target[1], target[2]) < 5.0; }

std::vector<Xyz> ToXyz(const CalibrationTargets& targets) {
    const Matrix3 matrix = targets.adaptation ? toMatrix3(*targets.adaptation) : matrices().toXyz;
    std::vector<Xyz> result;
    for (const NormalisedColor& color : targets.colors) result.push_back(multiply(matrix, firstThree(color)));
    return result;
}

}  // namespace tonewright
