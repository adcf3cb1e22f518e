#pragma once

#include <QDockWidget>
#include <array>
#include <string>

#include "report/html_report.h"

class PatchCells;
class PlotView;
class QComboBox;
class QLabel;
class QPushButton;

/// The pane "Calibration Quality": what a user gets, patch by patch, and what speaks against it. Main thread only.
class CQualityWnd : public QDockWidget {
    Q_OBJECT
public:
    explicit CQualityWnd(QWidget* parent);

    /// Shows the figures of a calibration; they count as up to date.
    void ShowReport(const tonewright::Report& report);
    /// Shows what a calibration delivers on another picture, with a way back.
    void ShowVerification(const tonewright::Report& report, const QString& fileName);
    /// Shows what the picture of a chart tells before a calibration.
    /// @param summary a line such as how many patches were found
    void ShowPicture(const QString& summary, const std::vector<tonewright::Finding>& findings);
    void Clear();  ///< nothing is known
    /// @param reason why the figures are out of date; empty: they are not
    void SetOutOfDate(const QString& reason);

    bool HasReport() const { return m_hasReport; }

signals:
    /// The user points at a patch, by its index in chart order; -1: at none.
    void patchPointed(int index);
    void backWanted();  ///< from a verification

private:
    void PlaceFindings(bool onTop);
    void SetVerified(const QString& fileName);  ///< empty: what is shown is the calibration
    void ShowPlot();
    void ShowPatch(int index);

    tonewright::Report m_report;
    bool m_hasReport = false;
    QLabel* m_verified;
    QPushButton* m_back;
    QLabel* m_headline;
    QLabel* m_caption;
    QLabel* m_figures;
    QLabel* m_outOfDate;
    PatchCells* m_cells;
    QLabel* m_patch;
    QComboBox* m_plotChoice;
    PlotView* m_plot;
    QLabel* m_findings;
};
