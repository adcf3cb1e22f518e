#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "acquisition/zvn/aravis_impl.h"

// Files on a camera, through the standard features of File Access Control (GenICam Standard Features Naming
// Convention, chapter "File Access Control"). What fails is told through TellZvnStatus.

/// @return the place of a file among those that the camera lists
std::optional<int> FindCameraFile(ArvDevice* device, const std::string& name);
/// @return nothing where it fails, or for more than 16 MiB
std::optional<std::vector<char>> ReadCameraFile(ArvDevice* device, const std::string& name);
bool WriteCameraFile(ArvDevice* device, const std::string& name, std::span<const char> content);
