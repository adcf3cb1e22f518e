#include "cli/engine.h"

#include <algorithm>
#include <array>

#include "calibration/calibrate_at_depth.h"
#include "cli/arguments.h"
#include "cli/files.h"
#include "cli/json_values.h"
#include "cli/whole_files.h"
#include "imagefile/CTivImageFileFormat.h"

void LoadParameters(CTivTonewrightDC& engine, const std::string& path) {
    ReadWholeParameters(path);
    Require([&] { return engine.Load(path) && CalibrateAtDepth(engine); }, path, "cannot load the parameters");
}

namespace {

std::uint8_t toLevel(float fraction) {
    return fraction > 0 ? static_cast<std::uint8_t>(std::min(fraction * 255.0f, 255.0f)) : std::uint8_t{0};
}

}  // namespace

void LoadCoefficients(CTivTonewrightDC& engine, const std::string& path) {
    const CoefficientFile file = ReadWholeCoefficients(path);
    Require([&] { return engine.LoadXForm(path); }, path, "cannot load the coefficients");
    // An operator without raw colors would put the file's saturation elsewhere, and leave at 0 what a file has none of.
    std::array<std::uint8_t, 3> levels = {255, 255, 255};
    if (file.head.saturation) std::ranges::transform(*file.head.saturation, levels.begin(), toLevel);
    engine.SetSaturationValueEx(CTivData::Rgb(levels[0], levels[1], levels[2]));
}

Json TransformRows(const CTivVector& transform, int terms) {
    Json rows = Json::array();
    for (int row = 0; row < 3; ++row) {
        Json numbers = Json::array();
        for (int k = 0; k < terms; ++k) numbers.push_back(ToNumber(transform.GetData(row * terms + k).AsFloat()));
        rows.push_back(numbers);
    }
    return rows;
}

std::optional<float> ParseGamma(std::string_view text) {
    const auto gamma = ParseDecimal(text);
    return gamma && *gamma > 0 ? gamma : std::nullopt;
}

bool IsCorrectedFormat(int fileFormat) {
    return fileFormat == ImageFileNative || fileFormat == ImageFileTiff || fileFormat == ImageFileBmp;
}
