// Real string tables and property lists from the shared corpus, every encoding and form there:
// each is read into entries or the user is told why not; read and exported with no translation
// it gives the same pairs (or the same property-list tree), or the user was told what differs;
// read with a previous localized version, its entries carry that version's words.
#include "Handlers.h"
#include "LocFile.h"
#include "PropertyList.h"
#include "StringsHandler.h"
#include "StringsLayout.h"
#include "StringsTable.h"
#include "TestSupport.h"
#include "TextFile.h"

#include <QDirIterator>
#include <QTest>

namespace {

QString S(const char *utf8) { return QString::fromUtf8(utf8); }

bool isPropertyListFile(const QString &path)
{
    if (path.endsWith(QLatin1String(".plist"))) return true;
    const QByteArray bytes = TestSupport::readFile(path);
    const QString text = StringUtility::replaceReturnCode(decodeTextFileData(bytes).value_or(QString()));
    return stringsHandle::isPropertyListTable(bytes, text.section(u'\n', 0, 0));
}

// The table as a user means it: the reader's map, or the same grammar on text in a guessed
// encoding (Mac OS Roman, UTF-16 without a mark), which the handler reads too.
std::optional<StringMap> tableOf(const QString &path)
{
    if (auto map = dictionaryWithContentsOfFile(path)) return map;
    const OptString text = decodeTextFileData(TestSupport::readFile(path));
    return text ? StringsTable::parse(*text) : std::nullopt;
}

std::optional<plist::Value> treeOf(const QString &path)
{
    return plist::readFile(path).value;
}

QStringList corpusFiles(const QString &corpus)
{
    QStringList files;
    QDirIterator it(corpus, {S("*.strings"), S("*.plist")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) files << it.next();
    files.sort();
    return files;
}

// Base tables (in en, English or Base folders) with a same-named table of another language.
QList<QPair<QString, QString>> corpusPairs(const QString &corpus)
{
    QList<QPair<QString, QString>> pairs;
    for (const QString &base : corpusFiles(corpus)) {
        const QFileInfo info(base);
        const QString folder = info.dir().dirName();
        if (folder != S("en.lproj") && folder != S("English.lproj") && folder != S("Base.lproj")) continue;
        if (base.contains(S("/xib-pairs/")) || base.contains(S("/storyboards/"))) continue;
        QDir parent = info.dir();
        parent.cdUp();
        for (const QString &lproj : parent.entryList({S("*.lproj")}, QDir::Dirs)) {
            const QString other = parent.filePath(lproj + u'/' + info.fileName());
            if (lproj != folder && QFileInfo(other).isFile()) pairs.append({base, other});
        }
    }
    return pairs;
}

QString shortName(const QString &corpus, const QString &path)
{
    return QDir(corpus).relativeFilePath(path);
}

}  // namespace

class TestCorpusTables : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_out = 0;
    int m_read = 0, m_equal = 0, m_warned = 0, m_empty = 0;
    int m_pairs = 0, m_carried = 0;
    int m_comments = 0, m_commentBlocks = 0;

    QString freshFolder()
    {
        const QString folder = m_dir.filePath(QString::number(++m_out));
        QDir().mkpath(folder);
        return folder;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        TestSupport::isolate(m_dir);
        registerResourceHandlers();
    }

    void cleanupTestCase()
    {
        if (m_read)
            qInfo("corpus round trips: %d files read, %d round-tripped equal, %d with warnings (%d of them without "
                  "entries)",
                  m_read, m_equal, m_warned, m_empty);
        if (m_commentBlocks)
            qInfo("comments: %d comment markers written back unchanged; %d entries carry a developer comment",
                  m_commentBlocks, m_comments);
        if (m_pairs) qInfo("previous versions: %d pairs of files, %d entries carried the previous word", m_pairs, m_carried);
    }

