// The document window's wiring, driven headless: every panel and alert is answered by
// ScriptedDialogs, Save As by a scripted save panel. The window is built on the real handlers and
// a small bundle with a previous release.
#include "AppTestSupport.h"
#include "DocumentWindow.h"
#include "EntryEditor.h"
#include "EntryTableModel.h"
#include "FileTableModel.h"
#include "Handlers.h"
#include "LanguageComboBox.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "StringsTable.h"

#include <QAction>
#include <QBrush>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>

using StringUtility::wordOrEmpty;

class TestDocumentWindow : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void fileCommandsNeedFiles();
    void addingBundleFillsFileTable();
    void entryTableFollowsSelectedFile();
    void editingLocalizedWordInTable();
    void typingInEntryEditor();
    void checkBoxGoesThroughSwitchButton();
    void checkAndNextMovesOn();
    void hidingCheckedEntries();
    void searchFiltersEveryFile();
    void languagePopupsChangeDocument();
    void titleField();
    void busyIndicatorFollowsLoading();
    void closeAsksAboutUnsavedChanges_data();
    void closeAsksAboutUnsavedChanges();
    void revertGoesBackToSavedFile();
    void deleteAsksFirst();
    void exportTakesSelectionAndPendingEdit();
    void spellingStateIsSavedWithDocument();
    void grabShowsWindow();
    void tableProblemsAndNotesAreShown();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    ScriptedDialogs m_dialogs;
    AppTest::ScriptedSavePanel m_savePanel;
    QPointer<DocumentWindow> m_window;
    QString m_bundle, m_previous;

    MyDocument *doc() const { return m_window->document(); }
    FileTableModel *files() const { return m_window->fileModel(); }
    EntryTableModel *entries() const { return m_window->entryModel(); }
    void addFixture();
    int rowOfKey(const QString &key) const;
    int fileRow(const QString &name) const;
};

void TestDocumentWindow::initTestCase()
{
    registerResourceHandlers();
    setInterfaceLanguage(QStringLiteral("en"));
}

void TestDocumentWindow::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    AppTest::isolate(*m_dir);
    std::tie(m_bundle, m_previous) = AppTest::writeBundles(*m_dir);
    m_dialogs = ScriptedDialogs();
    m_savePanel = AppTest::ScriptedSavePanel();
    m_window = new DocumentWindow(new MyDocument);
    m_window->setDialogs(&m_dialogs, &m_savePanel);
    m_window->show();
}

void TestDocumentWindow::cleanup()
{
    if (m_window) {
        doc()->updateChangeCount(MyDocument::ChangeCleared);  // close without the question
        delete m_window;
    }
    for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
}

// The bundle through the add-file panel, its previous release through the previous-version panel.
void TestDocumentWindow::addFixture()
{
    m_dialogs.queuePanelAnswer(m_bundle);
    m_dialogs.queuePanelAnswer(m_previous);
    m_window->toolbarItem(QStringLiteral("AddFile"))->trigger();
}

int TestDocumentWindow::rowOfKey(const QString &key) const
{
    for (int row = 0; row < entries()->rowCount(); ++row)
        if (entries()->index(row, EntryTableModel::KeyColumn).data().toString() == key) return row;
    return -1;
}

int TestDocumentWindow::fileRow(const QString &name) const
{
    for (int row = 0; row < files()->rowCount(); ++row)
        if (files()->index(row, FileTableModel::NameColumn).data().toString() == name) return row;
    return -1;
}

void TestDocumentWindow::fileCommandsNeedFiles()
{
    QVERIFY(m_window->toolbarItem(QStringLiteral("AddFile"))->isEnabled());
    for (const char *id : {"Export", "ExportAll", "Delete"})
        QVERIFY2(!m_window->toolbarItem(QString::fromLatin1(id))->isEnabled(), id);
    addFixture();
    for (const char *id : {"Export", "ExportAll", "Delete"})
        QVERIFY2(m_window->toolbarItem(QString::fromLatin1(id))->isEnabled(), id);
}

