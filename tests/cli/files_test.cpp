#include <png.h>
#include <sys/stat.h>

#include "tests/cli/tool_test.h"
#include "tests/support/drawn_chart.h"
#include "tests/support/places.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

class Files : public ToolTest {
protected:
    /// Writes a picture as a PNG of 16 bits a channel.
    std::string WritePng16(const std::string& name, const CTivImage& image) const {
        std::vector<std::uint16_t> samples;
        for (int y = 0; y < image.GetHeight(); ++y) {
            for (int x = 0; x < image.GetWidth(); ++x) {
                const std::uint64_t word = image.GetData(x, y).AsRgb16();
                for (const int shift : {32, 16, 0}) samples.push_back(static_cast<std::uint16_t>(word >> shift));
            }
        }
        png_image png{};
        png.version = PNG_IMAGE_VERSION;
        png.width = static_cast<png_uint_32>(image.GetWidth());
        png.height = static_cast<png_uint_32>(image.GetHeight());
        png.format = PNG_FORMAT_LINEAR_RGB;
        EXPECT_TRUE(png_image_write_to_file(&png, Path(name).c_str(), 0, samples.data(), 0, nullptr)) << png.message;
        return Path(name);
    }

    static json InfoOf(const std::string& path) { return RunTool({"info", path}).Document().at(0); }
};

TEST_F(Files, InfoTellsTheKindsOfImagesByTheirContent) {
    CTivImage image(8, 4, CTivData::FormatUShort, nullptr, true);
    ASSERT_TRUE(image.SetRoi({1, 1, 3, 2}));
    const struct {
        std::string path;
        const char* kind;
        json size, roi;
        const char* format;
    } cases[] = {
        // BMP and TIFF hold the region alone, the others the image with its region.
        {WriteImage("a.bmp", image, ImageFileBmp), "bmp", {3, 2}, {0, 0, 3, 2}, "FormatUByte"},
        {WriteImage("a.tif", image, ImageFileTiff), "tiff", {3, 2}, {0, 0, 3, 2}, "FormatUShort"},
        {WriteImage("a.zvk", image, ImageFileNative), "native image", {8, 4}, {1, 1, 3, 2}, "FormatUShort"},
        {WriteImage("a.crc", image, ImageFileCrc), "crc", {8, 4}, {1, 1, 3, 2}, "FormatUShort"},
        {testData("charts/shelf.png"), "png", {400, 300}, {0, 0, 400, 300}, "FormatRgb"},
    };
    for (const auto& [path, kind, size, roi, format] : cases) {
        const json info = InfoOf(path);
        EXPECT_EQ(info["file"], path);
        EXPECT_EQ(info["kind"], kind) << path;
        EXPECT_EQ((json{info["width"], info["height"]}), size) << path;
        EXPECT_EQ(info["roi"], roi) << path;
        EXPECT_EQ(info["format"], format) << path;
        EXPECT_TRUE(info["metadata"].is_object()) << path;
    }
    const json metadata = InfoOf(Path("a.crc"))["metadata"];
    EXPECT_EQ(metadata["scaleX"], 1.0);
    EXPECT_FALSE(metadata.contains("invalidZ"));
    EXPECT_EQ(metadata["unitName"], "");
}

