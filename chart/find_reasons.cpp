#include "chart/find_reasons_impl.h"

#include <algorithm>
#include <vector>

namespace tonewright {

namespace {

constexpr const char* kCornerNames[] = {"upper left", "upper right", "lower right", "lower left"};
constexpr int kFewFlatPatches = 4;

std::string outsideText(const FindTrace& trace) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < trace.outside.size(); ++i) {
        if (trace.outside[i]) names.emplace_back(kCornerNames[i]);
    }
    std::string text = "the ";
    for (std::size_t i = 0; i < names.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
    }
    text += names.size() == 1 ? " corner of the chart is" : " corners of the chart are";
    return text + (trace.isRoi ? " outside the ROI" : " outside the picture");
}

std::string seenText(int seen) {
    return std::to_string(seen) + (seen == 1 ? " patch of a grid was seen" : " patches of a grid were seen");
}

}  // namespace

FoundChart Refused(const FindTrace& trace) {
    FoundChart chart;
    chart.seen = trace.seen;
    const bool isCut = std::find(trace.outside.begin(), trace.outside.end(), true) != trace.outside.end();
    if (trace.seen == 0 && trace.flatPatches < kFewFlatPatches) {
        chart.refusal = FindRefusal::NoPatches;
        chart.text =
            "nothing in the " + std::string(trace.isRoi ? "ROI" : "picture") + " looks like a patch of a chart";
    } else if (trace.seen == 0) {
        chart.refusal = FindRefusal::NoGrid;
        chart.text = std::to_string(trace.flatPatches) + " places look like patches, but they form no grid";
    } else if (isCut) {
        chart.refusal = FindRefusal::TooFew;
        chart.text = seenText(trace.seen) + "; " + outsideText(trace);
    } else if (trace.lacksEdges) {
        chart.refusal = FindRefusal::TooFew;
        chart.text =
            seenText(trace.seen) + ", but too few of them have clear edges: the picture is too noisy or blurred";
    } else if (trace.seen < trace.needed) {
        chart.refusal = FindRefusal::TooFew;
        chart.text = seenText(trace.seen) + "; of the chart's " + std::to_string(trace.patches) + " at least " +
                     std::to_string(trace.needed) + " are needed";
    } else if (trace.isByShape) {
        chart.refusal = FindRefusal::NoGrid;
        chart.text = seenText(trace.seen) + ", but the grid is not just the layout's " + std::to_string(trace.patches);
    } else {
        chart.refusal = FindRefusal::NoOrientation;
        chart.text = seenText(trace.seen) + ", but " +
                     (trace.fitsTwice ? "the chart's colors fit them in more than one way"
                                      : "their colors are not those of the chart in any orientation");
    }
    return chart;
}

const char* GetRefusalCode(FindRefusal refusal) {
    switch (refusal) {
        case FindRefusal::TooFew:
            return "too-few";
        case FindRefusal::NoGrid:
            return "no-grid";
        case FindRefusal::NoOrientation:
            return "no-orientation";
        case FindRefusal::Several:
            return "several";
        default:
            return "no-patches";
    }
}

}  // namespace tonewright
