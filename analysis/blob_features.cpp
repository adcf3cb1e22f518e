#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "analysis/BlobFeature.h"
#include "analysis/blob_features_impl.h"

namespace {

constexpr double kRootTwo = 1.4142135623730951;
constexpr double kDegrees = 57.29577951308232;

template <auto field>
float read(const BlobRecord& record) {
    return static_cast<float>(record.*field);
}
template <auto field>
float readContour(const BlobRecord& record) {
    return record.contour->*field;
}

using R = BlobRecord;
using C = BlobContour;

// Indexed by feature number.
constexpr FeatureAccessor kFeatures[] = {
    {"BlobArea", kBlobBasic, read<&R::area>},
    {"BlobBoxArea", kBlobBasic, read<&R::boxArea>},
    {"BlobFillRatio", kBlobBasic, read<&R::fillRatio>},
    {"BlobElongation", kBlobBasic, read<&R::elongation>},
    {"BlobEquivalentLength", kBlobBasic, read<&R::equivalentLength>},
    {"BlobEquivalentWidth", kBlobBasic, read<&R::equivalentWidth>},
    {"BlobCompactness", kBlobBasic, read<&R::compactness>},
    {"BlobHeight", kBlobBasic, read<&R::height>},
    {"BlobValue", kBlobBasic, read<&R::value>},
    {"BlobHoles", kBlobBasic, read<&R::holes>},
    {"BlobRawBorder", kBlobBasic, read<&R::rawBorder>},
    {"BlobRuns", kBlobBasic, read<&R::runs>},
    {"BlobPerimeter", kBlobBasic, read<&R::perimeter>},
    {"BlobLastX", kBlobBasic, read<&R::lastX>},
    {"BlobLastY", kBlobBasic, read<&R::lastY>},
    {"BlobSumX", kBlobBasic, read<&R::sumX>},
    {"BlobSumXX", kBlobBasic, read<&R::sumXX>},
    {"BlobSumXY", kBlobBasic, read<&R::sumXY>},
    {"BlobSumY", kBlobBasic, read<&R::sumY>},
    {"BlobSumYY", kBlobBasic, read<&R::sumYY>},
    {"BlobWidth", kBlobBasic, read<&R::width>},
    {"BlobCenterX", kBlobBasic, read<&R::centerX>},
    {"BlobCenterY", kBlobBasic, read<&R::centerY>},
    {"BlobMinX", kBlobBasic, read<&R::minX>},
    {"BlobMinY", kBlobBasic, read<&R::minY>},
    {"BlobMaxX", kBlobBasic, read<&R::maxX>},
    {"BlobMaxY", kBlobBasic, read<&R::maxY>},
    {"BlobMajorAxis", kBlobMoment, read<&R::majorAxis>},
    {"BlobMinorAxis", kBlobMoment, read<&R::minorAxis>},
    {"BlobAngle", kBlobMoment, read<&R::angle>},
    {"BlobAxisRatio", kBlobMoment, read<&R::axisRatio>},
    {"BlobEllipseRatio", kBlobMoment, read<&R::ellipseRatio>},
    {"BlobHullPoints", kBlobConvexity, read<&R::hullPointCount>},
    {"BlobHullArea", kBlobConvexity, read<&R::hullArea>},
    {"BlobConvexity", kBlobConvexity, read<&R::convexity>},
    {"BlobHullPerimeter", kBlobConvexity, read<&R::hullPerimeter>},
    {"BlobMaxFeretAngle", kBlobConvexity, read<&R::maxFeretAngle>},
    {"BlobMinFeretAngle", kBlobConvexity, read<&R::minFeretAngle>},
    {"BlobMaxFeret", kBlobConvexity, read<&R::maxFeret>},
    {"BlobMeanFeret", kBlobConvexity, read<&R::meanFeret>},
    {"BlobMinFeret", kBlobConvexity, read<&R::minFeret>},
    {"BlobBoxOrientedArea", kBlobConvexity, read<&R::boxOrientedArea>},
    {"BlobBoxOrientedAngle", kBlobConvexity, read<&R::boxOrientedAngle>},
    {"BlobBoxOrientedHeight", kBlobConvexity, read<&R::boxOrientedHeight>},
    {"BlobBoxOrientedWidth", kBlobConvexity, read<&R::boxOrientedWidth>},
    {"BlobSolidity", kBlobConvexity, read<&R::solidity>},
    {"BlobFilledArea", kBlobPerimeter, read<&R::filledArea>},
    {"BlobContourMaxDx", kBlobPerimeter, readContour<&C::maxDx>},
    {"BlobContourMinDx", kBlobPerimeter, readContour<&C::minDx>},
    {"BlobContourMaxDy", kBlobPerimeter, readContour<&C::maxDy>},
    {"BlobContourMinDy", kBlobPerimeter, readContour<&C::minDy>},
    {"BlobRadiusSum", kBlobPerimeter, readContour<&C::radiusSum>},
    {"BlobRadiusSquareSum", kBlobPerimeter, readContour<&C::radiusSquareSum>},
    {"BlobMaxRadiusSquared", kBlobPerimeter, readContour<&C::maxRadiusSquared>},
    {"BlobMinRadiusSquared", kBlobPerimeter, readContour<&C::minRadiusSquared>},
    {"BlobMaxRadiusDx", kBlobPerimeter, readContour<&C::maxRadiusDx>},
    {"BlobMinRadiusDx", kBlobPerimeter, readContour<&C::minRadiusDx>},
    {"BlobMaxRadiusDy", kBlobPerimeter, readContour<&C::maxRadiusDy>},
    {"BlobMinRadiusDy", kBlobPerimeter, readContour<&C::minRadiusDy>},
    {"BlobAlongMax", kBlobPerimeter, readContour<&C::alongMax>},
    {"BlobAlongMin", kBlobPerimeter, readContour<&C::alongMin>},
    {"BlobAcrossMax", kBlobPerimeter, readContour<&C::acrossMax>},
    {"BlobAcrossMin", kBlobPerimeter, readContour<&C::acrossMin>},
    {"BlobGrayMax", kBlobGrayScale, read<&R::grayMax>},
    {"BlobGrayMean", kBlobGrayScale, read<&R::grayMean>},
    {"BlobGrayMin", kBlobGrayScale, read<&R::grayMin>},
    {"BlobGrayDeviation", kBlobGrayScale, read<&R::grayDeviation>},
    {"BlobGrayCenterX", kBlobGrayScale, read<&R::grayCenterX>},
    {"BlobGrayCenterY", kBlobGrayScale, read<&R::grayCenterY>},
};
static_assert(std::size(kFeatures) == BlobFeatureCount);

double perimeterOf(const BlobNode& node, std::int32_t horizontalBorder, const FeatureRules& rules) {
    const double diagonal = node.diagonalBorder;
    if (rules.calibrated) {
        const double sx = rules.world.scaleX;
        const double sy = rules.world.scaleY;
        return std::sqrt(sx * sx + sy * sy) * diagonal + node.verticalBorder * sy + horizontalBorder * sx;
    }
    const double perDiagonal = rules.eight ? 1 : 2;
    return (node.rawBorder - perDiagonal * diagonal + 3) + kRootTwo * diagonal - 5.0 * node.holes;
}

void computeEquivalentRectangle(BlobRecord& record, double perimeter, double area) {
    const double root = std::sqrt(std::max(perimeter * perimeter - 16 * area, 0.0));
    const double a = (perimeter - root) * 0.25;
    const double b = a == 0 ? double{std::numeric_limits<float>::max()} : area / a;
    const double length = std::max(a, b);
    const double width = std::min(a, b);
    record.equivalentLength = static_cast<float>(length);
    record.equivalentWidth = static_cast<float>(width);
    record.elongation = static_cast<float>(length / width);
}

}  // namespace

