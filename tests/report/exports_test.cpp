#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <random>
#include <sstream>

#include "quality/color_difference.h"
#include "report/adaptation.h"
#include "report/cube_table.h"
#include "report/icc_profile.h"
#include "report/patch_tables.h"

using namespace tonewright;

namespace {

using Color = std::array<double, 3>;

/// A reader of .cube files by the format's own description, with the tetrahedral interpolation that players use.
struct CubeReader {
    int size = 0;
    std::vector<Color> points;

    explicit CubeReader(const std::string& text) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (line.empty() || line[0] == '#' || line.rfind("TITLE", 0) == 0 || line.rfind("DOMAIN", 0) == 0) continue;
            std::istringstream fields(line);
            if (line.rfind("LUT_3D_SIZE", 0) == 0) {
                fields.ignore(11);
                fields >> size;
                continue;
            }
            Color point{};
            if (fields >> point[0] >> point[1] >> point[2]) points.push_back(point);
        }
    }

    const Color& At(const std::array<int, 3>& at) const {
        return points.at(static_cast<std::size_t>((at[2] * size + at[1]) * size + at[0]));
    }

    Color operator()(const Color& color) const {
        std::array<int, 3> at{};
        std::array<std::pair<double, std::size_t>, 3> parts{};
        for (std::size_t k = 0; k < 3; ++k) {
            const double place = color[k] * (size - 1);
            at[k] = std::min(static_cast<int>(place), size - 2);
            parts[k] = {place - at[k], k};
        }
        std::sort(parts.rbegin(), parts.rend());
        Color result = At(at);
        for (const auto& [part, channel] : parts) {  // from corner to corner, the longest way first
            const Color before = At(at);
            ++at[channel];
            for (std::size_t k = 0; k < 3; ++k) result[k] += part * (At(at)[k] - before[k]);
        }
        return result;
    }
};

/// A matrix as a camera's, with limits and gamma.
Color corrected(const Color& c) {
    const auto coded = [](double v) { return std::pow(std::clamp(v, 0.0, 1.0), 0.45); };
    return {coded(1.6 * c[0] - 0.4 * c[1] - 0.1 * c[2]), coded(-0.2 * c[0] + 1.4 * c[1] - 0.2 * c[2]),
            coded(0.02 * c[0] - 0.3 * c[1] + 1.3 * c[2])};
}

Xyz seen(const Color& c) {
    return {0.41 * c[0] + 0.36 * c[1] + 0.18 * c[2] + 0.01, 0.21 * c[0] + 0.72 * c[1] + 0.07 * c[2] + 0.012,
            0.02 * c[0] + 0.12 * c[1] + 0.95 * c[2] + 0.009};
}

Xyz seenBent(const Color& c) {
    Xyz color = seen(c);
    color[0] += 0.05 * c[0] * c[1];
    color[1] += 0.04 * c[1] * c[1];
    return color;
}

}  // namespace

TEST(CubeTable, AnotherReaderGetsTheCorrection) {
    const std::string text = CubeTable(corrected, "camera \"3\"\nand more");
    const CubeReader cube(text);
    ASSERT_EQ(cube.size, 33);
    ASSERT_EQ(cube.points.size(), 33u * 33 * 33);
    EXPECT_NE(text.find("TITLE \"camera  3  and more\"\n"), std::string::npos);

    std::mt19937 random(1);
    std::uniform_int_distribution<int> byte(0, 255);
    double sum = 0;
    int within = 0;
    constexpr int kColors = 5000;
    for (int i = 0; i < kColors; ++i) {
        const Color color = {byte(random) / 255.0, byte(random) / 255.0, byte(random) / 255.0};
        const Color wanted = corrected(color), got = cube(color);
        double worst = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            worst = std::max(worst, std::abs(wanted[k] - got[k]) * 255);
            sum += std::abs(wanted[k] - got[k]) * 255 / (3 * kColors);
        }
        if (worst <= 1.5) ++within;
    }
    EXPECT_LT(sum, 0.7);
    EXPECT_GT(within, kColors * 85 / 100) << "33 points follow gamma everywhere but near black and at a cut";
    // What the head tells, by other colors and another interpolation.
    double told = 0, share = 0;
    ASSERT_EQ(std::sscanf(text.c_str(),
                          "# Interpolated, this table strays from the correction by %lf 8-bit steps on average, by\n"
                          "# no more than 1.5 for %lf %% of all colors",
                          &told, &share),
              2);
    EXPECT_NEAR(told, sum, 0.1);
    EXPECT_NEAR(share, 100.0 * within / kColors, 2);
    // The axes are not mixed up: red runs fastest.
    for (const Color& corner : {Color{1, 0, 0}, Color{0, 1, 0}, Color{0, 0, 1}}) {
        for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(cube(corner)[k], corrected(corner)[k], 1e-6);
    }
}

