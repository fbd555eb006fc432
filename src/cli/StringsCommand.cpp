// strings FILE: a string table read whole, printed as one JSON object in the table's key order.
#include "Command.h"
#include "StringsTable.h"

static int runStrings(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 1) {
        err << "Usage: vocabrix-cli strings FILE\n";
        return 2;
    }
    StringsTable::Error error;
    const auto map = StringsTable::readFile(args.first(), &error);
    if (!map) {
        err << "vocabrix-cli: " << args.first() << ": not a readable string table";
        if (!error.message.isEmpty()) {
            err << " (" << error.message;
            if (error.line > 0) err << ", line " << error.line;
            err << ")";
        }
        err << "\n";
        return 1;
    }
    json::Writer json = jsonOutput(out);
    json.raw("{");
    bool first = true;
    for (const auto &pair : *map) {
        json.raw(first ? "" : ",").string(pair.first).raw(":").string(pair.second);
        first = false;
    }
    json.raw("}\n");
    return 0;
}

static CommandRegistration reg({QStringLiteral("strings"), QStringLiteral("strings FILE"),
                                QStringLiteral("Read FILE as a string table (UTF-8 or UTF-16 with a byte-order mark, or a\n"
                                               "property list of strings) and print its map as one JSON object, keys in\n"
                                               "the table's order. Exit status 1 with the reason when it cannot be read."),
                                runStrings});
