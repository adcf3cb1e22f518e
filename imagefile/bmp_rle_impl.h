#pragma once

#include <cstddef>
#include <cstdint>

/// Decodes the run-length scheme of bitmaps of 4 or 8 bits: pairs of (count, value), and behind a count of 0 the codes
/// end of line (0), end of bitmap (1), jump (2) or that many plain values padded to two bytes.
/// @param take fills a buffer with the file's next bytes, or answers false
/// @param put gets x, the row counted from the bottom, and the palette index of each pixel inside the bitmap
/// @return false where the stream ends before its end-of-bitmap code and before the last row is full
template <class Take, class Put>
bool decodeBmpRuns(Take take, int bits, std::int64_t width, std::int64_t height, Put put) {
    std::int64_t x = 0;
    std::int64_t row = 0;
    std::uint8_t bytes[256];
    const auto emit = [&](std::uint8_t index) {
        if (x < width) put(x, row, index);
        ++x;
    };
    const auto nibble = [&](std::uint8_t byte, std::int64_t k) {
        return bits == 8 ? byte : static_cast<std::uint8_t>(k % 2 == 0 ? byte >> 4 : byte & 15);
    };
    while (row < height) {
        if (!take(bytes, 2)) return row == height - 1 && x >= width;
        const std::uint8_t count = bytes[0];
        const std::uint8_t value = bytes[1];
        if (count > 0) {
            for (int k = 0; k < count; ++k) emit(nibble(value, k));
        } else if (value == 0) {
            x = 0;
            ++row;
        } else if (value == 1) {
            return true;
        } else if (value == 2) {
            if (!take(bytes, 2)) return false;
            x += bytes[0];
            row += bytes[1];
        } else {
            const std::size_t plain = bits == 8 ? value : (value + 1u) / 2;
            if (!take(bytes, plain)) return false;
            for (int k = 0; k < value; ++k) {
                emit(nibble(bytes[static_cast<std::size_t>(bits == 8 ? k : k / 2)], k));
            }
            std::uint8_t padding;
            if (plain % 2 != 0 && !take(&padding, 1)) return row == height - 1 && x >= width;
        }
    }
    return true;
}
