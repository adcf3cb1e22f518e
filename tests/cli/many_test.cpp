#include <csignal>
#include <sstream>

#include "tests/cli/chart_camera.h"

using namespace tonewright;

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

using Words = std::vector<std::string>;

Words with(Words line, const Words& more) {
    line.insert(line.end(), more.begin(), more.end());
    return line;
}

/// `calibrate` and `verify` on many pictures in one call.
class Many : public ToolTest {
protected:
    Many() {
        // Cameras of a line: the same chart, each a little darker, and one whose picture broke off.
        for (const int gain : {255, 240, 225}) {
            DrawnChart chart = CameraChart();
            for (DrawnChart::Color& color : chart.colors) {
                const auto scale = [gain](std::uint32_t level) {
                    return level * static_cast<std::uint32_t>(gain) / 255;
                };
                color = {scale(color.red), scale(color.green), scale(color.blue)};
            }
            good_.push_back(WriteImage("camera-" + std::to_string(gain) + ".bmp", chart.Draw()));
        }
        bad_ = Write("bad.bmp", ReadBytes(good_[0]).substr(0, 30));
    }

    static std::vector<json> Lines(const ToolRun& run) {
        std::vector<json> lines;
        std::istringstream text(run.out);
        for (std::string line; std::getline(text, line);) lines.push_back(json::parse(line));
        return lines;
    }

    bool Exists(const std::string& name) const { return std::filesystem::exists(Path(name)); }

    Words good_;
    std::string bad_;
};

TEST_F(Many, EachIsCalibratedAsAloneAndToldInItsOrder) {
    const Words settings = {"--illuminant", "D65", "--terms", "7"};
    const Words call = with(with({"calibrate", good_[0], bad_, good_[1], good_[2]}, settings),
                            {"--output-folder", Path("out"), "--write", "ccor,twkp,tif,csv", "--jobs"});
    const ToolRun oneByOne = RunTool(with(call, {"1"}));
    EXPECT_EQ(oneByOne.status, 1);
    const std::vector<json> lines = Lines(oneByOne);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[1]["image"], bad_);
    EXPECT_EQ(lines[1]["ok"], false);
    EXPECT_THAT(lines[1]["error"].get<std::string>(), HasSubstr("cannot read header of the bitmap file"));
    EXPECT_FALSE(Exists("out/bad.ccor"));
    for (const std::size_t i : {0u, 2u, 3u}) {
        const std::string picture = lines[i]["image"];
        const std::string name = std::filesystem::path(picture).stem();
        const ToolRun alone = RunTool(with(with({"calibrate", picture}, settings),
                                           {"--coefficients", Path("a.ccor"), "--parameters", Path("a.twkp"),
                                            "--corrected", Path("a.tif"), "--export", Path("a.csv")}));
        ASSERT_EQ(alone.status, 0) << alone.err;
        json expected = alone.Document();
        expected["ok"] = true;
        expected["error"] = nullptr;
        expected["written"] = json::array();
        for (const char* extension : {".ccor", ".twkp", ".tif", ".csv"}) {
            const std::string path = Path("out/" + name + extension);
            EXPECT_EQ(ReadBytes(path), ReadBytes(Path("a") + extension)) << path;
            if (std::string(extension) != ".tif") expected["written"].push_back(path);
        }
        expected["written"].insert(expected["written"].begin() + 2, Path("out/" + name + ".tif"));
        EXPECT_EQ(lines[i], expected);
        EXPECT_THAT(oneByOne.err, HasSubstr(picture + ": " + alone.err)) << "words tell of whom they are";
    }
    const ToolRun sideBySide = RunTool(with(call, {"4"}));
    EXPECT_EQ(sideBySide.out, oneByOne.out);
    EXPECT_EQ(sideBySide.err, oneByOne.err);
}

TEST_F(Many, WhatCannotBeWrittenWholeIsRefusedBeforeAnything) {
    std::filesystem::create_directories(Path("twin"));
    const std::string twin = WriteImage("twin/camera-255.bmp", CameraChart().Draw());
    const std::string layout = Write("camera-240.csv", "");
    const std::string out = Path("out"), here = Path("");
    const std::pair<Words, std::string> cases[] = {
        {{good_[0], twin, "--output-folder", out}, "camera-255.ccor is to be written for two pictures"},
        {{good_[0], good_[0], "--output-folder", out}, "camera-255.ccor is to be written for two pictures"},
        {{good_[0], good_[1], "--output-folder", here, "--write", "bmp"}, "camera-255.bmp is to be written, and is an"},
        {{good_[1], "--output-folder", here, "--write", "csv", "--illuminant", "user", "--white", "1,1,1", "--values",
          layout},
         "camera-240.csv is to be written, and is an input"},
        {{good_[0], good_[1], "--coefficients", Path("c.ccor")}, "--coefficients is a file of one picture"},
        {{good_[0], "--output-folder", out, "--export", Path("c.icc")}, "--export is a file of one picture"},
        {{good_[0], "--output-folder", out, "--write", "ccor,jpg"}, "'ccor,jpg' is not"},
        {{good_[0], "--output-folder", out, "--write", "bmp,tif"}, "'bmp,tif' is not"},
        {{good_[0], "--output-folder", out, "--write", "twkp", "--fit", "perceptual"}, "cannot carry a perceptual fit"},
        {{good_[0], "--write", "ccor"}, "--write is for --output-folder"},
        {{good_[0], good_[1], "--jobs", "0"}, "--jobs"},
    };
    const Words before = Files();
    for (const auto& [arguments, text] : cases) {
        const ToolRun run = RunTool(with({"calibrate"}, arguments));
        EXPECT_EQ(run.status, 2) << text;
        EXPECT_EQ(run.out, "") << text;
        EXPECT_THAT(run.err, HasSubstr(text));
    }
    const ToolRun report =
        RunTool({"verify", good_[0], good_[1], "--parameters", "p.twkp", "--report", Path("r.html")});
    EXPECT_EQ(report.status, 2);
    EXPECT_EQ(RunTool({"calibrate", good_[0], "--output-folder", bad_}).status, 1) << "a file in the folder's place";
    EXPECT_EQ(Files(), before);
}