void TestDocumentWindow::addingBundleFillsFileTable()
{
    addFixture();
    const QList<OpenPanelOptions> panels = m_dialogs.panels();
    QCOMPARE(panels.size(), 2);
    QVERIFY(panels.at(0).allowsMultipleSelection);
    QVERIFY(panels.at(0).allowedExtensions.contains(QStringLiteral("app")));
    QVERIFY(panels.at(1).message.startsWith(QStringLiteral("Foo.app")));

    // Credits.rtf is not a resource; the table lists the two string tables.
    QCOMPARE(files()->rowCount(), 2);
    const int localizable = fileRow(QStringLiteral("Localizable.strings"));
    const int info = fileRow(QStringLiteral("InfoPlist.strings"));
    QVERIFY(localizable >= 0 && info >= 0);
    // "hello" comes from the previous release; "bye" and "cancel" are still to translate.
    QCOMPARE(files()->index(localizable, FileTableModel::StatusColumn).data().toString(), QStringLiteral("1/3"));
    QCOMPARE(files()->index(localizable, 0).data(Qt::ForegroundRole).value<QBrush>().color(), QColor(Qt::red));
    QCOMPARE(files()->index(info, FileTableModel::StatusColumn).data().toString(), QStringLiteral("1/1"));
    QVERIFY(!files()->index(info, 0).data(Qt::ForegroundRole).isValid());

    QVERIFY(doc()->isDocumentEdited());
    QVERIFY(m_window->isWindowModified());
    QCOMPARE(m_window->findChild<QLabel *>(QStringLiteral("summary"))->text(), QStringLiteral("2 files, 2 of 4 entries checked"));
    // The first file is selected and shown, its first entry in the editor.
    QCOMPARE(m_window->selectedFiles().size(), 1);
    QCOMPARE(entries()->file(), m_window->selectedFiles().first());
    QVERIFY(m_window->currentEntry());
    QCOMPARE(m_window->entryEditor()->basewordField()->text(), wordOrEmpty(entries()->entryAt(0)->baseWord()));
}

void TestDocumentWindow::entryTableFollowsSelectedFile()
{
    addFixture();
    m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
    QCOMPARE(entries()->rowCount(), 3);
    const int hello = rowOfKey(QStringLiteral("hello"));
    QVERIFY(hello >= 0);
    QCOMPARE(entries()->index(hello, EntryTableModel::BaseWordColumn).data().toString(), QStringLiteral("Hello"));
    QCOMPARE(entries()->index(hello, EntryTableModel::LocalizedWordColumn).data().toString(), QStringLiteral("Bonjour"));
    QCOMPARE(entries()->index(hello, EntryTableModel::CheckColumn).data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Checked);
    const int bye = rowOfKey(QStringLiteral("bye"));
    QCOMPARE(entries()->index(bye, EntryTableModel::CheckColumn).data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Unchecked);

    m_window->selectEntryRow(bye);
    QCOMPARE(m_window->entryEditor()->basewordField()->text(), QStringLiteral("Goodbye"));
    QCOMPARE(m_window->entryEditor()->entryField()->toPlainText(), QStringLiteral("Goodbye"));
    QVERIFY(!m_window->entryEditor()->checkBox()->isChecked());

    // Another file starts at its first entry, not at the row the last one was on.
    const QString other = TestSupport::writeFile(m_dir->filePath(QStringLiteral("Other.strings")),
                                                 "\"a\" = \"A\";\n\"b\" = \"B\";\n\"c\" = \"C\";\n");
    doc()->addFiles(QList<QPair<QString, OptString>>{{other, std::nullopt}});
    m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
    m_window->selectEntryRow(2);
    m_window->selectFileRows({fileRow(QStringLiteral("Other.strings"))});
    QCOMPARE(m_window->entryTable()->currentIndex().row(), 0);
    QCOMPARE(m_window->currentEntry(), entries()->entryAt(0));

    // Two files selected: no entries shown.
    m_window->selectFileRows({0, 1});
    QCOMPARE(entries()->rowCount(), 0);
    QVERIFY(!m_window->currentEntry());
}

void TestDocumentWindow::editingLocalizedWordInTable()
{
    addFixture();
    const int localizable = fileRow(QStringLiteral("Localizable.strings"));
    m_window->selectFileRows({localizable});
    doc()->updateChangeCount(MyDocument::ChangeCleared);
    const int bye = rowOfKey(QStringLiteral("bye"));
    const LocEntryPtr entry = entries()->entryAt(bye);

    QVERIFY(entries()->setData(entries()->index(bye, EntryTableModel::LocalizedWordColumn), QStringLiteral("Au \"revoir\""),
                               Qt::EditRole));
    // The entry's text is rewritten in string-table form, and the entry checked.
    QCOMPARE(wordOrEmpty(entry->localizedWord()), QStringLiteral("Au \\\"revoir\\\""));
    QVERIFY(entry->entry().endsWith(QStringLiteral("\n\"Goodbye\" = \"Au \\\"revoir\\\"\";")));
    QVERIFY(entry->isChecked());
    QVERIFY(doc()->isDocumentEdited());
    QCOMPARE(entries()->index(bye, EntryTableModel::LocalizedWordColumn).data().toString(), QStringLiteral("Au \\\"revoir\\\""));
    QTRY_COMPARE(files()->index(localizable, FileTableModel::StatusColumn).data().toString(), QStringLiteral("2/3"));

    // The same word again is no edit.
    doc()->updateChangeCount(MyDocument::ChangeCleared);
    entries()->setData(entries()->index(bye, EntryTableModel::LocalizedWordColumn), entry->localizedWord().value(), Qt::EditRole);
    QVERIFY(!doc()->isDocumentEdited());
}

