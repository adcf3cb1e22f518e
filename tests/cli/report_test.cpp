#include <filesystem>

#include "tests/cli/tool_test.h"

namespace {

class ReportTest : public ToolTest {
protected:
    ToolRun Calibrate(std::vector<std::string> options) {
        options.insert(options.begin(), {"calibrate", kSample, "--roi", kSampleRoi, "--illuminant", "D65"});
        return RunTool(options);
    }
};

}  // namespace

// The page and the tables tell the very figures of the document.
TEST_F(ReportTest, PageAndTablesAgreeWithTheDocument) {
    const ToolRun result = Calibrate({"--report", Path("r.html"), "--export", Path("c.cube"), "--export", Path("c.icc"),
                                      "--export", Path("c.ti3"), "--export", Path("c.CSV"), "--fit", "perceptual"});
    ASSERT_EQ(result.status, 0) << result.err;
    const nlohmann::json document = result.Document();
    EXPECT_EQ(document["written"].size(), 5u);
    const std::string page = ReadBytes(Path("r.html"));
    char mean[32];
    std::snprintf(mean, sizeof mean, "<b>%.1f</b>", document["quality"]["delivered"]["deltaE00"]["mean"].get<double>());
    EXPECT_NE(page.find(mean), std::string::npos) << mean;
    for (const char* part : {"Calibration of chart", "not linear", "18 Cyan", "perceptual", "data:image/png"}) {
        EXPECT_NE(page.find(part), std::string::npos) << part;
    }
    const std::string csv = ReadBytes(Path("c.CSV"));
    char patch[32];
    std::snprintf(patch, sizeof patch, ",%.4f,",
                  document["quality"]["delivered"]["deltaE00"]["patches"][17].get<double>());
    const std::size_t cyan = csv.find("\n18,Cyan,");
    ASSERT_NE(cyan, std::string::npos);
    EXPECT_NE(csv.find(patch, cyan), std::string::npos);
    EXPECT_EQ(ReadBytes(Path("c.icc")).substr(36, 4), "acsp");
    EXPECT_NE(ReadBytes(Path("c.cube")).find("LUT_3D_SIZE 33"), std::string::npos);
    EXPECT_NE(ReadBytes(Path("c.ti3")).find("NUMBER_OF_SETS 24"), std::string::npos);
}

TEST_F(ReportTest, NothingIsWrittenWhereOneOutputFails) {
    EXPECT_EQ(Calibrate({"--export", Path("c.txt")}).status, 2);
    EXPECT_EQ(Calibrate({"--export", Path("c.csv"), "--export", Path("./c.csv")}).status, 2);
    const ToolRun result =
        Calibrate({"--report", Path("r.html"), "--export", Path("c.cube"), "--export", Path("none/c.icc")});
    EXPECT_EQ(result.status, 1);
    EXPECT_FALSE(std::filesystem::exists(Path("r.html")));
    EXPECT_FALSE(std::filesystem::exists(Path("c.cube")));
}

TEST_F(ReportTest, VerificationTellsItsVerdict) {
    ASSERT_EQ(Calibrate({"--parameters", Path("p.twkp")}).status, 0);
    const ToolRun result = RunTool({"verify", kSample, "--roi", kSampleRoi, "--parameters", Path("p.twkp"),
                                    "--max-mean", "0.5", "--report", Path("v.html")});
    EXPECT_EQ(result.status, 3) << result.err;
    const std::string page = ReadBytes(Path("v.html"));
    EXPECT_NE(page.find("Not passed"), std::string::npos);
    EXPECT_NE(page.find("mean difference at most 0.5"), std::string::npos);
}
