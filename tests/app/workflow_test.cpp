#include <cstring>

#include "app/CommandTable.h"
#include "app/toolkit/Profile.h"
#include "tests/app/workflow_bench.h"

using namespace tonewright;

namespace {

constexpr const char* kNoRawColors =
    "CTivTonewrightDC::Calibrate => vector of raw colors is empty. Use SetRawColors prior to Calibrate.";
constexpr const char* kReferenceNeeded =
    "A reference image is needed in relative calibration mode. Please load an image in the reference image window";

using WorkflowSteps = WorkflowBench;

TEST_F(WorkflowSteps, LoadedImageIsShownCountedAndRemembered) {
    prompts.path = WriteChart("chart.bmp");
    prompts.filterIndex = 2;
    Pictures().OnLoadImage();
    EXPECT_EQ(raw.image.GetWidth(), 400);
    EXPECT_EQ(status[317], "400 x 280 x 32-bit, FormatRgb, 4 cycling buffer(s)");
    EXPECT_EQ(status[112], "Pixel Data is not available.");
    EXPECT_EQ(status[107], "ROI s:(0008,0005), w:0384, h:0270");
    EXPECT_EQ(GetProfile().ReadString("ImageFile", "LoadName", ""), prompts.path);
    EXPECT_EQ(GetProfile().ReadInt("ImageFile", "LoadType", 0), 2);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(raw.overlays, 24u) << "detected at once";
    EXPECT_GT(detections, 0);

    prompts.path = Path("missing.bmp");
    Pictures().OnLoadImage();
    EXPECT_TRUE(log.empty()) << "a load that fails is silent";
    EXPECT_NE(GetProfile().ReadString("ImageFile", "LoadName", ""), prompts.path);
    EXPECT_EQ(raw.image.GetWidth(), 400);
}

TEST_F(WorkflowSteps, TheCalibratedPictureTakesADropButNoLoadCommand) {
    Select(calibrated);
    prompts.path = WriteChart("chart.bmp");
    Pictures().OnLoadImage();
    EXPECT_TRUE(prompts.opened.empty());
    EXPECT_EQ(log, (Rows{{"Acces denied. Impossible to load image in calibrated image window.", LogWarning}}));
    Files().OpenDroppedFile(prompts.path);
    EXPECT_TRUE(workflow->GetStudioState().calibHasImage);
}

TEST_F(WorkflowSteps, TheDialogSaysWhichPictureItFills) {
    const auto title = [this] { return prompts.opened.back().title.toStdString(); };
    Pictures().OnLoadImage();
    EXPECT_EQ(title(), "Open Raw Image");
    Parameters().OnRelative();
    EXPECT_EQ(title(), "Open Reference Image");
    Pictures().OnLoadRawImage();
    EXPECT_EQ(title(), "Open Raw Image");
    Pictures().OnLoadReferenceImage();
    Pictures().OnLoadImage();
    EXPECT_EQ(title(), "Open Reference Image");
    Files().OnLoadCoefficients();
    EXPECT_EQ(title(), "") << "as ever";
}

TEST_F(WorkflowSteps, PreviewCorrectsTheRawImageAndIsSavedByFilter) {
    LoadChart();
    Calibration().OnCalibratePreview();
    EXPECT_TRUE(log.empty());
    EXPECT_TRUE(State().previewActive);
    EXPECT_EQ(previews, 1);
    EXPECT_EQ(wanted, std::vector<int>{ID_CBTN_CALIB_IMG_VIEW});
    EXPECT_EQ(calibrated.image.GetWidth(), 400);
    prompts.path = Path("out.zvk");
    prompts.filterIndex = 3;
    Pictures().OnSaveImage();
    EXPECT_TRUE(CTivImage::IsFile(prompts.path.toStdString().c_str()));
    EXPECT_EQ(GetProfile().ReadInt("ImageFile", "SaveType", 0), 3);
    prompts.path = Path("no folder/out.bmp");
    Pictures().OnSaveImage();
    EXPECT_TRUE(log.empty()) << "a save that fails is silent";
    LoadChart();
    EXPECT_FALSE(State().previewActive);
}

TEST_F(WorkflowSteps, APreviewHasTheSizeOfItsOwnPicture) {
    for (const int patch : {40, 20, 60}) {
        LoadChart(patch);
        Calibration().OnCalibratePreview();
        EXPECT_TRUE(log.empty());
        ASSERT_EQ(calibrated.image.GetWidth(), 10 * patch);
        ASSERT_EQ(calibrated.image.GetHeight(), 7 * patch);
        CTivImage expected;
        ASSERT_TRUE(GetEngine().Execute(raw.image, expected));
        const auto bytes = static_cast<std::size_t>(280 * patch * patch);
        EXPECT_EQ(std::memcmp(calibrated.image.GetData(), expected.GetData(), bytes), 0);
    }
}

TEST_F(WorkflowSteps, WithoutColorsNothingIsFittedAndNoSaveDialogOpens) {
    LoadChart();
    Calibration().OnColorsManual();
    Calibration().OnCalibratePreview();
    Files().OnSaveParameters();
    Files().OnSaveCoefficients();
    EXPECT_EQ(log, (Rows(3, {kNoRawColors, LogError})));
    EXPECT_TRUE(prompts.saved.empty());
    EXPECT_FALSE(calibrated.image.IsAllocated());
    EXPECT_EQ(previews, 0);
}

TEST_F(WorkflowSteps, AnEmptiedListCalibratesWithNothing) {
    LoadChart();
    Calibration().OnColorsManual();
    for (int i = 0; i < 24; ++i) Calibration().OnAddColor();
    Calibration().OnCalibratePreview();
    EXPECT_TRUE(log.empty());
    EXPECT_TRUE(workflow->GetStudioState().calibHasImage);
    Calibration().OnClearColors();
    Calibration().OnCalibratePreview();
    EXPECT_EQ(log, (Rows{{kNoRawColors, LogError}}));
    EXPECT_FALSE(workflow->GetStudioState().calibHasImage) << "there is nothing to save";
}

TEST_F(WorkflowSteps, RelativeModeAsksForItsImageAndWarnsWhateverTheAnswer) {
    Parameters().OnRelative();
    EXPECT_EQ(GetEngine().GetCalibrationMode(), 1);
    EXPECT_EQ(prompts.opened.size(), 1u);
    EXPECT_EQ(log, (Rows{{kReferenceNeeded, LogWarning}}));
    EXPECT_EQ(wanted, std::vector<int>{ID_CBTN_REF_IMG_VIEW});
    EXPECT_TRUE(workflow->GetStudioState().refSelected);
    Parameters().OnRelative();
    EXPECT_EQ(prompts.opened.size(), 1u) << "already relative";

    // A reference alone enables the preview, and what the raw side lacks is then told.
    prompts.path = WriteChart("chart.bmp");
    Pictures().OnLoadReferenceImage();
    log.clear();
    EXPECT_TRUE(FindCommand(ID_BTN_CALIBRATE_PREVIEW)->enabled(workflow->GetStudioState()));
    Calibration().OnCalibratePreview();
    EXPECT_EQ(log, (Rows{{kNoRawColors, LogError}}));
    EXPECT_FALSE(State().previewActive);

    Parameters().OnAbsolute();
    EXPECT_TRUE(workflow->GetStudioState().rawSelected);
    Select(reference);
    Parameters().OnAbsolute();
    EXPECT_TRUE(workflow->GetStudioState().refSelected) << "already absolute: nothing is selected";
}

TEST_F(WorkflowSteps, EditsTakeNumbersWithinTheirRange) {
    struct Case {
        const char* typed;
        const char* gamma;
        const char* saturation;
    };
    Parameters().OnSaturationMode(ID_BTN_SATURATION_MANUAL);
    for (const Case& c : {Case{"3", "5", "3"}, Case{"abc", "5", "0"}, Case{"250", "100", "250"}, Case{"-1", "5", "0"},
                          Case{"60", "60", "60"}, Case{"300", "100", "255"}, Case{"99999999999", "100", "255"},
                          Case{"70 percent", "70", "70"}, Case{"", "5", "0"}}) {
        EditGamma(c.typed);
        EXPECT_EQ(controls.texts[ID_EDIT_GAMMA], c.gamma) << c.typed;
        EXPECT_EQ(controls.sliders[ID_SLD_GAMMA], QString(c.gamma).toInt());
        EXPECT_FLOAT_EQ(GetEngine().GetGamma(), QString(c.gamma).toFloat() / 100.0f);
        EditSaturation(ID_EDIT_SATURATION_G, c.typed);
        EXPECT_EQ(controls.texts[ID_EDIT_SATURATION_G], c.saturation) << c.typed;
        EXPECT_EQ(GetEngine().GetSaturationRgb().AsRgb() & 0xFFFFFF, 0xFF00FFu | QString(c.saturation).toUInt() << 8)
            << c.typed;
    }
}

TEST_F(WorkflowSteps, SaturationReachesTheEngineOnlyWhenAControlMoves) {
    Parameters().OnSaturationMode(ID_BTN_SATURATION_MANUAL);
    EXPECT_EQ(GetEngine().GetSaturationRgb().AsRgb() & 0xFFFFFF, 0u);
    controls.SetSliderValue(ID_SLD_SATURATION_B, 16);
    Parameters().OnSaturationSlider(ID_SLD_SATURATION_B);
    EXPECT_EQ(controls.texts[ID_EDIT_SATURATION_B], "16");
    EXPECT_EQ(GetEngine().GetSaturationRgb().AsRgb() & 0xFFFFFF, 0xFFFF10u);
}

TEST_F(WorkflowSteps, LoadedCoefficientsAreAskedForBeforeAPreviewReplacesThem) {
    LoadChart();
    Calibration().OnCalibratePreview();
    prompts.path = Path("kept.ccor");
    Files().OnSaveCoefficients();
    EXPECT_EQ(State().coefficientFile, prompts.path);
    EXPECT_TRUE(State().previewActive);
    const std::uint32_t before = calibrated.image.GetData(40, 40).AsRgb();

    EditGamma("80");  // answered with No
    ASSERT_EQ(prompts.questions.size(), 1u);
    EXPECT_EQ(prompts.questions[0],
              "Calibrate Preview: This will overwrite any previously loaded calibration coefficients.\nDo you want to "
              "continue?");
    EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.8f);
    EXPECT_EQ(calibrated.image.GetData(40, 40).AsRgb(), before);
    EXPECT_EQ(State().coefficientFile, prompts.path);

