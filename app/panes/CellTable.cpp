#include "app/panes/CellTable.h"

#include "app/toolkit/Theme.h"

CellTable::CellTable(const QStringList& headers, bool numbered, QObject* parent)
    : QAbstractTableModel(parent), m_headers(headers), m_numbered(numbered) {}

int CellTable::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_rows; }
int CellTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_headers.size());
}

bool CellTable::Holds(int row, int column) const {
    return row >= 0 && row < m_rows && column > 0 && column < columnCount();
}

std::size_t CellTable::Place(int row, int column) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columnCount() - 1) +
           static_cast<std::size_t>(column - 1);
}

QString CellTable::Text(int row, int column) const {
    if (column == 0 && m_numbered && row >= 0 && row < m_rows) return QString::number(row + 1);
    return Holds(row, column) ? m_texts[Place(row, column)] : QString();
}

void CellTable::SetText(int row, int column, const QString& text) {
    if (!Holds(row, column)) return;
    m_texts[Place(row, column)] = text;
    emit dataChanged(index(row, column), index(row, column));
}

void CellTable::Resize(int rows, const QString& fresh) {
    const int before = m_rows;
    if (rows == before) return;
    if (rows > before) {
        beginInsertRows({}, before, rows - 1);
    } else {
        beginRemoveRows({}, rows, before - 1);
    }
    m_rows = rows;
    m_texts.resize(Place(rows, 1), fresh);
    rows > before ? endInsertRows() : endRemoveRows();
}

void CellTable::SetTexts(const std::vector<QString>& texts) {
    Resize(static_cast<int>(texts.size()) / (columnCount() - 1), {});
    m_texts = texts;
    if (m_rows > 0) emit dataChanged(index(0, 1), index(m_rows - 1, columnCount() - 1));
}

void CellTable::SetDimmed(bool dimmed) {
    m_dimmed = dimmed;
    if (m_rows > 0) emit dataChanged(index(0, 0), index(m_rows - 1, columnCount() - 1), {Qt::ForegroundRole});
}

QVariant CellTable::data(const QModelIndex& index, int role) const {
    if (role == Qt::DisplayRole) return Text(index.row(), index.column());
    if (role == Qt::ForegroundRole && m_dimmed) return theme::Now().dimmed;
    return {};
}

QVariant CellTable::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return m_headers.value(section);
}
