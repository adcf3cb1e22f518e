#include <bit>
#include <csignal>

#include "tests/cli/tool_test.h"
#include "tests/support/drawn_chart.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

class Apply : public ToolTest {
protected:
    Apply() : chart_(WriteImage("chart.bmp", DrawnChart().Draw())) {}

    /// Calibrates on the drawn chart. @return the name of the coefficient file; beside it lies p.twkp
    std::string Calibrated(const std::string& terms) {
        const ToolRun run = RunTool({"calibrate", chart_, "--terms", terms, "--coefficients", Path("c.ccor"),
                                     "--parameters", Path("p.twkp"), "--corrected", Path("corrected.bmp")});
        EXPECT_EQ(run.status, 0) << run.err;
        return Path("c.ccor");
    }

    std::string chart_;
};

TEST_F(Apply, ParametersAndCoefficientsCorrectAsTheCalibrationDid) {
    for (const char* terms : {"4", "7", "10"}) {
        Calibrated(terms);
        for (const char* option : {"--parameters", "--coefficients"}) {
            const std::string file = Path(std::string(option) == "--parameters" ? "p.twkp" : "c.ccor");
            const ToolRun run = RunTool({"apply", chart_, option, file, "--output", Path("applied.bmp")});
            ASSERT_EQ(run.status, 0) << run.err;
            EXPECT_EQ(run.Document(),
                      (json{{{"input", chart_}, {"output", Path("applied.bmp")}, {"ok", true}, {"error", nullptr}}}));
            EXPECT_EQ(ReadBytes(Path("applied.bmp")), ReadBytes(Path("corrected.bmp"))) << terms << option;
        }
    }
    const ToolRun gamma =
        RunTool({"apply", chart_, "--coefficients", Path("c.ccor"), "--gamma", "1", "--output", Path("linear.bmp")});
    EXPECT_EQ(gamma.status, 0) << gamma.err;
    EXPECT_NE(ReadBytes(Path("linear.bmp")), ReadBytes(Path("corrected.bmp")));
}

