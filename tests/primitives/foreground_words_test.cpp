#include "primitives/foreground_words.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "primitives/wide.h"

using namespace tonewright;

namespace {

constexpr std::size_t kCounts[] = {0, 1, 7, 8, 9, 31, 32, 33, 63, 64, 65, 127, 130, 1000};
constexpr std::uint64_t kGuard = 0x0123456789ABCDEF;

template <class IsSet>
std::vector<std::uint64_t> expectedWords(std::size_t count, bool zeros, IsSet isSet) {
    std::vector<std::uint64_t> words(ForegroundWordCount(count) + 1);
    for (std::size_t x = 0; x < count; ++x) words[x / 64] |= std::uint64_t{isSet(x) != zeros} << (x % 64);
    words.back() = kGuard;
    return words;
}

template <class Function, class T>
std::vector<std::uint64_t> run(Function function, const T* row, std::size_t count, bool zeros) {
    std::vector<std::uint64_t> words(ForegroundWordCount(count) + 1, kGuard);
    function(row, count, zeros, words.data());
    return words;
}

template <class T, class Function>
void expectWords(Function function) {
    std::mt19937 random(5);
    for (const std::size_t count : kCounts) {
        for (const std::size_t shift : {0u, 1u}) {
            std::vector<T> row(count + shift);
            // Zeros in stretches, and values with a single bit anywhere.
            for (T& pixel : row) pixel = static_cast<T>(random() % 3 ? 0 : 1u << random() % (8 * sizeof(T)));
            const T* pixels = row.data() + shift;
            for (const bool zeros : {false, true}) {
                const auto expected = expectedWords(count, zeros, [&](std::size_t x) { return pixels[x] != 0; });
                EXPECT_EQ(run(function, pixels, count, zeros), expected) << count;
            }
        }
    }
}

TEST(ForegroundWords, BytesAndWordsOfEveryLengthAtOddAddresses) {
    expectWords<std::uint8_t>(ForegroundWords8Plain);
    expectWords<std::uint16_t>(ForegroundWords16Plain);
    if (!HasAvx2()) GTEST_SKIP() << "this machine has no wide form";
    expectWords<std::uint8_t>(ForegroundWords8Wide);
    expectWords<std::uint16_t>(ForegroundWords16Wide);
}

TEST(ForegroundWords, PackedRowsByBytesAndByWords) {
    std::mt19937 random(6);
    for (const std::size_t count : {0u, 8u, 16u, 32u, 56u, 64u, 96u, 160u, 200u}) {
        std::vector<std::uint8_t> row(count / 8);
        for (std::uint8_t& byte : row) byte = static_cast<std::uint8_t>(random());
        for (const bool zeros : {false, true}) {
            const auto expected =
                expectedWords(count, zeros, [&](std::size_t x) { return (row[x / 8] >> (x % 8) & 1) != 0; });
            EXPECT_EQ(run(ForegroundWords1ByBytes, row.data(), count, zeros), expected) << count;
            if (count % 32 == 0) {
                EXPECT_EQ(run(ForegroundWords1ByWords, row.data(), count, zeros), expected) << count;
            }
        }
    }
}

}  // namespace
