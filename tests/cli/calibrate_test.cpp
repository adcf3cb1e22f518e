#include <cmath>
#include <cstring>

#include "calibration/CTivTonewrightDC.h"
#include "tests/cli/tool_test.h"
#include "tests/support/drawn_chart.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kZvk = 0, kTiff = 4, kBmp = 5;

class Calibrate : public ToolTest {
protected:
    /// Runs `calibrate` on the sample, with the sample's ROI.
    static ToolRun OnSample(std::vector<std::string> options) {
        options.insert(options.begin(), {"calibrate", kSample, "--roi", kSampleRoi});
        return RunTool(options);
    }
};

std::vector<float> transformOf(const json& document) {
    std::vector<float> numbers;
    for (const auto& row : document["transform"]) {
        for (const auto& number : row) numbers.push_back(number.get<float>());
    }
    return numbers;
}

TEST_F(Calibrate, WritesWhatIsAskedForAndTheFilesSayTheSame) {
    const ToolRun run = OnSample({"--illuminant", "D65", "--coefficients", Path("c.ccor"), "--parameters",
                                  Path("p.twkp"), "--corrected", Path("i.tif")});
    ASSERT_EQ(run.status, 0) << run.err;
    const json document = run.Document();
    EXPECT_EQ(document["written"], (json{Path("c.ccor"), Path("p.twkp"), Path("i.tif")}));
    EXPECT_THAT(Files(), ElementsAre("c.ccor", "i.tif", "p.twkp"));
    EXPECT_EQ(document["mode"], "absolute");
    EXPECT_EQ(document["illuminant"], "D65");
    EXPECT_EQ(document["terms"], 4);
    EXPECT_EQ(document["gamma"], 0.45);

    // 40 bytes of head, 44 of the record's head, 3 x 4 floats.
    const std::string coefficients = ReadBytes(Path("c.ccor"));
    ASSERT_EQ(coefficients.size(), 132u);
    const std::vector<float> transform = transformOf(document);
    ASSERT_EQ(transform.size(), 12u);
    EXPECT_EQ(std::memcmp(coefficients.data() + 84, transform.data(), 48), 0)
        << "printed numbers read back as the same";

    CTivTonewrightDC engine;
    ASSERT_TRUE(engine.Load(Path("p.twkp"))) << LastError();
    EXPECT_EQ(std::memcmp(engine.GetTransform()->GetDataPointer(), transform.data(), 48), 0);
    CTivImage source, expected, written;
    ASSERT_TRUE(source.Load(kSample, true) && written.Load(Path("i.tif"), true) && engine.Execute(source, expected));
    ASSERT_EQ(written.GetWidth(), expected.GetWidth());
    const auto bytes = static_cast<std::size_t>(
        CTivImage::GetImageBytes(expected.GetWidth(), expected.GetHeight(), expected.GetFormat()));
    EXPECT_EQ(std::memcmp(written.GetData(), expected.GetData(), bytes), 0);
}

TEST_F(Calibrate, TheFitBringsTheSampleNearItsReference) {
    for (const char* terms : {"4", "7", "10"}) {
        const ToolRun run = OnSample({"--illuminant", "D65", "--terms", terms});
        ASSERT_EQ(run.status, 0) << run.err;
        const json quality = run.Document()["quality"];
        for (const char* measure : {"deltaE00", "deltaE76"}) {
            EXPECT_EQ(quality[measure]["patches"].size(), 24u);
            EXPECT_EQ(quality["before"][measure]["patches"].size(), 24u);
            EXPECT_LE(quality[measure]["median"], quality[measure]["max"]);
        }
        // Half as far at the most, for terms that bend with the picture's own gamma; straight ones do what they can.
        const double allowed = std::string(terms) == "4" ? 1.0 : 0.5;
        EXPECT_LT(quality["deltaE00"]["mean"], allowed * quality["before"]["deltaE00"]["mean"].get<double>()) << terms;
        EXPECT_EQ(run.Document()["transform"][2].size(), static_cast<std::size_t>(std::stoi(terms)));
    }
}

TEST_F(Calibrate, SaturationIsTheOneInForce) {
    // The brightest color of a drawn chart is (240, 241, 242); automatically its blue becomes 255.
    const std::string chart = WriteImage("chart.bmp", DrawnChart().Draw(), kBmp);
    const struct {
        const char* option;
        json value;
    } cases[] = {{"auto", {240 * 255 / 242, 241 * 255 / 242, 255}}, {"none", {255, 255, 255}}, {"1,2,3", {1, 2, 3}}};
    for (const auto& [option, value] : cases) {
        const ToolRun run = RunTool({"calibrate", chart, "--saturation", option});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.Document()["saturation"], value) << option;
    }
}

