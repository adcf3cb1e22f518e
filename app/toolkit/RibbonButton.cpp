#include "app/toolkit/RibbonButton.h"

#include <QAction>
#include <QCursor>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "app/toolkit/Theme.h"

namespace {

constexpr int kLargePicture = 32;
constexpr int kSmallPicture = 16;
constexpr int kPadding = 6;       // left and right of the content
constexpr int kGap = 4;           // between small picture, text and arrow
constexpr int kArrow = 7;         // width of the drop-down sign
constexpr int kLargeTop = 5;      // above the large picture
constexpr int kLargeTextTop = 4;  // between large picture and text
constexpr int kRows = 3;
constexpr int kLeastLargeWidth = 46;
constexpr double kRadius = 3;

void paintArrow(QPainter& painter, const QPoint& centre, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF c = QPointF(centre) + QPointF(0.5, 0.5);
    painter.drawPolyline(QPolygonF{c + QPointF(-3, -1.5), c + QPointF(0, 1.5), c + QPointF(3, -1.5)});
    painter.restore();
}

bool isEnter(const QEvent* event) {
    const int key = static_cast<const QKeyEvent*>(event)->key();
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

void fill(QPainter& painter, const QRect& area, const QColor& color) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(area, kRadius, kRadius);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

}  // namespace

QStringList BalanceCaption(const QString& caption, const std::function<int(const QString&)>& widthOf) {
    const QStringList words = caption.split(' ', Qt::SkipEmptyParts);
    QStringList best{words.join(' ')};
    if (words.size() < 2) return best;
    int narrowest = widthOf(best.constFirst());
    for (qsizetype i = 1; i < words.size(); ++i) {
        const QString first = words.first(i).join(' ');
        const QString second = words.sliced(i).join(' ');
        const int width = std::max(widthOf(first), widthOf(second));
        if (width < narrowest) {
            narrowest = width;
            best = {first, second};
        }
    }
    return best;
}

RibbonButton::RibbonButton(QAction* action, QWidget* parent) : QToolButton(parent) {
    setDefaultAction(action);
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
}

void RibbonButton::SetLarge(bool large) {
    m_large = large;
    updateGeometry();
}

void RibbonButton::SetMenu(QMenu* menu, ribbon::Menu use) {
    menu->setParent(this, menu->windowFlags());
    setMenu(menu);
    connect(menu, &QMenu::aboutToHide, this, [this] { update(); });
    m_menuUse = use;
    setPopupMode(use == ribbon::Menu::Whole ? InstantPopup : DelayedPopup);
    SetArrow(true);
}

void RibbonButton::SetArrow(bool arrow) {
    m_arrow = arrow;
    update();
}

int RibbonButton::RowHeight(const QFontMetrics& metrics) { return std::max(24, metrics.height() + 8); }

int RibbonButton::BodyHeight(const QFontMetrics& metrics) {
    const int large = kLargeTop + kLargePicture + kLargeTextTop + 2 * metrics.height() + 3;
    return std::max(large, kRows * RowHeight(metrics));
}

QString RibbonButton::Caption() const { return QString(text()).remove('&'); }

QSize RibbonButton::SizeFor(bool large) const {
    const QFontMetrics metrics = fontMetrics();
    const auto widthOf = [&](const QString& text) { return metrics.horizontalAdvance(text); };
    if (!large) {
        const int arrow = m_arrow ? kGap + kArrow : 0;
        return {kPadding + kSmallPicture + kGap + widthOf(Caption()) + arrow + kPadding, RowHeight(metrics)};
    }
    const QStringList lines = BalanceCaption(Caption(), widthOf);
    int width = widthOf(lines.constFirst());
    if (lines.size() > 1) width = std::max(width, widthOf(lines[1]) + (m_arrow ? kGap + kArrow : 0));
    return {std::max(width + 2 * kPadding, kLeastLargeWidth), BodyHeight(metrics)};
}

int RibbonButton::RowTextLeft() { return kPadding + kSmallPicture + kGap; }
int RibbonButton::LargePictureBottom() { return kLargeTop + kLargePicture; }

// A menu that closes over another place tells nobody that the pointer has left: look where it is.
bool RibbonButton::IsUnderPointer() const { return underMouse() && rect().contains(mapFromGlobal(QCursor::pos())); }

QRect RibbonButton::ArrowZone() const {
    if (m_large) return rect().adjusted(0, kLargeTop + kLargePicture + kLargeTextTop / 2, 0, 0);
    return rect().adjusted(width() - kPadding - kArrow - kGap, 0, 0, 0);
}

void RibbonButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool menuOpen = menu() && menu()->isVisible();
    if (isEnabled()) {
        if (isChecked()) fill(painter, rect(), theme::Now().selection);
        if (isDown() || menuOpen) {
            fill(painter, rect(), theme::Now().pressed);
        } else if (IsUnderPointer()) {
            fill(painter, rect(),
                 isChecked() ? theme::Now().pressed : theme::Now().hover);  // lit, also where it is checked
            if (m_menuUse == ribbon::Menu::Split) {
                const bool overArrow = ArrowZone().contains(m_pointer);
                painter.setClipRegion(overArrow ? QRegion(ArrowZone()) : QRegion(rect()) - ArrowZone());
                fill(painter, rect(), theme::Now().pressed);
                painter.setClipping(false);
            }
        }
    }
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(theme::Now().lit, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
        painter.setRenderHint(QPainter::Antialiasing, false);
    }
    painter.setPen(isEnabled() ? theme::Now().text : theme::Now().disabled);
    if (m_large) {
        PaintLarge(painter);
    } else {
        PaintSmall(painter);
    }
}

