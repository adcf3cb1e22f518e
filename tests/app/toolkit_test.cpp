#include <gtest/gtest.h>

#include <QAction>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <map>

#include "app/toolkit/FileFilters.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/RibbonBar.h"
#include "app/toolkit/RibbonButton.h"
#include "app/toolkit/RibbonField.h"
#include "app/toolkit/RibbonFileMenu.h"
#include "app/toolkit/RibbonForms.h"
#include "app/toolkit/RibbonPage.h"
#include "app/toolkit/RibbonPanel.h"
#include "app/toolkit/StatusRow.h"
#include "app/toolkit/WindowPlace.h"

namespace {

TEST(FileFilters, PairsBecomeNameFilters) {
    struct Case {
        const char* filters;
        QStringList expected;
    };
    for (const Case& c :
         {Case{"BMP Files (*.bmp)|*.bmp|TIFF Files (*.tif)|*.tif||", {"BMP Files (*.bmp)", "TIFF Files (*.tif)"}},
          Case{"Pictures|*.bmp;*.tif||", {"Pictures (*.bmp *.tif)"}}, Case{"Broken|", {}}, Case{"", {}}}) {
        EXPECT_EQ(ParseFileFilters(c.filters), c.expected) << c.filters;
    }
}

TEST(FileFilters, StartPathSplitsIntoDirectoryAndName) {
    struct Case {
        const char* path;
        const char* directory;
        const char* name;
    };
    for (const Case& c : {Case{"/base/Tonewright//Images/*.bmp", "/base/Tonewright/Images", ""},
                          Case{"/base/chart.bmp", "/base", "chart.bmp"}, Case{"*.csv", "", ""}, Case{"", "", ""},
                          Case{"values.csv", "", "values.csv"}}) {
        const DialogStart start = ParseStartPath(c.path);
        EXPECT_EQ(start.directory, c.directory) << c.path;
        EXPECT_EQ(start.fileName, c.name) << c.path;
    }
}

TEST(Profile, KeepsTextsAndNumbersBySectionAndEntry) {
    Profile& profile = GetProfile();
    const QString awkward = QString::fromUtf8("/b\xC3\xA4r, 100%;\\x=\"1\"");
    profile.WriteString("One", "Name", awkward);
    profile.WriteInt("Two", "Name", 3);
    EXPECT_EQ(profile.ReadString("One", "Name", "else"), awkward);
    EXPECT_EQ(profile.ReadInt("Two", "Name", 1), 3);
    EXPECT_EQ(profile.ReadInt("One", "Name", 7), 7) << "no number";
    EXPECT_EQ(profile.ReadString("Three", "Name", "else"), "else");
}

TEST(RibbonForms, StepsAreTakenInOrderUntilAllFits) {
    using enum RibbonForm;
    const std::vector<RibbonPanelWidths> panels{{300, 200, 50}, {200, 220, 60}, {100, 100, 40}};
    const std::vector<RibbonShrinkStep> steps{{1, Compact}, {0, Compact}, {2, Compact},
                                              {1, Button},  {0, Button},  {2, Button}};
    struct Case {
        int available;
        std::vector<RibbonForm> expected;
    };
    for (const Case& c :
         {Case{600, {Full, Full, Full}}, Case{599, {Compact, Full, Full}},  // a wider form is no help
          Case{500, {Compact, Full, Full}}, Case{499, {Compact, Button, Full}}, Case{210, {Button, Button, Full}},
          Case{150, {Button, Button, Button}}, Case{10, {Button, Button, Button}}}) {
        EXPECT_EQ(ChooseRibbonForms(panels, steps, c.available), c.expected) << c.available;
    }
}

TEST(WindowPlace, ReturnsToItsScreenOrTheNearestThingToIt) {
    const QList<QRect> two{{0, 0, 1920, 1040}, {1920, 0, 1280, 1024}};
    const QList<QRect> laptop{{0, 30, 1280, 770}};
    struct Case {
        const char* what;
        QRect normal;
        QList<QRect> screens;
        QRect expected;
    };
    for (const Case& c : {Case{"as it was", {100, 50, 1600, 900}, two, {100, 50, 1600, 900}},
                          Case{"on the second screen", {2000, 10, 1000, 900}, two, {2000, 10, 1000, 900}},
                          Case{"that screen is gone", {2000, 10, 1000, 700}, laptop, {140, 65, 1000, 700}},
                          Case{"too large", {100, 50, 1600, 900}, laptop, {0, 30, 1280, 770}},
                          Case{"its title is above", {100, -20, 1000, 700}, laptop, {100, 30, 1000, 700}},
                          Case{"mostly beside", {-950, 100, 1000, 600}, laptop, {140, 115, 1000, 600}}}) {
        EXPECT_EQ(FitToScreens(c.normal, c.screens), c.expected) << c.what;
    }
}

TEST(WindowPlace, TextsComeBackAndOtherTextsAreNoPlace) {
    const auto place = WindowPlaceFrom(ToText({{-5, 20, 640, 480}, true}));
    ASSERT_TRUE(place);
    EXPECT_EQ(place->normal, QRect(-5, 20, 640, 480));
    EXPECT_TRUE(place->isMaximised);
    for (const char* text : {"", "1 2 3 4", "1 2 0 4 0", "1 2 x 4 0", "1 2 3000000000 4 0", "1 2 900000 4 0"}) {
        EXPECT_FALSE(WindowPlaceFrom(text)) << text;
    }
}

TEST(StatusRow, TheLeastImportantTextGivesWayFirst) {
    const std::vector<StatusPart> parts{{100, 1}, {50, 0}, {30, 2}};
    struct Case {
        int available;
        std::vector<int> expected;
    };
    for (const Case& c : {Case{500, {100, 50, 30}}, Case{180, {100, 50, 30}}, Case{140, {100, 10, 30}},
                          Case{120, {90, 0, 30}}, Case{20, {0, 0, 20}}, Case{0, {0, 0, 0}}}) {
        EXPECT_EQ(ShareStatusRoom(parts, c.available), c.expected) << c.available;
    }
}

TEST(RibbonButton, CaptionBreaksWhereItIsNarrowest) {
    const auto width = [](const QString& text) { return static_cast<int>(text.size()); };
    EXPECT_EQ(BalanceCaption("Snap", width), (QStringList{"Snap"}));
    EXPECT_EQ(BalanceCaption("Calibrate and Preview", width), (QStringList{"Calibrate", "and Preview"}));
    EXPECT_EQ(BalanceCaption("Acquisition Device Coefficients", width),
              (QStringList{"Acquisition Device", "Coefficients"}));
}

TEST(RibbonEdit, CommitsOnceByEnterOrByLeavingAndEscapeTakesItBack) {
    QWidget window;
    RibbonEdit edit(&window);
    QLineEdit other(&window);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QSignalSpy committed(&edit, &RibbonEdit::committed);
    edit.ShowText("45");
    edit.setFocus();
    other.setFocus();
    EXPECT_EQ(committed.count(), 0) << "left as it was";
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, "60");
    QTest::keyClick(&edit, Qt::Key_Escape);
    EXPECT_EQ(edit.text(), "45");
    QTest::keyClicks(&edit, "70");
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(committed.count(), 1);
    other.setFocus();
    EXPECT_EQ(committed.count(), 1) << "committed already";
    edit.setFocus();
    QTest::keyClicks(&edit, "1");
    other.setFocus();
    EXPECT_EQ(committed.count(), 2);
}

