#include <algorithm>
#include <vector>

#include "analysis/blob_impl.h"

namespace {

/// The room for accepted blobs; further regions end the sweep where the array doesn't grow.
bool isFull(const BlobStrip& strip, const SweepRecord& record, const BlobArray& array) {
    return !array.Grows() && static_cast<std::int64_t>(record.created.size()) >= array.Capacity() &&
           strip.Accepted() >= array.Capacity();
}

/// Joins all rows, two a round. @param firstRow of the tall virtual image or of this one
template <class Rows>
void sweepRows(Rows& rows, std::int32_t height, std::int32_t firstRow, const SweepRules& rules, bool isLastBand,
               BlobStrip& strip, SweepRecord& record, const BlobArray& array) {
    for (std::int32_t y = 0; y < height; ++y) {
        strip.Join(rows.Read(y), firstRow + y, rules, false);
        if (isLastBand && y % 2 != 0 && isFull(strip, record, array)) return;
    }
    if (isLastBand) strip.CloseLast(rules, true);
}

/// @return whether the runs of this image come with their values; packed bits have none
bool haveValues(const NurImage& view, const BlobConfig& config) {
    return config.HasValues() && view.format != CTivData::FormatBinary;
}

void sweepImage(const NurImage& view, const BlobConfig& config, std::int32_t firstRow, const SweepRules& rules,
                bool isLastBand, VirtualFrame& frame, const BlobArray& array, CodedRows* coded) {
    const auto sweep = [&](auto&& rows) {
        sweepRows(rows, view.roi.height, firstRow, rules, isLastBand, frame.general, frame.record, array);
    };
    if (coded) {
        sweep(*coded);
    } else if (!haveValues(view, config)) {
        sweep(ForegroundRows(view, config.background));
    } else if (view.format == CTivData::FormatUShort) {
        sweep(ValueRows<std::uint16_t>(view, config.background));
    } else {
        sweep(ValueRows<std::uint8_t>(view, config.background));
    }
}

/// Gives regions their records: the accepted ones, then those that are still open, each in the order of creation.
void fillRecords(const std::vector<BlobNode*>& created, const BlobConfig& config, bool hasValues,
                 std::int32_t foreground, BlobArray& array) {
    std::vector<BlobNode*> accepted, open;
    for (BlobNode* node : created) {
        node->index = -1;
        if (node->survivor || (node->closed && node->rejected)) continue;
        (node->closed ? accepted : open).push_back(node);
    }
    const std::int64_t room = array.MakeRoom(static_cast<std::int64_t>(accepted.size() + open.size()));
    const std::int64_t acceptedCount = std::min(room, static_cast<std::int64_t>(accepted.size()));
    accepted.insert(accepted.end(), open.begin(), open.end());

    const FeatureRules rules(config);
    for (std::int64_t i = 0; i < room; ++i) {
        BlobNode& node = *accepted[static_cast<std::size_t>(i)];
        BlobRecord& record = array[i];
        node.index = static_cast<std::int32_t>(i);
        computeBasicFeatures(record, node, rules);
        record.label = node.index + 1;
        if (!hasValues) record.value = foreground;
        record.status = node.closed ? kBlobValid : kBlobOpen;
    }
    array.SetUsed(acceptedCount, room - acceptedCount);
}

/// Orders the kept runs by blob and hands each record its own.
void storeRuns(const std::vector<KeptRun>& kept, std::int32_t foreground, bool hasValues, BlobArray& array) {
    const auto records = array.Used();
    std::vector<std::size_t> next(records.size() + 1);
    const auto indexOf = [](const KeptRun& run) { return run.node->Resolve()->index; };
    for (const KeptRun& run : kept) {
        if (indexOf(run) >= 0) ++next[static_cast<std::size_t>(indexOf(run)) + 1];
    }
    for (std::size_t i = 1; i < next.size(); ++i) next[i] += next[i - 1];
    array.runStore_.resize(next.back());
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i]->storedRuns = array.runStore_.data() + next[i];
        records[i]->storedRunCount = static_cast<std::int32_t>(next[i + 1] - next[i]);
    }
    for (const KeptRun& run : kept) {
        const std::int32_t index = indexOf(run);
        if (index < 0) continue;
        array.runStore_[next[static_cast<std::size_t>(index)]++] = {index, run.start, run.end - 1, run.row,
                                                                    hasValues ? run.value : foreground};
    }
}

/// Keeps of a band what the next one may go on with: open regions and their runs.
void keepOpen(VirtualFrame& frame) {
    SweepRecord& record = frame.record;
    for (KeptRun& run : record.runs) run.node = run.node->Resolve();
    std::erase_if(record.runs, [](const KeptRun& run) { return run.node->closed; });
    std::erase_if(record.created, [&](BlobNode* node) {
        const bool isDone = node->survivor || node->closed;
        if (isDone) frame.general.Pool().Release(node);
        return isDone;
    });
}

}  // namespace

int extractGeneral(const NurImage& view, const NurImage& input, const BlobConfig& config, bool continuous,
                   VirtualFrame& frame, BlobArray& array, CodedRows* coded) {
    const SweepRules rules(config);
    const std::size_t listSize = valueListSize(view.roi.width);
    const bool isFirstBand = !continuous || frame.lastRow < 0;
    if (isFirstBand) {
        frame.general.Prepare(listSize);
        frame.record = {};
    } else {
        frame.general.Continue(listSize);
    }
    frame.general.SetRecord(&frame.record);
    frame.record.keepRuns = (config.intermediateResults & kBlobKeepRuns) != 0;
    const std::int32_t firstRow = continuous ? frame.lastRow + 1 : view.roi.y;
    sweepImage(view, config, firstRow, rules, !continuous, frame, array, coded);

    const std::int32_t foreground = foregroundValue(view, config);
    const bool hasValues = haveValues(view, config);
    fillRecords(frame.record.created, config, hasValues, foreground, array);
    array.keptResults_ = config.intermediateResults & (coded ? kBlobKeepRuns : kBlobKeepRuns | kBlobKeepImage);
    if (frame.record.keepRuns) storeRuns(frame.record.runs, foreground, hasValues, array);
    if (continuous) {
        frame.lastRow += view.roi.height;
        keepOpen(frame);
    }
    return computeGroups(view, input, config, array);
}
