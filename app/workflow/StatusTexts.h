#pragma once

#include <QString>

#include "app/toolkit/ViewRect.h"
#include "chart/PatchDetector.h"
#include "foundation/CTivData.h"

/// The words of the status bar.
namespace status_texts {

QString BufferAtStart();  ///< before the first image
QString BufferAfterReset();
/// @param bits of one pixel @param formatName as CTivData::GetFormatName gives it
QString Buffer(int width, int height, int bits, const QString& formatName, int bufferCount);
QString PixelNotAvailable();
/// Place and value of a pixel: the channels of a color of 32 bits in hexadecimal, nothing for other colors, an integer
/// in hexadecimal, any other number as it is.
QString Pixel(long x, long y, const CTivData& value);
QString Roi(const ViewRect& roi);
/// A percentage with an x behind it, deliberately (C13): 1.0 reads "Zoom 0100.00x".
QString Zoom(float zoom);
/// Which patch to pick next by hand, by its name where the chart is the 24-patch one.
/// @param picked how many colors the list has so far, which may be more than the chart has patches
QString NextPatch(std::size_t picked, const ChartSize& chart);

}  // namespace status_texts
