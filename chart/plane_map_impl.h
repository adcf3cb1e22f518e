#pragma once

#include <array>
#include <optional>
#include <span>

#include "chart/FoundChart.h"

namespace tonewright {

/// A perspective map of the plane: places on the chart, in patch steps, to places in a picture, in pixels.
struct PlaneMap {
    std::array<double, 9> h = {1, 0, 0, 0, 1, 0, 0, 0, 1};  ///< row-major, for column vectors (u, v, 1)

    ChartPoint operator()(const ChartPoint& place) const;
    /// The map that ends in a picture enlarged by `factor`, whose pixels' centres lie at whole numbers.
    PlaneMap Enlarged(double factor) const;
};

struct PlacePair {
    ChartPoint from, to;
    double weight = 1;
};

/// Least squares of the linearised equations (direct linear transformation, both sides normalised as in R. Hartley, "In
/// defense of the eight-point algorithm", 1997).
/// @return nothing for fewer than four pairs or where they don't fix a map
std::optional<PlaneMap> FitPlaneMap(std::span<const PlacePair> pairs);

}  // namespace tonewright
