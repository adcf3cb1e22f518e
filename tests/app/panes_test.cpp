#include <gtest/gtest.h>
#include <unistd.h>

#include <QHeaderView>
#include <QMainWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <fstream>
#include <sstream>

#include "app/panes/CLoggerWnd.h"
#include "app/panes/CRawColorListCtrl.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Clock.h"
#include "app/toolkit/Prompts.h"
#include "app/view/CAutoROIImageViewer.h"
#include "tests/support/library.h"

using namespace tonewright;

namespace {

// Answers the matrix size dialog and the file dialogs with what a test wants.
class ScriptedPrompts : public Prompts {
public:
    ScriptedPrompts() { SetPrompts(this); }
    ~ScriptedPrompts() override { SetPrompts(nullptr); }
    std::optional<FileChoice> OpenFile(const FileRequest&) override { return Choice(); }
    std::optional<FileChoice> SaveFile(const FileRequest&) override { return Choice(); }
    bool AskYesNo(const QString&, const QString&) override { return false; }
    void ShowWarning(const QString&, const QString&) override {}
    void ShowError(const QString&, const QString&) override {}
    bool EditMatrixSize(int& width, int& height) override {
        if (size.isEmpty()) return false;
        width = size.width();
        height = size.height();
        return true;
    }

    QSize size;
    QString path;

private:
    std::optional<FileChoice> Choice() const {
        return path.isEmpty() ? std::nullopt : std::optional<FileChoice>({path, 1});
    }
};

std::string contentOf(const QString& path) {
    std::ostringstream content;
    content << std::ifstream(path.toStdString()).rdbuf();
    return content.str();
}

long long residentBytes() {
    long long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}

class SpectrumPane : public testing::Test {
protected:
    SpectrumPane() {
        pane.resize(300, 500);
        pane.show();
    }
    CSpectrumValuesListCtrl& List() { return pane.SpectrumList(); }
    void DoubleClick(int row, int column) {
        const QPoint at = List().visualRect(List().model()->index(row, column)).center();
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(List().viewport(), Qt::LeftButton, {}, at);
    }
    QString Cell(int row, int column) { return List().CellText(row, column); }

    ScriptedPrompts prompts;
    CSpectrumValuesWnd pane;
};

}  // namespace

TEST_F(SpectrumPane, StartsWithRowsOfZerosThatCannotBeEdited) {
    EXPECT_EQ(List().RowCount(), 24);
    EXPECT_EQ(Cell(23, 0), "24");
    EXPECT_EQ(Cell(0, 1), "0.00000");
    EXPECT_EQ(pane.GetIlluminantValue(), (std::array<float, 4>{0, 0, 0, 0}));
    DoubleClick(0, 1);
    EXPECT_EQ(List().GetEditor(), nullptr);
}

TEST_F(SpectrumPane, EnterCommitsEscDropsAndAnEmptyTextIsNotTaken) {
    pane.SetEnabled(true);
    DoubleClick(0, 0);
    EXPECT_EQ(List().GetEditor(), nullptr);
    DoubleClick(0, 1);
    ASSERT_NE(List().GetEditor(), nullptr);
    EXPECT_EQ(List().GetEditor()->selectedText(), "0.00000");
    QTest::keyClicks(List().GetEditor(), "0.1234567");
    QTest::keyClick(List().GetEditor(), Qt::Key_Return);
    EXPECT_EQ(Cell(0, 1), "0.1234567");
    EXPECT_EQ(List().GetEditor(), nullptr);
    EXPECT_EQ(List().EditedRow(), -1);

    List().EditCell(0, 2);
    QTest::keyClicks(List().GetEditor(), "9");
    QTest::keyClick(List().GetEditor(), Qt::Key_Escape);
    EXPECT_EQ(Cell(0, 2), "0.00000");
    List().EditCell(0, 2);
    QTest::keyClick(List().GetEditor(), Qt::Key_Delete);
    QTest::keyClick(List().GetEditor(), Qt::Key_Return);
    EXPECT_EQ(Cell(0, 2), "0.00000");
    EXPECT_FLOAT_EQ(pane.GetSpectrumValues().GetData(0).AsColorFloat()[0], 0.1234567f);
}

TEST_F(SpectrumPane, TabMovesOnAndPastTheLastRowWritesNowhere) {
    pane.SetEnabled(true);
    prompts.size = {1, 2};
    pane.EditMatrixSize();
    ASSERT_EQ(List().RowCount(), 2);
    List().EditCell(0, 3);
    QTest::keyClicks(List().GetEditor(), "7");
    QTest::keyClick(List().GetEditor(), Qt::Key_Tab);
    EXPECT_EQ(Cell(0, 3), "7");
    EXPECT_EQ(List().EditedRow(), 1);
    EXPECT_EQ(List().EditedColumn(), 1);
    for (int column = 1; column <= 3; ++column) QTest::keyClick(List().GetEditor(), Qt::Key_Tab);
    EXPECT_EQ(List().EditedRow(), 2);
    ASSERT_NE(List().GetEditor(), nullptr);
    QTest::keyClicks(List().GetEditor(), "5");
    QTest::keyClick(List().GetEditor(), Qt::Key_Return);
    EXPECT_EQ(List().RowCount(), 2);
    EXPECT_EQ(Cell(1, 1), "0.00000");
}

