#include <QTest>

#include "app/toolkit/RibbonField.h"
#include "tests/app/studio.h"
#include "tests/app/workflow_bench.h"

using namespace tonewright;

namespace {

class UndoStepsTest : public WorkflowBench {
protected:
    UndoStepsTest() { Undo().Note(); }
    UndoSteps& Undo() { return workflow->Get<UndoSteps>(); }
    /// Runs a step as the window does.
    template <class Step>
    void Do(int id, Step step) {
        Undo().Begin(id);
        step();
        Undo().Note();
    }
    void SetGamma(const QString& text) {
        Do(ID_EDIT_GAMMA, [&] { EditGamma(text); });
    }
    void Slide(int hundredths) {
        Do(ID_SLD_GAMMA, [&] {
            controls.SetSliderValue(ID_SLD_GAMMA, hundredths);
            Parameters().OnGammaSlider();
        });
    }
    void Back() {
        Do(ID_BTN_UNDO, [&] { Undo().OnUndo(); });
    }
    void Again() {
        Do(ID_BTN_REDO, [&] { Undo().OnRedo(); });
    }
    std::string Gamma() { return controls.EditText(ID_EDIT_GAMMA).toStdString(); }
    int Colors() { return lists.GetRawColors().GetSize(); }
};

TEST_F(UndoStepsTest, EditsComeBackInTheirOrderAndAreRepeated) {
    EXPECT_FALSE(Undo().CanUndo() || Undo().CanRedo());
    LoadChart();
    Do(ID_BTN_COLOR_MANUAL, [&] { Calibration().OnColorsManual(); });
    EXPECT_FALSE(Undo().CanUndo()) << "a choice is no edit";
    SetGamma("60");
    Do(ID_BTN_SATURATION_MANUAL, [&] { Parameters().OnSaturationMode(ID_BTN_SATURATION_MANUAL); });
    Do(ID_EDIT_SATURATION_G, [&] { EditSaturation(ID_EDIT_SATURATION_G, "100"); });
    Do(ID_COLOR_ADD_BY_HAND, [&] { Calibration().OnAddColor(); });
    Do(ID_COLOR_LIST_CLEAR, [&] { Calibration().OnClearColors(); });
    values.white = {90, 100, 80, 0};
    Undo().Note();
    EXPECT_EQ(Undo().GetUndoName(), "user's values");

    Back();
    EXPECT_EQ(values.white[1], 0.0f);
    EXPECT_EQ(Undo().GetUndoName(), "colors");
    Back();
    ASSERT_EQ(lists.lists.raw.Entries().size(), 1u);
    EXPECT_EQ(lists.lists.raw.Entries()[0].x, 200);
    Back();
    EXPECT_EQ(Colors(), 0);
    Back();
    EXPECT_EQ(controls.SliderValue(ID_SLD_SATURATION_G), 255);
    EXPECT_EQ(controls.EditText(ID_EDIT_SATURATION_G), "255");
    EXPECT_EQ(GetEngine().GetSaturationMode(), 1);
    EXPECT_EQ(GetEngine().GetSaturationRgb().AsRgb() & 0xFFFFFF, 0u) << "as before any control was moved";
    Back();
    EXPECT_EQ(GetEngine().GetSaturationMode(), 0);
    Back();
    EXPECT_EQ(Gamma(), "45");
    EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.45f);
    EXPECT_FALSE(Undo().CanUndo());
    Back();  // nothing left

    for (int i = 0; i < 6; ++i) Again();
    EXPECT_FALSE(Undo().CanRedo());
    EXPECT_EQ(values.white[1], 100.0f);
    EXPECT_EQ(Colors(), 0);
    EXPECT_EQ(GetEngine().GetSaturationRgb().AsRgb() & 0xFFFFFF, 0xFF64FFu);
    EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.6f);

    Back();
    SetGamma("70");
    EXPECT_FALSE(Undo().CanRedo()) << "another edit came";
}

TEST_F(UndoStepsTest, OneDragIsOneStepAndOldStepsGo) {
    for (const int value : {50, 55, 60}) Slide(value);
    Undo().Settle();
    for (const int value : {65, 70}) Slide(value);
    Do(ID_SLD_SATURATION_R, [&] { Parameters().OnSaturationSlider(ID_SLD_SATURATION_R); });
    for (const int value : {75, 80}) Slide(value);  // another slider was moved between
    for (const char* gamma : {"70", "60", "45"}) {
        Back();
        if (Gamma() == "80") Back();
        EXPECT_EQ(Gamma(), gamma);
    }
    for (int i = 0; i < 30; ++i) SetGamma(QString::number(10 + i));
    int steps = 0;
    for (; Undo().CanUndo(); ++steps) Back();
    EXPECT_GE(steps, 10);
    EXPECT_LT(steps, 30);
}