void TestDocumentWindow::typingInEntryEditor()
{
    addFixture();
    m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
    const int cancel = rowOfKey(QStringLiteral("cancel"));
    m_window->selectEntryRow(cancel);
    const LocEntryPtr entry = m_window->currentEntry();
    QCOMPARE(wordOrEmpty(entry->baseWord()), QStringLiteral("Cancel"));
    doc()->updateChangeCount(MyDocument::ChangeCleared);

    m_window->entryEditor()->focusEditor();
    QTest::keyClicks(m_window->entryEditor()->entryField(), QStringLiteral("Annuler"));
    // Typing marks the document at once; the word is written when the user moves on.
    QVERIFY(doc()->isDocumentEdited());
    QCOMPARE(wordOrEmpty(entry->localizedWord()), QStringLiteral("Cancel"));
    m_window->selectPrevious();
    QCOMPARE(wordOrEmpty(entry->localizedWord()), QStringLiteral("Annuler"));
    QVERIFY(entry->isChecked());
    QCOMPARE(entries()->index(cancel, EntryTableModel::LocalizedWordColumn).data().toString(), QStringLiteral("Annuler"));

    // Saving writes a pending edit too.
    m_window->selectEntryRow(cancel);
    m_window->entryEditor()->focusEditor();
    QTest::keyClicks(m_window->entryEditor()->entryField(), QStringLiteral("Fermer"));
    m_savePanel.answers = {m_dir->filePath(QStringLiteral("saved.vocabrix"))};
    QVERIFY(m_window->save());
    QCOMPARE(wordOrEmpty(entry->localizedWord()), QStringLiteral("Fermer"));
    QVERIFY(!doc()->isDocumentEdited());
}

