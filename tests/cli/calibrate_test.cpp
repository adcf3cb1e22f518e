#include <cstring>

#include "calibration/CTivTonewrightDC.h"
#include "tests/cli/tool_test.h"
#include "tests/support/drawn_chart.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

class Calibrate : public ToolTest {
protected:
    /// Runs `calibrate` on the sample.
    static ToolRun OnSample(std::vector<std::string> options) {
        options.insert(options.begin(), {"calibrate", kSample, "--roi", kSampleRoi});
        return RunTool(options);
    }

    const std::string chart_ = WriteImage("chart.bmp", DrawnChart().Draw());
};

TEST_F(Calibrate, WritesWhatIsAskedForAndTheFilesSayTheSame) {
    const ToolRun run = OnSample({"--illuminant", "D65", "--coefficients", Path("c.ccor"), "--parameters",
                                  Path("p.twkp"), "--corrected", Path("i.tif")});
    ASSERT_EQ(run.status, 0) << run.err;
    const json document = run.Document();
    EXPECT_EQ(document["written"], (json{Path("c.ccor"), Path("p.twkp"), Path("i.tif")}));
    EXPECT_THAT(Files(), ElementsAre("c.ccor", "chart.bmp", "i.tif", "p.twkp"));
    EXPECT_EQ(document["mode"], "absolute");
    EXPECT_EQ(document["illuminant"], "D65");
    EXPECT_EQ(document["terms"], 4);
    EXPECT_EQ(document["gamma"], 0.45);

    // 40 bytes of head, 44 of the record's head, 3 x 4 floats.
    const std::string coefficients = ReadBytes(Path("c.ccor"));
    ASSERT_EQ(coefficients.size(), 132u);
    std::vector<float> transform;
    for (const auto& row : document["transform"]) {
        for (const auto& number : row) transform.push_back(number.get<float>());
    }
    ASSERT_EQ(transform.size(), 12u);
    EXPECT_EQ(std::memcmp(coefficients.data() + 84, transform.data(), 48), 0)
        << "printed numbers read back as the same";

    CTivTonewrightDC engine;
    ASSERT_TRUE(engine.Load(Path("p.twkp"))) << LastError();
    EXPECT_EQ(std::memcmp(engine.GetTransform()->GetDataPointer(), transform.data(), 48), 0);
    CTivImage source, expected, written;
    ASSERT_TRUE(source.Load(kSample, true) && written.Load(Path("i.tif"), true) && engine.Execute(source, expected));
    EXPECT_EQ(std::memcmp(written.GetData(), expected.GetData(), 922 * 614 * 4), 0);
}

TEST_F(Calibrate, TheFitBringsTheSampleNearItsReference) {
    for (const char* terms : {"4", "7", "10"}) {
        const json quality = OnSample({"--illuminant", "D65", "--terms", terms}).Document()["quality"];
        for (const char* measure : {"deltaE00", "deltaE76"}) {
            EXPECT_EQ(quality[measure]["patches"].size(), 24u);
            EXPECT_EQ(quality["before"][measure]["patches"].size(), 24u);
            EXPECT_LE(quality[measure]["median"], quality[measure]["max"]);
        }
        // Half as far at the most, for terms that bend with the picture's own gamma; straight ones do what they can.
        const double allowed = std::string(terms) == "4" ? 1.0 : 0.5;
        EXPECT_LT(quality["deltaE00"]["mean"], allowed * quality["before"]["deltaE00"]["mean"].get<double>()) << terms;
    }
}

TEST_F(Calibrate, SaturationIsTheOneInForceAtEveryDepth) {
    const std::string deep = WriteImage("deep.zvk", DrawnChart().Draw(CTivData::FormatRgb16, 8), ImageFileNative);
    // The brightest color is (240, 241, 242); automatically its blue becomes full scale.
    const struct {
        std::string picture;
        const char* option;
        json value;
    } cases[] = {{chart_, "auto", {240 * 255 / 242, 241 * 255 / 242, 255}},
                 {chart_, "none", {255, 255, 255}},
                 {chart_, "1,2,3", {1, 2, 3}},
                 {deep, "auto", {240 * 65535 / 242, 241 * 65535 / 242, 65535}},
                 {deep, "none", {65535, 65535, 65535}},
                 {deep, "60000,60001,60002", {60000, 60001, 60002}}};
    for (const auto& [picture, option, value] : cases) {
        const ToolRun run = RunTool({"calibrate", picture, "--saturation", option, "--corrected", Path("i.zvk"),
                                     "--parameters", Path("p.twkp")});
        ASSERT_EQ(run.status, 0) << option << run.err;
        EXPECT_EQ(run.Document()["saturation"], value) << option;
        const ToolRun applied = RunTool({"apply", picture, "--parameters", Path("p.twkp"), "--output", Path("a.zvk")});
        EXPECT_EQ(applied.status, 0) << option << applied.err;
        EXPECT_EQ(ReadBytes(Path("a.zvk")), ReadBytes(Path("i.zvk"))) << option;
    }
}

