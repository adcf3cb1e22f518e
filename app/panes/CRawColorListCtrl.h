#pragma once

#include <QTableWidget>
#include <optional>

class RawColorSide;

/// A list of colors: one column, each row a swatch of 32 x 16 pixels and a number.
class CRawColorListCtrl : public QTableWidget {
    Q_OBJECT
public:
    explicit CRawColorListCtrl(QWidget* parent);
    void Show(const RawColorSide& side);  ///< rebuilds the rows, keeping the selection by row
    void SetDimmed(bool dimmed);
    std::optional<std::size_t> SelectedRow() const;  ///< the first selected one

signals:
    void pressed();  ///< by the left button, on a row or beside the rows, after the selection has followed

protected:
    void mousePressEvent(QMouseEvent* event) override;
};
