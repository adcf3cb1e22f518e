#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "analysis/blob_contour_impl.h"
#include "analysis/blob_features_impl.h"

namespace {

// A place in the plane.
using Cell = std::int64_t;

/// The ROI turned by half a turn, so that a pass from the top left meets each blob at its last pixel first, with a
/// margin of one background cell.
class Plane {
public:
    Plane(const NurImage& view, bool byValue, std::uint16_t background)
        : roi_(view.roi), width_(std::int64_t{view.roi.width} + 2) {
        const auto cells = static_cast<std::size_t>(width_ * (std::int64_t{view.roi.height} + 2));
        values_.resize(cells);
        marks_.resize(cells);
        for (std::int32_t y = 0; y < roi_.height; ++y) {
            for (std::int32_t x = 0; x < roi_.width; ++x) {
                const std::int32_t value = PixelAt(view, x, y);
                const bool foreground = byValue ? value != background : (value != 0) == (background == 0);
                const std::int32_t kept = byValue ? value + 1 : 1;
                values_[static_cast<std::size_t>(CellOf(x, y))] = foreground ? kept : 0;
            }
        }
    }
    std::int64_t Width() const { return width_; }
    Cell End() const { return static_cast<Cell>(values_.size()); }
    std::int32_t Value(Cell cell) const { return values_[static_cast<std::size_t>(cell)]; }
    std::int32_t& Mark(Cell cell) { return marks_[static_cast<std::size_t>(cell)]; }
    BlobPoint PointOf(Cell cell) const {
        return {static_cast<std::int32_t>(roi_.x + roi_.width - cell % width_),
                static_cast<std::int32_t>(roi_.y + roi_.height - cell / width_)};
    }

private:
    static std::int32_t PixelAt(const NurImage& view, std::int32_t x, std::int32_t y) {
        if (view.format == CTivData::FormatUShort) return view.RoiRow<const std::uint16_t>(y)[x];
        const auto* row = view.RoiRow<const std::uint8_t>(y);
        return view.format == CTivData::FormatBinary ? row[x >> 3] >> (x & 7) & 1 : row[x];
    }
    Cell CellOf(std::int32_t x, std::int32_t y) const {
        return (std::int64_t{roi_.height} - y) * width_ + (roi_.width - x);
    }

    CTivRect roi_;
    std::int64_t width_;
    std::vector<std::int32_t> values_;  // 0 background
    std::vector<std::int32_t> marks_;   // the border met last, negative where its right side was seen
};

/// Steps to neighbours, clockwise from the right; four-connected regions use every other one.
class Neighbours {
public:
    Neighbours(std::int64_t width, bool eight)
        : steps_{1, width + 1, width, width - 1, -1, -width - 1, -width, -width + 1}, stride_(eight ? 1 : 2) {}
    static constexpr int kRight = 0;
    static constexpr int kLeft = 4;
    Cell At(Cell cell, int direction) const { return cell + steps_[direction & 7]; }
    int Stride() const { return stride_; }

private:
    std::int64_t steps_[8];
    int stride_;
};

/// Walks once along a border and marks its cells.
class BorderWalk {
public:
    BorderWalk(Plane& plane, const Neighbours& neighbours, std::int32_t border)
        : plane_(plane), neighbours_(neighbours), border_(border) {}

    /// @param outside direction of the background cell that the border was found by
    /// @param points receives the border's cells in order unless null
    void Run(Cell start, int outside, std::vector<BlobPoint>* points) {
        const std::int32_t value = plane_.Value(start);
        const int stride = neighbours_.Stride();
        int towards = outside;
        do {
            towards = (towards + stride) & 7;
        } while (towards != outside && plane_.Value(neighbours_.At(start, towards)) != value);
        if (towards == outside) {  // a single pixel
            plane_.Mark(start) = -border_;
            if (points) points->push_back(plane_.PointOf(start));
            return;
        }
        const Cell last = neighbours_.At(start, towards);
        Cell cell = start;
        int back = towards;  // where the walk came from, or will come from in the end
        while (true) {
            bool sawRight = false;
            int next = back;
            do {
                next = (next - stride) & 7;
                if (plane_.Value(neighbours_.At(cell, next)) == value) break;
                sawRight |= next == Neighbours::kRight;
            } while (next != back);
            std::int32_t& mark = plane_.Mark(cell);
            if (sawRight) {
                mark = -border_;
            } else if (mark == 0) {
                mark = border_;
            }
            if (points) points->push_back(plane_.PointOf(cell));
            const Cell target = neighbours_.At(cell, next);
            if (target == start && cell == last) return;
            cell = target;
            back = (next + 4) & 7;
        }
    }

private:
    Plane& plane_;
    const Neighbours& neighbours_;
    std::int32_t border_;
};

// Lattice points strictly inside a closed walk of unit steps, by Pick's theorem; parts walked there and back hold none.
std::int64_t pixelsInside(const std::vector<BlobPoint>& walk) {
    std::int64_t twiceArea = 0;
    for (std::size_t k = 0; k < walk.size(); ++k) {
        const BlobPoint a = walk[k];
        const BlobPoint b = walk[(k + 1) % walk.size()];
        twiceArea += std::int64_t{a.x} * b.y - std::int64_t{b.x} * a.y;
    }
    return (std::abs(twiceArea) - static_cast<std::int64_t>(walk.size()) + 2) / 2;
}

/// Finds the record of a blob by its last pixel; blobs are asked for in reverse raster order.
class RecordFinder {
public:
    explicit RecordFinder(std::span<BlobRecord* const> records) {
        for (std::size_t i = 0; i < records.size(); ++i) places_.push_back({records[i]->lastY, records[i]->lastX, i});
        std::sort(places_.begin(), places_.end(), [](const Place& a, const Place& b) { return b.Before(a); });
    }
    /// @return -1 for a blob without a record
    std::int64_t Find(BlobPoint point) {
        const Place asked{point.y, point.x, 0};
        while (next_ < places_.size() && asked.Before(places_[next_])) ++next_;
        if (next_ == places_.size() || places_[next_].Before(asked)) return -1;
        return static_cast<std::int64_t>(places_[next_].index);
    }

private:
    struct Place {
        std::int32_t y, x;
        std::size_t index;
        bool Before(const Place& other) const { return y != other.y ? y < other.y : x < other.x; }
    };
    std::vector<Place> places_;
    std::size_t next_ = 0;
};

}  // namespace

