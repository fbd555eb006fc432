// The engines and handlers against the shared corpus of real files. Expected values come from
// outside only: tables Apple's ibtool wrote (ibtool-golden exactly, translated tables of
// xib-pairs, storyboards and nib folders by key and text), and the maps a peer reader gave for
// every string table (expected-maps). Without the corpus every test skips.

#include "CaseData.h"
#include "Handlers.h"
#include "IbtoolTable.h"
#include "LocFile.h"
#include "PropertyList.h"
#include "StringsHandler.h"
#include "StringsLayout.h"
#include "StringsTable.h"
#include "TextFile.h"
#include "XmlInterfaceFile.h"
#include "nib/CompiledNib.h"
#include "nib/KeyedArchiveGraph.h"
#include "nib/NibArchive.h"
#include "nib/NibArchiveGraph.h"
#include "nibtool/NibtoolListing.h"

#include <QDirIterator>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

using namespace interface;
using TestSupport::corpusDir;
using TestSupport::corpusFiles;
using TestSupport::readFile;
using TestSupport::S;

namespace {

QString rel(const QString &path) { return QDir(corpusDir()).relativeFilePath(path); }

QString decoded(const QString &path) { return decodeTextFileData(readFile(path)).value_or(QString()); }

// The blocks of an ibtool table: a comment naming an ObjectID just before a pair. Tables of the
// older tool, keyed by text, have none.
struct Block {
    QString comment, objectId, key, pair;  // key as written (escaped)
};
QList<Block> ibtoolBlocks(const QString &text)
{
    static const QRegularExpression re(S("/\\*([^\\n]*ObjectID = \"([^\"]*)\";[^\\n]*)\\*/\\s*\\n\\s*"
                                         "(\"((?:[^\"\\\\]|\\\\.)*)\"\\s*=\\s*\"(?:[^\"\\\\]|\\\\.)*\"\\s*;)"));
    QList<Block> blocks;
    for (auto it = re.globalMatch(text); it.hasNext();) {
        const auto m = it.next();
        blocks.append({m.captured(1), m.captured(2), m.captured(4), m.captured(3)});
    }
    return blocks;
}

// <project>/<commit>/<lang>.lproj/X.strings with Base.lproj/X.xib or .storyboard, or a legacy
// <lang>.lproj/X.nib/designable.nib, beside it: one row per table.
void addPairRows(const QStringList &roots)
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("table");
    for (const QString &root : roots) {
        for (const QString &table : corpusFiles(root, {S("*.strings")})) {
            const QFileInfo info(table);
            const QDir commit(QDir::cleanPath(info.absolutePath() + S("/..")));
            const QString stem = info.completeBaseName();
            QStringList candidates{S("Base.lproj/%1.xib").arg(stem), S("Base.lproj/%1.storyboard").arg(stem)};
            for (const QString &l : commit.entryList({S("*.lproj")}, QDir::Dirs))
                candidates.append(l + S("/%1.nib/designable.nib").arg(stem));
            for (const QString &c : candidates)
                if (QFileInfo::exists(commit.filePath(c))) {
                    QTest::newRow(qPrintable(rel(table))) << commit.filePath(c) << table;
                    break;
                }
        }
    }
}

std::unique_ptr<XmlInterfaceFile> openXml(const QString &path, QString *error)
{
    auto file = openInterfaceFile(path, error);
    return std::unique_ptr<XmlInterfaceFile>(dynamic_cast<XmlInterfaceFile *>(file.release()));
}

// Names older Xcode versions wrote for the same kind of object.
QString canonicalClass(QString cls)
{
    if (cls == u"IBBindingConnection" || cls == u"BindingConnection") cls = S("CocoaBindingsConnection");
    if (cls == u"NSPanel") cls = S("NSWindow");
    if (cls == u"IBNSViewController") cls = S("NSViewController");
    return cls;
}

// Attribute values and leaf texts of a parse, with their byte spans: where a merge may differ.
struct Slot {
    QString name, value;
    qsizetype start, end;
};
QList<Slot> slotsOf(const XmlDocument &xml)
{
    QList<Slot> out;
    for (int i = 0; i < int(xml.elements().size()); ++i) {
        const XmlElement &el = xml.elements()[size_t(i)];
        for (const XmlAttribute &a : el.attributes)
            out.append({QString::number(i) + u'@' + QString::fromUtf8(a.name), a.value, a.valueStart, a.valueEnd});
        if (el.children.empty() && !el.selfClosing)
            out.append({QString::number(i) + u'#', xml.text(i), el.contentStart, el.contentEnd});
    }
    return out;
}

