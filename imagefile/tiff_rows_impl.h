#pragma once

#include <cstdint>

#include "foundation/CTivData.h"

/// What converting a row of a TIFF's samples needs to know. Samples stand side by side, pixel after pixel, in bytes or,
/// above 8 bits, in 16-bit words of this machine.
struct TiffRowShape {
    std::size_t samples = 1;                 ///< samples a pixel in the file
    std::size_t pixelBytes = 0;              ///< bytes a pixel in the image
    const std::uint32_t* palette = nullptr;  ///< 256 FormatRgb words, null without a color map
    bool isInverted = false;                 ///< bits that count from white
};

/// Converts `count` pixels.
using TiffRowReader = void (*)(const std::uint8_t* samples, std::uint8_t* pixels, std::size_t count,
                               const TiffRowShape& shape);

/// @return the row reader of a format
TiffRowReader tiffRowReader(CTivData::Format format, const TiffRowShape& shape);

/// Spreads samples of `bits` bits (1 to 7, 9 to 15), packed from each byte's top, over bytes or 16-bit words.
void unpackTiffSamples(const std::uint8_t* packed, unsigned bits, std::size_t count, std::uint8_t* samples);
void unpackTiffSamples(const std::uint8_t* packed, unsigned bits, std::size_t count, std::uint16_t* samples);

/// How a format's pixels stand in a TIFF.
struct TiffWriteForm {
    CTivData::Format format;
    std::uint16_t photometric, samples, bits;
    std::uint16_t sampleFormat;  ///< 0: left at libtiff's default
    void (*row)(const std::uint8_t* pixels, std::uint8_t* samples, std::size_t count);  ///< null: as they stand
};

/// @return null for a format that TIFF has no samples for
const TiffWriteForm* tiffWriteForm(CTivData::Format format);
