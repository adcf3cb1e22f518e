#include "chart/ChartFinder.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "chart/chart_placement_impl.h"
#include "chart/chart_surface_impl.h"
#include "chart/find_reasons_impl.h"
#include "foundation/nur_image.h"

namespace tonewright {

namespace {

constexpr int kCoarsest = 180;        // pixels of the longer side, below which no copy is halved again
constexpr int kFullBelow = 1600;      // a picture of a longer side than this is not looked at in full size: patches
                                      // of a chart of a twelfth of its width are large enough at half
constexpr int kMaxSide = 48;          // pixels of a patch in a copy; larger ones are left to a coarser copy
constexpr int kMinNodes = 7;          // of a lattice that is worth a look
constexpr std::size_t kLattices = 4;  // looked at in a copy, the largest ones
constexpr double kMaxResidual = 0.4;  // of the colors on a small copy
constexpr double kMaxFinalResidual = 0.36;   // of the colors as measured: charts of other makes reach 0.25, the best of
                                             // grids that are no charts 0.5
constexpr double kMinMargin = 1.5;           // of the next best residual over the best
constexpr double kMinEdged = 1.0 / 3;        // of the patches must have edges where they should
constexpr int kBandRows = 256;               // of a picture that is searched in full size
constexpr std::size_t kMostInPicture = 600;  // flat patches of each level there
constexpr std::size_t kSecondLook =
    400000;  // pixels of the next finer copy up to which it is searched for another chart
constexpr int kOutliers = 3;
constexpr std::size_t kFewestPatches = 12;

bool isMatch(const ChartPlacement& placement) {
    return placement.match.residual < kMaxResidual && placement.match.residual * kMinMargin < placement.rival;
}

ChartPoint toPicture(const ChartPoint& p, int factor, const CTivRect& part) {
    return {part.x + (p.x + 0.5) * factor - 0.5, part.y + (p.y + 0.5) * factor - 0.5};
}

double cross(const ChartPoint& o, const ChartPoint& a, const ChartPoint& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

bool isWithin(const std::array<ChartPoint, 4>& quad, const ChartPoint& p) {
    int left = 0;
    for (std::size_t i = 0; i < 4; ++i) left += cross(quad[i], quad[(i + 1) % 4], p) > 0;
    return left == 0 || left == 4;
}

/// The search of one picture.
class Search {
public:
    Search(const CTivImage& image, const CTivRect& part, const ChartLayout& layout)
        : image_(image),
          part_(part),
          toneShift_(FindToneShift(image, part)),
          layout_(layout),
          matcher_(layout.references),
          placements_(layout, matcher_) {
        trace_.needed = (2 * static_cast<int>(layout.Count()) + 2) / 3;
        trace_.patches = static_cast<int>(layout.Count());
        trace_.isByShape = layout.references.empty();
        trace_.isRoi = part.width != image.GetWidth() || part.height != image.GetHeight();
    }

    FoundChart Run() {
        MakeCopies();
        for (std::size_t level = copies_.size(); level-- > 0;) {
            std::vector<FoundChart> charts = SearchCopy(level);
            if (charts.empty()) continue;
            if (level > 0 && copies_[level - 1].words.size() < kSecondLook) {
                for (FoundChart& chart : SearchCopy(level - 1)) charts.push_back(std::move(chart));
            }
            return OneOf(charts);
        }
        if (std::max(part_.width, part_.height) < kFullBelow) {
            const std::vector<FoundChart> charts = SearchPicture();
            if (!charts.empty()) return OneOf(charts);
        }
        if (trace_.seen > 0 && !trace_.fitsTwice && !layout_.references.empty()) LookBeyondTheRim();
        return Refused(trace_);
    }

private:
    struct Sight {  // of a copy
        std::vector<FlatPatch> patches;
        std::vector<PatchLattice> lattices;
    };

    void MakeCopies() {
        copies_.push_back(MakeHalfCopy(image_, part_, toneShift_));
        while (std::max(copies_.back().width, copies_.back().height) > kCoarsest) {
            copies_.push_back(Halved(copies_.back()));
        }
        sights_.resize(copies_.size());
    }

    /// The picture itself, band by band to save memory; patches in pixels of its half copy.
    std::vector<FoundChart> SearchPicture() {
        std::vector<FlatPatch>& patches = sights_[0].patches;
        patches.clear();
        const std::size_t bands = static_cast<std::size_t>((part_.height + kBandRows - 1) / kBandRows);
        for (int first = 0; first < part_.height; first += kBandRows) {
            // A patch belongs to the band of its centre, and is seen whole there.
            const int top = std::max(0, first - kMaxSide);
            const int bottom = std::min(part_.height, first + kBandRows + kMaxSide);
            CTivImage change = MeasureChange(image_, {part_.x, part_.y + top, part_.width, bottom - top}, toneShift_);
            for (FlatPatch patch : FindFlatPatches(change, kMaxSide, kMostInPicture / bands)) {
                patch.center.y += top;
                if (patch.center.y >= first && patch.center.y < first + kBandRows) patches.push_back(patch);
            }
        }
        Halve(patches);
        return SearchSight(0);
    }

    std::vector<FoundChart> SearchCopy(std::size_t level) {
        const WorkingCopy& copy = copies_[level];
        const bool isCoarsest = level + 1 == copies_.size();
        CTivImage change = MeasureChange(copy);
        sights_[level].patches = FindFlatPatches(change, isCoarsest ? std::max(copy.width, copy.height) : kMaxSide);
        return SearchSight(level);
    }

    std::vector<FoundChart> SearchSight(std::size_t level) {
        const WorkingCopy& copy = copies_[level];
        Sight& sight = sights_[level];
        sight.lattices = FindLattices(sight.patches, kMinNodes);
        if (sight.lattices.size() > kLattices) sight.lattices.resize(kLattices);
        trace_.flatPatches = std::max(trace_.flatPatches, static_cast<int>(sight.patches.size()));
        const bool hasColors = !layout_.references.empty();
        const auto placements = hasColors ? placements_.Search(copy, sight.patches, sight.lattices, false)
                                          : placements_.SearchByShape(copy, sight.patches, sight.lattices);
        std::vector<FoundChart> charts;
        for (const ChartPlacement& placement : placements) {
            if (placement.mostSeen > trace_.seen) {
                trace_.seen = placement.mostSeen;
                fullest_ = level;
            }
            const bool isCandidate = hasColors ? isMatch(placement) : !placement.centers.empty();
            auto chart = isCandidate ? Verify(placement, copy) : std::nullopt;
            if (chart) charts.push_back(std::move(*chart));
            if (hasColors && !isCandidate && placement.match.residual < kMaxResidual) trace_.fitsTwice = true;
        }
        return charts;
    }

    /// Moves the chart onto its edges in the picture and judges it by what is measured there.
    std::optional<FoundChart> Verify(const ChartPlacement& placement, const WorkingCopy& copy) {
        const auto columnOf = [&](std::size_t i) { return static_cast<int>(i) % layout_.columns; };
        const auto rowOf = [&](std::size_t i) { return static_cast<int>(i) / layout_.columns; };
        std::vector<PlacePair> pairs;
        for (std::size_t i = 0; i < layout_.Count(); ++i) {
            pairs.push_back({{double(columnOf(i)), double(rowOf(i))},
                             toPicture(placement.centers[i], copy.factor, part_),
                             placement.seen[i] ? 1.0 : 0.1});
        }
        const auto map = FitPlaneMap(pairs);
        if (!map) return std::nullopt;
        ChartSurface surface(*map, layout_.columns, layout_.rows);
        const SmoothPicture picture(image_, toneShift_);
        const std::vector<int> edges = surface.Refine(picture);
        FoundChart chart;
        chart.refusal = FindRefusal::None;
        int edged = 0;
        std::vector<PatchSample> samples;
        for (std::size_t i = 0; i < layout_.Count(); ++i) {
            chart.patches.push_back(surface.PatchAt(columnOf(i), rowOf(i)));
            chart.patches.back().seen = edges[i] >= 3;
            samples.push_back({surface.ColorAt(picture, columnOf(i), rowOf(i)), layout_.PlaceInUnit(i), true});
            edged += edges[i] >= 3;
        }
        chart.seen = std::max(edged, placement.CountSeen());
        if (edged < kMinEdged * static_cast<double>(layout_.Count())) {
            trace_.lacksEdges = true;
            return std::nullopt;
        }
        DescribeCorners(chart);
        if (layout_.references.empty()) {
            chart.found = true;
            chart.isOriented = false;
            chart.text = "the layout has no reference colors: which of the patches is the first is not known";
        } else if (!JudgeColors(chart, samples, placement)) {
            return std::nullopt;
        }
        return chart;
    }

    void DescribeCorners(FoundChart& chart) const {
        const std::size_t columns = static_cast<std::size_t>(layout_.columns), count = layout_.Count();
        const std::array<std::size_t, 4> ends = {0, columns - 1, count - 1, count - columns};
        for (std::size_t i = 0; i < 4; ++i) chart.corners[i] = chart.patches[ends[i]].corners[i];
        const auto& [upperLeft, upperRight, lowerRight, lowerLeft] = chart.corners;
        chart.mirrored = cross(upperLeft, upperRight, lowerLeft) < 0;
        const ChartPoint first = chart.patches[0].center, last = chart.patches[columns - 1].center;
        chart.rotation = std::atan2(last.y - first.y, last.x - first.x) * 180 / std::numbers::pi;
    }

    bool JudgeColors(FoundChart& chart, std::span<const PatchSample> samples, const ChartPlacement& placement) {
        const ColorMatch match = matcher_.Match(samples, placement.match.exponent, kOutliers);
        const double rival = std::min(placement.rival, BestTurned(samples));
        if (match.residual > kMaxFinalResidual) return false;
        if (match.residual * kMinMargin > rival) {
            trace_.fitsTwice = true;
            return false;
        }
        chart.found = true;
        chart.confidence = 1 - match.residual / rival;
        return true;
    }

    /// The least residual of the patches taken in another order: turned by half, or mirrored.
    double BestTurned(std::span<const PatchSample> samples) const {
        double best = 1;
        const auto columns = static_cast<std::size_t>(layout_.columns), rows = static_cast<std::size_t>(layout_.rows);
        for (int order = 1; order < 4; ++order) {
            std::vector<PatchSample> turned;
            for (std::size_t i = 0; i < samples.size(); ++i) {
                const std::size_t column = i % columns, row = i / columns;
                turned.push_back(samples[(order & 2 ? rows - 1 - row : row) * columns +
                                         (order & 1 ? columns - 1 - column : column)]);
                turned.back().place = samples[i].place;
            }
            best = std::min(best, matcher_.Match(turned, 1.0, kOutliers).residual);
        }
        return best;
    }

    static ChartPoint CenterOf(const FoundChart& chart) {
        ChartPoint center;
        for (const ChartPoint& corner : chart.corners) {
            center.x += corner.x / 4;
            center.y += corner.y / 4;
        }
        return center;
    }

    /// The chart, unless another one lies elsewhere.
    static FoundChart OneOf(const std::vector<FoundChart>& charts) {
        for (const FoundChart& chart : charts) {
            if (!isWithin(charts[0].corners, CenterOf(chart))) return Several(charts[0], chart);
        }
        return charts[0];
    }

    static FoundChart Several(const FoundChart& first, const FoundChart& second) {
        FoundChart refusal;
        refusal.refusal = FindRefusal::Several;
        refusal.seen = first.seen + second.seen;
        const auto at = [](const FoundChart& chart) {
            const ChartPoint center = CenterOf(chart);
            return std::to_string(std::lround(center.x)) + "," + std::to_string(std::lround(center.y));
        };
        refusal.text = "more than one chart was seen, around " + at(first) + " and " + at(second) +
                       "; a ROI around one of them decides";
        return refusal;
    }

    /// Finds out which corners of a chart that is cut off are missing.
    void LookBeyondTheRim() {
        const Sight& sight = sights_[fullest_];
        const WorkingCopy& copy = copies_[fullest_];
        for (const ChartPlacement& placement : placements_.Search(copy, sight.patches, sight.lattices, true)) {
            if (!isMatch(placement)) continue;
            const double right = layout_.columns - 1, below = layout_.rows - 1;
            const std::array<ChartPoint, 4> corners = {{{0, 0}, {right, 0}, {right, below}, {0, below}}};
            for (std::size_t i = 0; i < 4; ++i) {
                const ChartPoint p = placement.map(corners[i]);
                trace_.outside[i] = !(p.x >= 0 && p.y >= 0 && p.x < copy.width && p.y < copy.height);
            }
            trace_.seen = placement.CountSeen();
            return;
        }
    }

    const CTivImage& image_;
    CTivRect part_;
    int toneShift_;
    const ChartLayout& layout_;
    ColorMatcher matcher_;
    PlacementSearch placements_;
    std::vector<WorkingCopy> copies_;  // finest first
    std::vector<Sight> sights_;        // of each copy; of the finest one at last what the picture itself shows
    std::size_t fullest_ = 0;          // the copy where most patches of a chart were seen
    FindTrace trace_;
};

}  // namespace

ChartFinder::ChartFinder(ChartLayout layout) : layout_(std::move(layout)) {}

FoundChart ChartFinder::Find(const CTivImage& image, const std::optional<ChartRoi>& roi) const {
    FoundChart refusal;
    CTivRect part{0, 0, image.GetWidth(), image.GetHeight()};
    if (roi) {
        const std::int64_t width = std::int64_t{roi->right} - roi->left, height = std::int64_t{roi->bottom} - roi->top;
        if (width < 1 || height < 1 || roi->left < 0 || roi->top < 0 || roi->right > part.width ||
            roi->bottom > part.height) {
            refusal.text = "the ROI does not lie in the picture";
            return refusal;
        }
        part = {roi->left, roi->top, static_cast<int>(width), static_cast<int>(height)};
    }
    if (layout_.Count() < kFewestPatches) {
        refusal.text =
            "a chart of fewer than " + std::to_string(kFewestPatches) + " patches cannot be told from other things";
        return refusal;
    }
    if (!image.IsAllocated() || !HasToned(image.GetFormat())) {
        refusal.text = "the picture has no colors that can be measured";
        return refusal;
    }
    return Search(image, part, layout_).Run();
}

}  // namespace tonewright
