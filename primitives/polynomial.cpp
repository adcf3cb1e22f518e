#include "primitives/polynomial.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "primitives/table_rows.h"

namespace tonewright {

namespace {

constexpr std::size_t kBlock = 512;  // pixels; the scratch of three channels leaves room in the first cache

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

/// sample / full scale. The sum of two products, exact for every sample, takes a third of a division's time: with
/// s = full scale, 1 / s = 1 / (s + 1) + 1 / (s (s + 1)), of which the first product is exact and the second so small
/// that its own rounding never shows.
template <class Pixel>
TONEWRIGHT_BODY constexpr float Normalise(std::int32_t sample) {
    constexpr double fullScale = Pixel::fullScale;
    constexpr auto most = static_cast<float>(1.0 / (fullScale + 1.0));
    constexpr auto rest = static_cast<float>(1.0 / (fullScale * (fullScale + 1.0)));
    const auto value = static_cast<float>(sample);
    return value * most + value * rest;
}

template <class Pixel>
constexpr bool DividesExactly() {
    for (std::int32_t i = 0; i <= Pixel::fullScale; ++i) {
        if (Normalise<Pixel>(i) != static_cast<float>(i) / static_cast<float>(Pixel::fullScale)) return false;
    }
    return true;
}
static_assert(DividesExactly<PixelRgb>() && DividesExactly<PixelRgb10>() && DividesExactly<PixelRgb16>());

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

/// The table's index for a result: mirrored, limited, rounded upward. Only the wide forms have an instruction for that;
/// the others come by the same without a call.
template <class Pixel, RowForm form>
TONEWRIGHT_BODY std::int32_t Fold(float v) {
    constexpr auto fullScale = static_cast<float>(Pixel::fullScale);
    float a = std::abs(v * fullScale);
    a = a < fullScale ? a : fullScale;
    if constexpr (form != RowForm::Plain) return static_cast<std::int32_t>(std::ceil(a));
    const auto whole = static_cast<std::int32_t>(a);
    return whole + (static_cast<float>(whole) < a ? 1 : 0);
}

/// The table's indices for a block of pixels, each handed to store(i, red, green, blue).
template <class Pixel, int terms, RowForm form, class Store>
TONEWRIGHT_BODY void EvaluateBlock(const std::uint8_t* source, std::size_t count, const float (&c)[3][10],
                                   const Store& store) {
    for (std::size_t i = 0; i < count; ++i) {
        const Channels pixel = LoadPixel<Pixel>(source + i * Pixel::bytes);
        const float r = Normalise<Pixel>(pixel.red);
        const float g = Normalise<Pixel>(pixel.green);
        const float b = Normalise<Pixel>(pixel.blue);
        store(i, Fold<Pixel, form>(Evaluate<terms>(r, g, b, c[0])), Fold<Pixel, form>(Evaluate<terms>(r, g, b, c[1])),
              Fold<Pixel, form>(Evaluate<terms>(r, g, b, c[2])));
    }
}

template <class Pixel, int terms, RowForm form>
TONEWRIGHT_BODY void Row(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                         const float* coefficients, const GammaTable<Pixel>& table) {
    float c[3][10] = {};
    for (int row = 0; row < 3; ++row) std::copy_n(coefficients + row * terms, terms, c[row]);
    for (std::size_t done = 0; done < count; done += kBlock) {
        const std::size_t block = std::min(count - done, kBlock);
        const std::uint8_t* const from = source + done * Pixel::bytes;
        std::uint8_t* const to = destination + done * Pixel::bytes;
        if constexpr (Pixel::fullScale == 255) {
            std::uint8_t indices[kBlock * Pixel::bytes];
            EvaluateBlock<Pixel, terms, form>(
                from, block, c, [&](std::size_t i, std::int32_t r, std::int32_t g, std::int32_t b) {
                    StorePixel<Pixel>(indices + i * Pixel::bytes, static_cast<std::uint32_t>(r),
                                      static_cast<std::uint32_t>(g), static_cast<std::uint32_t>(b));
                });
            GetLookUpRow(form)(indices, to, block, table);
        } else {
            std::int32_t red[kBlock], green[kBlock], blue[kBlock];
            EvaluateBlock<Pixel, terms, form>(from, block, c,
                                              [&](std::size_t i, std::int32_t r, std::int32_t g, std::int32_t b) {
                                                  red[i] = r;
                                                  green[i] = g;
                                                  blue[i] = b;
                                              });
            for (std::size_t i = 0; i < block; ++i) {
                const auto entry = [&table, i](const std::int32_t* index) {
                    return std::uint32_t{table[static_cast<std::size_t>(index[i])]};
                };
                StorePixel<Pixel>(to + i * Pixel::bytes, entry(red), entry(green), entry(blue));
            }
        }
    }
}

template <class Pixel, int terms>
void RowPlain(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, const float* coefficients,
              const GammaTable<Pixel>& table) {
    Row<Pixel, terms, RowForm::Plain>(source, destination, count, coefficients, table);
}

template <class Pixel, int terms>
TONEWRIGHT_WIDE void RowAvx2(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                             const float* coefficients, const GammaTable<Pixel>& table) {
    Row<Pixel, terms, RowForm::Avx2>(source, destination, count, coefficients, table);
}

template <class Pixel, int terms>
TONEWRIGHT_WIDEST void RowAvx512(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                                 const float* coefficients, const GammaTable<Pixel>& table) {
    Row<Pixel, terms, RowForm::Avx512>(source, destination, count, coefficients, table);
}

template <class Pixel, int terms>
PolynomialRow<Pixel> Choose(RowForm form) {
    return form == RowForm::Avx512 ? RowAvx512<Pixel, terms>
           : form == RowForm::Avx2 ? RowAvx2<Pixel, terms>
                                   : RowPlain<Pixel, terms>;
}

}  // namespace

template <class Pixel>
PolynomialRow<Pixel> GetPolynomialRow(int terms, RowForm form) {
    switch (terms) {
        case 4:
            return Choose<Pixel, 4>(form);
        case 7:
            return Choose<Pixel, 7>(form);
        case 10:
            return Choose<Pixel, 10>(form);
        default:
            return RowPlain<Pixel, 0>;
    }
}

template PolynomialRow<PixelRgb> GetPolynomialRow<PixelRgb>(int terms, RowForm form);
template PolynomialRow<PixelRgb10> GetPolynomialRow<PixelRgb10>(int terms, RowForm form);
template PolynomialRow<PixelRgb16> GetPolynomialRow<PixelRgb16>(int terms, RowForm form);

}  // namespace tonewright
