#include "GatheredSheets.h"

#include <QObject>

#include <algorithm>
#include <utility>

QStringList GatheredSheets::runOpenPanel(const OpenPanelOptions &options)
{
    if (m_around) m_around(true);
    const QStringList chosen = m_target->runOpenPanel(options);
    if (m_around) m_around(false);
    return chosen;
}

int GatheredSheets::runAlert(const Alert &alert)
{
    if (m_around) m_around(true);
    const int button = m_target->runAlert(alert);
    if (m_around) m_around(false);
    return button;
}

void GatheredSheets::showAlertSheet(const Alert &alert)
{
    Alert copyable = alert;
    copyable.copyable = true;
    if (m_depth > 0) m_waiting.append(copyable);
    else m_target->showAlertSheet(copyable);
}

void GatheredSheets::end()
{
    if (m_depth == 0 || --m_depth > 0 || m_waiting.isEmpty()) return;
    const QList<Alert> waiting = std::exchange(m_waiting, {});
    if (waiting.size() == 1) {
        m_target->showAlertSheet(waiting.first());
        return;
    }
    Alert report;
    report.title = QObject::tr("Some files need a look");
    report.style = AlertStyle::Informational;
    report.copyable = true;
    QStringList parts;
    for (const Alert &alert : waiting) {
        parts.append(alert.message.isEmpty() ? alert.title : alert.title + u'\n' + alert.message);
        report.style = std::max(report.style, alert.style);
    }
    report.message = parts.join(QLatin1String("\n\n"));
    m_target->showAlertSheet(report);
}
