#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

/// Maps pixels to world coordinates within the sums of runs.
struct WorldScale {
    double scaleX = 1.0, offsetX = 0.0, scaleY = 1.0, offsetY = 0.0;

    double PixelArea() const { return scaleX * scaleY; }
};

/// What a row of pixels adds to a region: its area and five sums over the pixels' x and y, in float64. x is doubled and
/// x squared sextupled, so that a run's sums are whole-number polynomials of its ends.
struct RunSums {
    float area;
    double twiceX, y, sixXX, yy, twiceXY;

    static RunSums Of(std::int32_t start, std::int32_t end, std::int32_t row) {
        const double s = start, e = end, n = e - s, at = row;
        const double twiceX = (e - 1) * e - (s - 1) * s;
        const double sixXX = (2 * e - 1) * e * (e - 1) - (2 * s - 1) * s * (s - 1);
        return {static_cast<float>(n), twiceX, n * at, sixXX, n * at * at, twiceX * at};
    }
    /// The same over world coordinates: x becomes x a + b, y becomes y c + d. The area is one in world units.
    static RunSums Of(std::int32_t start, std::int32_t end, std::int32_t row, const WorldScale& world) {
        const RunSums pixels = Of(start, end, row);
        const double a = world.scaleX, b = world.offsetX, n = end - start;
        const double y = row * world.scaleY + world.offsetY;
        const double twiceX = a * pixels.twiceX + 2 * n * b;
        const double sixXX = a * a * pixels.sixXX + 6 * a * b * pixels.twiceX + 6 * n * b * b;
        return {static_cast<float>(n * world.PixelArea()), twiceX, n * y, sixXX, n * y * y, twiceX * y};
    }
};

/// How two runs of neighbouring rows touch: what their common border takes off the counts.
struct RunContact {
    std::int32_t term;
    std::int32_t diagonal;  ///< ends that don't stand above each other

    /// @param start, end the run; above, aboveEnd the one of the row above. Ends are one past the last pixel
    template <bool eight>
    static RunContact Of(std::int32_t start, std::int32_t end, std::int32_t above, std::int32_t aboveEnd) {
        const std::int32_t overlap =
            2 * std::min(std::min(end - start, aboveEnd - above), std::min(aboveEnd - start, end - above));
        const std::int32_t diagonal = (start != above) + (end != aboveEnd);
        return {eight ? overlap - 2 + diagonal : overlap - 2, diagonal};
    }
};

/// A region while it grows. It holds sums, not pixels. Without initial values, since a chunk of nodes is only touched
/// as its nodes are used.
struct BlobNode {
    BlobNode* next;      ///< in the free list or in the list of finished regions
    BlobNode* survivor;  ///< where this one was folded into
    double twiceX, y, sixXX, yy, twiceXY;
    float area;
    std::int32_t holes, runs, rawBorder, diagonalBorder, horizontalBorder, verticalBorder;
    std::int32_t lastX, lastY, minX, maxX, minY, maxY;
    std::int32_t value;  ///< of the pixels, where regions of several values are told apart
    std::int32_t index;  ///< of its record, once the sweep is over
    bool closed, rejected;
    bool seam;  ///< reaches a seam between strips, so that it may go on there; the limits wait

    /// Starts with its first run, first pixel `start`, one past the last `end`.
    void Start(std::int32_t start, std::int32_t end, std::int32_t row, const RunSums& sums) {
        next = survivor = nullptr;
        twiceX = sums.twiceX, y = sums.y, sixXX = sums.sixXX, yy = sums.yy, twiceXY = sums.twiceXY;
        area = sums.area;
        holes = 0, runs = 1;
        rawBorder = 2 * (end - start) - 1;
        diagonalBorder = 0, horizontalBorder = 2 * (end - start), verticalBorder = 2;
        minX = start, lastX = maxX = end - 1;
        lastY = minY = maxY = row;
        value = 0;
        closed = rejected = seam = false;
    }
    /// Takes in a run that touches one of its own on the row above.
    void Add(std::int32_t start, std::int32_t end, std::int32_t row, const RunSums& sums, RunContact contact) {
        twiceX += sums.twiceX, y += sums.y, sixXX += sums.sixXX, yy += sums.yy, twiceXY += sums.twiceXY;
        area += sums.area;
        runs += 1;
        const std::int32_t border = 2 * (end - start) - contact.term;
        diagonalBorder += contact.diagonal;
        verticalBorder += 2 - contact.diagonal;
        rawBorder += border;
        horizontalBorder += border - 2;
        minX = std::min(minX, start);
        maxX = std::max(maxX, end - 1);
        lastX = end - 1;
        lastY = maxY = row;
    }
    /// A run that belongs to it already touches it once more, which closes a loop.
    void CloseLoop(RunContact contact, std::int32_t correction) {
        diagonalBorder += contact.diagonal;
        verticalBorder -= contact.diagonal;
        holes += 1;
        rawBorder -= contact.term - correction;
        horizontalBorder -= contact.term - correction + 5;
    }
    /// Takes in another region that touches it. The caller sees to last x and y, max y and the references.
    void Fold(BlobNode& other, RunContact contact) {
        other.diagonalBorder += contact.diagonal;
        other.verticalBorder -= contact.diagonal;
        twiceX += other.twiceX, y += other.y, sixXX += other.sixXX, yy += other.yy, twiceXY += other.twiceXY;
        area += other.area;
        holes += other.holes;
        runs += other.runs;
        diagonalBorder += other.diagonalBorder;
        verticalBorder += other.verticalBorder;
        rawBorder += other.rawBorder - (contact.term - 1);
        horizontalBorder += other.horizontalBorder - (contact.term - 1) - 3;
        minX = std::min(minX, other.minX);
        maxX = std::max(maxX, other.maxX);
        minY = std::min(minY, other.minY);
        seam |= other.seam;
        other.survivor = this;
    }
    /// Follows the folding to the region that is left, and shortens the way for the next call.
    BlobNode* Resolve() {
        BlobNode* node = this;
        while (node->survivor) {
            if (node->survivor->survivor) node->survivor = node->survivor->survivor;
            node = node->survivor;
        }
        return node;
    }
};

/// Nodes in chunks of 1000; addresses stay. A node comes from the free list or else from the chunks in order.
class NodePool {
public:
    /// @return null without memory
    BlobNode* Take() {
        if (free_) {
            BlobNode* node = free_;
            free_ = node->next;
            return node;
        }
        if (used_ == chunks_.size() * kChunk && !Grow()) return nullptr;
        const std::size_t at = used_++;
        return &chunks_[at / kChunk][at % kChunk];
    }
    void Release(BlobNode* node) {
        node->next = free_;
        free_ = node;
    }
    /// Takes all nodes back. Keeps the memory of a usual image and gives the rest away.
    void Reset() {
        chunks_.resize(std::min(chunks_.size(), kKeptChunks));
        used_ = 0;
        free_ = nullptr;
    }

private:
    bool Grow();

    static constexpr std::size_t kChunk = 1000;
    static constexpr std::size_t kKeptChunks = 100;

    std::vector<std::unique_ptr<BlobNode[]>> chunks_;
    std::size_t used_ = 0;
    BlobNode* free_ = nullptr;
};
