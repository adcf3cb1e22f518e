#pragma once

#include <array>
#include <vector>

#include "chart/FoundChart.h"
#include "chart/working_copy_impl.h"

namespace tonewright {

/// A small region of even color that might be a patch: compact, as a parallelogram is. In pixels of its working copy.
struct FlatPatch {
    ChartPoint center;
    double area = 0;
    /// Takes a difference of places to a frame in which the patch is a square of side 1 (symmetric: xx, xy, yy).
    std::array<double, 3> whiten = {};
    double axisRatio = 0;  ///< shorter side to longer one

    /// A place as this patch sees it: from its centre, in its sides.
    ChartPoint Seen(const ChartPoint& place) const {
        const double dx = place.x - center.x, dy = place.y - center.y;
        return {whiten[0] * dx + whiten[1] * dy, whiten[1] * dx + whiten[2] * dy};
    }
};

/// Finds the flat patches of a picture at several levels of what counts as flat, each region once.
/// @param change what MeasureChange gave
/// @param maxSide pixels; regions that are larger are left to a coarser copy
/// @param maxPatches that each level may have
std::vector<FlatPatch> FindFlatPatches(CTivImage& change, int maxSide, std::size_t maxPatches = 600);

/// The same patches in pixels that are twice as large.
void Halve(std::vector<FlatPatch>& patches);

}  // namespace tonewright
