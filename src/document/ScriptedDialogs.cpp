#include "ScriptedDialogs.h"

QStringList ScriptedDialogs::runOpenPanel(const OpenPanelOptions &options)
{
    m_shown.append({Shown::Panel, options, {}, {}});
    if (!m_panelAnswers.isEmpty()) return m_panelAnswers.takeFirst();
    return panelFallback ? panelFallback(options) : QStringList();
}

int ScriptedDialogs::runAlert(const Alert &alert)
{
    m_shown.append({Shown::ModalAlert, {}, alert, {}});
    if (!m_alertAnswers.isEmpty()) return m_alertAnswers.takeFirst();
    return alertFallback ? alertFallback(alert) : 0;
}

void ScriptedDialogs::showAlertSheet(const Alert &alert)
{
    m_shown.append({Shown::Sheet, {}, alert, {}});
}

void ScriptedDialogs::revealInFileManager(const QString &path)
{
    m_shown.append({Shown::Reveal, {}, {}, path});
}

QList<OpenPanelOptions> ScriptedDialogs::panels() const
{
    QList<OpenPanelOptions> list;
    for (const Shown &s : m_shown)
        if (s.kind == Shown::Panel) list.append(s.panel);
    return list;
}

QList<Alert> ScriptedDialogs::alerts() const
{
    QList<Alert> list;
    for (const Shown &s : m_shown)
        if (s.kind == Shown::ModalAlert || s.kind == Shown::Sheet) list.append(s.alert);
    return list;
}
