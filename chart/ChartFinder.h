#pragma once

#include <optional>
#include <vector>

#include "chart/ChartLayout.h"
#include "chart/FoundChart.h"
#include "chart/PatchDetector.h"
#include "chart/PatchMeasurement.h"
#include "foundation/CTivImage.h"

namespace tonewright {

/// Finds a color chart wherever it lies in a picture: turned by any angle, tilted, mirrored, small, in uneven light.
/// The patches are squares, apart from each other by something else than they are.
///
/// Small copies of the picture are looked at first, coarse to fine. Flat regions that a square seen from the side could
/// leave there are held against their neighbours: those at right angles and at equal steps grow to a lattice. The chart
/// is laid over it in every place and all eight orientations, and its reference colors decide by how well they explain
/// those that are there, whatever the light and the camera. What is found is moved onto the edges of the patches in the
/// picture itself, measured, and judged again. Nothing is taken on suspicion.
class ChartFinder {
public:
    /// @param layout of at least 12 patches; without reference colors the chart is found by its shape alone and not
    /// oriented
    explicit ChartFinder(ChartLayout layout = GetClassicLayout());

    /// @param image FormatRgb, FormatRgb10 or FormatRgb16; its own region plays no part
    /// @param roi where to look; none: everywhere
    /// @return the chart, or why there is none
    FoundChart Find(const CTivImage& image, const std::optional<ChartRoi>& roi = std::nullopt) const;

    const ChartLayout& GetLayout() const { return layout_; }

private:
    ChartLayout layout_;
};

}  // namespace tonewright
