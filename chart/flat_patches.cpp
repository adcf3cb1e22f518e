#include "chart/flat_patches_impl.h"

#include <algorithm>
#include <cmath>

#include "analysis/CTivBlob.h"

namespace tonewright {

namespace {

// What counts as flat: a change of less than this many toned levels over two pixels. The low one parts dark patches
// from the dark card in clean pictures, the high ones bear noise.
constexpr std::uint8_t kFlatLevels[] = {5, 10, 20, 36};

constexpr float kMinArea = 12;          // pixels: a patch of ten pixels less its blurred edges
constexpr double kMinFill = 0.72;       // area over that of the parallelogram with the same second moments
constexpr double kMaxFill = 1.12;       // an ellipse has 1.05
constexpr double kMinAxisRatio = 0.28;  // a chart tilted twice by 40 degrees, as in a photograph of a photograph
constexpr double kRim = 1;              // pixels that the change at an edge takes from a patch, at each side

/// @return a patch of area 0 where the moments aren't a parallelogram's
FlatPatch toPatch(const BlobRecord& blob) {
    const double n = blob.area;
    const double mx = blob.sumX / n, my = blob.sumY / n;
    // A pixel is a square, which has a moment of its own.
    const double xx = blob.sumXX / n - mx * mx + 1.0 / 12, yy = blob.sumYY / n - my * my + 1.0 / 12;
    const double xy = blob.sumXY / n - mx * my;
    const double determinant = xx * yy - xy * xy;
    if (!(determinant > 0)) return {};
    const double fill = n / (12 * std::sqrt(determinant));
    const double mid = (xx + yy) / 2, split = std::hypot((xx - yy) / 2, xy);
    const double longer = std::sqrt(12 * (mid + split)), shorter = std::sqrt(12 * std::max(mid - split, 1e-9));
    const double ratio = shorter / longer;
    if (fill < kMinFill || fill > kMaxFill || ratio < kMinAxisRatio) return {};
    FlatPatch patch;
    patch.center = {mx, my};
    patch.axisRatio = ratio;
    // One over the sides, along the axes of the moments.
    const double a = 1 / (longer + 2 * kRim), b = 1 / (shorter + 2 * kRim);
    patch.area = 1 / (a * b);
    const double cos2 = split > 0 ? (xx - yy) / 2 / split : 1, sin2 = split > 0 ? xy / split : 0;
    patch.whiten = {(a + b) / 2 + (a - b) / 2 * cos2, (a - b) / 2 * sin2, (a + b) / 2 - (a - b) / 2 * cos2};
    return patch;
}

bool isSame(const FlatPatch& a, const FlatPatch& b) {
    const ChartPoint seen = a.Seen(b.center);
    return seen.x * seen.x + seen.y * seen.y < 0.12;
}

}  // namespace

std::vector<FlatPatch> FindFlatPatches(CTivImage& change, int maxSide, std::size_t maxPatches) {
    std::vector<FlatPatch> patches;
    if (!change.IsAllocated()) return patches;
    CTivBlob blobs(1024, 1024);
    BlobConfig& config = *blobs.GetConfig();
    config.connectivity = 0;
    config.background = 255;  // blobs are what stays below the level
    config.thresholdSource = 0;
    config.minArea = kMinArea;
    config.maxArea = static_cast<float>(maxSide) * static_cast<float>(maxSide);
    config.maxWidth = config.maxHeight = 2 * maxSide;
    std::size_t allowed = 0;
    for (const std::uint8_t level : kFlatLevels) {
        allowed += maxPatches;
        config.thresholds[0] = level;
        if (!blobs.Execute(change)) continue;
        const std::size_t earlier = patches.size();
        for (int i = 0; i < blobs.GetNumBlobs() && patches.size() < allowed; ++i) {
            const FlatPatch patch = toPatch(*blobs.GetBlob(i));
            if (patch.area <= 0) continue;
            // A stricter level's shape is the truer one; the later levels add what it did not have.
            const auto end = patches.begin() + static_cast<std::ptrdiff_t>(earlier);
            const bool isKnown =
                std::any_of(patches.begin(), end, [&](const FlatPatch& known) { return isSame(known, patch); });
            if (!isKnown) patches.push_back(patch);
        }
    }
    return patches;
}

void Halve(std::vector<FlatPatch>& patches) {
    for (FlatPatch& patch : patches) {
        patch.center = {(patch.center.x - 0.5) / 2, (patch.center.y - 0.5) / 2};
        patch.area /= 4;
        for (double& entry : patch.whiten) entry *= 2;
    }
}

}  // namespace tonewright
