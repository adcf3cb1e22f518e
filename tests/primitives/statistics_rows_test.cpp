#include "primitives/statistics_rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "primitives/wide.h"
#include "tests/support/row_buffers.h"

using namespace tonewright;

namespace {

struct Kind {
    PixelKind kind;
    std::size_t bytes;
    std::size_t channels;
    int bits;
    std::uint64_t flip;
};
constexpr Kind kKinds[] = {
    {PixelKind::Byte, 1, 1, 8, 0},     {PixelKind::SignedByte, 1, 1, 8, 0x80},
    {PixelKind::Word, 2, 1, 16, 0},    {PixelKind::SignedWord, 2, 1, 16, 0x8000},
    {PixelKind::Color8, 4, 3, 8, 0},   {PixelKind::Color10, 4, 3, 10, 0},
    {PixelKind::Color16, 8, 3, 16, 0},
};

void addByHand(const Kind& kind, const std::uint8_t* row, std::size_t count, ChannelSums* sums) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint64_t pixel = 0;
        std::memcpy(&pixel, row + i * kind.bytes, kind.bytes);
        for (std::size_t c = 0; c < kind.channels; ++c) {
            const std::uint64_t mask = (std::uint64_t{1} << kind.bits) - 1;
            const std::uint64_t value = (pixel >> (static_cast<std::size_t>(kind.bits) * c) & mask) ^ kind.flip;
            sums[c].sum += value;
            sums[c].squares += value * value;
            sums[c].least = std::min(sums[c].least, static_cast<std::uint32_t>(value));
            sums[c].most = std::max(sums[c].most, static_cast<std::uint32_t>(value));
        }
    }
}

void expectStraightSums(const Kind& kind, const std::uint8_t* row, std::size_t count) {
    for (const bool wide : {false, true}) {
        if (wide && !HasAvx2()) continue;
        ChannelSums expected[3], sums[3];
        for (int twice = 0; twice < 2; ++twice) {  // sums run on from row to row
            addByHand(kind, row, count, expected);
            GetSumsRow(kind.kind, wide)(row, count, sums);
        }
        for (std::size_t c = 0; c < kind.channels; ++c) {
            SCOPED_TRACE(testing::Message() << "kind " << static_cast<int>(kind.kind) << " channel " << c << " of "
                                            << count << (wide ? " wide" : " plain"));
            EXPECT_EQ(sums[c].sum, expected[c].sum);
            EXPECT_EQ(sums[c].squares, expected[c].squares);
            EXPECT_EQ(sums[c].least, expected[c].least);
            EXPECT_EQ(sums[c].most, expected[c].most);
        }
    }
}

}  // namespace

TEST(SumsRow, BothFormsAreTheStraightSumsAtAnyLengthAndAddress) {
    for (const Kind& kind : kKinds) {
        for (const std::size_t count : kRowLengths) {
            GuardedBytes row = RandomGuarded(count * kind.bytes, 1, 7);
            expectStraightSums(kind, row.Data(), count);
        }
    }
}

TEST(SumsRow, LongRowsOfTheLargestValueDoNotOverflow) {
    for (const Kind& kind : kKinds) {
        Bytes row(200001 * kind.bytes, 0xFF);
        if (kind.flip) {
            for (std::size_t i = 1; i <= row.size(); ++i) row[i - 1] = i % kind.bytes == 0 ? 0x7F : 0xFF;
        }
        expectStraightSums(kind, row.data(), 200001);
    }
}

TEST(SumsRow, SignedKindsComeBackToTheirOwnValues) {
    const std::int8_t bytes[] = {-128, 127, 0};
    ChannelSums sums;
    GetSumsRow(PixelKind::SignedByte, false)(reinterpret_cast<const std::uint8_t*>(bytes), 3, &sums);
    const Moments moments = MomentsOf(sums, PixelKind::SignedByte, 3);
    EXPECT_EQ(moments.sum, -1);
    EXPECT_EQ(moments.squares, 16384 + 16129);
    EXPECT_EQ(moments.least, -128);
    EXPECT_EQ(moments.most, 127);

    const std::int16_t words[] = {-32768, 1};
    ChannelSums wordSums;
    GetSumsRow(PixelKind::SignedWord, false)(reinterpret_cast<const std::uint8_t*>(words), 2, &wordSums);
    const Moments wordMoments = MomentsOf(wordSums, PixelKind::SignedWord, 2);
    EXPECT_EQ(wordMoments.sum, -32767);
    EXPECT_EQ(wordMoments.squares, 1073741824.0 + 1);
    EXPECT_EQ(wordMoments.least, -32768);
}

TEST(FloatRange, SkipsWhatIsNoNumberAndFindsTheEndsAnywhere) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    for (const auto row : {FloatRangeRowPlain, FloatRangeRowWide}) {
        if (row == FloatRangeRowWide && !HasAvx2()) continue;
        for (const std::size_t count : kRowLengths) {
            for (std::size_t place = 0; place < count; place += count / 9 + 1) {
                std::vector<float> values(count, nan);
                values[place] = -3.0f;
                values[count - 1 - place] = values[count - 1 - place] == -3.0f ? -3.0f : 8.0f;
                float least = 1.0f, most = 1.0f;
                row(values.data(), count, least, most);
                EXPECT_EQ(least, -3.0f);
                EXPECT_EQ(most, place == count - 1 - place ? 1.0f : 8.0f);
            }
            constexpr float infinity = std::numeric_limits<float>::infinity();
            float least = infinity, most = -infinity;  // nothing found leaves the ends where they were
            row(std::vector<float>(count, nan).data(), count, least, most);
            EXPECT_EQ(least, infinity);
            EXPECT_EQ(most, -infinity);
        }
    }
}

TEST(ByteHistogram, CountsBySeveralTablesAndByPairsAlike) {
    for (const std::uint64_t expectedBytes : {std::uint64_t{0}, std::uint64_t{1} << 30}) {
        ByteHistogram histogram(expectedBytes);
        std::uint32_t expected[256] = {};
        for (const std::size_t count : kRowLengths) {
            Bytes row = RandomBytes(count, static_cast<unsigned>(count));
            for (std::size_t i = count / 2; i < count; ++i) row[i] = 255;
            for (const std::uint8_t byte : row) ++expected[byte];
            histogram.Add(row.data(), count);
        }
        std::uint32_t bins[256] = {};
        histogram.AddTo(bins);
        EXPECT_TRUE(std::equal(std::begin(bins), std::end(bins), expected)) << expectedBytes;
    }
}