void TestDocumentWindow::checkBoxGoesThroughSwitchButton()
{
    addFixture();
    const int localizable = fileRow(QStringLiteral("Localizable.strings"));
    m_window->selectFileRows({localizable});
    const int bye = rowOfKey(QStringLiteral("bye"));
    m_window->selectEntryRow(bye);
    const LocEntryPtr entry = entries()->entryAt(bye);
    doc()->updateChangeCount(MyDocument::ChangeCleared);

    QVERIFY(entries()->setData(entries()->index(bye, EntryTableModel::CheckColumn), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(entry->isChecked());
    QVERIFY(doc()->isDocumentEdited());
    QVERIFY(m_window->entryEditor()->checkBox()->isChecked());
    QTRY_COMPARE(files()->index(localizable, FileTableModel::StatusColumn).data().toString(), QStringLiteral("2/3"));

    // The editor's check box unticks it again, through the same command.
    doc()->updateChangeCount(MyDocument::ChangeCleared);
    m_window->entryEditor()->checkBox()->click();
    QVERIFY(!entry->isChecked());
    QVERIFY(doc()->isDocumentEdited());
    QCOMPARE(entries()->index(bye, EntryTableModel::CheckColumn).data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Unchecked);
}

void TestDocumentWindow::checkAndNextMovesOn()
{
    addFixture();
    m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
    m_window->selectEntryRow(0);
    const LocEntryPtr first = m_window->currentEntry();
    first->setCheck(false);
    m_window->entryEditor()->finishButton()->click();
    QVERIFY(first->isChecked());
    QCOMPARE(m_window->currentEntry(), entries()->entryAt(1));
    // Ctrl+Return in the editor does the same.
    QApplication::setActiveWindow(m_window);
    QVERIFY(QTest::qWaitForWindowActive(m_window));
    m_window->entryEditor()->focusEditor();
    QTest::keyClick(m_window->entryEditor()->entryField(), Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(m_window->currentEntry(), entries()->entryAt(2));
    QVERIFY(entries()->entryAt(1)->isChecked());
    QVERIFY(!m_window->entryEditor()->entryField()->toPlainText().contains(u'\n'));
    // At the end the selection stays on the last entry.
    m_window->selectEntryRow(2);
    m_window->checkLocalized();
    QCOMPARE(m_window->currentEntry(), entries()->entryAt(2));
}

void TestDocumentWindow::hidingCheckedEntries()
{
    addFixture();
    const LocFilePtr file = m_window->fileModel()->fileAt(fileRow(QStringLiteral("Localizable.strings")));
    m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
    QCOMPARE(entries()->rowCount(), 3);

    Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, true);
    QCOMPARE(entries()->rowCount(), 2);  // "hello" is checked
    QCOMPARE(rowOfKey(QStringLiteral("hello")), -1);

    // Checking an entry takes it out of the list a moment later; it stays in the file.
    const int bye = rowOfKey(QStringLiteral("bye"));
    m_window->selectEntryRow(bye);
    entries()->setData(entries()->index(bye, EntryTableModel::CheckColumn), Qt::Checked, Qt::CheckStateRole);
    QCOMPARE(entries()->rowCount(), 2);
    QTRY_COMPARE(entries()->rowCount(), 1);
    QCOMPARE(file->allEntries().size(), 3);
    // The entry that took its place is the one shown, with the editor ready for typing.
    QCOMPARE(m_window->currentEntry(), entries()->entryAt(0));
    QCOMPARE(wordOrEmpty(m_window->currentEntry()->keyWord()), QStringLiteral("cancel"));

    Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, false);
    QCOMPARE(entries()->rowCount(), 3);
}

void TestDocumentWindow::searchFiltersEveryFile()
{
    addFixture();
    m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
    m_window->searchField()->setText(QStringLiteral("GOODBYE"));
    QCOMPARE(entries()->rowCount(), 1);
    QCOMPARE(rowOfKey(QStringLiteral("bye")), 0);
    const LocFilePtr info = files()->fileAt(fileRow(QStringLiteral("InfoPlist.strings")));
    QCOMPARE(info->entries().size(), 0);
    m_window->searchField()->clear();
    QCOMPARE(entries()->rowCount(), 3);
    QCOMPARE(info->entries().size(), 1);
}

void TestDocumentWindow::languagePopupsChangeDocument()
{
    LanguageComboBox *to = m_window->languageToPp();
    LanguageComboBox *from = m_window->languageFromPp();
    QCOMPARE(from->selectedTag(), doc()->locLangFrom());
    QCOMPARE(to->selectedTag(), doc()->locLangTo());
    QCOMPARE(to->count(), int(languageItems().size()));

    QSignalSpy reset(doc(), &MyDocument::dictionaryPathReset);
    const int german = to->findData(3);
    to->setCurrentIndex(german);
    emit to->activated(german);
    QCOMPARE(doc()->locLangTo(), 3);
    QVERIFY(!reset.isEmpty());
    QVERIFY(reset.last().first().toString().endsWith(
        QStringLiteral("%1-%2.strings").arg(*languageKeyForLanguage(1), *languageKeyForLanguage(3))));
    QVERIFY(doc()->isDocumentEdited());  // the archive keeps the pair

    // The popups follow the document (an opened or reverted archive).
    doc()->setLocLangFrom(2);
    QCOMPARE(from->selectedTag(), 2);
}

void TestDocumentWindow::titleField()
{
    QCOMPARE(m_window->titleField()->text(), QStringLiteral("Title"));
    m_window->titleField()->selectAll();
    QTest::keyClicks(m_window->titleField(), QStringLiteral("Notes"));
    QCOMPARE(doc()->title(), QStringLiteral("Notes"));
    doc()->setTitle(QStringLiteral("Other"));
    QCOMPARE(m_window->titleField()->text(), QStringLiteral("Other"));
}

void TestDocumentWindow::busyIndicatorFollowsLoading()
{
    QVERIFY(!m_window->busyIndicator()->isVisible());
    bool shownWhileAdding = false;
    connect(doc(), &MyDocument::progress, this, [&] { shownWhileAdding = m_window->busyIndicator()->isVisible(); });
    addFixture();
    QVERIFY(shownWhileAdding);
    QVERIFY(!m_window->busyIndicator()->isVisible());
}

void TestDocumentWindow::closeAsksAboutUnsavedChanges_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<QString>("savedAs");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<bool>("written");
    QTest::newRow("save") << 0 << QStringLiteral("doc.vocabrix") << true << true;
    QTest::newRow("save, panel cancelled") << 0 << QString() << false << false;
    QTest::newRow("don't save") << 1 << QString() << true << false;
    QTest::newRow("cancel") << 2 << QString() << false << false;
}

