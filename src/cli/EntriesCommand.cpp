// entries FILE [--dictionary D] [--previous P]: a file made as a document makes it, its entries
// as JSON lines and then its status and what the user would be told.
#include "Command.h"
#include "LocFile.h"

#include <QFileInfo>

namespace {

json::Writer &word(json::Writer &json, const OptString &word)
{
    return word ? json.string(*word) : json.raw("null");
}

int runEntries(const QStringList &args, QTextStream &out, QTextStream &err)
{
    QString path;
    OptString dictionary, previous;
    bool bad = false;
    for (qsizetype i = 0; i < args.size() && !bad; ++i) {
        const QString &arg = args.at(i);
        if (arg == QLatin1String("--dictionary") && i + 1 < args.size())
            dictionary = args.at(++i);
        else if (arg == QLatin1String("--previous") && i + 1 < args.size())
            previous = args.at(++i);
        else if (path.isEmpty() && !arg.startsWith(QLatin1String("--")))
            path = arg;
        else
            bad = true;
    }
    if (bad || path.isEmpty()) {
        err << "Usage: vocabrix-cli entries FILE [--dictionary D] [--previous P]\n";
        return 2;
    }
    const LocFilePtr file = LocFile::initWithPath(path, dictionary, previous);
    if (!file) {
        err << "vocabrix-cli: " << path << ": not a resource file (the extension must be strings, plist, nib or xib)\n";
        return 1;
    }
    {
        json::Writer json = jsonOutput(out);
        for (const LocEntryPtr &e : file->allEntries()) {
            word(json.raw("{\"key\":"), e->keyWord()).raw(",\"baseWord\":");
            word(json, e->baseWord()).raw(",\"localizedWord\":");
            word(json, e->localizedWord()).raw(",\"check\":").raw(e->isChecked() ? "true" : "false");
            json.raw(",\"entry\":").string(e->entry());
            if (!e->developerComment().isEmpty()) json.raw(",\"comment\":").string(e->developerComment());
            json.raw("}\n");
        }
        json.raw("{\"status\":").string(file->status()).raw(",\"warnings\":[");
        for (qsizetype i = 0; i < file->warnings().size(); ++i) json.raw(i ? "," : "").string(file->warnings().at(i));
        json.raw("]");
        if (!file->initError().isEmpty()) json.raw(",\"initError\":").string(file->initError());
        json.raw("}\n");
    }
    for (const QString &warning : file->warnings()) err << "vocabrix-cli: warning: " << warning << "\n";
    return 0;
}

CommandRegistration reg({QStringLiteral("entries"), QStringLiteral("entries FILE [--dictionary D] [--previous P]"),
                         QStringLiteral("Read FILE (a .strings, .plist, .nib or .xib) as a document adds it, with the\n"
                                        "dictionary D and the previous localized version P, and print one JSON line\n"
                                        "per entry (key, baseWord, localizedWord, check, entry: absent words are null;\n"
                                        "comment: the developer's comment above the pair, when there is one),\n"
                                        "then one line with its status and the warnings about what reading could not\n"
                                        "take. The warnings are also written to standard error."),
                         runEntries});

}  // namespace
