#include "app/view/Overlay.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPolygonF>

namespace {

constexpr int kMarkRadius = 5;

QColor fromColorWord(std::int32_t word) { return QColor(word & 0xFF, word >> 8 & 0xFF, word >> 16 & 0xFF); }

/// Puts overlay coordinates where they are drawn.
struct Placing {
    ViewPoint offset;
    float scale;
    double X(double x) const { return offset.x + x / scale; }
    double Y(double y) const { return offset.y + y / scale; }
    QPointF At(double x, double y) const { return {X(x), Y(y)}; }
};

}  // namespace

Overlay::Overlay() : m_font("System", 12) {}

void Overlay::AddMatrix(const CTivVector& values, ViewPoint position, int rows, int columns, const QFont& font) {
    m_matrices.push_back({values, position, rows, columns, font});
}
void Overlay::AddMark(int x, int y, std::int32_t color) { m_marks.push_back({x, y, color}); }
void Overlay::AddCross(int x, int y, std::int32_t color, int halfSize) { m_crosses.push_back({x, y, color, halfSize}); }
void Overlay::AddPolyline(const CTivVector& points, std::int32_t color) { m_polylines.push_back({points, color}); }
void Overlay::AddLine(int x1, int y1, int x2, int y2, std::int32_t color) {
    m_lines.push_back({x1, y1, x2, y2, color});
}
void Overlay::AddCircle(float x, float y, float radius, std::int32_t color, std::int32_t fill) {
    m_circles.push_back({x, y, radius, color, fill});
}
void Overlay::AddRectangle(int x, int y, int width, int height, std::int32_t color, std::int32_t fill) {
    m_rectangles.push_back({x, y, width, height, color, fill});
}
void Overlay::AddText(const QString& text, int x, int y, std::int32_t color, std::int32_t fill) {
    m_texts.push_back({text, kTextAlignment, x, y, color, fill});
}

void Overlay::ClearCrosses() { m_crosses.clear(); }

void Overlay::Clear() {
    m_matrices.clear();
    m_marks.clear();
    m_crosses.clear();
    m_polylines.clear();
    m_lines.clear();
    m_circles.clear();
    m_rectangles.clear();
    m_texts.clear();
}

bool Overlay::IsEmpty() const {
    return m_matrices.empty() && m_marks.empty() && m_crosses.empty() && m_polylines.empty() && m_lines.empty() &&
           m_circles.empty() && m_rectangles.empty() && m_texts.empty();
}

void Overlay::UsePen(QPainter& painter, std::int32_t color, std::int32_t fill) const {
    painter.setPen(QPen(fromColorWord(color == kDefaultColor ? m_defaultColor : color), 1));
    painter.setBrush(fill == kHollow ? QBrush(Qt::NoBrush) : QBrush(fromColorWord(fill)));
}

void Overlay::Draw(QPainter& painter, ViewPoint offset, float scale) const {
    const Placing placing{offset, scale};
    painter.setFont(m_font);
    DrawMatrices(painter, offset, scale);
    for (const Mark& mark : m_marks) {
        UsePen(painter, mark.color, kHollow);
        painter.drawEllipse(placing.At(mark.x, mark.y), kMarkRadius, kMarkRadius);
    }
    for (const Cross& cross : m_crosses) {
        UsePen(painter, cross.color, kHollow);
        const QPointF at = placing.At(cross.x, cross.y), across(cross.halfSize, 0), down(0, cross.halfSize);
        painter.drawLine(at - across, at + across);
        painter.drawLine(at - down, at + down);
    }
    for (const Polyline& polyline : m_polylines) {
        UsePen(painter, polyline.color, kHollow);
        QPolygonF points;
        for (int i = 0; i < polyline.points.GetSize(); ++i) {
            const CTivData::Point point = polyline.points.GetData(i).AsPoint();
            points.append(placing.At(point.x, point.y));
        }
        painter.drawPolyline(points);
    }
    for (const Line& line : m_lines) {
        UsePen(painter, line.color, kHollow);
        painter.drawLine(placing.At(line.x1, line.y1), placing.At(line.x2, line.y2));
    }
    for (const Circle& circle : m_circles) {
        UsePen(painter, circle.color, circle.fill);
        painter.drawEllipse(placing.At(circle.x, circle.y), circle.radius / scale, circle.radius / scale);
    }
    for (const Rectangle& rectangle : m_rectangles) {
        UsePen(painter, rectangle.color, rectangle.fill);
        // The outline belongs to the rectangle: width x height pixels with it.
        painter.drawRect(
            QRectF(placing.At(rectangle.x, rectangle.y),
                   placing.At(rectangle.x + rectangle.width, rectangle.y + rectangle.height) - QPointF(1, 1)));
    }
    for (const Text& text : m_texts) {
        UsePen(painter, text.color, kHollow);
        const QRectF box = painter.boundingRect(QRectF(placing.At(text.x, text.y), QSizeF()), 0, text.text);
        if (text.fill != kHollow) painter.fillRect(box, fromColorWord(text.fill));
        painter.drawText(box, 0, text.text);
    }
}

void Overlay::DrawMatrices(QPainter& painter, ViewPoint offset, float scale) const {
    const Placing placing{offset, scale};
    for (const Matrix& matrix : m_matrices) {
        UsePen(painter, kDefaultColor, kHollow);
        painter.setFont(matrix.font);
        const QFontMetrics metrics(matrix.font);
        const int cellWidth = metrics.horizontalAdvance("0.0000") + 10, lineHeight = metrics.height();
        for (int i = 0; i < matrix.rows * matrix.columns && i < matrix.values.GetSize(); ++i) {
            const QPointF corner = placing.At(matrix.position.x, matrix.position.y) +
                                   QPointF(i % matrix.columns * cellWidth, i / matrix.columns * lineHeight);
            const QString value = QString::asprintf(" %.4f ", matrix.values.GetData(i).AsDouble());
            painter.drawText(corner + QPointF(0, metrics.ascent()), value);
        }
    }
    painter.setFont(m_font);
}
