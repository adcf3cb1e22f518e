#include "app/toolkit/WindowPlace.h"

#include <QStringList>
#include <algorithm>

namespace {

constexpr int kLeastShown = 80;  // pixels each way that a hand needs to find a window

int areaOf(const QRect& rect) { return rect.isEmpty() ? 0 : rect.width() * rect.height(); }

}  // namespace

QString ToText(const WindowPlace& place) {
    const QRect& r = place.normal;
    return QString("%1 %2 %3 %4 %5").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height()).arg(place.isMaximised);
}

std::optional<WindowPlace> WindowPlaceFrom(const QString& text) {
    const QStringList fields = text.split(' ');
    if (fields.size() != 5) return std::nullopt;
    int numbers[5] = {};
    for (int i = 0; i < 5; ++i) {
        bool isNumber = false;
        numbers[i] = fields[i].toInt(&isNumber);
        if (!isNumber || std::abs(numbers[i]) > 100'000) return std::nullopt;
    }
    const QRect normal(numbers[0], numbers[1], numbers[2], numbers[3]);
    if (normal.isEmpty()) return std::nullopt;
    return WindowPlace{normal, numbers[4] != 0};
}

QRect FitToScreens(const QRect& normal, const QList<QRect>& screens) {
    const QRect* best = &screens.constFirst();
    for (const QRect& screen : screens) {
        if (areaOf(screen & normal) > areaOf(*best & normal)) best = &screen;
    }
    const QRect shown = *best & normal;
    QRect fitted(normal.topLeft(), normal.size().boundedTo(best->size()));
    if (shown.width() < kLeastShown || shown.height() < kLeastShown) {
        fitted.moveCenter(best->center());
        return fitted;
    }
    fitted.moveLeft(std::clamp(fitted.left(), best->left(), best->left() + best->width() - fitted.width()));
    fitted.moveTop(std::clamp(fitted.top(), best->top(), best->top() + best->height() - fitted.height()));
    return fitted;
}
