#pragma once

#include <string>
#include <vector>

#include "quality/CalibrationQuality.h"
#include "quality/chart_reading.h"

namespace tonewright {

/// A calibration held against another picture of the chart.
struct Verification {
    VerifiedQuality quality;
    std::vector<Finding> findings;  ///< of the picture, and of a transform that is none
};

/// @param reading in order (RequireOrder)
/// @param path names the picture in the messages
/// @param settings gamma, saturation and format of the correction
/// @param targets XYZ under D65, one a patch
/// @param isAbsolute they are the chart's under some light, and the picture itself is held against them as well
/// @throw WorkFailure where picture and calibration do not go together
Verification VerifyOn(const ChartReading& reading, const std::string& path, const CTivTonewrightDC& settings,
                      const CTivVector& transform, const std::vector<Xyz>& targets, bool isAbsolute);

}  // namespace tonewright
