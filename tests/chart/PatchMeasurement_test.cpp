#include "chart/PatchMeasurement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

#include "chart/SamplingArea.h"
#include "tests/support/drawn_chart.h"
#include "tests/support/library.h"

using namespace tonewright;

namespace {

using Color = DrawnChart::Color;

constexpr CTivData::Format kFormats[] = {CTivData::FormatRgb, CTivData::FormatRgb10, CTivData::FormatRgb16};

/// One row of pixels; `level` tells each pixel's three equal channels, as fractions of full scale.
template <class Level>
PatchMeasurement measureRow(CTivData::Format format, int width, Level level) {
    const double fullScale = GetChannelFullScale(format);
    CTivImage image(width, 1, format, nullptr, true);
    for (int x = 0; x < width; ++x) {
        const auto word = static_cast<std::uint32_t>(std::clamp(std::round(level(x) * fullScale), 0.0, fullScale));
        image.SetData(x, 0, DrawnChart::Word(format, {word, word, word}, 0));
    }
    return MeasureArea(image, {0, 0, width, 1});
}

TEST(PatchMeasurement, MomentsOfFourPixelsByHand) {
    // Red 10 20 30 40: mean 25, variance (225 + 25 + 25 + 225) / 4 = 125. Green 5 5 7 7: mean 6, variance 1, with red
    // (15 + 5 + 5 + 15) / 4 = 10. Blue as 100 less red: variance 125, with red -125, with green -10.
    for (const auto format : kFormats) {
        PatchAccumulator patch(format);
        for (const Color& color : {Color{10, 5, 90}, Color{20, 5, 80}, Color{30, 7, 70}, Color{40, 7, 60}}) {
            const std::uint64_t word = DrawnChart::Word(format, color, 0).GetPayload();
            patch.Add(&word, 1);
        }
        const PatchMeasurement measured = patch.Measure();
        EXPECT_EQ(measured.pixels, 4);
        EXPECT_EQ(measured.mean, (std::array<double, 3>{25, 6, 75}));
        EXPECT_DOUBLE_EQ(measured.deviation[0], std::sqrt(125.0));
        EXPECT_DOUBLE_EQ(measured.deviation[1], 1.0);
        EXPECT_DOUBLE_EQ(measured.covariance[0], 10.0);
        EXPECT_DOUBLE_EQ(measured.covariance[1], -125.0);
        EXPECT_DOUBLE_EQ(measured.covariance[2], -10.0);
        EXPECT_EQ(measured.clipped, 0.0);
    }
}

TEST(PatchMeasurement, CountsPixelsAtFullScaleInAnyChannel) {
    for (const auto format : kFormats) {
        const auto measured = measureRow(format, 200, [](int x) { return x < 3 ? 1.0 : 0.5; });
        EXPECT_DOUBLE_EQ(measured.clipped, 0.015) << format;
    }
}

TEST(PatchMeasurement, TellsTwoColorsFromNoiseAndSlopes) {
    std::mt19937 random(7);
    std::normal_distribution<double> normal;
    const auto noise = [&](double deviation) { return deviation * normal(random); };
    struct Case {
        const char* name;
        bool isMixed;
        std::function<double(int)> level;
    };
    const Case cases[] = {
        {"flat", false, [](int) { return 0.4; }},
        {"strong noise", false, [&](int) { return 0.4 + noise(0.08); }},
        {"an even slope", false, [](int x) { return 0.2 + 0.0003 * x; }},
        {"the last bit flickers", false, [](int x) { return x % 2 ? 100.0 / 255 : 101.0 / 255; }},
        {"a few hot pixels", false, [](int x) { return x % 50 ? 0.3 : 1.0; }},
        {"a shadow's edge", true, [&](int x) { return (x < 300 ? 0.5 : 0.35) + noise(0.01); }},
        {"a fifth on the dark frame", true, [&](int x) { return (x % 5 ? 0.3 : 0.05) + noise(0.02); }},
    };
    for (const Case& one : cases) {
        for (const auto format : kFormats) {
            EXPECT_EQ(measureRow(format, 1000, one.level).isMixed, one.isMixed) << one.name << ", " << format;
        }
    }
}

TEST(PatchMeasurement, AnAreaCountsAsFarAsItLiesInTheImage) {
    CTivImage image = DrawnChart{}.Draw();
    const std::int64_t whole = std::int64_t{image.GetWidth()} * image.GetHeight();
    EXPECT_EQ(MeasureArea(image, {-5, -5, 2000, 2000}).pixels, whole);
    EXPECT_EQ(MeasureArea(image, {-5, 3, 7, 2}).pixels, 4);
    EXPECT_EQ(MeasureArea(image, {image.GetWidth(), 0, 5, 5}).pixels, 0);
    EXPECT_EQ(MeasureArea(image, {0, 0, -1, 5}).pixels, 0);
    EXPECT_EQ(MeasureArea(CTivImage(4, 4, CTivData::FormatUByte, nullptr, true), {0, 0, 4, 4}).pixels, 0);
}

TEST(PatchMeasurement, MeansAreInTheOrderOfTheRawColors) {
    for (const std::uint32_t white : {0u, 5u, 18u, 23u}) {
        for (const auto& [columns, rows] : {std::pair{6, 4}, std::pair{4, 6}, std::pair{8, 3}}) {
            DrawnChart drawn{columns, rows, DrawnChart::Bright(24, white)};
            CTivImage image = drawn.Draw(CTivData::FormatRgb10, 2);
            const ChartSize chart{columns, rows};
            const ChartRoi roi{0, 0, image.GetWidth(), image.GetHeight()};
            PatchDetector detector;
            ASSERT_TRUE(detector.DetectPatches(image, roi, chart));
            const PatchColors colors = detector.GetRawColors(image, roi, chart, PatchDepth::AsImage);
            const auto patches = MeasureAreas(image, FindSamplingAreas(image, detector, chart, colors.brightest));
            ASSERT_EQ(patches.size(), 24u);
            for (int i = 0; i < 24; ++i) {
                const auto& mean = patches[static_cast<std::size_t>(i)].mean;
                const Color color{static_cast<std::uint32_t>(mean[0]), static_cast<std::uint32_t>(mean[1]),
                                  static_cast<std::uint32_t>(mean[2])};
                EXPECT_EQ(DrawnChart::Word(CTivData::FormatRgb10, color, 0).AsRgb10(),
                          colors.colors.GetData(i).AsRgb10());
            }
        }
    }
}

TEST(PatchMeasurement, AreaAndColorOfAnIncompleteGridAreOfTheSamePixels) {
    DrawnChart drawn;
    for (std::size_t row = 0; row < 4; ++row) drawn.colors[6 * row + 2] = drawn.surround;  // a column is not seen
    CTivImage image = drawn.Draw();
    const ChartRoi roi{0, 0, image.GetWidth(), image.GetHeight()};
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, roi, ChartSize{}));
    ASSERT_EQ(detector.GetFoundColumns(), 5);
    const PatchColors colors = detector.GetRawColors(image, roi, ChartSize{}, PatchDepth::AsImage);
    image.SetRoi({});
    const auto areas = FindSamplingAreas(image, detector, ChartSize{}, colors.brightest);
    const auto patches = MeasureAreas(image, areas);
    ASSERT_EQ(patches.size(), 24u);
    EXPECT_EQ(areas[5].front().x, areas[4].front().x) << "the one before it in the place of the missing one";
    for (int i = 0; i < 24; ++i) {
        const auto& mean = patches[static_cast<std::size_t>(i)].mean;
        EXPECT_EQ(colors.colors.GetData(i).AsRgb(),
                  (static_cast<std::uint32_t>(mean[0]) << 16 | static_cast<std::uint32_t>(mean[1]) << 8 |
                   static_cast<std::uint32_t>(mean[2])))
            << i;
    }
}

}  // namespace
