#include "report/calibration_report.h"

#include <algorithm>

#include "calibration/illuminants.h"
#include "chart/patch_names.h"
#include "foundation/CTivImage.h"
#include "report/markup_impl.h"

namespace tonewright {

namespace {

bool isNamed(const ChartSize& chart) { return chart.Width == 6 && chart.Height == 4; }

Report reportPatches(const std::vector<JudgedPatch>& patches, const ChartDifferences& delivered,
                     const ChartDifferences& before, const std::vector<Finding>& findings, const ChartSize& chart,
                     const PatchOutlines& outlines) {
    Report report;
    report.mean = delivered.deltaE00.mean;
    report.before = before.deltaE00.mean;
    report.findings = findings;
    report.columns = chart.Width;
    for (std::size_t i = 0; i < patches.size(); ++i) {
        ReportPatch patch;
        patch.number = static_cast<int>(i) + 1;
        if (isNamed(chart) && i < kPatchNames.size()) patch.name = kPatchNames[i];
        if (i < outlines.size()) patch.outline = outlines[i];
        patch.color = patches[i];
        patch.difference = delivered.deltaE00.patches[i];
        patch.before = before.deltaE00.patches[i];
        report.patches.push_back(patch);
    }
    return report;
}

double meanOf(const std::array<double, 3>& channels) { return (channels[0] + channels[1] + channels[2]) / 3; }

}  // namespace

PatchOutlines OutlineGrid(const std::vector<std::array<double, 2>>& places, double width, double height) {
    PatchOutlines outlines;
    const double w = width / 2, h = height / 2;
    for (const auto& [x, y] : places)
        outlines.push_back({{x - w, y - h}, {x + w, y - h}, {x + w, y + h}, {x - w, y + h}});
    return outlines;
}

PatchOutlines OutlineFound(const FoundChart& found) {
    PatchOutlines outlines;
    for (const FoundPatch& patch : found.patches) {
        auto& outline = outlines.emplace_back();
        for (const ChartPoint& corner : patch.corners) {
            outline.push_back({(patch.center.x + corner.x) / 2, (patch.center.y + corner.y) / 2});
        }
    }
    return outlines;
}

Report ReportCalibration(const CalibrationQuality& quality, const std::vector<Finding>& findings, int terms,
                         const ChartSize& chart, const PatchOutlines& outlines) {
    Report report = reportPatches(quality.patches, quality.delivered, quality.before, findings, chart, outlines);
    report.inPicture = TellPicture(quality.delivered, quality.picture);
    if (!quality.unseen.deltaE00.patches.empty()) report.unseen = quality.unseen.deltaE00.mean;
    report.candidates = quality.candidates;
    report.terms = terms;
    for (const int number : quality.neutralPatches)
        report.patches.at(static_cast<std::size_t>(number - 1)).isNeutral = true;
    for (std::size_t i = 0; i < std::min(quality.noise.size(), report.patches.size()); ++i) {
        report.patches[i].noise = {{meanOf(quality.noise[i].before), meanOf(quality.noise[i].after)}};
    }
    return report;
}

Report ReportVerification(const VerifiedQuality& quality, const std::vector<Finding>& findings, const ChartSize& chart,
                          const PatchOutlines& outlines) {
    Report report = reportPatches(quality.patches, quality.delivered, quality.before, findings, chart, outlines);
    report.inPicture = TellPicture(quality.delivered, quality.picture);
    return report;
}

std::vector<ReportRow> ReportSettings(const CTivTonewrightDC& engine, bool isPerceptual) {
    constexpr const char* kSaturations[] = {"automatic", "manual", "none"};
    const bool isRelative = engine.GetCalibrationMode() == 1;
    const CalibrationIlluminant* illuminant = FindIlluminant(engine.GetIlluminant());
    const int saturation = engine.GetSaturationMode();
    std::vector<ReportRow> rows = {{"Mode", isRelative ? "relative, against a picture" : "absolute"}};
    if (!isRelative && illuminant) rows.push_back({"Illuminant", illuminant->label});
    rows.push_back({"Terms", std::to_string(engine.GetXformSize())});
    rows.push_back({"Fit", isPerceptual ? "perceptual" : "least squares"});
    rows.push_back({"Gamma", markup::Fixed(static_cast<double>(engine.GetGamma()), 2)});
    if (saturation >= 0 && saturation < 3) rows.push_back({"Saturation", kSaturations[saturation]});
    return rows;
}

CTivImage ReportPicture(const CTivImage& picture) {
    CTivImage shown;
    const CTivData::Format format = picture.GetFormat();
    if (format == CTivData::FormatRgb) return picture;
    if (format != CTivData::FormatRgb10 && format != CTivData::FormatRgb16) return shown;
    CTivImage whole = picture;
    constexpr int kByShifts = 2;
    if (!whole.SetRoi({}) || !shown.Set(picture.GetWidth(), picture.GetHeight(), CTivData::FormatRgb, nullptr, true) ||
        !shown.ConvertFormat(whole, kByShifts)) {
        shown.Free();
    }
    return shown;
}

}  // namespace tonewright
