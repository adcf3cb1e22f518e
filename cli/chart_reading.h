#pragma once

#include <optional>
#include <string>

#include "chart/PatchDetector.h"
#include "cli/command.h"
#include "foundation/CTivImage.h"
#include "quality/findings.h"

namespace CLI {
class App;
}

/// What `detect` and `calibrate` are told about a picture of a chart.
struct ChartOptions {
    std::string image;
    std::optional<ChartRoi> roi;  ///< none: the image less a fiftieth of its width and height at each side
    ChartSize chart;
    bool isStrict = false;  ///< a finding that is a warning or worse ends the call before anything is written
};

/// Adds IMAGE, --roi, --chart and --strict.
void AddChartOptions(CLI::App& command, ChartOptions& options);

/// A picture in which the chart was found.
struct ChartReading {
    CTivImage image;
    ChartRoi roi;
    PatchDetector detector;
    PatchColors colors;  ///< at the image's own depth
    /// What the patches measure. Its targets are those of the 24-patch chart under D65 until others are known, none for
    /// a chart of another number.
    MeasuredChart measured;
};

/// Loads the picture, finds the patches and measures them; a saturated patch is told on standard error.
/// @throw WorkFailure where the image does not load, the ROI is empty or outside it, nothing is found, or the image
///        has no colors
ChartReading ReadChart(const std::string& path, const std::optional<ChartRoi>& roi, const ChartSize& chart);

/// The same for an image that is loaded already. @param path for the messages
ChartReading ReadChart(CTivImage image, const std::string& path, const std::optional<ChartRoi>& roi,
                       const ChartSize& chart);

/// The document of `detect`.
Json DescribeReading(const ChartOptions& options, const ChartReading& reading, const std::vector<Finding>& findings);
