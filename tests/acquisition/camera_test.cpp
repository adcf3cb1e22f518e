#include <gmock/gmock.h>

#include <mutex>

#include "acquisition/CoefficientTransfer.h"
#include "acquisition/zvn/ZvnAcqDevice.h"
#include "acquisition/zvn/ZvnManager.h"
#include "acquisition/zvn/color_features.h"
#include "tests/acquisition/camera_description.h"
#include "tests/acquisition/fake_camera.h"
#include "tests/acquisition/simulation.h"
#include "tests/support/own_clock.h"

using namespace tonewright;

namespace {

/// A camera that holds one file, accessed 48 bytes at a time. Its memory serves as the file; each operation "succeeds"
/// unless the configuration sets its status to something else.
std::string cameraWithAFile() {
    return CameraDescription()
        .Choice("FileSelector", 0x8000, {{"UserFile", 7}, {"ColorCorrectionMatrix", 9}})
        .Choice("FileOpenMode", 0x8004, {{"Read", 0}, {"Write", 1}})
        .Choice("FileOperationSelector", 0x8008, {{"Open", 0}, {"Close", 1}, {"Read", 2}, {"Write", 3}})
        .Integer("Execution", 0x800c)
        .Command("FileOperationExecute", 1, "Execution")
        .Choice("FileOperationStatus", 0x8010, {{"Success", 0}, {"Failure", 1}})
        .Integer("FileAccessLength", 0x8014)
        .Integer("FileOperationResult", 0x8014)
        .Integer("FileAccessOffset", 0x8018)
        .Integer("FileSize", 0x801c)
        .Add(
            "<Register Name=\"FileAccessBuffer\"><Address>0xa000</Address><pAddress>FileAccessOffset</pAddress>"
            "<Length>48</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>")
        .Xml();
}

constexpr double kNoHang = 10'000;  // milliseconds, however busy the machine

class Camera : public testing::Test {
protected:
    void SetUp() override {
#ifndef TONEWRIGHT_HAVE_ARAVIS
        GTEST_SKIP() << "built without the library for GenICam cameras";
#endif
        if (FakeCamera::FindTool().empty()) GTEST_SKIP() << "aravis-tools is not installed";
    }

    static bool IsFound(const FakeCamera& camera) {
        LaterClock clock;
        for (int looks = 0; looks < 8; ++looks) {
            if (ZvnManager::GetResourceCount(ZvnLocation(camera.Name()), 8) == 1) return true;
            clock.ahead += std::chrono::seconds(6);  // what was found counts for five
        }
        return false;
    }

    struct LaterClock : OwnClock {
        Time Now() override { return ZvnClock::Now() + ahead; }
        Duration ahead{0};
    };

