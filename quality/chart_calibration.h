#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "calibration/CTivTonewrightDC.h"
#include "quality/CalibrationQuality.h"
#include "quality/chart_reading.h"
#include "quality/findings.h"

namespace tonewright {

/// From which raw value on a channel counts as saturated.
struct SaturationChoice {
    enum Mode : int { Automatic = 0, Manual = 1, None = 2 };
    Mode mode = Automatic;
    std::vector<int> value;  ///< red, green, blue in the picture's words; manual only
};

/// The term count that does best on patches left out.
inline constexpr int kAutomaticTerms = 0;

struct CalibrationSettings {
    int terms = 4;  ///< 4, 7, 10 or kAutomaticTerms
    FitMethod method = FitMethod::LeastSquares;
    float gamma = 0.45f;
    SaturationChoice saturation;
};

/// What the patches of a chart should be.
struct CalibrationAim {
    /// A light of the user's own.
    struct UserLight {
        CTivVector values;           ///< XYZ of each patch, FormatColorFloat
        std::array<float, 3> white;  ///< XYZ of the white reference
    };

    std::int32_t illuminant = FindIlluminant("A")->index;  ///< as the Studio starts
    std::optional<UserLight> user;                         ///< with kUserIlluminant
    std::optional<ChartReading> reference;                 ///< its colors instead of an illuminant: relative mode
    std::string subject;                                   ///< names reference or values in the messages
};

/// Makes the operator aim there: mode, illuminant, the user's values, the reference's colors.
/// @throw WorkFailure where they are not taken
void SetAim(CTivTonewrightDC& engine, const CalibrationAim& aim);

/// A calibration, and all that is told of it.
struct ChartCalibration {
    CTivTonewrightDC engine;
    CTivVector transform;  ///< the one in force: the operator's, or a better one
    CalibrationQuality quality;
    std::vector<Finding> findings;  ///< of the picture, the reference and the fit
};

/// Fits the transform to the chart's colors, and judges it.
/// @param reading in order (RequireOrder); in absolute mode its targets become those of the calibration
/// @param path names the picture in the messages
/// @throw WorkFailure where colors and aim do not go together; const char* as CTivTonewrightDC::Calibrate does
ChartCalibration CalibrateChart(ChartReading& reading, const std::string& path, const CalibrationSettings& settings,
                                const CalibrationAim& aim);

}  // namespace tonewright
