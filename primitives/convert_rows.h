#pragma once

#include <cstddef>
#include <cstdint>

// Conversions of pixel rows. Integers are cut, not rounded; both forms of a row give the same.

/// Luminance of FormatRgb pixels: (601 G + 306 R + 117 B) >> 10.
/// @param pixels four bytes each: blue, green, red, reserved
void LuminanceRowPlain(const std::uint8_t* pixels, std::uint8_t* gray, std::size_t count);
void LuminanceRowWide(const std::uint8_t* pixels, std::uint8_t* gray, std::size_t count);
void LuminanceRow(const std::uint8_t* pixels, std::uint8_t* gray, std::size_t count);

/// Sets bit i AND 7 of byte i / 8 where value i is at or above a threshold; bits past `count` in the last byte stay.
void PackAtOrAboveRow(const std::uint8_t* values, std::uint8_t threshold, std::uint8_t* bits, std::size_t count);
void PackAtOrAboveRow(const std::int8_t* values, std::int8_t threshold, std::uint8_t* bits, std::size_t count);
