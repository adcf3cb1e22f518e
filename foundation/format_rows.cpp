#include "foundation/format_rows.h"

#include <cstring>

#include "foundation/color_kernels.h"
#include "foundation/guessed_rows_impl.h"
#include "primitives/convert_rows.h"
#include "primitives/wide.h"

namespace tonewright {

namespace {

using D = CTivData;

// Pixels as numbers: FormatRgb10 has red in bits 20 to 29, green in 10 to 19, blue in 0 to 9; FormatRgb16 has blue in
// bits 0 to 15, green in 16 to 31, red in 32 to 47.

template <int shift>
struct Component {
    using In = std::uint32_t;
    using Out = std::uint8_t;
    static Out Convert(In word, int) { return static_cast<Out>(word >> shift); }
};

template <std::uint32_t (*kernel)(std::uint32_t)>
struct Color {
    using In = std::uint32_t;
    using Out = std::uint32_t;
    static Out Convert(In word, int) { return kernel(word); }
};

constexpr std::uint32_t deepLuminance(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return (9617 * green + 4899 * red + 1868 * blue) >> 14;
}

struct Rgb10Luminance {
    using In = std::uint32_t;
    using Out = std::uint16_t;
    static int Shift(int mode) { return mode == 2 ? 4 : 0; }
    static Out Convert(In word, int shift) {
        return static_cast<Out>(deepLuminance(word >> 20 & 0x3FF, word >> 10 & 0x3FF, word & 0x3FF) << shift);
    }
};

struct Rgb16Luminance {
    using In = std::uint64_t;
    using Out = std::uint16_t;
    static Out Convert(In words, int) {
        const auto low = static_cast<std::uint32_t>(words), high = static_cast<std::uint32_t>(words >> 32);
        return static_cast<Out>(deepLuminance(high & 0xFFFF, low >> 16, low & 0xFFFF));
    }
};

struct RgbToRgb10 {
    using In = std::uint32_t;
    using Out = std::uint32_t;
    static int Shift(int mode) { return mode == 2 ? 2 : 0; }
    static Out Convert(In word, int shift) {
        return ((word & 0xFF0000) << 4 | (word & 0xFF00) << 2 | (word & 0xFF)) << shift;
    }
};

struct Rgb10ToRgb {
    using In = std::uint32_t;
    using Out = std::uint32_t;
    static int Shift(int mode) { return mode == 2 ? 2 : 0; }
    static Out Convert(In word, int shift) {
        const In bits = word >> shift;
        return (bits >> 4 & 0xFF0000) | (bits >> 2 & 0xFF00) | (bits & 0xFF);
    }
};

struct RgbToRgb16 {
    using In = std::uint32_t;
    using Out = std::uint64_t;
    static int Shift(int mode) { return mode == 2 ? 8 : 0; }
    static Out Convert(In word, int shift) {
        const Out low = (word & 0xFF) | (word & 0xFF00) << 8;
        return (low | Out{word & 0xFF0000} << 16) << shift;
    }
};

struct Rgb16ToRgb {
    using In = std::uint64_t;
    using Out = std::uint32_t;
    static int Shift(int mode) { return mode == 2 ? 8 : 0; }
    static Out Convert(In words, int shift) {
        const In bits = words >> shift;
        const auto low = static_cast<Out>(bits), high = static_cast<Out>(bits >> 32);
        return (low & 0xFF) | (low >> 8 & 0xFF00) | (high & 0xFF) << 16 | (high << 8 & 0xFF000000);
    }
};

template <class Pixel>
TONEWRIGHT_BODY void convertRow(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, int mode) {
    int shift = 0;
    if constexpr (requires { Pixel::Shift(mode); }) shift = Pixel::Shift(mode);
    for (std::size_t i = 0; i < count; ++i) {
        typename Pixel::In in;
        std::memcpy(&in, source + i * sizeof in, sizeof in);
        const typename Pixel::Out out = Pixel::Convert(in, shift);
        std::memcpy(destination + i * sizeof out, &out, sizeof out);
    }
}

template <class Pixel>
void plainRow(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, int mode) {
    convertRow<Pixel>(source, destination, count, mode);
}
template <class Pixel>
TONEWRIGHT_WIDE void wideRow(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, int mode) {
    convertRow<Pixel>(source, destination, count, mode);
}
template <guessed_rows::Guess (*guess)(std::uint32_t), std::uint32_t (*exact)(std::uint32_t)>
TONEWRIGHT_WIDE void wideGuessedRow(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, int) {
    guessed_rows::GuessedRow<guess, exact>(source, destination, count);
}

// All four bytes take the gray value; single bytes become interleaved stores, a fourth faster than words.
TONEWRIGHT_BODY void grayToRgb(const std::uint8_t* source, std::uint8_t* destination, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t gray = source[i];
        std::uint8_t* pixel = destination + 4 * i;
        pixel[0] = pixel[1] = pixel[2] = pixel[3] = gray;
    }
}
void plainGrayToRgb(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, int) {
    grayToRgb(source, destination, count);
}
TONEWRIGHT_WIDE void wideGrayToRgb(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, int) {
    grayToRgb(source, destination, count);
}

template <void (*row)(const std::uint8_t*, std::uint8_t*, std::size_t)>
void luminance(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, int) {
    row(source, destination, count);
}

template <class Pixel>
constexpr FormatConversion pixelwise(D::Format source, D::Format destination) {
    return {source, destination, plainRow<Pixel>, wideRow<Pixel>};
}
template <std::uint32_t (*kernel)(std::uint32_t)>
constexpr FormatConversion color(D::Format source, D::Format destination) {
    return pixelwise<Color<kernel>>(source, destination);
}

constexpr FormatConversion kConversions[] = {
    {D::FormatUByte, D::FormatRgb, plainGrayToRgb, wideGrayToRgb},
    {D::FormatRgb, D::FormatUByte, luminance<LuminanceRowPlain>, luminance<LuminanceRowWide>},
    {D::FormatRgb, D::FormatRgb},
    {D::FormatRgb, D::FormatHsv, plainRow<Color<RgbToHsv>>, wideGuessedRow<guessed_rows::GuessHsv, RgbToHsv>},
    color<RgbToYuv>(D::FormatRgb, D::FormatYuv),
    {D::FormatRgb, D::FormatLab, plainRow<Color<RgbToLab>>, wideGuessedRow<guessed_rows::GuessLab, RgbToLab>},
    {D::FormatRgb, D::FormatColorUByte},
    pixelwise<RgbToRgb10>(D::FormatRgb, D::FormatRgb10),
    pixelwise<RgbToRgb16>(D::FormatRgb, D::FormatRgb16),
    pixelwise<Component<0>>(D::FormatHsv, D::FormatUByte),
    color<HsvToRgb>(D::FormatHsv, D::FormatRgb),
    {D::FormatHsv, D::FormatHsv},
    {D::FormatHsv, D::FormatColorUByte},
    pixelwise<Component<16>>(D::FormatYuv, D::FormatUByte),
    color<YuvToRgb>(D::FormatYuv, D::FormatRgb),
    {D::FormatYuv, D::FormatYuv},
    {D::FormatYuv, D::FormatColorUByte},
    pixelwise<Component<16>>(D::FormatLab, D::FormatUByte),
    color<LabToRgb>(D::FormatLab, D::FormatRgb),
    {D::FormatLab, D::FormatLab},
    {D::FormatLab, D::FormatColorUByte},
    {D::FormatColorUByte, D::FormatRgb},
    {D::FormatColorUByte, D::FormatHsv},
    {D::FormatColorUByte, D::FormatYuv},
    {D::FormatColorUByte, D::FormatLab},
    {D::FormatColorUByte, D::FormatColorUByte},
    pixelwise<Rgb10Luminance>(D::FormatRgb10, D::FormatUShort),
    pixelwise<Rgb10ToRgb>(D::FormatRgb10, D::FormatRgb),
    pixelwise<Rgb16Luminance>(D::FormatRgb16, D::FormatUShort),
    pixelwise<Rgb16ToRgb>(D::FormatRgb16, D::FormatRgb),
};

}  // namespace

std::span<const FormatConversion> GetFormatConversions() { return kConversions; }

}  // namespace tonewright
