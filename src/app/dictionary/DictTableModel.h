#pragma once
// A table of dictionary rows with a key and a value column, for the browser (editable, through
// the browser's undo stack) and the lookup panel (read only).

#include "DictEntry.h"

#include <QAbstractTableModel>
#include <functional>

class DictTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { KeyColumn, ValueColumn, ColumnCount };
    // Called for an edit in place; without it the table is read only.
    using Editor = std::function<void(const DictEntryPtr &row, int column, const QString &text)>;

    explicit DictTableModel(QObject *parent = nullptr) : QAbstractTableModel(parent) {}
    void setEditor(Editor editor) { m_editor = std::move(editor); }
    void setRows(const DictRows &rows);
    const DictRows &rows() const { return m_rows; }
    DictEntryPtr rowAt(int row) const { return row >= 0 && row < m_rows.size() ? m_rows.at(row) : nullptr; }
    // Repaints one row after its words changed.
    void rowChanged(const DictEntry *row);

    int rowCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : int(m_rows.size()); }
    int columnCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : ColumnCount; }
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    DictRows m_rows;
    Editor m_editor;
};
