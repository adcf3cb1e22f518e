#include "foundation/format_rows.h"

#include <cmath>
#include <cstring>

#include "foundation/CTivImage.h"
#include "foundation/color_kernels.h"
#include "primitives/acceleration.h"
#include "primitives/wide.h"
#include "tests/support/library.h"
#include "tests/support/row_buffers.h"

using namespace tonewright;

using D = CTivData;

namespace {

std::uint32_t word(int first, int second, int third) {
    return static_cast<std::uint32_t>(first << 16 | second << 8 | third);
}

const FormatConversion& conversionOf(D::Format source, D::Format destination) {
    for (const FormatConversion& row : GetFormatConversions()) {
        if (row.source == source && row.destination == destination) return row;
    }
    ADD_FAILURE() << "no such conversion";
    return GetFormatConversions()[0];
}

std::size_t bytesOf(D::Format format) { return static_cast<std::size_t>(D::GetFormatSize(format)); }

// A source pixel as a number, and what it becomes.
struct Case {
    D::Format from;
    D::Format to;
    int mode;
    std::uint64_t in;
    std::uint64_t out;
};

std::uint32_t hsvByTable(std::uint32_t hsv) {
    const double h = (hsv >> 16 & 255) / 255.0, s = (hsv >> 8 & 255) / 255.0, v = (hsv & 255) / 255.0;
    const int sector = static_cast<int>(h * 6.0);
    const double f = h * 6.0 - sector, p = v * (1.0 - s), q = v * (1.0 - s * f), t = v * (1.0 - s * (1.0 - f));
    const double sectors[6][3] = {{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}};
    const auto byte = [](double c) { return static_cast<int>(c * 255.0 + 0.5); };
    const auto& c = sectors[sector % 6];
    return word(byte(c[0]), byte(c[1]), byte(c[2]));
}

std::uint32_t yuvByFormula(std::uint32_t rgb) {
    const int r = rgb >> 16 & 255, g = rgb >> 8 & 255, b = rgb & 255;
    const auto chroma = [](double sum) {
        const int scaled = static_cast<int>(std::floor(sum / 1024.0)) * 229 / 255;
        return scaled < 0 ? 129 + scaled : 128 + scaled;
    };
    return word((601 * g + 306 * r + 117 * b) / 1024, chroma(512 * b - 339 * g - 173 * r),
                chroma(512 * r - 429 * g - 83 * b));
}

}  // namespace

TEST(ColorKernels, PureColorsAsByHand) {
    struct Row {
        std::uint32_t rgb, hsv, yuv;
    };
    // Red in YUV: Y 306 x 255 >> 10 = 76; U: -173 x 255 >> 10 = -44, x 229 / 255 = -39, 129 - 39 = 90; V: 127 -> 114.
    constexpr Row kRows[] = {
        {0xFF0000, 0x00FFFF, 0x4C5AF2}, {0xFFFF00, 0x2BFFFF, 0xE10F91}, {0x00FF00, 0x55FFFF, 0x953521},
        {0x00FFFF, 0x80FFFF, 0xB2A60F}, {0x0000FF, 0xAAFFFF, 0x1DF26F}, {0xFF00FF, 0xD5FFFF, 0x69CBDF},
        {0x000000, 0x000000, 0x008080}, {0xFFFFFF, 0x0000FF, 0xFF8080}, {0x808080, 0x000080, 0x808080},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(RgbToHsv(row.rgb), row.hsv) << std::hex << row.rgb;
        EXPECT_EQ(RgbToYuv(row.rgb), row.yuv) << std::hex << row.rgb << " " << RgbToYuv(row.rgb);
    }
    EXPECT_EQ(RgbToHsv(0xFF000000 | 0x123456), RgbToHsv(0x123456));  // the fourth byte counts for nothing
    EXPECT_EQ(RgbToLab(0) >> 16, 0u);                                // below the foot of the curve
    EXPECT_EQ(RgbToLab(0) & 0xFFFF, 0x8080u);
    EXPECT_EQ(YuvToRgb(0x808080), 0x808080u);
    EXPECT_EQ(YuvToRgb(0xFF0000) >> 16, 0x4Au);   // R: (-128 x 23060 + 255 x 16384) >> 14 = 74
    EXPECT_EQ(YuvToRgb(0xFFFFFF) & 0xFF, 0xFFu);  // B: limited
}

