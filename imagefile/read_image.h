#pragma once

#include "foundation/nur_image.h"
#include "imagefile/ImageParameters.h"

/// Reads a BMP or a TIFF file, told apart by content.
/// @param record without data: allocated; with data: filled in its own format, size and ROI
/// @param metadata receives geometry, format and what the file says of a 3D scan; may be null
/// @return 0; 100, unreported, if the file cannot be opened; 1 on other failure
int ctiv_readImageFromFile(NurImage* record, const char* path, ImageParameters* metadata);
