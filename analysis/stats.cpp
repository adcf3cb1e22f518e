#include "analysis/stats.h"

#include <algorithm>

#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "primitives/statistics_rows.h"
#include "primitives/wide.h"

using namespace tonewright;

namespace {

using D = CTivData;

// What both objects come down to: rows of pixels or elements.
struct Rows {
    D::Format format;
    const std::uint8_t* data;
    std::int64_t pitch;
    int width;
    int height;

    std::int64_t ElementBytes() const { return nur_element_bits(format) / 8; }
    std::uint64_t Count() const { return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height); }
};

// The formats that whole-number sums serve, exact at any size.
struct SummedFormat {
    D::Format format;
    PixelKind kind;
    int channels;
};
constexpr SummedFormat kSummed[] = {
    {D::FormatUByte, PixelKind::Byte, 1},       {D::FormatByte, PixelKind::SignedByte, 1},
    {D::FormatChar, PixelKind::SignedByte, 1},  {D::FormatUShort, PixelKind::Word, 1},
    {D::FormatShort, PixelKind::SignedWord, 1}, {D::FormatRgb, PixelKind::Color8, 3},
    {D::FormatHsv, PixelKind::Color8, 3},       {D::FormatYuv, PixelKind::Color8, 3},
    {D::FormatLab, PixelKind::Color8, 3},       {D::FormatRgb10, PixelKind::Color10, 3},
    {D::FormatRgb16, PixelKind::Color16, 3},
};

const SummedFormat* findSummed(D::Format format) {
    const auto* found =
        std::find_if(std::begin(kSummed), std::end(kSummed), [&](const auto& row) { return row.format == format; });
    return found == std::end(kSummed) ? nullptr : found;
}

bool isColor(D::Format format) {
    const SummedFormat* summed = findSummed(format);
    return summed && summed->channels > 1;
}

bool isMonoImage(D::Format format) { return format == D::FormatFloat || (findSummed(format) && !isColor(format)); }

bool isMonoVector(D::Format format) {
    return isMonoImage(format) ||
           nur_is_type(format, {D::FormatInt, D::FormatUInt, D::FormatDouble, D::FormatPoint, D::FormatFPoint});
}

void deliver(const StatsPointers& out, const Moments& moments, std::uint64_t count) {
    const auto number = static_cast<double>(count);
    if (out.mean) *out.mean = static_cast<float>(moments.Mean(number));
    if (out.deviation) *out.deviation = static_cast<float>(moments.Deviation(number));
    if (out.min) *out.min = static_cast<float>(moments.least);
    if (out.max) *out.max = static_cast<float>(moments.most);
}

// The plain loop of the other formats, in float64.
template <class Element, class Value>
Moments measure(const Rows& rows, Value Element::*member) {
    const auto row = [&](int y) { return reinterpret_cast<const Element*>(rows.data + y * rows.pitch); };
    Moments moments;
    moments.least = moments.most = static_cast<double>(row(0)[0].*member);
    for (int y = 0; y < rows.height; ++y) {
        const Element* elements = row(y);
        for (int x = 0; x < rows.width; ++x) {
            const auto value = static_cast<double>(elements[x].*member);
            moments.sum += value;
            moments.squares += value * value;
            moments.least = std::min(moments.least, value);
            moments.most = std::max(moments.most, value);
        }
    }
    return moments;
}

template <class T>
Moments measureNumbers(const Rows& rows) {
    struct Number {
        T value;
    };
    return measure(rows, &Number::value);
}

Moments measureOther(const Rows& rows) {
    switch (rows.format) {
        case D::FormatInt:
            return measureNumbers<std::int32_t>(rows);
        case D::FormatUInt:
            return measureNumbers<std::uint32_t>(rows);
        case D::FormatDouble:
            return measureNumbers<double>(rows);
        case D::FormatPoint:
            return measure(rows, &D::Point::y);
        case D::FormatFPoint:
            return measure(rows, &D::FPoint::y);
        default:
            return measureNumbers<float>(rows);
    }
}

// Of an object that passed the checks and holds at least one element.
int run(const Rows& rows, const StatsPointers& mono, const ColorStatsPointers& color) {
    const SummedFormat* summed = findSummed(rows.format);
    if (!summed) {
        deliver(mono, measureOther(rows), rows.Count());
        return 0;
    }
    const SumsRow add = GetSumsRow(summed->kind, RunsWide());
    ChannelSums sums[3];
    const bool isOneRow = rows.pitch == rows.width * rows.ElementBytes();  // no gaps
    const auto length = static_cast<std::size_t>(isOneRow ? rows.Count() : static_cast<std::uint64_t>(rows.width));
    for (int y = 0; y < (isOneRow ? 1 : rows.height); ++y) add(rows.data + y * rows.pitch, length, sums);
    for (std::size_t c = 0; c < static_cast<std::size_t>(summed->channels); ++c) {
        const StatsPointers& out = summed->channels == 1 ? mono : color[c];
        deliver(out, MomentsOf(sums[c], summed->kind, rows.Count()), rows.Count());
    }
    return 0;
}

bool anyOf(const ColorStatsPointers& color) {
    return std::any_of(color.begin(), color.end(), [](const StatsPointers& out) { return out.Any(); });
}

// The checks that images and vectors share.
int check(D::Format format, bool isMono, const StatsPointers& mono, const ColorStatsPointers& color) {
    if (isMono && anyOf(color)) {
        return nur_refuse("stats: cannot get color stats on monochrome input\n");
    }
    if (isColor(format) && mono.Any()) {
        return nur_refuse("stats: cannot get monochrome stats on color input\n");
    }
    return isMono || isColor(format) ? 0 : nur_report(1, NUR_REPORT_TYPE, "stats", nur_display_name(format));
}

}  // namespace

int stats(const NurImage* image, const StatsPointers& mono, const ColorStatsPointers& color) {
    if (const int refused = check(image->format, isMonoImage(image->format), mono, color)) return refused;
    if (!mono.Any() && !anyOf(color)) return 0;
    if (!image->data || image->roi.width <= 0 || image->roi.height <= 0) {
        return nur_refuse("stats: cannot process empty image\n");
    }
    return run({image->format, image->RoiRow(0), image->Pitch(), image->roi.width, image->roi.height}, mono, color);
}

int stats(const NurVector* vector, const StatsPointers& mono, const ColorStatsPointers& color) {
    if (const int refused = check(vector->format, isMonoVector(vector->format), mono, color)) return refused;
    if (!vector->data || vector->size <= 0) {
        return nur_refuse("stats: cannot process empty vector\n");
    }
    if (!mono.Any() && !anyOf(color)) return 0;
    return run({vector->format, static_cast<const std::uint8_t*>(vector->data), 0, vector->size, 1}, mono, color);
}
