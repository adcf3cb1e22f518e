#include "primitives/foreground_words.h"

#include <immintrin.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "primitives/wide.h"

namespace tonewright {

namespace {

static_assert(std::endian::native == std::endian::little);

constexpr std::size_t kWordBits = 64;

std::uint64_t load(const void* from) {
    std::uint64_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

// The bits of eight pixels: the top bit of each byte that isn't 0, gathered by a multiplication into one byte.
std::uint64_t nonZeroBits(const std::uint8_t* pixels) {
    constexpr std::uint64_t low = 0x7F7F7F7F7F7F7F7F;
    const std::uint64_t bytes = load(pixels);
    if (bytes == 0) return 0;
    const std::uint64_t tops = (((bytes & low) + low) | bytes) & ~low;
    return ((tops >> 7) * 0x0102040810204080) >> 56;
}

std::uint64_t nonZeroBits(const std::uint16_t* pixels) {
    constexpr std::uint64_t low = 0x7FFF7FFF7FFF7FFF;
    std::uint64_t bits = 0;
    for (int half = 0; half < 2; ++half) {
        const std::uint64_t words = load(pixels + 4 * half);
        if (words == 0) continue;
        const std::uint64_t tops = (((words & low) + low) | words) & ~low;
        bits |= (((tops >> 15) * 0x1000200040008000) >> 60) << (4 * half);
    }
    return bits;
}

// The first `count` of a word's bits.
std::uint64_t firstBits(std::size_t count) {
    return count >= kWordBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

template <class T>
void tailWord(const T* row, std::size_t count, bool zeros, std::uint64_t* word) {
    std::uint64_t bits = 0;
    for (std::size_t x = 0; x < count; ++x) bits |= std::uint64_t{row[x] != 0} << x;
    *word = zeros ? ~bits & firstBits(count) : bits;
}

template <class T>
void plainWords(const T* row, std::size_t count, bool zeros, std::uint64_t* words) {
    const std::uint64_t flip = zeros ? ~std::uint64_t{0} : 0;
    const std::size_t whole = count / kWordBits;
    for (std::size_t w = 0; w < whole; ++w, row += kWordBits) {
        std::uint64_t bits = 0;
        for (std::size_t x = 0; x < kWordBits; x += 8) bits |= nonZeroBits(row + x) << x;
        words[w] = bits ^ flip;
    }
    if (count % kWordBits != 0) tailWord(row, count % kWordBits, zeros, words + whole);
}

TONEWRIGHT_WIDE inline std::uint64_t zeroBits32(const std::uint8_t* pixels) {
    const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_setzero_si256())));
}

TONEWRIGHT_WIDE inline std::uint64_t zeroBits32(const std::uint16_t* pixels) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i first = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    const __m256i second = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + 16));
    const __m256i packed = _mm256_packs_epi16(_mm256_cmpeq_epi16(first, zero), _mm256_cmpeq_epi16(second, zero));
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_permute4x64_epi64(packed, 0xD8)));
}

template <class T>
TONEWRIGHT_WIDE void wideWords(const T* row, std::size_t count, bool zeros, std::uint64_t* words) {
    const std::uint64_t flip = zeros ? 0 : ~std::uint64_t{0};
    const std::size_t whole = count / kWordBits;
    for (std::size_t w = 0; w < whole; ++w, row += kWordBits) {
        words[w] = (zeroBits32(row) | zeroBits32(row + 32) << 32) ^ flip;
    }
    if (count % kWordBits != 0) tailWord(row, count % kWordBits, zeros, words + whole);
}

}  // namespace

void ForegroundWords8Plain(const std::uint8_t* row, std::size_t count, bool zeros, std::uint64_t* words) {
    plainWords(row, count, zeros, words);
}
void ForegroundWords16Plain(const std::uint16_t* row, std::size_t count, bool zeros, std::uint64_t* words) {
    plainWords(row, count, zeros, words);
}

// By intrinsics: the compiler finds no way from a comparison of bytes to bits.
TONEWRIGHT_WIDE void ForegroundWords8Wide(const std::uint8_t* row, std::size_t count, bool zeros,
                                          std::uint64_t* words) {
    wideWords(row, count, zeros, words);
}
TONEWRIGHT_WIDE void ForegroundWords16Wide(const std::uint16_t* row, std::size_t count, bool zeros,
                                           std::uint64_t* words) {
    wideWords(row, count, zeros, words);
}

void ForegroundWords1ByBytes(const std::uint8_t* row, std::size_t count, bool zeros, std::uint64_t* words) {
    const auto flip = static_cast<std::uint8_t>(zeros ? 0xFF : 0);
    for (std::size_t x = 0; x < count; x += kWordBits) {
        const std::size_t pixels = std::min(kWordBits, count - x);
        std::uint64_t bits = 0;
        for (std::size_t b = 0; b < pixels; b += 8) bits |= std::uint64_t(row[(x + b) / 8] ^ flip) << b;
        words[x / kWordBits] = bits & firstBits(pixels);
    }
}

void ForegroundWords1ByWords(const std::uint8_t* row, std::size_t count, bool zeros, std::uint64_t* words) {
    const std::uint64_t flip = zeros ? ~std::uint64_t{0} : 0;
    const std::size_t whole = count / kWordBits;
    for (std::size_t w = 0; w < whole; ++w) words[w] = load(row + 8 * w) ^ flip;
    if (count % kWordBits != 0) {
        std::uint32_t last;
        std::memcpy(&last, row + 8 * whole, sizeof last);
        words[whole] = last ^ static_cast<std::uint32_t>(flip);
    }
}

}  // namespace tonewright
