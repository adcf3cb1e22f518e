#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>

#include "foundation/nur_memory.h"
#include "foundation/nur_report.h"
#include "imagefile/buffer_format.h"
#include "imagefile/tiff.h"
#include "imagefile/tiff_handle_impl.h"
#include "imagefile/tiff_rows_impl.h"

using namespace tonewright;

namespace {

using D = CTivData;

constexpr const char* kNoFormat = "readTIFF: failed to infer CTiv format\n";
constexpr const char* kNoMemory = "readTIFF: memory allocation failed\n";

enum SampleFormat : int { SampleUnsigned = 1, SampleSigned = 2, SampleFloat = 3, SampleComplex = 6 };

// Scratch memory of sizes that a file declares: zeros, committed only where they are written.
struct NurFree {
    void operator()(std::uint8_t* block) const { nur_free(block); }
};
using Block = std::unique_ptr<std::uint8_t, NurFree>;

Block makeBlock(std::int64_t bytes) {
    return Block(static_cast<std::uint8_t*>(nur_alloc(static_cast<std::uint64_t>(bytes), true)));
}

// From the open file to its pixels. Each step answers 0, or 1 once it has reported.
class TiffReader {
public:
    // `handle` tells of errors that libtiff's answers don't; null for a file that somebody else opened.
    TiffReader(TIFF* tif, TiffHandle* handle) : tif_(tif), handle_(handle) {}

    int Read(NurImage* record, ImageParameters* metadata) {
        RewriteOrientation();
        if (ReadHead() || InferFormat() || CheckPhotometric() || CheckSamples()) return 1;
        if (metadata) ReadMetadata(*metadata);
        if (Broken() || CheckLine()) return 1;
        const bool wasEmpty = !record->data;
        std::int32_t width = static_cast<std::int32_t>(width_);
        std::int32_t height = static_cast<std::int32_t>(height_);
        if (!wasEmpty) {
            width = std::min(width, record->roi.width);
            height = std::min(height, record->roi.height);
        }
        if (nur_output_image(record, format_, width, height, "ReadTIFF", true) != 0) return 1;
        const int answer = isPlanar_ ? ReadPlanes(*record, width, height) : ReadRows(*record, width, height);
        if (answer != 0 && wasEmpty) nur_image_free(record);
        return answer;
    }

private:
    bool Broken() { return handle_ && handle_->Failed(); }

    // Rows are then read by their numbers as they stand.
    void RewriteOrientation() {
        std::uint16_t orientation = ORIENTATION_TOPLEFT;
        TIFFGetFieldDefaulted(tif_, TIFFTAG_ORIENTATION, &orientation);
        const bool isTopFirst = orientation == 1 || orientation == 2 || orientation == 5 || orientation == 6;
        const bool isBottomFirst = orientation == 3 || orientation == 4 || orientation == 7 || orientation == 8;
        if (isTopFirst || isBottomFirst) TIFFSetField(tif_, TIFFTAG_ORIENTATION, isTopFirst ? 4 : 1);
    }

