#include "cli/chart_reading.h"

#include <CLI/CLI.hpp>

#include "calibration/illuminants.h"
#include "chart/layout_file.h"
#include "chart/orientation.h"
#include "cli/arguments.h"
#include "cli/chart_finding.h"
#include "cli/json_values.h"
#include "cli/quality_json.h"
#include "foundation/whole_files.h"
#include "imagefile/picture_file.h"
#include "quality/measured_chart.h"

using namespace tonewright;

void AddChartOptions(CLI::App& command, ChartOptions& options) {
    AddParsed(command, "--roi", options.roi, ParseRoi, "four integers L,T,R,B",
              "Left, top, right, bottom of the chart in pixels, right and bottom exclusive (default: the image less a "
              "fiftieth at each side)")
        ->type_name("L,T,R,B");
    AddParsed(command, "--chart", options.chart, ParseChartSize, "columns x rows, each at least 1",
              "Patch columns and rows of the chart (default: 6x4)")
        ->type_name("WxH");
    command.add_flag("--find", options.isFind,
                     "Find the chart wherever it lies, turned, tilted or mirrored; with --roi inside it alone");
    command
        .add_option("--layout", options.layout, "How the chart is laid out, and its colors (default: the 6x4 chart)")
        ->type_name("FILE")
        ->excludes("--chart");
    command.add_flag("--strict", options.isStrict, "Fail, and write nothing, where a finding is a warning or an error");
}

void CheckChartOptions(const ChartOptions& options) {
    const ChartSize chart = options.chart.value_or(ChartSize{});
    if (options.isFind && (chart.Width != 6 || chart.Height != 4)) {
        throw UsageFailure("--find needs --layout for a chart of another size than 6x4");
    }
}

const ChartLayout& ChartOptions::GetLayout() const {
    if (!HasLayout()) return GetClassicLayout();
    if (!read_) {
        RequireText(layout);
        std::string reason;
        read_ = ReadChartLayout(layout, reason);
        if (!read_) throw WorkFailure(layout + ": " + reason);
    }
    return *read_;
}

ChartSize ChartOptions::GetSize() const {
    if (!HasLayout()) return chart.value_or(ChartSize{});
    return {GetLayout().columns, GetLayout().rows};
}

ChartSearch ChartOptions::GetSearch() const { return {GetSize(), isFind, HasLayout() ? &GetLayout() : nullptr}; }

ChartReading ReadChart(const std::string& path, const std::optional<ChartRoi>& roi, const ChartOptions& options) {
    return ReadChart(LoadImage(path), path, roi, options);
}

ChartReading ReadChart(CTivImage image, const std::string& path, const std::optional<ChartRoi>& roi,
                       const ChartOptions& options) {
    ChartReading reading = ReadChart(std::move(image), path, roi, options.GetSearch());
    if (reading.found && !reading.found->isOriented) Tell(path + ": " + reading.found->text);
    if (reading.colors.saturated) Tell("Warning: " + path + ": There are saturated colors (Red Roi)");
    return reading;
}

Json DescribeReading(const ChartOptions& options, const ChartReading& reading, const std::vector<Finding>& findings) {
    if (reading.found) return DescribeFound(options.image, reading, findings);
    const PatchDetector& detector = reading.detector;
    Json rows = Json::array(), columns = Json::array(), colors = Json::array();
    for (const auto& row : detector.GetGrid()) rows.push_back(ToNumber(row.front().y));
    for (const PatchCell& cell : detector.GetGrid().front()) columns.push_back(ToNumber(cell.x));
    for (int i = 0; i < reading.colors.colors.GetSize(); ++i)
        colors.push_back(ToJson(reading.colors.colors.GetData(i)));

    const ChartRoi& roi = reading.roi;
    const ChartSize& chart = reading.measured.chart;
    return {{"image", options.image},
            {"width", reading.image.GetWidth()},
            {"height", reading.image.GetHeight()},
            {"format", CTivData::GetFormatName(reading.image.GetFormat())},
            {"roi", {roi.left, roi.top, roi.right, roi.bottom}},
            {"chart", {chart.Width, chart.Height}},
            {"blobs", detector.GetBlobCount()},
            {"patch", {detector.GetPatchWidth(), detector.GetPatchHeight()}},
            {"rows", rows},
            {"columns", columns},
            {"complete", detector.GetFoundRows() == chart.Height && detector.GetFoundColumns() == chart.Width},
            {"colors", colors},
            {"orientation", GetOrientationName(chart, reading.colors.brightest)},
            {"saturated", reading.colors.saturated},
            {"patches", DescribePatches(reading)},
            {"findings", Describe(findings)}};
}
