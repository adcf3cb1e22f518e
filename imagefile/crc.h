#pragma once

#include "foundation/CTivOutputStream.h"
#include "imagefile/ImageParameters.h"

namespace tonewright {

/// Writes an image as a CRC image stream of version 7.
/// A format without a device code (FormatRgb, for one) is written with -1, deliberately (C45); no reader takes such a
/// file.
/// @param bytes length of `data`
/// What the stream throws goes to the caller.
void writeCrc(const ImageParameters& parameters, const void* data, int bytes, CTivOutputStream* stream);

}  // namespace tonewright
