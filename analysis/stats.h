#pragma once

#include <array>

#include "foundation/nur_image.h"
#include "foundation/nur_vector.h"

namespace tonewright {

/// Where one channel's statistics go; any pointer may be null.
struct StatsPointers {
    float* mean = nullptr;
    float* deviation = nullptr;  ///< of the population
    float* min = nullptr;
    float* max = nullptr;

    bool Any() const { return mean || deviation || min || max; }
};
/// The three channels of a color object in memory order: for FormatRgb blue, green, red.
using ColorStatsPointers = std::array<StatsPointers, 3>;

}  // namespace tonewright

/// Measures an image's ROI. Monochrome: Char, UByte, Byte, UShort, Short, Float; color: Rgb, Hsv, Yuv, Lab, Rgb10,
/// Rgb16. Nothing asked for, nothing done.
/// @return 0, or nur_report's answer with the pointed-to values as they were: a format outside the lists, color asked
///         of monochrome or the reverse, an ROI without pixels
int stats(const NurImage* image, const tonewright::StatsPointers& mono,
          const tonewright::ColorStatsPointers& color = {});

/// Measures all elements of a vector; beside the formats of images also Int, UInt, Double, and Point and FPoint, of
/// which the y counts (the value at x, as in a histogram). An empty vector is refused.
int stats(const NurVector* vector, const tonewright::StatsPointers& mono,
          const tonewright::ColorStatsPointers& color = {});
