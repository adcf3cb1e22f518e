#include "chart/PatchDetector.h"

#include <gmock/gmock.h>

#include <tuple>

#include "tests/support/drawn_chart.h"
#include "tests/support/library.h"

namespace {

using Color = DrawnChart::Color;
using testing::Each;
using testing::ElementsAre;
using testing::FloatEq;

ChartRoi wholeOf(const CTivImage& image) { return {0, 0, image.GetWidth(), image.GetHeight()}; }

std::vector<Color> toColors(const CTivVector& vector) {
    std::vector<Color> colors;
    for (int i = 0; i < vector.GetSize(); ++i) {
        const std::uint64_t word = vector.GetData(i).GetPayload();
        const int bits = vector.GetFormat() == CTivData::FormatRgb16   ? 16
                         : vector.GetFormat() == CTivData::FormatRgb10 ? 10
                                                                       : 8;
        const auto channel = [&](int place) {
            return static_cast<std::uint32_t>(word >> place * bits & ((1u << bits) - 1));
        };
        colors.push_back({channel(2), channel(1), channel(0)});
    }
    return colors;
}

std::vector<float> rowsOf(const PatchDetector& detector) {
    std::vector<float> rows;
    for (const auto& row : detector.GetGrid()) rows.push_back(row.front().y);
    return rows;
}

std::vector<float> columnsOf(const PatchDetector& detector) {
    std::vector<float> columns;
    for (const PatchCell& cell : detector.GetGrid().front()) columns.push_back(cell.x);
    return columns;
}

/// Paints a rectangle in one color.
void paint(CTivImage& image, const CTivRect& rect, const Color& color) {
    for (int y = rect.y; y < rect.y + rect.height; ++y) {
        for (int x = rect.x; x < rect.x + rect.width; ++x) {
            image.SetData(x, y, DrawnChart::Word(image.GetFormat(), color, 0));
        }
    }
}

TEST(PatchDetector, FindsEveryPatchOfACleanChart) {
    const DrawnChart chart;
    CTivImage image = chart.Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {}));
    EXPECT_EQ(detector.GetBlobCount(), 24);
    EXPECT_EQ(detector.GetPatchWidth(), 20);
    EXPECT_EQ(detector.GetPatchHeight(), 20);
    // The pixels 10 to 49 of a patch have their centre of gravity at 29.5.
    EXPECT_THAT(columnsOf(detector), ElementsAre(29.5f, 79.5f, 129.5f, 179.5f, 229.5f, 279.5f));
    EXPECT_THAT(rowsOf(detector), ElementsAre(29.5f, 79.5f, 129.5f, 179.5f));
    ASSERT_EQ(detector.GetOverlay().size(), 24u);
    const PatchOverlay& last = detector.GetOverlay().back();
    EXPECT_THAT(std::tuple(last.x, last.y, last.width, last.height, last.penColor),
                testing::FieldsAre(269, 169, 20, 20, 0x33FF00u));
    const PatchColors colors = detector.GetRawColors(image, wholeOf(image), {});
    EXPECT_EQ(toColors(colors.colors), chart.colors);
    EXPECT_TRUE(colors.measured);
    EXPECT_FALSE(colors.saturated);
}

TEST(PatchDetector, CountsFromTheRoiAndLeavesTheRegionOfTheImageAlone) {
    DrawnChart chart;
    CTivImage image = chart.Draw();
    image.SetRoi({1, 2, 3, 4});
    PatchDetector detector;
    // The last two columns and rows of the chart.
    const ChartRoi roi = {chart.Left(4) - 5, chart.Top(2) - 5, chart.Width(), chart.Height()};
    ASSERT_TRUE(detector.DetectPatches(image, roi, {2, 2}));
    EXPECT_EQ(image.GetRoi(), (CTivRect{1, 2, 3, 4}));
    EXPECT_THAT(columnsOf(detector), ElementsAre(24.5f, 74.5f));
    EXPECT_EQ(detector.GetOverlay().front().x, chart.Left(4) + 9);
    EXPECT_EQ(toColors(detector.GetRawColors(image, roi, {2, 2}).colors),
              (std::vector{chart.colors[16], chart.colors[17], chart.colors[22], chart.colors[23]}));
}