QByteArray withoutSpans(const QByteArray &bytes, QList<QPair<qsizetype, qsizetype>> spans)
{
    std::sort(spans.begin(), spans.end());
    QByteArray out;
    qsizetype at = 0;
    for (const auto &[s, e] : spans) {
        out += bytes.mid(at, s - at) + '\x01';
        at = e;
    }
    return out + bytes.mid(at);
}

// The nib files and nib folders under nibs/ (files inside a folder belong to it).
QStringList corpusNibs()
{
    QStringList nibs;
    if (corpusDir().isEmpty()) return nibs;
    QDirIterator it(corpusDir() + S("/nibs"), {S("*.nib")}, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!QFileInfo(path).absolutePath().endsWith(u".nib")) nibs.append(path);
    }
    nibs.sort();
    return nibs;
}

QStringList sortedValues(const QList<LocalizableString> &strings)
{
    QStringList v;
    for (const LocalizableString &s : strings) v.append(s.value);
    v.sort();
    return v;
}

// The interface table of a nib (object id, key, value of every pair), or none for a table of
// the code that shares the nib's name.
struct TableEntry {
    QString objectId, key, value;
};
std::optional<QList<TableEntry>> interfaceTable(const QString &path)
{
    const auto text = readTextFileAtPath(path);
    if (!text) return std::nullopt;
    QList<TableEntry> entries;
    for (const Block &b : ibtoolBlocks(*text)) {
        const auto pair = StringsTable::parse(b.pair);
        if (!pair || pair->isEmpty()) return std::nullopt;
        entries.append({b.objectId, pair->at(0).first.toString(), pair->at(0).second.toString()});
    }
    if (entries.isEmpty() || entries.size() != text->count(u"\" = \"")) return std::nullopt;
    return entries;
}

// Everything but the translated strings is as it was; strings may be changed in place or
// copied to new objects at the end. `translated` holds every text a translation put.
bool sameValues(const plist::Value &a, const plist::Value &b, const nib::KeyedArchiveGraph &gb,
                const QSet<QString> &translated)
{
    const auto uid = [](const plist::Value &v) -> std::optional<int> {
        if (!v.isDictionary() || v.dictionary().size() != 1 || v.dictionary().first().first != u"CF$UID")
            return std::nullopt;
        return int(v.dictionary().first().second.integer());
    };
    if (a == b) return true;
    if (const auto ua = uid(a), ub = uid(b); ua && ub) return translated.contains(gb.text(*ub).value_or(QString()));
    if (a.isString() && b.isString()) return translated.contains(b.string());
    if (a.type() != b.type()) return false;
    if (a.isDictionary()) {
        if (a.dictionary().size() != b.dictionary().size()) return false;
        for (qsizetype i = 0; i < a.dictionary().size(); ++i)
            if (a.dictionary()[i].first != b.dictionary()[i].first
                || !sameValues(a.dictionary()[i].second, b.dictionary()[i].second, gb, translated))
                return false;
        return true;
    }
    if (!a.isArray() || a.array().size() != b.array().size()) return false;
    for (qsizetype i = 0; i < a.array().size(); ++i)
        if (!sameValues(a.array()[i], b.array()[i], gb, translated)) return false;
    return true;
}

