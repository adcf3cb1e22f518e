#include <CLI/CLI.hpp>
#include <cmath>

#include <memory>

#include "calibration/calibration_files.h"
#include "cli/command.h"
#include "cli/engine.h"
#include "cli/json_values.h"
#include "foundation/whole_files.h"
#include "imagefile/CTivImageReader.h"
#include "imagefile/file_kind.h"
#include "imagefile/picture_file.h"

using namespace tonewright;

namespace {

void addMetadata(Json& metadata, const char* name, ctiv::OptionalResult<double>& value) {
    if (value.IsPresent()) metadata[name] = std::isfinite(value.Get()) ? Json(value.Get()) : Json();
}

Json metadataOf(CTivImageReader& reader) {
    Json metadata = Json::object();
    addMetadata(metadata, "scaleX", reader.GetScaleX());
    addMetadata(metadata, "scaleY", reader.GetScaleY());
    addMetadata(metadata, "scaleZ", reader.GetScaleZ());
    addMetadata(metadata, "offsetX", reader.GetOffsetX());
    addMetadata(metadata, "offsetY", reader.GetOffsetY());
    addMetadata(metadata, "offsetZ", reader.GetOffsetZ());
    addMetadata(metadata, "invalidZ", reader.GetInvalidZ());
    if (reader.GetDistanceUnit().IsPresent()) metadata["distanceUnit"] = reader.GetDistanceUnit().Get();
    if (reader.GetUnitName().IsPresent()) {
        metadata["unitName"] = reader.GetUnitName().Get().c_str();  // a .crc file fills the name up with zeros
    }
    return metadata;
}

Json describeImage(const std::string& path, FileKind kind) {
    if (kind == FileKind::NativeImage) RequireWholeImage(path);
    CTivImageReader reader;
    CTivImage image;
    const auto load = [&] {
        try {
            return reader.SetDataSource(path) && image.LoadFrom(reader);
        } catch (const std::runtime_error& failure) {
            throw WorkFailure(path + ": CTivImage::Load => " + failure.what());
        }
    };
    Require(load, path, "cannot read the image");
    RequireKnownFormat(image, path);
    const CTivRect roi = image.GetRoi();
    return {{"format", FormatName(image.GetFormat())},
            {"width", image.GetWidth()},
            {"height", image.GetHeight()},
            {"roi", {roi.x, roi.y, roi.width, roi.height}},
            {"metadata", metadataOf(reader)}};
}

Json describeParameters(const std::string& path) {
    const auto [version, parameters] = ReadWholeParameters(path);
    const auto& rgb = parameters.saturationRgb;
    const auto& rgb16 = parameters.saturationRgb16;
    Json illuminantValue = Json::array();
    for (const float value : parameters.illuminantValue) illuminantValue.push_back(ToNumber(value));
    const bool hasRgb10 = version > kLastVersionWithoutRgb10;
    const bool hasRgb16 = version > kLastVersionWithoutRgb16;
    return {
        {"version", version},
        {"mode", parameters.mode},
        {"saturationMode", parameters.saturationMode},
        {"illuminant", parameters.illuminant},
        {"terms", parameters.terms},
        {"gamma", ToNumber(parameters.gamma)},
        {"illuminantValue", illuminantValue},
        {"saturationRgb", {rgb[2], rgb[1], rgb[0]}},
        {"saturationRgb10", hasRgb10 ? ToJson(CTivData(CTivData::FormatRgb10, parameters.saturationRgb10)) : Json()},
        {"saturationRgb16", hasRgb16 ? Json{rgb16[2], rgb16[1], rgb16[0]} : Json()},
        {"rawColors", ToJson(parameters.rawColors)},
        {"spectrumValues", ToJson(parameters.spectrumValues)},
        {"referenceColors", ToJson(parameters.referenceColors)}};
}

Json describeCoefficients(const std::string& path) {
    const auto [head, transform] = ReadWholeCoefficients(path);
    Json saturation;
    if (head.saturation) {
        for (const float fraction : *head.saturation) saturation.push_back(ToNumber(fraction));
    }
    return {{"version", head.version},
            {"terms", head.terms},
            {"transform", TransformRows(transform, head.terms)},
            {"saturation", saturation}};
}

Json describe(const std::string& path, FileKind kind) {
    switch (kind) {
        case FileKind::Unknown:
            OpenFile(path);
            throw WorkFailure(path + ": unknown kind of file");
        case FileKind::NativeVector:
            return ToJson(ReadWholeVector(path));
        case FileKind::Parameters:
            return describeParameters(path);
        case FileKind::Coefficients:
            return describeCoefficients(path);
        default:
            return describeImage(path, kind);
    }
}

/// One file's object. A file that fails has the reason in the place of what it holds.
Json describeFile(const std::string& path, int& status) {
    Json object = {{"file", path}, {"kind", nullptr}};
    std::string problem;
    try {
        const FileKind kind = FindKind(path);
        if (kind != FileKind::Unknown) object["kind"] = GetKindName(kind);
        object.update(describe(path, kind));
        return object;
    } catch (const std::bad_alloc&) {
        problem = path + ": not enough memory";
    } catch (const std::exception& failure) {
        problem = failure.what();
    }
    Tell(problem);
    status = kWorkFailed;
    object["error"] = problem;
    return object;
}

Outcome info(const std::vector<std::string>& files) {
    Outcome outcome{Json::array()};
    for (const std::string& file : files) outcome.document.push_back(describeFile(file, outcome.status));
    return outcome;
}

}  // namespace

void AddInfoCommand(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "info", "Says what files are and what they hold.");
    const auto files = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *files, "Images, native vectors, parameter and coefficient files")->required();
    command->callback([files, &work] { work = [files] { return info(*files); }; });
}
