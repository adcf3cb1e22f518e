#include <QElapsedTimer>
#include <QLabel>
#include <QTest>
#include <cstring>

#include "acquisition/zvn/CAbortDlg.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/RibbonBar.h"
#include "app/toolkit/RibbonField.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDockableImgPane.h"
#include "tests/app/studio.h"

namespace {

constexpr const char* kNoRawColors =
    "CTivTonewrightDC::Calibrate => vector of raw colors is empty. Use SetRawColors prior to Calibrate.";
constexpr const char* kReferenceNeeded =
    "A reference image is needed in relative calibration mode. Please load an image in the reference image window";
constexpr const char* kTransferWarning =
    "Depending on the file size and communication speed, the transfer could take a while, but must not be aborted. "
    "Please wait.";

class Workflow : public Studio {
protected:
    using Rows = std::vector<LogRow>;

    void Edit(int id, const QString& text) {
        frame->Ribbon().SetEditText(id, text);
        Run(id);
    }
    std::string Status(int id) const { return frame->StatusPane(id)->text().toStdString(); }
    /// Keeps the event loop alive until a frame has come to the raw viewer.
    bool WaitForPicture() {
        return QTest::qWaitFor([&] { return frame->RawViewer().Image().IsAllocated(); }, 3000);
    }
};

TEST_F(Workflow, LoadedImageIsShownCountedAndRemembered) {
    prompts.path = WriteChart("chart.bmp");
    prompts.filterIndex = 2;
    Run(ID_BTN_ACQ_LOAD_IMAGE);
    EXPECT_EQ(frame->RawViewer().Image().GetWidth(), 400);
    EXPECT_EQ(Status(317), "400 x 280 x 32-bit, FormatRgb, 4 cycling buffer(s)");
    EXPECT_EQ(Status(112), "Pixel Data is not available.");
    EXPECT_EQ(GetProfile().ReadString("ImageFile", "LoadName", ""), prompts.path);
    EXPECT_EQ(GetProfile().ReadInt("ImageFile", "LoadType", 0), 2);
    EXPECT_TRUE(Log().empty());
    EXPECT_EQ(frame->RawViewer().ImageOverlay().Rectangles().size(), 24u);  // detected at once

    prompts.path = Path("missing.bmp");
    Run(ID_BTN_ACQ_LOAD_IMAGE);
    EXPECT_TRUE(Log().empty()) << "a load that fails is silent";
    EXPECT_NE(GetProfile().ReadString("ImageFile", "LoadName", ""), prompts.path);
    EXPECT_EQ(frame->RawViewer().Image().GetWidth(), 400);
}

TEST_F(Workflow, TheCalibratedViewerTakesADropButNoLoadCommand) {
    frame->DeselectAllViewers();
    frame->CalibratedViewer().SetSelected(1);
    prompts.path = WriteChart("chart.bmp");
    Run(ID_BTN_ACQ_LOAD_IMAGE);
    EXPECT_TRUE(prompts.opened.empty());
    EXPECT_EQ(Log(), (Rows{{"Acces denied. Impossible to load image in calibrated image window.", LogWarning}}));
    frame->OpenDroppedFile(prompts.path);
    EXPECT_TRUE(frame->GetState().calibHasImage);
}

TEST_F(Workflow, PreviewCorrectsTheRawImageAndIsSavedByFilter) {
    LoadChart();
    Run(ID_BTN_CALIBRATE_PREVIEW);
    EXPECT_TRUE(Log().empty());
    EXPECT_TRUE(frame->IsPreviewActive());
    EXPECT_FALSE(frame->CalibratedPane().isHidden());
    EXPECT_EQ(frame->CalibratedViewer().Image().GetWidth(), 400);
    prompts.path = Path("out.zvk");
    prompts.filterIndex = 3;
    Run(ID_BTN_ACQ_SAVE_IMAGE_AS);
    EXPECT_TRUE(CTivImage::IsFile(prompts.path.toStdString().c_str()));
    EXPECT_EQ(GetProfile().ReadInt("ImageFile", "SaveType", 0), 3);
    prompts.path = Path("no folder/out.bmp");
    Run(ID_BTN_ACQ_SAVE_IMAGE_AS);
    EXPECT_TRUE(Log().empty()) << "a save that fails is silent";
    LoadChart();
    EXPECT_FALSE(frame->IsPreviewActive());
}

TEST_F(Workflow, WithoutColorsNothingIsFittedAndNoSaveDialogOpens) {
    LoadChart();
    Run(ID_BTN_COLOR_MANUAL);
    for (const int id : {ID_BTN_CALIBRATE_PREVIEW, ID_BTN_PARAM_SAVE, ID_BTN_SAVE_CAMERA_FILE}) {
        Run(ID_BTN_CLEAR_LOG);
        Run(id);
        EXPECT_EQ(Log(), (Rows{{kNoRawColors, LogError}})) << id;
    }
    EXPECT_TRUE(prompts.saved.empty());
    EXPECT_FALSE(frame->CalibratedPane().isHidden());
    EXPECT_FALSE(frame->CalibratedViewer().Image().IsAllocated());
}

TEST_F(Workflow, RelativeModeAsksForItsImageAndWarnsWhateverTheAnswer) {
    Run(ID_BTN_METHOD_RELATIVE);
    EXPECT_EQ(GetEngine().GetCalibrationMode(), 1);
    EXPECT_EQ(prompts.opened.size(), 1u);
    EXPECT_EQ(Log(), (Rows{{kReferenceNeeded, LogWarning}}));
    EXPECT_FALSE(frame->ReferencePane().isHidden());
    EXPECT_TRUE(frame->GetState().refSelected);
    Run(ID_BTN_METHOD_RELATIVE);
    EXPECT_EQ(prompts.opened.size(), 1u) << "already relative";

    // A reference alone enables the preview, and the empty raw image is then told.
    prompts.path = WriteChart("chart.bmp");
    Run(ID_BTN_ACQ_LOAD_REF_IMAGE);
    Run(ID_BTN_CLEAR_LOG);
    Run(ID_BTN_CALIBRATE_PREVIEW);
    EXPECT_EQ(Log(), (Rows{{LastError(), LogError}}));
    EXPECT_FALSE(frame->IsPreviewActive());

    Run(ID_BTN_METHOD_ABSOLUTE);
    EXPECT_TRUE(frame->GetState().rawSelected);
    frame->DeselectAllViewers();
    frame->ReferenceViewer().SetSelected(1);
    Run(ID_BTN_METHOD_ABSOLUTE);
    EXPECT_TRUE(frame->GetState().refSelected) << "already absolute: nothing is selected";
}

TEST_F(Workflow, EditsTakeNumbersWithinTheirRange) {
    struct Case {
        const char* typed;
        const char* gamma;
        const char* saturation;
    };
    for (const Case& c : {Case{"3", "5", "3"}, Case{"abc", "5", "0"}, Case{"250", "100", "250"}, Case{"-1", "5", "0"},
                          Case{"60", "60", "60"}, Case{"300", "100", "255"}, Case{"99999999999", "100", "255"},
                          Case{"70 percent", "70", "70"}, Case{"", "5", "0"}}) {
        Edit(ID_EDIT_GAMMA, c.typed);
        EXPECT_EQ(frame->Ribbon().EditText(ID_EDIT_GAMMA), c.gamma) << c.typed;
        EXPECT_EQ(frame->Ribbon().SliderValue(ID_SLD_GAMMA), QString(c.gamma).toInt());
        EXPECT_FLOAT_EQ(GetEngine().GetGamma(), QString(c.gamma).toFloat() / 100.0f);
        Run(ID_BTN_SATURATION_MANUAL);
        Edit(ID_EDIT_SATURATION_G, c.typed);
        EXPECT_EQ(frame->Ribbon().EditText(ID_EDIT_SATURATION_G), c.saturation) << c.typed;
        EXPECT_EQ(GetEngine().GetSaturationRgb().AsRgb() & 0xFFFFFF, 0xFF00FFu | QString(c.saturation).toUInt() << 8)
            << c.typed;
    }
}

TEST_F(Workflow, ATypedNumberCountsForTheCommandThatIsPressedNext) {
    auto* edit = frame->Ribbon().findChild<RibbonEdit*>();  // the first one is gamma's
    edit->setText("60");
    Run(ID_BTN_SATURATION_NONE);
    EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.6f);
}