TEST(RibbonEdit, LeavesADroppedFileToTheWindow) {
    QWidget window;
    EXPECT_FALSE(RibbonEdit(&window).acceptDrops());
}

constexpr int kEdit = 1, kSlider = 2, kPush = 3, kMenu = 4, kEntry = 5, kHelp = 6, kAlone = 7;
constexpr int kEntries[] = {kEntry};
constexpr ribbon::Item kItems[] = {
    {.kind = ribbon::Kind::Field,
     .id = kEdit,
     .keyTip = "E",
     .editWidth = 40,
     .sliderId = kSlider,
     .sliderWidth = 100,
     .range = {5, 100}},
    {.kind = ribbon::Kind::Slider, .id = kAlone, .sliderWidth = 45, .range = {0, 9}},
    {.kind = ribbon::Kind::Large, .id = kPush, .keyTip = "P"},
    {.kind = ribbon::Kind::Large, .id = kMenu, .keyTip = "M", .menu = ribbon::Menu::Whole, .menuIds = kEntries},
};
constexpr ribbon::Panel kPanels[] = {{"Panel", "", "Z", kItems}};
constexpr RibbonShrinkStep kSteps[] = {{0, RibbonForm::Compact}, {0, RibbonForm::Button}};
constexpr ribbon::Tab kTabs[] = {{"First", "A", kPanels, kSteps}, {"Second", "B", {}, {}}};
constexpr int kHelpEntries[] = {kEntry};
constexpr ribbon::FileEntry kFile[] = {{kPush, "&Push", "CTRL+X"}, {kEntry, "&Entry", ""}};
constexpr ribbon::Layout kLayout{"File", "F", kFile, "Recent Documents", 300, kTabs, kHelp, "Y", kHelpEntries};

