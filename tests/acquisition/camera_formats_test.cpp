#include "acquisition/zvn/ZvnCameraFormats.h"

#include <gmock/gmock.h>

#include "acquisition/zvn/ZvnManager.h"
#include "acquisition/zvn/zvn_formats.h"
#include "calibration/CTivTonewrightDC.h"
#include "chart/PatchDetector.h"
#include "quality/CalibrationQuality.h"
#include "tests/acquisition/packed_frame.h"
#include "tests/acquisition/simulation.h"

using namespace tonewright;

namespace {

using Bytes = std::vector<std::byte>;

constexpr const char* kColorFormats[] = {"BayerGR8",
                                         "BayerRG8",
                                         "BayerGB8",
                                         "BayerBG8",
                                         "BayerGR10",
                                         "BayerRG10",
                                         "BayerGB10",
                                         "BayerBG10",
                                         "BayerGR10p",
                                         "BayerRG10p",
                                         "BayerGB10p",
                                         "BayerBG10p",
                                         "BayerGR10Packed",
                                         "BayerRG10Packed",
                                         "BayerGB10Packed",
                                         "BayerBG10Packed",
                                         "BayerGR12",
                                         "BayerRG12",
                                         "BayerGB12",
                                         "BayerBG12",
                                         "BayerGR12p",
                                         "BayerRG12p",
                                         "BayerGB12p",
                                         "BayerBG12p",
                                         "BayerGR12Packed",
                                         "BayerRG12Packed",
                                         "BayerGB12Packed",
                                         "BayerBG12Packed",
                                         "BayerGR16",
                                         "BayerRG16",
                                         "BayerGB16",
                                         "BayerBG16",
                                         "RGB8",
                                         "BGR8",
                                         "RGBa8",
                                         "BGRa8",
                                         "RGB10",
                                         "BGR10",
                                         "RGB12",
                                         "BGR12",
                                         "RGB16",
                                         "BGR16",
                                         "RGB10p32",
                                         "RGB10p",
                                         "BGR10p",
                                         "RGB12p",
                                         "BGR12p",
                                         "YUV422_8",
                                         "YUV422_8_UYVY",
                                         "YCbCr422_8",
                                         "YCbCr422_8_CbYCrY"};

constexpr const char* kMonoFormats[] = {"Mono8",   "Mono10",       "Mono10p", "Mono10Packed", "Mono12",
                                        "Mono12p", "Mono12Packed", "Mono14",  "Mono16"};

/// A camera that sends one frame, packed, again and again.
class PackedCamera : public ZvnBackend {
public:
    PackedCamera(const std::string& format, int width, int height, int deliveredBits, const PackedFrame::Scene& scene)
        : format_(*FindZvnCameraFormat(format)),
          deliveredBits_(deliveredBits),
          frame_{width, height, GetZvnBufferFormat(format_, deliveredBits)},
          sent_(PackedFrame(format, width, height).Pack(scene)) {
        SetZvnBackend(this);
    }
    ~PackedCamera() override { SetZvnBackend(nullptr); }

    std::vector<ZvnServer> ListServers() override { return {{"Packed", 0, 1}}; }
    std::shared_ptr<ZvnSource> Open(const ZvnLocation&, ZvnResourceType, const std::string&) override {
        return std::make_shared<Source>(*this);
    }
    bool AllowBuffers(const ZvnLocation&) override { return true; }

private:
    struct Source : ZvnSource {
        explicit Source(const PackedCamera& itsCamera) : camera(itsCamera) {}
        ZvnFrameFormat GetFrameFormat() const override { return camera.frame_; }
        bool PrepareBuffers(int) override { return true; }
        bool PrepareTransfer() override { return true; }
        ZvnGrab Grab(std::span<std::byte> destination, std::stop_token) override {
            const bool done =
                UnpackZvnFrame(camera.format_, camera.deliveredBits_, camera.frame_, camera.sent_, 0, destination);
            return done ? ZvnGrab::Frame : ZvnGrab::Trash;
        }
        std::optional<int> FindFile(const std::string&) override { return std::nullopt; }
        std::optional<std::vector<char>> ReadFile(const std::string&) override { return std::nullopt; }
        bool WriteFile(const std::string&, std::span<const char>) override { return false; }
        bool SetImageFilter(int, std::span<const float, 12>) override { return false; }
        const PackedCamera& camera;
    };

