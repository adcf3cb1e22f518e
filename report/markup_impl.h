#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "foundation/fixed_text.h"

namespace tonewright {

// The small pieces of which an HTML page with SVG is put together. Texts are UTF-8; numbers have a decimal point
// whatever the locale.

namespace markup {

/// The text with the five characters that mean something in HTML and XML written as entities; control characters other
/// than tab and line feed, and bytes that are no UTF-8, become U+FFFD.
std::string Escaped(std::string_view text);

/// The number with `decimals` digits behind the point; "–" where it is not finite.
inline std::string Fixed(double value, int decimals) { return FixedText(value, decimals, "–"); }

/// "#rrggbb" of a linear RGB color (0 to 1, clipped), coded as sRGB (IEC 61966-2-1).
std::string CssColor(const std::array<double, 3>& linear);

/// The bytes in base 64 (RFC 4648), without line breaks.
std::string Base64(std::span<const std::uint8_t> bytes);

}  // namespace markup

}  // namespace tonewright
