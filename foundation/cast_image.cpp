#include "foundation/cast_image.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>

#include "foundation/cast_rows.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "foundation/row_pairs_impl.h"
#include "primitives/convert_rows.h"
#include "primitives/ctiv_ippi.h"
#include "primitives/wide.h"

using namespace tonewright;

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

CastKind kindOf(D::Format from, D::Format to, int code, int mode) {
    if (mode == 0 || code == CAST_FLOAT) return CastKind::Clip;
    if (code == CAST_FLOAT_ALWAYS || !D::IsInteger(from)) return CastKind::Stretch;
    const int fromBits = D::GetFormatBits(from), toBits = D::GetFormatBits(to);
    if (fromBits > toBits) return CastKind::Stretch;
    // A signed range lies on an unsigned one by its middle, and the reverse at the same width.
    const bool differs = D::IsSigned(from) != D::IsSigned(to);
    return differs && (D::IsSigned(from) || fromBits == toBits) ? CastKind::Offset : CastKind::Clip;
}

CastScale scaleOf(const NurImage& source, D::Format to) {
    const CastRange range = GetCastRange(source, RunsWide());
    const float span = D::IsInteger(to) ? static_cast<float>((1 << D::GetFormatBits(to)) - 1) : 1.0f;
    if (range.most == range.least) return {range.least, 0.0f, 1.0f};  // no range: all takes the target's lowest
    return {range.least, span, range.most - range.least};
}

// @return false for a pair that is not served
bool convertPixels(const NurImage& source, NurImage& destination, int code, int mode) {
    const CastKind kind = kindOf(source.format, destination.format, code, mode);
    const CastRow row = GetCastRow(source.format, destination.format, kind, RunsWide());
    if (!row) return false;
    const CastScale scale = kind == CastKind::Stretch ? scaleOf(source, destination.format) : CastScale{};
    ForEachRowPair(source, destination,
                   [&](const std::uint8_t* in, std::uint8_t* out, std::size_t count) { row(in, out, count, scale); });
    return true;
}

void copyRows(const NurImage& source, NurImage& destination) {
    ForEachRowPair(source, destination, [&](const std::uint8_t* in, std::uint8_t* out, std::size_t count) {
        std::memmove(out, in, static_cast<std::size_t>(D::GetByteCount(source.format, count)));
    });
}

int castToBinary(const NurImage* source, NurImage* destination, int mode) {
    if (!nur_is_type(source->format, {D::FormatByte, D::FormatUByte})) return refuseType(source->format);
    if (source != destination && !covers(*destination, *source)) return refuseType(D::FormatBinary);
    int threshold = 1;
    if (mode != 0) {
        const CastRange range = GetCastRange(*source, RunsWide());
        threshold = (static_cast<int>(range.least) + 1 + static_cast<int>(range.most)) / 2;
    }
    const ByteBand band{threshold, 255, source->format == D::FormatByte};
    const auto row = RunsWide() ? PackBandRowWide : PackBandRowPlain;
    for (int y = 0; y < source->roi.height; ++y) {
        row(source->RoiRow(y), destination->RoiRow(y), static_cast<std::size_t>(source->roi.width), band);
    }
    return 0;
}

int castFromBinary(const NurImage* source, NurImage* destination) {
    if (!nur_is_type(destination->format, {D::FormatByte, D::FormatUByte}) || !covers(*destination, *source)) {
        return refuseType(D::FormatBinary);
    }
    for (int y = 0; y < source->roi.height; ++y) {
        UnpackRow(source->RoiRow(y), destination->RoiRow(y), static_cast<std::size_t>(source->roi.width));
    }
    return 0;
}

}  // namespace

int tonewright::castCode(CTivData::Format format) {
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
        return nur_refuse_format("castImage: unknown result type code %d\n", code);
    }
    const D::Format target = kTargets[code];
    if (source != destination) {
        const int refused = nur_output_image(destination, target, source->roi.width, source->roi.height, kName);
        if (refused) return refused;
    }
    if (source->format == target && code != CAST_FLOAT_ALWAYS) {
        copyRows(*source, *destination);
    } else {
        // In place there is room for elements of the same size and smaller ones, which close up from the front.
        const bool fits = source != destination || D::GetFormatBits(source->format) >= D::GetFormatBits(target);
        NurImage converted = *destination;
        converted.format = target;
        if (!fits || !convertPixels(*source, converted, code, mode)) {
            return nur_refuse("castImage: conversion not supported");
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

int fail(const char* step) { return nur_refuse_format("%s: failed in the %s\n", kMapRange, step); }

// How far the highest bit that any pixel of the ROI uses lies above the eighth; the highest value has it, too.
int bitsAboveByte(const NurImage& image) {
    const auto most = static_cast<unsigned>(GetCastRange(image, RunsWide()).most);
    return std::max(static_cast<int>(std::bit_width(most)) - 8, 0);
}

}  // namespace

int CTivUtilCastImage_16u8u_MapRange(const NurImage* source, NurImage* destination, bool keepRoiSize) {
    if (source->format != D::FormatUShort) {
        return nur_report(1, NUR_REPORT_TYPE, kMapRange, nur_display_name(source->format));
    }
    if (!destination) return 0;
    const int width = source->roi.width;
    const int height = source->roi.height;
    const int shift = bitsAboveByte(*source);
    std::int64_t shiftedPitch = 0;
    std::unique_ptr<std::uint16_t, PrimitiveFree> shifted;  // a row; the image would cost more than the work
    if (shift > 0) {
        shifted.reset(ctiv_ippiMalloc_16u_C1(width, 1, &shiftedPitch));
        if (!shifted) {
            return nur_report(1, NUR_REPORT_MEMORY, kMapRange,
                              static_cast<int>(nur_image_bytes(D::FormatUShort, width, height)));
        }
    }
    if (source == destination) {
        return nur_refuse_format("%s: consume operation is not allowed\n", kMapRange);
    }
    const int neededWidth = keepRoiSize ? width : source->width;
    const int neededHeight = keepRoiSize ? height : source->height;
    const CTivRect earlier = destination->roi;
    // What is compared with the image's size is the destination's size; its ROI becomes the source's.
    if (!keepRoiSize) destination->roi = {0, 0, destination->width, destination->height};
    if (nur_output_image(destination, D::FormatUByte, neededWidth, neededHeight, kMapRange) != 0) {
        destination->roi = earlier;
        return fail("CTivImageTryUseReservedMem");
    }
    if (!keepRoiSize) destination->roi = source->roi;
    if (!source->data || !destination->data) return 0;
    for (int y = 0; y < height; ++y) {
        const auto* pixels = source->RoiRow<const std::uint16_t>(y);
        if (shifted) {
            if (ctiv_ippiRShiftC_16u_C1R(pixels, source->Pitch(), static_cast<std::uint32_t>(shift), shifted.get(),
                                         shiftedPitch, width, 1) != 0) {
                return fail("ctiv_ippiRShiftC_16u_C1R");
            }
            pixels = shifted.get();
        }
        // The shifted pixels run through the scale at their own value: its range is 0 to 255.
        if (ctiv_ippiScale_16u8u_C1R(pixels, shiftedPitch, destination->RoiRow(y), destination->Pitch(), width, 1, 0,
                                     255) != 0) {
            return fail("ippiScale_16u8u_C1R");
        }
    }
    return 0;
}
