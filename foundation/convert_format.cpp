#include <cstring>

#include "foundation/CTivImage.h"
#include "foundation/cast_image.h"
#include "foundation/color_kernels.h"
#include "foundation/nur_image.h"
#include "primitives/convert_rows.h"

// CTivImage::ConvertFormat: one row function a pair of formats.

namespace {

using D = CTivData;

struct Rgb16 {
    std::uint16_t words[4];  // blue, green, red, reserved
};

using RowFunction = void (*)(const void* in, void* out, std::size_t count, int mode);

// Wraps a one-pixel conversion into a row.
template <class In, class Out, auto kPixel>
void pixelwise(const void* in, void* out, std::size_t count, int mode) {
    const auto* from = static_cast<const In*>(in);
    auto* to = static_cast<Out*>(out);
    for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<Out>(kPixel(from[i], mode));
}

constexpr std::uint32_t grayToRgb(std::uint8_t gray, int) { return gray * 0x01010101u; }

template <int kShift>
constexpr std::uint32_t byteAt(std::uint32_t word, int) {
    return word >> kShift & 0xFF;
}

constexpr std::uint32_t deepLuminance(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return (9617 * green + 4899 * red + 1868 * blue) >> 14;
}
constexpr std::uint32_t rgb10Luminance(std::uint32_t word, int mode) {
    return deepLuminance(word >> 20 & 0x3FF, word >> 10 & 0x3FF, word & 0x3FF) << (mode == 2 ? 4 : 0);
}
constexpr std::uint32_t rgb16Luminance(const Rgb16& pixel, int) {
    return deepLuminance(pixel.words[2], pixel.words[1], pixel.words[0]);
}

constexpr std::uint32_t rgbToRgb10(std::uint32_t word, int mode) {
    const int shift = mode == 2 ? 2 : 0;
    return (word >> 16 & 0xFF) << (20 + shift) | (word >> 8 & 0xFF) << (10 + shift) | (word & 0xFF) << shift;
}
constexpr Rgb16 rgbToRgb16(std::uint32_t word, int mode) {
    const int shift = mode == 2 ? 8 : 0;
    const auto widen = [shift](std::uint32_t byte) { return static_cast<std::uint16_t>((byte & 0xFF) << shift); };
    return {{widen(word), widen(word >> 8), widen(word >> 16), 0}};
}
constexpr std::uint32_t rgb10ToRgb(std::uint32_t word, int mode) {
    const int shift = mode == 2 ? 2 : 0;
    return (word >> (20 + shift) & 0xFF) << 16 | (word >> (10 + shift) & 0xFF) << 8 | (word >> shift & 0xFF);
}
constexpr std::uint32_t rgb16ToRgb(const Rgb16& pixel, int mode) {
    const int shift = mode == 2 ? 8 : 0;
    const auto narrow = [&](int i) { return static_cast<std::uint32_t>(pixel.words[i] >> shift & 0xFF); };
    return narrow(3) << 24 | narrow(2) << 16 | narrow(1) << 8 | narrow(0);
}

template <std::uint32_t (*kKernel)(std::uint32_t)>
std::uint32_t byKernel(std::uint32_t word, int) {
    return kKernel(word);
}

void luminance(const void* in, void* out, std::size_t count, int) {
    LuminanceRow(static_cast<const std::uint8_t*>(in), static_cast<std::uint8_t*>(out), count);
}

void copyWords(const void* in, void* out, std::size_t count, int) {
    if (count > 0) std::memmove(out, in, count * sizeof(std::uint32_t));
}

template <std::uint32_t (*kKernel)(std::uint32_t)>
constexpr RowFunction kColor = pixelwise<std::uint32_t, std::uint32_t, byKernel<kKernel>>;
template <int kShift>
constexpr RowFunction kComponent = pixelwise<std::uint32_t, std::uint8_t, byteAt<kShift>>;

struct Conversion {
    D::Format source;
    D::Format destination;
    RowFunction row;  // null: castImage, which copies rows
};

constexpr Conversion kConversions[] = {
    {D::FormatUByte, D::FormatRgb, pixelwise<std::uint8_t, std::uint32_t, grayToRgb>},
    {D::FormatRgb, D::FormatUByte, luminance},
    {D::FormatRgb, D::FormatRgb, nullptr},
    {D::FormatRgb, D::FormatHsv, kColor<RgbToHsv>},
    {D::FormatRgb, D::FormatYuv, kColor<RgbToYuv>},
    {D::FormatRgb, D::FormatLab, kColor<RgbToLab>},
    {D::FormatRgb, D::FormatColorUByte, copyWords},
    {D::FormatRgb, D::FormatRgb10, pixelwise<std::uint32_t, std::uint32_t, rgbToRgb10>},
    {D::FormatRgb, D::FormatRgb16, pixelwise<std::uint32_t, Rgb16, rgbToRgb16>},
    {D::FormatHsv, D::FormatUByte, kComponent<0>},
    {D::FormatHsv, D::FormatRgb, kColor<HsvToRgb>},
    {D::FormatHsv, D::FormatHsv, nullptr},
    {D::FormatHsv, D::FormatColorUByte, copyWords},
    {D::FormatYuv, D::FormatUByte, kComponent<16>},
    {D::FormatYuv, D::FormatRgb, kColor<YuvToRgb>},
    {D::FormatYuv, D::FormatYuv, nullptr},
    {D::FormatYuv, D::FormatColorUByte, copyWords},
    {D::FormatLab, D::FormatUByte, kComponent<16>},
    {D::FormatLab, D::FormatRgb, kColor<LabToRgb>},
    {D::FormatLab, D::FormatLab, copyWords},
    {D::FormatLab, D::FormatColorUByte, copyWords},
    {D::FormatColorUByte, D::FormatRgb, copyWords},
    {D::FormatColorUByte, D::FormatHsv, copyWords},
    {D::FormatColorUByte, D::FormatYuv, copyWords},
    {D::FormatColorUByte, D::FormatLab, copyWords},
    {D::FormatColorUByte, D::FormatColorUByte, copyWords},
    {D::FormatRgb10, D::FormatUShort, pixelwise<std::uint32_t, std::uint16_t, rgb10Luminance>},
    {D::FormatRgb10, D::FormatRgb, pixelwise<std::uint32_t, std::uint32_t, rgb10ToRgb>},
    {D::FormatRgb16, D::FormatUShort, pixelwise<Rgb16, std::uint16_t, rgb16Luminance>},
    {D::FormatRgb16, D::FormatRgb, pixelwise<Rgb16, std::uint32_t, rgb16ToRgb>},
};

}  // namespace

