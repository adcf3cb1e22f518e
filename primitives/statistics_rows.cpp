#include "primitives/statistics_rows.h"

#include <algorithm>
#include <cstring>

#include "primitives/wide.h"

namespace {

// As many bytes as their squares can be summed in 32 bits: 255 x 255 x 65536 stays below 2^32.
constexpr std::size_t kBlock = 65536;

TONEWRIGHT_BODY void addByteRow(const std::uint8_t* __restrict row, std::size_t count, ByteSums& sums) {
    std::uint8_t least = sums.least;
    std::uint8_t most = sums.most;
    for (std::size_t begin = 0; begin < count; begin += kBlock) {
        const std::uint8_t* block = row + begin;
        const std::size_t length = std::min(kBlock, count - begin);
        std::uint32_t sum = 0;
        std::uint32_t squares = 0;
        for (std::size_t i = 0; i < length; ++i) {
            const std::uint8_t value = block[i];
            sum += value;
            squares += static_cast<std::uint32_t>(value * value);
            least = std::min(least, value);
            most = std::max(most, value);
        }
        sums.sum += sum;
        sums.squares += squares;
    }
    sums.least = least;
    sums.most = most;
}

TONEWRIGHT_BODY void addColorRow(const std::uint8_t* __restrict row, std::size_t count, ByteSums (&sums)[3]) {
    for (std::size_t begin = 0; begin < count; begin += kBlock) {
        const std::uint8_t* block = row + 4 * begin;
        const std::size_t length = std::min(kBlock, count - begin);
        for (int channel = 0; channel < 3; ++channel) {
            std::uint32_t sum = 0;
            std::uint32_t squares = 0;
            std::uint32_t least = sums[channel].least;
            std::uint32_t most = sums[channel].most;
            const int shift = 8 * channel;
            for (std::size_t i = 0; i < length; ++i) {
                std::uint32_t word;
                std::memcpy(&word, block + 4 * i, sizeof word);
                const std::uint32_t value = word >> shift & 0xFF;
                sum += value;
                squares += value * value;
                least = std::min(least, value);
                most = std::max(most, value);
            }
            sums[channel].sum += sum;
            sums[channel].squares += squares;
            sums[channel].least = static_cast<std::uint8_t>(least);
            sums[channel].most = static_cast<std::uint8_t>(most);
        }
    }
}

}  // namespace

void AddByteRowPlain(const std::uint8_t* row, std::size_t count, ByteSums& sums) { addByteRow(row, count, sums); }
TONEWRIGHT_WIDE void AddByteRowWide(const std::uint8_t* row, std::size_t count, ByteSums& sums) {
    addByteRow(row, count, sums);
}
void AddColorRowPlain(const std::uint8_t* row, std::size_t count, ByteSums (&sums)[3]) {
    addColorRow(row, count, sums);
}
TONEWRIGHT_WIDE void AddColorRowWide(const std::uint8_t* row, std::size_t count, ByteSums (&sums)[3]) {
    addColorRow(row, count, sums);
}

void ByteHistogram::Add(const std::uint8_t* row, std::size_t count) {
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        std::uint64_t eight;
        std::memcpy(&eight, row + i, sizeof eight);
        ++tables_[0][eight & 0xFF];
        ++tables_[1][eight >> 8 & 0xFF];
        ++tables_[2][eight >> 16 & 0xFF];
        ++tables_[3][eight >> 24 & 0xFF];
        ++tables_[0][eight >> 32 & 0xFF];
        ++tables_[1][eight >> 40 & 0xFF];
        ++tables_[2][eight >> 48 & 0xFF];
        ++tables_[3][eight >> 56];
    }
    for (; i < count; ++i) ++tables_[0][row[i]];
}

void ByteHistogram::Finish(std::uint32_t (&bins)[256]) const {
    for (std::size_t value = 0; value < 256; ++value) {
        bins[value] = tables_[0][value] + tables_[1][value] + tables_[2][value] + tables_[3][value];
    }
}
