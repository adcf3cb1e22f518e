#pragma once

#include <array>

namespace tonewright {

/// What the patches of the 24-patch chart are called, in chart order: 18 chromatic ones row by row, then the neutral
/// row from white to black.
inline constexpr std::array<const char*, 24> kPatchNames = {
    "Dark Skin", "Light Skin",    "Blue Sky",     "Foliage",   "Blue Flower",  "Bluish Green",
    "Orange",    "Purplish Blue", "Moderate Red", "Purple",    "Yellow Green", "Orange Yellow",
    "Blue",      "Green",         "Red",          "Yellow",    "Magenta",      "Cyan",
    "White",     "Neutral 8",     "Neutral 6.5",  "Neutral 5", "Neutral 3.5",  "Black"};

}  // namespace tonewright
