#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "analysis/BlobRun.h"

/// A pixel of the image.
struct BlobPoint {
    std::int32_t x, y;
};

/// A blob's contours, along its own pixels next to each other, and what the outer one measures relative to the centre
/// of gravity. Where a blob is one pixel thin, a contour passes its pixels on the way there and on the way back.
struct BlobContour {
    std::vector<std::vector<BlobPoint>> points;  ///< the outer contour from the blob's last pixel on, then one a hole
    float maxDx, minDx, maxDy, minDy;
    float radiusSum, radiusSquareSum;
    float maxRadiusSquared, minRadiusSquared;
    float maxRadiusDx, minRadiusDx, maxRadiusDy, minRadiusDy;
    float alongMax, alongMin, acrossMax, acrossMin;
};

/// What a record stands for; readers only see valid ones.
enum BlobStatus : std::int32_t { kBlobValid = 0, kBlobRejected = 1, kBlobReleasing = 2, kBlobOpen = 3 };

/// One finished blob. Without initial values: records of a large array are only touched as they are used, and only the
/// groups in computedGroups (and Basic) are valid. Memory that a record points to is the array's.
struct BlobRecord {
    std::int32_t label, value, minX, minY, maxX, maxY, runs, holes, rawBorder;
    float perimeter;
    std::int32_t horizontalBorder, verticalBorder, diagonalBorder;
    std::int32_t hullPointCount;
    const BlobPoint* hullPoints;  ///< corners of the convex hull, in order, where the Convexity group is computed
    float hullPerimeter, convexity, elongation, equivalentLength, equivalentWidth, compactness;
    float grayMax, grayMean, grayMin, grayDeviation;
    double grayCenterX, grayCenterY;
    float maxFeretAngle, minFeretAngle, maxFeret, meanFeret, minFeret;
    float boxOrientedArea, boxOrientedAngle, boxOrientedHeight, boxOrientedWidth;
    float boxCorners[4][2];  ///< x and y, in pixels of the image
    float area, hullArea, filledArea, solidity;
    std::int32_t width, height;
    double sumX, sumXX, sumXY, sumY, sumYY;
    std::int32_t lastX, lastY;
    std::int32_t storedRunCount;
    double centerX, centerY;
    float majorAxis, minorAxis, angle, axisRatio, ellipseRatio;
    float boxArea, fillRatio;
    std::int32_t status;
    std::uint32_t computedGroups;
    const BlobRun* storedRuns;
    const BlobContour* contour;  ///< where the Perimeter group is computed

    std::span<const BlobPoint> HullPoints() const { return {hullPoints, static_cast<std::size_t>(hullPointCount)}; }
    /// Empty where runs are not kept.
    std::span<const BlobRun> StoredRuns() const { return {storedRuns, static_cast<std::size_t>(storedRunCount)}; }
};