bool CTivImage::ConvertFormat(const CTivImage& source, int mode) {
    const NurImage* from = source.GetRecord();
    NurImage* to = GetRecord();
    if (!from || !to) return false;
    if (!D::IsColor(from->format) && !D::IsColor(to->format)) {
        return castImage(from, to, castCode(to->format), mode) == 0;
    }
    if (to->format == D::FormatNone) {
        return Refuse("CTivImage::ConvertFormat => Destination image must be preallocated");
    }
    bool knowsSource = false;
    for (const Conversion& conversion : kConversions) {
        if (conversion.source != from->format) continue;
        knowsSource = true;
        if (conversion.destination != to->format) continue;
        const bool copies = !conversion.row || conversion.row == copyWords;
        if (to->roi.width < from->roi.width || to->roi.height < from->roi.height) {
            return Refuse(copies ? "CTivImage::ConvertFormat => Destination image ROI too small"
                                 : "CTivImage::ConvertFormat => Destination image size too small");
        }
        if (!conversion.row) return castImage(from, to, castCode(to->format), mode) == 0;
        for (int y = 0; y < from->roi.height; ++y) {
            conversion.row(from->RoiRow(y), to->RoiRow(y), static_cast<std::size_t>(from->roi.width), mode);
        }
        return true;
    }
    return Refuse(knowsSource ? "CTivImage::ConvertFormat => Destination image format not supported for the specified "
                                "conversion"
                              : "CTivImage::ConvertFormat => Source image format not supported for the specified "
                                "conversion");
}
