#pragma once

#include <QColor>

/// The text of a list that can't be edited now.
inline constexpr QColor kDimmedText{0x66, 0x66, 0x66};
