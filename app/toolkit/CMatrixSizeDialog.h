#pragma once

#include <QDialog>

class QSpinBox;

/// Asks for the chart's size in patches. Neither side can be 0.
class CMatrixSizeDialog : public QDialog {
    Q_OBJECT
public:
    CMatrixSizeDialog(int width, int height, QWidget* parent);
    int Width() const;
    int Height() const;

private:
    QSpinBox* m_width;
    QSpinBox* m_height;
};
