#include "app/view/nearest_stretch.h"

#include <algorithm>
#include <cstring>

namespace {

using Places = std::vector<std::int32_t>;

/// Fills `rows.size()` rows of the result by `fill(source row, out)`; rows that show the same source are copied.
template <class Out, class Fill>
void stretchRows(const Places& rows, std::size_t width, Out* out, std::size_t pitch, Fill fill) {
    for (std::size_t y = 0; y < rows.size(); ++y, out += pitch) {
        if (y > 0 && rows[y] == rows[y - 1]) {
            std::memcpy(out, out - pitch, width * sizeof(Out));
        } else {
            fill(rows[y], out);
        }
    }
}

template <class Element>
void pick(const NurImage& image, const Places& columns, const Places& rows, std::uint8_t* bytes) {
    const std::size_t width = columns.size();
    stretchRows(rows, width, reinterpret_cast<Element*>(bytes), width, [&](std::int32_t row, Element* out) {
        const auto* from = image.Row<const Element>(row);
        for (std::size_t x = 0; x < width; ++x) out[x] = from[columns[x]];
    });
}

}  // namespace

std::vector<std::int32_t> NearestPlaces(std::int32_t begin, std::int32_t size, std::int32_t count) {
    // In the float32 steps of ViewGeometry::ClientToImage, so that the pixel that is read is the one that is seen.
    const float step = static_cast<float>(size) / static_cast<float>(count);
    Places places(static_cast<std::size_t>(count));
    std::int32_t i = 0;
    for (std::int32_t& place : places) {
        place = begin + std::min(static_cast<std::int32_t>(step * static_cast<float>(i++)), size - 1);
    }
    return places;
}

void PickPixels(const NurImage& image, const Places& columns, const Places& rows, std::uint8_t* out) {
    switch (CTivData::GetFormatSize(image.format)) {
        case 1:
            return pick<std::uint8_t>(image, columns, rows, out);
        case 2:
            return pick<std::uint16_t>(image, columns, rows, out);
        case 4:
            return pick<std::uint32_t>(image, columns, rows, out);
        default:
            return;
    }
}

void StretchNearest(const QImage& source, const ViewRect& part, QImage* destination) {
    const Places columns = NearestPlaces(part.left, part.Width(), destination->width());
    const Places rows = NearestPlaces(part.top, part.Height(), destination->height());
    auto* out = reinterpret_cast<std::uint32_t*>(destination->bits());
    const auto pitch = static_cast<std::size_t>(destination->bytesPerLine()) / sizeof(std::uint32_t);
    const QList<QRgb> table = source.colorTable();
    const std::size_t width = columns.size();
    const auto stretch = [&](auto pixel) {
        stretchRows(rows, width, out, pitch, [&](std::int32_t row, std::uint32_t* to) {
            const uchar* from = source.constScanLine(row);
            for (std::size_t x = 0; x < width; ++x) to[x] = pixel(from, columns[x]);
        });
    };
    switch (source.format()) {
        case QImage::Format_Indexed8:
            return stretch([colors = table.constData()](const uchar* row, int x) { return colors[row[x]]; });
        case QImage::Format_Mono:
            return stretch([colors = table.constData()](const uchar* row, int x) {
                return colors[row[x / 8] >> (7 - x % 8) & 1];
            });
        default:
            return stretch(
                [](const uchar* row, int x) { return reinterpret_cast<const std::uint32_t*>(row)[x] | 0xFF000000u; });
    }
}
