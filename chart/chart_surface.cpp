#include "chart/chart_surface_impl.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "foundation/symmetric_solve.h"

namespace tonewright {
namespace {

constexpr double kEdgeSpan = 0.8;            // of a side: the part of an edge that is looked at
constexpr double kMinReach = 2.0;            // pixels
constexpr int kMaxSamples = 64;              // across an edge
constexpr double kMinContrast = 4;           // toned levels, over two samples
constexpr double kInnerStrip = 0.2;          // of a step: the part inside an edge that shows the noise
constexpr int kMaxInner = 8;                 // samples of it
constexpr double kOverNoise = 8;             // of an edge's squared change, over that inside
constexpr double kFirstPeak = 0.5;           // of the largest change: the first such one outwards is the edge
constexpr double kPeakFoot = 0.2;            // of its height: where a peak ends
constexpr double kLimits[] = {12, 8, 6, 4};  // of the median offset, round by round: what lies farther off is left out
constexpr double kMaxShift = 0.06;           // of a step, of a single patch
constexpr std::size_t kLeastStraight = 8;    // patches with four edges, for a map of their own
constexpr double kMuchMoved = 0.02;          // of a step: edges are then looked for again
constexpr std::size_t kLeastCertain = 5;     // the same, for the last check
constexpr double kMaxDoubt = 0.25;           // of a step: between two ways to tell where a patch without edges lies
constexpr double kUncertain = 0.03;          // weight of the others
constexpr double kMaxOffset = 0.12;          // of a step
constexpr double kUsualBend[] = {0.3, 0.3, 0.05, 0.05};  // of a step: what terms of order 0 to 3 usually come to
constexpr double kDoubt = 30;                            // edges of a patch err together
constexpr double kLeastLimit = 0.4;                      // pixels
constexpr double kFullContrast = 30;                     // toned levels from which an edge counts in full

double dot(const ChartPoint& a, const ChartPoint& b) { return a.x * b.x + a.y * b.y; }
ChartPoint minus(const ChartPoint& a, const ChartPoint& b) { return {a.x - b.x, a.y - b.y}; }
ChartPoint along(const ChartPoint& p, const ChartPoint& direction, double by) {
    return {p.x + by * direction.x, p.y + by * direction.y};
}

double medianOf(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The first high peak of a profile, from inside the patch outwards: what comes behind is the neighbour's edge.
/// @param change squared; 0 at both ends
/// @param noise squared change where there is no edge, over which the peak must stand out
/// @param height receives the peak's
/// @return its centre of gravity, as an index; nothing where all is even
std::optional<double> findPeak(std::span<const double> change, double noise, double& height) {
    const double most = *std::max_element(change.begin(), change.end());
    if (most < kMinContrast * kMinContrast) return std::nullopt;
    if (most < kOverNoise * noise) return std::nullopt;
    std::size_t peak = 1;
    while (change[peak] < kFirstPeak * most || change[peak + 1] > change[peak]) ++peak;
    height = change[peak];
    std::size_t first = peak, last = peak;
    while (change[first - 1] > kPeakFoot * height) --first;
    while (change[last + 1] > kPeakFoot * height) ++last;
    double sum = 0, moment = 0;
    for (std::size_t i = first; i <= last; ++i) {
        sum += change[i];
        moment += change[i] * static_cast<double>(i);
    }
    return moment / sum;
}

}  // namespace

/// How closely edges are looked at.
struct ChartSurface::Look {
    double reach;    // of a step: how far from where it is thought an edge is looked for
    int segments;    // of an edge, each found for itself
    int scans;       // lines across an edge that a segment averages
    double spacing;  // pixels between samples across an edge, at least
    int samples;     // across an edge, at most
    bool isFirst;    // the look that decides which sides have edges at all
};

/// A piece of a patch's edge.
struct ChartSurface::Edge {
    int column, row;
    int axis;           // 0: at the left or right of the patch, 1: above or below
    int sign;           // -1 left or above, 1 right or below
    double t;           // along the edge from its middle, in sides
    ChartPoint found;   // in the picture
    ChartPoint normal;  // outwards, of length 1
    double contrast;    // toned levels
    double weight;

