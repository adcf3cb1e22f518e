#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/nur_image.h"

namespace tonewright {

/// How the values of one numeric format come into another's range. The numeric formats are FormatByte, FormatUByte,
/// FormatShort, FormatUShort and FormatFloat.
enum class CastKind {
    Clip,    ///< limited to the target's range; floats are then cut toward zero, and what is no number is 0
    Offset,  ///< between signed and unsigned: moved by half the target's range
    Stretch  ///< lowest + cut((value - least) x span / reach), by the scale; to FormatFloat just the quotient
};

/// The default leaves values as they are.
struct CastScale {
    float least = 0;
    float span = 1;   ///< the target's; 0 for a flat source, which all becomes the target's lowest
    float reach = 1;  ///< the source's highest less its lowest
};

/// Converts `count` numbers. The rows may begin at one place where the target's numbers are not larger.
using CastRow = void (*)(const void* source, void* destination, std::size_t count, const CastScale& scale);

/// @param wide the form for AVX2, which must be at hand; both give the same to the bit
/// @return null where a format is not numeric
CastRow GetCastRow(CTivData::Format from, CTivData::Format to, CastKind kind, bool wide);

/// The lowest and highest value of an image's ROI, 0 and 0 for an empty one. Numeric formats only.
struct CastRange {
    float least = 0;
    float most = 0;
};
CastRange GetCastRange(const NurImage& image, bool wide);

/// Calls `visit` with a zero of a numeric format's type.
/// @return what `visit` gives, or `none` for a format that is not numeric
template <class Answer, class Visit>
Answer WithNumber(CTivData::Format format, Answer none, Visit visit) {
    switch (format) {
        case CTivData::FormatByte:
            return visit(std::int8_t{});
        case CTivData::FormatUByte:
            return visit(std::uint8_t{});
        case CTivData::FormatShort:
            return visit(std::int16_t{});
        case CTivData::FormatUShort:
            return visit(std::uint16_t{});
        case CTivData::FormatFloat:
            return visit(float{});
        default:
            return none;
    }
}

}  // namespace tonewright
