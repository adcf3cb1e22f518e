#pragma once

#include "foundation/CTivOutputStream.h"
#include "foundation/nur_image.h"
#include "imagefile/ImageParameters.h"

/// Writes a record's ROI into a BMP (5) or TIFF (4) file. The earlier file stays where the new one fails.
/// @return 0, or nur_report's answer: a format that the kind does not take, another kind, a file that cannot be written
int writeImage(const NurImage* record, const char* path, int fileFormat);

/// Writes the pixels of a whole image, of which the ROI goes out, as a TIFF (4) with its metadata.
/// @param bytes length of `data`; it must hold the image that the parameters tell of
/// @return 0, or nur_report's answer
int writeImageToStream(const ImageParameters& parameters, const void* data, int bytes, int fileFormat,
                       CTivOutputStream* stream);
