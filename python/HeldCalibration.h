#pragma once

#include <optional>
#include <string>

#include "python/charts.h"
#include "quality/chart_calibration.h"

/// A calibration in Python's hands, of a chart or from a file. It stays as it is, so several threads may share it.
struct HeldCalibration {
    enum class Origin { Chart, Parameters, Coefficients };

    Origin origin = Origin::Chart;
    tonewright::ChartCalibration calibration;
    tonewright::FitMethod method = tonewright::FitMethod::LeastSquares;
    std::string name;       ///< of the picture or the file, for titles
    std::string reference;  ///< of the reference picture; empty: none

    // Of a chart alone.
    CTivImage picture;  ///< for the report
    std::optional<ChartResult> chart;

    const CTivTonewrightDC& Engine() const { return calibration.engine; }
};

/// The bits of an array's words, which it does not tell: those that the calibration was made for.
std::optional<int> BitsFor(const HeldCalibration& held, const py::object& picture);
