#pragma once

#include <optional>
#include <string>

#include "chart/ChartLayout.h"
#include "cli/command.h"
#include "quality/chart_reading.h"

namespace CLI {
class App;
}

/// What `detect` and `calibrate` are told about a picture of a chart.
struct ChartOptions {
    std::string image;
    std::optional<tonewright::ChartRoi> roi;  ///< none: the image less a fiftieth of its width and height at each side
    std::optional<ChartSize> chart;
    bool isFind = false;    ///< look for the chart wherever it lies; then no ROI is the whole image
    std::string layout;     ///< a file that says how the chart is laid out
    bool isStrict = false;  ///< a finding that is a warning or worse ends the call before anything is written

    bool HasLayout() const { return !layout.empty(); }
    const tonewright::ChartLayout& GetLayout() const;  ///< @throw WorkFailure for a file that holds none
    ChartSize GetSize() const;                         ///< of the layout, or as told; 6 x 4 otherwise
    tonewright::ChartSearch GetSearch() const;         ///< which points into this

private:
    mutable std::optional<tonewright::ChartLayout> read_;  // from the file, once
};

/// Adds --roi, --chart, --find, --layout and --strict.
void AddChartOptions(CLI::App& command, ChartOptions& options);

/// What the single options cannot see of each other. @throw UsageFailure
void CheckChartOptions(const ChartOptions& options);

/// Loads the picture, finds the patches and measures them; a saturated patch is told on standard error.
/// @param roi of this picture; the options' own is that of the first one
/// @throw as ReadChart of quality/, and where the image does not load
tonewright::ChartReading ReadChart(const std::string& path, const std::optional<tonewright::ChartRoi>& roi,
                                   const ChartOptions& options);

/// The same for an image that is loaded already. @param path for the messages
tonewright::ChartReading ReadChart(CTivImage image, const std::string& path,
                                   const std::optional<tonewright::ChartRoi>& roi, const ChartOptions& options);

/// The document of `detect`.
Json DescribeReading(const ChartOptions& options, const tonewright::ChartReading& reading,
                     const std::vector<tonewright::Finding>& findings);
