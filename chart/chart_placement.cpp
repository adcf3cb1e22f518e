#include "chart/chart_placement_impl.h"

#include <algorithm>
#include <cmath>

namespace tonewright {

namespace {

constexpr int kMinSeen = 9;                 // patches of the chart that must be nodes of the lattice
constexpr double kShareOfMost = 0.5;        // of the patches in the place that holds most of them
constexpr double kShareByShape = 0.9;       // of a chart without colors, that must be seen
constexpr double kSampleReach = 0.2;        // of a step
constexpr double kMargin = 0.3;             // of a step: so far inside the picture a patch's centre must lie
constexpr double kWorthMatching = 0.75;     // a residual of a quick look above which nothing good comes
constexpr std::size_t kMatched = 5;         // placements a lattice that are matched in full
constexpr std::size_t kMatchedFull = 4;     // further ones in which most was seen
constexpr int kSeenMargin = 1;              // patches fewer still are most
constexpr std::size_t kMatchedPartly = 32;  // of those that leave the picture
constexpr int kOutliers = 3;                // patches that may be covered or washed out

double stepAt(const PlaneMap& map, const ChartPoint& place) {
    const ChartPoint here = map(place), right = map({place.x + 1, place.y}), below = map({place.x, place.y + 1});
    return std::min(std::hypot(right.x - here.x, right.y - here.y), std::hypot(below.x - here.x, below.y - here.y));
}

bool isInside(const WorkingCopy& copy, const ChartPoint& p, double margin) {
    return p.x >= margin && p.y >= margin && p.x <= copy.width - 1 - margin && p.y <= copy.height - 1 - margin;
}

}  // namespace

int ChartPlacement::CountSeen() const { return static_cast<int>(std::count(seen.begin(), seen.end(), true)); }

TonedColor SampleColor(const WorkingCopy& copy, const ChartPoint& place, double reach) {
    const auto range = [&](double center, int size) {
        const int first = static_cast<int>(std::lround(center - reach)),
                  last = static_cast<int>(std::lround(center + reach));
        return std::pair{std::clamp(first, 0, size - 1), std::clamp(last, 0, size - 1)};
    };
    const auto [left, right] = range(place.x, copy.width);
    const auto [top, bottom] = range(place.y, copy.height);
    std::array<std::uint64_t, 3> sums = {};
    for (int y = top; y <= bottom; ++y) {
        const TonedWord* row = copy.Row(y);
        for (int x = left; x <= right; ++x) {
            for (int c = 0; c < 3; ++c) sums[static_cast<std::size_t>(c)] += row[x] >> 8 * (2 - c) & 0xFF;
        }
    }
    const double count = double(right - left + 1) * (bottom - top + 1);
    return {static_cast<double>(sums[0]) / count, static_cast<double>(sums[1]) / count,
            static_cast<double>(sums[2]) / count};
}

/// One way to lay the chart over a lattice: chart place (column, row) to lattice place by whole numbers.
struct PlacementSearch::Place {
    int u0, v0;         // lattice place of the first patch
    int du, dv;         // 1 or -1: along which way columns run, and rows
    bool isTransposed;  // columns run along v
    int seen;           // patches there

    ChartPoint At(int column, int row) const {
        return isTransposed ? ChartPoint{double(u0 + du * row), double(v0 + dv * column)}
                            : ChartPoint{double(u0 + du * column), double(v0 + dv * row)};
    }
    PlaneMap Apply(const PlaneMap& map) const {
        const double a = du, b = dv;
        const auto& h = map.h;
        PlaneMap out;
        for (std::size_t i = 0; i < 3; ++i) {
            const double u = h[3 * i] * a, v = h[3 * i + 1] * b;
            out.h[3 * i] = isTransposed ? v : u;
            out.h[3 * i + 1] = isTransposed ? u : v;
            out.h[3 * i + 2] = h[3 * i] * u0 + h[3 * i + 1] * v0 + h[3 * i + 2];
        }
        return out;
    }
};

/// What the places of a lattice and of its surroundings hold, looked up once for all placements.
class PlacementSearch::Cells {
public:
    struct Cell {
        ChartPoint center;
        TonedColor color = {};
        ColorMatcher::QuickLight light = {};
        bool isInside = false;  // the picture
        bool isSeen = false;    // as a node of the lattice
    };

