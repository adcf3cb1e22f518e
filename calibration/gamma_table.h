#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace tonewright {

/// Fills an output table for channels of full scale size - 1: entry i is the integer part of (i / size) ^ gamma times
/// full scale, the power in double, the product in float32. The divisor is the table's length and not its top index,
/// deliberately (C32), so that the last entry stays short of full scale. What a negative or undefined gamma would throw
/// out of 0 to full scale is limited to it, NaN to 0.
template <class Entry, std::size_t size>
void FillGammaTable(std::array<Entry, size>& table, float gamma) {
    constexpr auto fullScale = static_cast<float>(size - 1);
    constexpr float step = 1.0f / static_cast<float>(size);
    for (std::size_t i = 0; i < size; ++i) {
        const double base = static_cast<double>(static_cast<float>(i) * step);
        const float value = static_cast<float>(std::pow(base, static_cast<double>(gamma))) * fullScale;
        table[i] = value >= fullScale ? static_cast<Entry>(size - 1)
                   : value > 0.0f     ? static_cast<Entry>(value)
                                      : Entry{0};
    }
}

}  // namespace tonewright
