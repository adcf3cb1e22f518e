#include <cmath>
#include <random>

#include "tests/cli/chart_camera.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

class Verify : public ToolTest {
protected:
    void SetUp() override {
        const std::string first = WriteImage("first.bmp", CameraChart().Draw());
        const ToolRun run = RunTool({"calibrate", first, "--illuminant", "D65", "--parameters", Path("p.twkp"),
                                     "--coefficients", Path("c.ccor")});
        ASSERT_EQ(run.status, 0) << run.err;
    }
    /// Another shot: every channel times `gain`, the rows slanting by a pixel in fifty, with noise.
    std::string SecondShot(double gain) const {
        std::mt19937 random(1);
        std::normal_distribution<double> noise(0, 2);
        const CTivImage first = CameraChart().Draw();
        CTivImage second(first.GetWidth(), first.GetHeight() + 6, CTivData::FormatRgb, nullptr, true);
        for (int y = 0; y < second.GetHeight(); ++y) {
            for (int x = 0; x < second.GetWidth(); ++x) {
                const int from = std::clamp(y - x / 50, 0, first.GetHeight() - 1);
                const std::uint32_t word = first.GetData(x, from).AsRgb();
                const auto channel = [&](int shift) {
                    const double value = gain * (word >> shift & 0xFF) + noise(random);
                    return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
                };
                second.SetData(x, y, CTivData::Rgb(channel(16), channel(8), channel(0)));
            }
        }
        return WriteImage("second.bmp", second);
    }
};

TEST_F(Verify, AnotherShotKeepsTheLimitsOrBreaksThem) {
    const std::string same = SecondShot(1.0);
    const ToolRun kept =
        RunTool({"verify", same, "--parameters", Path("p.twkp"), "--max-mean", "3", "--max-patch", "8"});
    ASSERT_EQ(kept.status, 0) << kept.err;
    const json document = kept.Document();
    EXPECT_EQ(document["passed"], true);
    EXPECT_EQ(document["limits"], (json{{"maxMean", 3.0}, {"maxPatch", 8.0}}));
    EXPECT_EQ(document["delivered"]["deltaE00"]["patches"].size(), 24u);
    EXPECT_LT(document["delivered"]["deltaE00"]["mean"], document["before"]["deltaE00"]["mean"]);
    EXPECT_TRUE(document["complete"]) << "what detect prints is there";

    const std::string darker = SecondShot(2.0 / 3);
    for (const auto& limit : {std::vector<std::string>{"--max-mean", "3"}, {"--max-patch", "8"}}) {
        std::vector<std::string> arguments = {"verify", darker, "--parameters", Path("p.twkp")};
        arguments.insert(arguments.end(), limit.begin(), limit.end());
        const ToolRun broken = RunTool(arguments);
        EXPECT_EQ(broken.status, 3);
        EXPECT_EQ(broken.Document()["passed"], false);
        EXPECT_THAT(broken.err, HasSubstr("above the limit of " + limit[1] + ".00"));
    }
    EXPECT_EQ(RunTool({"verify", darker, "--parameters", Path("p.twkp"), "--max-mean", "40"}).status, 0);
    EXPECT_EQ(RunTool({"verify", darker, "--parameters", Path("p.twkp")}).status, 0) << "without limits none is broken";
}

/// The chart turned by an angle and tilted, twice as large, on gray ground, a third darker and with noise.
CTivImage warped(const CTivImage& chart) {
    std::mt19937 random(2);
    std::normal_distribution<double> noise(0, 1.5);
    constexpr int size = 700;
    CTivImage picture(size, size, CTivData::FormatRgb, nullptr, true);
    const double cosine = std::cos(0.5), sine = std::sin(0.5);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double dx = x - size / 2, dy = y - size / 2;
            const double depth = 1.8 * (1 + 0.0004 * dx - 0.0002 * dy);
            const double u = (cosine * dx + sine * dy) / depth + chart.GetWidth() / 2.0;
            const double v = (cosine * dy - sine * dx) / depth + chart.GetHeight() / 2.0;
            const bool isOn = u >= 0 && v >= 0 && u < chart.GetWidth() && v < chart.GetHeight();
            const std::uint32_t word =
                isOn ? chart.GetData(static_cast<int>(u), static_cast<int>(v)).AsRgb() : 0x404040;
            const auto channel = [&](int shift) {
                const double value = (word >> shift & 0xFF) * 2.0 / 3 + noise(random);
                return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
            };
            picture.SetData(x, y, CTivData::Rgb(channel(16), channel(8), channel(0)));
        }
    }
    return picture;
}

