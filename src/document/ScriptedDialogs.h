#pragma once
// Dialogs answered from a script: each open panel takes the next queued answer, each modal alert
// the next queued button. Everything asked is recorded, so tests can check texts and options,
// and the command line can answer what its flags say.

#include "Dialogs.h"

#include <QList>
#include <functional>
#include <optional>

class ScriptedDialogs : public Dialogs {
public:
    struct Shown {
        enum Kind { Panel, ModalAlert, Sheet, Reveal } kind;
        OpenPanelOptions panel;
        Alert alert;
        QString path;  // the folder revealed
    };

    // Queued answers. An empty list answers "cancel". When the queue is empty, `panelFallback`
    // answers (by default: cancel).
    void queuePanelAnswer(const QStringList &paths) { m_panelAnswers.append(paths); }
    void queuePanelAnswer(const QString &path) { m_panelAnswers.append(QStringList{path}); }
    void queuePanelCancel() { m_panelAnswers.append(QStringList()); }
    void queueAlertButton(int index) { m_alertAnswers.append(index); }
    std::function<QStringList(const OpenPanelOptions &)> panelFallback;
    std::function<int(const Alert &)> alertFallback;  // default: button 0

    QStringList runOpenPanel(const OpenPanelOptions &options) override;
    int runAlert(const Alert &alert) override;
    void showAlertSheet(const Alert &alert) override;
    void revealInFileManager(const QString &path) override;

    const QList<Shown> &shown() const { return m_shown; }
    QList<OpenPanelOptions> panels() const;
    QList<Alert> alerts() const;  // modal alerts and sheets, in order
    qsizetype pendingPanelAnswers() const { return m_panelAnswers.size(); }
    void clearLog() { m_shown.clear(); }

private:
    QList<QStringList> m_panelAnswers;
    QList<int> m_alertAnswers;
    QList<Shown> m_shown;
};
