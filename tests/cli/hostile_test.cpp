#include "tests/cli/tool_test.h"
#include "tests/support/drawn_chart.h"

namespace {

using testing::HasSubstr;

// A run takes about 20 MB by itself; a declared size of 2 GiB and more must not show in it.
#if defined(__SANITIZE_ADDRESS__)
constexpr long kPeakKilobytes = 1000 * 1024;
#else
constexpr long kPeakKilobytes = 120 * 1024;
#endif

class HostileFiles : public ToolTest {
protected:
    /// Every command that reads such a file must end with 1, say why, write nothing, and stay small.
    void ExpectRefusal(const std::string& bytes, const std::string& what, const std::string& told = {}) {
        const std::string file = Write("hostile", bytes), out = Path("out.bmp");
        std::vector<std::vector<std::string>> lines = {{"info", file}};
        if (bytes.starts_with("CTivTonewrightDC")) {
            lines.push_back({"apply", good_, "--parameters", file, "--output", out});
            lines.push_back({"apply", good_, "--coefficients", file, "--output", out});
        } else {
            lines.push_back({"calibrate", file, "--coefficients", Path("out.ccor"), "--corrected", out});
            lines.push_back({"convert", file, out});
        }
        for (const auto& line : lines) {
            const ToolRun run = RunTool(line);
            EXPECT_EQ(run.status, 1) << what << ": " << line[0] << "\n" << run.err;
            EXPECT_NE(run.err, "") << what << ": " << line[0];
            EXPECT_LT(run.peakKilobytes, kPeakKilobytes) << what << ": " << line[0];
            EXPECT_THAT(run.err, HasSubstr(line[0] == "info" ? told : "")) << what;
        }
        EXPECT_THAT(Files(), testing::ElementsAre("good.bmp", "hostile")) << what;
    }

    std::string good_ = WriteImage("good.bmp", DrawnChart().Draw());
};

/// The lengths at which to cut a file: around its heads, and in its data.
std::vector<std::size_t> cuts(const std::string& bytes) {
    std::vector<std::size_t> lengths;
    for (const std::size_t length : {0, 1, 2, 31, 35, 40, 53, 63, 100}) {
        if (length < bytes.size()) lengths.push_back(length);
    }
    lengths.push_back(bytes.size() / 2);
    lengths.push_back(bytes.size() - 1);
    return lengths;
}

TEST_F(HostileFiles, ImagesOfImpossibleSizes) {
    const std::string bmp = ReadBytes(good_);
    CTivImage image(4, 4, CTivData::FormatRgb, nullptr, true);
    const std::string record = ReadBytes(WriteImage("r.zvk", image, ImageFileNative));
    std::filesystem::remove(Path("r.zvk"));
    for (const std::uint32_t size : {0u, 0xFFFFFFFFu, 0x7FFFFFFFu, 0x80000000u}) {
        const std::string number = std::to_string(size);
        ExpectRefusal(WithU32(bmp, 18, size), "BMP width " + number);
        ExpectRefusal(WithU32(bmp, 22, size), "BMP height " + number);
        ExpectRefusal(WithU32(WithU32(bmp, 18, size), 22, size), "BMP both " + number);
        if (size != 0) ExpectRefusal(WithU32(record, 36, size), "record width " + number);
        if (size != 0) ExpectRefusal(WithU32(WithU32(record, 36, size), 40, size), "record both " + number);
    }
    ExpectRefusal(WithU32(record, 44, 99), "record of no format");
    ExpectRefusal(WithU32(bmp, 22, 0xFFFFFF2Eu), "a BMP from the top", "does not support top-down DIB");
}

TEST_F(HostileFiles, RecordsAndCalibrationsThatBreakOff) {
    ASSERT_EQ(RunTool({"calibrate", good_, "--parameters", Path("p"), "--coefficients", Path("c")}).status, 0);
    CTivImage image(20, 20, CTivData::FormatRgb, nullptr, true);
    const std::string files[] = {ReadBytes(Path("p")), ReadBytes(Path("c")),
                                 ReadBytes(WriteImage("r.zvk", image, ImageFileNative))};
    for (const char* name : {"p", "c", "r.zvk"}) std::filesystem::remove(Path(name));
    for (const std::string& file : files) {
        for (const std::size_t length : cuts(file)) {
            const char* told = length >= 36 && file.size() > 36 ? "breaks off" : "";
            ExpectRefusal(file.substr(0, length), file.substr(0, 22) + " cut to " + std::to_string(length), told);
        }
    }
}

TEST_F(HostileFiles, CalibrationsWithImpossibleFields) {
    ASSERT_EQ(
        RunTool({"calibrate", good_, "--terms", "7", "--parameters", Path("p"), "--coefficients", Path("c")}).status,
        0);
    const std::string parameters = ReadBytes(Path("p")), coefficients = ReadBytes(Path("c"));
    for (const char* name : {"p", "c"}) std::filesystem::remove(Path(name));
    constexpr std::size_t illuminant = 44, terms = 48, rawSize = 88 + 36, rawFormat = 88 + 40;
    for (const std::uint32_t number : {0u, 5u, 0xFFFFFFFFu, 0x7FFFFFFFu}) {
        const std::string text = std::to_string(number);
        ExpectRefusal(WithU32(parameters, terms, number), "terms " + text, "term count");
        ExpectRefusal(WithU32(coefficients, 36, number), "coefficient terms " + text, "term count");
        ExpectRefusal(WithU32(coefficients, 76, number), "transform size " + text);
    }
    ExpectRefusal(WithU32(coefficients, 36, 10), "more terms than numbers", "3 x 10 floats");
    ExpectRefusal(WithU32(coefficients, 80, 18), "a transform of doubles");
    for (const std::uint32_t number : {9u, 0xFFFFFFFEu}) {
        ExpectRefusal(WithU32(parameters, illuminant, number), "illuminant", "the illuminant is");
    }
    for (const std::uint32_t number : {0xFFFFFFFFu, 0x7FFFFFFFu}) {
        ExpectRefusal(WithU32(parameters, rawSize, number), "raw colors " + std::to_string(number));
    }
    ExpectRefusal(WithU32(parameters, rawFormat + 4 + 96 + 32, 101), "a second record of another version",
                  "CTivVector::ReadFile => incompatible file");
    // What does not fit together can be looked at, but calibrates nothing.
    const std::string file = Write("hostile", WithU32(parameters, 36, 7));
    const ToolRun run = RunTool({"apply", good_, "--parameters", file, "--output", Path("out.bmp")});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("CTivTonewrightDC::Calibrate => Calibration mode unknown."));
    EXPECT_FALSE(std::filesystem::exists(Path("out.bmp")));
    EXPECT_EQ(RunTool({"info", file}).Document()[0]["mode"], 7);
}

