#include "chart/PatchDetector.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include "analysis/CTivBasic.h"
#include "chart/orientation.h"

namespace tonewright {

namespace {

constexpr int kBlobCapacity = 1024;

// The color words: a channel's range and how three channels become an element.
struct Word8 {
    static constexpr CTivData::Format kFormat = CTivData::FormatRgb;
    static constexpr std::uint32_t kFullScale = 0xFF;
    static CTivData Pack(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
        return CTivData::Rgb(static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
                             static_cast<std::uint8_t>(blue));
    }
};
struct Word10 {
    static constexpr CTivData::Format kFormat = CTivData::FormatRgb10;
    static constexpr std::uint32_t kFullScale = 0x3FF;
    static CTivData Pack(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
        return CTivData::Rgb10(red, green, blue);
    }
};
struct Word16 {
    static constexpr CTivData::Format kFormat = CTivData::FormatRgb16;
    static constexpr std::uint32_t kFullScale = 0xFFFF;
    static CTivData Pack(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
        return CTivData::Rgb16(static_cast<std::uint16_t>(red), static_cast<std::uint16_t>(green),
                               static_cast<std::uint16_t>(blue));
    }
};

/// A mean cut to an integer; what is no number (the mean of no pixels) counts as 0.
std::uint32_t truncated(float mean) { return mean > 0 ? static_cast<std::uint32_t>(mean) : 0; }

/// Gathers sorted centres into groups, where a step of `gap` pixels or more opens the next one, and stores the mean of
/// each of the first `limit` groups.
/// @return how many groups were stored
template <class Center, class Store>
int groupCenters(int count, int gap, int limit, Center center, Store store) {
    int group = 0;
    int members = 1;
    float previous = center(0);
    float sum = previous;
    for (int i = 1; i < count; ++i) {
        const float value = center(i);
        if (std::abs(static_cast<int>(value - previous)) < gap) {
            sum += value;
            ++members;
        } else if (group < limit) {
            store(group++, sum / static_cast<float>(members));
            sum = value;
            members = 1;
        }
        previous = value;
    }
    if (group < limit) store(group++, sum / static_cast<float>(members));
    return group;
}

}  // namespace

PatchDetector::PatchDetector() : blob_(kBlobCapacity, kBlobCapacity) {}

bool PatchDetector::DetectPatches(CTivImage& image, const ChartRoi& roi, const ChartSize& chart) {
    if (!image.IsAllocated()) return false;
    blobCount_ = foundRows_ = foundColumns_ = 0;
    overlay_.clear();
    patchGrid_.clear();
    const std::int64_t width = std::int64_t{roi.right} - roi.left;
    const std::int64_t height = std::int64_t{roi.bottom} - roi.top;
    if (chart.Width < 1 || chart.Height < 1) return false;
    const bool hasRoom = chart.Width <= width && chart.Height <= height;
    // Zeros stand before anything is refused, unless there were more of them than any chart or ROI accounts for.
    if (hasRoom || std::max(chart.Width, chart.Height) <= kMostPatchesASide) {
        patchGrid_.assign(static_cast<std::size_t>(chart.Height),
                          std::vector<PatchCell>(static_cast<std::size_t>(chart.Width)));
    }
    if (!hasRoom || !TakeGray(image, roi) || !FindGrid(chart)) return false;
    DrawOverlay(roi);
    return true;
}

bool PatchDetector::TakeGray(CTivImage& image, const ChartRoi& roi) {
    const int width = roi.right - roi.left;
    const int height = roi.bottom - roi.top;
    const CTivRect earlier = image.GetRoi();
    // The region is looked at first: a ROI outside the image shall not cost memory of its size.
    if (!image.SetRoi({roi.left, roi.top, width, height})) return false;
    const bool isRgb = image.GetFormat() == CTivData::FormatRgb;
    const CTivData::Format format = isRgb ? CTivData::FormatUByte : CTivData::FormatUShort;
    const bool serves = gray_.GetWidth() == width && gray_.GetHeight() == height && gray_.GetFormat() == format;
    const bool done = (serves || gray_.Set(width, height, format, nullptr, false)) && gray_.ConvertFormat(image, 0);
    image.SetRoi(earlier);
    return done;
}

bool PatchDetector::FindGrid(const ChartSize& chart) {
    const int cellWidth = gray_.GetWidth() / chart.Width;
    const int cellHeight = gray_.GetHeight() / chart.Height;
    blob_.SetMinWidth(cellWidth / 4);
    blob_.SetMinHeight(cellHeight / 4);
    blob_.SetMaxWidth(cellWidth);
    blob_.SetMaxHeight(cellHeight);
    if (!blob_.Execute(gray_)) return false;
    const int count = blob_.GetNumBlobs();
    if (count < 1) return false;

    std::int64_t widths = 0, heights = 0;
    for (int i = 0; i < count; ++i) {
        widths += blob_.GetBlobWidth(i);
        heights += blob_.GetBlobHeight(i);
    }
    blobCount_ = count;
    patchWidth_ = static_cast<std::int32_t>(widths / (2 * std::int64_t{count}));
    patchHeight_ = static_cast<std::int32_t>(heights / (2 * std::int64_t{count}));

    blob_.SortByFeature(BlobCenterY, kBlobAscending);
    foundRows_ = groupCenters(
        count, patchHeight_, chart.Height, [&](int i) { return blob_.GetCenterY(i); },
        [&](int row, float y) {
            for (PatchCell& cell : patchGrid_[static_cast<std::size_t>(row)]) cell.y = y;
        });
    blob_.SortByFeature(BlobCenterX, kBlobAscending);
    foundColumns_ = groupCenters(
        count, patchWidth_, chart.Width, [&](int i) { return blob_.GetCenterX(i); },
        [&](int column, float x) {
            for (auto& row : patchGrid_) row[static_cast<std::size_t>(column)].x = x;
        });
    return true;
}

void PatchDetector::DrawOverlay(const ChartRoi& roi) {
    for (const auto& row : patchGrid_) {
        for (const PatchCell& cell : row) {
            overlay_.push_back({static_cast<int>(cell.x) - patchWidth_ / 2 + roi.left,
                                static_cast<int>(cell.y) - patchHeight_ / 2 + roi.top, patchWidth_, patchHeight_});
        }
    }
}

template <class Word>
PatchColors PatchDetector::Measure(CTivImage& image, const ChartRoi& roi, const ChartSize& chart) {
    PatchColors result;
    const std::int64_t count = std::int64_t{std::max(chart.Width, 0)} * std::max(chart.Height, 0);
    if (count < 1 || count > std::numeric_limits<int>::max()) return result;
    if (!result.colors.Set(static_cast<int>(count), Word::kFormat, nullptr, true)) return result;
    result.measured = true;

    CTivBasic basic;
    float mean[3] = {};
    float best = 0.0f;
    image.SetRoi({});
    const int rows = std::min(chart.Height, static_cast<int>(patchGrid_.size()));
    for (int r = 0; r < rows; ++r) {
        auto& cells = patchGrid_[static_cast<std::size_t>(r)];
        const int columns = std::min(chart.Width, static_cast<int>(cells.size()));
        for (int c = 0; c < columns; ++c) {
            PatchCell& cell = cells[static_cast<std::size_t>(c)];
            image.SetRoi({roi.left - patchWidth_ / 2 + static_cast<int>(cell.x),
                          roi.top - patchHeight_ / 2 + static_cast<int>(cell.y), patchWidth_, patchHeight_});
            result.measured &= basic.Stats(image, mean, nullptr, nullptr, nullptr);
            std::uint32_t color[3];
            for (int i = 0; i < 3; ++i) color[i] = truncated(mean[i]) & Word::kFullScale;
            const int index = chart.Width * r + c;
            result.colors.SetData(index, Word::Pack(color[0], color[1], color[2]));
            if (std::find(color, color + 3, Word::kFullScale) != color + 3) cell.saturated = result.saturated = true;
            const float sum = mean[0] + mean[1] + mean[2];
            if (sum > best) {
                best = sum;
                result.brightest = index;
            }
        }
    }
    brightest_ = result.brightest;
    return result;
}

PatchColors PatchDetector::MeasureAt(PatchDepth depth, CTivImage& image, const ChartRoi& roi, const ChartSize& chart) {
    const CTivData::Format format = depth == PatchDepth::AsImage ? image.GetFormat() : CTivData::FormatRgb;
    if (format == CTivData::FormatRgb10) return Measure<Word10>(image, roi, chart);
    if (format == CTivData::FormatRgb16) return Measure<Word16>(image, roi, chart);
    return Measure<Word8>(image, roi, chart);
}

PatchColors PatchDetector::GetRawColors(CTivImage& image, const ChartRoi& roi, const ChartSize& chart,
                                        PatchDepth depth) {
    return HasOrientation(chart) ? GetOrientedRawColors(image, roi, chart, depth) : MeasureAt(depth, image, roi, chart);
}

PatchColors PatchDetector::GetOrientedRawColors(CTivImage& image, const ChartRoi& roi, const ChartSize& chart,
                                                PatchDepth depth) {
    const PatchColors found = MeasureAt(depth, image, roi, chart);
    PatchColors ordered = found;
    for (int i = 0; i < found.colors.GetSize(); ++i) {
        ordered.colors.SetData(i, found.colors.GetData(GetPlaceInPicture(chart, found.brightest, i)));
    }
    return ordered;
}

void PatchDetector::GetRoiColor(CTivImage& image, const ChartRoi& roi, unsigned char* bgr, CTivData::Point* centre) {
    image.SetRoi({roi.left, roi.top, roi.right - roi.left + 1, roi.bottom - roi.top + 1});
    *centre = {roi.left + (roi.right - roi.left) / 2, roi.top + (roi.bottom - roi.top) / 2};
    CTivBasic basic;
    float mean[3] = {};
    basic.Stats(image, mean, nullptr, nullptr, nullptr);
    for (int i = 0; i < 3; ++i) bgr[i] = static_cast<unsigned char>(truncated(mean[2 - i]) & 0xFF);
}

}  // namespace tonewright
