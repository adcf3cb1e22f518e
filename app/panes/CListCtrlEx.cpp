#include "app/panes/CListCtrlEx.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace {

const QColor kDimmedText(0x66, 0x66, 0x66);

}  // namespace

CListCtrlEx::CListCtrlEx(QWidget* parent) : QTableWidget(parent) {
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setMinimumSectionSize(0);
    setWordWrap(false);
    connect(this, &QTableWidget::cellDoubleClicked, this, [this](int row, int column) {
        if (editable_ && column > 0) EditCell(row, column);
    });
}

void CListCtrlEx::SetEditable(bool editable) {
    editable_ = editable;
    if (!editable) EndEdit();
}

void CListCtrlEx::SetDimmed(bool dimmed) {
    QPalette colors = QApplication::palette(this);
    if (dimmed) colors.setColor(QPalette::Text, kDimmedText);
    setPalette(colors);
}

float CListCtrlEx::CellNumber(int row, int column) const {
    const QTableWidgetItem* cell = item(row, column);
    if (!cell) return 0.0f;
    // Whatever the desktop's language: the number ends where text begins, as in "0.5 cd" or "0,5".
    const QByteArray text = cell->text().trimmed().toLatin1();
    const char* const begin = text.constData() + (text.startsWith('+') ? 1 : 0);
    float value = 0;
    const auto [end, error] = std::from_chars(begin, text.constData() + text.size(), value);
    return error == std::errc{} && std::isfinite(value) ? value : 0.0f;
}

void CListCtrlEx::SetCellText(int row, int column, const QString& text) {
    QTableWidgetItem* cell = item(row, column);
    if (!cell) {
        cell = new QTableWidgetItem;
        setItem(row, column, cell);
    }
    cell->setText(text);
}

QRect CListCtrlEx::CellRect(int row, int column) const {
    const int rowHeight = verticalHeader()->defaultSectionSize();
    const int top = row < rowCount() ? rowViewportPosition(row) : rowViewportPosition(rowCount() - 1) + rowHeight;
    QRect cell(columnViewportPosition(column), top, columnWidth(column), rowHeight);
    cell.setRight(std::min(cell.right(), viewport()->width() - 1));
    return cell.adjusted(-1, -1, 1, 1);
}

void CListCtrlEx::EditCell(int row, int column) {
    EndEdit();
    editedRow_ = row;
    editedColumn_ = column;
    const QTableWidgetItem* cell = item(row, column);
    if (cell) scrollToItem(cell);
    editor_ = new CInPlaceEdit(*this, CellRect(row, column), cell ? cell->text() : QString());
}

void CListCtrlEx::Commit(const QString& text) {
    if (editedRow_ < 0 || editedRow_ >= rowCount()) return;
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
    if (column >= columnCount()) {
        column = 1;
        ++row;
    }
    // No test for the last row: behind it stands an editor that belongs to no cell.
    EditCell(row, column);
}

CInPlaceEdit::CInPlaceEdit(CListCtrlEx& list, const QRect& place, const QString& text)
    : QLineEdit(text, list.viewport()), list_(list) {
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
