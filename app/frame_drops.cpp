// Files dropped on the main window.

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include "app/CMainFrame.h"

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

// Of several files the first counts. It is opened once the drop is over: a dialog would keep the other program waiting.
void CMainFrame::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.constFirst().isLocalFile()) return;
    event->acceptProposedAction();
    const auto open = [this, path = urls.constFirst().toLocalFile()] { OpenDroppedFile(path); };
    QMetaObject::invokeMethod(this, open, Qt::QueuedConnection);
}
