#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <functional>
#include <memory>
#include <random>
#include <thread>

#include "acquisition/zvn/CAbortDlg.h"
#include "app/AcquisitionDialogs.h"
#include "app/CAboutDlg.h"
#include "app/CHelpWnd.h"
#include "app/FrameMessage.h"
#include "app/HelpFile.h"
#include "app/toolkit/QtPrompts.h"
#include "app/toolkit/RibbonBar.h"
#include "app/toolkit/RibbonButton.h"
#include "app/toolkit/RibbonPage.h"
#include "app/toolkit/RibbonPanel.h"
#include "app/view/CAutoROIImageViewer.h"
#include "tests/app/studio.h"
#include "tests/support/own_clock.h"

namespace {

/// Acts on the next modal dialog with this title, as a person would; gives up after two seconds.
class WhenDialogOpens {
public:
    WhenDialogOpens(const QString& title, std::function<void(QWidget& dialog)> act) {
        QObject::connect(&timer_, &QTimer::timeout, [this, title, act = std::move(act)] {
            QWidget* const dialog = QApplication::activeModalWidget();
            const bool isIt = dialog && dialog->windowTitle() == title;
            if (!isIt && ++rounds_ < 400) return;
            timer_.stop();
            if (!dialog) return;
            seen = isIt;
            isIt ? act(*dialog) : static_cast<void>(dialog->close());
        });
        timer_.start(5);
    }
    bool seen = false;

private:
    QTimer timer_;
    int rounds_ = 0;
};

/// A clock of which each look takes ten milliseconds, and nothing else any time.
struct SlowClock : OwnClock {
    Time Now() override { return Time() + (passed += step); }
    Duration step{10}, passed{0};
};

class AcquisitionDialog : public Studio {
protected:
    AcquisitionDialog() { InstallAcquisitionDialogs(); }
    ~AcquisitionDialog() override { CAbortDlg::SetWaitFor(nullptr); }
};

const std::string kTwoServers =
    "[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\n"
    "[Other]\nkind = other\nwidth = 16\nheight = 4\nformat = RGB 32\n";

TEST_F(AcquisitionDialog, OffersEveryResourceAndTakesTheChoice) {
    Simulate(kTwoServers);
    QStringList offered;
    WhenDialogOpens user("Acquisition Configuration", [&](QWidget& dialog) {
        auto& devices = *dialog.findChild<QComboBox*>();
        for (int i = 0; i < devices.count(); ++i) offered += devices.itemText(i);
        devices.setCurrentIndex(1);
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
    });
    Run(ID_BTN_REFRESH_CAMERAS);
    EXPECT_TRUE(user.seen);
    EXPECT_EQ(offered, (QStringList{"Frame grabber 1: Grabber", "Camera 1: Other"}));
    EXPECT_EQ(frame->GetState().deviceKind, DeviceKindOther);
    EXPECT_TRUE(Log().empty()) << "other cameras want no camera file";
}

TEST_F(AcquisitionDialog, OpensOnTheDeviceAndTheFileInForce) {
    Simulate(kTwoServers);
    Write("some.ccf", "");
    WhenDialogOpens first("Acquisition Configuration", [&](QWidget& dialog) {
        EXPECT_EQ(dialog.findChild<QComboBox*>()->currentIndex(), 0);
        dialog.findChild<QComboBox*>()->setCurrentIndex(1);
        dialog.findChild<QLineEdit*>()->setText(Path("some.ccf"));
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
    });
    Run(ID_BTN_REFRESH_CAMERAS);
    ASSERT_TRUE(first.seen);
    WhenDialogOpens second("Acquisition Configuration", [&](QWidget& dialog) {
        EXPECT_EQ(dialog.findChild<QComboBox*>()->currentIndex(), 1);
        EXPECT_EQ(dialog.findChild<QLineEdit*>()->text(), Path("some.ccf"));
        dialog.close();
    });
    Run(ID_BTN_REFRESH_CAMERAS);
    EXPECT_TRUE(second.seen);
}

// What comes meanwhile would free the transfer that is waited on.
TEST_F(AcquisitionDialog, ACommandThatComesDuringASnapWaitsForItsEnd) {
    Connect("[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\nfaults = no frame\n");
    int configured = 0;
    bool waited = false;
    CAcqConfigDlg::SetAsk([&](void*, const CAcqConfigDlg::Choice*) {
        ++configured;
        return std::nullopt;
    });
    CAbortDlg::SetWaitFor([&](void*, ZvnTransfer& transfer, int) {
        QTimer::singleShot(0, frame.get(), [&] { Run(ID_BTN_REFRESH_CAMERAS); });
        QTimer::singleShot(0, frame.get(), [&] { frame->OpenDroppedFile("no extension"); });
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
        waited = configured == 0;
        return transfer.Wait(0);
    });
    Run(ID_BTN_ACQ_SNAP);
    EXPECT_TRUE(waited);
    EXPECT_EQ(configured, 1);
    EXPECT_EQ(Log().back(), (LogRow{"File signature not recognized.", LogWarning}));
}

TEST_F(AcquisitionDialog, CancelChangesNothing) {
    Simulate(kTwoServers);
    WhenDialogOpens user("Acquisition Configuration", [](QWidget& dialog) { dialog.close(); });
    Run(ID_BTN_REFRESH_CAMERAS);
    EXPECT_TRUE(user.seen);
    EXPECT_EQ(frame->GetState().deviceKind, DeviceKindNone);
    EXPECT_TRUE(Log().empty());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(AcquisitionDialog, AFrameThatDoesNotComeCanBeAborted) {
    Connect("[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\nfaults = no frame\n");
    SlowClock clock;
    {
        WhenDialogOpens user("Acquisition", [&](QWidget& dialog) {
            clock.step = ZvnClock::Duration(0);  // only the button ends it
            dialog.findChild<QPushButton*>()->click();
        });
        Run(ID_BTN_ACQ_SNAP);
        EXPECT_TRUE(user.seen);
        EXPECT_LT(clock.passed, ZvnClock::Duration(1000));
    }
    clock.step = ZvnClock::Duration(10);
    clock.passed = ZvnClock::Duration(0);
    Run(ID_BTN_ACQ_SNAP);  // nobody aborts: a second is all
    EXPECT_GE(clock.passed, ZvnClock::Duration(1000));
    EXPECT_LT(clock.passed, ZvnClock::Duration(1050));
    EXPECT_EQ(Log().size(), 1u) << "a time-out is no failure";
    EXPECT_FALSE(frame->GetState().rawHasImage);
}

TEST_F(AcquisitionDialog, AQuickFrameShowsNone) {
    Connect("[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\n");
    WhenDialogOpens user("Acquisition", [](QWidget& dialog) { dialog.close(); });
    Run(ID_BTN_ACQ_SNAP);
    EXPECT_TRUE(QTest::qWaitFor([&] { return frame->GetState().rawHasImage; }, 3000));
    EXPECT_FALSE(user.seen);
}

using FrameMessage = Studio;

TEST_F(FrameMessage, TheSenderWaitsUntilTheWindowHasShownTheFrame) {
    std::atomic<bool> sent = false;
    std::thread sender([&] {
        AcquisitionCallback(nullptr, 0);
        sent = true;
    });
    QThread::msleep(50);
    EXPECT_FALSE(sent);
    EXPECT_TRUE(QTest::qWaitFor([&] { return sent.load(); }, 3000));
    sender.join();
}

TEST_F(FrameMessage, ClosingTheRoadSetsTheSenderFreeAndDropsWhatComesLater) {
    std::thread sender([] { AcquisitionCallback(nullptr, 0); });
    QThread::msleep(50);
    frame.reset();
    sender.join();
    std::thread late([] { AcquisitionCallback(nullptr, 0); });
    late.join();
}

// The window is sometimes quicker than its sender, which must not be left waiting then; and it may close at any moment.
TEST_F(FrameMessage, AThousandFramesPassInEachRunAndTheWindowClosesAmongThem) {
    std::mt19937 random(5);
    QTimer heartbeat;  // the loop below waits for events, and has to look up where none comes
    heartbeat.start(50);
    for (int run = 0; run < 20; ++run) {
        const auto sent = std::make_shared<std::atomic<int>>(0);
        // Not joined where it hangs: the test has to end.
        std::thread([sent] {
            for (int i = 0; i < 1000; ++i, ++*sent) frame_message::Send(0);
        }).detach();
        const int closeAt = run == 0 ? 1000 : static_cast<int>(random() % 1000);
        QElapsedTimer clock;
        clock.start();
        while (*sent < closeAt && clock.elapsed() < 20000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        ASSERT_GE(*sent, closeAt) << run;
        frame.reset();
        for (int wait = 0; wait < 1000 && *sent < 1000; ++wait) QThread::msleep(10);
        ASSERT_EQ(*sent, 1000) << run;
        Start();
    }
}

TEST(QtPrompts, QuestionAnswersByItsButton) {
    QtPrompts prompts;
    for (const auto button : {QMessageBox::Yes, QMessageBox::No}) {
        WhenDialogOpens user("Caption", [button](QWidget& dialog) {
            EXPECT_EQ(static_cast<QMessageBox&>(dialog).text(), "Question?");
            static_cast<QMessageBox&>(dialog).button(button)->click();
        });
        EXPECT_EQ(prompts.AskYesNo("Caption", "Question?"), button == QMessageBox::Yes);
        EXPECT_TRUE(user.seen);
    }
}

TEST(QtPrompts, MatrixSizeStaysOnCancel) {
    QtPrompts prompts;
    int width = 6, height = 4;
    WhenDialogOpens user("Matrix Size", [](QWidget& dialog) { dialog.close(); });
    EXPECT_FALSE(prompts.EditMatrixSize(width, height));
    EXPECT_TRUE(user.seen);
    EXPECT_EQ(width, 6);
}

TEST(AboutBox, NamesTheToolAndTellsTheVersionOfTheAcquisitionLayer) {
    CAboutDlg dialog(nullptr);
    EXPECT_EQ(dialog.windowTitle(), "About Tonewright Tool");
    const QRegularExpression version("^\\d+\\.\\d+\\.\\d+$");
    EXPECT_TRUE(version.match(dialog.findChild<QLabel*>("1002")->text()).hasMatch());
    EXPECT_TRUE(dialog.findChild<QLabel*>("1003")->text().contains("Brennick Korva"));
    for (const QWidget* child : dialog.findChildren<QWidget*>()) {
        EXPECT_TRUE(dialog.rect().contains(child->geometry())) << "nothing is cut off";
    }
}

TEST(Help, PathFollowsTheRootAndFallsBackBesideTheProgram) {
    SetHelpRoot("/opt/zelvan");
    EXPECT_EQ(HelpFilePath(), "/opt/zelvan/Help/ZelvanColorTool.chm");
    EXPECT_FALSE(OpenHelpFile()) << "there is none";
    SetHelpRoot("");
    EXPECT_EQ(HelpFilePath(), QCoreApplication::applicationFilePath() + ".chm");
}

using FrameHelp = Studio;

TEST_F(FrameHelp, OnePageIsEnoughAndComesAgainAfterItWasClosed) {
    for (int i = 0; i < 2; ++i) {
        Run(ID_HELP);
        Run(ID_HELP);
        const auto pages = frame->findChildren<CHelpWnd*>();
        ASSERT_EQ(pages.size(), 1);
        EXPECT_TRUE(pages[0]->isVisible());
        pages[0]->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

class RibbonWidth : public Studio, public testing::WithParamInterface<int> {};

// At the width of a small screen every control is whole, in its panel or in the one that drops down.
TEST_P(RibbonWidth, NothingIsCutOff) {
    frame->resize(GetParam(), 700);
    frame->show();
    QCoreApplication::processEvents();
    ASSERT_EQ(frame->width(), GetParam());
    int lastRight = 0;
    for (RibbonPanel* panel : frame->Ribbon().CurrentPage().Panels()) {
        EXPECT_GE(panel->x(), lastRight);
        lastRight = panel->geometry().right();
        panel->OpenDropDown();
        for (const RibbonButton* button : panel->Body().findChildren<RibbonButton*>()) {
            EXPECT_TRUE(panel->Body().rect().contains(button->geometry())) << button->text().toStdString();
            EXPECT_GE(button->width(), button->sizeHint().width()) << button->text().toStdString();
        }
        panel->CloseDropDown();
    }
    EXPECT_LT(lastRight, frame->width());
}

INSTANTIATE_TEST_SUITE_P(Screens, RibbonWidth, testing::Values(800, 1024, 1240, 1366, 1600, 1920));

}  // namespace
