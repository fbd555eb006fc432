#include "MyDocument.h"

#include "Dialogs.h"
#include "NotificationCenter.h"
#include "Settings.h"
#include "VXControllerModel.h"

#include <QEventLoop>
#include <algorithm>
#include <QFileInfo>
#include <QStringMatcher>
#include <QTimer>

MyDocument::MyDocument(QObject *parent) : QObject(parent)
{
    VXControllerModel::initialize();
    m_title = QStringLiteral("Title");
    const Settings &settings = Settings::instance();
    m_locLangFrom = settings.intValue(SettingsKey::BaseLanguage);
    m_locLangTo = settings.intValue(SettingsKey::TargetLanguage);
    registerMyNotifications();
}

// Connections made with `this` as context end with the document: that is the whole of dealloc's
// work of stopping the observations.
MyDocument::~MyDocument() = default;

QString MyDocument::documentExtension()
{
    return QStringLiteral("vocabrix");
}

QString MyDocument::documentMimeType()
{
    return QStringLiteral("application/x-vocabrix-document");
}

QString MyDocument::documentTypeName()
{
    return QStringLiteral("Vocabrix Document");
}

void MyDocument::setTitle(const QString &title)
{
    if (title == m_title) return;
    m_title = title;
    emit titleChanged();
}

void MyDocument::setLocLangFrom(int tag)
{
    if (tag == m_locLangFrom) return;
    m_locLangFrom = tag;
    emit locLangFromChanged();
}

void MyDocument::setLocLangTo(int tag)
{
    if (tag == m_locLangTo) return;
    m_locLangTo = tag;
    emit locLangToChanged();
}

void MyDocument::setFiles(const QList<LocFilePtr> &files)
{
    m_files = files;
    // A search in force holds for files added or read again (Revert) as for the others.
    if (isSearching()) search(m_searchText);
    emit filesChanged();
}

void MyDocument::setLoadingFiles(bool on)
{
    if (on == m_loadingFiles) return;
    m_loadingFiles = on;
    emit loadingFilesChanged(on);
}

QString MyDocument::displayName() const
{
    return m_filePath.isEmpty() ? QStringLiteral("Untitled") : QFileInfo(m_filePath).fileName();
}

void MyDocument::update()
{
    updateChangeCount(ChangeDone);
}

void MyDocument::updateChangeCount(ChangeType change)
{
    const bool wasEdited = isDocumentEdited();
    switch (change) {
    case ChangeDone: ++m_changeCount; break;
    case ChangeUndone: --m_changeCount; break;
    case ChangeCleared: m_changeCount = 0; break;
    }
    if (wasEdited != isDocumentEdited()) emit documentEditedChanged(isDocumentEdited());
}

void MyDocument::registerMyNotifications()
{
    NotificationCenter &center = NotificationCenter::instance();
    connect(&center, &NotificationCenter::documentHasChanged, this, [this](QObject *document) {
        if (document == this) update();
    });
    connect(&center, &NotificationCenter::locEntryHasModified, this, &MyDocument::entryModified);
    connect(&center, &NotificationCenter::locFileFinishReadingFile, this, [this](LocFile *file) {
        if (m_reading.remove(file) && m_reading.isEmpty()) emit filesRead();
    });
    Settings &settings = Settings::instance();
    connect(&settings, &Settings::ignoreEmptyWordsChanged, this,
            [this] { observeValueForKeyPath(SettingsKey::IgnoreEmptyWords); });
    connect(&settings, &Settings::ignoreLocalizedWordsChanged, this,
            [this] { observeValueForKeyPath(SettingsKey::IgnoreLocalizedWords); });
    connect(this, &MyDocument::locLangFromChanged, this, [this] { observeValueForKeyPath(QStringLiteral("locLangFrom")); });
    connect(this, &MyDocument::locLangToChanged, this, [this] { observeValueForKeyPath(QStringLiteral("locLangTo")); });
}

void MyDocument::observeValueForKeyPath(const QString &key)
{
    if (key == SettingsKey::IgnoreEmptyWords || key == SettingsKey::IgnoreLocalizedWords)
        search(m_searchText);
    else if (key == QLatin1String("locLangFrom") || key == QLatin1String("locLangTo"))
        resetDictionaryPath();
}

