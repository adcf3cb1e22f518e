#pragma once

#include <cstdint>
#include <vector>

#include "foundation/CTivImage.h"

/// A chart drawn into an image for tests: square patches of 40 pixels on a dark surround, 10 pixels apart.
struct DrawnChart {
    struct Color {
        std::uint32_t red, green, blue;
        bool operator==(const Color&) const = default;
    };
    static constexpr int kPatch = 40, kGap = 10, kPitch = kPatch + kGap;

    int columns = 6;
    int rows = 4;
    std::vector<Color> colors = Bright(24);  ///< row by row as they lie in the image
    Color surround = {10, 10, 10};

    /// Colors that all differ and all lie well above the surround; the brightest is at `white`.
    static std::vector<Color> Bright(std::uint32_t count, std::uint32_t white = 18) {
        std::vector<Color> colors;
        for (std::uint32_t i = 0; i < count; ++i) colors.push_back({100 + 3 * i, 110 + i * 7 % 90, 120 + i * 5 % 80});
        colors.at(white) = {240, 241, 242};
        return colors;
    }

    /// The picture in FormatRgb, FormatRgb10 or FormatRgb16, its channels shifted left by `shift` bits.
    CTivImage Draw(CTivData::Format format = CTivData::FormatRgb, int shift = 0) const {
        CTivImage image(kGap + columns * kPitch, kGap + rows * kPitch, format, nullptr, true);
        for (int y = 0; y < image.GetHeight(); ++y) {
            for (int x = 0; x < image.GetWidth(); ++x) image.SetData(x, y, Word(format, At(x, y), shift));
        }
        return image;
    }

    const Color& At(int x, int y) const {
        const bool isOnPatch = x % kPitch >= kGap && y % kPitch >= kGap;
        return isOnPatch ? colors[static_cast<std::size_t>(y / kPitch * columns + x / kPitch)] : surround;
    }

    static CTivData Word(CTivData::Format format, const Color& color, int shift) {
        const int bits = format == CTivData::FormatRgb16 ? 16 : format == CTivData::FormatRgb10 ? 10 : 8;
        const std::uint64_t red = color.red << shift, green = color.green << shift, blue = color.blue << shift;
        return {format, red << 2 * bits | green << bits | blue};
    }
};
