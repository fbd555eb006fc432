#pragma once
// The document's file table: one row per LocFile with its name and its status "checked/all",
// red while an entry is unchecked, with an icon while an entry has an error (or a warning); while
// a search or filter narrows the entries, how many each file shows. Rows are reordered by
// dragging; files and bundles dropped
// from the file manager are handed to the document a moment later (so the drop is answered
// before the document asks for previous versions).

#include "LocFile.h"
#include "QualityCache.h"

#include <QAbstractTableModel>

class MyDocument;

class FileTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { NameColumn, StatusColumn, FoundColumn, ColumnCount };
    // The row drag's own type: row indexes plus the model's identity, so that only this table
    // takes its rows.
    static QString dragRowTypeName() { return QStringLiteral("application/x-vocabrix-file-rows"); }

    explicit FileTableModel(MyDocument *document, QObject *parent = nullptr);

    LocFilePtr fileAt(int row) const;
    int rowOfFile(const LocFile *file) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction | Qt::CopyAction; }
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    // The dropped paths the document takes (accepted extensions), in order.
    static QStringList acceptedPaths(const QMimeData *data);

public slots:
    // Status and colour of every row read again (an entry's check mark changed; none: any entry).
    void refreshStatus(const LocEntry *changed = nullptr);
    // The found column read again (a search ran, an entry left the shown list).
    void refreshFound();

    static QStringList shownNames(const QList<LocFilePtr> &files);

private:
    void reload();
    MyDocument *m_document;
    QList<LocFilePtr> m_files;  // the document's list as last announced
    QStringList m_names;        // what the name column shows, row by row
    bool m_refreshPending = false;
    // Per file, read again after entries changed (their texts change after they announce it).
    Qa::FileSummary summary(const LocFile &file) const;
    mutable Qa::QualityCache m_quality;
    mutable QHash<const LocFile *, Qa::FileSummary> m_summaries;
    // What each entry counts for in its file's summary, so that a changed entry updates the sum
    // instead of every entry of the file being looked at again.
    struct Counted {
        const LocFile *file;
        Qa::Severity severity;
    };
    mutable QHash<const LocEntry *, Counted> m_counted;
    QList<const LocEntry *> m_changed;  // since the last repaint
    bool m_changedUnknown = false;      // an entry no summary counts, or any entry
};
