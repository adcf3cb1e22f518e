#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "primitives/sample_rows.h"
#include "primitives/wide.h"

namespace tonewright {

// Colors from a Bayer pattern: the gradient-corrected linear interpolation of Malvar, He and Cutler, "High-quality
// linear interpolation for demosaicing of Bayer-patterned color images", ICASSP 2004. Each missing channel is the mean
// of its neighbours, corrected by how the channel that is there bends. Exact where colors are flat.

/// Where the pattern's red samples lie; blue lies diagonally opposite.
struct BayerPhase {
    int redX;  ///< 0 or 1
    int redY;  ///< 0 or 1
};

/// What one row needs: the five rows around it, readable from two samples before their first to two after their last.
struct BayerRows {
    const std::uint16_t* rows[5];  ///< from two above to two below; samples of at most 10 bits
    bool hasRed;                   ///< the row has red samples, else blue ones
    bool greenFirst;               ///< its first sample is green
};

/// Makes a row of pixels. @param depth of the samples, after which it rounds once
using DemosaicRow = void (*)(const BayerRows& rows, std::uint32_t* pixels, std::size_t count, const PixelDepth& depth);
/// The row in the named form (one that this machine has); all forms give the same to the bit.
DemosaicRow GetDemosaicRow(RowForm form);

/// Demosaics an image that is given row by row, so that samples need unpacking once and the rows in work stay in the
/// cache. Beyond the edges the image is mirrored, which keeps the pattern's phase.
class Demosaicer {
public:
    /// @param width, height pixels, at least 1
    Demosaicer(int width, int height, const BayerPhase& phase, const PixelDepth& depth);

    /// Where to put the samples of the next row, the first one being row 0: `width` of them.
    std::uint16_t* NextRow();
    /// Makes row `y` of the pixels, which needs the rows up to y + 2, as far as there are any.
    void MakeRow(int y, std::uint32_t* pixels);

private:
    std::uint16_t* RowAt(int y);
    void MirrorEnds(std::uint16_t* row) const;

    int width_;
    int height_;
    BayerPhase phase_;
    PixelDepth depth_;
    DemosaicRow makeRow_;
    std::size_t pitch_;
    std::vector<std::uint16_t> ring_;  // five rows with margins
    int given_ = 0;
    int mirrored_ = 0;  // rows whose margins are filled
};

}  // namespace tonewright
