#include "imagefile/tiff_rows_impl.h"

#include <algorithm>
#include <cstring>

#include "imagefile/bit_order_impl.h"
#include "primitives/color_rows.h"

using namespace tonewright;

namespace {

using D = CTivData;

template <class T>
T load(const std::uint8_t* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

template <class T>
void store(std::uint8_t* at, T value) {
    std::memcpy(at, &value, sizeof value);
}

void copyRow(const std::uint8_t* samples, std::uint8_t* pixels, std::size_t count, const TiffRowShape& shape) {
    std::memcpy(pixels, samples, count * shape.pixelBytes);
}

void binaryRow(const std::uint8_t* samples, std::uint8_t* pixels, std::size_t count, const TiffRowShape& shape) {
    const std::uint8_t flip = shape.isInverted ? 0xFF : 0;
    for (std::size_t i = 0; i < (count + 7) / 8; ++i) {
        pixels[i] = static_cast<std::uint8_t>(reversedBits(samples[i]) ^ flip);
    }
    // An image's width is a multiple of 8 where the file's need not be: what is beyond it stays 0.
    if (count % 8 != 0) pixels[count / 8] &= static_cast<std::uint8_t>((1u << count % 8) - 1);
}

// Gray with further samples: the first one counts.
template <class Sample>
void grayRow(const std::uint8_t* samples, std::uint8_t* pixels, std::size_t count, const TiffRowShape& shape) {
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(pixels + i * sizeof(Sample), samples + i * shape.samples * sizeof(Sample), sizeof(Sample));
    }
}

void paletteRow(const std::uint8_t* samples, std::uint8_t* pixels, std::size_t count, const TiffRowShape& shape) {
    for (std::size_t i = 0; i < count; ++i) store(pixels + 4 * i, shape.palette[samples[i * shape.samples]]);
}

constexpr std::uint32_t packedWord(std::uint32_t first, std::uint32_t second, std::uint32_t third) {
    return first << 16 | second << 8 | third;
}

void colorRow(const std::uint8_t* samples, std::uint8_t* pixels, std::size_t count, const TiffRowShape& shape) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* at = samples + i * shape.samples;
        store(pixels + 4 * i, packedWord(at[0], at[1], at[2]));
    }
}

// The same for three samples side by side.
void color3Row(const std::uint8_t* samples, std::uint8_t* pixels, std::size_t count, const TiffRowShape&) {
    SpreadRgb(samples, pixels, count);
}

void rgb10Row(const std::uint8_t* samples, std::uint8_t* pixels, std::size_t count, const TiffRowShape& shape) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* at = samples + i * shape.samples * 2;
        const std::uint32_t red = load<std::uint16_t>(at) >> 6;
        const std::uint32_t green = load<std::uint16_t>(at + 2) >> 6;
        const std::uint32_t blue = load<std::uint16_t>(at + 4) >> 6;
        store(pixels + 4 * i, red << 20 | green << 10 | blue);
    }
}

void rgb16Row(const std::uint8_t* samples, std::uint8_t* pixels, std::size_t count, const TiffRowShape& shape) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* at = samples + i * shape.samples * 2;
        const std::uint64_t first = load<std::uint16_t>(at);
        const std::uint64_t second = load<std::uint16_t>(at + 2);
        const std::uint64_t third = load<std::uint16_t>(at + 4);
        store(pixels + 8 * i, first << 32 | second << 16 | third);
    }
}

template <class Sample>
void unpack(const std::uint8_t* packed, unsigned bits, std::size_t count, Sample* samples) {
    const std::uint32_t mask = (1u << bits) - 1;
    std::uint32_t window = 0;
    unsigned held = 0;
    for (std::size_t i = 0; i < count; ++i) {
        for (; held < bits; held += 8) window = window << 8 | *packed++;
        held -= bits;
        samples[i] = static_cast<Sample>(window >> held & mask);
    }
}

// Fields of 10 bits go to the top of 16.
void packRgb10(const std::uint8_t* pixels, std::uint8_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto word = load<std::uint32_t>(pixels + 4 * i);
        for (unsigned k = 0; k < 3; ++k) {
            const std::uint32_t field = word >> (20 - 10 * k) & 0x3FF;
            store(samples + 6 * i + 2 * k, static_cast<std::uint16_t>(field << 6));
        }
    }
}