    prompts.yes = true;
    EditGamma("80");
    EXPECT_NE(calibrated.image.GetData(40, 40).AsRgb(), before);
    EXPECT_TRUE(State().coefficientFile.isEmpty());
    EditGamma("90");
    EXPECT_EQ(prompts.questions.size(), 2u) << "nothing left to overwrite";
}

TEST_F(WorkflowSteps, CoefficientFilesTellTheirFateWithTheirPath) {
    prompts.path = Path("missing.ccor");
    Files().OnLoadCoefficients();
    EXPECT_EQ(log, (Rows{{LastError() + " (" + prompts.path.toStdString() + ")", LogError}}));
    EXPECT_TRUE(State().coefficientFile.isEmpty());
    LoadChart();
    prompts.path = Path("100%s.ccor");
    Files().OnSaveCoefficients();
    log.clear();
    Files().OnLoadCoefficients();
    EXPECT_EQ(log, (Rows{{prompts.path.toStdString() + " was loaded successfully", LogInformation}}));
    EXPECT_EQ(GetProfile().ReadString("ColorCorrectionFile", "Name", ""), prompts.path);
}

TEST_F(WorkflowSteps, ParametersComeBackFromTheirFile) {
    LoadChart();
    EditGamma("70");
    Parameters().OnIlluminant(ID_BTN_ILLUMINANT_D50);
    prompts.path = Path("kept.twkp");
    Files().OnSaveParameters();
    EditGamma("20");
    Parameters().OnIlluminant(ID_BTN_ILLUMINANT_F11);
    Calibration().OnCalibratePreview();
    Calibration().OnColorsManual();
    Files().OnLoadParameters();
    ASSERT_EQ(log.size(), 1u) << "that picking by hand ended";
    EXPECT_EQ(log[0].type, LogWarning);
    EXPECT_EQ(controls.texts[ID_EDIT_GAMMA], "70");
    EXPECT_EQ(GetEngine().GetIlluminant(), 1);
    EXPECT_FALSE(State().manualColors);
    EXPECT_FALSE(State().previewActive);
    EXPECT_EQ(lists.GetRawColors().GetSize(), 24);
}

