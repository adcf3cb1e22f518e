#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDockWidget>
#include <QLabel>
#include <QProxyStyle>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTest>
#include <cmath>

#include "app/StringTable.h"
#include "app/appearance.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/RibbonBar.h"
#include "app/toolkit/RibbonButton.h"
#include "app/toolkit/Theme.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDockableImgPane.h"
#include "tests/app/studio.h"

namespace {

using FramePanes = Studio;

constexpr int kPaneCommands[] = {ID_CBTN_LOG, ID_CBTN_RAW_COLOR_LIST, ID_CBTN_SPECTRUM_VALUES, ID_CBTN_REF_IMG_VIEW,
                                 ID_CBTN_CALIB_IMG_VIEW};

TEST_F(FramePanes, EverySizeOfTheWindowIsPainted) {
    LoadChart();
    frame->show();
    for (const bool allPanes : {false, true}) {
        if (allPanes) {
            for (const int id : kPaneCommands) {
                if (!frame->GetAction(id)->isChecked()) Run(id);
            }
        }
        for (int width = 1; width < 1300; width += width < 500 ? 49 : 190) {
            for (int height = 1; height < 900; height += width < 500 ? 73 : 190) {
                frame->resize(width, height);
                QCoreApplication::processEvents();
                EXPECT_FALSE(frame->grab().isNull());
            }
        }
    }
    for (int width = 0; width < 8; ++width) {
        frame->ReferenceViewer().resize(width, 7 - width);
        frame->ReferenceViewer().grab();
    }
}

TEST_F(FramePanes, APaneThatIsDockedAgainComesInFront) {
    frame->resize(1600, 900);
    frame->show();
    Run(ID_CBTN_CALIB_IMG_VIEW);
    Run(ID_CBTN_REF_IMG_VIEW);
    CDockableImgPane& pane = frame->CalibratedPane();
    EXPECT_TRUE(pane.visibleRegion().isEmpty()) << "behind the other one";
    pane.setFloating(true);
    pane.setFloating(false);
    QCoreApplication::processEvents();
    EXPECT_EQ(frame->tabifiedDockWidgets(&pane).size(), 1);
    EXPECT_FALSE(pane.visibleRegion().isEmpty());
}

TEST_F(FramePanes, StatusTextsShareWhatRoomThereIs) {
    frame->show();
    Run(ID_BTN_COLOR_MANUAL);
    for (const int width : {1600, 800, 640, 500}) {
        frame->resize(width, 600);
        QCoreApplication::processEvents();
        int end = 0;
        for (const int id : {317, 111, string_id::kNextPatch, 112, 107, 316}) {
            const QRect place = frame->StatusPane(id)->geometry();
            EXPECT_GE(place.left(), end) << id << " at " << width;
            end = place.left() + place.width();
        }
        EXPECT_LE(end, frame->width());
    }
    EXPECT_GT(frame->StatusPane(316)->width(), 80) << "the zoom gives way last";
}

TEST_F(FramePanes, KeyTipsLeaveTextsAndBoxesReadable) {
    frame->resize(1900, 900);
    frame->show();
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    const auto inWindow = [&](const QWidget* widget, QRect part) {
        return QRect(widget->mapTo(frame.get(), part.topLeft()), part.size());
    };
    for (const Qt::Key tab : {Qt::Key_H, Qt::Key_V}) {
        QTest::keyClick(frame.get(), Qt::Key_Alt);
        QTest::keyClick(frame.get(), tab);
        std::vector<QRect> texts;
        for (const auto* button : frame->findChildren<RibbonButton*>()) {
            if (!button->isVisible()) continue;
            const QRect text = button->IsLarge()
                                   ? button->rect().adjusted(0, RibbonButton::LargePictureBottom() + 4, 0, 0)
                                   : button->rect().adjusted(RibbonButton::RowTextLeft(), 0, 0, 0);
            texts.push_back(inWindow(button, text));
        }
        for (const auto* box : frame->findChildren<QCheckBox*>()) {
            if (!box->isVisible()) continue;
            QStyleOptionButton option;
            option.initFrom(box);
            texts.push_back(inWindow(box, box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box)));
        }
        int tips = 0;
        for (const auto* tip : frame->findChildren<QLabel*>("keyTip")) {
            if (!tip->isVisible()) continue;
            ++tips;
            for (const QRect& text : texts) {
                EXPECT_FALSE(tip->geometry().intersects(text)) << tip->text().toStdString();
            }
        }
        EXPECT_GT(tips, 3);
        QTest::keyClick(frame.get(), Qt::Key_Escape);
        QTest::keyClick(frame.get(), Qt::Key_Escape);
    }
}

