// Paints an SVG picture into a square PNG: render_icon PICTURE.svg PIXELS PICTURE.png
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);  // for texts in pictures
    const QStringList words = QGuiApplication::arguments();
    const int size = words.size() == 4 ? words[2].toInt() : 0;
    if (size < 1) return 2;
    QSvgRenderer picture(words[1]);
    if (!picture.isValid()) return 1;
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    picture.render(&painter);
    painter.end();
    return image.save(words[3]) ? 0 : 1;
}
