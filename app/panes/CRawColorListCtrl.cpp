#include "app/panes/CRawColorListCtrl.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPixmap>
#include <QStyledItemDelegate>
#include <algorithm>

#include "app/panes/RawColorLists.h"
#include "app/toolkit/Theme.h"

namespace {

constexpr QSize kSwatch(32, 16);
constexpr int kColumnWidth = 64;

/// Draws the color of a row as it is: an icon of one picture would be tinted in a selected or disabled row.
class SwatchDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const QVariant color = index.data(Qt::UserRole);
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
};

}  // namespace

/// The rows of one side, read where they are kept.
class CRawColorListCtrl::Rows : public QAbstractTableModel {
public:
    Rows(const RawColorSide& side, QObject* parent) : QAbstractTableModel(parent), side_(side) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : count_; }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 1; }
    QVariant data(const QModelIndex& index, int role) const override {
        const auto row = static_cast<std::size_t>(index.row());
        if (row >= side_.Rows().size()) return {};
        const RawColorSide::Row& shown = side_.Rows()[row];
        if (role == Qt::DisplayRole) return shown.label;
        if (role == Qt::ForegroundRole && dimmed_) return theme::Now().dimmed;
        if (role == Qt::UserRole && shown.image < side_.Images().size()) return side_.Images()[shown.image] & 0xFFFFFF;
        return {};
    }
    QVariant headerData(int, Qt::Orientation orientation, int role) const override {
        return orientation == Qt::Horizontal && role == Qt::DisplayRole ? QVariant("Color") : QVariant();
    }

    void Remove(int row) {
        beginRemoveRows({}, row, row);
        --count_;
        endRemoveRows();
    }
    void Refresh() {
        const int now = static_cast<int>(side_.Rows().size());
        if (now > count_) {
            beginInsertRows({}, count_, now - 1);
            count_ = now;
            endInsertRows();
        } else if (now < count_) {
            beginRemoveRows({}, now, count_ - 1);
            count_ = now;
            endRemoveRows();
        }
        if (count_ > 0) emit dataChanged(index(0, 0), index(count_ - 1, 0));
    }
    void SetDimmed(bool dimmed) {
        dimmed_ = dimmed;
        Refresh();
    }

private:
    const RawColorSide& side_;
    int count_ = 0;  // as the list knows it: the side changes first
    bool dimmed_ = false;
};

CRawColorListCtrl::CRawColorListCtrl(const RawColorSide& side, QWidget* parent)
    : QTableView(parent), rows_(new Rows(side, this)) {
    setModel(rows_);
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

void CRawColorListCtrl::Refresh() { rows_->Refresh(); }

void CRawColorListCtrl::RowRemoved(int row) {
    rows_->Remove(row);
    rows_->Refresh();  // the rows behind it bear other numbers
}

void CRawColorListCtrl::mousePressEvent(QMouseEvent* event) {
    QTableView::mousePressEvent(event);
    if (event->button() == Qt::LeftButton) emit pressed();
}

void CRawColorListCtrl::SetDimmed(bool dimmed) { rows_->SetDimmed(dimmed); }

int CRawColorListCtrl::RowCount() const { return rows_->rowCount(); }

std::optional<std::size_t> CRawColorListCtrl::SelectedRow() const {
    const QItemSelection ranges = selectionModel()->selection();
    const auto first =
        std::min_element(ranges.begin(), ranges.end(), [](const auto& a, const auto& b) { return a.top() < b.top(); });
    if (first == ranges.end()) return std::nullopt;
    return static_cast<std::size_t>(first->top());
}
