#pragma once
// Sheets shown while a command works (a file not added, a table read with guesses, a file not
// written, one per file and source) wait until the command ends and then appear as one report,
// which the user reads whole and can copy. Panels and modal alerts pass through at once.

#include "Dialogs.h"

#include <QList>
#include <functional>

class GatheredSheets : public Dialogs {
public:
    void setTarget(Dialogs *target) { m_target = target; }
    // Between begin and the matching end, sheets wait; the outermost end shows them.
    void begin() { ++m_depth; }
    void end();
    int depth() const { return m_depth; }

    // Told before (true) and after (false) every panel and question, which a progress panel
    // must not cover.
    void setAroundQuestions(std::function<void(bool asking)> around) { m_around = std::move(around); }

    QStringList runOpenPanel(const OpenPanelOptions &options) override;
    int runAlert(const Alert &alert) override;
    void showAlertSheet(const Alert &alert) override;
    void revealInFileManager(const QString &path) override { m_target->revealInFileManager(path); }

    // Holds the sheets for as long as it lives.
    class Scope {
    public:
        explicit Scope(GatheredSheets &sheets) : m_sheets(sheets) { m_sheets.begin(); }
        ~Scope() { m_sheets.end(); }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        GatheredSheets &m_sheets;
    };

private:
    Dialogs *m_target = nullptr;
    int m_depth = 0;
    QList<Alert> m_waiting;
    std::function<void(bool)> m_around;
};
