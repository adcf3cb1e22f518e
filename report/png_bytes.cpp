#include "report/png_bytes_impl.h"

#include <png.h>

#include <algorithm>

#include "foundation/CTivImage.h"

namespace tonewright {

namespace {

constexpr int kStoredBytes = 4;  // blue, green, red, reserved
constexpr int kPngBytes = 3;     // red, green, blue

/// Rows of a picture made smaller: each pixel the mean of the block of pixels that it stands for.
class Shrinker {
public:
    Shrinker(const CTivImage& picture, int width, int height)
        : pixels_(static_cast<const std::uint8_t*>(picture.GetData())),
          from_{picture.GetWidth(), picture.GetHeight()},
          to_{width, height} {}

    void Row(int y, std::vector<std::uint8_t>& row) const {
        const auto [top, bottom] = Span(y, from_[1], to_[1]);
        for (int x = 0; x < to_[0]; ++x) {
            const auto [left, right] = Span(x, from_[0], to_[0]);
            std::int64_t sums[kPngBytes] = {};
            for (std::int64_t v = top; v < bottom; ++v) {
                const std::uint8_t* pixel = pixels_ + (v * from_[0] + left) * kStoredBytes;
                for (std::int64_t u = left; u < right; ++u, pixel += kStoredBytes) {
                    for (int channel = 0; channel < kPngBytes; ++channel) sums[channel] += pixel[2 - channel];
                }
            }
            const std::int64_t count = (right - left) * (bottom - top);
            for (int channel = 0; channel < kPngBytes; ++channel) {
                row[static_cast<std::size_t>(x * kPngBytes + channel)] =
                    static_cast<std::uint8_t>((sums[channel] + count / 2) / count);
            }
        }
    }

private:
    static std::pair<std::int64_t, std::int64_t> Span(std::int64_t index, std::int64_t from, std::int64_t to) {
        return {index * from / to, std::max(index * from / to + 1, (index + 1) * from / to)};
    }

    const std::uint8_t* pixels_;
    int from_[2];
    int to_[2];
};

struct Writer {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    ~Writer() { png_destroy_write_struct(png ? &png : nullptr, info ? &info : nullptr); }
};

void append(png_structp png, png_bytep data, png_size_t size) {
    auto& bytes = *static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(png));
    try {
        bytes.insert(bytes.end(), data, data + size);
    } catch (const std::bad_alloc&) {
        png_error(png, "no memory");
    }
}

/// What libpng jumps across stands outside of here.
bool write(Writer& writer, int width, int height, const Shrinker& rows, std::vector<std::uint8_t>& row,
           std::vector<std::uint8_t>& bytes) {
    if (setjmp(png_jmpbuf(writer.png))) return false;
    png_set_write_fn(writer.png, &bytes, append, nullptr);
    png_set_IHDR(writer.png, writer.info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(writer.png, writer.info);
    for (int y = 0; y < height; ++y) {
        rows.Row(y, row);
        png_write_row(writer.png, row.data());
    }
    png_write_end(writer.png, nullptr);
    return true;
}

}  // namespace

std::vector<std::uint8_t> PngBytes(const CTivImage& picture, int longestSide) {
    if (picture.GetFormat() != CTivData::FormatRgb || picture.GetWidth() < 1 || picture.GetHeight() < 1) return {};
    const double longest = std::max(picture.GetWidth(), picture.GetHeight());
    const double scale = std::min(1.0, longestSide / longest);
    const int width = std::max(1, static_cast<int>(picture.GetWidth() * scale));
    const int height = std::max(1, static_cast<int>(picture.GetHeight() * scale));
    const Shrinker rows(picture, width, height);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(width) * kPngBytes);
    std::vector<std::uint8_t> bytes;
    Writer writer;
    if (!writer.info || !write(writer, width, height, rows, row, bytes)) return {};
    return bytes;
}

}  // namespace tonewright