TEST_F(Calibrate, DeepPicturesAreFittedAndCorrectedInEverySaturationMode) {
    const std::string chart = WriteImage("chart.zvk", DrawnChart().Draw(CTivData::FormatRgb16, 8), kZvk);
    for (const char* saturation : {"auto", "none", "60000,60001,60002"}) {
        const ToolRun run = RunTool({"calibrate", chart, "--saturation", saturation, "--corrected", Path("i.zvk"),
                                     "--parameters", Path("p.twkp")});
        ASSERT_EQ(run.status, 0) << saturation << run.err;
        EXPECT_EQ(run.Document()["format"], "FormatRgb16");
        const ToolRun applied = RunTool({"apply", chart, "--parameters", Path("p.twkp"), "--output", Path("a.zvk")});
        EXPECT_EQ(applied.status, 0) << saturation << applied.err;
        EXPECT_EQ(ReadBytes(Path("a.zvk")), ReadBytes(Path("i.zvk"))) << saturation;
    }
    const ToolRun manual = RunTool({"calibrate", chart, "--saturation", "60000,60001,60002"});
    EXPECT_EQ(manual.Document()["saturation"], (json{60000, 60001, 60002}));
}

TEST_F(Calibrate, RelativeModeFitsAgainstTheReference) {
    DrawnChart darker;
    DrawnChart chart = darker;
    for (auto& [red, green, blue] : darker.colors) red /= 2, green /= 2, blue /= 2;
    const std::string raw = WriteImage("raw.bmp", darker.Draw(), kBmp);
    const std::string reference = WriteImage("reference.bmp", chart.Draw(), kBmp);
    const ToolRun run = RunTool({"calibrate", raw, "--reference", reference, "--reference-roi", "0,0,310,210"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json document = run.Document();
    EXPECT_EQ(document["mode"], "relative");
    EXPECT_EQ(document["illuminant"], nullptr);
    EXPECT_EQ(document["saturated"], false);
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
    const std::string chart = WriteImage("chart.bmp", DrawnChart().Draw(), kBmp);
    const auto calibrate = [&](const std::string& values) {
        return RunTool({"calibrate", chart, "--illuminant", "user", "--values", values, "--white", "0.9,0.88,0.7",
                        "--parameters", Path("p.twkp")});
    };
    const ToolRun run = calibrate(Write("v.csv", csv));
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["illuminant"], "user");
    const json info = RunTool({"info", Path("p.twkp")}).Document()[0];
    EXPECT_EQ(info["illuminant"], -1);
    EXPECT_EQ(info["illuminantValue"], (json{0.9, 0.88, 0.7, 0}));
    EXPECT_EQ(info["spectrumValues"]["values"][1], (json{0.21, 0.3, 0.1}));

    const struct {
        std::string values;
        const char* told;
    } cases[] = {
        {Write("short.csv", "1,2,3\n"), "The file contains less values than the matrix size permits."},
        {Write("long.csv", csv + "1,2,3\n"), "The file contains more values than the matrix size permits."},
        {Write("text.csv", "X,Y,Z\n" + csv), "invalid stof argument"},
        {Path("missing.csv"), "missing.csv"},
    };
    for (const auto& [values, told] : cases) {
        const ToolRun refused = calibrate(values);
        EXPECT_EQ(refused.status, 1) << values;
        EXPECT_THAT(refused.err, HasSubstr(told)) << values;
    }
}

TEST_F(Calibrate, AFailureLeavesNothingBehindAndEarlierFilesAlone) {
    const std::string earlier = Write("c.ccor", "earlier");
    const ToolRun run = OnSample(
        {"--coefficients", earlier, "--parameters", Path("p.twkp"), "--corrected", Path("no-such-folder/i.bmp")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(Path("no-such-folder/i.bmp")));
    EXPECT_THAT(Files(), ElementsAre("c.ccor"));
    EXPECT_EQ(ReadBytes(earlier), "earlier");
}

TEST_F(Calibrate, RefusesInTheLibrarysWords) {
    const std::string chart = WriteImage("chart.bmp", DrawnChart().Draw(), kBmp);
    const ToolRun wrongCount = RunTool({"calibrate", chart, "--chart", "5x4", "--parameters", Path("p.twkp")});
    EXPECT_EQ(wrongCount.status, 1);
    EXPECT_THAT(wrongCount.err, HasSubstr("CTivTonewrightDC::Calibrate => size of raw vector must be egal to 24 with "
                                          "predefined illluminant."));
    const std::string deep = WriteImage("deep.zvk", DrawnChart().Draw(CTivData::FormatRgb16, 8), kZvk);
    const ToolRun wrongFormat = RunTool({"calibrate", chart, "--reference", deep, "--parameters", Path("p.twkp")});
    EXPECT_EQ(wrongFormat.status, 1);
    EXPECT_THAT(wrongFormat.err, HasSubstr("vectors of raw and reference colors must be the same format."));
    EXPECT_THAT(Files(), ElementsAre("chart.bmp", "deep.zvk"));
}

}  // namespace