TEST_F(WorkflowSteps, ParametersFromAFileCountUntilThereIsAPicture) {
    LoadChart();
    prompts.path = Path("kept.twkp");
    Files().OnSaveParameters();
    prompts.path = Path("first.ccor");
    Files().OnSaveCoefficients();

    GetEngine().Reset();
    Begin();
    Files().OnSaveCoefficients();
    EXPECT_EQ(log, (Rows{{kNoRawColors, LogError}}));
    prompts.path = Path("kept.twkp");
    Files().OnLoadParameters();
    prompts.path = Path("second.ccor");
    Files().OnSaveCoefficients();
    EXPECT_EQ(Read("first.ccor"), Read("second.ccor"));
}

TEST_F(WorkflowSteps, ResetAsksAndGoesToItsOwnDefaults) {
    LoadChart();
    prompts.path = Path("kept.ccor");
    Files().OnSaveCoefficients();
    Parameters().OnResetParameters();
    EXPECT_EQ(prompts.questions.back(),
              "Glyphix Parameter Reset: Do you really want to reset all the parameters to their default values?");
    EXPECT_EQ(GetEngine().GetIlluminant(), 0);
    prompts.yes = true;
    Parameters().OnResetParameters();
    EXPECT_EQ(GetEngine().GetIlluminant(), 3);
    EXPECT_EQ(GetEngine().GetXformSize(), 10);
    EXPECT_EQ(State().coefficientFile, prompts.path);
}

