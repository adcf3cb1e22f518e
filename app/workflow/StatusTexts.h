#pragma once

#include <QString>

#include "app/toolkit/ViewRect.h"
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

}  // namespace status_texts
