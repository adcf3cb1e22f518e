#include "quality/chart_calibration.h"

#include "calibration/calibrate_at_depth.h"
#include "calibration/fit_transform.h"

namespace tonewright {

namespace {

CTivData saturationValue(const std::vector<int>& value, CTivData::Format format) {
    if (format == CTivData::FormatRgb10) {
        return CTivData::Rgb10(static_cast<std::uint32_t>(value[0]), static_cast<std::uint32_t>(value[1]),
                               static_cast<std::uint32_t>(value[2]));
    }
    if (format == CTivData::FormatRgb16) {
        return CTivData::Rgb16(static_cast<std::uint16_t>(value[0]), static_cast<std::uint16_t>(value[1]),
                               static_cast<std::uint16_t>(value[2]));
    }
    return CTivData::Rgb(static_cast<std::uint8_t>(value[0]), static_cast<std::uint8_t>(value[1]),
                         static_cast<std::uint8_t>(value[2]));
}

void addFindings(std::vector<Finding>& findings, std::vector<Finding> more, const std::string& subject = {}) {
    for (Finding& finding : more) {
        finding.text.insert(0, subject);
        findings.push_back(std::move(finding));
    }
}

void calibrateAtDepth(CTivTonewrightDC& engine, const std::string& path) {
    Require([&] { return CalibrateAtDepth(engine); }, path, "the calibration failed");
}

/// Takes colors, targets and settings over and runs the operator's own calibration.
void prepare(ChartCalibration& calibration, ChartReading& reading, const std::string& path,
             const CalibrationSettings& settings, const CalibrationAim& aim) {
    CTivTonewrightDC& engine = calibration.engine;
    const CTivVector& raw = reading.colors.colors;
    Require([&] { return engine.SetRawColors(raw); }, path, "cannot take the raw colors");
    engine.SetXformSize(settings.terms == kAutomaticTerms ? 4 : settings.terms);
    engine.SetGamma(settings.gamma);
    SetAim(engine, aim);
    engine.SetSaturationMode(settings.saturation.mode);
    if (settings.saturation.mode == SaturationChoice::Manual) {
        const CTivData value = saturationValue(settings.saturation.value, raw.GetFormat());
        Require([&] { return engine.SetSaturationValueEx(value); }, path, "the saturation is not taken");
    }
    calibrateAtDepth(engine, path);
    if (!aim.reference) reading.measured.targets = ToXyz(GetTargets(engine));
    addFindings(calibration.findings, FindInPicture(reading.measured));
    if (aim.reference) addFindings(calibration.findings, FindInPicture(aim.reference->measured), "Reference: ");
}

/// Finds the transform in force, and judges it.
void fit(ChartCalibration& calibration, const ChartReading& reading, const std::string& path,
         const CalibrationSettings& settings) {
    CTivTonewrightDC& engine = calibration.engine;
    const auto judge = [&] {
        calibration.quality = JudgeCalibration(engine, calibration.transform, InPicture(reading), settings.method);
    };
    calibration.transform = *engine.GetTransform();
    if (settings.terms == kAutomaticTerms) {
        judge();
        engine.SetXformSize(ChooseTerms(calibration.quality.candidates));
        calibrateAtDepth(engine, path);
        calibration.transform = *engine.GetTransform();
    }
    if (settings.method == FitMethod::Perceptual) {
        if (const auto better = FitCalibration(engine, settings.method, engine.GetXformSize())) {
            calibration.transform = *better;
        }
    }
    judge();
    addFindings(calibration.findings, FindInCalibration(calibration.quality, calibration.transform));
}

}  // namespace

void SetAim(CTivTonewrightDC& engine, const CalibrationAim& aim) {
    engine.SetCalibrationMode(aim.reference ? 1 : 0);
    engine.SetIlluminant(aim.illuminant);
    if (aim.user) {
        const auto& [x, y, z] = aim.user->white;
        const std::array<float, 4> white = {x, y, z, 0.0f};
        Require([&] { return engine.SetSpectrumValues(aim.user->values) && engine.SetIlluminantValue(white); },
                aim.subject, "not taken");
    }
    if (aim.reference) {
        Require([&] { return engine.SetReferenceColors(aim.reference->colors.colors); }, aim.subject,
                "cannot take the reference");
    }
}

ChartCalibration CalibrateChart(ChartReading& reading, const std::string& path, const CalibrationSettings& settings,
                                const CalibrationAim& aim) {
    ChartCalibration calibration;
    prepare(calibration, reading, path, settings, aim);
    fit(calibration, reading, path, settings);
    return calibration;
}

}  // namespace tonewright
