#include "app/view/CDockableImgPane.h"

CDockableImgPane::CDockableImgPane(const QString& title, QWidget* parent) : QDockWidget(title, parent) {
    setObjectName(QString(title).remove(' '));
}

void CDockableImgPane::SetChild(QWidget* child) { setWidget(child); }

QSize CDockableImgPane::sizeHint() const {
    constexpr int kFirstWidth = 800;
    return {kFirstWidth, QDockWidget::sizeHint().height()};
}
