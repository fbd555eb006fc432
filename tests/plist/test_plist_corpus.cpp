// Real files from public projects: every property list of the shared corpus reads, and survives
// XML and binary round trips as an equal tree. Skipped when the corpus folder is absent.
#include "PlistTestSupport.h"

#include <QDirIterator>
#include <QTest>

using namespace plist;

namespace {

// Paths relative to the corpus: every .plist; under nibs/ the keyed archives, classes.nib and
// info.nib, and the compiled .strings tables that are binary lists. Single-file nibs in Apple's
// NIBArchive form share the keyedobjects name but are no property list.
QStringList corpusLists(const QString &corpus)
{
    QStringList found;
    QDirIterator it(corpus, QDir::Files, QDirIterator::Subdirectories);
    const QDir root(corpus);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString name = it.fileName();
        const QString relative = root.relativeFilePath(path);
        const bool inNibs = relative.startsWith(u"nibs/");
        bool wanted = name.endsWith(u".plist");
        if (inNibs && (name.startsWith(u"keyedobjects") || name == u"classes.nib" || name == u"info.nib"))
            wanted = !PlistTest::readBytes(path).startsWith("NIBArchive");
        if (inNibs && name.endsWith(u".strings"))
            wanted = PlistTest::readBytes(path).startsWith("bplist00");
        if (wanted)
            found << relative;
    }
    found.sort();
    return found;
}

}  // namespace

class CorpusTest : public QObject {
    Q_OBJECT

private slots:
    void roundTrip_data();
    void roundTrip();
    void everyFormCovered();
};

void CorpusTest::roundTrip_data()
{
    const QString corpus = PlistTest::corpusDir();
    if (corpus.isEmpty())
        QSKIP("the shared corpus ($VOCABRIX_CORPUS or ../shared/corpus) is absent");
    QTest::addColumn<QString>("path");
    for (const QString &relative : corpusLists(corpus))
        QTest::newRow(qPrintable(relative)) << corpus + u'/' + relative;
}

void CorpusTest::roundTrip()
{
    QFETCH(QString, path);
    const ReadResult r = readFile(path);
    QVERIFY2(r.value, qPrintable(r.error));

    const QByteArray xml = toXml(*r.value);
    const ReadResult fromXml = read(xml);
    QVERIFY2(fromXml.value, qPrintable(fromXml.error));
    QVERIFY2(*fromXml.value == *r.value, "the tree changed through XML");
    QCOMPARE(toXml(*fromXml.value), xml);

    const ReadResult fromBinary = read(toBinary(*r.value));
    QVERIFY2(fromBinary.value, qPrintable(fromBinary.error));
    QVERIFY2(*fromBinary.value == *r.value, "the tree changed through the binary form");

    if (path.endsWith(u".strings"))
        QVERIFY2(readStringDictionary(PlistTest::readBytes(path)), "a compiled string table is no dictionary of strings");
}

// The corpus holds all three forms; if one disappeared from the selection, the test above would
// pass without checking it.
void CorpusTest::everyFormCovered()
{
    const QString corpus = PlistTest::corpusDir();
    if (corpus.isEmpty())
        QSKIP("the shared corpus ($VOCABRIX_CORPUS or ../shared/corpus) is absent");
    QSet<Format> seen;
    for (const QString &relative : corpusLists(corpus))
        seen.insert(readFile(corpus + u'/' + relative).format);
    QVERIFY(seen.contains(Format::Xml));
    QVERIFY(seen.contains(Format::Binary));
    QVERIFY(seen.contains(Format::OpenStep));
}

int runCorpusTests(int argc, char **argv)
{
    CorpusTest t;
    return QTest::qExec(&t, argc, argv);
}

#include "test_plist_corpus.moc"
