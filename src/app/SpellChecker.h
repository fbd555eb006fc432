#pragma once
// Spelling in one language through hunspell. Dictionaries are looked up by the language's
// abbreviation (fr, de, en, pt-BR) in the folders of installed hunspell dictionaries; a language
// without one leaves the checker without a dictionary, and every word then counts as correct.

#include <QString>
#include <QStringEncoder>
#include <QStringList>
#include <memory>

class Hunspell;

class SpellChecker {
public:
    SpellChecker();
    ~SpellChecker();

    // Folders searched for <name>.aff / <name>.dic, in order: $VOCABRIX_HUNSPELL_DIR, then the
    // system's hunspell and myspell folders.
    static QStringList dictionaryFolders();
    // The dictionary name for a language abbreviation ("fr" -> "fr_FR", "en" -> "en_US",
    // "pt-BR" -> "pt_BR"), given the names available; empty when none fits.
    static QString dictionaryNameFor(const QString &abbreviation, const QStringList &available);

    // Loads the language's dictionary; false (and no dictionary) when none is installed.
    bool setLanguage(const QString &abbreviation);
    bool hasDictionary() const { return m_hunspell != nullptr; }
    const QString &dictionaryName() const { return m_name; }

    bool isCorrect(const QString &word) const;
    QStringList suggestions(const QString &word, int limit = 6) const;

private:
    std::unique_ptr<Hunspell> m_hunspell;
    QString m_name;
    QString m_encoding;
    std::string encode(const QString &word) const;
};
