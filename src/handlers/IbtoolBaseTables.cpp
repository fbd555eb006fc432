#include "IbtoolBaseTables.h"

#include "LocFile.h"
#include "PropertyList.h"
#include "StringsTable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringEncoder>

using namespace StringUtility;

namespace ibtoolHandle {

bool isInterfaceExtension(const QString &path)
{
    const QString ext = QFileInfo(path).suffix();
    return ext == QLatin1String("xib") || ext == QLatin1String("nib") || ext == QLatin1String("storyboard");
}

bool isBaseInterfaceFile(const QString &path)
{
    return isInterfaceExtension(path) && QFileInfo(path).dir().dirName() == QLatin1String("Base.lproj");
}

bool isTablePath(const OptString &previousPath)
{
    return previousPath && QFileInfo(*previousPath).suffix() == QLatin1String("strings");
}

TableForm tableFormOfFile(const QString &path)
{
    if (isInterfaceExtension(path)) return TableForm::InterfaceFile;
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly)) return TableForm::Utf8;
    const QByteArray head = in.read(8);
    if (head.startsWith("bplist")) return TableForm::BinaryPropertyList;
    if (head.startsWith("\xFF\xFE") || head.startsWith("\xFE\xFF")) return TableForm::Utf16;
    return TableForm::Utf8;
}

void rememberPreviousForm(LocFile &file, TableForm form)
{
    file.setPreviousVersionForm(qint32(form));
}

TableForm previousForm(const LocFile &file)
{
    const qint32 form = file.previousVersionForm();
    return form >= 0 && form <= qint32(TableForm::InterfaceFile) ? TableForm(form) : TableForm::Utf8;
}

bool exportsAsTable(const LocFile &file)
{
    return isBaseInterfaceFile(file.path()) && previousForm(file) != TableForm::InterfaceFile;
}

QString localizedTableText(const LocFile &file)
{
    QString text;
    for (const LocEntryPtr &entry : file.allEntries()) {
        QString block = entry->entry();
        // The tool never writes an empty value; an entry cleared by the translator shows the base.
        if (wordLength(entry->localizedWord()) == 0 && wordLength(entry->baseWord()) > 0) {
            const qsizetype at = block.lastIndexOf(QLatin1String("\" = \""));
            if (at >= 0) block = block.left(at) + QStringLiteral("\" = \"") + *entry->baseWord() + QStringLiteral("\";");
        }
        text += u'\n' + block + u'\n';
    }
    return text;
}

bool writeLocalizedTable(LocFile &file, const QString &folder)
{
    const QString output = QDir(folder).absoluteFilePath(QFileInfo(file.path()).completeBaseName() + QStringLiteral(".strings"));
    if (!file.initError().isEmpty()) {
        // An interface file that could not be read has no entries: its table would erase the
        // translations of one already there.
        file.addWarning(QStringLiteral("The localized table \"%1\" was not written: the interface file could not be read.")
                            .arg(output));
        return false;
    }
    const QString text = localizedTableText(file);
    QByteArray bytes;
    switch (previousForm(file)) {
    case TableForm::Utf16: {
        QStringEncoder encoder(QStringConverter::Utf16LE);
        bytes = QByteArray("\xFF\xFE", 2) + QByteArray(encoder.encode(text));
        break;
    }
    case TableForm::BinaryPropertyList: {
        // The same words through the table grammar, so escapes become the characters they stand for.
        const std::optional<StringMap> map = StringsTable::parse(text);
        plist::Dictionary dict;
        if (map)
            for (const auto &[key, value] : *map) dict.append({key.toString(), plist::Value::fromString(value.toString())});
        bytes = plist::toBinary(plist::Value::fromDictionary(dict));
        break;
    }
    default: bytes = text.toUtf8();
    }
    QSaveFile out(output);
    if (out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size() && out.commit()) return true;
    file.addWarning(QStringLiteral("The localized table \"%1\" could not be written: %2.").arg(output, out.errorString()));
    return false;
}

}  // namespace ibtoolHandle
