#pragma once
// The entry table: the shown entries of the selected file, with the check box, the key, the base
// word and the localized word. Editing the localized word goes through setLocalizedWord (which
// checks the entry when the word changes) and marks the document changed; the check box goes
// through the document's switchButton. The check column shows an icon for an entry with a
// problem, its tool tip the problems.

#include "LocFile.h"
#include "QualityCache.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QPointer>

class MyDocument;

class EntryTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { CheckColumn, KeyColumn, BaseWordColumn, LocalizedWordColumn, ColumnCount };

    explicit EntryTableModel(MyDocument *document, QObject *parent = nullptr);

    // The file whose shown entries are listed; none: an empty table.
    void setFile(const LocFilePtr &file);
    const LocFilePtr &file() const { return m_file; }
    LocEntryPtr entryAt(int row) const;
    int rowOfEntry(const LocEntry *entry) const;
    // Only the entries with a problem (see QualityChecks.h). An entry fixed while listed stays
    // until the list is rebuilt, so that it does not vanish under the translator's hands.
    void setProblemsOnly(bool on);
    bool problemsOnly() const { return m_problemsOnly; }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

public slots:
    // Repaints the entry's row (its word or check mark changed).
    void entryChanged(const LocEntry *entry);

signals:
    // Around a change made in the table (a word, a mark), for undo.
    void entryAboutToChange(const LocEntryPtr &entry, const QString &actionName);
    void entryChangeEnded();
    // A word typed in the table was written into its entry.
    void wordCommitted(const LocEntryPtr &entry);
    // The shown list is about to be rebuilt / was rebuilt: the window keeps its selection.
    void entriesAboutToReset();
    void entriesReset();

private:
    void reload();
    void rebuild();
    QPointer<MyDocument> m_document;
    LocFilePtr m_file;
    QList<LocEntryPtr> m_entries;
    QHash<const LocEntry *, int> m_rows;  // built on demand: check marks arrive by the thousand
    mutable int m_scansSinceRebuild = 0;
    QMetaObject::Connection m_entriesConnection;
    bool m_problemsOnly = false;
    mutable Qa::QualityCache m_quality;  // the check column's icon and tool tip
};
