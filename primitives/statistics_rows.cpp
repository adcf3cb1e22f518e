#include "primitives/statistics_rows.h"

#include <immintrin.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "primitives/wide.h"

namespace tonewright {

namespace {

constexpr std::size_t kBlock = 65536;  // 65536 x 65535 stays below 2^32

// A kind of pixel: the word it comes in, its channels, each channel's number, and how many squares fit 32 bits (1: they
// are added up in 64).
template <class Word_, Word_ flip_, std::size_t fit>
struct Single {
    using Word = Word_;
    using Value = Word_;
    static constexpr Word flip = flip_;
    static constexpr int channels = 1;
    static constexpr std::size_t squaresFit = fit;
    static Value Get(Word word, int) { return static_cast<Value>(word ^ flip); }
};
template <class Word_, int bits, std::size_t fit>
struct Packed {
    using Word = Word_;
    using Value = std::uint32_t;
    static constexpr int channels = 3;
    static constexpr std::size_t squaresFit = fit;
    static Value Get(Word word, int channel) {
        return static_cast<Value>(word >> (bits * channel)) & ((Value{1} << bits) - 1);
    }
};
using Byte = Single<std::uint8_t, 0, kBlock>;
using SignedByte = Single<std::uint8_t, 0x80, kBlock>;
using Color8 = Packed<std::uint32_t, 8, kBlock>;
using Color10 = Packed<std::uint32_t, 10, 4096>;
using Color16 = Packed<std::uint64_t, 16, 1>;

void include(ChannelSums& sums, std::uint64_t sum, std::uint64_t squares, std::uint32_t least, std::uint32_t most) {
    sums.sum += sum;
    sums.squares += squares;
    sums.least = std::min(sums.least, least);
    sums.most = std::max(sums.most, most);
}

template <class Pixel>
TONEWRIGHT_BODY void addRow(const std::uint8_t* row, std::size_t count, ChannelSums* sums) {
    using Word = typename Pixel::Word;
    using Value = typename Pixel::Value;
    using Squares = std::conditional_t<(Pixel::squaresFit > 1), std::uint32_t, std::uint64_t>;
    constexpr std::size_t block = Pixel::squaresFit > 1 ? Pixel::squaresFit : kBlock;
    for (std::size_t begin = 0; begin < count; begin += block) {
        const std::uint8_t* pixels = row + begin * sizeof(Word);
        const std::size_t length = std::min(block, count - begin);
        for (int channel = 0; channel < Pixel::channels; ++channel) {
            std::uint32_t sum = 0;
            Squares squares = 0;
            auto least = std::numeric_limits<Value>::max();
            Value most = 0;
            for (std::size_t i = 0; i < length; ++i) {
                Word word;
                std::memcpy(&word, pixels + i * sizeof word, sizeof word);
                const Value value = Pixel::Get(word, channel);
                sum += value;
                squares += std::uint32_t{value} * value;
                least = std::min(least, value);
                most = std::max(most, value);
            }
            include(sums[channel], sum, squares, least, most);
        }
    }
}

template <class Pixel>
void addRowPlain(const std::uint8_t* row, std::size_t count, ChannelSums* sums) {
    addRow<Pixel>(row, count, sums);
}
template <class Pixel>
TONEWRIGHT_WIDE void addRowWide(const std::uint8_t* row, std::size_t count, ChannelSums* sums) {
    addRow<Pixel>(row, count, sums);
}

// The two kinds below go by intrinsics. Of bytes the compiler widens each to 32 bits, at a third of the speed; over
// colors it goes once a channel, at half of it.

constexpr std::size_t kVector = 32;

[[gnu::target("avx2"), gnu::always_inline]] inline __m256i load(const void* from) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}
[[gnu::target("avx2"), gnu::always_inline]] inline void store(void* to, __m256i vector) {
    _mm256_storeu_si256(static_cast<__m256i*>(to), vector);
}

template <class Pixel>
TONEWRIGHT_WIDE void addBytesWide(const std::uint8_t* row, std::size_t count, ChannelSums* sums) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i flip = _mm256_set1_epi8(static_cast<char>(Pixel::flip));
    __m256i sum = zero, squares = zero, least = _mm256_set1_epi8(-1), most = zero;
    const std::size_t whole = count / kVector * kVector;
    for (std::size_t i = 0; i < whole;) {
        __m256i blockSquares = zero;  // four squares a step and lane: below 2^32 for 2048 steps
        for (const std::size_t end = std::min(whole, i + kBlock); i < end; i += kVector) {
            const __m256i bytes = _mm256_xor_si256(load(row + i), flip);
            const __m256i low = _mm256_unpacklo_epi8(bytes, zero);
            const __m256i high = _mm256_unpackhi_epi8(bytes, zero);
            sum = _mm256_add_epi64(sum, _mm256_sad_epu8(bytes, zero));
            blockSquares = _mm256_add_epi32(
                blockSquares, _mm256_add_epi32(_mm256_madd_epi16(low, low), _mm256_madd_epi16(high, high)));
            least = _mm256_min_epu8(least, bytes);
            most = _mm256_max_epu8(most, bytes);
        }
        squares = _mm256_add_epi64(squares, _mm256_add_epi64(_mm256_unpacklo_epi32(blockSquares, zero),
                                                             _mm256_unpackhi_epi32(blockSquares, zero)));
    }
    std::uint64_t sumLanes[4], squareLanes[4];
    std::uint8_t leasts[kVector], mosts[kVector];
    store(sumLanes, sum);
    store(squareLanes, squares);
    store(leasts, least);
    store(mosts, most);
    if (whole > 0) {
        for (std::size_t lane = 0; lane < 4; ++lane) include(*sums, sumLanes[lane], squareLanes[lane], UINT32_MAX, 0);
        for (std::size_t lane = 0; lane < kVector; ++lane) include(*sums, 0, 0, leasts[lane], mosts[lane]);
    }
    addRow<Pixel>(row + whole, count - whole, sums);
}