TEST(PatchDetector, DarkPatchesAreCoveredByTheirNeighbours) {
    DrawnChart chart;
    for (const std::size_t dark : {0u, 9u, 23u}) chart.colors[dark] = {12, 14, 16};
    CTivImage image = chart.Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {}));
    EXPECT_EQ(detector.GetBlobCount(), 21);
    EXPECT_EQ(toColors(detector.GetRawColors(image, wholeOf(image), {}).colors), chart.colors);
}

TEST(PatchDetector, ADarkRowIsMissedAndTheLaterRowsMoveUp) {
    DrawnChart chart;
    for (std::size_t i = 6; i < 12; ++i) chart.colors[i] = chart.surround;
    CTivImage image = chart.Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {}));
    EXPECT_THAT(rowsOf(detector), ElementsAre(29.5f, 129.5f, 179.5f, 0.0f));
    EXPECT_EQ(detector.GetFoundRows(), 3);
    EXPECT_EQ(detector.GetFoundColumns(), 6);
    EXPECT_EQ(detector.GetOverlay().size(), 24u);
    EXPECT_EQ(detector.GetOverlay().back().y, -10);
}

TEST(PatchDetector, GroupsThatAreTooManyAreDropped) {
    const DrawnChart chart;
    CTivImage image = chart.Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {4, 3}));
    EXPECT_EQ(detector.GetBlobCount(), 24);
    EXPECT_THAT(columnsOf(detector), ElementsAre(29.5f, 79.5f, 129.5f, 179.5f));
    EXPECT_THAT(rowsOf(detector), ElementsAre(29.5f, 79.5f, 129.5f));
}

TEST(PatchDetector, AStepOfTheSamplingSizeOpensTheNextRow) {
    const struct {
        int offset;
        std::vector<float> rows;
    } cases[] = {
        {19, {29.5f + 19 * 0.5f, 0.0f}},  // one row, at the mean of both
        {20, {29.5f, 49.5f}},             // exactly half a patch
    };
    for (const auto& [offset, rows] : cases) {
        CTivImage image(200, 100, CTivData::FormatRgb, nullptr, true);
        paint(image, {10, 10, 40, 40}, {200, 200, 200});
        paint(image, {110, 10 + offset, 40, 40}, {200, 200, 200});
        PatchDetector detector;
        ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {2, 2}));
        EXPECT_EQ(rowsOf(detector), rows) << offset;
    }
}

TEST(PatchDetector, WhatIsLargerThanACellOrSmallerThanItsQuarterIsNoPatch) {
    CTivImage image(400, 100, CTivData::FormatRgb, nullptr, true);
    paint(image, {10, 10, 60, 60}, {200, 200, 200});
    paint(image, {110, 10, 101, 60}, {200, 200, 200});  // a cell is 100 wide
    paint(image, {310, 10, 24, 60}, {200, 200, 200});
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {4, 1}));
    EXPECT_EQ(detector.GetBlobCount(), 1);
}

TEST(PatchDetector, TheWhitePatchTellsHowTheChartLies) {
    // The chart as it is meant: white (18) at the bottom left of 6 x 4. Seen flipped, it is to come out as meant.
    const auto meant = DrawnChart::Bright(24);
    const struct {
        const char* what;
        bool flipX, flipY;
        int brightest;
    } cases[] = {{"normal", false, false, 18},
                 {"rows reversed", false, true, 0},
                 {"turned", true, true, 5},
                 {"columns reversed", true, false, 23}};
    for (const auto& [what, flipX, flipY, brightest] : cases) {
        DrawnChart chart;
        for (std::size_t r = 0; r < 4; ++r) {
            for (std::size_t c = 0; c < 6; ++c) {
                chart.colors[r * 6 + c] = meant[(flipY ? 3 - r : r) * 6 + (flipX ? 5 - c : c)];
            }
        }
        CTivImage image = chart.Draw();
        PatchDetector detector;
        ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {}));
        const PatchColors colors = detector.GetRawColors(image, wholeOf(image), {});
        EXPECT_EQ(colors.brightest, brightest) << what;
        EXPECT_EQ(toColors(colors.colors), meant) << what;
    }
}

TEST(PatchDetector, ATallChartIsOrderedByTheSameIndices) {
    DrawnChart chart;
    chart.columns = 4;
    chart.rows = 6;
    chart.colors = DrawnChart::Bright(24, 5);  // row 1, column 1: no corner, and yet it turns the chart
    CTivImage image = chart.Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {4, 6}));
    auto turned = chart.colors;
    std::reverse(turned.begin(), turned.end());
    EXPECT_EQ(toColors(detector.GetRawColors(image, wholeOf(image), {4, 6}).colors), turned);
}

