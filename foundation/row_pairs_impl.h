#pragma once

#include "foundation/nur_image.h"

/// Calls work(source row, destination row, pixels) for each row of the source's ROI, from the ROI origin of both. Where
/// neither leaves a gap between its rows, the whole ROI is one row. Binary images go byte by byte, so they are not for
/// this.
template <class Work>
void ForEachRowPair(const NurImage& source, NurImage& destination, Work work) {
    if (!source.data || !destination.data) return;
    auto width = static_cast<std::size_t>(source.roi.width);
    int height = source.roi.height;
    if (source.roi.width == source.width && source.width == destination.width) {
        width *= static_cast<std::size_t>(height);
        height = 1;
    }
    for (int y = 0; y < height && width > 0; ++y) work(source.RoiRow(y), destination.RoiRow(y), width);
}
