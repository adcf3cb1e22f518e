#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <set>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/calibration_files.h"
#include "calibration/execute_transform.h"
#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/engine.h"
#include "cli/progress.h"
#include "cli/side_by_side.h"
#include "cli/signals.h"
#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/bmp_strips.h"
#include "imagefile/picture_file.h"

using namespace tonewright;

namespace fs = std::filesystem;

namespace {

struct ApplyOptions {
    std::vector<std::string> inputs;
    std::string parameters;
    std::string coefficients;
    std::optional<float> gamma;
    std::string output;
    int jobs = CountProcessors();
    std::optional<std::string> extension;  ///< with its dot; none: .bmp for a folder, the name's own for a file
};

struct Job {
    std::string input;
    std::string output;
    std::string problem;  ///< why it must not be done, empty if nothing speaks against it
};

std::optional<std::string> parseType(const std::string& type) {
    for (const char* known : {"bmp", "tif", "zvk"}) {
        if (type == known) return "." + type;
    }
    return std::nullopt;
}

bool isFolder(const ApplyOptions& options) {
    std::error_code error;
    return options.inputs.size() > 1 || options.output.ends_with('/') || fs::is_directory(options.output, error);
}

/// @throw UsageFailure for a file name of no kind that images are corrected into
void checkOutput(const ApplyOptions& options) {
    std::error_code error;
    const int fileFormat = FindFileFormat(options.output);
    if (isFolder(options)) {
        if (fileFormat >= 0 && !options.output.ends_with('/') && !fs::is_directory(options.output, error)) {
            throw UsageFailure("--output: several images go into a folder, not into " + options.output);
        }
        return;
    }
    if (!IsCorrectedFormat(fileFormat)) {
        throw UsageFailure("--output: '" + options.output + "' is no folder and does not end in .bmp, .tif or .zvk");
    }
    if (options.extension && FindFileFormat(*options.extension) != fileFormat) {
        throw UsageFailure("--type " + options.extension->substr(1) + " does not fit --output " + options.output);
    }
}

/// Where each image goes. In a folder no input is written over, and no two images take the same name.
std::vector<Job> planJobs(const ApplyOptions& options) {
    if (!isFolder(options)) return {{options.inputs.front(), options.output, {}}};
    std::error_code error;
    std::set<fs::path> inputs, outputs;
    for (const std::string& input : options.inputs) inputs.insert(fs::weakly_canonical(input, error));
    std::vector<Job> jobs;
    for (const std::string& input : options.inputs) {
        const std::string name = fs::path(input).stem().native() + options.extension.value_or(".bmp");
        Job job{input, (fs::path(options.output) / name).native(), {}};
        const fs::path place = fs::weakly_canonical(job.output, error);
        if (inputs.contains(place)) {
            job.problem = job.output + " is one of the images to correct";
        } else if (!outputs.insert(place).second) {
            job.problem = job.output + " is the name of another image's output already";
        }
        jobs.push_back(std::move(job));
    }
    return jobs;
}

/// @param corrected of an earlier image; its memory serves again where the sizes agree
void correct(const CTivTonewrightDC& engine, const ApplyOptions& options, const Job& job, CTivImage& corrected) {
    if (!job.problem.empty()) throw WorkFailure(job.problem);
    const int fileFormat = FindFileFormat(job.output);
    const auto execute = [&](const CTivImage& source, CTivImage& destination) {
        return ExecuteTransform(engine, *engine.GetTransform(), source, destination);
    };
    if (fileFormat == ImageFileBmp && RewriteBitmap(job.input, job.output, execute)) return;
    const CTivImage image = LoadImage(job.input);
    const bool isDeep = image.GetFormat() == CTivData::FormatRgb10 || image.GetFormat() == CTivData::FormatRgb16;
    if (isDeep && !options.coefficients.empty()) {
        throw WorkFailure(job.input +
                          ": a coefficient file does not say which depth it was made for, so it serves "
                          "FormatRgb images only; use the parameter file");
    }
    const bool isAlike = corrected.GetWidth() == image.GetWidth() && corrected.GetHeight() == image.GetHeight() &&
                         corrected.GetFormat() == image.GetFormat();
    if (!isAlike) corrected.Free();
    Require([&] { return execute(image, corrected); }, job.input, "the correction failed");
    SaveImage(corrected, job.output, fileFormat);
}

std::string tryToCorrect(const CTivTonewrightDC& engine, const ApplyOptions& options, const Job& job,
                         CTivImage& corrected) {
    try {
        correct(engine, options, job, corrected);
        return {};
    } catch (const std::bad_alloc&) {
        return job.input + ": not enough memory";
    } catch (const std::exception& failure) {
        return failure.what();
    } catch (...) {
        return job.input + ": unknown error";
    }
}

/// Corrects the images side by side. @return each one's problem, empty where it is done
std::vector<std::string> correctAll(const CTivTonewrightDC& engine, const ApplyOptions& options,
                                    const std::vector<Job>& jobs) {
    std::vector<std::string> problems(jobs.size());
    std::vector<CTivImage> corrected(std::min(jobs.size(), static_cast<std::size_t>(options.jobs)));
    Progress progress(jobs.size(), true);
    SignalWatch::TakeRequests();
    const std::size_t begun = DoSideBySide(jobs.size(), options.jobs, [&](std::size_t i, std::size_t worker) {
        problems[i] = tryToCorrect(engine, options, jobs[i], corrected[worker]);
        progress.TellDone(jobs[i].input, [&] {
            if (!problems[i].empty()) Tell(problems[i]);
        });
    });
    for (std::size_t i = begun; i < jobs.size(); ++i) problems[i] = jobs[i].input + ": not begun, since the call ended";
    return problems;
}

Outcome applyTo(const ApplyOptions& options) {
    checkOutput(options);
    CTivTonewrightDC engine;
    if (options.coefficients.empty()) {
        LoadParameters(engine, options.parameters);
    } else {
        if (options.gamma) engine.SetGamma(*options.gamma);
        LoadCoefficients(engine, options.coefficients);
    }
    if (isFolder(options)) {
        std::error_code error;
        fs::create_directories(options.output, error);
        if (!fs::is_directory(options.output, error)) throw WorkFailure(options.output + ": cannot make the folder");
    }
    const std::vector<Job> jobs = planJobs(options);
    const std::vector<std::string> problems = correctAll(engine, options, jobs);
    Outcome outcome{Json::array()};
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        const bool isDone = problems[i].empty();
        if (!isDone) outcome.status = kWorkFailed;
        outcome.document.push_back({{"input", jobs[i].input},
                                    {"output", jobs[i].output},
                                    {"ok", isDone},
                                    {"error", isDone ? Json() : Json(problems[i])}});
    }
    return outcome;
}

