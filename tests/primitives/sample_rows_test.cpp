#include "primitives/sample_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "primitives/wide.h"

using namespace tonewright;

namespace {

using enum SamplePacking;

/// Where one bit of a stream lies, told for each packing on its own.
struct Bit {
    std::size_t byte;
    std::size_t bit;
};

Bit find(SamplePacking packing, std::size_t sample, std::size_t bit) {
    const auto inRow = [](std::size_t at) { return Bit{at / 8, at % 8}; };
    const std::size_t pair = sample / 2 * 3, second = sample % 2;
    switch (packing) {
        case Bytes:
            return inRow(8 * sample + bit);
        case Words:
            return inRow(16 * sample + bit);
        case Lsb10:
            return inRow(10 * sample + bit);
        case Lsb12:
            return inRow(12 * sample + bit);
        case Pairs10:  // the middle byte: bits 0, 1 of the first and, from 4 on, of the second
            return bit < 2 ? Bit{pair + 1, 4 * second + bit} : Bit{pair + 2 * second, bit - 2};
        case Pairs12:
            return bit < 4 ? Bit{pair + 1, 4 * second + bit} : Bit{pair + 2 * second, bit - 4};
        case Triples:
            return inRow(32 * (sample / 3) + 10 * (sample % 3) + bit);
    }
    return {};
}

constexpr struct {
    SamplePacking packing;
    std::size_t bits;
} kPackings[] = {{Bytes, 8}, {Words, 16}, {Lsb10, 10}, {Lsb12, 12}, {Pairs10, 10}, {Pairs12, 12}, {Triples, 10}};

TEST(SampleRows, UnpackEqualsReadingBitByBitFromAnyPlaceAndReadsNoByteMore) {
    std::mt19937 random(1);
    for (const auto& [packing, bits] : kPackings) {
        for (std::size_t first : {0, 1, 2, 3, 4, 5, 31}) {
            for (std::size_t count : {0, 1, 2, 3, 4, 5, 7, 33, 1000}) {
                // Exactly the bytes that the samples reach, so that a read past them shows under the sanitizer.
                std::size_t reached = 0;
                for (std::size_t i = 0; i < first + count; ++i) {
                    for (std::size_t b = 0; b < bits; ++b) reached = std::max(reached, find(packing, i, b).byte + 1);
                }
                if (packing == Triples) reached = (first + count + 2) / 3 * 4;  // words come whole
                ASSERT_EQ(GetPackedBytes(packing, first + count), reached);
                std::vector<std::uint8_t> stream(reached);
                for (auto& byte : stream) byte = static_cast<std::uint8_t>(random());
                for (std::size_t drop : {std::size_t{0}, bits - 8}) {
                    std::vector<std::uint16_t> words(count + 1, 0xabcd), expected(count + 1, 0xabcd);
                    for (std::size_t i = 0; i < count; ++i) {
                        unsigned value = 0;
                        for (std::size_t b = 0; b < bits; ++b) {
                            const Bit at = find(packing, first + i, b);
                            value |= (stream[at.byte] >> at.bit & 1u) << b;
                        }
                        expected[i] = static_cast<std::uint16_t>(value >> drop);
                    }
                    UnpackSamples(packing, stream.data(), first, words.data(), count, static_cast<int>(drop));
                    EXPECT_EQ(words, expected) << static_cast<int>(packing) << ": " << count << " from " << first;
                }
            }
        }
    }
}

TEST(SampleRows, PixelsTakeTheirChannelsFromTheirPlacesAndRoundUpwardsToTheEnd) {
    const std::uint16_t words[] = {0, 5, 6, 1023, 1022, 1021, 1020, 9};
    std::uint32_t pixels[2];
    PackPixels(words, pixels, 2, {true, 4}, {2, 8});
    // 5 / 4 = 1.25, 6 / 4 = 1.5 upwards; 1022 / 4 = 255.5 stays within a byte, as does 1021 / 4 = 255.25.
    EXPECT_EQ(pixels[0], 0x000102u);
    EXPECT_EQ(pixels[1], 0xffffffu);
    PackPixels(words, pixels, 2, {false, 3}, {0, 10});
    EXPECT_EQ(pixels[0], 6u << 20 | 5u << 10 | 0u);
    EXPECT_EQ(pixels[1], 1021u << 20 | 1022u << 10 | 1023u);
    const std::uint16_t gray[] = {0, 1, 2, 1019, 1023};
    std::uint8_t bytes[5];
    RoundToBytes(gray, bytes, 5, 2);
    EXPECT_EQ(std::vector<std::uint8_t>(bytes, bytes + 5), (std::vector<std::uint8_t>{0, 0, 1, 255, 255}));
}

TEST(SampleRows, BothFormsOfPackingGiveTheSameAtAnyLength) {
    if (!HasAvx2()) GTEST_SKIP() << "this machine has no wide form";
    std::mt19937 random(2);
    std::vector<std::uint16_t> words(4 * 1000);
    for (auto& word : words) word = static_cast<std::uint16_t>(random() & 0x3ff);
    for (std::size_t count : {0, 1, 7, 8, 9, 31, 33, 1000}) {
        for (const ChannelOrder& order : {ChannelOrder{true, 3}, {false, 3}, {true, 4}, {false, 4}}) {
            for (const PixelDepth& depth : {PixelDepth{0, 8}, {2, 8}, {0, 10}}) {
                std::vector<std::uint32_t> plain(count + 8, 0xdeadbeef), wide = plain;
                PackPixelsPlain(words.data(), plain.data(), count, order, depth);
                PackPixelsWide(words.data(), wide.data(), count, order, depth);
                EXPECT_EQ(plain, wide) << count;
                EXPECT_EQ(std::count(wide.begin(), wide.end(), 0xdeadbeef), 8);
            }
        }
    }
}

TEST(SampleRows, LumaAndChromaGiveTheColorsThatTheyWereMadeOf) {
    // Y = 0.299 R + 0.587 G + 0.114 B, Cb = 128 + (B - Y) / 1.772, Cr = 128 + (R - Y) / 1.402.
    const struct {
        std::uint16_t y, cb, cr;
        std::uint32_t color;
    } rows[] = {{128, 128, 128, 0x808080}, {76, 85, 255, 0xfe0000}, {150, 44, 21, 0x00ff01}, {29, 255, 107, 0x0000fe}};
    for (const auto& row : rows) {
        const std::uint16_t samples[] = {row.y, row.cb, row.y, row.cr, row.y, row.cb};
        std::uint32_t pixels[3] = {};
        PackLumaChroma(samples, pixels, 3, true);
        for (std::uint32_t pixel : pixels) {
            for (int shift : {0, 8, 16}) {
                EXPECT_NEAR(static_cast<int>(pixel >> shift & 255), static_cast<int>(row.color >> shift & 255), 1);
            }
        }
        const std::uint16_t turned[] = {row.cb, row.y, row.cr, row.y, row.cb, row.y};
        std::uint32_t others[3] = {};
        PackLumaChroma(turned, others, 3, false);
        EXPECT_TRUE(std::equal(others, others + 3, pixels));
        PackLumaChroma(samples, pixels, 1, true);
        EXPECT_EQ(pixels[0], row.y * 0x10101u) << "one pixel has no whole chroma";
    }
}

}  // namespace
