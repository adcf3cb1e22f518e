#include "chart/patch_lattice_impl.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace tonewright {

namespace {

// How a neighbour may lie, in sides of the patch that looks at it.
constexpr double kMinStep = 0.85, kMaxStep = 1.6;
constexpr double kMaxUnequalSteps = 1.35;  // ratio of the steps along rows and columns
constexpr double kMaxCosine = 0.3;         // between rows and columns
constexpr double kMaxUnequalAreas = 2.2;   // of neighbours
constexpr double kStepTolerance = 0.28;    // of a step: how far from where it was foretold a patch may lie
constexpr double kFitTolerance = 0.2;      // of a step: how far from the fitted map
constexpr int kSeedPairs = 6;              // tries for a seed
constexpr double kSettledShare = 0.7;      // of a lattice's places filled: it is taken for the whole truth
constexpr int kMostUses = 3;               // of a patch, by lattices that may not be the whole truth
constexpr int kMaxExtent = 24;             // steps from the seed in each direction

double length(const ChartPoint& p) { return std::hypot(p.x, p.y); }
ChartPoint minus(const ChartPoint& a, const ChartPoint& b) { return {a.x - b.x, a.y - b.y}; }

/// Buckets of the patches by place.
class PlaceIndex {
public:
    explicit PlaceIndex(std::span<const FlatPatch> patches) : patches_(patches) {
        double right = 1, bottom = 1;
        for (const FlatPatch& patch : patches) {
            right = std::max(right, patch.center.x);
            bottom = std::max(bottom, patch.center.y);
        }
        size_ = std::max(8.0, std::sqrt(right * bottom / static_cast<double>(patches.size() + 1)));
        columns_ = static_cast<int>(right / size_) + 1;
        rows_ = static_cast<int>(bottom / size_) + 1;
        buckets_.resize(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_));
        for (std::size_t i = 0; i < patches.size(); ++i) {
            const int column = static_cast<int>(patches[i].center.x / size_);
            const int row = static_cast<int>(patches[i].center.y / size_);
            buckets_[static_cast<std::size_t>(row * columns_ + column)].push_back(static_cast<int>(i));
        }
    }

    /// Calls visit(index) for the patches within a square around a place, and some more.
    template <class Visit>
    void Around(const ChartPoint& place, double reach, Visit visit) const {
        const auto cell = [&](double at, int count) {
            return std::isfinite(at) ? static_cast<int>(std::clamp(at / size_, 0.0, count - 1.0)) : 0;
        };
        for (int r = cell(place.y - reach, rows_); r <= cell(place.y + reach, rows_); ++r) {
            for (int c = cell(place.x - reach, columns_); c <= cell(place.x + reach, columns_); ++c) {
                for (const int i : buckets_[static_cast<std::size_t>(r * columns_ + c)]) visit(i);
            }
        }
    }

private:
    std::span<const FlatPatch> patches_;
    double size_ = 1;
    int columns_ = 0;
    int rows_ = 0;
    std::vector<std::vector<int>> buckets_;
};

class LatticeGrower {
public:
    LatticeGrower(std::span<const FlatPatch> patches, const PlaceIndex& index) : patches_(patches), index_(index) {}

    /// Grows from a seed at (0, 0). @param a, b the seed's steps along u and v, in pixels
    void Grow(int seed, const ChartPoint& a, const ChartPoint& b) {
        Put(0, 0, seed, a, b);
        for (std::size_t next = 0; next < order_.size(); ++next) {
            const Node from = order_[next];
            for (const auto& [du, dv] : kDirections) Step(from, du, dv);
        }
    }

    /// Fits the map, lets go of what does not lie on it, and takes up what lies on it and was not reached.
    /// @return whether there is a map
    bool Settle() {
        for (int round = 0; round < 3; ++round) {
            if (!Fit() || !Drop() || !Fit()) return false;
            if (!Extend()) break;
        }
        return true;
    }

    std::size_t Count() const { return cells_.size(); }

    PatchLattice Result() const {
        PatchLattice lattice;
        lattice.map = map_;
        lattice.minU = lattice.minV = kMaxExtent;
        lattice.maxU = lattice.maxV = -kMaxExtent;
        for (const auto& [place, patch] : cells_) {
            lattice.nodes.push_back({place.first, place.second, patch});
            lattice.minU = std::min(lattice.minU, place.first);
            lattice.maxU = std::max(lattice.maxU, place.first);
            lattice.minV = std::min(lattice.minV, place.second);
            lattice.maxV = std::max(lattice.maxV, place.second);
        }
        return lattice;
    }

private:
    struct Node {
        int u, v, patch;
        ChartPoint a, b;  // the steps as seen here
    };
    static constexpr std::pair<int, int> kDirections[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};