    int ReadHead() {
        std::uint16_t planarConfiguration = PLANARCONFIG_CONTIG, compression = COMPRESSION_NONE;
        TIFFGetField(tif_, TIFFTAG_IMAGEWIDTH, &width_);
        TIFFGetField(tif_, TIFFTAG_IMAGELENGTH, &height_);
        TIFFGetFieldDefaulted(tif_, TIFFTAG_BITSPERSAMPLE, &bits_);
        TIFFGetFieldDefaulted(tif_, TIFFTAG_SAMPLESPERPIXEL, &samples_);
        TIFFGetFieldDefaulted(tif_, TIFFTAG_SAMPLEFORMAT, &sampleFormat_);
        TIFFGetFieldDefaulted(tif_, TIFFTAG_PLANARCONFIG, &planarConfiguration);
        TIFFGetFieldDefaulted(tif_, TIFFTAG_COMPRESSION, &compression);
        TIFFGetField(tif_, TIFFTAG_IMAGEDESCRIPTION, &description_);
        if (Broken()) return 1;
        if (!TIFFGetField(tif_, TIFFTAG_PHOTOMETRIC, &photometric_)) {
            return nur_refuse("readTIFF: error getting photometric\n");
        }
        if (compression == COMPRESSION_JPEG && photometric_ == PHOTOMETRIC_YCBCR) {
            // The codec brings these to R, G, B itself if asked.
            TIFFSetField(tif_, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            photometric_ = PHOTOMETRIC_RGB;
        }
        isPlanar_ = planarConfiguration == PLANARCONFIG_SEPARATE && samples_ > 1;
        std::uint32_t code = 0;
        if (TIFFGetField(tif_, TiffBufferFormat, &code)) SetKnownFormat(static_cast<std::int32_t>(code));
        return 0;
    }

    // A code whose elements are not made of this file's samples says nothing.
    void SetKnownFormat(std::int32_t code) {
        const D::Format format = formatOfBuffer(code);
        if (D::GetFormatBits(format) == bits_ * samples_ && D::GetChannels(format) == samples_) knownFormat_ = format;
    }

    bool IsGray() const { return (bits_ == 1 && samples_ == 1) || photometric_ <= PHOTOMETRIC_MINISBLACK; }

    int InferFormat() {
        if (samples_ == 0 || samples_ > 4) {
            return nur_refuse(
                "readTIFF: can only handle 1-channel gray scale, 2-channel point and complex or 1- or 3-channel "
                "color\n");
        }
        if (bits_ == 16 && samples_ != 3) format_ = knownFormat_;
        if (format_ == D::FormatNone) {
            if (samples_ == 1 && bits_ > 16) {
                if (InferDeepGray()) return 1;
            } else if (samples_ == 2) {
                if (InferPair()) return 1;
            } else if (samples_ == 3 && !IsGray()) {
                format_ = DescribedFormat();
            } else if (samples_ == 4 && bits_ == 32) {
                format_ = D::FormatColorFloat;
            }
        }
        return format_ == D::FormatNone ? InferPlain() : 0;
    }

    int InferDeepGray() {
        if (bits_ == 64) {
            format_ = D::FormatDouble;
        } else if (bits_ <= 32) {
            format_ = sampleFormat_ == SampleUnsigned ? D::FormatUInt
                      : sampleFormat_ == SampleSigned ? D::FormatInt
                      : sampleFormat_ == SampleFloat  ? D::FormatFloat
                                                      : D::FormatNone;
            if (format_ == D::FormatNone || bits_ != 32) {
                return nur_refuse("readTIFF: unknown 1 sample 32 bits per pixel format\n");
            }
        }
        return 0;
    }

    int InferPair() {
        format_ = sampleFormat_ == SampleSigned    ? D::FormatPoint
                  : sampleFormat_ == SampleFloat   ? D::FormatFPoint
                  : sampleFormat_ == SampleComplex ? D::FormatComplex
                                                   : D::FormatNone;
        if (format_ == D::FormatNone || bits_ != 32) return nur_refuse("readTIFF: unknown 2 samples format\n");
        return 0;
    }

    // Three samples may be of any color format; those written here say which, behind a leading blank.
    D::Format DescribedFormat() const {
        constexpr const char* kMark = "KORVA format";
        if (!description_) return D::FormatNone;
        const char* text = description_ + std::strspn(description_, " ");
        int code = 0;
        if (std::strlen(text) < 13 || std::strncmp(text, kMark, 12) != 0) return D::FormatNone;
        if (std::sscanf(text, "%*s %*s %9d", &code) != 1) return D::FormatNone;
        const auto format = static_cast<D::Format>(code);
        const TiffWriteForm* form = tiffWriteForm(format);
        return form && form->samples == 3 && form->bits == bits_ ? format : D::FormatNone;
    }

    int InferPlain() {
        const bool isPlain = samples_ == 3 || ((samples_ == 1 || samples_ == 4) && bits_ <= 16);
        // Above 16 bits no plain format could hold a sample.
        if (!isPlain || bits_ == 0 || bits_ > 16) return nur_refuse(kNoFormat);
        isPlain_ = true;
        if (IsGray()) {
            format_ = bits_ == 1 && samples_ == 1 ? D::FormatBinary : bits_ <= 8 ? D::FormatUByte : D::FormatUShort;
        } else {
            format_ = bits_ <= 8 ? D::FormatRgb : bits_ <= 10 ? D::FormatRgb10 : D::FormatRgb16;
        }
        return 0;
    }

    int CheckPhotometric() {
        if (!isPlain_ || (bits_ == 1 && samples_ == 1)) return 0;
        switch (photometric_) {
            case PHOTOMETRIC_MINISWHITE:
            case PHOTOMETRIC_MINISBLACK:
            case PHOTOMETRIC_RGB:
                return 0;
            case PHOTOMETRIC_PALETTE:
                return ReadPalette();
            case PHOTOMETRIC_MASK:
                return nur_refuse("readTIFF: does not handle PHOTOMETRIC_MASK\n");
            default:
                return nur_refuse_format("readTIFF: unknown photometric :%d\n", int{photometric_});
        }
    }

    int ReadPalette() {
        const std::uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
        if (!TIFFGetField(tif_, TIFFTAG_COLORMAP, &red, &green, &blue)) {
            return nur_refuse("readTIFF: error getting colormaps\n");
        }
        if (bits_ > 8) return nur_refuse("readTIFF: too many colors\n");
        const auto byteOf = [](std::uint32_t entry) { return entry * 255 / 65535; };
        for (std::size_t i = 0; i < std::size_t{1} << bits_; ++i) {
            palette_[i] = byteOf(red[i]) << 16 | byteOf(green[i]) << 8 | byteOf(blue[i]);
        }
        shape_.palette = palette_;
        return 0;
    }

    // What the row reader takes must be there in each pixel.
    int CheckSamples() {
        if (IsPlainColor() && !shape_.palette && samples_ < 3) return nur_refuse(kNoFormat);
        if (width_ == 0 || height_ == 0) return nur_refuse(kNoFormat);
        constexpr std::uint32_t kMost = std::numeric_limits<std::int32_t>::max();
        return width_ > kMost || height_ > kMost ? nur_refuse(kNoMemory) : 0;
    }

    bool IsPlainColor() const { return isPlain_ && D::IsColor(format_); }

    template <class T>
    bool Get(TiffTag tag, T& value) const {
        return TIFFGetField(tif_, tag, &value) != 0;
    }

    void ReadMetadata(ImageParameters& metadata) const {
        const std::pair<TiffTag, ctiv::OptionalParameter<double>*> scales[] = {
            {TiffScaleX, &metadata.scaleX},   {TiffScaleY, &metadata.scaleY},   {TiffScaleZ, &metadata.scaleZ},
            {TiffOffsetX, &metadata.offsetX}, {TiffOffsetY, &metadata.offsetY}, {TiffOffsetZ, &metadata.offsetZ}};
        for (const auto& [tag, parameter] : scales) SetWherePresent(tag, *parameter);
        std::uint32_t number = 0;
        if (Get(TiffScan3dInvalidDataFlag, number) && number != 0) SetWherePresent(TiffInvalidZ, metadata.invalidZ);
        if (Get(TiffScan3dDistanceUnit, number)) *metadata.distanceUnit.Set() = static_cast<int>(number);
        std::uint32_t version = 0;
        if (!Get(TiffScan3dVersion, version)) return;
        if (version >= 2 && Get(TiffSpaceUsed, number)) *metadata.spaceUsed.Set() = static_cast<long>(number);
        const char* unit = nullptr;
        if (version >= 3 && Get(TiffScan3dDistanceUnitStr, unit) && unit) metadata.unitName.Set(unit);
    }

    void SetWherePresent(TiffTag tag, ctiv::OptionalParameter<double>& parameter) const {
        double value = 0;
        parameter.SetPresent(Get(tag, value));
        if (parameter.IsPresent()) *parameter.Set() = value;
    }

    // The line that libtiff hands over must hold the samples that the head declares.
    int CheckLine() {
        const std::int64_t lineSamples = std::int64_t{width_} * (isPlanar_ ? 1 : samples_);
        const std::int64_t needed = (lineSamples * bits_ + 7) / 8;
        lineBytes_ = TIFFScanlineSize(tif_);
        if (Broken()) return 1;
        if (lineBytes_ < needed) return nur_refuse(kNoFormat);
        // Also where strips share the file's bytes, so that they seem to hold it all.
        const std::int64_t planes = isPlanar_ ? samples_ : 1;
        std::int64_t stored = 0;
        const bool isBeyond = __builtin_mul_overflow(lineBytes_ * planes, std::int64_t{height_}, &stored);
        if (handle_ && (isBeyond || stored > handle_->MostBytes())) return nur_refuse(kNoMemory);
        line_ = makeBlock(lineBytes_);
        isPacked_ = bits_ < 16 && bits_ != 8 && format_ != D::FormatBinary;
        sampleBytes_ = isPacked_ ? (bits_ < 8 ? 1 : 2) : std::max(bits_ / 8, 1);
        if (isPacked_) unpacked_ = makeBlock(lineSamples * sampleBytes_);
        if (!line_ || (isPacked_ && !unpacked_)) return nur_refuse(kNoMemory);
        shape_.samples = samples_;
        shape_.pixelBytes = static_cast<std::size_t>(D::GetFormatBits(format_) / 8);
        shape_.isInverted = photometric_ == PHOTOMETRIC_MINISWHITE;
        return 0;
    }

    // @return the samples of one line in bytes or words, null where libtiff failed
    const std::uint8_t* ReadLine(std::int32_t y, int plane) {
        const int answer =
            TIFFReadScanline(tif_, line_.get(), static_cast<std::uint32_t>(y), static_cast<std::uint16_t>(plane));
        if (Broken()) return nullptr;
        if (answer < 0) {  // some codecs say no more than that
            nur_refuse("readTIFF: error reading scanline\n");
            return nullptr;
        }
        if (!isPacked_) return line_.get();
        const std::size_t count = std::size_t{width_} * (isPlanar_ ? 1u : samples_);
        if (sampleBytes_ == 1) {
            unpackTiffSamples(line_.get(), bits_, count, unpacked_.get());
        } else {
            auto* words = reinterpret_cast<std::uint16_t*>(unpacked_.get());
            unpackTiffSamples(line_.get(), bits_, count, words);
            if (format_ == D::FormatRgb10) {  // whose reader takes the top 10 bits
                std::for_each(words, words + count,
                              [&](std::uint16_t& word) { word = static_cast<std::uint16_t>(word << (16 - bits_)); });
            }
        }
        return unpacked_.get();
    }

    int ReadRows(NurImage& record, std::int32_t width, std::int32_t height) {
        const TiffRowReader convert = tiffRowReader(format_, shape_);
        for (std::int32_t y = 0; y < height; ++y) {
            const std::uint8_t* samples = ReadLine(y, 0);
            if (!samples) return 1;
            convert(samples, record.RoiRow(y), static_cast<std::size_t>(width), shape_);
        }
        return 0;
    }

    // Samples in planes of their own are laid side by side first, a plane after the other, since most codecs cannot
    // go back in the file.
    int ReadPlanes(NurImage& record, std::int32_t width, std::int32_t height) {
        const std::int64_t rowBytes = std::int64_t{width} * samples_ * sampleBytes_;
        std::int64_t bytes = 0;
        if (__builtin_mul_overflow(rowBytes, std::int64_t{height}, &bytes)) return nur_refuse(kNoMemory);
        const Block pixels = makeBlock(bytes);
        if (!pixels) return nur_refuse(kNoMemory);
        const auto step = static_cast<std::size_t>(samples_ * sampleBytes_);
        for (int plane = 0; plane < samples_; ++plane) {
            for (std::int32_t y = 0; y < height; ++y) {
                const std::uint8_t* samples = ReadLine(y, plane);
                if (!samples) return 1;
                std::uint8_t* to = pixels.get() + y * rowBytes + plane * sampleBytes_;
                const auto size = static_cast<std::size_t>(sampleBytes_);
                for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
                    std::memcpy(to + x * step, samples + x * size, size);
                }
            }
        }
        const TiffRowReader convert = tiffRowReader(format_, shape_);
        for (std::int32_t y = 0; y < height; ++y) {
            convert(pixels.get() + y * rowBytes, record.RoiRow(y), static_cast<std::size_t>(width), shape_);
        }
        return 0;
    }

