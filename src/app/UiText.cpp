#include "UiText.h"

#include "LocalizedText.h"

#include <QHash>

namespace {

// English labels of identifiers; plain English keys need no entry here.
const QHash<QString, QString> &englishLabels()
{
    static const QHash<QString, QString> labels{
        {QStringLiteral("AddFile"), QStringLiteral("Add File")},
        {QStringLiteral("AddFileTooltip"), QStringLiteral("Add resource files or an application bundle")},
        {QStringLiteral("Export"), QStringLiteral("Export")},
        {QStringLiteral("ExportTooltip"), QStringLiteral("Export the selected files")},
        {QStringLiteral("ExportAll"), QStringLiteral("Export All")},
        {QStringLiteral("ExportAllTooltip"), QStringLiteral("Export every file of the document")},
        {QStringLiteral("Files"), QStringLiteral("Files")},
        {QStringLiteral("FilesTooltip"), QStringLiteral("Show or hide the list of files")},
        {QStringLiteral("Delete"), QStringLiteral("Delete")},
        {QStringLiteral("DeleteTooltip"), QStringLiteral("Remove the selected files from the document")},
        {QStringLiteral("LanguageFrom"), QStringLiteral("From")},
        {QStringLiteral("LanguageFromTooltip"), QStringLiteral("Base language")},
        {QStringLiteral("LanguageTo"), QStringLiteral("To")},
        {QStringLiteral("LanguageToTooltip"), QStringLiteral("Target language")},
        {QStringLiteral("OpenPanel"), QStringLiteral("Add Files")},
        {QStringLiteral("SearchTooltip"), QStringLiteral("Show only the entries that contain this text, in every file")},
    };
    return labels;
}

}  // namespace

QString uiText(const QString &key)
{
    const QString text = localizedString(key);
    if (text != key) return text;
    return englishLabels().value(key, key);
}

QString countedText(qsizetype count, const QString &one, const QString &many)
{
    return count == 1 ? one : many.arg(count);
}