TEST_F(Workflow, SaturationReachesTheEngineOnlyWhenAControlMoves) {
    EXPECT_EQ(GetEngine().GetSaturationRgb().AsRgb() & 0xFFFFFF, 0u);
    Edit(ID_EDIT_SATURATION_R, "7");  // gray in automatic mode: nothing runs
    EXPECT_EQ(GetEngine().GetSaturationRgb().AsRgb() & 0xFFFFFF, 0u);
    Run(ID_BTN_SATURATION_MANUAL);
    frame->Ribbon().SetSliderValue(ID_SLD_SATURATION_B, 16);
    Run(ID_SLD_SATURATION_B);
    EXPECT_EQ(frame->Ribbon().EditText(ID_EDIT_SATURATION_B), "16");
    EXPECT_EQ(GetEngine().GetSaturationRgb().AsRgb() & 0xFFFFFF, 0xFFFF10u);
}

TEST_F(Workflow, LoadedCoefficientsAreAskedForBeforeAPreviewReplacesThem) {
    LoadChart();
    Run(ID_BTN_CALIBRATE_PREVIEW);
    prompts.path = Path("kept.ccor");
    Run(ID_BTN_SAVE_CAMERA_FILE);
    EXPECT_EQ(frame->CoefficientFile(), prompts.path);
    EXPECT_TRUE(frame->IsPreviewActive());
    const CTivImage before(frame->CalibratedViewer().Image());

    Edit(ID_EDIT_GAMMA, "80");  // answered with No
    ASSERT_EQ(prompts.questions.size(), 1u);
    EXPECT_EQ(prompts.questions[0],
              "Calibrate Preview: This will overwrite any previously loaded calibration coefficients.\nDo you want to "
              "continue?");
    EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.8f);
    EXPECT_EQ(frame->CalibratedViewer().Image().GetData(40, 40).AsRgb(), before.GetData(40, 40).AsRgb());
    EXPECT_EQ(frame->CoefficientFile(), prompts.path);

    prompts.yes = true;
    Edit(ID_EDIT_GAMMA, "80");
    EXPECT_NE(frame->CalibratedViewer().Image().GetData(40, 40).AsRgb(), before.GetData(40, 40).AsRgb());
    EXPECT_TRUE(frame->CoefficientFile().isEmpty());
    Edit(ID_EDIT_GAMMA, "90");
    EXPECT_EQ(prompts.questions.size(), 2u) << "nothing left to overwrite";
}

