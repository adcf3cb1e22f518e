#pragma once

/// Features of a blob, by number. Lengths are in pixels, areas in pixels, angles in degrees unless BlobConfig's
/// calibration says otherwise. The groups (kBlobBasic and so on) that a range belongs to are computed on request.
enum BlobFeature : int {
    // Basic
    BlobArea = 0,
    BlobBoxArea,           ///< of the bounding box
    BlobFillRatio,         ///< area / box area
    BlobElongation,        ///< equivalent length / equivalent width
    BlobEquivalentLength,  ///< longer side of the rectangle that has the blob's area and perimeter
    BlobEquivalentWidth,   ///< its shorter side
    BlobCompactness,       ///< 4 pi area / perimeter squared
    BlobHeight,            ///< of the bounding box, pixels
    BlobValue,             ///< gray value or label value
    BlobHoles,
    BlobRawBorder,
    BlobRuns,
    BlobPerimeter,
    BlobLastX,  ///< last pixel in raster order
    BlobLastY,
    BlobSumX,  ///< sums over the blob's pixels
    BlobSumXX,
    BlobSumXY,
    BlobSumY,
    BlobSumYY,
    BlobWidth,    ///< of the bounding box, pixels
    BlobCenterX,  ///< centre of gravity
    BlobCenterY,
    BlobMinX,  ///< bounding box, in pixels of the image
    BlobMinY,
    BlobMaxX,
    BlobMaxY,
    // Moment
    BlobMajorAxis = 27,  ///< of the ellipse of equal moments
    BlobMinorAxis,
    BlobAngle,         ///< of the major axis, counterclockwise as seen (y runs down), -90 to 90
    BlobAxisRatio,     ///< minor / major
    BlobEllipseRatio,  ///< (sqrt(4 area / pi) / major) squared
    // Convexity
    BlobHullPoints = 32,
    BlobHullArea,
    BlobConvexity,  ///< hull perimeter / perimeter
    BlobHullPerimeter,
    BlobMaxFeretAngle,
    BlobMinFeretAngle,
    BlobMaxFeret,
    BlobMeanFeret,
    BlobMinFeret,
    BlobBoxOrientedArea,
    BlobBoxOrientedAngle,
    BlobBoxOrientedHeight,
    BlobBoxOrientedWidth,
    BlobSolidity,  ///< area / hull area
    // Perimeter: the outer contour's points, relative to the centre of gravity
    BlobFilledArea = 46,  ///< area plus the area of the holes
    BlobContourMaxDx,
    BlobContourMinDx,
    BlobContourMaxDy,
    BlobContourMinDy,
    BlobRadiusSum,
    BlobRadiusSquareSum,
    BlobMaxRadiusSquared,
    BlobMinRadiusSquared,
    BlobMaxRadiusDx,  ///< where the largest radius lies
    BlobMinRadiusDx,
    BlobMaxRadiusDy,
    BlobMinRadiusDy,
    BlobAlongMax,  ///< extent along the major axis
    BlobAlongMin,
    BlobAcrossMax,
    BlobAcrossMin,
    // Gray-scale: the input image under the blob
    BlobGrayMax = 63,
    BlobGrayMean,
    BlobGrayMin,
    BlobGrayDeviation,
    BlobGrayCenterX,  ///< centre weighted by gray value
    BlobGrayCenterY,
    BlobFeatureCount
};
static_assert(BlobFeatureCount == 69);

/// Order of CTivBlob::SortByFeature.
enum BlobSortOrder : int { kBlobAscending = 0, kBlobDescending = 1 };
