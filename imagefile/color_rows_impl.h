#pragma once

#include <cstddef>
#include <cstdint>

// Between the three bytes that a pixel has in files, in either order, and the four that it has in images, whose fourth
// is 0. Any address, any count; the two ranges must not overlap.

// Spread: three bytes to four. Pack: four to three, the fourth dropped.
void spreadBgr(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void spreadRgb(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void packBgr(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
void packRgb(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);

// Their two forms, which do the same; the wide ones need AVX2.
void spreadBgrPlain(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void spreadBgrWide(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void spreadRgbPlain(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void spreadRgbWide(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count);
void packBgrPlain(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
void packBgrWide(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
void packRgbPlain(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
void packRgbWide(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
