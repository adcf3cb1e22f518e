#pragma once

#include <cstdint>
#include <string>

#include "foundation/CTivVector.h"

namespace tonewright {

/// Says why a transform can't be a calibration, so that it must not reach a device: a safeguard for whoever sends one.
/// A fit with nothing to fit succeeds, and what it gives would blind the device.
/// @param transform 3 x terms FormatFloat: the red row, the green one, the blue one, each with its offset first
/// @return the reason as a clause that names the row, such as "the red row of the transform has an entry that is no
///         number"; empty where every entry is a finite number and each channel follows the picture. Nothing is
///         reported
std::string WhyUnusableTransform(const CTivVector& transform, std::int32_t terms);

/// The same for the transform in a coefficient file (.ccor), and a reason where the file holds none.
/// @return empty also where the file can't be opened, which sending it tells
std::string WhyUnusableCoefficients(const std::string& path);

}  // namespace tonewright
