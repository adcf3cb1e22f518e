// Files dropped on the main window.

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include "app/CMainFrame.h"

namespace {

/// What the program that the file comes from is told to do: never to take the file away, as a move would.
/// @return Qt::IgnoreAction where it offers nothing else, or no file of this machine comes first
Qt::DropAction actionFor(const QDropEvent& event) {
    const QList<QUrl> urls = event.mimeData()->urls();
    if (urls.isEmpty() || !urls.constFirst().isLocalFile()) return Qt::IgnoreAction;
    for (const Qt::DropAction action : {Qt::CopyAction, Qt::LinkAction}) {
        if (event.possibleActions() & action) return action;
    }
    return Qt::IgnoreAction;
}

bool accept(QDropEvent& event) {
    const Qt::DropAction action = actionFor(event);
    event.setDropAction(action);
    event.setAccepted(action != Qt::IgnoreAction);
    return event.isAccepted();
}

}  // namespace

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) { accept(*event); }

void CMainFrame::dragMoveEvent(QDragMoveEvent* event) { accept(*event); }

// A pane that floats is a window of its own: what is dropped on it is dropped on the Studio all the same.
bool CMainFrame::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    const bool isDrag = type == QEvent::DragEnter || type == QEvent::DragMove || type == QEvent::Drop;
    return isDrag ? QMainWindow::event(event) : QMainWindow::eventFilter(watched, event);
}

// Of several files the first counts. It is opened once the drop is over: a dialog would keep the other program waiting.
void CMainFrame::dropEvent(QDropEvent* event) {
    if (!accept(*event)) return;
    const auto open = [this, path = event->mimeData()->urls().constFirst().toLocalFile()] { OpenDroppedFile(path); };
    QMetaObject::invokeMethod(this, open, Qt::QueuedConnection);
}
