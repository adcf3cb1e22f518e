#include "app/panes/CRawColorListCtrl.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QStyledItemDelegate>
#include <algorithm>

#include "app/toolkit/Theme.h"
#include "app/workflow/RawColorLists.h"

namespace {

constexpr QSize kSwatch(32, 16);
constexpr int kColumnWidth = 64;
constexpr int kMarkSide = 10;
constexpr int kColorRole = Qt::UserRole, kMixedRole = Qt::UserRole + 1;

/// Draws the color of a row as it is: an icon of one picture would be tinted in a selected or disabled row. A color
/// that is mixed of two has a mark behind its number.
class SwatchDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        if (!index.data(kMixedRole).toBool()) return;
        const QRect& row = option.rect;
        m_mark.paint(painter, row.right() - kMarkSide, row.center().y() - kMarkSide / 2, kMarkSide, kMarkSide);
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const QVariant color = index.data(kColorRole);
        if (color.isNull()) return;
        QPixmap picture(kSwatch);
        picture.fill(QColor::fromRgb(color.toUInt()));
        option->icon = QIcon();
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled, QIcon::Active, QIcon::Selected}) {
            option->icon.addPixmap(picture, mode);
        }
        option->decorationSize = kSwatch;
        option->features |= QStyleOptionViewItem::HasDecoration;
    }

private:
    const QIcon m_mark{":/icons/log-warning.svg"};
};

}  // namespace

/// The rows of one side, read where they are kept.
class CRawColorListCtrl::Rows : public QAbstractTableModel {
public:
    Rows(const RawColorSide& side, QObject* parent) : QAbstractTableModel(parent), m_side(side) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : m_count; }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 1; }
    QVariant data(const QModelIndex& index, int role) const override {
        const auto row = static_cast<std::size_t>(index.row());
        if (row >= m_side.Rows().size()) return {};
        const RawColorSide::Row& shown = m_side.Rows()[row];
        if (role == Qt::DisplayRole) return shown.label;
        if (role == kMixedRole) return shown.isMixed;
        if (role == Qt::ToolTipRole && shown.isMixed) return "Mixed: the rectangle held two colors.";
        if (role == Qt::ForegroundRole && m_dimmed) return theme::Now().dimmed;
        if (role == kColorRole && shown.image < m_side.Images().size()) return m_side.Images()[shown.image] & 0xFFFFFF;
        return {};
    }
    QVariant headerData(int, Qt::Orientation orientation, int role) const override {
        return orientation == Qt::Horizontal && role == Qt::DisplayRole ? QVariant("Color") : QVariant();
    }

    void Remove(int row) {
        beginRemoveRows({}, row, row);
        --m_count;
        endRemoveRows();
    }
    void Refresh() {
        const int now = static_cast<int>(m_side.Rows().size());
        if (now > m_count) {
            beginInsertRows({}, m_count, now - 1);
            m_count = now;
            endInsertRows();
        } else if (now < m_count) {
            beginRemoveRows({}, now, m_count - 1);
            m_count = now;
            endRemoveRows();
        }
        if (m_count > 0) emit dataChanged(index(0, 0), index(m_count - 1, 0));
    }
    void SetDimmed(bool dimmed) {
        m_dimmed = dimmed;
        Refresh();
    }

private:
    const RawColorSide& m_side;
    int m_count = 0;  // as the list knows it: the side changes first
    bool m_dimmed = false;
};

CRawColorListCtrl::CRawColorListCtrl(const RawColorSide& side, QWidget* parent)
    : QTableView(parent), m_rows(new Rows(side, this)) {
    setModel(m_rows);
    setItemDelegate(new SwatchDelegate(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(kSwatch.height() + 6);
    horizontalHeader()->setSectionsClickable(false);
    setColumnWidth(0, kColumnWidth);
}

CRawColorListCtrl::~CRawColorListCtrl() = default;

void CRawColorListCtrl::Refresh() { m_rows->Refresh(); }

void CRawColorListCtrl::RowRemoved(int row) {
    m_rows->Remove(row);
    m_rows->Refresh();  // the rows behind it bear other numbers
}

void CRawColorListCtrl::mousePressEvent(QMouseEvent* event) {
    QTableView::mousePressEvent(event);
    if (event->button() == Qt::LeftButton) emit pressed();
}

void CRawColorListCtrl::SetDimmed(bool dimmed) { m_rows->SetDimmed(dimmed); }

int CRawColorListCtrl::RowCount() const { return m_rows->rowCount(); }

std::optional<std::size_t> CRawColorListCtrl::SelectedRow() const {
    const QItemSelection ranges = selectionModel()->selection();
    const auto first =
        std::min_element(ranges.begin(), ranges.end(), [](const auto& a, const auto& b) { return a.top() < b.top(); });
    if (first == ranges.end()) return std::nullopt;
    return static_cast<std::size_t>(first->top());
}
