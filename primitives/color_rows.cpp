#include "primitives/color_rows.h"

#include <bit>
#include <cstring>

#include "primitives/wide.h"

namespace tonewright {

static_assert(std::endian::native == std::endian::little);

namespace {

constexpr std::uint32_t keepOrder(std::uint32_t word) { return word & 0xFFFFFF; }
constexpr std::uint32_t turnOrder(std::uint32_t word) { return __builtin_bswap32(word) >> 8; }

// A pixel moves as one 32-bit word that overlaps its neighbour's: one load and one store.
template <std::size_t kFrom, std::size_t kTo, std::uint32_t (*kReorder)(std::uint32_t)>
void moveWords(const std::uint8_t* __restrict from, std::uint8_t* __restrict to, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const bool isLast = i + 1 == count;
        std::uint32_t word = 0;
        std::memcpy(&word, from + kFrom * i, isLast ? kFrom : 4);
        word = kReorder(word);
        std::memcpy(to + kTo * i, &word, isLast ? kTo : 4);
    }
}

// Four pixels a step, in 16 bytes of which the last four may be the next pixels', as long as there are such. kBytes
// says which byte goes where; 16 is a zero.
// @return how many pixels are done
template <std::size_t kFrom, std::size_t kTo, int... kBytes>
[[gnu::always_inline]] inline std::size_t moveFours(const std::uint8_t* __restrict from, std::uint8_t* __restrict to,
                                                    std::size_t count) {
    using Bytes16 [[gnu::vector_size(16)]] = std::uint8_t;
    std::size_t i = 0;
    for (; i + 6 <= count; i += 4) {
        Bytes16 block;
        std::memcpy(&block, from + kFrom * i, sizeof block);
        block = __builtin_shufflevector(block, Bytes16{}, kBytes...);
        std::memcpy(to + kTo * i, &block, sizeof block);
    }
    return i;
}

}  // namespace

void SpreadBgrPlain(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count) {
    moveWords<3, 4, keepOrder>(bytes, pixels, count);
}

void SpreadRgbPlain(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count) {
    moveWords<3, 4, turnOrder>(bytes, pixels, count);
}

void PackBgrPlain(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count) {
    moveWords<4, 3, keepOrder>(pixels, bytes, count);
}

void PackRgbPlain(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count) {
    moveWords<4, 3, turnOrder>(pixels, bytes, count);
}

TONEWRIGHT_WIDE void SpreadBgrWide(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count) {
    const std::size_t i = moveFours<3, 4, 0, 1, 2, 16, 3, 4, 5, 16, 6, 7, 8, 16, 9, 10, 11, 16>(bytes, pixels, count);
    SpreadBgrPlain(bytes + 3 * i, pixels + 4 * i, count - i);
}

TONEWRIGHT_WIDE void SpreadRgbWide(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count) {
    const std::size_t i = moveFours<3, 4, 2, 1, 0, 16, 5, 4, 3, 16, 8, 7, 6, 16, 11, 10, 9, 16>(bytes, pixels, count);
    SpreadRgbPlain(bytes + 3 * i, pixels + 4 * i, count - i);
}

TONEWRIGHT_WIDE void PackBgrWide(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count) {
    const std::size_t i = moveFours<4, 3, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 16, 16, 16, 16>(pixels, bytes, count);
    PackBgrPlain(pixels + 4 * i, bytes + 3 * i, count - i);
}

TONEWRIGHT_WIDE void PackRgbWide(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count) {
    const std::size_t i = moveFours<4, 3, 2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, 16, 16, 16, 16>(pixels, bytes, count);
    PackRgbPlain(pixels + 4 * i, bytes + 3 * i, count - i);
}

void SpreadBgr(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count) {
    (RunsWide() ? SpreadBgrWide : SpreadBgrPlain)(bytes, pixels, count);
}

void SpreadRgb(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count) {
    (RunsWide() ? SpreadRgbWide : SpreadRgbPlain)(bytes, pixels, count);
}

void PackBgr(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count) {
    (RunsWide() ? PackBgrWide : PackBgrPlain)(pixels, bytes, count);
}

void PackRgb(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count) {
    (RunsWide() ? PackRgbWide : PackRgbPlain)(pixels, bytes, count);
}

}  // namespace tonewright
