#include "report/html_report.h"

#include <algorithm>

#include "foundation/CTivImage.h"
#include "report/markup_impl.h"
#include "report/page_style_impl.h"
#include "report/plots.h"
#include "report/png_bytes_impl.h"
#include "report/report_words.h"

namespace tonewright {

namespace {

using markup::Base64;
using markup::CssColor;
using markup::Escaped;
using markup::Fixed;

const PlotColors kPageColors = {"var(--text)", "var(--soft)",   "var(--line)",
                                "var(--edge)", "var(--accent)", "var(--bad)"};
constexpr int kPictureSide = 900;  // pixels of the picture in the page

std::string heading(const std::string& words) { return "<h2>" + Escaped(words) + "</h2>\n"; }

std::string figure(const std::string& value, const std::string& words, bool isFirst = false) {
    return "<div class=\"figure" + std::string(isFirst ? " first" : "") + "\"><b>" + value + "</b><span>" +
           Escaped(words) + "</span></div>\n";
}

std::string headline(const Report& report) {
    const ReportPatch& worst = GetWorst(report);
    std::string page = "<h1>" + Escaped(report.title) + "</h1>\n<p class=\"soft\">" + Escaped(report.subtitle) +
                       "</p>\n<div class=\"figures\">\n" +
                       figure(Fixed(report.mean, 1), report_words::kDelivered, true) +
                       figure(Fixed(worst.difference, 1), report_words::kWorst + GetPatchName(worst));
    if (report.unseen) page += figure(Fixed(*report.unseen, 1), report_words::kUnseen);
    page += figure(Fixed(report.before, 1), report_words::kBefore) + "</div>\n";
    if (!report.inPicture.empty()) page += "<p>" + Escaped(report.inPicture) + ".</p>\n";
    if (!report.verdict.empty()) {
        page += "<ul class=\"findings\"><li class=\"" + std::string(report.hasPassed ? "note" : "error") +
                "\"><strong>" + (report.hasPassed ? "Passed" : "Not passed") + "</strong>: " + Escaped(report.verdict) +
                "</li></ul>\n";
    }
    return page + "<p class=\"soft\">" + Escaped(report_words::kScale) + "</p>\n";
}

std::string findings(const Report& report) {
    std::string page = heading(report_words::kFindings);
    if (report.findings.empty()) return page + "<p>" + report_words::WithoutFindings(report) + "</p>\n";
    page += "<ul class=\"findings\">\n";
    for (const Finding& finding : report.findings) {
        const std::string severity = GetSeverityName(finding.severity);
        std::string word = severity;
        word[0] = static_cast<char>(word[0] - 'a' + 'A');
        page += "<li class=\"";
        page += severity + "\"><strong>";
        page += word + "</strong>: " + Escaped(finding.text) + "</li>\n";
    }
    return page + "</ul>\n";
}

bool isOutlined(const ReportPatch& patch) { return !patch.outline.empty(); }

std::string polygon(const ReportPatch& patch, const std::string& style) {
    std::string points;
    for (const auto& corner : patch.outline) points += Fixed(corner[0], 1) + "," + Fixed(corner[1], 1) + " ";
    points.pop_back();
    return "<polygon class=\"" + style + "\" points=\"" + points + "\"/>";
}

std::string picture(const Report& report) {
    if (!report.picture) return {};
    const std::vector<std::uint8_t> bytes = PngBytes(*report.picture, kPictureSide);
    if (bytes.empty()) return {};
    const std::string width = std::to_string(report.picture->GetWidth());
    const std::string height = std::to_string(report.picture->GetHeight());
    const ReportPatch& worst = GetWorst(report);
    std::string page = heading(report_words::kPicture) + "<figure><svg class=\"chart\" viewBox=\"0 0 " + width + " " +
                       height +
                       "\" role=\"img\"><title>The picture with the outlines of the patches</title><image width=\"" +
                       width + "\" height=\"" + height + "\" href=\"data:image/png;base64," + Base64(bytes) + "\"/>";
    for (const ReportPatch& patch : report.patches) {
        if (isOutlined(patch)) page += polygon(patch, "shade") + polygon(patch, "");
    }
    if (isOutlined(worst)) page += polygon(worst, "worst");
    return page + "</svg><figcaption>" + report_words::kOutlines + Escaped(GetPatchName(worst)) +
           ".</figcaption></figure>\n";
}

std::string swatches(const Report& report) {
    const ReportPatch& worst = GetWorst(report);
    std::string page = heading(report_words::kPatches) + "<p class=\"soft\">" + Escaped(report_words::kSwatches) +
                       "</p>\n<ol class=\"patches\" "
                       "style=\"--columns:" +
                       std::to_string(report.columns) + "\">\n";
    for (const ReportPatch& patch : report.patches) {
        page += "<li" + std::string(&patch == &worst ? " class=\"worst\"" : "") + "><div class=\"swatch\">";
        for (const auto& color : {patch.color.measured, patch.color.target, patch.color.delivered}) {
            page += "<span style=\"background:" + CssColor(color) + "\"></span>";
        }
        page += "</div><p>" + Escaped(GetPatchName(patch)) + "<br><b>" + Fixed(patch.difference, 1) + "</b> (" +
                Fixed(patch.before, 1) + ")" + (&patch == &worst ? " worst" : "") + "</p></li>\n";
    }
    return page + "</ol>\n";
}

std::string plots(const Report& report) {
    std::string page = heading(report_words::kPlots) + "<div class=\"pair\">\n";
    for (const ReportPlot plot : kReportPlots) {
        const std::string drawn = DrawPlot(report, plot);
        if (!drawn.empty()) page += "<figure><h3>" + Escaped(GetPlotName(plot)) + "</h3>" + drawn + "</figure>\n";
    }
    return page + "</div>\n";
}

std::string candidates(const Report& report) {
    if (report.candidates.empty()) return {};
    std::string page =
        heading(report_words::kCandidates) + "<p class=\"soft\">" + Escaped(report_words::kTermsMean) +
        "</p>\n<div class=\"scroll\"><table>"
        "<thead><tr><th scope=\"col\">Terms</th><th scope=\"col\">Bare fit</th><th scope=\"col\">Delivered"
        "</th><th scope=\"col\">Patches left out</th></tr></thead><tbody>\n";
    for (const TermsFigures& candidate : report.candidates) {
        const bool isChosen = candidate.terms == report.terms;
        page += "<tr" + std::string(isChosen ? " class=\"chosen\"" : "") + "><td>" + std::to_string(candidate.terms) +
                (isChosen ? " (taken)" : "") + "</td><td>" + Fixed(candidate.fitted, 2) + "</td><td>" +
                Fixed(candidate.delivered, 2) + "</td><td>" + Fixed(candidate.unseen, 2) + "</td></tr>\n";
    }
    return page + "</tbody></table></div>\n";
}

std::string words(const Lab& value) {
    return Fixed(value[0], 1) + ", " + Fixed(value[1], 1) + ", " + Fixed(value[2], 1);
}

std::string numbers(const Report& report) {
    std::string page = heading(report_words::kNumbers) +
                       "<div class=\"scroll\"><table><thead><tr><th scope=\"col\">Patch</th><th scope=\"col\">Wanted "
                       "L*, a*, b*</th><th scope=\"col\">Delivered L*, a*, b*</th><th scope=\"col\">Difference</th>"
                       "<th scope=\"col\">Before</th></tr></thead><tbody>\n";
    for (const ReportPatch& patch : report.patches) {
        page += "<tr><td class=\"name\">" + Escaped(GetPatchName(patch)) + "</td><td>" + words(patch.color.targetLab) +
                "</td><td>" + words(patch.color.deliveredLab) + "</td><td>" + Fixed(patch.difference, 2) + "</td><td>" +
                Fixed(patch.before, 2) + "</td></tr>\n";
    }
    return page + "</tbody></table></div>\n";
}

std::string settings(const Report& report) {
    std::string page = heading(report_words::kSettings) + "<table class=\"settings\"><tbody>\n";
    for (const ReportRow& row : report.settings) {
        page += "<tr><td>" + Escaped(row.name) + "</td><td class=\"name\">" + Escaped(row.value) + "</td></tr>\n";
    }
    return page + "</tbody></table>\n";
}

}  // namespace

const ReportPatch& GetWorst(const Report& report) {
    return *std::max_element(report.patches.begin(), report.patches.end(),
                             [](const ReportPatch& a, const ReportPatch& b) { return a.difference < b.difference; });
}

std::string GetPatchName(const ReportPatch& patch) {
    return std::to_string(patch.number) + (patch.name.empty() ? "" : " " + patch.name);
}

std::string GetReportColor(const LinearRgb& linear) { return CssColor(linear); }

const char* GetPlotName(ReportPlot plot) {
    switch (plot) {
        case ReportPlot::Differences:
            return "Difference by patch";
        case ReportPlot::LabPlane:
            return "Where the colors go";
        case ReportPlot::Tone:
            return "Tone of the neutral patches";
        case ReportPlot::Noise:
            return "Noise before and after";
    }
    return "";
}

std::string DrawPlot(const Report& report, ReportPlot plot) {
    std::vector<PatchBar> bars;
    std::vector<LabArrow> arrows;
    std::vector<ToneStep> tones;
    std::vector<NoisePair> noise;
    for (const ReportPatch& patch : report.patches) {
        const std::string color = CssColor(patch.color.target);
        bars.push_back({patch.number, patch.name, color, patch.difference, patch.before});
        arrows.push_back({patch.number, color, patch.color.targetLab, patch.color.deliveredLab});
        if (patch.isNeutral) tones.push_back({patch.color.targetLab[0], patch.color.deliveredLab[0]});
        if (patch.noise) noise.push_back({patch.number, (*patch.noise)[0], (*patch.noise)[1]});
    }
    switch (plot) {
        case ReportPlot::Differences:
            return bars.empty() ? std::string() : DifferenceBars(bars);
        case ReportPlot::LabPlane:
            return arrows.empty() ? std::string() : LabPlane(arrows);
        case ReportPlot::Tone:
            return tones.empty() ? std::string() : ToneCurve(tones);
        case ReportPlot::Noise:
            return noise.empty() ? std::string() : NoiseBars(noise);
    }
    return {};
}

std::string HtmlReport(const Report& report) {
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<meta name=\"viewport\" "
           "content=\"width=device-width, initial-scale=1\">\n<title>" +
           Escaped(report.title) + "</title>\n<style>" + kPageStyle + PlotRules(kPageColors) +
           "</style>\n</head>\n<body>\n<main>\n" + headline(report) + findings(report) + picture(report) +
           swatches(report) + plots(report) + candidates(report) + numbers(report) + settings(report) +
           "</main>\n</body>\n</html>\n";
}

}  // namespace tonewright
