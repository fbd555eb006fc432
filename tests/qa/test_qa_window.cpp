// The checks in the document window: icons in the entry and file tables (error and warning
// apart), the editor's list following the typed text, the filter to entries with problems, and
// checking an entry with an error asking nothing.
#include "DocumentWindow.h"
#include "EntryEditor.h"
#include "EntryTableModel.h"
#include "FileTableModel.h"
#include "Handlers.h"
#include "MyDocument.h"
#include "ProblemList.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "TestSupport.h"

#include <QAction>
#include <QIcon>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTableView>

namespace {

QString fixture(const char *name)
{
    return QStringLiteral(VOCABRIX_SOURCE_DIR "/tests/data/qa/cli/") + QLatin1String(name);
}

}  // namespace

class TestQaWindow : public QObject {
    Q_OBJECT

private slots:
    void window();

private:
    int rowOfKey(const QString &key) const;
    QPointer<DocumentWindow> m_window;
};

int TestQaWindow::rowOfKey(const QString &key) const
{
    EntryTableModel *model = m_window->entryModel();
    for (int row = 0; row < model->rowCount(); ++row)
        if (model->index(row, EntryTableModel::KeyColumn).data().toString() == key) return row;
    return -1;
}

void TestQaWindow::window()
{
    QTemporaryDir dir;
    TestSupport::isolate(dir);
    registerResourceHandlers();
    ScriptedDialogs dialogs;
    m_window = new DocumentWindow(new MyDocument);
    m_window->setDialogs(&dialogs, nullptr);
    m_window->show();
    m_window->document()->addFiles(QList<QPair<QString, OptString>>{{fixture("base.strings"), fixture("fr.strings")}});
    EntryTableModel *entries = m_window->entryModel();
    FileTableModel *files = m_window->fileModel();
    QCOMPARE(entries->rowCount(), 5);

    auto icon = [&](const QString &key) {
        return entries->index(rowOfKey(key), EntryTableModel::CheckColumn).data(Qt::DecorationRole).value<QIcon>();
    };
    QCOMPARE(icon(QStringLiteral("files")).cacheKey(), problemIcon(Qa::Severity::Error).cacheKey());
    QCOMPARE(icon(QStringLiteral("ok")).cacheKey(), problemIcon(Qa::Severity::Warning).cacheKey());
    QVERIFY(problemIcon(Qa::Severity::Error).cacheKey() != problemIcon(Qa::Severity::Warning).cacheKey());
    QVERIFY(icon(QStringLiteral("name")).isNull());
    QVERIFY(entries->index(rowOfKey(QStringLiteral("files")), 0).data(Qt::ToolTipRole).toString().startsWith(QLatin1String("error: ")));
    QCOMPARE(files->index(0, FileTableModel::NameColumn).data(Qt::DecorationRole).value<QIcon>().cacheKey(),
             problemIcon(Qa::Severity::Error).cacheKey());
    QVERIFY(files->index(0, 0).data(Qt::ToolTipRole).toString().contains(QLatin1String("1 entry with an error")));

    // The filter keeps the two entries with problems, and gives every entry back.
    auto *problemsOnly = m_window->findChild<QAction *>(QStringLiteral("ProblemsOnly"));
    QVERIFY(problemsOnly);
    problemsOnly->trigger();
    QCOMPARE(entries->rowCount(), 2);
    QVERIFY(rowOfKey(QStringLiteral("files")) >= 0 && rowOfKey(QStringLiteral("ok")) >= 0);
    problemsOnly->trigger();
    QCOMPARE(entries->rowCount(), 5);

    // Checking the entry asks nothing and keeps its icon.
    const int row = rowOfKey(QStringLiteral("files"));
    QVERIFY(entries->setData(entries->index(row, EntryTableModel::CheckColumn), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(dialogs.shown().isEmpty());
    QCOMPARE(icon(QStringLiteral("files")).cacheKey(), problemIcon(Qa::Severity::Error).cacheKey());

    // The editor lists the problems of the text as typed; the tables follow when it is written.
    m_window->selectEntryRow(row);
    EntryEditor *editor = m_window->entryEditor();
    QCOMPARE(editor->problemList()->problems().size(), 1);
    editor->entryField()->setPlainText(QStringLiteral("%d fichiers:"));
    QCOMPARE(editor->problemList()->problems().size(), 1);
    QCOMPARE(editor->problemList()->problems().first().check, QStringLiteral("ending-punctuation"));
    editor->entryField()->setPlainText(QStringLiteral("%d fichiers"));
    QVERIFY(editor->problemList()->problems().isEmpty());
    QVERIFY(editor->commit());
    QVERIFY(icon(QStringLiteral("files")).isNull());
    QTRY_VERIFY(files->index(0, FileTableModel::NameColumn).data(Qt::DecorationRole).value<QIcon>().cacheKey()
                == problemIcon(Qa::Severity::Warning).cacheKey());

    m_window->document()->updateChangeCount(MyDocument::ChangeCleared);
    delete m_window;
}

QTEST_MAIN(TestQaWindow)
#include "test_qa_window.moc"