TEST_F(SpectrumPane, AClickElsewhereCommitsAndDisablingDrops) {
    pane.SetEnabled(true);
    List().EditCell(1, 1);
    QTest::keyClicks(List().GetEditor(), "3");
    QTest::mouseClick(pane.IlluminantList().viewport(), Qt::LeftButton);
    EXPECT_EQ(Cell(1, 1), "3");
    List().EditCell(1, 1);
    QTest::keyClicks(List().GetEditor(), "4");
    pane.SetEnabled(false);
    EXPECT_EQ(Cell(1, 1), "3");
    EXPECT_EQ(List().GetEditor(), nullptr);
}

TEST_F(SpectrumPane, LoadsAFileAfterAskingForTheMatrixSize) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("werte.csv");
    std::ofstream(path.toStdString()) << "0.1234567,2,3,4\n1e-1, 5 x,-6\n";
    QSignalSpy words(&pane, &CSpectrumValuesWnd::message);
    QSignalSpy sizes(&pane, &CSpectrumValuesWnd::matrixSizeChosen);
    prompts.size = {2, 1};
    pane.LoadValuesFrom(path);
    EXPECT_EQ(sizes.count(), 1);
    EXPECT_EQ(List().RowCount(), 2);
    EXPECT_EQ(Cell(0, 1), "0.12346");
    EXPECT_EQ(Cell(1, 3), "-6.00000");
    ASSERT_EQ(words.count(), 1);
    EXPECT_EQ(words[0][0].toString(),
              "Please verify the matrix dimension of the current table before loading it's spectrum values.");

    prompts.size = {};  // Cancel: the size stays, and loading goes on
    std::ofstream(path.toStdString()) << "1,2,3\n";
    pane.LoadValuesFrom(path);
    EXPECT_EQ(words.last()[0].toString(), "The file contains less values than the matrix size permits.");
    EXPECT_EQ(words.last()[1].toInt(), LogError);
    EXPECT_EQ(Cell(0, 1), "0.12346");
}

TEST_F(SpectrumPane, SavesWhatTheCellsReadWithSixDigits) {
    const QTemporaryDir folder;
    prompts.path = folder.filePath("out.csv");
    prompts.size = {1, 1};
    pane.EditMatrixSize();
    List().SetCellText(0, 1, "0.1234567");
    List().SetCellText(0, 2, "no number");
    List().SetCellText(0, 3, "12 cd");
    pane.SaveValues();
    EXPECT_EQ(contentOf(prompts.path), "0.123457,0,12\n");
    List().SetCellText(0, 1, "1,234");  // neither groups of thousands nor a decimal comma
    List().SetCellText(0, 2, "1e50");
    List().SetCellText(0, 3, " +2.5e1x");
    pane.SaveValues();
    EXPECT_EQ(contentOf(prompts.path), "1,0,25\n");
}

TEST_F(SpectrumPane, IsAsNarrowAsItIsTold) { EXPECT_LE(pane.minimumSizeHint().width(), 240); }

