#include "app/view/CImageViewerCtrl.h"

#include <QApplication>
#include <QMouseEvent>
#include <cmath>

#include "app/view/CDemoImageViewerComm.h"
#include "app/view/CDemoUtil.h"
#include "app/view/ViewerHost.h"

using namespace tonewright;

namespace {

constexpr int kEdgeWidth = 2;
constexpr QSize kFirstSize(800, 600);  // also what a viewer in a pane that was never shown fits images to
constexpr int kOverlayFontPoints = 10;
constexpr float kZoomByKey = 1.25f;
constexpr int kFarByKey = 10;  // image pixels
constexpr int kTrackerStyle = RectTracker::DottedLine | RectTracker::ResizeInside;

Qt::CursorShape shapeOf(RectTracker::Cursor cursor) {
    switch (cursor) {
        case RectTracker::Cursor::Move:
            return Qt::SizeAllCursor;
        case RectTracker::Cursor::Horizontal:
            return Qt::SizeHorCursor;
        case RectTracker::Cursor::Vertical:
            return Qt::SizeVerCursor;
        case RectTracker::Cursor::FallingDiagonal:
            return Qt::SizeFDiagCursor;
        case RectTracker::Cursor::RisingDiagonal:
            return Qt::SizeBDiagCursor;
        default:
            return Qt::ArrowCursor;
    }
}

}  // namespace

CImageViewerCtrl::CImageViewerCtrl(QWidget* parent) : QFrame(parent), m_font(QApplication::font("QMenu")) {
    m_font.setPointSize(kOverlayFontPoints);
    setFrameStyle(QFrame::Panel | QFrame::Sunken);
    setLineWidth(kEdgeWidth);
    setAttribute(Qt::WA_OpaquePaintEvent);  // nothing is erased before a paint, which covers everything
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    resize(kFirstSize);
    ResetView();
}

QSize CImageViewerCtrl::sizeHint() const { return kFirstSize; }

QSize CImageViewerCtrl::ClientSize() const { return contentsRect().size().expandedTo({0, 0}); }

ViewGeometry& CImageViewerCtrl::View() const {
    const QSize client = ClientSize();
    const bool shows = m_image.IsAllocated();
    m_geometry.Adapt(client.width(), client.height(), shows ? m_image.GetWidth() : 0, shows ? m_image.GetHeight() : 0);
    return m_geometry;
}

bool CImageViewerCtrl::SetImage(CTivImage* image, bool resetView) {
    if (resetView) ResetView();
    m_image = image ? *image : CTivImage();
    update();
    if (!m_image.IsAllocated()) return false;
    m_image.SetRoi({});
    m_roi = ViewGeometry::DefaultRoi(m_image.GetWidth(), m_image.GetHeight());
    m_tracker.SetStyle(kTrackerStyle);
    ZoomChanged();
    return true;
}

void CImageViewerCtrl::ResetView() {
    m_geometry.Reset();
    m_tracker.Cancel();
    m_tracker.SetRect({});
    ClearOverlays();
    emit viewMoved();
}

void CImageViewerCtrl::ClearOverlays() {
    m_imageOverlay.Clear();
    update();
}

void CImageViewerCtrl::SetSelected(int selected) {
    m_selected = selected;
    update();
}

void CImageViewerCtrl::ZoomChanged() {
    update();
    if (m_comm) m_comm->OnZoomChanged(m_geometry.GetZoom());
    emit viewMoved();
}

void CImageViewerCtrl::GoTo(const ViewPlace& place) {
    const float before = GetZoom();
    View().GoTo(place);
    update();
    if (m_comm && GetZoom() != before) m_comm->OnZoomChanged(GetZoom());
}

void CImageViewerCtrl::SetZoom(float zoom) {
    View().SetZoom(zoom);
    ZoomChanged();
}
void CImageViewerCtrl::ResetScale() {
    View().ResetScale();
    ZoomChanged();
}
void CImageViewerCtrl::FitHeight() {
    View().FitHeight();
    ZoomChanged();
}
void CImageViewerCtrl::FitWidth() {
    View().FitWidth();
    ZoomChanged();
}
void CImageViewerCtrl::FitToWindow() {
    View().FitToWindow();
    ZoomChanged();
}

