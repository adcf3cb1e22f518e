#include "analysis/histogram.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <vector>

#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "primitives/acceleration.h"
#include "primitives/ctiv_ippi.h"

namespace {

constexpr const char* kName = "histogram";

int validateRange(int bins, int low, int high) {
    if (high < low) {
        return nur_refuse_format("histogram: invalid value range %g..%g\n", static_cast<double>(low),
                                 static_cast<double>(high));
    }
    if (bins < 1) {
        return nur_refuse("histogram: invalid number of bins, must be greater than 0\n");
    }
    const std::int64_t span = std::int64_t{high} - low + 1;
    if (span % bins != 0) {
        return nur_refuse_format("histogram: invalid number of bins, must be a divisor of %d\n",
                                 static_cast<int>(std::min<std::int64_t>(span, std::numeric_limits<int>::max())));
    }
    return 0;
}

struct Bins {
    int count;
    int low;
    int high;
    std::int64_t width;  // values a bin
};

template <class T>
void countPlainly(const NurImage& image, const Bins& bins, CTivData::Point* points) {
    const bool oneByOne = std::is_same_v<T, std::uint8_t> && bins.count == 256 && bins.low == 0 && bins.high == 255;
    const float perValue = 1.0f / static_cast<float>(bins.width);  // a product may fall a hair short of its bin
    for (int y = 0; y < image.roi.height; ++y) {
        const T* row = image.RoiRow<const T>(y);
        for (int x = 0; x < image.roi.width; ++x) {
            const int value = row[x];
            if (value < bins.low || value > bins.high) continue;
            const auto above = static_cast<float>(std::int64_t{value} - bins.low);
            const auto bin = oneByOne ? value : static_cast<std::int64_t>(above * perValue);
            ++points[std::min<std::int64_t>(bin, bins.count - 1)].y;
        }
    }
}

// The primitive counts levels[k] <= value < levels[k + 1], so its upper edge is one past the highest value.
template <class T>
int countByPrimitive(const NurImage& image, const Bins& bins, CTivData::Point* points) try {
    std::vector<std::int32_t> counts(static_cast<std::size_t>(bins.count));
    std::vector<std::int32_t> levels(static_cast<std::size_t>(bins.count) + 1);
    const auto* pixels = image.RoiRow<const T>(0);
    const int levelCount = bins.count + 1;
    const int upper = bins.high + 1;
    const auto call = [&](auto primitive) {
        return primitive(pixels, image.Pitch(), image.roi.width, image.roi.height, counts.data(), levels.data(),
                         levelCount, bins.low, upper);
    };
    int status = 0;
    if constexpr (std::is_same_v<T, std::uint8_t>) status = call(ctiv_ippiHistogramEven_8u_C1R);
    if constexpr (std::is_same_v<T, std::uint16_t>) status = call(ctiv_ippiHistogramEven_16u_C1R);
    if constexpr (std::is_same_v<T, std::int16_t>) status = call(ctiv_ippiHistogramEven_16s_C1R);
    if (status != 0) {
        countPlainly<T>(image, bins, points);
        return 0;
    }
    for (std::size_t k = 0; k < counts.size(); ++k) points[k].y = counts[k];
    return 0;
} catch (const std::bad_alloc&) {
    const std::int64_t bytes = (2 * std::int64_t{bins.count} + 1) * static_cast<std::int64_t>(sizeof(std::int32_t));
    return nur_report(1, NUR_REPORT_MEMORY, kName,
                      static_cast<int>(std::min<std::int64_t>(bytes, std::numeric_limits<int>::max())));
}

template <class T>
int count(const NurImage& image, const Bins& bins, CTivData::Point* points) {
    if constexpr (!std::is_same_v<T, std::int8_t>) {
        if (ctiv_GetAccelerationLevel() != 0 && bins.high < std::numeric_limits<int>::max()) {
            return countByPrimitive<T>(image, bins, points);
        }
    }
    countPlainly<T>(image, bins, points);
    return 0;
}

int countByFormat(const NurImage& image, const Bins& bins, CTivData::Point* points) {
    if (!image.data || image.roi.width <= 0 || image.roi.height <= 0) return 0;
    switch (image.format) {
        case CTivData::FormatByte:
            return count<std::int8_t>(image, bins, points);
        case CTivData::FormatUByte:
            return count<std::uint8_t>(image, bins, points);
        case CTivData::FormatShort:
            return count<std::int16_t>(image, bins, points);
        default:
            return count<std::uint16_t>(image, bins, points);
    }
}

}  // namespace

int histogramInt(const NurImage* image, NurVector* histogram, bool cumulative, int bins, int low, int high) {
    using D = CTivData;
    if (nur_is_type(image->format, {D::FormatRgb, D::FormatHsv, D::FormatYuv, D::FormatLab})) {
        return nur_refuse("histogram: not supported for color images\n");
    }
    if (!nur_is_type(image->format, {D::FormatByte, D::FormatShort, D::FormatUByte, D::FormatUShort})) {
        return nur_report(1, NUR_REPORT_TYPE, kName, nur_display_name(image->format));
    }
    if (const int refused = validateRange(bins, low, high)) return refused;
    if (!histogram) return 0;
    if (const int refused = nur_output_vector(histogram, D::FormatPoint, bins, "histogramInt")) return refused;

    auto* points = static_cast<CTivData::Point*>(histogram->data);
    const Bins layout{bins, low, high, (std::int64_t{high} - low + 1) / bins};
    std::memset(points, 0, static_cast<std::size_t>(histogram->size) * sizeof *points);
    for (int k = 0; k < bins; ++k) points[k] = {static_cast<std::int32_t>(low + k * layout.width), 0};
    if (const int refused = countByFormat(*image, layout, points)) return refused;
    if (cumulative) {
        for (int k = 1; k < bins; ++k) points[k].y += points[k - 1].y;
    }
    return 0;
}
