#pragma once
// What the document commands share: opening and saving a document, naming languages and files
// on the command line, answering the model's dialogs from flags, and JSON output lines.

#include "Dialogs.h"
#include "MyDocument.h"

#include <QJsonObject>
#include <QTextStream>
#include <memory>

namespace DocumentCli {

// Alerts and sheets are printed to the error stream; a panel is never expected (the commands
// pass every answer to the model directly) and is cancelled.
class PrintingDialogs : public Dialogs {
public:
    explicit PrintingDialogs(QTextStream &err) : m_err(err) {}
    QStringList runOpenPanel(const OpenPanelOptions &) override { return {}; }
    int runAlert(const Alert &alert) override;
    void showAlertSheet(const Alert &alert) override;
    int alertsShown() const { return m_count; }

private:
    QTextStream &m_err;
    int m_count = 0;
};

// The document at `path`, or none with the reason printed.
std::unique_ptr<MyDocument> open(const QString &path, QTextStream &err);
bool save(MyDocument &doc, const QString &path, QTextStream &err);

// A language named by tag, key, abbreviation or name; none with a message naming the option.
std::optional<int> language(const QString &text, const QString &option, QTextStream &err);
QJsonObject languageJson(int tag);

// Files named by position from 1, by file name or by path; none with a message when a name
// matches nothing.
std::optional<QList<LocFilePtr>> files(const MyDocument &doc, const QStringList &names, QTextStream &err);

QJsonObject fileJson(const LocFilePtr &file, qsizetype index);
QJsonObject entryJson(const LocFilePtr &file, const LocEntryPtr &entry, qsizetype index);
QJsonObject exportJson(const ExportResult &result, const MyDocument &doc);
void printLine(QTextStream &out, const QJsonObject &object);

// Option parsing for "--name VALUE" pairs: takes the value out of `args`; none when absent,
// and an error printed when the option has no value.
std::optional<QString> takeOption(QStringList &args, const QString &name, QTextStream &err, bool *bad);
bool takeFlag(QStringList &args, const QString &name);
// "PATH [--previous P]" groups, in order.
std::optional<QList<QPair<QString, OptString>>> pathsWithPrevious(const QStringList &args, QTextStream &err);

}  // namespace DocumentCli
