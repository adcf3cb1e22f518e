#include "foundation/cast_image.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>

#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "primitives/convert_rows.h"
#include "primitives/ctiv_ippi.h"

namespace {

using D = CTivData;

constexpr const char* kName = "castImage";
constexpr D::Format kTargets[] = {D::FormatUByte, D::FormatByte,  D::FormatUShort, D::FormatShort,
                                  D::FormatFloat, D::FormatFloat, D::FormatBinary, D::FormatRgb,
                                  D::FormatHsv,   D::FormatYuv,   D::FormatFPoint, D::FormatPoint};
constexpr int kCodes = static_cast<int>(std::size(kTargets));

int refuseType(D::Format format) { return nur_report(1, NUR_REPORT_TYPE, kName, nur_display_name(format)); }

bool covers(const NurImage& destination, const NurImage& source) {
    return destination.data && destination.roi.width >= source.roi.width && destination.roi.height >= source.roi.height;
}

template <class T>
struct Range {
    T least{};
    T most{};
};

template <class T>
Range<T> rangeOf(const NurImage& image) {
    if (image.roi.width <= 0 || image.roi.height <= 0) return {};
    Range<T> range{image.RoiRow<const T>(0)[0], image.RoiRow<const T>(0)[0]};
    for (int y = 0; y < image.roi.height; ++y) {
        const T* row = image.RoiRow<const T>(y);
        for (int x = 0; x < image.roi.width; ++x) {
            range.least = std::min(range.least, row[x]);
            range.most = std::max(range.most, row[x]);
        }
    }
    return range;
}

// Limits before it cuts, so that every value has a place; what is not a number takes the lowest.
template <class To, class Value>
To limited(Value value) {
    constexpr auto kLowest = static_cast<Value>(std::numeric_limits<To>::lowest());
    constexpr auto kHighest = static_cast<Value>(std::numeric_limits<To>::max());
    if (!(value > kLowest)) return std::numeric_limits<To>::lowest();
    return value < kHighest ? static_cast<To>(value) : std::numeric_limits<To>::max();
}

template <class From, class To, class Convert>
void convertRows(const NurImage& source, const NurImage& destination, Convert convert) {
    for (int y = 0; y < source.roi.height; ++y) {
        const From* in = source.RoiRow<const From>(y);
        To* out = destination.RoiRow<To>(y);
        for (int x = 0; x < source.roi.width; ++x) out[x] = convert(in[x]);
    }
}

// The source's own range goes to the target's: (value - least) x span / (most - least), cut. A flat image has no range
// and takes the target's lowest.
template <class From, class To>
void stretch(const NurImage& source, const NurImage& destination) {
    const Range<From> range = rangeOf<From>(source);
    using Wide = std::conditional_t<std::is_integral_v<From>, std::int64_t, float>;
    const Wide least = range.least;
    const Wide reach = static_cast<Wide>(range.most) - least;
    constexpr auto kLowest = static_cast<Wide>(std::numeric_limits<To>::lowest());
    constexpr auto kSpan = static_cast<Wide>(std::int64_t{std::numeric_limits<To>::max()} -
                                             std::int64_t{std::numeric_limits<To>::lowest()});
    convertRows<From, To>(source, destination, [&](From value) {
        if (reach == Wide{0}) return std::numeric_limits<To>::lowest();
        return limited<To>(kLowest + (static_cast<Wide>(value) - least) * kSpan / reach);
    });
}

template <class From, class To>
void toInteger(const NurImage& source, const NurImage& destination, bool fit) {
    constexpr bool kIsWider = sizeof(From) > sizeof(To) || !std::is_integral_v<From>;
    if constexpr (kIsWider) {
        if (fit) return stretch<From, To>(source, destination);
    } else {
        // A signed range lies on an unsigned one by its middle, and the reverse at the same width.
        constexpr bool kShifts =
            std::is_signed_v<From> != std::is_signed_v<To> && (std::is_signed_v<From> || sizeof(From) == sizeof(To));
        constexpr std::int32_t kMiddle = std::int32_t{1} << (8 * sizeof(To) - 1);
        if (fit && kShifts) {
            const std::int32_t offset = std::is_signed_v<From> ? kMiddle : -kMiddle;
            return convertRows<From, To>(source, destination, [offset](From value) {
                return limited<To>(static_cast<std::int32_t>(value) + offset);
            });
        }
    }
    using Value = std::conditional_t<std::is_integral_v<From>, std::int32_t, From>;
    convertRows<From, To>(source, destination, [](From value) { return limited<To>(static_cast<Value>(value)); });
}

template <class From>
void toFloat(const NurImage& source, const NurImage& destination, bool stretched) {
    const Range<From> range = stretched ? rangeOf<From>(source) : Range<From>{};
    const float least = static_cast<float>(range.least);
    const float reach = static_cast<float>(range.most) - least;
    convertRows<From, float>(source, destination, [&](From value) {
        if (!stretched) return static_cast<float>(value);
        return reach == 0.0f ? 0.0f : (static_cast<float>(value) - least) / reach;
    });
}

// @return false for a pair that is not served
template <class From>
bool convertFrom(const NurImage& source, const NurImage& destination, int code, int mode) {
    switch (code) {
        case CAST_UBYTE:
            toInteger<From, std::uint8_t>(source, destination, mode != 0);
            return true;
        case CAST_BYTE:
            toInteger<From, std::int8_t>(source, destination, mode != 0);
            return true;
        case CAST_USHORT:
            toInteger<From, std::uint16_t>(source, destination, mode != 0);
            return true;
        case CAST_SHORT:
            toInteger<From, std::int16_t>(source, destination, mode != 0);
            return true;
        case CAST_FLOAT:
        case CAST_FLOAT_ALWAYS:
            toFloat<From>(source, destination, code == CAST_FLOAT_ALWAYS && mode != 0);
            return true;
        default:
            return false;
    }
}

bool convertPixels(const NurImage& source, const NurImage& destination, int code, int mode) {
    switch (source.format) {
        case D::FormatByte:
            return convertFrom<std::int8_t>(source, destination, code, mode);
        case D::FormatUByte:
            return convertFrom<std::uint8_t>(source, destination, code, mode);
        case D::FormatShort:
            return convertFrom<std::int16_t>(source, destination, code, mode);
        case D::FormatUShort:
            return convertFrom<std::uint16_t>(source, destination, code, mode);
        case D::FormatFloat:
            return convertFrom<float>(source, destination, code, mode);
        default:
            return false;
    }
}

void copyRows(const NurImage& source, const NurImage& destination) {
    const auto bytes =
        static_cast<std::size_t>(D::GetByteCount(source.format, static_cast<std::uint64_t>(source.roi.width)));
    for (int y = 0; y < source.roi.height; ++y) std::memmove(destination.RoiRow(y), source.RoiRow(y), bytes);
}

template <class Value>
void packRows(const NurImage& source, const NurImage& destination, int mode) {
    const Range<Value> range = rangeOf<Value>(source);
    const auto threshold = static_cast<Value>(mode == 0 ? 1 : (range.least + 1 + range.most) / 2);
    for (int y = 0; y < source.roi.height; ++y) {
        PackAtOrAboveRow(source.RoiRow<const Value>(y), threshold, destination.RoiRow(y),
                         static_cast<std::size_t>(source.roi.width));
    }
}

int castToBinary(const NurImage* source, NurImage* destination, int mode) {
    if (!nur_is_type(source->format, {D::FormatByte, D::FormatUByte})) return refuseType(source->format);
    if (source != destination && !covers(*destination, *source)) return refuseType(D::FormatBinary);
    if (source->format == D::FormatByte) {
        packRows<std::int8_t>(*source, *destination, mode);
    } else {
        packRows<std::uint8_t>(*source, *destination, mode);
    }
    return 0;
}

int castFromBinary(const NurImage* source, NurImage* destination) {
    if (!nur_is_type(destination->format, {D::FormatByte, D::FormatUByte}) || !covers(*destination, *source)) {
        return refuseType(D::FormatBinary);
    }
    for (int y = 0; y < source->roi.height; ++y) {
        const std::uint8_t* bits = source->RoiRow(y);
        std::uint8_t* out = destination->RoiRow(y);
        for (int x = 0; x < source->roi.width; ++x) out[x] = bits[x / 8] >> (x % 8) & 1;
    }
    return 0;
}

}  // namespace