/// The head of a native vector.
std::string vectorHead(std::uint32_t size, std::uint32_t format) {
    std::string bytes(44, '\0');
    bytes.replace(0, 10, "CTivVector");
    return WithU32(WithU32(WithU32(bytes, 32, 100), 36, size), 40, format);
}

TEST_F(HostileFiles, VectorsOfElementsWithoutASize) {
    for (const std::uint32_t format : {0u, 1u, 4u, 9u, 22u, 26u, 99u}) {
        ExpectRefusal(vectorHead(0x7FFFFFFF, format) + "12345678", "elements of format " + std::to_string(format));
    }
}

TEST_F(HostileFiles, AHugeVectorIsPrintedWithoutItsNumbersInMemory) {
    constexpr std::uint32_t bytes = 1 << 19;
    const std::string file = Write("bits", vectorHead(bytes * 8, CTivData::FormatBinary) + std::string(bytes, '\0'));
    const ToolRun run = RunTool({"info", file});
    EXPECT_EQ(run.status, 0) << run.err;
    // Counted in the text: a parsed document would be the greatest in memory, and a child begins with its parent's
    // peak.
    constexpr int otherFields = 4;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), ','), bytes * 8u - 1 + otherFields);
    EXPECT_LT(run.peakKilobytes, kPeakKilobytes);
}

TEST_F(HostileFiles, Garbage) {
    std::string noise;
    std::uint32_t state = 1;
    for (int i = 0; i < 5000; ++i) noise += static_cast<char>((state = state * 1664525u + 1013904223u) >> 24);
    for (const char* magic : {"", "BM", "II*\0", "MM", "\x89PNG\r\n\x1a\n", "CRC\x1a", "CTivImage", "CTivVector",
                              "CTivTonewrightDC", "CTivTonewrightDC_XForm"}) {
        ExpectRefusal(magic + noise, std::string("noise behind ") + magic);
        ExpectRefusal(std::string(magic) + std::string(400, '\xff'), std::string("ones behind ") + magic);
    }
}

}  // namespace
