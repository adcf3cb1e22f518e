#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPolygonF>
#include <QString>
#include <functional>
#include <string>

/// Pages that are filled from top to bottom, each with the title and its number at the foot. All lengths are points
/// (a 72th of an inch), from the upper left corner inside the margins.
class ReportSheet {
public:
    enum class Weight { Plain, Bold };
    struct Style {
        double size = 9;
        Weight weight = Weight::Plain;
        QColor color = Qt::black;
        int alignment = Qt::AlignLeft;
    };

    /// @param device the size of a page, without margins @param newPage begins the next one
    /// @param title at the foot of each page
    ReportSheet(QPaintDevice& device, std::function<void()> newPage, const QString& title);
    ~ReportSheet();

    bool IsOpen() const { return m_painter.isActive(); }
    double Width() const { return m_width; }
    double Y() const { return m_y; }
    void Skip(double height) { m_y += height; }
    /// Goes on on another page where less than `height` is left on this one. @return whether it did
    bool Need(double height);

    /// The height that a text takes in lines of at most `width`.
    double HeightOf(const QString& text, const Style& style, double width);
    /// Draws a text in lines of at most `width`, at Y() + `down`. @return its height
    double Text(const QString& text, const Style& style, double x, double width, double down = 0);
    /// One line, cut with an ellipsis where it is wider.
    void Line(const QString& text, const Style& style, double x, double width, double down = 0);

    void Fill(const QRectF& place, const QColor& color);  ///< from Y()
    void Frame(const QRectF& place, const QColor& color, double thickness = 0.6);
    void Polygon(const QPolygonF& points, const QColor& color, double thickness);  ///< in points, from Y()
    void Image(const QRectF& place, const QImage& image);
    void Plot(const QRectF& place, const std::string& svg);

private:
    QRectF ToDevice(const QRectF& place) const;
    QFont FontOf(const Style& style) const;
    void Foot();

    QPaintDevice& m_device;
    std::function<void()> m_newPage;
    QString m_title;
    QPainter m_painter;
    double m_scale = 1;  // device units a point
    double m_width = 0, m_height = 0;
    double m_y = 0;
    int m_page = 1;
};
