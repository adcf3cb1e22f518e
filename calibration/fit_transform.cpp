#include "calibration/fit_transform.h"

#include <algorithm>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/CalibrationTables.h"

namespace tonewright {

CalibrationTargets GetTargets(const CTivTonewrightDC& calibrated) {
    CalibrationTargets targets;
    if (!calibrated.GetRawColors()) return targets;
    if (calibrated.GetCalibrationMode() == 1) {
        targets.colors = NormaliseColors(*calibrated.GetReferenceColors());
        return targets;
    }
    targets.adaptation = *calibrated.GetAdaptationMatrix();
    const auto& tables = GetCalibrationTables().ReferenceTable;
    const auto reference = tables.find(calibrated.GetIlluminant());
    if (calibrated.GetIlluminant() == -1) {
        targets.colors = NormaliseColors(*calibrated.GetSpectrumValues());
    } else if (reference != tables.end()) {
        targets.colors = reference->second;
    }
    return targets;
}

std::optional<CTivVector> FitTransform(std::span<const NormalisedColor> raw, std::span<const NormalisedColor> targets,
                                       const std::optional<DoubleMatrix>& adaptation, std::int32_t terms) {
    const auto fit = FitColors(raw, targets, terms);
    CTivVector transform;
    if (!fit || !StoreRows(adaptation ? ComposeTransform(*fit, *adaptation) : *fit, transform)) return std::nullopt;
    return transform;
}

DoubleMatrix ComposeTransform(const DoubleMatrix& fit, const DoubleMatrix& adaptation) {
    return MultiplyInFloat(GetCalibrationTables().XyzToRgbMatrix, MultiplyInFloat(adaptation, fit, 3), 3);
}

bool StoreRows(const DoubleMatrix& matrix, CTivVector& transform) {
    const std::int32_t columns = matrix.GetColumns();
    if (!transform.Set(matrix.GetRows() * columns, CTivData::FormatFloat, nullptr, false)) return false;
    auto* values = static_cast<float*>(transform.GetDataPointer());
    for (std::int32_t row = 0; row < matrix.GetRows(); ++row) {
        values = std::transform(matrix[row], matrix[row] + columns, values,
                                [](double value) { return static_cast<float>(value); });
    }
    return true;
}

}  // namespace tonewright
