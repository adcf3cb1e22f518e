#pragma once

#include <QWidget>
#include <string>

class QSvgRenderer;

/// A plot of the report, painted in the program's colors.
class PlotView : public QWidget {
    Q_OBJECT
public:
    explicit PlotView(QWidget* parent);
    ~PlotView() override;

    /// @param plot an SVG element of report/plots.h; empty: nothing is shown
    void SetPlot(std::string plot);

    QSize sizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::string m_plot;
    QSvgRenderer* m_renderer;
    QRgb m_rendered = 0;  ///< the text color that the renderer's picture has
};
