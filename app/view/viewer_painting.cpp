#include <QPainter>
#include <cmath>
#include <cstring>

#include "app/toolkit/Theme.h"
#include "app/view/CDemoUtil.h"
#include "app/view/CImageViewerCtrl.h"
#include "app/view/overlay_mapping.h"

// How a viewer looks: its edge, the picture, and what is drawn over it.

namespace {

constexpr int kCornerMargin = 6;  // around words in a corner of the picture
constexpr QColor kCaptionGround(0, 0, 0, 160);
constexpr QColor kWarning(0xE8, 0xA3, 0x17);

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

}  // namespace

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
    if (m_badge.isEmpty() || !m_image.IsAllocated()) return;
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
