#include "cli/chart_finding.h"

#include "cli/json_values.h"
#include "cli/quality_json.h"

using namespace tonewright;

namespace {

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

}  // namespace

Json DescribePatches(const ChartReading& reading) {
    Json list = Json::array();
    const std::vector<FoundPatch> places = PlacesOf(reading);
    for (std::size_t i = 0; i < reading.measured.patches.size(); ++i) {
        const PatchMeasurement& patch = reading.measured.patches[i];
        list.push_back({{"center", describe(places[i].center)},
                        {"corners", describe(places[i].corners)},
                        {"mean", patch.mean},
                        {"deviation", patch.deviation},
                        {"clipped", patch.clipped}});
    }
    return list;
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
    document["patches"] = DescribePatches(reading);
    document["colors"] = std::move(colors);
    document["saturated"] = reading.colors.saturated;
    document["findings"] = Describe(findings);
    return document;
}

Json DescribeNotFound(const std::string& path, const ChartNotFound& failure) {
    const FoundChart& chart = *failure.GetReading().found;
    Json document = describePicture(path, failure.GetReading());
    document["found"] = false;
    document["reason"] = {{"code", GetRefusalCode(chart.refusal)}, {"text", chart.text}, {"seen", chart.seen}};
    return document;
}
