#pragma once

#include "app/toolkit/ViewRect.h"
#include "foundation/CTivImage.h"

class QPainter;

/// Brings images of any supported format to a painter, and cuts lines at a rectangle.
class CDemoUtil {
public:
    /// Paints a part of the image, stretched to the destination: each device pixel shows the image pixel that it falls
    /// into, none is mixed. Main thread only: the memory for the conversion is kept from call to call.
    ///
    /// FormatUByte, UShort, Rgb and Binary are shown as they are, UShort by its upper 8 significant bits; FormatByte,
    /// Short and Float by the range from their least to their greatest value; FormatHsv, Yuv, Lab and Rgb10 as the
    /// FormatRgb that they convert to.
    /// @param image its region of interest plays no part and stays
    /// @param source in image pixels, cut to the image; null: the whole image
    /// @param destination in the painter's logical pixels; null: the widget that is painted on, on other devices what
    ///        the painter's clipping leaves, or the source's size if that is nothing
    /// @param significantBits the bits that a 16-bit image holds, -1: by the greatest value of the source
    /// @return false, reported, for a format that is not among these; true also where drawing failed, which is reported
    static bool DisplayImage(CTivImage* image, QPainter* painter, const ViewRect* source, const ViewRect* destination,
                             int significantBits);

    /// Whether DisplayImage knows the format.
    static bool IsDisplayable(CTivData::Format format);

    /// Cuts a segment at a rectangle that is grown by 1 on each side. Each of its edges (left, right, top, bottom) that
    /// the segment crosses gives a point: the first goes to outA, the next to outB, further ones overwrite outB.
    /// @param count receives how many were found
    /// @return false where both ends lie within (count 0) or no edge is crossed
    static bool ClipSegmentToRect(int x1, int y1, int x2, int y2, const ViewRect& rect, ViewPoint* outA,
                                  ViewPoint* outB, int* count);

    /// Where two lines through the segments a and b meet, truncated to integers.
    /// @return 0 for parallel lines (the point is then (0, 0)); else whether the point lies on the segments: 1 on a
    ///         only, 2 on b only, 3 on both, 4 on neither
    static int IntersectSegments(ViewPoint a1, ViewPoint a2, ViewPoint b1, ViewPoint b2, ViewPoint* point);
};
