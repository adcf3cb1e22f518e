#pragma once

#include <string>
#include <string_view>

namespace tonewright {

/// A number in words for people: with `decimals` digits behind a decimal point, whatever the locale, and without the
/// minus of a negative zero.
/// @param noNumber what stands for a value that is not finite
std::string FixedText(double value, int decimals, std::string_view noNumber = "no number");

}  // namespace tonewright
