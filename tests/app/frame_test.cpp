#include <QCheckBox>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocument>
#include <QTimer>
#include <QUrl>
#include <stdexcept>

#include "app/CTonewrightApp.h"
#include "app/CommandTable.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Clock.h"
#include "app/toolkit/RibbonBar.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDockableImgPane.h"
#include "app/workflow/StatusTexts.h"
#include "tests/app/studio.h"

namespace {

using Frame = Studio;

std::string statusText(const StudioFrame& frame, int id) { return frame.StatusPane(id)->text().toStdString(); }

TEST_F(Frame, StartsWithTheLogAloneAndTheRawViewerSelected) {
    const StudioState state = frame->GetState();
    EXPECT_TRUE(state.logVisible);
    EXPECT_FALSE(state.rawColorsVisible || state.spectrumVisible || state.refPaneVisible || state.calibPaneVisible);
    EXPECT_TRUE(state.rawSelected);
    EXPECT_EQ(state.deviceKind, DeviceKindNone);
    EXPECT_EQ(state.illuminant, 0);
    EXPECT_EQ(GetEngine().GetXformSize(), 4);
    EXPECT_EQ(frame->Ribbon().EditText(ID_EDIT_GAMMA), "45");
    EXPECT_EQ(frame->Ribbon().SliderValue(ID_SLD_GAMMA), 45);
    EXPECT_EQ(frame->Ribbon().EditText(ID_EDIT_SATURATION_G), "255");
    EXPECT_EQ(statusText(*frame, 317), "Buffer information is not available yet. Load an image first.");
    EXPECT_EQ(statusText(*frame, 111), "Last execution time (ms)");
    EXPECT_EQ(statusText(*frame, 112), "Pixel Data");
    EXPECT_EQ(statusText(*frame, 316), "Zoom factor");
    EXPECT_TRUE(frame->StatusPane(107)->isHidden());
    EXPECT_TRUE(Log().empty());
    for (const int id : {ID_BTN_CALIBRATE_PREVIEW, ID_BTN_ACQ_SAVE_IMAGE_AS, ID_BTN_IMAGE_FIT_SCREEN, ID_BTN_ACQ_SNAP,
                         ID_BTN_BACKUP_DEVICE_FILE, ID_BTN_CALIBRATE_DEVICE, ID_BTN_CALIBRATE_CAMERA}) {
        EXPECT_FALSE(IsEnabled(id)) << id;
    }
    EXPECT_TRUE(IsEnabled(ID_BTN_ACQ_LOAD_IMAGE));
    EXPECT_TRUE(IsEnabled(ID_BTN_PARAM_SAVE_AS));
}

TEST_F(Frame, PanesStandWhereTheyBelong) {
    struct Case {
        QDockWidget& pane;
        const char* title;
        const char* id;
        Qt::DockWidgetArea area;
    };
    for (const Case& c : {Case{frame->Logger(), "Logs", "101", Qt::BottomDockWidgetArea},
                          Case{frame->ReferencePane(), "Reference Image", "109", Qt::RightDockWidgetArea},
                          Case{frame->CalibratedPane(), "Calibrated Image", "110", Qt::RightDockWidgetArea},
                          Case{frame->RawColorPane(), "Raw Color List", "103", Qt::LeftDockWidgetArea},
                          Case{frame->SpectrumPane(), "User Values", "102", Qt::LeftDockWidgetArea}}) {
        EXPECT_EQ(c.pane.windowTitle(), c.title);
        EXPECT_EQ(c.pane.objectName(), c.id);
        EXPECT_EQ(frame->dockWidgetArea(&c.pane), c.area) << c.title;
    }
    frame->resize(1600, 900);
    frame->show();
    for (const int id :
         {ID_CBTN_RAW_COLOR_LIST, ID_CBTN_SPECTRUM_VALUES, ID_CBTN_REF_IMG_VIEW, ID_CBTN_CALIB_IMG_VIEW}) {
        Run(id);
    }
    EXPECT_EQ(frame->tabifiedDockWidgets(&frame->RawColorPane()), QList<QDockWidget*>{&frame->SpectrumPane()});
    EXPECT_EQ(frame->tabifiedDockWidgets(&frame->CalibratedPane()), QList<QDockWidget*>{&frame->ReferencePane()});
}

TEST_F(Frame, PaneCommandsToggleAndAnyMessageBringsTheLogBack) {
    for (const int id :
         {ID_CBTN_LOG, ID_CBTN_RAW_COLOR_LIST, ID_CBTN_SPECTRUM_VALUES, ID_CBTN_REF_IMG_VIEW, ID_CBTN_CALIB_IMG_VIEW}) {
        const bool before = FindCommand(id)->checked(frame->GetState());
        frame->GetAction(id)->trigger();
        EXPECT_EQ(FindCommand(id)->checked(frame->GetState()), !before) << id;
        EXPECT_EQ(frame->GetAction(id)->isChecked(), !before) << id;
        frame->GetAction(id)->trigger();
        EXPECT_EQ(frame->GetAction(id)->isChecked(), before) << id;
    }
    frame->Logger().hide();
    frame->LogMessage("word", LogWarning);
    EXPECT_FALSE(frame->Logger().isHidden());
    Run(ID_BTN_CLEAR_LOG);
    EXPECT_TRUE(Log().empty());
}

TEST_F(Frame, ACheckedChoiceStaysCheckedWhenItIsPressedAgain) {
    frame->GetAction(ID_BTN_METHOD_ABSOLUTE)->trigger();
    EXPECT_TRUE(frame->GetAction(ID_BTN_METHOD_ABSOLUTE)->isChecked());
    frame->GetAction(ID_BTN_SATURATION_MANUAL)->trigger();
    EXPECT_TRUE(frame->GetAction(ID_BTN_SATURATION_MANUAL)->isChecked());
    EXPECT_FALSE(frame->GetAction(ID_BTN_SATURATION_AUTO)->isChecked());
}

// Behind the words that each tip has anyway; a menu without choices adds none.
TEST_F(Frame, TipsEndWithTheChoiceInForce) {
    const auto tip = [this](int id) {
        frame->UpdateCommands();
        EXPECT_EQ(frame->GetAction(id)->whatsThis(), frame->GetAction(id)->toolTip());
        QTextDocument text;
        text.setHtml(frame->GetAction(id)->toolTip());
        return text.toPlainText().simplified().toStdString();
    };
    prompts.yes = true;
    EXPECT_EQ(tip(ID_BTN_ACQ_LOAD_IMAGE), "Load Image Load an image from a file.");
    struct Case {
        int choice;
        const char* illuminant;
        const char* saturation;
        const char* colors;
    };
    const std::string illuminant = "Illuminant Type Choose a predefined illuminant type for the calibration. Now: ";
    const std::string saturation = "Saturation Mode Choose a way to select saturation coefficients. Now: ";
    const std::string colors = "Color Selection Choose a way to select ROI colors. Now: ";
    for (const Case& c : {Case{0, "Tungsten or Halogen: A 2856K", "Automatic", "Automatic"},
                          Case{ID_BTN_ILLUMINANT_F11, "Fluorescent: F11 4000k (narrowband)", "Automatic", "Automatic"},
                          Case{ID_BTN_SATURATION_NONE, "Fluorescent: F11 4000k (narrowband)", "None", "Automatic"},
                          Case{ID_BTN_COLOR_MANUAL, "Fluorescent: F11 4000k (narrowband)", "None", "Manual"},
                          Case{ID_BTN_METHOD_RELATIVE, "Fluorescent: F11 4000k (narrowband)", "None", "Manual"},
                          Case{ID_BTN_PARAM_RESET, "Daylight: D65 6504K (Noon)", "Automatic", "Automatic"}}) {
        if (c.choice) Run(c.choice);
        EXPECT_EQ(tip(ID_BTN_ILLUMINANT_TYPE), illuminant + c.illuminant) << c.choice;
        EXPECT_EQ(tip(ID_BTN_SATURATION_MODE), saturation + c.saturation) << c.choice;
        EXPECT_EQ(tip(ID_BTN_COLOR_SELECT), colors + c.colors) << c.choice;
    }
}

TEST_F(Frame, OfSeveralDroppedFilesTheFirstCounts) {
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(WriteChart("first.bmp")), QUrl::fromLocalFile(Path("second.unknown"))});
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject&>(*frame).event(&drop);
    EXPECT_FALSE(frame->GetState().rawHasImage);  // the drop doesn't wait for the file
    QCoreApplication::processEvents();
    EXPECT_TRUE(frame->GetState().rawHasImage);
    EXPECT_TRUE(Log().empty());

    frame->CalibratedPane().setFloating(true);  // a window of its own, and a part of the Studio
    files.setUrls({QUrl::fromLocalFile(WriteChart("other.bmp", 20))});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&frame->CalibratedPane(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent onPane(QPointF(10, 10), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&frame->CalibratedPane(), &onPane);
    QCoreApplication::processEvents();
    EXPECT_EQ(frame->RawViewer().Image().GetWidth(), 200);
}

