// plist FILE: a property list in any of its three forms, printed as JSON.
#include "Command.h"
#include "PropertyList.h"

namespace {

int runPlist(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 1) {
        err << "Usage: vocabrix-cli plist FILE\n";
        return 2;
    }
    const plist::ReadResult result = plist::readFile(args.first());
    if (!result.value) {
        err << "vocabrix-cli: " << args.first() << ": not a readable property list";
        if (!result.error.isEmpty()) err << " (" << result.error << ")";
        err << "\n";
        return 1;
    }
    jsonOutput(out).raw(plist::toJson(*result.value)).raw("\n");
    return 0;
}

CommandRegistration reg({QStringLiteral("plist"), QStringLiteral("plist FILE"),
                         QStringLiteral("Read FILE as a property list (XML, binary or OpenStep text) and print it as\n"
                                        "JSON: strings, arrays and dictionaries (keys in the list's order) as they are,\n"
                                        "other values tagged, e.g. {\"integer\": 5}, {\"date\": \"...\"}, {\"data\": \"<base64>\"}.\n"
                                        "Exit status 1 with the reason when it cannot be read."),
                         runPlist});

}  // namespace