void TestDocumentWindow::closeAsksAboutUnsavedChanges()
{
    QFETCH(int, button);
    QFETCH(QString, savedAs);
    QFETCH(bool, closes);
    QFETCH(bool, written);

    // Unchanged: closes without a question.
    QVERIFY(m_window->canClose());
    QVERIFY(m_dialogs.alerts().isEmpty());

    addFixture();
    m_dialogs.clearLog();
    m_dialogs.queueAlertButton(button);
    const QString path = savedAs.isEmpty() ? QString() : m_dir->filePath(savedAs);
    m_savePanel.answers = {path};
    const bool closed = m_window->close();
    QCOMPARE(closed, closes);
    QCOMPARE(m_dialogs.alerts().size(), 1);
    const Alert question = m_dialogs.alerts().first();
    QVERIFY(question.title.contains(QStringLiteral("Untitled")));
    QCOMPARE(question.buttons, (QStringList{QStringLiteral("Save"), QStringLiteral("Don't Save"), QStringLiteral("Cancel")}));
    QCOMPARE(m_savePanel.asked, button == 0 ? 1 : 0);
    QCOMPARE(!path.isEmpty() && QFileInfo::exists(path), written);
    if (closes) QTRY_VERIFY(m_window.isNull());  // deleted on close
    else QVERIFY(m_window->isVisible());

    if (written) {  // what was saved reads back
        MyDocument reread;
        QVERIFY(reread.readFromFile(path));
        QCOMPARE(reread.files().size(), 2);
    }
}

void TestDocumentWindow::revertGoesBackToSavedFile()
{
    addFixture();
    const QString path = m_dir->filePath(QStringLiteral("r.vocabrix"));
    QVERIFY(doc()->writeToFile(path));
    QVERIFY(!m_window->revertDocument());  // nothing changed: nothing to revert
    m_window->selectFileRows({0});
    m_dialogs.queueAlertButton(0);
    m_window->deleteCurrentFile();
    QCOMPARE(files()->rowCount(), 1);

    m_dialogs.queueAlertButton(1);  // "Cancel"
    QVERIFY(!m_window->revertDocument());
    QCOMPARE(files()->rowCount(), 1);
    m_dialogs.queueAlertButton(0);
    QVERIFY(m_window->revertDocument());
    QCOMPARE(files()->rowCount(), 2);
    QVERIFY(!doc()->isDocumentEdited());
    QVERIFY(m_window->currentEntry());
}

void TestDocumentWindow::deleteAsksFirst()
{
    addFixture();
    m_window->selectFileRows({0, 1});
    doc()->updateChangeCount(MyDocument::ChangeCleared);
    m_dialogs.clearLog();
    m_dialogs.queueAlertButton(1);
    m_window->deleteCurrentFile();
    QCOMPARE(m_dialogs.alerts().first().title, QStringLiteral("Delete File"));
    QCOMPARE(files()->rowCount(), 2);
    QVERIFY(!doc()->isDocumentEdited());

    // Backspace in the file table asks the same question.
    m_dialogs.queueAlertButton(0);
    m_window->fileTable()->setFocus();
    QTest::keyClick(m_window->fileTable(), Qt::Key_Backspace);
    QCOMPARE(files()->rowCount(), 0);
    QVERIFY(doc()->isDocumentEdited());
    QVERIFY(!m_window->toolbarItem(QStringLiteral("Export"))->isEnabled());
}

void TestDocumentWindow::spellingStateIsSavedWithDocument()
{
    QVERIFY(!m_window->entryEditor()->isContinuousSpellCheckingEnabled());
    m_window->entryEditor()->spellingAction()->setChecked(true);
    QVERIFY(!Settings::instance().boolValue(SettingsKey::ContinuousSpellCheckingEnabled));
    m_savePanel.answers = {m_dir->filePath(QStringLiteral("s.vocabrix"))};
    QVERIFY(m_window->save());
    QVERIFY(Settings::instance().boolValue(SettingsKey::ContinuousSpellCheckingEnabled));

    DocumentWindow later(new MyDocument);
    QVERIFY(later.entryEditor()->isContinuousSpellCheckingEnabled());
}

