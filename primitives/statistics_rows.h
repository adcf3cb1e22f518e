#pragma once

#include <cstddef>
#include <cstdint>

// Sums over rows of pixels. Whole-number sums are exact.

/// Running sums of one channel. `least` and `most` start from the first pixel.
template <class Value, class Sum>
struct ChannelSums {
    Sum sum = 0;
    Sum squares = 0;
    Value least{};
    Value most{};
};
using ByteSums = ChannelSums<std::uint8_t, std::uint64_t>;

/// Adds a row of bytes. The row may have any length and address.
void AddByteRowPlain(const std::uint8_t* row, std::size_t count, ByteSums& sums);
void AddByteRowWide(const std::uint8_t* row, std::size_t count, ByteSums& sums);

/// Adds a row of pixels of four bytes to the sums of their first three.
void AddColorRowPlain(const std::uint8_t* row, std::size_t count, ByteSums (&sums)[3]);
void AddColorRowWide(const std::uint8_t* row, std::size_t count, ByteSums (&sums)[3]);

/// Counts a row of bytes into 256 bins, spread over sub-tables so that equal neighbours don't wait for each other.
class ByteHistogram {
public:
    void Add(const std::uint8_t* row, std::size_t count);
    /// Adds up the sub-tables. @param bins receives 256 counts
    void Finish(std::uint32_t (&bins)[256]) const;

private:
    static constexpr std::size_t kTables = 8;
    std::uint32_t tables_[kTables][256] = {};
};
