#pragma once

#include <array>
#include <vector>

namespace tonewright {

/// The corners of a patch, or of the part of it that is measured, in the picture's pixels, one after the other around.
using PatchOutline = std::vector<std::array<double, 2>>;
/// One a patch, in chart order.
using PatchOutlines = std::vector<PatchOutline>;

}  // namespace tonewright
