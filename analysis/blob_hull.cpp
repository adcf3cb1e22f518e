#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

#include "analysis/blob_features_impl.h"

namespace {

constexpr double kHalfTurn = std::numbers::pi;
constexpr double kDegrees = 180 / std::numbers::pi;
constexpr std::int32_t kMostAngles = 90000;  // a thousandth of a degree apart

struct WorldPoint {
    double x, y;
};

std::int64_t cross(BlobPoint o, BlobPoint a, BlobPoint b) {
    return std::int64_t{a.x - o.x} * (b.y - o.y) - std::int64_t{a.y - o.y} * (b.x - o.x);
}

/// Convex hull of the ends of all runs, by the monotone chain of A. M. Andrew, "Another efficient algorithm for convex
/// hulls in two dimensions", Information Processing Letters 9 (1979): runs come sorted, so that one pass down and one
/// up drop every point that makes no turn.
void findHull(std::span<const BlobRun> runs, std::vector<BlobPoint>& hull) {
    hull.clear();
    std::size_t fixed = 1;
    const auto add = [&](BlobPoint point) {
        while (hull.size() > fixed && cross(hull[hull.size() - 2], hull.back(), point) >= 0) hull.pop_back();
        if (hull.empty() || hull.back().x != point.x || hull.back().y != point.y) hull.push_back(point);
    };
    for (const BlobRun& run : runs) {
        add({run.firstX, run.y});
        add({run.lastX, run.y});
    }
    fixed = hull.size();
    for (std::size_t k = runs.size(); k-- > 0;) {
        add({runs[k].lastX, runs[k].y});
        add({runs[k].firstX, runs[k].y});
    }
    if (hull.size() > 1) hull.pop_back();  // the first point again
}

/// Pixels on and inside the hull, by G. Pick's theorem: area + half the pixels on the outline + 1.
std::int64_t countPixels(std::span<const BlobPoint> hull) {
    std::int64_t twiceArea = 0;
    std::int64_t outline = 0;
    for (std::size_t k = 0; k < hull.size(); ++k) {
        const BlobPoint a = hull[k];
        const BlobPoint b = hull[(k + 1) % hull.size()];
        twiceArea += std::int64_t{a.x} * b.y - std::int64_t{b.x} * a.y;
        outline += std::gcd(a.x - b.x, a.y - b.y);
    }
    return (std::abs(twiceArea) + outline) / 2 + 1;
}

std::vector<WorldPoint> toWorld(std::span<const BlobPoint> hull, const FeatureRules& rules) {
    std::vector<WorldPoint> points;
    for (const BlobPoint point : hull) points.push_back({point.x * rules.world.scaleX, point.y * rules.world.scaleY});
    return points;
}

double edgeLengths(const std::vector<WorldPoint>& points) {
    double sum = 0;
    for (std::size_t k = 0; k < points.size(); ++k) {
        const WorldPoint& next = points[(k + 1) % points.size()];
        sum += std::hypot(points[k].x - next.x, points[k].y - next.y);
    }
    return sum;
}

struct Direction {
    double x, y;
};

/// Quarter turns exactly, so that upright shapes measure whole numbers.
Direction directionOf(double angle) {
    const auto clean = [](double value) { return std::abs(value) < 1e-12 ? 0.0 : value; };
    return {clean(std::cos(angle)), clean(std::sin(angle))};
}

struct Extent {
    double from, to;  ///< of the pixels' centres along a direction
    double pixel;     ///< of one pixel
    double Length() const { return to - from + pixel; }
};

Extent extentAlong(const std::vector<WorldPoint>& points, Direction along, const FeatureRules& rules) {
    Extent extent{std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
                  std::hypot(along.x * rules.world.scaleX, along.y * rules.world.scaleY)};
    for (const WorldPoint& point : points) {
        const double at = point.x * along.x + point.y * along.y;
        extent.from = std::min(extent.from, at);
        extent.to = std::max(extent.to, at);
    }
    return extent;
}

/// An angle of image coordinates (y down) as features give it: to (-90, 90] degrees, then negated.
double toFeatureAngle(double angle) { return -(angle > kHalfTurn / 2 ? angle - kHalfTurn : angle) * kDegrees; }

/// @return the angle of the smallest diameter, in image coordinates
double computeFeret(BlobRecord& record, const std::vector<WorldPoint>& points, const FeatureRules& rules) {
    const std::int32_t steps = 2 * std::clamp(rules.feretAngles, 1, kMostAngles);  // two quadrants see all diameters
    double least = std::numeric_limits<double>::max();
    double most = 0;
    double sum = 0;
    double leastAngle = 0;
    double mostAngle = 0;
    for (std::int32_t k = 1; k <= steps; ++k) {
        // A product could lie just above the quarter turn, which then would count as the opposite direction.
        const double angle = 2 * k == steps ? kHalfTurn / 2 : kHalfTurn * k / steps;
        const double diameter = extentAlong(points, directionOf(angle), rules).Length();
        sum += diameter;
        if (diameter < least) least = diameter, leastAngle = angle;
        if (diameter > most) most = diameter, mostAngle = angle;
    }
    record.maxFeret = static_cast<float>(most);
    record.minFeret = static_cast<float>(least);
    record.meanFeret = static_cast<float>(sum / steps);
    record.maxFeretAngle = static_cast<float>(toFeatureAngle(mostAngle));
    record.minFeretAngle = static_cast<float>(toFeatureAngle(leastAngle));
    return leastAngle;
}

/// The box whose width lies along the smallest diameter; upright, it is the bounding box.
void computeOrientedBox(BlobRecord& record, const std::vector<WorldPoint>& points, double angle,
                        const FeatureRules& rules) {
    constexpr double upright = 1 / kDegrees;
    const double toAxis = std::abs(std::remainder(angle, kHalfTurn / 2));
    if (toAxis <= upright) angle = 0;
    const Direction along = directionOf(angle);
    const Direction across{-along.y, along.x};
    const Extent width = extentAlong(points, along, rules);
    const Extent height = extentAlong(points, across, rules);
    record.boxOrientedWidth = static_cast<float>(width.Length());
    record.boxOrientedHeight = static_cast<float>(height.Length());
    record.boxOrientedArea = static_cast<float>(width.Length() * height.Length());
    record.boxOrientedAngle = angle == 0 ? 0.0f : record.minFeretAngle;
    const double u[2] = {width.from - width.pixel / 2, width.to + width.pixel / 2};
    const double v[2] = {height.from - height.pixel / 2, height.to + height.pixel / 2};
    constexpr int order[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    for (int k = 0; k < 4; ++k) {
        const double a = u[order[k][0]];
        const double b = v[order[k][1]];
        record.boxCorners[k][0] = static_cast<float>((a * along.x + b * across.x) / rules.world.scaleX);
        record.boxCorners[k][1] = static_cast<float>((a * along.y + b * across.y) / rules.world.scaleY);
    }
}

}  // namespace

void computeConvexityFeatures(BlobRecord& record, const FeatureRules& rules, std::vector<BlobPoint>& hull) {
    findHull(record.StoredRuns(), hull);
    const std::vector<WorldPoint> points = toWorld(hull, rules);
    record.hullPoints = hull.data();
    record.hullPointCount = static_cast<std::int32_t>(hull.size());
    const double perimeter = 2 * (rules.world.scaleX + rules.world.scaleY) + edgeLengths(points);
    const double area = static_cast<double>(countPixels(hull)) * rules.world.PixelArea();
    record.hullPerimeter = static_cast<float>(perimeter);
    record.hullArea = static_cast<float>(area);
    record.convexity = static_cast<float>(perimeter / record.perimeter);
    record.solidity = static_cast<float>(record.area / area);
    computeOrientedBox(record, points, computeFeret(record, points, rules), rules);
}