void check(const ApplyOptions& options) {
    if (options.parameters.empty() == options.coefficients.empty()) {
        throw UsageFailure("--parameters or --coefficients is needed, one of them");
    }
    if (options.gamma && options.coefficients.empty()) {
        throw UsageFailure("--gamma is for --coefficients; a parameter file has its own");
    }
}

}  // namespace

void AddApplyCommand(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "apply", "Corrects images with a calibration.");
    const auto options = std::make_shared<ApplyOptions>();
    command->add_option("INPUT", options->inputs, "The images to correct")->required();
    command->add_option("--parameters", options->parameters, "The calibration, for images of any depth")
        ->type_name("FILE.twkp");
    command->add_option("--coefficients", options->coefficients, "A transform, for 8-bit images")
        ->type_name("FILE.ccor");
    AddParsed(*command, "--gamma", options->gamma, ParseGamma, "a decimal above 0",
              "Gamma of the output with --coefficients (default: 0.45)")
        ->type_name("G");
    command->add_option("--output", options->output, "The file to write (.bmp, .tif, .zvk), or a folder")
        ->required()
        ->type_name("FILE|FOLDER");
    AddParsed(*command, "--type", options->extension, parseType, "bmp, tif or zvk",
              "What kind of files goes into a folder (default: bmp)")
        ->type_name("bmp|tif|zvk");
    AddJobsOption(*command, options->jobs, "images");
    command->callback([options, &work] {
        check(*options);
        work = [options] { return applyTo(*options); };
    });
}
