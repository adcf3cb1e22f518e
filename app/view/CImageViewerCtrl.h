#pragma once

#include <QFont>
#include <QFrame>
#include <QPixmap>

#include "app/toolkit/RectTracker.h"
#include "app/view/Overlay.h"
#include "app/view/ViewGeometry.h"
#include "app/workflow/PictureView.h"
#include "foundation/CTivImage.h"

class CDemoImageViewerComm;
class ViewerHost;

/// Shows one image with zoom, scrolling by dragging, a movable rectangle of interest (ROI) and an overlay in image
/// coordinates. The wheel zooms around the pointer, faster with Ctrl held; dragging scrolls an image that is larger
/// than the window; dragging the ROI moves or resizes it, Escape takes that back. Arrows move the ROI by a pixel, with
/// Shift by ten, with Ctrl its right lower corner; plus and minus zoom, 0 shows one pixel to one, F fits.
///
/// Client coordinates count from the corner of the area inside the sunken edge (contentsRect) in logical pixels.
class CImageViewerCtrl : public QFrame, public PictureView {
    Q_OBJECT
public:
    explicit CImageViewerCtrl(QWidget* parent = nullptr);

    /// Shows a copy of the image, whose own region becomes the whole image, and puts the ROI back to its start.
    /// @param resetView also ResetView
    /// @return false, and nothing is shown, for null or an image without pixels
    bool SetImage(CTivImage* image, bool resetView) override;
    /// Zoom 1.0, no scroll, no tracker rectangle, empty overlays. The ROI and the image stay.
    void ResetView() override;
    void ClearOverlays() override;
    void ShowNow() override { repaint(); }
    void ShowOutlines(const tonewright::PatchOutlines& outlines) override;  ///< in the place of the overlay's graphics
    void Highlight(const tonewright::PatchOutline& outline) override;
    void ShowBadge(const QString& words) override;
    const QString& GetBadge() const { return m_badge; }
    void SetFileName(const QString& name) override;
    /// What a corner of the picture tells of it: the viewer's name, the file's name, width and height in pixels.
    /// @return empty without a picture and for a viewer without a name
    QString GetCaption() const;

    /// Whom the viewer tells of pixels, ROI and zoom, and the window that holds it. Not owned, null allowed.
    void SetComm(CDemoImageViewerComm* comm) { m_comm = comm; }
    void SetHost(ViewerHost* host) { m_host = host; }
    void SetSelected(int selected) override;
    int IsSelected() const override { return m_selected; }

    // Each of these repaints and tells the zoom. The fits want an image, and stay: in a window of another size the
    // image is fitted anew, and the zoom told again, until the user zooms or drags.
    void SetZoom(float zoom);  ///< limited to 0.01 to 10
    float GetZoom() const { return m_geometry.GetZoom(); }
    void ResetScale();
    void FitHeight();
    void FitWidth();
    void FitToWindow();
    void FitIfLarger() override;  ///< as ViewGeometry's

    /// Shows or hides the ROI; one that was never shown becomes the displayed part less a fiftieth on each side.
    void EnableRoi(bool on);
    bool IsRoiEnabled() const { return m_roiEnabled; }
    ViewRect GetRoi() const override { return m_roi; }

    ViewPlace GetPlace() const { return View().GetPlace(); }
    /// As ViewGeometry's. Tells the zoom, but not that the view has moved.
    void GoTo(const ViewPlace& place);

    bool ClientToImage(ViewPoint in, ViewPoint* out) const { return View().ClientToImage(in, out); }
    bool ImageToClient(ViewPoint in, ViewPoint* out) const { return View().ImageToClient(in, out); }

    /// The image on display. Who writes to it, also with another size, calls update() afterwards.
    CTivImage& Image() override { return m_image; }
    const CTivImage& Image() const { return m_image; }
    Overlay& ImageOverlay() { return m_imageOverlay; }  ///< drawn over the image; call update() after a change
    const Overlay& ImageOverlay() const { return m_imageOverlay; }
    const ViewGeometry& Geometry() const { return View(); }
    const RectTracker& Tracker() const { return m_tracker; }

    QSize sizeHint() const override;

signals:
    void viewMoved();    ///< zoomed, fitted, dragged, reset, or on another picture
    void viewResized();  ///< the window has another size, and the view is still not fitted to it

protected:
    void Select();  ///< makes this the selected viewer, as a press does
    /// Draws the picture, under all that is drawn on it.
    virtual void PaintPicture(QPainter& painter, const ViewGeometry& view);
    /// What the mouse tells of a pixel. @param client where it is seen
    virtual CTivData PixelUnder(ViewPoint client, ViewPoint pixel) const;
    static QSize WordsSize(const QPainter& painter, const QString& words);
    static void PaintWords(QPainter& painter, QPoint corner, const QString& words, const QColor& ground);
    /// Replaces the ROI without telling anyone.
    void SetRoi(const ViewRect& roi) { m_roi = roi; }
    /// The ROI as it is drawn: under a tracker that is being dragged, where it would come to now.
    ViewRect DrawnRoi() const;
    /// Whether the ROI is drawn dashed and in a warning's color, and not dotted in white.
    virtual bool IsRoiDashed() const { return false; }
    /// Puts the tracker to its start and the ROI under it, without telling anyone.
    void ResetTracker();
    void NotifyRoi();
    ViewPoint ClientPoint(QPointF position) const;  ///< from the widget's coordinates
    ViewerHost* Host() const { return m_host; }

    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QSize ClientSize() const;    // empty, never negative, in a window smaller than its edge
    ViewGeometry& View() const;  // brought up to date with the sizes of window and image
    void ZoomChanged();
    bool ZoomByKey(const QKeyEvent& event);
    bool NudgeByKey(const QKeyEvent& event);
    void SyncTracker();
    void UpdateCursor(ViewPoint point);
    void PaintEdge(QPainter& painter) const;
    void PaintBackground(QPainter& painter);
    void PaintTracker(QPainter& painter) const;
    void PaintHighlight(QPainter& painter, const ViewGeometry& view) const;
    void PaintBadge(QPainter& painter) const;
    void PaintCaption(QPainter& painter) const;

    mutable ViewGeometry m_geometry;
    RectTracker m_tracker;
    ViewRect m_roi;  // image pixels
    bool m_roiEnabled = false;
    int m_selected = 0;
    CDemoImageViewerComm* m_comm = nullptr;
    ViewerHost* m_host = nullptr;
    CTivImage m_image;
    Overlay m_imageOverlay;
    QFont m_font;  // the system's menu font, as it was at construction
    QPixmap m_background;
    tonewright::PatchOutline m_highlight;
    QString m_badge;
    QString m_fileName;
};
