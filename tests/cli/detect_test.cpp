#include <fstream>

#include "tests/cli/tool_test.h"
#include "tests/support/drawn_chart.h"
#include "tests/support/places.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

class Detect : public ToolTest {};

std::string listOf(const json& numbers) {
    const std::string list = numbers.dump();
    return list.substr(1, list.size() - 2);
}

int patchesWithin(const json& found, const json& listed, int levels) {
    int count = 0;
    for (std::size_t i = 0; i < listed.size(); ++i) {
        bool isNear = true;
        for (std::size_t k = 0; k < 3; ++k) {
            isNear &= std::abs(found[i][k].get<int>() - listed[i][k].get<int>()) <= levels;
        }
        count += isNear;
    }
    return count;
}

TEST_F(Detect, FindsTheChartInPhotographs) {
    std::ifstream index(testData("charts/index.json"));
    for (const json& picture : json::parse(index)) {
        const std::string name = picture["name"];
        const std::string path = name == "studio" ? kSample : testData("charts/" + name + ".png");
        const ToolRun run = RunTool({"detect", path, "--roi", listOf(picture["roi"])});
        ASSERT_EQ(run.status, 0) << name << run.err;
        const json document = run.Document();
        EXPECT_EQ(document["complete"], true) << name;
        EXPECT_EQ(document["orientation"], picture["orientation"]) << name;
        // The colors that were measured by hand are rounded, the tool's are cut; perspective costs a patch or two.
        EXPECT_GE(patchesWithin(document["colors"], picture["colors"], 3), 22) << name;
    }
}

TEST_F(Detect, DescribesADrawnChartInFull) {
    DrawnChart chart;
    chart.colors[18].red = 255;
    const std::string path = WriteImage("chart.bmp", chart.Draw());
    const ToolRun run = RunTool({"detect", path, "--roi", "0,0,310,210"});
    ASSERT_EQ(run.status, 0) << run.err;
    json colors = json::array();
    for (const auto& [red, green, blue] : chart.colors) colors.push_back({red, green, blue});
    json document = run.Document();
    EXPECT_EQ(document["patches"].size(), 24u);
    document.erase("patches");
    document.erase("findings");
    EXPECT_EQ(document, (json{{"image", path},
                              {"width", 310},
                              {"height", 210},
                              {"format", "FormatRgb"},
                              {"roi", {0, 0, 310, 210}},
                              {"chart", {6, 4}},
                              {"blobs", 24},
                              {"patch", {20, 20}},
                              {"rows", {29.5, 79.5, 129.5, 179.5}},
                              {"columns", {29.5, 79.5, 129.5, 179.5, 229.5, 279.5}},
                              {"complete", true},
                              {"colors", colors},
                              {"orientation", "normal"},
                              {"saturated", true}}));
    EXPECT_THAT(run.err, HasSubstr("There are saturated colors (Red Roi)"));

    const json other = RunTool({"detect", path, "--chart", "5x5"}).Document();
    EXPECT_EQ(other["roi"], (json{6, 4, 304, 206})) << "a fiftieth off each side";
    EXPECT_EQ(other["orientation"], "none");
    EXPECT_EQ(other["complete"], false) << "the chart has four rows";
    EXPECT_EQ(other["colors"].size(), 25u);
}

TEST_F(Detect, MeasuresDeepImagesWholeAndAtTheirDepth) {
    const CTivImage ten = DrawnChart().Draw(CTivData::FormatRgb10, 2);
    CTivImage sixteen = DrawnChart().Draw(CTivData::FormatRgb16, 8);
    const std::string tiff = WriteImage("sixteen.tif", sixteen, ImageFileTiff);
    ASSERT_TRUE(sixteen.SetRoi({100, 100, 20, 20}));  // the file keeps it, the tool widens it
    const struct {
        std::string path;
        const char* format;
        unsigned shift;
    } cases[] = {{WriteImage("ten.bmp", ten), "FormatRgb10", 2},
                 {tiff, "FormatRgb16", 8},
                 {WriteImage("sixteen.zvk", sixteen, ImageFileNative), "FormatRgb16", 8}};
    for (const auto& [path, format, shift] : cases) {
        const ToolRun run = RunTool({"detect", path});
        ASSERT_EQ(run.status, 0) << path << run.err;
        EXPECT_EQ(run.Document()["format"], format) << path;
        EXPECT_EQ(run.Document()["colors"][18], (json{240u << shift, 241u << shift, 242u << shift})) << path;
    }
}

TEST_F(Detect, FailsWithOneWhereThePictureIsTheReason) {
    const std::string chart = WriteImage("chart.bmp", DrawnChart().Draw());
    const CTivImage black(100, 100, CTivData::FormatRgb, nullptr, true);
    CTivImage gray(310, 210, CTivData::FormatUByte, nullptr, true);
    ASSERT_TRUE(gray.ConvertFormat(DrawnChart().Draw(), 0));
    const struct {
        std::vector<std::string> arguments;
        const char* told;
    } cases[] = {
        {{Path("missing.bmp")}, "Failed to read image from file"},
        {{Write("text.bmp", "no picture")}, "Failed to read image from file"},
        {{WriteImage("black.bmp", black)}, "no patch"},
        {{WriteImage("gray.bmp", gray)}, "stats: cannot get color stats on monochrome input"},
        {{chart, "--roi", "0,0,311,210"}, "CTivImage::SetRoi => ROI rectangle out of range"},
        {{chart, "--roi", "-1,0,100,100"}, "CTivImage::SetRoi => ROI rectangle out of range"},
        {{chart, "--roi", "0,0,2147483647,2147483647"}, "CTivImage::SetRoi => ROI rectangle out of range"},
        {{chart, "--roi", "10,10,10,50"}, "empty"},
        {{chart, "--chart", "100000x100000"}, "no patch"},
    };
    for (auto [arguments, told] : cases) {
        arguments.insert(arguments.begin(), "detect");
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.status, 1) << testing::PrintToString(arguments);
        EXPECT_EQ(run.out, "") << testing::PrintToString(arguments);
        EXPECT_THAT(run.err, HasSubstr(told)) << testing::PrintToString(arguments);
    }
}

}  // namespace
