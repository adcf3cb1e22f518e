#include "chart/SamplingArea.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "chart/orientation.h"
#include "foundation/nur_image.h"

namespace tonewright {

namespace {

bool isInside(const CTivImage& image, const PatchOverlay& area) {
    return area.width > 0 && area.height > 0 && area.x >= 0 && area.y >= 0 &&
           std::int64_t{area.x} + area.width <= image.GetWidth() &&
           std::int64_t{area.y} + area.height <= image.GetHeight();
}

std::int64_t pixelBytes(const CTivImage& image) { return CTivData::GetFormatBits(image.GetFormat()) / 8; }

const std::uint8_t* startOf(const CTivImage& image, const PixelRun& run) {
    return image.GetRecord()->Row(run.y) + run.x * pixelBytes(image);
}

SamplingArea rowsOf(const CTivRect& rectangle) {
    SamplingArea area;
    for (int y = 0; y < rectangle.height; ++y) area.push_back({rectangle.x, rectangle.y + y, rectangle.width});
    return area;
}

SamplingArea innerHalf(const CTivImage& image, const FoundPatch& patch) {
    std::array<ChartPoint, 4> inner;
    double top = image.GetHeight(), bottom = -1;
    for (std::size_t i = 0; i < 4; ++i) {
        inner[i] = {(patch.corners[i].x + patch.center.x) / 2, (patch.corners[i].y + patch.center.y) / 2};
        top = std::min(top, inner[i].y);
        bottom = std::max(bottom, inner[i].y);
    }
    SamplingArea area;
    const int first = std::max(0, static_cast<int>(std::ceil(top)));
    const int last = std::min(image.GetHeight() - 1, static_cast<int>(std::floor(bottom)));
    for (int y = first; y <= last; ++y) {
        double left = image.GetWidth(), right = -1;
        for (std::size_t i = 0; i < 4; ++i) {  // where the row crosses the outline
            const ChartPoint &a = inner[i], &b = inner[(i + 1) % 4];
            if ((a.y <= y) == (b.y <= y) && a.y != y && b.y != y) continue;
            const double x = a.y == b.y ? a.x : a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x);
            left = std::min(left, x);
            right = std::max(right, x);
        }
        const int from = std::max(0, static_cast<int>(std::ceil(left)));
        const int to = std::min(image.GetWidth() - 1, static_cast<int>(std::floor(right)));
        if (from <= to) area.push_back({from, y, to - from + 1});
    }
    return area;
}

}  // namespace

std::vector<SamplingArea> FindSamplingAreas(const CTivImage& image, const PatchDetector& detector,
                                            const ChartSize& chart, int brightest) {
    const auto& rectangles = detector.GetOverlay();
    const auto count = static_cast<std::size_t>(std::int64_t{chart.Width} * chart.Height);
    if (rectangles.size() != count) return {};
    std::vector<SamplingArea> inPicture;
    CTivRect measured{0, 0, image.GetWidth(), image.GetHeight()};
    for (const PatchOverlay& area : rectangles) {
        if (isInside(image, area)) measured = {area.x, area.y, area.width, area.height};
        inPicture.push_back(rowsOf(measured));
    }
    std::vector<SamplingArea> areas;
    for (int i = 0; i < static_cast<int>(count); ++i) {
        const int place = HasOrientation(chart) ? GetPlaceInPicture(chart, brightest, i) : i;
        areas.push_back(inPicture[static_cast<std::size_t>(place)]);
    }
    return areas;
}

std::vector<SamplingArea> FindSamplingAreas(const CTivImage& image, const FoundChart& chart) {
    std::vector<SamplingArea> areas;
    for (const FoundPatch& patch : chart.patches) areas.push_back(innerHalf(image, patch));
    return areas;
}

std::vector<PatchMeasurement> MeasureAreas(const CTivImage& image, const std::vector<SamplingArea>& areas) {
    std::vector<PatchMeasurement> patches;
    if (GetChannelFullScale(image.GetFormat()) == 0) return patches;
    for (const SamplingArea& area : areas) {
        PatchAccumulator patch(image.GetFormat());
        for (const PixelRun& run : area) patch.Add(startOf(image, run), static_cast<std::size_t>(run.count));
        patches.push_back(patch.Measure());
    }
    return patches;
}

int TakePixels(const CTivImage& image, const SamplingArea& area, std::vector<std::byte>& pixels) {
    pixels.clear();
    int count = 0;
    for (const PixelRun& run : area) {
        const auto* start = reinterpret_cast<const std::byte*>(startOf(image, run));
        pixels.insert(pixels.end(), start, start + run.count * pixelBytes(image));
        count += run.count;
    }
    return count;
}

}  // namespace tonewright