    TIFF* tif_;
    TiffHandle* handle_;
    std::uint32_t width_ = 0, height_ = 0;
    std::uint16_t bits_ = 1, samples_ = 1, sampleFormat_ = SampleUnsigned, photometric_ = 0;
    const char* description_ = nullptr;
    D::Format knownFormat_ = D::FormatNone;
    D::Format format_ = D::FormatNone;
    bool isPlain_ = false;
    bool isPlanar_ = false;
    bool isPacked_ = false;
    int sampleBytes_ = 1;
    std::int64_t lineBytes_ = 0;
    Block line_, unpacked_;
    std::uint32_t palette_[256] = {};
    TiffRowShape shape_;
};

}  // namespace

bool isTIFF(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    char order[2];
    return stream.read(order, 2) && (std::memcmp(order, "II", 2) == 0 || std::memcmp(order, "MM", 2) == 0);
}

int readTIFF(TIFF* tif, NurImage* record, ImageParameters* metadata) {
    return TiffReader(tif, nullptr).Read(record, metadata);
}

int readTIFFFile(const char* path, NurImage* record, ImageParameters* metadata) {
    TiffHandle handle(path, "r");
    if (handle.Failed() || !handle.Get()) return 1;
    return TiffReader(handle.Get(), &handle).Read(record, metadata);
}
