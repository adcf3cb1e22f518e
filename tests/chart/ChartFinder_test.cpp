#include "chart/ChartFinder.h"

#include <gmock/gmock.h>

#include <numeric>

#include "chart/SamplingArea.h"
#include "tests/support/staged_chart.h"

using namespace tonewright;

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

double distance(const ChartPoint& a, const ChartPoint& b) { return std::hypot(a.x - b.x, a.y - b.y); }

/// The farthest that a patch's centre lies from where it is, in pixels; a huge number where there is no chart.
double worstCenter(const FoundChart& found, const StagedChart& staged) {
    if (found.patches.size() != 24) return 1e9;
    double worst = 0;
    for (int i = 0; i < 24; ++i) {
        worst = std::max(worst, distance(found.patches[static_cast<std::size_t>(i)].center, staged.At(i % 6, i / 6)));
    }
    return worst;
}

/// The same of the corners of patches, each where the chart's order wants it.
double worstCorner(const FoundChart& found, const StagedChart& staged) {
    if (found.patches.size() != 24) return 1e9;
    constexpr double kSigns[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    double worst = 0;
    for (int i = 0; i < 24; ++i) {
        for (std::size_t k = 0; k < 4; ++k) {
            const ChartPoint is = found.patches[static_cast<std::size_t>(i)].corners[k];
            const double half = staged.side / 2;
            worst = std::max(worst, distance(is, staged.At(i % 6 + half * kSigns[k][0], i / 6 + half * kSigns[k][1])));
        }
    }
    return worst;
}

struct View {
    const char* name;
    std::function<void(StagedChart&)> stage;
};
void PrintTo(const View& view, std::ostream* out) { *out << view.name; }

class ChartFinderView : public testing::TestWithParam<View> {};

TEST_P(ChartFinderView, FindsEveryPatchInChartOrder) {
    StagedChart staged;
    GetParam().stage(staged);
    const FoundChart found = ChartFinder().Find(staged.Draw());
    ASSERT_TRUE(found.found) << found.text;
    EXPECT_LT(worstCenter(found, staged), staged.step / 8);
    EXPECT_EQ(found.mirrored, staged.isMirrored);
    EXPECT_GT(found.confidence, 0.5);
    EXPECT_EQ(found.text, "");
}

INSTANTIATE_TEST_SUITE_P(Views, ChartFinderView,
                         testing::Values(View{"Upright", [](StagedChart&) {}},
                                         View{"Turned90",
                                              [](StagedChart& s) {
                                                  s.rotation = 90;
                                                  s.step = 60;
                                              }},
                                         View{"Turned180", [](StagedChart& s) { s.rotation = 180; }},
                                         View{"Turned33", [](StagedChart& s) { s.rotation = 33; }},
                                         View{"Tilted40", [](StagedChart& s) { s.tilt = 40; }},
                                         View{"TiltedAcross",
                                              [](StagedChart& s) {
                                                  s.tilt = 40;
                                                  s.tiltAxis = 60;
                                                  s.rotation = 200;
                                              }},
                                         View{"Mirrored",
                                              [](StagedChart& s) {
                                                  s.isMirrored = true;
                                                  s.rotation = 120;
                                                  s.tilt = 25;
                                                  s.step = 55;
                                              }},
                                         View{"TenPixels",
                                              [](StagedChart& s) {
                                                  s.step = 12;
                                                  s.rotation = 20;
                                                  s.offsetX = 150;
                                                  s.offsetY = -60;
                                              }},
                                         View{"FillsThePicture", [](StagedChart& s) { s.step = 104; }},
                                         View{"CutAtTheFrame",
                                              [](StagedChart& s) {
                                                  s.step = 118;
                                                  s.side = 0.9;
                                                  s.width = 700;
                                              }},
                                         View{"Linear",
                                              [](StagedChart& s) {
                                                  s.exponent = 1;
                                                  s.rotation = 10;
                                              }},
                                         View{"CastAndFalloff",
                                              [](StagedChart& s) {
                                                  s.cast = {0.5, 0.9, 0.3};
                                                  s.falloff = 0.5;
                                                  s.rotation = 275;
                                              }},
                                         View{"NoiseAndBlur",
                                              [](StagedChart& s) {
                                                  s.noise = 8;
                                                  s.blur = 2;
                                                  s.rotation = 5;
                                              }},
                                         View{"Dark",
                                              [](StagedChart& s) {
                                                  s.cast = {0.05, 0.05, 0.05};
                                                  s.noise = 1;
                                              }},
                                         View{"WhiteAndTwoMoreCovered",
                                              [](StagedChart& s) {
                                                  s.covered = {18, 15, 5};
                                              }},
                                         View{"Overexposed",
                                              [](StagedChart& s) {
                                                  s.cast = {1.3, 1.3, 1.3};
                                              }},
                                         View{"LightCard",
                                              [](StagedChart& s) {
                                                  s.card = {0.7, 0.7, 0.7};
                                              }}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ChartFinder, PlacesCornersToHalfAPixelOnCleanPicturesOfEveryFormat) {
    StagedChart staged;
    staged.rotation = 17;
    staged.tilt = 30;
    staged.tiltAxis = 40;
    for (const auto format : {CTivData::FormatRgb, CTivData::FormatRgb10, CTivData::FormatRgb16}) {
        const FoundChart found = ChartFinder().Find(staged.Draw(format));
        EXPECT_LT(worstCorner(found, staged), 0.5) << CTivData::GetFormatName(format);
        EXPECT_LT(distance(found.corners[2], staged.At(5 + staged.side / 2, 3 + staged.side / 2)), 0.5);
        EXPECT_GE(found.seen, 23);  // black on a black card has hardly an edge
    }
}

TEST(ChartFinder, RaisesTwelveBitsInWordsOfSixteen) {
    StagedChart staged;
    staged.exponent = 1;
    staged.cast = {1 / 16.0, 1 / 16.0, 1 / 16.0};
    const FoundChart found = ChartFinder().Find(staged.Draw(CTivData::FormatRgb16));
    EXPECT_LT(worstCorner(found, staged), 0.5);
    EXPECT_GE(found.seen, 23);
}

TEST(ChartFinder, FollowsALensThatBendsTheRows) {
    for (const double lens : {0.05, -0.05}) {
        StagedChart staged;
        staged.lens = lens;
        staged.step = 85;
        staged.rotation = 3;
        // A straight grid through the outer corners would be off by so many pixels.
        const ChartPoint a = staged.At(0, 0), b = staged.At(5, 0), middle = staged.At(2.5, 0);
        ASSERT_GT(std::abs(middle.y - (a.y + b.y) / 2), 1.5);
        EXPECT_LT(worstCorner(ChartFinder().Find(staged.Draw()), staged), 0.8) << lens;
    }
}

TEST(ChartFinder, TellsTheRotationOfTheFirstRow) {
    for (const double rotation : {-170.0, -45.0, 0.0, 60.0, 179.0}) {
        StagedChart staged;
        staged.rotation = rotation;
        staged.step = 55;
        EXPECT_NEAR(ChartFinder().Find(staged.Draw()).rotation, rotation, 0.2);
    }
}

/// Two charts side by side, the second one turned.
CTivImage twoCharts() {
    StagedChart left, right;
    left.step = right.step = 40;
    left.rotation = 8;
    right.rotation = 185;
    CTivImage image(1280, 480, CTivData::FormatRgb, nullptr, true);
    image.SetRoi({0, 0, 640, 480});
    image.Copy(left.Draw());
    image.SetRoi({640, 0, 640, 480});
    image.Copy(right.Draw());
    return image;
}

TEST(ChartFinder, RefusesTwoChartsUntilARoiDecides) {
    const CTivImage image = twoCharts();
    const FoundChart both = ChartFinder().Find(image);
    EXPECT_EQ(both.refusal, FindRefusal::Several);
    EXPECT_THAT(both.text, ContainsRegex("around 3[12].,2[34]. and 9[56].,2[34].;"));
    const FoundChart right = ChartFinder().Find(image, ChartRoi{640, 0, 1280, 480});
    ASSERT_TRUE(right.found);
    EXPECT_GT(right.patches[0].center.x, 960);  // turned by half: the first patch lies at the lower right
    EXPECT_NEAR(right.rotation, -175, 0.3);
}

TEST(ChartFinder, SaysWhichCornersOfTheChartAreMissing) {
    StagedChart staged;
    staged.offsetX = -180;
    staged.rotation = 12;
    const FoundChart cut = ChartFinder().Find(staged.Draw());
    EXPECT_EQ(cut.refusal, FindRefusal::TooFew);
    EXPECT_THAT(cut.text, HasSubstr("patches of a grid were seen; the "));
    EXPECT_THAT(cut.text, HasSubstr("upper left"));
    EXPECT_THAT(cut.text, HasSubstr("lower left"));
    EXPECT_THAT(cut.text, HasSubstr("outside the picture"));
    EXPECT_FALSE(cut.found);
    EXPECT_TRUE(cut.patches.empty());
}

TEST(ChartFinder, TakesNoGridOfOtherColorsForTheChart) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> value(0.05, 0.9);
    for (int trial = 0; trial < 12; ++trial) {
        StagedChart staged;
        staged.width = staged.height = 320;
        staged.rotation = 31 * trial;
        staged.step = 40;
        const int kind = trial % 3;
        for (StagedChart::Color& color : staged.colors) {
            color = {value(random), value(random), value(random)};
            if (kind == 0) color[1] = color[2] = color[0];
        }
        if (kind == 2) {
            staged.colors = StagedChart::ReferenceColors();
            std::shuffle(staged.colors.begin(), staged.colors.end(), random);
        }
        const FoundChart found = ChartFinder().Find(staged.Draw());
        EXPECT_EQ(found.refusal, FindRefusal::NoOrientation) << trial << found.text;
        EXPECT_GT(found.seen, 15) << trial;
    }
}

TEST(ChartFinder, SaysWhyPicturesWithoutAGridAreNoCharts) {
    CTivImage flat(300, 200, CTivData::FormatRgb, nullptr, true);
    EXPECT_EQ(ChartFinder().Find(flat).refusal, FindRefusal::NoPatches);
    EXPECT_EQ(ChartFinder().Find(CTivImage(1, 1, CTivData::FormatRgb, nullptr, true)).refusal, FindRefusal::NoPatches);

    for (int i = 0; i < 9; ++i) {  // squares at odd places
        const int x = 10 + (i * 97) % 270, y = 10 + (i * i * 37) % 170;
        for (int p = 0; p < 256; ++p) flat.SetData(x + p % 16, y + p / 16, CTivData::Rgb(200, 180, 160));
    }
    const FoundChart scattered = ChartFinder().Find(flat);
    EXPECT_EQ(scattered.refusal, FindRefusal::NoGrid);
    EXPECT_THAT(scattered.text, HasSubstr("form no grid"));

    const CTivImage gray(300, 200, CTivData::FormatUByte, nullptr, true);
    EXPECT_THAT(ChartFinder().Find(gray).text, HasSubstr("no colors"));
    EXPECT_FALSE(ChartFinder().Find(CTivImage()).found);
    EXPECT_THAT(ChartFinder().Find(flat, ChartRoi{0, 0, 301, 200}).text, HasSubstr("ROI"));
    EXPECT_THAT(ChartFinder().Find(flat, ChartRoi{50, 0, 50, 200}).text, HasSubstr("ROI"));
}

TEST(SamplingArea, OfAFoundPatchIsItsInnerHalf) {
    // A patch from 10 to 30 in both directions has 15 to 25 as its inner half: 11 x 11 pixel centres.
    CTivImage image(40, 40, CTivData::FormatRgb, nullptr, true);
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool isIn = x >= 15 && x <= 25 && y >= 15 && y <= 25;
            image.SetData(
                x, y,
                isIn ? CTivData::Rgb(100, 150, static_cast<std::uint8_t>(200 + (x == 20))) : CTivData::Rgb(255, 0, 0));
        }
    }
    FoundChart chart;
    chart.patches.push_back({{20, 20}, {{{10, 10}, {30, 10}, {30, 30}, {10, 30}}}, true});
    // On its tip: the rows 15 to 25 hold 1, 3, 5, 7, 9, 11, 9 ... pixels.
    chart.patches.push_back({{20, 20}, {{{20, 10}, {30, 20}, {20, 30}, {10, 20}}}, true});
    // Half of it is beyond the picture's corner: 0 to 5 in both directions are left.
    chart.patches.push_back({{0, 0}, {{{-10, -10}, {10, -10}, {10, 10}, {-10, 10}}}, true});
    const auto measured = MeasureAreas(image, FindSamplingAreas(image, chart));
    ASSERT_EQ(measured.size(), 3u);
    EXPECT_EQ(measured[0].pixels, 121);
    EXPECT_NEAR(measured[0].mean[2], 200 + 1.0 / 11, 1e-9);
    EXPECT_EQ(measured[0].clipped, 0);
    EXPECT_EQ(measured[1].pixels, 61);
    EXPECT_NEAR(measured[1].mean[2], 200 + 11.0 / 61, 1e-9);
    EXPECT_EQ(measured[2].pixels, 36);
    EXPECT_EQ(measured[2].clipped, 1);
}

}  // namespace