TEST_F(Workflow, CoefficientFilesTellTheirFateWithTheirPath) {
    prompts.path = Path("missing.ccor");
    Run(ID_BTN_LOAD_CAMERA_FILE);
    EXPECT_EQ(Log(), (Rows{{LastError() + " (" + prompts.path.toStdString() + ")", LogError}}));
    EXPECT_TRUE(frame->CoefficientFile().isEmpty());
    LoadChart();
    prompts.path = Path("100%s.ccor");
    Run(ID_BTN_SAVE_CAMERA_FILE);
    Run(ID_BTN_CLEAR_LOG);
    Run(ID_BTN_LOAD_CAMERA_FILE);
    EXPECT_EQ(Log(), (Rows{{prompts.path.toStdString() + " was loaded successfully", LogInformation}}));
    EXPECT_EQ(GetProfile().ReadString("ColorCorrectionFile", "Name", ""), prompts.path);
}

TEST_F(Workflow, ParametersComeBackFromTheirFile) {
    LoadChart();
    Edit(ID_EDIT_GAMMA, "70");
    Run(ID_BTN_ILLUMINANT_D50);
    prompts.path = Path("kept.twkp");
    Run(ID_BTN_PARAM_SAVE);
    Edit(ID_EDIT_GAMMA, "20");
    Run(ID_BTN_ILLUMINANT_F11);
    Run(ID_BTN_CALIBRATE_PREVIEW);
    Run(ID_BTN_COLOR_MANUAL);
    Run(ID_BTN_PARAM_LOAD);
    EXPECT_TRUE(Log().empty());
    EXPECT_EQ(frame->Ribbon().EditText(ID_EDIT_GAMMA), "70");
    EXPECT_EQ(GetEngine().GetIlluminant(), 1);
    EXPECT_FALSE(frame->AreColorsManual());
    EXPECT_FALSE(frame->IsPreviewActive());
    EXPECT_EQ(frame->RawColorPane().GetRawColors().GetSize(), 24);
}

TEST_F(Workflow, ResetAsksAndGoesToItsOwnDefaults) {
    LoadChart();
    prompts.path = Path("kept.ccor");
    Run(ID_BTN_SAVE_CAMERA_FILE);
    Run(ID_BTN_PARAM_RESET);
    EXPECT_EQ(prompts.questions.back(),
              "Glyphix Parameter Reset: Do you really want to reset all the parameters to their default values?");
    EXPECT_EQ(GetEngine().GetIlluminant(), 0);
    prompts.yes = true;
    Run(ID_BTN_PARAM_RESET);
    EXPECT_EQ(GetEngine().GetIlluminant(), 3);
    EXPECT_EQ(GetEngine().GetXformSize(), 10);
    EXPECT_EQ(frame->CoefficientFile(), prompts.path);
}

