#pragma once

#include <QLineEdit>
#include <QTableView>
#include <vector>

class CInPlaceEdit;
class CellTable;

/// A list whose cells are edited in place: a double click in any column but the first opens an editor over the cell.
class CListCtrlEx : public QTableView {
    Q_OBJECT
public:
    /// @param numbered whether the first column shows the rows' numbers from 1
    CListCtrlEx(const QStringList& headers, bool numbered, QWidget* parent);

    void SetEditable(bool editable);  ///< off at first; turning it off ends a running edit without a commit
    bool IsEditable() const { return m_editable; }
    void SetAllowEmpty(bool allow) { m_allowEmpty = allow; }
    void SetDimmed(bool dimmed);  ///< gray text

    int RowCount() const;
    QString CellText(int row, int column) const;
    /// @return the cell's text read as a number, 0 for what does not begin with one
    float CellNumber(int row, int column) const;
    void SetCellText(int row, int column, const QString& text);
    const std::vector<QString>& Texts() const;  ///< of all cells, row by row, without the first column
    void SetTexts(const std::vector<QString>& texts);

    /// Opens the editor over a cell; a row past the last one gets an editor that commits nowhere.
    void EditCell(int row, int column);
    CInPlaceEdit* GetEditor() const { return m_editor; }  ///< null while no cell is edited
    int EditedRow() const { return m_editedRow; }         ///< -1 for none
    int EditedColumn() const { return m_editedColumn; }

protected:
    CellTable& Cells() { return *m_cells; }

private:
    friend class CInPlaceEdit;
    void Commit(const QString& text);  ///< writes the text into the edited cell, if there is one
    void EndEdit();
    void MoveOn();
    QRect CellRect(int row, int column) const;

    CellTable* m_cells;
    CInPlaceEdit* m_editor = nullptr;
    int m_editedRow = -1;
    int m_editedColumn = -1;
    bool m_allowEmpty = false;
    bool m_editable = false;
};

/// The editor laid over one cell. Enter, a click elsewhere and losing the focus commit, Tab commits and moves on, Esc
/// drops the text. It ends once, whatever comes together.
class CInPlaceEdit : public QLineEdit {
    Q_OBJECT
public:
    CInPlaceEdit(CListCtrlEx& list, const QRect& place, const QString& text);
    ~CInPlaceEdit() override;

protected:
    bool event(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Ending { Commit, CommitAndMove, Drop };
    void End(Ending ending);

    CListCtrlEx& m_list;
    bool m_ended = false;
};
