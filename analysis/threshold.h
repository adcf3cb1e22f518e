#pragma once

#include "foundation/nur_image.h"

// Thresholds by fixed levels, on the ROI of images. The switches of all of them:
//   single  a pixel is selected from `low` on, and `high` is ignored; else from low to high, both included
//   invert  what is selected and what is not change places
//   binary  the output is a mask of full scale and 0; else a semi-threshold, which keeps the selected pixels and writes
//           the format's lowest value (for FormatFloat the lowest of the image) for the others
// Each answers 0, or nur_report's answer with the reason reported and the destination's pixels untouched. A null
// destination ends the call after the checks of the source.

/// Thresholds a gray image: FormatChar, UByte, Byte, UShort, Short, Float.
/// @param destination allocated if empty. A mask is FormatUShort where the destination is FormatUShort or FormatShort
///                    and FormatUByte else, or FormatBinary from 8-bit sources, with levels limited to 0 to 255. A
///                    semi-threshold has the source's format
/// @param low, high limited to the source's range and cut to whole numbers, but for FormatFloat
int thresh(const NurImage* source, NurImage* destination, float low, float high, bool invert, bool single, bool binary);

/// Thresholds FormatRgb, Hsv, Yuv or Lab. A pixel is selected if its first three bytes in memory are all in the range
/// of their channel; in a semi-threshold the others become black.
/// @param destination FormatUByte for a mask, else the source's format
/// @param low, high three levels in memory order
/// Fails at acceleration level 0, where the primitive that compares is absent.
int thresh_color(const NurImage* source, NurImage* destination, const float low[3], const float high[3], bool invert,
                 bool single, bool binary);

/// Thresholds each pixel by the pixels at the same place of two level images, all of one format: FormatByte, UByte,
/// Short or UShort.
/// @param highImage not looked at if single, and may be null then
int threshImages(const NurImage* source, NurImage* destination, const NurImage* lowImage, const NurImage* highImage,
                 bool invert, bool single, bool binary);

namespace tonewright {

// The semi-thresholds without a second image. `thresh_color_consume` refuses a mask, which is of another type.
int thresh_consume(NurImage* image, float low, float high, bool invert, bool single);
int thresh_color_consume(NurImage* image, const float low[3], const float high[3], bool invert, bool single,
                         bool binary);
int threshImages_consume(NurImage* image, const NurImage* lowImage, const NurImage* highImage, bool invert,
                         bool single);

/// Makes a threshold's output ready: a mask as told at `thresh`, else the source's format, at least the size of the
/// source's ROI. @param caller begins the error texts
int prepareThresholdOutput(const NurImage& source, NurImage* destination, bool binary, const char* caller);

}  // namespace tonewright
