#pragma once

#include <QTableView>
#include <optional>

class RawColorSide;

/// A list of colors: one column, each row a swatch of 32 x 16 pixels and a number. It reads the colors where they are
/// kept and draws the rows on show alone, so that a file of half a million colors costs it nothing.
class CRawColorListCtrl : public QTableView {
    Q_OBJECT
public:
    /// @param side what to show; must outlive the list. Whoever changes it calls one of the two below
    CRawColorListCtrl(const RawColorSide& side, QWidget* parent);
    ~CRawColorListCtrl() override;

    void Refresh();            ///< rows came or went at the end, or show something else; the selection stays
    void RowRemoved(int row);  ///< one row went; the selection of those behind it moves up
    void SetDimmed(bool dimmed);
    int RowCount() const;
    std::optional<std::size_t> SelectedRow() const;  ///< the first selected one

signals:
    void pressed();  ///< by the left button, on a row or beside the rows, after the selection has followed

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    class Rows;
    Rows* m_rows;
};
