#include <QLabel>
#include <QPushButton>

#include "app/panes/CQualityWnd.h"
#include "tests/app/studio.h"

namespace {

class FrameQuality : public Studio {
protected:
    CQualityWnd& Pane() { return *frame->findChild<CQualityWnd*>(); }
    QLabel& Label(const char* name) { return *Pane().findChild<QLabel*>(name); }
    std::string Text(const char* name) { return Label(name).text().toStdString(); }
    void Preview() {
        Run(ID_BTN_CALIBRATE_PREVIEW);
        frame->GetWorkflow().Get<QualitySteps>().CatchUp();
    }
    void Show(int width, int height) {
        frame->resize(width, height);
        frame->show();
    }
};

// Once, and not to somebody who has seen it already.
TEST_F(FrameQuality, ThePaneShowsItselfOnceInAProfilesLife) {
    Show(1600, 900);
    LoadChart();
    EXPECT_TRUE(Pane().isHidden());
    Preview();
    EXPECT_FALSE(Pane().isHidden());
    QCoreApplication::processEvents();
    EXPECT_EQ(frame->CalibratedPane().width(), 800) << "there is room";
    EXPECT_GE(frame->RawViewer().width(), 320);
    Run(ID_BTN_QUALITY_PANE);
    Preview();
    EXPECT_TRUE(Pane().isHidden());
    Start();
    Show(1600, 900);
    LoadChart();
    Preview();
    EXPECT_TRUE(Pane().isHidden()) << "nor after another start";
}

TEST_F(FrameQuality, WhoeverOpenedThePaneIsNotBothered) {
    Show(1600, 900);
    Run(ID_BTN_QUALITY_PANE);
    Run(ID_BTN_QUALITY_PANE);
    LoadChart();
    Preview();
    EXPECT_TRUE(Pane().isHidden());
}

TEST_F(FrameQuality, AVerificationIsNamedAndLeft) {
    Show(1280, 800);
    EXPECT_FALSE(IsEnabled(ID_BTN_VERIFY) || IsEnabled(ID_BTN_SAVE_REPORT));
    LoadChart();
    EXPECT_FALSE(IsEnabled(ID_BTN_VERIFY));
    Preview();
    EXPECT_TRUE(Label("verified").isHidden());
    const std::string calibration = Text("figures");
    Run(ID_BTN_QUALITY_PANE);  // closed: the result opens it
    prompts.path = WriteChart("an other & one.bmp", 30, 4);
    Run(ID_BTN_VERIFY);
    EXPECT_FALSE(Pane().isHidden());
    EXPECT_FALSE(Label("verified").isHidden());
    EXPECT_TRUE(Label("verified").text().contains("an other &amp; one.bmp")) << Text("verified");
    EXPECT_NE(Text("figures"), calibration) << "no patches are left out of a verification";

    Run(ID_BTN_SATURATION_NONE);
    EXPECT_EQ(Text("outOfDate"), "Out of date: the saturation was changed");
    Run(ID_BTN_SATURATION_AUTO);
    EXPECT_TRUE(Label("outOfDate").isHidden());
    LoadChart(20);  // another raw picture changes nothing of what was verified
    frame->GetWorkflow().Get<QualitySteps>().CatchUp();
    EXPECT_TRUE(Label("outOfDate").isHidden());
    EXPECT_FALSE(Label("verified").isHidden());

    Pane().findChild<QPushButton*>()->click();
    EXPECT_TRUE(Label("verified").isHidden());
    EXPECT_EQ(Text("figures"), calibration);
    EXPECT_EQ(Text("outOfDate"), "Out of date: another picture came");
    prompts.path = Path("an other & one.bmp");
    Run(ID_BTN_VERIFY);
    EXPECT_FALSE(Label("verified").isHidden());
    Preview();
    EXPECT_TRUE(Label("verified").isHidden()) << "a preview brings its own figures";
}

// Coefficients of a file alone are none: what the patches should be is not known.
TEST_F(FrameQuality, VerifyWantsACalibration) {
    LoadChart();
    Run(ID_BTN_CALIBRATE_PREVIEW);
    prompts.path = Path("a.ccor");
    Run(ID_BTN_SAVE_CAMERA_FILE);
    GetEngine().Reset();
    Start();
    Run(ID_BTN_LOAD_CAMERA_FILE);
    EXPECT_FALSE(IsEnabled(ID_BTN_VERIFY));
}

}  // namespace
