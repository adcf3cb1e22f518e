#pragma once

#include "foundation/CTivOutputStream.h"
#include "foundation/nur_image.h"
#include "imagefile/ImageParameters.h"

// TIFF files by way of libtiff. The library's format and the metadata of a 3D scan travel in private tags, so that
// every format that TIFF can carry survives a write and a read (FormatByte comes back as FormatUByte). All functions
// answer 0, or 1 with the reason reported; what libtiff itself complains of reads "rdImage: <module> - <message>\n".

struct tiff;  // libtiff's TIFF

/// @return whether the file begins with "II" or "MM"
bool isTIFF(const char* path);

/// Reads the current image of an open file.
/// @param record without data: allocated, its format inferred from the file. With data: what fits of the file goes to
///               its ROI, from the top left; its format must be the file's.
/// @param metadata receives what the private tags say of a 3D scan; may be null
int readTIFF(tiff* tif, NurImage* record, ImageParameters* metadata);
int readTIFFFile(const char* path, NurImage* record, ImageParameters* metadata);

/// Writes a record's ROI, uncompressed, a row a strip. Formats outside FormatByte to FormatCoord3dACRW16 and those
/// that TIFF has no samples for are refused.
int writeTIFF(tiff* tif, const NurImage* record);
/// An earlier file stays where writing fails.
int writeTIFFFile(const char* path, const NurImage* record);

/// Writes a record's ROI with its metadata. Nothing that the stream throws leaves this function.
/// @param metadata may be null
int WriteTiffToStream(const NurImage* record, const ImageParameters* metadata, CTivOutputStream* stream);
