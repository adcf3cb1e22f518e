#include "primitives/convert_rows.h"

#include <immintrin.h>

#include <cstring>

#include "primitives/wide.h"

namespace {

constexpr int kBlue = 117;
constexpr int kGreen = 601;
constexpr int kRed = 306;

template <class Value>
void packAtOrAbove(const Value* values, Value threshold, std::uint8_t* bits, std::size_t count) {
    const std::size_t whole = count / 8 * 8;
    for (std::size_t i = 0; i < whole; i += 8) {
        unsigned byte = 0;
        for (unsigned bit = 0; bit < 8; ++bit) byte |= static_cast<unsigned>(values[i + bit] >= threshold) << bit;
        bits[i / 8] = static_cast<std::uint8_t>(byte);
    }
    for (std::size_t i = whole; i < count; ++i) {
        const unsigned mask = 1u << (i % 8);
        const unsigned others = bits[i / 8] & ~mask;
        bits[i / 8] = static_cast<std::uint8_t>(others | (values[i] >= threshold ? mask : 0u));
    }
}

}  // namespace

void LuminanceRowPlain(const std::uint8_t* __restrict pixels, std::uint8_t* __restrict gray, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* pixel = pixels + 4 * i;
        gray[i] = static_cast<std::uint8_t>((kGreen * pixel[1] + kRed * pixel[2] + kBlue * pixel[0]) >> 10);
    }
}

// By intrinsics: 16-bit products added in pairs take half the time of what the compiler makes of the plain loop.
TONEWRIGHT_WIDE void LuminanceRowWide(const std::uint8_t* pixels, std::uint8_t* gray, std::size_t count) {
    constexpr std::size_t kStep = 32;
    const __m256i zero = _mm256_setzero_si256();
    const __m256i weights = _mm256_set1_epi64x((std::int64_t{kRed} << 32) | (std::int64_t{kGreen} << 16) | kBlue);
    const __m256i inOrder = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    const std::size_t whole = count / kStep * kStep;
    for (std::size_t i = 0; i < whole; i += kStep) {
        __m256i luma[4];
        for (std::size_t k = 0; k < 4; ++k) {
            const __m256i eight = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + 4 * i + 32 * k));
            const __m256i low = _mm256_madd_epi16(_mm256_unpacklo_epi8(eight, zero), weights);
            const __m256i high = _mm256_madd_epi16(_mm256_unpackhi_epi8(eight, zero), weights);
            luma[k] = _mm256_srli_epi32(_mm256_hadd_epi32(low, high), 10);
        }
        const __m256i bytes =
            _mm256_packus_epi16(_mm256_packus_epi32(luma[0], luma[1]), _mm256_packus_epi32(luma[2], luma[3]));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(gray + i), _mm256_permutevar8x32_epi32(bytes, inOrder));
    }
    LuminanceRowPlain(pixels + 4 * whole, gray + whole, count - whole);
}

void LuminanceRow(const std::uint8_t* pixels, std::uint8_t* gray, std::size_t count) {
    static const auto row = HasAvx2() ? LuminanceRowWide : LuminanceRowPlain;
    row(pixels, gray, count);
}

void PackAtOrAboveRow(const std::uint8_t* values, std::uint8_t threshold, std::uint8_t* bits, std::size_t count) {
    packAtOrAbove(values, threshold, bits, count);
}

void PackAtOrAboveRow(const std::int8_t* values, std::int8_t threshold, std::uint8_t* bits, std::size_t count) {
    packAtOrAbove(values, threshold, bits, count);
}
