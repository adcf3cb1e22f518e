#pragma once

namespace tonewright {

// What the controls of a calibration's parameters can be set to. The operator itself takes any number.

/// Gamma in hundredths, as its edit and slider show it.
inline constexpr int kLeastGammaHundredths = 5;
inline constexpr int kMostGammaHundredths = 100;

/// A saturation value of 8 bits.
inline constexpr int kMostSaturation = 255;

}  // namespace tonewright
