#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include "calibration/DoubleMatrix.h"

/// What a chart of 24 patches should measure, by illuminant, and the color space matrices. Read-only.
struct CalibrationTables {
    /// X, Y, Z in units in which white has a Y near 0.885, and 0.
    using ColorQuad = std::array<float, 4>;

    CalibrationTables();

    DoubleMatrix XyzToRgbMatrix;   ///< 3 x 3, CIE XYZ to linear RGB: rgb[i] = sum over k of [i][k] xyz[k]
    DoubleMatrix BradfordMatrix;   ///< 3 x 3, CIE XYZ to cone response, stored transposed: [k][i]
    DoubleMatrix BradfordInverse;  ///< 3 x 3, cone response to CIE XYZ, stored transposed
    /// By index of kCalibrationIlluminants, the user's aside: 24 patches row by row, the last six the
    /// neutral ones from white to black.
    std::map<std::int32_t, std::vector<ColorQuad>> ReferenceTable;
    /// By adaptation key, 0 to 8 (D65, A, E, D50, D55, D75, F2, F7, F11): 3 x 3, XYZ under that light to XYZ under D65.
    std::map<std::int32_t, DoubleMatrix> AdaptationTable;
};

namespace tonewright {

/// The one set of tables of the process, built on first use and never freed, since the operator that the application
/// keeps lives to the very end of the process.
const CalibrationTables& GetCalibrationTables();

/// @return the key into AdaptationTable of an illuminant index, -1 for the user's and for an unknown one
std::int32_t GetAdaptationKey(std::int32_t illuminant);

}  // namespace tonewright
