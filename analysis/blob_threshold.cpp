#include <algorithm>
#include <span>
#include <vector>

#include "analysis/adaptive_threshold.h"
#include "analysis/blob_impl.h"
#include "analysis/gray_element_impl.h"
#include "analysis/local_threshold.h"
#include "analysis/threshold.h"

using namespace tonewright;

namespace {

constexpr int kFullScale = 255;

int automaticGlobal(const NurImage& input, NurImage& output, BlobConfig& config) {
    const bool isOtsu = config.thresholdMethod == kAdaptiveOtsu;
    const bool single = isOtsu || config.levelCount == 1;
    float low = 0;
    float high = 0;
    const int failed =
        ctiv_adaptThresh(&input, &output, &low, &high, config.thresholdMethod, isOtsu ? 0 : config.lowFactor,
                         isOtsu ? 0 : config.highFactor, false, single, true);
    if (failed) return kBlobNotThresholded;
    config.thresholds[0] = toElement<std::int32_t>(low);
    config.levels[0] = 0;
    config.levels[1] = kFullScale;
    if (!single) {
        config.thresholds[1] = toElement<std::int32_t>(high);
        config.levels[2] = 0;
    }
    return kBlobDone;
}

int automaticLocal(const NurImage& input, NurImage& output, const BlobConfig& config) {
    const bool isTiles = config.thresholdMethod == kLocalTiles;
    const auto factor = [isTiles](float value) { return isTiles ? 0.0f : value; };
    const int failed = localAdaptThresh(&input, &output, config.windowWidth, config.windowHeight,
                                        config.thresholdMethod, factor(config.lowFactor), factor(config.highFactor),
                                        factor(config.windowFactor), false, isTiles || config.levelCount == 1, true);
    return failed ? kBlobNotThresholded : kBlobDone;
}

int fixedLocal(const NurImage& input, NurImage& output, const BlobConfig& config) {
    const int failed = threshImages(&input, &output, config.lowImage.GetRecord(), config.highImage.GetRecord(), false,
                                    config.levelCount == 1, true);
    return failed ? kBlobNotThresholded : kBlobDone;
}

// Patterns of levels that one call of thresh makes.
struct LevelPattern {
    int thresholds;
    std::uint8_t levels[3];
    int low;    // index of the threshold to compare with
    bool band;  // up to the second one, which is included
    bool invert;
};
constexpr LevelPattern kPatterns[] = {
    {1, {0, 255, 0}, 0, false, false},  {1, {255, 0, 0}, 0, false, true},  {2, {0, 255, 0}, 0, true, false},
    {2, {255, 0, 255}, 0, true, true},  {2, {0, 0, 255}, 1, false, false}, {2, {0, 255, 255}, 0, false, false},
    {2, {255, 255, 0}, 1, false, true}, {2, {255, 0, 0}, 0, false, true},
};

const LevelPattern* findPattern(const BlobConfig& config) {
    const auto matches = [&](const LevelPattern& pattern) {
        return pattern.thresholds == config.levelCount &&
               std::equal(pattern.levels, pattern.levels + pattern.thresholds + 1, config.levels.begin());
    };
    const auto found = std::find_if(std::begin(kPatterns), std::end(kPatterns), matches);
    return found == std::end(kPatterns) ? nullptr : found;
}

template <class T>
int mapLevels(const NurImage& input, NurImage& output, const BlobConfig& config) {
    constexpr std::int32_t values = std::numeric_limits<T>::max() + 1;
    const std::span thresholds(config.thresholds.data(), static_cast<std::size_t>(config.levelCount));
    for (const std::int32_t threshold : thresholds.first(thresholds.size() - 1)) {
        if (threshold >= values) return kBlobThresholdRange;
    }
    std::vector<std::uint8_t> table(values, config.levels[thresholds.size()]);
    std::int32_t begin = 0;
    for (std::size_t k = 0; k < thresholds.size(); ++k) {
        const std::int32_t end = std::clamp(thresholds[k], begin, values);
        std::fill(table.begin() + begin, table.begin() + end, config.levels[k]);
        begin = end;
    }
    for (int y = 0; y < input.roi.height; ++y) {
        const T* row = input.RoiRow<const T>(y);
        std::uint8_t* out = output.RoiRow(y);
        for (int x = 0; x < input.roi.width; ++x) out[x] = table[row[x]];
    }
    return kBlobDone;
}

int fixedGlobal(const NurImage& input, NurImage& output, BlobConfig& config) {
    if (config.levelCount < 1 || config.levelCount >= static_cast<int>(config.thresholds.size())) {
        return kBlobThresholdRange;
    }
    const auto count = static_cast<std::size_t>(config.levelCount);
    if (!std::is_sorted(config.thresholds.begin(), config.thresholds.begin() + config.levelCount)) {
        return kBlobThresholdOrder;
    }
    if (const LevelPattern* pattern = findPattern(config)) {
        const auto low = static_cast<float>(config.thresholds[static_cast<std::size_t>(pattern->low)]);
        const auto high = static_cast<float>(config.thresholds[1]);
        return thresh(&input, &output, low, high, pattern->invert, !pattern->band, true) ? kBlobNotThresholded
                                                                                         : kBlobDone;
    }
    const auto isBetween = [](std::uint8_t level) { return level != 0 && level != kFullScale; };
    config.multiLevel =
        count <= 2 || std::any_of(config.levels.begin(), config.levels.begin() + config.levelCount + 1, isBetween);
    return input.format == CTivData::FormatUShort ? mapLevels<std::uint16_t>(input, output, config)
                                                  : mapLevels<std::uint8_t>(input, output, config);
}

}  // namespace

int thresholdForBlobs(const NurImage& input, NurImage& output, BlobConfig& config) {
    config.multiLevel = 0;
    const bool isGlobal = config.thresholdScope == 0;
    const bool isFixed = config.thresholdSource == 0;
    if (isGlobal) return isFixed ? fixedGlobal(input, output, config) : automaticGlobal(input, output, config);
    return isFixed ? fixedLocal(input, output, config) : automaticLocal(input, output, config);
}