    /// Folder and dialog of the simulation, but real hardware.
    struct Answers : Simulation {
        Answers() : Simulation("") { unsetenv("ZVN_SIMULATION"); }
    } answers_;
};

TEST_F(Camera, DeliversFramesAsItsConfigurationSays) {
    const FakeCamera camera;
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    RecordedSession recorded;
    answers_.Pick(camera.Name());
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    EXPECT_EQ(recorded.session.GetDeviceKind(), DeviceKindOther);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(recorded.session.Snap());
    ASSERT_EQ(recorded.WaitForFrames(5).size(), 5u);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetFormat(), CTivData::FormatUByte);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetWidth(), 512);
    EXPECT_EQ(recorded.session.GetImage(-1), recorded.session.GetImage(0));

    answers_.Write("color.txt", "# features\nWidth = 320\nHeight = 200\nPixelFormat = RGB8\n");
    answers_.Pick(camera.Name(), answers_.Path("color.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    recorded.session.Snap();
    ASSERT_EQ(recorded.WaitForFrames(6).size(), 6u);
    const CTivImage& image = *recorded.session.GetImage(-1);
    EXPECT_EQ(image.GetFormat(), CTivData::FormatRgb);
    EXPECT_EQ(image.GetWidth(), 320);
    EXPECT_EQ(image.GetHeight(), 200);
    EXPECT_NE(image.GetData(0, 0).AsRgb(), image.GetData(160, 100).AsRgb());

    answers_.Write("bayer.txt", "Width = 321\nHeight = 199\nPixelFormat = BayerRG8\n");
    answers_.Write("wrong.txt", "Wodth = 320\n");
    answers_.Pick(camera.Name(), answers_.Path("bayer.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    recorded.session.Snap();
    ASSERT_EQ(recorded.WaitForFrames(7).size(), 7u);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetFormat(), CTivData::FormatRgb);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetWidth(), 321);

    answers_.Write("deep.txt", "PixelFormat = Mono16\nDeliveredBits = 10\n");
    answers_.Pick(camera.Name(), answers_.Path("deep.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    EXPECT_EQ(recorded.session.GetImage(-1)->GetFormat(), CTivData::FormatUShort);

    answers_.Pick(camera.Name(), answers_.Path("wrong.txt"));
    EXPECT_FALSE(recorded.session.Configure());
    EXPECT_EQ(LastError(), "Configure => cannot create Acquisition object");
    EXPECT_TRUE(recorded.session.Snap());  // on the setup that is back
    EXPECT_EQ(recorded.WaitForFrames(8).size(), 8u);
    EXPECT_FALSE(recorded.session.TransferFile(answers_.Path("up.ccor").c_str(), true));
}

TEST_F(Camera, UnpluggingIsToldAtTheNextReconnectAndPluggingInMends) {
    FakeCamera camera;
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    auto recorded = std::make_unique<RecordedSession>();
    answers_.Pick(camera.Name());
    ASSERT_TRUE(recorded->session.Configure()) << LastError();
    camera.Unplug();
    CAbortDlg::SetWaitFor(nullptr);
    auto start = Clock::now();
    EXPECT_TRUE(recorded->session.Snap());
    EXPECT_LT(millisecondsSince(start), kNoHang);
    Simulation::WaitAtMost(10'000);
    EXPECT_TRUE(recorded->GetFrames().empty());
    EXPECT_FALSE(recorded->session.Reconnect());
    EXPECT_EQ(LastError(), "Configure => cannot create Acquisition object");
    camera.Plug();
    EXPECT_TRUE(recorded->session.Reconnect()) << LastError();
    recorded->session.Snap();
    EXPECT_EQ(recorded->WaitForFrames(1).size(), 1u);
    camera.Unplug();
    start = Clock::now();
    recorded.reset();
    EXPECT_LT(millisecondsSince(start), kNoHang);
}

TEST_F(Camera, TakesAndGivesFilesInPieces) {
    answers_.Write("camera.xml", cameraWithAFile());
    const FakeCamera camera(answers_.Path("camera.xml"));
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    std::string content;
    for (int i = 0; i < 132; ++i) content += static_cast<char>(i * 37);
    answers_.Write("up.ccor", content);
    answers_.Write("size.txt", "FileSize = 132\n");
    answers_.Write("failing.txt", "FileOperationStatus = Failure\n");
    RecordedSession recorded;
    answers_.Pick(camera.Name(), answers_.Path("size.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    EXPECT_TRUE(recorded.session.TransferFile(answers_.Path("up.ccor").c_str(), true)) << LastError();
    EXPECT_TRUE(recorded.session.TransferFile(answers_.Path("down.ccor").c_str(), false)) << LastError();
    EXPECT_EQ(answers_.Read("down.ccor"), content);

    answers_.Pick(camera.Name(), answers_.Path("failing.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    EXPECT_FALSE(recorded.session.TransferFile(answers_.Path("up.ccor").c_str(), true));
    EXPECT_EQ(LastError(), "Cannot write file to device.");
    EXPECT_FALSE(recorded.session.TransferFile(answers_.Path("down.ccor").c_str(), false));
    EXPECT_EQ(LastError(), "Cannot read file from device.");
}

/// Hears what the layer tells.
struct Ear {
    Ear() {
        ZvnManager::SetStatusListener([this](ZvnStatus kind, const std::string& text) {
            const std::scoped_lock held(lock);
            (kind == ZvnStatus::Note ? notes : errors).push_back(text);
        });
    }
    ~Ear() { ZvnManager::SetStatusListener(nullptr); }

    std::mutex lock;
    std::vector<std::string> notes, errors;
};

std::string coefficients(const ZvnColorMatrix& matrix) {
    const std::vector<char> bytes = MakeZvnCoefficients(matrix);
    return {bytes.begin(), bytes.end()};
}

constexpr ZvnColorMatrix kMatrix = {-0.01f, 1.7f, -0.4f, -0.3f, 0.002f, -0.2f, 1.5f, 0.1f, 0.3f, 0.07f, -0.6f, 1.53f};

TEST_F(Camera, WithoutAFileTakesCoefficientsThroughItsFeatures) {
    answers_.Write("camera.xml", CameraDescription().ColorTransformation().Xml());
    answers_.Write("up.ccor", coefficients(kMatrix));
    answers_.Write("other.ccor", coefficients({0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    answers_.Write("blind.ccor", coefficients({0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    const std::string up = answers_.Path("up.ccor"), down = answers_.Path("down.ccor");
    FakeCamera camera(answers_.Path("camera.xml"));
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    Ear ear;
    RecordedSession recorded;
    CTonewrightAcq& session = recorded.session;
    EXPECT_EQ(FindCoefficientWay(session), CoefficientWay::None);
    answers_.Pick(camera.Name());
    ASSERT_TRUE(session.Configure()) << LastError();
    EXPECT_TRUE(ear.notes.empty());

    // The transfer as it stands, with no file on the camera.
    EXPECT_TRUE(session.TransferFile(up.c_str(), true)) << LastError();
    EXPECT_TRUE(session.TransferFile(down.c_str(), false)) << LastError();
    EXPECT_EQ(answers_.Read("down.ccor"), coefficients(kMatrix));
    ASSERT_TRUE(session.Reconnect()) << LastError();
    ASSERT_EQ(ear.notes.size(), 1u);
    EXPECT_THAT(ear.notes[0], testing::HasSubstr("\"ColorTransformationEnable = false\""));

    const auto sent = SendCoefficients(session, answers_.Path("other.ccor"), CoefficientWay::None, down);
    ASSERT_TRUE(sent) << LastError();
    EXPECT_EQ(sent->way, CoefficientWay::Features);
    EXPECT_TRUE(sent->verified);
    EXPECT_EQ(answers_.Read("down.ccor"), coefficients(kMatrix)) << "what was there before";
    EXPECT_FALSE(SendCoefficients(session, up, CoefficientWay::File, ""));
    EXPECT_EQ(LastError(), "The device has no file \"ColorCorrectionMatrix\".");
    EXPECT_FALSE(SendCoefficients(session, answers_.Path("blind.ccor"), CoefficientWay::None, ""));
    EXPECT_THAT(LastError(), testing::HasSubstr("red"));
    ZvnColorMatrix strong = kMatrix;
    strong[1] = 300;
    answers_.Write("strong.ccor", coefficients(strong));
    EXPECT_FALSE(SendCoefficients(session, answers_.Path("strong.ccor"), CoefficientWay::Features, ""));
    ASSERT_FALSE(ear.errors.empty());
    EXPECT_THAT(ear.errors.back(), testing::HasSubstr("Gain00 would be 300, outside the camera's -256 to 256"));
    EXPECT_TRUE(session.TransferFile(down.c_str(), false));
    EXPECT_EQ(answers_.Read("down.ccor"), answers_.Read("other.ccor")) << "nothing of those was written";

    camera.Unplug();
    EXPECT_FALSE(session.TransferFile(up.c_str(), true));
    EXPECT_EQ(LastError(), "Cannot write file to device.");
}

TEST_F(Camera, ATransferThatWasCutOffIsPutBackOnOpening) {
    answers_.Write("camera.xml", CameraDescription().ColorTransformation().Xml());
    answers_.Write("up.ccor", coefficients(kMatrix));
    answers_.Write("cut-off.txt",
                   "ColorTransformationEnable = false\nColorTransformationValueSelector = Gain00\n"
                   "ColorTransformationValue = 1\nColorTransformationValueSelector = Offset0\n"
                   "ColorTransformationValue = 0\n");
    answers_.Write("on.txt", "ColorTransformationEnable = true\n");
    const FakeCamera camera(answers_.Path("camera.xml"));
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    RecordedSession recorded;
    CTonewrightAcq& session = recorded.session;
    answers_.Pick(camera.Name());
    ASSERT_TRUE(session.Configure()) << LastError();
    ASSERT_TRUE(session.TransferFile(answers_.Path("up.ccor").c_str(), true)) << LastError();
    ZvnColorJournal journal(FindZvnJournalFolder(), GetZvnCameraKey("Aravis", "Fake", FakeCamera::Serial()));
    EXPECT_FALSE(journal.IsPending());
    answers_.Pick(camera.Name(), answers_.Path("cut-off.txt"));
    ASSERT_TRUE(session.Configure()) << LastError();

    // As a program leaves it that ended behind the first two of the new values.
    ZvnColorRecord record{{}, {0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, true};
    for (std::size_t i = 0; i < 12; ++i) {
        record.earlier[i] = static_cast<double>(kMatrix[i]) * (i % 4 == 0 ? 255.0 : 1.0);
    }
    ASSERT_EQ(journal.Keep(record), "");
    Ear ear;
    answers_.Pick(camera.Name(), answers_.Path("on.txt"));  // which would put the mixture in force
    ASSERT_TRUE(session.Configure()) << LastError();
    ASSERT_EQ(ear.notes.size(), 2u);
    EXPECT_EQ(ear.notes[0],
              "an earlier transfer of coefficients to this camera was cut off; those from before are back");
    EXPECT_THAT(ear.notes[1], testing::StartsWith("ColorTransformationEnable is true"));
    EXPECT_TRUE(session.TransferFile(answers_.Path("down.ccor").c_str(), false)) << LastError();
    EXPECT_EQ(answers_.Read("down.ccor"), coefficients(kMatrix));
    EXPECT_FALSE(journal.IsPending());
}

TEST_F(Camera, TellsWhatSpoilsACalibrationAndAnUnusableFormat) {
    const CameraDescription::Entries automatic = {{"Off", 0}, {"Once", 1}, {"Continuous", 2}};
    answers_.Write("camera.xml",
                   CameraDescription({{"Mono8", 0x01080001}, {"Mono8s", 0x01080002}, {"Strange", 0x02180099}})
                       .Choice("ExposureAuto", 0x8000, automatic)
                       .Choice("GainAuto", 0x8004, automatic)
                       .Choice("BalanceWhiteAuto", 0x8008, automatic)
                       .Switch("GammaEnable", 0x800c)
                       .Number("Gamma", 0x8010, 0, 4)
                       .Switch("LUTEnable", 0x8020)
                       .Number("ExposureTime", 0x8028, 0, 10'000'000)
                       .Xml());
    answers_.Write("wild.txt",
                   "ExposureAuto = Continuous\nGainAuto = Once\nBalanceWhiteAuto = Continuous\nGammaEnable = true\n"
                   "Gamma = 0.45\nLUTEnable = true\nExposureTime = 2500000\n");
    const FakeCamera camera(answers_.Path("camera.xml"));
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    Ear ear;
    RecordedSession recorded;
    CTonewrightAcq& session = recorded.session;
    answers_.Pick(camera.Name(), answers_.Path("wild.txt"));
    ASSERT_TRUE(session.Configure()) << LastError();
    const std::vector<ZvnNote> notes = session.GetCamera()->GetNotes();
    std::string tame;
    for (const ZvnNote& note : notes) tame += note.line + "\n";
    EXPECT_EQ(tame,
              "ExposureAuto = Off\nGainAuto = Off\nBalanceWhiteAuto = Off\nGammaEnable = false\nLUTEnable = false\n");
    ASSERT_EQ(ear.notes.size(), 5u);
    EXPECT_EQ(
        ear.notes[3],
        "Gamma is 0.45: the camera's values are not linear in the light, so that a calibration does not hold; the "
        "line \"GammaEnable = false\" in the configuration file turns it off");
    int waitMs = 0;
    CAbortDlg::SetWaitFor([&](void*, ZvnTransfer&, int ms) {
        waitMs = ms;
        return false;
    });
    EXPECT_TRUE(session.Snap());
    EXPECT_EQ(waitMs, 1000 + 2500);

    ear.notes.clear();
    answers_.Write("tame.txt", tame);
    answers_.Pick(camera.Name(), answers_.Path("tame.txt"));
    ASSERT_TRUE(session.Configure()) << LastError();
    EXPECT_TRUE(ear.notes.empty());

    answers_.Write("strange.txt", "PixelFormat = Strange\n");
    answers_.Pick(camera.Name(), answers_.Path("strange.txt"));
    EXPECT_FALSE(session.Configure());
    EXPECT_THAT(LastError(), testing::StartsWith("Configure => input data format not supported"));
    ASSERT_FALSE(ear.errors.empty());
    EXPECT_EQ(ear.errors[0], "pixel format Strange cannot be used; set PixelFormat to Mono8");
}

TEST_F(Camera, InTriggerModeSendsAFrameForEachGrab) {
    FakeCamera camera;
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    Ear ear;
    RecordedSession recorded;
    answers_.Write("trigger.txt", "TriggerMode = On\nTriggerSource = Software\n");
    answers_.Pick(camera.Name(), answers_.Path("trigger.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(recorded.session.Snap());
    EXPECT_EQ(recorded.WaitForFrames(3).size(), 3u);
    EXPECT_TRUE(ear.notes.empty());
    answers_.Write("line.txt", "TriggerMode = On\nTriggerSource = Line0\n");
    answers_.Pick(camera.Name(), answers_.Path("line.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    ASSERT_EQ(ear.notes.size(), 1u);
    EXPECT_THAT(ear.notes[0], testing::HasSubstr("waits for a trigger from Line0"));
}

TEST_F(Camera, PassesOverFramesThatLostPacketsAndDeliversWholeOnes) {
    // 46 packets a frame, of which every fiftieth is lost: four frames in ten come through.
    const FakeCamera camera("", 20);
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    Ear ear;
    RecordedSession recorded;
    answers_.Write("small.txt", "Width = 320\nHeight = 200\n");
    answers_.Pick(camera.Name(), answers_.Path("small.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    std::size_t frames = 0;
    for (int i = 0; i < 6; ++i) {
        EXPECT_TRUE(recorded.session.Snap());
        frames = recorded.WaitForFrames(frames + 1).size();
        ASSERT_EQ(frames, static_cast<std::size_t>(i + 1));
        // The camera's picture is a ramp: what did not come would break it.
        const CTivImage& image = *recorded.session.GetImage(-1);
        int broken = 0;
        for (int y = 0; y < 200; ++y) {
            for (int x = 1; x < 320; ++x) {
                const int before = image.GetData(x - 1, y).AsUByte();
                broken += image.GetData(x, y).AsUByte() == (before + 1) % 255 ? 0 : 1;
            }
        }
        EXPECT_EQ(broken, 0);
    }
}

TEST_F(Camera, ThatEndsInTheMiddleOfAGrabEndsTheGrab) {
    FakeCamera camera;
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    Ear ear;
    auto recorded = std::make_unique<RecordedSession>();
    answers_.Write("line.txt", "TriggerMode = On\nTriggerSource = Line0\n");  // no frame before it ends
    answers_.Pick(camera.Name(), answers_.Path("line.txt"));
    ASSERT_TRUE(recorded->session.Configure()) << LastError();
    CAbortDlg::SetWaitFor([&](void*, ZvnTransfer& transfer, int) {
        EXPECT_FALSE(transfer.Wait(200));
        camera.Unplug();
        return transfer.Wait(200);
    });
    EXPECT_TRUE(recorded->session.Snap());
    EXPECT_TRUE(recorded->GetFrames().empty());
    EXPECT_FALSE(recorded->session.Reconnect());
    EXPECT_EQ(LastError(), "Configure => cannot create Acquisition object");
    EXPECT_FALSE(ear.errors.empty());
    recorded.reset();
}

}  // namespace