int castCode(CTivData::Format format) {
    const auto* found = std::find(std::begin(kTargets), std::end(kTargets), format);
    return found == std::end(kTargets) ? -1 : static_cast<int>(found - std::begin(kTargets));
}

int castImage(const NurImage* source, NurImage* destination, int code, int mode) {
    const bool fromBinary = source->format == D::FormatBinary;
    if (!fromBinary && destination->format == D::FormatBinary) return castToBinary(source, destination, mode);
    if (fromBinary) return castFromBinary(source, destination);
    if (!nur_is_type(source->format, {D::FormatByte, D::FormatShort, D::FormatUByte, D::FormatUShort, D::FormatFloat,
                                      D::FormatRgb, D::FormatHsv, D::FormatYuv, D::FormatPoint, D::FormatFPoint})) {
        return refuseType(source->format);
    }
    if (code < 0 || code >= kCodes) {
        return nur_report(1, NUR_REPORT_FORMAT, "castImage: unknown result type code %d\n", code);
    }
    const D::Format target = kTargets[code];
    if (source != destination) {
        const int refused = nur_output_image(destination, target, source->roi.width, source->roi.height, kName);
        if (refused) return refused;
    }
    if (source->format == target && code != CAST_FLOAT_ALWAYS) {
        copyRows(*source, *destination);
    } else {
        // In place the rows keep their pitch, so only elements of one size can change places.
        const bool fits = source != destination || D::GetFormatBits(source->format) == D::GetFormatBits(target);
        if (!fits || !convertPixels(*source, *destination, code, mode)) {
            return nur_report(1, NUR_REPORT_FORMAT, "castImage: conversion not supported");
        }
    }
    destination->format = target;
    return 0;
}

