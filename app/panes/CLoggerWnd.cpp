#include "app/panes/CLoggerWnd.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <algorithm>

#include "app/toolkit/Clock.h"

namespace {

constexpr int kIconPixels = 16;
constexpr int kCellPadding = 16;

// The library's lower layer ends its texts with a line feed; a row shows one line.
QString oneLine(const QString& text) { return text.trimmed().replace('\n', ' '); }

class OneLineDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QString displayText(const QVariant& value, const QLocale&) const override { return oneLine(value.toString()); }
};

/// A list that shows its newest row and goes on doing so when a row comes, the pane changes its size or a column grows,
/// until the user scrolls back.
class NewestRowList : public QTableWidget {
public:
    using QTableWidget::QTableWidget;

protected:
    void updateGeometries() override {
        QScrollBar& bar = *verticalScrollBar();
        const bool showsNewest = bar.value() == bar.maximum();
        QTableWidget::updateGeometries();
        if (showsNewest) bar.setValue(bar.maximum());
    }
};

QString timeText(const QDateTime& now) {
    const QTime time = now.time();
    const QDate date = now.date();
    return QString::asprintf("%02d:%02d:%02d:%03d  %02d/%02d/%d", time.hour(), time.minute(), time.second(),
                             time.msec(), date.month(), date.day(), date.year());
}

}  // namespace

CLoggerWnd::CLoggerWnd(const Clock& clock, QWidget* parent)
    : QDockWidget("Logs", parent),
      clock_(clock),
      list_(new NewestRowList(0, ColumnCount, this)),
      icons_{QIcon(":/icons/log-error.svg"), QIcon(":/icons/log-warning.svg"), QIcon(":/icons/log-information.svg")} {
    list_->setHorizontalHeaderLabels({"Type", "Time", "Message"});
    list_->setSelectionBehavior(QAbstractItemView::SelectRows);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setItemDelegateForColumn(ColumnMessage, new OneLineDelegate(list_));
    list_->setIconSize({kIconPixels, kIconPixels});
    list_->setWordWrap(false);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setTabKeyNavigation(false);
    list_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->verticalHeader()->hide();
    list_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    list_->verticalHeader()->setDefaultSectionSize(list_->fontMetrics().height() + 6);
    list_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    list_->horizontalHeader()->setSectionsClickable(false);
    setWidget(list_);
    FitColumns({});
}

void CLoggerWnd::AddMessage(const QString& text, int type) {
    const int row = list_->rowCount();
    list_->insertRow(row);
    const bool isKnown = type >= 0 && type < static_cast<int>(icons_.size());
    auto* sign =
        isKnown ? new QTableWidgetItem(icons_[static_cast<std::size_t>(type)], {}) : new QTableWidgetItem("Unknown");
    sign->setData(Qt::UserRole, type);
    list_->setItem(row, ColumnType, sign);
    const QString time = timeText(clock_.LocalNow());
    list_->setItem(row, ColumnTime, new QTableWidgetItem(time));
    list_->setItem(row, ColumnMessage, new QTableWidgetItem(text));
    const QFontMetrics metrics = list_->fontMetrics();
    FitColumns({isKnown ? kIconPixels : metrics.horizontalAdvance(sign->text()), metrics.horizontalAdvance(time),
                metrics.horizontalAdvance(oneLine(text))});
    show();
    raise();
    list_->scrollToBottom();       // after the layout: only now is it known how many rows fit
    list_->viewport()->repaint();  // at once: what the caller does next may take long
}

void CLoggerWnd::ClearLog() {
    list_->setRowCount(0);
    contentWidths_.fill(0);
    FitColumns({});
}

// Each column is as wide as the wider of its header and its widest row. Rows only ever come to the end, so the widest
// one is kept and a long log costs no more than a short one.
void CLoggerWnd::FitColumns(const std::array<int, ColumnCount>& newest) {
    for (int column = 0; column < ColumnCount; ++column) {
        int& widest = contentWidths_[static_cast<std::size_t>(column)];
        widest = std::max(widest, newest[static_cast<std::size_t>(column)]);
        const int header = list_->horizontalHeader()->sectionSizeHint(column);
        list_->setColumnWidth(column, std::max(widest + kCellPadding, header));
    }
}