    const ZvnCameraFormat& format_;
    int deliveredBits_;
    ZvnFrameFormat frame_;
    Bytes sent_;
};

constexpr int kPitch = 40, kPatch = 32, kWidth = 6 * kPitch + 9, kHeight = 4 * kPitch + 9;

/// The built-in chart under D65 as a camera with mixed channels sees it, linear, on a dark surround.
PackedFrame::Scene chartScene() {
    constexpr double mix[3][3] = {{0.70, 0.22, 0.08}, {0.14, 0.76, 0.10}, {0.05, 0.20, 0.75}};
    std::vector<std::array<double, 3>> patches;
    const auto& tables = GetCalibrationTables();
    for (const auto& xyz : tables.ReferenceTable.at(3)) {
        std::array<double, 3> linear{}, seen{};
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t k = 0; k < 3; ++k) {
                linear[i] += tables.XyzToRgbMatrix[static_cast<int>(i)][k] * static_cast<double>(xyz[k]);
            }
        }
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t k = 0; k < 3; ++k) seen[i] += 0.95 * mix[i][k] * std::fmax(linear[k], 0);
        }
        patches.push_back(seen);
    }
    return [patches](int x, int y) -> std::array<double, 3> {
        const bool isOnPatch =
            x % kPitch >= kPitch - kPatch && y % kPitch >= kPitch - kPatch && x < 6 * kPitch && y < 4 * kPitch;
        if (!isOnPatch) return {0.004, 0.004, 0.004};
        return patches[static_cast<std::size_t>(y / kPitch * 6 + x / kPitch)];
    };
}

/// Grabs the chart from a camera of this format, finds it and calibrates. @return the mean CIEDE2000 of what is
/// delivered
double calibrated(const std::string& format, int deliveredBits, CTivData::Format expected) {
    static const PackedFrame::Scene scene = chartScene();
    const PackedCamera camera(format, kWidth, kHeight, deliveredBits, scene);
    RecordedSession recorded;
    EXPECT_TRUE(recorded.session.Configure()) << LastError();
    EXPECT_TRUE(recorded.session.Snap());
    EXPECT_EQ(recorded.WaitForFrames(1).size(), 1u);
    CTivImage image = *recorded.session.GetImage(-1);
    EXPECT_EQ(image.GetFormat(), expected);
    const int bits = expected == CTivData::FormatRgb10 ? 10 : 8;
    for (int patch = 0; patch < 24; ++patch) {  // a fit would make up for channels that changed places
        const int x = patch % 6 * kPitch + kPitch / 2, y = patch / 6 * kPitch + kPitch / 2;
        const CTivData data = image.GetData(x, y);
        const std::uint32_t color = bits == 10 ? data.AsRgb10() : data.AsRgb();
        for (std::size_t i = 0; i < 3; ++i) {
            const std::uint32_t channel = color >> (2 - static_cast<int>(i)) * bits & ((1u << bits) - 1);
            EXPECT_NEAR(channel / (std::exp2(bits) - 1), scene(x, y)[i], 1.6 / 255) << patch << ", " << i;
        }
    }
    PatchDetector detector;
    const ChartRoi roi{0, 0, kWidth, kHeight};
    EXPECT_TRUE(detector.DetectPatches(image, roi, {}));
    EXPECT_EQ(detector.GetFoundRows() * detector.GetFoundColumns(), 24);
    CTivTonewrightDC engine;
    engine.SetIlluminant(3);
    engine.SetXformSize(4);
    EXPECT_TRUE(engine.SetRawColors(detector.GetRawColors(image, roi, {}, PatchDepth::AsImage).colors));
    EXPECT_TRUE(engine.Calibrate()) << LastError();
    return JudgeCalibration(engine, *engine.GetTransform(), {}).delivered.deltaE00.mean;
}

struct PackedSession : testing::Test {
    struct Answers : Simulation {
        Answers() : Simulation("") {
            unsetenv("ZVN_SIMULATION");
            Pick("Packed");
        }
    } answers;
};

TEST_F(PackedSession, EveryColorFormatCalibratesAsWellAsRgb8) {
    const double rgb8 = calibrated("RGB8", 8, CTivData::FormatRgb);
    EXPECT_LT(rgb8, 2.0);
    for (const std::string format : kColorFormats) {
        SCOPED_TRACE(format);
        EXPECT_NEAR(calibrated(format, 8, CTivData::FormatRgb), rgb8, 0.3);
    }
    for (const char* format : {"BayerRG10p", "BayerGB12Packed", "BayerBG16", "RGB10p32", "BGR12"}) {
        SCOPED_TRACE(format);
        EXPECT_LT(calibrated(format, 10, CTivData::FormatRgb10), rgb8 + 0.3);
    }
}

