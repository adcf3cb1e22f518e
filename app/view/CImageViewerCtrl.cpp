#include "app/view/CImageViewerCtrl.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>
#include <cstring>

#include "app/toolkit/Theme.h"
#include "app/view/CDemoImageViewerComm.h"
#include "app/view/CDemoUtil.h"
#include "app/view/ViewerHost.h"
#include "app/view/overlay_mapping.h"

using namespace tonewright;

namespace {

constexpr int kEdgeWidth = 2;
constexpr QSize kFirstSize(800, 600);  // also what a viewer in a pane that was never shown fits images to
constexpr int kOverlayFontPoints = 10;
constexpr float kZoomByKey = 1.25f;
constexpr int kFarByKey = 10;     // image pixels
constexpr int kCornerMargin = 6;  // around words in a corner of the picture
constexpr QColor kWarning(0xE8, 0xA3, 0x17);
constexpr QColor kCaptionGround(0, 0, 0, 160);
constexpr int kTrackerStyle = RectTracker::DottedLine | RectTracker::ResizeInside;

/// The pattern behind the image: cells of 4 by 4 pixels, drawn row by row. A cell is light when both toggles are false.
/// The column toggle deliberately (C19) goes on from one row to the next, so that this is no checkerboard.
QImage backgroundPattern(QSize size) {
    constexpr int kCell = 4;
    constexpr QRgb kLight = 0xFF282828, kDark = 0xFF141414;
    if (size.isEmpty()) return {};
    QImage pattern(size, QImage::Format_RGB32);
    bool columnToggle = true, rowToggle = false;
    for (int y = 0; y < size.height(); y += kCell) {
        auto* row = reinterpret_cast<QRgb*>(pattern.scanLine(y));
        for (int x = 0; x < size.width(); x += kCell) {
            std::fill(row + x, row + std::min(x + kCell, size.width()), columnToggle || rowToggle ? kDark : kLight);
            columnToggle = !columnToggle;
        }
        for (int line = y + 1; line < std::min(y + kCell, size.height()); ++line) {
            std::memcpy(pattern.scanLine(line), row, static_cast<std::size_t>(size.width()) * sizeof(QRgb));
        }
        rowToggle = !rowToggle;
    }
    return pattern;
}

QRect toQRect(const ViewRect& rect) { return {rect.left, rect.top, rect.Width(), rect.Height()}; }

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

void CImageViewerCtrl::paintEvent(QPaintEvent*) {
    // The window system's backing store is the off-screen bitmap: what is drawn here comes to the screen in one copy.
    QPainter painter(this);
    PaintEdge(painter);
    if (ClientSize().isEmpty()) return;
    painter.translate(contentsRect().topLeft());
    painter.setClipRect(QRect(QPoint(0, 0), ClientSize()));
    PaintBackground(painter);
    const ViewGeometry& view = View();
    if (m_image.IsAllocated()) PaintPicture(painter, view);
    PaintCaption(painter);  // under outlines and handles, which have to be reached
    Overlay overlay = MapToClient(m_imageOverlay, view);
    overlay.SetFont(m_font);
    overlay.Draw(painter, {0, 0}, 1.0f);
    PaintHighlight(painter, view);
    if (m_roiEnabled) {
        SyncTracker();
        PaintTracker(painter);
    }
    PaintBadge(painter);
}

void CImageViewerCtrl::PaintPicture(QPainter& painter, const ViewGeometry& view) {
    CDemoUtil::DisplayImage(&m_image, &painter, &view.GetSource(), &view.GetDestination(), -1);
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
    const QString size = QString("%1 x %2").arg(m_image.GetWidth()).arg(m_image.GetHeight());
    return m_fileName.isEmpty() ? objectName() + ": " + size : objectName() + ": " + m_fileName + ", " + size;
}

void CImageViewerCtrl::PaintHighlight(QPainter& painter, const ViewGeometry& view) const {
    if (m_highlight.empty() || !m_image.IsAllocated()) return;
    QPolygon polygon;
    for (const auto& [x, y] : m_highlight) {
        ViewPoint point;
        view.ImageToClient({static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))}, &point);
        polygon << QPoint(point.x, point.y);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::black, 4));  // so that the outline shows on any picture
    painter.drawPolygon(polygon);
    painter.setPen(QPen(Qt::yellow, 2));
    painter.drawPolygon(polygon);
}

