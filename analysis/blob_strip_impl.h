#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "analysis/BlobConfig.h"
#include "analysis/blob_node_impl.h"
#include "analysis/blob_rows_impl.h"

/// A run and the region that it belongs to.
struct RunEntry {
    BlobNode* node = nullptr;
    std::int32_t start = 0;
    std::int32_t end = 0;  ///< exclusive
};

/// The runs of one row, ascending, closed by a sentinel beyond any x.
class RunList {
public:
    /// Makes room for `entries`, the sentinel among them, and keeps what is there.
    void Reserve(std::size_t entries) {
        const bool isNew = entries_.empty();
        if (entries_.size() < entries) entries_.resize(entries);
        if (isNew) Clear();
    }
    void Clear() { End(entries_.data()); }
    RunEntry* Begin() { return entries_.data(); }
    void End(RunEntry* end) {
        constexpr std::int32_t beyond = 0x40000000;
        *end = {nullptr, beyond, beyond};
        count_ = static_cast<std::size_t>(end - entries_.data());
    }
    std::span<RunEntry> Entries() { return {entries_.data(), count_}; }
    /// Takes the other's entries; both have the same room.
    void Copy(RunList& other) { End(std::copy_n(other.Begin(), other.count_, Begin())); }

private:
    std::vector<RunEntry> entries_;
    std::size_t count_ = 0;
};

/// What the sweep needs to know of the configuration.
struct SweepRules {
    bool eight = true;
    bool calibrated = false;
    WorldScale world;
    float minArea = 0, maxArea = 0;
    std::int32_t minWidth = 0, maxWidth = 0, minHeight = 0, maxHeight = 0;
    /// Scanning stops once more regions than this are accepted.
    std::int64_t mostAccepted = std::numeric_limits<std::int64_t>::max();

    explicit SweepRules(const BlobConfig& config);
    bool Accept(const BlobNode& node) const;
};

/// A run kept beyond its row.
struct KeptRun {
    BlobNode* node;
    std::int32_t start, end, row, value;
};

/// What the general path writes down beside the regions themselves.
struct SweepRecord {
    std::vector<BlobNode*> created;  ///< every region, also folded and rejected ones, in the order of their first runs
    std::vector<KeptRun> runs;       ///< in raster order
    bool keepRuns = false;
};

/// Regions of some neighbouring rows: a whole image, or one of the strips that are swept side by side. All of it is
/// private to one thread while rows are swept.
///
/// A region that is folded into another one keeps its node, with the way to its survivor, until nothing refers to it;
/// lists of runs are put right at the end of the row. So a row costs its runs, however many regions meet in it.
class BlobStrip {
public:
    /// Forgets the last image and makes room for lists of `listSize` runs.
    void Prepare(std::size_t listSize);
    /// Makes room and forgets what was finished, for a sweep that goes on below the last row.
    void Continue(std::size_t listSize);
    /// From now on runs have values, and join only runs of their own; what the record asks for is written down. With
    /// a record no node is released.
    void SetRecord(SweepRecord* record) { record_ = record; }

    /// Joins the runs of the row below the last one. Regions that no run touches are closed.
    /// @param belowSeam the row begins a strip that lies below another one
    void Join(const RowRuns& runs, std::int32_t row, const SweepRules& rules, bool belowSeam);
    bool IsFull(const SweepRules& rules) const { return accepted_ > rules.mostAccepted; }
    /// Closes all regions of the last row, which is then empty.
    /// @param isImageEnd no strip is left that could go on with them, so that the limits hold
    void CloseLast(const SweepRules& rules, bool isImageEnd);

    /// Joins this strip's first row to the last row of the strip above. Regions of this strip are folded into those
    /// above, and what then ends above `bottom`, this strip's last row, is closed.
    void JoinAbove(BlobStrip& above, std::int32_t bottom, const SweepRules& rules);
    /// Applies the limits to the regions of this strip's first row that nothing above joined in the end.
    void RecheckFirst(const SweepRules& rules);

    std::int64_t Accepted() const { return accepted_; }
    const BlobNode* Finished() const { return finished_; }  ///< in closing order, rejected ones among them
    NodePool& Pool() { return pool_; }

private:
    template <bool eight, bool calibrated, bool recorded>
    void JoinRow(const RowRuns& runs, std::int32_t row, const SweepRules& rules);
    template <bool eight>
    void JoinSeam(RunList& upper);
    void SettleFolded();
    void CloseEnded(std::int32_t row, const SweepRules& rules);
    void Close(BlobNode* node, const SweepRules& rules);

    NodePool pool_;
    RunList previous_, current_, first_;
    BlobNode* folded_ = nullptr;  // of the present row
    BlobNode* finished_ = nullptr;
    BlobNode** finishedEnd_ = &finished_;
    std::int64_t accepted_ = 0;
    SweepRecord* record_ = nullptr;
};