TEST_F(WorkflowSteps, IlluminantsRuleTheUsersValues) {
    Parameters().OnIlluminant(ID_BTN_ILLUMINANT_USER);
    EXPECT_EQ(GetEngine().GetIlluminant(), -1);
    EXPECT_TRUE(values.enabled);
    EXPECT_EQ(wanted, std::vector<int>{ID_CBTN_SPECTRUM_VALUES});
    values.SetMatrixSize(3, 2);
    Parameters().OnIlluminantType();
    EXPECT_EQ(controls.opened, std::vector<int>{ID_BTN_ILLUMINANT_TYPE});
    EXPECT_FALSE(values.enabled);
    EXPECT_EQ(values.size.Width, 6);
    EXPECT_EQ(GetEngine().GetIlluminant(), -1) << "the button itself chooses nothing";
    Parameters().OnIlluminant(ID_BTN_ILLUMINANT_F2);
    EXPECT_EQ(GetEngine().GetIlluminant(), 6);
}

TEST_F(WorkflowSteps, DropGoesByWhatThePathHolds) {
    const std::string unknown = "File signature not recognized.";
    const QString chart = WriteChart("chart.bmp");
    QFile::copy(chart, Path("chart.bmp.old"));
    Write("text.bmp.txt", "no image");
    Write("broken.twkp", "no parameters");
    Write("CHART.BMP", "case counts");
    struct Case {
        const char* name;
        bool image;
        Rows log;
    };
    for (const Case& c :
         {Case{"chart.bmp", true, {}}, Case{"chart.bmp.old", true, {}}, Case{"text.bmp.txt", false, {}},
          Case{"values.csv", false, {{unknown, LogWarning}}}, Case{"CHART.BMP", false, {{unknown, LogWarning}}},
          Case{"no extension", false, {{unknown, LogWarning}}}}) {
        Begin();
        Files().OpenDroppedFile(Path(c.name));
        EXPECT_EQ(workflow->GetStudioState().rawHasImage, c.image) << c.name;
        EXPECT_EQ(log, c.log) << c.name;
    }
    Files().OpenDroppedFile(Path("broken.twkp"));
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log.back(), (LogRow{LastError(), LogError}));
    Parameters().OnIlluminant(ID_BTN_ILLUMINANT_USER);
    Files().OpenDroppedFile("values.csv");
    EXPECT_EQ(values.loaded, "values.csv");
}

