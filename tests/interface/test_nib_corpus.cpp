// Every compiled nib of the corpus (nib files and nib folders under nibs/):
//  - its strings match, in count and text, the interface tables the corpus keeps for it (a Base
//    nib: every language's table, by key; another nib: the table of its own language, by text
//    and object id) and, in a folder, the strings of designable.nib;
//  - a merged copy reads back with the merged values and nothing else changed;
//  - a localized nib listed as the previous version of its base nib pairs every base string.
// Prints one line per nib with what was compared.

#include "InterfaceFile.h"
#include "StringsTable.h"
#include "TestSupport.h"
#include "TextFile.h"
#include "nib/CompiledNib.h"
#include "nib/KeyedArchiveGraph.h"
#include "nib/NibArchive.h"
#include "nib/NibArchiveGraph.h"
#include "nibtool/NibtoolListing.h"

#include <QDirIterator>
#include <QRegularExpression>
#include <QTest>
#include <algorithm>

using namespace interface;

namespace {

// The nib files and nib folders of the corpus (the files inside a folder belong to it).
QStringList corpusNibs()
{
    QStringList nibs;
    QDirIterator it(TestSupport::corpusDir() + QStringLiteral("/nibs"), {QStringLiteral("*.nib")},
                    QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!QFileInfo(path).absolutePath().endsWith(QLatin1String(".nib"))) nibs.append(path);
    }
    nibs.sort();
    return nibs;
}

QString relative(const QString &path)
{
    return QDir(TestSupport::corpusDir()).relativeFilePath(path);
}

struct TableEntry {
    QString objectId;  // from the comment
    QString key;
    QString value;
};

