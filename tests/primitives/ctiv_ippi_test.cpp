#include "primitives/ctiv_ippi.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "primitives/acceleration.h"
#include "primitives/wide.h"
#include "tests/support/row_buffers.h"

using namespace tonewright;

namespace {

// Sets a level for a test and puts the old one back.
class LevelOf {
public:
    explicit LevelOf(int level) : before_(ctiv_GetAccelerationLevel()) { ctiv_SetAccelerationLevel(level); }
    ~LevelOf() { ctiv_SetAccelerationLevel(before_); }
    LevelOf(const LevelOf&) = delete;
    LevelOf& operator=(const LevelOf&) = delete;

private:
    int before_;
};

}  // namespace

TEST(Acceleration, RefusesLevelsItDoesNotKnowAndTurnsWideLoopsOff) {
    const LevelOf level(1);
    EXPECT_EQ(ctiv_SetAccelerationLevel(2), 1);
    EXPECT_EQ(ctiv_SetAccelerationLevel(3), 0);
    EXPECT_EQ(ctiv_SetAccelerationLevel(-1), 0);
    EXPECT_EQ(ctiv_GetAccelerationLevel(), 2);
    EXPECT_EQ(RunsWide(), HasAvx2());
    ctiv_SetAccelerationLevel(0);
    EXPECT_FALSE(RunsWide());
}

TEST(Primitives, AtLevelZeroThoseWithoutFallbackDoNothing) {
    const LevelOf level(0);
    std::uint8_t bytes[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const std::uint8_t mask[4] = {255, 255, 255, 255}, value[3] = {9, 9, 9};
    const std::int8_t signedBytes[4] = {};
    const std::int16_t shorts[4] = {};
    const std::uint16_t words[4] = {};
    const float floats[4] = {};
    std::int32_t counts[2] = {-1, -1}, levels[3] = {};
    double mean = -1, deviation = -1;
    std::uint8_t least = 7, most = 7;
    float floatLeast = -1, floatMost = -1;
    EXPECT_EQ(ctiv_ippiHistogramEven_16u_C1R(words, 8, 4, 1, counts, levels, 3, 0, 4), -2);
    EXPECT_EQ(ctiv_ippiHistogramEven_16s_C1R(shorts, 8, 4, 1, counts, levels, 3, 0, 4), -2);
    EXPECT_EQ(ctiv_ippiMean_StdDev_8s_C1R(signedBytes, 4, 4, 1, &mean, &deviation), -2);
    EXPECT_EQ(ctiv_ippiMean_StdDev_32f_C1R(floats, 16, 4, 1, &mean, &deviation), -2);
    EXPECT_EQ(ctiv_ippiMinMax_8u_C1R(bytes, 4, 4, 1, &least, &most), -2);
    EXPECT_EQ(ctiv_ippiMinMax_32f_C1R(floats, 16, 4, 1, &floatLeast, &floatMost), -2);
    EXPECT_EQ(ctiv_ippiCompareC_8u_C3R(bytes, 12, value, bytes, 4, 4, 1, PrimitiveCompare::Less), -2);
    EXPECT_EQ(ctiv_ippiSet_8u_C1MR(0, bytes, 4, 4, 1, mask, 4), -2);
    EXPECT_EQ(ctiv_ippiSet_8u_C3MR(value, bytes, 12, 4, 1, mask, 4), -2);
    EXPECT_EQ(counts[0], -1);
    EXPECT_EQ(mean, -1);
    EXPECT_EQ(most, 7);
    EXPECT_EQ(floatMost, -1);
    for (std::uint8_t i = 0; i < 12; ++i) EXPECT_EQ(bytes[i], i + 1);
}

TEST(Primitives, ALargeHistogramIsTheSameOnAnyNumberOfThreads) {
    constexpr int kWidth = 1501, kHeight = 1013, kPitch = 1504;
    const std::vector<std::uint8_t> pixels = RandomBytes(std::size_t{kPitch} * kHeight, 5);
    std::vector<std::int32_t> expected(256);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) ++expected[pixels[static_cast<std::size_t>(y * kPitch + x)]];
    }
    for (const int threads : {-1, 1, 2, 3, 64}) {
        ctiv_ippSetNumThreads(threads);
        std::vector<std::int32_t> counts(256), levels(257);
        EXPECT_EQ(ctiv_ippiHistogramEven_8u_C1R(pixels.data(), kPitch, kWidth, kHeight, counts.data(), levels.data(),
                                                257, 0, 256),
                  0);
        EXPECT_EQ(counts, expected) << threads;
    }
    ctiv_ippSetNumThreads(1);
}

