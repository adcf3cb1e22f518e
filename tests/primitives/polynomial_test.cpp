#include "primitives/polynomial.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "primitives/wide.h"

namespace {

template <class Pixel>
struct Layout;
template <>
struct Layout<PixelRgb> {
    using Word = std::uint32_t;
    static constexpr int bits = 8;
};
template <>
struct Layout<PixelRgb10> {
    using Word = std::uint32_t;
    static constexpr int bits = 10;
};
template <>
struct Layout<PixelRgb16> {
    using Word = std::uint64_t;
    static constexpr int bits = 16;
};

template <class Pixel>
std::uint64_t FoldByHand(float value) {
    const float magnitude = std::fabs(value * static_cast<float>(Pixel::fullScale));
    if (!(magnitude < static_cast<float>(Pixel::fullScale))) return Pixel::fullScale;
    return static_cast<std::uint64_t>(std::ceil(static_cast<double>(magnitude)));
}

/// One pixel, the sum written out term by term from a table of which channels each term multiplies.
template <class Pixel>
std::uint64_t CorrectByHand(std::uint64_t word, int terms, const std::vector<float>& c,
                            const std::vector<typename Pixel::Entry>& table) {
    constexpr int bits = Layout<Pixel>::bits;
    float channel[3];  // red, green, blue
    for (int k = 0; k < 3; ++k) {
        const auto sample = static_cast<std::uint32_t>(word >> (bits * (2 - k))) & std::uint32_t{Pixel::fullScale};
        channel[k] = static_cast<float>(sample) / static_cast<float>(Pixel::fullScale);
    }
    static constexpr int products[10][2] = {{}, {}, {}, {}, {0, 0}, {0, 1}, {0, 2}, {1, 1}, {1, 2}, {2, 2}};
    std::uint64_t result = 0;
    for (int row = 0; row < 3; ++row) {
        const float* k = c.data() + row * terms;
        float v = 0.0f;
        if (terms >= 4) {
            v = channel[0] * k[1] + k[0];
            v = v + channel[1] * k[2];
            v = v + channel[2] * k[3];
        }
        for (int i = 4; i < terms; ++i) {
            const int first = terms == 7 ? i - 4 : products[i][0];
            const int second = terms == 7 ? i - 4 : products[i][1];
            v = v + (channel[first] * k[i]) * channel[second];
        }
        result |= std::uint64_t{table[FoldByHand<Pixel>(v)]} << (bits * (2 - row));
    }
    return result;
}

template <class Pixel>
class PolynomialRowTest : public testing::Test {};
using Pixels = testing::Types<PixelRgb, PixelRgb10, PixelRgb16>;
TYPED_TEST_SUITE(PolynomialRowTest, Pixels);

/// Coefficients from small to overflowing, and some that are not numbers.
std::vector<float> Coefficients(int terms, int kind) {
    std::mt19937 random(static_cast<unsigned>(kind));
    std::uniform_real_distribution<float> draw(-1.0f, 1.0f);
    std::vector<float> c(static_cast<std::size_t>(3 * terms));
    for (float& value : c) value = draw(random) * (kind == 2 ? 1e38f : kind == 1 ? 3.0f : 0.4f);
    if (kind == 3 && terms > 0) c[2] = std::numeric_limits<float>::quiet_NaN();
    if (kind == 3 && terms > 0) c[c.size() - 1] = std::numeric_limits<float>::infinity();
    return c;
}

}  // namespace

TYPED_TEST(PolynomialRowTest, PlainAndWideEqualTheSumTermByTerm) {
    using Pixel = TypeParam;
    using Word = typename Layout<Pixel>::Word;
    std::mt19937 random(7);
    std::vector<typename Pixel::Entry> table(Pixel::fullScale + 1);
    for (auto& entry : table) entry = static_cast<typename Pixel::Entry>(random() & Pixel::fullScale);
    for (const std::size_t count : {0u, 1u, 7u, 8u, 9u, 31u, 33u, 511u, 512u, 513u, 1000u}) {
        std::vector<std::uint8_t> source(count * sizeof(Word) + 1);
        for (auto& byte : source) byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() % 2 * 255 : random());
        for (const int terms : {0, 4, 7, 10}) {
            for (int kind = 0; kind < 4; ++kind) {
                const std::vector<float> c = Coefficients(terms, kind);
                std::vector<std::uint8_t> expected(source.size() + 64, 0xa5);
                for (std::size_t i = 0; i < count; ++i) {
                    Word word;
                    std::memcpy(&word, &source[1 + i * sizeof word], sizeof word);
                    word = static_cast<Word>(CorrectByHand<Pixel>(word, terms, c, table));
                    std::memcpy(&expected[1 + i * sizeof word], &word, sizeof word);
                }
                for (const bool wide : {false, true}) {
                    if (wide && !HasAvx2()) continue;
                    std::vector<std::uint8_t> pixels(expected.size(), 0xa5);
                    const auto row = GetPolynomialRow<Pixel>(terms, wide);
                    row(source.data() + 1, pixels.data() + 1, count, c.data(), table.data());
                    ASSERT_EQ(pixels, expected) << count << " pixels, " << terms << " terms, kind " << kind << wide;
                    std::copy(source.begin(), source.end(), pixels.begin());
                    row(pixels.data() + 1, pixels.data() + 1, count, c.data(), table.data());
                    pixels[0] = 0xa5;
                    ASSERT_EQ(pixels, expected) << "in place";
                }
            }
        }
    }
}

TEST(PolynomialRow, MirrorsNegativesRoundsUpAndTakesNotANumberForFullScale) {
    std::vector<std::uint8_t> table(256);
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<std::uint8_t>(i);
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    // Red -0.1: 25.5 up to 26. Green: a trace above 100 / 255 gives 101. Blue: not a number.
    const float c[] = {-0.1f, 0, 0, 0, 100.001f / 255, 0, 0, 0, nan, 0, 0, 0};
    const std::uint8_t source[4] = {1, 2, 3, 4};
    std::uint8_t pixel[4] = {9, 9, 9, 9};
    GetPolynomialRow<PixelRgb>(4, false)(source, pixel, 1, c, table.data());
    EXPECT_EQ(pixel[2], 26);
    EXPECT_EQ(pixel[1], 101);
    EXPECT_EQ(pixel[0], 255);
    EXPECT_EQ(pixel[3], 0);
}