// Little CMS reads back what it wrote: from raw colors to CIE L*a*b*.
TEST(IccProfile, ReadBackItSeesTheColors) {
    for (const bool isLinear : {true, false}) {
        const ColorFunction toXyz = isLinear ? ColorFunction(seen) : ColorFunction(seenBent);
        const std::vector<std::uint8_t> bytes = IccProfile(toXyz, isLinear, "a camera");
        ASSERT_FALSE(bytes.empty());
        const std::unique_ptr<void, int (*)(void*)> camera(
            cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())), cmsCloseProfile);
        ASSERT_TRUE(camera);
        EXPECT_EQ(cmsGetDeviceClass(camera.get()), cmsSigInputClass);
        char name[32] = {};
        cmsGetProfileInfoASCII(camera.get(), cmsInfoDescription, "en", "US", name, sizeof name);
        EXPECT_STREQ(name, "a camera");
        const std::unique_ptr<void, int (*)(void*)> lab(cmsCreateLab4Profile(nullptr), cmsCloseProfile);
        const std::unique_ptr<void, void (*)(void*)> transform(
            cmsCreateTransform(camera.get(), TYPE_RGB_DBL, lab.get(), TYPE_Lab_DBL, INTENT_RELATIVE_COLORIMETRIC, 0),
            cmsDeleteTransform);
        ASSERT_TRUE(transform);
        for (int i = 0; i < 64; ++i) {
            const Color raw = {(i & 3) / 3.0, (i >> 2 & 3) / 3.0, (i >> 4) / 3.0};
            cmsCIELab got{};
            cmsDoTransform(transform.get(), raw.data(), &got, 1);
            const Lab wanted = XyzToLab(ToD50(toXyz(raw)), kWhiteD50);
            EXPECT_LT(DeltaE76({got.L, got.a, got.b}, wanted), isLinear ? 0.1 : 1.0) << "color " << i;
        }
    }
}

TEST(PatchTables, NumbersStandInTheirColumns) {
    ReportPatch white;
    white.number = 19;
    white.name = "White, \"the\"";
    white.color.measured = {0.8, 0.5, 0.25};
    white.color.target = {1, 1, 1};
    white.color.targetLab = white.color.deliveredLab = {100, 0, 0};
    white.before = 12.5;
    const std::vector<ReportPatch> patches = {white};

    std::istringstream table(CgatsTable(patches, "2026-01-02"));
    std::string line;
    while (std::getline(table, line) && line != "BEGIN_DATA") {
    }
    double id = 0, rgb[3] = {}, xyz[3] = {}, lab[3] = {};
    table >> id >> rgb[0] >> rgb[1] >> rgb[2] >> xyz[0] >> xyz[1] >> xyz[2] >> lab[0] >> lab[1] >> lab[2];
    ASSERT_TRUE(table);
    EXPECT_EQ(id, 19);
    EXPECT_DOUBLE_EQ(rgb[0], 80);
    EXPECT_DOUBLE_EQ(rgb[2], 25);
    EXPECT_NEAR(xyz[0], 96.42, 0.02) << "white adapted to D50";
    EXPECT_NEAR(xyz[1], 100, 0.01);
    EXPECT_NEAR(xyz[2], 82.49, 0.02);
    EXPECT_NEAR(lab[0], 100, 0.01);
    EXPECT_NEAR(lab[1], 0, 0.05);

    const std::string csv = PatchCsv(patches, 1023);
    EXPECT_NE(csv.find("19,\"White, \"\"the\"\"\",818,512,256,100.0000,0.0000,0.0000,100.0000,0.0000,0.0000,12.5000,"
                       "0.0000,0.0000\r\n"),
              std::string::npos)
        << csv;
}
