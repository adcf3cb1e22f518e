#include "foundation/CTivString.h"

#include <cstring>

namespace {

// Names are UTF-8 whatever the locale says, so the widening is our own. A byte that fits nowhere becomes U+FFFD.
std::wstring widen(const char* text, std::size_t length) {
    std::wstring wide;
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    for (std::size_t i = 0; i < length;) {
        const unsigned char lead = bytes[i];
        const int extra = lead < 0x80 ? 0 : lead < 0xC2 ? -1 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF5 ? 3 : -1;
        std::uint32_t code = extra <= 0 ? lead : lead & (0x3Fu >> extra);
        bool whole = extra >= 0 && i + static_cast<std::size_t>(extra) < length;
        for (int k = 1; whole && k <= extra; ++k) {
            const unsigned char next = bytes[i + static_cast<std::size_t>(k)];
            whole = (next & 0xC0) == 0x80;
            code = code << 6 | (next & 0x3F);
        }
        wide += static_cast<wchar_t>(whole ? code : 0xFFFD);
        i += whole ? static_cast<std::size_t>(extra) + 1 : 1;
    }
    return wide;
}

template <class Char>
std::unique_ptr<Char[]> duplicate(const Char* text, std::size_t length) {
    auto copy = std::make_unique<Char[]>(length + 1);
    std::copy(text, text + length, copy.get());
    return copy;
}

}  // namespace

CTivString::CTivString(const char* narrow) {
    if (!narrow) return;
    length_ = std::strlen(narrow);
    narrow_ = duplicate(narrow, length_);
    const std::wstring wide = widen(narrow, length_);
    wide_ = duplicate(wide.c_str(), wide.size());
}

CTivString::CTivString(const CTivString& other) : CTivString(other.narrow_.get()) {}

CTivString& CTivString::operator=(const CTivString& other) {
    if (this != &other) *this = CTivString(other);
    return *this;
}