TEST(CameraFormats, TheTableHasTheFormatsAndNoCodeTwice) {
    std::vector<std::uint32_t> codes;
    for (const std::string name : kColorFormats) codes.push_back(GetZvnFormatCode(*FindZvnCameraFormat(name)));
    for (const std::string name : kMonoFormats) codes.push_back(GetZvnFormatCode(*FindZvnCameraFormat(name)));
    for (const std::uint32_t code : codes) {
        EXPECT_EQ(std::count(codes.begin(), codes.end(), code), 1);
        const ZvnCameraFormat* format = FindZvnCameraFormat(code);
        ASSERT_NE(format, nullptr);
        // A code names the bits of a pixel, which are those of a frame of one row.
        const std::string name = GetZvnFormatName(*format);
        EXPECT_EQ(PackedFrame(name, 12, 1).Pack([](int, int) { return std::array<double, 3>{}; }).size(),
                  12 * (code >> 16 & 0xff) / 8)
            << name;
    }
    EXPECT_EQ(FindZvnCameraFormat(0x01080002), nullptr);
}

TEST(CameraFormats, GrayFramesOfAnyPackingRoundToBytesOrKeepTheirWords) {
    const auto ramp = [](int x, int y) { return std::array<double, 3>{0, (10 * y + x) / 69.0, 0}; };
    for (const std::string name : kMonoFormats) {
        SCOPED_TRACE(name);
        const ZvnCameraFormat& format = *FindZvnCameraFormat(name);
        const Bytes sent = PackedFrame(name, 10, 7).Pack(ramp);
        const int bits = GetZvnSampleBits(format);
        const double full = std::exp2(bits) - 1;
        const bool isDeep = bits > 8;
        EXPECT_EQ(GetZvnBufferFormat(format, 8), kZvnMono8);
        EXPECT_EQ(GetZvnBufferFormat(format, 10), isDeep ? kZvnMono16 : kZvnMono8);
        std::vector<std::uint8_t> bytes(70);
        std::vector<std::uint16_t> words(70);
        ASSERT_TRUE(UnpackZvnFrame(format, 8, {10, 7, kZvnMono8}, sent, 0, std::as_writable_bytes(std::span(bytes))));
        if (isDeep) {
            ASSERT_TRUE(
                UnpackZvnFrame(format, 10, {10, 7, kZvnMono16}, sent, 0, std::as_writable_bytes(std::span(words))));
        }
        for (std::size_t i = 0; i < 70; ++i) {
            const double sample = std::round(static_cast<double>(i) / 69 * full);
            EXPECT_EQ(bytes[i], std::fmin(std::floor(sample / std::exp2(bits - 8) + 0.5), 255));
            EXPECT_EQ(words[i], isDeep ? sample : 0);
        }
    }
}

TEST(CameraFormats, RowsMayBePaddedOrRunOnAndShortFramesAreRefused) {
    // Five samples of 12 bits a row: 8 bytes with one half empty, or 7.5 where rows run on.
    const auto scene = [](int x, int y) { return std::array<double, 3>{0, (5 * y + x) / 15.0, 0}; };
    const ZvnCameraFormat& format = *FindZvnCameraFormat("Mono12p");
    const Bytes rows = PackedFrame("Mono12p", 5, 3).Pack(scene);
    const Bytes runningOn = PackedFrame("Mono12p", 15, 1).Pack(scene);
    ASSERT_EQ(rows.size(), 24u);
    ASSERT_EQ(runningOn.size(), 23u);
    Bytes padded;
    for (std::size_t row = 0; row < 3; ++row) {
        padded.insert(padded.end(), rows.begin() + static_cast<long>(8 * row),
                      rows.begin() + static_cast<long>(8 * row + 8));
        padded.resize(padded.size() + 5, std::byte{0xaa});
    }
    const ZvnFrameFormat frame{5, 3, kZvnMono8};
    const auto unpack = [&](std::span<const std::byte> sent, int padding, std::size_t room = 15) {
        std::vector<std::byte> out(room);
        return UnpackZvnFrame(format, 8, frame, sent, padding, out) ? out : Bytes();
    };
    const Bytes expected = unpack(rows, 0);
    ASSERT_EQ(expected.size(), 15u);
    for (std::size_t i = 0; i < 15; ++i) EXPECT_EQ(expected[i], std::byte(std::min((273 * i + 8) / 16, 255ul)));
    EXPECT_EQ(unpack(runningOn, 0), expected);
    EXPECT_EQ(unpack(padded, 5), expected);
    EXPECT_EQ(unpack(std::span(padded).first(34), 5), expected);  // nothing is asked of the last row's padding
    EXPECT_EQ(unpack(std::span(padded).first(33), 5), Bytes());
    EXPECT_EQ(unpack(std::span(runningOn).first(22), 0), Bytes());
    EXPECT_EQ(unpack(rows, 0, 14), Bytes());
}

}  // namespace
