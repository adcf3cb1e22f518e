#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tonewright {

// Sums and counts over rows of pixels, exact whole numbers.

/// Running sums of one channel. A signed kind counts its values from its lowest, so that all here are unsigned.
/// `least` and `most` say nothing before the first pixel.
struct ChannelSums {
    std::uint64_t sum = 0;
    std::uint64_t squares = 0;
    std::uint32_t least = UINT32_MAX;
    std::uint32_t most = 0;
};

enum class PixelKind {
    Byte,        ///< one channel
    SignedByte,  ///< one channel, as value + 128
    Word,        ///< one channel of 16 bits
    SignedWord,  ///< one channel, as value + 32768
    Color8,      ///< four bytes: the first three
    Color10,     ///< a 32-bit word: bits 0 to 9, 10 to 19, 20 to 29
    Color16      ///< four 16-bit words: the first three
};

/// Adds a row of `count` pixels, at any address, to the sums of its channels (1, or 3 for the colors).
using SumsRow = void (*)(const std::uint8_t* row, std::size_t count, ChannelSums* sums);

/// @param wide the form for AVX2, which must be at hand; both give the same
SumsRow GetSumsRow(PixelKind kind, bool wide);

/// Widens `least` and `most` by a row of floats; what is no number counts for nothing.
void FloatRangeRowPlain(const float* row, std::size_t count, float& least, float& most);
void FloatRangeRowWide(const float* row, std::size_t count, float& least, float& most);

/// What the sums of one channel come to, in float64 and at the kind's own values.
struct Moments {
    double sum = 0;
    double squares = 0;
    double least = 0;
    double most = 0;

    double Mean(double count) const { return sum / count; }
    double Deviation(double count) const;  ///< sqrt(squares / count - mean squared), of the population
};
Moments MomentsOf(const ChannelSums& sums, PixelKind kind, std::uint64_t count);

/// Counts bytes into 256 bins. Equal neighbours would wait for each other in one table, so a small image is spread over
/// several, and a large one counts two neighbours at once as one of 65536 pairs.
class ByteHistogram {
public:
    /// @param expected how many bytes will come, to choose by; any number may
    explicit ByteHistogram(std::uint64_t expected);
    void Add(const std::uint8_t* row, std::size_t count);
    /// @param bins what was counted is added to these
    void AddTo(std::uint32_t (&bins)[256]) const;

private:
    static constexpr std::size_t kTables = 4;
    std::uint32_t tables_[kTables][256] = {};
    std::vector<std::uint32_t> pairs_;  // low byte the left neighbour; empty for a small image
};

}  // namespace tonewright
