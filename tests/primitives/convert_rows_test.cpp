#include "primitives/convert_rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "primitives/wide.h"
#include "tests/support/row_buffers.h"

using namespace tonewright;

namespace {

// Both forms, or the plain one alone where the machine lacks the other.
template <class Row>
std::vector<Row> forms(Row plain, Row wide) {
    return HasAvx2() ? std::vector<Row>{plain, wide} : std::vector<Row>{plain};
}

template <class T>
std::vector<T> allWords() {
    std::vector<T> words(65536);
    for (std::size_t i = 0; i < words.size(); ++i) words[i] = static_cast<T>(i);
    return words;
}

}  // namespace

TEST(LuminanceRow, BothFormsFollowTheFormulaAtAnyLengthAndAddress) {
    for (const auto row : forms(LuminanceRowPlain, LuminanceRowWide)) {
        for (const std::size_t count : kRowLengths) {
            GuardedBytes pixels = RandomGuarded(4 * count, 1, 3), gray(count, 3);
            if (count > 0) std::fill_n(pixels.Data(), 4, std::uint8_t{255});  // white
            row(pixels.Data(), gray.Data(), count);
            const Bytes out = gray.Content();
            for (std::size_t i = 0; i < count; ++i) {
                const std::uint8_t* p = pixels.Data() + 4 * i;
                ASSERT_EQ(out[i], (601 * p[1] + 306 * p[2] + 117 * p[0]) / 1024) << i;
            }
            EXPECT_EQ(count > 0 ? out[0] : 255, 255);
            EXPECT_TRUE(gray.GuardsStand());
        }
    }
}

TEST(ShiftRightRow, ShiftsEveryWordAndLeavesNothingBeyondSixteenBits) {
    const auto words = allWords<std::uint16_t>();
    for (const auto row : forms(ShiftRightRowPlain, ShiftRightRowWide)) {
        for (const std::uint32_t bits : {0u, 1u, 4u, 15u, 16u, 40u}) {
            std::vector<std::uint16_t> out(words.size());
            row(words.data(), out.data(), words.size(), bits);
            for (std::size_t i = 0; i < words.size(); ++i) ASSERT_EQ(out[i], bits > 15 ? 0 : i >> bits);
        }
    }
}

TEST(ScaleWordRow, CutsLikeWholeNumbersOverEveryInput) {
    const auto words = allWords<std::uint16_t>();
    constexpr std::pair<int, int> kRanges[] = {{0, 255}, {0, 65535}, {100, 4095}, {65280, 65535},
                                               {7, 8},   {9, 9},     {3, 65534}};
    for (const auto row : forms(ScaleWordRowPlain, ScaleWordRowWide)) {
        for (const auto& [lower, upper] : kRanges) {
            Bytes out(words.size());
            row(words.data(), out.data(), words.size(), static_cast<std::uint16_t>(lower),
                static_cast<std::uint16_t>(upper));
            for (int i = 0; i < 65536; ++i) {
                const int inside = std::min(std::max(i, lower), upper) - lower;
                ASSERT_EQ(out[static_cast<std::size_t>(i)], inside * 255 / std::max(upper - lower, 1))
                    << lower << " " << i;
            }
        }
    }
}

TEST(FloatToByteRow, LimitsCutsAndTakesNoNumberAsZero) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN(), infinity = std::numeric_limits<float>::infinity();
    constexpr std::pair<float, int> kCases[] = {{0.99f, 0},   {1.0f, 1},       {254.99f, 254}, {255.5f, 255},
                                                {1e30f, 255}, {infinity, 255}, {-0.5f, 0},     {-1e30f, 0},
                                                {-nan, 0},    {-infinity, 0},  {nan, 0},       {128.0f, 128}};
    for (const auto row : forms(FloatToByteRowPlain, FloatToByteRowWide)) {
        for (const std::size_t count : kRowLengths) {
            std::vector<float> values(count + 1);  // one float past a boundary
            for (std::size_t i = 0; i < count; ++i) values[i + 1] = kCases[i % std::size(kCases)].first;
            GuardedBytes out(count, 1);
            row(values.data() + 1, out.Data(), count, {});
            for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(out.Data()[i], kCases[i % std::size(kCases)].second) << i;
            EXPECT_TRUE(out.GuardsStand());
        }
    }
}

TEST(FloatToByteRow, ScalesWholeNumbersAsWholeDivisionDoes) {
    std::vector<float> values = allWords<float>();
    for (const auto row : forms(FloatToByteRowPlain, FloatToByteRowWide)) {
        for (const int reach : {1, 2, 255, 256, 1000, 4095, 65534, 65535}) {
            Bytes out(values.size());
            row(values.data(), out.data(), values.size(), {0.0f, 255.0f, static_cast<float>(reach)});
            for (int i = 0; i < 65536; ++i) {
                ASSERT_EQ(out[static_cast<std::size_t>(i)], std::min(i * 255 / reach, 255)) << reach << " " << i;
            }
        }
    }
}

TEST(PackBandRow, SetsBitsInsideTheBandAndKeepsThoseBehindTheRow) {
    constexpr ByteBand kBands[] = {{1, 255},
                                   {0, 255},
                                   {100, 200},
                                   {200, 100},
                                   {100, 200, false, true},
                                   {-100, 20, true},
                                   {-128, -128, true},
                                   {-5, 300, false, true},
                                   {200, 250, true},
                                   {-50, 90, true, true}};
    for (const auto row : forms(PackBandRowPlain, PackBandRowWide)) {
        for (const ByteBand& band : kBands) {
            for (const std::size_t count : kRowLengths) {
                GuardedBytes values = RandomGuarded(count, 1, 5), bits = RandomGuarded(count / 8 + 1, 1, 6);
                Bytes expected = bits.Content();
                for (std::size_t x = 0; x < count; ++x) {
                    const int value = band.isSigned ? static_cast<std::int8_t>(values.Data()[x]) : values.Data()[x];
                    const bool isSet = (value >= band.low && value <= band.high) != band.isInverted;
                    const auto bit = static_cast<std::uint8_t>(1 << x % 8);
                    expected[x / 8] = static_cast<std::uint8_t>(isSet ? expected[x / 8] | bit : expected[x / 8] & ~bit);
                }
                row(values.Data(), bits.Data(), count, band);
                EXPECT_EQ(bits.Content(), expected) << band.low << " " << count;
                EXPECT_TRUE(bits.GuardsStand());
            }
        }
    }
}

TEST(UnpackRow, GivesBackEachBitOfEveryByte) {
    const std::size_t count = 256 * 8 + 5;
    Bytes bits(257);
    for (std::size_t i = 0; i < bits.size(); ++i) bits[i] = static_cast<std::uint8_t>(i);
    bits[256] = 0x15;
    GuardedBytes values(count, 1);
    UnpackRow(bits.data(), values.Data(), count);
    for (std::size_t x = 0; x < count; ++x) ASSERT_EQ(values.Data()[x], bits[x / 8] / (1 << x % 8) % 2) << x;
    EXPECT_TRUE(values.GuardsStand());
}
