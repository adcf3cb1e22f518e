#include "app/CAboutDlg.h"

#include <QIcon>
#include <QLabel>
#include <QPushButton>

#include "acquisition/zvn/ZvnManager.h"

namespace {

// Places are told in dialog units: a quarter of the font's average width by an eighth of its height.
class DialogUnits {
public:
    explicit DialogUnits(const QFontMetrics& metrics)
        : m_width(metrics.horizontalAdvance("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz") / 52.0),
          m_height(metrics.height()) {}
    QPoint At(int x, int y) const { return {qRound(x * m_width / 4), qRound(y * m_height / 8)}; }

private:
    double m_width;
    double m_height;
};

constexpr int kIconPixels = 32;

}  // namespace

// Version and copyright are those of the acquisition layer, as the platform tells them here.
CAboutDlg::CAboutDlg(QWidget* parent) : QDialog(parent) {
    setWindowTitle("About Tonewright Tool");
    QPalette white = palette();
    white.setColor(QPalette::Window, Qt::white);  // whatever the colors of the other windows
    white.setColor(QPalette::WindowText, Qt::black);
    setPalette(white);

    const DialogUnits units(fontMetrics());
    const auto addText = [&](int x, int y, const QString& text) {
        auto* label = new QLabel(text, this);
        label->setTextFormat(Qt::PlainText);
        label->move(units.At(x, y));
        return label;
    };
    auto* picture = addText(18, 18, {});
    picture->setPixmap(QIcon(":/icons/tonewright.svg").pixmap(kIconPixels));
    addText(48, 18, "Zelvan Tonewright Tool");
    addText(48, 30, "Version : ");
    addText(84, 30, ZvnManager::GetVersion())->setObjectName("1002");
    addText(48, 42, ZvnManager::GetCopyright())->setObjectName("1003");
    auto* closeButton = new QPushButton("Close", this);
    closeButton->setDefault(true);
    closeButton->move(units.At(150, 60));
    closeButton->resize(closeButton->sizeHint().expandedTo(QSize(units.At(50, 14).x(), 0)));
    connect(closeButton, &QPushButton::clicked, this, &QDialog::accept);
    const QPoint size = units.At(213, 81);
    setFixedSize(qMax(size.x(), closeButton->geometry().right() + 16),
                 qMax(size.y(), closeButton->geometry().bottom() + 12));
}
