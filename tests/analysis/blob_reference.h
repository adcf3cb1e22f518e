#pragma once

#include <cstdint>
#include <ostream>
#include <vector>

#include "analysis/CTivBlob.h"

/// Foreground and background as plain bytes, row by row; foreground pixels have a value other than 0, and only pixels
/// of one value belong together.
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    std::uint8_t At(int x, int y) const {
        const bool inside = x >= 0 && y >= 0 && x < width && y < height;
        return inside
                   ? pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)]
                   : std::uint8_t{0};
    }
    static Bitmap Of(const CTivImage& image);
    static Bitmap Random(int width, int height, double density, unsigned seed, int values = 1);
    /// As FormatUByte or FormatUShort (foreground at full scale) or FormatBinary (the width a multiple of 8).
    CTivImage ToImage(CTivData::Format format = CTivData::FormatUByte) const;
};

/// What a blob measures, whole numbers only.
struct BlobFacts {
    std::int64_t lastY, lastX, minX, minY, maxX, maxY;
    std::int64_t area, runs, holes, rawBorder, horizontal, vertical, diagonal, value;
    std::int64_t sumX, sumY, sumXX, sumYY, sumXY;

    bool operator==(const BlobFacts&) const = default;
    auto operator<=>(const BlobFacts&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const BlobFacts& facts);

/// Labels pixel by pixel with a stack and measures every blob from its pixels: runs and their contacts are counted all
/// together, holes as regions of background that the outside does not reach. Sorted.
/// @param strips what the seams between so many strips add to the borders: two for each loop that a seam closes
std::vector<BlobFacts> referenceBlobs(const Bitmap& bitmap, bool eight, int strips = 1);

/// The same facts as the operator gives them. Sorted. @param origin what to take off x and y, per pixel of a blob
std::vector<BlobFacts> factsOf(const CTivBlob& blob);
