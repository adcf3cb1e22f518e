#include "chart/PatchDetector.h"

#include <gmock/gmock.h>

#include "tests/support/drawn_chart.h"
#include "tests/support/library.h"

using namespace tonewright;

namespace {

using Color = DrawnChart::Color;
using testing::Each;
using testing::ElementsAre;

constexpr int kPitch = DrawnChart::kPitch;

ChartRoi wholeOf(const CTivImage& image) { return {0, 0, image.GetWidth(), image.GetHeight()}; }

std::vector<Color> toColors(const PatchColors& measured) {
    const CTivData::Format format = measured.colors.GetFormat();
    const int bits = format == CTivData::FormatRgb16 ? 16 : format == CTivData::FormatRgb10 ? 10 : 8;
    std::vector<Color> colors;
    for (int i = 0; i < measured.colors.GetSize(); ++i) {
        const auto channel = [&, word = measured.colors.GetData(i).GetPayload()](int place) {
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

void paintWhite(CTivImage& image, const CTivRect& rect) {
    for (int y = rect.y; y < rect.y + rect.height; ++y) {
        for (int x = rect.x; x < rect.x + rect.width; ++x) image.SetData(x, y, CTivData::Rgb(200, 200, 200));
    }
}

class PatchDetectorTest : public testing::Test {
protected:
    bool Detect(const ChartSize& chart = {}) { return detector_.DetectPatches(image_, wholeOf(image_), chart); }
    PatchColors Measure(const ChartSize& chart = {}, PatchDepth depth = PatchDepth::EightBit) {
        return detector_.GetRawColors(image_, wholeOf(image_), chart, depth);
    }

    DrawnChart chart_;
    CTivImage image_ = chart_.Draw();
    PatchDetector detector_;
};

TEST_F(PatchDetectorTest, FindsEveryPatchOfACleanChart) {
    ASSERT_TRUE(Detect());
    EXPECT_EQ(detector_.GetBlobCount(), 24);
    EXPECT_EQ(detector_.GetPatchWidth(), 20);
    EXPECT_EQ(detector_.GetPatchHeight(), 20);
    // The pixels 10 to 49 of a patch have their centre of gravity at 29.5.
    EXPECT_THAT(columnsOf(detector_), ElementsAre(29.5f, 79.5f, 129.5f, 179.5f, 229.5f, 279.5f));
    EXPECT_THAT(rowsOf(detector_), ElementsAre(29.5f, 79.5f, 129.5f, 179.5f));
    ASSERT_EQ(detector_.GetOverlay().size(), 24u);
    EXPECT_THAT(detector_.GetOverlay().back(), testing::FieldsAre(269, 169, 20, 20));
    EXPECT_EQ(toColors(Measure()), chart_.colors);
}

TEST_F(PatchDetectorTest, CountsFromTheRoiAndLeavesTheRegionOfTheImageAlone) {
    image_.SetRoi({1, 2, 3, 4});
    const ChartRoi lastTwo = {4 * kPitch + 5, 2 * kPitch + 5, image_.GetWidth(), image_.GetHeight()};
    ASSERT_TRUE(detector_.DetectPatches(image_, lastTwo, {2, 2}));
    EXPECT_EQ(image_.GetRoi(), (CTivRect{1, 2, 3, 4}));
    EXPECT_THAT(columnsOf(detector_), ElementsAre(24.5f, 74.5f));
    EXPECT_EQ(detector_.GetOverlay().front().x, 4 * kPitch + 19);
    EXPECT_THAT(toColors(detector_.GetRawColors(image_, lastTwo, {2, 2})),
                ElementsAre(chart_.colors[16], chart_.colors[17], chart_.colors[22], chart_.colors[23]));
}

TEST_F(PatchDetectorTest, DarkPatchesAreCoveredByTheirNeighbours) {
    for (const std::size_t dark : {0u, 9u, 23u}) chart_.colors[dark] = {12, 14, 16};
    image_ = chart_.Draw();
    ASSERT_TRUE(Detect());
    EXPECT_EQ(detector_.GetBlobCount(), 21);
    EXPECT_EQ(toColors(Measure()), chart_.colors);
}

TEST_F(PatchDetectorTest, ADarkRowIsMissedAndTheLaterRowsMoveUp) {
    for (std::size_t i = 6; i < 12; ++i) chart_.colors[i] = chart_.surround;
    image_ = chart_.Draw();
    ASSERT_TRUE(Detect());
    EXPECT_THAT(rowsOf(detector_), ElementsAre(29.5f, 129.5f, 179.5f, 0.0f));
    EXPECT_EQ(detector_.GetFoundRows(), 3);
    EXPECT_EQ(detector_.GetFoundColumns(), 6);
    EXPECT_EQ(detector_.GetOverlay().back().y, -10) << "drawn all the same";
    ASSERT_TRUE(Detect({4, 2})) << "and of groups that are too many the first are kept";
    EXPECT_THAT(rowsOf(detector_), ElementsAre(29.5f, 129.5f));
    EXPECT_THAT(columnsOf(detector_), ElementsAre(29.5f, 79.5f, 129.5f, 179.5f));
}

TEST_F(PatchDetectorTest, AStepOfTheSamplingSizeOpensTheNextRow) {
    for (const auto& [offset, rows] : {std::pair{19, std::vector{39.0f, 0.0f}}, {20, {29.5f, 49.5f}}}) {
        image_ = CTivImage(200, 100, CTivData::FormatRgb, nullptr, true);
        paintWhite(image_, {10, 10, 40, 40});
        paintWhite(image_, {110, 10 + offset, 40, 40});
        ASSERT_TRUE(Detect({2, 2}));
        EXPECT_EQ(rowsOf(detector_), rows) << offset;
    }
}

TEST_F(PatchDetectorTest, WhatIsLargerThanACellOrSmallerThanItsQuarterIsNoPatch) {
    image_ = CTivImage(400, 100, CTivData::FormatRgb, nullptr, true);  // in cells of 100
    paintWhite(image_, {10, 10, 60, 60});
    paintWhite(image_, {110, 10, 101, 60});
    paintWhite(image_, {310, 10, 24, 60});
    ASSERT_TRUE(Detect({4, 1}));
    EXPECT_EQ(detector_.GetBlobCount(), 1);
}

TEST_F(PatchDetectorTest, TheWhitePatchTellsHowTheChartLies) {
    const std::vector<Color> meant = chart_.colors;  // white at the bottom left
    const struct {
        bool flipX, flipY;
        int brightest;
    } cases[] = {{false, false, 18}, {false, true, 0}, {true, true, 5}, {true, false, 23}};
    for (const auto& [flipX, flipY, brightest] : cases) {
        for (std::size_t i = 0; i < 24; ++i) {
            const std::size_t row = flipY ? 3 - i / 6 : i / 6, column = flipX ? 5 - i % 6 : i % 6;
            chart_.colors[i] = meant[row * 6 + column];
        }
        image_ = chart_.Draw();
        ASSERT_TRUE(Detect());
        const PatchColors colors = Measure();
        EXPECT_EQ(colors.brightest, brightest);
        EXPECT_EQ(toColors(colors), meant) << brightest;
    }
    image_.SetRoi({});
    image_.Clear();
    EXPECT_EQ(Measure().brightest, 0) << "of black patches the first counts, which reverses the rows";
}

TEST_F(PatchDetectorTest, ATallChartIsOrderedByTheSameIndicesAndOthersAreNot) {
    chart_ = {4, 6, DrawnChart::Bright(24, 5)};  // row 1, column 1: no corner, and yet it turns the chart
    image_ = chart_.Draw();
    ASSERT_TRUE(Detect({4, 6}));
    EXPECT_EQ(toColors(Measure({4, 6})), std::vector(chart_.colors.rbegin(), chart_.colors.rend()));

    chart_ = {5, 5, DrawnChart::Bright(25, 0)};
    image_ = chart_.Draw();
    ASSERT_TRUE(Detect({5, 5}));
    EXPECT_EQ(toColors(Measure({5, 5})), chart_.colors);
}

TEST_F(PatchDetectorTest, OnlyAMeanOfFullScaleIsSaturated) {
    chart_.colors[18].red = 255;
    image_ = chart_.Draw();
    ASSERT_TRUE(Detect());
    EXPECT_TRUE(Measure().saturated);
    EXPECT_TRUE(detector_.GetGrid()[3][0].saturated);
    EXPECT_FALSE(detector_.GetGrid()[0][0].saturated);

    image_.SetData(29, 179, CTivData::Rgb(254, 241, 242));  // one pixel of 400: a mean of 254.9975
    ASSERT_TRUE(Detect());
    EXPECT_FALSE(Measure().saturated);
    EXPECT_EQ(toColors(Measure())[18].red, 254u);
}

TEST_F(PatchDetectorTest, DeepImagesAreMeasuredInTheirOwnWordsWhenAsked) {
    for (const auto& [format, shift] : {std::pair{CTivData::FormatRgb10, 2}, {CTivData::FormatRgb16, 8}}) {
        image_ = chart_.Draw(format, shift);
        ASSERT_TRUE(Detect());
        const PatchColors deep = Measure({}, PatchDepth::AsImage);
        EXPECT_EQ(deep.colors.GetFormat(), format);
        EXPECT_EQ(toColors(deep)[18], (Color{240u << shift, 241u << shift, 242u << shift}));
        EXPECT_FALSE(deep.saturated);

        const PatchColors bytes = Measure();
        EXPECT_EQ(bytes.colors.GetFormat(), CTivData::FormatRgb);
        EXPECT_EQ(toColors(bytes)[18], (Color{240u << shift & 0xFF, 241u << shift & 0xFF, 242u << shift & 0xFF}));

        const auto white = DrawnChart::Word(format, {(256u << shift) - 1, 200u << shift, 200u << shift}, 0);
        for (int i = 0; i < 400; ++i) image_.SetData(19 + i % 20, 169 + i / 20, white);
        EXPECT_TRUE(Measure({}, PatchDepth::AsImage).saturated) << "at full scale";
    }
}

TEST_F(PatchDetectorTest, APatchOutsideTheImageRepeatsTheOneBefore) {
    ASSERT_TRUE(Detect());
    // Measured a row too high, the first row leaves the image: the whole image stands in, as none was measured before.
    unsigned char whole[3];
    CTivData::Point centre;
    PatchDetector::GetRoiColor(image_, {0, 0, image_.GetWidth() - 1, image_.GetHeight() - 1}, whole, &centre);
    image_.SetRoi({kPitch, kPitch, 20, 20});
    ClearLastError();
    const ChartRoi higher = {0, -kPitch, image_.GetWidth(), image_.GetHeight() - kPitch};
    const auto measured = toColors(detector_.GetRawColors(image_, higher, {6, 3}));
    EXPECT_EQ(LastError(), "CTivImage::SetRoi => ROI rectangle out of range");
    EXPECT_EQ(measured[0], (Color{whole[2], whole[1], whole[0]}));
    EXPECT_EQ(measured[5], measured[0]);
    EXPECT_EQ(measured[6], chart_.colors[0]);
    EXPECT_EQ(measured[17], chart_.colors[11]);
}

TEST_F(PatchDetectorTest, CellsThatAnOlderGridLacksStayBlack) {
    ASSERT_TRUE(Detect());
    const auto colors = toColors(Measure({7, 5}));
    ASSERT_EQ(colors.size(), 35u);
    EXPECT_EQ(colors[5], chart_.colors[5]);
    EXPECT_EQ(colors[6], (Color{0, 0, 0}));
    EXPECT_EQ(colors[7], chart_.colors[6]);
    EXPECT_EQ(colors[28], (Color{0, 0, 0}));
}

TEST_F(PatchDetectorTest, WhatCannotBeFoundLeavesAGridOfZerosAndTheEarlierSize) {
    const ChartRoi whole = wholeOf(image_);
    ASSERT_TRUE(Detect());
    CTivImage empty;
    EXPECT_FALSE(detector_.DetectPatches(empty, whole, {}));
    EXPECT_EQ(detector_.GetBlobCount(), 24) << "without an image nothing happens";
    const struct {
        const char* what;
        ChartRoi roi;
        ChartSize chart;
        std::size_t rows;
    } cases[] = {
        {"no width", {50, 50, 50, 90}, {}, 4},
        {"narrower than the columns", {50, 50, 55, 90}, {}, 4},
        {"turned over", {90, 90, 50, 50}, {}, 4},
        {"outside", {-1, 0, 100, 100}, {}, 4},
        {"far outside", {0, 0, 2000000000, 2000000000}, {}, 4},
        {"no columns", whole, {0, 4}, 0},
        {"negative rows", whole, {6, -4}, 0},
        {"more patches than pixels", whole, {100000, 100000}, 0},
    };
    for (const auto& [what, roi, chart, rows] : cases) {
        EXPECT_FALSE(detector_.DetectPatches(image_, roi, chart)) << what;
        EXPECT_TRUE(detector_.GetOverlay().empty()) << what;
        EXPECT_EQ(detector_.GetPatchWidth(), 20) << what;
        EXPECT_EQ(detector_.GetGrid().size(), rows) << what;
        if (rows > 0) {
            EXPECT_THAT(columnsOf(detector_), ElementsAre(0, 0, 0, 0, 0, 0)) << what;
        }
    }
    image_.Clear();
    EXPECT_FALSE(Detect());
    EXPECT_THAT(rowsOf(detector_), Each(0.0f));
}

TEST_F(PatchDetectorTest, OnePictureAfterTheOtherIsSeenAsByAFreshDetector) {
    CTivImage deep = chart_.Draw(CTivData::FormatRgb16, 8);
    CTivImage dark = image_;
    dark.Clear();
    const ChartRoi whole = wholeOf(image_);
    const ChartRoi left = {0, 0, 160, whole.bottom};  // three columns and a piece of the fourth
    const struct {
        const char* what;
        CTivImage* image;
        ChartRoi roi;
        ChartSize chart;
    } pictures[] = {{"whole", &image_, whole, {}},
                    {"a part", &image_, left, {3, 4}},
                    {"deep", &deep, whole, {}},
                    {"nothing on it", &dark, whole, {}},
                    {"whole again", &image_, whole, {}}};
    for (const auto& [what, image, roi, chart] : pictures) {
        PatchDetector fresh;
        EXPECT_EQ(detector_.DetectPatches(*image, roi, chart), fresh.DetectPatches(*image, roi, chart)) << what;
        EXPECT_EQ(detector_.GetBlobCount(), fresh.GetBlobCount()) << what;
        EXPECT_EQ(columnsOf(detector_), columnsOf(fresh)) << what;
        EXPECT_EQ(rowsOf(detector_), rowsOf(fresh)) << what;
    }
}

TEST_F(PatchDetectorTest, AGrayImageHasNoColorsToMeasure) {
    CTivImage gray(image_.GetWidth(), image_.GetHeight(), CTivData::FormatUByte, nullptr, true);
    ASSERT_TRUE(gray.ConvertFormat(image_, 0));
    image_ = gray;
    ASSERT_TRUE(Detect());
    EXPECT_EQ(detector_.GetBlobCount(), 24);
    ClearLastError();
    EXPECT_FALSE(Measure().measured);
    EXPECT_EQ(LastError(), "stats: cannot get color stats on monochrome input\n");
}

TEST_F(PatchDetectorTest, ARoiMeasuredAsOnePatchIncludesBothItsEdges) {
    image_.Clear();
    image_.SetData(5, 6, CTivData::Rgb(240, 120, 60));
    unsigned char bgr[3];
    CTivData::Point centre;
    PatchDetector::GetRoiColor(image_, {4, 5, 5, 6}, bgr, &centre);
    EXPECT_THAT(bgr, ElementsAre(15, 30, 60));  // one pixel of four
    EXPECT_EQ(centre.x, 4);
    EXPECT_EQ(centre.y, 5);
}

}  // namespace