TEST_F(Workflow, IlluminantsRuleTheValuePane) {
    Run(ID_BTN_ILLUMINANT_USER);
    EXPECT_EQ(GetEngine().GetIlluminant(), -1);
    EXPECT_TRUE(frame->SpectrumPane().IsEnabledForEditing());
    EXPECT_FALSE(frame->SpectrumPane().isHidden());
    frame->SpectrumPane().SetMatrixSize(3, 2);
    Run(ID_BTN_ILLUMINANT_TYPE);
    EXPECT_FALSE(frame->SpectrumPane().IsEnabledForEditing());
    EXPECT_EQ(frame->SpectrumPane().GetChartSize()->Width, 6);
    EXPECT_EQ(GetEngine().GetIlluminant(), -1) << "the button itself chooses nothing";
    Run(ID_BTN_ILLUMINANT_F2);
    EXPECT_EQ(GetEngine().GetIlluminant(), 6);
}

TEST_F(Workflow, ColorsPickedByHandFollowTheSelectedViewer) {
    LoadChart();
    Run(ID_COLOR_ADD_BY_HAND);
    EXPECT_EQ(frame->RawColorPane().Lists().raw.Rows().size(), 0u) << "automatic selection";
    Run(ID_BTN_COLOR_MANUAL);
    EXPECT_FALSE(frame->StatusPane(107)->isHidden());
    EXPECT_TRUE(frame->RawViewer().ImageOverlay().Rectangles().empty());
    Run(ID_COLOR_ADD_BY_HAND);
    frame->RefreshManualPick();
    EXPECT_EQ(frame->RawColorPane().Lists().raw.Rows().size(), 2u);
    Run(ID_COLOR_REMOVE_LAST);
    EXPECT_EQ(frame->RawColorPane().Lists().raw.Rows().size(), 1u);
    frame->DeselectAllViewers();
    frame->CalibratedViewer().SetSelected(1);
    Run(ID_COLOR_REMOVE_LAST);
    EXPECT_EQ(frame->RawColorPane().Lists().raw.Rows().size(), 1u);
    Run(ID_BTN_COLOR_AUTO);
    EXPECT_FALSE(frame->StatusPane(107)->isHidden()) << "shown once, shown for good";
}

TEST_F(Workflow, NoHardwareIsToldWhenTheUserAsks) {
    Run(ID_BTN_REFRESH_CAMERAS);
    EXPECT_EQ(Log(), (Rows{{"Configure => no acquisition device found", LogError}}));
    // A cancelled dialog tells the last error once more.
    Simulate("[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\n");
    Run(ID_BTN_REFRESH_CAMERAS);
    EXPECT_EQ(Log().size(), 2u);
    EXPECT_EQ(Log().front(), Log().back());
}

TEST_F(Workflow, SnappedFrameComesToTheRawViewer) {
    Connect("[Grabber]\nkind = frame grabber\nwidth = 32\nheight = 16\nformat = RGB 32\n");
    EXPECT_EQ(Log(), (Rows{{"Load/Save a camera file prior to calibrating", LogWarning}}));
    EXPECT_EQ(frame->GetState().deviceKind, DeviceKindFrameGrabber);
    frame->DeselectAllViewers();
    frame->ReferenceViewer().SetSelected(1);
    Run(ID_BTN_ACQ_SNAP);
    ASSERT_TRUE(WaitForPicture());
    EXPECT_EQ(frame->RawViewer().Image().GetWidth(), 32);
    EXPECT_EQ(Status(317), "Buffer information");
}

TEST_F(Workflow, SnapTellsItsFailureAsInformation) {
    const std::string grabber = "[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\n";
    Connect(grabber);
    Connect(grabber + "faults = create\n");  // the reconnection before it closed the device
    Run(ID_BTN_CLEAR_LOG);
    Run(ID_BTN_ACQ_SNAP);
    EXPECT_EQ(Log(), (Rows{{"Snap => not initialized", LogInformation}}));
}

