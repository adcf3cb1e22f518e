#include "app/panes/CellTable.h"

#include "app/toolkit/Theme.h"

CellTable::CellTable(const QStringList& headers, bool numbered, QObject* parent)
    : QAbstractTableModel(parent), headers_(headers), numbered_(numbered) {}

int CellTable::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }
int CellTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(headers_.size());
}

bool CellTable::Holds(int row, int column) const {
    return row >= 0 && row < rows_ && column > 0 && column < columnCount();
}

std::size_t CellTable::Place(int row, int column) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columnCount() - 1) +
           static_cast<std::size_t>(column - 1);
}

QString CellTable::Text(int row, int column) const {
    if (column == 0 && numbered_ && row >= 0 && row < rows_) return QString::number(row + 1);
    return Holds(row, column) ? texts_[Place(row, column)] : QString();
}

void CellTable::SetText(int row, int column, const QString& text) {
    if (!Holds(row, column)) return;
    texts_[Place(row, column)] = text;
    emit dataChanged(index(row, column), index(row, column));
}

void CellTable::Resize(int rows, const QString& fresh) {
    const int before = rows_;
    if (rows == before) return;
    if (rows > before) {
        beginInsertRows({}, before, rows - 1);
    } else {
        beginRemoveRows({}, rows, before - 1);
    }
    rows_ = rows;
    texts_.resize(Place(rows, 1), fresh);
    rows > before ? endInsertRows() : endRemoveRows();
}

void CellTable::SetDimmed(bool dimmed) {
    dimmed_ = dimmed;
    if (rows_ > 0) emit dataChanged(index(0, 0), index(rows_ - 1, columnCount() - 1), {Qt::ForegroundRole});
}

QVariant CellTable::data(const QModelIndex& index, int role) const {
    if (role == Qt::DisplayRole) return Text(index.row(), index.column());
    if (role == Qt::ForegroundRole && dimmed_) return theme::Now().dimmed;
    return {};
}

QVariant CellTable::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return headers_.value(section);
}
