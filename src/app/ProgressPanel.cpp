#include "ProgressPanel.h"

#include "MyDocument.h"

#include <QFileInfo>
#include <QProgressDialog>

ProgressPanel::ProgressPanel(MyDocument *document, QWidget *window)
    : QObject(window), m_document(document), m_window(window)
{
    connect(document, &MyDocument::loadingFilesChanged, this, &ProgressPanel::loadingChanged);
    connect(document, &MyDocument::progress, this, &ProgressPanel::advance);
    connect(document, &MyDocument::workingOn, this, [this](const QString &path) { m_name = QFileInfo(path).fileName(); });
}

void ProgressPanel::loadingChanged(bool on)
{
    m_loading = on;
    if (on) show();
    else delete m_dialog;
}

void ProgressPanel::pause()
{
    ++m_paused;
    delete m_dialog;
}

void ProgressPanel::resume()
{
    if (m_paused > 0 && --m_paused == 0 && m_loading) show();
}

void ProgressPanel::show()
{
    if (m_dialog || m_paused) return;
    m_dialog = new QProgressDialog(tr("Reading files\u2026"), tr("Cancel"), 0, 0, m_window);
    m_dialog->setObjectName(QStringLiteral("progressPanel"));
    m_dialog->setWindowTitle(tr("Working"));
    m_dialog->setWindowModality(Qt::WindowModal);
    // A few files go by without a panel flashing up.
    m_dialog->setMinimumDuration(400);
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    connect(m_dialog, &QProgressDialog::canceled, m_document, &MyDocument::stopLoadingFiles);
}

void ProgressPanel::advance(int done, int total)
{
    if (!m_dialog) return;
    m_dialog->setMaximum(total);
    m_dialog->setLabelText(tr("File %1 of %2: %3").arg(done).arg(total).arg(m_name));
    // Window-modal: this also lets the event loop turn, so Cancel answers.
    m_dialog->setValue(done);
}
