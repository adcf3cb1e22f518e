#include "app/view/CDemoDIB.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

#include "foundation/nur_image.h"

namespace {

struct BitmapKind {
    CTivData::Format format;
    std::uint16_t bitCount;
    std::uint32_t tableSize;
};
constexpr BitmapKind kKinds[] = {
    {CTivData::FormatUByte, 8, 256},
    {CTivData::FormatUShort, 8, 256},
    {CTivData::FormatBinary, 1, 2},
    {CTivData::FormatRgb, 32, 0},
};

/// Images keep the first pixel of a byte in its lowest bit, bitmaps in its highest.
constexpr auto kReversedBits = [] {
    std::array<std::uint8_t, 256> table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            if (byte & 1u << bit) table[byte] = static_cast<std::uint8_t>(table[byte] | 0x80u >> bit);
        }
    }
    return table;
}();

int roundedUp(int value, int unit) { return (value + unit - 1) / unit * unit; }

}  // namespace

CDemoDIB::CDemoDIB(CTivImage* image, const ViewRect* area, int significantBits) {
    const CTivData::Format format = image->GetFormat();
    m_imageWidth = image->GetWidth();
    m_header.height = -image->GetHeight();
    const auto* kind = std::find_if(std::begin(kKinds), std::end(kKinds), [&](auto& k) { return k.format == format; });
    if (kind == std::end(kKinds) || !image->IsAllocated()) return;
    m_header.bitCount = kind->bitCount;
    m_header.width = roundedUp(m_imageWidth, 32 / kind->bitCount);
    m_header.colorsUsed = m_header.colorsImportant = kind->tableSize;
    for (std::uint32_t i = 0; i < kind->tableSize; ++i) m_table[i] = i * (255 / (kind->tableSize - 1)) * 0x010101u;

    const bool wraps = format == CTivData::FormatUByte || format == CTivData::FormatRgb;
    if (wraps && m_header.width == m_imageWidth) {
        m_data = static_cast<std::uint8_t*>(image->GetData());
        return;
    }
    const ViewRect whole{0, 0, m_imageWidth, image->GetHeight()};
    ViewRect part = area ? *area : whole;
    part = {std::max(part.left, 0), std::max(part.top, 0), std::min(part.right, whole.right),
            std::min(part.bottom, whole.bottom)};
    CreateData(*image, part, significantBits);
}

void CDemoDIB::CreateData(const CTivImage& image, const ViewRect& area, int significantBits) {
    const std::int64_t rowBytes = RowBytes();
    try {
        m_owned = std::make_unique_for_overwrite<std::uint8_t[]>(static_cast<std::size_t>(rowBytes * -m_header.height));
    } catch (const std::bad_alloc&) {
        ReportError("CDemoDIB::CreateData => cannot allocate DIB data");
        return;
    }
    m_data = m_owned.get();
    if (area.IsEmpty()) return;
    const NurImage& record = *image.GetRecord();
    if (record.format == CTivData::FormatUShort) {
        ShiftWordsToBytes(image, area, significantBits, m_data, rowBytes);
        return;
    }
    for (int y = area.top; y < area.bottom; ++y) {
        const std::uint8_t* from = record.Row(y);
        std::uint8_t* to = m_data + y * rowBytes;
        if (record.format == CTivData::FormatUByte) {
            std::memcpy(to + area.left, from + area.left, static_cast<std::size_t>(area.Width()));
        } else {
            std::transform(from + area.left / 8, from + (area.right + 7) / 8, to + area.left / 8,
                           [](std::uint8_t byte) { return kReversedBits[byte]; });
        }
    }
}

int CDemoDIB::FindSignificantBits(const CTivImage& image, const ViewRect& area) {
    const NurImage& record = *image.GetRecord();
    std::uint16_t used = 0;  // the highest bit of all values put together is the highest bit of the greatest
    for (int y = area.top; y < area.bottom && !(used & 0x8000); ++y) {
        const auto* row = record.Row<const std::uint16_t>(y);
        for (int x = area.left; x < area.right; ++x) used = static_cast<std::uint16_t>(used | row[x]);
    }
    return std::bit_width(used);
}

void CDemoDIB::ShiftWordsToBytes(const CTivImage& image, const ViewRect& area, int significantBits, std::uint8_t* out,
                                 std::int64_t rowBytes) {
    const int bits = significantBits < 0 ? FindSignificantBits(image, area) : significantBits;
    const int shift = std::clamp(bits - 8, 0, 16);
    const NurImage& record = *image.GetRecord();
    for (int y = area.top; y < area.bottom; ++y) {
        const auto* from = record.Row<const std::uint16_t>(y);
        std::uint8_t* to = out + y * rowBytes;
        for (int x = area.left; x < area.right; ++x) to[x] = static_cast<std::uint8_t>(from[x] >> shift);
    }
}

QImage CDemoDIB::View() const {
    if (!m_data) return {};
    const QImage::Format format = m_header.bitCount == 32  ? QImage::Format_RGB32
                                  : m_header.bitCount == 8 ? QImage::Format_Indexed8
                                                           : QImage::Format_Mono;
    // Not the constructor for constant data: with it, setting the table would copy the pixels.
    QImage view(m_data, m_imageWidth, -m_header.height, RowBytes(), format);
    QList<QRgb> colors;
    for (const std::uint32_t color : Table()) colors.append(0xFF000000u | color);
    if (!colors.isEmpty()) view.setColorTable(colors);
    return view;
}