TEST(ColorKernels, WholeNumbersEqualTheDoublesAndTheDivision) {
    for (std::uint32_t color = 0; color < 1u << 24; color += 5) {
        ASSERT_EQ(HsvToRgb(color), hsvByTable(color)) << std::hex << color;
        ASSERT_EQ(RgbToYuv(color), yuvByFormula(color)) << std::hex << color;
    }
}

TEST(ColorKernels, LabFollowsTheCubeRootsAndBack) {
    const auto expectCut = [](std::uint32_t lab, int shift, double value) {
        const double limited = std::min(std::max(value, 0.0), 255.0);
        const bool isAtStep = std::abs(limited - std::round(limited)) < 1e-4;
        const int byte = lab >> shift & 255;
        ASSERT_TRUE(byte == static_cast<int>(limited) || (isAtStep && std::abs(byte - limited) < 1.001))
            << std::hex << lab << " " << shift << " " << value;
    };
    for (std::uint32_t color = 0; color < 1u << 24; color += 211) {
        const double r = (color >> 16 & 255) / 255.0, g = (color >> 8 & 255) / 255.0, b = (color & 255) / 255.0;
        const double fx = std::cbrt(0.4124 * r + 0.3576 * g + 0.1805 * b);
        const double fy = std::cbrt(0.2126 * r + 0.7152 * g + 0.0722 * b);
        const double fz = std::cbrt(0.0193 * r + 0.1192 * g + 0.9505 * b);
        const std::uint32_t lab = RgbToLab(color);
        expectCut(lab, 16, (116 * fy - 16) * 2.55);
        // What is cut is the distance from 128, toward 128.
        expectCut(lab, 8, 128 + std::trunc(500 * (fx - fy)));
        expectCut(lab, 0, 128 + std::trunc(200 * (fy - fz)));

        const double y = (((color >> 16 & 255) / 2.55) + 16) / 116, x = (double(color >> 8 & 255) - 128) / 500 + y,
                     z = y - (double(color & 255) - 128) / 200;
        const double xyz[3] = {x * x * x * 255, y * y * y * 255, z * z * z * 255};
        const double back[3] = {0.0557 * xyz[0] - 0.204 * xyz[1] + 1.057 * xyz[2],
                                -0.9689 * xyz[0] + 1.8758 * xyz[1] + 0.0415 * xyz[2],
                                3.2406 * xyz[0] - 1.5372 * xyz[1] - 0.4986 * xyz[2]};
        for (int c = 0; c < 3; ++c) {  // X, Y and Z are cut to whole numbers on the way: 3.24 + 0.5 + 1 away
            ASSERT_NEAR(LabToRgb(color) >> (8 * c) & 255, std::min(std::max(back[c], 0.0), 255.0), 4.8)
                << std::hex << color;
        }
    }
    // Gray 128 by hand: fy = 0.7947, fx = 0.7814 (X sums to 0.9505), fz = 0.8176 (Z sums to 1.089); so
    // L = 76.19 x 2.55, a = 128 - cut(6.67), b = 128 - cut(4.58).
    EXPECT_EQ(RgbToLab(0x808080), word(194, 122, 124));
}

