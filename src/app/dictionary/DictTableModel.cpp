#include "DictTableModel.h"

void DictTableModel::setRows(const DictRows &rows)
{
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

void DictTableModel::rowChanged(const DictEntry *row)
{
    // Edits come one at a time; a scan of the shown rows is cheap next to the repaint.
    for (int i = 0; i < m_rows.size(); ++i)
        if (m_rows.at(i).get() == row) emit dataChanged(index(i, 0), index(i, ColumnCount - 1));
}

QVariant DictTableModel::data(const QModelIndex &index, int role) const
{
    const DictEntryPtr row = rowAt(index.row());
    if (!row || (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole)) return {};
    const OptString &text = index.column() == KeyColumn ? row->key() : row->value();
    if (role == Qt::ToolTipRole && (!text || text->size() < 60)) return {};
    return StringUtility::wordOrEmpty(text);
}

bool DictTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const DictEntryPtr row = rowAt(index.row());
    if (!row || role != Qt::EditRole || !m_editor) return false;
    m_editor(row, index.column(), value.toString());
    emit dataChanged(index, index);
    return true;
}

Qt::ItemFlags DictTableModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (m_editor && index.isValid()) f |= Qt::ItemIsEditable;
    return f;
}

QVariant DictTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return section == KeyColumn ? tr("Base Word") : tr("Localized Word");
}
