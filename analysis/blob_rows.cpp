#include <algorithm>
#include <span>

#include "analysis/blob_rows_impl.h"
#include "primitives/acceleration.h"
#include "primitives/wide.h"

using namespace tonewright;

namespace {

// A word of coded runs.
constexpr std::uint32_t kLastOfRow = 1u << 31;
constexpr std::uint32_t kWithoutValue = 1u << 30;
constexpr std::int32_t lengthOf(std::uint32_t run) { return static_cast<std::int32_t>(run & 0xFFFF); }
constexpr std::int32_t valueOf(std::uint32_t run) { return static_cast<std::int32_t>(run >> 16 & 0xFF); }

std::span<const std::uint32_t> wordsOf(const NurImage& buffer) {
    if (!buffer.data || buffer.format != CTivData::FormatUInt) return {};
    const auto count = static_cast<std::size_t>(std::int64_t{buffer.width} * buffer.height);
    return {static_cast<const std::uint32_t*>(buffer.data), count};
}

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

CodedRows::Form CodedRows::Check(const NurImage& buffer) {
    const std::span words = wordsOf(buffer);
    if (words.empty()) return kBroken;
    const CTivRect size = Size(buffer);
    std::size_t at = 1;
    for (std::int32_t y = 0; y < size.height; ++y) {
        std::int64_t x = 0;
        bool isLast = false;
        for (; !isLast && at < words.size(); ++at) {
            if (words[at] & kWithoutValue) return kBinary;
            x += lengthOf(words[at]);
            isLast = (words[at] & kLastOfRow) != 0;
        }
        if (!isLast || x != size.width) return kBroken;
    }
    return kWhole;
}

CTivRect CodedRows::Size(const NurImage& buffer) {
    const std::uint32_t head = wordsOf(buffer).front();
    return {0, 0, static_cast<std::int32_t>(head & 0xFFFF), static_cast<std::int32_t>(head >> 16)};
}

CodedRows::CodedRows(const NurImage& buffer, std::uint16_t background)
    : next_(wordsOf(buffer).data() + 1), background_(background) {
    edges_.resize(2 * valueListSize(Size(buffer).width));
    values_.resize(valueListSize(Size(buffer).width));
}

RowRuns CodedRows::Read(std::int32_t) {
    std::size_t count = 0;
    std::int32_t x = 0;
    for (bool isLast = false; !isLast; ++next_) {
        isLast = (*next_ & kLastOfRow) != 0;
        const std::int32_t start = x;
        x += lengthOf(*next_);
        if (x == start || valueOf(*next_) == background_) continue;
        const bool goesOn = count > 0 && edges_[2 * count - 1] == start && values_[count - 1] == valueOf(*next_);
        if (!goesOn) {
            edges_[2 * count] = start;
            values_[count++] = valueOf(*next_);
        }
        edges_[2 * count - 1] = x;
    }
    return {edges_.data(), values_.data(), count};
}