// As many as a parameter file of 2 MB brings.
TEST(ListPanes, LongListsCostAFewTimesTheirFile) {
    constexpr long long kMost = 100LL << 20;
    const long long before = residentBytes();
    CRawColorWnd colors;
    colors.show();
    colors.FillRawColors(CTivVector(500'000, CTivData::FormatRgb, nullptr, true));
    colors.RawList().scrollToBottom();
    colors.grab();
    EXPECT_EQ(colors.RawList().RowCount(), 500'000);
    EXPECT_LT(residentBytes() - before, kMost);

    const long long between = residentBytes();
    CSpectrumValuesWnd values;
    values.show();
    values.ShowSpectrumValues(CTivVector(125'000, CTivData::FormatColorFloat, nullptr, true));
    values.SpectrumList().scrollToBottom();
    values.grab();
    EXPECT_EQ(values.SpectrumList().CellText(124'999, 0), "125000");
    EXPECT_LT(residentBytes() - between, kMost);
}

TEST_F(SpectrumPane, TheIlluminantValueShowsWholeNumbersOnly) {
    pane.ShowIlluminantValue({0.9f, 1.7f, -2.7f, 0});
    EXPECT_EQ(pane.GetIlluminantValue(), (std::array<float, 4>{0, 1, -2, 0}));
}

TEST(RawColorPane, ButtonsFollowModeAndSelectedViewer) {
    CRawColorWnd pane;
    CAutoROIImageViewer raw;
    CAutoROIImageViewer reference;
    pane.SetViewer(&raw, RawColorViewerRaw);
    pane.SetViewer(&reference, RawColorViewerReference);
    const auto buttons = pane.findChildren<QPushButton*>();
    const struct {
        bool enabled, relative, rawSelected, referenceSelected, usable;
    } cases[] = {{false, false, true, false, false}, {true, false, true, false, true},
                 {true, false, false, true, false},  {true, true, false, true, true},
                 {true, true, true, false, true},    {true, true, false, false, false},
                 {false, true, false, true, false}};
    for (const auto& each : cases) {
        raw.SetSelected(each.rawSelected);
        reference.SetSelected(each.referenceSelected);
        pane.SetMode(each.relative);
        pane.SetEnabled(each.enabled);
        for (const QPushButton* button : buttons) {
            if (button->text().isEmpty()) continue;
            EXPECT_EQ(button->isEnabled(), each.usable) << button->text().toStdString();
        }
    }
}

TEST(RawColorPane, PicksFromTheSelectedViewerAndShowsWhereAColorCameFrom) {
    CTivImage red(40, 40, CTivData::FormatRgb, nullptr, true);
    for (int i = 0; i < 1600; ++i) red.SetData(i % 40, i / 40, CTivData::Rgb(200, 20, 10));
    CRawColorWnd pane;
    CAutoROIImageViewer raw;
    CAutoROIImageViewer reference;
    raw.resize(100, 100);
    pane.SetViewer(&raw, RawColorViewerRaw);
    pane.SetViewer(&reference, RawColorViewerReference);
    ASSERT_TRUE(raw.SetImage(&red, true));
    raw.SetAutoDetect(false);
    raw.SetSelected(1);
    pane.AddColor();
    ASSERT_EQ(pane.GetRawColors().GetSize(), 1);
    EXPECT_EQ(pane.GetRawColors().GetData(0).AsRgb(), 0xC8140Au);
    EXPECT_EQ(pane.GetReferenceColors().GetSize(), 0);

    pane.RawList().selectRow(0);
    pane.ShowSelectedEntry();
    ASSERT_EQ(raw.ImageOverlay().Crosses().size(), 1u);
    EXPECT_EQ(raw.ImageOverlay().Crosses()[0].x, 6);  // the square of 4 to 8: its middle
    EXPECT_EQ(raw.ImageOverlay().Crosses()[0].color, 0x33FF00);
    EXPECT_EQ(raw.ImageOverlay().Crosses()[0].halfSize, 5);
    pane.RemoveLast();
    pane.RemoveLast();
    EXPECT_EQ(pane.RawList().RowCount(), 0);
}

TEST(RawColorPane, RemovingTakesTheSelectedRowsOneByOneAndTheCrossWithItsRow) {
    CTivImage image(40, 40, CTivData::FormatRgb, nullptr, true);
    CAutoROIImageViewer raw;
    raw.resize(100, 100);
    ASSERT_TRUE(raw.SetImage(&image, true));
    raw.SetSelected(1);
    CRawColorWnd pane;
    pane.SetViewer(&raw, RawColorViewerRaw);
    CTivVector colors(5, CTivData::FormatRgb, nullptr, true);
    for (int i = 0; i < 5; ++i) colors.SetData(i, CTivData(CTivData::FormatRgb, static_cast<std::uint32_t>(i + 1)));
    pane.FillRawColors(colors);
    const auto left = [&] {
        std::string text;
        const CTivVector now = pane.GetRawColors();
        for (int i = 0; i < now.GetSize(); ++i) text += std::to_string(now.GetData(i).AsRgb()) + " ";
        return text;
    };
    pane.RawList().setSelectionMode(QAbstractItemView::MultiSelection);
    pane.RawList().selectRow(1);
    pane.RawList().selectRow(3);
    pane.ShowSelectedEntry();
    ASSERT_EQ(raw.ImageOverlay().Crosses().size(), 1u);
    const char* const expected[] = {"1 3 4 5 ", "1 3 5 ", "1 3 "};  // without a selection the last one goes
    for (const char* colorsLeft : expected) {
        pane.Remove();
        EXPECT_EQ(left(), colorsLeft);
        EXPECT_TRUE(raw.ImageOverlay().Crosses().empty());
    }
}

TEST(LogPane, ShowsTheNewestMessageWholeOnceItIsFull) {
    const Clock clock;
    QMainWindow window;
    auto* log = new CLoggerWnd(clock, &window);
    window.addDockWidget(Qt::BottomDockWidgetArea, log);
    window.resize(400, 180);
    window.show();
    const QTableWidget& list = log->List();
    const auto showsNewest = [&] {
        const QRect row = list.visualItemRect(list.item(list.rowCount() - 1, CLoggerWnd::ColumnTime));
        return list.viewport()->rect().contains(QRect(0, row.top(), 1, row.height()));
    };
    for (int i = 0; i < 40; ++i) {
        // The wide one brings the horizontal bar, which takes room from the rows.
        log->AddMessage(i == 20 ? QString(300, 'w') : QString("short"), LogError);
        EXPECT_TRUE(showsNewest()) << i;
    }
    log->hide();
    log->AddMessage("comes back", LogWarning);
    QCoreApplication::processEvents();
    EXPECT_TRUE(showsNewest());
    window.resize(400, 150);
    QCoreApplication::processEvents();
    EXPECT_TRUE(showsNewest());
}
