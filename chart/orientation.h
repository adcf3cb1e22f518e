#pragma once

#include "chart/PatchDetector.h"

namespace tonewright {

// How a chart lies in a picture is told from the place of its brightest patch, taken for the white one. Charts of
// 6 x 4 and 4 x 6 alone are turned; of both shapes the same three places count, deliberately (C37).

/// Whether the patches of such a chart are ordered at all.
bool HasOrientation(const ChartSize& chart);

/// @param brightest place of the brightest patch, row by row as the chart lies in the picture
/// @return "rows reversed", "turned", "columns reversed" or "normal"; "none" for a chart that is not ordered
const char* GetOrientationName(const ChartSize& chart, int brightest);

/// Where the patches of a chart that is ordered lie; of any other the order is that of the picture.
/// @param index of a patch in the order that the calibration wants
/// @return its place in the picture, row by row
int GetPlaceInPicture(const ChartSize& chart, int brightest, int index);

}  // namespace tonewright