TONEWRIGHT_WIDE void addColorsWide(const std::uint8_t* row, std::size_t count, ChannelSums* sums) {
    constexpr std::size_t kBytesAtOnce = 128 * kVector;  // 128 sums of two bytes stay below 2^16
    const __m256i zero = _mm256_setzero_si256();
    const __m256i ones = _mm256_set1_epi8(1);
    const __m256i planar =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
    __m256i least = _mm256_set1_epi8(-1), most = zero;
    const std::size_t whole = 4 * count / kVector * kVector;
    for (std::size_t i = 0; i < whole;) {
        __m256i blockSum = zero, low = zero, high = zero;
        for (const std::size_t end = std::min(whole, i + kBytesAtOnce); i < end; i += kVector) {
            const __m256i pixels = load(row + i);
            least = _mm256_min_epu8(least, pixels);
            most = _mm256_max_epu8(most, pixels);
            const __m256i bytes = _mm256_shuffle_epi8(pixels, planar);  // four bytes of each channel, twice
            const __m256i blueGreen = _mm256_unpacklo_epi8(bytes, zero);
            const __m256i redFourth = _mm256_unpackhi_epi8(bytes, zero);
            blockSum = _mm256_add_epi16(blockSum, _mm256_maddubs_epi16(bytes, ones));
            low = _mm256_add_epi32(low, _mm256_madd_epi16(blueGreen, blueGreen));
            high = _mm256_add_epi32(high, _mm256_madd_epi16(redFourth, redFourth));
        }
        std::uint16_t sumLanes[16];
        std::uint32_t squareLanes[16];
        store(sumLanes, blockSum);  // two lanes of each channel, twice; the squares are brought into the same order
        store(squareLanes, _mm256_permute2x128_si256(low, high, 0x20));
        store(squareLanes + 8, _mm256_permute2x128_si256(low, high, 0x31));
        for (std::size_t lane = 0; lane < 16; ++lane) {
            const std::size_t channel = lane % 8 / 2;
            if (channel < 3) include(sums[channel], sumLanes[lane], squareLanes[lane], UINT32_MAX, 0);
        }
    }
    std::uint8_t leasts[kVector], mosts[kVector];
    store(leasts, least);
    store(mosts, most);
    for (std::size_t i = 0; i < kVector && whole > 0; ++i) {
        if (i % 4 < 3) include(sums[i % 4], 0, 0, leasts[i], mosts[i]);
    }
    addRow<Color8>(row + whole, count - whole / 4, sums);
}

template <class Pixel>
SumsRow pick(bool wide) {
    if constexpr (std::is_same_v<Pixel, Byte> || std::is_same_v<Pixel, SignedByte>) {
        return wide ? addBytesWide<Pixel> : addRowPlain<Pixel>;
    } else if constexpr (std::is_same_v<Pixel, Color8>) {
        return wide ? addColorsWide : addRowPlain<Pixel>;
    } else {
        return wide ? addRowWide<Pixel> : addRowPlain<Pixel>;
    }
}

// What filling and adding up the table of pairs costs is won back from here.
constexpr std::uint64_t kPairsFrom = 1u << 19;

}  // namespace

