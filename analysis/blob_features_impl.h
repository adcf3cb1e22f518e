#pragma once

#include <cstdint>
#include <vector>

#include "analysis/BlobConfig.h"
#include "analysis/BlobRecord.h"
#include "analysis/blob_node_impl.h"
#include "foundation/nur_image.h"

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
/// Wants the traced points, and the moments. @param contour gets the values @param holePixels inside all holes
void computePerimeterFeatures(BlobRecord& record, const FeatureRules& rules, BlobContour& contour,
                              std::int64_t holePixels);
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
