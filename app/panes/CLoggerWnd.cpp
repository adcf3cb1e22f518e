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
      m_clock(clock),
      m_list(new NewestRowList(0, ColumnCount, this)),
      m_icons{QIcon(":/icons/log-error.svg"), QIcon(":/icons/log-warning.svg"), QIcon(":/icons/log-information.svg")} {
    m_list->setAccessibleName("Logs");
    m_list->setHorizontalHeaderLabels({"Type", "Time", "Message"});
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setItemDelegateForColumn(ColumnMessage, new OneLineDelegate(m_list));
    m_list->setIconSize({kIconPixels, kIconPixels});
    m_list->setWordWrap(false);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setTabKeyNavigation(false);
    m_list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->verticalHeader()->hide();
    m_list->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_list->verticalHeader()->setDefaultSectionSize(m_list->fontMetrics().height() + 6);
    m_list->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_list->horizontalHeader()->setSectionsClickable(false);
    setWidget(m_list);
    FitColumns({});
}

void CLoggerWnd::AddMessage(const QString& text, int type) {
    const int row = m_list->rowCount();
    m_list->insertRow(row);
    const bool isKnown = type >= 0 && type < static_cast<int>(m_icons.size());
    auto* sign =
        isKnown ? new QTableWidgetItem(m_icons[static_cast<std::size_t>(type)], {}) : new QTableWidgetItem("Unknown");
    sign->setData(Qt::UserRole, type);
    m_list->setItem(row, ColumnType, sign);
    const QString time = timeText(m_clock.LocalNow());
    m_list->setItem(row, ColumnTime, new QTableWidgetItem(time));
    m_list->setItem(row, ColumnMessage, new QTableWidgetItem(text));
    const QFontMetrics metrics = m_list->fontMetrics();
    FitColumns({isKnown ? kIconPixels : metrics.horizontalAdvance(sign->text()), metrics.horizontalAdvance(time),
                metrics.horizontalAdvance(oneLine(text))});
    show();
    raise();
    m_list->scrollToBottom();       // after the layout: only now is it known how many rows fit
    m_list->viewport()->repaint();  // at once: what the caller does next may take long
}

void CLoggerWnd::ClearLog() {
    m_list->setRowCount(0);
    m_contentWidths.fill(0);
    FitColumns({});
}

// Each column is as wide as the wider of its header and its widest row. Rows only ever come to the end, so the widest
// one is kept and a long log costs no more than a short one.
void CLoggerWnd::FitColumns(const std::array<int, ColumnCount>& newest) {
    for (int column = 0; column < ColumnCount; ++column) {
        int& widest = m_contentWidths[static_cast<std::size_t>(column)];
        widest = std::max(widest, newest[static_cast<std::size_t>(column)]);
        const int header = m_list->horizontalHeader()->sectionSizeHint(column);
        m_list->setColumnWidth(column, std::max(widest + kCellPadding, header));
    }
}
