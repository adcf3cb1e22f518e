#include <algorithm>
#include <cstring>
#include <fstream>
#include <span>
#include <vector>

#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "imagefile/bit_order_impl.h"
#include "imagefile/bmp.h"
#include "imagefile/bmp_impl.h"
#include "imagefile/bmp_rle_impl.h"
#include "imagefile/most_bytes_impl.h"
#include "primitives/color_rows.h"

using namespace tonewright;

namespace {

using D = CTivData;

constexpr std::int64_t kBlockBytes = 128 << 10;  // stays in the cache between the file and the image
constexpr const char* kReadingBits = "readBMP: error reading bits\n";

struct Palette {
    std::uint32_t colors[256] = {};  // FormatRgb words
    bool isColored = false;
    bool isInverted = false;  // a 1-bit file whose entry 0 is the lighter one
};

// One row of the file's pixels into the record's format; `count` pixels of the record.
using RowReader = void (*)(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count, const Palette& palette);

void binaryRow(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count, const Palette& palette) {
    const std::uint8_t flip = palette.isInverted ? 0xFF : 0;
    for (std::size_t i = 0; i < (count + 7) / 8; ++i) {
        pixels[i] = static_cast<std::uint8_t>(reversedBits(bytes[i]) ^ flip);
    }
    if (count % 8 != 0) pixels[count / 8] &= static_cast<std::uint8_t>((1u << (count % 8)) - 1);
}

template <int kBits>
void paletteRow(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count, const Palette& palette) {
    constexpr unsigned kPerByte = 8 / kBits;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned shift = 8 - kBits - kBits * static_cast<unsigned>(i % kPerByte);
        const std::uint32_t color = palette.colors[bytes[i / kPerByte] >> shift & ((1u << kBits) - 1)];
        std::memcpy(pixels + 4 * i, &color, sizeof color);
    }
}

void grayRow(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count, const Palette&) {
    std::memcpy(pixels, bytes, count);
}

void bgrRow(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count, const Palette&) {
    SpreadBgr(bytes, pixels, count);
}

void wordRow(const std::uint8_t* bytes, std::uint8_t* pixels, std::size_t count, const Palette&) {
    std::memcpy(pixels, bytes, 4 * count);
}

// A bitmap file from its head to its pixels; each step answers 0 or reports.
class BmpReader {
public:
    explicit BmpReader(const char* path) {
        stream_.rdbuf()->pubsetbuf(nullptr, 0);  // reads are large
        stream_.open(path, std::ios::binary);
    }

    int Read(NurImage* record) {
        if (!stream_.is_open() || !ReadSignature()) return nur_refuse("readBMP: cannot read from bitmap file\n");
        if (const int refused = ReadHead()) return refused;
        if (const int refused = ReadMasks()) return refused;
        if (const int refused = ReadPalette()) return refused;
        if (const int refused = ChooseFormat(*record)) return refused;
        if (head_.pixelOffset > position_) Skip(head_.pixelOffset - position_);
        const bool wasEmpty = !record->data;
        int answer = wasEmpty ? 0 : CheckPreallocated(*record);
        if (answer == 0) answer = IsRunLength() ? CheckUnpacked(wasEmpty) : CheckLength();
        if (answer == 0) answer = nur_output_image(record, format_, filledWidth_, filledHeight_, "readBMP", true);
        if (answer == 0) answer = ReadPixels(*record);
        if (answer != 0 && wasEmpty && record->data) nur_image_free(record);
        return answer ? 1 : 0;
    }

private:
    bool Take(void* target, std::size_t bytes) {
        stream_.read(static_cast<char*>(target), static_cast<std::streamsize>(bytes));
        position_ += bytes;
        return static_cast<std::size_t>(stream_.gcount()) == bytes;
    }

    void Skip(std::uint64_t bytes) {
        stream_.seekg(static_cast<std::streamoff>(bytes), std::ios::cur);
        position_ += bytes;
    }

    bool ReadSignature() { return Take(head_.signature, 2) && std::memcmp(head_.signature, "BM", 2) == 0; }

