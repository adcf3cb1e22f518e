#include "report/markup_impl.h"

#include <algorithm>
#include <cmath>

namespace tonewright {

namespace markup {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// Bytes of the character that begins the text; 0 where it is no UTF-8.
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
    std::uint32_t code = first & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0u) != 0x80u) return 0;
        code = code << 6 | (byte(i) & 0x3Fu);
    }
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < kLeast[length] || code > 0x10FFFF || isSurrogate ? 0 : length;
}

std::string_view entity(char character) {
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return {};
    }
}

}  // namespace

std::string Escaped(std::string_view text) {
    std::string escaped;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const auto first = static_cast<unsigned char>(text[0]);
        const bool isControl = (first < 0x20 && first != '\t' && first != '\n') || first == 0x7F;
        if (length == 0 || isControl) {
            escaped += kReplacement;
            text.remove_prefix(1);
            continue;
        }
        const std::string_view named = length == 1 ? entity(text[0]) : std::string_view{};
        escaped += named.empty() ? text.substr(0, length) : named;
        text.remove_prefix(length);
    }
    return escaped;
}

std::string CssColor(const std::array<double, 3>& linear) {
    constexpr char kHex[] = "0123456789abcdef";
    std::string color = "#";
    for (const double channel : linear) {
        const double v = std::isfinite(channel) ? std::clamp(channel, 0.0, 1.0) : 0.0;
        const double coded = v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
        const auto byte = static_cast<unsigned>(std::lround(coded * 255));
        color += {kHex[byte >> 4], kHex[byte & 15]};
    }
    return color;
}

std::string Base64(std::span<const std::uint8_t> bytes) {
    constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? bytes[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k) text += k <= count ? kAlphabet[group >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

}  // namespace markup

}  // namespace tonewright
