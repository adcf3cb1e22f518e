#include "analysis/adaptive_threshold.h"

#include <algorithm>
#include <memory>
#include <span>

#include "analysis/histogram.h"
#include "analysis/stats.h"
#include "analysis/threshold.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "foundation/nur_vector.h"

using namespace tonewright;

namespace {

using D = CTivData;

struct FreeVector {
    void operator()(NurVector* vector) const { nur_vector_free(vector); }
};

struct ImageStats {
    float mean = 0, deviation = 0, min = 0, max = 0;
};

// The mean by the bins in order, in float32.
float meanOfBins(std::span<const D::Point> bins, float pixels) {
    float sum = 0;
    for (const D::Point& bin : bins) sum += static_cast<float>(bin.x) * static_cast<float>(bin.y);
    return sum / pixels;
}

// The step of the level from 0 to the number of bins. Bin t weighs t + 1 in the lower mean while the whole mean uses
// the bins' values, an empty side has the mean of full scale, and the answer is t + 1, all deliberately (C4).
float searchLevel(std::span<const D::Point> bins, float pixels, float mean, float fullScale) {
    float best = -1.0f;
    float weight = 0;
    float lowerMean = 0;
    float level = 0;
    for (std::size_t t = 0; t < bins.size(); ++t) {
        const auto step = static_cast<float>(t + 1);
        const float share = static_cast<float>(bins[t].y) / pixels;
        const float lower = weight + share;
        const float upper = 1.0f - lower;
        lowerMean = lower == 0 ? fullScale : (lowerMean * weight + step * share) / lower;
        const float upperMean = upper == 0 ? fullScale : std::max(0.0f, (mean - lowerMean * lower) / upper);
        const float distance = lowerMean - upperMean;
        const float variance = ((upper * lower) * distance) * distance;
        if (variance > best) {
            best = variance;
            level = step;
        }
        weight = lower;
    }
    return level;
}

int findFactorLevels(const NurImage* source, int method, float lowFactor, float highFactor, float& low, float& high) {
    if (method < kAdaptiveOffset || method > kAdaptiveDeviation)
        return nur_refuse("ctiv_adaptThresh: invalid method\n");
    ImageStats found;
    if (stats(source, {&found.mean, &found.deviation, &found.min, &found.max}) != 0) {
        return nur_refuse("ctiv_adaptThresh: failed calculating image stats\n");
    }
    const float spans[] = {1.0f, found.mean - found.min, found.max - found.mean, found.deviation};
    low = found.mean + lowFactor * spans[method];
    high = found.mean + highFactor * spans[method];
    return 0;
}

int findOtsu(const NurImage* source, float lowFactor, bool single, float& low) {
    if (!single) return nur_refuse("ctiv_adaptThresh: Only Single level supported for Histogram\n");
    if (lowFactor != 0) return nur_refuse("ctiv_adaptThresh: low Factor must be set to zero for Histogram\n");
    if (!findOtsuLevel(source, &low)) return nur_refuse("ctiv_adaptThresh: failed thresholding image\n");
    return 0;
}

}  // namespace

bool tonewright::findOtsuLevel(const NurImage* image, float* level) {
    if (!nur_is_type(image->format, {D::FormatByte, D::FormatShort, D::FormatUByte, D::FormatUShort})) return false;
    const bool isByte = D::GetFormatBits(image->format) == 8;
    const int binCount = isByte ? 256 : 65536;
    const int lowest = D::IsSigned(image->format) ? -binCount / 2 : 0;
    NurVector histogram;
    const std::unique_ptr<NurVector, FreeVector> guard(&histogram);
    if (histogramInt(image, &histogram, false, binCount, lowest, lowest + binCount - 1) != 0) return false;

    const std::span bins(static_cast<const D::Point*>(histogram.data), static_cast<std::size_t>(binCount));
    const auto pixels = static_cast<float>(std::int64_t{image->roi.width} * image->roi.height);
    float mean = 0;
    if (isByte) {
        mean = meanOfBins(bins, pixels);
    } else if (stats(image, {&mean}) != 0) {
        return false;
    }
    *level = searchLevel(bins, pixels, mean, static_cast<float>(binCount - 1)) + static_cast<float>(lowest);
    return true;
}

int ctiv_adaptThresh(const NurImage* source, NurImage* destination, float* low, float* high, int method,
                     float lowFactor, float highFactor, bool invert, bool single, bool binary) {
    if (D::IsColor(source->format)) return nur_refuse("adaptThresh: not supported for color images\n");
    if (!nur_is_type(source->format,
                     {D::FormatByte, D::FormatShort, D::FormatUByte, D::FormatUShort, D::FormatFloat})) {
        return nur_report(1, NUR_REPORT_TYPE, "adaptThresh", nur_display_name(source->format));
    }
    float lowLevel = 0;
    float highLevel = 0;
    const int refused = method == kAdaptiveOtsu
                            ? findOtsu(source, lowFactor, single, lowLevel)
                            : findFactorLevels(source, method, lowFactor, highFactor, lowLevel, highLevel);
    if (refused) return refused;
    if (single) highLevel = lowLevel;
    if (low) *low = lowLevel;
    if (high) *high = highLevel;
    if (thresh(source, destination, lowLevel, highLevel, invert, single, binary) != 0) {
        return nur_refuse("ctiv_adaptThresh: failed thresholding image\n");
    }
    return 0;
}
