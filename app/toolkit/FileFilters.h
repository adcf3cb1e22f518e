#pragma once

#include <QString>
#include <QStringList>

/// Turns "name|pattern|name|pattern||" into the name filters of a file dialog. A name that already says its pattern
/// stays as it is, any other gets it in parentheses. A name without a pattern behind it is dropped.
QStringList ParseFileFilters(const QString& filters);

/// Where a file dialog opens.
struct DialogStart {
    QString directory;  ///< empty: where the last dialog was
    QString fileName;   ///< empty where the path ends in a pattern
};

/// Splits a start path "directory/name" or "directory/*.ext". Doubled separators are accepted.
DialogStart ParseStartPath(const QString& startPath);
