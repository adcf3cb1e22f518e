#pragma once

#include "foundation/nur_image.h"

// Windows bitmaps with a 40-byte head (longer heads of later kinds are read over). All functions answer 0, or 1 with
// the reason reported.

/// @return whether the file begins with "BM"; false where it cannot be opened or is shorter
bool isBMP(const char* path);

/// Reads a bitmap of 1, 4, 8, 24 or 32 bits, plain, RLE4 or RLE8, or 32 bits with masks of 8 or 10 bits a channel.
/// @param record without data: allocated as FormatRgb, FormatRgb10, FormatBinary or FormatUByte, as the file has colors
///               or grays. With data: its ROI is filled with the file's top left part; a smaller file is refused.
/// A file that breaks off is refused; the record then holds what was read, or is empty if it was.
int readBMP(const char* path, NurImage* record);

/// Writes a record's ROI: FormatRgb in 24 bits, FormatRgb10 in 32 with masks, FormatBinary in 1, all others brought to
/// 8 bits of gray by castImage with mode 1. An earlier file stays where writing fails.
int writeBMP(const char* path, const NurImage* record);
