#include "primitives/twist.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "primitives/acceleration.h"
#include "primitives/ctiv_ippi.h"
#include "primitives/table_rows.h"

namespace tonewright {

namespace {

constexpr std::size_t kBlock = 512;

TONEWRIGHT_BODY std::uint32_t Load(const std::uint8_t* from) {
    std::uint32_t pixel;
    std::memcpy(&pixel, from, sizeof pixel);
    return pixel;
}

TONEWRIGHT_BODY void Store(std::uint8_t* to, std::uint32_t pixel) { std::memcpy(to, &pixel, sizeof pixel); }

TONEWRIGHT_BODY std::uint32_t Weigh(float b, float g, float r, const float* t) {
    float v = ((t[0] * b + t[1] * g) + t[2] * r) + t[3];
    v = std::bit_cast<float>(std::bit_cast<std::int32_t>(v) & -static_cast<std::int32_t>(v > 0.0f));  // NaN too
    // At 1.5 x 2^23 float32 steps by 1, so that the sum itself rounds, half to even, and its low bits are the result.
    // Conditional values in the place of mask and min make GCC thread branches through the loop, at half the speed.
    constexpr float shift = 12582912.0f;
    constexpr auto top = std::bit_cast<std::int32_t>(shift + 255.0f);
    return static_cast<std::uint32_t>(std::min(std::bit_cast<std::int32_t>(v + shift), top)) & 0xff;
}

TONEWRIGHT_BODY std::uint32_t TwistPixel(std::uint32_t pixel, std::uint32_t kept, const float* t) {
    const auto channel = [pixel](int shift) { return static_cast<float>(static_cast<int>((pixel >> shift) & 0xff)); };
    const float b = channel(0), g = channel(8), r = channel(16);
    return (kept & 0xff000000) | Weigh(b, g, r, t + 8) << 16 | Weigh(b, g, r, t + 4) << 8 | Weigh(b, g, r, t);
}

TONEWRIGHT_BODY void Twist(const std::uint8_t* __restrict source, std::uint8_t* __restrict destination,
                           std::size_t count, ColorTwistMatrix twist) {
    float t[12];
    std::memcpy(t, twist.data(), sizeof t);
    for (std::size_t i = 0; i < 4 * count; i += 4) {
        Store(destination + i, TwistPixel(Load(source + i), Load(destination + i), t));
    }
}

TONEWRIGHT_BODY void TwistInPlace(std::uint8_t* pixels, std::size_t count, ColorTwistMatrix twist) {
    float t[12];
    std::memcpy(t, twist.data(), sizeof t);
    for (std::size_t i = 0; i < 4 * count; i += 4) {
        const std::uint32_t pixel = Load(pixels + i);
        Store(pixels + i, TwistPixel(pixel, pixel, t));
    }
}

using ByteTable = std::array<std::uint8_t, 256>;
using Limits = std::array<std::uint8_t, 4>;

TONEWRIGHT_BODY void Encode(const std::uint8_t* __restrict source, std::uint8_t* __restrict destination,
                            std::size_t count, const ByteTable& table, const Limits& limits, LookUpRow lookUp) {
    const std::uint32_t blue = limits[0], green = limits[1], red = limits[2];
    std::uint8_t encoded[4 * kBlock];
    while (count > 0) {
        const std::size_t block = std::min(count, kBlock);
        lookUp(destination, encoded, block, table);
        for (std::size_t i = 0; i < 4 * block; i += 4) {
            const std::uint32_t pixel = Load(source + i);
            const std::uint32_t saturated = ((pixel & 0xff) >= blue ? 0xffu : 0u) |
                                            (((pixel >> 8) & 0xff) >= green ? 0xff00u : 0u) |
                                            (((pixel >> 16) & 0xff) >= red ? 0xff0000u : 0u);
            Store(destination + i, Load(encoded + i) | saturated);
        }
        source += 4 * block;
        destination += 4 * block;
        count -= block;
    }
}

void TwistPlain(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, ColorTwistMatrix twist) {
    Twist(source, destination, count, twist);
}
TONEWRIGHT_WIDE void TwistAvx2(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                               ColorTwistMatrix twist) {
    Twist(source, destination, count, twist);
}
TONEWRIGHT_WIDEST void TwistAvx512(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                                   ColorTwistMatrix twist) {
    Twist(source, destination, count, twist);
}

void TwistInPlacePlain(std::uint8_t* pixels, std::size_t count, ColorTwistMatrix twist) {
    TwistInPlace(pixels, count, twist);
}
TONEWRIGHT_WIDE void TwistInPlaceAvx2(std::uint8_t* pixels, std::size_t count, ColorTwistMatrix twist) {
    TwistInPlace(pixels, count, twist);
}
TONEWRIGHT_WIDEST void TwistInPlaceAvx512(std::uint8_t* pixels, std::size_t count, ColorTwistMatrix twist) {
    TwistInPlace(pixels, count, twist);
}

void EncodePlain(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, const ByteTable& table,
                 const Limits& limits) {
    Encode(source, destination, count, table, limits, GetLookUpRow(RowForm::Plain));
}
TONEWRIGHT_WIDE void EncodeAvx2(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                                const ByteTable& table, const Limits& limits) {
    Encode(source, destination, count, table, limits, GetLookUpRow(RowForm::Avx2));
}
TONEWRIGHT_WIDEST void EncodeAvx512(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                                    const ByteTable& table, const Limits& limits) {
    Encode(source, destination, count, table, limits, GetLookUpRow(RowForm::Avx512));
}

/// The one of three forms that is asked for.
template <class Row>
Row Choose(RowForm form, Row plain, Row avx2, Row avx512) {
    return form == RowForm::Avx512 ? avx512 : form == RowForm::Avx2 ? avx2 : plain;
}

}  // namespace

TwistRow GetTwistRow(RowForm form) { return Choose(form, TwistPlain, TwistAvx2, TwistAvx512); }
TwistRowInPlace GetTwistRowInPlace(RowForm form) {
    return Choose(form, TwistInPlacePlain, TwistInPlaceAvx2, TwistInPlaceAvx512);
}
EncodeRow GetEncodeRow(RowForm form) { return Choose(form, EncodePlain, EncodeAvx2, EncodeAvx512); }

}  // namespace tonewright

int ctiv_ippiColorTwist32f_8u_AC4R(const std::uint8_t* source, std::int64_t sourcePitch, std::uint8_t* destination,
                                   std::int64_t destinationPitch, int width, int height,
                                   tonewright::ColorTwistMatrix twist) {
    if (ctiv_GetAccelerationLevel() == 0) return tonewright::kPrimitiveAbsent;
    const auto row = tonewright::GetTwistRow(tonewright::GetRowForm());
    for (int y = 0; y < height; ++y) {
        row(source + y * sourcePitch, destination + y * destinationPitch, static_cast<std::size_t>(width), twist);
    }
    return 0;
}

int ctiv_ippiColorTwist32f_8u_AC4IR(std::uint8_t* pixels, std::int64_t pitch, int width, int height,
                                    tonewright::ColorTwistMatrix twist) {
    if (ctiv_GetAccelerationLevel() == 0) return tonewright::kPrimitiveAbsent;
    const auto row = tonewright::GetTwistRowInPlace(tonewright::GetRowForm());
    for (int y = 0; y < height; ++y) row(pixels + y * pitch, static_cast<std::size_t>(width), twist);
    return 0;
}
