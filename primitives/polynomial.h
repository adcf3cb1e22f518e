#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "primitives/wide.h"

namespace tonewright {

// Rows of packed colors through a polynomial of 4, 7 or 10 terms a channel, folded into range and looked up.

/// Bytes blue, green, red, reserved.
struct PixelRgb {
    using Entry = std::uint8_t;
    static constexpr std::size_t bytes = 4;
    static constexpr int fullScale = 255;
};
/// A word with red in bits 20 to 29, green in 10 to 19, blue in 0 to 9.
struct PixelRgb10 {
    using Entry = std::uint16_t;
    static constexpr std::size_t bytes = 4;
    static constexpr int fullScale = 1023;
};
/// Words blue, green, red, reserved.
struct PixelRgb16 {
    using Entry = std::uint16_t;
    static constexpr std::size_t bytes = 8;
    static constexpr int fullScale = 65535;
};

/// The output table of a channel: an entry for each corrected value.
template <class Pixel>
using GammaTable = std::array<typename Pixel::Entry, Pixel::fullScale + 1>;

/// Corrects `count` pixels, at any address, and writes their reserved bits as zero.
///
/// With r, g, b the channels divided by full scale, row k of the coefficients (red, green, blue) gives
/// v = ((r c1 + c0) + g c2) + b c3, with 7 terms plus (r c4) r, (g c5) g, (b c6) b, with 10 terms plus (r c4) r,
/// (r c5) g, (r c6) b, (g c7) g, (g c8) b, (b c9) b, each addition a float32 addition in this order. The channel
/// becomes table[ceil(min(|v full scale|, full scale))]: a negative result is mirrored, and what is not a number
/// counts as full scale.
/// @param source, destination may be the same row, and must not overlap otherwise
/// @param coefficients 3 x terms float32, row by row
/// @param table no entry above full scale
template <class Pixel>
using PolynomialRow = void (*)(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                               const float* coefficients, const GammaTable<Pixel>& table);

/// @param terms 4, 7 or 10; any other count gives the row that takes every v as 0
/// @param form one that this machine has; all give the same to the bit
template <class Pixel>
PolynomialRow<Pixel> GetPolynomialRow(int terms, RowForm form);

}  // namespace tonewright
