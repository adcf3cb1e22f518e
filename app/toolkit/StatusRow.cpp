#include "app/toolkit/StatusRow.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <algorithm>
#include <numeric>

namespace {

constexpr int kSidePadding = 8;

/// A label that cuts its text with an ellipsis where it is narrower.
class StatusText : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        QStyleOption option;
        option.initFrom(this);
        style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
        const QRect place = rect().adjusted(kSidePadding, 0, -kSidePadding, 0);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, place.width());
        style()->drawItemText(&painter, place, Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(), shown,
                              foregroundRole());
    }
};

}  // namespace

std::vector<int> ShareStatusRoom(std::span<const StatusPart> parts, int available) {
    std::vector<int> widths;
    for (const StatusPart& part : parts) widths.push_back(part.wanted);
    std::vector<std::size_t> order(parts.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return parts[a].givesWay < parts[b].givesWay; });
    int missing = std::accumulate(widths.begin(), widths.end(), 0) - available;
    for (const std::size_t i : order) {
        const int given = std::clamp(missing, 0, widths[i]);
        widths[i] -= given;
        missing -= given;
    }
    return widths;
}

QLabel* StatusRow::Add(bool onRight, int givesWay, const QString& widest) {
    auto* label = new StatusText(this);
    label->setTextFormat(Qt::PlainText);
    m_parts.push_back({label, onRight, givesWay, widest});
    return label;
}

int StatusRow::Wanted(const Part& part) const {
    const QFontMetrics metrics = part.label->fontMetrics();
    return 2 * kSidePadding +
           std::max(metrics.horizontalAdvance(part.label->text()), metrics.horizontalAdvance(part.widest)) + 1;
}

QSize StatusRow::sizeHint() const {
    int width = 0, height = 0;
    for (const Part& part : m_parts) {
        if (!part.label->isHidden()) width += Wanted(part);
        height = std::max(height, part.label->sizeHint().height());
    }
    return {width, height};
}

void StatusRow::Arrange() {
    std::vector<StatusPart> wants;
    std::vector<const Part*> shown;
    for (const Part& part : m_parts) {
        if (part.label->isHidden()) continue;
        wants.push_back({Wanted(part), part.givesWay});
        shown.push_back(&part);
    }
    const std::vector<int> widths = ShareStatusRoom(wants, width());
    int onRight = 0;
    for (std::size_t i = 0; i < shown.size(); ++i) onRight += shown[i]->onRight ? widths[i] : 0;
    int left = 0, right = width() - onRight;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        int& x = shown[i]->onRight ? right : left;
        shown[i]->label->setGeometry(x, 0, widths[i], height());
        shown[i]->label->setToolTip(widths[i] < wants[i].wanted ? shown[i]->label->text() : QString());
        x += widths[i];
    }
}

void StatusRow::resizeEvent(QResizeEvent*) { Arrange(); }

// A text that changes and a part that is shown post this.
bool StatusRow::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) Arrange();
    return QWidget::event(event);
}
