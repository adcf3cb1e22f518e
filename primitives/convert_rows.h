#pragma once

#include <cstddef>
#include <cstdint>

namespace tonewright {

// Conversions of pixel rows of any length, at any address. Both forms of each give the same; wide ones need AVX2.

/// Luminance of FormatRgb pixels: (601 G + 306 R + 117 B) >> 10.
/// @param pixels four bytes each: blue, green, red, reserved
void LuminanceRowPlain(const std::uint8_t* pixels, std::uint8_t* gray, std::size_t count);
void LuminanceRowWide(const std::uint8_t* pixels, std::uint8_t* gray, std::size_t count);

/// Shifts words to the right; more than 15 bits leave 0.
void ShiftRightRowPlain(const std::uint16_t* words, std::uint16_t* shifted, std::size_t count, std::uint32_t bits);
void ShiftRightRowWide(const std::uint16_t* words, std::uint16_t* shifted, std::size_t count, std::uint32_t bits);

/// Brings the range from `lower` to `upper` to 0 to 255, cut to whole numbers; what lies outside saturates.
void ScaleWordRowPlain(const std::uint16_t* words, std::uint8_t* bytes, std::size_t count, std::uint16_t lower,
                       std::uint16_t upper);
void ScaleWordRowWide(const std::uint16_t* words, std::uint8_t* bytes, std::size_t count, std::uint16_t lower,
                      std::uint16_t upper);

/// Where floats go on the scale of a byte: (value - least) x span / reach, in float32 and this order.
struct FloatScale {
    float least = 0;
    float span = 1;
    float reach = 1;
};

/// Limits to 0 to 255 and cuts toward zero; what is no number becomes 0.
void FloatToByteRowPlain(const float* values, std::uint8_t* bytes, std::size_t count, const FloatScale& scale);
void FloatToByteRowWide(const float* values, std::uint8_t* bytes, std::size_t count, const FloatScale& scale);

/// The values from `low` to `high`, both included, of bytes read as signed or not; inverted, all others.
struct ByteBand {
    int low;
    int high;
    bool isSigned = false;
    bool isInverted = false;
};

/// Sets bit x AND 7 of byte x / 8 where value x is in the band, and clears it elsewhere; bits past `count` stay.
void PackBandRowPlain(const std::uint8_t* values, std::uint8_t* bits, std::size_t count, const ByteBand& band);
void PackBandRowWide(const std::uint8_t* values, std::uint8_t* bits, std::size_t count, const ByteBand& band);

/// The reverse: a byte of 0 or 1 for each bit.
void UnpackRow(const std::uint8_t* bits, std::uint8_t* values, std::size_t count);

}  // namespace tonewright
