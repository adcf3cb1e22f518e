#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <vector>

/// The texts of a list, row by row, without an object for each cell: a file can bring a hundred thousand rows. The
/// first column is the rows' own; the texts stand in the columns from 1 on.
class CellTable : public QAbstractTableModel {
public:
    /// @param numbered whether the first column shows the rows' numbers from 1; else it is empty
    CellTable(const QStringList& headers, bool numbered, QObject* parent);

    /// @return an empty text for a cell that isn't there
    QString Text(int row, int column) const;
    void SetText(int row, int column, const QString& text);  ///< nothing where there is no such cell
    /// Adds rows whose cells hold `fresh`, or removes rows from the end.
    void Resize(int rows, const QString& fresh);
    const std::vector<QString>& Texts() const { return m_texts; }  ///< row by row, without the first column
    void SetTexts(const std::vector<QString>& texts);
    void SetDimmed(bool dimmed);  ///< gray text

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::size_t Place(int row, int column) const;
    bool Holds(int row, int column) const;

    QStringList m_headers;
    std::vector<QString> m_texts;
    int m_rows = 0;
    bool m_numbered;
    bool m_dimmed = false;
};
