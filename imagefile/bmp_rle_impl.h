#pragma once

#include <cstdint>
#include <span>

/// Decodes the run-length scheme of bitmaps of 4 or 8 bits: pairs of (count, value), and behind a count of 0 the codes
/// end of line (0), end of bitmap (1), jump (2) or that many plain values padded to two bytes.
/// @param put gets x, the row counted from the bottom, and the palette index of each pixel inside the bitmap
/// @return false where the stream ends before its end-of-bitmap code and before the last row is full
template <class Put>
bool decodeBmpRuns(std::span<const std::uint8_t> bytes, int bits, std::int64_t width, std::int64_t height, Put put) {
    std::int64_t x = 0;
    std::int64_t row = 0;
    std::size_t at = 0;
    const auto emit = [&](std::uint8_t index) {
        if (x < width && row < height) put(x, row, index);
        ++x;
    };
    const auto nibble = [&](std::uint8_t byte, std::int64_t k) {
        return bits == 8 ? byte : static_cast<std::uint8_t>(k % 2 == 0 ? byte >> 4 : byte & 15);
    };
    while (at + 2 <= bytes.size()) {
        const std::uint8_t count = bytes[at];
        const std::uint8_t value = bytes[at + 1];
        at += 2;
        if (count > 0) {
            for (int k = 0; k < count; ++k) emit(nibble(value, k));
        } else if (value == 0) {
            x = 0;
            ++row;
        } else if (value == 1) {
            return true;
        } else if (value == 2) {
            if (at + 2 > bytes.size()) return false;
            x += bytes[at];
            row += bytes[at + 1];
            at += 2;
        } else {
            const std::size_t plain = bits == 8 ? value : (value + 1u) / 2;
            if (at + plain > bytes.size()) return false;
            for (int k = 0; k < value; ++k) {
                emit(nibble(bytes[at + static_cast<std::size_t>(bits == 8 ? k : k / 2)], k));
            }
            at += (plain + 1) / 2 * 2;
        }
    }
    return row >= height || (row == height - 1 && x >= width);
}
