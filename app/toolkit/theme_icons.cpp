// Pictures that follow the set of colors: the SVG's few colors are exchanged before it is drawn.

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QRegularExpression>
#include <QSvgRenderer>

#include "app/toolkit/Theme.h"

namespace {

/// On a dark ground outlines become light, and what is filled with paper white becomes dark.
struct Exchange {
    const char* light;
    const char* dark;
};
constexpr Exchange kOnDark[] = {
    {"#3A4656", "#C6CFD9"}, {"#FFFFFF", "#2A3038"}, {"#1F63B0", "#7DB3F0"}, {"#2F6DB3", "#7DB3F0"},
    {"#B5563F", "#E58F75"}, {"#3F7D4E", "#74C088"}, {"#7A4B9A", "#C296E0"}, {"#D7E7F8", "#2F4A68"},
    {"#E9EDF3", "#3A444F"}, {"#E8E8E8", "#4A535D"}, {"#6E7F96", "#9FABB8"}, {"#8A97A8", "#9FABB8"},
};
constexpr double kDisabledOpacity = 0.38;

QByteArray onDark(QByteArray svg) {
    for (const Exchange& exchange : kOnDark) svg.replace(exchange.light, exchange.dark);
    return svg;
}

/// Each color as a gray of its lightness.
QByteArray inGray(const QByteArray& svg) {
    static const QRegularExpression kColor("#[0-9A-Fa-f]{6}");
    QString text = QString::fromLatin1(svg);
    auto found = kColor.globalMatch(text);
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        const int gray = qGray(QColor(match.captured()).rgb());
        text.replace(match.capturedStart(), match.capturedLength(), QColor(gray, gray, gray).name());
    }
    return text.toLatin1();
}

class ThemedIcon : public QIconEngine {
public:
    explicit ThemedIcon(QString path) : m_path(std::move(path)) {}

    QIconEngine* clone() const override { return new ThemedIcon(m_path); }
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        painter->drawPixmap(rect, pixmap(rect.size() * painter->device()->devicePixelRatioF(), mode, state));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        const bool isDark = theme::IsDark(), isGray = theme::GetChrome() == theme::Chrome::NeutralGray;
        const QString key = QString("%1 %2x%3 %4 %5%6")
                                .arg(m_path)
                                .arg(size.width())
                                .arg(size.height())
                                .arg(mode == QIcon::Disabled)
                                .arg(isDark)
                                .arg(isGray);
        QPixmap picture;
        if (QPixmapCache::find(key, &picture)) return picture;
        QFile file(m_path);
        if (!file.open(QIODevice::ReadOnly)) return {};
        const QByteArray svg = file.readAll();
        QSvgRenderer renderer(isDark ? onDark(svg) : isGray ? inGray(svg) : svg);
        picture = QPixmap(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        if (mode == QIcon::Disabled) painter.setOpacity(kDisabledOpacity);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        renderer.render(&painter, QRectF(QPointF(0, 0), size));
        painter.end();
        QPixmapCache::insert(key, picture);
        return picture;
    }

private:
    QString m_path;
};

}  // namespace

QIcon theme::Icon(const QString& path) { return path.isEmpty() ? QIcon() : QIcon(new ThemedIcon(path)); }
