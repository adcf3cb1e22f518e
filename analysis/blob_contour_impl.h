#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "analysis/BlobRecord.h"
#include "foundation/nur_image.h"

/// The contours of one blob.
struct TracedBlob {
    BlobContour contour;
    std::int64_t holePixels = 0;  ///< inside all hole contours, other blobs there among them
};

/// Follows all borders in the ROI of an image, after S. Suzuki and K. Abe, "Topological structural analysis of
/// digitized binary images by border following", Computer Vision, Graphics and Image Processing 30 (1985): one pass
/// over the image finds where each border starts and which blob it belongs to.
/// @param view FormatUByte, UShort or Binary
/// @param byValue pixels of one value other than the background belong together; else foreground is what is not 0, or
///                what is 0 where the background is not 0
/// @param records the blobs to trace @return one entry a record
std::vector<TracedBlob> traceContours(const NurImage& view, bool byValue, std::uint16_t background, bool eight,
                                      std::span<BlobRecord* const> records);
