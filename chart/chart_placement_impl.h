#pragma once

#include <optional>
#include <span>
#include <vector>

#include "chart/color_match_impl.h"
#include "chart/patch_lattice_impl.h"

namespace tonewright {

/// A chart laid over a lattice, in pixels of the working copy.
struct ChartPlacement {
    PlaneMap map;                     ///< patch places (column, row) of the chart to pixels
    std::vector<ChartPoint> centers;  ///< of the patches, in chart order
    std::vector<bool> seen;           ///< the patch is a node of the lattice
    ColorMatch match;
    double rival = 1;  ///< residual of the best other place or orientation
    int mostSeen = 0;  ///< patches of the lattice in the place that holds most of them, whatever their colors

    int CountSeen() const;
};

/// The mean color around a place, over a square of 2 reach + 1 pixels as far as it lies inside.
TonedColor SampleColor(const WorkingCopy& copy, const ChartPoint& place, double reach);

/// Lays a chart over lattices wherever enough of its places were seen, in all eight orientations, and judges each by
/// the colors there.
class PlacementSearch {
public:
    PlacementSearch(const ChartLayout& layout, const ColorMatcher& matcher) : layout_(layout), matcher_(matcher) {}

    /// @param mayLeave whether patches may lie outside the picture; then they are left out, and the rest must match
    /// @return the placements whose colors match best on each lattice, best first
    std::vector<ChartPlacement> Search(const WorkingCopy& copy, std::span<const FlatPatch> patches,
                                       std::span<const PatchLattice> lattices, bool mayLeave) const;

    /// For a layout without colors: each lattice that has just the layout's columns and rows, most of them seen, in the
    /// orientation in which the picture reads best, rows to the right and downwards.
    std::vector<ChartPlacement> SearchByShape(const WorkingCopy& copy, std::span<const FlatPatch> patches,
                                              std::span<const PatchLattice> lattices) const;

private:
    struct Place;
    struct Looked;
    class Cells;
    std::vector<Place> ListPlaces(const PatchLattice& lattice) const;
    std::vector<Looked> LookAt(const Cells& cells, std::span<const Place> places) const;
    std::vector<Looked> MatchPartly(const Cells& cells, std::span<const Place> places) const;
    ColorMatch MatchAt(const Cells& cells, const Place& place, double exponent, int allowedOutliers) const;
    ChartPlacement ToPlacement(const Cells& cells, const PatchLattice& lattice, const Looked& looked) const;
    std::optional<ChartPlacement> SearchOn(const WorkingCopy& copy, std::span<const FlatPatch> patches,
                                           const PatchLattice& lattice, bool mayLeave) const;
    const ChartLayout& layout_;
    const ColorMatcher& matcher_;
};

}  // namespace tonewright
