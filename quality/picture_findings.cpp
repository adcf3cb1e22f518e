#include <algorithm>
#include <cmath>

#include "quality/finding_words_impl.h"
#include "quality/findings.h"

namespace tonewright {

namespace {

// Where a picture becomes one to speak of; fractions of full scale where nothing else is said.
constexpr double kClippedPixels = 0.01;  // of a patch's pixels
constexpr double kDarkWhite = 0.35;      // the white patch's greatest channel
constexpr double kNoisy = 0.05;          // a deviation that is much whatever the mean
constexpr double kNoisyOfMean = 0.25;    // of the mean: much for a dark patch ...
constexpr double kNoisyAtLeast = 0.02;   // ... from here on

/// The numbers of the patches that `isSo`.
template <class Test>
std::vector<int> patchesWhere(const MeasuredChart& chart, Test isSo) {
    std::vector<int> numbers;
    for (std::size_t i = 0; i < chart.patches.size(); ++i) {
        if (isSo(chart.patches[i])) numbers.push_back(static_cast<int>(i) + 1);
    }
    return numbers;
}

double greatest(const std::array<double, 3>& channels) { return *std::max_element(channels.begin(), channels.end()); }

}  // namespace

bool IsClipped(const PatchMeasurement& patch) { return patch.clipped > kClippedPixels; }

const char* GetSeverityName(Severity severity) {
    switch (severity) {
        case Severity::Note:
            return "note";
        case Severity::Warning:
            return "warning";
        default:
            return "error";
    }
}

std::optional<Finding> FindClipped(const MeasuredChart& chart) {
    std::vector<int> patches = patchesWhere(chart, IsClipped);
    if (patches.empty()) return std::nullopt;
    return Finding{"clipped", Severity::Warning,
                   PatchWords(patches) +
                       " at full scale in a channel, so that the true color is lost: shorten the exposure or "
                       "lower the gain until the white patch stays below full scale.",
                   std::move(patches)};
}

std::optional<Finding> FindDark(const MeasuredChart& chart) {
    const auto sum = [](const PatchMeasurement& patch) { return patch.mean[0] + patch.mean[1] + patch.mean[2]; };
    const auto white = std::max_element(chart.patches.begin(), chart.patches.end(),
                                        [&](const auto& a, const auto& b) { return sum(a) < sum(b); });
    if (white == chart.patches.end()) return std::nullopt;
    const double share = greatest(white->mean) / GetChannelFullScale(chart.format);
    if (share >= kDarkWhite) return std::nullopt;
    return Finding{"dark",
                   Severity::Warning,
                   "The white patch reaches " + Percent(share) +
                       " of full scale only, so that the dark patches are made of few levels: lengthen the exposure or "
                       "open the lens until it reaches 70 to 90 %.",
                   {static_cast<int>(white - chart.patches.begin()) + 1}};
}

std::optional<Finding> FindNoisy(const MeasuredChart& chart) {
    const double fullScale = GetChannelFullScale(chart.format);
    std::vector<int> patches = patchesWhere(chart, [fullScale](const PatchMeasurement& patch) {
        for (std::size_t i = 0; i < 3; ++i) {
            const double deviation = patch.deviation[i] / fullScale;
            if (deviation > kNoisy) return true;
            if (deviation > kNoisyAtLeast && patch.deviation[i] > kNoisyOfMean * patch.mean[i]) return true;
        }
        return false;
    });
    if (patches.empty()) return std::nullopt;
    return Finding{"noisy", Severity::Note,
                   "The pixels of " + PatchList(patches) +
                       " spread widely: more light, less gain or the average of several frames makes the means safer.",
                   std::move(patches)};
}

std::optional<Finding> FindMixed(const MeasuredChart& chart) {
    std::vector<int> patches = patchesWhere(chart, [](const PatchMeasurement& patch) { return patch.isMixed; });
    if (patches.empty()) return std::nullopt;
    return Finding{"mixed", Severity::Warning,
                   "The sampling area of " + PatchList(patches) +
                       " holds more than one color: the grid lies beside the patches, or a shadow or a highlight ends "
                       "there; draw the rectangle closer around the chart or change the light.",
                   std::move(patches)};
}

std::optional<Finding> FindIncomplete(const MeasuredChart& chart) {
    if (chart.foundRows == chart.chart.Height && chart.foundColumns == chart.chart.Width) return std::nullopt;
    return Finding{"incomplete",
                   Severity::Error,
                   "Patches were seen in " + std::to_string(chart.foundRows) + " of " +
                       std::to_string(chart.chart.Height) + " rows and " + std::to_string(chart.foundColumns) + " of " +
                       std::to_string(chart.chart.Width) +
                       " columns, so that some colors were measured beside the chart: draw the rectangle around the "
                       "patches alone, or light the chart more evenly.",
                   {}};
}

std::vector<Finding> FindInPicture(const MeasuredChart& chart) {
    std::vector<Finding> findings;
    const auto add = [&](std::optional<Finding> finding) {
        if (finding) findings.push_back(std::move(*finding));
    };
    const auto incomplete = FindIncomplete(chart);
    const auto misread = incomplete ? std::nullopt : FindMisread(chart);
    // Where it is not known which patch is which, none can be held against its target.
    const bool isRead = !incomplete && !misread;
    add(FindClipped(chart));
    add(FindDark(chart));
    if (isRead) add(FindUneven(chart));
    add(FindNoisy(chart));
    add(FindMixed(chart));
    add(incomplete);
    add(misread);
    if (isRead) add(FindCoded(chart));
    return findings;
}

}  // namespace tonewright
