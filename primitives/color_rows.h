#pragma once

#include <cstddef>
#include <cstdint>

namespace tonewright {

// Between the three bytes that a pixel has in files, in either order, and the four that it has in images, whose fourth
// is 0. Any address, any count; the two ranges must not overlap.

// Spread: three bytes to four. Pack: four to three, the fourth dropped.
void SpreadBgr(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void SpreadRgb(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void PackBgr(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
void PackRgb(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);

// Their two forms, which do the same; the wide ones need AVX2.
void SpreadBgrPlain(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void SpreadBgrWide(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void SpreadRgbPlain(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void SpreadRgbWide(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void PackBgrPlain(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
void PackBgrWide(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
void PackRgbPlain(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
void PackRgbWide(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);

}  // namespace tonewright
