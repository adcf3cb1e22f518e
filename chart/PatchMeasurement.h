#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "foundation/CTivImage.h"

namespace tonewright {

/// What one pass over the sampling area of a patch tells. Red, green, blue, in the image's words: 0 to 255, 1023 or
/// 65535.
struct PatchMeasurement {
    std::array<double, 3> mean{};
    std::array<double, 3> deviation{};   ///< standard deviation over the area
    std::array<double, 3> covariance{};  ///< red with green, red with blue, green with blue
    double clipped = 0;                  ///< fraction of the pixels that have a channel at full scale
    bool isMixed = false;                ///< a channel has two separated levels: the area holds more than one color
    std::int64_t pixels = 0;             ///< 0: nothing could be measured
};

/// Full scale of a channel of FormatRgb (255), FormatRgb10 (1023), FormatRgb16 (65535); 0 for any other format.
int GetChannelFullScale(CTivData::Format format);

/// Takes the pixels of one patch, in runs of any length and order, and tells what they measure.
class PatchAccumulator {
public:
    /// @param format FormatRgb, FormatRgb10 or FormatRgb16; pixels of any other format are not taken
    explicit PatchAccumulator(CTivData::Format format);

    /// @param pixels packed as an image's row holds them
    void Add(const void* pixels, std::size_t count);

    /// What the pixels taken so far measure.
    PatchMeasurement Measure() const;

private:
    template <class Word, int bits>
    void AddWords(const void* pixels, std::size_t count);

    CTivData::Format format_;
    std::int64_t pixels_ = 0;
    std::int64_t clipped_ = 0;
    std::array<std::uint64_t, 3> sums_{};
    std::array<std::uint64_t, 6> products_{};                  ///< rr, gg, bb, rg, rb, gb
    std::array<std::vector<std::uint32_t>, 3> levelCounts_{};  ///< how often each level of a channel came
};

/// Measures a rectangle of the image, as far as it lies inside. The image's region plays no part.
PatchMeasurement MeasureArea(const CTivImage& image, const CTivRect& area);

}  // namespace tonewright
