#include <algorithm>
#include <cmath>
#include <limits>

#include "analysis/blob_features_impl.h"

namespace {

struct GraySums {
    double v = 0, vv = 0, xv = 0, yv = 0;
    double count = 0;
    std::int32_t least = std::numeric_limits<std::int32_t>::max();
    std::int32_t most = 0;
};

/// @param pixelAt the value of pixel x of a row
template <class PixelAt>
void addRun(GraySums& sums, const BlobRun& run, PixelAt pixelAt) {
    double v = 0, xv = 0;
    for (std::int32_t x = run.firstX; x <= run.lastX; ++x) {
        const std::int32_t value = pixelAt(x);
        v += value;
        xv += static_cast<double>(x) * value;
        sums.vv += static_cast<double>(value) * value;
        sums.least = std::min(sums.least, value);
        sums.most = std::max(sums.most, value);
    }
    sums.v += v;
    sums.xv += xv;
    sums.yv += v * run.y;
    sums.count += run.lastX - run.firstX + 1;
}

void addRun(GraySums& sums, const BlobRun& run, const NurImage& image) {
    const auto* bytes = image.Row<const std::uint8_t>(run.y);
    if (image.format == CTivData::FormatUShort) {
        const auto* words = image.Row<const std::uint16_t>(run.y);
        addRun(sums, run, [words](std::int32_t x) { return std::int32_t{words[x]}; });
    } else if (image.format == CTivData::FormatUByte) {
        addRun(sums, run, [bytes](std::int32_t x) { return std::int32_t{bytes[x]}; });
    } else {
        addRun(sums, run, [bytes](std::int32_t x) { return bytes[x >> 3] >> (x & 7) & 1; });
    }
}

}  // namespace

void computeGrayFeatures(BlobRecord& record, const FeatureRules& rules, const NurImage& image) {
    GraySums sums;
    for (const BlobRun& run : record.StoredRuns()) addRun(sums, run, image);
    const double mean = sums.v / sums.count;
    const double variance = sums.vv / sums.count - mean * mean;
    record.grayMax = static_cast<float>(sums.most);
    record.grayMin = static_cast<float>(sums.least);
    record.grayMean = static_cast<float>(mean);
    record.grayDeviation = static_cast<float>(variance > 0 ? std::sqrt(variance) : 0.0);
    if (sums.v > 0) {
        record.grayCenterX = sums.xv / sums.v * rules.world.scaleX + rules.world.offsetX;
        record.grayCenterY = sums.yv / sums.v * rules.world.scaleY + rules.world.offsetY;
    } else {
        record.grayCenterX = record.centerX;
        record.grayCenterY = record.centerY;
    }
}