QSize CImageViewerCtrl::WordsSize(const QPainter& painter, const QString& words) {
    const QSize size = painter.fontMetrics().size(Qt::TextSingleLine, words);
    return {size.width() + 2 * kCornerMargin, size.height() + kCornerMargin};
}

void CImageViewerCtrl::PaintWords(QPainter& painter, QPoint corner, const QString& words, const QColor& ground) {
    const QRect area(corner, WordsSize(painter, words));
    constexpr int kMediumGray = 128;
    painter.fillRect(area, ground);
    painter.setPen(qGray(ground.rgb()) > kMediumGray ? Qt::black : Qt::white);
    painter.drawText(area, Qt::AlignCenter, words);
}

void CImageViewerCtrl::PaintBadge(QPainter& painter) const {
    if (m_badge.isEmpty()) return;
    const int left = ClientSize().width() - WordsSize(painter, m_badge).width() - kCornerMargin;
    PaintWords(painter, {left, kCornerMargin}, m_badge, QColor(0x8a, 0x1c, 0x12));
}

// In the corner opposite to the badge's, and never under it: a long file name is cut in its middle. That of the
// selected viewer stands on the color of its edge.
void CImageViewerCtrl::PaintCaption(QPainter& painter) const {
    const int badge = m_badge.isEmpty() ? 0 : WordsSize(painter, m_badge).width() + kCornerMargin;
    const int room = ClientSize().width() - badge - 4 * kCornerMargin;
    const QString caption = painter.fontMetrics().elidedText(GetCaption(), Qt::ElideMiddle, room);
    if (room <= 0 || caption.isEmpty()) return;
    PaintWords(painter, {kCornerMargin, kCornerMargin}, caption, m_selected ? theme::Now().chosen : kCaptionGround);
}

/// A sunken edge, which shines while the viewer is the selected one. Filled and not drawn with a pen, which leaves
/// device pixels out where one logical pixel is several.
void CImageViewerCtrl::PaintEdge(QPainter& painter) const {
    if (m_selected) return painter.fillRect(rect(), theme::Now().chosen);
    const QRect outer = rect(), inner = outer.adjusted(1, 1, -1, -1);
    painter.fillRect(outer, palette().color(QPalette::Light));
    painter.fillRect(outer.adjusted(0, 0, -1, -1), palette().color(QPalette::Dark));
    painter.fillRect(inner, Qt::black);
}

void CImageViewerCtrl::PaintBackground(QPainter& painter) {
    const QSize client = ClientSize();
    if (m_background.size() != client) m_background = QPixmap::fromImage(backgroundPattern(client));
    painter.drawPixmap(0, 0, m_background);
}

void CImageViewerCtrl::PaintTracker(QPainter& painter) const {
    const ViewRect& rect = m_tracker.GetRect();
    if (rect.IsEmpty()) return;
    const QColor ink = IsRoiDashed() ? kWarning : QColor(Qt::white);  // the handles hide a small rectangle's outline
    if (m_tracker.GetStyle() & RectTracker::DottedLine) {
        const QRect outline = toQRect(rect).adjusted(0, 0, -1, -1);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Qt::black, 1));  // under the dots, so that they show on any picture
        painter.drawRect(outline);
        QPen line(ink, 1, Qt::DotLine);
        if (IsRoiDashed()) line.setDashPattern({6, 4});
        painter.setPen(line);
        painter.drawRect(outline);
    }
    if (m_tracker.GetStyle() & RectTracker::ResizeInside) {
        painter.setPen(QPen(Qt::black, 1));
        painter.setBrush(ink);
        for (int i = 0; i < RectTracker::kHandleCount; ++i) {
            painter.drawRect(toQRect(m_tracker.HandleRect(static_cast<RectTracker::Hit>(i))).adjusted(0, 0, -1, -1));
        }
    }
}
