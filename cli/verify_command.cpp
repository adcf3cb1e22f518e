#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/calibration_files.h"
#include "cli/arguments.h"
#include "cli/chart_reading.h"
#include "cli/command.h"
#include "cli/engine.h"
#include "cli/json_values.h"
#include "cli/picture_list.h"
#include "cli/quality_json.h"
#include "cli/report_outputs.h"
#include "cli/target_options.h"
#include "foundation/fixed_text.h"
#include "quality/verification.h"

using namespace tonewright;

namespace {

struct VerifyOptions {
    PictureList list;
    ChartOptions chart;
    std::string parameters;
    std::string coefficients;
    TargetOptions target;
    std::optional<float> maxMean;
    std::optional<float> maxPatch;
    ReportOptions report;
};

/// The calibration that is judged.
struct Subject {
    CTivTonewrightDC engine;
    CTivVector transform;
};

/// @return nothing for what is no decimal of 0 or above
std::optional<float> parseLimit(std::string_view text) {
    const auto limit = ParseDecimal(text);
    return limit && *limit >= 0 ? limit : std::nullopt;
}

Subject loadSubject(const VerifyOptions& options) {
    Subject subject;
    if (options.coefficients.empty()) {
        LoadParameters(subject.engine, options.parameters);
    } else {
        LoadCoefficients(subject.engine, options.coefficients);
    }
    subject.transform = *subject.engine.GetTransform();
    return subject;
}

/// Whether a difference keeps within its limit; what is no number does not.
bool isWithin(double difference, const std::optional<float>& limit) {
    return !limit || difference <= static_cast<double>(*limit);
}

/// Tells which limits are broken. @return whether none is
bool checkLimits(const VerifyOptions& options, const DifferenceSummary& delivered) {
    const bool isMeanKept = isWithin(delivered.mean, options.maxMean);
    if (!isMeanKept) {
        Tell(options.chart.image + ": the mean difference is " + FixedText(delivered.mean, 2) +
             ", above the limit of " + FixedText(static_cast<double>(*options.maxMean), 2));
    }
    bool isEachKept = true;
    for (std::size_t i = 0; i < delivered.patches.size(); ++i) {
        if (isWithin(delivered.patches[i], options.maxPatch)) continue;
        isEachKept = false;
        Tell(options.chart.image + ": patch " + PatchWord(i, delivered.patches.size()) + " differs by " +
             FixedText(delivered.patches[i], 2) + ", above the limit of " +
             FixedText(static_cast<double>(*options.maxPatch), 2));
    }
    return isMeanKept && isEachKept;
}

Json describeLimit(const std::optional<float>& limit) { return limit ? ToNumber(*limit) : Json(); }

std::string describeVerdict(const VerifyOptions& options) {
    std::string text;
    if (options.maxMean) text = "mean difference at most " + FixedText(static_cast<double>(*options.maxMean), 2);
    if (options.maxPatch) {
        text += std::string(text.empty() ? "" : ", ") + "each patch at most " +
                FixedText(static_cast<double>(*options.maxPatch), 2);
    }
    return text;
}

std::shared_ptr<OutputSet> writeReport(const VerifyOptions& options, const Subject& subject,
                                       const ChartReading& reading, const Verification& verification, bool isPassed) {
    auto outputs = std::make_shared<OutputSet>();
    Report report = ReportOn(verification, reading, options.chart.image);
    report.verdict = describeVerdict(options);
    report.hasPassed = isPassed;
    report.settings.push_back({"Calibration", options.parameters.empty() ? options.coefficients : options.parameters});
    report.settings.push_back({"Terms", std::to_string(subject.transform.GetSize() / 3)});
    WriteReport(*outputs, options.report, report, reading.image);
    return outputs;
}

Outcome verify(const VerifyOptions& options) {
    const Subject subject = loadSubject(options);
    const ChartReading reading = ReadChart(options.chart.image, options.chart.roi, options.chart);
    RequireOrder(reading, options.chart.image);
    std::optional<CalibrationAim> aim;  // by the command line, else by the parameter file
    if (options.parameters.empty() || options.target.IsGiven()) {
        aim = ReadAim(options.target, options.chart, reading.colors.colors.GetSize());
    }
    const Verification verification =
        Verify(reading, options.chart.image, subject.engine, subject.transform, options.parameters.empty(), aim);
    const auto& [quality, findings] = verification;

    TellFindings(findings);
    const bool isPassed = checkLimits(options, quality.delivered.deltaE00);
    Json document = DescribeReading(options.chart, reading, findings);
    document["delivered"] = Describe(quality.delivered);
    document["picture"] = Describe(quality.picture.delivered);
    document["before"] = Describe(quality.before);
    document["limits"] = {{"maxMean", describeLimit(options.maxMean)}, {"maxPatch", describeLimit(options.maxPatch)}};
    document["passed"] = isPassed;
    if (options.chart.isStrict && HasWarning(findings)) return {document, kWorkFailed};
    return {document, isPassed ? kDone : kLimitBroken, writeReport(options, subject, reading, verification, isPassed)};
}

/// The options for one picture of many. A calibration that is a folder holds a file of each picture's name.
VerifyOptions forPicture(const VerifyOptions& options, const std::string& picture) {
    VerifyOptions one = options;
    one.chart.image = picture;
    if (!options.list.IsMany()) return one;
    std::error_code error;
    for (const auto& [path, extension] : {std::pair(&one.parameters, ".twkp"), {&one.coefficients, ".ccor"}}) {
        if (std::filesystem::is_directory(*path, error)) *path = PlaceFor(*path, picture, extension);
    }
    if (!options.list.folder.empty()) one.report.report = PlaceFor(options.list.folder, picture, ".html");
    return one;
}

Outcome verifyAll(const VerifyOptions& options) {
    if (!options.list.IsMany()) return verify(forPicture(options, options.list.pictures.front()));
    options.chart.GetSize();  // reads the layout, once for all
    std::error_code error;
    const std::string& calibration = options.parameters.empty() ? options.coefficients : options.parameters;
    if (!std::filesystem::is_directory(calibration, error)) loadSubject(options);  // before any picture
    return WorkOnEach(options.list, [&](const std::string& picture) { return verify(forPicture(options, picture)); });
}

std::vector<std::string> getInputs(const VerifyOptions& options) {
    std::vector<std::string> inputs = options.list.pictures;
    inputs.insert(inputs.end(), {options.parameters, options.coefficients, options.target.reference.value_or(""),
                                 options.target.values, options.chart.layout});
    return inputs;
}

void checkMany(const VerifyOptions& options) {
    RequireNoSingleFile({{"--report", options.report.report}}, "--output-folder takes one of each");
    RequireOwnPlaces(
        options.list,
        [&](const std::string& picture) { return std::vector{forPicture(options, picture).report.report}; },
        getInputs(options));
}

void check(const VerifyOptions& options) {
    if (options.parameters.empty() == options.coefficients.empty()) {
        throw UsageFailure("--parameters or --coefficients is needed, one of them");
    }
    CheckChartOptions(options.chart);
    CheckTargetOptions(options.target);
    if (options.list.IsMany()) return checkMany(options);
    RequireDifferentPlaces({options.report.report}, getInputs(options));
}

}  // namespace

void AddVerifyCommand(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "verify", "Judges a calibration on another picture of the chart.");
    const auto options = std::make_shared<VerifyOptions>();
    AddPictureOptions(*command, options->list, "the page of --report");
    AddChartOptions(*command, options->chart);
    command
        ->add_option("--parameters", options->parameters,
                     "The calibration, for images of any depth; for many, or a folder of each one's")
        ->type_name("FILE.twkp");
    command
        ->add_option("--coefficients", options->coefficients,
                     "A transform, for 8-bit images; for many, or a folder of each one's")
        ->type_name("FILE.ccor");
    AddTargetOptions(*command, options->target, "that of the parameter file; A with --coefficients");
    AddParsed(*command, "--max-mean", options->maxMean, parseLimit, "a decimal of 0 or above",
              "The greatest mean CIEDE2000 that passes; above it the exit status is 3")
        ->type_name("X");
    AddParsed(*command, "--max-patch", options->maxPatch, parseLimit, "a decimal of 0 or above",
              "The greatest CIEDE2000 of a patch that passes; above it the exit status is 3")
        ->type_name("Y");
    AddReportOption(*command, options->report);
    command->callback([options, &work] {
        check(*options);
        work = [options] { return verifyAll(*options); };
    });
}