void CImageViewerCtrl::FitIfLarger() {
    if (View().FitIfLarger()) ZoomChanged();
}

void CImageViewerCtrl::ResetTracker() {
    m_tracker.SetRect(View().DefaultTracker());
    View().TrackerToRoi(m_tracker.GetRect(), &m_roi);
}

void CImageViewerCtrl::EnableRoi(bool on) {
    m_roiEnabled = on;
    m_tracker.SetStyle(on ? kTrackerStyle : RectTracker::NoStyle);
    if (on && m_tracker.GetRect().IsEmpty()) ResetTracker();
    NotifyRoi();
    update();
}

void CImageViewerCtrl::NotifyRoi() {
    if (m_roiEnabled && m_comm) m_comm->OnRoiChanged(m_roi);
}

ViewRect CImageViewerCtrl::DrawnRoi() const {
    ViewRect roi = m_roi;
    if (m_tracker.IsFollowing()) View().TrackerToRoi(m_tracker.GetRect(), &roi);
    return roi;
}

/// Puts the tracker over the ROI. While a corner is not on display it deliberately (C20) stays where it was.
void CImageViewerCtrl::SyncTracker() {
    ViewRect rect;
    if (m_roiEnabled && !m_tracker.IsFollowing() && View().RoiToTracker(m_roi, &rect)) m_tracker.SetRect(rect);
}

ViewPoint CImageViewerCtrl::ClientPoint(QPointF position) const {
    const QPoint corner = contentsRect().topLeft();
    return {static_cast<int>(std::floor(position.x())) - corner.x(),
            static_cast<int>(std::floor(position.y())) - corner.y()};
}

void CImageViewerCtrl::UpdateCursor(ViewPoint point) {
    const ViewGeometry& view = View();
    if (!view.GetDestination().Covers(point)) return setCursor(Qt::ArrowCursor);
    SyncTracker();
    const auto hit = m_roiEnabled ? m_tracker.HitTest(point) : RectTracker::Hit::Nothing;
    if (hit != RectTracker::Hit::Nothing) return setCursor(shapeOf(RectTracker::CursorFor(hit)));
    setCursor(view.IsDragging() ? Qt::SizeAllCursor : Qt::CrossCursor);
}

void CImageViewerCtrl::wheelEvent(QWheelEvent* event) {
    event->accept();
    const int turn = event->angleDelta().y();
    if (turn == 0) return;
    const bool fast = event->modifiers() & Qt::ControlModifier;
    if (View().Wheel(ClientPoint(event->position()), turn > 0, fast)) ZoomChanged();
}

void CImageViewerCtrl::Select() {
    setFocus(Qt::MouseFocusReason);
    if (m_host) m_host->DeselectAllViewers();
    SetSelected(1);
}

void CImageViewerCtrl::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    Select();
    const ViewPoint point = ClientPoint(event->position());
    SyncTracker();
    if (m_roiEnabled && m_tracker.Begin(point)) return;
    if (View().BeginDrag(point)) UpdateCursor(point);
}

void CImageViewerCtrl::mouseMoveEvent(QMouseEvent* event) {
    const ViewPoint point = ClientPoint(event->position());
    if (m_tracker.IsFollowing()) {
        m_tracker.Follow(point, View().GetDestination());
        update();
        return;
    }
    ViewPoint pixel;
    if (View().IsDragging()) {
        View().DragTo(point);
        update();
        emit viewMoved();
    } else if (m_comm && View().ClientToImage(point, &pixel)) {
        m_comm->OnPixel(pixel.x, pixel.y, PixelUnder(point, pixel));
    }
    UpdateCursor(point);
}

CTivData CImageViewerCtrl::PixelUnder(ViewPoint, ViewPoint pixel) const { return m_image.GetData(pixel.x, pixel.y); }