TEST_F(Workflow, UploadAndBackupReachACamera) {
    QDir(folder.path()).mkdir("memory");
    Connect("[A Camera_Link]\nkind = Camera Link camera\nwidth = 8\nheight = 4\nformat = RGB 32\nfiles = memory\n");
    EXPECT_FALSE(IsEnabled(ID_BTN_CALIBRATE_DEVICE)) << "no coefficients yet";
    prompts.path = Path("backup.ccor");
    Run(ID_BTN_CLEAR_LOG);
    Run(ID_BTN_BACKUP_DEVICE_FILE);
    EXPECT_EQ(Log(), (Rows{{"Cannot read file from device.", LogError}}));
    Write("memory/ColorCorrectionMatrix", "the factory's");
    LoadChart();
    prompts.path = Path("new.ccor");
    Run(ID_BTN_SAVE_CAMERA_FILE);
    Run(ID_BTN_CLEAR_LOG);
    Run(ID_BTN_CALIBRATE_DEVICE);
    EXPECT_EQ(Log(), (Rows{{kTransferWarning, LogWarning}, {"Finished successfully !", LogInformation}}));
    prompts.path = Path("backup.ccor");
    Run(ID_BTN_BACKUP_DEVICE_FILE);
    ASSERT_FALSE(Log().empty());
    EXPECT_EQ(Log().back(), (LogRow{"Backup succeeded.", LogInformation}));
    EXPECT_EQ(frame->CoefficientFile(), Path("new.ccor"));
    EXPECT_NE(GetProfile().ReadString("ColorCorrectionFile", "Name", ""), prompts.path);
    QFile sent(Path("new.ccor")), received(prompts.path);
    ASSERT_TRUE(sent.open(QIODevice::ReadOnly) && received.open(QIODevice::ReadOnly));
    EXPECT_EQ(sent.readAll(), received.readAll());
}

TEST_F(Workflow, AGrabberWithoutCoefficientsIsCalibratedBeforeTheUpload) {
    QDir::setCurrent(folder.path());
    Connect("[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\n");
    Run(ID_BTN_COLOR_MANUAL);
    Run(ID_BTN_CLEAR_LOG);
    Run(ID_BTN_CALIBRATE_DEVICE);
    EXPECT_EQ(Log(), (Rows{{kTransferWarning, LogWarning}, {kNoRawColors, LogError}}));
    Run(ID_BTN_COLOR_AUTO);
    LoadChart();
    Run(ID_BTN_CLEAR_LOG);
    Run(ID_BTN_CALIBRATE_DEVICE);
    EXPECT_TRUE(QFile::exists(Path("__upload__.ccor")));
    EXPECT_TRUE(frame->CoefficientFile().isEmpty());
    EXPECT_EQ(Log(), (Rows{{kTransferWarning, LogWarning}, {"Cannot create link to device.", LogError}}));
    QDir::setCurrent(QDir::rootPath());
}

// The road of a grabber whose coefficients lie in the camera behind it: what the camera keeps must be a calibration.
TEST_F(Workflow, NothingThatCannotBeACalibrationReachesADevice) {
    QDir(folder.path()).mkdir("memory");
    QDir::setCurrent(folder.path());
    const auto upload = [&] {
        Run(ID_BTN_CLEAR_LOG);
        Write("memory/ColorCorrectionMatrix", "the factory's");
        Run(ID_BTN_CALIBRATE_DEVICE);
        ASSERT_EQ(Log().size(), 2u);
        EXPECT_EQ(Log()[0], (LogRow{kTransferWarning, LogWarning}));
    };
    const auto expectRefusal = [&](const std::string& text, const char* state) {
        upload();
        EXPECT_EQ(Log().back(), (LogRow{text, LogError})) << state;
        EXPECT_EQ(Read("memory/ColorCorrectionMatrix"), "the factory's") << state;
    };
    Connect(
        "[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\n"
        "[A Camera_Link]\nkind = Camera Link camera\nwidth = 8\nheight = 4\nformat = RGB 32\nfiles = memory\n");
    expectRefusal(kNoRawColors, "no picture");
    LoadChart(40, 3);
    expectRefusal("Nothing was sent: in the raw image 3 of 4 rows and 6 of 6 columns of the chart were found.",
                  "a row short");
    LoadChart(40, 0);
    expectRefusal("Nothing was sent: in the raw image 0 of 4 rows and 0 of 6 columns of the chart were found.",
                  "no chart");
    LoadChart();
    Run(ID_BTN_METHOD_RELATIVE);
    prompts.path = WriteChart("dark.bmp", 40, 2);
    Run(ID_BTN_ACQ_LOAD_REF_IMAGE);
    expectRefusal("Nothing was sent: in the reference image 2 of 4 rows and 6 of 6 columns of the chart were found.",
                  "reference a row short");
    Run(ID_BTN_METHOD_ABSOLUTE);
    upload();
    EXPECT_EQ(Log().back(), (LogRow{"Finished successfully !", LogInformation}));
    EXPECT_EQ(Read("memory/ColorCorrectionMatrix"), Read("__upload__.ccor"));

    // Somebody else's file, of the one kind that loading takes.
    const float offsets[12] = {0.3f, 0, 0, 0, 0.3f, 0, 0, 0, 0.3f, 0, 0, 0};
    prompts.path = Path("chosen.ccor");
    Run(ID_BTN_SAVE_CAMERA_FILE);
    std::string file = Read("chosen.ccor");
    file.replace(file.size() - sizeof offsets, sizeof offsets, reinterpret_cast<const char*>(offsets), sizeof offsets);
    Write("chosen.ccor", file);
    Run(ID_BTN_LOAD_CAMERA_FILE);
    expectRefusal(
        "Nothing was sent: the red row of the transform has no weight: red would be the same for every color.",
        "offsets alone");
    QDir::setCurrent(QDir::rootPath());
}

