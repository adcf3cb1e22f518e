#include "app/panes/CListCtrlEx.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "app/panes/CellTable.h"

CListCtrlEx::CListCtrlEx(const QStringList& headers, bool numbered, QWidget* parent)
    : QTableView(parent), m_cells(new CellTable(headers, numbered, this)) {
    setModel(m_cells);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setMinimumSectionSize(0);
    setWordWrap(false);
    connect(this, &QTableView::doubleClicked, this, [this](const QModelIndex& cell) {
        if (m_editable && cell.column() > 0) EditCell(cell.row(), cell.column());
    });
}

void CListCtrlEx::SetEditable(bool editable) {
    m_editable = editable;
    if (!editable) EndEdit();
}

void CListCtrlEx::SetDimmed(bool dimmed) { m_cells->SetDimmed(dimmed); }

int CListCtrlEx::RowCount() const { return m_cells->rowCount(); }

QString CListCtrlEx::CellText(int row, int column) const { return m_cells->Text(row, column); }

float CListCtrlEx::CellNumber(int row, int column) const {
    // Whatever the desktop's language: the number ends where text begins, as in "0.5 cd" or "0,5".
    const QByteArray text = CellText(row, column).trimmed().toLatin1();
    const char* const begin = text.constData() + (text.startsWith('+') ? 1 : 0);
    float value = 0;
    const auto [end, error] = std::from_chars(begin, text.constData() + text.size(), value);
    return error == std::errc{} && std::isfinite(value) ? value : 0.0f;
}

void CListCtrlEx::SetCellText(int row, int column, const QString& text) { m_cells->SetText(row, column, text); }

const std::vector<QString>& CListCtrlEx::Texts() const { return m_cells->Texts(); }

void CListCtrlEx::SetTexts(const std::vector<QString>& texts) {
    EndEdit();
    m_cells->SetTexts(texts);
}

QRect CListCtrlEx::CellRect(int row, int column) const {
    const int rowHeight = verticalHeader()->defaultSectionSize();
    const int top = row < RowCount() ? rowViewportPosition(row) : rowViewportPosition(RowCount() - 1) + rowHeight;
    QRect cell(columnViewportPosition(column), top, columnWidth(column), rowHeight);
    cell.setRight(std::min(cell.right(), viewport()->width() - 1));
    return cell.adjusted(-1, -1, 1, 1);
}

void CListCtrlEx::EditCell(int row, int column) {
    EndEdit();
    m_editedRow = row;
    m_editedColumn = column;
    if (row < RowCount()) scrollTo(m_cells->index(row, column));
    m_editor = new CInPlaceEdit(*this, CellRect(row, column), CellText(row, column));
}

void CListCtrlEx::Commit(const QString& text) {
    if (m_editedRow < 0 || m_editedRow >= RowCount()) return;
    if (m_allowEmpty || !text.isEmpty()) SetCellText(m_editedRow, m_editedColumn, text);
}

void CListCtrlEx::EndEdit() {
    // First the position: hiding takes the focus away, which would commit.
    m_editedRow = m_editedColumn = -1;
    if (CInPlaceEdit* editor = std::exchange(m_editor, nullptr)) {
        editor->hide();
        editor->deleteLater();
    }
}

void CListCtrlEx::MoveOn() {
    int row = m_editedRow;
    int column = m_editedColumn + 1;
    if (column >= m_cells->columnCount()) {
        column = 1;
        ++row;
    }
    // No test for the last row: behind it stands an editor that belongs to no cell.
    EditCell(row, column);
}

CInPlaceEdit::CInPlaceEdit(CListCtrlEx& list, const QRect& place, const QString& text)
    : QLineEdit(text, list.viewport()), m_list(list) {
    setAcceptDrops(false);  // a file belongs to the window
    setFont(list.font());
    setFrame(true);
    setTextMargins(1, 0, 1, 0);
    setGeometry(place);
    selectAll();
    show();
    setFocus();
    qApp->installEventFilter(this);
}

CInPlaceEdit::~CInPlaceEdit() { qApp->removeEventFilter(this); }

void CInPlaceEdit::End(Ending ending) {
    if (m_ended) return;
    m_ended = true;
    qApp->removeEventFilter(this);
    if (ending != Ending::Drop) m_list.Commit(text());
    if (ending == Ending::CommitAndMove) {
        m_list.MoveOn();
    } else {
        const bool hadFocus = hasFocus();
        m_list.EndEdit();
        if (hadFocus) m_list.setFocus();
    }
}

// Keys count here before the focus chain and the accelerators see them. Those with Ctrl that edit nothing, and Ctrl+E,
// which would move to the end of the line, are the window's: what was typed counts for the command that they run.
bool CInPlaceEdit::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        QLineEdit::event(event);
        const bool isEdit = event->isAccepted() && key->key() != Qt::Key_E;
        const bool isWindows = key->modifiers() == Qt::ControlModifier && key->key() != Qt::Key_Control && !isEdit;
        event->setAccepted(!isWindows);
        if (isWindows) End(Ending::Commit);
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
            case Qt::Key_Return:
            case Qt::Key_Enter:
                End(Ending::Commit);
                return true;
            case Qt::Key_Tab:
                End(Ending::CommitAndMove);
                return true;
            case Qt::Key_Escape:
                End(Ending::Drop);
                return true;
            default:
                break;
        }
    }
    return QLineEdit::event(event);
}

void CInPlaceEdit::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) End(Ending::Commit);
}

bool CInPlaceEdit::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::MouseButtonPress || watched == this || !watched->isWidgetType()) return false;
    const bool isOwnMenu = static_cast<QWidget*>(watched)->window()->windowType() == Qt::Popup;
    if (!isOwnMenu && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) End(Ending::Commit);
    return false;
}