void CImageViewerCtrl::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    if (m_tracker.End()) {
        View().TrackerToRoi(m_tracker.GetRect(), &m_roi);
        NotifyRoi();
        update();
    }
    if (View().EndDrag()) UpdateCursor(ClientPoint(event->position()));
}

// Not a second press: a double click alone neither drags nor selects.
void CImageViewerCtrl::mouseDoubleClickEvent(QMouseEvent*) {}

void CImageViewerCtrl::keyPressEvent(QKeyEvent* event) {
    if (m_tracker.IsFollowing()) {
        if (event->key() != Qt::Key_Escape) return QFrame::keyPressEvent(event);
        m_tracker.Cancel();
        update();
    } else if (!ZoomByKey(*event) && !NudgeByKey(*event)) {
        QFrame::keyPressEvent(event);
    }
}

bool CImageViewerCtrl::ZoomByKey(const QKeyEvent& event) {
    if (!m_image.IsAllocated() || event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return false;
    switch (event.key()) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:  // the same key without Shift
            SetZoom(GetZoom() * kZoomByKey);
            return true;
        case Qt::Key_Minus:
            SetZoom(GetZoom() / kZoomByKey);
            return true;
        case Qt::Key_0:
            ResetScale();
            return true;
        case Qt::Key_F:
            FitToWindow();
            return true;
        default:
            return false;
    }
}

bool CImageViewerCtrl::NudgeByKey(const QKeyEvent& event) {
    const int key = event.key();
    const int dx = (key == Qt::Key_Right) - (key == Qt::Key_Left), dy = (key == Qt::Key_Down) - (key == Qt::Key_Up);
    if (!m_roiEnabled || !m_image.IsAllocated() || (dx == 0 && dy == 0)) return false;
    const int by = event.modifiers() & Qt::ShiftModifier ? kFarByKey : 1;
    const bool resizes = event.modifiers() & Qt::ControlModifier;
    const ViewRect roi =
        ViewGeometry::NudgeRoi(m_roi, by * dx, by * dy, resizes, m_image.GetWidth(), m_image.GetHeight());
    if (roi != m_roi) {
        m_roi = roi;
        NotifyRoi();
        update();
    }
    return true;
}

void CImageViewerCtrl::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    const float before = GetZoom();
    View();
    if (GetZoom() != before) return ZoomChanged();
    emit viewResized();
}

void CImageViewerCtrl::ShowOutlines(const PatchOutlines& outlines) {
    constexpr std::int32_t kGreen = 0x00FF00;
    const auto whole = [](double value) { return static_cast<int>(std::lround(value)); };
    m_imageOverlay.Clear();
    for (const PatchOutline& outline : outlines) {
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const auto& [x1, y1] = outline[i];
            const auto& [x2, y2] = outline[(i + 1) % outline.size()];
            m_imageOverlay.AddLine(whole(x1), whole(y1), whole(x2), whole(y2), kGreen);
        }
    }
    update();
}

void CImageViewerCtrl::Highlight(const PatchOutline& outline) {
    m_highlight = outline;
    update();
}

void CImageViewerCtrl::ShowBadge(const QString& words) {
    if (m_badge == words) return;
    m_badge = words;
    update();
}

void CImageViewerCtrl::SetFileName(const QString& name) {
    if (m_fileName == name) return;
    m_fileName = name;
    update();
}

QString CImageViewerCtrl::GetCaption() const {
    if (!m_image.IsAllocated() || objectName().isEmpty()) return {};
    QString size = QString("%1 x %2").arg(m_image.GetWidth()).arg(m_image.GetHeight());
    if (!CDemoUtil::IsDisplayable(m_image.GetFormat())) {
        size += QString(", %1 cannot be shown").arg(CTivData::GetFormatName(m_image.GetFormat()));
    }
    return m_fileName.isEmpty() ? objectName() + ": " + size : objectName() + ": " + m_fileName + ", " + size;
}
