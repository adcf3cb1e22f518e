#pragma once

#include "foundation/nur_image.h"

namespace tonewright {

/// What a local threshold compares a window's mean with.
enum LocalMethod : int {
    kLocalOffset = 0,     ///< nothing: the factors are offsets
    kLocalMinimum = 1,    ///< the ROI's minimum
    kLocalMaximum = 2,    ///< the ROI's maximum
    kLocalDeviation = 3,  ///< the deviation within the window
    kLocalTiles = 4       ///< none: Otsu's level of each tile of the window's size
};

}  // namespace tonewright

/// Thresholds each pixel by levels from a window around it, whose mean is m. Beyond the ROI the nearest row or column
/// stands in.
///   method 0: low = m + factor1, high = m + factor2
///   1, 2, 3:  a = the larger of factor3 and (1) m - minimum, (2) maximum - m, (3) the window's deviation;
///             low = m + factor1 a, high = m + factor2 a
///   4:        low = high = Otsu's level of the pixel's tile, or of the whole ROI where the tile is flat; the factors
///             don't count
/// A pixel is selected as by `thresh`, whose switches these are.
/// @param source FormatByte, Short, UByte, UShort or Float
/// @param destination another image; empty, or with a ROI of the source's size: FormatUByte for a mask, else
///                    the source's format
/// @param windowWidth, windowHeight raised to 3 and to the next odd number; limited so that half a window stays below
///                    the ROI's size
/// @return 0, or nur_report's answer with the reason reported
int localAdaptThresh(const NurImage* source, NurImage* destination, int windowWidth, int windowHeight, int method,
                     float factor1, float factor2, float factor3, bool invert, bool single, bool binary);

/// Method 3 of localAdaptThresh.
int localMeanThresh(const NurImage* source, NurImage* destination, int windowWidth, int windowHeight, float factor1,
                    float factor2, float factor3, bool invert, bool single, bool binary);