// An interface table: every pair follows a comment naming its ObjectID. None for other tables
// (string tables of the code that happen to share the nib's name).
std::optional<QList<TableEntry>> interfaceTable(const QString &path)
{
    const auto text = readTextFileAtPath(path);
    const auto map = dictionaryWithContentsOfFile(path);
    if (!text || !map || map->isEmpty()) return std::nullopt;
    static const QRegularExpression block(QStringLiteral("/\\*[^\\n]*ObjectID = \"([^\"]*)\";[^\\n]*\\*/\\s*\\n\"((?:[^\"\\\\]|\\\\.)*)\" = \"((?:[^\"\\\\]|\\\\.)*)\";"));
    QList<TableEntry> entries;
    auto it = block.globalMatch(*text);
    while (it.hasNext()) {
        const auto m = it.next();
        const auto pair = StringsTable::parse(QStringLiteral("\"%1\" = \"%2\";").arg(m.captured(2), m.captured(3)));
        if (!pair || pair->isEmpty()) return std::nullopt;
        entries.append({m.captured(1), pair->pairs().first().first, pair->pairs().first().second});
    }
    if (entries.size() != qsizetype(text->count(QLatin1String("\" = \"")))) return std::nullopt;
    return entries;
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

QStringList valuesOf(const QList<LocalizableString> &strings)
{
    QStringList v;
    for (const LocalizableString &s : strings) v.append(s.value);
    return sorted(v);
}

QString lprojOf(const QString &nib)
{
    const QString parent = QFileInfo(nib).absolutePath();
    return parent.endsWith(QLatin1String(".lproj")) ? parent : QString();
}

// Everything but the translated strings is as it was. Strings may have been changed in place
// or copied (new objects at the end); `translated` holds every text a translation could put.
bool sameExceptStrings(const nib::CompiledNib &a, const nib::CompiledNib &b, const QSet<QString> &translated, QString *why);

bool sameNibArchives(const nib::NibArchiveGraph &ga, const nib::NibArchiveGraph &gb, const QSet<QString> &translated,
                     QString *why)
{
    const nib::NibArchive &a = ga.archive(), &b = gb.archive();
    if (a.keys != b.keys || a.trailing != b.trailing || a.formatVersion != b.formatVersion
        || a.coderVersion != b.coderVersion || b.objects.size() < a.objects.size() || b.values.size() < a.values.size()) {
        *why = QStringLiteral("tables changed shape");
        return false;
    }
    for (qsizetype i = 0; i < a.classes.size(); ++i)
        if (a.classes[i].name != b.classes[i].name) return *why = QStringLiteral("class table changed"), false;
    for (qsizetype i = 0; i < a.objects.size(); ++i)
        if (a.objects[i].classIndex != b.objects[i].classIndex || a.objects[i].valueCount != b.objects[i].valueCount
            || a.objects[i].firstValue != b.objects[i].firstValue)
            return *why = QStringLiteral("object %1 changed").arg(i), false;
    for (qsizetype i = 0; i < a.values.size(); ++i) {
        const nib::NibValue &va = a.values[i], &vb = b.values[i];
        if (va.key == vb.key && va.type == vb.type && va.raw == vb.raw && va.data == vb.data) continue;
        if (va.type == nib::NibValue::Data && vb.type == va.type && translated.contains(QString::fromUtf8(vb.data))) continue;
        if (va.isObject() && vb.isObject() && translated.contains(gb.text(int(vb.objectIndex())).value_or(QString())))
            continue;
        return *why = QStringLiteral("value %1 changed").arg(i), false;
    }
    return true;
}

std::optional<int> uidOf(const plist::Value &v)
{
    if (!v.isDictionary() || v.dictionary().size() != 1 || v.dictionary().first().first != QLatin1String("CF$UID"))
        return std::nullopt;
    return int(v.dictionary().first().second.integer());
}

bool sameValues(const plist::Value &a, const plist::Value &b, const nib::KeyedArchiveGraph &gb,
                const QSet<QString> &translated)
{
    if (a == b) return true;
    if (const auto ua = uidOf(a), ub = uidOf(b); ua && ub)
        return translated.contains(gb.text(*ub).value_or(QString()));
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
    if (a.isArray()) {
        if (a.array().size() != b.array().size()) return false;
        for (qsizetype i = 0; i < a.array().size(); ++i)
            if (!sameValues(a.array()[i], b.array()[i], gb, translated)) return false;
        return true;
    }
    return false;
}

bool sameExceptStrings(const nib::CompiledNib &a, const nib::CompiledNib &b, const QSet<QString> &translated, QString *why)
{
    if (a.form() != b.form()) return *why = QStringLiteral("container changed"), false;
    if (a.form() == nib::NibForm::NibArchive)
        return sameNibArchives(static_cast<const nib::NibArchiveGraph &>(a.graph()),
                               static_cast<const nib::NibArchiveGraph &>(b.graph()), translated, why);
    const auto &ga = static_cast<const nib::KeyedArchiveGraph &>(a.graph());
    const auto &gb = static_cast<const nib::KeyedArchiveGraph &>(b.graph());
    const plist::Array &oa = ga.root().find(QStringLiteral("$objects"))->array();
    const plist::Array &ob = gb.root().find(QStringLiteral("$objects"))->array();
    if (ob.size() < oa.size() || *ga.root().find(QStringLiteral("$top")) != *gb.root().find(QStringLiteral("$top")))
        return *why = QStringLiteral("object table changed shape"), false;
    for (qsizetype i = 0; i < oa.size(); ++i)
        if (!sameValues(oa[i], ob[i], gb, translated)) return *why = QStringLiteral("object %1 changed").arg(i), false;
    return true;
}

QString marked(const QString &value)
{
    return QStringLiteral("«") + value + QStringLiteral("»");
}

}  // namespace

