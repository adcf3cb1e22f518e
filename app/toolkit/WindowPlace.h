#pragma once

#include <QList>
#include <QRect>
#include <QString>
#include <optional>

/// Where a window stood when it was closed, without its frame.
struct WindowPlace {
    QRect normal;  ///< as it is when it is not maximised, in screen pixels
    bool isMaximised = false;
};

QString ToText(const WindowPlace& place);
/// @return nothing for a text that ToText didn't write
std::optional<WindowPlace> WindowPlaceFrom(const QString& text);

/// Fits a rectangle to the screens of today: on the one that holds most of it, moved in and cut to its size; in the
/// middle of the first where it would hardly show on any.
/// @param screens what is free for windows on each; at least one
QRect FitToScreens(const QRect& normal, const QList<QRect>& screens);