    void Put(int u, int v, int patch, const ChartPoint& a, const ChartPoint& b) {
        cells_[{u, v}] = patch;
        order_.push_back({u, v, patch, a, b});
    }

    bool IsUsed(int patch) const {
        return std::any_of(cells_.begin(), cells_.end(), [&](const auto& cell) { return cell.second == patch; });
    }

    /// @return the patch nearest to a place within a reach, of an area like that of another; -1 for none
    int Nearest(const ChartPoint& place, double reach, double area) const {
        int best = -1;
        if (!(reach > 0)) return best;  // beyond the horizon of the map
        double least = reach * reach;
        index_.Around(place, reach, [&](int i) {
            const FlatPatch& patch = patches_[static_cast<std::size_t>(i)];
            const ChartPoint off = minus(patch.center, place);
            const double distance = off.x * off.x + off.y * off.y;
            if (distance >= least || IsUsed(i)) return;
            if (patch.area > kMaxUnequalAreas * area || area > kMaxUnequalAreas * patch.area) return;
            least = distance;
            best = i;
        });
        return best;
    }

    void Step(const Node& from, int du, int dv) {
        const int u = from.u + du, v = from.v + dv;
        if (std::abs(u) > kMaxExtent || std::abs(v) > kMaxExtent || cells_.count({u, v})) return;
        const FlatPatch& patch = patches_[static_cast<std::size_t>(from.patch)];
        const ChartPoint step = du != 0 ? from.a : from.b;
        const int sign = du + dv;
        const ChartPoint place = {patch.center.x + sign * step.x, patch.center.y + sign * step.y};
        const double reach = kStepTolerance * std::min(length(from.a), length(from.b));
        const int found = Nearest(place, reach, patch.area);
        if (found < 0) return;
        const ChartPoint to = patches_[static_cast<std::size_t>(found)].center;
        const ChartPoint seen = {sign * (to.x - patch.center.x), sign * (to.y - patch.center.y)};
        const ChartPoint blended = {(step.x + seen.x) / 2, (step.y + seen.y) / 2};
        Put(u, v, found, du != 0 ? blended : from.a, du != 0 ? from.b : blended);
    }

    bool Fit() {
        std::vector<PlacePair> pairs;
        for (const auto& [place, patch] : cells_) {
            pairs.push_back({{static_cast<double>(place.first), static_cast<double>(place.second)},
                             patches_[static_cast<std::size_t>(patch)].center});
        }
        const auto map = FitPlaneMap(pairs);
        if (map) map_ = *map;
        return map.has_value();
    }

    double StepAt(double u, double v) const {
        const ChartPoint here = map_({u, v});
        return std::min(length(minus(map_({u + 1, v}), here)), length(minus(map_({u, v + 1}), here)));
    }

    /// Drops the worst while any lies off the map. @return whether enough is left
    bool Drop() {
        while (cells_.size() >= 5) {
            auto worst = cells_.end();
            double most = kFitTolerance;
            for (auto cell = cells_.begin(); cell != cells_.end(); ++cell) {
                const double u = cell->first.first, v = cell->first.second;
                const ChartPoint center = patches_[static_cast<std::size_t>(cell->second)].center;
                const double off = length(minus(map_({u, v}), center)) / StepAt(u, v);
                if (!(off <= most)) {
                    most = off;
                    worst = cell;
                }
            }
            if (worst == cells_.end()) return true;
            cells_.erase(worst);
            if (!Fit()) return false;
        }
        return false;
    }

    /// @return whether anything was taken up
    bool Extend() {
        const PatchLattice now = Result();
        double area = 0;
        for (const LatticeNode& node : now.nodes) area += patches_[static_cast<std::size_t>(node.patch)].area;
        area /= static_cast<double>(now.nodes.size());
        bool grew = false;
        for (int v = now.minV - 1; v <= now.maxV + 1; ++v) {
            for (int u = now.minU - 1; u <= now.maxU + 1; ++u) {
                if (cells_.count({u, v})) continue;
                const int found = Nearest(map_({double(u), double(v)}), kFitTolerance * StepAt(u, v), area);
                if (found < 0) continue;
                cells_[{u, v}] = found;
                grew = true;
            }
        }
        return grew;
    }

    std::span<const FlatPatch> patches_;
    const PlaceIndex& index_;
    std::map<std::pair<int, int>, int> cells_;
    std::vector<Node> order_;
    PlaneMap map_;
};