TEST_F(Files, InfoTellsWhatCalibrationFilesHold) {
    DrawnChart chart;
    const std::string picture = WriteImage("chart.bmp", chart.Draw(), ImageFileBmp);
    ASSERT_EQ(RunTool({"calibrate", picture, "--illuminant", "F2", "--terms", "7", "--gamma", "0.5", "--saturation",
                       "250,251,252", "--parameters", Path("p.twkp"), "--coefficients", Path("c.ccor")})
                  .status,
              0);
    const json parameters = InfoOf(Path("p.twkp"));
    EXPECT_EQ(parameters["kind"], "parameters");
    EXPECT_EQ(parameters["version"], 7600);
    EXPECT_EQ(parameters["mode"], 0);
    EXPECT_EQ(parameters["saturationMode"], 1);
    EXPECT_EQ(parameters["illuminant"], 6);
    EXPECT_EQ(parameters["terms"], 7);
    EXPECT_EQ(parameters["gamma"], 0.5);
    EXPECT_EQ(parameters["saturationRgb"], (json{250, 251, 252}));
    EXPECT_EQ(parameters["saturationRgb16"], (json{0, 0, 0}));
    EXPECT_EQ(parameters["rawColors"]["size"], 24);
    EXPECT_EQ(parameters["rawColors"]["format"], "FormatRgb");
    EXPECT_EQ(parameters["rawColors"]["values"][18], (json{240, 241, 242}));
    EXPECT_EQ(parameters["referenceColors"]["size"], 0);

    const json coefficients = InfoOf(Path("c.ccor"));
    EXPECT_EQ(coefficients["kind"], "coefficients");
    EXPECT_EQ(coefficients["version"], 7300);
    EXPECT_EQ(coefficients["terms"], 7);
    ASSERT_EQ(coefficients["transform"].size(), 3u);
    EXPECT_EQ(coefficients["transform"][2].size(), 7u);
    EXPECT_EQ(coefficients["saturation"], nullptr);

    // An old parameter file lacks the saturation of deep images, and a file with saturation has it behind the record.
    std::string old = WithU32(ReadBytes(Path("p.twkp")), 32, 6100);
    old.erase(76, 12);
    const json oldParameters = InfoOf(Write("old.twkp", old));
    EXPECT_EQ(oldParameters["saturationRgb10"], nullptr);
    EXPECT_EQ(oldParameters["saturationRgb16"], nullptr);
    EXPECT_EQ(oldParameters["rawColors"]["size"], 24);
    std::string saturated = WithU32(ReadBytes(Path("c.ccor")), 32, 7301);
    saturated += std::string("\0\0\x80\x3f\0\0\0\x3f\0\0\0\0", 12);
    EXPECT_EQ(InfoOf(Write("s.ccor", saturated))["saturation"], (json{1.0, 0.5, 0.0}));
}

TEST_F(Files, InfoReadsNativeVectorsAndGoesOnBehindAFileThatFails) {
    std::string bytes(32, '\0');
    bytes.replace(0, 10, "CTivVector");
    for (const std::uint32_t field : {100u, 3u, 7u}) bytes += WithU32("    ", 0, field);
    const std::string vector = Write("v.zvk", bytes + std::string("\x01\0\xff\xff\0\x80", 6));
    const ToolRun run = RunTool({"info", Write("text", "no such kind"), Path("missing"), vector});
    EXPECT_EQ(run.status, 1);
    const json document = run.Document();
    EXPECT_TRUE(document.at(0).contains("error") && document.at(1).contains("error"));
    EXPECT_EQ(document.at(2), (json{{"file", vector},
                                    {"kind", "native vector"},
                                    {"format", "FormatShort"},
                                    {"size", 3},
                                    {"values", {1, -1, -32768}}}));
}

TEST_F(Files, WhatIsNoFileIsRefusedWithItsReason) {
    const std::string pipe = Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);  // nobody ever writes into it
    std::filesystem::create_directory(Path("folder"));
    const std::string picture = WriteImage("chart.bmp", DrawnChart().Draw());
    const std::string longText = Write("long.csv", "");
    std::filesystem::resize_file(longText, 1ull << 33);
    const auto calibrated = [&](const std::string& values) {
        return std::vector<std::string>{"calibrate", picture, "--illuminant", "user",
                                        "--values",  values,  "--white",      "0.8,0.9,0.9"};
    };
    const struct {
        std::vector<std::string> arguments;
        const char* reason;
    } cases[] = {
        {{"info", Path("missing")}, "missing: cannot open file for reading: No such file or directory"},
        {{"info", Path("folder")}, "is a folder, not a file"},
        {{"info", pipe}, "is a pipe or a device, not a file"},
        {{"convert", pipe, Path("out.bmp")}, "is a pipe or a device"},
        {{"apply", picture, "--parameters", pipe, "--output", Path("out.bmp")}, "is a pipe or a device"},
        {calibrated("/dev/zero"), "is a pipe or a device"},
        {calibrated(longText), "too long for a text of numbers"},
    };
    for (const auto& [arguments, reason] : cases) {
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.status, 1) << reason;
        EXPECT_THAT(run.err, HasSubstr(reason));
    }
    EXPECT_EQ(RunTool({"info", Path("missing")}).Document()[0]["kind"], nullptr);
}

