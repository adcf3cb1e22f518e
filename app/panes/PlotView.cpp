#include "app/panes/PlotView.h"

#include <QPainter>
#include <QSvgRenderer>

#include "app/toolkit/Theme.h"
#include "report/plots.h"

using namespace tonewright;

PlotView::PlotView(QWidget* parent) : QWidget(parent), m_renderer(new QSvgRenderer(this)) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

PlotView::~PlotView() = default;

void PlotView::SetPlot(std::string plot) {
    m_plot = std::move(plot);
    m_rendered = 0;
    update();
}

QSize PlotView::sizeHint() const { return {kPlotWidth * 2 / 3, heightForWidth(kPlotWidth * 2 / 3)}; }

int PlotView::heightForWidth(int width) const { return width * kPlotHeight / kPlotWidth; }

void PlotView::paintEvent(QPaintEvent*) {
    if (m_plot.empty()) return;
    const theme::Colors& now = theme::Now();
    if (m_rendered != now.text.rgba()) {
        const auto css = [](const QColor& color) { return color.name().toStdString(); };
        const PlotColors colors = {css(now.text),   css(now.muted), css(now.line),
                                   css(now.strong), css(now.lit),   "#d03a30"};
        m_renderer->load(QByteArray::fromStdString(StandalonePlot(m_plot, colors)));
        m_rendered = now.text.rgba();
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QSizeF size(kPlotWidth, kPlotHeight);
    size.scale(this->size(), Qt::KeepAspectRatio);
    m_renderer->render(&painter, QRectF({(width() - size.width()) / 2, 0}, size));
}
