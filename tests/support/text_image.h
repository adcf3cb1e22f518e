#pragma once

#include <initializer_list>
#include <string_view>

#include "foundation/CTivImage.h"

/// A FormatUByte image drawn as text, a line a row: '.' is 0, '#' is 255, and a digit is its value.
inline CTivImage fromText(std::initializer_list<std::string_view> rows) {
    const int width = rows.size() == 0 ? 0 : static_cast<int>(rows.begin()->size());
    CTivImage image(width, static_cast<int>(rows.size()), CTivData::FormatUByte, nullptr, true);
    int y = 0;
    for (const std::string_view row : rows) {
        int x = 0;
        for (const char c : row) {
            const int value = c == '.' ? 0 : c == '#' ? 255 : c - '0';
            image.SetData(x++, y, CTivData::UByte(static_cast<std::uint8_t>(value)));
        }
        ++y;
    }
    return image;
}
