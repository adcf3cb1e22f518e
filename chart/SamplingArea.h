#pragma once

#include <vector>

#include "chart/FoundChart.h"
#include "chart/PatchDetector.h"
#include "chart/PatchMeasurement.h"
#include "foundation/CTivImage.h"

namespace tonewright {

/// Pixels beside each other in a row of an image.
struct PixelRun {
    int x = 0;
    int y = 0;
    int count = 0;
};

/// The pixels that a patch is measured over: inside the image, from the top down.
using SamplingArea = std::vector<PixelRun>;

/// The sampling rectangles of the detector's last grid. One that leaves the image (of an incomplete grid) stands for
/// the one before it in the picture, the first for the whole image, since the detector measures these in its place.
/// @param brightest as PatchColors tells it
/// @return Width x Height areas in the order that the calibration wants; none for another grid
std::vector<SamplingArea> FindSamplingAreas(const CTivImage& image, const PatchDetector& detector,
                                            const ChartSize& chart, int brightest);
/// The inner half of each patch, in both directions: the pixels whose centres lie in it, as far as it lies inside.
std::vector<SamplingArea> FindSamplingAreas(const CTivImage& image, const FoundChart& chart);

/// @return one an area; none for an image of another format than FormatRgb, FormatRgb10, FormatRgb16
std::vector<PatchMeasurement> MeasureAreas(const CTivImage& image, const std::vector<SamplingArea>& areas);

/// The pixels of an area in one row, one run behind the other.
/// @param pixels receives them, and keeps its memory where that is large enough
/// @return how many
int TakePixels(const CTivImage& image, const SamplingArea& area, std::vector<std::byte>& pixels);

}  // namespace tonewright
