#pragma once

#include <optional>
#include <string>

#include "chart/PatchDetector.h"
#include "cli/command.h"
#include "foundation/CTivImage.h"

namespace CLI {
class App;
}

/// What `detect` and `calibrate` are told about a picture of a chart.
struct ChartOptions {
    std::string image;
    std::optional<ChartRoi> roi;  ///< none: the image less a fiftieth of its width and height at each side
    ChartSize chart;
};

/// Adds IMAGE, --roi and --chart.
void AddChartOptions(CLI::App& command, ChartOptions& options);

/// A picture in which the chart was found.
struct ChartReading {
    CTivImage image;
    ChartRoi roi;
    PatchDetector detector;
    PatchColors colors;  ///< at the image's own depth
};

/// Loads the picture, finds the patches and measures them; a saturated patch is told on standard error.
/// @throw WorkFailure where the image does not load, the ROI is empty or outside it, nothing is found, or the image
///        has no colors
ChartReading ReadChart(const std::string& path, const std::optional<ChartRoi>& roi, const ChartSize& chart);

/// The same for an image that is loaded already. @param path for the messages
ChartReading ReadChart(CTivImage image, const std::string& path, const std::optional<ChartRoi>& roi,
                       const ChartSize& chart);

/// The document of `detect`.
Json DescribeReading(const ChartOptions& options, const ChartReading& reading);
