#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

// One-pixel conversions between the packed colors. A word holds the first component in bits 16 to 23, the second in 8
// to 15, the third in 0 to 7; the fourth byte (bits 24 to 31) comes out 0.

namespace color_kernels {

constexpr int component(std::uint32_t word, int which) { return static_cast<int>(word >> (16 - 8 * which) & 0xFF); }
constexpr std::uint32_t pack(int first, int second, int third) {
    return static_cast<std::uint32_t>(first) << 16 | static_cast<std::uint32_t>(second) << 8 |
           static_cast<std::uint32_t>(third);
}
constexpr int limitByte(int value) { return std::clamp(value, 0, 255); }
inline int limitByte(double value) { return static_cast<int>(std::clamp(value, 0.0, 255.0)); }

// One chroma component of YUV from its 10-bit fixed-point difference. A negative one adds one more before the 128, and
// only the top is limited.
constexpr int chroma(int difference) {
    const int t = (difference >> 10) * 229 / 255;
    return std::min(t < 0 ? 129 + t : 128 + t, 255);
}

}  // namespace color_kernels

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

/// The six-sector reverse of RgbToHsv.
inline std::uint32_t HsvToRgb(std::uint32_t hsv) {
    using namespace color_kernels;
    const double value = component(hsv, 2) / 255.0, saturation = component(hsv, 1) / 255.0;
    if (value == 0.0) return 0;
    const double sixfold = component(hsv, 0) / 255.0 * 6.0;
    const int sector = static_cast<int>(sixfold);
    const double fraction = sixfold - sector;
    const double p = value * (1.0 - saturation);
    const double q = value * (1.0 - saturation * fraction);
    const double t = value * (1.0 - saturation * (1.0 - fraction));
    const double table[6][3] = {{value, t, p}, {q, value, p}, {p, value, t},
                                {p, q, value}, {t, p, value}, {value, p, q}};
    const double(&color)[3] = table[sector % 6];
    const auto toByte = [](double c) { return limitByte(c * 255.0 + 0.5); };
    return pack(toByte(color[0]), toByte(color[1]), toByte(color[2]));
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
