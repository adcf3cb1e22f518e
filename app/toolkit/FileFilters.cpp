#include "app/toolkit/FileFilters.h"

#include <QDir>
#include <QFileInfo>

QStringList ParseFileFilters(const QString& filters) {
    QStringList names;
    const QStringList parts = filters.split('|');
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString& name = parts[i];
        const QString pattern = QString(parts[i + 1]).replace(';', ' ');
        if (name.isEmpty() || pattern.isEmpty()) continue;
        const QString inParentheses = '(' + pattern + ')';
        names += name.endsWith(inParentheses) ? name : name + ' ' + inParentheses;
    }
    return names;
}

DialogStart ParseStartPath(const QString& startPath) {
    if (startPath.isEmpty()) return {};
    const QFileInfo info(QDir::cleanPath(startPath));
    const QString name = info.fileName();
    const bool isPattern = name.contains('*') || name.contains('?');
    const bool hasDirectory = startPath.contains('/') || startPath.contains(QDir::separator());
    return {hasDirectory ? info.path() : QString(), isPattern ? QString() : name};
}
