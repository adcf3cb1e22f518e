#pragma once

#include "foundation/nur_image.h"

namespace tonewright {

/// How an automatic threshold finds its levels from the whole ROI.
enum AdaptiveMethod : int {
    kAdaptiveOffset = 0,     ///< mean + factor
    kAdaptiveBelow = 1,      ///< mean + factor x (mean - minimum)
    kAdaptiveAbove = 2,      ///< mean + factor x (maximum - mean)
    kAdaptiveDeviation = 3,  ///< mean + factor x deviation
    kAdaptiveOtsu = 4        ///< Otsu's level; wants `single` and a low factor of 0, and no FormatFloat
};

/// The level that separates an image's pixels best into two classes, after N. Otsu, "A threshold selection method from
/// gray-level histograms", IEEE Transactions on Systems, Man and Cybernetics 9 (1979): the variance between the classes
/// is largest. The level itself belongs to the upper class. A flat image gives the second lowest value of its format.
/// @return false for a format other than FormatByte, Short, UByte and UShort
bool findOtsuLevel(const NurImage* image, float* level);

}  // namespace tonewright

/// Finds the levels of an image by its statistics and applies them with `thresh`, whose switches and destination these
/// are. For FormatByte, Short, UByte, UShort and Float.
/// @param low, high receive the levels in use, and may be null; with `single`, high is low
/// @return 0, or nur_report's answer with the reason reported
int ctiv_adaptThresh(const NurImage* source, NurImage* destination, float* low, float* high, int method,
                     float lowFactor, float highFactor, bool invert, bool single, bool binary);