class Ribbon : public testing::Test {
protected:
    Ribbon() {
        for (const int id : {kEdit, kSlider, kPush, kMenu, kEntry, kHelp, kAlone}) {
            auto* action = new QAction(QString("Command %1").arg(id), &window);
            action->setData(id);
            QObject::connect(action, &QAction::triggered, [this, id] { ++runs[id]; });
            actions[id] = action;
        }
        bar = new RibbonBar(
            kLayout, [this](int id) { return actions.at(id); }, &window);
        window.show();
        SetWidth(800);
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    void SetWidth(int width) {
        window.resize(width, 300);
        bar->resize(width, bar->sizeHint().height());
        QCoreApplication::processEvents();
    }
    RibbonPanel& Panel() { return *bar->CurrentPage().Panels().front(); }
    int TipsOnShow() {
        int count = 0;
        for (const QLabel* label : window.findChildren<QLabel*>("keyTip")) count += label->isVisible() ? 1 : 0;
        return count;
    }

    QWidget window;
    std::map<int, QAction*> actions;
    std::map<int, int> runs;
    RibbonBar* bar;
};

TEST_F(Ribbon, PanelShrinksToAButtonWhoseDropDownHoldsTheSameControls) {
    EXPECT_EQ(Panel().Form(), RibbonForm::Full);
    SetWidth(60);
    ASSERT_EQ(Panel().Form(), RibbonForm::Button);
    EXPECT_FALSE(Panel().Body().isVisible());
    Panel().OpenDropDown();
    EXPECT_TRUE(Panel().Body().isVisible());
    bar->SetEditText(kEdit, "12");
    EXPECT_EQ(bar->EditText(kEdit), "12");
    actions[kPush]->trigger();
    EXPECT_FALSE(Panel().IsDroppedDown()) << "a command closes it";
    SetWidth(800);
    EXPECT_TRUE(Panel().Body().isVisible());
    EXPECT_EQ(Panel().Body().parentWidget(), &Panel());
}

TEST_F(Ribbon, OnlyTheUsersMovesAreTold) {
    QSignalSpy slid(bar, &RibbonBar::slid);
    bar->SetSliderValue(kSlider, 200);
    EXPECT_EQ(bar->SliderValue(kSlider), 100) << "kept in its range";
    EXPECT_EQ(slid.count(), 0);
    auto* slider = window.findChild<RibbonField*>()->Slider();
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_Left);
    ASSERT_EQ(slid.count(), 1);
    EXPECT_EQ(slid[0][0].toInt(), kSlider);
}

TEST_F(Ribbon, ASliderIsAsWideAsItsLayoutSays) {
    for (const RibbonSlider* slider : window.findChildren<RibbonSlider*>()) {
        EXPECT_EQ(slider->width(), slider->maximum() == 9 ? 45 : 100);
    }
}

TEST_F(Ribbon, FileMenuEntriesShowTheTipsOfTheirCommands) {
    actions[kPush]->setWhatsThis("<b>Push</b>");
    auto* menu = window.findChild<RibbonFileMenu*>();
    menu->popup({0, 0});
    const auto tipAt = [&](int entry) {
        const QPoint at = menu->actionGeometry(menu->actions()[entry]).center();
        QHelpEvent event(QEvent::ToolTip, at, menu->mapToGlobal(at));
        QApplication::sendEvent(menu, &event);
        return QToolTip::text();
    };
    EXPECT_EQ(tipAt(1), "") << "its own text is no tip";
    EXPECT_EQ(tipAt(0), "<b>Push</b>");
    menu->hide();
}

