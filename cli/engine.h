#pragma once

#include <optional>
#include <string_view>

#include "cli/command.h"
#include "foundation/CTivVector.h"

/// Three rows of numbers.
Json TransformRows(const CTivVector& transform, int terms);

/// @return nothing for what is not a decimal above 0
std::optional<float> ParseGamma(std::string_view text);

/// Whether corrected images are written in this file format: .bmp, .tif and .zvk files.
bool IsCorrectedFormat(int fileFormat);