const FeatureAccessor* findFeature(int feature) {
    return feature >= 0 && feature < BlobFeatureCount ? &kFeatures[feature] : nullptr;
}

void computeBasicFeatures(BlobRecord& record, const BlobNode& node, const FeatureRules& rules) {
    record.status = kBlobValid;
    record.storedRuns = nullptr;
    record.hullPoints = nullptr;
    record.contour = nullptr;
    record.storedRunCount = record.hullPointCount = 0;
    record.value = node.value;
    record.minX = node.minX, record.maxX = node.maxX, record.minY = node.minY, record.maxY = node.maxY;
    record.runs = node.runs;
    record.holes = node.holes;
    record.rawBorder = node.rawBorder;
    record.verticalBorder = node.verticalBorder;
    record.diagonalBorder = node.diagonalBorder;
    record.horizontalBorder = node.horizontalBorder - (rules.eight ? 0 : node.diagonalBorder);
    record.lastX = node.lastX;
    record.lastY = node.lastY;
    record.area = node.area;
    record.width = node.maxX - node.minX + 1;
    record.height = node.maxY - node.minY + 1;
    record.sumX = node.twiceX * 0.5;
    record.sumXX = node.sixXX / 6;
    record.sumXY = node.twiceXY * 0.5;
    record.sumY = node.y;
    record.sumYY = node.yy;

    const double area = node.area;
    const double pixelArea = rules.world.PixelArea();  // 1 unless calibrated
    record.centerX = record.sumX * pixelArea / area;
    record.centerY = record.sumY * pixelArea / area;
    const double boxArea = static_cast<double>(record.width) * record.height * pixelArea;
    record.boxArea = static_cast<float>(boxArea);
    record.fillRatio = static_cast<float>(area / boxArea);
    const double perimeter = perimeterOf(node, record.horizontalBorder, rules);
    record.perimeter = static_cast<float>(perimeter);
    record.compactness = static_cast<float>(area * 12.566370614359172 / (perimeter * perimeter));
    computeEquivalentRectangle(record, perimeter, area);
    record.computedGroups = rules.groups;
}

