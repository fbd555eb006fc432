#pragma once
// One localizable string. It stores nothing but its raw entry text (an optional comment line and
// a pair line, exactly as in a string table) and a check mark; key, base word, localized word,
// object id and word type are cut out of the text on every read, so the text is the single
// source of truth and what a document saves.

#include "StringMap.h"
#include "StringUtility.h"

#include <QDataStream>
#include <memory>

enum class EntryColor { Black, Red };

class LocEntry {
public:
    // Makes an entry from its raw text and sets its first check mark (posts LocEntryHasModified).
    static std::shared_ptr<LocEntry> initWithEntry(const QString &entry);
    // Builds the pair line "base" = "localized" (absent localized: the base word), words as given.
    static std::shared_ptr<LocEntry> initWithBaseWord(const QString &baseWord, const OptString &locWord);

    // Raw text; interface-file entries carry "; ObjectID = \"" in their comment.
    const QString &entry() const { return m_entry; }
    bool isLeopardNibEntry() const;
    OptString keyWord() const;
    OptString baseWord() const;
    OptString localizedWord() const;
    OptString objectID() const;
    OptString wordType() const;
    OptString entryName() const { return localizedWord(); }
    const QString &entryDescription() const { return m_entry; }
    QString entryBody() const;
    QString entryBodyAsString() const;
    EntryColor color() const { return isChecked() ? EntryColor::Black : EntryColor::Red; }

    // The boxed mark: unset reads as false.
    std::optional<bool> check() const { return m_check; }
    bool isChecked() const { return m_check.value_or(false); }
    // Stores the mark and posts LocEntryHasModified, on every call.
    void setCheck(bool check);
    // Rewrites the pair line's value (escaped); checks the entry when the word changes.
    void setLocalizedWord(const OptString &word);
    void checkNeedToLocalize();
    void checkNeedToLocalizeWithDictionary(const StringMap *dictionary);
    void registerMyNotifications() {}

    // Notes kept beside the raw text, never part of it (the text keeps its one shape for every
    // reader of entries): the comment the base table's developer wrote above the pair, shown to
    // the translator; and, when the base text changed since the previous release, the previous
    // release's base word, so the translator can see what the old translation was made for.
    const QString &developerComment() const { return m_developerComment; }
    void setDeveloperComment(const QString &comment) { m_developerComment = comment; }
    const OptString &previousBaseWord() const { return m_previousBaseWord; }
    void setPreviousBaseWord(const OptString &word) { m_previousBaseWord = word; }

    // Archive: class name, class version 2, the text, the boxed mark, then the two notes.
    // Version 1 archives (text and mark only) still read. Reading posts nothing.
    static constexpr qint32 classVersion = 2;
    void encodeWithCoder(QDataStream &out) const;
    static std::shared_ptr<LocEntry> initWithCoder(QDataStream &in);

    // Direct restore, as an archive does: no rules, no notification.
    LocEntry(const QString &entry, std::optional<bool> check) : m_entry(entry), m_check(check) {}

private:
    void applyInitialCheck();
    QString m_entry;
    std::optional<bool> m_check;
    QString m_developerComment;
    OptString m_previousBaseWord;
};

using LocEntryPtr = std::shared_ptr<LocEntry>;