TEST(PatchDetector, OtherChartSizesKeepTheOrderOfTheGrid) {
    DrawnChart chart;
    chart.columns = chart.rows = 5;
    chart.colors = DrawnChart::Bright(25, 0);
    CTivImage image = chart.Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {5, 5}));
    EXPECT_EQ(toColors(detector.GetRawColors(image, wholeOf(image), {5, 5}).colors), chart.colors);
}

TEST(PatchDetector, BlackPatchesCountAsRowsReversed) {
    CTivImage image = DrawnChart().Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {}));
    image.Clear();
    const PatchColors colors = detector.GetRawColors(image, wholeOf(image), {});
    EXPECT_EQ(colors.brightest, 0);
    EXPECT_THAT(toColors(colors.colors), Each(Color{0, 0, 0}));
}

TEST(PatchDetector, OnlyAMeanOfFullScaleIsSaturated) {
    DrawnChart chart;
    chart.colors[18] = {255, 241, 242};
    CTivImage image = chart.Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {}));
    EXPECT_TRUE(detector.GetRawColors(image, wholeOf(image), {}).saturated);
    EXPECT_TRUE(detector.GetGrid()[3][0].saturated);
    EXPECT_FALSE(detector.GetGrid()[0][0].saturated);

    image.SetData(29, 179, CTivData::Rgb(254, 241, 242));  // one pixel of 400: a mean of 254.9975
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {}));
    const PatchColors colors = detector.GetRawColors(image, wholeOf(image), {});
    EXPECT_FALSE(colors.saturated);
    EXPECT_EQ(toColors(colors.colors)[18].red, 254u);
}

TEST(PatchDetector, DeepImagesAreMeasuredInTheirOwnWordsWhenAsked) {
    const struct {
        CTivData::Format format;
        int shift;
        std::uint32_t fullScale;
    } cases[] = {{CTivData::FormatRgb10, 2, 1023}, {CTivData::FormatRgb16, 8, 65535}};
    for (const auto& [format, shift, fullScale] : cases) {
        DrawnChart chart;
        CTivImage image = chart.Draw(format, shift);
        PatchDetector detector;
        ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {}));
        PatchColors deep = detector.GetRawColors(image, wholeOf(image), {}, PatchDepth::AsImage);
        EXPECT_EQ(deep.colors.GetFormat(), format);
        EXPECT_EQ(toColors(deep.colors)[18], (Color{240u << shift, 241u << shift, 242u << shift}));
        EXPECT_FALSE(deep.saturated);

        const PatchColors bytes = detector.GetRawColors(image, wholeOf(image), {});
        EXPECT_EQ(bytes.colors.GetFormat(), CTivData::FormatRgb);
        const Color low = {240u << shift & 0xFF, 241u << shift & 0xFF, 242u << shift & 0xFF};
        EXPECT_EQ(toColors(bytes.colors)[18], low) << "the low byte alone";

        chart.colors[18] = {fullScale, 100u << shift, 100u << shift};
        chart.colors[0] = {255, 100u << shift, 100u << shift};
        for (Color& color : chart.colors) color.red = std::max(color.red, 200u);
        image = chart.Draw(format, 0);
        ASSERT_TRUE(detector.DetectPatches(image, {0, chart.Top(3) - 5, chart.Width(), chart.Height()}, {6, 1}));
        deep = detector.GetRawColors(image, {0, chart.Top(3) - 5, chart.Width(), chart.Height()}, {6, 1},
                                     PatchDepth::AsImage);
        EXPECT_TRUE(deep.saturated) << fullScale;
    }
}

TEST(PatchDetector, APatchOutsideTheImageRepeatsTheOneBefore) {
    DrawnChart chart;
    CTivImage image = chart.Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {6, 4}));
    // Measured with a ROI that lies higher, the first row leaves the image: the whole image stands in for it at first.
    const int pitch = chart.patch + chart.gap;
    const ChartRoi higher = {0, -pitch, chart.Width(), chart.Height() - pitch};
    image.SetRoi({chart.Left(5), chart.Top(3), 20, 20});
    ClearLastError();
    const PatchColors colors = detector.GetRawColors(image, higher, {6, 3});
    EXPECT_EQ(LastError(), "CTivImage::SetRoi => ROI rectangle out of range");
    CTivImage one = chart.Draw();
    unsigned char whole[3];
    CTivData::Point centre;
    PatchDetector::GetRoiColor(one, {0, 0, chart.Width() - 1, chart.Height() - 1}, whole, &centre);
    const auto measured = toColors(colors.colors);
    EXPECT_EQ(measured[0], (Color{whole[2], whole[1], whole[0]}));
    EXPECT_EQ(measured[5], measured[0]);
    EXPECT_EQ(measured[6], chart.colors[0]);
    EXPECT_EQ(measured[12], chart.colors[6]);
}