void TestDocumentWindow::grabShowsWindow()
{
    addFixture();
    const QImage image = m_window->grab().toImage();
    QVERIFY(!image.isNull());
    QCOMPARE(image.size(), m_window->size() * image.devicePixelRatio());
    // A drawn window has text, lines and fields: many colours, not one flat fill.
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3) colours.insert(image.pixel(x, y));
    QVERIFY2(colours.size() > 20, qPrintable(QString::number(colours.size())));
    // The unchecked file is painted red somewhere in the file table.
    const QImage table = m_window->fileTable()->grab().toImage();
    bool red = false;
    for (int y = 0; y < table.height() && !red; ++y)
        for (int x = 0; x < table.width() && !red; ++x) {
            const QColor c = table.pixelColor(x, y);
            red = c.red() > 200 && c.green() < 80 && c.blue() < 80;
        }
    QVERIFY(red);
}

void TestDocumentWindow::exportTakesSelectionAndPendingEdit()
{
    addFixture();
    const QString out = m_dir->filePath(QStringLiteral("out"));
    QDir().mkpath(out);
    m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
    m_window->selectEntryRow(rowOfKey(QStringLiteral("bye")));
    m_window->entryEditor()->focusEditor();
    QTest::keyClicks(m_window->entryEditor()->entryField(), QStringLiteral("Au revoir"));
    doc()->updateChangeCount(MyDocument::ChangeCleared);

    m_dialogs.clearLog();
    m_dialogs.queuePanelAnswer(out);
    m_window->toolbarItem(QStringLiteral("Export"))->trigger();
    // Only the selected file, with the word still being typed.
    QCOMPARE(QDir(out).entryList(QDir::Files), QStringList{QStringLiteral("Localizable.strings")});
    const auto table = dictionaryWithContentsOfFile(QDir(out).filePath(QStringLiteral("Localizable.strings")));
    QVERIFY(table);
    QCOMPARE(table->value(QStringLiteral("bye")), QStringLiteral("Au revoir"));
    QCOMPARE(m_dialogs.panels().first().prompt, QStringLiteral("Export"));

    m_dialogs.queuePanelAnswer(out);
    m_window->toolbarItem(QStringLiteral("ExportAll"))->trigger();
    QCOMPARE(QDir(out).entryList(QDir::Files).size(), 2);
    // A cancelled folder panel writes nothing and asks nothing more.
    QFile::remove(QDir(out).filePath(QStringLiteral("InfoPlist.strings")));
    m_dialogs.queuePanelCancel();
    m_window->toolbarItem(QStringLiteral("ExportAll"))->trigger();
    QVERIFY(!QFileInfo::exists(QDir(out).filePath(QStringLiteral("InfoPlist.strings"))));
}

QTEST_MAIN(TestDocumentWindow)
#include "test_document_window.moc"

// What the command line prints about a file, the window shows: a table that breaks the grammar
// is named in a sheet; the developer's comment of a pair is shown beside its base word.
void TestDocumentWindow::tableProblemsAndNotesAreShown()
{
    const QString broken = TestSupport::writeFile(m_dir->filePath(QStringLiteral("a/Broken.strings")), "\"a\" = \"1\"\n\"b\" = \"2\";\n");
    const QString good = TestSupport::writeFile(m_dir->filePath(QStringLiteral("b/Good.strings")),
                                                "/* Preferences -> Transfers -> Magnet tooltip */\n\"magnet\" = \"Open magnets\";\n");
    m_dialogs.queuePanelAnswer(broken);
    m_window->toolbarItem(QStringLiteral("AddFile"))->trigger();
    QVERIFY(!m_dialogs.alerts().isEmpty());
    QVERIFY2(m_dialogs.alerts().last().message.contains(QStringLiteral("breaks the string-table syntax at line 2")),
             qPrintable(m_dialogs.alerts().last().message));

    const qsizetype alertsBefore = m_dialogs.alerts().size();
    m_dialogs.queuePanelAnswer(good);
    m_window->toolbarItem(QStringLiteral("AddFile"))->trigger();
    QCOMPARE(m_dialogs.alerts().size(), alertsBefore);  // nothing to tell about a sound table
    m_window->selectFileRows({fileRow(QStringLiteral("Good.strings"))});
    m_window->selectEntryRow(0);
    QCOMPARE(m_window->entryEditor()->commentLabel()->text(), QStringLiteral("Preferences -> Transfers -> Magnet tooltip"));
}
