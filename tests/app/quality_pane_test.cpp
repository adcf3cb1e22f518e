#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <cmath>

#include "app/panes/CQualityWnd.h"
#include "app/panes/PatchCells.h"
#include "app/panes/PlotView.h"
#include "app/panes/quality_texts.h"

using namespace tonewright;

namespace {

Report report(int patches, double worst) {
    Report report;
    report.mean = 4.06;
    report.before = 10.82;
    report.unseen = 4.84;
    for (int i = 0; i < patches; ++i) {
        ReportPatch patch;
        patch.number = i + 1;
        patch.name = i == 17 ? "Cyan" : "Other";
        patch.difference = i == 17 ? worst : 1.0;
        patch.before = 12;
        report.patches.push_back(patch);
    }
    return report;
}

QString textOf(const CQualityWnd& pane, const char* name) { return pane.findChild<QLabel*>(name)->text(); }

}  // namespace

TEST(CellGrid, CellsFillTheAreaWithoutOverlap) {
    for (const int columns : {1, 4, 6, 14}) {
        for (const int count : {1, 24, 140}) {
            const QRect area(5, 7, 251, 203);
            const CellGrid grid(area, columns, count);
            for (int i = 0; i < count; ++i) {
                const QRect cell = grid.Cell(i);
                EXPECT_TRUE(cell.isEmpty() || area.contains(cell)) << columns << " " << count << " " << i;
                EXPECT_TRUE(cell.isEmpty() || grid.At(cell.center()) == i);
                EXPECT_FALSE(i % columns && cell.intersects(grid.Cell(i - 1)));
            }
            EXPECT_EQ(grid.At({0, 0}), -1);
        }
    }
}

TEST(QualityTexts, TellWhatIsNoNumberAsNone) {
    Report broken = report(24, 9.04);
    EXPECT_EQ(quality_texts::Figures(broken), "worst 9.0 (18 Cyan)\npatches left out 4.8\nbefore 10.8");
    broken.mean = std::nan("");
    EXPECT_EQ(quality_texts::Headline(broken), "–");
    const std::vector<Finding> findings = {{"coded", Severity::Warning, "a < b & \"c\"", {}}};
    EXPECT_EQ(quality_texts::Findings(findings, "none"),
              "<p style=\"margin:0 0 6px 0\"><b>Warning:</b> a &lt; b &amp; &quot;c&quot;</p>");
}

// A calibration, a smaller chart, a picture alone, and a calibration again, with a patch kept on the way.
TEST(QualityPane, FollowsWhatTheUserDoes) {
    CQualityWnd pane(nullptr);
    pane.resize(260, 700);
    pane.show();
    auto* const cells = pane.findChild<PatchCells*>();
    EXPECT_FALSE(pane.HasReport());
    EXPECT_TRUE(cells->isHidden());

    pane.ShowReport(report(24, 9.04));
    EXPECT_EQ(textOf(pane, "headline"), "4.1");
    EXPECT_EQ(textOf(pane, "findings"), "Nothing speaks against this calibration.");
    EXPECT_FALSE(cells->isHidden());
    QSignalSpy pointed(&pane, &CQualityWnd::patchPointed);
    const CellGrid grid(cells->rect(), 6, 24);
    QTest::mouseClick(cells, Qt::LeftButton, {}, grid.Cell(17).center());
    ASSERT_EQ(pointed.count(), 1);
    EXPECT_EQ(pointed.takeFirst().at(0).toInt(), 17);
    EXPECT_TRUE(textOf(pane, "patch").startsWith("18 Cyan: 9.0 (before 12.0)"));

    pane.SetOutOfDate("gamma was changed");
    EXPECT_TRUE(textOf(pane, "outOfDate").contains("gamma was changed"));
    pane.ShowReport(report(8, 0));  // the kept patch is gone
    EXPECT_TRUE(textOf(pane, "outOfDate").isEmpty());
    ASSERT_EQ(pointed.count(), 1);
    EXPECT_EQ(pointed.takeFirst().at(0).toInt(), -1);
    for (int plot = 0; plot < 4; ++plot) pane.findChild<QComboBox*>()->setCurrentIndex(plot);
    pane.grab();  // paints, plots without content included

    pane.ShowPicture("6 of 24 patches found", {});
    EXPECT_EQ(textOf(pane, "caption"), "6 of 24 patches found");
    EXPECT_TRUE(cells->isHidden());
    EXPECT_EQ(textOf(pane, "findings"), "Nothing speaks against this picture.");
    pane.ShowPicture({}, {});  // another one, of which nothing is known
    EXPECT_TRUE(textOf(pane, "caption").startsWith("Nothing calibrated yet."));
    EXPECT_EQ(textOf(pane, "findings"), "");
    Report worse = report(24, 2);
    worse.before = worse.mean;
    pane.ShowReport(worse);
    EXPECT_EQ(textOf(pane, "findings"), "What is delivered is no closer to what is wanted than before.");
    const auto top = [&](const char* name) {
        QCoreApplication::processEvents();  // which lays it out
        return pane.findChild<QLabel*>(name)->y();
    };
    worse.findings = {{"singular", Severity::Error, "This is no calibration.", {}}};
    pane.ShowReport(worse);
    EXPECT_LT(top("findings"), top("headline")) << "in sight, however low the pane is";
    pane.ShowReport(report(24, 2));
    EXPECT_GT(top("findings"), top("patch"));
    EXPECT_EQ(textOf(pane, "headline"), "4.1");
    EXPECT_EQ(cells->GetPointed(), -1);
}