TEST(PatchDetector, CellsThatAnOlderGridLacksStayBlack) {
    DrawnChart chart;
    CTivImage image = chart.Draw();
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, wholeOf(image), {6, 4}));
    const auto colors = toColors(detector.GetRawColors(image, wholeOf(image), {7, 5}).colors);
    ASSERT_EQ(colors.size(), 35u);
    EXPECT_EQ(colors[5], chart.colors[5]);
    EXPECT_EQ(colors[6], (Color{0, 0, 0}));
    EXPECT_EQ(colors[7], chart.colors[6]);
    EXPECT_EQ(colors[28], (Color{0, 0, 0}));
}

TEST(PatchDetector, WhatCannotBeFoundLeavesAnEmptyGridAndTheEarlierSize) {
    CTivImage image = DrawnChart().Draw();
    CTivImage empty;
    const ChartRoi whole = wholeOf(image);
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(image, whole, {}));
    EXPECT_FALSE(detector.DetectPatches(empty, whole, {}));
    EXPECT_EQ(detector.GetBlobCount(), 24) << "without an image nothing happens";

    const struct {
        const char* what;
        ChartRoi roi;
        ChartSize chart;
    } cases[] = {
        {"no width", {50, 50, 50, 90}, {}},
        {"turned over", {90, 90, 50, 50}, {}},
        {"outside", {-1, 0, 100, 100}, {}},
        {"far outside", {0, 0, 2000000000, 2000000000}, {}},
        {"no columns", whole, {0, 4}},
        {"negative rows", whole, {6, -4}},
        {"more patches than pixels", whole, {100000, 100000}},
    };
    for (const auto& [what, roi, chart] : cases) {
        EXPECT_FALSE(detector.DetectPatches(image, roi, chart)) << what;
        EXPECT_TRUE(detector.GetOverlay().empty()) << what;
        EXPECT_EQ(detector.GetPatchWidth(), 20) << what;
    }
    image.Clear();
    EXPECT_FALSE(detector.DetectPatches(image, whole, {}));
    EXPECT_THAT(rowsOf(detector), Each(FloatEq(0.0f)));
}

TEST(PatchDetector, AGrayImageHasNoColorsToMeasure) {
    CTivImage color = DrawnChart().Draw();
    CTivImage gray(color.GetWidth(), color.GetHeight(), CTivData::FormatUByte, nullptr, true);
    ASSERT_TRUE(gray.ConvertFormat(color, 0));
    PatchDetector detector;
    ASSERT_TRUE(detector.DetectPatches(gray, wholeOf(gray), {}));
    EXPECT_EQ(detector.GetBlobCount(), 24);
    ClearLastError();
    const PatchColors colors = detector.GetRawColors(gray, wholeOf(gray), {});
    EXPECT_FALSE(colors.measured);
    EXPECT_THAT(toColors(colors.colors), Each(Color{0, 0, 0}));
    EXPECT_EQ(LastError(), "stats: cannot get color stats on monochrome input\n");
}

TEST(PatchDetector, ARoiMeasuredAsOnePatchIncludesBothItsEdges) {
    CTivImage image(20, 20, CTivData::FormatRgb, nullptr, true);
    image.SetData(5, 6, CTivData::Rgb(240, 120, 60));
    unsigned char bgr[3];
    CTivData::Point centre;
    PatchDetector::GetRoiColor(image, {4, 5, 5, 6}, bgr, &centre);
    EXPECT_THAT(bgr, ElementsAre(15, 30, 60));  // one pixel of four
    EXPECT_EQ(centre.x, 4);
    EXPECT_EQ(centre.y, 5);
    EXPECT_EQ(image.GetRoi(), (CTivRect{4, 5, 2, 2}));
}

}  // namespace
