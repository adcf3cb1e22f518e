#pragma once

#include <array>

#include "python/HeldCalibration.h"
#include "quality/verification.h"

/// What verify returns.
struct HeldVerification {
    tonewright::Verification judged;
    ChartResult chart;
};

/// The method verify of a calibration.
HeldVerification VerifyCalibration(const HeldCalibration& held, const py::object& picture, const RoiArgument& roi,
                                   const SizeArgument& chart, bool find, const py::object& layout,
                                   const std::optional<std::string>& illuminant, const py::object& values,
                                   const std::optional<std::array<double, 3>>& white, const py::object& reference,
                                   const RoiArgument& referenceRoi);

void AddVerification(py::module_& module);