void RibbonButton::PaintPicture(QPainter& painter, const QRect& place) const {
    icon().paint(&painter, place, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
}

void RibbonButton::PaintLarge(QPainter& painter) const {
    const QFontMetrics metrics = fontMetrics();
    const auto widthOf = [&](const QString& text) { return metrics.horizontalAdvance(text); };
    PaintPicture(painter, {(width() - kLargePicture) / 2, kLargeTop, kLargePicture, kLargePicture});
    const QStringList lines = BalanceCaption(Caption(), widthOf);
    const bool arrowBesideText = m_arrow && lines.size() > 1;
    int y = kLargeTop + kLargePicture + kLargeTextTop;
    for (qsizetype i = 0; i < lines.size(); ++i, y += metrics.height()) {
        const int arrowWidth = arrowBesideText && i + 1 == lines.size() ? kGap + kArrow : 0;
        const int left = (width() - widthOf(lines[i]) - arrowWidth) / 2;
        painter.drawText(left, y + metrics.ascent(), lines[i]);
        if (arrowWidth) {
            paintArrow(painter, {left + widthOf(lines[i]) + kGap + kArrow / 2, y + metrics.height() / 2},
                       painter.pen().color());
        }
    }
    if (m_arrow && !arrowBesideText) {
        paintArrow(painter, {width() / 2, y + metrics.height() / 2 - 1}, painter.pen().color());
    }
}

void RibbonButton::PaintSmall(QPainter& painter) const {
    PaintPicture(painter, {kPadding, (height() - kSmallPicture) / 2, kSmallPicture, kSmallPicture});
    const int left = RowTextLeft();
    painter.drawText(QRect(left, 0, width() - left, height()), Qt::AlignLeft | Qt::AlignVCenter, Caption());
    if (m_arrow) {
        const int x = left + fontMetrics().horizontalAdvance(Caption()) + kGap + kArrow / 2;
        const bool atEdge = m_menuUse == ribbon::Menu::Split;
        paintArrow(painter, {atEdge ? width() - kPadding - kArrow / 2 : x, height() / 2}, painter.pen().color());
    }
}

void RibbonButton::mousePressEvent(QMouseEvent* event) {
    const bool opens = m_menuUse == ribbon::Menu::Split && event->button() == Qt::LeftButton &&
                       ArrowZone().contains(event->position().toPoint());
    if (opens) {
        showMenu();
        return;
    }
    QToolButton::mousePressEvent(event);
}

void RibbonButton::mouseMoveEvent(QMouseEvent* event) {
    m_pointer = event->position().toPoint();
    update();
    QToolButton::mouseMoveEvent(event);
}

// Enter belongs to the button while it has the focus, whatever the window binds it to.
bool RibbonButton::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && isEnter(event)) {
        event->accept();
        return true;
    }
    return QToolButton::event(event);
}

void RibbonButton::keyPressEvent(QKeyEvent* event) {
    const bool opensByEnter = isEnter(event) && m_menuUse == ribbon::Menu::Whole;
    if (opensByEnter || (event->key() == Qt::Key_Down && menu())) {
        showMenu();
        return;
    }
    if (isEnter(event)) {
        click();
        return;
    }
    QToolButton::keyPressEvent(event);
}
