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
      panel_(panel),
      body_(new RibbonBody(panel, actions, this)),
      dropDown_(new QFrame(this, Qt::Popup)) {
    auto* open = new QAction(theme::Icon(panel.picture), panel.caption, this);
    open->setToolTip(panel.caption);
    button_ = new RibbonButton(open, this);
    button_->SetArrow(true);
    button_->hide();
    connect(open, &QAction::triggered, this, &RibbonPanel::OpenDropDown);
    connect(body_, &RibbonBody::commandDone, this, &RibbonPanel::CloseDropDown);
    dropDown_->setObjectName("ribbonDropDown");
    dropDown_->setFrameShape(QFrame::NoFrame);
    dropDown_->installEventFilter(this);
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
    const int caption = QFontMetrics(CaptionFont()).horizontalAdvance(panel_.caption) + 4;
    const auto withCaption = [&](RibbonForm form) {
        return std::max(body_->SizeFor(form).width(), caption) + 2 * kSideMargin;
    };
    return {withCaption(RibbonForm::Full), withCaption(RibbonForm::Compact),
            button_->SizeFor(true).width() + 2 * kSideMargin};
}

void RibbonPanel::SetForm(RibbonForm form) {
    CloseDropDown();
    form_ = form;
    const bool asButton = form == RibbonForm::Button;
    body_->setVisible(!asButton);
    button_->setVisible(asButton);
    if (!asButton) body_->Arrange(form);
    resizeEvent(nullptr);
    update();
}

void RibbonPanel::resizeEvent(QResizeEvent*) {
    if (form_ == RibbonForm::Button) {
        const QSize size = button_->SizeFor(true);
        button_->setGeometry((width() - size.width()) / 2, kTopMargin, size.width(), size.height());
    } else if (body_->parentWidget() == this) {
        body_->move((width() - body_->width()) / 2, kTopMargin);
    }
}

void RibbonPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(theme::Now().border);
    painter.drawLine(width() - 1, kTopMargin + 2, width() - 1, height() - kTopMargin - 2);
    if (form_ == RibbonForm::Button) return;
    painter.setFont(CaptionFont());
    painter.setPen(theme::Now().muted);
    const int top = kTopMargin + RibbonButton::BodyHeight(fontMetrics()) + kCaptionTop;
    painter.drawText(QRect(0, top, width(), height() - top), Qt::AlignHCenter | Qt::AlignVCenter, panel_.caption);
}

bool RibbonPanel::IsDroppedDown() const { return dropDown_->isVisible(); }

void RibbonPanel::OpenDropDown() {
    if (form_ != RibbonForm::Button || IsDroppedDown()) return;
    body_->setParent(dropDown_);
    body_->Arrange(RibbonForm::Full);
    body_->move(kDropDownMargin, kDropDownMargin);
    body_->show();
    dropDown_->resize(body_->width() + 2 * kDropDownMargin, body_->height() + 2 * kDropDownMargin);
    QPoint place = mapToGlobal(QPoint(0, height()));
    const QRect available = screen()->availableGeometry();
    place.setX(std::max(std::min(place.x(), available.right() - dropDown_->width()), available.left()));
    dropDown_->move(place);
    dropDown_->show();
}

void RibbonPanel::CloseDropDown() { dropDown_->hide(); }

bool RibbonPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == dropDown_ && event->type() == QEvent::Hide && body_->parentWidget() == dropDown_) {
        body_->hide();
        body_->setParent(this);
        button_->setDown(false);
    }
    if (watched == dropDown_ && event->type() == QEvent::Paint) {
        QPainter painter(dropDown_);
        painter.setPen(theme::Now().border);
        painter.setBrush(theme::Now().surface);
        painter.drawRect(dropDown_->rect().adjusted(0, 0, -1, -1));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

std::vector<RibbonBody::Target> RibbonPanel::Targets() const {
    if (form_ != RibbonForm::Button || IsDroppedDown()) return body_->Targets();
    return {{panel_.keyTip, button_, [button = button_] { button->click(); }}};
}
