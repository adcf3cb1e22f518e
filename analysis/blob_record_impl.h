#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "analysis/BlobConfig.h"
#include "analysis/BlobRun.h"
#include "analysis/blob_node_impl.h"

struct BlobPoint {
    std::int32_t x, y;
};

/// A blob's contours and what the outer one measures, relative to the centre of gravity.
struct BlobContour {
    std::vector<std::vector<BlobPoint>> points;  ///< the outer contour, then one a hole
    float maxDx, minDx, maxDy, minDy;
    float radiusSum, radiusSquareSum;
    float maxRadiusSquared, minRadiusSquared;
    float maxRadiusDx, minRadiusDx, maxRadiusDy, minRadiusDy;
    float alongMax, alongMin, acrossMax, acrossMin;
};

enum BlobStatus : std::int32_t { kBlobValid = 0, kBlobRejected = 1, kBlobReleasing = 2, kBlobOpen = 3 };

/// One finished blob. Without initial values: records of a large array are only touched as they are used. Memory that a
/// record points to is the array's.
struct BlobRecord {
    std::int32_t label, value, minX, minY, maxX, maxY, runs, holes, rawBorder;
    float perimeter;
    std::int32_t horizontalBorder, verticalBorder, diagonalBorder;
    std::int32_t hullPointCount;
    const BlobPoint* hullPoints;
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
    const BlobContour* contour;

    std::span<const BlobRun> StoredRuns() const { return {storedRuns, static_cast<std::size_t>(storedRunCount)}; }
};

/// How features are measured, the same for all blobs of an Execute.
struct FeatureRules {
    bool eight = true;
    bool calibrated = false;
    WorldScale world;
    std::uint32_t groups = kBlobBasic;
    std::int32_t feretAngles = 12;

    explicit FeatureRules(const BlobConfig& config)
        : eight(config.connectivity == 1),
          calibrated(config.calibrated),
          groups(config.featureGroups & kBlobAllGroups),
          feretAngles(config.feretAngles) {
        if (calibrated) world = {config.scaleX, config.offsetX, config.scaleY, config.offsetY};
    }
};

// One function a group, in the order in which they build on each other.

/// Fills the record from a region's sums; the Basic features are always there.
void computeBasicFeatures(BlobRecord& record, const BlobNode& node, const FeatureRules& rules);
void computeMomentFeatures(BlobRecord& record, const FeatureRules& rules);
/// Wants the record's runs. @param hull receives the points that the record then points to
void computeConvexityFeatures(BlobRecord& record, const FeatureRules& rules, std::vector<BlobPoint>& hull);
/// Wants the image that the blob was found in, and the moments.
void computePerimeterFeatures(BlobRecord& record, const FeatureRules& rules, const NurImage& image, bool byValue,
                              bool zeros, BlobContour& contour);
/// Wants the record's runs. @param image FormatBinary, UByte or UShort, and covers the blob
void computeGrayFeatures(BlobRecord& record, const FeatureRules& rules, const NurImage& image);

/// A row of the table of features: where its value stands.
struct FeatureAccessor {
    const char* name;
    BlobFeatureGroup group;
    float (*read)(const BlobRecord&);
};
/// @return null outside 0 to 68
const FeatureAccessor* findFeature(int feature);
