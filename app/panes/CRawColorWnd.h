#pragma once

#include <QDockWidget>
#include <optional>

#include "app/workflow/ColorLists.h"
#include "app/workflow/RawColorLists.h"

class CAutoROIImageViewer;
class CRawColorListCtrl;
class QPushButton;

/// The identifiers by which a viewer is handed to the pane.
enum RawColorViewer : int { RawColorViewerRaw = 104, RawColorViewerReference = 105 };

/// The pane "Raw Color List": raw and reference colors picked by hand with each viewer's ROI. All commands work on the
/// left side while the raw viewer is the selected one, else on the right.
class CRawColorWnd : public QDockWidget, public ColorLists {
    Q_OBJECT
public:
    explicit CRawColorWnd(QWidget* parent = nullptr);

    void SetViewer(CAutoROIImageViewer* viewer, int identifier);
    void SetEnabled(bool enabled) override;  ///< undims or dims both lists and rules the buttons
    bool IsEnabledForPicking() const { return m_enabled; }
    void SetMode(bool relative) override;
    CTivVector GetRawColors() const override { return m_lists.raw.GetColors(); }
    CTivVector GetReferenceColors() const override { return m_lists.reference.GetColors(); }
    void FillRawColors(const CTivVector& colors) override;
    void FillReferenceColors(const CTivVector& colors) override;
    /// A new image came into a viewer: clears that viewer's side, by the lopsided rule of RawColorLists.
    void ClearSide(bool rawSide) override;
    void UpdateCommandState();  ///< enables the buttons by mode, enabled flag and selected viewer

    void Restore(const RawColorLists& lists) override;
    const RawColorLists& Lists() const override { return m_lists; }
    CRawColorListCtrl& RawList() { return *m_rawList; }
    CRawColorListCtrl& ReferenceList() { return *m_referenceList; }

public slots:
    void AddColor() override;
    void ReplaceOrAdd();
    void Remove() override;  ///< the selected row, or else the last
    void RemoveLast() override;
    void Clear() override;     ///< both sides
    void ShowSelectedEntry();  ///< a cross in the viewer where the selected color was picked

private:
    bool IsRawSide() const;
    RawColorSide& Side();
    CRawColorListCtrl& SideList();
    std::optional<RawColorEntry> PickFromRoi() const;
    void RemoveFromSide(std::optional<std::size_t> selected);
    void Refresh();
    void ClearCross();
    void ApplyDimming();

    RawColorLists m_lists;
    CAutoROIImageViewer* m_rawViewer = nullptr;
    CAutoROIImageViewer* m_referenceViewer = nullptr;
    bool m_enabled = false;
    bool m_relative = false;
    CRawColorListCtrl* m_rawList;
    CRawColorListCtrl* m_referenceList;
    QPushButton* m_replaceButton;
    QPushButton* m_removeButton;
    QPushButton* m_clearButton;
};
