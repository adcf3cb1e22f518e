#pragma once

#include <QDockWidget>
#include <array>

#include "app/panes/CListCtrlEx.h"
#include "app/workflow/UserValues.h"
#include "chart/PatchDetector.h"
#include "foundation/CTivVector.h"

class QLabel;
class QPushButton;

/// The one-row list of the white reference: a hidden first column, then X, Y and Z.
class CIlluminantValue : public CListCtrlEx {
    Q_OBJECT
public:
    explicit CIlluminantValue(QWidget* parent);
    void Reset();  ///< three cells of "0"
};

/// The list of patches: a number from 1, then X, Y and Z.
class CSpectrumValuesListCtrl : public CListCtrlEx {
    Q_OBJECT
public:
    explicit CSpectrumValuesListCtrl(QWidget* parent);
    /// Adds rows of zeros or removes rows from the end; one row always stays.
    void Resize(int rows);
    void Reset(int rows);  ///< all of them zeros
};

/// The pane "User Values": XYZ of the chart's patches and of the white reference under the user's own light. It also
/// holds the chart's size in patches, which the detecting viewers read.
class CSpectrumValuesWnd : public QDockWidget, public UserValues {
    Q_OBJECT
public:
    explicit CSpectrumValuesWnd(QWidget* parent = nullptr);

    /// @return FormatColorFloat, one element a row: X, Y, Z as the cells read, and 0
    CTivVector GetSpectrumValues() const override;
    std::array<float, 4> GetIlluminantValue() const override;
    void ShowSpectrumValues(const CTivVector& values) override;  ///< resizes the list; "%.5f"
    /// Shows whole numbers only, deliberately (C15): the operator keeps the fractions.
    void ShowIlluminantValue(const std::array<float, 4>& value) override;
    ChartSize* GetChartSize() override { return &m_chartSize; }
    UserValueTexts GetTexts() const override;
    void ShowTexts(const UserValueTexts& texts) override;
    bool Shows(const UserValueTexts& texts) const override;
    void SetMatrixSize(int width, int height) override;
    void SetEnabled(bool enabled) override;  ///< undims and allows editing, or the reverse
    bool IsEnabledForEditing() const { return m_enabled; }
    void ResetValues() override;  ///< zeros for the matrix size, editing off

    /// The directory that the file dialogs start from while the profile names none.
    void SetBaseDir(const QString& baseDir) { m_baseDir = baseDir; }

    /// Reads a file into the list after asking for the matrix size, as a drop does.
    /// @throw as CCSVParser::Read; the list is then as it was
    void LoadValuesFrom(const QString& path) override;

    CIlluminantValue& IlluminantList() { return *m_illuminantList; }
    CSpectrumValuesListCtrl& SpectrumList() { return *m_spectrumList; }

public slots:
    void LoadValues();
    void SaveValues();
    void EditMatrixSize();

signals:
    void message(const QString& text, int type);  ///< words for the log
    void matrixSizeChosen();                      ///< the dialog ended with OK: the detection grid wants a refresh

private:
    bool AskMatrixSize();
    QString StartPath() const;

    ChartSize m_chartSize;
    bool m_enabled = false;
    QString m_baseDir;
    CIlluminantValue* m_illuminantList;
    CSpectrumValuesListCtrl* m_spectrumList;
};
