#include "app/panes/CRawColorWnd.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "app/panes/CRawColorListCtrl.h"
#include "app/view/CAutoROIImageViewer.h"

namespace {

constexpr int kButtonRowHeight = 25;
constexpr int kCrossHalfSize = 5;
constexpr int kCrossColor = 0x33FF00;  // 0x00BBGGRR: the green of the detected patches

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
    rawList_ = new CRawColorListCtrl(lists_.raw, content);
    referenceList_ = new CRawColorListCtrl(lists_.reference, content);
    auto* sides = new QHBoxLayout;
    sides->addLayout(captioned(" Raw colors", rawList_), 1);
    sides->addLayout(captioned(" Reference colors", referenceList_), 1);

    replaceButton_ = new QPushButton("Replace/Add", content);
    removeButton_ = new QPushButton("Remove", content);
    clearButton_ = new QPushButton("Clear", content);
    auto* buttons = new QHBoxLayout;
    int controlId = 6;
    for (QPushButton* button : {replaceButton_, removeButton_, clearButton_}) {
        button->setProperty("controlId", controlId++);
        button->setMinimumHeight(kButtonRowHeight);
        buttons->addWidget(button, 1);
    }
    connect(replaceButton_, &QPushButton::clicked, this, &CRawColorWnd::ReplaceOrAdd);
    connect(removeButton_, &QPushButton::clicked, this, &CRawColorWnd::Remove);
    connect(clearButton_, &QPushButton::clicked, this, &CRawColorWnd::Clear);
    for (CRawColorListCtrl* list : {rawList_, referenceList_}) {
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
    (identifier == RawColorViewerRaw ? rawViewer_ : referenceViewer_) = viewer;
}

void CRawColorWnd::SetEnabled(bool enabled) {
    enabled_ = enabled;
    ApplyDimming();
}

void CRawColorWnd::SetMode(bool relative) {
    relative_ = relative;
    Refresh();
    ApplyDimming();
}

void CRawColorWnd::ApplyDimming() {
    rawList_->SetDimmed(!enabled_);
    referenceList_->SetDimmed(!enabled_);
    UpdateCommandState();
}

void CRawColorWnd::UpdateCommandState() {
    const bool rawSelected = rawViewer_ && rawViewer_->IsSelected();
    const bool referenceSelected = referenceViewer_ && referenceViewer_->IsSelected();
    const bool usable = enabled_ && (rawSelected || (relative_ && referenceSelected));
    for (QPushButton* button : {replaceButton_, removeButton_, clearButton_}) button->setEnabled(usable);
}

bool CRawColorWnd::IsRawSide() const { return rawViewer_ && rawViewer_->IsSelected(); }
RawColorSide& CRawColorWnd::Side() { return IsRawSide() ? lists_.raw : lists_.reference; }
CRawColorListCtrl& CRawColorWnd::SideList() { return IsRawSide() ? *rawList_ : *referenceList_; }

std::optional<RawColorEntry> CRawColorWnd::PickFromRoi() const {
    CAutoROIImageViewer* viewer = IsRawSide() ? rawViewer_ : referenceViewer_;
    if (!viewer) return std::nullopt;
    unsigned char bgr[3] = {};
    ViewPoint centre;
    viewer->GetRoiColor(bgr, &centre);
    const std::uint32_t color = bgr[0] | std::uint32_t{bgr[1]} << 8 | std::uint32_t{bgr[2]} << 16;
    return RawColorEntry{color, centre.x, centre.y};
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
    lists_.ClearBoth();
    Refresh();
}

void CRawColorWnd::FillRawColors(const CTivVector& colors) {
    lists_.raw.Fill(colors);
    Refresh();
}

void CRawColorWnd::FillReferenceColors(const CTivVector& colors) {
    lists_.reference.Fill(colors);
    Refresh();
}

void CRawColorWnd::ClearSide(bool rawSide) {
    lists_.ClearForNewImage(rawSide);
    Refresh();
}

void CRawColorWnd::Refresh() {
    rawList_->Refresh();
    referenceList_->Refresh();
}

// The cross of a row does not outlive it.
void CRawColorWnd::ClearCross() {
    for (CAutoROIImageViewer* viewer : {rawViewer_, referenceViewer_}) {
        if (!viewer) continue;
        viewer->ImageOverlay().ClearCrosses();
        viewer->update();
    }
}

void CRawColorWnd::ShowSelectedEntry() {
    for (CAutoROIImageViewer* viewer : {rawViewer_, referenceViewer_}) {
        if (viewer) viewer->ClearOverlays();
    }
    const bool onRawSide = rawList_->SelectedRow().has_value();
    const std::optional<std::size_t> row = onRawSide ? rawList_->SelectedRow() : referenceList_->SelectedRow();
    const auto& entries = (onRawSide ? lists_.raw : lists_.reference).Entries();
    CAutoROIImageViewer* viewer = onRawSide ? rawViewer_ : referenceViewer_;
    if (!row || *row >= entries.size() || !viewer) return;
    viewer->ImageOverlay().AddCross(entries[*row].x, entries[*row].y, kCrossColor, kCrossHalfSize);
    viewer->update();
}
