#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "primitives/wide.h"

namespace tonewright {

/// Replaces blue, green and red of packed pixels by their table entries and writes the fourth byte as zero.
/// @param source, destination of 4 x count bytes at any address; must not overlap
using LookUpRow = void (*)(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                           const std::array<std::uint8_t, 256>& table);

/// @param form one that this machine has; all give the same
LookUpRow GetLookUpRow(RowForm form);

}  // namespace tonewright
