#pragma once

#include <cstdint>
#include <vector>

class CTivImage;

namespace tonewright {

/// The picture as a PNG in memory, 8 bits a channel, red first, without metadata.
/// @param picture FormatRgb; taken whole, whatever its ROI
/// @param longestSide in pixels; a larger picture is made smaller by averaging, a smaller one stays
/// @return empty where the picture has no pixels, another format, or there is no memory
std::vector<std::uint8_t> PngBytes(const CTivImage& picture, int longestSide);

}  // namespace tonewright
