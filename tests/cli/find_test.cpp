#include <fstream>

#include "chart/ChartLayout.h"
#include "tests/cli/tool_test.h"
#include "tests/support/staged_chart.h"

using namespace tonewright;

namespace {

using nlohmann::json;
using testing::HasSubstr;

class Find : public ToolTest {
protected:
    /// A chart that no straight grid finds, linear as a camera's own picture.
    static StagedChart Turned() {
        StagedChart staged;
        staged.rotation = 35;
        staged.tilt = 20;
        staged.exponent = 1;
        return staged;
    }
};

void expectPoint(const json& point, const ChartPoint& where, double tolerance) {
    EXPECT_NEAR(point[0].get<double>(), where.x, tolerance);
    EXPECT_NEAR(point[1].get<double>(), where.y, tolerance);
}

TEST_F(Find, DescribesTheChartInFull) {
    const StagedChart staged = Turned();
    const std::string path = WriteImage("chart.bmp", staged.Draw());
    const ToolRun run = RunTool({"detect", path, "--find"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json document = run.Document();
    EXPECT_EQ(document["found"], true);
    EXPECT_EQ(document["roi"], (json{0, 0, 640, 480}));
    EXPECT_EQ(document["chart"], (json{6, 4}));
    EXPECT_EQ(document["mirrored"], false);
    EXPECT_GT(document["confidence"], 0.5);
    const double half = staged.side / 2;
    const ChartPoint corners[] = {staged.At(-half, -half), staged.At(5 + half, -half), staged.At(5 + half, 3 + half),
                                  staged.At(-half, 3 + half)};
    ASSERT_EQ(document["patches"].size(), 24u);
    for (std::size_t i = 0; i < 4; ++i) expectPoint(document["corners"][i], corners[i], 0.8);
    for (int i = 0; i < 24; ++i) {
        const json& patch = document["patches"][static_cast<std::size_t>(i)];
        expectPoint(patch["center"], staged.At(i % 6, i / 6), 0.5);
        for (std::size_t c = 0; c < 3; ++c) {
            const double level = 255 * staged.colors[static_cast<std::size_t>(i)][c];
            EXPECT_NEAR(patch["mean"][c].get<double>(), level, 0.6) << i;
            EXPECT_EQ(document["colors"][static_cast<std::size_t>(i)][c], std::floor(patch["mean"][c].get<double>()));
        }
        EXPECT_LT(patch["deviation"][0], 1.0);
    }
    EXPECT_EQ(document["saturated"], false);
    for (const json& finding : document["findings"]) {
        EXPECT_NE(finding["code"], "incomplete");
        EXPECT_NE(finding["code"], "orientation");
        EXPECT_NE(finding["code"], "mixed");
    }
}

TEST_F(Find, SaysWhyItFindsNone) {
    StagedChart cut = Turned();
    cut.offsetX = -190;
    const std::string path = WriteImage("cut.bmp", cut.Draw());
    const ToolRun run = RunTool({"detect", path, "--find"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("of the chart"));
    EXPECT_THAT(run.err, HasSubstr("outside the picture"));
    const json document = run.Document();
    EXPECT_EQ(document["found"], false);
    EXPECT_EQ(document["reason"]["code"], "too-few");
    EXPECT_THAT(run.err, HasSubstr(document["reason"]["text"].get<std::string>()));
    EXPECT_GT(document["reason"]["seen"], 8);
    EXPECT_FALSE(document.contains("patches"));

    const ToolRun calibrate = RunTool({"calibrate", path, "--find", "--coefficients", Path("x.ccor")});
    EXPECT_EQ(calibrate.status, 1);
    EXPECT_THAT(calibrate.err, HasSubstr("outside the picture"));
    EXPECT_EQ(Files(), std::vector<std::string>{"cut.bmp"});
}

TEST_F(Find, CalibratesAndVerifiesTurnedChartsAsUprightOnes) {
    StagedChart upright;
    upright.exponent = 1;
    const std::string straight = WriteImage("straight.bmp", upright.Draw());
    const std::string turned = WriteImage("turned.bmp", Turned().Draw());
    const auto calibrate = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"calibrate"});
        arguments.insert(arguments.end(), {"--illuminant", "D65", "--terms", "4"});
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.status, 0) << run.err;
        return run.Document();
    };
    const json one = calibrate({straight, "--find"});
    const json other = calibrate({turned, "--find", "--parameters", Path("turned.twkp")});
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t k = 0; k < 4; ++k) {
            EXPECT_NEAR(one["transform"][row][k].get<double>(), other["transform"][row][k].get<double>(), 0.02);
        }
    }
    const ToolRun verify =
        RunTool({"verify", straight, "--find", "--parameters", Path("turned.twkp"), "--max-mean", "2"});
    EXPECT_EQ(verify.status, 0) << verify.err;

    // The reference picture is looked for, too.
    const ToolRun relative = RunTool({"calibrate", straight, "--find", "--reference", turned});
    ASSERT_EQ(relative.status, 0) << relative.err;
    EXPECT_LT(relative.Document()["quality"]["deltaE00"]["mean"], 1.0);
}

