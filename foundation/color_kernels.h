#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

// One-pixel conversions between the packed colors. A word holds the first component in bits 16 to 23, the second in 8
// to 15, the third in 0 to 7; the fourth byte (bits 24 to 31) comes out 0.

namespace tonewright::color_kernels {

constexpr int component(std::uint32_t word, int which) { return static_cast<int>(word >> (16 - 8 * which) & 0xFF); }
constexpr std::uint32_t pack(int first, int second, int third) {
    return static_cast<std::uint32_t>(first) << 16 | static_cast<std::uint32_t>(second) << 8 |
           static_cast<std::uint32_t>(third);
}
constexpr int limitByte(int value) { return std::clamp(value, 0, 255); }
inline int limitByte(double value) { return static_cast<int>(std::clamp(value, 0.0, 255.0)); }

// condition ? yes : no, by masks: over a ternary GCC threads branches through the rows and leaves them scalar.
constexpr int choose(bool condition, int yes, int no) { return no ^ ((yes ^ no) & -static_cast<int>(condition)); }

// One chroma component of YUV from its 10-bit fixed-point difference, which is scaled by 229 / 255 and cut toward zero:
// the product and shift do that for the whole range of -128 to 127. A negative one adds one more before the 128.
constexpr int chroma(int difference) {
    const int cut = difference >> 10;
    const int scaled = (cut * 58854 >> 16) - (cut >> 31);
    return 128 + scaled - (scaled >> 31);
}

}  // namespace tonewright::color_kernels

namespace tonewright {

/// Y = (601 G + 306 R + 117 B) >> 10, with U and V scaled by 229 / 255 around 128.
constexpr std::uint32_t RgbToYuv(std::uint32_t rgb) {
    using namespace color_kernels;
    const int r = component(rgb, 0), g = component(rgb, 1), b = component(rgb, 2);
    return pack((601 * g + 306 * r + 117 * b) >> 10, chroma(512 * b - 339 * g - 173 * r),
                chroma(512 * r - 429 * g - 83 * b));
}

/// 14-bit fixed point, each component limited to 0 to 255.
constexpr std::uint32_t YuvToRgb(std::uint32_t yuv) {
    using namespace color_kernels;
    const int u = component(yuv, 1), v = component(yuv, 2), base = component(yuv, 0) * 16384;
    return pack(limitByte(((v - 128) * 23060 + base) >> 14), limitByte((base + 0x21FF80 - 5661 * u - 11746 * v) >> 14),
                limitByte(((u - 128) * 29147 + base) >> 14));
}

/// Hexcone model in double; hue, saturation and value each scaled to a byte, rounded.
inline std::uint32_t RgbToHsv(std::uint32_t rgb) {
    using namespace color_kernels;
    const double r = component(rgb, 0) / 255.0, g = component(rgb, 1) / 255.0, b = component(rgb, 2) / 255.0;
    const double most = std::max({r, g, b}), least = std::min({r, g, b});
    const double saturation = most == 0.0 ? 0.0 : (most - least) / most;
    double hue = 0.0;
    if (saturation != 0.0) {
        const auto distance = [&](double c) { return (most - c) / (most - least); };
        if (r == most) {
            hue = distance(b) - distance(g);
        } else if (g == most) {
            hue = 2.0 + distance(r) - distance(b);
        } else {
            hue = 4.0 + distance(g) - distance(r);
        }
        hue /= 6.0;
        if (hue < 0.0) hue += 1.0;
    }
    const auto toByte = [](double value) { return limitByte(value * 255.0 + 0.5); };
    return pack(toByte(hue), toByte(saturation), toByte(most));
}

/// The six-sector reverse of RgbToHsv, in whole numbers. Each component is v (1 - s w) with a weight w from 0 to 1 that
/// walks with the hue: 0 where the table has v, 1 where it has p, between where it has q or t. With all as fractions of
/// 255 no product lies on a rounding tie, so these are the bytes of the doubles.
constexpr std::uint32_t HsvToRgb(std::uint32_t hsv) {
    using namespace color_kernels;
    const int sixfold = component(hsv, 0) * 6, saturation = component(hsv, 1), value = component(hsv, 2);
    const auto at = [=](int start) {  // six sectors of 255 steps
        const int unwrapped = start * 255 + sixfold;
        const int place = unwrapped - choose(unwrapped >= 1530, 1530, 0);
        const int weight = std::max(std::min(std::min(place, 1020 - place), 255), 0);
        return (value * (65025 - saturation * weight) + 32512) / 65025;
    };
    return pack(at(5), at(3), at(1));
}

/// Through XYZ and plain cube roots: there is no linear segment near black, by design.
inline std::uint32_t RgbToLab(std::uint32_t rgb) {
    using namespace color_kernels;
    constexpr double kThird = 0.3333333432674408;  // the float nearest to one third
    const double r = component(rgb, 0), g = component(rgb, 1), b = component(rgb, 2);
    const double fx = std::pow((0.1805 * b + 0.3576 * g + 0.4124 * r) / 255.0, kThird);
    const double fy = std::pow((0.0722 * b + 0.7152 * g + 0.2126 * r) / 255.0, kThird);
    const double fz = std::pow((0.9505 * b + 0.1192 * g + 0.0193 * r) / 255.0, kThird);
    return pack(limitByte(static_cast<int>((116.0 * fy - 16.0) * 2.55)),
                limitByte(128 - static_cast<int>(-500.0 * (fx - fy))),
                limitByte(128 - static_cast<int>(-200.0 * (fy - fz))));
}

/// The reverse in 32-bit floats; X, Y and Z are whole numbers on the scale of 255 on the way.
inline std::uint32_t LabToRgb(std::uint32_t lab) {
    using namespace color_kernels;
    const float fy = (static_cast<float>(component(lab, 0)) / 2.55f + 16.0f) / 116.0f;
    const float fx = static_cast<float>(component(lab, 1) - 128) / 500.0f + fy;
    const float fz = fy - static_cast<float>(component(lab, 2) - 128) / 200.0f;
    const auto cubed = [](float f) { return static_cast<double>(static_cast<int>(f * f * f * 255.0f)); };
    const double x = cubed(fx), y = cubed(fy), z = cubed(fz);
    return pack(limitByte(3.2406 * x - 1.5372 * y - 0.4986 * z), limitByte(1.8758 * y - 0.9689 * x + 0.0415 * z),
                limitByte(0.0557 * x - 0.204 * y + 1.057 * z));
}

}  // namespace tonewright