TEST(Primitives, FallbacksServeEveryLevel) {
    for (const int number : {0, 1, 2}) {
        const LevelOf level(number);
        EXPECT_EQ(ctiv_ippSetNumThreads(1), 0);
        const std::uint8_t bytes[8] = {10, 10, 40, 0, 250, 10, 41, 99};  // two rows of three with a gap
        std::int32_t counts[4], levels[5];
        EXPECT_EQ(ctiv_ippiHistogramEven_8u_C1R(bytes, 4, 3, 2, counts, levels, 5, 0, 82), 0);
        // 82 / 4 cut: 0, 20, 41, 61, 82
        EXPECT_EQ(std::vector<int>(levels, levels + 5), (std::vector<int>{0, 20, 41, 61, 82}));
        EXPECT_EQ(std::vector<int>(counts, counts + 4), (std::vector<int>{3, 1, 1, 0}));

        double mean, deviation;
        const std::uint8_t flat[4] = {2, 4, 4, 6};
        EXPECT_EQ(ctiv_ippiMean_StdDev_8u_C1R(flat, 4, 4, 1, &mean, &deviation), 0);
        EXPECT_EQ(mean, 4);
        EXPECT_EQ(deviation, std::sqrt(2.0));

        std::uint8_t mask[4] = {0, 255, 255, 0};
        const std::uint8_t other[4] = {255, 255, 0, 0};
        EXPECT_EQ(ctiv_ippiAnd_8u_C1IR(other, 2, mask, 2, 2, 2), 0);
        EXPECT_EQ(ctiv_ippiNot_8u_C1IR(mask, 2, 1, 2), 0);  // the first column only
        EXPECT_EQ(Bytes(mask, mask + 4), (Bytes{255, 255, 255, 0}));
        std::uint8_t spread[8];
        EXPECT_EQ(ctiv_ippiDup_8u_C1C4R(other + 1, 2, spread, 4, 1, 2), 0);
        EXPECT_EQ(Bytes(spread, spread + 8), (Bytes{255, 255, 255, 255, 0, 0, 0, 0}));

        std::int64_t pitch = 0;
        std::uint16_t* memory = ctiv_ippiMalloc_16u_C1(33, 5, &pitch);
        ASSERT_NE(memory, nullptr);
        EXPECT_GE(pitch, 66);
        EXPECT_EQ(pitch % 64, 0);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % 64, 0u);
        std::memset(memory, 1, static_cast<std::size_t>(5 * pitch));
        ctiv_ippiFree(memory);
        EXPECT_EQ(ctiv_ippiMalloc_8u_C1(0, 5, &pitch), nullptr);
    }
}