namespace {

constexpr const char* kMapRange = "CTivUtilCastImage_16u8u_MapRange";

struct PrimitiveFree {
    void operator()(std::uint16_t* memory) const { ctiv_ippiFree(memory); }
};

// Bits from the lowest to the highest one that any pixel of the ROI uses.
int usedBits(const NurImage& image) {
    unsigned all = 0;
    for (int y = 0; y < image.roi.height; ++y) {
        const auto* row = image.RoiRow<const std::uint16_t>(y);
        for (int x = 0; x < image.roi.width; ++x) all |= row[x];
    }
    return all ? 32 - __builtin_clz(all) : 0;
}

}  // namespace

int CTivUtilCastImage_16u8u_MapRange(const NurImage* source, NurImage* destination, bool keepRoiSize) {
    if (source->format != D::FormatUShort) {
        return nur_report(1, NUR_REPORT_TYPE, kMapRange, nur_display_name(source->format));
    }
    if (!destination) return 0;
    const int width = source->roi.width;
    const int height = source->roi.height;
    const std::uint16_t* pixels = source->data ? source->RoiRow<const std::uint16_t>(0) : nullptr;
    std::int64_t pitch = source->Pitch();
    std::unique_ptr<std::uint16_t, PrimitiveFree> shifted;
    if (const int shift = usedBits(*source) - 8; shift >= 1) {
        std::int64_t shiftedPitch = 0;
        shifted.reset(ctiv_ippiMalloc_16u_C1(width, height, &shiftedPitch));
        if (!shifted) {
            return nur_report(1, NUR_REPORT_MEMORY, kMapRange,
                              static_cast<int>(nur_image_bytes(D::FormatUShort, width, height)));
        }
        if (ctiv_ippiRShiftC_16u_C1R(pixels, pitch, static_cast<std::uint32_t>(shift), shifted.get(), shiftedPitch,
                                     width, height) != 0) {
            return nur_report(1, NUR_REPORT_FORMAT, "%s: failed in the ctiv_ippiRShiftC_16u_C1R\n", kMapRange);
        }
        pixels = shifted.get();
        pitch = shiftedPitch;
    }
    if (source == destination) {
        return nur_report(1, NUR_REPORT_FORMAT, "%s: consume operation is not allowed\n", kMapRange);
    }
    const int neededWidth = keepRoiSize ? width : source->width;
    const int neededHeight = keepRoiSize ? height : source->height;
    if (nur_output_image(destination, D::FormatUByte, neededWidth, neededHeight, kMapRange) != 0) {
        return nur_report(1, NUR_REPORT_FORMAT, "%s: failed in the CTivImageTryUseReservedMem\n", kMapRange);
    }
    if (!keepRoiSize) destination->roi = source->roi;
    if (!pixels) return 0;
    // The shifted pixels run through the scale at their own value: its range is 0 to 255.
    if (ctiv_ippiScale_16u8u_C1R(pixels, pitch, destination->RoiRow(0), destination->Pitch(), width, height, 0, 255) !=
        0) {
        return nur_report(1, NUR_REPORT_FORMAT, "%s: failed in the ippiScale_16u8u_C1R\n", kMapRange);
    }
    return 0;
}