TEST_F(Many, VerifyTakesOneCalibrationOrEachItsOwnAndEndsWithTheWorst) {
    ASSERT_EQ(
        RunTool(with(with({"calibrate"}, good_), {"--illuminant", "D65", "--output-folder", Path("made")})).status, 0);
    const std::string one = Path("made/camera-255.twkp");
    // The darkest picture is judged well by its own calibration alone.
    const struct {
        Words arguments;
        int status;
        std::vector<json> passed;  ///< null: failed
    } cases[] = {
        {with(good_, {"--parameters", one}), 0, {true, true, true}},
        {with(good_, {"--parameters", one, "--max-mean", "2.9"}), 3, {true, true, false}},
        {with(good_, {"--parameters", Path("made"), "--max-mean", "2.9"}), 0, {true, true, true}},
        {with({bad_}, with(good_, {"--parameters", Path("made"), "--max-mean", "2.9"})),
         1,
         {nullptr, true, true, true}},
        {with({bad_}, with(good_, {"--parameters", one, "--max-mean", "2.9"})), 1, {nullptr, true, true, false}},
        {{good_[2], "--coefficients", Path("made/"), "--output-folder", Path("pages")}, 0, {true}},
    };
    for (const auto& [arguments, status, passed] : cases) {
        const ToolRun run = RunTool(with({"verify"}, arguments));
        EXPECT_EQ(run.status, status) << run.err;
        const std::vector<json> lines = Lines(run);
        ASSERT_EQ(lines.size(), passed.size());
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(lines[i]["ok"], !passed[i].is_null());
            EXPECT_EQ(lines[i].value("passed", json()), passed[i]) << i << lines[i].value("delivered", json());
        }
    }
    EXPECT_THAT(ReadBytes(Path("pages/camera-225.html")), HasSubstr("Verification on camera-225.bmp"));
    const ToolRun none = RunTool(with(with({"verify"}, good_), {"--parameters", Path("none.twkp")}));
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.out, "") << "a calibration that does not load ends the call before any picture";
}

TEST_F(Many, AStrictOneKeepsItsOwnFilesBackAlone) {
    DrawnChart clipped = CameraChart();
    clipped.colors[0] = {255, 255, 255};
    const std::string worse = WriteImage("clipped.bmp", clipped.Draw());
    const ToolRun run =
        RunTool({"calibrate", worse, good_[0], "--strict", "--illuminant", "D65", "--output-folder", Path("out")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(Lines(run)[0]["ok"], false);
    EXPECT_EQ(Lines(run)[0]["findings"][0]["code"], "clipped") << "what is known of it is told all the same";
    EXPECT_EQ(Lines(run)[1]["ok"], true) << run.err;
    EXPECT_FALSE(Exists("out/clipped.ccor"));
    EXPECT_TRUE(Exists("out/camera-255.ccor"));
}

TEST_F(Many, AChartThatIsNotFoundIsToldWithTheReason) {
    const std::string black = WriteImage("black.bmp", CTivImage(100, 80, CTivData::FormatRgb, nullptr, true));
    const ToolRun run = RunTool({"calibrate", black, good_[0], "--find"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(Lines(run)[0]["reason"]["code"], "no-patches");
    EXPECT_EQ(Lines(run)[1]["found"], true);
}

TEST_F(Many, WhatCouldNotBeToldLeavesNoFiles) {
    const ToolRun run = RunTool(with(with({"calibrate"}, good_), {"--output-folder", Path("out")}), "/dev/full");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot write to standard output"));
    EXPECT_TRUE(std::filesystem::is_empty(Path("out")));
}

TEST_F(Many, AnInterruptedCallTellsOfEach) {
    Words line = {"calibrate", "--output-folder", Path("out"), "--write", "ccor,zvk", "--jobs", "2"};
    constexpr std::size_t count = 300;
    for (std::size_t i = 0; i < count; ++i) {
        line.push_back(Path("in-" + std::to_string(i) + ".bmp"));
        std::filesystem::create_hard_link(good_[0], line.back());
    }
    const ToolRun run = InterruptTool(line, SIGINT, [&] { return Exists("out/in-2.zvk"); });
    EXPECT_EQ(run.status, -SIGINT);
    const std::vector<json> lines = Lines(run);
    ASSERT_EQ(lines.size(), count);
    std::ptrdiff_t done = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const bool isDone = lines[i]["ok"];
        done += isDone;
        EXPECT_EQ(Exists("out/in-" + std::to_string(i) + ".ccor"), isDone);
        EXPECT_EQ(Exists("out/in-" + std::to_string(i) + ".zvk"), isDone);
    }
    EXPECT_GE(done, 3);
    EXPECT_LT(done, static_cast<std::ptrdiff_t>(count));
    EXPECT_THAT(lines.back()["error"].get<std::string>(), HasSubstr("not begun"));
    const std::filesystem::directory_iterator out(Path("out"));
    EXPECT_EQ(std::distance(begin(out), end(out)), 2 * done) << "nothing staged is left";
}

}  // namespace
