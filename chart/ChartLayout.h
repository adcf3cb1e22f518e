#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "chart/FoundChart.h"

namespace tonewright {

using XyzColor = std::array<double, 3>;  ///< CIE X, Y, Z

/// How the patches of a chart are laid out, and their colors.
struct ChartLayout {
    int columns = 0;
    int rows = 0;
    std::vector<std::string> names;    ///< row by row
    std::vector<XyzColor> references;  ///< row by row, of whatever scale; empty: not known

    /// Where a patch lies, as shares of the chart's longer side, counted from its middle.
    ChartPoint PlaceInUnit(std::size_t index) const {
        const auto i = static_cast<int>(index);
        const double side = std::max(columns, rows);
        const int column = i % columns, row = i / columns;
        return {(column - (columns - 1) / 2.0) / side, (row - (rows - 1) / 2.0) / side};
    }
    std::size_t Count() const { return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows); }
};

/// The chart of 6 x 4 patches: 18 chromatic ones, then the neutral row from white to black.
const ChartLayout& GetClassicLayout();

}  // namespace tonewright
