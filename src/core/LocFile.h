#pragma once
// One base-language resource file of a document: its entries in file order, the shown subset
// (filtered by two settings and a search text), its state for the file table, and the dispatch
// to the handler of its resource type for reading and for writing the localized counterpart.

#include "EntrySearch.h"
#include "LocEntry.h"
#include "ResourceHandler.h"

#include <QObject>

class LocFile : public QObject {
    Q_OBJECT
public:
    // None for an extension other than nib, xib, strings, plist (compared exactly).
    static std::shared_ptr<LocFile> initWithPath(const QString &path, const OptString &dictionaryPath,
                                                 const OptString &previousPath);
    // An interface file whose entries come from a localized and a base string table. The texts
    // travel in a struct of their own: with three plain strings, a call meant for the overload
    // above (dictionary and previous paths) would silently land here.
    struct InterfaceTables {
        QString dictEntry;      // the localized table's text
        QString originalEntry;  // the base table's text
    };
    static std::shared_ptr<LocFile> initWithPath(const QString &path, const InterfaceTables &tables);
    // Archive: class "LocFile" version 1, the path, then every entry. None when corrupt.
    static constexpr qint32 classVersion = 2;  // 2: the previous version's form
    static std::shared_ptr<LocFile> initWithCoder(QDataStream &in);
    void encodeWithCoder(QDataStream &out) const;

    ~LocFile() override;

    const QString &path() const { return m_path; }
    const QString &initError() const { return m_initError; }
    void setInitError(const QString &error) { m_initError = error; }
    // How the previous version's file was written (its encoding or kind), as the handler that
    // read it numbers the forms; kept in the document, so that an export after reopening writes
    // what an export right after adding would.
    qint32 previousVersionForm() const { return m_previousVersionForm; }
    void setPreviousVersionForm(qint32 form) { m_previousVersionForm = form; }
    // Messages about what reading could not take (pairs skipped, encodings guessed); shown to
    // the user beside the entries, never instead of them.
    const QStringList &warnings() const { return m_warnings; }
    void addWarning(const QString &warning) { m_warnings.append(warning); }

    const QList<LocEntryPtr> &entries() const { return m_entries; }
    const QList<LocEntryPtr> &allEntries() const { return m_allEntries; }
    // Both lists are replaced, never changed in place, so observers learn of every rebuild.
    void setEntries(const QList<LocEntryPtr> &entries);
    void setAllEntries(const QList<LocEntryPtr> &entries);
    // Removes one entry from the shown list (an entry just checked while checked ones are hidden).
    void hideEntry(const LocEntry *entry);

    // Writes the localized file through the handler; returns the pairs the dictionary may learn
    // from it (translatorPairs of the handler's pairs).
    StringMap makeLocalizedFileAt(const QString &folder);
    // Of a handler's base-to-localized pairs, those that are the translator's work: a localized
    // word that differs from its base word, or one that an entry confirmed by its check mark.
    // Empty words never count.
    StringMap translatorPairs(const StringMap &pairs) const;
    void searchEntryWithKey(const OptString &key);
    void resetEntries();
    LocEntryPtr entryForKey(const OptString &baseWord) const;
    StringMap dictionaryWithEntries() const;
    void finishReadingFile();
    QString fileName() const;
    EntryColor color() const;
    // Stores nothing: the colour is always computed; observers are told to read it again.
    void setColor() { emit colorChanged(); }
    QString status() const;
    qsizetype checkedCount() const;
    void registerMyNotifications() {}

    // State of the older interface tool's asynchronous reading.
    QByteArray nibData;
    bool readNoDict = false;
    OptString nibResult;
    OptString tempDictPath;

signals:
    void entriesChanged();
    void allEntriesChanged();
    void colorChanged();

private:
    explicit LocFile(const QString &path);
    QString m_path;
    QString m_initError;
    qint32 m_previousVersionForm = 0;
    QStringList m_warnings;
    QList<LocEntryPtr> m_entries;
    QList<LocEntryPtr> m_allEntries;
    EntrySearch m_search;
};

using LocFilePtr = std::shared_ptr<LocFile>;
