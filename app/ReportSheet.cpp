#include "app/ReportSheet.h"

#include <QImage>
#include <QSvgRenderer>
#include <QTextOption>
#include <utility>

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kFoot = 22;  // points kept free for the foot

// Between words; a word that is wider than the line is broken.
QTextOption wrapped(int alignment) {
    QTextOption option{Qt::Alignment(alignment)};
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return option;
}

}  // namespace

ReportSheet::ReportSheet(QPaintDevice& device, std::function<void()> newPage, const QString& title)
    : m_device(device), m_newPage(std::move(newPage)), m_title(title) {
    if (!m_painter.begin(&device)) return;
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setRenderHint(QPainter::SmoothPixmapTransform);
    m_scale = device.logicalDpiY() / kPointsPerInch;
    m_width = device.width() / m_scale;
    m_height = device.height() / m_scale - kFoot;
}

ReportSheet::~ReportSheet() {
    if (IsOpen()) Foot();
}

bool ReportSheet::Need(double height) {
    if (m_y + height <= m_height || m_y == 0) return false;
    Foot();
    m_newPage();
    ++m_page;
    m_y = 0;
    return true;
}

void ReportSheet::Foot() {
    const Style style{.size = 7.5, .color = QColor(0x66, 0x6b, 0x73)};
    m_y = m_height + kFoot - 10;
    Line(m_title, style, 0, m_width - 60);
    Line(QString("Page %1").arg(m_page), {style.size, style.weight, style.color, Qt::AlignRight}, m_width - 60, 60);
}

QRectF ReportSheet::ToDevice(const QRectF& place) const {
    return {place.x() * m_scale, (place.y() + m_y) * m_scale, place.width() * m_scale, place.height() * m_scale};
}

QFont ReportSheet::FontOf(const Style& style) const {
    QFont font;
    font.setPointSizeF(style.size);
    font.setBold(style.weight == Weight::Bold);
    return font;
}

double ReportSheet::HeightOf(const QString& text, const Style& style, double width) {
    m_painter.setFont(FontOf(style));
    return m_painter.boundingRect(QRectF(0, 0, width * m_scale, 1e6), text, wrapped(style.alignment)).height() /
           m_scale;
}

double ReportSheet::Text(const QString& text, const Style& style, double x, double width, double down) {
    const double height = HeightOf(text, style, width);
    m_painter.setPen(style.color);
    m_painter.drawText(ToDevice({x, down, width, height + 1}), text, wrapped(style.alignment));
    return height;
}

void ReportSheet::Line(const QString& text, const Style& style, double x, double width, double down) {
    const QFont font = FontOf(style);
    const QFontMetricsF metrics(font, &m_device);
    m_painter.setFont(font);
    m_painter.setPen(style.color);
    m_painter.drawText(ToDevice({x, down, width, metrics.height() / m_scale + 1}), Qt::TextSingleLine | style.alignment,
                       metrics.elidedText(text, Qt::ElideRight, width * m_scale));
}

void ReportSheet::Fill(const QRectF& place, const QColor& color) { m_painter.fillRect(ToDevice(place), color); }

void ReportSheet::Frame(const QRectF& place, const QColor& color, double thickness) {
    m_painter.setPen(QPen(color, thickness * m_scale));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawRect(ToDevice(place));
}

void ReportSheet::Polygon(const QPolygonF& points, const QColor& color, double thickness) {
    QPolygonF drawn;
    for (const QPointF& point : points) drawn << QPointF(point.x() * m_scale, (point.y() + m_y) * m_scale);
    m_painter.setPen(QPen(color, thickness * m_scale));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawPolygon(drawn);
}

void ReportSheet::Image(const QRectF& place, const QImage& image) { m_painter.drawImage(ToDevice(place), image); }

void ReportSheet::Plot(const QRectF& place, const std::string& svg) {
    m_painter.setFont(FontOf({}));  // the plot's words take over what they don't say
    QSvgRenderer(QByteArray::fromStdString(svg)).render(&m_painter, ToDevice(place));
}
