#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report/cube_table.h"

namespace tonewright {

/// An ICC input profile (version 4.3) of the camera: from its raw colors to what the calibration says they are, without
/// gamma and limits. Made through Little CMS.
/// @param toXyz  a raw color, each channel 0 to 1 of full scale, to CIE XYZ under D65, not clipped
/// @param isLinear the correction is a matrix with offsets: it is then stored as such, exactly; else as a table of 33
///                 points a channel
/// @param name the profile's description
/// @return empty where the profile could not be made
std::vector<std::uint8_t> IccProfile(const ColorFunction& toXyz, bool isLinear, const std::string& name);

}  // namespace tonewright
