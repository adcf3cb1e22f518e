#pragma once

#include <optional>
#include <span>
#include <vector>

#include "chart/flat_patches_impl.h"
#include "chart/plane_map_impl.h"

namespace tonewright {

/// A patch's place in a lattice.
struct LatticeNode {
    int u = 0;
    int v = 0;
    int patch = 0;  ///< index into the flat patches
};

/// Flat patches that lie like those of a chart.
struct PatchLattice {
    std::vector<LatticeNode> nodes;
    PlaneMap map;  ///< lattice places to pixels of the working copy

    int minU = 0, maxU = 0, minV = 0, maxV = 0;
};

/// Finds the lattices among flat patches: a patch and two neighbours at right angles, as its own shape lets it see
/// them, are the seed; from there the lattice grows, each step foretold by the one before. A perspective map is fitted
/// robustly and takes up what lies behind gaps. No patch serves two lattices.
/// @param minNodes smaller lattices are left out
/// @return the lattices, the one with the most patches first
std::vector<PatchLattice> FindLattices(std::span<const FlatPatch> patches, int minNodes);

}  // namespace tonewright
