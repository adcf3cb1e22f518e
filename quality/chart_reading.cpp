#include "quality/chart_reading.h"

#include "chart/ChartFinder.h"
#include "chart/patch_colors.h"
#include "quality/measured_chart.h"

namespace tonewright {

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
void requireRoi(const CTivImage& image, const std::string& path, const ChartRoi& roi) {
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

/// The chart wherever it lies in the ROI.
void findChart(ChartReading& reading, const std::string& path, const ChartSearch& search) {
    const ChartLayout& layout = search.layout ? *search.layout : GetClassicLayout();
    reading.measured.chart = search.size;
    reading.found = ChartFinder(layout).Find(reading.image, reading.roi);
    if (!reading.found->found) throw ChartNotFound(path, std::move(reading));
    reading.measured = MeasureFound(reading.image, *reading.found, layout);
    reading.colors = ToPatchColors(reading.measured.patches, reading.measured.format);
    if (!reading.colors.measured) throw WorkFailure(path + ": cannot measure the colors");
}

}  // namespace

ChartNotFound::ChartNotFound(const std::string& path, ChartReading reading)
    : WorkFailure(path + ": " + reading.found->text),
      reading_(std::make_shared<const ChartReading>(std::move(reading))) {}

ChartReading ReadChart(CTivImage image, const std::string& path, const std::optional<ChartRoi>& roi,
                       const ChartSearch& search) {
    ChartReading reading;
    reading.image = std::move(image);
    const ChartRoi whole = {0, 0, reading.image.GetWidth(), reading.image.GetHeight()};
    reading.roi = roi.value_or(search.isFind ? whole : defaultRoi(reading.image));
    requireRoi(reading.image, path, reading.roi);
    if (search.isFind) {
        findChart(reading, path, search);
    } else {
        readGrid(reading, path, search.size);
    }
    if (search.layout) reading.measured.targets.clear();  // those are the 24-patch chart's
    return reading;
}

std::vector<FoundPatch> PlacesOf(const ChartReading& reading) {
    if (reading.found) return reading.found->patches;
    const double halfWidth = reading.detector.GetPatchWidth(), halfHeight = reading.detector.GetPatchHeight();
    std::vector<FoundPatch> places;
    for (const auto& [x, y] : reading.measured.places) {
        places.push_back({{x, y},
                          {{{x - halfWidth, y - halfHeight},
                            {x + halfWidth, y - halfHeight},
                            {x + halfWidth, y + halfHeight},
                            {x - halfWidth, y + halfHeight}}}});
    }
    return places;
}

void RequireOrder(const ChartReading& reading, const std::string& path) {
    if (reading.found && !reading.found->isOriented) throw WorkFailure(path + ": " + reading.found->text);
}

ChartInPicture InPicture(const ChartReading& reading) {
    return {&reading.image, reading.measured.areas, reading.measured.patches};
}

}  // namespace tonewright
