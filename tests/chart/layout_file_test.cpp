#include "chart/layout_file.h"

#include <gmock/gmock.h>

#include "chart/ChartFinder.h"
#include "tests/support/staged_chart.h"

using namespace tonewright;

namespace {

using testing::HasSubstr;

std::string head(const std::string& rest) { return "tonewright-chart-layout 1\n" + rest; }

TEST(ChartLayoutFile, ReadsNamesAndColors) {
    std::string reason;
    const auto layout =
        ParseChartLayout(head("# two\r\n\ncolumns 2\nrows 1\r\nvalues Lab\nilluminant D65\nobserver 10\n"
                              "patch 100 0 0 Paper white\npatch 50\t20 -30 \n"),
                         reason);
    ASSERT_TRUE(layout) << reason;
    EXPECT_EQ(layout->columns, 2);
    EXPECT_EQ(layout->rows, 1);
    EXPECT_THAT(layout->names, testing::ElementsAre("Paper white", ""));
    // L* 100 is the white itself.
    EXPECT_NEAR(layout->references[0][0], 0.94811, 1e-9);
    EXPECT_NEAR(layout->references[0][2], 1.07304, 1e-9);
    // By hand: fy = 66 / 116, fx = fy + 0.04, fz = fy + 0.15, all cubes.
    EXPECT_NEAR(layout->references[1][0], 0.94811 * 0.225828, 1e-5);
    EXPECT_NEAR(layout->references[1][1], 0.184187, 1e-6);
    EXPECT_NEAR(layout->references[1][2], 1.07304 * 0.371641, 1e-5);
}

TEST(ChartLayoutFile, NeedsNoColors) {
    std::string reason;
    const auto layout = ParseChartLayout(head("columns 1\nrows 2\npatch A 1\npatch B"), reason);
    ASSERT_TRUE(layout) << reason;
    EXPECT_THAT(layout->names, testing::ElementsAre("A 1", "B"));
    EXPECT_TRUE(layout->references.empty());
}

TEST(ChartLayoutFile, SaysWhatIsWrong) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "empty"},
        {"columns 2\n", "not a chart layout"},
        {head("columns 0\n"), "line 2: not a number from 1 to 64"},
        {head("columns 65\n"), "line 2"},
        {head("columns 2 3\n"), "more than one value"},
        {head("colums 2\n"), "line 2: an unknown word"},
        {head("columns 2\nrows 1\npatch A\n"), "1 patches instead of 2"},
        {head("columns 1\npatch A\n"), "rows are missing"},
        {head("values RGB\n"), "neither XYZ nor Lab"},
        {head("illuminant user\n"), "unknown illuminant"},
        {head("observer 5\n"), "neither 2 nor 10"},
        {head("values XYZ\npatch 1 2 three\n"), "line 3: not three numbers"},
        {head("values XYZ\npatch 1 2 inf White\n"), "not three numbers"},
        {head("patch A\nvalues XYZ\n"), "behind the first patch"},
    };
    for (const auto& [text, words] : cases) {
        std::string reason;
        EXPECT_FALSE(ParseChartLayout(text, reason)) << text;
        EXPECT_THAT(reason, HasSubstr(words)) << text;
    }
    std::string reason;
    EXPECT_FALSE(ReadChartLayout("no such file", reason));
    EXPECT_THAT(reason, HasSubstr("cannot be opened"));
}

TEST(ChartFinder, FindsALayoutWithoutColorsByItsShapeAndSaysThatItIsNotOriented) {
    ChartLayout layout = GetClassicLayout();
    layout.references.clear();
    StagedChart staged;
    staged.rotation = 190;  // read from its other end
    staged.step = 60;
    const FoundChart found = ChartFinder(layout).Find(staged.Draw());
    ASSERT_TRUE(found.found) << found.text;
    EXPECT_FALSE(found.isOriented);
    EXPECT_THAT(found.text, HasSubstr("not known"));
    EXPECT_NEAR(found.rotation, 10, 0.5);
    EXPECT_NEAR(found.patches[0].center.x, staged.At(5, 3).x, 1);
    EXPECT_NEAR(found.patches[0].center.y, staged.At(5, 3).y, 1);

    layout.columns = 5;
    layout.names.resize(20);
    const FoundChart other = ChartFinder(layout).Find(staged.Draw());
    EXPECT_EQ(other.refusal, FindRefusal::NoGrid);
    EXPECT_THAT(other.text, HasSubstr("not just the layout's 20"));
}

}  // namespace
