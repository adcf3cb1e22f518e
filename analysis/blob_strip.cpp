#include <algorithm>
#include <new>

#include "analysis/blob_strip_impl.h"

namespace {

// A seam that closes a loop counts two less than a row inside a strip does, deliberately (C6).
constexpr std::int32_t kLoopInStrip = 3;
constexpr std::int32_t kLoopAtSeam = 5;

/// The first run of the list above that ends late enough to touch a run from `start` on. Both lists ascend, so that
/// what lies before it is done with.
template <bool eight>
RunEntry* skipEnded(RunEntry* above, std::int32_t start) {
    while (above->end < start + (eight ? 0 : 1)) ++above;
    return above;
}

template <bool eight>
bool startsBefore(const RunEntry* above, std::int32_t end) {
    return above->start < end + (eight ? 1 : 0);
}

// Taken where they are used, once a run, so that they stay in registers.
template <bool calibrated>
RunSums runSums(std::int32_t start, std::int32_t end, std::int32_t row, const SweepRules& rules) {
    return calibrated ? RunSums::Of(start, end, row, rules.world) : RunSums::Of(start, end, row);
}

}  // namespace

SweepRules::SweepRules(const BlobConfig& config)
    : eight(config.connectivity == 1),
      calibrated(config.calibrated),
      world{config.scaleX, config.offsetX, config.scaleY, config.offsetY},
      minArea(config.minArea),
      maxArea(config.maxArea),
      minWidth(config.minWidth),
      maxWidth(config.maxWidth),
      minHeight(config.minHeight),
      maxHeight(config.maxHeight) {}

bool SweepRules::Accept(const BlobNode& node) const {
    const std::int32_t width = node.maxX - node.minX + 1;
    const std::int32_t height = node.maxY - node.minY + 1;
    return width >= minWidth && width <= maxWidth && height >= minHeight && height <= maxHeight &&
           node.area >= minArea && node.area <= maxArea;
}