void MyDocument::search(const OptString &text)
{
    m_searchText = text;
    for (const LocFilePtr &file : std::as_const(m_files)) {
        file->searchEntryWithKey(text);
        if (!m_onlyChangedBase && !m_onlyToDo) continue;
        QList<LocEntryPtr> shown = file->entries();
        shown.removeIf([this](const LocEntryPtr &e) {
            return (m_onlyChangedBase && !e->previousBaseWord()) || (m_onlyToDo && !isToDo(*e));
        });
        file->setEntries(shown);
    }
    emit searchPerformed();
}

bool MyDocument::isSearching() const
{
    return (m_searchText && !m_searchText->isEmpty()) || m_onlyChangedBase || m_onlyToDo;
}

void MyDocument::setShowOnlyChangedBase(bool on)
{
    if (on == m_onlyChangedBase) return;
    m_onlyChangedBase = on;
    search(m_searchText);
}

void MyDocument::setShowOnlyToDo(bool on)
{
    if (on == m_onlyToDo) return;
    m_onlyToDo = on;
    search(m_searchText);
}

bool MyDocument::isToDo(const LocEntry &entry)
{
    if (!entry.isChecked()) return true;
    const OptString base = entry.baseWord();
    if (!base || entry.localizedWord() != base) return false;
    return std::any_of(base->cbegin(), base->cend(), [](QChar c) { return c.isLetter(); });
}

qsizetype MyDocument::changedBaseCount() const
{
    qsizetype count = 0;
    for (const LocFilePtr &file : m_files)
        for (const LocEntryPtr &e : file->allEntries())
            if (e->previousBaseWord()) ++count;
    return count;
}

QList<LocEntryPtr> MyDocument::sameBaseWordEntries(const LocEntry &entry) const
{
    QList<LocEntryPtr> same;
    const OptString base = entry.baseWord();
    const OptString word = entry.localizedWord();
    if (!base || base->isEmpty() || !word || word->isEmpty()) return same;
    // A base word is cut out of its entry's text as it stands there: an entry whose text does not
    // hold it cannot have it, and most are left out without cutting a word.
    const QStringMatcher holdsBase(*base);
    for (const LocFilePtr &file : m_files)
        for (const LocEntryPtr &e : file->allEntries())
            if (e.get() != &entry && !e->isChecked() && holdsBase.indexIn(e->entry()) >= 0 && e->baseWord() == base
                && e->localizedWord() != word)
                same.append(e);
    return same;
}

void MyDocument::useSameTranslation(const LocEntry &entry, const QList<LocEntryPtr> &others)
{
    const OptString word = entry.localizedWord();
    if (!word || others.isEmpty()) return;
    for (const LocEntryPtr &e : others) {
        e->setLocalizedWord(word);
        e->setCheck(false);  // a new word checks the entry: this one the translator has not seen
    }
    update();
}

void MyDocument::switchButton(const LocEntryPtr &entry, bool check)
{
    if (entry) entry->setCheck(check);
    update();
}

void MyDocument::checkLocalized(const QList<LocEntryPtr> &selected)
{
    for (const LocEntryPtr &entry : selected)
        if (entry) entry->setCheck(true);
}

bool MyDocument::waitUntilFilesRead()
{
    if (m_reading.isEmpty()) return true;
    // Every run of the older tool is stopped at its own timeout and then ends the reading, so this
    // wait ends with it; the bound here is only a guard against a handler that never reports.
    QEventLoop loop;
    connect(this, &MyDocument::filesRead, &loop, &QEventLoop::quit);
    QTimer::singleShot(std::chrono::minutes(30), &loop, &QEventLoop::quit);
    loop.exec();
    return m_reading.isEmpty();
}

void MyDocument::removeFiles(const QList<LocFilePtr> &files)
{
    for (const LocFilePtr &f : files) m_reading.remove(f.get());
    if (m_reading.isEmpty()) emit filesRead();
    QList<LocFilePtr> kept = m_files;
    kept.removeIf([&files](const LocFilePtr &f) { return files.contains(f); });
    setFiles(kept);
    update();
}

void MyDocument::saveSpellCheck()
{
    if (!m_spellCheck) return;
    Settings &settings = Settings::instance();
    settings.setValue(SettingsKey::ContinuousSpellCheckingEnabled, *m_spellCheck);
    settings.synchronize();
}

Dialogs &MyDocument::dialogs() const
{
    return m_dialogs ? *m_dialogs : Dialogs::silent();
}
