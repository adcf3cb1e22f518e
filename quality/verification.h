#pragma once

#include <optional>
#include <string>
#include <vector>

#include "quality/CalibrationQuality.h"
#include "quality/chart_calibration.h"
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

/// Holds a calibration against a picture of the chart, as VerifyOn does.
/// @param isOfCoefficients it comes from a coefficient file, which tells neither targets nor depth
/// @param aim what the patches should be; nothing: what they should be for the calibration itself
/// @throw WorkFailure, also for a reading that is not in order and an aim that does not fit the chart
Verification Verify(const ChartReading& reading, const std::string& path, const CTivTonewrightDC& engine,
                    const CTivVector& transform, bool isOfCoefficients, const std::optional<CalibrationAim>& aim);

}  // namespace tonewright