TEST_F(Workflow, ParametersFromAFileCountUntilThereIsAPicture) {
    LoadChart();
    prompts.path = Path("kept.twkp");
    Run(ID_BTN_PARAM_SAVE);
    prompts.path = Path("first.ccor");
    Run(ID_BTN_SAVE_CAMERA_FILE);

    GetEngine().Reset();
    Start();
    Run(ID_BTN_SAVE_CAMERA_FILE);
    EXPECT_EQ(Log(), (Rows{{kNoRawColors, LogError}}));
    prompts.path = Path("kept.twkp");
    Run(ID_BTN_PARAM_LOAD);
    prompts.path = Path("second.ccor");
    Run(ID_BTN_SAVE_CAMERA_FILE);
    EXPECT_EQ(Read("first.ccor"), Read("second.ccor"));
}

TEST_F(Workflow, APreviewHasTheSizeOfItsOwnPicture) {
    for (const int patch : {40, 20, 60}) {
        LoadChart(patch);
        Run(ID_BTN_CALIBRATE_PREVIEW);
        EXPECT_TRUE(Log().empty());
        const CTivImage& preview = frame->CalibratedViewer().Image();
        ASSERT_EQ(preview.GetWidth(), 10 * patch);
        ASSERT_EQ(preview.GetHeight(), 7 * patch);
        CTivImage expected;
        ASSERT_TRUE(GetEngine().Execute(frame->RawViewer().Image(), expected));
        EXPECT_EQ(std::memcmp(preview.GetData(), expected.GetData(), static_cast<std::size_t>(280 * patch * patch)), 0);
    }
}

TEST_F(Workflow, AnEmptiedListCalibratesWithNothing) {
    LoadChart();
    Run(ID_BTN_COLOR_MANUAL);
    for (int i = 0; i < 24; ++i) Run(ID_COLOR_ADD_BY_HAND);
    Run(ID_BTN_CALIBRATE_PREVIEW);
    EXPECT_TRUE(Log().empty());
    EXPECT_TRUE(IsEnabled(ID_BTN_ACQ_SAVE_IMAGE_AS));
    Run(ID_COLOR_LIST_CLEAR);
    Run(ID_BTN_CALIBRATE_PREVIEW);
    EXPECT_EQ(Log(), (Rows{{kNoRawColors, LogError}}));
    EXPECT_FALSE(IsEnabled(ID_BTN_ACQ_SAVE_IMAGE_AS)) << "there is nothing to save";
}

// The processing thread waits for a window that no longer takes its message.
TEST_F(Workflow, ClosingWithAFrameOnItsWayEndsSoon) {
    for (const int waitMs : {0, 30, 120}) {
        Start();
        Connect("[Grabber]\nkind = frame grabber\nwidth = 640\nheight = 480\nformat = RGB 24\ndelay ms = 20\n");
        CAbortDlg::SetWaitFor([](void*, ZvnTransfer&, int) { return true; });  // does not wait
        Run(ID_BTN_ACQ_SNAP);
        QThread::msleep(static_cast<unsigned long>(waitMs));
        QElapsedTimer clock;
        clock.start();
        frame.reset();
        EXPECT_LT(clock.elapsed(), 900) << waitMs;
        CAbortDlg::SetWaitFor(nullptr);
    }
}

}  // namespace
