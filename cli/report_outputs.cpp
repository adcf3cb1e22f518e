#include "cli/report_outputs.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "chart/PatchMeasurement.h"
#include "cli/arguments.h"
#include "foundation/version.h"
#include "report/corrections.h"
#include "report/cube_table.h"
#include "report/icc_profile.h"
#include "report/patch_tables.h"

namespace {

/// What an export is made of.
struct ExportSource {
    const CTivTonewrightDC& engine;
    const CTivVector& transform;
    const Report& report;
    std::string name;  ///< of the picture, without its folder
};

std::string today(const char* format) {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    char text[64] = {};
    if (localtime_r(&now, &local)) std::strftime(text, sizeof text, format, &local);
    return text;
}

std::string cube(const ExportSource& source) {
    return CubeTable(CodedCorrection(source.engine, source.transform), source.name);
}

std::string icc(const ExportSource& source) {
    const bool isLinear = source.transform.GetSize() == 3 * 4;
    const auto bytes = IccProfile(SeenColor(source.engine, source.transform), isLinear, "Tonewright: " + source.name);
    return {bytes.begin(), bytes.end()};
}

std::string cgats(const ExportSource& source) { return CgatsTable(source.report.patches, today("%Y-%m-%d %H:%M:%S")); }

std::string csv(const ExportSource& source) {
    return PatchCsv(source.report.patches, GetChannelFullScale(source.engine.GetRawColors()->GetFormat()));
}

struct Export {
    const char* extension;
    std::string (*make)(const ExportSource& source);
};
constexpr Export kExports[] = {{".cube", cube}, {".icc", icc}, {".ti3", cgats}, {".csv", csv}};

const Export* findExport(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto found = std::find_if(std::begin(kExports), std::end(kExports),
                                    [&](const Export& e) { return extension == e.extension; });
    return found == std::end(kExports) ? nullptr : found;
}

void writeText(OutputSet& outputs, const std::string& path, const std::string& text) {
    outputs.Add(path, [&](const std::string& name) {
        std::ofstream file(name, std::ios::binary);
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        file.close();
        if (!file) throw WorkFailure(name + ": cannot write the file");
    });
}

}  // namespace

void AddReportOption(CLI::App& command, ReportOptions& options) {
    command.add_option("--report", options.report, "Write a page that shows how good the calibration is")
        ->type_name("FILE.html");
}

void AddExportOption(CLI::App& command, ReportOptions& options) {
    command
        .add_option("--export", options.exports,
                    "Write a 3D table (.cube), an ICC input profile (.icc), CGATS data (.ti3) or the patches (.csv); "
                    "more than once")
        ->type_name("FILE")
        ->check([](const std::string& path) {
            return findExport(path) ? std::string()
                                    : "'" + path + "' is not a name that ends in .cube, .icc, .ti3 or .csv";
        })
        ->allow_extra_args(false);
}

PatchOutlines OutlinesOf(const ChartReading& reading) {
    if (reading.found) return OutlineFound(*reading.found);
    return OutlineGrid(reading.measured.places, reading.detector.GetPatchWidth(), reading.detector.GetPatchHeight());
}

void WriteReport(OutputSet& outputs, const ReportOptions& options, Report report, const CTivImage& picture) {
    if (options.report.empty()) return;
    if (report.patches.empty()) throw WorkFailure(options.report + ": there is nothing to report");
    const CTivImage shown = ReportPicture(picture);
    report.picture = &shown;
    report.settings.push_back({"Date", today("%Y-%m-%d %H:%M")});
    report.settings.push_back({"Made by", std::string("Tonewright ") + GetTonewrightVersion()});
    writeText(outputs, options.report, HtmlReport(report));
}

void WriteExports(OutputSet& outputs, const ReportOptions& options, const std::string& name,
                  const CTivTonewrightDC& engine, const CTivVector& transform, const Report& report) {
    for (const std::string& path : options.exports) {
        const std::string content = findExport(path)->make({engine, transform, report, name});
        if (content.empty()) throw WorkFailure(path + ": cannot be made of this calibration");
        writeText(outputs, path, content);
    }
}

void RequireDifferentPlaces(const std::vector<std::string>& paths) {
    std::vector<std::string> places;
    for (const std::string& path : paths) {
        if (path.empty()) continue;
        std::string place = OutputSet::PlaceOf(path);
        if (std::find(places.begin(), places.end(), place) != places.end()) {
            throw UsageFailure(path + " is to be written twice");
        }
        places.push_back(std::move(place));
    }
}
