#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "chart/patch_outline.h"
#include "quality/CalibrationQuality.h"
#include "quality/findings.h"

class CTivImage;

namespace tonewright {

/// A patch as the report shows it.
struct ReportPatch {
    int number = 0;        ///< from 1, in chart order
    std::string name;      ///< empty: without one
    PatchOutline outline;  ///< in the picture's pixels; empty: not outlined
    JudgedPatch color;
    double difference = 0;  ///< CIEDE2000 of delivered and target
    double before = 0;      ///< CIEDE2000 of measured and target
    bool isNeutral = false;
    std::optional<std::array<double, 2>> noise;  ///< deviation before and after, in 8-bit steps
};

struct ReportRow {
    std::string name;
    std::string value;
};

/// Everything that a report tells.
struct Report {
    std::string title;
    std::string subtitle;
    double mean = 0;               ///< delivered, CIEDE2000
    double before = 0;             ///< mean, CIEDE2000
    std::optional<double> unseen;  ///< mean, CIEDE2000
    std::string inPicture;         ///< what the corrected picture measures, where that is another figure
    std::string verdict;           ///< of a verification; empty: none
    bool hasPassed = true;         ///< with a verdict
    std::vector<Finding> findings;
    const CTivImage* picture = nullptr;  ///< FormatRgb; null: none is shown
    int columns = 6;                     ///< patches in a row of the chart
    std::vector<ReportPatch> patches;    ///< in chart order, at least one
    std::vector<TermsFigures> candidates;
    int terms = 0;  ///< the candidate that was taken
    std::vector<ReportRow> settings;
};

const ReportPatch& GetWorst(const Report& report);    ///< by what is delivered
std::string GetPatchName(const ReportPatch& patch);   ///< "18 Cyan", or the number alone
std::string GetReportColor(const LinearRgb& linear);  ///< "#rrggbb", coded for a screen

enum class ReportPlot { Differences, LabPlane, Tone, Noise };
inline constexpr std::array kReportPlots = {ReportPlot::Differences, ReportPlot::LabPlane, ReportPlot::Tone,
                                            ReportPlot::Noise};
const char* GetPlotName(ReportPlot plot);

/// One of the report's plots, as report/plots.h makes them. @return empty where the report has nothing for it
std::string DrawPlot(const Report& report, ReportPlot plot);

/// The report as one HTML page that needs nothing else: no script, no network, pictures inside. UTF-8.
std::string HtmlReport(const Report& report);

}  // namespace tonewright
