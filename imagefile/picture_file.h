#pragma once

#include <string>

#include "foundation/CTivImage.h"

namespace tonewright {

// Image files for programs that work with exceptions (foundation/library_texts.h).

/// @throw WorkFailure for an image of a format that the library has no name for
void RequireKnownFormat(const CTivImage& image, const std::string& path);

/// Loads an image of any kind as its file has it, but for the words of a 16-bit PNG, which the library leaves in the
/// file's order: they are put into the machine's.
/// @throw WorkFailure with the library's message, and for a native record that is shorter than its head says
CTivImage LoadImageWithRoi(const std::string& path);

/// The same, whole: a smaller region in a native file is widened.
CTivImage LoadImage(const std::string& path);

/// @return the file format number for CTivImage::Save by the name's extension (.bmp, .tif, .zvk, .crc, in any case),
///         -1 for another one
int FindFileFormat(const std::string& path);

/// Saves an image. @throw WorkFailure with the library's message, and for a format that a .crc file has no code for:
/// the library writes such a file, but nothing loads it again
void SaveImage(const CTivImage& image, const std::string& path, int fileFormat);

}  // namespace tonewright
