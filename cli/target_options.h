#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calibration/illuminants.h"
#include "cli/chart_reading.h"
#include "quality/chart_calibration.h"

/// What the patches of a chart should be, as the command line has it.
struct TargetOptions {
    std::optional<tonewright::CalibrationIlluminant>
        illuminant;  ///< none: A, as the Studio starts, or the calibration's own
    std::string values;
    std::optional<std::vector<float>> white;
    std::optional<std::string> reference;
    std::optional<tonewright::ChartRoi> referenceRoi;

    bool IsGiven() const { return illuminant || reference; }
    const tonewright::CalibrationIlluminant& GetIlluminant() const {
        return illuminant ? *illuminant : *tonewright::FindIlluminant("A");
    }
};

/// Adds --illuminant, --values, --white, --reference, --reference-roi.
/// @param otherwise which light it is without the option
void AddTargetOptions(CLI::App& command, TargetOptions& options, const std::string& otherwise);

/// @throw UsageFailure for options that do not go together
void CheckTargetOptions(const TargetOptions& options);

/// Reads the user's values or the reference picture.
/// @param count of the raw colors
/// @throw WorkFailure for a file that does not serve
tonewright::CalibrationAim ReadAim(const TargetOptions& options, const ChartOptions& chart, int count);