TEST_F(Apply, OneBadInputDoesNotStopTheOthers) {
    Calibrated("4");
    const std::string bad = Write("bad.bmp", "BM");
    const std::string other = WriteImage("other.zvk", DrawnChart().Draw(), ImageFileNative);
    const ToolRun run = RunTool(
        {"apply", bad, chart_, other, "--parameters", Path("p.twkp"), "--output", Path("out"), "--type", "tif"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("bad.bmp"));
    const json document = run.Document();
    ASSERT_EQ(document.size(), 3u);
    EXPECT_EQ(document[0]["ok"], false);
    EXPECT_THAT(document[0]["error"].get<std::string>(),
                HasSubstr("bad.bmp: readBMP: cannot read header of the bitmap file"));
    EXPECT_EQ(document[1]["output"], Path("out/chart.tif"));
    EXPECT_EQ(document[2]["ok"], true);
    EXPECT_FALSE(std::filesystem::exists(Path("out/bad.tif")));
    EXPECT_EQ(RunTool({"info", Path("out/chart.tif"), Path("out/other.tif")}).status, 0);
}

TEST_F(Apply, AFolderNeitherTakesTwoOfANameNorAnInputsPlace) {
    Calibrated("4");
    const std::string twin = WriteImage("chart.zvk", DrawnChart().Draw(), ImageFileNative);
    const std::string before = ReadBytes(chart_);
    const ToolRun over = RunTool({"apply", chart_, "--parameters", Path("p.twkp"), "--output", Path("")});
    EXPECT_EQ(over.status, 1);
    EXPECT_EQ(ReadBytes(chart_), before);
    const ToolRun twins = RunTool({"apply", chart_, twin, "--parameters", Path("p.twkp"), "--output", Path("out")});
    EXPECT_EQ(twins.status, 1);
    EXPECT_EQ(twins.Document()[0]["ok"], true);
    EXPECT_THAT(twins.Document()[1]["error"].get<std::string>(), HasSubstr("another image"));
}

TEST_F(Apply, AFourTermFileBringsItsSaturationOrFullScale) {
    // A transform that makes all black, so that what is left is saturation: 250 and more, or full scale.
    std::string file = ReadBytes(Calibrated("4"));
    file.replace(84, 48, 48, '\0');
    CTivImage image(4, 1, CTivData::FormatRgb, nullptr, true);
    for (const int x : {0, 1, 2, 3}) image.SetData(x, 0, CTivData::Rgb(static_cast<std::uint8_t>(248 + 2 * x), 0, 255));
    const std::string source = WriteImage("source.bmp", image);
    std::string saturated = WithU32(file, 32, 7301);
    for (const float fraction : {250.5f / 255.0f, 1.0f, 1.0f}) {
        saturated = WithU32(saturated + "1234", saturated.size(), std::bit_cast<std::uint32_t>(fraction));
    }
    const std::pair<std::string, std::vector<std::uint32_t>> cases[] = {
        {file, {0x0000ff, 0x0000ff, 0x0000ff, 0x0000ff}}, {saturated, {0x0000ff, 0xff00ff, 0xff00ff, 0xff00ff}}};
    for (const auto& [bytes, expected] : cases) {
        const ToolRun run =
            RunTool({"apply", source, "--coefficients", Write("s.ccor", bytes), "--output", Path("out.bmp")});
        ASSERT_EQ(run.status, 0) << run.err;
        CTivImage out;
        ASSERT_TRUE(out.Load(Path("out.bmp"), true));
        for (int x = 0; x < 4; ++x) {
            EXPECT_EQ(out.GetData(x, 0).AsRgb() & 0xffffff, expected[static_cast<std::size_t>(x)]) << x;
        }
    }
}

TEST_F(Apply, ManyAtOnceGiveWhatTheyGiveOneByOneInTheirOrder) {
    Calibrated("4");
    constexpr std::size_t count = 40;
    std::vector<std::string> line = {"apply", "--parameters", Path("p.twkp"), "--output", Path("out")};
    for (std::size_t i = 0; i < count; ++i) {
        // Sizes change from one to the next; every fifth breaks off, every seventh is of another kind.
        CTivImage image(20 + static_cast<int>(i % 3), 10, CTivData::FormatRgb, nullptr, true);
        image.SetData(0, 0, CTivData::Rgb(static_cast<std::uint8_t>(5 * i), 100, 50));
        const std::string name = "in-" + std::to_string(i) + ".bmp";
        line.push_back(WriteImage(name, image));
        if (i % 5 == 4) Write(name, ReadBytes(line.back()).substr(0, 30));
        if (i % 7 == 6) Write(name, "CRC\x1a");
    }
    line.insert(line.end(), {"--jobs", "1"});
    json one;
    std::vector<std::string> images;
    for (const char* jobs : {"1", "8"}) {
        line.back() = jobs;
        const ToolRun run = RunTool(line);
        EXPECT_EQ(run.status, 1);
        const json document = run.Document();
        ASSERT_EQ(document.size(), count);
        for (std::size_t i = 0; i < count; ++i) {
            const bool isGood = i % 5 != 4 && i % 7 != 6;
            EXPECT_EQ(document[i]["ok"], isGood) << i;
            EXPECT_THAT(run.err, HasSubstr(isGood ? "" : document[i]["error"].get<std::string>()));
            const std::string bytes = ReadBytes(document[i]["output"]);
            if (*jobs == '1') images.push_back(bytes);
            EXPECT_EQ(bytes, images[i]) << i;
        }
        if (*jobs == '1') one = document;
        EXPECT_EQ(document, one) << "no text depends on who else fails meanwhile";
    }
    EXPECT_EQ(one[3]["input"], line[8]);
    line.back() = "0";
    EXPECT_EQ(RunTool(line).status, 2);
}

TEST_F(Apply, AnInterruptedCallTellsWhatIsDone) {
    Calibrated("10");
    const std::string picture = WriteImage("in.bmp", CTivImage(1000, 750, CTivData::FormatRgb, nullptr, true));
    std::vector<std::string> line = {"apply", "--parameters", Path("p.twkp"), "--output", Path("out"), "--jobs", "2"};
    for (int i = 0; i < 200; ++i) {
        std::filesystem::create_hard_link(picture, Path("in-" + std::to_string(i) + ".bmp"));
        line.push_back(Path("in-" + std::to_string(i) + ".bmp"));
    }
    const ToolRun run = InterruptTool(line, SIGINT, [&] { return std::filesystem::exists(Path("out/in-2.bmp")); });
    EXPECT_EQ(run.status, -SIGINT);
    const json document = run.Document();
    ASSERT_EQ(document.size(), 200u);
    std::size_t done = 0;
    for (const json& image : document) {
        done += image["ok"] == true;
        EXPECT_EQ(std::filesystem::exists(image["output"]), image["ok"] == true);
    }
    EXPECT_GE(done, 3u);
    EXPECT_LT(done, 200u);
    const std::filesystem::directory_iterator out(Path("out"));
    EXPECT_EQ(static_cast<std::size_t>(std::distance(begin(out), end(out))), done) << "nothing staged is left";
    EXPECT_THAT(document.back()["error"].get<std::string>(), HasSubstr("not begun"));
}

TEST_F(Apply, RefusesWhatACoefficientFileCannotServe) {
    const std::string deep = WriteImage("deep.zvk", DrawnChart().Draw(CTivData::FormatRgb16, 8), ImageFileNative);
    const ToolRun depth = RunTool({"apply", deep, "--coefficients", Calibrated("7"), "--output", Path("out.bmp")});
    EXPECT_EQ(depth.status, 1);
    EXPECT_THAT(depth.err, HasSubstr("depth"));
    EXPECT_FALSE(std::filesystem::exists(Path("out.bmp")));

    // The calibration is of 8 bits, and the operator says so.
    const ToolRun parameters = RunTool({"apply", deep, "--parameters", Path("p.twkp"), "--output", Path("out.bmp")});
    EXPECT_EQ(parameters.status, 1);
    EXPECT_THAT(parameters.err, HasSubstr("source data format must be RGB as calibration image format"));
}

TEST_F(Apply, ABadCalibrationEndsItBeforeAnyImage) {
    for (const char* option : {"--parameters", "--coefficients"}) {
        for (const std::string& file : {Path("missing"), Write("text", "no calibration")}) {
            const ToolRun run = RunTool({"apply", Path("missing.bmp"), option, file, "--output", Path("out/")});
            EXPECT_EQ(run.status, 1) << option << file;
            EXPECT_EQ(run.out, "") << option << file;
            EXPECT_THAT(run.err, HasSubstr(file)) << option;
            EXPECT_FALSE(std::filesystem::exists(Path("out")));
        }
    }
}

}  // namespace
