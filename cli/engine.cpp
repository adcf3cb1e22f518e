#include "cli/engine.h"

#include "cli/arguments.h"
#include "cli/json_values.h"
#include "imagefile/CTivImageFileFormat.h"

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
