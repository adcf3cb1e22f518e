#include "report/calibration_outputs.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <ctime>
#include <filesystem>

#include "chart/PatchMeasurement.h"
#include "foundation/version.h"
#include "report/corrections.h"
#include "report/cube_table.h"
#include "report/icc_profile.h"
#include "report/patch_tables.h"

namespace tonewright {

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
    bool isOfPatches;
};
constexpr Export kExports[] = {
    {".cube", cube, false}, {".icc", icc, false}, {".ti3", cgats, true}, {".csv", csv, true}};

const Export* findExport(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto found = std::find_if(std::begin(kExports), std::end(kExports),
                                    [&](const Export& e) { return extension == e.extension; });
    return found == std::end(kExports) ? nullptr : found;
}

}  // namespace

PatchOutlines OutlinesOf(const ChartReading& reading) {
    if (reading.found) return OutlineFound(*reading.found);
    return OutlineGrid(reading.measured.places, reading.detector.GetPatchWidth(), reading.detector.GetPatchHeight());
}

Report ReportOn(const ChartCalibration& calibration, const ChartReading& reading, FitMethod method,
                const std::string& picture, const std::string& reference) {
    const auto& [engine, transform, quality, findings] = calibration;
    Report report =
        ReportCalibration(quality, findings, engine.GetXformSize(), reading.measured.chart, OutlinesOf(reading));
    report.title = "Calibration of " + std::filesystem::path(picture).filename().string();
    report.settings = {{"Picture", picture}};
    if (!reference.empty()) report.settings.push_back({"Reference", reference});
    for (ReportRow& row : ReportSettings(engine, method == FitMethod::Perceptual)) {
        report.settings.push_back(std::move(row));
    }
    return report;
}

Report ReportOn(const Verification& verification, const ChartReading& reading, const std::string& picture) {
    Report report =
        ReportVerification(verification.quality, verification.findings, reading.measured.chart, OutlinesOf(reading));
    report.title = "Verification on " + std::filesystem::path(picture).filename().string();
    report.settings = {{"Picture", picture}};
    return report;
}

std::string MakeReportPage(Report report, const CTivImage& picture) {
    const CTivImage shown = ReportPicture(picture);
    report.picture = &shown;
    report.settings.push_back({"Date", today("%Y-%m-%d %H:%M")});
    report.settings.push_back({"Made by", std::string("Tonewright ") + GetTonewrightVersion()});
    return HtmlReport(report);
}

bool IsExportName(const std::string& path) { return findExport(path) != nullptr; }

bool IsExportOfPatches(const std::string& path) {
    const Export* const found = findExport(path);
    return found && found->isOfPatches;
}

std::string MakeExport(const std::string& path, const CTivTonewrightDC& engine, const CTivVector& transform,
                       const Report& report, const std::string& name) {
    return findExport(path)->make({engine, transform, report, name});
}

}  // namespace tonewright
