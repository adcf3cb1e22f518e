#include "primitives/twist.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "primitives/acceleration.h"
#include "primitives/wide.h"

using namespace tonewright;

namespace {

using Bytes = std::vector<std::uint8_t>;
using Twist = std::array<float, 12>;

constexpr std::size_t kLengths[] = {0, 1, 7, 8, 9, 31, 33, 1000};
constexpr std::size_t kGuard = 64;

Bytes RandomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

std::uint8_t Rounded(float value) {
    if (!(value > 0.0f)) return 0;
    return value >= 255.0f ? 255 : static_cast<std::uint8_t>(std::nearbyint(value));
}

void TwistByHand(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, const Twist& t) {
    for (std::size_t i = 0; i < 4 * count; i += 4) {
        const float b = source[i], g = source[i + 1], r = source[i + 2];
        for (std::size_t row = 0; row < 3; ++row) {
            const float* w = &t[4 * row];
            destination[i + row] = Rounded(((w[0] * b + w[1] * g) + w[2] * r) + w[3]);
        }
    }
}

std::vector<Twist> InterestingTwists() {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    std::vector<Twist> twists = {
        {0.5f, 0, 0, 0, 0, 0.5f, 0, 1, 0, 0, 0.5f, 0.25f},             // ties
        {-1, 0, 0, 254.5f, 2, 0, 0, -0.5f, 1e9f, 0, 0, 1e-9f},         // both ends
        {nan, 0, 0, 0, infinity, 0, 0, 0, -infinity, 0, infinity, 5},  // zero times infinity, infinity less infinity
        {3e38f, 3e38f, 3e38f, 0, -3e38f, -3e38f, 0, 0, 0, 0, 0, -nan},
    };
    std::mt19937 random(5);
    std::uniform_real_distribution<float> weight(-0.7f, 1.3f);
    for (int i = 0; i < 4; ++i) {
        Twist& twist = twists.emplace_back();
        for (float& value : twist) value = weight(random);
    }
    return twists;
}

}  // namespace

TEST(ColorTwist, EveryFormEqualsTheFormulaAtAnyLengthAndAddress) {
    for (const Twist& twist : InterestingTwists()) {
        for (const std::size_t count : kLengths) {
            const Bytes source = RandomBytes(4 * count + 1, 1);
            const Bytes before = RandomBytes(4 * count + 1 + kGuard, 2);
            Bytes expected = before;
            TwistByHand(source.data() + 1, expected.data() + 1, count, twist);
            Bytes expectedInPlace = before;
            TwistByHand(before.data() + 1, expectedInPlace.data() + 1, count, twist);
            for (const RowForm form : kRowForms) {
                if (!HasForm(form)) continue;
                Bytes pixels = before;
                GetTwistRow(form)(source.data() + 1, pixels.data() + 1, count, twist);
                EXPECT_EQ(pixels, expected) << static_cast<int>(form) << " " << count;
                pixels = before;
                GetTwistRowInPlace(form)(pixels.data() + 1, count, twist);
                EXPECT_EQ(pixels, expectedInPlace) << static_cast<int>(form) << " " << count;
            }
        }
    }
}

TEST(ColorTwist, RoundsHalfToEvenAndKeepsTheFourthByte) {
    const Twist half = {0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 0.5f, 0};
    Bytes pixels = {1, 3, 5, 77, 7, 255, 253, 88};
    GetTwistRowInPlace(RowForm::Plain)(pixels.data(), 2, half);
    EXPECT_EQ(pixels, (Bytes{0, 2, 2, 77, 4, 128, 126, 88}));
}

TEST(ColorTwist, WrappersKeepToTheRegionAndAnswerMinus2AtLevel0) {
    const Twist invert = {-1, 0, 0, 255, 0, -1, 0, 255, 0, 0, -1, 255};
    const Bytes source = RandomBytes(4 * 6 * 3, 3);
    for (const int level : {0, 1, 2}) {
        ASSERT_EQ(ctiv_SetAccelerationLevel(level), 1);
        Bytes copied(4 * 5 * 3, 9);
        Bytes inPlace = source;
        const int status = level == 0 ? -2 : 0;
        EXPECT_EQ(ctiv_ippiColorTwist32f_8u_AC4R(source.data() + 4, 24, copied.data(), 20, 4, 2, invert), status);
        EXPECT_EQ(ctiv_ippiColorTwist32f_8u_AC4IR(inPlace.data() + 4, 24, 4, 2, invert), status);
        for (std::size_t i = 0; i < copied.size(); ++i) {
            const std::size_t x = i % 20, y = i / 20;
            const bool isChanged = status == 0 && x < 16 && y < 2 && x % 4 != 3;
            const std::uint8_t before = source[y * 24 + 4 + x];
            EXPECT_EQ(copied[i], isChanged ? 255 - before : 9) << level << " " << i;
            EXPECT_EQ(inPlace[y * 24 + 4 + x], isChanged ? 255 - before : before) << level << " " << i;
        }
    }
    ctiv_SetAccelerationLevel(1);
}

TEST(EncodeRow, LooksUpAndForcesChannelsThatReachedTheirLimit) {
    std::array<std::uint8_t, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<std::uint8_t>(i * 7 + 3);
    const std::array<std::uint8_t, 4> limits = {200, 0, 255, 0};
    for (const std::size_t count : kLengths) {
        const Bytes source = RandomBytes(4 * count + 1, 4);
        const Bytes before = RandomBytes(4 * count + 1 + kGuard, 5);
        Bytes expected = before;
        for (std::size_t i = 0; i < 4 * count; ++i) {
            const std::size_t channel = i % 4;
            std::uint8_t& byte = expected[i + 1];
            byte = channel == 3 ? 0 : source[i + 1] >= limits[channel] ? 255 : table[byte];
        }
        for (const RowForm form : kRowForms) {
            if (!HasForm(form)) continue;
            Bytes pixels = before;
            GetEncodeRow(form)(source.data() + 1, pixels.data() + 1, count, table, limits);
            EXPECT_EQ(pixels, expected) << static_cast<int>(form) << " " << count;
        }
    }
}