    Cells(const WorkingCopy& copy, std::span<const FlatPatch> patches, const PatchLattice& lattice,
          const ChartLayout& layout)
        : layout_(layout) {
        const int margin = std::max(layout.columns, layout.rows);
        firstU_ = lattice.minU - margin;
        firstV_ = lattice.minV - margin;
        columns_ = lattice.maxU + margin - firstU_ + 1;
        const int rows = lattice.maxV + margin - firstV_ + 1;
        cells_.resize(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows));
        for (const LatticeNode& node : lattice.nodes) {
            Cell& cell = cells_[IndexOf(node.u, node.v)];
            cell.isSeen = true;
            cell.center = patches[static_cast<std::size_t>(node.patch)].center;
        }
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            const auto index = static_cast<int>(i);
            const ChartPoint place = {double(firstU_ + index % columns_), double(firstV_ + index / columns_)};
            const double step = stepAt(lattice.map, place);
            Cell& cell = cells_[i];
            if (!cell.isSeen) cell.center = lattice.map(place);
            cell.isInside = isInside(copy, cell.center, kMargin * step);
            if (!cell.isInside) continue;
            cell.color = SampleColor(copy, cell.center, kSampleReach * step);
            cell.light = ColorMatcher::ToQuickLight(cell.color);
        }
    }

    /// @param index of a patch in chart order
    const Cell& At(const Place& place, std::size_t index) const {
        const int column = static_cast<int>(index) % layout_.columns, row = static_cast<int>(index) / layout_.columns;
        const ChartPoint at = place.At(column, row);
        return cells_[IndexOf(static_cast<int>(at.x), static_cast<int>(at.y))];
    }
    bool IsInside(const Place& place) const {
        for (std::size_t i = 0; i < layout_.Count(); ++i) {
            if (!At(place, i).isInside) return false;
        }
        return true;
    }

private:
    std::size_t IndexOf(int u, int v) const { return static_cast<std::size_t>((v - firstV_) * columns_ + u - firstU_); }

    const ChartLayout& layout_;
    int firstU_ = 0, firstV_ = 0, columns_ = 0;
    std::vector<Cell> cells_;
};

/// A placement that was looked at.
struct PlacementSearch::Looked {
    Place place;
    ColorMatch match;

    bool operator<(const Looked& other) const { return match.residual < other.match.residual; }
};

std::vector<PlacementSearch::Place> PlacementSearch::ListPlaces(const PatchLattice& lattice) const {
    std::vector<Place> places;
    for (const bool isTransposed : {false, true}) {
        const int width = isTransposed ? layout_.rows : layout_.columns;
        const int height = isTransposed ? layout_.columns : layout_.rows;
        for (int v = lattice.minV - height + 1; v <= lattice.maxV; ++v) {
            for (int u = lattice.minU - width + 1; u <= lattice.maxU; ++u) {
                const auto isIn = [&](const LatticeNode& node) {
                    return node.u >= u && node.u < u + width && node.v >= v && node.v < v + height;
                };
                const auto seen = static_cast<int>(std::count_if(lattice.nodes.begin(), lattice.nodes.end(), isIn));
                if (seen < kMinSeen) continue;
                places.push_back({u, v, 1, 1, isTransposed, seen});
                places.push_back({u + width - 1, v, -1, 1, isTransposed, seen});
                places.push_back({u, v + height - 1, 1, -1, isTransposed, seen});
                places.push_back({u + width - 1, v + height - 1, -1, -1, isTransposed, seen});
            }
        }
    }
    // Where a place holds far more of the lattice, the chart is not where there is little.
    int most = 0;
    for (const Place& place : places) most = std::max(most, place.seen);
    std::erase_if(places, [&](const Place& place) { return place.seen < kShareOfMost * most; });
    return places;
}

ColorMatch PlacementSearch::MatchAt(const Cells& cells, const Place& place, double exponent,
                                    int allowedOutliers) const {
    std::vector<PatchSample> samples;
    for (std::size_t i = 0; i < layout_.Count(); ++i) {
        const Cells::Cell& cell = cells.At(place, i);
        samples.push_back({cell.color, layout_.PlaceInUnit(i), cell.isInside});
    }
    return matcher_.Match(samples, exponent, allowedOutliers);
}

/// The placements inside the picture: a quick look at all, then the whole truth of the best.
std::vector<PlacementSearch::Looked> PlacementSearch::LookAt(const Cells& cells, std::span<const Place> places) const {
    std::vector<Looked> looked;
    std::vector<const ColorMatcher::QuickLight*> lights(layout_.Count());
    for (const Place& place : places) {
        if (!cells.IsInside(place)) continue;
        for (std::size_t i = 0; i < lights.size(); ++i) lights[i] = &cells.At(place, i).light;
        looked.push_back({place, matcher_.Look(lights)});
    }
    // Where most was seen the chart is worth more than a look: covered patches spoil that.
    int most = 0;
    for (const Looked& one : looked) most = std::max(most, one.place.seen);
    const auto isFull = [&](const Looked& one) { return one.place.seen >= most - kSeenMargin; };
    std::stable_sort(looked.begin(), looked.end());
    std::size_t full = 0;
    std::vector<Looked> matched;
    for (std::size_t i = 0; i < looked.size(); ++i) {
        const bool isBest = i < kMatched && looked[i].match.residual < kWorthMatching;
        if (!isBest && (!isFull(looked[i]) || full == kMatchedFull)) continue;
        full += !isBest;
        matched.push_back(looked[i]);
        matched.back().match = MatchAt(cells, looked[i].place, looked[i].match.exponent, kOutliers);
    }
    return matched;
}

