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

namespace {

ChartRoi defaultRoi(const CTivImage& image) {
    const int marginX = image.GetWidth() / 50;
    const int marginY = image.GetHeight() / 50;
    return {marginX, marginY, image.GetWidth() - marginX, image.GetHeight() - marginY};
}

std::string toText(const ChartRoi& roi) {
    return std::to_string(roi.left) + "," + std::to_string(roi.top) + "," + std::to_string(roi.right) + "," +
           std::to_string(roi.bottom);
}

/// Takes an image's region over, as the detection will. @throw WorkFailure for an empty one and one outside the image
void requireRoi(CTivImage& image, const std::string& path, const ChartRoi& roi) {
    const std::int64_t width = std::int64_t{roi.right} - roi.left;
    const std::int64_t height = std::int64_t{roi.bottom} - roi.top;
    if (width < 1 || height < 1) throw WorkFailure(path + ": the ROI " + toText(roi) + " is empty");
    const bool isInside =
        roi.left >= 0 && roi.top >= 0 && roi.right <= image.GetWidth() && roi.bottom <= image.GetHeight();
    if (isInside) return;
    throw WorkFailure("CTivImage::SetRoi => ROI rectangle out of range\n" + path + ": the ROI " + toText(roi) +
                      " leaves the image of " + std::to_string(image.GetWidth()) + " x " +
                      std::to_string(image.GetHeight()) + " pixels");
}

/// A list of {"center", "corners", "mean", "deviation", "clipped"}. The sampling area is the inner half of a patch.
Json describePatches(const ChartReading& reading) {
    Json list = Json::array();
    const double halfWidth = reading.detector.GetPatchWidth(), halfHeight = reading.detector.GetPatchHeight();
    for (std::size_t i = 0; i < reading.measured.patches.size(); ++i) {
        const PatchMeasurement& patch = reading.measured.patches[i];
        const auto [x, y] = reading.measured.places[i];
        list.push_back({{"center", {x, y}},
                        {"corners",
                         {{x - halfWidth, y - halfHeight},
                          {x + halfWidth, y - halfHeight},
                          {x + halfWidth, y + halfHeight},
                          {x - halfWidth, y + halfHeight}}},
                        {"mean", patch.mean},
                        {"deviation", patch.deviation},
                        {"clipped", patch.clipped}});
    }
    return list;
}

/// The straight grid inside the ROI.
void readGrid(ChartReading& reading, const std::string& path, const ChartSize& chart) {
    Require([&] { return reading.detector.DetectPatches(reading.image, reading.roi, chart); }, path,
            "no patch of a chart found");
    Require(
        [&] {
            reading.colors = reading.detector.GetRawColors(reading.image, reading.roi, chart, PatchDepth::AsImage);
            return reading.colors.measured;
        },
        path, "cannot measure the colors");
    reading.image.SetRoi({});
    reading.measured = MeasureGrid(reading.image, reading.detector, chart, reading.colors.brightest);
}

}  // namespace

void AddChartOptions(CLI::App& command, ChartOptions& options) {
    command.add_option("IMAGE", options.image, "The picture of the chart")->required();
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

ChartReading ReadChart(const std::string& path, const std::optional<ChartRoi>& roi, const ChartOptions& options) {
    return ReadChart(LoadImage(path), path, roi, options);
}

ChartReading ReadChart(CTivImage image, const std::string& path, const std::optional<ChartRoi>& roi,
                       const ChartOptions& options) {
    ChartReading reading;
    reading.image = std::move(image);
    const ChartRoi whole = {0, 0, reading.image.GetWidth(), reading.image.GetHeight()};
    reading.roi = roi.value_or(options.isFind ? whole : defaultRoi(reading.image));
    requireRoi(reading.image, path, reading.roi);
    if (options.isFind) {
        FindChart(reading, path, reading.roi, options);
    } else {
        readGrid(reading, path, options.GetSize());
        if (options.HasLayout()) reading.measured.targets.clear();  // those are the 24-patch chart's
    }
    if (reading.colors.saturated) Tell(std::string(kSaturatedTitle) + ": " + path + ": " + kSaturatedText);
    return reading;
}

void RequireOrder(const ChartReading& reading, const std::string& path) {
    if (reading.found && !reading.found->isOriented) throw WorkFailure(path + ": " + reading.found->text);
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
            {"patches", describePatches(reading)},
            {"findings", Describe(findings)}};
}