    void roundTrip_data()
    {
        QTest::addColumn<QString>("path");
        const QString corpus = TestSupport::corpusDir();
        if (corpus.isEmpty()) return;
        for (const QString &path : corpusFiles(corpus)) QTest::newRow(qPrintable(shortName(corpus, path))) << path;
    }
    void roundTrip()
    {
        SKIP_WITHOUT_CORPUS();
        QFETCH(QString, path);
        const LocFilePtr file = LocFile::initWithPath(path, OptString(), OptString());
        QVERIFY(file);
        ++m_read;
        const QString warnings = file->warnings().join(u'\n');
        m_warned += !warnings.isEmpty();
        // Never a file without entries that nobody explained.
        QVERIFY2(!file->allEntries().isEmpty() || !warnings.isEmpty(), "no entries and no warning");
        m_empty += file->allEntries().isEmpty();

        const QString folder = freshFolder();
        file->makeLocalizedFileAt(folder);
        const QString out = folder + u'/' + QFileInfo(path).fileName();
        bool equal = false;
        if (isPropertyListFile(path)) {
            const auto before = treeOf(path);
            equal = before && treeOf(out) == before;
        } else {
            const auto before = tableOf(path);
            if (!before) {
                // A table the grammar refuses is named, and nothing is written from it.
                QVERIFY2(!warnings.isEmpty() && !QFileInfo::exists(out), "a broken table went unreported or was written");
                return;
            }
            // One entry per pair, and an untranslated export is the base text itself: every
            // comment, blank line and spacing kept (in UTF-8, line feeds).
            StringMap entries;
            for (const LocEntryPtr &e : file->allEntries()) {
                entries.insert(unescapedTableWord(StringUtility::wordOrEmpty(e->keyWord())).value_or(S("?")),
                               unescapedTableWord(StringUtility::wordOrEmpty(e->baseWord())).value_or(S("?")));
                m_comments += !e->developerComment().isEmpty();
            }
            QCOMPARE(entries, *before);
            const QString text = StringUtility::replaceReturnCode(*decodeTextFileData(TestSupport::readFile(path)));
            QCOMPARE(QString::fromUtf8(TestSupport::readFile(out)), text);
            m_commentBlocks += text.count(S("/*")) + text.count(S("//"));
            equal = dictionaryWithContentsOfFile(out) == before;
        }
        m_equal += equal;
        QVERIFY2(equal || !warnings.isEmpty(), "the export differs from the base file and nobody was told");
    }

    void previousWordsAreCarried_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("previous");
        const QString corpus = TestSupport::corpusDir();
        if (corpus.isEmpty()) return;
        for (const auto &[base, previous] : corpusPairs(corpus))
            QTest::newRow(qPrintable(shortName(corpus, previous))) << base << previous;
    }
    void previousWordsAreCarried()
    {
        SKIP_WITHOUT_CORPUS();
        QFETCH(QString, base);
        QFETCH(QString, previous);
        const LocFilePtr file = LocFile::initWithPath(base, OptString(), OptString(previous));
        ++m_pairs;
        if (isPropertyListFile(base)) {
            // By place: the exported list holds the previous list's strings under the same keys.
            const QString folder = freshFolder();
            file->makeLocalizedFileAt(folder);
            const auto out = treeOf(folder + u'/' + QFileInfo(base).fileName());
            const auto before = treeOf(base);
            const auto prev = treeOf(previous);
            QVERIFY(out && before && prev);
            if (!out->isDictionary() || !prev->isDictionary()) return;
            // Every place of a string takes the word of its first place.
            QHash<QString, QString> firstKey;
            for (const auto &[key, value] : before->dictionary())
                if (value.isString() && !firstKey.contains(value.string())) firstKey.insert(value.string(), key);
            for (const auto &[key, value] : before->dictionary()) {
                const plist::Value *p = value.isString() ? prev->find(firstKey.value(value.string())) : nullptr;
                if (!value.isString() || !p || !p->isString() || p->string().isEmpty() || value.string().isEmpty()) continue;
                QCOMPARE(out->find(key)->string(), p->string());
                ++m_carried;
            }
            return;
        }
        const auto prev = tableOf(previous);
        if (!prev) {
            QVERIFY2(!file->warnings().isEmpty(), "an unreadable previous version was not reported");
            return;
        }
        for (const LocEntryPtr &e : file->allEntries()) {
            const QString key = StringUtility::wordOrEmpty(e->keyWord());
            const OptString plainKey = unescapedTableWord(key);
            const QString *word = plainKey ? prev->find(*plainKey) : nullptr;
            // A backslash in a previous word is not escaped on the way in, so such words come
            // back in another form; they are few and left out here.
            if (!word || word->contains(u'\\')) continue;
            const OptString got = unescapedTableWord(StringUtility::wordOrEmpty(e->localizedWord()));
            QVERIFY2(got && *got == *word, qPrintable(S("key %1: %2 instead of %3").arg(key, got.value_or(S("?")), *word)));
            QVERIFY(e->isChecked() || word->isEmpty());
            ++m_carried;
        }
    }
};

QTEST_GUILESS_MAIN(TestCorpusTables)
#include "test_corpus_tables.moc"