TEST_F(Ribbon, EnterPressesTheButtonInFocusAndNotWhatTheWindowBindsToIt) {
    QAction bound;
    bound.setShortcut(Qt::Key_Return);
    window.addAction(&bound);
    QSignalSpy taken(&bound, &QAction::triggered);
    for (RibbonButton* button : window.findChildren<RibbonButton*>()) {
        if (button->defaultAction() != actions[kPush]) continue;
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Return);
        QTest::keyClick(button, Qt::Key_Enter);
    }
    EXPECT_EQ(runs[kPush], 2);
    EXPECT_EQ(taken.count(), 0);
}

TEST_F(Ribbon, AButtonIsLitOnlyWhileThePointerIsOverIt) {
    auto* button = window.findChild<RibbonButton*>();
    QCursor::setPos(button->mapToGlobal(QPoint(5, 200)));
    const QImage dark = button->grab().toImage();
    button->setAttribute(Qt::WA_UnderMouse);  // as a menu leaves it that closes elsewhere
    EXPECT_EQ(button->grab().toImage(), dark);
    QCursor::setPos(button->mapToGlobal(button->rect().center()));
    EXPECT_NE(button->grab().toImage(), dark);
}

TEST_F(Ribbon, DisabledActionsDisableTheirControls) {
    actions[kEdit]->setEnabled(false);
    EXPECT_FALSE(window.findChild<RibbonEdit*>()->isEnabled());
    EXPECT_TRUE(window.findChild<RibbonField*>()->Slider()->isEnabled());
}

TEST_F(Ribbon, LettersAfterAltReachTabsAndControls) {
    QTest::keyClick(&window, Qt::Key_Alt);
    EXPECT_EQ(TipsOnShow(), 4);  // file, two tabs, help
    QTest::keyClick(&window, Qt::Key_A);
    EXPECT_EQ(TipsOnShow(), 3);
    QTest::keyClick(&window, Qt::Key_P);
    EXPECT_EQ(runs[kPush], 1);
    EXPECT_EQ(TipsOnShow(), 0);

    QTest::keyClick(&window, Qt::Key_Alt);
    QTest::keyClick(&window, Qt::Key_A);
    QTest::keyClick(&window, Qt::Key_E);
    EXPECT_EQ(QApplication::focusWidget(), window.findChild<RibbonEdit*>());

    QTest::keyClick(&window, Qt::Key_Alt);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_EQ(TipsOnShow(), 0);
    QTest::keyClick(&window, Qt::Key_P);
    EXPECT_EQ(runs[kPush], 1) << "no tips, no command";
}

// The edit in a panel that dropped down takes what is typed next; no tip is left that would.
TEST_F(Ribbon, LettersReachAnEditInAPanelThatDropsDown) {
    SetWidth(60);
    QTest::keyClick(&window, Qt::Key_Alt);
    QTest::keyClick(&window, Qt::Key_A);
    QTest::keyClick(&window, Qt::Key_Z);
    ASSERT_TRUE(Panel().IsDroppedDown());
    EXPECT_EQ(TipsOnShow(), 3);
    QTest::keyClick(&window, Qt::Key_E);
    EXPECT_EQ(TipsOnShow(), 0);
    EXPECT_TRUE(Panel().IsDroppedDown());
    auto* const edit = window.findChild<RibbonEdit*>();
    QTest::keyClick(edit, Qt::Key_7);
    EXPECT_EQ(bar->EditText(kEdit), "7");
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_EQ(bar->EditText(kEdit), "");
    EXPECT_TRUE(Panel().IsDroppedDown()) << "what was typed goes first";
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_FALSE(Panel().IsDroppedDown());
}

TEST_F(Ribbon, EscapeGoesAStepBackFromAPanelThatDroppedDown) {
    SetWidth(60);
    for (const Qt::Key key : {Qt::Key_Alt, Qt::Key_A, Qt::Key_Z}) QTest::keyClick(&window, key);
    ASSERT_TRUE(Panel().IsDroppedDown());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(Panel().IsDroppedDown());
    EXPECT_EQ(TipsOnShow(), 1) << "the panel's button";
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_EQ(TipsOnShow(), 4) << "the tabs";
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_EQ(TipsOnShow(), 0);
}

}  // namespace