// The ellipse of equal second moments. World sums count pixels; times a pixel's area they are moments of the region.
void computeMomentFeatures(BlobRecord& record, const FeatureRules& rules) {
    constexpr double kScale = 4 / std::numbers::pi;
    const double weight = rules.world.PixelArea();
    const double area = record.area;
    const double cx = record.centerX;
    const double cy = record.centerY;
    const double mxx = (record.sumXX * weight - cx * cx * area) * kScale;
    const double myy = (record.sumYY * weight - cy * cy * area) * kScale;
    const double mxy = (record.sumXY * weight - cy * cx * area) * kScale;
    const double s = myy + mxx;
    const double d = mxx - myy;
    const double angle = mxy == 0 && d == 0 ? 0.0 : -0.5 * std::atan2(2 * mxy, d) * kDegrees;
    const double r = std::sqrt(4 * mxy * mxy + d * d);
    const double q = std::sqrt(std::sqrt(myy * mxx - mxy * mxy));
    double major = area;
    double minor = 0;
    double ratio = 0;
    if (q > 0 && mxx > 0 && myy > 0 && r <= s) {
        major = std::sqrt(2 * (r + s) / q);
        minor = std::sqrt(2 * (s - r) / q);
        ratio = minor / major;
    } else if (std::abs(std::abs(angle) - 45) < 1e-6 || std::abs(std::abs(angle) - 135) < 1e-6) {
        major = area * kRootTwo;  // a line
    } else if (std::abs(std::abs(angle) - 90) < 0.01) {
        major = record.height;
    }
    const double equal = std::sqrt(4 * area / std::numbers::pi) / major;
    record.majorAxis = static_cast<float>(major);
    record.minorAxis = static_cast<float>(minor);
    record.angle = static_cast<float>(angle);
    record.axisRatio = static_cast<float>(ratio);
    record.ellipseRatio = static_cast<float>(equal * equal);
}
