#include "primitives/twist.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "primitives/acceleration.h"
#include "primitives/ctiv_ippi.h"
#include "primitives/wide.h"

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

TONEWRIGHT_BODY void Encode(const std::uint8_t* __restrict source, std::uint8_t* __restrict destination,
                            std::size_t count, const std::array<std::uint8_t, 256>& table,
                            const std::array<std::uint8_t, 4>& limits) {
    const std::uint32_t blue = limits[0], green = limits[1], red = limits[2];
    const std::uint8_t* const entries = table.data();
    std::uint32_t encoded[kBlock];
    while (count > 0) {
        const std::size_t block = std::min(count, kBlock);
        for (std::size_t i = 0; i < block; ++i) {
            const std::uint32_t pixel = Load(destination + 4 * i);
            encoded[i] = static_cast<std::uint32_t>(entries[pixel & 0xff] | entries[(pixel >> 8) & 0xff] << 8 |
                                                    entries[(pixel >> 16) & 0xff] << 16);
        }
        for (std::size_t i = 0; i < block; ++i) {
            const std::uint32_t pixel = Load(source + 4 * i);
            const std::uint32_t saturated = ((pixel & 0xff) >= blue ? 0xffu : 0u) |
                                            (((pixel >> 8) & 0xff) >= green ? 0xff00u : 0u) |
                                            (((pixel >> 16) & 0xff) >= red ? 0xff0000u : 0u);
            Store(destination + 4 * i, encoded[i] | saturated);
        }
        source += 4 * block;
        destination += 4 * block;
        count -= block;
    }
}

}  // namespace

void TwistRowPlain(const std::uint8_t* source, std::uint8_t* destination, std::size_t count, ColorTwistMatrix twist) {
    Twist(source, destination, count, twist);
}
TONEWRIGHT_WIDE void TwistRowWide(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                                  ColorTwistMatrix twist) {
    Twist(source, destination, count, twist);
}
void TwistRowInPlacePlain(std::uint8_t* pixels, std::size_t count, ColorTwistMatrix twist) {
    TwistInPlace(pixels, count, twist);
}
TONEWRIGHT_WIDE void TwistRowInPlaceWide(std::uint8_t* pixels, std::size_t count, ColorTwistMatrix twist) {
    TwistInPlace(pixels, count, twist);
}
void EncodeRowPlain(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                    const std::array<std::uint8_t, 256>& table, const std::array<std::uint8_t, 4>& limits) {
    Encode(source, destination, count, table, limits);
}
TONEWRIGHT_WIDE void EncodeRowWide(const std::uint8_t* source, std::uint8_t* destination, std::size_t count,
                                   const std::array<std::uint8_t, 256>& table,
                                   const std::array<std::uint8_t, 4>& limits) {
    Encode(source, destination, count, table, limits);
}

int ctiv_ippiColorTwist32f_8u_AC4R(const std::uint8_t* source, std::int64_t sourcePitch, std::uint8_t* destination,
                                   std::int64_t destinationPitch, int width, int height, ColorTwistMatrix twist) {
    if (ctiv_GetAccelerationLevel() == 0) return kPrimitiveAbsent;
    const auto row = RunsWide() ? TwistRowWide : TwistRowPlain;
    for (int y = 0; y < height; ++y) {
        row(source + y * sourcePitch, destination + y * destinationPitch, static_cast<std::size_t>(width), twist);
    }
    return 0;
}

int ctiv_ippiColorTwist32f_8u_AC4IR(std::uint8_t* pixels, std::int64_t pitch, int width, int height,
                                    ColorTwistMatrix twist) {
    if (ctiv_GetAccelerationLevel() == 0) return kPrimitiveAbsent;
    const auto row = RunsWide() ? TwistRowInPlaceWide : TwistRowInPlacePlain;
    for (int y = 0; y < height; ++y) row(pixels + y * pitch, static_cast<std::size_t>(width), twist);
    return 0;
}
