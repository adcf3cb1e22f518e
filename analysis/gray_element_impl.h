#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "foundation/CTivData.h"

/// Calls `body` with a value of the element type of a gray format; FormatChar is signed.
/// @return what `body` gives, or `none` for any other format
template <class Answer, class Body>
Answer withGrayElement(CTivData::Format format, Answer none, Body body) {
    switch (format) {
        case CTivData::FormatChar:
        case CTivData::FormatByte:
            return body(std::int8_t{});
        case CTivData::FormatUByte:
            return body(std::uint8_t{});
        case CTivData::FormatShort:
            return body(std::int16_t{});
        case CTivData::FormatUShort:
            return body(std::uint16_t{});
        case CTivData::FormatFloat:
            return body(float{});
        default:
            return none;
    }
}

/// Limits a level to the range of a whole-number type and cuts it to a whole number (NaN to the lower end); a float
/// stays as it is.
template <class T>
T toElement(float level) {
    if constexpr (std::is_floating_point_v<T>) {
        return level;
    } else {
        constexpr auto lowest = std::numeric_limits<T>::min();
        constexpr auto highest = std::numeric_limits<T>::max();
        if (!(level > static_cast<float>(lowest))) return lowest;
        return level >= static_cast<float>(highest) ? highest : static_cast<T>(level);
    }
}
