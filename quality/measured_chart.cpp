#include "quality/measured_chart.h"

#include "calibration/illuminants.h"
#include "chart/ChartFinder.h"
#include "chart/orientation.h"

namespace tonewright {

namespace {

constexpr std::size_t kClassicPatches = 24;

std::vector<Xyz> defaultTargets() { return GetChartTargets(FindIlluminant("D65")->index); }

}  // namespace

MeasuredChart MeasureGrid(const CTivImage& image, const PatchDetector& detector, const ChartSize& chart,
                          int brightest) {
    MeasuredChart measured;
    measured.chart = chart;
    measured.format = image.GetFormat();
    measured.areas = FindSamplingAreas(image, detector, chart, brightest);
    measured.patches = MeasureAreas(image, measured.areas);
    measured.foundRows = detector.GetFoundRows();
    measured.foundColumns = detector.GetFoundColumns();
    if (measured.patches.size() == kClassicPatches) measured.targets = defaultTargets();
    for (int i = 0; i < static_cast<int>(measured.patches.size()); ++i) {
        const int place = HasOrientation(chart) ? GetPlaceInPicture(chart, brightest, i) : i;
        const PatchOverlay& area = detector.GetOverlay()[static_cast<std::size_t>(place)];
        measured.places.push_back({area.x + area.width / 2.0, area.y + area.height / 2.0});
    }
    return measured;
}

MeasuredChart MeasureFound(const CTivImage& image, const FoundChart& found, const ChartLayout& layout) {
    MeasuredChart measured;
    measured.chart = {layout.columns, layout.rows};
    measured.format = image.GetFormat();
    measured.areas = FindSamplingAreas(image, found);
    measured.patches = MeasureAreas(image, measured.areas);
    measured.foundRows = layout.rows;
    measured.foundColumns = layout.columns;
    if (&layout == &GetClassicLayout() || layout.names == GetClassicLayout().names) measured.targets = defaultTargets();
    for (const FoundPatch& patch : found.patches) measured.places.push_back({patch.center.x, patch.center.y});
    return measured;
}

}  // namespace tonewright
