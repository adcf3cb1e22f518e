#pragma once

#include <QFont>
#include <QString>
#include <cstdint>
#include <vector>

#include "app/toolkit/ViewRect.h"
#include "foundation/CTivVector.h"

class QPainter;

/// A list of simple graphics in the coordinates of an image or of a window, drawn list by list and in each list in the
/// order of insertion. Colors are 0x00BBGGRR; a color of -1 means the default color, a fill of -1 a hollow shape.
class Overlay {
public:
    static constexpr std::int32_t kDefaultColor = -1;
    static constexpr std::int32_t kPatchColor = 0x33FF00;  ///< of detected patches: 0x00BBGGRR
    static constexpr std::int32_t kHollow = -1;
    static constexpr int kTextAlignment = 4;  ///< what a text is given

    struct Matrix {
        CTivVector values;  ///< rows x columns, row by row
        ViewPoint position;
        int rows;
        int columns;
        QFont font;
    };
    struct Mark {
        int x, y;
        std::int32_t color;
    };
    struct Cross {
        int x, y;
        std::int32_t color;
        int halfSize;
    };
    struct Polyline {
        CTivVector points;  ///< FormatPoint
        std::int32_t color;
    };
    struct Line {
        int x1, y1, x2, y2;
        std::int32_t color;
    };
    struct Circle {
        float x, y, radius;
        std::int32_t color, fill;
    };
    struct Rectangle {
        int x, y, width, height;
        std::int32_t color, fill;
    };
    struct Text {
        QString text;
        int alignment;
        int x, y;
        std::int32_t color, fill;
    };

    Overlay();  ///< with the font "System" at 12 points

    void AddMatrix(const CTivVector& values, ViewPoint position, int rows, int columns, const QFont& font);
    void AddMark(int x, int y, std::int32_t color = kDefaultColor);
    void AddCross(int x, int y, std::int32_t color, int halfSize);
    void AddPolyline(const CTivVector& points, std::int32_t color = kDefaultColor);
    void AddLine(int x1, int y1, int x2, int y2, std::int32_t color = kDefaultColor);
    void AddCircle(float x, float y, float radius, std::int32_t color = kDefaultColor, std::int32_t fill = kHollow);
    void AddRectangle(int x, int y, int width, int height, std::int32_t color = kDefaultColor,
                      std::int32_t fill = kHollow);
    /// The text's upper left corner comes to (x, y), whatever the alignment code says.
    void AddText(const QString& text, int x, int y, std::int32_t color = kDefaultColor, std::int32_t fill = kHollow);
    void ClearCrosses();
    void Clear();  ///< empties all lists; color and font stay
    bool IsEmpty() const;

    void SetFont(const QFont& font) { m_font = font; }

    /// Draws with solid pens of one pixel. Positions are divided by the scale and added to the offset.
    void Draw(QPainter& painter, ViewPoint offset, float scale) const;

    const std::vector<Matrix>& Matrices() const { return m_matrices; }
    const std::vector<Mark>& Marks() const { return m_marks; }
    const std::vector<Cross>& Crosses() const { return m_crosses; }
    const std::vector<Polyline>& Polylines() const { return m_polylines; }
    const std::vector<Line>& Lines() const { return m_lines; }
    const std::vector<Circle>& Circles() const { return m_circles; }
    const std::vector<Rectangle>& Rectangles() const { return m_rectangles; }
    const std::vector<Text>& Texts() const { return m_texts; }

private:
    void UsePen(QPainter& painter, std::int32_t color, std::int32_t fill) const;
    void DrawMatrices(QPainter& painter, ViewPoint offset, float scale) const;

    std::vector<Matrix> m_matrices;
    std::vector<Mark> m_marks;
    std::vector<Cross> m_crosses;
    std::vector<Polyline> m_polylines;
    std::vector<Line> m_lines;
    std::vector<Circle> m_circles;
    std::vector<Rectangle> m_rectangles;
    std::vector<Text> m_texts;
    std::int32_t m_defaultColor = 0xFF0000;  // blue
    QFont m_font;
};
