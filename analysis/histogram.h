#pragma once

#include "foundation/nur_image.h"
#include "foundation/nur_vector.h"

/// Counts an image's ROI into even bins, for FormatByte, FormatShort, FormatUByte and FormatUShort.
/// @param histogram receives FormatPoint elements, one a bin: the bin's first value and its count; allocated if empty.
///                  Null: the call only validates
/// @param cumulative each bin holds the sum of all up to it
/// @param bins must divide the span high - low + 1; values outside low to high are not counted
/// @return 0, or nur_report's answer with the reason reported
int histogramInt(const NurImage* image, NurVector* histogram, bool cumulative, int bins, int low, int high);
