#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "analysis/blob_features_impl.h"
#include "foundation/nur_memory.h"

/// The result of an extraction: records of blobs in their present order, and what belongs to them. Indices run from 0.
/// The memory of records is taken for the whole capacity at once, and reused by each run.
class BlobArray {
public:
    /// @param capacity records; below 0 counts as 0
    /// @param growth step of the array; 0 or less: it never grows
    /// Throws std::bad_alloc.
    BlobArray(std::int32_t capacity, std::int32_t growth);

    /// Sets a capacity right that the last run left elsewhere. Throws std::bad_alloc.
    void Restore();
    void Clear();    ///< forgets all blobs and keeps the records' memory
    void Release();  ///< gives it back, for when memory ran out
    /// Makes room for `count` records, by as many whole steps of growth as it takes.
    /// @return how many there is room for: fewer where the array doesn't grow. Throws std::bad_alloc.
    std::int64_t MakeRoom(std::int64_t count);
    BlobRecord& operator[](std::int64_t i) { return *blobs_[static_cast<std::size_t>(i)]; }

    /// The records in use are the accepted ones, then those still open at a continuous frame's last row.
    void SetUsed(std::int64_t accepted, std::int64_t open);
    std::span<BlobRecord* const> Used() const { return {blobs_.data(), used_}; }
    int GetAccepted() const { return accepted_; }
    /// @return null where i is not 0 to accepted - 1
    const BlobRecord* Find(int i) const;

    bool Grows() const { return growth_ > 0; }
    std::int32_t Capacity() const { return capacity_; }

    /// Orders the records in use by a value, then by last y and last x; valid ones come first.
    void Sort(float (*read)(const BlobRecord&), bool descending);

    std::uint32_t computedGroups_ = 0;  ///< BlobFeatureGroup bits of what is valid
    std::uint32_t keptResults_ = 0;     ///< BlobIntermediate bits

    // What records point to.
    std::vector<BlobRun> runStore_;  ///< blob by blob, each in raster order
    std::vector<std::vector<BlobPoint>> hulls_;
    std::vector<BlobContour> contours_;

private:
    struct Block {
        struct Free {
            void operator()(BlobRecord* records) const { nur_free(records); }
        };
        std::unique_ptr<BlobRecord, Free> records;
        std::int64_t count;
    };
    void AddBlock(std::int64_t count);
    void ListRecords(std::int64_t count);

    std::int32_t requestedCapacity_;
    std::int32_t growth_;
    std::int32_t capacity_ = 0;
    int accepted_ = 0;
    std::size_t used_ = 0;
    std::vector<Block> blocks_;
    std::int64_t listedOfLast_ = 0;  // records of the last block that blobs_ has
    std::int64_t recordCount_ = 0;
    std::vector<BlobRecord*> blobs_;  // as many as were ever in use, so that a large capacity costs nothing
};
