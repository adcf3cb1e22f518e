#pragma once

#include <algorithm>
#include <limits>
#include <type_traits>

#include "foundation/cast_rows.h"

/// Calls `body` with a value of the element type of a gray format; FormatChar is signed.
/// @return what `body` gives, or `none` for any other format
template <class Answer, class Body>
Answer withGrayElement(CTivData::Format format, Answer none, Body body) {
    return tonewright::WithNumber(format == CTivData::FormatChar ? CTivData::FormatByte : format, none, body);
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
