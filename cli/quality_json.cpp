#include "cli/quality_json.h"

#include <algorithm>

#include "chart/patch_names.h"

using namespace tonewright;

namespace {

Json describe(const DifferenceSummary& summary) {
    return {{"mean", summary.mean}, {"median", summary.median}, {"max", summary.max}, {"patches", summary.patches}};
}

}  // namespace

Json Describe(const ChartDifferences& differences) {
    return {{"deltaE00", describe(differences.deltaE00)}, {"deltaE76", describe(differences.deltaE76)}};
}

Json Describe(const CalibrationQuality& quality) {
    Json candidates = Json::array(), noise = Json::array();
    for (const TermsFigures& candidate : quality.candidates) {
        candidates.push_back({{"terms", candidate.terms},
                              {"fitted", candidate.fitted},
                              {"delivered", candidate.delivered},
                              {"unseen", candidate.unseen}});
    }
    for (const PatchNoise& patch : quality.noise) noise.push_back({{"before", patch.before}, {"after", patch.after}});
    Json document = Describe(quality.fitted);
    document["before"] = Describe(quality.before);
    document["delivered"] = Describe(quality.delivered);
    document["picture"] = Describe(quality.picture.delivered);
    document["unseen"] = Describe(quality.unseen);
    document["candidates"] = std::move(candidates);
    document["white"] = quality.whiteChroma;
    document["noise"] = std::move(noise);
    return document;
}

Json Describe(const std::vector<Finding>& findings) {
    Json list = Json::array();
    for (const Finding& finding : findings) {
        list.push_back({{"code", finding.code},
                        {"severity", GetSeverityName(finding.severity)},
                        {"text", finding.text},
                        {"patches", finding.patches}});
    }
    return list;
}

void TellFindings(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        if (finding.severity == Severity::Note) continue;
        TellOfFile(std::string(GetSeverityName(finding.severity)) + ": " + finding.text);
    }
}

std::string PatchWord(std::size_t index, std::size_t count) {
    const std::string number = std::to_string(index + 1);
    return count == kPatchNames.size() ? number + " " + kPatchNames[index] : number;
}

bool HasWarning(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity != Severity::Note; });
}