TEST_F(WorkflowSteps, TheFileOfTheStartOpensAsADropDoesAndCoefficientsAsTheirCommandDoes) {
    LoadChart();
    prompts.path = Path("kept.ccor");
    Files().OnSaveCoefficients();
    Begin();
    Files().OpenStartFile(Path("kept.ccor"));
    EXPECT_EQ(log, (Rows{{Path("kept.ccor").toStdString() + " was loaded successfully", LogInformation}}));
    EXPECT_EQ(State().coefficientFile, Path("kept.ccor"));
    Files().OpenStartFile(Path("no extension"));
    EXPECT_EQ(log.back(), (LogRow{"File signature not recognized.", LogWarning}));
    Files().OpenStartFile(Path("missing.bmp"));
    EXPECT_EQ(log.back(), (LogRow{Path("missing.bmp").toStdString() + " is no picture that can be opened", LogError}));
}

// Nobody asks when the window closes, so it shows what would be lost.
TEST_F(WorkflowSteps, TheTitleNamesTheParameterFileAndWhatIsNotInIt) {
    const auto title = [this] { return Files().GetTitle().toStdString(); };
    EXPECT_EQ(title(), "Zelvan Tonewright");
    EditGamma("50");
    EXPECT_EQ(title(), "Zelvan Tonewright") << "no file is in play";
    LoadChart();
    prompts.path = Path("camera 1.twkp");
    Files().OnSaveParameters();
    EXPECT_EQ(title(), "camera 1.twkp - Zelvan Tonewright");
    EditGamma("60");
    EXPECT_EQ(title(), "camera 1.twkp* - Zelvan Tonewright");
    EditGamma("50");
    EXPECT_EQ(title(), "camera 1.twkp - Zelvan Tonewright") << "and back";
    EditGamma("60");
    prompts.path.clear();
    Files().OnSaveParameters();  // cancelled
    prompts.path = Path("no folder/b.twkp");
    Files().OnSaveParameters();  // fails, without a word
    EXPECT_EQ(title(), "camera 1.twkp* - Zelvan Tonewright");
    prompts.path = Path("b.twkp");
    Files().OnSaveParameters();
    EXPECT_EQ(title(), "b.twkp - Zelvan Tonewright");
    Calibration().OnCalibratePreview();
    EXPECT_EQ(title(), "b.twkp - Zelvan Tonewright") << "a fit changes no parameter";
    LoadChart(30);
    EXPECT_EQ(title(), "b.twkp* - Zelvan Tonewright") << "a save would take its colors";

    Files().OpenDroppedFile(Path("camera 1.twkp"));
    EXPECT_EQ(title(), "camera 1.twkp - Zelvan Tonewright");
    prompts.yes = true;
    Parameters().OnResetParameters();
    EXPECT_EQ(title(), "camera 1.twkp* - Zelvan Tonewright");
    Write("broken.twkp", "no parameters");
    Files().OpenDroppedFile(Path("broken.twkp"));
    EXPECT_EQ(title(), "camera 1.twkp* - Zelvan Tonewright");
}

// Such a file has replaced the parameters before the record that breaks off.
TEST_F(WorkflowSteps, GammaIsShownAsItIsInForceAfterAFileThatBreaksOff) {
    LoadChart();
    EditGamma("60");
    prompts.path = Path("a.twkp");
    Files().OnSaveParameters();
    std::string file = Read("a.twkp");
    file.replace(88, 10, "no record.");
    Write("half.twkp", file);
    EditGamma("45");
    EXPECT_FALSE(Files().LoadParameterFile(Path("half.twkp")));
    EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.6f);
    EXPECT_EQ(controls.EditText(ID_EDIT_GAMMA), "60");
    EXPECT_EQ(controls.SliderValue(ID_SLD_GAMMA), 60);
}

// The colors that a file brought are the same whether they stand in the list or not.
TEST_F(WorkflowSteps, ColorsOfAFileInTheListsAreNoChange) {
    LoadChart();
    prompts.path = Path("a.twkp");
    Files().OnSaveParameters();
    Begin();
    ASSERT_TRUE(Files().LoadParameterFile(Path("a.twkp")));
    Calibration().OnColorsManual();
    EXPECT_EQ(Files().GetTitle().toStdString(), "a.twkp - Zelvan Tonewright");
    LoadChart(30);  // empties the rows; the colors stay
    EXPECT_EQ(Files().GetTitle().toStdString(), "a.twkp - Zelvan Tonewright");
    lists.lists.raw.ClearEntries();
    EXPECT_EQ(Files().GetTitle().toStdString(), "a.twkp* - Zelvan Tonewright");
}

}  // namespace
