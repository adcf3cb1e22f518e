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
    : QTableView(parent), cells_(new CellTable(headers, numbered, this)) {
    setModel(cells_);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setMinimumSectionSize(0);
    setWordWrap(false);
    connect(this, &QTableView::doubleClicked, this, [this](const QModelIndex& cell) {
        if (editable_ && cell.column() > 0) EditCell(cell.row(), cell.column());
    });
}

void CListCtrlEx::SetEditable(bool editable) {
    editable_ = editable;
    if (!editable) EndEdit();
}

void CListCtrlEx::SetDimmed(bool dimmed) { cells_->SetDimmed(dimmed); }

int CListCtrlEx::RowCount() const { return cells_->rowCount(); }

QString CListCtrlEx::CellText(int row, int column) const { return cells_->Text(row, column); }

float CListCtrlEx::CellNumber(int row, int column) const {
    // Whatever the desktop's language: the number ends where text begins, as in "0.5 cd" or "0,5".
    const QByteArray text = CellText(row, column).trimmed().toLatin1();
    const char* const begin = text.constData() + (text.startsWith('+') ? 1 : 0);
    float value = 0;
    const auto [end, error] = std::from_chars(begin, text.constData() + text.size(), value);
    return error == std::errc{} && std::isfinite(value) ? value : 0.0f;
}

void CListCtrlEx::SetCellText(int row, int column, const QString& text) { cells_->SetText(row, column, text); }

QRect CListCtrlEx::CellRect(int row, int column) const {
    const int rowHeight = verticalHeader()->defaultSectionSize();
    const int top = row < RowCount() ? rowViewportPosition(row) : rowViewportPosition(RowCount() - 1) + rowHeight;
    QRect cell(columnViewportPosition(column), top, columnWidth(column), rowHeight);
    cell.setRight(std::min(cell.right(), viewport()->width() - 1));
    return cell.adjusted(-1, -1, 1, 1);
}

void CListCtrlEx::EditCell(int row, int column) {
    EndEdit();
    editedRow_ = row;
    editedColumn_ = column;
    if (row < RowCount()) scrollTo(cells_->index(row, column));
    editor_ = new CInPlaceEdit(*this, CellRect(row, column), CellText(row, column));
}

void CListCtrlEx::Commit(const QString& text) {
    if (editedRow_ < 0 || editedRow_ >= RowCount()) return;
    if (allowEmpty_ || !text.isEmpty()) SetCellText(editedRow_, editedColumn_, text);
}

void CListCtrlEx::EndEdit() {
    // First the position: hiding takes the focus away, which would commit.
    editedRow_ = editedColumn_ = -1;
    if (CInPlaceEdit* editor = std::exchange(editor_, nullptr)) {
        editor->hide();
        editor->deleteLater();
    }
}

void CListCtrlEx::MoveOn() {
    int row = editedRow_;
    int column = editedColumn_ + 1;
    if (column >= cells_->columnCount()) {
        column = 1;
        ++row;
    }
    // No test for the last row: behind it stands an editor that belongs to no cell.
    EditCell(row, column);
}

CInPlaceEdit::CInPlaceEdit(CListCtrlEx& list, const QRect& place, const QString& text)
    : QLineEdit(text, list.viewport()), list_(list) {
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
    if (ended_) return;
    ended_ = true;
    qApp->removeEventFilter(this);
    if (ending != Ending::Drop) list_.Commit(text());
    if (ending == Ending::CommitAndMove) {
        list_.MoveOn();
    } else {
        const bool hadFocus = hasFocus();
        list_.EndEdit();
        if (hadFocus) list_.setFocus();
    }
}

bool CInPlaceEdit::event(QEvent* event) {
    // Before the focus chain and the accelerators see them.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
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
