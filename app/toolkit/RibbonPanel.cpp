#include "app/toolkit/RibbonPanel.h"

#include <QAction>
#include <QEvent>
#include <QFrame>
#include <QPainter>
#include <QScreen>
#include <algorithm>

#include "app/toolkit/RibbonButton.h"
#include "app/toolkit/Theme.h"

namespace {

constexpr int kSideMargin = 6;
constexpr int kTopMargin = 4;
constexpr int kCaptionTop = 1;
constexpr int kDropDownMargin = 8;
constexpr double kCaptionScale = 0.92;

}  // namespace

RibbonPanel::RibbonPanel(const ribbon::Panel& panel, const RibbonActions& actions, QWidget* parent)
    : QWidget(parent),
      m_panel(panel),
      m_body(new RibbonBody(panel, actions, this)),
      m_dropDown(new QFrame(this, Qt::Popup)) {
    auto* open = new QAction(theme::Icon(panel.picture), panel.caption, this);
    open->setToolTip(panel.caption);
    m_button = new RibbonButton(open, this);
    m_button->SetArrow(true);
    m_button->hide();
    connect(open, &QAction::triggered, this, &RibbonPanel::OpenDropDown);
    connect(m_body, &RibbonBody::commandDone, this, &RibbonPanel::CloseDropDown);
    m_dropDown->setObjectName("ribbonDropDown");
    m_dropDown->setFrameShape(QFrame::NoFrame);
    m_dropDown->installEventFilter(this);
}

QFont RibbonPanel::CaptionFont() const {
    QFont smaller = font();
    smaller.setPointSizeF(smaller.pointSizeF() * kCaptionScale);
    return smaller;
}

int RibbonPanel::HeightFor(const QFontMetrics& metrics) {
    return kTopMargin + RibbonButton::BodyHeight(metrics) + kCaptionTop + metrics.height() + 2;
}

RibbonPanelWidths RibbonPanel::Widths() {
    const int caption = QFontMetrics(CaptionFont()).horizontalAdvance(m_panel.caption) + 4;
    const auto withCaption = [&](RibbonForm form) {
        return std::max(m_body->SizeFor(form).width(), caption) + 2 * kSideMargin;
    };
    return {withCaption(RibbonForm::Full), withCaption(RibbonForm::Compact),
            m_button->SizeFor(true).width() + 2 * kSideMargin};
}

void RibbonPanel::SetForm(RibbonForm form) {
    CloseDropDown();
    m_form = form;
    const bool asButton = form == RibbonForm::Button;
    m_body->setVisible(!asButton);
    m_button->setVisible(asButton);
    if (!asButton) m_body->Arrange(form);
    resizeEvent(nullptr);
    update();
}

void RibbonPanel::resizeEvent(QResizeEvent*) {
    if (m_form == RibbonForm::Button) {
        const QSize size = m_button->SizeFor(true);
        m_button->setGeometry((width() - size.width()) / 2, kTopMargin, size.width(), size.height());
    } else if (m_body->parentWidget() == this) {
        m_body->move((width() - m_body->width()) / 2, kTopMargin);
    }
}

void RibbonPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(theme::Now().border);
    painter.drawLine(width() - 1, kTopMargin + 2, width() - 1, height() - kTopMargin - 2);
    if (m_form == RibbonForm::Button) return;
    painter.setFont(CaptionFont());
    painter.setPen(theme::Now().muted);
    const int top = kTopMargin + RibbonButton::BodyHeight(fontMetrics()) + kCaptionTop;
    painter.drawText(QRect(0, top, width(), height() - top), Qt::AlignHCenter | Qt::AlignVCenter, m_panel.caption);
}

bool RibbonPanel::IsDroppedDown() const { return m_dropDown->isVisible(); }

void RibbonPanel::OpenDropDown() {
    if (m_form != RibbonForm::Button || IsDroppedDown()) return;
    m_body->setParent(m_dropDown);
    m_body->Arrange(RibbonForm::Full);
    m_body->move(kDropDownMargin, kDropDownMargin);
    m_body->show();
    m_dropDown->resize(m_body->width() + 2 * kDropDownMargin, m_body->height() + 2 * kDropDownMargin);
    QPoint place = mapToGlobal(QPoint(0, height()));
    const QRect available = screen()->availableGeometry();
    place.setX(std::max(std::min(place.x(), available.right() - m_dropDown->width()), available.left()));
    m_dropDown->move(place);
    m_dropDown->show();
}

void RibbonPanel::CloseDropDown() { m_dropDown->hide(); }

bool RibbonPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_dropDown && event->type() == QEvent::Hide && m_body->parentWidget() == m_dropDown) {
        m_body->hide();
        m_body->setParent(this);
        m_button->setDown(false);
    }
    if (watched == m_dropDown && event->type() == QEvent::Paint) {
        QPainter painter(m_dropDown);
        painter.setPen(theme::Now().border);
        painter.setBrush(theme::Now().surface);
        painter.drawRect(m_dropDown->rect().adjusted(0, 0, -1, -1));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

std::vector<RibbonBody::Target> RibbonPanel::Targets() const {
    if (m_form != RibbonForm::Button || IsDroppedDown()) return m_body->Targets();
    return {{m_panel.keyTip, m_button, [button = m_button] { button->click(); }}};
}
