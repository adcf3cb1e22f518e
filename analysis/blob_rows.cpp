#include <algorithm>

#include "analysis/blob_rows_impl.h"
#include "primitives/acceleration.h"
#include "primitives/wide.h"

namespace {

/// Writes the x of each change between background and foreground, the row beginning and ending in background.
std::size_t findEdges(const std::vector<std::uint64_t>& words, std::int32_t first, std::int32_t width,
                      std::int32_t* edges) {
    std::int32_t* out = edges;
    std::uint64_t carry = 0;
    for (std::size_t w = 0; w < words.size(); ++w) {
        const std::uint64_t bits = words[w];
        std::uint64_t changes = bits ^ (bits << 1 | carry);
        carry = bits >> 63;
        const std::int32_t base = first + static_cast<std::int32_t>(64 * w);
        for (; changes != 0; changes &= changes - 1) *out++ = base + std::countr_zero(changes);
    }
    if ((out - edges) % 2 != 0) *out++ = first + width;
    return static_cast<std::size_t>(out - edges);
}

}  // namespace

ForegroundRows::ForegroundRows(const NurImage& image, std::uint16_t background)
    : image_(image), zeros_(background != 0) {
    const bool wide = HasAvx2() && ctiv_GetAccelerationLevel() != 0;
    toWords8_ = wide ? ForegroundWords8Wide : ForegroundWords8Plain;
    toWords16_ = wide ? ForegroundWords16Wide : ForegroundWords16Plain;
    const bool byWords = image.roi.width % 32 == 0 && ctiv_GetAccelerationLevel() != 0;
    toWords1_ = byWords ? ForegroundWords1ByWords : ForegroundWords1ByBytes;
    const auto width = static_cast<std::size_t>(image.roi.width);
    words_.resize(ForegroundWordCount(width));
    edges_.resize(2 * foregroundListSize(image.roi.width));
}

void ForegroundRows::ToWords(std::int32_t rowOfRoi) {
    const auto width = static_cast<std::size_t>(image_.roi.width);
    if (image_.format == CTivData::FormatUShort) {
        toWords16_(image_.RoiRow<const std::uint16_t>(rowOfRoi), width, zeros_, words_.data());
    } else if (image_.format == CTivData::FormatUByte) {
        toWords8_(image_.RoiRow(rowOfRoi), width, zeros_, words_.data());
    } else {
        toWords1_(image_.RoiRow(rowOfRoi), width, zeros_, words_.data());
    }
}

RowRuns ForegroundRows::Read(std::int32_t rowOfRoi) {
    ToWords(rowOfRoi);
    const std::size_t count = findEdges(words_, image_.roi.x, image_.roi.width, edges_.data());
    return {edges_.data(), nullptr, count / 2};
}

template <class T>
ValueRows<T>::ValueRows(const NurImage& image, std::uint16_t background) : image_(image), background_(background) {
    edges_.resize(2 * valueListSize(image.roi.width));
    values_.resize(valueListSize(image.roi.width));
}

template <class T>
RowRuns ValueRows<T>::Read(std::int32_t rowOfRoi) {
    const T* row = image_.RoiRow<const T>(rowOfRoi);
    std::size_t count = 0;
    for (std::int32_t x = 0; x < image_.roi.width;) {
        const std::int32_t start = x;
        const T value = row[x];
        while (x < image_.roi.width && row[x] == value) ++x;
        if (value == background_) continue;
        edges_[2 * count] = image_.roi.x + start;
        edges_[2 * count + 1] = image_.roi.x + x;
        values_[count++] = value;
    }
    return {edges_.data(), values_.data(), count};
}

template class ValueRows<std::uint8_t>;
template class ValueRows<std::uint16_t>;
