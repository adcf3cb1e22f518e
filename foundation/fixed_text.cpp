#include "foundation/fixed_text.h"

#include <charconv>
#include <cmath>

namespace tonewright {

std::string FixedText(double value, int decimals, std::string_view noNumber) {
    if (!std::isfinite(value)) return std::string(noNumber);
    char digits[400];  // the greatest double has 309 in front of the point
    const auto result = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals);
    const std::string text(digits, result.ptr);
    return text.find_first_not_of("-0.") == std::string::npos && text[0] == '-' ? text.substr(1) : text;
}

}  // namespace tonewright