TEST(FormatRows, DeepPixelsAsByHand) {
    const Case cases[] = {
        {D::FormatRgb, D::FormatRgb10, 0, 0xFF804020, 128u << 20 | 64 << 10 | 32},
        {D::FormatRgb, D::FormatRgb10, 2, 0xFF804020, 512u << 20 | 256 << 10 | 128},
        {D::FormatRgb, D::FormatRgb16, 1, 0xFF804020, 0x0000008000400020},
        {D::FormatRgb, D::FormatRgb16, 2, 0xFF804020, 0x0000800040002000},
        {D::FormatRgb10, D::FormatRgb, 2, 0xC0000000 | 1023u << 20 | 512 << 10 | 3, 0x00FF8000},
        {D::FormatRgb10, D::FormatRgb, 0, 0xC0000000 | 1023u << 20 | 512 << 10 | 3, 0x00FF0003},
        {D::FormatRgb16, D::FormatRgb, 2, 0x123456789ABCDEF0, 0x12569ADE},
        {D::FormatRgb16, D::FormatRgb, 1, 0x123456789ABCDEF0, 0x3478BCF0},
        {D::FormatRgb10, D::FormatUShort, 0, 0x3FFFFFFF, 1023},
        {D::FormatRgb10, D::FormatUShort, 2, 0x3FFFFFFF, 1023 << 4},
        {D::FormatRgb10, D::FormatUShort, 0, 1000u << 20, 299},  // 4899 x 1000 >> 14
        {D::FormatRgb16, D::FormatUShort, 2, 0xFFFFFFFFFFFFFFFF, 65535},
        {D::FormatRgb16, D::FormatUShort, 0, 0xFFFF00000000FFFF, 7471},  // 1868 x 65535 >> 14
        {D::FormatUByte, D::FormatRgb, 0, 0x7B, 0x7B7B7B7B},
        {D::FormatHsv, D::FormatUByte, 0, 0x99112233, 0x33},
        {D::FormatYuv, D::FormatUByte, 0, 0x99112233, 0x11},
        {D::FormatLab, D::FormatUByte, 0, 0x99112233, 0x11},
        {D::FormatRgb, D::FormatUByte, 0, 0x99FFFFFF, 255},
    };
    for (const Case& one : cases) {
        const FormatConversion& conversion = conversionOf(one.from, one.to);
        for (const FormatRow row : {conversion.plain, conversion.wide}) {
            if (row == conversion.wide && !HasAvx2()) continue;
            std::uint64_t in = one.in, out = 0;
            row(reinterpret_cast<std::uint8_t*>(&in), reinterpret_cast<std::uint8_t*>(&out), 1, one.mode);
            EXPECT_EQ(out, one.out) << std::hex << out << " from " << D::GetFormatName(one.from) << " to "
                                    << D::GetFormatName(one.to) << " mode " << one.mode;
        }
    }
}

TEST(FormatRows, WideRowsEqualPlainOnesAtAnyLengthAndAddress) {
    if (!HasAvx2()) GTEST_SKIP() << "needs AVX2";
    for (const FormatConversion& conversion : GetFormatConversions()) {
        if (!conversion.plain) continue;
        for (const std::size_t count : kRowLengths) {
            for (const int mode : {0, 2}) {
                GuardedBytes in = RandomGuarded(count * bytesOf(conversion.source), 1, 11);
                GuardedBytes plain(count * bytesOf(conversion.destination), 3), wide = plain;
                conversion.plain(in.Data(), plain.Data(), count, mode);
                conversion.wide(in.Data(), wide.Data(), count, mode);
                EXPECT_EQ(plain.Content(), wide.Content())
                    << D::GetFormatName(conversion.source) << " " << D::GetFormatName(conversion.destination);
                EXPECT_TRUE(plain.GuardsStand() && wide.GuardsStand());
            }
        }
    }
}

// Near-gray colors lie on rounding ties of the hue by the dozen, the steps of 17 on those of the saturation.
TEST(FormatRows, GuessedColorsAreTheKernelsEvenOnTies) {
    if (!HasAvx2()) GTEST_SKIP() << "needs AVX2";
    std::vector<std::uint32_t> colors;
    for (std::uint32_t color = 0; color < 1u << 24; color += 211) colors.push_back(color);
    for (int r = 0; r < 256; r += 17) {
        for (int g = 0; g < 256; g += 5) {
            for (int b = 0; b < 256; b += 17) colors.push_back(word(r, g, b) | 0x5A000000);
        }
    }
    for (int i = 0; i < 4096; ++i) colors.push_back(word(120 + i % 16, 120 + i / 16 % 16, 120 + i / 256));
    for (const D::Format format : {D::FormatHsv, D::FormatLab}) {
        std::vector<std::uint32_t> plain(colors.size()), wide = colors;
        const FormatConversion& conversion = conversionOf(D::FormatRgb, format);
        conversion.plain(reinterpret_cast<std::uint8_t*>(colors.data()), reinterpret_cast<std::uint8_t*>(plain.data()),
                         colors.size(), 0);
        auto* inPlace = reinterpret_cast<std::uint8_t*>(wide.data());
        conversion.wide(inPlace, inPlace, wide.size(), 0);
        const auto difference = std::mismatch(plain.begin(), plain.end(), wide.begin());
        EXPECT_EQ(difference.first, plain.end())
            << std::hex << colors[static_cast<std::size_t>(difference.first - plain.begin())];
    }
}

