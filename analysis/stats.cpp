#include "analysis/stats.h"

#include <algorithm>
#include <cmath>

#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "primitives/statistics_rows.h"
#include "primitives/wide.h"

namespace {

using D = CTivData;

// What both objects come down to: rows of pixels or elements.
struct Rows {
    D::Format format;
    const std::uint8_t* data;
    std::int64_t pitch;
    int width;
    int height;

    double Count() const { return static_cast<double>(width) * height; }
    template <class T>
    const T* Row(int y) const {
        return reinterpret_cast<const T*>(data + y * pitch);
    }
};

struct Moments {
    double sum = 0;
    double squares = 0;
    double least = 0;
    double most = 0;
};

void deliver(const StatsPointers& out, const Moments& moments, double count) {
    const double mean = moments.sum / count;
    if (out.mean) *out.mean = static_cast<float>(mean);
    if (out.deviation) {
        *out.deviation = static_cast<float>(std::sqrt(std::max(moments.squares / count - mean * mean, 0.0)));
    }
    if (out.min) *out.min = static_cast<float>(moments.least);
    if (out.max) *out.max = static_cast<float>(moments.most);
}

// The plain loop: `channel` takes one number out of element x of a row.
template <class Element, class Channel>
Moments measure(const Rows& rows, Channel channel) {
    Moments moments;
    moments.least = moments.most = static_cast<double>(channel(rows.Row<Element>(0)[0]));
    for (int y = 0; y < rows.height; ++y) {
        const Element* row = rows.Row<Element>(y);
        for (int x = 0; x < rows.width; ++x) {
            const auto value = static_cast<double>(channel(row[x]));
            moments.sum += value;
            moments.squares += value * value;
            moments.least = std::min(moments.least, value);
            moments.most = std::max(moments.most, value);
        }
    }
    return moments;
}

template <class Element>
Moments measureNumbers(const Rows& rows) {
    return measure<Element>(rows, [](Element value) { return value; });
}

Moments fromByteSums(const ByteSums& sums) {
    return {static_cast<double>(sums.sum), static_cast<double>(sums.squares), static_cast<double>(sums.least),
            static_cast<double>(sums.most)};
}

// Whole-number sums, exact at any size.
Moments measureBytes(const Rows& rows) {
    const auto add = HasAvx2() ? AddByteRowWide : AddByteRowPlain;
    ByteSums sums;
    sums.least = sums.most = rows.data[0];
    for (int y = 0; y < rows.height; ++y) {
        add(rows.Row<std::uint8_t>(y), static_cast<std::size_t>(rows.width), sums);
    }
    return fromByteSums(sums);
}

struct Rgb16Pixel {
    std::uint16_t words[4];
};

bool isByteColor(D::Format format) {
    return nur_is_type(format, {D::FormatRgb, D::FormatHsv, D::FormatYuv, D::FormatLab});
}

void measureColor(const Rows& rows, const ColorStatsPointers& color) {
    Moments moments[3];
    if (isByteColor(rows.format)) {
        const auto add = HasAvx2() ? AddColorRowWide : AddColorRowPlain;
        ByteSums sums[3];
        for (int c = 0; c < 3; ++c) sums[c].least = sums[c].most = rows.data[c];
        for (int y = 0; y < rows.height; ++y) {
            add(rows.Row<std::uint8_t>(y), static_cast<std::size_t>(rows.width), sums);
        }
        for (int c = 0; c < 3; ++c) moments[c] = fromByteSums(sums[c]);
    } else {
        for (int c = 0; c < 3; ++c) {
            moments[c] =
                rows.format == D::FormatRgb10
                    ? measure<std::uint32_t>(rows, [c](std::uint32_t word) { return word >> (10 * c) & 0x3FF; })
                    : measure<Rgb16Pixel>(rows, [c](const Rgb16Pixel& pixel) { return pixel.words[c]; });
        }
    }
    for (std::size_t c = 0; c < 3; ++c) deliver(color[c], moments[c], rows.Count());
}

Moments measureMono(const Rows& rows) {
    switch (rows.format) {
        case D::FormatUByte:
            return measureBytes(rows);
        case D::FormatChar:
        case D::FormatByte:
            return measureNumbers<std::int8_t>(rows);
        case D::FormatUShort:
            return measureNumbers<std::uint16_t>(rows);
        case D::FormatShort:
            return measureNumbers<std::int16_t>(rows);
        case D::FormatInt:
        case D::FormatPoint:
            return measureNumbers<std::int32_t>(rows);
        case D::FormatUInt:
            return measureNumbers<std::uint32_t>(rows);
        case D::FormatDouble:
            return measureNumbers<double>(rows);
        default:
            return measureNumbers<float>(rows);
    }
}

bool isColor(D::Format format) { return isByteColor(format) || nur_is_type(format, {D::FormatRgb10, D::FormatRgb16}); }

// The checks that images and vectors share; `measured` tells whether the caller goes on.
int check(D::Format format, bool isMono, const StatsPointers& mono, const ColorStatsPointers& color, bool& measured) {
    const bool wantsColor = std::any_of(color.begin(), color.end(), [](const StatsPointers& out) { return out.Any(); });
    measured = false;
    if (isMono && wantsColor) {
        return nur_report(1, NUR_REPORT_FORMAT, "stats: cannot get color stats on monochrome input\n");
    }
    if (isColor(format) && mono.Any()) {
        return nur_report(1, NUR_REPORT_FORMAT, "stats: cannot get monochrome stats on color input\n");
    }
    if (!isMono && !isColor(format)) return nur_report(1, NUR_REPORT_TYPE, "stats", nur_display_name(format));
    measured = mono.Any() || wantsColor;
    return 0;
}

int run(const Rows& rows, const StatsPointers& mono, const ColorStatsPointers& color) {
    if (isColor(rows.format)) {
        measureColor(rows, color);
    } else {
        deliver(mono, measureMono(rows), rows.Count());
    }
    return 0;
}

bool isMonoImage(D::Format format) {
    return nur_is_type(format,
                       {D::FormatChar, D::FormatUByte, D::FormatByte, D::FormatUShort, D::FormatShort, D::FormatFloat});
}

}  // namespace

int stats(const NurImage* image, const StatsPointers& mono, const ColorStatsPointers& color) {
    bool measured = false;
    const int refused = check(image->format, isMonoImage(image->format), mono, color, measured);
    if (refused || !measured) return refused;
    if (!image->data || image->roi.width <= 0 || image->roi.height <= 0) return 0;
    return run({image->format, image->RoiRow(0), image->Pitch(), image->roi.width, image->roi.height}, mono, color);
}

int stats(const NurVector* vector, const StatsPointers& mono, const ColorStatsPointers& color) {
    const bool isMono =
        isMonoImage(vector->format) ||
        nur_is_type(vector->format, {D::FormatInt, D::FormatUInt, D::FormatDouble, D::FormatPoint, D::FormatFPoint});
    bool measured = false;
    const int refused = check(vector->format, isMono, mono, color, measured);
    if (refused) return refused;
    if (!vector->data || vector->size <= 0) {
        return nur_report(1, NUR_REPORT_FORMAT, "stats: cannot process empty vector\n");
    }
    if (!measured) return 0;
    const bool pairs = vector->format == D::FormatPoint || vector->format == D::FormatFPoint;
    return run(
        {vector->format, static_cast<const std::uint8_t*>(vector->data), 0, pairs ? 2 * vector->size : vector->size, 1},
        mono, color);
}
