#include <QDir>

#include "acquisition/zvn/ZvnManager.h"
#include "app/CommandTable.h"
#include "app/toolkit/Profile.h"
#include "tests/acquisition/camera_description.h"
#include "tests/acquisition/fake_camera.h"
#include "tests/app/workflow_bench.h"

using namespace tonewright;

namespace {

constexpr const char* kNoRawColors =
    "CTivTonewrightDC::Calibrate => vector of raw colors is empty. Use SetRawColors prior to Calibrate.";
constexpr const char* kTransferWarning =
    "Depending on the file size and communication speed, the transfer could take a while, but must not be aborted. "
    "Please wait.";

const std::string kGrabber = "[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\n";
const std::string kCamera =
    "[A Camera_Link]\nkind = Camera Link camera\nwidth = 8\nheight = 4\nformat = RGB 32\nfiles = memory\n";

const std::string kOther = "[Other]\nkind = other\nwidth = 8\nheight = 4\nformat = RGB 32\n";
constexpr const char* kSaved = "The coefficients of the camera were saved.";

using WorkflowDevices = WorkflowBench;

TEST_F(WorkflowDevices, NoHardwareIsToldWhenTheUserAsks) {
    Devices().OnConfigure();
    EXPECT_EQ(log, (Rows{{"Configure => no acquisition device found", LogError}}));
    // A cancelled dialog tells the last error once more.
    Simulate(kGrabber);
    Devices().OnConfigure();
    EXPECT_EQ(log, (Rows(2, {"Configure => no acquisition device found", LogError})));
}

TEST_F(WorkflowDevices, SnapTellsItsFailureAsInformation) {
    Connect(kGrabber);
    Connect(kGrabber + "faults = create\n");  // the reconnection before it closed the device
    log.clear();
    Devices().OnSnap();
    EXPECT_EQ(log, (Rows{{"Snap => not initialized", LogInformation}}));
}

TEST_F(WorkflowDevices, UploadAndBackupReachACamera) {
    QDir(folder.path()).mkdir("memory");
    Connect(kCamera);
    EXPECT_FALSE(FindCommand(ID_BTN_CALIBRATE_DEVICE)->enabled(workflow->GetStudioState())) << "no coefficients yet";
    prompts.path = Path("backup.ccor");
    log.clear();
    Devices().OnBackupCoefficients();
    EXPECT_EQ(log, (Rows{{"Cannot read file from device.", LogError}}));
    Write("memory/ColorCorrectionMatrix", "the factory's");
    LoadChart();
    prompts.path = Path("new.ccor");
    Files().OnSaveCoefficients();
    log.clear();
    Devices().OnUploadCoefficients();
    EXPECT_EQ(log, (Rows{{kTransferWarning, LogWarning}, {"Finished successfully !", LogInformation}}));
    prompts.path = Path("backup.ccor");
    Devices().OnBackupCoefficients();
    EXPECT_EQ(log.back(), (LogRow{"Backup succeeded.", LogInformation}));
    EXPECT_EQ(State().coefficientFile, Path("new.ccor"));
    EXPECT_NE(GetProfile().ReadString("ColorCorrectionFile", "Name", ""), prompts.path);
    EXPECT_EQ(Read("new.ccor"), Read("backup.ccor"));
}

TEST_F(WorkflowDevices, AGrabberWithoutCoefficientsIsCalibratedBeforeTheUpload) {
    QDir::setCurrent(folder.path());
    Connect(kGrabber);
    Calibration().OnColorsManual();
    log.clear();
    Devices().OnUploadCoefficients();
    EXPECT_EQ(log, (Rows{{kTransferWarning, LogWarning}, {kNoRawColors, LogError}}));
    Calibration().OnColorsAutomatic();
    LoadChart();
    log.clear();
    Devices().OnUploadCoefficients();
    EXPECT_TRUE(QFile::exists(Path("__upload__.ccor")));
    EXPECT_TRUE(State().coefficientFile.isEmpty());
    EXPECT_EQ(log, (Rows{{kTransferWarning, LogWarning}, {"Cannot create link to device.", LogError}}));
    QDir::setCurrent(QDir::rootPath());
}

// The road of a grabber whose coefficients lie in the camera behind it: what the camera keeps must be a calibration.
TEST_F(WorkflowDevices, NothingThatCannotBeACalibrationReachesADevice) {
    QDir(folder.path()).mkdir("memory");
    QDir::setCurrent(folder.path());
    const auto upload = [&] {
        log.clear();
        Write("memory/ColorCorrectionMatrix", "the factory's");
        Devices().OnUploadCoefficients();
        ASSERT_EQ(log.size(), 2u);
        EXPECT_EQ(log[0], (LogRow{kTransferWarning, LogWarning}));
    };
    const auto expectRefusal = [&](const std::string& text, const char* state) {
        upload();
        EXPECT_EQ(log.back(), (LogRow{text, LogError})) << state;
        EXPECT_EQ(Read("memory/ColorCorrectionMatrix"), "the factory's") << state;
    };
    const std::string incomplete = " columns of the chart were found.";
    Connect(kGrabber + kCamera);
    expectRefusal(kNoRawColors, "no picture");
    LoadChart(40, 3);
    expectRefusal("Nothing was sent: in the raw image 3 of 4 rows and 6 of 6" + incomplete, "a row short");
    LoadChart(40, 0);
    expectRefusal("Nothing was sent: in the raw image 0 of 4 rows and 0 of 6" + incomplete, "no chart");
    LoadChart();
    Parameters().OnRelative();
    prompts.path = WriteChart("dark.bmp", 40, 2);
    Pictures().OnLoadReferenceImage();
    expectRefusal("Nothing was sent: in the reference image 2 of 4 rows and 6 of 6" + incomplete, "reference");
    Parameters().OnAbsolute();
    upload();
    EXPECT_EQ(log.back(), (LogRow{"Finished successfully !", LogInformation}));
    EXPECT_EQ(Read("memory/ColorCorrectionMatrix"), Read("__upload__.ccor"));

    // Somebody else's file, of the one kind that loading takes.
    const float offsets[12] = {0.3f, 0, 0, 0, 0.3f, 0, 0, 0, 0.3f, 0, 0, 0};
    prompts.path = Path("chosen.ccor");
    Files().OnSaveCoefficients();
    std::string file = Read("chosen.ccor");
    file.replace(file.size() - sizeof offsets, sizeof offsets, reinterpret_cast<const char*>(offsets), sizeof offsets);
    Write("chosen.ccor", file);
    Files().OnLoadCoefficients();
    expectRefusal(
        "Nothing was sent: the red row of the transform has no weight: red would be the same for every color.",
        "offsets alone");
    QDir::setCurrent(QDir::rootPath());
}

TEST_F(WorkflowDevices, SendAndReadReachTheFileOfACamera) {
    QDir(folder.path()).mkdir("memory");
    QDir::setCurrent(folder.path());
    const auto send = [&](const std::string& text, int type) {
        log.clear();
        Devices().OnSendCoefficients();
        ASSERT_GE(log.size(), 2u) << text;
        EXPECT_EQ(log.front(), (LogRow{kTransferWarning, LogWarning}));
        EXPECT_EQ(log.back(), (LogRow{text, type}));
    };
    const auto canSend = [&] { return FindCommand(ID_BTN_SEND_COEFFICIENTS)->enabled(workflow->GetStudioState()); };
    EXPECT_FALSE(canSend()) << "no camera";
    Connect(kCamera);
    EXPECT_FALSE(canSend()) << "such a camera has Upload and Backup";
    Connect(kOther + "files = memory\n");
    EXPECT_TRUE(canSend());
    EXPECT_TRUE(FindCommand(ID_BTN_READ_COEFFICIENTS)->enabled(workflow->GetStudioState()));

    Write("memory/ColorCorrectionMatrix", "the factory's");
    send(kNoRawColors, LogError);
    LoadChart(40, 3);
    send("Nothing was sent: in the raw image 3 of 4 rows and 6 of 6 columns of the chart were found.", LogError);
    EXPECT_EQ(Read("memory/ColorCorrectionMatrix"), "the factory's");
    LoadChart();
    send("Finished successfully !", LogInformation);
    EXPECT_EQ(Read("memory/ColorCorrectionMatrix"), Read("__upload__.ccor"));
    EXPECT_TRUE(State().coefficientFile.isEmpty());

    // The file that the user saved is what goes out, whatever is fitted later; reading leaves it in force.
    EditGamma("1.5");
    prompts.path = Path("chosen.ccor");
    Files().OnSaveCoefficients();
    send("Finished successfully !", LogInformation);
    prompts.path = Path("read.ccor");
    Devices().OnReadCoefficients();
    EXPECT_EQ(log.back(), (LogRow{kSaved, LogInformation}));
    EXPECT_EQ(Read("read.ccor"), Read("chosen.ccor"));
    EXPECT_EQ(State().coefficientFile, Path("chosen.ccor"));
    EXPECT_EQ(GetProfile().ReadString("ColorCorrectionFile", "Name", ""), Path("chosen.ccor"));

    const struct {
        const char* more;
        const char* text;
    } failing[] = {
        {"files = memory\nfaults = write\n", "Cannot write file to device."},
        {"", "Nothing was sent: the camera has no color transformation features and no file for coefficients."},
        {"files = memory\nfaults = create\n", "Nothing was sent: the camera could not be opened."},
    };
    const std::string held = Read("memory/ColorCorrectionMatrix");
    for (const auto& row : failing) {
        Simulate(kOther + row.more);  // the camera is opened anew
        send(row.text, LogError);
        EXPECT_EQ(Read("memory/ColorCorrectionMatrix"), held) << row.text;
    }
    Devices().OnReadCoefficients();
    EXPECT_EQ(log.back(), (LogRow{"Cannot read file from device.", LogError}));
    EXPECT_EQ(Read("read.ccor"), Read("chosen.ccor")) << "the earlier file stays";
    QDir::setCurrent(QDir::rootPath());
}

TEST_F(WorkflowDevices, SendAndReadReachTheFeaturesOfACamera) {
#ifndef TONEWRIGHT_HAVE_ARAVIS
    GTEST_SKIP() << "built without the library for GenICam cameras";
#endif
    if (FakeCamera::FindTool().empty()) GTEST_SKIP() << "aravis-tools is not installed";
    QDir::setCurrent(folder.path());
    Write("camera.xml", CameraDescription().ColorTransformation().Xml());
    FakeCamera camera(Path("camera.xml").toStdString());
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    SimulateAndChoose("[" + camera.Name() + "]\n");
    unsetenv("ZVN_SIMULATION");
    Devices().OnConfigure();
    ASSERT_EQ(State().deviceKind, DeviceKindOther) << LastError();
    LoadChart();
    log.clear();
    Devices().OnSendCoefficients();
    EXPECT_EQ(
        log,
        (Rows{{kTransferWarning, LogWarning},
              {"The camera's color transformation features hold the coefficients and are in force.", LogInformation},
              {"Finished successfully !", LogInformation}}));
    prompts.path = Path("read.ccor");
    Devices().OnReadCoefficients();
    EXPECT_EQ(log.back(), (LogRow{kSaved, LogInformation}));
    const std::string held = Read("__upload__.ccor");
    EXPECT_EQ(held.size(), 132u);
    EXPECT_EQ(Read("read.ccor"), held);

    GetEngine().SetXformSize(10);
    prompts.path = Path("ten.ccor");
    Files().OnSaveCoefficients();
    Devices().OnSendCoefficients();
    EXPECT_EQ(log.back(), (LogRow{"Cannot write file to device.", LogError}));
    prompts.path = Path("again.ccor");
    Devices().OnReadCoefficients();
    EXPECT_EQ(Read("again.ccor"), held) << "the refused one left no trace";

    camera.Unplug();
    Devices().OnReadCoefficients();
    EXPECT_EQ(log.back(), (LogRow{"Cannot read file from device.", LogError}));
    EXPECT_EQ(Read("again.ccor"), held);
    Devices().OnSendCoefficients();
    EXPECT_EQ(log.back(), (LogRow{"Nothing was sent: the camera could not be opened.", LogError}));
    QDir::setCurrent(QDir::rootPath());
}

}  // namespace
