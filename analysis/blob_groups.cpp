#include "analysis/blob_impl.h"

int computeGroups(const NurImage&, const NurImage&, const BlobConfig& config, BlobArray& array) {
    const FeatureRules rules(config);
    for (BlobRecord* record : array.Used()) {
        if (rules.groups & kBlobMoment) computeMomentFeatures(*record, rules);
    }
    array.computedGroups = rules.groups & (kBlobBasic | kBlobMoment);
    return kBlobDone;
}