    int ReadHead() {
        static constexpr const char* kHead = "readBMP: cannot read header of the bitmap file\n";
        if (!Take(&head_.fileBytes, sizeof head_ - 2)) return nur_refuse(kHead);
        const int bits = head_.bitsPerPixel;
        if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) {
            return nur_refuse_format("readBMP: does not support %d bits/pixel", bits);
        }
        if (head_.planes != 1) return nur_refuse_format("readBMP: does not support %d bit planes\n", int{head_.planes});
        if (head_.height < 0) {
            return nur_refuse_format("readBMP: does not support top-down DIB. The bitmap file height is: %d\n",
                                     head_.height);
        }
        if (head_.width <= 0 || head_.height == 0) return nur_refuse(kHead);
        if ((head_.compression == BmpRle8 && bits != 8) || (head_.compression == BmpRle4 && bits != 4)) {
            return nur_refuse_format("readBMP: cannot process RLE%d compression with %d bpp",
                                     head_.compression == BmpRle8 ? 8 : 4, bits);
        }
        return 0;
    }

    int ReadMasks() {
        if (head_.compression > BmpRle4) {
            BmpMasks masks{};
            Take(masks.data(), sizeof masks);
            isTenBit_ = masks == kBmpTenBitMasks;
            if (!isTenBit_ && masks != kBmpOrdinaryMasks) {
                return nur_refuse_format("readBMP: unrecognized compression format code %d\n",
                                         static_cast<int>(head_.compression));
            }
            if (head_.compression == BmpBitfields && head_.bitsPerPixel != 32) {
                return nur_refuse_format("readBMP: cannot process BITFIELDS compression with %d bpp",
                                         int{head_.bitsPerPixel});
            }
        }
        // Later kinds have a longer head; what they add is read over.
        const std::uint64_t headEnd = 14 + std::uint64_t{head_.headBytes};
        if (headEnd > position_ && headEnd <= head_.pixelOffset) Skip(headEnd - position_);
        return 0;
    }

    int ReadPalette() {
        if (head_.bitsPerPixel >= 24) return 0;
        std::size_t entries = std::size_t{1} << head_.bitsPerPixel;
        // A file with fewer colors than its depth allows has its pixels behind the last of them.
        if (head_.pixelOffset > position_) {
            entries = std::min<std::size_t>(entries, (head_.pixelOffset - position_) / 4);
        }
        if (!Take(palette_.colors, 4 * entries)) {
            return nur_refuse("readBMP: cannot read colormap of the bitmap file\n");
        }
        for (std::size_t i = 0; i < entries; ++i) {
            palette_.colors[i] &= 0xFFFFFF;
            if (palette_.colors[i] != (palette_.colors[i] & 0xFF) * 0x010101) palette_.isColored = true;
        }
        palette_.isInverted = palette_.colors[0] > palette_.colors[1];
        return 0;
    }

    int ChooseFormat(const NurImage& record) {
        switch (head_.bitsPerPixel) {
            case 1:
                format_ = palette_.isColored ? D::FormatRgb : D::FormatBinary;
                row_ = palette_.isColored ? paletteRow<1> : binaryRow;
                break;
            case 4:
                if (!palette_.isColored && !record.data) return nur_refuse("readBMP: BMP bit count not supported\n");
                format_ = D::FormatRgb;
                row_ = paletteRow<4>;
                break;
            case 8:
                format_ = palette_.isColored ? D::FormatRgb : D::FormatUByte;
                row_ = palette_.isColored ? paletteRow<8> : grayRow;
                break;
            case 24:
                format_ = D::FormatRgb;
                row_ = bgrRow;
                break;
            default:
                format_ = isTenBit_ ? D::FormatRgb10 : D::FormatRgb;
                row_ = wordRow;
        }
        if (head_.bitsPerPixel <= 8 && record.data && record.format == D::FormatRgb) TakeGraysAsColors();
        filledWidth_ = head_.width;
        filledHeight_ = head_.height;
        return 0;
    }

    // A record of colors takes what would be gray or binary by itself. At 8 bits the index is the gray, as it is there.
    void TakeGraysAsColors() {
        if (format_ == D::FormatUByte) {
            for (std::uint32_t i = 0; i < 256; ++i) palette_.colors[i] = i * 0x010101;
        }
        if (format_ != D::FormatRgb) row_ = head_.bitsPerPixel == 1 ? paletteRow<1> : paletteRow<8>;
        format_ = D::FormatRgb;
    }

    bool IsRunLength() const { return head_.compression == BmpRle8 || head_.compression == BmpRle4; }

    std::uint64_t BytesLeft() {
        const auto here = stream_.tellg();
        stream_.seekg(0, std::ios::end);
        const auto end = stream_.tellg();
        stream_.seekg(here);
        return here < 0 || end < here ? 0 : static_cast<std::uint64_t>(end - here);
    }

    // A file that cannot hold what its head declares is refused before anything is allocated.
    int CheckLength() {
        std::int64_t needed = 0;
        if (__builtin_mul_overflow(bmpRowBytes(head_.width, head_.bitsPerPixel), std::int64_t{head_.height}, &needed)) {
            return nur_refuse(kReadingBits);
        }
        return BytesLeft() < static_cast<std::uint64_t>(needed) ? nur_refuse(kReadingBits) : 0;
    }

    // Runs may jump over nearly all of a bitmap, and each jump into a fresh page costs that page.
    int CheckUnpacked(bool isAllocated) {
        if (!isAllocated) return 0;
        const std::int64_t unpacked = nur_image_bytes(format_, head_.width, head_.height);
        const auto fileBytes = static_cast<std::int64_t>(position_ + BytesLeft());
        return unpacked < 0 || unpacked > mostUnpackedBytes(fileBytes) ? nur_refuse(kReadingBits) : 0;
    }

    int CheckPreallocated(NurImage& record) {
        isGiven_ = true;
        const std::int64_t width = format_ == D::FormatBinary ? (std::int64_t{head_.width} + 7) & ~7 : head_.width;
        if (width < record.roi.width || head_.height < record.roi.height) {
            return nur_refuse("readBMP: output image size too small\n");
        }
        if (record.format != format_ && !nur_same_but_sign(record.format, format_)) {
            return nur_refuse("readBMP: invalid buffer type\n");
        }
        record.format = format_;
        filledWidth_ = std::min(int{head_.width}, record.roi.width);
        filledHeight_ = record.roi.height;
        return 0;
    }

    int ReadPixels(NurImage& record) { return IsRunLength() ? ReadRuns(record) : ReadRows(record); }

    // The file's first rows are the lowest; those below the record's ROI are read over.
    int ReadRows(NurImage& record) {
        const std::int64_t rowBytes = bmpRowBytes(head_.width, head_.bitsPerPixel);
        Skip(static_cast<std::uint64_t>(rowBytes * (head_.height - filledHeight_)));
        const std::int64_t rowsABlock = std::clamp<std::int64_t>(kBlockBytes / rowBytes, 1, filledHeight_);
        std::vector<std::uint8_t> block(static_cast<std::size_t>(rowBytes * rowsABlock));
        for (std::int64_t done = 0; done < filledHeight_; done += rowsABlock) {
            const std::int64_t rows = std::min(rowsABlock, filledHeight_ - done);
            if (!Take(block.data(), static_cast<std::size_t>(rows * rowBytes))) return nur_refuse(kReadingBits);
            for (std::int64_t k = 0; k < rows; ++k) {
                const auto y = static_cast<std::int32_t>(filledHeight_ - 1 - done - k);
                row_(block.data() + k * rowBytes, record.RoiRow(y), static_cast<std::size_t>(filledWidth_), palette_);
            }
        }
        return 0;
    }

    int ReadRuns(NurImage& record) {
        const bool isGray = format_ == D::FormatUByte;
        // What the runs jump over is 0 in the caller's record too.
        const std::size_t rowBytes = static_cast<std::size_t>(filledWidth_) * (isGray ? 1 : 4);
        for (std::int32_t y = 0; isGiven_ && y < filledHeight_; ++y) std::memset(record.RoiRow(y), 0, rowBytes);
        const auto put = [&](std::int64_t x, std::int64_t fileRow, std::span<const std::uint8_t> indices) {
            const std::int64_t y = head_.height - 1 - fileRow;
            if (x >= filledWidth_ || y >= filledHeight_) return;
            const std::size_t count = std::min(indices.size(), static_cast<std::size_t>(filledWidth_ - x));
            std::uint8_t* row = record.RoiRow(static_cast<std::int32_t>(y));
            if (isGray) {
                std::memcpy(row + x, indices.data(), count);
                return;
            }
            for (std::size_t k = 0; k < count; ++k) {
                std::memcpy(row + 4 * (static_cast<std::size_t>(x) + k), &palette_.colors[indices[k]], 4);
            }
        };
        BlockBytes bytes([this](std::uint8_t* target, std::size_t count) {
            stream_.read(reinterpret_cast<char*>(target), static_cast<std::streamsize>(count));
            return static_cast<std::size_t>(stream_.gcount());
        });
        const bool whole = decodeBmpRuns(bytes, head_.bitsPerPixel, head_.width, head_.height, put);
        return whole ? 0 : nur_refuse(kReadingBits);
    }

    std::ifstream stream_;
    std::uint64_t position_ = 0;
    BmpHead head_{};
    bool isTenBit_ = false;
    Palette palette_;
    D::Format format_ = D::FormatNone;
    RowReader row_ = nullptr;
    std::int32_t filledWidth_ = 0;
    std::int32_t filledHeight_ = 0;
    bool isGiven_ = false;  // the record is the caller's
};

}  // namespace

bool isBMP(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    char signature[2];
    return stream.read(signature, 2) && std::memcmp(signature, "BM", 2) == 0;
}

int readBMP(const char* path, NurImage* record) { return BmpReader(path).Read(record); }
