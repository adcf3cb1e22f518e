#include <fstream>

#include "tests/cli/tool_test.h"
#include "tests/support/drawn_chart.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr int kZvk = 0, kTiff = 4, kBmp = 5;

class Detect : public ToolTest {};

std::string pathOf(const std::string& picture) {
    return picture == "studio" ? kSample : TONEWRIGHT_TEST_DATA "/charts/" + picture + ".png";
}

std::string listOf(const json& numbers) {
    std::string text;
    for (const auto& number : numbers) text.append(text.empty() ? "" : ",").append(number.dump());
    return text;
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
    std::ifstream index(TONEWRIGHT_TEST_DATA "/charts/index.json");
    for (const json& picture : json::parse(index)) {
        const std::string name = picture["name"];
        const ToolRun run = RunTool({"detect", pathOf(name), "--roi", listOf(picture["roi"])});
        ASSERT_EQ(run.status, 0) << name << run.err;
        const json document = run.Document();
        EXPECT_EQ(document["complete"], true) << name;
        EXPECT_EQ(document["orientation"], picture["orientation"]) << name;
        EXPECT_EQ(document["roi"], picture["roi"]) << name;
        // The colors that were measured by hand are rounded, the tool's are cut; perspective costs a patch or two.
        EXPECT_GE(patchesWithin(document["colors"], picture["colors"], 3), 22) << name;
    }
}

TEST_F(Detect, DescribesADrawnChartInFull) {
    DrawnChart chart;
    chart.colors[18] = {255, 250, 240};
    const std::string path = WriteImage("chart.bmp", chart.Draw(), kBmp);
    const ToolRun run = RunTool({"detect", path, "--roi", "0,0,310,210"});
    ASSERT_EQ(run.status, 0) << run.err;
    json colors = json::array();
    for (const auto& [red, green, blue] : chart.colors) colors.push_back({red, green, blue});
    EXPECT_EQ(run.Document(), (json{{"image", path},
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
}

TEST_F(Detect, TakesAFiftiethOffEachSideByDefault) {
    const std::string path = WriteImage("chart.bmp", DrawnChart().Draw(), kBmp);
    const ToolRun run = RunTool({"detect", path, "--chart", "5x5"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["roi"], (json{6, 4, 304, 206}));
    EXPECT_EQ(run.Document()["orientation"], "none");
    EXPECT_EQ(run.Document()["complete"], false);  // the chart has four rows
    EXPECT_EQ(run.Document()["colors"].size(), 25u);
}

TEST_F(Detect, MeasuresDeepImagesAtTheirDepthFromEveryKindOfFile) {
    const DrawnChart chart;
    const CTivImage ten = chart.Draw(CTivData::FormatRgb10, 2);
    const CTivImage sixteen = chart.Draw(CTivData::FormatRgb16, 8);
    const struct {
        std::string path;
        const char* format;
        unsigned shift;
    } cases[] = {
        {WriteImage("ten.bmp", ten, kBmp), "FormatRgb10", 2},
        {WriteImage("sixteen.tif", sixteen, kTiff), "FormatRgb16", 8},
        {WriteImage("sixteen.zvk", sixteen, kZvk), "FormatRgb16", 8},
    };
    for (const auto& [path, format, shift] : cases) {
        const ToolRun run = RunTool({"detect", path});
        ASSERT_EQ(run.status, 0) << path << run.err;
        EXPECT_EQ(run.Document()["format"], format) << path;
        EXPECT_EQ(run.Document()["colors"][18], (json{240u << shift, 241u << shift, 242u << shift})) << path;
    }
}

TEST_F(Detect, TakesASmallerRegionOfANativeFileForTheWholeImage) {
    CTivImage image = DrawnChart().Draw();
    ASSERT_TRUE(image.SetRoi({100, 100, 20, 20}));
    const ToolRun run = RunTool({"detect", WriteImage("roi.zvk", image, kZvk)});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["blobs"], 24);
}

TEST_F(Detect, FailsWithOneWhereThePictureIsTheReason) {
    const std::string chart = WriteImage("chart.bmp", DrawnChart().Draw(), kBmp);
    CTivImage black(100, 100, CTivData::FormatRgb, nullptr, true);
    CTivImage gray(310, 210, CTivData::FormatUByte, nullptr, true);
    ASSERT_TRUE(gray.ConvertFormat(DrawnChart().Draw(), 0));
    const struct {
        std::vector<std::string> arguments;
        const char* told;
    } cases[] = {
        {{"detect", Path("missing.bmp")}, "Failed to read image from file"},
        {{"detect", Write("text.bmp", "no picture")}, "Failed to read image from file"},
        {{"detect", WriteImage("black.bmp", black, kBmp)}, "no patch"},
        {{"detect", WriteImage("gray.bmp", gray, kBmp)}, "stats: cannot get color stats on monochrome input"},
        {{"detect", chart, "--roi", "0,0,311,210"}, "CTivImage::SetRoi => ROI rectangle out of range"},
        {{"detect", chart, "--roi", "-1,0,100,100"}, "CTivImage::SetRoi => ROI rectangle out of range"},
        {{"detect", chart, "--roi", "10,10,10,50"}, "empty"},
        {{"detect", chart, "--roi", "0,0,2147483647,2147483647"}, "CTivImage::SetRoi => ROI rectangle out of range"},
        {{"detect", chart, "--chart", "100000x100000"}, "no patch"},
    };
    for (const auto& [arguments, told] : cases) {
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.status, 1) << testing::PrintToString(arguments);
        EXPECT_EQ(run.out, "") << testing::PrintToString(arguments);
        EXPECT_THAT(run.err, HasSubstr(told)) << testing::PrintToString(arguments);
    }
}

}  // namespace
