#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "foundation/color_kernels.h"
#include "primitives/wide.h"

// Color conversions whose exact arithmetic (divisions and powers in double) is too slow for rows: a guess in whole
// numbers and float32 is made for a block of pixels, which tells by itself where it lies too close to a step to be
// sure, and those pixels go through the exact kernel. The result is the kernel's for every color.

namespace tonewright::guessed_rows {

/// A word, and 1 where it may be wrong, else 0.
struct Guess {
    std::uint32_t word;
    std::uint32_t doubt;
};

// Numerators up to 130050 and quotients up to 510: float32 holds both, and what lies below a whole number, by 1 / 255
// at least, doesn't round up to it.
TONEWRIGHT_BODY int floorDivide(int numerator, int denominator) {
    return static_cast<int>(static_cast<float>(numerator) / static_cast<float>(denominator));
}

/// Rounding half up is what the doubles do, too, but on a tie they may land on either side.
TONEWRIGHT_BODY Guess GuessHsv(std::uint32_t rgb) {
    using namespace color_kernels;
    const int r = component(rgb, 0), g = component(rgb, 1), b = component(rgb, 2);
    const int most = std::max(std::max(r, g), b);
    const int span = most - std::min(std::min(r, g), b);
    const int divisor = span + static_cast<int>(span == 0);
    const int saturation = floorDivide(510 * span, most + static_cast<int>(most == 0));               // in half steps
    const int isRed = -static_cast<int>(r == most), isGreen = -static_cast<int>(g == most) & ~isRed;  // masks
    const int difference = ((g - b) & isRed) + ((b - r) & isGreen) + ((r - g) & ~(isRed | isGreen));
    const int base = (6 & isRed & (difference >> 31)) + (4 & ~isRed) + (-2 & isGreen);
    const int sixfold = 85 * (base * span + difference);
    const int hue = floorDivide(sixfold, divisor);  // in half steps
    // A tie is an odd number of half steps without a remainder. At full distance the ratio is 1 in the doubles as well:
    // no doubt there, and grays have no distance at all.
    const int saturationRest = 510 * span - saturation * most, hueRest = sixfold - hue * divisor;
    const int fromFull = span - std::max(difference, -difference);
    const int tie = (saturation & ~(-saturationRest >> 31)) | (hue & ~(-hueRest >> 31) & (-fromFull >> 31));
    return {pack((hue + 1) >> 1, (saturation + 1) >> 1, most), static_cast<std::uint32_t>(tie & 1)};
}

/// Cube root by an estimate from the exponent and two steps of Halley's method; next to nothing for 0.
TONEWRIGHT_BODY float cubeRoot(float x) {
    float y =
        std::bit_cast<float>(static_cast<int>(static_cast<float>(std::bit_cast<int>(x)) * (1.0f / 3.0f)) + 709921077);
    for (int step = 0; step < 2; ++step) {
        const float cube = y * y * y;
        y *= (cube + 2.0f * x) / (2.0f * cube + x);
    }
    return y;
}

// Cuts toward zero; doubtful within a thousandth of a whole number other than 0, five times the error of the guess.
TONEWRIGHT_BODY int cut(float value, std::uint32_t& doubt) {
    const int nearest = static_cast<int>(value + (value < 0.0f ? -0.5f : 0.5f));
    const float distance = value - static_cast<float>(nearest);
    doubt |= static_cast<std::uint32_t>(std::abs(distance) < 0.001f) & static_cast<std::uint32_t>(nearest != 0);
    return static_cast<int>(value);
}

TONEWRIGHT_BODY Guess GuessLab(std::uint32_t rgb) {
    using namespace color_kernels;
    const auto r = static_cast<float>(component(rgb, 0)), g = static_cast<float>(component(rgb, 1)),
               b = static_cast<float>(component(rgb, 2));
    constexpr float k = 1.0f / 255.0f;
    const float fx = cubeRoot(0.1805f * k * b + 0.3576f * k * g + 0.4124f * k * r);
    const float fy = cubeRoot(0.0722f * k * b + 0.7152f * k * g + 0.2126f * k * r);
    const float fz = cubeRoot(0.9505f * k * b + 0.1192f * k * g + 0.0193f * k * r);
    std::uint32_t doubt = 0;
    const int lightness = cut((116.0f * fy - 16.0f) * 2.55f, doubt);
    const int first = 128 - cut(-500.0f * (fx - fy), doubt);
    const int second = 128 - cut(-200.0f * (fy - fz), doubt);
    return {pack(limitByte(lightness), limitByte(first), limitByte(second)), doubt};
}

/// Settles the doubtful pixels of a block. A flat area asks for one color again and again, so the last is kept.
template <std::uint32_t (*exact)(std::uint32_t)>
void Settle(const std::uint8_t* source, const std::uint8_t* doubts, std::uint32_t* words, std::size_t count) {
    std::uint32_t asked = 0;
    std::uint32_t answer = exact(asked);
    for (std::size_t begin = 0; begin < count; begin += 8) {
        std::uint64_t eight;
        std::memcpy(&eight, doubts + begin, sizeof eight);
        if (eight == 0) continue;
        for (std::size_t i = begin; i < std::min(begin + 8, count); ++i) {
            if (!doubts[i]) continue;
            std::uint32_t color;
            std::memcpy(&color, source + 4 * i, sizeof color);
            color &= 0xFFFFFF;
            if (color != asked) answer = exact(asked = color);
            words[i] = answer;
        }
    }
}

template <Guess (*guess)(std::uint32_t), std::uint32_t (*exact)(std::uint32_t)>
TONEWRIGHT_BODY void GuessedRow(const std::uint8_t* source, std::uint8_t* destination, std::size_t count) {
    constexpr std::size_t kBlock = 512;
    std::uint32_t words[kBlock];
    std::uint8_t doubts[kBlock] = {};
    while (count > 0) {
        const std::size_t block = std::min(count, kBlock);
        for (std::size_t i = 0; i < block; ++i) {
            std::uint32_t color;
            std::memcpy(&color, source + 4 * i, sizeof color);
            const Guess guessed = guess(color);
            words[i] = guessed.word;
            doubts[i] = static_cast<std::uint8_t>(guessed.doubt);
        }
        Settle<exact>(source, doubts, words, block);
        std::memcpy(destination, words, 4 * block);
        source += 4 * block;
        destination += 4 * block;
        count -= block;
    }
}

}  // namespace tonewright::guessed_rows
