#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "calibration/CTivTonewrightDC.h"
#include "cli/command.h"

/// Loads a parameter file, which reruns its calibration. @throw WorkFailure
void LoadParameters(CTivTonewrightDC& engine, const std::string& path);

/// Loads the transform of a coefficient file for FormatRgb images, with the file's saturation or that of full scale.
/// Only ExecuteTransform runs a transform of 4 terms with the color twist that belongs to it. @throw WorkFailure
void LoadCoefficients(CTivTonewrightDC& engine, const std::string& path);

/// Three rows of numbers.
Json TransformRows(const CTivVector& transform, int terms);

/// @return nothing for what is not a decimal above 0
std::optional<float> ParseGamma(std::string_view text);

/// Whether corrected images are written in this file format: .bmp, .tif and .zvk files.
bool IsCorrectedFormat(int fileFormat);
