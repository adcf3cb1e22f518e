#include "calibration/CalibrationTables.h"

#include <memory>

#include "calibration/reference_data_impl.h"

using namespace tonewright;

namespace {

DoubleMatrix ToMatrix(const Matrix3x3& values, bool transposed) {
    DoubleMatrix matrix(3, 3);
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) {
            const double value = values[static_cast<std::size_t>(i)][static_cast<std::size_t>(k)];
            (transposed ? matrix[k][i] : matrix[i][k]) = value;
        }
    }
    return matrix;
}

}  // namespace

CalibrationTables::CalibrationTables()
    : XyzToRgbMatrix(ToMatrix(kXyzToRgb, false)),
      BradfordMatrix(ToMatrix(kBradford, true)),
      BradfordInverse(ToMatrix(kBradfordInverse, true)) {
    for (std::size_t i = 0; i < kIlluminantCount; ++i) {
        const auto index = static_cast<std::int32_t>(i);
        AdaptationTable[index] = ToMatrix(kAdaptations[i], false);
        for (const auto& patch : kReferencePatches) {
            ReferenceTable[index].push_back({patch[i].x, patch[i].y, patch[i].z, 0.0f});
        }
    }
}

namespace tonewright {

const CalibrationTables& GetCalibrationTables() {
    static const CalibrationTables* const tables = std::make_unique<CalibrationTables>().release();
    return *tables;
}

std::int32_t GetAdaptationKey(std::int32_t illuminant) {
    const CalibrationIlluminant* const row = FindIlluminant(illuminant);
    return row ? row->adaptationKey : -1;
}

}  // namespace tonewright
