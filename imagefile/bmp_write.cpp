#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "foundation/SafeFile.h"
#include "foundation/cast_image.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "imagefile/bit_order_impl.h"
#include "imagefile/bmp.h"
#include "imagefile/bmp_impl.h"
#include "primitives/color_rows.h"

using namespace tonewright;

namespace {

using D = CTivData;

constexpr std::int64_t kBlockBytes = 64 << 10;  // stays in the cache between the file and the image
constexpr std::int32_t kPixelsPerMeter = 2925;

struct ImageFree {
    void operator()(NurImage* image) const { nur_image_free(image); }
};

// What the record's format becomes in the file.
struct Layout {
    int bits;
    std::uint32_t compression;
    std::vector<std::uint32_t> palette;  // or the three masks
    void (*row)(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count);
};

void copyWords(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count) {
    std::memcpy(bytes, pixels, 4 * count);
}

void copyBytes(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count) {
    std::memcpy(bytes, pixels, count);
}

void reverseBits(const std::uint8_t* pixels, std::uint8_t* bytes, std::size_t count) {
    std::transform(pixels, pixels + (count + 7) / 8, bytes, reversedBits);
}

Layout layoutOf(D::Format format) {
    if (format == D::FormatRgb) return {24, BmpPlain, {}, PackBgr};
    if (format == D::FormatRgb10) {
        return {32, BmpBitfields, {kBmpTenBitMasks.begin(), kBmpTenBitMasks.end()}, copyWords};
    }
    if (format == D::FormatBinary) return {1, BmpPlain, {0, 0xFFFFFF}, reverseBits};
    std::vector<std::uint32_t> grays(256);
    for (std::uint32_t i = 0; i < 256; ++i) grays[i] = i * 0x010101;
    return {8, BmpPlain, grays, copyBytes};
}

BmpHead headOf(std::int32_t width, std::int32_t height, const Layout& layout) {
    const std::int64_t imageBytes = bmpRowBytes(width, layout.bits) * height;
    const auto offset = static_cast<std::uint32_t>(4 * layout.palette.size() + sizeof(BmpHead));
    BmpHead head{};
    std::memcpy(head.signature, "BM", 2);
    head.fileBytes = static_cast<std::uint32_t>(offset + imageBytes);
    head.pixelOffset = offset;
    head.headBytes = kBmpInfoBytes;
    head.width = width;
    head.height = height;
    head.planes = 1;
    head.bitsPerPixel = static_cast<std::uint16_t>(layout.bits);
    head.compression = layout.compression;
    head.imageBytes = static_cast<std::uint32_t>(imageBytes);
    head.xPixelsPerMeter = head.yPixelsPerMeter = kPixelsPerMeter;
    // Only masks are counted here, deliberately (C44).
    head.colorsUsed = layout.compression == BmpBitfields ? 3 : 0;
    return head;
}

// Rows go out from the bottom upward, gathered into blocks.
void writeRows(std::ostream& stream, const NurImage& image, const Layout& layout) {
    const std::int64_t rowBytes = bmpRowBytes(image.roi.width, layout.bits);
    const std::int64_t rowsABlock =
        std::clamp<std::int64_t>(kBlockBytes / std::max<std::int64_t>(rowBytes, 1), 1, std::max(image.roi.height, 1));
    std::vector<std::uint8_t> block(static_cast<std::size_t>(rowBytes * rowsABlock));
    for (std::int64_t done = 0; done < image.roi.height; done += rowsABlock) {
        const std::int64_t rows = std::min<std::int64_t>(rowsABlock, image.roi.height - done);
        for (std::int64_t k = 0; k < rows; ++k) {
            const auto y = static_cast<std::int32_t>(image.roi.height - 1 - done - k);
            layout.row(image.RoiRow<const std::uint8_t>(y), block.data() + k * rowBytes,
                       static_cast<std::size_t>(image.roi.width));
        }
        stream.write(reinterpret_cast<const char*>(block.data()), rows * rowBytes);
    }
}

}  // namespace

BmpHead bmpColorHead(std::int32_t width, std::int32_t height) { return headOf(width, height, layoutOf(D::FormatRgb)); }

int writeBMP(const char* path, const NurImage* record) {
    SafeOutputFile file(path);
    if (!file.IsOpen()) return nur_refuse_format("writeBMP: cannot write to file %s\n", path);
    if (record->format == D::FormatComplex) {
        return nur_refuse_format("writeBMP: cannot write image type %s as BMP.\n", nur_type_name(record->format));
    }
    NurImage image = *record;
    NurImage gray;
    std::unique_ptr<NurImage, ImageFree> grayOwner;
    if (!nur_is_type(record->format, {D::FormatRgb, D::FormatRgb10, D::FormatBinary, D::FormatUByte})) {
        if (nur_output_image(&gray, D::FormatUByte, record->roi.width, record->roi.height, "WriteBMP") != 0) return 1;
        grayOwner.reset(&gray);
        if (castImage(record, &gray, CAST_UBYTE, 1) != 0) return 1;
        image = gray;
    }
    const Layout layout = layoutOf(image.format);
    const BmpHead head = headOf(image.roi.width, image.roi.height, layout);
    file.Stream().write(reinterpret_cast<const char*>(&head), sizeof head);
    file.Stream().write(reinterpret_cast<const char*>(layout.palette.data()),
                        static_cast<std::streamsize>(4 * layout.palette.size()));
    if (image.data) writeRows(file.Stream(), image, layout);
    return file.Commit() ? 0 : nur_refuse_format("writeBMP: cannot write to file %s\n", path);
}