QString differenceBesidesStrings(const nib::CompiledNib &a, const nib::CompiledNib &b, const QSet<QString> &translated)
{
    if (a.form() != b.form()) return S("container changed");
    if (a.form() == nib::NibForm::NibArchive) {
        const auto &gb = static_cast<const nib::NibArchiveGraph &>(b.graph());
        const nib::NibArchive &x = static_cast<const nib::NibArchiveGraph &>(a.graph()).archive(), &y = gb.archive();
        if (x.keys != y.keys || x.trailing != y.trailing || x.formatVersion != y.formatVersion
            || x.coderVersion != y.coderVersion || y.objects.size() < x.objects.size() || y.values.size() < x.values.size())
            return S("tables changed shape");
        for (qsizetype i = 0; i < x.classes.size(); ++i)
            if (x.classes[i].name != y.classes[i].name) return S("class table changed");
        for (qsizetype i = 0; i < x.objects.size(); ++i)
            if (x.objects[i].classIndex != y.objects[i].classIndex || x.objects[i].valueCount != y.objects[i].valueCount
                || x.objects[i].firstValue != y.objects[i].firstValue)
                return S("object %1 changed").arg(i);
        for (qsizetype i = 0; i < x.values.size(); ++i) {
            const nib::NibValue &u = x.values[i], &v = y.values[i];
            if (u.key == v.key && u.type == v.type && u.raw == v.raw && u.data == v.data) continue;
            if (u.type == nib::NibValue::Data && v.type == u.type && translated.contains(QString::fromUtf8(v.data))) continue;
            if (u.isObject() && v.isObject() && translated.contains(gb.text(int(v.objectIndex())).value_or(QString())))
                continue;
            return S("value %1 changed").arg(i);
        }
        return QString();
    }
    const auto &ga = static_cast<const nib::KeyedArchiveGraph &>(a.graph());
    const auto &gb = static_cast<const nib::KeyedArchiveGraph &>(b.graph());
    const plist::Array &oa = ga.root().find(S("$objects"))->array(), &ob = gb.root().find(S("$objects"))->array();
    if (ob.size() < oa.size() || *ga.root().find(S("$top")) != *gb.root().find(S("$top")))
        return S("object table changed shape");
    for (qsizetype i = 0; i < oa.size(); ++i)
        if (!sameValues(oa[i], ob[i], gb, translated)) return S("object %1 changed").arg(i);
    return QString();
}

// The peer reader's map of a corpus string table: no value when the peer has none for the file
// (binary tables, known departures), an empty optional inside when it read nothing.
std::optional<std::optional<StringMap>> peerMap(const QString &path)
{
    const QByteArray json = readFile(corpusDir() + S("/expected-maps/") + rel(path) + S(".json"));
    if (json.isEmpty()) return std::nullopt;
    const QJsonDocument doc = QJsonDocument::fromJson(json);
    if (!doc.isObject()) return std::optional<StringMap>();
    StringMap map;
    const QJsonObject o = doc.object();
    for (auto it = o.begin(); it != o.end(); ++it) map.insert(it.key(), it.value().toString());
    return std::optional<StringMap>(map);
}

bool isPropertyListFile(const QString &path)
{
    if (path.endsWith(u".plist")) return true;
    const QByteArray bytes = readFile(path);
    const QString text = StringUtility::replaceReturnCode(decodeTextFileData(bytes).value_or(QString()));
    return stringsHandle::isPropertyListTable(bytes, text.section(u'\n', 0, 0));
}

QStringList containerFiles()
{
    QStringList found;
    for (const QString &p : corpusFiles(QString(), {S("*")})) {
        const QString name = QFileInfo(p).fileName();
        const QByteArray head = readFile(p).left(10);
        if (name.endsWith(u".plist")
            || (rel(p).startsWith(u"nibs/") && (name.endsWith(u".nib") || name.endsWith(u".strings"))
                && (head.startsWith("bplist00") || head.startsWith("NIBArchive") || name == u"classes.nib"
                    || name == u"info.nib")))
            found.append(p);
    }
    return found;
}

QString plainWord(const OptString &word) { return unescapedTableWord(StringUtility::wordOrEmpty(word)).value_or(S("?")); }

}  // namespace

class TestCorpus : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_out = 0;

    QString freshFolder()
    {
        const QString folder = m_dir.filePath(QString::number(++m_out));
        QDir().mkpath(folder);
        return folder;
    }