TEST_F(Verify, FindsAWarpedChart) {
    const std::string second = WriteImage("warped.bmp", warped(CameraChart().Draw()));
    const ToolRun kept = RunTool({"verify", second, "--find", "--parameters", Path("p.twkp"), "--max-mean", "15"});
    ASSERT_EQ(kept.status, 0) << kept.err;
    EXPECT_EQ(kept.Document()["found"], true);
    EXPECT_EQ(kept.Document()["passed"], true);
    EXPECT_EQ(RunTool({"verify", second, "--find", "--parameters", Path("p.twkp"), "--max-mean", "3"}).status, 3);
}

TEST_F(Verify, OnItsOwnPictureItTellsWhatCalibrateTells) {
    const std::string first = Path("first.bmp");
    const json told = RunTool({"calibrate", first, "--illuminant", "D65"}).Document()["quality"];
    const json parameters = RunTool({"verify", first, "--parameters", Path("p.twkp")}).Document();
    EXPECT_EQ(parameters["delivered"], told["delivered"]);
    EXPECT_EQ(parameters["before"], told["before"]);
    // The coefficient file has no saturation, which no patch of this chart reaches.
    const json coefficients =
        RunTool({"verify", first, "--coefficients", Path("c.ccor"), "--illuminant", "D65"}).Document();
    EXPECT_EQ(coefficients["delivered"], told["delivered"]);
    const json otherLight = RunTool({"verify", first, "--parameters", Path("p.twkp"), "--illuminant", "A"}).Document();
    EXPECT_NE(otherLight["delivered"], told["delivered"]);
    const json reference = RunTool({"verify", first, "--parameters", Path("p.twkp"), "--reference", first}).Document();
    EXPECT_LT(reference["before"]["deltaE00"]["max"], 1e-4) << "the raw colors are those of the reference";
}

TEST_F(Verify, SaysWhyItCannot) {
    const std::string first = Path("first.bmp"), parameters = Path("p.twkp");
    const std::string black = WriteImage("black.bmp", CTivImage(100, 80, CTivData::FormatRgb, nullptr, true));
    const std::string deep = WriteImage("deep.zvk", CameraChart().Draw(CTivData::FormatRgb16, 8), ImageFileNative);
    const struct {
        int status;
        std::vector<std::string> arguments;
        std::string text;
    } cases[] = {
        {1, {black, "--parameters", parameters}, "no patch of a chart found"},
        {1, {deep, "--parameters", parameters}, "another depth"},
        {1, {deep, "--coefficients", Path("c.ccor")}, "use the parameter file"},
        {1, {first, "--parameters", parameters, "--chart", "5x4"}, "the chart has 20 patches, the calibration 24"},
        {1, {first, "--parameters", Path("none.twkp")}, "none.twkp"},
        {2, {first}, "one of them"},
        {2, {first, "--parameters", parameters, "--coefficients", Path("c.ccor")}, "one of them"},
        {2, {first, "--parameters", parameters, "--max-mean", "-1"}, "--max-mean"},
        {2, {first, "--parameters", parameters, "--max-patch", "much"}, "--max-patch"},
        {2, {first, "--parameters", parameters, "--illuminant", "user"}, "--values"},
    };
    for (const auto& [status, arguments, text] : cases) {
        std::vector<std::string> line = arguments;
        line.insert(line.begin(), "verify");
        const ToolRun run = RunTool(line);
        EXPECT_EQ(run.status, status) << text;
        EXPECT_THAT(run.err, HasSubstr(text));
        EXPECT_EQ(run.out, "") << text;
    }
}

}  // namespace
