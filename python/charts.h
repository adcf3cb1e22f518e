#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "chart/ChartLayout.h"
#include "python/pixel_array.h"
#include "quality/chart_reading.h"

using RoiArgument = std::optional<std::tuple<int, int, int, int>>;  ///< left, top, right, bottom
using SizeArgument = std::optional<std::tuple<int, int>>;           ///< columns, rows

/// How a chart is looked for, as Python says it.
class SearchArguments {
public:
    /// @throw ValueError for arguments that do not go together, WorkFailure for a layout file that is none
    SearchArguments(const SizeArgument& size, bool isFind, const py::object& layout);

    /// Finds the chart; without the GIL. @throw as ReadChart
    tonewright::ChartReading Read(CTivImage image, const std::string& name, const RoiArgument& roi) const;

private:
    std::optional<tonewright::ChartLayout> layout_;
    tonewright::ChartSearch search_;
};

/// What detect and find_chart return: a reading without its picture.
struct ChartResult {
    tonewright::ChartReading reading;
    std::vector<tonewright::Finding> findings;
    int width = 0;
    int height = 0;
    CTivData::Format format = CTivData::FormatNone;

    /// Frees the picture.
    explicit ChartResult(tonewright::ChartReading whole);
};
