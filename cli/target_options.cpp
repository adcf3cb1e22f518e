#include "cli/target_options.h"

#include <CLI/CLI.hpp>
#include <array>

#include "chart/CCSVParser.h"
#include "cli/arguments.h"
#include "foundation/whole_files.h"

using namespace tonewright;

namespace {

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

CalibrationAim::UserLight readUserLight(const TargetOptions& options, int count) {
    CTivVector values(count, CTivData::FormatColorFloat, nullptr, true);
    RequireText(options.values);
    try {
        CCSVParser parser;
        Require([&] { return parser.Read(options.values, values); }, options.values, "cannot read the values");
    } catch (const std::logic_error& failure) {  // a field that is no number
        throw WorkFailure(options.values + ": " + failure.what());
    }
    const std::vector<float>& white = *options.white;
    return {values, {white[0], white[1], white[2]}};
}

}  // namespace

void AddTargetOptions(CLI::App& command, TargetOptions& options, const std::string& otherwise) {
    CLI::Option* illuminant =
        AddParsed(command, "--illuminant", options.illuminant, parseIlluminant, illuminantWords(", ", " or "),
                  "The light on the chart (default: " + otherwise + ")")
            ->type_name(illuminantWords("|", "|"));
    command.add_option("--values", options.values, "The patches' XYZ under the user's light, a line a patch")
        ->type_name("FILE.csv");
    AddParsed(
        command, "--white", options.white, [](const std::string& text) { return ParseDecimals(text, 3); },
        "three decimals X,Y,Z", "The XYZ of the white reference under the user's light")
        ->type_name("X,Y,Z");
    CLI::Option* reference =
        command.add_option("--reference", options.reference, "Take this picture of the chart for what it should be")
            ->type_name("IMAGE")
            ->excludes(illuminant);
    AddParsed(command, "--reference-roi", options.referenceRoi, ParseRoi, "four integers L,T,R,B",
              "As --roi, for the reference")
        ->type_name("L,T,R,B")
        ->needs(reference);
}

void CheckTargetOptions(const TargetOptions& options) {
    const bool isUser = options.illuminant && options.illuminant->index == kUserIlluminant;
    if (isUser && options.values.empty()) throw UsageFailure("--illuminant user needs --values");
    if (isUser && !options.white) throw UsageFailure("--illuminant user needs --white");
    if (!isUser && !options.values.empty()) throw UsageFailure("--values is for --illuminant user alone");
    if (!isUser && options.white) throw UsageFailure("--white is for --illuminant user alone");
}

CalibrationAim ReadAim(const TargetOptions& options, const ChartOptions& chart, int count) {
    CalibrationAim aim;
    aim.illuminant = options.GetIlluminant().index;
    aim.subject = options.reference.value_or("--values");
    if (aim.illuminant == kUserIlluminant) aim.user = readUserLight(options, count);
    if (options.reference) {
        aim.reference = ReadChart(*options.reference, options.referenceRoi, chart);
        RequireOrder(*aim.reference, *options.reference);
    }
    return aim;
}
