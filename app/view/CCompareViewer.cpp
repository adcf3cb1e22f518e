#include "app/view/CCompareViewer.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "app/view/CDemoUtil.h"

namespace {

constexpr int kReach = 6;  // client pixels to each side of the divider in which it can be taken
constexpr double kStepByKey = 0.01, kFarByKey = 0.1;
constexpr double kMiddle = 0.5;
constexpr QSize kGrip(12, 36);
constexpr QColor kSideGround(0, 0, 0, 160);

/// A place on an axis of one picture, on that of another.
int scaled(int place, int from, int to) { return static_cast<int>(std::int64_t{place} * to / std::max(from, 1)); }

}  // namespace

CCompareViewer::CCompareViewer(QWidget* parent) : CImageViewerCtrl(parent) {
    connect(this, &CImageViewerCtrl::viewMoved, this, [this] { TakeLead(true); });
    connect(this, &CImageViewerCtrl::viewResized, this, [this] { Align(); });
}

void CCompareViewer::CompareWith(CImageViewerCtrl* before) {
    if (m_before) disconnect(m_before, nullptr, this, nullptr);
    m_before = before;
    m_isSliding = false;
    update();
    if (!before) return;
    connect(before, &CImageViewerCtrl::viewMoved, this, [this] { TakeLead(false); });
    connect(before, &CImageViewerCtrl::viewResized, this, [this] { Align(); });
    TakeLead(IsSelected() && Image().IsAllocated());
}

void CCompareViewer::TakeLead(bool leads) {
    m_leads = leads;
    Align();
}

void CCompareViewer::Align() {
    if (!m_before) return;
    if (m_leads) {
        m_before->GoTo(GetPlace());
    } else {
        GoTo(m_before->GetPlace());
    }
}

void CCompareViewer::ResetView() {
    if (m_before) return ClearOverlays();
    CImageViewerCtrl::ResetView();
}

void CCompareViewer::FitIfLarger() {
    if (m_before) return Align();
    CImageViewerCtrl::FitIfLarger();
}

// Where a calibration failed there is no picture, and so no place to keep.
void CCompareViewer::ShowNow() {
    if (!Image().IsAllocated()) m_leads = false;
    CImageViewerCtrl::ShowNow();
}

bool CCompareViewer::HasDivider() const { return m_before && m_before->Image().IsAllocated() && Image().IsAllocated(); }

void CCompareViewer::SetDivider(double share) {
    m_divider = std::clamp(share, 0.0, 1.0);
    update();
}

int CCompareViewer::DividerX() const {
    const ViewRect& picture = Geometry().GetDestination();
    return picture.left + static_cast<int>(std::lround(m_divider * picture.Width()));
}

bool CCompareViewer::IsOnDivider(ViewPoint client) const {
    const ViewRect& picture = Geometry().GetDestination();
    return HasDivider() && std::abs(client.x - DividerX()) <= kReach && client.y >= picture.top &&
           client.y < picture.bottom;
}

CTivData CCompareViewer::PixelUnder(ViewPoint client, ViewPoint pixel) const {
    if (!HasDivider() || client.x >= DividerX()) return CImageViewerCtrl::PixelUnder(client, pixel);
    const CTivImage& before = m_before->Image();
    return before.GetData(scaled(pixel.x, Image().GetWidth(), before.GetWidth()),
                          scaled(pixel.y, Image().GetHeight(), before.GetHeight()));
}

void CCompareViewer::mousePressEvent(QMouseEvent* event) {
    m_isSliding = event->button() == Qt::LeftButton && IsOnDivider(ClientPoint(event->position()));
    if (m_isSliding) return Select();
    CImageViewerCtrl::mousePressEvent(event);
}

void CCompareViewer::mouseMoveEvent(QMouseEvent* event) {
    const ViewPoint point = ClientPoint(event->position());
    if (m_isSliding) {
        const ViewRect& picture = Geometry().GetDestination();
        if (!picture.IsEmpty()) SetDivider(static_cast<double>(point.x - picture.left) / picture.Width());
        return;
    }
    CImageViewerCtrl::mouseMoveEvent(event);
    if (!Geometry().IsDragging() && IsOnDivider(point)) setCursor(Qt::SplitHCursor);
}

