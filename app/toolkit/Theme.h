#pragma once

#include <QColor>

class QApplication;

/// The program's look, the same on every desktop: one light palette, one style sheet, and the colors for what is
/// painted by hand.
namespace theme {

inline constexpr QColor kWindow{0xF3, 0xF5, 0xF8};
inline constexpr QColor kSurface{0xFF, 0xFF, 0xFF};
inline constexpr QColor kBorder{0xD3, 0xD9, 0xE2};
inline constexpr QColor kText{0x1F, 0x2A, 0x37};
inline constexpr QColor kMutedText{0x5B, 0x67, 0x78};
inline constexpr QColor kDisabledText{0xA3, 0xAC, 0xB9};
inline constexpr QColor kAccent{0x1F, 0x63, 0xB0};
inline constexpr QColor kHover{0xE6, 0xEF, 0xFA};
inline constexpr QColor kPressed{0xC9, 0xDE, 0xF5};
inline constexpr QColor kChecked{0xD7, 0xE7, 0xF8};
inline constexpr QColor kKeyTip{0x2B, 0x36, 0x44};

/// Sets style, palette, font size and style sheet.
void Apply(QApplication& application);

}  // namespace theme