bool NodePool::Grow() {
    try {
        chunks_.push_back(std::make_unique_for_overwrite<BlobNode[]>(kChunk));
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void BlobStrip::Prepare(std::size_t listSize) {
    pool_.Reset();
    folded_ = nullptr;
    record_ = nullptr;
    Continue(listSize);
    for (RunList* list : {&previous_, &current_, &first_}) list->Clear();
}

void BlobStrip::Continue(std::size_t listSize) {
    for (RunList* list : {&previous_, &current_, &first_}) list->Reserve(listSize);
    finished_ = nullptr;
    finishedEnd_ = &finished_;
    accepted_ = 0;
}

void BlobStrip::Join(const RowRuns& runs, std::int32_t row, const SweepRules& rules, bool belowSeam) {
    // By connectivity, calibration, and whether runs are recorded.
    using Form = void (BlobStrip::*)(const RowRuns&, std::int32_t, const SweepRules&);
    static constexpr Form kForms[2][2][2] = {
        {{&BlobStrip::JoinRow<false, false, false>, &BlobStrip::JoinRow<false, false, true>},
         {&BlobStrip::JoinRow<false, true, false>, &BlobStrip::JoinRow<false, true, true>}},
        {{&BlobStrip::JoinRow<true, false, false>, &BlobStrip::JoinRow<true, false, true>},
         {&BlobStrip::JoinRow<true, true, false>, &BlobStrip::JoinRow<true, true, true>}},
    };
    const Form join = kForms[rules.eight][rules.calibrated][record_ != nullptr];
    (this->*join)(runs, row, rules);
    CloseEnded(row, rules);
    if (folded_) SettleFolded();
    std::swap(previous_, current_);
    if (belowSeam) {
        first_.Copy(previous_);
        for (const RunEntry& entry : first_.Entries()) entry.node->seam = true;
    }
}

template <bool eight, bool calibrated, bool recorded>
void BlobStrip::JoinRow(const RowRuns& runs, std::int32_t row, const SweepRules& rules) {
    RunEntry* above = previous_.Begin();
    RunEntry* out = current_.Begin();
    for (std::size_t k = 0; k < runs.count; ++k) {
        const std::int32_t start = runs.edges[2 * k];
        const std::int32_t end = runs.edges[2 * k + 1];
        const std::int32_t value = recorded && runs.values ? runs.values[k] : 0;
        BlobNode* node = nullptr;
        above = skipEnded<eight>(above, start);
        for (const RunEntry* touching = above; startsBefore<eight>(touching, end); ++touching) {
            BlobNode* found = touching->node->Resolve();
            if (recorded && found->value != value) continue;
            const RunContact contact = RunContact::Of<eight>(start, end, touching->start, touching->end);
            if (!node) {
                found->Add(start, end, row, runSums<calibrated>(start, end, row, rules), contact);
            } else if (found == node) {
                node->CloseLoop(contact, kLoopInStrip);
            } else {
                found->Fold(*node, contact);
                found->lastX = end - 1;
                found->lastY = found->maxY = row;
                node->next = folded_;
                folded_ = node;
            }
            node = found;
        }
        if (!node) {
            node = pool_.Take();
            if (!node) continue;  // no memory: the run is lost
            node->Start(start, end, row, runSums<calibrated>(start, end, row, rules));
            if constexpr (recorded) {
                node->value = value;
                record_->created.push_back(node);
            }
        }
        *out++ = {node, start, end};
        if constexpr (recorded) {
            if (record_->keepRuns) record_->runs.push_back({node, start, end, row, value});
        }
    }
    current_.End(out);
}

void BlobStrip::SettleFolded() {
    for (RunEntry& entry : current_.Entries()) entry.node = entry.node->Resolve();
    while (folded_) {
        BlobNode* node = folded_;
        folded_ = node->next;
        if (!node->seam && !record_) pool_.Release(node);  // the first row's list refers to regions at the seam
    }
}

void BlobStrip::CloseEnded(std::int32_t row, const SweepRules& rules) {
    for (const RunEntry& entry : previous_.Entries()) {
        BlobNode* node = entry.node;
        if (!node->survivor && !node->closed && node->maxY < row) Close(node, rules);
    }
}

void BlobStrip::Close(BlobNode* node, const SweepRules& rules) {
    node->closed = true;
    node->rejected = !node->seam && !rules.Accept(*node);
    if (!node->rejected) {
        node->next = nullptr;
        *finishedEnd_ = node;
        finishedEnd_ = &node->next;
        ++accepted_;
    } else if (!record_) {
        pool_.Release(node);
    }
}

void BlobStrip::CloseLast(const SweepRules& rules, bool isImageEnd) {
    for (const RunEntry& entry : previous_.Entries()) {
        BlobNode* node = entry.node->Resolve();
        if (node->closed) continue;
        if (isImageEnd) node->seam = false;
        Close(node, rules);
    }
    previous_.Clear();
}

template <bool eight>
void BlobStrip::JoinSeam(RunList& upper) {
    RunEntry* above = upper.Begin();
    for (const RunEntry& run : first_.Entries()) {
        above = skipEnded<eight>(above, run.start);
        BlobNode* node = run.node->Resolve();
        for (const RunEntry* touching = above; startsBefore<eight>(touching, run.end); ++touching) {
            BlobNode* found = touching->node->Resolve();
            const RunContact contact = RunContact::Of<eight>(run.start, run.end, touching->start, touching->end);
            if (found == node) {
                node->CloseLoop(contact, kLoopAtSeam);
                continue;
            }
            found->Fold(*node, contact);
            if (node->lastY > found->lastY) {
                found->lastX = node->lastX;
            } else if (node->lastY == found->lastY) {
                found->lastX = std::max(found->lastX, node->lastX);
            }
            found->lastY = std::max(found->lastY, node->lastY);
            found->maxY = std::max(found->maxY, node->maxY);
            if (node->closed) {
                node->rejected = true;
                --accepted_;
            }
            node = found;
        }
    }
}

void BlobStrip::JoinAbove(BlobStrip& above, std::int32_t bottom, const SweepRules& rules) {
    rules.eight ? JoinSeam<true>(above.previous_) : JoinSeam<false>(above.previous_);
    for (const RunEntry& entry : above.previous_.Entries()) {
        BlobNode* node = entry.node->Resolve();
        if (node->closed || node->maxY >= bottom) continue;
        node->seam = false;
        above.Close(node, rules);
    }
}

void BlobStrip::RecheckFirst(const SweepRules& rules) {
    for (const RunEntry& entry : first_.Entries()) {
        BlobNode* node = entry.node->Resolve();
        if (!node->closed || !node->seam || node->rejected || rules.Accept(*node)) continue;
        node->rejected = true;
        --accepted_;
    }
}
