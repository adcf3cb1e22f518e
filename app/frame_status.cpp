// The status bar, and what the viewers tell of pixel, ROI and zoom.

#include <QLabel>
#include <QStatusBar>

#include "app/CMainFrame.h"
#include "app/StatusTexts.h"
#include "app/StringTable.h"
#include "app/view/CAutoROIImageViewer.h"

namespace {

struct PaneRow {
    int id;
    bool extended;           // on the right
    const char* widestText;  // keeps its place while the numbers change; null: as wide as it needs
};

constexpr PaneRow kPanes[] = {
    {string_id::kBufferInformation, false, nullptr},
    {string_id::kExecutionTime, false, nullptr},
    {string_id::kPixelData, true, "Pos 0000,0000 | Val 0000,0000,0000"},
    {string_id::kRoi, true, "ROI s:(0000,0000), w:0000, h:0000"},
    {string_id::kZoomFactor, true, "Zoom 0100.00x"},
};
constexpr int kPadding = 20;

}  // namespace

void CMainFrame::CreateStatusBar() {
    QStatusBar* bar = statusBar();
    bar->setSizeGripEnabled(false);
    for (const PaneRow& row : kPanes) {
        auto* pane = new QLabel(LoadStudioString(row.id), bar);
        pane->setObjectName(QString::number(row.id));
        pane->setTextFormat(Qt::PlainText);
        if (row.widestText) pane->setMinimumWidth(pane->fontMetrics().horizontalAdvance(row.widestText) + kPadding);
        if (row.id != string_id::kBufferInformation) pane->setProperty("divided", true);
        if (row.extended) {
            bar->addPermanentWidget(pane);
        } else {
            bar->addWidget(pane);
        }
        m_statusPanes[row.id] = pane;
    }
    SetStatus(string_id::kBufferInformation, status_texts::BufferAtStart());
    StatusPane(string_id::kRoi)->hide();  // until colors are first selected by hand
}

QLabel* CMainFrame::StatusPane(int id) const {
    const auto found = m_statusPanes.find(id);
    return found != m_statusPanes.end() ? found->second : nullptr;
}

void CMainFrame::SetStatus(int id, const QString& text) { m_statusPanes.at(id)->setText(text); }

void CMainFrame::OnPixel(long x, long y, CTivData value) {
    SetStatus(string_id::kPixelData, status_texts::Pixel(x, y, value));
    StatusPane(string_id::kPixelData)->repaint();
}

void CMainFrame::OnRoiChanged(ViewRect roi) {
    SetStatus(string_id::kRoi, status_texts::Roi(roi));
    if (m_manualColors) return;
    for (CAutoROIImageViewer* viewer : {m_rawViewer.get(), m_refViewer.get()}) {
        if (viewer->Image().IsAllocated()) viewer->DetectPatches();
    }
}

void CMainFrame::OnZoomChanged(float zoom) { SetStatus(string_id::kZoomFactor, status_texts::Zoom(zoom)); }
