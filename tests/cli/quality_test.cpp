#include "tests/cli/chart_camera.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

class Quality : public ToolTest {
protected:
    const std::string clean_ = WriteImage("clean.bmp", CameraChart().Draw());
};

std::vector<std::string> codes(const json& document) {
    std::vector<std::string> list;
    for (const json& finding : document["findings"]) list.push_back(finding["code"]);
    return list;
}

TEST_F(Quality, StandsBesideTheBareMatrix) {
    const json document = RunTool({"calibrate", clean_, "--illuminant", "D65", "--terms", "7"}).Document();
    EXPECT_EQ(codes(document), std::vector<std::string>{});
    EXPECT_EQ(document["fit"], "least-squares");
    const json& quality = document["quality"];
    for (const char* figure : {"delivered", "picture", "unseen", "before"}) {
        EXPECT_EQ(quality[figure]["deltaE00"]["patches"].size(), 24u) << figure;
        EXPECT_EQ(quality[figure]["deltaE76"]["patches"].size(), 24u) << figure;
    }
    ASSERT_EQ(quality["candidates"].size(), 3u);
    const json& seven = quality["candidates"][1];
    EXPECT_EQ(seven["terms"], 7);
    EXPECT_EQ(seven["fitted"], quality["deltaE00"]["mean"]);
    EXPECT_EQ(seven["delivered"], quality["delivered"]["deltaE00"]["mean"]);
    EXPECT_EQ(seven["unseen"], quality["unseen"]["deltaE00"]["mean"]);
    EXPECT_TRUE(quality["white"].is_number());
    EXPECT_EQ(quality["noise"].size(), 24u);
    EXPECT_EQ(quality["noise"][0]["after"], (json{0.0, 0.0, 0.0})) << "drawn patches have no noise";
    ASSERT_EQ(document["patches"].size(), 24u);
    // Patch 1 lies from 10 to 50; the sampling area is its inner half.
    EXPECT_EQ(document["patches"][0]["corners"], (json{{9.0, 9.0}, {49.0, 9.0}, {49.0, 49.0}, {9.0, 49.0}}));
    EXPECT_EQ(document["patches"][0]["center"], (json{29.0, 29.0}));
}

TEST_F(Quality, TheSampleIsFoundWholeAndCalibratesWell) {
    const ToolRun run = RunTool({"calibrate", kLinearSample, "--illuminant", "D65", "--terms", "7", "--strict"});
    ASSERT_EQ(run.status, 0) << run.err;
    const json delivered = run.Document()["quality"]["delivered"]["deltaE00"];
    EXPECT_LT(delivered["mean"], 3.5);
    EXPECT_THAT(run.err, testing::MatchesRegex(
                             "delivered: mean [0-9]\\.[0-9], worst [0-9]\\.[0-9] \\(patch [0-9]+ [A-Za-z ]+\\)\n"));
    const ToolRun coded = RunTool({"detect", kSample, "--roi", kSampleRoi, "--strict"});
    EXPECT_EQ(coded.status, 1);
    EXPECT_EQ(codes(coded.Document()), std::vector<std::string>{"coded"});
}

TEST_F(Quality, AutomaticTermsAreThoseOfTheLeastUnseenDifference) {
    for (const char* fit : {"least-squares", "perceptual"}) {
        const json automatic =
            RunTool({"calibrate", kSample, "--roi", kSampleRoi, "--terms", "auto", "--fit", fit}).Document();
        json best = automatic["quality"]["candidates"][0];
        for (const json& candidate : automatic["quality"]["candidates"]) {
            if (candidate["unseen"] < best["unseen"]) best = candidate;
        }
        EXPECT_EQ(automatic["terms"], best["terms"]) << fit;
        const json fixed = RunTool({"calibrate", kSample, "--roi", kSampleRoi, "--terms",
                                    std::to_string(best["terms"].get<int>()), "--fit", fit})
                               .Document();
        EXPECT_EQ(automatic, fixed) << fit;
    }
}

TEST_F(Quality, APerceptualFitGoesIntoCoefficientsAndPicture) {
    const ToolRun run = RunTool({"calibrate", kSample, "--roi", kSampleRoi, "--fit", "perceptual", "--coefficients",
                                 Path("c.ccor"), "--corrected", Path("i.bmp")});
    ASSERT_EQ(run.status, 0) << run.err;
    const json document = run.Document();
    const json plain = RunTool({"calibrate", kSample, "--roi", kSampleRoi, "--corrected", Path("p.bmp")}).Document();
    EXPECT_LT(document["quality"]["delivered"]["deltaE00"]["mean"].get<double>(),
              0.9 * plain["quality"]["delivered"]["deltaE00"]["mean"].get<double>());
    EXPECT_EQ(RunTool({"info", Path("c.ccor")}).Document()[0]["transform"], document["transform"]);
    EXPECT_NE(ReadBytes(Path("i.bmp")), ReadBytes(Path("p.bmp")));
    const ToolRun wrong = RunTool({"calibrate", clean_, "--fit", "perceptual", "--parameters", Path("p.twkp")});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.err, HasSubstr("--parameters cannot carry a perceptual fit"));
}

