#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "chart/FoundChart.h"
#include "foundation/CTivImage.h"

namespace tonewright {

/// Red, green, blue, each a toned level of 0 to 255: 255 times the square root of the channel's share of full scale, so
/// that dark patches of linear pictures keep their contrast.
using TonedColor = std::array<double, 3>;

/// A pixel of a working copy: blue in the lowest byte, green, red, 0.
using TonedWord = std::uint32_t;

/// A copy of a picture for looking at, in toned levels.
struct WorkingCopy {
    int factor = 1;  ///< pixels of the picture along a side of a pixel
    int width = 0;
    int height = 0;
    std::vector<TonedWord> words;

    const TonedWord* Row(int y) const { return words.data() + std::ptrdiff_t{y} * width; }
};

/// @return whether a picture of this format can be looked at: FormatRgb, FormatRgb10, FormatRgb16
bool HasToned(CTivData::Format format);

/// How far channels are shifted down to ten bits after four were added: less than their depth asks for where deep words
/// are used in part only (12 bits of 16).
int FindToneShift(const CTivImage& picture, const CTivRect& part);

/// The copy of half the size of a part of a picture. An odd last row or column is left out.
/// @param part inside the picture
WorkingCopy MakeHalfCopy(const CTivImage& picture, const CTivRect& part, int toneShift);

/// Each pixel the mean of four; an odd last row or column is left out.
WorkingCopy Halved(const WorkingCopy& copy);

/// Each pixel of the answer (FormatUByte) is the largest difference, over the channels, of its neighbours left and
/// right and of those above and below; 255 at the rim.
CTivImage MeasureChange(const WorkingCopy& copy);
/// The same in the picture itself, without a copy.
CTivImage MeasureChange(const CTivImage& picture, const CTivRect& part, int toneShift);

/// The picture itself, between its pixels by bilinear interpolation.
class SmoothPicture {
public:
    SmoothPicture(const CTivImage& picture, int toneShift);  ///< in a format of HasToned; must outlive this
    bool Holds(const ChartPoint& place) const {              ///< whether a place lies between the picture's pixels
        return place.x >= 0 && place.y >= 0 && place.x < width_ - 1 && place.y < height_ - 1;
    }
    /// Adds the channels, red first, as shares of the scale that the shift leaves. @param place that the picture holds
    void AddAt(const ChartPoint& place, TonedColor& sums) const;

private:
    template <class Word>
    void AddWords(const ChartPoint& place, TonedColor& sums) const;

    const std::uint8_t* data_;
    std::int64_t pitch_;
    int width_, height_;
    int bits_;
    double scale_;  // from a channel to its share of full scale
};

}  // namespace tonewright
