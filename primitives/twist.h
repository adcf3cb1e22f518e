#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "primitives/wide.h"

// Color twists: rows of packed pixels (bytes blue, green, red, reserved) through an affine map.

namespace tonewright {

/// Three rows of four: the weights of blue, green, red and an offset on the 0 to 255 scale, for blue, green, red out.
using ColorTwistMatrix = std::span<const float, 12>;

}  // namespace tonewright

/// Replaces blue, green and red of the destination by ((t0 b + t1 g) + t2 r) + t3, in float32, rounded half to even and
/// saturated to 0 to 255, NaN to 0. The destination's fourth byte stays.
/// @param sourcePitch, destinationPitch bytes from row to row; source and destination must not overlap
/// @param width, height pixels; the arguments are not checked
/// @return 0, or -2 at acceleration level 0, which does nothing: there is no fallback
int ctiv_ippiColorTwist32f_8u_AC4R(const std::uint8_t* source, std::int64_t sourcePitch, std::uint8_t* destination,
                                   std::int64_t destinationPitch, int width, int height,
                                   tonewright::ColorTwistMatrix twist);

/// The same in place.
int ctiv_ippiColorTwist32f_8u_AC4IR(std::uint8_t* pixels, std::int64_t pitch, int width, int height,
                                    tonewright::ColorTwistMatrix twist);

namespace tonewright {

// One row, at any address, in the named form (one that this machine has); all forms give the same to the bit.

using TwistRow = void (*)(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                          ColorTwistMatrix twist);
TwistRow GetTwistRow(RowForm form);
using TwistRowInPlace = void (*)(std::uint8_t* pixels, std::size_t count, ColorTwistMatrix twist);
TwistRowInPlace GetTwistRowInPlace(RowForm form);

/// What follows a twist: replaces blue, green and red of the destination by their table entries and the fourth byte by
/// 0, then by 255 wherever the same channel of `source` (the pixels before the twist) has reached its limit.
/// @param limits blue, green, red, and one that is not read
using EncodeRow = void (*)(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                           const std::array<std::uint8_t, 256>& table, const std::array<std::uint8_t, 4>& limits);
EncodeRow GetEncodeRow(RowForm form);

}  // namespace tonewright
