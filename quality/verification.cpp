#include "quality/verification.h"

#include <utility>

#include "calibration/calibrate_at_depth.h"
#include "calibration/fit_transform.h"

namespace tonewright {

Verification VerifyOn(const ChartReading& reading, const std::string& path, const CTivTonewrightDC& settings,
                      const CTivVector& transform, const std::vector<Xyz>& targets, bool isAbsolute) {
    const CTivVector& raw = reading.colors.colors;
    if (static_cast<int>(targets.size()) != raw.GetSize()) {
        throw WorkFailure(path + ": the chart has " + std::to_string(raw.GetSize()) + " patches, the calibration " +
                          std::to_string(targets.size()));
    }
    if (raw.GetFormat() != settings.GetCalibratedFormat()) {
        throw WorkFailure(path + ": the calibration was made for another depth of pixels");
    }
    Verification verification;
    verification.quality = JudgeDelivery(settings, transform, raw, targets, InPicture(reading));
    if (verification.quality.patches.empty()) throw WorkFailure(path + ": the calibration cannot be executed");
    MeasuredChart measured = reading.measured;
    if (isAbsolute) measured.targets = targets;
    verification.findings = FindInPicture(measured);
    if (auto singular = FindSingular(transform)) verification.findings.push_back(std::move(*singular));
    return verification;
}

namespace {

std::vector<Xyz> targetsOf(const CalibrationAim& aim, const CTivVector& raw, const std::string& path) {
    CTivTonewrightDC engine;
    Require([&] { return engine.SetRawColors(raw); }, path, "cannot take the raw colors");
    engine.SetXformSize(4);
    SetAim(engine, aim);
    Require([&] { return CalibrateAtDepth(engine); }, path, "the targets do not fit the chart");
    return ToXyz(GetTargets(engine));
}

}  // namespace

Verification Verify(const ChartReading& reading, const std::string& path, const CTivTonewrightDC& engine,
                    const CTivVector& transform, bool isOfCoefficients, const std::optional<CalibrationAim>& aim) {
    RequireOrder(reading, path);
    const CTivVector& raw = reading.colors.colors;
    const std::vector<Xyz> targets = aim ? targetsOf(*aim, raw, path) : ToXyz(GetTargets(engine));
    if (isOfCoefficients && raw.GetFormat() != CTivData::FormatRgb) {
        throw WorkFailure(
            path +
            ": a coefficient file does not say which depth it was made for, so it serves FormatRgb images "
            "only; use the parameter file");
    }
    const bool isAbsolute = aim ? !aim->reference : engine.GetCalibrationMode() == 0;
    return VerifyOn(reading, path, engine, transform, targets, isAbsolute);
}

}  // namespace tonewright