// The colors of a picture that is measured are no list; a list made by hand survives a picture that was a mistake.
TEST_F(UndoStepsTest, PicturesFilesAndResets) {
    SetGamma("60");
    LoadChart();
    Undo().Note();
    EXPECT_EQ(Undo().GetUndoName(), "gamma");
    Do(ID_BTN_COLOR_MANUAL, [&] { Calibration().OnColorsManual(); });
    for (int i = 0; i < 3; ++i) Do(ID_COLOR_ADD_BY_HAND, [&] { Calibration().OnAddColor(); });
    const RawColorLists picked = lists.lists;
    Do(ID_BTN_ACQ_LOAD_RAW_IMAGE, [&] { LoadChart(30); });
    EXPECT_TRUE(lists.lists.raw.Rows().empty());
    Back();
    EXPECT_TRUE(lists.lists == picked);
    EXPECT_EQ(raw.image.GetWidth(), 300) << "the picture stays";

    Calibration().OnColorsAutomatic();
    prompts.path = Path("a.twkp");
    Files().OnSaveParameters();
    ASSERT_TRUE(Undo().CanUndo());
    Do(ID_BTN_PARAM_LOAD, [&] { Files().OnLoadParameters(); });
    EXPECT_FALSE(Undo().CanUndo() || Undo().CanRedo());
    SetGamma("30");
    prompts.yes = true;
    Do(ID_BTN_PARAM_RESET, [&] { Parameters().OnResetParameters(); });
    EXPECT_FALSE(Undo().CanUndo());
}

TEST_F(UndoStepsTest, ThePreviewDoesAsAfterTheEdit) {
    QualitySteps& quality = workflow->Get<QualitySteps>();
    LoadChart();
    Calibration().OnCalibratePreview();
    SetGamma("60");
    EXPECT_EQ(previews, 2);
    Back();
    EXPECT_EQ(previews, 3) << "it follows";

    Calibration().OnColorsManual();
    lists.FillRawColors(*GetEngine().GetRawColors());
    Undo().Note();
    Calibration().OnCalibratePreview();
    quality.CatchUp();
    Do(ID_COLOR_REMOVE_LAST, [&] { Calibration().OnRemoveLastColor(); });
    quality.CheckInputs();
    EXPECT_EQ(quality.WhyOutOfDate(), "the colors were changed");
    Back();
    quality.CheckInputs();
    EXPECT_EQ(quality.WhyOutOfDate(), "") << "what is shown is true again";
    Back();
    quality.CheckInputs();
    EXPECT_EQ(quality.WhyOutOfDate(), "the colors were changed");
    EXPECT_EQ(previews, 4) << "and nothing runs by itself";
}

using FrameUndo = Studio;

TEST_F(FrameUndo, KeysSlidersAndCellsOfTheRealWindow) {
    frame->show();
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    const auto gamma = [&] { return frame->Ribbon().EditText(ID_EDIT_GAMMA).toStdString(); };
    auto* const edit = frame->findChild<RibbonEdit*>();
    edit->setFocus();
    edit->selectAll();
    QTest::keyClicks(edit, "60");
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(gamma(), "45") << "the edit's own";
    EXPECT_FALSE(IsEnabled(ID_BTN_UNDO));
    edit->selectAll();
    QTest::keyClicks(edit, "60");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.6f);
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.45f) << "the edit has nothing to take back";
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(gamma(), "60");

    auto* const slider = frame->findChild<RibbonSlider*>();
    for (const int from : {60, 75}) {
        slider->setSliderDown(true);
        for (int step = 1; step <= 3; ++step) slider->setSliderPosition(from + 5 * step);
        slider->setSliderDown(false);
    }
    EXPECT_EQ(gamma(), "90");
    Run(ID_BTN_UNDO);
    EXPECT_EQ(gamma(), "75");
    Run(ID_BTN_UNDO);
    EXPECT_EQ(gamma(), "60");
    EXPECT_TRUE(frame->GetAction(ID_BTN_UNDO)->toolTip().contains("gamma"));

    Run(ID_BTN_ILLUMINANT_USER);
    auto& list = frame->SpectrumPane().SpectrumList();
    list.EditCell(2, 1);
    list.GetEditor()->setText("0.1234567");
    QTest::keyClick(list.GetEditor(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(gamma(), "60") << "the cell's editor keeps its keys";
    list.GetEditor()->setText("0.1234567");
    QTest::keyClick(list.GetEditor(), Qt::Key_Return);
    frame->UpdateCommands();
    Run(ID_BTN_UNDO);
    EXPECT_EQ(list.CellText(2, 1), "0.00000");
    Run(ID_BTN_REDO);
    EXPECT_EQ(list.CellText(2, 1), "0.1234567") << "as it was typed";
}

// The dialog of the chart's size changes rows and grid at once, and so does its undo.
TEST_F(FrameUndo, TheChartsSizeComesBackWithItsRows) {
    LoadChart();
    Run(ID_BTN_ILLUMINANT_USER);
    frame->SpectrumPane().SetMatrixSize(3, 2);
    frame->SpectrumPane().EditMatrixSize();
    frame->UpdateCommands();
    EXPECT_EQ(frame->SpectrumPane().SpectrumList().RowCount(), 6);
    Run(ID_BTN_UNDO);
    EXPECT_EQ(frame->SpectrumPane().SpectrumList().RowCount(), 24);
    EXPECT_EQ(frame->SpectrumPane().GetChartSize()->Width, 6);
    EXPECT_EQ(frame->RawViewer().Detector()->GetOverlay().size(), 24u);
}

}  // namespace
