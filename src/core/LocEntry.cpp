#include "LocEntry.h"

#include "Archive.h"
#include "EntrySearch.h"
#include "NotificationCenter.h"
#include "TextSearch.h"

using namespace StringUtility;

namespace {
const QString kObjectIdMark = QStringLiteral("; ObjectID = \"");
const QString kPairOpen = QStringLiteral(" = \"");
const QString kPairClose = QStringLiteral("\";");
const QString kQuote = QStringLiteral("\"");
const QString kCommentEndQuote = QStringLiteral("*/\n\"");
const QString kPairLineFormat = QStringLiteral("\"%1\" = \"%2\";");

QString pairLine(const QString &key, const QString &value)
{
    return kPairLineFormat.arg(key, value);
}
}  // namespace

std::shared_ptr<LocEntry> LocEntry::initWithEntry(const QString &entry)
{
    auto e = std::make_shared<LocEntry>(entry, std::nullopt);
    e->applyInitialCheck();
    return e;
}

std::shared_ptr<LocEntry> LocEntry::initWithBaseWord(const QString &baseWord, const OptString &locWord)
{
    // A single arg() call: words holding "%1" must go in as they are.
    auto e = std::make_shared<LocEntry>(pairLine(baseWord, locWord ? *locWord : baseWord), std::nullopt);
    if (!wordsEqual(e->localizedWord(), e->baseWord())) e->setCheck(true);
    e->applyInitialCheck();
    return e;
}

void LocEntry::applyInitialCheck()
{
    if (!m_check) setCheck(false);
    const OptString loc = localizedWord();
    const OptString base = baseWord();
    const QString space = QStringLiteral(" ");
    if ((wordLength(loc) == 0 && wordLength(base) == 0) || (loc == space && base == space)) setCheck(true);
    registerMyNotifications();
}

bool LocEntry::isLeopardNibEntry() const
{
    // Asked for on every read of a field: the exact search, not QString's general one.
    return TextSearch::find(reinterpret_cast<const char16_t *>(m_entry.constData()), m_entry.size(), u"; ObjectID = \"", 0) >= 0;
}

OptString LocEntry::objectID() const
{
    // Cut at the quote that closes the id, not at the comment's end: a localizer note may follow
    // the ObjectID field ("; Note = ..."), and the id must not take it along.
    return substringFrom(m_entry, kObjectIdMark, kQuote);
}

OptString LocEntry::wordType() const
{
    return substringFrom(m_entry, QStringLiteral("\"; "), kPairOpen);
}

OptString LocEntry::keyWord() const
{
    if (isLeopardNibEntry()) return substringFrom(m_entry, kCommentEndQuote, kQuote);
    const OptString comment = substringTo(m_entry, kCommentEndQuote);
    if (!comment) return std::nullopt;
    static const QString closers[] = {QStringLiteral("\" = \""), QStringLiteral("\"= \""), QStringLiteral("\" =\""),
                                      QStringLiteral("\"=\""), kQuote};
    for (const QString &close : closers)
        if (OptString key = substringFrom(*comment, kQuote, close)) return key;
    return std::nullopt;
}

OptString LocEntry::baseWord() const
{
    if (isLeopardNibEntry()) {
        const OptString type = wordType();
        if (!type) return std::nullopt;
        return substringFrom(m_entry, QStringLiteral("%1 = \"").arg(*type), kPairClose);
    }
    if (OptString w = substringFrom(m_entry, QStringLiteral("\n\""), QStringLiteral("\" = "))) return w;
    // A pair line with an empty key has an empty base word, not the quotes (or a piece of the
    // comment) that the later cuts would give: such entries count as empty everywhere.
    const qsizetype lineStart = m_entry.indexOf(u'\n') + 1;
    if (QStringView(m_entry).mid(lineStart).startsWith(QLatin1String("\"\" = "))) return QString();
    if (OptString w = substringFrom(m_entry, kQuote, QStringLiteral("\" = "))) return w;
    if (OptString w = substringTo(m_entry, QStringLiteral(" = "))) return w;
    return QString();
}