SumsRow GetSumsRow(PixelKind kind, bool wide) {
    switch (kind) {
        case PixelKind::Byte:
            return pick<Byte>(wide);
        case PixelKind::SignedByte:
            return pick<SignedByte>(wide);
        case PixelKind::Word:
            return pick<Single<std::uint16_t, 0, 1>>(wide);
        case PixelKind::SignedWord:
            return pick<Single<std::uint16_t, 0x8000, 1>>(wide);
        case PixelKind::Color8:
            return pick<Color8>(wide);
        case PixelKind::Color10:
            return pick<Color10>(wide);
        case PixelKind::Color16:
            break;
    }
    return pick<Color16>(wide);
}

void FloatRangeRowPlain(const float* row, std::size_t count, float& least, float& most) {
    float lowest = least, highest = most;
    for (std::size_t i = 0; i < count; ++i) {
        lowest = row[i] < lowest ? row[i] : lowest;
        highest = row[i] > highest ? row[i] : highest;
    }
    least = lowest;
    most = highest;
}

// By intrinsics: the compiler must not split one minimum of floats into lanes.
TONEWRIGHT_WIDE void FloatRangeRowWide(const float* row, std::size_t count, float& least, float& most) {
    constexpr std::size_t kLanes = 8, kGroups = 4;
    __m256 leasts[kGroups], mosts[kGroups];
    std::fill_n(leasts, kGroups, _mm256_set1_ps(least));
    std::fill_n(mosts, kGroups, _mm256_set1_ps(most));
    const std::size_t whole = count / (kLanes * kGroups) * kLanes * kGroups;
    for (std::size_t i = 0; i < whole; i += kLanes * kGroups) {
        for (std::size_t group = 0; group < kGroups; ++group) {
            const __m256 values = _mm256_loadu_ps(row + i + kLanes * group);
            leasts[group] = _mm256_min_ps(values, leasts[group]);  // the second operand where the first is no number
            mosts[group] = _mm256_max_ps(values, mosts[group]);
        }
    }
    float lanes[2][kLanes * kGroups];
    for (std::size_t group = 0; group < kGroups; ++group) {
        _mm256_storeu_ps(lanes[0] + kLanes * group, leasts[group]);
        _mm256_storeu_ps(lanes[1] + kLanes * group, mosts[group]);
    }
    for (std::size_t lane = 0; lane < kLanes * kGroups; ++lane) {
        least = std::min(least, lanes[0][lane]);
        most = std::max(most, lanes[1][lane]);
    }
    FloatRangeRowPlain(row + whole, count - whole, least, most);
}

double Moments::Deviation(double count) const {
    const double mean = Mean(count);
    return std::sqrt(std::max(squares / count - mean * mean, 0.0));
}

Moments MomentsOf(const ChannelSums& sums, PixelKind kind, std::uint64_t count) {
    const std::uint64_t offset = kind == PixelKind::SignedByte ? 128 : kind == PixelKind::SignedWord ? 32768 : 0;
    const std::uint64_t squares = sums.squares - 2 * offset * sums.sum + offset * offset * count;
    const auto shift = static_cast<double>(offset);
    return {static_cast<double>(static_cast<std::int64_t>(sums.sum - offset * count)), static_cast<double>(squares),
            sums.least - shift, sums.most - shift};
}

ByteHistogram::ByteHistogram(std::uint64_t expected) : pairs_(expected < kPairsFrom ? 0 : 65536) {}

void ByteHistogram::Add(const std::uint8_t* row, std::size_t count) {
    std::uint32_t* const pairs = pairs_.empty() ? nullptr : pairs_.data();
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        std::uint64_t eight;
        std::memcpy(&eight, row + i, sizeof eight);
        if (pairs) {
            for (int k = 0; k < 4; ++k) ++pairs[eight >> (16 * k) & 0xFFFF];
        } else {
            for (int k = 0; k < 8; ++k) ++tables_[static_cast<std::size_t>(k) % kTables][eight >> (8 * k) & 0xFF];
        }
    }
    for (; i < count; ++i) ++tables_[0][row[i]];
}

void ByteHistogram::AddTo(std::uint32_t (&bins)[256]) const {
    for (std::size_t value = 0; value < 256; ++value) {
        for (const auto& table : tables_) bins[value] += table[value];
    }
    if (pairs_.empty()) return;
    for (std::size_t high = 0; high < 256; ++high) {
        const std::uint32_t* row = pairs_.data() + 256 * high;
        std::uint32_t sum = 0;
        for (std::size_t low = 0; low < 256; ++low) {
            sum += row[low];
            bins[low] += row[low];
        }
        bins[high] += sum;
    }
}

}  // namespace tonewright
