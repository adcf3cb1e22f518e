#pragma once

#include <QImage>
#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "app/toolkit/ViewRect.h"
#include "foundation/CTivImage.h"

/// The head of a device independent bitmap, 40 bytes.
struct DibHeader {
    std::uint32_t size = 40;
    std::int32_t width = 0;   ///< pixels, rounded up so that a row ends on 32 bits
    std::int32_t height = 0;  ///< minus the image's height: rows run from the top
    std::uint16_t planes = 1;
    std::uint16_t bitCount = 0;  ///< bits a pixel
    std::uint32_t compression = 0;
    std::uint32_t imageSize = 0;
    std::int32_t xPixelsPerMeter = 0;
    std::int32_t yPixelsPerMeter = 0;
    std::uint32_t colorsUsed = 0;
    std::uint32_t colorsImportant = 0;
};
static_assert(sizeof(DibHeader) == 40);

/// One image as a device independent bitmap of 8 bits with a gray table (FormatUByte, FormatUShort), 1 bit
/// (FormatBinary) or 32 bits (FormatRgb). FormatUByte and FormatRgb images whose rows need no padding are not copied:
/// the image must then outlive the bitmap. Of other formats there is a header without bits and no data.
class CDemoDIB : public CTivManager {
public:
    /// @param area the part to convert, in image pixels; its right and bottom are cut to the image. Outside of it owned
    ///        pixels are not set. Null: the whole image
    /// @param significantBits the bits that a FormatUShort image holds, of which the upper 8 are kept; -1 finds out
    CDemoDIB(CTivImage* image, const ViewRect* area, int significantBits);

    const DibHeader& Header() const { return m_header; }
    /// 0x00RRGGBB, header.colorsUsed entries.
    std::span<const std::uint32_t> Table() const { return {m_table.data(), m_header.colorsUsed}; }
    const std::uint8_t* Data() const { return m_data; }  ///< null without memory
    bool IsOwned() const { return m_owned != nullptr; }
    std::int64_t RowBytes() const { return std::int64_t{m_header.width} * m_header.bitCount / 8; }

    /// The bitmap for a painter, as wide as the image and without a copy; valid while this object lives.
    QImage View() const;

    /// @return the position of the highest bit that a FormatUShort image uses in the area, 0 if all of it is black
    static int FindSignificantBits(const CTivImage& image, const ViewRect& area);

private:
    void CreateData(const CTivImage& image, const ViewRect& area, int significantBits);
    static void ShiftWordsToBytes(const CTivImage& image, const ViewRect& area, int significantBits, std::uint8_t* out,
                                  std::int64_t rowBytes);

    DibHeader m_header;
    std::array<std::uint32_t, 256> m_table{};
    std::unique_ptr<std::uint8_t[]> m_owned;
    std::uint8_t* m_data = nullptr;
    int m_imageWidth = 0;
};
