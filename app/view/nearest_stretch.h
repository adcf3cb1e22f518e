#pragma once

#include <QImage>
#include <cstdint>
#include <vector>

#include "app/toolkit/ViewRect.h"
#include "foundation/nur_image.h"

// Stretching without mixing: of each pixel of the result, the upper left corner says which source pixel it shows.

/// @return for each of `count` places of the result the source place that it shows, from `begin` to begin + size - 1
std::vector<std::int32_t> NearestPlaces(std::int32_t begin, std::int32_t size, std::int32_t count);

/// Picks rows and columns of an image whose elements are 1, 2 or 4 bytes.
/// @param out columns.size() x rows.size() elements without padding
void PickPixels(const NurImage& image, const std::vector<std::int32_t>& columns, const std::vector<std::int32_t>& rows,
                std::uint8_t* out);

/// Stretches a part of an Indexed8, Mono or RGB32 picture over the whole of an RGB32 picture.
void StretchNearest(const QImage& source, const ViewRect& part, QImage* destination);