TEST_F(FramePanes, TheWindowRemembersItsPlaceAndItsPanes) {
    EXPECT_FALSE(frame->GetPanes().Restore()) << "nothing to remember yet";
    frame->setGeometry(10, 40, 700, 600);
    frame->show();
    Run(ID_CBTN_LOG);
    Run(ID_CBTN_RAW_COLOR_LIST);
    frame->addDockWidget(Qt::RightDockWidgetArea, &frame->RawColorPane());
    Run(ID_CBTN_CALIB_IMG_VIEW);
    frame->CalibratedPane().setFloating(true);
    frame->CalibratedPane().setGeometry(300, 200, 320, 240);
    frame->close();
    frame->CalibratedPane().close();  // as the program's end does with every window
    Start();
    EXPECT_FALSE(frame->Logger().isHidden()) << "a start without a memory is as ever";
    ASSERT_TRUE(frame->GetPanes().Restore());
    frame->show();
    frame->GetPanes().RestoreFloating();
    EXPECT_EQ(frame->geometry(), QRect(10, 40, 700, 600));
    EXPECT_TRUE(frame->Logger().isHidden());
    EXPECT_FALSE(frame->RawColorPane().isHidden());
    EXPECT_EQ(frame->dockWidgetArea(&frame->RawColorPane()), Qt::RightDockWidgetArea);
    EXPECT_TRUE(frame->CalibratedPane().isFloating());
    EXPECT_EQ(frame->CalibratedPane().geometry(), QRect(300, 200, 320, 240));
    EXPECT_FALSE(frame->CalibratedPane().isHidden());

    Run(ID_BTN_RESET_LAYOUT);
    EXPECT_FALSE(frame->Logger().isHidden());
    EXPECT_TRUE(frame->RawColorPane().isHidden());
    EXPECT_FALSE(frame->CalibratedPane().isFloating());
    EXPECT_EQ(frame->dockWidgetArea(&frame->RawColorPane()), Qt::LeftDockWidgetArea);
}

TEST_F(FramePanes, AMemoryThatIsNoneIsLeftAlone) {
    GetProfile().WriteString("Window", "Place", "1 2 3");
    GetProfile().WriteInt("Window", "Chrome", 77);
    EXPECT_FALSE(frame->GetPanes().Restore());
    RestoreAppearance();
    EXPECT_EQ(theme::GetChrome(), theme::Chrome::System);
    GetProfile().WriteString("Window", "Place", "10 20 700 600 0");
    GetProfile().WriteString("Window", "Panes", "bm8gbGF5b3V0");
    EXPECT_TRUE(frame->GetPanes().Restore());
    EXPECT_FALSE(frame->Logger().isHidden());
}

/// A desktop whose windows are dark.
class DarkDesktop : public QProxyStyle {
public:
    DarkDesktop() : QProxyStyle("Fusion") {}
    void polish(QPalette& palette) override { palette = QPalette(QColor(0x30, 0x30, 0x30)); }
    using QProxyStyle::polish;
};

TEST_F(FramePanes, TheColorsAreTheDesktopsUntilTheUserChooses) {
    Run(ID_BTN_CHROME_SYSTEM);
    EXPECT_FALSE(theme::IsDark());
    QApplication::setStyle(new DarkDesktop);
    for (const auto& [id, isDark] : {std::pair{ID_BTN_CHROME_SYSTEM, true},
                                     {ID_BTN_CHROME_LIGHT, false},
                                     {ID_BTN_CHROME_NEUTRAL, false},
                                     {ID_BTN_CHROME_SYSTEM, true}}) {
        Run(id);
        EXPECT_EQ(theme::IsDark(), isDark) << id;
    }
    QApplication::setStyle("Fusion");
    Run(ID_BTN_CHROME_LIGHT);
}

double luminance(QColor color) {
    const auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}
double contrast(QColor a, QColor b) {
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

TEST_F(FramePanes, TextsCanBeReadInEverySetOfColorsAndTheChoiceIsKept) {
    for (const int id : {ID_BTN_CHROME_DARK, ID_BTN_CHROME_NEUTRAL, ID_BTN_CHROME_LIGHT}) {
        Run(id);
        EXPECT_TRUE(frame->GetAction(id)->isChecked());
        EXPECT_EQ(GetProfile().ReadInt("Window", "Chrome", 0), id - ID_BTN_CHROME_SYSTEM);
        const theme::Colors& now = theme::Now();
        for (const QColor& ground : {now.window, now.surface, now.raised, now.header}) {
            for (const QColor& text : {now.text, now.label, now.muted}) EXPECT_GE(contrast(text, ground), 4.0) << id;
        }
        for (const QColor& ground : {now.hover, now.pressed, now.selection}) {
            EXPECT_GE(contrast(now.text, ground), 4.5) << id;
        }
        EXPECT_GE(contrast(now.keyTipText, now.keyTip), 4.5) << id;
        EXPECT_GE(contrast(Qt::white, now.accent), 4.5) << id;
        EXPECT_GE(contrast(now.dimmed, now.surface), 3.0) << id;
        if (id != ID_BTN_CHROME_NEUTRAL) continue;
        for (const QColor& color : {now.window, now.surface, now.raised, now.accent, now.selection, now.text}) {
            EXPECT_EQ(color.hsvSaturation(), 0);
        }
        Run(ID_CBTN_RAW_COLOR_LIST);
        const QImage pane = frame->RawColorPane().grab().toImage();  // its buttons have pictures of their own
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < pane.width(); ++x)
                ASSERT_EQ(pane.pixelColor(x, y).hsvSaturation(), 0) << x << ", " << y;
        }
    }
}

