#include "analysis/blob_contour_impl.h"
#include "analysis/blob_impl.h"

namespace {

bool contains(const CTivRect& outer, const CTivRect& inner) {
    return inner.x >= outer.x && inner.y >= outer.y && inner.x + inner.width <= outer.x + outer.width &&
           inner.y + inner.height <= outer.y + outer.height;
}

int computeHulls(const FeatureRules& rules, BlobArray& array) {
    if (!(array.keptResults_ & kBlobKeepRuns)) return kBlobNoRuns;
    array.hulls_.resize(array.Used().size());
    for (std::size_t i = 0; i < array.hulls_.size(); ++i) {
        computeConvexityFeatures(*array.Used()[i], rules, array.hulls_[i]);
    }
    return kBlobDone;
}

int computeContours(const NurImage& view, const BlobConfig& config, const FeatureRules& rules, BlobArray& array) {
    if (!(array.keptResults_ & kBlobKeepImage)) return kBlobBadImage;
    const bool byValue = config.HasValues() && view.format != CTivData::FormatBinary;
    std::vector<TracedBlob> traced = traceContours(view, byValue, config.background, rules.eight, array.Used());
    array.contours_.resize(traced.size());
    for (std::size_t i = 0; i < traced.size(); ++i) {
        array.contours_[i] = std::move(traced[i].contour);
        computePerimeterFeatures(*array.Used()[i], rules, array.contours_[i], traced[i].holePixels);
    }
    return kBlobDone;
}

int computeGrays(const NurImage& view, const NurImage& input, const FeatureRules& rules, BlobArray& array) {
    if (!(array.keptResults_ & kBlobKeepRuns)) return kBlobNoRuns;
    const CTivData::Format format = input.format;
    if (format != CTivData::FormatBinary && format != CTivData::FormatUByte && format != CTivData::FormatUShort) {
        return kBlobBadFormat;
    }
    if (!contains({0, 0, input.width, input.height}, view.roi)) return kBlobDone;
    for (BlobRecord* record : array.Used()) computeGrayFeatures(*record, rules, input);
    return kBlobDone;
}

}  // namespace

int computeGroups(const NurImage& view, const NurImage& input, const BlobConfig& config, BlobArray& array) {
    const FeatureRules rules(config);
    if (rules.groups & (kBlobMoment | kBlobPerimeter)) {
        for (BlobRecord* record : array.Used()) computeMomentFeatures(*record, rules);
    }
    int code = kBlobDone;
    if (rules.groups & kBlobConvexity) code = computeHulls(rules, array);
    if (!code && rules.groups & kBlobPerimeter) code = computeContours(view, config, rules, array);
    if (!code && rules.groups & kBlobGrayScale) code = computeGrays(view, input, rules, array);
    for (BlobRecord* record : array.Used()) record->computedGroups = rules.groups;
    array.computedGroups_ = rules.groups;
    return code;
}
