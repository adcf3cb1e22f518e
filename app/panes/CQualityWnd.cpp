#include "app/panes/CQualityWnd.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "app/panes/PatchCells.h"
#include "app/panes/PlotView.h"
#include "app/panes/quality_texts.h"
#include "report/plots.h"
#include "report/report_words.h"

using namespace tonewright;

namespace {

constexpr int kMargin = 8;
constexpr double kHeadlineScale = 2.2;

bool isError(const Finding& finding) { return finding.severity == Severity::Error; }

QLabel* addLabel(QVBoxLayout& layout, const char* name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout.addWidget(label);
    return label;
}

}  // namespace

CQualityWnd::CQualityWnd(QWidget* parent) : QDockWidget("Calibration Quality", parent) {
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(6);
    m_verified = addLabel(*layout, "verified");
    m_back = new QPushButton("Back to the Calibration", content);
    layout->addWidget(m_back);
    m_outOfDate = addLabel(*layout, "outOfDate");
    m_headline = addLabel(*layout, "headline");
    QFont large = m_headline->font();
    large.setPointSizeF(large.pointSizeF() * kHeadlineScale);
    large.setBold(true);
    m_headline->setFont(large);
    m_caption = addLabel(*layout, "caption");
    m_figures = addLabel(*layout, "figures");
    m_cells = new PatchCells(content);
    layout->addWidget(m_cells);
    m_patch = addLabel(*layout, "patch");
    m_plotChoice = new QComboBox(content);
    m_plotChoice->setAccessibleName("Plot");
    m_plotChoice->addItems({"Difference by patch", "a*b* plane", "Tone of the neutral patches", "Noise"});
    layout->addWidget(m_plotChoice);
    m_plot = new PlotView(content);
    layout->addWidget(m_plot);
    m_findings = addLabel(*layout, "findings");
    layout->addStretch(1);

    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(content);
    setWidget(scroll);
    connect(m_back, &QPushButton::clicked, this, &CQualityWnd::backWanted);
    connect(m_cells, &PatchCells::pointed, this, [this](int index) {
        ShowPatch(index);
        emit patchPointed(index);
    });
    connect(m_plotChoice, &QComboBox::currentIndexChanged, this, [this] { ShowPlot(); });
    Clear();
}

void CQualityWnd::ShowReport(const Report& report) {
    m_report = report;
    m_report.picture = nullptr;  // the caller's, and gone soon
    m_hasReport = true;
    m_headline->setText(quality_texts::Headline(report));
    m_caption->setText("mean difference of what is delivered (CIEDE2000)");
    m_figures->setText(quality_texts::Figures(report));
    m_findings->setText(quality_texts::Findings(report.findings, report_words::WithoutFindings(report)));
    PlaceFindings(std::ranges::any_of(report.findings, isError));
    m_cells->SetPatches(report.patches, report.columns);
    for (QWidget* part :
         {static_cast<QWidget*>(m_headline), static_cast<QWidget*>(m_figures), static_cast<QWidget*>(m_cells),
          static_cast<QWidget*>(m_patch), static_cast<QWidget*>(m_plotChoice), static_cast<QWidget*>(m_plot)}) {
        part->show();
    }
    ShowPatch(m_cells->GetPointed());
    ShowPlot();
    SetOutOfDate({});
    SetVerified({});
}

void CQualityWnd::ShowVerification(const Report& report, const QString& fileName) {
    ShowReport(report);
    SetVerified(fileName);
}

// What makes the figures worthless stands above them, where it is seen in a low pane, too; the rest below the plot.
void CQualityWnd::PlaceFindings(bool onTop) {
    auto& layout = static_cast<QVBoxLayout&>(*m_findings->parentWidget()->layout());
    layout.removeWidget(m_findings);
    layout.insertWidget(onTop ? layout.indexOf(m_headline) : layout.indexOf(m_plot) + 1, m_findings);
}

void CQualityWnd::SetVerified(const QString& fileName) {
    m_verified->setText(
        QString("<b>Verification</b> of the present calibration on<br><b>%1</b>").arg(fileName.toHtmlEscaped()));
    m_verified->setVisible(!fileName.isEmpty());
    m_back->setVisible(!fileName.isEmpty());
}

void CQualityWnd::ShowPicture(const QString& summary, const std::vector<Finding>& findings) {
    Clear();
    if (summary.isEmpty()) return;
    m_caption->setText(summary);
    m_findings->setText(quality_texts::Findings(findings, "Nothing speaks against this picture."));
}

void CQualityWnd::Clear() {
    m_report = {};
    m_hasReport = false;
    m_cells->SetPatches({}, m_report.columns);
    m_caption->setText("Nothing calibrated yet. \"Calibrate and Preview\" shows here what is delivered.");
    m_findings->clear();
    PlaceFindings(false);
    for (QWidget* part :
         {static_cast<QWidget*>(m_headline), static_cast<QWidget*>(m_figures), static_cast<QWidget*>(m_cells),
          static_cast<QWidget*>(m_patch), static_cast<QWidget*>(m_plotChoice), static_cast<QWidget*>(m_plot)}) {
        part->hide();
    }
    SetVerified({});
    SetOutOfDate({});
}

void CQualityWnd::SetOutOfDate(const QString& reason) {
    m_outOfDate->setText(reason.isEmpty() ? QString() : "Out of date: " + reason);
    m_outOfDate->setVisible(!reason.isEmpty());
}

void CQualityWnd::ShowPatch(int index) {
    const bool isPatch = index >= 0 && index < static_cast<int>(m_report.patches.size());
    m_patch->setText(isPatch ? quality_texts::PatchNumbers(m_report.patches[static_cast<std::size_t>(index)])
                             : QString("Measured, wanted, delivered.\nPoint at a patch for its numbers."));
}

void CQualityWnd::ShowPlot() {
    m_plot->SetPlot(DrawPlot(m_report, static_cast<ReportPlot>(m_plotChoice->currentIndex())));
}
