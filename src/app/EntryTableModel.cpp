#include "EntryTableModel.h"

#include "MyDocument.h"
#include "ProblemList.h"

#include <QBrush>

using StringUtility::wordOrEmpty;

EntryTableModel::EntryTableModel(MyDocument *document, QObject *parent)
    : QAbstractTableModel(parent), m_document(document)
{
    connect(document, &MyDocument::entryModified, this, &EntryTableModel::entryChanged);
}

void EntryTableModel::setFile(const LocFilePtr &file)
{
    if (file == m_file) return;
    // Announced while the old file is still the model's, so the window can tell a rebuild of the
    // same list from another file.
    emit entriesAboutToReset();
    disconnect(m_entriesConnection);
    m_file = file;
    m_quality.clear();  // the entries of the file shown before may be gone
    if (m_file) m_entriesConnection = connect(m_file.get(), &LocFile::entriesChanged, this, &EntryTableModel::reload);
    rebuild();
}

void EntryTableModel::reload()
{
    emit entriesAboutToReset();
    rebuild();
}

void EntryTableModel::rebuild()
{
    beginResetModel();
    m_entries = m_file ? m_file->entries() : QList<LocEntryPtr>();
    if (m_problemsOnly) m_entries.removeIf([this](const LocEntryPtr &e) { return m_quality.problems(*e).isEmpty(); });
    m_rows.clear();
    m_scansSinceRebuild = 0;
    endResetModel();
    emit entriesReset();
}

void EntryTableModel::setProblemsOnly(bool on)
{
    if (on == m_problemsOnly) return;
    m_problemsOnly = on;
    reload();
}

LocEntryPtr EntryTableModel::entryAt(int row) const
{
    return row >= 0 && row < m_entries.size() ? m_entries.at(row) : nullptr;
}

int EntryTableModel::rowOfEntry(const LocEntry *entry) const
{
    if (!m_rows.isEmpty()) return m_rows.value(entry, -1);
    // One look-up after a rebuild (the window finding its selection again) is a scan: building
    // the index would cost more than it saves. Repeated look-ups (check marks by the thousand)
    // build it.
    if (++m_scansSinceRebuild > 4 && !m_entries.isEmpty()) {
        auto &rows = const_cast<QHash<const LocEntry *, int> &>(m_rows);
        rows.reserve(m_entries.size());
        for (int i = 0; i < m_entries.size(); ++i) rows.insert(m_entries.at(i).get(), i);
        return m_rows.value(entry, -1);
    }
    for (int i = 0; i < m_entries.size(); ++i)
        if (m_entries.at(i).get() == entry) return i;
    return -1;
}

void EntryTableModel::entryChanged(const LocEntry *entry)
{
    const int row = rowOfEntry(entry);
    if (row >= 0) emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

int EntryTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

int EntryTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant EntryTableModel::data(const QModelIndex &index, int role) const
{
    const LocEntryPtr entry = entryAt(index.row());
    if (!entry) return {};
    const int column = index.column();
    if (role == Qt::CheckStateRole && column == CheckColumn) return entry->isChecked() ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::ForegroundRole && !entry->isChecked()) return QBrush(Qt::red);
    if (column == CheckColumn && (role == Qt::DecorationRole || role == Qt::ToolTipRole)) {
        const QList<Qa::Problem> &problems = m_quality.problems(*entry);
        if (problems.isEmpty()) return {};
        return role == Qt::DecorationRole ? QVariant(problemIcon(Qa::worstSeverity(problems))) : QVariant(Qa::problemsText(problems));
    }
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole) return {};
    switch (column) {
    case KeyColumn: return wordOrEmpty(entry->keyWord());
    case BaseWordColumn: return wordOrEmpty(entry->baseWord());
    case LocalizedWordColumn: return wordOrEmpty(entry->localizedWord());
    default: return {};
    }
}

bool EntryTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const LocEntryPtr entry = entryAt(index.row());
    if (!entry || !m_document) return false;
    if (index.column() == CheckColumn && role == Qt::CheckStateRole) {
        emit entryAboutToChange(entry, tr("Check Mark"));
        m_document->switchButton(entry, value.value<Qt::CheckState>() == Qt::Checked);
        emit entryChangeEnded();
        entryChanged(entry.get());
        return true;
    }
    if (index.column() == LocalizedWordColumn && role == Qt::EditRole) {
        const QString word = value.toString();
        if (word == wordOrEmpty(entry->localizedWord())) return true;
        emit entryAboutToChange(entry, tr("Typing"));
        entry->setLocalizedWord(word);
        emit entryChangeEnded();
        m_document->update();
        // The check mark is announced before the text is rewritten: repaint with the new word.
        entryChanged(entry.get());
        emit wordCommitted(entry);
        return true;
    }
    return false;
}

QVariant EntryTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    switch (section) {
    case CheckColumn: return QString();
    case KeyColumn: return tr("Key");
    case BaseWordColumn: return tr("Base Word");
    case LocalizedWordColumn: return tr("Localized Word");
    default: return {};
    }
}

Qt::ItemFlags EntryTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if (index.column() == CheckColumn) f |= Qt::ItemIsUserCheckable;
    if (index.column() == LocalizedWordColumn) f |= Qt::ItemIsEditable;
    return f;
}