std::vector<TracedBlob> traceContours(const NurImage& view, bool byValue, std::uint16_t background, bool eight,
                                      std::span<BlobRecord* const> records) {
    Plane plane(view, byValue, background);
    const Neighbours neighbours(plane.Width(), eight);
    RecordFinder finder(records);
    std::vector<TracedBlob> traced(records.size());
    std::vector<std::int64_t> recordOfBorder{-1};  // borders count from 1

    const auto follow = [&](Cell start, int outside, std::int64_t record) {
        recordOfBorder.push_back(record);
        const auto border = static_cast<std::int32_t>(recordOfBorder.size() - 1);
        std::vector<BlobPoint>* points = nullptr;
        if (record >= 0) points = &traced[static_cast<std::size_t>(record)].contour.points.emplace_back();
        BorderWalk(plane, neighbours, border).Run(start, outside, points);
        if (points && outside == Neighbours::kRight) {
            traced[static_cast<std::size_t>(record)].holePixels += pixelsInside(*points);
        }
    };
    std::int64_t record = -1;  // of the run that the pass is in: its first cell lies on a border
    for (Cell cell = plane.Width(); cell < plane.End(); ++cell) {
        const std::int32_t value = plane.Value(cell);
        if (value == 0) continue;
        if (plane.Value(cell - 1) != value && plane.Mark(cell) == 0) {
            follow(cell, Neighbours::kLeft, finder.Find(plane.PointOf(cell)));
        } else if (plane.Value(cell + 1) != value && plane.Mark(cell) >= 0) {
            if (plane.Mark(cell) > 0) record = recordOfBorder[static_cast<std::size_t>(plane.Mark(cell))];
            follow(cell, Neighbours::kRight, record);
        }
        const std::int32_t mark = std::abs(plane.Mark(cell));
        if (mark != 0) record = recordOfBorder[static_cast<std::size_t>(mark)];
    }
    return traced;
}

void computePerimeterFeatures(BlobRecord& record, const FeatureRules& rules, BlobContour& contour,
                              std::int64_t holePixels) {
    record.filledArea = static_cast<float>(record.area + static_cast<double>(holePixels) * rules.world.PixelArea());
    record.contour = &contour;
    const double angle = record.angle / 57.29577951308232;
    const double alongX = std::cos(angle);
    const double alongY = -std::sin(angle);  // the feature's angle counts against image coordinates
    double radiusSum = 0;
    double squareSum = 0;
    bool isFirst = true;
    const auto take = [&](float& most, float& least, double value) {
        if (isFirst || value > most) most = static_cast<float>(value);
        if (isFirst || value < least) least = static_cast<float>(value);
    };
    if (contour.points.empty()) contour.points.push_back({{record.lastX, record.lastY}});
    double mostSquare = 0;
    double leastSquare = 0;
    for (const BlobPoint point : contour.points.front()) {
        const double dx = point.x * rules.world.scaleX + rules.world.offsetX - record.centerX;
        const double dy = point.y * rules.world.scaleY + rules.world.offsetY - record.centerY;
        const double square = dx * dx + dy * dy;
        radiusSum += std::sqrt(square);
        squareSum += square;
        take(contour.maxDx, contour.minDx, dx);
        take(contour.maxDy, contour.minDy, dy);
        take(contour.alongMax, contour.alongMin, dx * alongX + dy * alongY);
        take(contour.acrossMax, contour.acrossMin, dy * alongX - dx * alongY);
        if (isFirst || square > mostSquare) {
            mostSquare = square;
            contour.maxRadiusDx = static_cast<float>(dx), contour.maxRadiusDy = static_cast<float>(dy);
        }
        if (isFirst || square < leastSquare) {
            leastSquare = square;
            contour.minRadiusDx = static_cast<float>(dx), contour.minRadiusDy = static_cast<float>(dy);
        }
        isFirst = false;
    }
    contour.maxRadiusSquared = static_cast<float>(mostSquare);
    contour.minRadiusSquared = static_cast<float>(leastSquare);
    contour.radiusSum = static_cast<float>(radiusSum);
    contour.radiusSquareSum = static_cast<float>(squareSum);
}
