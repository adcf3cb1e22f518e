#pragma once

#include <cstdint>
#include <vector>

#include "foundation/CTivImage.h"

/// A chart drawn into an image: even patches on a dark surround, for tests.
struct DrawnChart {
    struct Color {
        std::uint32_t red, green, blue;
        bool operator==(const Color&) const = default;
    };

    int columns = 6;
    int rows = 4;
    int patch = 40;  ///< pixels, both ways
    int gap = 10;    ///< pixels between patches and around them
    Color surround = {10, 10, 10};
    std::vector<Color> colors = Bright(24);  ///< row by row as they lie in the image

    /// Colors that all differ and all lie well above the surround; the brightest is at `white`.
    static std::vector<Color> Bright(std::uint32_t count, std::uint32_t white = 18) {
        std::vector<Color> colors;
        for (std::uint32_t i = 0; i < count; ++i) {
            colors.push_back({100 + 3 * i, 110 + i * 7 % 90, 120 + i * 5 % 80});
        }
        if (white < count) colors[white] = {240, 241, 242};
        return colors;
    }

    int Width() const { return gap + columns * (patch + gap); }
    int Height() const { return gap + rows * (patch + gap); }
    int Left(int column) const { return gap + column * (patch + gap); }
    int Top(int row) const { return gap + row * (patch + gap); }

    /// The picture in FormatRgb, FormatRgb10 or FormatRgb16, its channels shifted left by `shift` bits.
    CTivImage Draw(CTivData::Format format = CTivData::FormatRgb, int shift = 0) const {
        CTivImage image(Width(), Height(), format, nullptr, true);
        for (int y = 0; y < Height(); ++y) {
            for (int x = 0; x < Width(); ++x) image.SetData(x, y, Word(format, At(x, y), shift));
        }
        return image;
    }

    const Color& At(int x, int y) const {
        const int column = (x - gap) / (patch + gap), row = (y - gap) / (patch + gap);
        const bool isOnPatch =
            x >= gap && y >= gap && column < columns && row < rows && x < Left(column) + patch && y < Top(row) + patch;
        return isOnPatch ? colors[static_cast<std::size_t>(row * columns + column)] : surround;
    }

    static CTivData Word(CTivData::Format format, const Color& color, int shift) {
        const std::uint32_t red = color.red << shift, green = color.green << shift, blue = color.blue << shift;
        if (format == CTivData::FormatRgb10) return CTivData::Rgb10(red, green, blue);
        if (format == CTivData::FormatRgb16) {
            return CTivData::Rgb16(static_cast<std::uint16_t>(red), static_cast<std::uint16_t>(green),
                                   static_cast<std::uint16_t>(blue));
        }
        return CTivData::Rgb(static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
                             static_cast<std::uint8_t>(blue));
    }
};
