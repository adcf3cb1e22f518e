#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

/// Hands a source's bytes out in small pieces and reads it in blocks.
/// @tparam Read fills a buffer with at most so many bytes, and answers how many came
template <class Read>
class BlockBytes {
public:
    explicit BlockBytes(Read read) : read_(read) {}

    /// @return the next `count` bytes, at most 256, valid until the next call; empty where the source has fewer
    std::span<const std::uint8_t> Take(std::size_t count) {
        if (held_ - at_ < count) Refill();
        if (held_ - at_ < count) return {};
        const std::span<const std::uint8_t> bytes(block_.data() + at_, count);
        at_ += count;
        return bytes;
    }

private:
    void Refill() {
        std::memmove(block_.data(), block_.data() + at_, held_ - at_);
        held_ -= at_;
        at_ = 0;
        held_ += read_(block_.data() + held_, block_.size() - held_);
    }

    Read read_;
    std::vector<std::uint8_t> block_ = std::vector<std::uint8_t>(64 << 10);
    std::size_t at_ = 0;
    std::size_t held_ = 0;
};

/// Decodes the run-length scheme of bitmaps of 4 or 8 bits: pairs of (count, value), and behind a count of 0 the codes
/// end of line (0), end of bitmap (1), jump (2) or that many plain values padded to two bytes.
/// @param bytes the file's, from the first pair
/// @param put gets x, the row counted from the bottom, and the palette indices of pixels side by side inside the bitmap
/// @return false where the stream ends before its end-of-bitmap code and before the last row is full
template <class Bytes, class Put>
bool decodeBmpRuns(Bytes& bytes, int bits, std::int64_t width, std::int64_t height, Put put) {
    std::int64_t x = 0;
    std::int64_t row = 0;
    std::array<std::uint8_t, 256> indices{};
    const auto emit = [&](const std::uint8_t* values, std::int64_t count) {
        const std::int64_t inside = std::min(count, width - x);
        if (inside > 0) put(x, row, std::span(values, static_cast<std::size_t>(inside)));
        x += count;
    };
    const auto isFull = [&] { return row == height - 1 && x >= width; };
    while (row < height) {
        const std::span<const std::uint8_t> pair = bytes.Take(2);
        if (pair.empty()) return isFull();
        const unsigned count = pair[0];
        const unsigned value = pair[1];
        if (count > 0) {
            if (bits == 8) {
                std::memset(indices.data(), static_cast<int>(value), count);
            } else {
                for (unsigned k = 0; k < count; ++k) {
                    indices[k] = static_cast<std::uint8_t>(k % 2 == 0 ? value >> 4 : value & 15);
                }
            }
            emit(indices.data(), count);
        } else if (value == 0) {
            x = 0;
            ++row;
        } else if (value == 1) {
            return true;
        } else if (value == 2) {
            const std::span<const std::uint8_t> jump = bytes.Take(2);
            if (jump.empty()) return false;
            x += jump[0];
            row += jump[1];
        } else {
            const std::size_t length = bits == 8 ? value : (value + 1) / 2;
            const std::span<const std::uint8_t> plain = bytes.Take(length);
            if (plain.empty()) return false;
            if (bits == 8) {
                emit(plain.data(), value);
            } else {
                for (unsigned k = 0; k < value; ++k) {
                    indices[k] = static_cast<std::uint8_t>(k % 2 == 0 ? plain[k / 2] >> 4 : plain[k / 2] & 15);
                }
                emit(indices.data(), value);
            }
            if (length % 2 != 0 && bytes.Take(1).empty()) return isFull();
        }
    }
    return true;
}