TEST_F(Find, TakesLayoutsFromAFile) {
    std::string text = "tonewright-chart-layout 1\ncolumns 6\nrows 4\n", colors = text + "values XYZ\n";
    for (const XyzColor& xyz : GetClassicLayout().references) {
        text += "patch\n";
        colors +=
            "patch " + std::to_string(xyz[0]) + " " + std::to_string(xyz[1]) + " " + std::to_string(xyz[2]) + "\n";
    }
    const std::string picture = WriteImage("chart.bmp", Turned().Draw());
    const std::string plain = Write("plain.txt", text), full = Write("full.txt", colors);

    const ToolRun oriented = RunTool({"detect", picture, "--find", "--layout", full});
    ASSERT_EQ(oriented.status, 0) << oriented.err;
    EXPECT_FALSE(oriented.Document().contains("oriented"));
    expectPoint(oriented.Document()["patches"][0]["center"], Turned().At(0, 0), 0.5);

    const ToolRun unoriented = RunTool({"detect", picture, "--find", "--layout", plain});
    ASSERT_EQ(unoriented.status, 0) << unoriented.err;
    EXPECT_EQ(unoriented.Document()["oriented"], false);
    EXPECT_THAT(unoriented.err, HasSubstr("no reference colors"));
    EXPECT_EQ(RunTool({"calibrate", picture, "--find", "--layout", plain}).status, 1);

    // The straight grid takes columns and rows from it.
    const std::string upright = WriteImage("upright.bmp", StagedChart().Draw());
    const std::string small = Write(
        "small.txt", text.replace(text.find("columns 6"), 9, "columns 4").replace(text.find("rows 4"), 6, "rows 6"));
    EXPECT_EQ(RunTool({"detect", upright, "--layout", small}).Document()["chart"], (json{4, 6}));

    const ToolRun wrong = RunTool({"detect", picture, "--layout", Write("wrong.txt", text + "columns 3\n")});
    EXPECT_EQ(wrong.status, 1);
    EXPECT_THAT(wrong.err, HasSubstr("24 patches instead of 18"));
    EXPECT_EQ(RunTool({"detect", picture, "--layout", small, "--chart", "4x6"}).status, 2);
    const ToolRun size = RunTool({"detect", picture, "--find", "--chart", "5x5"});
    EXPECT_EQ(size.status, 2);
    EXPECT_THAT(size.err, HasSubstr("--layout"));
}

TEST_F(Find, MeasuresPhotographsAsTheIndexHasThem) {
    std::ifstream index(testData("charts/index.json"));
    for (const json& picture : json::parse(index)) {
        const std::string name = picture["name"];
        if (name == "studio") continue;  // the sample is another picture
        const ToolRun run = RunTool({"detect", testData("charts/" + name + ".png"), "--find"});
        ASSERT_EQ(run.status, 0) << name << run.err;
        const json document = run.Document();
        int near = 0;
        for (std::size_t i = 0; i < 24; ++i) {
            bool isNear = true;
            for (std::size_t c = 0; c < 3; ++c) {
                isNear &= std::abs(document["patches"][i]["mean"][c].get<double>() -
                                   picture["colors"][i][c].get<double>()) <= 2.5;
            }
            near += isNear;
        }
        EXPECT_GE(near, 23) << name;
        EXPECT_EQ(document["mirrored"],
                  picture["orientation"] == "rows reversed" || picture["orientation"] == "columns reversed")
            << name;
    }
}

}  // namespace
