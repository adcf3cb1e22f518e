// Where window and workflow meet: what commands show on the screen, and frames on their way to it.

#include <QDir>
#include <QTest>

#include "acquisition/zvn/CAbortDlg.h"
#include "app/StringTable.h"
#include "app/panes/CRawColorListCtrl.h"
#include "app/toolkit/RibbonField.h"
#include "app/workflow/StatusTexts.h"
#include "tests/app/studio.h"
#include "tests/support/own_clock.h"
#include "tests/support/places.h"

namespace {

class FrameWorkflow : public Studio {
protected:
    std::string Status(int id) const { return frame->StatusPane(id)->text().toStdString(); }
    /// Keeps the event loop alive until a frame has come to the raw viewer.
    bool WaitForPicture() {
        return QTest::qWaitFor([&] { return frame->RawViewer().Image().IsAllocated(); }, 3000);
    }
};

TEST_F(FrameWorkflow, APreviewShowsItsPaneAndWhatTheStepsTellReachesStatusBarAndLog) {
    LoadChart();
    EXPECT_EQ(Status(317), "400 x 280 x 32-bit, FormatRgb, 4 cycling buffer(s)");
    EXPECT_EQ(frame->RawViewer().ImageOverlay().Rectangles().size(), 24u);
    EXPECT_FALSE(IsEnabled(ID_BTN_ACQ_SAVE_IMAGE_AS));
    Run(ID_BTN_CALIBRATE_PREVIEW);
    EXPECT_FALSE(frame->CalibratedPane().isHidden());
    EXPECT_EQ(frame->CalibratedViewer().Image().GetWidth(), 400);
    EXPECT_TRUE(IsEnabled(ID_BTN_ACQ_SAVE_IMAGE_AS));
    EXPECT_TRUE(Log().empty());
    Run(ID_BTN_METHOD_RELATIVE);
    EXPECT_EQ(Log().size(), 1u);
    EXPECT_FALSE(frame->ReferencePane().isHidden());
    Run(ID_BTN_METHOD_ABSOLUTE);
    Run(ID_BTN_ILLUMINANT_USER);
    EXPECT_TRUE(frame->SpectrumPane().IsEnabledForEditing());
    EXPECT_FALSE(frame->SpectrumPane().isHidden());
}

TEST_F(FrameWorkflow, WithoutAPictureThereAreNoColors) {
    EXPECT_FALSE(frame->RawViewer().GetRawColors().IsAllocated());
    EXPECT_FALSE(frame->RawViewer().GetOrientedRawColors().IsAllocated());
    frame->SpectrumPane().SetMatrixSize(5, 5);
    EXPECT_FALSE(frame->RawViewer().GetRawColors().IsAllocated());
}

TEST_F(FrameWorkflow, ATypedNumberCountsForTheCommandThatIsPressedNext) {
    auto* edit = frame->Ribbon().findChild<RibbonEdit*>();  // the first one is gamma's
    edit->setText("60");
    Run(ID_BTN_SATURATION_NONE);
    EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.6f);
}

// Closing asks nothing, also where the number would run a preview that asks.
TEST_F(FrameWorkflow, ATypedNumberDoesNotCountForLeaving) {
    LoadChart();
    Run(ID_BTN_CALIBRATE_PREVIEW);
    prompts.path = Path("kept.ccor");
    Run(ID_BTN_SAVE_CAMERA_FILE);
    auto* edit = frame->Ribbon().findChild<RibbonEdit*>();  // the first one is gamma's
    for (const bool byCommand : {true, false}) {
        frame->show();
        edit->setFocus();
        edit->setText("60");
        if (byCommand) {
            Run(ID_APP_EXIT);
        } else {
            frame->close();
        }
        QCoreApplication::processEvents();
        EXPECT_FALSE(frame->isVisible());
        EXPECT_EQ(edit->text(), "45");
        EXPECT_FLOAT_EQ(GetEngine().GetGamma(), 0.45f);
    }
    EXPECT_TRUE(prompts.questions.empty());
}

