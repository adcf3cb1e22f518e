#include <omp.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <vector>

#include "analysis/blob_impl.h"
#include "primitives/acceleration.h"

namespace {

constexpr std::int32_t kLeastStripRows = 3;

/// The rows that one strip takes, counted from the ROI's first.
struct StripRows {
    std::int32_t begin, end;
};

StripRows stripRows(std::int32_t height, int strip, int strips) {
    const auto at = [&](int i) { return static_cast<std::int32_t>(std::int64_t{height} * i / strips); };
    return {at(strip), at(strip + 1)};
}

// The team's real size decides the strips, not the size that was asked for.
int stripCount(const NurImage& view) {
    if (view.format != CTivData::FormatUByte) return 1;
    int size = 1;
#pragma omp parallel num_threads(std::max(ctiv_GetNumThreads(), 0))
    {
#pragma omp master
        size = omp_get_num_threads();
    }
    return view.roi.height / size < kLeastStripRows ? 1 : size;
}

void sweep(BlobStrip& strip, const NurImage& view, const BlobConfig& config, const SweepRules& rules, StripRows part,
           bool isFirst) {
    strip.Prepare(foregroundListSize(view.roi.width));
    ForegroundRows rows(view, config.background);
    for (std::int32_t y = part.begin; y < part.end; ++y) {
        strip.Join(rows.Read(y), view.roi.y + y, rules, !isFirst && y == part.begin);
        if (strip.IsFull(rules) && y + 1 < part.end) return strip.CloseLast(rules, false);
    }
}

/// Sweeps all strips side by side. @return false where memory ran out for one of them
bool sweepStrips(std::deque<BlobStrip>& strips, const NurImage& view, const BlobConfig& config,
                 const SweepRules& rules) {
    const int count = static_cast<int>(strips.size());
    std::atomic<bool> hasMemory = true;
#pragma omp parallel for num_threads(count) schedule(static, 1) if (count > 1)
    for (int i = 0; i < count; ++i) {
        try {
            sweep(strips[static_cast<std::size_t>(i)], view, config, rules, stripRows(view.roi.height, i, count),
                  i == 0);
        } catch (const std::bad_alloc&) {
            hasMemory = false;
        }
    }
    return hasMemory;
}

void joinStrips(std::deque<BlobStrip>& strips, const NurImage& view, const SweepRules& rules) {
    const int count = static_cast<int>(strips.size());
    for (int i = 1; i < count; ++i) {
        const std::int32_t bottom = view.roi.y + stripRows(view.roi.height, i, count).end - 1;
        strips[static_cast<std::size_t>(i)].JoinAbove(strips[static_cast<std::size_t>(i) - 1], bottom, rules);
    }
    strips.back().CloseLast(rules, true);
    for (auto strip = strips.begin() + 1; strip != strips.end(); ++strip) strip->RecheckFirst(rules);
}

/// Copies a strip's accepted regions to the records from `first` on, below `end`, and computes their features.
void fillRecords(const BlobStrip& strip, BlobArray& array, std::int64_t first, std::int64_t end, std::int32_t value,
                 const FeatureRules& rules) {
    for (const BlobNode* node = strip.Finished(); node && first < end; node = node->next) {
        if (node->rejected) continue;
        BlobRecord& record = array[first++];
        computeBasicFeatures(record, *node, rules);
        record.value = value;
        record.label = static_cast<std::int32_t>(first);
        if (rules.groups & kBlobMoment) computeMomentFeatures(record, rules);
    }
}

}  // namespace

int extractBinary(const NurImage& view, const BlobConfig& config, VirtualFrame& frame, BlobArray& array) {
    SweepRules rules(config);
    if (!array.Grows()) rules.mostAccepted = array.Capacity();
    std::deque<BlobStrip>& strips = frame.strips;
    strips.resize(static_cast<std::size_t>(stripCount(view)));
    if (!sweepStrips(strips, view, config, rules)) {
        strips.clear();
        array.computedGroups_ = config.featureGroups & kBlobAllGroups;
        return kBlobDone;  // with no blobs, deliberately (C5)
    }
    joinStrips(strips, view, rules);

    std::vector<std::int64_t> firsts{0};
    for (const BlobStrip& strip : strips) firsts.push_back(firsts.back() + strip.Accepted());
    const std::int64_t room = array.MakeRoom(firsts.back());
    const FeatureRules features(config);
    const std::int32_t value = foregroundValue(view, config);
    const int count = static_cast<int>(strips.size());
#pragma omp parallel for num_threads(count) schedule(static, 1) if (count > 1)
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        fillRecords(strips[at], array, firsts[at], room, value, features);
    }
    array.SetUsed(room, 0);
    array.computedGroups_ = features.groups;
    return kBlobDone;
}