TEST_F(Quality, FindingsAreToldAndStopAStrictCall) {
    DrawnChart clipped = CameraChart();
    clipped.colors[18] = {255, 250, 250};
    const std::string path = WriteImage("clipped.bmp", clipped.Draw());
    const ToolRun lenient = RunTool({"calibrate", path, "--illuminant", "D65", "--coefficients", Path("c.ccor")});
    EXPECT_EQ(lenient.status, 0);
    EXPECT_EQ(codes(lenient.Document()), std::vector<std::string>{"clipped"});
    EXPECT_EQ(lenient.Document()["findings"][0]["patches"], json{19});
    EXPECT_EQ(lenient.Document()["findings"][0]["severity"], "warning");
    EXPECT_THAT(lenient.err, HasSubstr("warning: Patch 19 is at full scale"));
    for (const char* command : {"detect", "calibrate"}) {
        std::vector<std::string> line = {command, path, "--strict"};
        if (line[0] == "calibrate") line.insert(line.end(), {"--illuminant", "D65", "--corrected", Path("i.bmp")});
        const ToolRun strict = RunTool(line);
        EXPECT_EQ(strict.status, 1) << command;
        EXPECT_EQ(codes(strict.Document()), std::vector<std::string>{"clipped"}) << command;
        line[1] = clean_;
        EXPECT_EQ(RunTool(line).status, 0) << command;
    }
    EXPECT_THAT(Files(), testing::Contains("i.bmp")) << "of the clean picture";
}

TEST_F(Quality, ALightWithoutAWhiteIsNoCalibration) {
    std::string values;
    for (int i = 0; i < 24; ++i) values += "0.2,0.3,0.4\n";
    const std::string file = Write("v.csv", values);
    const ToolRun run =
        RunTool({"calibrate", clean_, "--illuminant", "user", "--values", file, "--white", "0,0,0", "--strict", "--fit",
                 "perceptual", "--terms", "auto", "--coefficients", Path("c.ccor")});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(codes(run.Document()), testing::Contains("singular"));
    EXPECT_THAT(run.err, HasSubstr("error: This is no calibration"));
    EXPECT_THAT(Files(), testing::Not(testing::Contains("c.ccor")));
}

// A patch whose pixels spread widely comes out of the tone curve with another mean than its mean does.
TEST_F(Quality, WhereThePictureMeasuresOtherwiseItIsTold) {
    CTivImage noisy = CameraChart().Draw();
    for (int y = 0; y < noisy.GetHeight(); ++y) {
        for (int x = 0; x < noisy.GetWidth(); ++x) {
            const std::uint32_t word = noisy.GetData(x, y).AsRgb();
            const int step = (x + y) % 2 ? 14 : -14;
            const auto shifted = [&](int shift) {
                return static_cast<std::uint8_t>(std::clamp(static_cast<int>(word >> shift & 255) + step, 0, 254));
            };
            noisy.SetData(x, y, CTivData::Rgb(shifted(16), shifted(8), shifted(0)));
        }
    }
    const std::string file = WriteImage("noisy.bmp", noisy);
    const ToolRun run = RunTool({"calibrate", file, "--illuminant", "D65", "--terms", "7", "--report", Path("r.html")});
    ASSERT_EQ(run.status, 0) << run.err;
    const json quality = run.Document()["quality"];
    const double picture = quality["picture"]["deltaE00"]["mean"], delivered = quality["delivered"]["deltaE00"]["mean"];
    EXPECT_GT(picture, delivered + 0.3);
    EXPECT_THAT(run.err, HasSubstr("In the corrected picture: mean "));
    EXPECT_THAT(run.err, HasSubstr("bend the mean of noisy pixels"));
    EXPECT_THAT(ReadBytes(Path("r.html")), HasSubstr("<p>In the corrected picture: mean "));
    const ToolRun clean = RunTool({"calibrate", clean_, "--illuminant", "D65", "--terms", "7"});
    EXPECT_THAT(clean.err, testing::Not(HasSubstr("In the corrected picture")));
}

}  // namespace