TEST_F(FrameWorkflow, ColorsPickedByHandFollowTheSelectedViewer) {
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

// The guide counts the selected viewer's list and goes with the mode.
TEST_F(FrameWorkflow, TheStatusBarNamesThePatchThatIsNext) {
    LoadChart();
    const auto next = [this] {
        frame->UpdateCommands();
        const QLabel& pane = *frame->StatusPane(string_id::kNextPatch);
        return pane.isHidden() ? "" : pane.text().toStdString();
    };
    EXPECT_EQ(next(), "");
    Run(ID_BTN_COLOR_MANUAL);
    EXPECT_EQ(next(), "next: 1 Dark Skin (0 of 24)");
    for (int i = 0; i < 3; ++i) Run(ID_COLOR_ADD_BY_HAND);
    EXPECT_EQ(next(), "next: 4 Foliage (3 of 24)");
    Run(ID_SELECT_REF_VIEWER);
    EXPECT_EQ(next(), "next: 1 Dark Skin (0 of 24)");
    Run(ID_SELECT_CALIB_VIEWER);
    EXPECT_EQ(next(), "");
    Run(ID_SELECT_RAW_VIEWER);
    Run(ID_COLOR_REMOVE_LAST);
    EXPECT_EQ(next(), "next: 3 Blue Sky (2 of 24)");
    frame->SpectrumPane().SetMatrixSize(3, 1);
    EXPECT_EQ(next(), "next: 3 (2 of 3)");
    for (int i = 0; i < 2; ++i) Run(ID_COLOR_ADD_BY_HAND);
    EXPECT_EQ(next(), "picked: 4 of 3");
    Run(ID_BTN_COLOR_AUTO);
    EXPECT_EQ(next(), "");
}

TEST_F(FrameWorkflow, FindChartLeavesTheRectangleToPickWithAndSaysWhereItIs) {
    prompts.path = QString::fromStdString(sampleFile("Tonewright/Images/chart.bmp"));
    Run(ID_BTN_ACQ_LOAD_RAW_IMAGE);
    Run(ID_BTN_FIND_CHART);
    const int tenth = frame->RawViewer().Image().GetHeight() / 10;
    EXPECT_EQ(frame->RawViewer().GetRoi(), (ViewRect{tenth, tenth, 2 * tenth, 2 * tenth}));
    EXPECT_EQ(Status(107), status_texts::Roi(frame->RawViewer().GetRoi()).toStdString());
}

TEST_F(FrameWorkflow, ParametersThatComeEndPickingByHandAndTellOfTheRectangles) {
    LoadChart();
    const ViewRect chart = frame->RawViewer().GetRoi();
    prompts.path = Path("a.twkp");
    Run(ID_BTN_PARAM_SAVE);
    prompts.yes = true;
    for (const int id : {ID_BTN_PARAM_LOAD, ID_BTN_PARAM_RESET}) {
        const auto told = Log().size();
        Run(id);
        EXPECT_EQ(Log().size(), told) << "nothing was picked by hand";
        Run(ID_BTN_COLOR_MANUAL);
        const ViewRect small = frame->RawViewer().GetRoi();
        Run(id);
        EXPECT_EQ(frame->RawViewer().GetRoi(), small);
        ASSERT_EQ(Log().size(), told + 1);
        Run(ID_BTN_COLOR_AUTO);
        EXPECT_EQ(frame->RawViewer().GetRoi(), chart);
    }
}

// Two patches in one rectangle: what is picked says so in the list.
TEST_F(FrameWorkflow, AColorPickedOverAnEdgeIsMarkedInItsRow) {
    LoadChart();
    Run(ID_BTN_COLOR_MANUAL);
    const auto isMarked = [this](int row) {
        const QModelIndex index = frame->RawColorPane().RawList().model()->index(row, 0);
        return !index.data(Qt::ToolTipRole).toString().isEmpty();
    };
    frame->RawViewer().FitToWindow();
    const auto pickAt = [this](int x, int y) {
        CAutoROIImageViewer& viewer = frame->RawViewer();
        ViewPoint at;
        ASSERT_TRUE(viewer.ImageToClient({x, y}, &at));
        const QPoint corner = viewer.contentsRect().topLeft();
        QTest::mouseDClick(&viewer, Qt::LeftButton, {}, corner + QPoint(at.x, at.y));
    };
    pickAt(50, 50);
    pickAt(70, 50);  // the first patch ends there
    pickAt(50, 110);
    EXPECT_FALSE(isMarked(0));
    EXPECT_TRUE(isMarked(1));
    EXPECT_FALSE(isMarked(2));
}

// Nothing to compare yet, a preview, its pane closed and opened, the preview again, another picture, the end.
TEST_F(FrameWorkflow, ComparingGoesOnUntilItIsEnded) {
    frame->resize(1600, 900);
    frame->show();
    const auto zooms = [this] { return std::pair(frame->RawViewer().GetZoom(), frame->CalibratedViewer().GetZoom()); };
    EXPECT_FALSE(IsEnabled(ID_BTN_COMPARE));
    LoadChart(120);
    EXPECT_FALSE(IsEnabled(ID_BTN_COMPARE));
    Run(ID_BTN_CALIBRATE_PREVIEW);
    Run(ID_CBTN_CALIB_IMG_VIEW);
    ASSERT_TRUE(IsEnabled(ID_BTN_COMPARE));
    Run(ID_BTN_COMPARE);
    EXPECT_TRUE(frame->GetAction(ID_BTN_COMPARE)->isChecked());
    EXPECT_FALSE(frame->CalibratedPane().isHidden()) << "there is the divider";
    frame->RawViewer().SetZoom(0.7f);
    EXPECT_EQ(zooms(), std::pair(0.7f, 0.7f));
    EXPECT_EQ(Status(316), "Zoom 0070.00x");
    Run(ID_CBTN_CALIB_IMG_VIEW);
    frame->RawViewer().SetZoom(0.9f);
    Run(ID_CBTN_CALIB_IMG_VIEW);
    Run(ID_BTN_CALIBRATE_PREVIEW);
    EXPECT_EQ(zooms(), std::pair(0.9f, 0.9f)) << "not fitted anew";
    LoadChart(40);
    EXPECT_EQ(zooms(), std::pair(1.0f, 1.0f));
    EXPECT_EQ(frame->RawViewer().ImageOverlay().Rectangles().size(), 24u);
    Run(ID_SELECT_CALIB_VIEWER);
    Run(ID_IMAGE_ZOOM_IN);
    EXPECT_EQ(zooms(), std::pair(1.1f, 1.1f));
    Run(ID_BTN_COMPARE);
    EXPECT_FALSE(frame->GetAction(ID_BTN_COMPARE)->isChecked());
    Run(ID_IMAGE_ZOOM_IN);
    EXPECT_EQ(frame->RawViewer().GetZoom(), 1.1f);
}

// A picture, its preview, another picture dropped on the preview, a preview over that, a picture from the device.
TEST_F(FrameWorkflow, CaptionsTellWhatEachViewerShows) {
    const auto expect = [this](const char* raw, const char* calibrated) {
        EXPECT_EQ(frame->RawViewer().GetCaption(), raw);
        EXPECT_EQ(frame->ReferenceViewer().GetCaption(), "");
        EXPECT_EQ(frame->CalibratedViewer().GetCaption(), calibrated);
    };
    expect("", "");
    LoadChart();
    expect("Raw Image: chart.bmp, 400 x 280", "");
    Run(ID_BTN_CALIBRATE_PREVIEW);
    expect("Raw Image: chart.bmp, 400 x 280", "Calibrated Image: 400 x 280");
    Run(ID_SELECT_CALIB_VIEWER);
    const QString small = WriteChart("small.bmp", 20);
    frame->OpenDroppedFile(small);
    expect("Raw Image: chart.bmp, 400 x 280", "Calibrated Image: small.bmp, 200 x 140");
    Run(ID_BTN_CALIBRATE_PREVIEW);
    expect("Raw Image: chart.bmp, 400 x 280", "Calibrated Image: 400 x 280");
    frame->OnFrameReady(0);  // the session's buffer still holds the small one
    expect("Raw Image: 200 x 140", "Calibrated Image: 400 x 280");
    Run(ID_SELECT_RAW_VIEWER);
    frame->OpenDroppedFile(small);
    Run(ID_SELECT_CALIB_VIEWER);
    frame->OpenDroppedFile(small);
    LoadChart();
    expect("Raw Image: chart.bmp, 400 x 280", "Calibrated Image: 200 x 140");
}

TEST_F(FrameWorkflow, SnappedFrameComesToTheRawViewer) {
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

TEST_F(FrameWorkflow, WhatTheDevicesBackendTellsStandsInTheLog) {
    QDir(folder.path()).mkdir("empty");
    Connect("[Grabber]\nkind = frame grabber\npictures = empty\n");
    const Rows log = Log();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(log[0], (LogRow{Path("empty").toStdString() + ": holds no .bmp", LogError}));
}

// The processing thread waits for a window that no longer takes its message.
TEST_F(FrameWorkflow, ClosingWithAFrameOnItsWayEndsSoon) {
    for (const int waitMs : {0, 30, 120}) {
        Start();
        Connect("[Grabber]\nkind = frame grabber\nwidth = 640\nheight = 480\nformat = RGB 24\ndelay ms = 20\n");
        CAbortDlg::SetWaitFor([](void*, ZvnTransfer&, int) { return true; });  // does not wait
        Run(ID_BTN_ACQ_SNAP);
        QThread::msleep(static_cast<unsigned long>(waitMs));
        WatchedClock clock;
        frame.reset();
        EXPECT_EQ(clock.runOut, 0) << waitMs;
        CAbortDlg::SetWaitFor(nullptr);
    }
}

}  // namespace