class TestNibCorpus : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void initTestCase() { SKIP_WITHOUT_CORPUS(); }

    void stringsMatchTheCorpusTables_data()
    {
        QTest::addColumn<QString>("path");
        for (const QString &p : corpusNibs()) QTest::newRow(qPrintable(relative(p))) << p;
    }
    void stringsMatchTheCorpusTables()
    {
        QFETCH(QString, path);
        QString error;
        const auto file = openInterfaceFile(path, &error);
        if (!file) {
            // NeXT-era objects.nib (a typedstream) is not read: a reason, not a crash.
            QVERIFY(!error.isEmpty());
            QVERIFY2(QFileInfo::exists(path + QStringLiteral("/objects.nib")), qPrintable(error));
            qInfo("%s: not read: %s", qPrintable(relative(path)), qPrintable(error));
            return;
        }
        const QList<LocalizableString> strings = file->strings();
        QStringList compared;

        const QString lproj = lprojOf(path);
        const QString stem = QFileInfo(path).completeBaseName();
        if (!lproj.isEmpty()) {
            const bool base = QFileInfo(lproj).fileName() == QLatin1String("Base.lproj");
            const QDir resources(QFileInfo(lproj).absolutePath());
            const QStringList lprojs = base ? resources.entryList({QStringLiteral("*.lproj")}, QDir::Dirs)
                                            : QStringList{QFileInfo(lproj).fileName()};
            for (const QString &l : lprojs) {
                const auto table = interfaceTable(resources.filePath(l + u'/' + stem + QStringLiteral(".strings")));
                if (!table) continue;
                if (base) {
                    QStringList ours, theirs;
                    for (const LocalizableString &s : strings) ours.append(s.key());
                    for (const TableEntry &e : *table) theirs.append(e.key);
                    QCOMPARE(sorted(ours), sorted(theirs));
                } else {
                    // Same count, every id of the table, every text; tables that lag their nib
                    // keep an entry at its base text (key = value), reported, not failed.
                    QCOMPARE(strings.size(), table->size());
                    QSet<QString> ourIds;
                    QStringList ourValues = valuesOf(strings);
                    for (const LocalizableString &s : strings) ourIds.insert(s.objectId);
                    int lagging = 0;
                    for (const TableEntry &e : *table) {
                        QVERIFY2(ourIds.contains(e.objectId), qPrintable(e.objectId));
                        if (ourValues.removeOne(e.value)) continue;
                        QVERIFY2(e.value == e.key, qPrintable(e.value));
                        ++lagging;
                    }
                    if (lagging) compared.append(QStringLiteral("(%1 entries of the table untranslated)").arg(lagging));
                }
                compared.append(l + u'/' + stem + QStringLiteral(".strings"));
            }
        }
        // In a folder, every compiled variant holds the strings of designable.nib.
        const QDir folder(path);
        if (QFileInfo(path).isDir() && folder.exists(QStringLiteral("designable.nib"))) {
            const auto designable = openInterfaceFile(folder.filePath(QStringLiteral("designable.nib")), &error);
            QVERIFY2(designable, qPrintable(error));
            for (const QString &variant : folder.entryList({QStringLiteral("keyedobjects*.nib")}, QDir::Files)) {
                const auto compiled = nib::CompiledNib::open(folder.filePath(variant), &error);
                QVERIFY2(compiled, qPrintable(error));
                QCOMPARE(valuesOf(compiled->strings()), valuesOf(designable->strings()));
                compared.append(variant + QStringLiteral(" = designable.nib"));
            }
        }
        qInfo("%s: %d strings; matched: %s", qPrintable(relative(path)), int(strings.size()),
              compared.isEmpty() ? "no table in the corpus" : qPrintable(compared.join(QStringLiteral(", "))));
    }

    void mergedCopiesReadBack_data() { stringsMatchTheCorpusTables_data(); }
    void mergedCopiesReadBack()
    {
        QFETCH(QString, path);
        QString error;
        const auto file = openInterfaceFile(path, &error);
        if (!file) QSKIP("not readable (see stringsMatchTheCorpusTables)");
        StringMap translations;
        QSet<QString> translated;
        for (const LocalizableString &s : file->strings()) {
            translations.insert(s.key(), marked(s.value));
            translated.insert(marked(s.value));
        }
        const QString out = m_dir.filePath(relative(path));
        QVERIFY(QDir().mkpath(QFileInfo(out).absolutePath()));
        QVERIFY2(file->write(out, translations, &error), qPrintable(error));

        const auto back = openInterfaceFile(out, &error);
        QVERIFY2(back, qPrintable(error));
        const QList<LocalizableString> before = file->strings(), after = back->strings();
        QCOMPARE(after.size(), before.size());
        for (qsizetype i = 0; i < before.size(); ++i) {
            QCOMPARE(after[i].key(), before[i].key());
            QCOMPARE(after[i].value, marked(before[i].value));
        }

        // Compiled files: nothing but the strings changed. Folders: each variant, and every
        // other file byte for byte (designable.nib is the xib engine's, checked by its strings).
        const auto compare = [&](const QString &in, const QString &written) {
            const auto a = nib::CompiledNib::open(in, &error);
            const auto b = nib::CompiledNib::open(written, &error);
            QVERIFY2(a && b, qPrintable(error));
            QString why;
            QVERIFY2(sameExceptStrings(*a, *b, translated, &why), qPrintable(written + QStringLiteral(": ") + why));
            for (const LocalizableString &s : b->strings()) QVERIFY2(translated.contains(s.value), qPrintable(s.value));
        };
        if (!QFileInfo(path).isDir()) {
            compare(path, out);
        } else {
            const QDir in(path);
            QCOMPARE(QDir(out).entryList(QDir::Files), in.entryList(QDir::Files));
            for (const QString &name : in.entryList(QDir::Files)) {
                if (name.startsWith(QLatin1String("keyedobjects"))) compare(in.filePath(name), QDir(out).filePath(name));
                else if (name != QLatin1String("designable.nib"))
                    QCOMPARE(TestSupport::readFile(QDir(out).filePath(name)), TestSupport::readFile(in.filePath(name)));
            }
        }
        qInfo("%s: %d strings merged and read back", qPrintable(relative(path)), int(before.size()));
    }

    // A base nib (in en, English or Base) and the same nib in another language: listed with the
    // localized one as previous version, every block of the base gets the localized word of the
    // same object.
    void previousVersionPairsEveryString_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("localized");
        static const QStringList baseFolders{QStringLiteral("en.lproj"), QStringLiteral("English.lproj"),
                                             QStringLiteral("Base.lproj")};
        for (const QString &p : corpusNibs()) {
            const QString lproj = lprojOf(p);
            if (lproj.isEmpty() || !baseFolders.contains(QFileInfo(lproj).fileName())) continue;
            const QDir resources(QFileInfo(lproj).absolutePath());
            for (const QString &l : resources.entryList({QStringLiteral("*.lproj")}, QDir::Dirs)) {
                const QString other = resources.filePath(l + u'/' + QFileInfo(p).fileName());
                if (l != QFileInfo(lproj).fileName() && QFileInfo::exists(other))
                    QTest::newRow(qPrintable(relative(p) + QStringLiteral(" <- ") + l)) << p << other;
            }
        }
    }
    void previousVersionPairsEveryString()
    {
        QFETCH(QString, base);
        QFETCH(QString, localized);
        QString error;
        const auto b = openInterfaceFile(base, &error);
        const auto l = openInterfaceFile(localized, &error);
        if (!b || !l) QSKIP("not readable (see stringsMatchTheCorpusTables)");
        QHash<QString, QString> localizedOf;
        for (const LocalizableString &s : l->strings()) localizedOf.insert(s.key(), s.value);
        const QList<nibtool::ListingBlock> blocks = nibtool::listingBlocks(*b, l.get());
        int paired = 0;
        for (const LocalizableString &s : b->strings()) {
            QVERIFY2(localizedOf.contains(s.key()), qPrintable(s.key() + QStringLiteral(" has no counterpart")));
            const auto block = std::find_if(blocks.cbegin(), blocks.cend(),
                                            [&s](const nibtool::ListingBlock &x) { return x.text == s.value; });
            QVERIFY(block != blocks.cend());
            // Equal base texts share one block: its word is one of their translations.
            bool ofThisText = false;
            for (const LocalizableString &o : b->strings())
                if (o.value == s.value && localizedOf.value(o.key()) == block->value) ofThisText = true;
            QVERIFY2(ofThisText, qPrintable(s.key()));
            ++paired;
        }
        qInfo("%s: %d of %d strings paired", qPrintable(relative(localized)), paired, int(b->strings().size()));
    }
};

QTEST_GUILESS_MAIN(TestNibCorpus)
#include "test_nib_corpus.moc"