void CCompareViewer::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_isSliding = false;
    CImageViewerCtrl::mouseReleaseEvent(event);
}

void CCompareViewer::mouseDoubleClickEvent(QMouseEvent* event) {
    if (IsOnDivider(ClientPoint(event->position()))) return SetDivider(kMiddle);
    CImageViewerCtrl::mouseDoubleClickEvent(event);
}

void CCompareViewer::keyPressEvent(QKeyEvent* event) {
    if (!SlideByKey(*event)) CImageViewerCtrl::keyPressEvent(event);
}

bool CCompareViewer::SlideByKey(const QKeyEvent& event) {
    if (!HasDivider() || event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return false;
    const double step = event.modifiers() & Qt::ShiftModifier ? kFarByKey : kStepByKey;
    switch (event.key()) {
        case Qt::Key_Left:
            SetDivider(m_divider - step);
            return true;
        case Qt::Key_Right:
            SetDivider(m_divider + step);
            return true;
        case Qt::Key_Home:
            SetDivider(0);
            return true;
        case Qt::Key_End:
            SetDivider(1);
            return true;
        default:
            return false;
    }
}

/// The part of the picture before that lies where `source` does in the one after. Their sizes differ where another
/// picture came since the last preview.
ViewRect CCompareViewer::BeforeSource(const ViewRect& source) const {
    const CTivImage &before = m_before->Image(), &after = Image();
    const auto x = [&](int place) { return scaled(place, after.GetWidth(), before.GetWidth()); };
    const auto y = [&](int place) { return scaled(place, after.GetHeight(), before.GetHeight()); };
    const ViewRect part{x(source.left), y(source.top), x(source.right), y(source.bottom)};
    return {part.left, part.top, std::max(part.right, part.left + 1), std::max(part.bottom, part.top + 1)};
}

void CCompareViewer::PaintPicture(QPainter& painter, const ViewGeometry& view) {
    if (!HasDivider()) return CImageViewerCtrl::PaintPicture(painter, view);
    const ViewRect& picture = view.GetDestination();
    const int x = DividerX();
    painter.save();
    painter.setClipRect(QRect(QPoint(x, picture.top), QPoint(picture.right, picture.bottom)), Qt::IntersectClip);
    CImageViewerCtrl::PaintPicture(painter, view);
    painter.restore();
    painter.save();
    painter.setClipRect(QRect(picture.left, picture.top, x - picture.left, picture.Height()), Qt::IntersectClip);
    const ViewRect part = BeforeSource(view.GetSource());
    CDemoUtil::DisplayImage(&m_before->Image(), &painter, &part, &picture, -1);
    painter.restore();
    PaintDivider(painter, picture);
}

void CCompareViewer::PaintDivider(QPainter& painter, const ViewRect& picture) const {
    const int x = DividerX();
    painter.fillRect(QRect(x - 2, picture.top, 4, picture.Height()), QColor(0, 0, 0, 160));
    painter.fillRect(QRect(x - 1, picture.top, 2, picture.Height()), Qt::white);
    QRect grip({}, kGrip);
    grip.moveCenter({x, picture.top + picture.Height() / 2});
    painter.setPen(QPen(Qt::black, 1));
    painter.setBrush(Qt::white);
    painter.drawRect(grip.adjusted(0, 0, -1, -1));
    painter.fillRect(QRect(x - 3, grip.top() + 8, 1, grip.height() - 16), Qt::black);
    painter.fillRect(QRect(x + 2, grip.top() + 8, 1, grip.height() - 16), Qt::black);

    constexpr int kGap = 8;
    const int bottom = picture.bottom - kGap;
    const QSize before = WordsSize(painter, "Before"), after = WordsSize(painter, "After");
    if (x - kGap - before.width() >= picture.left) {
        PaintWords(painter, {x - kGap - before.width(), bottom - before.height()}, "Before", kSideGround);
    }
    if (x + kGap + after.width() <= picture.right) {
        PaintWords(painter, {x + kGap, bottom - after.height()}, "After", kSideGround);
    }
}
