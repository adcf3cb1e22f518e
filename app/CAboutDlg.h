#pragma once

#include <QDialog>

/// The about box. Version and copyright are those of the acquisition platform's library, not of this program.
class CAboutDlg : public QDialog {
    Q_OBJECT
public:
    explicit CAboutDlg(QWidget* parent);
};