TEST_F(Files, NoCrcFileIsWrittenThatCouldNotBeLoadedAgain) {
    const std::string source = WriteImage("chart.bmp", DrawnChart().Draw());
    for (const char* format : {"FormatRgb", "FormatRgb10", "FormatRgb16"}) {
        const ToolRun run = RunTool({"convert", source, Path("a.crc"), "--format", format, "--mode", "2"});
        EXPECT_EQ(run.status, 1) << format;
        EXPECT_THAT(run.err, HasSubstr(std::string("a.crc: a .crc file has no code for ") + format + ","));
    }
    EXPECT_THAT(ToolTest::Files(), ElementsAre("chart.bmp"));
}

TEST_F(Files, ConvertSavesByExtensionAndChangesTheFormat) {
    DrawnChart chart;
    CTivImage image = chart.Draw();
    ASSERT_TRUE(image.SetRoi({10, 10, 20, 20}));  // is widened: every image is taken whole
    const std::string source = WriteImage("chart.zvk", image, ImageFileNative);
    const struct {
        std::vector<std::string> arguments;
        const char* kind;
        const char* format;
    } cases[] = {
        {{Path("a.BMP")}, "bmp", "FormatRgb"},
        {{Path("a.tif"), "--format", "FormatRgb16", "--mode", "2"}, "tiff", "FormatRgb16"},
        {{Path("a.bmp"), "--format", "FormatRgb10"}, "bmp", "FormatRgb10"},
        {{Path("a.zvk"), "--format", "FormatUByte"}, "native image", "FormatUByte"},
        {{Path("a.crc"), "--format", "FormatUByte"}, "crc", "FormatUByte"},
    };
    for (const auto& [arguments, kind, format] : cases) {
        std::vector<std::string> line = {"convert", source};
        line.insert(line.end(), arguments.begin(), arguments.end());
        const ToolRun run = RunTool(line);
        ASSERT_EQ(run.status, 0) << run.err;
        const json info = InfoOf(arguments[0]);
        EXPECT_EQ(info["kind"], kind) << arguments[0];
        EXPECT_EQ(info["format"], format) << arguments[0];
        EXPECT_EQ(info["width"], 310) << arguments[0];
    }
    CTivImage deep;
    ASSERT_TRUE(deep.Load(Path("a.tif"), true));
    EXPECT_EQ(deep.GetData(DrawnChart::kGap, 3 * DrawnChart::kPitch + DrawnChart::kGap).AsRgb16(),
              240ull << 40 | 241ull << 24 | 242ull << 8);

    const ToolRun refused = RunTool({"convert", source, Path("b.zvk"), "--format", "FormatDouble"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, HasSubstr("Destination image format not supported for the specified conversion"));
    EXPECT_FALSE(std::filesystem::exists(Path("b.zvk")));
    const std::string nowhere = Path("no-such-folder/b.bmp");
    EXPECT_THAT(RunTool({"convert", source, nowhere}).err, HasSubstr("writeBMP: cannot write to file " + nowhere));
}

TEST_F(Files, TheWordsOfADeepPngAreReadInTheirOrder) {
    const CTivImage chart = DrawnChart().Draw(CTivData::FormatRgb16, 8);
    const std::string path = WritePng16("deep.png", chart);
    const ToolRun run = RunTool({"detect", path});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["format"], "FormatRgb16");
    EXPECT_EQ(run.Document()["colors"][18], (json{240 << 8, 241 << 8, 242 << 8}));
    EXPECT_EQ(run.Document()["saturated"], false);
}

}  // namespace