void packRgb16(const std::uint8_t* pixels, std::uint8_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        for (unsigned k = 0; k < 3; ++k) {
            store(samples + 6 * i + 2 * k, load<std::uint16_t>(pixels + 8 * i + 2 * (2 - k)));
        }
    }
}

void packBits(const std::uint8_t* pixels, std::uint8_t* samples, std::size_t count) {
    std::transform(pixels, pixels + (count + 7) / 8, samples, reversedBits);
}

// Values of the tags SampleFormat and Photometric.
constexpr std::uint16_t kDefault = 0, kUnsigned = 1, kSigned = 2, kFloat = 3, kComplex = 6;
constexpr std::uint16_t kMinIsBlack = 1, kRgb = 2;

// Packed colors go out as third, second and first byte of memory, and so R, G, B for FormatRgb.
constexpr TiffWriteForm kWriteForms[] = {
    {D::FormatByte, kMinIsBlack, 1, 8, kDefault, nullptr},
    {D::FormatShort, kMinIsBlack, 1, 16, kDefault, nullptr},
    {D::FormatUByte, kMinIsBlack, 1, 8, kDefault, nullptr},
    {D::FormatUShort, kMinIsBlack, 1, 16, kDefault, nullptr},
    {D::FormatBinary, kMinIsBlack, 1, 1, kDefault, packBits},
    {D::FormatInt, kMinIsBlack, 1, 32, kSigned, nullptr},
    {D::FormatUInt, kMinIsBlack, 1, 32, kUnsigned, nullptr},
    {D::FormatFloat, kMinIsBlack, 1, 32, kFloat, nullptr},
    {D::FormatDouble, kMinIsBlack, 1, 64, kDefault, nullptr},
    {D::FormatRgb, kRgb, 3, 8, kDefault, PackRgb},
    {D::FormatHsv, kRgb, 3, 8, kDefault, PackRgb},
    {D::FormatYuv, kRgb, 3, 8, kDefault, PackRgb},
    {D::FormatLab, kRgb, 3, 8, kDefault, PackRgb},
    {D::FormatComplex, kMinIsBlack, 2, 32, kComplex, nullptr},
    {D::FormatPoint, kMinIsBlack, 2, 32, kSigned, nullptr},
    {D::FormatFPoint, kMinIsBlack, 2, 32, kFloat, nullptr},
    {D::FormatColorFloat, kMinIsBlack, 4, 32, kDefault, nullptr},
    {D::FormatRgb10, kRgb, 3, 16, kDefault, packRgb10},
    {D::FormatRgb16, kRgb, 3, 16, kDefault, packRgb16},
    {D::FormatCoord3dC16, kMinIsBlack, 1, 16, kDefault, nullptr},
    {D::FormatCoord3dAC16, kMinIsBlack, 2, 16, kDefault, nullptr},
    {D::FormatCoord3dCR16, kMinIsBlack, 2, 16, kDefault, nullptr},
    {D::FormatCoord3dACRW16, kMinIsBlack, 4, 16, kDefault, nullptr},
};

}  // namespace

TiffRowReader tiffRowReader(CTivData::Format format, const TiffRowShape& shape) {
    switch (format) {
        case D::FormatBinary:
            return binaryRow;
        case D::FormatUByte:
            return shape.samples == 1 ? copyRow : grayRow<std::uint8_t>;
        case D::FormatUShort:
            return shape.samples == 1 ? copyRow : grayRow<std::uint16_t>;
        case D::FormatRgb:
        case D::FormatHsv:
        case D::FormatYuv:
        case D::FormatLab:
            return shape.palette ? paletteRow : shape.samples == 3 ? color3Row : colorRow;
        case D::FormatRgb10:
            return rgb10Row;
        case D::FormatRgb16:
            return rgb16Row;
        default:
            return copyRow;
    }
}

void unpackTiffSamples(const std::uint8_t* packed, unsigned bits, std::size_t count, std::uint8_t* samples) {
    unpack(packed, bits, count, samples);
}

void unpackTiffSamples(const std::uint8_t* packed, unsigned bits, std::size_t count, std::uint16_t* samples) {
    unpack(packed, bits, count, samples);
}

const TiffWriteForm* tiffWriteForm(CTivData::Format format) {
    const auto* row = std::find_if(std::begin(kWriteForms), std::end(kWriteForms),
                                   [&](const TiffWriteForm& form) { return form.format == format; });
    return row == std::end(kWriteForms) ? nullptr : row;
}
