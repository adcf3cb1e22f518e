#pragma once

#include <span>

#include "chart/PatchDetector.h"
#include "chart/PatchMeasurement.h"

namespace tonewright {

/// The colors of measured patches as a calibration takes them: means cut to integers, in the image's words. A mean at
/// full scale counts as saturated.
/// @param format FormatRgb, FormatRgb10 or FormatRgb16; of any other nothing is measured
PatchColors ToPatchColors(std::span<const PatchMeasurement> patches, CTivData::Format format);

}  // namespace tonewright
