#pragma once

#include <string>
#include <vector>

#include "chart/PatchMeasurement.h"

namespace tonewright {

/// "12 %" of a fraction.
std::string Percent(double fraction);
/// "patch 7", "patches 7, 8 and 12" or "patches 1 to 6 and 12".
std::string PatchList(const std::vector<int>& patches);
/// "Patch 7 is" or "Patches 7, 8 and 12 are".
std::string PatchWords(const std::vector<int>& patches);

/// Whether enough of a patch's pixels are at full scale to spoil its mean.
bool IsClipped(const PatchMeasurement& patch);

}  // namespace tonewright