private slots:
    void initTestCase()
    {
        SKIP_WITHOUT_CORPUS();
        TestSupport::isolate(m_dir);
        registerResourceHandlers();
    }

    // Tables Apple's ibtool wrote from the xib beside them and nobody edited: ours, exactly.
    void ibtoolGolden_data() { addPairRows({corpusDir() + S("/ibtool-golden")}); }
    void ibtoolGolden()
    {
        QFETCH(QString, base);
        QFETCH(QString, table);
        QString error;
        const auto file = openInterfaceFile(base, &error);
        QVERIFY2(file, qPrintable(error));
        const QString ours = ibtoolTableText(inIbtoolOrder(file->strings())), theirs = decoded(table);
        QVERIFY2(ours == theirs, qPrintable(TestSupport::firstDifference(ours, theirs)));
    }

    // Translated tables projects keep beside their base file: every key whose object still
    // exists as what the comment says is generated; merging the table gives its values back,
    // and the file differs only inside the changed values.
    void translatedPairs_data() { addPairRows({corpusDir() + S("/xib-pairs"), corpusDir() + S("/storyboards")}); }
    void translatedPairs()
    {
        QFETCH(QString, base);
        QFETCH(QString, table);
        QString error;
        const auto file = openXml(base, &error);
        QVERIFY2(file, qPrintable(error));
        QSet<QString> generated;
        for (const LocalizableString &s : file->strings()) generated.insert(s.key());
        QStringList misses;
        for (const Block &b : ibtoolBlocks(decoded(table))) {
            const auto cls = file->objectClasses().constFind(b.key.section(u'.', 0, 0));
            if (cls == file->objectClasses().constEnd() || generated.contains(b.key)) continue;  // stale, or found
            // An id now naming another kind of object was reused: the table's object is gone.
            static const QRegularExpression classRe(S("Class = \"([^\"]*)\""));
            const QString theirs = classRe.match(b.comment).captured(1);
            if (theirs.isEmpty() || canonicalClass(theirs) == canonicalClass(*cls)) misses.append(b.key + u' ' + b.comment);
        }
        QVERIFY2(misses.isEmpty(), qPrintable(misses.mid(0, 10).join(u'\n')));

        const auto translations = StringsTable::parseData(readFile(table));
        if (!translations) return;
        QByteArray merged;
        QVERIFY2(file->merged(*translations, &merged, &error), qPrintable(error));
        const auto again = openXmlInterfaceFile(merged, &error);
        QVERIFY2(again, qPrintable(S("merged output unreadable: ") + error));
        QHash<QString, QString> after;
        for (const LocalizableString &s : again->strings()) after.insert(s.key(), s.value);
        for (const LocalizableString &s : file->strings()) {
            const auto t = translations->find(s.key());
            const QString expected = t ? t->toString() : s.value;
            if (expected.isEmpty()) QVERIFY2(!after.contains(s.key()), qPrintable(s.key()));
            else QVERIFY2(after.value(s.key()) == expected, qPrintable(s.key() + S(": ") + after.value(s.key())));
        }
        XmlDocument in, out;
        QVERIFY(in.parse(file->xml().bytes()) && out.parse(merged));
        const auto slotsIn = slotsOf(in), slotsOut = slotsOf(out);
        if (slotsIn.size() != slotsOut.size()) return;  // a value moved between attribute and element
        QSet<QString> values;
        for (const auto &p : *translations) values.insert(p.second.toString());
        QList<QPair<qsizetype, qsizetype>> cutIn, cutOut;
        for (qsizetype i = 0; i < slotsIn.size(); ++i) {
            QCOMPARE(slotsOut[i].name, slotsIn[i].name);
            if (slotsIn[i].value == slotsOut[i].value) continue;
            QVERIFY2(values.contains(slotsOut[i].value), qPrintable(S("unexpected change of ") + slotsIn[i].name));
            cutIn.append({slotsIn[i].start, slotsIn[i].end});
            cutOut.append({slotsOut[i].start, slotsOut[i].end});
        }
        QVERIFY2(withoutSpans(in.bytes(), cutIn) == withoutSpans(out.bytes(), cutOut), "bytes outside the values differ");
    }

    // Every compiled nib: its strings match the interface tables the corpus keeps for it (a
    // Base nib: every language's, by key; another: its own language's, by id and text), in a
    // folder every compiled variant holds designable.nib's texts, and a merged copy reads back
    // with the merged values and nothing else changed.
    void nibs_data()
    {
        QTest::addColumn<QString>("path");
        for (const QString &p : corpusNibs()) QTest::newRow(qPrintable(rel(p))) << p;
    }
    void nibs()
    {
        QFETCH(QString, path);
        QString error;
        const auto file = openInterfaceFile(path, &error);
        if (!file) {
            // A NeXT-era objects.nib (a typedstream) is not read: a reason, not a crash.
            QVERIFY2(!error.isEmpty() && QFileInfo::exists(path + S("/objects.nib")), qPrintable(error));
            return;
        }
        const QList<LocalizableString> strings = file->strings();
        const QFileInfo lproj(QFileInfo(path).absolutePath());
        if (lproj.fileName().endsWith(u".lproj")) {
            const bool base = lproj.fileName() == u"Base.lproj";
            const QDir resources(lproj.absolutePath());
            const QStringList languages = base ? resources.entryList({S("*.lproj")}, QDir::Dirs) : QStringList{lproj.fileName()};
            for (const QString &l : languages) {
                const auto table = interfaceTable(resources.filePath(l + u'/' + QFileInfo(path).completeBaseName() + S(".strings")));
                if (!table) continue;
                QStringList ours, theirs, ourValues = sortedValues(strings);
                QSet<QString> ids;
                for (const LocalizableString &s : strings) ours.append(s.key()), ids.insert(s.objectId);
                for (const TableEntry &e : *table) theirs.append(e.key);
                ours.sort();
                theirs.sort();
                if (base) {
                    QCOMPARE(ours, theirs);
                    continue;
                }
                QCOMPARE(strings.size(), table->size());
                // Tables that lag their nib keep an entry at its base text (key = value).
                for (const TableEntry &e : *table) {
                    QVERIFY2(ids.contains(e.objectId), qPrintable(e.objectId));
                    QVERIFY2(ourValues.removeOne(e.value) || e.value == e.key, qPrintable(e.value));
                }
            }
        }
        const QDir folder(path);
        if (QFileInfo(path).isDir() && folder.exists(S("designable.nib"))) {
            const auto designable = openInterfaceFile(folder.filePath(S("designable.nib")), &error);
            QVERIFY2(designable, qPrintable(error));
            for (const QString &variant : folder.entryList({S("keyedobjects*.nib")}, QDir::Files)) {
                const auto compiled = nib::CompiledNib::open(folder.filePath(variant), &error);
                QVERIFY2(compiled, qPrintable(error));
                QCOMPARE(sortedValues(compiled->strings()), sortedValues(designable->strings()));
            }
        }

        StringMap translations;
        QSet<QString> translated;
        for (const LocalizableString &s : strings) {
            translations.insert(s.key(), u'«' + s.value + u'»');
            translated.insert(u'«' + s.value + u'»');
        }
        const QString out = freshFolder() + u'/' + QFileInfo(path).fileName();
        QVERIFY2(file->write(out, translations, &error), qPrintable(error));
        const auto back = openInterfaceFile(out, &error);
        QVERIFY2(back, qPrintable(error));
        QCOMPARE(back->strings().size(), strings.size());
        for (qsizetype i = 0; i < strings.size(); ++i) {
            QCOMPARE(back->strings()[i].key(), strings[i].key());
            QCOMPARE(back->strings()[i].value, u'«' + strings[i].value + u'»');
        }
        const auto compare = [&](const QString &in, const QString &written) {
            const auto a = nib::CompiledNib::open(in, &error), b = nib::CompiledNib::open(written, &error);
            QVERIFY2(a && b, qPrintable(error));
            const QString why = differenceBesidesStrings(*a, *b, translated);
            QVERIFY2(why.isEmpty(), qPrintable(written + S(": ") + why));
        };
        if (!QFileInfo(path).isDir()) return compare(path, out);
        QCOMPARE(QDir(out).entryList(QDir::Files), folder.entryList(QDir::Files));
        for (const QString &name : folder.entryList(QDir::Files)) {
            if (name.startsWith(u"keyedobjects")) compare(folder.filePath(name), QDir(out).filePath(name));
            else if (name != u"designable.nib") QCOMPARE(readFile(QDir(out).filePath(name)), readFile(folder.filePath(name)));
        }
    }

    // A base nib listed with the same nib of another language as its previous version: every
    // base string's block gets the localized word of an object with that text.
    void nibPreviousVersions_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("localized");
        for (const QString &p : corpusNibs()) {
            const QFileInfo lproj(QFileInfo(p).absolutePath());
            if (!QStringList{S("en.lproj"), S("English.lproj"), S("Base.lproj")}.contains(lproj.fileName())) continue;
            const QDir resources(lproj.absolutePath());
            for (const QString &l : resources.entryList({S("*.lproj")}, QDir::Dirs)) {
                const QString other = resources.filePath(l + u'/' + QFileInfo(p).fileName());
                if (l != lproj.fileName() && QFileInfo::exists(other))
                    QTest::newRow(qPrintable(rel(other))) << p << other;
            }
        }
    }
    void nibPreviousVersions()
    {
        QFETCH(QString, base);
        QFETCH(QString, localized);
        QString error;
        const auto b = openInterfaceFile(base, &error), l = openInterfaceFile(localized, &error);
        if (!b || !l) return;  // objects.nib, refused with a reason above
        QHash<QString, QString> localizedOf;
        for (const LocalizableString &s : l->strings()) localizedOf.insert(s.key(), s.value);
        const QList<nibtool::ListingBlock> blocks = nibtool::listingBlocks(*b, l.get());
        for (const LocalizableString &s : b->strings()) {
            QVERIFY2(localizedOf.contains(s.key()), qPrintable(s.key() + S(" has no counterpart")));
            const auto block = std::find_if(blocks.cbegin(), blocks.cend(), [&s](const auto &x) { return x.text == s.value; });
            QVERIFY(block != blocks.cend());
            bool ofThisText = false;  // equal base texts share one block and one of their words
            for (const LocalizableString &o : b->strings())
                ofThisText |= o.value == s.value && localizedOf.value(o.key()) == block->value;
            QVERIFY2(ofThisText, qPrintable(s.key()));
        }
    }

    // Every string table and property list through its handler: the entries are the peer's map,
    // an untranslated export is the base file itself (a table: its text in UTF-8 with line
    // feeds; a list: its tree), and nothing goes missing without the user being told.
    void tables_data()
    {
        QTest::addColumn<QString>("path");
        for (const QString &p : corpusFiles(QString(), {S("*.strings"), S("*.plist")})) QTest::newRow(qPrintable(rel(p))) << p;
    }
    void tables()
    {
        QFETCH(QString, path);
        const LocFilePtr file = LocFile::initWithPath(path, OptString(), OptString());
        QVERIFY(file);
        const QString warnings = file->warnings().join(u'\n');
        QVERIFY2(!file->allEntries().isEmpty() || !warnings.isEmpty(), "no entries and no warning");
        const QString out = freshFolder();
        file->makeLocalizedFileAt(out);
        const QString written = out + u'/' + QFileInfo(path).fileName();
        if (isPropertyListFile(path)) {
            const auto before = plist::readFile(path).value;
            QVERIFY2((before && plist::readFile(written).value == before) || !warnings.isEmpty(), "tree changed unreported");
            return;
        }
        const auto peer = peerMap(path);
        if (peer) {
            // The reader that previous versions and dictionaries go through agrees with the peer
            // too, but for the short form "x";, which the peer reads as an empty value.
            std::optional<StringMap> core = StringsTable::parseData(readFile(path));
            QVERIFY2(StringsTable::readFile(path) == core, "the table read as it streams in differs");
            if (const StringMap read = core.value_or(StringMap()); core && *peer)
                for (const auto &[key, value] : read)
                    if (key == value && (*peer)->value(key).isEmpty()) core->insert(key, QString());
            QVERIFY2(core == *peer, "the table reader and the peer disagree");
        }
        if (peer && !*peer) {
            // The peer read nothing: ours tells the user why (a broken table, a guessed encoding).
            QVERIFY2(!warnings.isEmpty(), "a table the peer refuses was read without a word");
        } else if (peer) {
            StringMap entries;
            for (const LocEntryPtr &e : file->allEntries()) entries.insert(plainWord(e->keyWord()), plainWord(e->baseWord()));
            QCOMPARE(entries, **peer);
        }
        // A refused table (told above) is never written; one without pairs is written as it was.
        if (file->allEntries().isEmpty() && (!QFileInfo::exists(written) || (peer && !*peer))) {
            QVERIFY2(!QFileInfo::exists(written), "a table nobody could read was written");
            return;
        }
        QCOMPARE(QString::fromUtf8(readFile(written)), StringUtility::replaceReturnCode(decoded(path)));
    }

    // A base table (en, English or Base) read with the same table of another language: every
    // entry carries that language's word, as the peer reads it.
    void previousTables_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("previous");
        for (const QString &base : corpusFiles(QString(), {S("*.strings"), S("*.plist")})) {
            const QFileInfo info(base);
            const QString folder = info.dir().dirName();
            if (folder != u"en.lproj" && folder != u"English.lproj" && folder != u"Base.lproj") continue;
            if (base.contains(u"/xib-pairs/") || base.contains(u"/storyboards/")) continue;
            QDir parent = info.dir();
            parent.cdUp();
            for (const QString &l : parent.entryList({S("*.lproj")}, QDir::Dirs)) {
                const QString other = parent.filePath(l + u'/' + info.fileName());
                if (l != folder && QFileInfo(other).isFile()) QTest::newRow(qPrintable(rel(other))) << base << other;
            }
        }
    }
    void previousTables()
    {
        QFETCH(QString, base);
        QFETCH(QString, previous);
        const LocFilePtr file = LocFile::initWithPath(base, OptString(), OptString(previous));
        if (isPropertyListFile(base)) {
            // By place: each string's places take the previous list's word at its first place.
            const QString folder = freshFolder();
            file->makeLocalizedFileAt(folder);
            const auto out = plist::readFile(folder + u'/' + QFileInfo(base).fileName()).value;
            const auto before = plist::readFile(base).value, prev = plist::readFile(previous).value;
            QVERIFY(out && before && prev);
            if (!out->isDictionary() || !prev->isDictionary()) return;
            QHash<QString, QString> firstKey;
            for (const auto &[key, value] : before->dictionary())
                if (value.isString() && !firstKey.contains(value.string())) firstKey.insert(value.string(), key);
            for (const auto &[key, value] : before->dictionary()) {
                const plist::Value *p = value.isString() ? prev->find(firstKey.value(value.string())) : nullptr;
                if (p && p->isString() && !p->string().isEmpty() && !value.string().isEmpty())
                    QCOMPARE(out->find(key)->string(), p->string());
            }
            return;
        }
        const auto peer = peerMap(previous);
        if (!peer) return;
        if (!*peer) {
            QVERIFY2(!file->warnings().isEmpty(), "an unreadable previous version was not reported");
            return;
        }
        for (const LocEntryPtr &e : file->allEntries()) {
            const auto word = (*peer)->find(plainWord(e->keyWord()));
            // A backslash in a previous word is not escaped on the way in: such words come back
            // in another form.
            if (!word || word->contains(u'\\')) continue;
            QCOMPARE(plainWord(e->localizedWord()), *word);
            QVERIFY(e->isChecked() || word->isEmpty());
        }
    }

    // Every property list (and every container that is one: keyed nibs, classes.nib, info.nib,
    // compiled tables) reads and survives XML and binary round trips as an equal tree; NIBArchive
    // nibs serialize back byte for byte. All three list forms must be among them.
    void containers_data()
    {
        QTest::addColumn<QString>("path");
        for (const QString &p : containerFiles()) QTest::newRow(qPrintable(rel(p))) << p;
    }
    void containers()
    {
        QFETCH(QString, path);
        const QByteArray bytes = readFile(path);
        QString error;
        if (nib::NibArchive::looksLike(bytes)) {
            const auto a = nib::NibArchive::parse(bytes, &error);
            QVERIFY2(a, qPrintable(error));
            QVERIFY(a->serialize() == bytes);
            return;
        }
        const plist::ReadResult r = plist::read(bytes);
        QVERIFY2(r.value, qPrintable(r.error));
        const QByteArray xml = plist::toXml(*r.value);
        const plist::ReadResult fromXml = plist::read(xml), fromBinary = plist::read(plist::toBinary(*r.value));
        QVERIFY2(fromXml.value && *fromXml.value == *r.value, "the tree changed through XML");
        QCOMPARE(plist::toXml(*fromXml.value), xml);
        QVERIFY2(fromBinary.value && *fromBinary.value == *r.value, "the tree changed through the binary form");
        if (path.endsWith(u".strings")) QVERIFY2(plist::readStringDictionary(bytes), "a compiled table is no map of strings");
    }
    void containersCoverEveryForm()
    {
        QSet<int> forms;
        for (const QString &p : containerFiles()) forms.insert(int(plist::readFile(p).format));
        for (auto f : {plist::Format::Xml, plist::Format::Binary, plist::Format::OpenStep})
            QVERIFY2(forms.contains(int(f)), "a list form is missing from the corpus selection");
    }
};

QTEST_GUILESS_MAIN(TestCorpus)
#include "test_corpus.moc"
