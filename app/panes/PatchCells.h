#pragma once

#include <QRect>
#include <QWidget>
#include <vector>

#include "report/html_report.h"

/// Where the cells of a chart lie in a rectangle: columns side by side, rows below each other, equal sizes, a gap
/// between them.
class CellGrid {
public:
    CellGrid(const QRect& area, int columns, int count);

    QRect Cell(int index) const;
    int At(const QPoint& point) const;  ///< index of the cell there; -1 for none

private:
    QRect m_area;
    int m_columns;
    int m_count;
};

/// The chart as cells in chart order, each split into what was measured, what was wanted and what is delivered, with
/// its number and difference. The pointer over a cell points at it; a click keeps that one until the next click.
class PatchCells : public QWidget {
    Q_OBJECT
public:
    explicit PatchCells(QWidget* parent);

    void SetPatches(const std::vector<tonewright::ReportPatch>& patches, int columns);
    int GetPointed() const { return m_kept >= 0 ? m_kept : m_hovered; }  ///< index; -1 for none

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;  ///< cells of a wide chart become narrower than they would like to be

signals:
    void pointed(int index);  ///< another cell, or -1

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    CellGrid Grid() const;
    void Point(int hovered, int kept);

    std::vector<tonewright::ReportPatch> m_patches;
    int m_columns = 6;
    int m_worst = -1;
    int m_hovered = -1;
    int m_kept = -1;
};
