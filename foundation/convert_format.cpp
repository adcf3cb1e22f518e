#include <algorithm>
#include <cstring>

#include "foundation/CTivImage.h"
#include "foundation/cast_image.h"
#include "foundation/format_rows.h"
#include "foundation/nur_image.h"
#include "foundation/row_pairs_impl.h"
#include "primitives/wide.h"

using namespace tonewright;

namespace {

void convert(const FormatConversion& conversion, const NurImage& from, NurImage& to, int mode) {
    const FormatRow row = RunsWide() ? conversion.wide : conversion.plain;
    ForEachRowPair(from, to, [&](const std::uint8_t* in, std::uint8_t* out, std::size_t count) {
        if (row) return row(in, out, count, mode);
        std::memmove(out, in, static_cast<std::size_t>(CTivData::GetByteCount(from.format, count)));
    });
}

}  // namespace

bool CTivImage::ConvertFormat(const CTivImage& source, int mode) {
    const NurImage* from = source.GetRecord();
    NurImage* to = GetRecord();
    if (!from || !to) return false;
    if (!CTivData::IsColor(from->format) && !CTivData::IsColor(to->format)) {
        return castImage(from, to, castCode(to->format), mode) == 0;
    }
    if (to->format == CTivData::FormatNone) {
        return Refuse("CTivImage::ConvertFormat => Destination image must be preallocated");
    }
    const auto conversions = GetFormatConversions();
    const auto serves = [&](const FormatConversion& row) { return row.source == from->format; };
    if (std::none_of(conversions.begin(), conversions.end(), serves)) {
        return Refuse("CTivImage::ConvertFormat => Source image format not supported for the specified conversion");
    }
    const auto conversion = std::find_if(conversions.begin(), conversions.end(), [&](const FormatConversion& row) {
        return serves(row) && row.destination == to->format;
    });
    if (conversion == conversions.end()) {
        return Refuse(
            "CTivImage::ConvertFormat => Destination image format not supported for the specified conversion");
    }
    if (to->roi.width < from->roi.width || to->roi.height < from->roi.height) {
        return Refuse(conversion->plain ? "CTivImage::ConvertFormat => Destination image size too small"
                                        : "CTivImage::ConvertFormat => Destination image ROI too small");
    }
    convert(*conversion, *from, *to, mode);
    return true;
}
