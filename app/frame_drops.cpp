// Files dropped on the main window.

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include "app/CMainFrame.h"
#include "app/GetEngine.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "calibration/CTivTonewrightDC.h"

namespace {

// Somewhere behind the first character, in just these letters: "a.bmp.txt" counts, deliberately.
bool holds(const QString& path, const char* text) { return path.indexOf(QLatin1String(text)) > 0; }

}  // namespace

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

// Of several files the first counts. It is opened once the drop is over: a dialog would keep the other program waiting.
void CMainFrame::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.constFirst().isLocalFile()) return;
    event->acceptProposedAction();
    const auto open = [this, path = urls.constFirst().toLocalFile()] {
        OpenDroppedFile(path);
        UpdateCommands();
    };
    QMetaObject::invokeMethod(this, open, Qt::QueuedConnection);
}

// Unlike the command, a drop also loads into the calibrated viewer where that is the selected one.
void CMainFrame::OpenDroppedFile(const QString& path) {
    if (holds(path, ".bmp") || holds(path, ".tif") || holds(path, ".zvk")) {
        LoadImageFile(path);
    } else if (holds(path, ".twkp")) {
        LoadParameterFile(path);
    } else if (holds(path, ".csv") && GetEngine().GetIlluminant() == kUserIlluminant) {
        m_spectrumWnd->LoadValuesFrom(path);
    } else {
        LogMessage("File signature not recognized.", LogWarning);
    }
}