    ChartPoint Place(const std::array<double, 2>& side) const {
        const double off = sign * side[static_cast<std::size_t>(axis)] / 2;
        const double slide = t * side[static_cast<std::size_t>(1 - axis)];
        return axis == 0 ? ChartPoint{column + off, row + slide} : ChartPoint{column + slide, row + off};
    }
};

ChartSurface::ChartSurface(const PlaneMap& map, int columns, int rows)
    : map_(map),
      columns_(columns),
      rows_(rows),
      shifts_(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)),
      sharp_(4 * shifts_.size()) {}

std::array<double, ChartSurface::kTerms> ChartSurface::TermsAt(const ChartPoint& place) const {
    const double half = std::max(columns_, rows_) / 2.0;
    const double x = (place.x - (columns_ - 1) / 2.0) / half, y = (place.y - (rows_ - 1) / 2.0) / half;
    return {1, x, y, x * x, x * y, y * y, x * x * x, x * x * y, x * y * y, y * y * y};
}

ChartPoint ChartSurface::At(const ChartPoint& place) const {
    ChartPoint at = map_(place);
    const auto terms = TermsAt(place);
    for (std::size_t i = 0; i < kTerms; ++i) {
        at.x += bend_[0][i] * terms[i];
        at.y += bend_[1][i] * terms[i];
    }
    return at;
}

double ChartSurface::StepAt(const ChartPoint& place) const {
    const ChartPoint here = At(place);
    const ChartPoint right = minus(At({place.x + 1, place.y}), here), below = minus(At({place.x, place.y + 1}), here);
    return std::min(std::hypot(right.x, right.y), std::hypot(below.x, below.y));
}

bool ChartSurface::Aim(Edge& edge, ChartPoint& at, ChartPoint& side, double& step) const {
    const ChartPoint place = edge.Place(side_);
    at = At(place);
    const double out = 0.1 * edge.sign;
    const ChartPoint beyond = edge.axis == 0 ? At({place.x + out, place.y}) : At({place.x, place.y + out});
    const ChartPoint tip = edge.axis == 0 ? At({place.x, place.y + 0.1}) : At({place.x + 0.1, place.y});
    side = {10 * (tip.x - at.x), 10 * (tip.y - at.y)};
    const double sideLength = std::hypot(side.x, side.y);
    if (!(sideLength > 0)) return false;
    edge.normal = {-side.y / sideLength, side.x / sideLength};
    step = 10 * dot(edge.normal, minus(beyond, at));
    if (step < 0) {
        edge.normal = {-edge.normal.x, -edge.normal.y};
        step = -step;
    }
    return true;
}

bool ChartSurface::FindEdge(const SmoothPicture& picture, const Look& look, Edge& edge) const {
    ChartPoint at, side;
    double step = 0;
    if (!Aim(edge, at, side, step)) return false;
    const double half = std::max(kMinReach, look.reach * step);
    const double spacing = std::max(look.spacing, 2 * half / look.samples);
    const int middle = static_cast<int>(half / spacing) + 1;
    const int inner = std::clamp(static_cast<int>(kInnerStrip * step / spacing), 2, kMaxInner);  // shows the noise
    std::array<TonedColor, kMaxSamples> profile = {};
    const std::size_t count = static_cast<std::size_t>(inner + 2 * middle + 1);
    const auto offAt = [&](int i) { return (i - inner - middle) * spacing; };
    for (int scan = 0; scan < look.scans; ++scan) {
        const double slide = (scan - (look.scans - 1) / 2.0) / look.scans * kEdgeSpan / look.segments;
        const ChartPoint line = along(at, side, slide);
        if (!picture.Holds(along(line, edge.normal, offAt(0))) ||
            !picture.Holds(along(line, edge.normal, middle * spacing))) {
            return false;
        }
        for (std::size_t i = 0; i < count; ++i) {
            picture.AddAt(along(line, edge.normal, offAt(static_cast<int>(i))), profile[i]);
        }
    }
    std::array<double, kMaxSamples> change = {};  // squared, over two samples
    for (TonedColor& color : std::span(profile).first(count)) {
        for (double& level : color) level = 255 * std::sqrt(level / look.scans);
    }
    double noise = 0;
    for (std::size_t i = 1; i + 1 < count; ++i) {
        for (std::size_t c = 0; c < 3; ++c) {
            const double difference = profile[i + 1][c] - profile[i - 1][c];
            change[i] += difference * difference;
        }
        if (static_cast<int>(i) <= inner) noise += std::exchange(change[i], 0) / inner;
    }
    double height = 0;
    const auto peak =
        findPeak(std::span<const double>(change).first(count).subspan(static_cast<std::size_t>(inner)), noise, height);
    if (!peak) return false;
    edge.found = along(at, edge.normal, (*peak - middle) * spacing);
    edge.contrast = std::sqrt(height);
    edge.weight = 1;
    return true;
}

std::vector<ChartSurface::Edge> ChartSurface::FindEdges(const SmoothPicture& picture, const Look& look) const {
    std::vector<Edge> edges;
    for (int row = 0; row < rows_; ++row) {
        for (int column = 0; column < columns_; ++column) {
            for (int side = 0; side < 4; ++side) {
                if (!look.isFirst && !sharp_[SideIndex(column, row, side)]) continue;
                for (int segment = 0; segment < look.segments; ++segment) {
                    const double t = (segment - (look.segments - 1) / 2.0) * kEdgeSpan / look.segments;
                    Edge edge{column, row, side / 2, side % 2 ? 1 : -1, t, {}, {}, 0, 0};
                    if (FindEdge(picture, look, edge)) edges.push_back(edge);
                }
            }
        }
    }
    return edges;
}

double ChartSurface::Offset(const Edge& edge) const {
    return dot(edge.normal, minus(edge.found, At(edge.Place(side_))));
}

void ChartSurface::TakeSides(std::span<const Edge> edges) {
    for (int axis = 0; axis < 2; ++axis) {
        std::vector<double> sides;
        for (const Edge& edge : edges) {
            if (edge.axis != axis) continue;
            const ChartPoint place = edge.Place(side_);
            const ChartPoint beyond =
                axis == 0 ? At({place.x + edge.sign, place.y}) : At({place.x, place.y + edge.sign});
            const double step = dot(edge.normal, minus(beyond, At(place)));
            if (step > 0) sides.push_back(side_[static_cast<std::size_t>(axis)] + 2 * Offset(edge) / step);
        }
        if (sides.size() >= 8) side_[static_cast<std::size_t>(axis)] = std::clamp(medianOf(sides), 0.5, 0.97);
    }
}

void ChartSurface::Weigh(std::span<Edge> edges, double limit) const {
    for (Edge& edge : edges) {
        const double share = Offset(edge) / limit;
        const double near = std::max(0.0, 1 - share * share);
        edge.weight = near * near * std::min(1.0, edge.contrast / kFullContrast);
    }
}

std::array<double, ChartSurface::kUnknowns> ChartSurface::EquationOf(const Edge& edge) const {
    const ChartPoint place = edge.Place(side_);
    const auto terms = TermsAt(place);
    std::array<double, kUnknowns> row = {};
    for (std::size_t i = 0; i < kTerms; ++i) {
        row[i] = edge.normal.x * terms[i];
        row[kTerms + i] = edge.normal.y * terms[i];
    }
    const double out = 0.1 * edge.sign;
    const ChartPoint beyond = edge.axis == 0 ? At({place.x + out, place.y}) : At({place.x, place.y + out});
    row[2 * kTerms + static_cast<std::size_t>(edge.axis)] = 10 * dot(edge.normal, minus(beyond, At(place))) / 2;
    return row;
}

bool ChartSurface::Fit(std::span<Edge> edges) {
    constexpr std::size_t n = kUnknowns;
    if (edges.size() < 2 * n) return false;
    const double step = StepAt({(columns_ - 1) / 2.0, (rows_ - 1) / 2.0});
    for (const double times : kLimits) {
        std::vector<double> offsets;
        for (const Edge& edge : edges) offsets.push_back(std::abs(Offset(edge)));
        const double typical = medianOf(offsets);
        // The biweight of J. W. Tukey: what lies beyond the limit counts for nothing.
        Weigh(edges, std::max(kLeastLimit, std::min(times * typical, kMaxOffset * step)));
        std::array<double, n* n> a = {};
        std::array<double, n> b = {};
        for (const Edge& edge : edges) {
            if (edge.weight <= 0) continue;
            const auto row = EquationOf(edge);
            const double offset = Offset(edge);
            for (std::size_t i = 0; i < n; ++i) {
                for (std::size_t j = 0; j <= i; ++j) a[n * i + j] += edge.weight * row[i] * row[j];
                b[i] += edge.weight * row[i] * offset;
            }
        }
        // The less the edges can be trusted, the more the surface is held to what lenses do.
        for (std::size_t i = 0; i < 2 * kTerms; ++i) {
            const std::size_t term = i % kTerms;
            const double bend = kUsualBend[term == 0 ? 0 : term < 3 ? 1 : term < 6 ? 2 : 3] * step;
            const double hold = kDoubt * (typical * typical + 1e-4) / (bend * bend);
            a[n * i + i] += hold;
            b[i] -= hold * bend_[i / kTerms][term];
        }
        for (std::size_t i = 2 * kTerms; i < n; ++i) a[n * i + i] += 1e-3 * a[n * i + i] + 1e-9;
        if (!SolveSymmetric(a, b)) return false;
        for (std::size_t i = 0; i < 2 * kTerms; ++i) bend_[i / kTerms][i % kTerms] += b[i];
        for (std::size_t i = 0; i < 2; ++i) side_[i] = std::clamp(side_[i] + b[2 * kTerms + i], 0.5, 0.97);
    }
    return true;
}

std::optional<ChartPoint> ChartSurface::OwnShift(std::span<const Edge> edges, std::size_t patch) const {
    std::array<double, 4> a = {};
    std::array<double, 2> b = {};
    std::array<int, 4> counts = {};
    for (const Edge& edge : edges) {
        if (static_cast<std::size_t>(edge.row * columns_ + edge.column) != patch || edge.weight <= 0) continue;
        const double offset = Offset(edge);
        a[0] += edge.weight * edge.normal.x * edge.normal.x;
        a[2] += edge.weight * edge.normal.x * edge.normal.y;
        a[3] += edge.weight * edge.normal.y * edge.normal.y;
        b[0] += edge.weight * edge.normal.x * offset;
        b[1] += edge.weight * edge.normal.y * offset;
        ++counts[static_cast<std::size_t>(2 * edge.axis + (edge.sign > 0))];
    }
    // All four sides, so that a wrong size is no shift.
    if (*std::min_element(counts.begin(), counts.end()) < 2 || !SolveSymmetric(a, b)) return std::nullopt;
    return ChartPoint{b[0], b[1]};
}

std::optional<PlaneMap> ChartSurface::MapOfCertain(std::span<const Edge> edges, double uncertain) const {
    std::vector<PlacePair> pairs;
    std::size_t certain = 0;
    for (std::size_t patch = 0; patch < shifts_.size(); ++patch) {
        const ChartPoint place = PlaceOf(patch);
        const auto shift = OwnShift(edges, patch);
        certain += shift.has_value();
        if (shift || uncertain > 0) {
            pairs.push_back({place, along(At(place), shift.value_or(ChartPoint{}), 1), shift ? 1 : uncertain});
        }
    }
    return certain >= (uncertain > 0 ? kLeastStraight : kLeastCertain) ? FitPlaneMap(pairs) : std::nullopt;
}

double ChartSurface::DistanceFrom(const PlaneMap& map, std::size_t patch) const {
    const ChartPoint place = PlaceOf(patch), by = minus(map(place), At(place));
    return std::hypot(by.x, by.y) / StepAt(place);
}

bool ChartSurface::Straighten(std::span<const Edge> edges) {
    const auto map = MapOfCertain(edges, kUncertain);
    if (!map) return false;
    double moved = 0;
    for (std::size_t patch = 0; patch < shifts_.size(); ++patch) moved = std::max(moved, DistanceFrom(*map, patch));
    map_ = *map;
    return moved > kMuchMoved;
}

bool ChartSurface::IsCertain(std::span<const Edge> edges, std::span<const int> sides) const {
    const auto map = MapOfCertain(edges, 0);
    if (!map) return false;
    for (std::size_t patch = 0; patch < shifts_.size(); ++patch) {
        if (sides[patch] < 2 && !(DistanceFrom(*map, patch) < kMaxDoubt)) return false;
    }
    return true;
}

void ChartSurface::ShiftPatches(std::span<const Edge> edges) {
    for (std::size_t patch = 0; patch < shifts_.size(); ++patch) {
        const auto shift = OwnShift(edges, patch);
        const double step = StepAt(PlaceOf(patch));
        shifts_[patch] = shift && std::hypot(shift->x, shift->y) < kMaxShift * step ? *shift : ChartPoint{};
    }
}

std::vector<int> ChartSurface::CountSides(std::span<const Edge> edges) const {
    std::vector<int> counts(4 * shifts_.size());
    for (const Edge& edge : edges) {
        if (edge.weight > 0) ++counts[SideIndex(edge.column, edge.row, 2 * edge.axis + (edge.sign > 0))];
    }
    return counts;
}

std::vector<int> ChartSurface::Refine(const SmoothPicture& picture) {
    constexpr Look kCoarse = {0.13, 3, 2, 1.0, 20, true}, kFine = {0.05, 4, 3, 0.7, 28, false};
    std::vector<Edge> edges = FindEdges(picture, kCoarse);
    TakeSides(edges);
    if (Straighten(edges)) edges = FindEdges(picture, kCoarse);
    const auto counts = CountSides(edges);
    for (std::size_t side = 0; side < counts.size(); ++side) sharp_[side] = counts[side] >= 2;
    if (Fit(edges)) {
        edges = FindEdges(picture, kFine);
        Fit(edges);
    }
    ShiftPatches(edges);
    const auto seen = CountSides(edges);
    std::vector<int> sides(shifts_.size());
    for (std::size_t side = 0; side < seen.size(); ++side) sides[side / 4] += seen[side] >= 2;
    if (!IsCertain(edges, sides)) sides.assign(sides.size(), 0);
    return sides;
}

TonedColor ChartSurface::ColorAt(const SmoothPicture& picture, int column, int row) const {
    constexpr int kSamples = 9;  // in each direction, over the inner half
    TonedColor color = {};
    int count = 0;
    for (int i = 0; i < kSamples * kSamples; ++i) {
        const double across = (i % kSamples - kSamples / 2) / (2.0 * kSamples),
                     down = (i / kSamples - kSamples / 2) / (2.0 * kSamples);
        const ChartPoint at = At({column + across * side_[0], row + down * side_[1]});
        if (!picture.Holds(at)) continue;
        picture.AddAt(at, color);
        ++count;
    }
    for (double& level : color) level = count > 0 ? 255 * std::sqrt(std::min(1.0, level / count)) : 0;
    return color;
}

FoundPatch ChartSurface::PatchAt(int column, int row) const {
    const ChartPoint shift = shifts_[static_cast<std::size_t>(row * columns_ + column)];
    const auto at = [&](double across, double down) {
        return along(At({column + across * side_[0] / 2, row + down * side_[1] / 2}), shift, 1);
    };
    return {at(0, 0), {at(-1, -1), at(1, -1), at(1, 1), at(-1, 1)}, false};
}

}  // namespace tonewright
