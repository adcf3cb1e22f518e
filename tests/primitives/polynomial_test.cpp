#include "primitives/polynomial.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

using namespace tonewright;

namespace {

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

TYPED_TEST(PolynomialRowTest, EveryFormEqualsThePlainOneAtAnyLengthAndAddress) {
    using Pixel = TypeParam;
    std::mt19937 random(7);
    static GammaTable<Pixel> table;
    for (auto& entry : table) entry = static_cast<typename Pixel::Entry>(random() & Pixel::fullScale);
    for (const std::size_t count : {0u, 1u, 7u, 8u, 9u, 15u, 17u, 31u, 33u, 511u, 513u, 1000u}) {
        std::vector<std::uint8_t> source(count * Pixel::bytes + 1);
        for (auto& byte : source) byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() % 2 * 255 : random());
        for (const int terms : {0, 4, 7, 10}) {
            for (int kind = 0; kind < 4; ++kind) {
                const std::vector<float> c = Coefficients(terms, kind);
                std::vector<std::uint8_t> expected(source.size() + 64, 0xa5);
                GetPolynomialRow<Pixel>(terms, RowForm::Plain)(&source[1], &expected[1], count, c.data(), table);
                for (const RowForm form : kRowForms) {
                    if (!HasForm(form)) continue;
                    std::vector<std::uint8_t> pixels(expected.size(), 0xa5);
                    std::copy(source.begin() + 1, source.end(), pixels.begin() + 1);
                    GetPolynomialRow<Pixel>(terms, form)(&pixels[1], &pixels[1], count, c.data(), table);
                    ASSERT_EQ(pixels, expected) << static_cast<int>(form) << " " << count << " " << terms << kind;
                }
            }
        }
    }
}

TEST(PolynomialRow, MirrorsNegativesRoundsUpAndTakesNotANumberForFullScale) {
    static GammaTable<PixelRgb> table;
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<std::uint8_t>(i);
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    // Red -0.1: 25.5 up to 26. Green: a trace above 100 / 255 gives 101. Blue: not a number.
    const float c[] = {-0.1f, 0, 0, 0, 100.001f / 255, 0, 0, 0, nan, 0, 0, 0};
    std::uint8_t pixel[4] = {1, 2, 3, 4};
    GetPolynomialRow<PixelRgb>(4, RowForm::Plain)(pixel, pixel, 1, c, table);
    EXPECT_EQ(pixel[2], 26);
    EXPECT_EQ(pixel[1], 101);
    EXPECT_EQ(pixel[0], 255);
    EXPECT_EQ(pixel[3], 0);
}
