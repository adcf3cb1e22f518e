#include "app/view/overlay_mapping.h"

#include <optional>

#include "app/view/CDemoUtil.h"

namespace {

std::optional<ViewPoint> mapped(const ViewGeometry& geometry, int x, int y) {
    ViewPoint out;
    return geometry.ImageToClient({x, y}, &out) ? std::optional(out) : std::nullopt;
}

void mapPolyline(const Overlay::Polyline& polyline, const ViewGeometry& geometry, Overlay& out) {
    const int count = polyline.points.GetSize();
    CTivVector points(count, CTivData::FormatPoint, nullptr, true);
    for (int i = 0; i < count; ++i) {
        const CTivData::Point point = polyline.points.GetData(i).AsPoint();
        const auto at = mapped(geometry, point.x, point.y);
        if (!at) return;
        static_cast<CTivData::Point*>(points.GetDataPointer())[i] = {at->x, at->y};
    }
    if (count > 0) out.AddPolyline(points, polyline.color);
}

void mapLine(const Overlay::Line& line, const ViewGeometry& geometry, Overlay& out) {
    const ViewRect& source = geometry.GetSource();
    ViewPoint first{line.x1, line.y1}, second{line.x2, line.y2};
    ViewPoint cutA, cutB;
    int count = 0;
    if (CDemoUtil::ClipSegmentToRect(line.x1, line.y1, line.x2, line.y2, source, &cutA, &cutB, &count)) {
        if (source.Grown(1).Holds(first)) {
            second = cutA;
        } else if (source.Grown(1).Holds(second)) {
            first = cutA;
        } else if (count > 1) {
            first = cutA;
            second = cutB;
        }
    }
    const auto from = mapped(geometry, first.x, first.y), to = mapped(geometry, second.x, second.y);
    if (from && to) out.AddLine(from->x, from->y, to->x, to->y, line.color);
}

}  // namespace

Overlay MapToClient(const Overlay& inImage, const ViewGeometry& geometry) {
    Overlay out;
    const auto at = [&](int x, int y) { return mapped(geometry, x, y); };
    for (const auto& matrix : inImage.Matrices()) {
        const auto p = at(matrix.position.x, matrix.position.y);
        if (p) out.AddMatrix(matrix.values, *p, matrix.rows, matrix.columns, matrix.font);
    }
    for (const auto& mark : inImage.Marks()) {
        if (const auto p = at(mark.x, mark.y)) out.AddMark(p->x, p->y, mark.color);
    }
    for (const auto& cross : inImage.Crosses()) {
        if (const auto p = at(cross.x, cross.y)) out.AddCross(p->x, p->y, cross.color, cross.halfSize);
    }
    for (const auto& polyline : inImage.Polylines()) mapPolyline(polyline, geometry, out);
    for (const auto& line : inImage.Lines()) mapLine(line, geometry, out);
    for (const auto& circle : inImage.Circles()) {
        const auto p = at(CTivData::Float(circle.x).AsInt(), CTivData::Float(circle.y).AsInt());
        if (!p) continue;
        out.AddCircle(static_cast<float>(p->x), static_cast<float>(p->y), circle.radius * geometry.GetZoom(),
                      circle.color, circle.fill);
    }
    for (const auto& rectangle : inImage.Rectangles()) {
        const auto corner = at(rectangle.x, rectangle.y);
        const auto opposite = at(rectangle.x + rectangle.width, rectangle.y + rectangle.height);
        if (!corner || !opposite) continue;
        out.AddRectangle(corner->x, corner->y, opposite->x - corner->x, opposite->y - corner->y, rectangle.color,
                         rectangle.fill);
    }
    for (const auto& text : inImage.Texts()) {
        if (const auto p = at(text.x, text.y)) out.AddText(text.text, p->x, p->y, text.color, text.fill);
    }
    return out;
}
