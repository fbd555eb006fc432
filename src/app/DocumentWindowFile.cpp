// DocumentWindow: Save, Save As, Revert and the question before closing a changed document.
#include "DocumentWindow.h"

#include "Dialogs.h"
#include "EntryEditor.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "SavePanel.h"
#include "WindowFrame.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStatusBar>

namespace {

QString quoted(const QString &name)
{
    return QStringLiteral("\u201C%1\u201D").arg(name);
}

// Titles make good file names once the characters file systems refuse are gone.
QString suggestedName(const MyDocument &document)
{
    QString name = document.title().trimmed();
    name.replace(QRegularExpression(QStringLiteral("[/\\\\:*?\"<>|]")), QStringLiteral("-"));
    if (name.isEmpty()) name = document.displayName();
    return name + u'.' + MyDocument::documentExtension();
}

}  // namespace

bool DocumentWindow::writeTo(const QString &path)
{
    QString error;
    if (!m_document->writeToFile(path, &error)) {
        Alert alert;
        alert.title = localizedString(QStringLiteral("The document could not be saved."));
        alert.message = error;
        alert.style = AlertStyle::Critical;
        dialogs().runAlert(alert);
        return false;
    }
    statusBar()->showMessage(tr("Saved %1.").arg(QDir::toNativeSeparators(path)), 4000);
    validateItems();
    emit documentSaved(path);
    return true;
}

bool DocumentWindow::save()
{
    m_entryEditor->commit();
    if (m_document->filePath().isEmpty()) return saveAs();
    return writeTo(m_document->filePath());
}

bool DocumentWindow::saveAs()
{
    m_entryEditor->commit();
    const QString current = m_document->filePath();
    const QString suggested = current.isEmpty() ? QDir::home().filePath(suggestedName(*m_document)) : current;
    QString path = savePanel().runSavePanel(tr("Save As"), suggested);
    if (path.isEmpty()) return false;
    if (QFileInfo(path).suffix().isEmpty()) path += u'.' + MyDocument::documentExtension();
    return writeTo(path);
}

bool DocumentWindow::revertDocument()
{
    if (m_document->filePath().isEmpty() || !m_document->isDocumentEdited()) return false;
    Alert alert;
    alert.title = localizedString(QStringLiteral("Do you want to revert to the most recently saved version of the document %1?"))
                      .arg(quoted(m_document->displayName()));
    alert.message = localizedString(QStringLiteral("Your current changes will be lost."));
    alert.buttons = QStringList{localizedString(QStringLiteral("Revert")), localizedString(QStringLiteral("Cancel"))};
    if (dialogs().runAlert(alert) != 0) return false;
    m_entryEditor->setEntry(nullptr);
    QString error;
    if (!m_document->revertToSaved(&error)) {
        Alert failed;
        failed.title = localizedString(QStringLiteral("The document could not be reverted."));
        failed.message = error;
        failed.style = AlertStyle::Critical;
        dialogs().runAlert(failed);
        return false;
    }
    validateItems();
    return true;
}

bool DocumentWindow::canClose()
{
    m_entryEditor->commit();
    if (!m_document->isDocumentEdited()) return true;
    Alert alert;
    alert.title = localizedString(QStringLiteral("Do you want to save the changes made to the document %1?"))
                      .arg(quoted(m_document->displayName()));
    alert.message = localizedString(QStringLiteral("Your changes will be lost if you don't save them."));
    alert.buttons = QStringList{localizedString(QStringLiteral("Save")), localizedString(QStringLiteral("Don't Save")),
                                localizedString(QStringLiteral("Cancel"))};
    switch (dialogs().runAlert(alert)) {
    case 0: return save();
    case 1: return true;
    default: return false;
    }
}

void DocumentWindow::closeEvent(QCloseEvent *event)
{
    if (!canClose()) {
        event->ignore();
        return;
    }
    WindowFrame::save(this, MyDocument::windowNibName());
    event->accept();
}
