// Exact output: every table in the corpus's ibtool-golden folder was written by Apple's ibtool
// from the xib beside it and never edited. The engine must give the same text, entry for
// entry, in the same order. A folder is <project>/<commit>/ with Base.lproj/X.xib and
// <lang>.lproj/X.strings; a case is added by adding files, never code.

#include "CorpusTables.h"
#include "IbtoolTable.h"
#include "InterfaceFile.h"
#include "TestSupport.h"

#include <QTest>

using namespace interface;

class TestIbtoolGolden : public QObject {
    Q_OBJECT

private slots:
    void generatedTableIsIbtools_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("golden");
        const QString corpus = TestSupport::corpusDir();
        if (corpus.isEmpty()) return;
        for (const auto &pair : CorpusTables::findPairs(corpus + QStringLiteral("/ibtool-golden")))
            QTest::newRow(qPrintable(pair.table.section(u'/', -3))) << pair.base << pair.table;
    }

    void generatedTableIsIbtools()
    {
        SKIP_WITHOUT_CORPUS();
        QFETCH(QString, base);
        QFETCH(QString, golden);
        QString error;
        const auto file = openInterfaceFile(base, &error);
        QVERIFY2(file, qPrintable(error));
        const QString ours = ibtoolTableText(inIbtoolOrder(file->strings()));
        const QString theirs = CorpusTables::readTableText(golden);
        if (ours == theirs) return;
        const QStringList a = ours.split(u'\n'), b = theirs.split(u'\n');
        qsizetype line = 0;
        while (line < a.size() && line < b.size() && a[line] == b[line]) ++line;
        QFAIL(qPrintable(QStringLiteral("first difference at line %1:\n  generated: %2\n  golden:    %3")
                             .arg(line + 1)
                             .arg(line < a.size() ? a[line] : QStringLiteral("<end of table>"),
                                  line < b.size() ? b[line] : QStringLiteral("<end of table>"))));
    }
};

QTEST_GUILESS_MAIN(TestIbtoolGolden)
#include "test_ibtool_golden.moc"
