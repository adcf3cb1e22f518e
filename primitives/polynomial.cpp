#include "primitives/polynomial.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "primitives/wide.h"

namespace {

constexpr std::size_t kBlock = 512;  // what three channels of scratch leave room for in the first cache

struct Channels {
    std::int32_t red, green, blue;
};

template <class Word>
TONEWRIGHT_BODY Word LoadWord(const std::uint8_t* from) {
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

template <class Pixel>
TONEWRIGHT_BODY Channels LoadPixel(const std::uint8_t* from) {
    if constexpr (Pixel::bytes == 8) {
        const auto low = LoadWord<std::uint32_t>(from);
        const auto high = LoadWord<std::uint32_t>(from + 4);
        return {static_cast<std::int32_t>(high & 0xffff), static_cast<std::int32_t>(low >> 16),
                static_cast<std::int32_t>(low & 0xffff)};
    } else {
        constexpr int shift = Pixel::fullScale == 255 ? 8 : 10;
        const auto word = LoadWord<std::uint32_t>(from);
        const auto channel = [word](int by) { return static_cast<std::int32_t>((word >> by) & Pixel::fullScale); };
        return {channel(2 * shift), channel(shift), channel(0)};
    }
}

template <class Pixel>
TONEWRIGHT_BODY void StorePixel(std::uint8_t* to, std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    if constexpr (Pixel::bytes == 8) {
        const std::uint64_t word = std::uint64_t{red} << 32 | std::uint64_t{green} << 16 | blue;
        std::memcpy(to, &word, sizeof word);
    } else {
        constexpr int shift = Pixel::fullScale == 255 ? 8 : 10;
        const std::uint32_t word = red << (2 * shift) | green << shift | blue;
        std::memcpy(to, &word, sizeof word);
    }
}

template <int terms>
TONEWRIGHT_BODY float Evaluate(float r, float g, float b, const float* c) {
    if constexpr (terms == 0) return 0.0f;
    float v = ((r * c[1] + c[0]) + g * c[2]) + b * c[3];
    if constexpr (terms == 7) {
        v += (r * c[4]) * r;
        v += (g * c[5]) * g;
        v += (b * c[6]) * b;
    }
    if constexpr (terms == 10) {
        v += (r * c[4]) * r;
        v += (r * c[5]) * g;
        v += (r * c[6]) * b;
        v += (g * c[7]) * g;
        v += (g * c[8]) * b;
        v += (b * c[9]) * b;
    }
    return v;
}

template <class Pixel>
TONEWRIGHT_BODY std::int32_t Fold(float v) {
    constexpr auto fullScale = static_cast<float>(Pixel::fullScale);
    float a = std::abs(v * fullScale);
    a = a < fullScale ? a : fullScale;
    const auto whole = static_cast<std::int32_t>(a);  // upward without a call: a is never negative
    return whole + (static_cast<float>(whole) < a ? 1 : 0);
}

template <class Pixel, int terms>
TONEWRIGHT_BODY void Row(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                         const float* coefficients, const typename Pixel::Entry* table) {
    constexpr auto fullScale = static_cast<float>(Pixel::fullScale);
    float c[3][terms == 0 ? 1 : terms] = {};
    if constexpr (terms != 0) std::memcpy(c, coefficients, sizeof c);
    std::int32_t red[kBlock], green[kBlock], blue[kBlock];
    while (count > 0) {
        const std::size_t block = std::min(count, kBlock);
        for (std::size_t i = 0; i < block; ++i) {
            const Channels pixel = LoadPixel<Pixel>(source + i * Pixel::bytes);
            const float r = static_cast<float>(pixel.red) / fullScale;
            const float g = static_cast<float>(pixel.green) / fullScale;
            const float b = static_cast<float>(pixel.blue) / fullScale;
            red[i] = Fold<Pixel>(Evaluate<terms>(r, g, b, c[0]));
            green[i] = Fold<Pixel>(Evaluate<terms>(r, g, b, c[1]));
            blue[i] = Fold<Pixel>(Evaluate<terms>(r, g, b, c[2]));
        }
        for (std::size_t i = 0; i < block; ++i) {
            StorePixel<Pixel>(destination + i * Pixel::bytes, table[red[i]], table[green[i]], table[blue[i]]);
        }
        source += block * Pixel::bytes;
        destination += block * Pixel::bytes;
        count -= block;
    }
}

template <class Pixel, int terms>
void RowPlain(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, const float* coefficients,
              const typename Pixel::Entry* table) {
    Row<Pixel, terms>(source, destination, count, coefficients, table);
}

template <class Pixel, int terms>
TONEWRIGHT_WIDE void RowWide(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                             const float* coefficients, const typename Pixel::Entry* table) {
    Row<Pixel, terms>(source, destination, count, coefficients, table);
}

}  // namespace

template <class Pixel>
PolynomialRow<Pixel> GetPolynomialRow(int terms, bool wide) {
    switch (terms) {
        case 4:
            return wide ? &RowWide<Pixel, 4> : &RowPlain<Pixel, 4>;
        case 7:
            return wide ? &RowWide<Pixel, 7> : &RowPlain<Pixel, 7>;
        case 10:
            return wide ? &RowWide<Pixel, 10> : &RowPlain<Pixel, 10>;
        default:
            return &RowPlain<Pixel, 0>;
    }
}

template PolynomialRow<PixelRgb> GetPolynomialRow<PixelRgb>(int terms, bool wide);
template PolynomialRow<PixelRgb10> GetPolynomialRow<PixelRgb10>(int terms, bool wide);
template PolynomialRow<PixelRgb16> GetPolynomialRow<PixelRgb16>(int terms, bool wide);
