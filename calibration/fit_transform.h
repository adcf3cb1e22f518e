#pragma once

#include <optional>
#include <span>
#include <vector>

#include "calibration/DoubleMatrix.h"
#include "calibration/color_fit.h"
#include "foundation/CTivVector.h"

class CTivTonewrightDC;

namespace tonewright {

/// What a calibration brings its raw colors to.
struct CalibrationTargets {
    /// One a raw color: XYZ under the illuminant in absolute mode, linear red, green, blue in relative mode.
    std::vector<NormalisedColor> colors;
    /// XYZ to XYZ under D65, 3 x 3; absolute mode only.
    std::optional<DoubleMatrix> adaptation;
};

/// The targets of the operator's last calibration.
/// @return no colors where there are none for its present settings
CalibrationTargets GetTargets(const CTivTonewrightDC& calibrated);

/// Fits colors to targets as Calibrate does, without an operator.
/// @param adaptation as CalibrationTargets has it
/// @return 3 x terms FormatFloat; nothing for another term count than 4, 7, 10, or without memory
/// @throws const char* as Svd does
std::optional<CTivVector> FitTransform(std::span<const NormalisedColor> raw, std::span<const NormalisedColor> targets,
                                       const std::optional<DoubleMatrix>& adaptation, std::int32_t terms);

/// The second half of an absolute fit: a fit against XYZ, adapted to D65 and brought to linear RGB, 3 x terms.
DoubleMatrix ComposeTransform(const DoubleMatrix& fit, const DoubleMatrix& adaptation);

/// The matrix's numbers as floats, row by row. @return false without memory
bool StoreRows(const DoubleMatrix& matrix, CTivVector& transform);

}  // namespace tonewright
