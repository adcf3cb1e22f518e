#include "cli/engine.h"

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

void LoadCoefficients(CTivTonewrightDC& engine, const std::string& path) {
    ReadWholeCoefficients(path);
    Require([&] { return engine.LoadXForm(path); }, path, "cannot load the coefficients");
    if (engine.GetXformSize() != 4) return;
    throw WorkFailure(path +
                      ": a coefficient file of 4 terms carries no color twist for the fast path, so it cannot correct "
                      "images; use the parameter file");
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
