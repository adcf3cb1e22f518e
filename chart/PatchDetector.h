#pragma once

#include <cstdint>
#include <vector>

#include "analysis/CTivBlob.h"
#include "foundation/CTivImage.h"
#include "foundation/CTivVector.h"

/// How many patches the chart has.
struct ChartSize {
    std::int32_t Width = 6;   ///< patch columns
    std::int32_t Height = 4;  ///< patch rows
};

/// One place of the grid that is laid over the chart.
struct PatchCell {
    float x = 0;             ///< centre of the patch in pixels, from the ROI's left edge
    float y = 0;             ///< centre of the patch in pixels, from the ROI's top edge
    bool saturated = false;  ///< a measurement found a channel at full scale
};

namespace tonewright {

/// The most columns and rows that a chart may have where a user chooses them.
inline constexpr std::int32_t kMostPatchesASide = 100;

/// The rectangle around the chart in image pixels, as the viewers keep it: its width is right - left.
struct ChartRoi {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

    bool operator==(const ChartRoi&) const = default;
};

/// The rectangle that a patch is measured in, in image pixels.
struct PatchOverlay {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

/// In which words patches are measured.
enum class PatchDepth {
    EightBit,  ///< FormatRgb whatever the image: of a deeper mean the low byte alone is kept, deliberately (C36)
    AsImage    ///< FormatRgb10 and FormatRgb16 images at their own depth in their own format, others as EightBit
};

/// What the measurement of a chart gives.
struct PatchColors {
    CTivVector colors;       ///< Width x Height elements in the order that the calibration wants
    bool saturated = false;  ///< a mean reached full scale: a reason to warn
    bool measured = false;   ///< every cell's color could be read; if not, the reason was reported and it is black
    int brightest = 0;       ///< index of the brightest patch before ordering; 6 x 4 and 4 x 6 charts only
};

/// Finds the patches of an upright color chart inside a ROI and measures their mean colors.
///
/// Bright patches on a darker surround are blobs at Otsu's level; their centres, gathered by rows and by columns, give
/// a straight grid, so that a patch that is too dark for the level is found by its neighbours. A turned chart by more
/// than a few degrees is not found: nothing here corrects a rotation.
///
/// Holds the grid between finding and measuring, and of the image nothing but working memory, which serves the next
/// one. One thread at a time.
class PatchDetector {
public:
    using PatchGrid = std::vector<std::vector<PatchCell>>;

    PatchDetector();

    /// Rebuilds grid, sampling size and overlay from the image. The image's own region is the same afterwards.
    /// @return whether there was a blob. Otherwise the grid is zero, the overlay empty, the sampling size the earlier
    ///         one: no image, a ROI without pixels or outside the image, a chart of no patches or of more patches than
    ///         pixels (then the grid is empty), a format without gray conversion (reported), nothing bright
    bool DetectPatches(CTivImage& image, const ChartRoi& roi, const ChartSize& chart);

    /// Measures the grid: the mean of a rectangle of half a patch in each direction around each cell. A rectangle that
    /// leaves the image is reported and the one before it measured again (the whole image for the first).
    /// Charts of 6 x 4 and 4 x 6 go through GetOrientedRawColors. Cells that the grid doesn't have stay 0.
    /// The image's region stays on the last patch.
    PatchColors GetRawColors(CTivImage& image, const ChartRoi& roi, const ChartSize& chart,
                             PatchDepth depth = PatchDepth::EightBit);

    /// As GetRawColors; then the brightest patch, taken for the white one, tells how the chart lies: at index 0 the
    /// rows are reversed, at 5 rows and columns, at 23 the columns, elsewhere nothing. Grid and overlay stay as found.
    PatchColors GetOrientedRawColors(CTivImage& image, const ChartRoi& roi, const ChartSize& chart,
                                     PatchDepth depth = PatchDepth::EightBit);

    /// Measures a ROI as one patch, both its edges included. The image's region stays on it.
    /// @param bgr receives three truncated means, blue first (of a deep image the low bytes)
    /// @param centre receives the middle of the ROI
    static void GetRoiColor(CTivImage& image, const ChartRoi& roi, unsigned char* bgr, CTivData::Point* centre);

    /// Forgets the grid, as for a new image.
    void Clear() { patchGrid_.clear(); }

    const PatchGrid& GetGrid() const { return patchGrid_; }
    int GetPatchWidth() const { return patchWidth_; }    ///< pixels of a sampling rectangle
    int GetPatchHeight() const { return patchHeight_; }  ///< pixels of a sampling rectangle
    const std::vector<PatchOverlay>& GetOverlay() const { return overlay_; }
    int GetBlobCount() const { return blobCount_; }  ///< blobs that the last detection accepted
    int GetFoundRows() const { return foundRows_; }  ///< grid rows that a group of blobs filled
    int GetFoundColumns() const { return foundColumns_; }
    int GetBrightest() const { return brightest_; }  ///< as PatchColors tells it, of the last measurement

private:
    bool TakeGray(CTivImage& image, const ChartRoi& roi);
    bool FindGrid(const ChartSize& chart);
    void DrawOverlay(const ChartRoi& roi);
    template <class Word>
    PatchColors Measure(CTivImage& image, const ChartRoi& roi, const ChartSize& chart);
    PatchColors MeasureAt(PatchDepth depth, CTivImage& image, const ChartRoi& roi, const ChartSize& chart);

    CTivImage gray_;  // kept with the blobs' own memory: fresh pages are a quarter of a detection's time
    CTivBlob blob_;
    PatchGrid patchGrid_;
    std::int32_t patchWidth_ = 0;
    std::int32_t patchHeight_ = 0;
    std::vector<PatchOverlay> overlay_;
    int blobCount_ = 0;
    int foundRows_ = 0;
    int foundColumns_ = 0;
    int brightest_ = 0;
};

}  // namespace tonewright
