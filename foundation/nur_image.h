#pragma once

#include "foundation/CTivData.h"

/// The lower layer's image record. Rows run from the top without padding; FormatBinary packs 8 pixels a byte, pixel x
/// in bit x AND 7, so its width is a multiple of 8.
struct NurImage {
    CTivData::Format format = CTivData::FormatNone;
    void* data = nullptr;
    std::int32_t width = 0;   ///< pixels
    std::int32_t height = 0;  ///< pixels
    CTivRect roi;             ///< pixels, always inside the image

    /// Bytes from one row to the next.
    std::int64_t Pitch() const { return (std::int64_t{CTivData::GetFormatBits(format)} * width + 7) / 8; }
    /// First byte of the ROI's row `y` (0 is the ROI's first).
    template <class T = std::uint8_t>
    T* RoiRow(std::int32_t y) {
        const std::int64_t bit = std::int64_t{roi.x} * CTivData::GetFormatBits(format);
        return reinterpret_cast<T*>(static_cast<std::uint8_t*>(data) + (roi.y + std::int64_t{y}) * Pitch() + bit / 8);
    }
    template <class T = std::uint8_t>
    const T* RoiRow(std::int32_t y) const {
        return const_cast<NurImage*>(this)->RoiRow<T>(y);
    }
    /// First byte of the image's row `y`.
    template <class T = std::uint8_t>
    T* Row(std::int32_t y) {
        return reinterpret_cast<T*>(static_cast<std::uint8_t*>(data) + y * Pitch());
    }
    template <class T = std::uint8_t>
    const T* Row(std::int32_t y) const {
        return const_cast<NurImage*>(this)->Row<T>(y);
    }
};

/// Bytes that nur_image_alloc takes for an image (element bits of the object-type table).
/// @return -1 where the product leaves 63 bits
std::int64_t nur_image_bytes(CTivData::Format format, std::int32_t width, std::int32_t height);

/// Allocates zeroed pixels into an empty record and sets the ROI to the whole image.
/// @param isPromise as nur_alloc has it
/// @return 0; -2 for a negative argument, -1 without memory. A size of 0 gives null data and is no failure.
int nur_image_alloc(NurImage* image, CTivData::Format format, std::int32_t width, std::int32_t height,
                    bool isPromise = false);

/// Frees the data and empties the record. @return 0; -1 for a format outside the object-type table
int nur_image_free(NurImage* image);

/// Makes an output record ready (the "reserved memory" check). Without data it is allocated. With data it is kept: a
/// format that differs only in sign is relabelled, anything else is refused, as is a ROI smaller than asked for; what
/// is refused stays as it was.
/// @param caller the name that the error texts begin with
/// @param isPromise as nur_alloc has it
/// @return 0, or nur_report's answer after "%s: incompatible output image type: %s\n", "%s: output image size too
///         small\n" or the memory text
int nur_output_image(NurImage* image, CTivData::Format format, std::int32_t width, std::int32_t height,
                     const char* caller, bool isPromise = false);
