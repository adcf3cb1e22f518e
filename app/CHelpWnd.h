#pragma once

#include <QDialog>

/// The help that the program carries with it, for where no help file is installed.
class CHelpWnd : public QDialog {
    Q_OBJECT
public:
    explicit CHelpWnd(QWidget* parent);
};