TEST(ConvertFormat, WorksFromTheRoiOriginsAtEachPitchWhateverTheLevel) {
    for (const int level : {0, 1}) {
        ctiv_SetAccelerationLevel(level);
        CTivImage source(5, 4, D::FormatRgb, nullptr, true), destination(4, 5, D::FormatUByte, nullptr, true);
        for (int i = 0; i < 20; ++i) source.SetData(i % 5, i / 5, D::Rgb(0, static_cast<std::uint8_t>(10 * i), 0));
        ASSERT_TRUE(source.SetRoi({2, 1, 2, 2}));
        ASSERT_TRUE(destination.SetRoi({1, 2, 3, 3}));
        ASSERT_TRUE(destination.ConvertFormat(source, 0));
        // Green 70, 80 / 120, 130, x 601 >> 10.
        const std::uint8_t expected[20] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 41, 46, 0, 0, 70, 76, 0, 0, 0, 0, 0};
        EXPECT_EQ(std::memcmp(destination.GetData(), expected, 20), 0) << level;

        CTivImage copy(2, 3, D::FormatColorUByte, nullptr, true);
        ASSERT_TRUE(copy.ConvertFormat(source, 0));
        EXPECT_EQ(copy.GetData(1, 1).AsColorUByte(), word(0, 130, 0));
        EXPECT_EQ(copy.GetData(1, 2).AsColorUByte(), 0u);
        EXPECT_EQ(copy.GetFormat(), D::FormatColorUByte);
    }
}

TEST(ConvertFormat, RefusalsSayWhy) {
    constexpr const char* kPrefix = "CTivImage::ConvertFormat => ";
    struct Refusal {
        D::Format from, to;
        int width;
        const char* text;
    };
    const Refusal refusals[] = {
        {D::FormatRgb, D::FormatNone, 4, "Destination image must be preallocated"},
        {D::FormatRgb, D::FormatUShort, 4, "Destination image format not supported for the specified conversion"},
        {D::FormatColorUByte, D::FormatUByte, 4, "Destination image format not supported for the specified conversion"},
        {D::FormatUShort, D::FormatRgb, 4, "Source image format not supported for the specified conversion"},
        {D::FormatNone, D::FormatRgb, 4, "Source image format not supported for the specified conversion"},
        {D::FormatRgb, D::FormatUByte, 3, "Destination image size too small"},
        {D::FormatRgb16, D::FormatRgb, 3, "Destination image size too small"},
        {D::FormatRgb, D::FormatColorUByte, 3, "Destination image ROI too small"},
        {D::FormatRgb, D::FormatRgb, 3, "Destination image ROI too small"},
    };
    for (const Refusal& one : refusals) {
        CTivImage source, destination;
        if (one.from != D::FormatNone) source.Set(4, 4, one.from, nullptr, true);
        if (one.to != D::FormatNone) destination.Set(one.width, 4, one.to, nullptr, true);
        EXPECT_FALSE(destination.ConvertFormat(source, 0));
        EXPECT_EQ(LastError(), std::string(kPrefix) + one.text);
    }
}

TEST(ConvertFormat, ImagesWithoutPixelsConvertToNothing) {
    CTivImage source(0, 5, D::FormatRgb, nullptr, true), destination(4, 5, D::FormatHsv, nullptr, true);
    EXPECT_TRUE(destination.ConvertFormat(source, 0));
    CTivImage small(2, 2, D::FormatLab, nullptr, true);
    small.SetData(1, 1, {D::FormatLab, 0x112233});
    CTivImage same(2, 2, D::FormatLab, nullptr, true);
    EXPECT_TRUE(same.ConvertFormat(small, 0));
    EXPECT_EQ(same.GetData(1, 1).AsLab(), 0x112233u);
}