// A file that is moved goes away from where it was.
TEST_F(Frame, ADropNeverTakesTheFileAwayAndWantsOneOfThisMachine) {
    const QUrl file = QUrl::fromLocalFile(WriteChart("a.bmp"));
    struct Case {
        QUrl url;
        Qt::DropActions offered;
        Qt::DropAction taken;
    };
    for (const Case& c :
         {Case{file, Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction},
          Case{file, Qt::MoveAction | Qt::LinkAction, Qt::LinkAction}, Case{file, Qt::MoveAction, Qt::IgnoreAction},
          Case{QUrl("https://example.org/a.bmp"), Qt::CopyAction, Qt::IgnoreAction}}) {
        QMimeData files;
        files.setUrls({c.url});
        QDragEnterEvent enter(QPoint(10, 10), c.offered, &files, Qt::LeftButton, Qt::NoModifier);
        QDragMoveEvent move(QPoint(10, 10), c.offered, &files, Qt::LeftButton, Qt::NoModifier);
        QDropEvent drop(QPointF(10, 10), c.offered, &files, Qt::LeftButton, Qt::NoModifier);
        for (QDropEvent* event : std::initializer_list<QDropEvent*>{&enter, &move, &drop}) {
            static_cast<QObject&>(*frame).event(event);
            EXPECT_EQ(event->isAccepted() ? event->dropAction() : Qt::IgnoreAction, c.taken) << event->type();
        }
    }
}

