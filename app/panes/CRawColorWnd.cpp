#include "app/panes/CRawColorWnd.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "app/panes/CRawColorListCtrl.h"
#include "app/view/CAutoROIImageViewer.h"

namespace {

constexpr int kButtonRowHeight = 25;
constexpr int kCrossHalfSize = 5;

QBoxLayout* captioned(const QString& caption, QWidget* list) {
    auto* column = new QVBoxLayout;
    column->setSpacing(2);
    column->addWidget(new QLabel(caption));
    column->addWidget(list);
    return column;
}

}  // namespace

CRawColorWnd::CRawColorWnd(QWidget* parent) : QDockWidget("Raw Color List", parent) {
    setObjectName("RawColorList");
    auto* content = new QWidget(this);
    m_rawList = new CRawColorListCtrl(m_lists.raw, content);
    m_referenceList = new CRawColorListCtrl(m_lists.reference, content);
    m_rawList->setAccessibleName("Raw colors");
    m_referenceList->setAccessibleName("Reference colors");
    auto* sides = new QHBoxLayout;
    sides->addLayout(captioned(" Raw colors", m_rawList), 1);
    sides->addLayout(captioned(" Reference colors", m_referenceList), 1);

    m_replaceButton = new QPushButton("Replace/Add", content);
    m_removeButton = new QPushButton("Remove", content);
    m_clearButton = new QPushButton("Clear", content);
    auto* buttons = new QHBoxLayout;
    int controlId = 6;
    for (QPushButton* button : {m_replaceButton, m_removeButton, m_clearButton}) {
        button->setProperty("controlId", controlId++);
        button->setMinimumHeight(kButtonRowHeight);
        buttons->addWidget(button, 1);
    }
    connect(m_replaceButton, &QPushButton::clicked, this, &CRawColorWnd::ReplaceOrAdd);
    connect(m_removeButton, &QPushButton::clicked, this, &CRawColorWnd::Remove);
    connect(m_clearButton, &QPushButton::clicked, this, &CRawColorWnd::Clear);
    for (CRawColorListCtrl* list : {m_rawList, m_referenceList}) {
        connect(list, &CRawColorListCtrl::pressed, this, &CRawColorWnd::ShowSelectedEntry);
    }

    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addLayout(sides, 1);
    layout->addLayout(buttons);
    setWidget(content);
    ApplyDimming();
}

void CRawColorWnd::SetViewer(CAutoROIImageViewer* viewer, int identifier) {
    (identifier == RawColorViewerRaw ? m_rawViewer : m_referenceViewer) = viewer;
}

void CRawColorWnd::SetEnabled(bool enabled) {
    m_enabled = enabled;
    ApplyDimming();
}

void CRawColorWnd::SetMode(bool relative) {
    m_relative = relative;
    Refresh();
    ApplyDimming();
}

void CRawColorWnd::ApplyDimming() {
    m_rawList->SetDimmed(!m_enabled);
    m_referenceList->SetDimmed(!m_enabled);
    UpdateCommandState();
}

void CRawColorWnd::UpdateCommandState() {
    const bool rawSelected = m_rawViewer && m_rawViewer->IsSelected();
    const bool referenceSelected = m_referenceViewer && m_referenceViewer->IsSelected();
    const bool usable = m_enabled && (rawSelected || (m_relative && referenceSelected));
    for (QPushButton* button : {m_replaceButton, m_removeButton, m_clearButton}) button->setEnabled(usable);
}

bool CRawColorWnd::IsRawSide() const { return m_rawViewer && m_rawViewer->IsSelected(); }
RawColorSide& CRawColorWnd::Side() { return IsRawSide() ? m_lists.raw : m_lists.reference; }
CRawColorListCtrl& CRawColorWnd::SideList() { return IsRawSide() ? *m_rawList : *m_referenceList; }

std::optional<RawColorEntry> CRawColorWnd::PickFromRoi() const {
    CAutoROIImageViewer* viewer = IsRawSide() ? m_rawViewer : m_referenceViewer;
    if (!viewer) return std::nullopt;
    unsigned char bgr[3] = {};
    ViewPoint centre;
    viewer->GetRoiColor(bgr, &centre);
    const std::uint32_t color = bgr[0] | std::uint32_t{bgr[1]} << 8 | std::uint32_t{bgr[2]} << 16;
    return RawColorEntry{color, centre.x, centre.y, viewer->HoldsTwoColors()};
}

void CRawColorWnd::AddColor() {
    if (const auto picked = PickFromRoi()) Side().Add(*picked);
    Refresh();
}

void CRawColorWnd::ReplaceOrAdd() {
    if (const auto picked = PickFromRoi()) Side().ReplaceOrAdd(SideList().SelectedRow(), *picked);
    Refresh();
}

// The other selected rows stay so: the next press takes the next of them.
void CRawColorWnd::RemoveFromSide(std::optional<std::size_t> selected) {
    ClearCross();
    const std::optional<std::size_t> gone = Side().Remove(selected);
    if (gone) SideList().RowRemoved(static_cast<int>(*gone));
}

void CRawColorWnd::Remove() { RemoveFromSide(SideList().SelectedRow()); }

void CRawColorWnd::RemoveLast() { RemoveFromSide(std::nullopt); }

void CRawColorWnd::Clear() {
    ClearCross();
    m_lists.ClearBoth();
    Refresh();
}

void CRawColorWnd::FillRawColors(const CTivVector& colors) {
    m_lists.raw.Fill(colors);
    Refresh();
}

void CRawColorWnd::FillReferenceColors(const CTivVector& colors) {
    m_lists.reference.Fill(colors);
    Refresh();
}

void CRawColorWnd::ClearSide(bool rawSide) {
    m_lists.ClearForNewImage(rawSide);
    Refresh();
}

void CRawColorWnd::Restore(const RawColorLists& lists) {
    ClearCross();
    m_lists = lists;
    Refresh();
}

void CRawColorWnd::Refresh() {
    m_rawList->Refresh();
    m_referenceList->Refresh();
}

// The cross of a row does not outlive it.
void CRawColorWnd::ClearCross() {
    for (CAutoROIImageViewer* viewer : {m_rawViewer, m_referenceViewer}) {
        if (!viewer) continue;
        viewer->ImageOverlay().ClearCrosses();
        viewer->update();
    }
}

void CRawColorWnd::ShowSelectedEntry() {
    for (CAutoROIImageViewer* viewer : {m_rawViewer, m_referenceViewer}) {
        if (viewer) viewer->ClearOverlays();
    }
    const bool onRawSide = m_rawList->SelectedRow().has_value();
    const std::optional<std::size_t> row = onRawSide ? m_rawList->SelectedRow() : m_referenceList->SelectedRow();
    const auto& entries = (onRawSide ? m_lists.raw : m_lists.reference).Entries();
    CAutoROIImageViewer* viewer = onRawSide ? m_rawViewer : m_referenceViewer;
    if (!row || *row >= entries.size() || !viewer) return;
    viewer->ImageOverlay().AddCross(entries[*row].x, entries[*row].y, Overlay::kPatchColor, kCrossHalfSize);
    viewer->update();
}
