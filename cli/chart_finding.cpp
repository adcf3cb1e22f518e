#include "cli/chart_finding.h"

#include "calibration/illuminants.h"
#include "chart/ChartFinder.h"
#include "chart/patch_colors.h"
#include "cli/json_values.h"
#include "cli/quality_json.h"
#include "quality/measured_chart.h"

namespace {

const char* refusalCode(FindRefusal refusal) {
    switch (refusal) {
        case FindRefusal::TooFew:
            return "too-few";
        case FindRefusal::NoGrid:
            return "no-grid";
        case FindRefusal::NoOrientation:
            return "no-orientation";
        case FindRefusal::Several:
            return "several";
        default:
            return "no-patches";
    }
}

Json describe(const ChartPoint& point) { return {point.x, point.y}; }

Json describe(const std::array<ChartPoint, 4>& corners) {
    Json list = Json::array();
    for (const ChartPoint& corner : corners) list.push_back(describe(corner));
    return list;
}

Json describePicture(const std::string& path, const ChartReading& reading) {
    const ChartRoi& roi = reading.roi;
    const ChartSize& chart = reading.measured.chart;
    return {{"image", path},
            {"width", reading.image.GetWidth()},
            {"height", reading.image.GetHeight()},
            {"format", CTivData::GetFormatName(reading.image.GetFormat())},
            {"roi", {roi.left, roi.top, roi.right, roi.bottom}},
            {"chart", {chart.Width, chart.Height}}};
}

Json describePatches(const ChartReading& reading) {
    Json list = Json::array();
    for (std::size_t i = 0; i < reading.measured.patches.size(); ++i) {
        const PatchMeasurement& patch = reading.measured.patches[i];
        list.push_back({{"center", describe(reading.found->patches[i].center)},
                        {"corners", describe(reading.found->patches[i].corners)},
                        {"mean", patch.mean},
                        {"deviation", patch.deviation},
                        {"clipped", patch.clipped}});
    }
    return list;
}

}  // namespace

ChartNotFound::ChartNotFound(const std::string& path, const FoundChart& chart, Json document)
    : WorkFailure(path + ": " + chart.text), document_(std::move(document)) {
    document_["found"] = false;
    document_["reason"] = {{"code", refusalCode(chart.refusal)}, {"text", chart.text}, {"seen", chart.seen}};
}

void FindChart(ChartReading& reading, const std::string& path, const std::optional<ChartRoi>& roi,
               const ChartOptions& options) {
    const ChartLayout& layout = options.GetLayout();
    reading.measured.chart = options.GetSize();
    FoundChart found = ChartFinder(layout).Find(reading.image, roi);
    if (!found.found) throw ChartNotFound(path, found, describePicture(path, reading));
    if (!found.isOriented) Tell(path + ": " + found.text);
    MeasuredChart& measured = reading.measured;
    measured = MeasureFound(reading.image, found, layout);
    if (options.HasLayout()) measured.targets.clear();
    reading.colors = ToPatchColors(measured.patches, measured.format);
    if (!reading.colors.measured) throw WorkFailure(path + ": cannot measure the colors");
    reading.found = std::move(found);
}

Json DescribeFound(const std::string& path, const ChartReading& reading, const std::vector<Finding>& findings) {
    const FoundChart& found = *reading.found;
    Json colors = Json::array();
    for (int i = 0; i < reading.colors.colors.GetSize(); ++i)
        colors.push_back(ToJson(reading.colors.colors.GetData(i)));
    Json document = describePicture(path, reading);
    document["found"] = true;
    document["corners"] = describe(found.corners);
    document["rotation"] = found.rotation;
    document["mirrored"] = found.mirrored;
    document["confidence"] = found.confidence;
    if (!found.isOriented) document["oriented"] = false;
    document["patches"] = describePatches(reading);
    document["colors"] = std::move(colors);
    document["saturated"] = reading.colors.saturated;
    document["findings"] = Describe(findings);
    return document;
}
