#include "LocFile.h"

#include "Archive.h"
#include "NotificationCenter.h"
#include "Settings.h"

#include <QFileInfo>
#include <QSet>

LocFile::LocFile(const QString &path) : m_path(path) {}
LocFile::~LocFile() = default;

std::shared_ptr<LocFile> LocFile::initWithPath(const QString &path, const OptString &dictionaryPath,
                                               const OptString &previousPath)
{
    const auto kind = HandlerRegistry::kindForPath(path);
    if (!kind) return nullptr;
    std::shared_ptr<LocFile> file(new LocFile(path));
    file->registerMyNotifications();
    if (ResourceHandler *handler = HandlerRegistry::handler(*kind))
        handler->extract(*file, dictionaryPath, previousPath);
    else
        file->m_initError = QStringLiteral("No reader is available for files of type \"%1\".").arg(QFileInfo(path).suffix());
    file->setAllEntries(file->m_allEntries);
    file->searchEntryWithKey(std::nullopt);
    return file;
}

std::shared_ptr<LocFile> LocFile::initWithPath(const QString &path, const InterfaceTables &tables)
{
    const QString ext = QFileInfo(path).suffix();
    if (ext != QLatin1String("nib") && ext != QLatin1String("xib")) return nullptr;
    std::shared_ptr<LocFile> file(new LocFile(path));
    if (ResourceHandler *handler = HandlerRegistry::handler(HandlerKind::Nibtool))
        handler->parseEntries(*file, tables.dictEntry, tables.originalEntry);
    file->registerMyNotifications();
    return file;
}

void LocFile::setEntries(const QList<LocEntryPtr> &entries)
{
    m_entries = entries;
    emit entriesChanged();
}

void LocFile::setAllEntries(const QList<LocEntryPtr> &entries)
{
    m_allEntries = entries;
    emit allEntriesChanged();
}

void LocFile::hideEntry(const LocEntry *entry)
{
    QList<LocEntryPtr> shown = m_entries;
    shown.removeIf([entry](const LocEntryPtr &e) { return e.get() == entry; });
    if (shown.size() != m_entries.size()) setEntries(shown);
}

namespace {
// Entries keep their words escaped as in a string table; the pairs a handler returns are plain.
QString plainWord(const QString &word)
{
    if (!word.contains(u'\\')) return word;
    QString plain = word;
    plain.replace(QLatin1String("\\n"), QLatin1String("\n")).replace(QLatin1String("\\\""), QLatin1String("\""));
    return plain.replace(QLatin1String("\\\\"), QLatin1String("\\"));
}
}  // namespace

StringMap LocFile::makeLocalizedFileAt(const QString &folder)
{
    const auto kind = HandlerRegistry::kindForPath(m_path);
    ResourceHandler *handler = kind ? HandlerRegistry::handler(*kind) : nullptr;
    return handler ? translatorPairs(handler->makeLocalized(*this, folder)) : StringMap();
}

StringMap LocFile::translatorPairs(const StringMap &pairs) const
{
    // A word left as its base word teaches the dictionary nothing unless the translator checked
    // it ("OK" = "OK"); taking it anyway would pre-fill and check every entry of the next
    // document with the untranslated text.
    QSet<QString> confirmed;
    for (const LocEntryPtr &entry : m_allEntries) {
        if (!entry->isChecked() || !StringUtility::wordsEqual(entry->localizedWord(), entry->baseWord())) continue;
        confirmed.insert(*entry->baseWord());
        confirmed.insert(plainWord(*entry->baseWord()));
    }
    StringMap kept;
    kept.reserve(pairs.size());
    for (const auto &[base, localized] : pairs) {
        if (base.isEmpty() || localized.isEmpty()) continue;
        if (localized == base && !confirmed.contains(base.toString())) continue;
        kept.insert(base, localized);
    }
    return kept;
}

void LocFile::resetEntries()
{
    searchEntryWithKey(std::nullopt);
}

void LocFile::searchEntryWithKey(const OptString &key)
{
    const Settings &settings = Settings::instance();
    EntrySearch::Filters filters;
    filters.ignoreEmpty = settings.boolValue(SettingsKey::IgnoreEmptyWords);
    filters.ignoreLocalized = settings.boolValue(SettingsKey::IgnoreLocalizedWords);
    setEntries(m_search.search(m_allEntries, key, filters));
}

LocEntryPtr LocFile::entryForKey(const OptString &baseWord) const
{
    if (!baseWord || baseWord->isEmpty()) return nullptr;
    for (const LocEntryPtr &e : m_allEntries)
        if (e->baseWord() == *baseWord) return e;
    return nullptr;
}

StringMap LocFile::dictionaryWithEntries() const
{
    StringMap map;
    for (const LocEntryPtr &e : m_allEntries) {
        const OptString base = e->baseWord();
        const OptString loc = e->localizedWord();
        if (base && loc && *base != *loc) map.insert(*base, *loc);
    }
    return map;
}

void LocFile::finishReadingFile()
{
    NotificationCenter::instance().postLocFileFinishReadingFile(this);
}

QString LocFile::fileName() const
{
    return QFileInfo(m_path).fileName();
}

qsizetype LocFile::checkedCount() const
{
    return std::count_if(m_allEntries.cbegin(), m_allEntries.cend(), [](const LocEntryPtr &e) { return e->isChecked(); });
}

EntryColor LocFile::color() const
{
    for (const LocEntryPtr &e : m_allEntries)
        if (!e->isChecked()) return EntryColor::Red;
    return EntryColor::Black;
}

QString LocFile::status() const
{
    return QStringLiteral("%1/%2").arg(checkedCount()).arg(m_allEntries.size());
}

void LocFile::encodeWithCoder(QDataStream &out) const
{
    Archive::writeClass(out, QStringLiteral("LocFile"), classVersion);
    Archive::writeString(out, m_path);
    out << m_previousVersionForm;
    Archive::writeCount(out, m_allEntries.size());
    for (const LocEntryPtr &e : m_allEntries) e->encodeWithCoder(out);
}

std::shared_ptr<LocFile> LocFile::initWithCoder(QDataStream &in)
{
    qint32 version = 0;
    if (!Archive::readClass(in, QStringLiteral("LocFile"), classVersion, &version)) return nullptr;
    const auto path = Archive::readString(in);
    if (!path) return nullptr;
    qint32 form = 0;
    if (version >= 2) in >> form;
    if (in.status() != QDataStream::Ok) return nullptr;
    // An archived entry takes at least its class header, text length and mark.
    const auto count = Archive::readCount(in, 16);
    if (!count) return nullptr;
    std::shared_ptr<LocFile> file(new LocFile(*path));
    file->m_previousVersionForm = form;
    QList<LocEntryPtr> entries;
    entries.reserve(*count);
    for (qsizetype i = 0; i < *count; ++i) {
        LocEntryPtr e = LocEntry::initWithCoder(in);
        if (!e) return nullptr;
        entries.append(e);
    }
    file->m_allEntries = entries;
    file->searchEntryWithKey(std::nullopt);
    file->registerMyNotifications();
    return file;
}
