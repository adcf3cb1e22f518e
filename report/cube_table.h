#pragma once

#include <array>
#include <functional>
#include <string>

namespace tonewright {

/// From a camera's color, each channel 0 to 1 of full scale, to a corrected one.
using ColorFunction = std::function<std::array<double, 3>(const std::array<double, 3>&)>;

/// A correction as a 3D table of 33 points a channel in the .cube format (Cube LUT version 1.0): input and output 0 to
/// 1, red fastest. Its head tells how far interpolating it strays from the correction. Points are the correction's own
/// values: points fitted by least squares would lessen the greatest errors by a fifth, but lift black itself by ten
/// steps, and leave fewer colors within a step and a half.
/// @param correct the whole correction, gamma included; channels outside 0 to 1 are clipped
/// @param title   one line
std::string CubeTable(const ColorFunction& correct, const std::string& title);

}  // namespace tonewright
