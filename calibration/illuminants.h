#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace tonewright {

/// A light that a calibration can be told of.
struct CalibrationIlluminant {
    std::int32_t index;          ///< as CTivTonewrightDC::SetIlluminant takes it
    const char* word;            ///< short, for options
    const char* label;           ///< for menus
    std::int32_t adaptationKey;  ///< into CalibrationTables::AdaptationTable; -1 for the user's own light
};

/// The user's own light: the user gives the XYZ of patches and white.
inline constexpr std::int32_t kUserIlluminant = -1;

/// All of them, by rising index without a gap. The index follows the menu, the adaptation key an order of its own.
inline constexpr std::array<CalibrationIlluminant, 10> kCalibrationIlluminants = {{
    {kUserIlluminant, "user", "User defined", -1},
    {0, "A", "Tungsten or Halogen: A 2856K", 1},
    {1, "D50", "Daylight: D50 5003K (Sunrise/Sunset)", 3},
    {2, "D55", "Daylight: D55 5503K (Mid-morning)", 4},
    {3, "D65", "Daylight: D65 6504K (Noon)", 0},
    {4, "D75", "Daylight: D75 7504K (Overcast)", 5},
    {5, "E", "Others: E 5454K", 2},
    {6, "F2", "Fluorescent: F2 4230K (cool white)", 6},
    {7, "F7", "Fluorescent: F7 6500K (broadband)", 7},
    {8, "F11", "Fluorescent: F11 4000k (narrowband)", 8},
}};

// By index and by word, exactly as written; null for none.
constexpr const CalibrationIlluminant* FindIlluminant(std::int32_t index) {
    for (const CalibrationIlluminant& illuminant : kCalibrationIlluminants) {
        if (illuminant.index == index) return &illuminant;
    }
    return nullptr;
}
constexpr const CalibrationIlluminant* FindIlluminant(std::string_view word) {
    for (const CalibrationIlluminant& illuminant : kCalibrationIlluminants) {
        if (illuminant.word == word) return &illuminant;
    }
    return nullptr;
}

}  // namespace tonewright
