#include "app/CHelpWnd.h"

#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

CHelpWnd::CHelpWnd(QWidget* parent) : QDialog(parent) {
    setWindowTitle("Tonewright Help");
    setAttribute(Qt::WA_DeleteOnClose);
    auto* page = new QTextBrowser(this);
    page->setSource(QUrl("qrc:/help/help.html"));
    page->setFrameShape(QFrame::NoFrame);
    page->setStyleSheet("background: white; color: black");  // paper, whatever the colors of the other windows
    page->document()->setDocumentMargin(16);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(page);
    resize(680, 620);
}
