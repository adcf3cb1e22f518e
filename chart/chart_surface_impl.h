#pragma once

#include <array>
#include <span>
#include <vector>

#include "chart/plane_map_impl.h"
#include "chart/working_copy_impl.h"

namespace tonewright {

/// Where the places of a chart lie in a picture: a perspective map and, beside it, a bend of third order, which takes
/// up what a lens or a warped card does. A patch is a square of `side` steps around its place (column, row).
class ChartSurface {
public:
    /// @param columns, rows patches of the chart
    ChartSurface(const PlaneMap& map, int columns, int rows);

    ChartPoint At(const ChartPoint& place) const;
    double GetSideAcross() const { return side_[0]; }  ///< of a patch along a row, in steps
    double GetSideAlong() const { return side_[1]; }
    /// Length in pixels of the shorter step at a place.
    double StepAt(const ChartPoint& place) const;

    /// Moves the surface onto the edges of the patches in the picture.
    /// @return for each patch how many of its edges lie on the surface, 0 to 4; 0 for all where a patch without edges
    ///         might be elsewhere
    std::vector<int> Refine(const SmoothPicture& picture);

    /// The mean color of the inner half of a patch.
    TonedColor ColorAt(const SmoothPicture& picture, int column, int row) const;

    /// Centre and corners of a patch, moved to where its own edges are if they tell.
    FoundPatch PatchAt(int column, int row) const;

private:
    static constexpr std::size_t kTerms = 10, kUnknowns = 2 * kTerms + 2;
    struct Edge;
    struct Look;
    std::vector<Edge> FindEdges(const SmoothPicture& picture, const Look& look) const;
    bool Aim(Edge& edge, ChartPoint& at, ChartPoint& side, double& step) const;
    bool FindEdge(const SmoothPicture& picture, const Look& look, Edge& edge) const;
    void TakeSides(std::span<const Edge> edges);
    void Weigh(std::span<Edge> edges, double limit) const;
    std::array<double, kUnknowns> EquationOf(const Edge& edge) const;
    bool Fit(std::span<Edge> edges);
    std::vector<int> CountSides(std::span<const Edge> edges) const;
    std::size_t SideIndex(int column, int row, int side) const {
        return static_cast<std::size_t>(4 * (row * columns_ + column) + side);
    }
    std::optional<ChartPoint> OwnShift(std::span<const Edge> edges, std::size_t patch) const;
    ChartPoint PlaceOf(std::size_t patch) const {
        const int i = static_cast<int>(patch);
        return {static_cast<double>(i % columns_), static_cast<double>(i / columns_)};
    }
    /// The map of the patches that have all their edges, the others of a little weight; nothing for too few.
    std::optional<PlaneMap> MapOfCertain(std::span<const Edge> edges, double uncertain) const;
    /// How far a patch lies from where a map has it, in steps.
    double DistanceFrom(const PlaneMap& map, std::size_t patch) const;
    /// @return whether patches without edges lie about where those with edges foretell them
    bool IsCertain(std::span<const Edge> edges, std::span<const int> sides) const;
    /// Fits the map to the patches whose edges are all seen; what a lattice took for patches may be noise.
    /// @return whether that moved a patch by much
    bool Straighten(std::span<const Edge> edges);
    void ShiftPatches(std::span<const Edge> edges);
    double Offset(const Edge& edge) const;
    std::array<double, kTerms> TermsAt(const ChartPoint& place) const;

    PlaneMap map_;
    int columns_;
    int rows_;
    std::array<double, 2> side_ = {0.84, 0.84};
    std::array<std::array<double, kTerms>, 2> bend_ = {};  // pixels
    std::vector<ChartPoint> shifts_;                       // of single patches, pixels
    std::vector<bool> sharp_;                              // sides of patches that have an edge
};

}  // namespace tonewright
