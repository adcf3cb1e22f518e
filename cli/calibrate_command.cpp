#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <sstream>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/calibrate_at_depth.h"
#include "calibration/execute_transform.h"
#include "cli/arguments.h"
#include "cli/chart_reading.h"
#include "cli/command.h"
#include "cli/engine.h"
#include "cli/json_values.h"
#include "cli/output_set.h"
#include "cli/picture_list.h"
#include "cli/quality_json.h"
#include "cli/report_outputs.h"
#include "cli/target_options.h"
#include "foundation/fixed_text.h"
#include "imagefile/picture_file.h"
#include "quality/chart_calibration.h"

using namespace tonewright;

namespace {

struct CalibrateOptions {
    PictureList list;
    std::vector<std::string> types;  ///< extensions of what goes into the folder; none: the two files
    ChartOptions chart;
    TargetOptions target;
    CalibrationSettings settings;
    std::string coefficients;
    std::string parameters;
    std::string corrected;
    int correctedFormat = -1;
    ReportOptions report;
};

std::optional<int> parseTerms(const std::string& text) {
    if (text == "auto") return kAutomaticTerms;
    const auto terms = ParseInteger(text);
    return terms && (*terms == 4 || *terms == 7 || *terms == 10) ? terms : std::nullopt;
}

std::optional<FitMethod> parseMethod(const std::string& text) {
    if (text == "least-squares") return FitMethod::LeastSquares;
    return text == "perceptual" ? std::optional(FitMethod::Perceptual) : std::nullopt;
}

std::optional<SaturationChoice> parseSaturation(const std::string& text) {
    if (text == "auto") return SaturationChoice{};
    if (text == "none") return SaturationChoice{SaturationChoice::None, {}};
    auto value = ParseIntegers(text, 3);
    if (!value) return std::nullopt;
    for (const int channel : *value) {
        if (channel < 0 || channel > 0xFFFF) return std::nullopt;
    }
    return SaturationChoice{SaturationChoice::Manual, std::move(*value)};
}

int fullScale(CTivData::Format format) {
    if (format == CTivData::FormatRgb10) return 1023;
    return format == CTivData::FormatRgb16 ? 65535 : 255;
}

/// Loads the picture. A saturation above 255 is wrong unless the picture turns out to be that deep.
CTivImage loadPicture(const CalibrateOptions& options) {
    int highest = 0;
    for (const int channel : options.settings.saturation.value) highest = std::max(highest, channel);
    const auto requireScale = [&](int scale) {
        if (highest > scale) throw UsageFailure("--saturation: above " + std::to_string(scale));
    };
    try {
        CTivImage image = LoadImage(options.chart.image);
        requireScale(fullScale(image.GetFormat()));
        return image;
    } catch (const WorkFailure&) {
        requireScale(255);
        throw;
    }
}

void write(OutputSet& outputs, const ChartCalibration& calibration, const CalibrateOptions& options,
           const CTivImage& image) {
    const CTivTonewrightDC& engine = calibration.engine;
    const CTivVector& transform = calibration.transform;
    if (!options.coefficients.empty()) {
        outputs.Add(options.coefficients, [&](const std::string& name) {
            Require([&] { return SaveTransform(engine, transform, name, false); }, name,
                    "cannot write the coefficients");
        });
    }
    if (!options.parameters.empty()) {
        outputs.Add(options.parameters, [&](const std::string& name) {
            Require([&] { return engine.Save(name); }, name, "cannot write the parameters");
        });
    }
    if (!options.corrected.empty()) {
        CTivImage corrected;
        Require([&] { return ExecuteTransform(engine, transform, image, corrected); }, options.chart.image,
                "the correction failed");
        outputs.Add(options.corrected,
                    [&](const std::string& name) { SaveImage(corrected, name, options.correctedFormat); });
    }
}

void writeReports(OutputSet& outputs, const ChartCalibration& calibration, const CalibrateOptions& options,
                  const ChartReading& reading) {
    const Report report = ReportOn(calibration, reading, options.settings.method, options.chart.image,
                                   options.target.reference.value_or(""));
    WriteReport(outputs, options.report, report, reading.image);
    WriteExports(outputs, options.report, std::filesystem::path(options.chart.image).filename().string(),
                 calibration.engine, calibration.transform, report);
}

void describeFit(Json& document, const ChartCalibration& calibration, const CalibrateOptions& options) {
    const CTivTonewrightDC& engine = calibration.engine;
    const bool isRelative = options.target.reference.has_value();
    document["mode"] = isRelative ? "relative" : "absolute";
    document["illuminant"] = isRelative ? Json() : Json(options.target.GetIlluminant().word);
    document["terms"] = engine.GetXformSize();
    document["fit"] = options.settings.method == FitMethod::Perceptual ? "perceptual" : "least-squares";
    document["gamma"] = ToNumber(engine.GetGamma());
    document["saturation"] = ToJson(GetSaturationInForce(engine));
    document["transform"] = TransformRows(calibration.transform, engine.GetXformSize());
}

/// One line for a person: how good what is delivered is.
void tellDelivered(const CalibrationQuality& quality) {
    const DifferenceSummary& delivered = quality.delivered.deltaE00;
    if (delivered.patches.empty()) return;
    const auto worst = std::max_element(delivered.patches.begin(), delivered.patches.end());
    const auto index = static_cast<std::size_t>(worst - delivered.patches.begin());
    TellOfFile("delivered: mean " + FixedText(delivered.mean, 1) + ", worst " + FixedText(*worst, 1) + " (patch " +
               PatchWord(index, delivered.patches.size()) + ")");
    const std::string inPicture = TellPicture(quality.delivered, quality.picture);
    if (!inPicture.empty()) TellOfFile(inPicture);
}

Outcome calibrate(const CalibrateOptions& options) {
    ChartReading reading = ReadChart(loadPicture(options), options.chart.image, options.chart.roi, options.chart);
    RequireOrder(reading, options.chart.image);
    const CalibrationAim aim = ReadAim(options.target, options.chart, reading.colors.colors.GetSize());
    const ChartCalibration calibration = CalibrateChart(reading, options.chart.image, options.settings, aim);
    TellFindings(calibration.findings);
    tellDelivered(calibration.quality);
    Json document = DescribeReading(options.chart, reading, calibration.findings);
    describeFit(document, calibration, options);

    const auto outputs = std::make_shared<OutputSet>();
    const bool isRefused = options.chart.isStrict && HasWarning(calibration.findings);
    if (!isRefused) {
        write(*outputs, calibration, options, reading.image);
        writeReports(*outputs, calibration, options, reading);
    }
    document["written"] = outputs->GetPaths();
    document["quality"] = Describe(calibration.quality);
    return {document, isRefused ? kWorkFailed : kDone, outputs};
}

std::vector<std::string> getOutputs(const CalibrateOptions& options) {
    std::vector<std::string> outputs = {options.coefficients, options.parameters, options.corrected,
                                        options.report.report};
    outputs.insert(outputs.end(), options.report.exports.begin(), options.report.exports.end());
    return outputs;
}

std::vector<std::string> getInputs(const CalibrateOptions& options) {
    std::vector<std::string> inputs = options.list.pictures;
    inputs.insert(inputs.end(), {options.target.reference.value_or(""), options.target.values, options.chart.layout});
    return inputs;
}

/// What is written into a folder by its extension.
struct FolderType {
    const char* extension;
    void (*take)(CalibrateOptions& options, const std::string& path);
};
void takeCorrected(CalibrateOptions& options, const std::string& path) {
    options.corrected = path;
    options.correctedFormat = FindFileFormat(path);
}
void takeExport(CalibrateOptions& options, const std::string& path) { options.report.exports.push_back(path); }
constexpr FolderType kFolderTypes[] = {
    {"ccor", [](CalibrateOptions& options, const std::string& path) { options.coefficients = path; }},
    {"twkp", [](CalibrateOptions& options, const std::string& path) { options.parameters = path; }},
    {"html", [](CalibrateOptions& options, const std::string& path) { options.report.report = path; }},
    {"bmp", takeCorrected},
    {"tif", takeCorrected},
    {"zvk", takeCorrected},
    {"cube", takeExport},
    {"icc", takeExport},
    {"ti3", takeExport},
    {"csv", takeExport},
};

const FolderType* findFolderType(const std::string& extension) {
    const auto found = std::find_if(std::begin(kFolderTypes), std::end(kFolderTypes),
                                    [&](const FolderType& type) { return extension == type.extension; });
    return found == std::end(kFolderTypes) ? nullptr : found;
}

/// "ccor,html": none twice, and one kind of picture at most.
std::optional<std::vector<std::string>> parseTypes(const std::string& text) {
    std::vector<std::string> types;
    int pictures = 0;
    std::istringstream words(text + ",");
    for (std::string word; std::getline(words, word, ',');) {
        const FolderType* type = findFolderType(word);
        if (!type || std::ranges::count(types, word) != 0) return std::nullopt;
        pictures += type->take == takeCorrected;
        types.push_back(word);
    }
    return types.empty() || pictures > 1 ? std::nullopt : std::optional(types);
}

/// The options for one picture of many.
CalibrateOptions forPicture(const CalibrateOptions& options, const std::string& picture) {
    CalibrateOptions one = options;
    one.chart.image = picture;
    if (options.list.folder.empty()) return one;
    std::vector<std::string> types = options.types;
    if (types.empty()) types = {"ccor"};
    if (options.types.empty() && options.settings.method == FitMethod::LeastSquares) types.push_back("twkp");
    for (const std::string& type : types) {
        findFolderType(type)->take(one, PlaceFor(options.list.folder, picture, "." + type));
    }
    return one;
}

Outcome calibrateAll(const CalibrateOptions& options) {
    if (!options.list.IsMany()) return calibrate(forPicture(options, options.list.pictures.front()));
    options.chart.GetSize();  // reads the layout, once for all
    return WorkOnEach(options.list,
                      [&](const std::string& picture) { return calibrate(forPicture(options, picture)); });
}

void checkMany(const CalibrateOptions& options) {
    RequireNoSingleFile({{"--coefficients", options.coefficients},
                         {"--parameters", options.parameters},
                         {"--corrected", options.corrected},
                         {"--report", options.report.report},
                         {"--export", options.report.exports.empty() ? "" : options.report.exports.front()}},
                        "--output-folder and --write say what is written");
    if (options.settings.method == FitMethod::Perceptual && std::ranges::count(options.types, "twkp") != 0) {
        throw UsageFailure("--write twkp cannot carry a perceptual fit: loading the file fits by least squares");
    }
    RequireOwnPlaces(
        options.list, [&](const std::string& picture) { return getOutputs(forPicture(options, picture)); },
        getInputs(options));
}

/// What the single options cannot see of each other.
void check(const CalibrateOptions& options) {
    CheckChartOptions(options.chart);
    CheckTargetOptions(options.target);
    if (options.list.IsMany()) checkMany(options);
    if (!options.types.empty() && options.list.folder.empty()) throw UsageFailure("--write is for --output-folder");
    if (options.settings.method == FitMethod::Perceptual && !options.parameters.empty()) {
        throw UsageFailure("--parameters cannot carry a perceptual fit: loading the file fits by least squares");
    }
    if (!options.list.IsMany()) RequireDifferentPlaces(getOutputs(options), getInputs(options));
}

void addSettings(CLI::App& command, CalibrateOptions& options) {
    AddParsed(command, "--terms", options.settings.terms, parseTerms, "4, 7, 10 or auto",
              "Terms of the transform; auto takes what does best on patches left out (default: 4)")
        ->type_name("4|7|10|auto");
    AddParsed(command, "--fit", options.settings.method, parseMethod, "least-squares or perceptual",
              "Perceptual minimises the mean CIEDE2000 of what is delivered (default: least-squares)")
        ->type_name("least-squares|perceptual");
    AddParsed(command, "--gamma", options.settings.gamma, ParseGamma, "a decimal above 0",
              "Gamma of the output (default: 0.45)")
        ->type_name("G");
    AddParsed(command, "--saturation", options.settings.saturation, parseSaturation,
              "auto, none or three integers R,G,B from 0 to full scale",
              "From which raw value on a channel counts as saturated (default: auto)")
        ->type_name("auto|none|R,G,B");
    command.add_option("--coefficients", options.coefficients, "Write the transform, for a device")
        ->type_name("FILE.ccor");
    command.add_option("--parameters", options.parameters, "Write the whole calibration")->type_name("FILE.twkp");
    AddTextOption(
        command, "--corrected",
        [&options](const std::string& path) {
            options.corrected = path;
            options.correctedFormat = FindFileFormat(path);
            return IsCorrectedFormat(options.correctedFormat);
        },
        "a name that ends in .bmp, .tif or .zvk", "Write the corrected picture: .bmp, .tif or .zvk")
        ->type_name("FILE");
    AddReportOption(command, options.report);
    AddExportOption(command, options.report);
    AddParsed(command, "--write", options.types, parseTypes,
              "a list of ccor, twkp, html, cube, icc, ti3, csv and one of bmp, tif, zvk",
              "What goes into --output-folder for each picture, by its extension (default: ccor,twkp)")
        ->type_name("TYPE,...");
}

}  // namespace

void AddCalibrateCommand(CLI::App& tool, Work& work) {
    CLI::App* command =
        AddCommand(tool, "calibrate", "Finds a chart, fits the color transform to it, and writes what is asked for.");
    const auto options = std::make_shared<CalibrateOptions>();
    AddPictureOptions(*command, options->list, "what --write says");
    AddChartOptions(*command, options->chart);
    AddTargetOptions(*command, options->target, "A");
    addSettings(*command, *options);
    command->callback([options, &work] {
        check(*options);
        work = [options] { return calibrateAll(*options); };
    });
}
