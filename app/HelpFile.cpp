#include "app/HelpFile.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace {

QString helpFile;

}  // namespace

void SetHelpRoot(const QString& root) {
    const QChar separator = QDir::separator();
    helpFile = root.isEmpty() ? QString() : root + separator + "Help" + separator + "ZelvanColorTool.chm";
}

QString HelpFilePath() {
    if (!helpFile.isEmpty()) return helpFile;
    const QFileInfo program(QCoreApplication::applicationFilePath());
    return program.path() + QDir::separator() + program.completeBaseName() + ".chm";
}

bool OpenHelpFile() {
    const QString path = HelpFilePath();
    return QFileInfo::exists(path) && QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}