TEST_F(FramePanes, PicturesFollowTheColors) {
    const QIcon icon = frame->GetAction(ID_BTN_PARAM_SAVE)->icon();
    Run(ID_BTN_CHROME_LIGHT);
    const QImage light = icon.pixmap(16).toImage();
    Run(ID_BTN_CHROME_DARK);
    const QImage dark = icon.pixmap(16).toImage();
    EXPECT_NE(light, dark);
    Run(ID_BTN_CHROME_LIGHT);
    EXPECT_EQ(icon.pixmap(16).toImage(), light);
}

TEST_F(FramePanes, KeysSelectAViewerAndBringItIntoView) {
    frame->resize(1600, 900);
    frame->show();
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    struct Case {
        Qt::Key key;
        CImageViewerCtrl& viewer;
    };
    for (const Case& c : {Case{Qt::Key_3, frame->CalibratedViewer()}, Case{Qt::Key_2, frame->ReferenceViewer()},
                          Case{Qt::Key_1, frame->RawViewer()}}) {
        QTest::keyClick(frame.get(), c.key, Qt::ControlModifier);
        EXPECT_EQ(frame->GetSelectedViewer(), &c.viewer);
        EXPECT_TRUE(c.viewer.hasFocus());
        EXPECT_FALSE(c.viewer.visibleRegion().isEmpty());
    }
}

// The keys of the window come through while a value is typed, with what was typed; those that edit do not.
TEST_F(FramePanes, AValueBeingTypedCountsForTheCommandOfAKey) {
    Run(ID_BTN_ILLUMINANT_USER);
    frame->show();
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    CSpectrumValuesListCtrl& list = frame->SpectrumPane().SpectrumList();
    for (const auto& [key, comesThrough] : {std::pair{Qt::Key_O, true},
                                            {Qt::Key_E, true},
                                            {Qt::Key_A, false},
                                            {Qt::Key_C, false},
                                            {Qt::Key_V, false},
                                            {Qt::Key_Z, false}}) {
        list.SetCellText(0, 1, "0");
        list.EditCell(0, 1);
        QTest::keyClicks(list.GetEditor(), "0.5");
        prompts.opened.clear();
        const auto told = Log().size();
        QTest::keyClick(list.GetEditor(), key, Qt::ControlModifier);
        EXPECT_EQ(list.GetEditor() == nullptr, comesThrough) << key;
        EXPECT_EQ(list.CellText(0, 1), comesThrough ? "0.5" : "0") << key;
        EXPECT_EQ(prompts.opened.size() + Log().size() - told, comesThrough ? 1u : 0u) << key;
    }
}

TEST_F(FramePanes, TheRawViewerKeepsItsWidthWhileThereIsRoomAndThePanesTheirs) {
    RestoreAppearance();  // the widths are those of the program's own look
    Start();
    LoadChart();
    frame->resize(1700, 800);
    frame->show();
    for (const int id : {ID_CBTN_RAW_COLOR_LIST, ID_CBTN_SPECTRUM_VALUES, ID_CBTN_CALIB_IMG_VIEW}) Run(id);
    QCoreApplication::processEvents();
    EXPECT_EQ(frame->SpectrumPane().width(), 240);
    EXPECT_EQ(frame->CalibratedPane().width(), 800);
    for (const int width : {1280, 1024, 800}) {
        frame->resize(width, 800);
        QCoreApplication::processEvents();
        EXPECT_EQ(frame->width(), width);
        EXPECT_GE(frame->RawViewer().width(), 320) << width;
        EXPECT_EQ(frame->SpectrumPane().width(), 240) << width;
    }
    frame->resize(1700, 800);
    QCoreApplication::processEvents();
    EXPECT_EQ(frame->CalibratedPane().width(), 800) << "back where there is room again";
    frame->resize(500, 800);
    QCoreApplication::processEvents();
    frame->resize(500, 800);  // once more: the least size follows the first
    EXPECT_LT(frame->width(), 700);

    frame->resize(1700, 800);
    Run(ID_BTN_QUALITY_PANE);  // beside the lists
    for (const int width : {1280, 1000, 700, 500}) {
        frame->resize(width, 800);
        QCoreApplication::processEvents();
    }
    EXPECT_LT(frame->width(), 800);
}

}  // namespace
