#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "analysis/blob_array_impl.h"

namespace {

// A record with what its order depends on, so that sorting doesn't read records.
struct SortKey {
    float value;
    std::int32_t lastY, lastX;
    BlobRecord* record;

    // Total also where a value is not a number, which counts as the lowest.
    bool operator<(const SortKey& other) const {
        const bool isNone = std::isnan(value);
        const bool otherIsNone = std::isnan(other.value);
        if (isNone != otherIsNone) return isNone;
        if (!isNone && value != other.value) return value < other.value;
        if (lastY != other.lastY) return lastY < other.lastY;
        return lastX < other.lastX;
    }
};

}  // namespace

BlobArray::BlobArray(std::int32_t capacity, std::int32_t growth)
    : requestedCapacity_(std::max(capacity, 0)), growth_(std::max(growth, 0)) {
    Restore();
}

void BlobArray::Restore() {
    if (Grows() && capacity_ >= requestedCapacity_) return;
    AddBlock(requestedCapacity_ - recordCount_);
    capacity_ = requestedCapacity_;
}

void BlobArray::Release() {
    Clear();
    blobs_ = {};
    blocks_.clear();
    listedOfLast_ = recordCount_ = 0;
    capacity_ = 0;
}

void BlobArray::AddBlock(std::int64_t count) {
    if (count <= 0) return;
    void* memory = nur_alloc(static_cast<std::uint64_t>(count) * sizeof(BlobRecord), true);
    if (!memory) throw std::bad_alloc();
    ListRecords(recordCount_);  // the list goes through the blocks in order
    blocks_.push_back({std::unique_ptr<BlobRecord, Block::Free>(static_cast<BlobRecord*>(memory)), count});
    listedOfLast_ = 0;
    recordCount_ += count;
}

void BlobArray::ListRecords(std::int64_t count) {
    while (static_cast<std::int64_t>(blobs_.size()) < count) {
        blobs_.push_back(blocks_.back().records.get() + listedOfLast_);
        ++listedOfLast_;
    }
}

void BlobArray::Clear() {
    accepted_ = 0;
    used_ = 0;
    computedGroups_ = keptResults_ = 0;
    runStore_.clear();
    hulls_.clear();
    contours_.clear();
}

std::int64_t BlobArray::MakeRoom(std::int64_t count) {
    if (count > capacity_ && Grows()) {
        const std::int64_t steps = (count - capacity_ + growth_ - 1) / growth_;
        const std::int64_t grown = std::min<std::int64_t>(capacity_ + steps * growth_, std::numeric_limits<int>::max());
        AddBlock(grown - recordCount_);
        capacity_ = static_cast<std::int32_t>(grown);
    }
    count = std::min<std::int64_t>(count, capacity_);
    ListRecords(count);
    return count;
}

void BlobArray::SetUsed(std::int64_t accepted, std::int64_t open) {
    accepted_ = static_cast<int>(accepted);
    used_ = static_cast<std::size_t>(accepted + open);
}

const BlobRecord* BlobArray::Find(int i) const {
    return i >= 0 && i < accepted_ ? blobs_[static_cast<std::size_t>(i)] : nullptr;
}

void BlobArray::Sort(float (*read)(const BlobRecord&), bool descending) {
    std::vector<SortKey> heap;
    heap.reserve(used_);
    for (BlobRecord* record : Used()) heap.push_back({read(*record), record->lastY, record->lastX, record});
    const auto before = [descending](const SortKey& a, const SortKey& b) { return descending ? b < a : a < b; };
    std::make_heap(heap.begin(), heap.end(), before);
    std::sort_heap(heap.begin(), heap.end(), before);
    auto out = blobs_.begin();
    for (const bool valid : {true, false}) {
        for (const SortKey& key : heap) {
            if ((key.record->status == kBlobValid) == valid) *out++ = key.record;
        }
    }
}
