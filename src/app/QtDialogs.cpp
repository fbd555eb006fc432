#include "QtDialogs.h"

#include "MyDocument.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QLabel>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

namespace {

// Application bundles are folders that the user picks like files. Qt's file dialog enters a
// folder when it is chosen; this one hands a chosen bundle back instead.
class BundleFileDialog : public QFileDialog {
public:
    BundleFileDialog(QWidget *parent, QStringList bundleExtensions)
        : QFileDialog(parent), m_bundleExtensions(std::move(bundleExtensions))
    {
    }

    void accept() override
    {
        if (fileMode() != QFileDialog::Directory) {
            const QStringList chosen = selectedFiles();
            const bool allChoosable = !chosen.isEmpty() && std::all_of(chosen.cbegin(), chosen.cend(), [this](const QString &p) {
                const QFileInfo info(p);
                return info.exists() && (!info.isDir() || m_bundleExtensions.contains(info.suffix()));
            });
            const bool anyBundle = std::any_of(chosen.cbegin(), chosen.cend(), [](const QString &p) { return QFileInfo(p).isDir(); });
            if (allChoosable && anyBundle) {
                QDialog::accept();
                return;
            }
        }
        QFileDialog::accept();
    }

private:
    QStringList m_bundleExtensions;
};

QMessageBox::Icon iconFor(AlertStyle style)
{
    switch (style) {
    case AlertStyle::Informational: return QMessageBox::Information;
    case AlertStyle::Warning: return QMessageBox::Warning;
    case AlertStyle::Critical: return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

// The first button is the default one; the last of several is the one Escape presses (Cancel);
// any between them discards ("Don't Save").
void addButtons(QMessageBox &box, const QStringList &titles, QList<QAbstractButton *> *buttons)
{
    const QStringList list = titles.isEmpty() ? QStringList{QStringLiteral("OK")} : titles;
    for (qsizetype i = 0; i < list.size(); ++i) {
        QMessageBox::ButtonRole role = QMessageBox::DestructiveRole;
        if (i == 0) role = QMessageBox::AcceptRole;
        else if (i == list.size() - 1) role = QMessageBox::RejectRole;
        QPushButton *button = box.addButton(list.at(i), role);
        if (i == 0) box.setDefaultButton(button);
        if (role == QMessageBox::RejectRole || list.size() == 1) box.setEscapeButton(button);
        buttons->append(button);
    }
}

void fillBox(QMessageBox &box, const Alert &alert, QList<QAbstractButton *> *buttons)
{
    box.setIcon(iconFor(alert.style));
    box.setWindowTitle(alert.title);
    box.setText(alert.title);
    box.setInformativeText(alert.message);
    box.setTextFormat(Qt::PlainText);
    addButtons(box, alert.buttons, buttons);
    // Names of files and folders are worth copying out of any alert.
    for (const char *name : {"qt_msgbox_label", "qt_msgbox_informativelabel"})
        if (auto *label = box.findChild<QLabel *>(QLatin1String(name)))
            label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    if (!alert.copyable) return;
    QPushButton *copy = box.addButton(QObject::tr("Copy"), QMessageBox::ActionRole);
    copy->setObjectName(QStringLiteral("copyReport"));
    // Copying leaves the report open: the button does not end the box.
    QObject::disconnect(copy, &QAbstractButton::clicked, nullptr, nullptr);
    const QString text = alert.title + QLatin1String("\n\n") + alert.message;
    QObject::connect(copy, &QAbstractButton::clicked, copy, [text] { QGuiApplication::clipboard()->setText(text); });
}

}  // namespace

QStringList QtDialogs::runOpenPanel(const OpenPanelOptions &options)
{
    BundleFileDialog dialog(m_window, options.bundleExtensions);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setWindowTitle(options.message);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (options.canChooseDirectories) {
        // The only panels that take folders take files only as bundles, which are folders too.
        dialog.setFileMode(QFileDialog::Directory);
    } else {
        dialog.setFileMode(options.allowsMultipleSelection ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
        if (!options.allowedExtensions.isEmpty()) {
            QStringList patterns;
            for (const QString &ext : options.allowedExtensions) patterns.append(QStringLiteral("*.") + ext);
            dialog.setNameFilter(QStringLiteral("%1 (%2)").arg(options.allowedExtensions.join(QLatin1String(", ")),
                                                                patterns.join(u' ')));
        }
    }
    dialog.setOption(QFileDialog::ReadOnly, !options.canCreateDirectories);
    if (!options.prompt.isEmpty()) dialog.setLabelText(QFileDialog::Accept, options.prompt);
    if (!options.startFolder.isEmpty()) dialog.setDirectory(options.startFolder);
    if (!options.presetName.isEmpty()) dialog.selectFile(options.presetName);
    if (dialog.exec() != QDialog::Accepted) return {};
    return dialog.selectedFiles();
}

int QtDialogs::runAlert(const Alert &alert)
{
    QMessageBox box(m_window);
    QList<QAbstractButton *> buttons;
    fillBox(box, alert, &buttons);
    box.exec();
    const qsizetype index = buttons.indexOf(box.clickedButton());
    return index < 0 ? int(buttons.size() - 1) : int(index);
}

void QtDialogs::showAlertSheet(const Alert &alert)
{
    auto *box = new QMessageBox(m_window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QList<QAbstractButton *> buttons;
    fillBox(*box, alert, &buttons);
    // Window-modal and not waited for: the caller goes on while the sheet is shown.
    box->open();
}

void QtDialogs::revealInFileManager(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

QString QtDialogs::runSavePanel(const QString &title, const QString &suggestedPath)
{
    QFileDialog dialog(m_window, title);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(MyDocument::documentExtension());
    dialog.setNameFilter(QStringLiteral("%1 (*.%2)").arg(MyDocument::documentTypeName(), MyDocument::documentExtension()));
    if (!suggestedPath.isEmpty()) dialog.selectFile(suggestedPath);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return QString();
    return dialog.selectedFiles().first();
}