/// The placements that leave the picture, judged by what is left of them: those in which most was seen.
std::vector<PlacementSearch::Looked> PlacementSearch::MatchPartly(const Cells& cells,
                                                                  std::span<const Place> places) const {
    std::vector<Place> leaving;
    for (const Place& place : places) {
        if (!cells.IsInside(place)) leaving.push_back(place);
    }
    std::stable_sort(leaving.begin(), leaving.end(), [](const Place& a, const Place& b) { return a.seen > b.seen; });
    if (leaving.size() > kMatchedPartly) leaving.resize(kMatchedPartly);
    std::vector<Looked> looked;
    looked.reserve(leaving.size());
    for (const Place& place : leaving) looked.push_back({place, MatchAt(cells, place, 1.0, 0)});
    return looked;
}

std::optional<ChartPlacement> PlacementSearch::SearchOn(const WorkingCopy& copy, std::span<const FlatPatch> patches,
                                                        const PatchLattice& lattice, bool mayLeave) const {
    const Cells cells(copy, patches, lattice, layout_);
    const std::vector<Place> places = ListPlaces(lattice);
    std::vector<Looked> looked = mayLeave ? MatchPartly(cells, places) : LookAt(cells, places);
    if (places.empty()) return std::nullopt;
    std::stable_sort(looked.begin(), looked.end());
    ChartPlacement placement;
    if (!looked.empty()) placement = ToPlacement(cells, lattice, looked[0]);
    if (looked.size() > 1) placement.rival = looked[1].match.residual;
    for (const Place& place : places) placement.mostSeen = std::max(placement.mostSeen, place.seen);
    return placement;
}

ChartPlacement PlacementSearch::ToPlacement(const Cells& cells, const PatchLattice& lattice,
                                            const Looked& looked) const {
    ChartPlacement placement;
    placement.map = looked.place.Apply(lattice.map);
    placement.match = looked.match;
    for (std::size_t i = 0; i < layout_.Count(); ++i) {
        const Cells::Cell& cell = cells.At(looked.place, i);
        placement.centers.push_back(cell.center);
        placement.seen.push_back(cell.isSeen);
    }
    return placement;
}

std::vector<ChartPlacement> PlacementSearch::SearchByShape(const WorkingCopy& copy, std::span<const FlatPatch> patches,
                                                           std::span<const PatchLattice> lattices) const {
    std::vector<ChartPlacement> placements;
    for (const PatchLattice& lattice : lattices) {
        const Cells cells(copy, patches, lattice, layout_);
        std::optional<ChartPlacement> best;
        double most = 0;
        int mostSeen = 0;
        for (const Place& place : ListPlaces(lattice)) {
            mostSeen = std::max(mostSeen, place.seen);
            const ChartPlacement placement = ToPlacement(cells, lattice, {place, {}});
            const auto& c = placement.centers;
            const auto columns = static_cast<std::size_t>(layout_.columns);
            const ChartPoint row = {c[columns - 1].x - c[0].x, c[columns - 1].y - c[0].y};
            const ChartPoint down = {c[c.size() - columns].x - c[0].x, c[c.size() - columns].y - c[0].y};
            const double rightness = row.x / std::hypot(row.x, row.y);
            const bool isAll = place.seen == static_cast<int>(lattice.nodes.size()) &&
                               place.seen >= kShareByShape * static_cast<double>(layout_.Count());
            if (!isAll || !cells.IsInside(place) || row.x * down.y - row.y * down.x <= 0) continue;
            if (best && rightness <= most) continue;
            most = rightness;
            best = placement;
        }
        if (!best) best.emplace();  // nothing but how much was seen
        best->mostSeen = mostSeen;
        placements.push_back(std::move(*best));
    }
    return placements;
}

std::vector<ChartPlacement> PlacementSearch::Search(const WorkingCopy& copy, std::span<const FlatPatch> patches,
                                                    std::span<const PatchLattice> lattices, bool mayLeave) const {
    std::vector<ChartPlacement> placements;
    for (const PatchLattice& lattice : lattices) {
        auto placement = SearchOn(copy, patches, lattice, mayLeave);
        if (placement) placements.push_back(std::move(*placement));
    }
    std::stable_sort(placements.begin(), placements.end(), [](const ChartPlacement& a, const ChartPlacement& b) {
        return a.match.residual < b.match.residual;
    });
    return placements;
}

}  // namespace tonewright
