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
    Calibrated("10");
    for (const char* option : {"--parameters", "--coefficients"}) {
        const std::string file = Path(std::string(option) == "--parameters" ? "p.twkp" : "c.ccor");
        const ToolRun run = RunTool({"apply", chart_, option, file, "--output", Path("applied.bmp")});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.Document(),
                  (json{{{"input", chart_}, {"output", Path("applied.bmp")}, {"ok", true}, {"error", nullptr}}}));
        EXPECT_EQ(ReadBytes(Path("applied.bmp")), ReadBytes(Path("corrected.bmp"))) << option;
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

TEST_F(Apply, RefusesWhatACoefficientFileCannotServe) {
    const ToolRun four = RunTool({"apply", chart_, "--coefficients", Calibrated("4"), "--output", Path("out.bmp")});
    EXPECT_EQ(four.status, 1);
    EXPECT_THAT(four.err, HasSubstr("4 terms"));
    EXPECT_EQ(four.out, "");

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
