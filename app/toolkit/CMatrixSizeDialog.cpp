#include "app/toolkit/CMatrixSizeDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QSpinBox>

namespace {

constexpr int kMostPatches = 100;

QSpinBox* patchCount(int value) {
    auto* box = new QSpinBox;
    box->setRange(1, kMostPatches);
    box->setValue(value);
    box->selectAll();
    return box;
}

}  // namespace

CMatrixSizeDialog::CMatrixSizeDialog(int width, int height, QWidget* parent)
    : QDialog(parent), m_width(patchCount(width)), m_height(patchCount(height)) {
    setWindowTitle("Matrix Size");
    auto* form = new QFormLayout(this);
    form->addRow("Width", m_width);
    form->addRow("Height", m_height);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

int CMatrixSizeDialog::Width() const { return m_width->value(); }
int CMatrixSizeDialog::Height() const { return m_height->value(); }
