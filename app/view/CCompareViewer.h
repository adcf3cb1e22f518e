#pragma once

#include "app/view/CImageViewerCtrl.h"

/// The viewer of the result, which can be compared with the picture that the result was made from. While it compares,
/// both viewers share zoom and place, whichever of them is moved, and a divider in this one parts what was before, on
/// its left, from what is after. It slides by the mouse, by Left and Right, with Shift faster, and by Home and End; a
/// double click brings it back to the middle.
class CCompareViewer : public CImageViewerCtrl {
    Q_OBJECT
public:
    explicit CCompareViewer(QWidget* parent = nullptr);

    /// Begins to compare, from the view of the selected one of the two, else of `before`; null: no longer.
    /// @param before not owned; must outlive the comparison
    void CompareWith(CImageViewerCtrl* before);
    bool IsComparing() const { return m_before != nullptr; }
    /// Where the divider stands: a share of the width of the picture on display, from its left.
    double GetDivider() const { return m_divider; }
    void SetDivider(double share);  ///< limited to 0 to 1

    // While it compares, a new result comes to where the earlier one was looked at.
    void ResetView() override;
    void FitIfLarger() override;
    void ShowNow() override;

protected:
    void PaintPicture(QPainter& painter, const ViewGeometry& view) override;
    CTivData PixelUnder(ViewPoint client, ViewPoint pixel) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool HasDivider() const;  // there are two pictures to part
    int DividerX() const;     // client pixels
    bool IsOnDivider(ViewPoint client) const;
    bool SlideByKey(const QKeyEvent& event);
    void TakeLead(bool leads);
    void Align();
    ViewRect BeforeSource(const ViewRect& source) const;
    void PaintDivider(QPainter& painter, const ViewRect& picture) const;

    CImageViewerCtrl* m_before = nullptr;
    bool m_leads = false;  // this viewer was the last of the two to be moved; the other one follows
    double m_divider = 0.5;
    bool m_isSliding = false;
};