TEST(Primitives, DeepHistogramsTakeTheLowerEdgeAndLeaveTheUpper) {
    const LevelOf level(1);
    const std::int16_t shorts[5] = {-32768, -100, 0, 99, 100};
    std::int32_t counts[2], levels[3];
    EXPECT_EQ(ctiv_ippiHistogramEven_16s_C1R(shorts, 10, 5, 1, counts, levels, 3, -100, 100), 0);
    EXPECT_EQ(counts[0], 1);
    EXPECT_EQ(counts[1], 2);
    const std::uint16_t words[3] = {65535, 65535, 0};
    EXPECT_EQ(ctiv_ippiHistogramEven_16u_C1R(words, 6, 3, 1, counts, levels, 3, 0, 65536), 0);
    EXPECT_EQ(counts[0], 1);
    EXPECT_EQ(counts[1], 2);

    const std::uint8_t pixels[8] = {0, 1, 9, 77, 9, 1, 0, 77};
    std::int32_t perChannel[3][2], channelLevels[3][3];
    std::int32_t* countRows[3] = {perChannel[0], perChannel[1], perChannel[2]};
    std::int32_t* levelRows[3] = {channelLevels[0], channelLevels[1], channelLevels[2]};
    const int levelCount[3] = {3, 3, 3};
    const std::int32_t lower[3] = {0, 0, 0}, upper[3] = {10, 10, 10};
    EXPECT_EQ(ctiv_ippiHistogramEven_8u_C4R(pixels, 8, 2, 1, countRows, levelRows, levelCount, lower, upper), 0);
    EXPECT_EQ(perChannel[0][0], 1);
    EXPECT_EQ(perChannel[1][0], 2);
    EXPECT_EQ(perChannel[1][1], 0);
    EXPECT_EQ(perChannel[2][1], 1);
}

TEST(Primitives, ComparesAllThreeChannelsAndSetsUnderTheMask) {
    const LevelOf level(1);
    const std::uint8_t pixels[12] = {4, 4, 4, 5, 5, 5, 6, 6, 6, 4, 5, 6}, five[3] = {5, 5, 5};
    const std::pair<PrimitiveCompare, Bytes> cases[] = {{PrimitiveCompare::Less, {255, 0, 0, 0}},
                                                        {PrimitiveCompare::LessEqual, {255, 255, 0, 0}},
                                                        {PrimitiveCompare::Equal, {0, 255, 0, 0}},
                                                        {PrimitiveCompare::GreaterEqual, {0, 255, 255, 0}},
                                                        {PrimitiveCompare::Greater, {0, 0, 255, 0}}};
    for (const auto& [compare, expected] : cases) {
        Bytes mask(4, 1);
        EXPECT_EQ(ctiv_ippiCompareC_8u_C3R(pixels, 6, five, mask.data(), 2, 2, 2, compare), 0);
        EXPECT_EQ(mask, expected);
    }
    const Bytes mask = {0, 255, 1, 0};
    Bytes gray = {1, 2, 3, 4}, color = RandomBytes(12, 1), before = color;
    EXPECT_EQ(ctiv_ippiSet_8u_C1MR(99, gray.data(), 2, 2, 2, mask.data(), 2), 0);
    EXPECT_EQ(gray, (Bytes{1, 99, 99, 4}));
    EXPECT_EQ(ctiv_ippiSet_8u_C3MR(five, color.data(), 6, 2, 2, mask.data(), 2), 0);
    std::fill_n(before.begin() + 3, 6, std::uint8_t{5});
    EXPECT_EQ(color, before);

    std::uint8_t least, most;
    EXPECT_EQ(ctiv_ippiMinMax_8u_C1R(pixels, 6, 2, 2, &least, &most), 0);  // 4 4 / 6 6
    EXPECT_EQ(least, 4);
    EXPECT_EQ(most, 6);
    double mean, deviation;
    const std::int8_t signedBytes[2] = {-3, 1};
    EXPECT_EQ(ctiv_ippiMean_StdDev_8s_C1R(signedBytes, 2, 2, 1, &mean, &deviation), 0);
    EXPECT_EQ(mean, -1);
    EXPECT_EQ(deviation, 2);
    const float floats[2] = {0.5f, -1.5f};
    float floatLeast, floatMost;
    EXPECT_EQ(ctiv_ippiMean_StdDev_32f_C1R(floats, 8, 2, 1, &mean, &deviation), 0);
    EXPECT_EQ(ctiv_ippiMinMax_32f_C1R(floats, 8, 2, 1, &floatLeast, &floatMost), 0);
    EXPECT_EQ(mean, -0.5);
    EXPECT_EQ(deviation, 1);
    EXPECT_EQ(floatLeast, -1.5f);
    EXPECT_EQ(floatMost, 0.5f);
}
