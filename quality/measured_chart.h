#pragma once

#include "chart/ChartLayout.h"
#include "chart/FoundChart.h"
#include "chart/PatchDetector.h"
#include "foundation/CTivImage.h"
#include "quality/findings.h"

namespace tonewright {

/// Measures the grid that a detector found last.
/// @param brightest as the detector's PatchColors tells it
/// @return the targets of the 24-patch chart under D65, none for a chart of another number
MeasuredChart MeasureGrid(const CTivImage& image, const PatchDetector& detector, const ChartSize& chart, int brightest);

/// Measures a chart that was found. Without targets for a layout that is not the 24-patch chart's.
MeasuredChart MeasureFound(const CTivImage& image, const FoundChart& found, const ChartLayout& layout);

}  // namespace tonewright