OptString LocEntry::localizedWord() const
{
    if (!m_entry.contains(u'\n')) return substringFrom(m_entry, kPairOpen, kPairClose);
    const OptString rest = substringFrom(m_entry, QStringLiteral("\n"));
    if (!rest) return std::nullopt;
    return substringFrom(*rest, kPairOpen, kPairClose);
}

QString LocEntry::entryBody() const
{
    OptString key = substringFrom(m_entry, kQuote, QStringLiteral("\"=\""));
    if (!key) key = baseWord();
    return pairLine(wordOrEmpty(key), wordOrEmpty(localizedWord()));
}

QString LocEntry::entryBodyAsString() const
{
    OptString key = substringFrom(m_entry, QStringLiteral("/* \""), QStringLiteral("\"=\""));
    if (!key) key = baseWord();
    const QString commentEnd = QStringLiteral("\" */\n");
    const qsizetype at = m_entry.indexOf(commentEnd);
    const qsizetype start = at < 0 ? 0 : at + commentEnd.size();
    OptString value = substringFrom(m_entry, kPairOpen, kPairClose, start, m_entry.size() - start);
    if (!value) value = localizedWord();
    return pairLine(wordOrEmpty(key), wordOrEmpty(value));
}

void LocEntry::setCheck(bool check)
{
    m_check = check;
    NotificationCenter::instance().postLocEntryHasModified(this);
}

void LocEntry::setLocalizedWord(const OptString &word)
{
    if (!word) return;
    const bool changed = !wordsEqual(localizedWord(), word);
    const QString escaped = escapeForStringsFile(*word);
    const QString mark = isLeopardNibEntry() ? QStringLiteral("\" = \"") : kPairOpen;
    const qsizetype at = m_entry.indexOf(mark);
    // A text without a pair line has no value to rewrite; it is left as it is.
    if (at >= 0) {
        m_entry = m_entry.left(at + mark.size()) + escaped + kPairClose;
        EntrySearch::noteTextRewritten();
    }
    // Checked after the rewrite, so that observers of the notification read the new word.
    if (changed) setCheck(true);
}

void LocEntry::checkNeedToLocalize()
{
    if (wordsEqual(localizedWord(), baseWord())) setCheck(true);
}

void LocEntry::checkNeedToLocalizeWithDictionary(const StringMap *dictionary)
{
    if (!dictionary) return;
    const OptString base = baseWord();
    if (!wordsEqual(base, localizedWord())) return;
    const auto value = dictionary->find(*base);
    if (value && *value == *base) setCheck(true);
}

void LocEntry::encodeWithCoder(QDataStream &out) const
{
    Archive::writeClass(out, QStringLiteral("LocEntry"), classVersion);
    Archive::writeString(out, m_entry);
    Archive::writeBoxedBool(out, m_check);
    Archive::writeString(out, m_developerComment);
    out << bool(m_previousBaseWord);
    Archive::writeString(out, m_previousBaseWord.value_or(QString()));
}

std::shared_ptr<LocEntry> LocEntry::initWithCoder(QDataStream &in)
{
    qint32 version = 0;
    if (!Archive::readClass(in, QStringLiteral("LocEntry"), classVersion, &version)) return nullptr;
    const auto text = Archive::readString(in);
    if (!text) return nullptr;
    const auto check = Archive::readBoxedBool(in);
    if (!check) return nullptr;
    auto entry = std::make_shared<LocEntry>(*text, *check);
    if (version >= 2) {
        const auto comment = Archive::readString(in);
        bool hasPrevious = false;
        in >> hasPrevious;
        const auto previous = Archive::readString(in);
        if (!comment || !previous || in.status() != QDataStream::Ok) return nullptr;
        entry->m_developerComment = *comment;
        if (hasPrevious) entry->m_previousBaseWord = *previous;
    }
    return entry;
}
