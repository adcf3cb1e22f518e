#pragma once

#include <string>

/// The kinds of image files that a save can be asked for. 1, 2 and 3 exist in the numbering and no writer takes them.
enum CTivImageFileFormat : int {
    ImageFileNative = 0,  ///< the native record, ".zvk"
    ImageFileTiff = 4,    ///< ".tif"
    ImageFileBmp = 5,     ///< ".bmp"
    ImageFileCrc = 6      ///< the CRC image stream, ".crc"
};

namespace tonewright {

/// @return the name under which CTivImage::Save writes: the kind's extension is appended where there is none, but for
///         native files
std::string GetSavedImageName(const std::string& name, int fileFormat);

}  // namespace tonewright
