#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "primitives/wide.h"

namespace tonewright {

// Rows of the thresholds: one body for every element type and every combination of the three switches.

/// The switches, as bits of a kernel's index.
enum ThresholdSwitch : int {
    kThresholdBinary = 1,  ///< full scale or 0 instead of the pixel or `otherwise`
    kThresholdInvert = 2,  ///< selects what lies outside
    kThresholdSingle = 4,  ///< selects from `low` on and ignores `high`
    kThresholdSigned = 8   ///< among the kernels for bytes: FormatByte
};

constexpr int ThresholdSwitches(bool invert, bool single, bool binary) {
    return (invert ? kThresholdInvert : 0) | (single ? kThresholdSingle : 0) | (binary ? kThresholdBinary : 0);
}

/// What the pixels of one call are compared with, and what a pixel that is not selected becomes in a semi-threshold.
template <class In>
struct ThresholdLevels {
    In low;
    In high;
    In otherwise;
};

/// One pixel's answer; both ends of low to high are inside.
template <class Out, int switches, class In, class Level>
TONEWRIGHT_BODY Out ThresholdPixel(In pixel, Level value, Level low, Level high, In otherwise) {
    const bool inside = (value >= low) & ((switches & kThresholdSingle) != 0 || value <= high);
    const bool selected = inside != ((switches & kThresholdInvert) != 0);
    if constexpr ((switches & kThresholdBinary) != 0) {
        return selected ? std::numeric_limits<Out>::max() : Out{0};
    } else {
        return static_cast<Out>(selected ? pixel : otherwise);
    }
}

template <class In, class Out, int switches>
TONEWRIGHT_BODY void ThresholdRow(const In* source, Out* destination, std::size_t count, ThresholdLevels<In> levels) {
    for (std::size_t i = 0; i < count; ++i) {
        destination[i] = ThresholdPixel<Out, switches>(source[i], source[i], levels.low, levels.high, levels.otherwise);
    }
}

/// `count` pixels from source to destination, which are apart or the same.
template <class In, class Out>
using ThresholdRowFunction = void (*)(const In* source, Out* destination, std::size_t count,
                                      ThresholdLevels<In> levels);

template <class In, class Out, int switches>
void ThresholdRowPlain(const In* source, Out* destination, std::size_t count, ThresholdLevels<In> levels) {
    ThresholdRow<In, Out, switches>(source, destination, count, levels);
}
template <class In, class Out, int switches>
TONEWRIGHT_WIDE void ThresholdRowWide(const In* source, Out* destination, std::size_t count,
                                      ThresholdLevels<In> levels) {
    ThresholdRow<In, Out, switches>(source, destination, count, levels);
}

/// Calls `body` with the switches as a constant, so that a run-time choice picks one of eight instances.
template <class Body>
auto WithSwitches(int switches, Body body) {
    switch (switches & (kThresholdBinary | kThresholdInvert | kThresholdSingle)) {
        case 0:
            return body(std::integral_constant<int, 0>{});
        case 1:
            return body(std::integral_constant<int, 1>{});
        case 2:
            return body(std::integral_constant<int, 2>{});
        case 3:
            return body(std::integral_constant<int, 3>{});
        case 4:
            return body(std::integral_constant<int, 4>{});
        case 5:
            return body(std::integral_constant<int, 5>{});
        case 6:
            return body(std::integral_constant<int, 6>{});
        default:
            return body(std::integral_constant<int, 7>{});
    }
}

/// @param switches ThresholdSwitch bits. A semi-threshold writes the source's type: Out counts only for a binary one.
template <class In, class Out>
ThresholdRowFunction<In, Out> GetThresholdRow(int switches, bool wide) {
    return WithSwitches(switches, [wide](auto fixed) -> ThresholdRowFunction<In, Out> {
        return wide ? &ThresholdRowWide<In, Out, fixed> : &ThresholdRowPlain<In, Out, fixed>;
    });
}

}  // namespace tonewright