struct Neighbor {
    int patch;
    ChartPoint seen;  // from the patch that looks, in its sides
    double distance;
};

std::vector<Neighbor> neighborsOf(std::span<const FlatPatch> patches, const PlaceIndex& index, int seed) {
    const FlatPatch& from = patches[static_cast<std::size_t>(seed)];
    std::vector<Neighbor> neighbors;
    const double reach = kMaxStep * std::sqrt(from.area / from.axisRatio);
    index.Around(from.center, reach, [&](int i) {
        const FlatPatch& patch = patches[static_cast<std::size_t>(i)];
        if (i == seed || patch.area > kMaxUnequalAreas * from.area || from.area > kMaxUnequalAreas * patch.area) return;
        const ChartPoint seen = from.Seen(patch.center);
        const double distance = length(seen);
        if (distance >= kMinStep && distance <= kMaxStep) neighbors.push_back({i, seen, distance});
    });
    std::sort(neighbors.begin(), neighbors.end(),
              [](const Neighbor& a, const Neighbor& b) { return a.distance < b.distance; });
    if (neighbors.size() > 12) neighbors.resize(12);
    return neighbors;
}

/// The largest lattice from a seed, over its likeliest pairs of neighbours.
std::optional<LatticeGrower> growFrom(std::span<const FlatPatch> patches, const PlaceIndex& index, int seed) {
    std::optional<LatticeGrower> best;
    const auto neighbors = neighborsOf(patches, index, seed);
    const ChartPoint center = patches[static_cast<std::size_t>(seed)].center;
    int tries = 0;
    for (std::size_t j = 1; j < neighbors.size(); ++j) {
        for (std::size_t i = 0; i < j; ++i) {
            const Neighbor& a = neighbors[i];
            const Neighbor& b = neighbors[j];
            const double cosine = (a.seen.x * b.seen.x + a.seen.y * b.seen.y) / (a.distance * b.distance);
            if (std::abs(cosine) > kMaxCosine || b.distance > kMaxUnequalSteps * a.distance) continue;
            LatticeGrower grower(patches, index);
            grower.Grow(seed, minus(patches[static_cast<std::size_t>(a.patch)].center, center),
                        minus(patches[static_cast<std::size_t>(b.patch)].center, center));
            if (!best || grower.Count() > best->Count()) best.emplace(grower);
            if (++tries >= kSeedPairs) return best;
        }
    }
    return best;
}

}  // namespace

std::vector<PatchLattice> FindLattices(std::span<const FlatPatch> patches, int minNodes) {
    std::vector<PatchLattice> grown;
    if (patches.empty()) return grown;
    const PlaceIndex index(patches);
    std::vector<int> uses(patches.size(), 0);  // in lattices so far
    for (std::size_t seed = 0; seed < patches.size(); ++seed) {
        if (uses[seed] >= kMostUses) continue;
        auto grower = growFrom(patches, index, static_cast<int>(seed));
        if (!grower || grower->Count() < static_cast<std::size_t>(minNodes) || !grower->Settle()) continue;
        PatchLattice lattice = grower->Result();
        if (lattice.nodes.size() < static_cast<std::size_t>(minNodes)) continue;
        // A lattice with many gaps may be every second patch of a better one.
        const int places = (lattice.maxU - lattice.minU + 1) * (lattice.maxV - lattice.minV + 1);
        const bool isSettled = static_cast<int>(lattice.nodes.size()) >= kSettledShare * places;
        for (const LatticeNode& node : lattice.nodes) {
            uses[static_cast<std::size_t>(node.patch)] += isSettled ? kMostUses : 1;
        }
        grown.push_back(std::move(lattice));
    }
    std::stable_sort(grown.begin(), grown.end(),
                     [](const PatchLattice& a, const PatchLattice& b) { return a.nodes.size() > b.nodes.size(); });
    std::vector<PatchLattice> lattices;
    std::vector<bool> taken(patches.size(), false);
    for (PatchLattice& lattice : grown) {
        const auto isTaken = [&](const LatticeNode& node) { return taken[static_cast<std::size_t>(node.patch)]; };
        const auto shared = std::count_if(lattice.nodes.begin(), lattice.nodes.end(), isTaken);
        if (2 * shared > static_cast<std::ptrdiff_t>(lattice.nodes.size())) continue;
        for (const LatticeNode& node : lattice.nodes) taken[static_cast<std::size_t>(node.patch)] = true;
        lattices.push_back(std::move(lattice));
    }
    return lattices;
}

}  // namespace tonewright
