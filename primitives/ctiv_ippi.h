#pragma once

#include <cstdint>

// The pixel primitives behind one thin wrapper each. Arguments stand as they are: pointers, pitches in bytes, width and
// height in pixels; nothing is checked or reported. Each answers 0. At acceleration level 0 a primitive without a
// fallback answers -2 and does nothing; the others compute the same.
// The two color twists are in primitives/twist.h.

namespace tonewright {

/// What a wrapper without a fallback answers at level 0.
inline constexpr int kPrimitiveAbsent = -2;

enum class PrimitiveCompare { Less, LessEqual, Equal, GreaterEqual, Greater };

}  // namespace tonewright

/// How many threads a primitive may use on a large image; below 1 counts as 1. @return 0
int ctiv_ippSetNumThreads(int count);

/// Histograms with even bins: `levels` receives levelCount edges from lower to upper, evenly spaced and cut to whole
/// numbers, `counts` the levelCount - 1 counts of levels[k] <= value < levels[k + 1].
int ctiv_ippiHistogramEven_8u_C1R(const std::uint8_t* source, std::int64_t pitch, int width, int height,
                                  std::int32_t* counts, std::int32_t* levels, int levelCount, std::int32_t lower,
                                  std::int32_t upper);
/// Per channel of four-byte pixels, the first three used.
int ctiv_ippiHistogramEven_8u_C4R(const std::uint8_t* source, std::int64_t pitch, int width, int height,
                                  std::int32_t* counts[3], std::int32_t* levels[3], const int levelCount[3],
                                  const std::int32_t lower[3], const std::int32_t upper[3]);
int ctiv_ippiHistogramEven_16u_C1R(const std::uint16_t* source, std::int64_t pitch, int width, int height,
                                   std::int32_t* counts, std::int32_t* levels, int levelCount, std::int32_t lower,
                                   std::int32_t upper);
int ctiv_ippiHistogramEven_16s_C1R(const std::int16_t* source, std::int64_t pitch, int width, int height,
                                   std::int32_t* counts, std::int32_t* levels, int levelCount, std::int32_t lower,
                                   std::int32_t upper);

/// Mean and standard deviation (of the population).
int ctiv_ippiMean_StdDev_8u_C1R(const std::uint8_t* source, std::int64_t pitch, int width, int height, double* mean,
                                double* deviation);
int ctiv_ippiMean_StdDev_8s_C1R(const std::int8_t* source, std::int64_t pitch, int width, int height, double* mean,
                                double* deviation);
int ctiv_ippiMean_StdDev_32f_C1R(const float* source, std::int64_t pitch, int width, int height, double* mean,
                                 double* deviation);

int ctiv_ippiMinMax_8u_C1R(const std::uint8_t* source, std::int64_t pitch, int width, int height, std::uint8_t* least,
                           std::uint8_t* most);
int ctiv_ippiMinMax_32f_C1R(const float* source, std::int64_t pitch, int width, int height, float* least, float* most);

int ctiv_ippiRShiftC_16u_C1R(const std::uint16_t* source, std::int64_t sourcePitch, std::uint32_t shift,
                             std::uint16_t* destination, std::int64_t destinationPitch, int width, int height);

/// Scales the range lower to upper to 0 to 255, cut to whole numbers; what lies outside saturates.
int ctiv_ippiScale_16u8u_C1R(const std::uint16_t* source, std::int64_t sourcePitch, std::uint8_t* destination,
                             std::int64_t destinationPitch, int width, int height, std::uint16_t lower,
                             std::uint16_t upper);

/// Image memory on a 64-byte boundary, every row too. @param pitch receives the bytes from row to row. Null without
/// memory.
std::uint8_t* ctiv_ippiMalloc_8u_C1(int width, int height, std::int64_t* pitch);
std::uint16_t* ctiv_ippiMalloc_16u_C1(int width, int height, std::int64_t* pitch);
void ctiv_ippiFree(void* memory);

/// 255 where all three channels of a three-byte pixel compare true with `value`, else 0.
int ctiv_ippiCompareC_8u_C3R(const std::uint8_t* source, std::int64_t sourcePitch, const std::uint8_t value[3],
                             std::uint8_t* mask, std::int64_t maskPitch, int width, int height,
                             tonewright::PrimitiveCompare compare);
int ctiv_ippiAnd_8u_C1IR(const std::uint8_t* source, std::int64_t sourcePitch, std::uint8_t* mask,
                         std::int64_t maskPitch, int width, int height);
int ctiv_ippiNot_8u_C1IR(std::uint8_t* mask, std::int64_t maskPitch, int width, int height);
int ctiv_ippiSet_8u_C1MR(std::uint8_t value, std::uint8_t* destination, std::int64_t destinationPitch, int width,
                         int height, const std::uint8_t* mask, std::int64_t maskPitch);
int ctiv_ippiSet_8u_C3MR(const std::uint8_t value[3], std::uint8_t* destination, std::int64_t destinationPitch,
                         int width, int height, const std::uint8_t* mask, std::int64_t maskPitch);
/// Spreads a mask to four channels.
int ctiv_ippiDup_8u_C1C4R(const std::uint8_t* source, std::int64_t sourcePitch, std::uint8_t* destination,
                          std::int64_t destinationPitch, int width, int height);
