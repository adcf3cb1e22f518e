#include "imagefile/PngImageReader.h"

#include <png.h>

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "foundation/nur_memory.h"

namespace ctiv {

namespace {

constexpr std::size_t kSignatureBytes = 8;
// A deflate stream unfolds to at most about 1032 times its size: a head that promises more is a lie.
constexpr std::int64_t kMostUnfolding = 1100;

struct FileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

constexpr const char* kLibraryVersion = "1.6.37";  // of the interface that is asked for

void onWarning(png_structp, png_const_charp) {}
[[noreturn]] void onError(png_structp png, png_const_charp) { png_longjmp(png, 1); }

}  // namespace

// The library behind one object: the source, its structures, and the steps that it may leave by a jump. No step holds
// anything with a destructor while the library runs.
class PngImageReader::Decoder {
public:
    explicit Decoder(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {
        if (!file_) throw std::runtime_error("Unable to open file");
        std::uint8_t signature[kSignatureBytes];
        if (std::fread(signature, 1, kSignatureBytes, file_.get()) != kSignatureBytes) {
            throw std::runtime_error("Error reading PNG header");
        }
        RequireSignature(signature);
        std::fseek(file_.get(), 0, SEEK_END);
        sourceBytes_ = std::ftell(file_.get());
        std::fseek(file_.get(), kSignatureBytes, SEEK_SET);
    }

    explicit Decoder(std::span<const std::uint8_t> memory)
        : memory_(memory), sourceBytes_(static_cast<std::int64_t>(memory.size())) {
        if (memory.size() < kSignatureBytes) throw std::runtime_error("Error reading PNG header");
        RequireSignature(memory.data());
        memory_ = memory.subspan(kSignatureBytes);
    }

    Decoder(const Decoder&) = delete;
    ~Decoder() { png_destroy_read_struct(&png_, &info_, nullptr); }

    /// @return false where the library gives no structures: the reader then stays without a format
    bool Create() {
        png_ = png_create_read_struct(kLibraryVersion, nullptr, onError, onWarning);
        if (png_) info_ = png_create_info_struct(png_);
        return info_ != nullptr;
    }

    // Reads the head and sets up the transformations. @return false after an error of the library
    bool ReadHead() {
        if (setjmp(png_jmpbuf(png_))) return false;
        if (file_) {
            png_init_io(png_, file_.get());
        } else {
            png_set_read_fn(png_, this, ReadMemory);
        }
        png_set_sig_bytes(png_, kSignatureBytes);
        // The library's own limit of a million pixels each way stands: the table of rows and every product stay small.
        // What no pixel needs stays folded: a small chunk of text may hold a great deal.
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(png_, info_);
        colorType_ = png_get_color_type(png_, info_);
        bitDepth_ = png_get_bit_depth(png_, info_);
        storedBytes_ = static_cast<std::int64_t>(png_get_rowbytes(png_, info_)) *
                       static_cast<std::int64_t>(png_get_image_height(png_, info_));
        SetTransformations();
        png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        width_ = png_get_image_width(png_, info_);
        height_ = png_get_image_height(png_, info_);
        rowBytes_ = static_cast<std::int64_t>(png_get_rowbytes(png_, info_));
        return true;
    }

    bool ReadPixels(png_bytepp rows) {
        if (setjmp(png_jmpbuf(png_))) return false;
        png_read_image(png_, rows);
        return true;
    }

    std::int64_t SourceBytes() const { return sourceBytes_; }

    int colorType_ = 0;
    int bitDepth_ = 0;
    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
    std::int64_t rowBytes_ = 0;
    std::int64_t storedBytes_ = 0;  // of the samples as the file holds them

private:
    static void RequireSignature(const std::uint8_t* bytes) {
        if (png_sig_cmp(bytes, 0, kSignatureBytes) != 0) throw std::runtime_error("The file is not a PNG file");
    }

    static void ReadMemory(png_structp png, png_bytep target, std::size_t bytes) {
        auto& left = static_cast<Decoder*>(png_get_io_ptr(png))->memory_;
        if (bytes > left.size()) png_error(png, "Error reading PNG image from memory");
        std::memcpy(target, left.data(), bytes);
        left = left.subspan(bytes);
    }

    void SetTransformations() {
        const unsigned filler = bitDepth_ > 8 ? 0xFFFF : 0xFF;
        switch (colorType_) {
            case PNG_COLOR_TYPE_GRAY:
                if (bitDepth_ < 8) png_set_expand_gray_1_2_4_to_8(png_);
                break;
            case PNG_COLOR_TYPE_PALETTE:
                png_set_palette_to_rgb(png_);
                png_set_bgr(png_);
                png_set_filler(png_, filler, PNG_FILLER_AFTER);
                break;
            case PNG_COLOR_TYPE_RGB:
                png_set_bgr(png_);
                png_set_filler(png_, filler, PNG_FILLER_AFTER);
                break;
            case PNG_COLOR_TYPE_RGB_ALPHA:
                png_set_bgr(png_);
                break;
            case PNG_COLOR_TYPE_GRAY_ALPHA:
                png_set_gray_to_rgb(png_);
                png_set_bgr(png_);
                break;
            default:
                break;
        }
    }

    std::unique_ptr<std::FILE, FileClose> file_;
    std::span<const std::uint8_t> memory_;
    std::int64_t sourceBytes_ = 0;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

void PngImageReader::PixelFree::operator()(void* pixels) const { nur_free(pixels); }

PngImageReader::PngImageReader(const std::string& path) {
    Decoder decoder(path);
    Read(decoder);
}

PngImageReader::PngImageReader(std::span<const std::uint8_t> memory) {
    Decoder decoder(memory);
    Read(decoder);
}

PngImageReader::~PngImageReader() = default;

void PngImageReader::Read(Decoder& decoder) {
    static constexpr const char* kFailed = "Error during PNG init io";
    roi_ = OptionalResult<CTivRect>(CTivRect{});
    if (!decoder.Create()) return;
    if (!decoder.ReadHead()) throw std::runtime_error(kFailed);
    const bool gray = decoder.colorType_ == PNG_COLOR_TYPE_GRAY;
    const bool known = gray || decoder.colorType_ == PNG_COLOR_TYPE_PALETTE ||
                       decoder.colorType_ == PNG_COLOR_TYPE_RGB || decoder.colorType_ == PNG_COLOR_TYPE_RGB_ALPHA ||
                       decoder.colorType_ == PNG_COLOR_TYPE_GRAY_ALPHA;
    if (!known) throw std::runtime_error("Error identifying PNG color type");
    const bool deep = decoder.bitDepth_ > 8;
    const CTivData::Format format = gray ? (deep ? CTivData::FormatUShort : CTivData::FormatUByte)
                                         : (deep ? CTivData::FormatRgb16 : CTivData::FormatRgb);
    size_ = decoder.rowBytes_ * decoder.height_;
    if (decoder.storedBytes_ > decoder.SourceBytes() * kMostUnfolding ||
        decoder.rowBytes_ != std::int64_t{CTivData::GetFormatSize(format)} * decoder.width_) {
        throw std::runtime_error(kFailed);
    }
    pixels_.reset(nur_alloc(static_cast<std::uint64_t>(size_), true));
    if (!pixels_) throw std::runtime_error(kFailed);
    std::vector<png_bytep> rows(decoder.height_);
    for (std::size_t y = 0; y < rows.size(); ++y) {
        rows[y] = static_cast<png_bytep>(pixels_.get()) + static_cast<std::int64_t>(y) * decoder.rowBytes_;
    }
    if (!decoder.ReadPixels(rows.data())) throw std::runtime_error(kFailed);
    width_ = Result<int>(static_cast<int>(decoder.width_));
    height_ = Result<int>(static_cast<int>(decoder.height_));
    format_ = Result<CTivData::Format>(format);
    bytesPerPixel_ = Result<int>(CTivData::GetFormatSize(format));
    roi_ = OptionalResult<CTivRect>({0, 0, width_.Get(), height_.Get()});
}

void PngImageReader::ReadData(int offset, int size, void* buffer) {
    requireRange(offset, size, size_);
    if (size > 0) std::memcpy(buffer, static_cast<const char*>(pixels_.get()) + offset, static_cast<std::size_t>(size));
}

bool PngImageReader::ExchangePixels(void*& pixels) {
    if (!pixels_ || !pixels) return false;
    void* mine = pixels_.release();
    pixels_.reset(pixels);
    pixels = mine;
    return true;
}

}  // namespace ctiv
