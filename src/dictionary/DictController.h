#pragma once
// The lookup panel's model: the rows of one pair's dictionary, read whole each time the path is
// set, and the rows shown for the latest look-up. It only reads the dictionary. The window
// (src/app/dictionary/DictPanel) links it to the search field, the base-word field and the
// entry editor.

#include "DictSearch.h"

#include <QObject>

class StringMap;

class DictController : public QObject {
    Q_OBJECT
public:
    explicit DictController(QObject *parent = nullptr) : QObject(parent) {}

    // Stores the path and loads the file's pairs; a missing or unreadable file gives no rows.
    void setPath(const QString &path);
    const QString &path() const { return m_path; }
    // Replaces the rows by the map's distinct pairs and applies the latest look-up again.
    void addDictionary(const StringMap &map);
    const DictRows &entries() const { return m_entries; }

    // The filter: rows whose key or value holds the text, case and diacritics ignored. The
    // latest call wins; an empty text shows every row.
    void lookup(const QString &text);
    const QString &lookupText() const { return m_lookupText; }
    const DictRows &shownEntries() const { return m_shown; }

    QStringList valuesStartFromString(const QString &prefix) const
    {
        return DictSearch::valuesStartFromString(m_entries, prefix);
    }
    QList<DictSearch::FuzzyMatch> fuzzyMatches(const QString &baseWord) const
    {
        return DictSearch::fuzzyMatches(m_entries, baseWord);
    }

signals:
    void entriesChanged();
    void shownEntriesChanged();

private:
    QString m_path;
    DictRows m_entries;
    DictRows m_shown;
    QString m_lookupText;
    bool m_shownValid = false;  // m_shown was filtered from the present rows
};
