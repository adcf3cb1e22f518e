#pragma once

#include <cstddef>
#include <cstdint>

namespace tonewright {

// Rows of pixels turned into bits, 64 to a word: pixel x is bit x AND 63 of word x / 64, set where the pixel is
// foreground. Bits past the row's end are 0. `zeros` says which pixels are foreground: those of 0, or those other
// than 0.

constexpr std::size_t ForegroundWordCount(std::size_t pixels) { return (pixels + 63) / 64; }

/// Rows of any length at any address; `words` has room for ForegroundWordCount(count).
using ForegroundRow8 = void (*)(const std::uint8_t* row, std::size_t count, bool zeros, std::uint64_t* words);
void ForegroundWords8Plain(const std::uint8_t* row, std::size_t count, bool zeros, std::uint64_t* words);
void ForegroundWords8Wide(const std::uint8_t* row, std::size_t count, bool zeros, std::uint64_t* words);

using ForegroundRow16 = void (*)(const std::uint16_t* row, std::size_t count, bool zeros, std::uint64_t* words);
void ForegroundWords16Plain(const std::uint16_t* row, std::size_t count, bool zeros, std::uint64_t* words);
void ForegroundWords16Wide(const std::uint16_t* row, std::size_t count, bool zeros, std::uint64_t* words);

/// Packed rows, pixel x in bit x AND 7 of byte x / 8. By bytes, or by 32-bit words, which want a count that is a
/// multiple of 32.
void ForegroundWords1ByBytes(const std::uint8_t* row, std::size_t count, bool zeros, std::uint64_t* words);
void ForegroundWords1ByWords(const std::uint8_t* row, std::size_t count, bool zeros, std::uint64_t* words);

}  // namespace tonewright
