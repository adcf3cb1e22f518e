#pragma once

#include <vector>

#include "cli/command.h"
#include "quality/CalibrationQuality.h"
#include "quality/findings.h"

/// {"deltaE00", "deltaE76"}, each {"mean", "median", "max", "patches"}.
Json Describe(const tonewright::ChartDifferences& differences);

/// The figures of a calibration: the bare matrix, and beside it what is delivered.
Json Describe(const tonewright::CalibrationQuality& quality);

/// A list of {"code", "severity", "text", "patches"}.
Json Describe(const std::vector<tonewright::Finding>& findings);

/// Writes warnings and errors to standard error, a line each.
void TellFindings(const std::vector<tonewright::Finding>& findings);

/// "7 Orange" of a chart of 24 patches, "7" of another. @param index from 0
std::string PatchWord(std::size_t index, std::size_t count);

/// Whether one of them is a warning or worse.
bool HasWarning(const std::vector<tonewright::Finding>& findings);
