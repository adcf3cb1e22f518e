#pragma once

#include <string>

class CTivImage;

/// Opens a native file and reads its record.
/// @return false, reported
bool LoadNativeFile(CTivImage& image, const std::string& path, bool reallocate);