TEST_F(Calibrate, RelativeModeFitsAgainstTheReference) {
    DrawnChart darker;
    for (auto& [red, green, blue] : darker.colors) red /= 2, green /= 2, blue /= 2;
    const std::string raw = WriteImage("raw.bmp", darker.Draw());
    const ToolRun run = RunTool({"calibrate", raw, "--reference", chart_, "--reference-roi", "0,0,310,210"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json document = run.Document();
    EXPECT_EQ(document["mode"], "relative");
    EXPECT_EQ(document["illuminant"], nullptr);
    for (int row = 0; row < 3; ++row) {
        for (int term = 0; term < 4; ++term) {
            // Halving cut the odd values: a transform of about two, and an offset below one level.
            const double expected = term == row + 1 ? 2.0 : 0.0;
            EXPECT_NEAR(document["transform"][row][term].get<double>(), expected, 0.06) << row << " " << term;
        }
    }
    EXPECT_LT(document["quality"]["deltaE00"]["max"], 1.0);
    EXPECT_GT(document["quality"]["before"]["deltaE00"]["mean"], 10.0);
}

TEST_F(Calibrate, AUserLightTakesItsValuesFromAFile) {
    std::string csv;
    for (int i = 0; i < 24; ++i) csv += "0." + std::to_string(20 + i) + ",0.3,0.1\n";
    const auto calibrate = [&](const std::string& values) {
        return RunTool({"calibrate", chart_, "--illuminant", "user", "--values", values, "--white", "0.9,0.88,0.7",
                        "--parameters", Path("p.twkp")});
    };
    const ToolRun run = calibrate(Write("v.csv", csv));
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["illuminant"], "user");
    const json info = RunTool({"info", Path("p.twkp")}).Document()[0];
    EXPECT_EQ(info["illuminant"], -1);
    EXPECT_EQ(info["illuminantValue"], (json{0.9, 0.88, 0.7, 0}));
    EXPECT_EQ(info["spectrumValues"]["values"][1], (json{0.21, 0.3, 0.1}));

    for (const auto& [values, told] :
         {std::pair{Write("short.csv", "1,2,3\n"), "The file contains less values than the matrix size permits."},
          {Write("text.csv", "X,Y,Z\n" + csv), "invalid stof argument"},
          {Path("missing.csv"), "missing.csv"}}) {
        const ToolRun refused = calibrate(values);
        EXPECT_EQ(refused.status, 1) << values;
        EXPECT_THAT(refused.err, HasSubstr(told));
    }
}

TEST_F(Calibrate, AFailureLeavesNothingBehindAndEarlierFilesAlone) {
    const std::string earlier = Write("c.ccor", "earlier");
    const ToolRun run = OnSample(
        {"--coefficients", earlier, "--parameters", Path("p.twkp"), "--corrected", Path("no-such-folder/i.bmp")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(Path("no-such-folder/i.bmp")));

    const ToolRun count = RunTool({"calibrate", chart_, "--chart", "5x4", "--coefficients", earlier});
    EXPECT_EQ(count.status, 1);
    EXPECT_THAT(count.err, HasSubstr("CTivTonewrightDC::Calibrate => size of raw vector must be egal to 24 with "
                                     "predefined illluminant."));
    EXPECT_THAT(Files(), ElementsAre("c.ccor", "chart.bmp"));
    EXPECT_EQ(ReadBytes(earlier), "earlier");
}

TEST_F(Calibrate, BareNamesAreOutputsLikeAnyOther) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path(chart_).parent_path());
    const ToolRun failed = OnSample({"--coefficients", "c.ccor", "--corrected", "no-such-folder/i.bmp"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_THAT(Files(), ElementsAre("chart.bmp"));
    const ToolRun twice = OnSample({"--coefficients", "same", "--parameters", "./same"});
    EXPECT_EQ(twice.status, 2);
    EXPECT_THAT(twice.err, HasSubstr("same is to be written twice"));
    EXPECT_EQ(OnSample({"--coefficients", "c.ccor"}).status, 0);
    EXPECT_THAT(Files(), ElementsAre("c.ccor", "chart.bmp"));
    std::filesystem::current_path(before);
}

}  // namespace
