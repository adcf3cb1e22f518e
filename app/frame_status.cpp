// The status bar, and what the viewers tell of pixel, ROI and zoom.

#include <QLabel>
#include <QStatusBar>

#include "app/CMainFrame.h"
#include "app/StringTable.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/StatusRow.h"
#include "app/workflow/StatusTexts.h"
#include "app/workflow/Workflow.h"

namespace {

struct PaneRow {
    int id;
    bool extended;           // on the right
    int givesWay;            // where room is short, in this order
    const char* widestText;  // keeps its place while the numbers change; "": as wide as it needs
};

constexpr PaneRow kPanes[] = {
    {string_id::kBufferInformation, false, 1, ""},
    {string_id::kExecutionTime, false, 0, ""},
    {string_id::kNextPatch, false, -1, ""},
    {string_id::kPixelData, true, 3, "Pos 0000,0000 | Val 0000,0000,0000"},
    {string_id::kRoi, true, 2, "ROI s:(0000,0000), w:0000, h:0000"},
    {string_id::kZoomFactor, true, 4, "Zoom 0100.00x"},
};

}  // namespace

void CMainFrame::CreateStatusBar() {
    QStatusBar* bar = statusBar();
    bar->setSizeGripEnabled(false);
    auto* texts = new StatusRow(bar);
    bar->addWidget(texts, 1);
    for (const PaneRow& row : kPanes) {
        QLabel* const pane = texts->Add(row.extended, row.givesWay, row.widestText);
        pane->setText(LoadStudioString(row.id));
        pane->setObjectName(QString::number(row.id));
        if (row.id != string_id::kBufferInformation) pane->setProperty("divided", true);
        m_statusPanes[row.id] = pane;
    }
    SetStatus(string_id::kBufferInformation, status_texts::BufferAtStart());
    m_statusPanes.at(string_id::kNextPatch)->hide();
    m_statusPanes.at(string_id::kRoi)->hide();  // until colors are first selected by hand
}

void CMainFrame::SetStatus(int id, const QString& text) { m_statusPanes.at(id)->setText(text); }

// While colors are picked by hand, for the side to which the next one goes. Entries count and not rows: they are what
// reaches the calibration.
void CMainFrame::ShowNextPatch(const StudioState& state) {
    const RawColorLists& lists = m_rawColorWnd->Lists();
    const bool mayPick = state.manualColors && (state.rawSelected || state.refSelected);
    const RawColorSide& side = state.rawSelected ? lists.raw : lists.reference;
    QLabel* const pane = m_statusPanes.at(string_id::kNextPatch);
    if (mayPick) pane->setText(status_texts::NextPatch(side.Entries().size(), *m_spectrumWnd->GetChartSize()));
    pane->setVisible(mayPick);
}

void CMainFrame::OnPixel(long x, long y, CTivData value) {
    SetStatus(string_id::kPixelData, status_texts::Pixel(x, y, value));
    m_statusPanes.at(string_id::kPixelData)->repaint();
}

void CMainFrame::OnRoiChanged(ViewRect roi) { m_workflow->Get<CalibrationSteps>().OnRoiChanged(roi); }

void CMainFrame::OnZoomChanged(float zoom) { SetStatus(string_id::kZoomFactor, status_texts::Zoom(zoom)); }
