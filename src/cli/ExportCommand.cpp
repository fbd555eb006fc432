// export FILE --to FOLDER [--dictionary D] [--previous P]: read as a document does, write the
// localized counterpart into FOLDER, and print the pairs that would go to the dictionary.
#include "Command.h"
#include "LocFile.h"

#include <QDir>
#include <QFileInfo>

namespace {

int runExport(const QStringList &args, QTextStream &out, QTextStream &err)
{
    QString path, folder;
    OptString dictionary, previous;
    bool bad = false;
    for (qsizetype i = 0; i < args.size() && !bad; ++i) {
        const QString &arg = args.at(i);
        const bool takesValue = arg == QLatin1String("--to") || arg == QLatin1String("--dictionary")
            || arg == QLatin1String("--previous");
        if (takesValue && i + 1 < args.size()) {
            const QString value = args.at(++i);
            if (arg == QLatin1String("--to")) folder = value;
            else if (arg == QLatin1String("--dictionary")) dictionary = value;
            else previous = value;
        } else if (path.isEmpty() && !arg.startsWith(QLatin1String("--"))) {
            path = arg;
        } else {
            bad = true;
        }
    }
    if (bad || path.isEmpty() || folder.isEmpty()) {
        err << "Usage: vocabrix-cli export FILE --to FOLDER [--dictionary D] [--previous P]\n";
        return 2;
    }
    const LocFilePtr file = LocFile::initWithPath(path, dictionary, previous);
    if (!file) {
        err << "vocabrix-cli: " << path << ": not a resource file (the extension must be strings, plist, nib or xib)\n";
        return 1;
    }
    if (!QDir().mkpath(folder)) {
        err << "vocabrix-cli: " << folder << ": the folder cannot be created\n";
        return 1;
    }
    const StringMap pairs = file->makeLocalizedFileAt(folder);
    {
        json::Writer json = jsonOutput(out);
        json.raw("{");
        bool first = true;
        for (const auto &[key, value] : pairs) {
            json.raw(first ? "" : ",").string(key).raw(":").string(value);
            first = false;
        }
        json.raw("}\n");
    }
    for (const QString &warning : file->warnings()) err << "vocabrix-cli: warning: " << warning << "\n";
    const QString written = QDir(folder).filePath(QFileInfo(path).fileName());
    if (!QFileInfo::exists(written)) {
        err << "vocabrix-cli: " << written << " was not written\n";
        return 1;
    }
    return 0;
}

CommandRegistration reg({QStringLiteral("export"), QStringLiteral("export FILE --to FOLDER [--dictionary D] [--previous P]"),
                         QStringLiteral("Read FILE as the entries command does, write its localized counterpart under\n"
                                        "the same name into FOLDER (made if missing), and print the pairs it returns\n"
                                        "for the dictionary as one JSON object. Warnings go to standard error; exit\n"
                                        "status 1 when nothing was written."),
                         runExport});

}  // namespace
