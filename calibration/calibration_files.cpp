#include "calibration/calibration_files.h"

#include <algorithm>
#include <array>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/calibrate_at_depth.h"
#include "calibration/illuminants.h"
#include "foundation/library_texts.h"
#include "foundation/whole_files.h"

namespace tonewright {

namespace {

void requireTerms(const std::string& path, std::int32_t terms) {
    if (terms == 4 || terms == 7 || terms == 10) return;
    throw WorkFailure(path + ": the term count is " + std::to_string(terms) + ", not 4, 7 or 10");
}

std::uint8_t toLevel(float fraction) {
    return fraction > 0 ? static_cast<std::uint8_t>(std::min(fraction * 255.0f, 255.0f)) : std::uint8_t{0};
}

}  // namespace

ParameterFile ReadWholeParameters(const std::string& path) {
    std::ifstream file = OpenFile(path);
    RequireNoReason(path, CheckParameterLength(file));
    Rewind(file);
    ParameterFile result;
    Require([&] { return ReadParameters(file, result.parameters, result.version); }, path,
            "cannot read the parameters");
    requireTerms(path, result.parameters.terms);
    const std::int32_t illuminant = result.parameters.illuminant;
    if (!FindIlluminant(illuminant)) {
        throw WorkFailure(path + ": the illuminant is " + std::to_string(illuminant) + ", not " +
                          std::to_string(kCalibrationIlluminants.front().index) + " to " +
                          std::to_string(kCalibrationIlluminants.back().index));
    }
    return result;
}

CoefficientFile ReadWholeCoefficients(const std::string& path) {
    std::ifstream file = OpenFile(path);
    RequireNoReason(path, CheckCoefficientLength(file));
    Rewind(file);
    CoefficientFile result;
    Require([&] { return ReadCoefficients(file, result.head, result.transform); }, path,
            "cannot read the coefficients");
    requireTerms(path, result.head.terms);
    if (result.transform.GetFormat() != CTivData::FormatFloat || result.transform.GetSize() != 3 * result.head.terms) {
        throw WorkFailure(path + ": the transform is not one of 3 x " + std::to_string(result.head.terms) + " floats");
    }
    return result;
}

void LoadParameters(CTivTonewrightDC& engine, const std::string& path) {
    ReadWholeParameters(path);
    Require([&] { return engine.Load(path) && CalibrateAtDepth(engine); }, path, "cannot load the parameters");
}

void LoadCoefficients(CTivTonewrightDC& engine, const std::string& path) {
    const CoefficientFile file = ReadWholeCoefficients(path);
    Require([&] { return engine.LoadXForm(path); }, path, "cannot load the coefficients");
    // An operator without raw colors would put the file's saturation elsewhere, and leave at 0 what a file has none of.
    std::array<std::uint8_t, 3> levels = {255, 255, 255};
    if (file.head.saturation) std::ranges::transform(*file.head.saturation, levels.begin(), toLevel);
    engine.SetSaturationValueEx(CTivData::Rgb(levels[0], levels[1], levels[2]));
}

}  // namespace tonewright
