#include <CLI/CLI.hpp>
#include <array>
#include <memory>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/illuminants.h"
#include "chart/CCSVParser.h"
#include "cli/arguments.h"
#include "cli/chart_reading.h"
#include "cli/command.h"
#include "cli/engine.h"
#include "cli/files.h"
#include "cli/json_values.h"
#include "cli/output_set.h"
#include "quality/fit_quality.h"

namespace {

enum SaturationMode : int { kAutomatic = 0, kManual = 1, kNone = 2 };

struct Saturation {
    SaturationMode mode = kAutomatic;
    std::vector<int> value;  ///< red, green, blue; manual only
};

struct CalibrateOptions {
    ChartOptions chart;
    CalibrationIlluminant illuminant = *FindIlluminant("A");
    std::string values;
    std::optional<std::vector<float>> white;
    std::optional<std::string> reference;
    std::optional<ChartRoi> referenceRoi;
    int terms = 4;
    float gamma = 0.45f;
    Saturation saturation;
    std::string coefficients;
    std::string parameters;
    std::string corrected;
    int correctedFormat = -1;
};

std::optional<CalibrationIlluminant> parseIlluminant(const std::string& word) {
    const CalibrationIlluminant* const illuminant = FindIlluminant(word);
    return illuminant ? std::optional(*illuminant) : std::nullopt;
}

/// The words of all illuminants, the user's last.
std::string illuminantWords(const std::string& separator, const std::string& lastSeparator) {
    std::string words;
    for (const CalibrationIlluminant& illuminant : kCalibrationIlluminants) {
        if (illuminant.index != kUserIlluminant) words += (words.empty() ? "" : separator) + illuminant.word;
    }
    return words + lastSeparator + FindIlluminant(kUserIlluminant)->word;
}

std::optional<int> parseTerms(const std::string& text) {
    const auto terms = ParseInteger(text);
    return terms && (*terms == 4 || *terms == 7 || *terms == 10) ? terms : std::nullopt;
}

std::optional<Saturation> parseSaturation(const std::string& text) {
    if (text == "auto") return Saturation{};
    if (text == "none") return Saturation{kNone, {}};
    auto value = ParseIntegers(text, 3);
    if (!value) return std::nullopt;
    for (const int channel : *value) {
        if (channel < 0 || channel > 0xFFFF) return std::nullopt;
    }
    return Saturation{kManual, std::move(*value)};
}

int fullScale(CTivData::Format format) {
    if (format == CTivData::FormatRgb10) return 1023;
    return format == CTivData::FormatRgb16 ? 65535 : 255;
}

/// Loads the picture. A saturation above 255 is wrong unless the picture turns out to be that deep.
CTivImage loadPicture(const CalibrateOptions& options) {
    int highest = 0;
    for (const int channel : options.saturation.value) highest = std::max(highest, channel);
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

void setUserIlluminant(CTivTonewrightDC& engine, const CalibrateOptions& options, int count) {
    CTivVector values(count, CTivData::FormatColorFloat, nullptr, true);
    RequireText(options.values);
    try {
        CCSVParser parser;
        Require([&] { return parser.Read(options.values, values); }, options.values, "cannot read the values");
    } catch (const std::logic_error& failure) {  // a field that is no number
        throw WorkFailure(options.values + ": " + failure.what());
    }
    const std::vector<float>& white = *options.white;
    const std::array<float, 4> value = {white[0], white[1], white[2], 0.0f};
    Require([&] { return engine.SetSpectrumValues(values) && engine.SetIlluminantValue(value); }, "--values",
            "not taken");
}

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

void fit(CTivTonewrightDC& engine, const CalibrateOptions& options, const ChartReading& reading) {
    const CTivVector& raw = reading.colors.colors;
    Require([&] { return engine.SetRawColors(raw); }, options.chart.image, "cannot take the raw colors");
    engine.SetXformSize(options.terms);
    engine.SetGamma(options.gamma);
    engine.SetCalibrationMode(options.reference ? 1 : 0);
    engine.SetIlluminant(options.illuminant.index);
    if (options.illuminant.index == kUserIlluminant) setUserIlluminant(engine, options, raw.GetSize());
    if (options.reference) {
        const ChartReading reference = ReadChart(*options.reference, options.referenceRoi, options.chart.chart);
        Require([&] { return engine.SetReferenceColors(reference.colors.colors); }, *options.reference,
                "cannot take the reference");
    }
    engine.SetSaturationMode(options.saturation.mode);
    if (options.saturation.mode == kManual) {
        const CTivData value = saturationValue(options.saturation.value, raw.GetFormat());
        Require([&] { return engine.SetSaturationValueEx(value); }, "--saturation", "not taken");
    }
    Require([&] { return Calibrate(engine); }, options.chart.image, "the calibration failed");
}

void write(OutputSet& outputs, CTivTonewrightDC& engine, const CalibrateOptions& options, CTivImage& image) {
    if (!options.coefficients.empty()) {
        outputs.Add(options.coefficients, [&](const std::string& name) {
            Require([&] { return engine.SaveXForm(name, false); }, name, "cannot write the coefficients");
        });
    }
    if (!options.parameters.empty()) {
        outputs.Add(options.parameters, [&](const std::string& name) {
            Require([&] { return engine.Save(name); }, name, "cannot write the parameters");
        });
    }
    if (!options.corrected.empty()) {
        CTivImage corrected;
        Require([&] { return engine.Execute(image, corrected); }, options.chart.image, "the correction failed");
        outputs.Add(options.corrected,
                    [&](const std::string& name) { SaveImage(corrected, name, options.correctedFormat); });
    }
}

Json describe(const DifferenceSummary& summary) {
    return {{"mean", summary.mean}, {"median", summary.median}, {"max", summary.max}, {"patches", summary.patches}};
}

Json describe(const ChartDifferences& differences) {
    return {{"deltaE00", describe(differences.deltaE00)}, {"deltaE76", describe(differences.deltaE76)}};
}

void describeFit(Json& document, const CTivTonewrightDC& engine, const CalibrateOptions& options) {
    document["mode"] = options.reference ? "relative" : "absolute";
    document["illuminant"] = options.reference ? Json() : Json(options.illuminant.word);
    document["terms"] = options.terms;
    document["gamma"] = ToNumber(engine.GetGamma());
    document["saturation"] = ToJson(GetSaturation(engine));
    document["transform"] = TransformRows(*engine.GetTransform(), options.terms);
}

Outcome calibrate(const CalibrateOptions& options) {
    ChartReading reading = ReadChart(loadPicture(options), options.chart.image, options.chart.roi, options.chart.chart);
    CTivTonewrightDC engine;
    fit(engine, options, reading);
    Json document = DescribeReading(options.chart, reading);
    describeFit(document, engine, options);
    const FitQuality quality = JudgeFit(engine);

    const auto outputs = std::make_shared<OutputSet>();
    write(*outputs, engine, options, reading.image);
    document["written"] = outputs->GetPaths();
    document["quality"] = describe(quality.fitted);
    document["quality"]["before"] = describe(quality.before);
    return {document, kDone, outputs};
}

/// What the single options cannot see of each other.
void check(const CalibrateOptions& options) {
    const bool isUser = options.illuminant.index == kUserIlluminant;
    if (isUser && options.values.empty()) throw UsageFailure("--illuminant user needs --values");
    if (isUser && !options.white) throw UsageFailure("--illuminant user needs --white");
    if (!isUser && !options.values.empty()) throw UsageFailure("--values is for --illuminant user alone");
    if (!isUser && options.white) throw UsageFailure("--white is for --illuminant user alone");
    const std::string* outputs[] = {&options.coefficients, &options.parameters, &options.corrected};
    for (int i = 0; i < 3; ++i) {
        const std::string& output = *outputs[i];
        if (!output.empty() && OutputSet::PlaceOf(output) == OutputSet::PlaceOf(*outputs[(i + 1) % 3])) {
            throw UsageFailure(output + " is to be written twice");
        }
    }
}

void addInputs(CLI::App& command, CalibrateOptions& options) {
    AddChartOptions(command, options.chart);
    CLI::Option* illuminant = AddParsed(command, "--illuminant", options.illuminant, parseIlluminant,
                                        illuminantWords(", ", " or "), "The light on the chart (default: A)")
                                  ->type_name(illuminantWords("|", "|"));
    command.add_option("--values", options.values, "The patches' XYZ under the user's light, a line a patch")
        ->type_name("FILE.csv");
    AddParsed(
        command, "--white", options.white, [](const std::string& text) { return ParseDecimals(text, 3); },
        "three decimals X,Y,Z", "The XYZ of the white reference under the user's light")
        ->type_name("X,Y,Z");
    CLI::Option* reference =
        command.add_option("--reference", options.reference, "Calibrate against this picture of the chart instead")
            ->type_name("IMAGE")
            ->excludes(illuminant);
    AddParsed(command, "--reference-roi", options.referenceRoi, ParseRoi, "four integers L,T,R,B",
              "As --roi, for the reference")
        ->type_name("L,T,R,B")
        ->needs(reference);
}

void addSettings(CLI::App& command, CalibrateOptions& options) {
    AddParsed(command, "--terms", options.terms, parseTerms, "4, 7 or 10", "Terms of the transform (default: 4)")
        ->type_name("4|7|10");
    AddParsed(command, "--gamma", options.gamma, ParseGamma, "a decimal above 0", "Gamma of the output (default: 0.45)")
        ->type_name("G");
    AddParsed(command, "--saturation", options.saturation, parseSaturation,
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
}

}  // namespace

void AddCalibrateCommand(CLI::App& tool, Work& work) {
    CLI::App* command =
        AddCommand(tool, "calibrate", "Finds a chart, fits the color transform to it, and writes what is asked for.");
    const auto options = std::make_shared<CalibrateOptions>();
    addInputs(*command, *options);
    addSettings(*command, *options);
    command->callback([options, &work] {
        check(*options);
        work = [options] { return calibrate(*options); };
    });
}
