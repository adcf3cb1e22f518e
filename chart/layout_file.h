#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "chart/ChartLayout.h"

namespace tonewright {

/// Reads a chart layout: lines of a word and its values, in any order but the patches', which stand row by row.
///
///     tonewright-chart-layout 1
///     columns 6
///     rows 4
///     values Lab                      XYZ or Lab, of the patches; without it they have names alone
///     illuminant D50                  of the values: A, D50, D55, D65, D75, E, F2, F7 or F11 (default D50)
///     observer 2                      2 or 10 degrees (default 2)
///     patch 37.99 13.56 14.06 Dark Skin
///
/// XYZ may have any scale. Empty lines and lines that begin with # count for nothing.
/// @param text of a whole file
/// @param reason receives what is wrong, with the line's number, where nothing is returned
std::optional<ChartLayout> ParseChartLayout(std::string_view text, std::string& reason);

/// The same from a file of at most a mebibyte.
std::optional<ChartLayout> ReadChartLayout(const std::string& path, std::string& reason);

}  // namespace tonewright