TEST_F(Frame, DroppedValuesLoadWhileTheIlluminantIsUserDefined) {
    Run(ID_BTN_ILLUMINANT_USER);
    std::string lines;
    for (int i = 0; i < 24; ++i) lines += std::to_string(i) + ",0.5,0.25\n";
    Write("values.csv", lines);
    frame->OpenDroppedFile(Path("values.csv"));
    const CTivVector values = frame->SpectrumPane().GetSpectrumValues();
    ASSERT_EQ(values.GetSize(), 24);
    EXPECT_FLOAT_EQ(values.GetData(23).AsColorFloat()[0], 23.0f);
    EXPECT_EQ(Log().size(), 1u);  // the pane's request to verify the size
}

TEST_F(Frame, KeysReachTheirCommands) {
    frame->show();
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    QTest::keyClick(frame.get(), Qt::Key_I, Qt::ControlModifier);
    ASSERT_EQ(prompts.opened.size(), 1u);
    EXPECT_EQ(prompts.opened[0].filters, "Color Correction (*.ccor)|*.ccor||");
    QTest::keyClick(frame.get(), Qt::Key_O, Qt::ControlModifier);
    ASSERT_EQ(prompts.opened.size(), 2u);
    EXPECT_TRUE(prompts.opened[1].filters.startsWith("BMP Files (*.bmp)|*.bmp|TIFF Files (*.tif)|*.tif|"));
    QTest::keyClick(frame.get(), Qt::Key_S, Qt::ControlModifier);
    QTest::keyClick(frame.get(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(prompts.opened.size() + prompts.saved.size() + prompts.questions.size(), 2u);
    Run(ID_BTN_COLOR_MANUAL);  // without a color, so that the fit before the dialog fails
    QTest::keyClick(frame.get(), Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(prompts.saved.empty());
    EXPECT_EQ(Log().size(), 1u);
}

// Every command, in both modes and both ways of selecting colors, with nothing loaded, every prompt cancelled.
TEST_F(Frame, EveryCommandSurvivesWithNothingToWorkOn) {
    QTimer closer;  // the about box is modal
    QObject::connect(&closer, &QTimer::timeout, [] {
        if (QWidget* dialog = QApplication::activeModalWidget()) dialog->close();
    });
    closer.start(5);
    frame->show();
    for (const int mode : {ID_BTN_METHOD_ABSOLUTE, ID_BTN_METHOD_RELATIVE}) {
        for (const int selection : {ID_BTN_COLOR_AUTO, ID_BTN_COLOR_MANUAL}) {
            for (const CommandRow& row : CommandTable()) {
                if (row.id == ID_APP_EXIT || row.id == ID_CONTEXT_HELP) continue;
                Run(mode);
                Run(selection);
                Run(row.id);
                QCoreApplication::processEvents();
            }
        }
    }
    EXPECT_TRUE(prompts.messages.empty());
    Run(ID_APP_EXIT);
    EXPECT_FALSE(frame->isVisible());
}

TEST_F(Frame, WhatAHandlerThrowsIsLogged) {
    const auto log = [&](auto thrown) {
        try {
            throw thrown;
        } catch (...) {
            frame->LogException();
        }
    };
    log(static_cast<const char*>("no convergence in 30 svdcmp iterations"));
    log(std::invalid_argument("invalid stof argument"));
    EXPECT_EQ(Log(), (std::vector<LogRow>{{"no convergence in 30 svdcmp iterations", LogError},
                                          {"invalid stof argument", LogError}}));
}

class Thrower : public QObject {
public:
    bool event(QEvent*) override { throw static_cast<const char*>("plain text"); }
};

TEST_F(Frame, AnExceptionOutOfAnEventIsLoggedAndTheProgramGoesOn) {
    auto& application = static_cast<CTonewrightApp&>(*QCoreApplication::instance());
    frame.reset();
    ASSERT_TRUE(application.CreateMainFrame());
    Thrower thrower;
    QCoreApplication::postEvent(&thrower, new QEvent(QEvent::User));
    QCoreApplication::processEvents();
    const QTableWidget& list = application.GetMainFrame()->findChild<CLoggerWnd*>()->List();
    EXPECT_EQ(list.rowCount(), 1);
    EXPECT_EQ(list.item(0, CLoggerWnd::ColumnMessage)->text(), "plain text");
    application.DestroyMainFrame();
}

TEST_F(Frame, ViewersTellTheStatusBar) {
    frame->OnZoomChanged(1.0f);
    EXPECT_EQ(statusText(*frame, 316), "Zoom 0100.00x");
    frame->OnPixel(3, 1200, CTivData::Rgb(1, 171, 255));
    EXPECT_EQ(statusText(*frame, 112), "Pos 0003,1200 | Val 0001,00AB,00FF");
    frame->OnRoiChanged({10, 20, 110, 220});
    EXPECT_EQ(statusText(*frame, 107), "ROI s:(0010,0020), w:0100, h:0200");
}

TEST(StatusTexts, PixelSaysOnlyWhatItsFormatAllows) {
    const float white[4] = {1, 1, 1, 0};
    struct Case {
        CTivData value;
        const char* text;
    };
    for (const Case& c :
         {Case{CTivData::Rgb10(1023, 512, 1), "Pos 0000,0000 | Val 03FF,0200,0001"}, Case{CTivData::Rgb16(1, 2, 3), ""},
          Case{CTivData::ColorFloat(white), ""}, Case{CTivData::UByte(200), "Pos 0000,0000 | Val 00C8"},
          Case{CTivData::UShort(65535), "Pos 0000,0000 | Val FFFF"},
          Case{CTivData::Float(0.5f), "Pos 0000,0000 | Val 0.500000"}}) {
        EXPECT_EQ(status_texts::Pixel(0, 0, c.value).toStdString(), c.text);
    }
    EXPECT_EQ(status_texts::Zoom(0.1234f).toStdString(), "Zoom 0012.34x");
    EXPECT_EQ(status_texts::Buffer(922, 614, 32, "FormatRgb", 4).toStdString(),
              "922 x 614 x 32-bit, FormatRgb, 4 cycling buffer(s)");
}

class FixedClock : public Clock {
public:
    QDateTime LocalNow() const override { return {QDate(2024, 3, 9), QTime(7, 5, 2, 46)}; }
};

TEST(Logger, StampsEachMessageAndShowsUnknownTypesByWord) {
    const FixedClock clock;
    CLoggerWnd logger(clock, nullptr);
    logger.AddMessage(QString("told"), LogInformation);
    logger.AddMessage("broken\n", 5);
    const QTableWidget& list = logger.List();
    ASSERT_EQ(list.rowCount(), 2);
    EXPECT_EQ(list.item(0, CLoggerWnd::ColumnTime)->text(), "07:05:02:046  03/09/2024");
    EXPECT_EQ(list.item(0, CLoggerWnd::ColumnType)->text(), "");
    EXPECT_EQ(list.item(1, CLoggerWnd::ColumnType)->text(), "Unknown");
    EXPECT_EQ(list.item(1, CLoggerWnd::ColumnMessage)->text(), "broken\n");
    const int narrow = list.columnWidth(CLoggerWnd::ColumnMessage);
    logger.AddMessage(QString(200, 'w'), LogError);
    EXPECT_GT(list.columnWidth(CLoggerWnd::ColumnMessage), narrow);
    logger.ClearLog();
    EXPECT_EQ(list.rowCount(), 0);
    EXPECT_LT(list.columnWidth(CLoggerWnd::ColumnMessage), narrow + 200);
    logger.AddMessage("again", LogWarning);
    EXPECT_EQ(list.rowCount(), 1);
}

}  // namespace
