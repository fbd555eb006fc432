// vocabrix-nibtool: the localization commands of Apple's older interface tool, nibtool, over
// every interface file the engine reads (xibs, legacy archives, nib folders, compiled nibs):
//
//   vocabrix-nibtool -L -8 [-I PREVIOUS] [-d DICTIONARY.strings] FILE   listing on standard output
//   vocabrix-nibtool -8 -d TABLE.strings -w OUT FILE                     localized copy at OUT
//
// The listing is UTF-8 with -8, else UTF-16 big-endian with a byte-order mark, as nibtool wrote
// it. Standard error carries messages for people. Exit status 0 on success, 1 on failure
// (nothing printed or written), 2 on bad usage. A previous version or dictionary that cannot be
// read is left out of a listing with a warning: the listing is still worth having.

#include "IbtoolTable.h"
#include "InterfaceFile.h"
#include "nibtool/NibtoolListing.h"
#include "VocabrixVersion.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringEncoder>
#include <QTextStream>

namespace {

struct Options {
    bool list = false;
    bool utf8 = false;
    QString previous;
    QString dictionary;
    QString writePath;
    QString document;
};

const char kUsage[] =
    "Usage: vocabrix-nibtool -L [-8] [-I PREVIOUS] [-d DICTIONARY] FILE\n"
    "       vocabrix-nibtool [-8] -d TABLE -w OUT FILE\n"
    "\n"
    "  -L, --localizable-strings   print the localizable strings of FILE as a string table\n"
    "  -8, --utf8                  read and write UTF-8 (default: UTF-16)\n"
    "  -I, --incremental PATH      a previous localized version of FILE: values come from it\n"
    "  -d, --dictionary PATH       a string table: base text = translation\n"
    "  -w, --write PATH            write a copy of FILE translated with the table of -d\n"
    "  --help, --version           print this help or the version and stop\n"
    "\n"
    "FILE is a xib, a storyboard, a legacy xib archive, a nib folder or a compiled nib.\n";

bool parseArguments(const QStringList &args, Options *o, QString *why)
{
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args[i];
        auto next = [&](QString *into) {
            if (i + 1 >= args.size()) {
                *why = QStringLiteral("%1 needs a path").arg(a);
                return false;
            }
            *into = args[++i];
            return true;
        };
        QString ignored;
        if (a == QLatin1String("-L") || a == QLatin1String("--localizable-strings")) o->list = true;
        else if (a == QLatin1String("-8") || a == QLatin1String("--utf8")) o->utf8 = true;
        else if (a == QLatin1String("-I") || a == QLatin1String("--incremental")) { if (!next(&o->previous)) return false; }
        else if (a == QLatin1String("-d") || a == QLatin1String("--dictionary")) { if (!next(&o->dictionary)) return false; }
        else if (a == QLatin1String("-w") || a == QLatin1String("--write")) { if (!next(&o->writePath)) return false; }
        // The previous base version only refines how nibtool kept a previous layout.
        else if (a == QLatin1String("-p") || a == QLatin1String("--previous")) { if (!next(&ignored)) return false; }
        else if (a.startsWith(u'-') && a.size() > 1) { *why = QStringLiteral("unknown option %1").arg(a); return false; }
        else if (o->document.isEmpty()) o->document = a;
        else { *why = QStringLiteral("more than one file given (%1)").arg(a); return false; }
    }
    if (o->document.isEmpty()) *why = QStringLiteral("no file given");
    else if (!o->list && o->writePath.isEmpty()) *why = QStringLiteral("nothing to do: give -L or -w");
    else if (!o->writePath.isEmpty() && o->dictionary.isEmpty()) *why = QStringLiteral("-w needs a table given with -d");
    return why->isEmpty();
}

void warnAll(QTextStream &err, const QStringList &warnings)
{
    for (const QString &w : warnings) err << "vocabrix-nibtool: warning: " << w << '\n';
}

QByteArray encoded(const QString &text, bool utf8)
{
    if (utf8) return text.toUtf8();
    QStringEncoder encoder(QStringEncoder::Utf16BE, QStringEncoder::Flag::WriteBom);
    return encoder(text);
}

int list(const Options &o, const interface::InterfaceFile &file, QTextStream &err)
{
    std::unique_ptr<interface::InterfaceFile> previous;
    if (!o.previous.isEmpty()) {
        QString why;
        previous = interface::openInterfaceFile(o.previous, &why);
        if (!previous) err << "vocabrix-nibtool: warning: the previous version is left out: " << why << '\n';
    }
    std::optional<StringMap> dictionary;
    if (!o.dictionary.isEmpty()) {
        QString why;
        dictionary = interface::readStringsTable(o.dictionary, &why);
        if (!dictionary) err << "vocabrix-nibtool: warning: the dictionary is left out: " << why << '\n';
    }
    const auto blocks = interface::nibtool::listingBlocks(file, previous.get(), dictionary ? &*dictionary : nullptr);
    QFile out;
    if (!out.open(stdout, QIODevice::WriteOnly)) return 1;
    out.write(encoded(interface::nibtool::listingText(blocks), o.utf8));
    out.flush();
    return 0;
}

int merge(const Options &o, const interface::InterfaceFile &file, QTextStream &err)
{
    QString why;
    const auto table = interface::readStringsTable(o.dictionary, &why);
    if (!table) {
        err << "vocabrix-nibtool: " << why << '\n';
        return 1;
    }
    const StringMap translations = interface::nibtool::translationsByText(file, *table);
    if (!file.write(o.writePath, translations, &why)) {
        err << "vocabrix-nibtool: " << why << '\n';
        return 1;
    }
    // Keys are texts here: a text that the file does not hold is simply not used.
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream err(stderr);
    const QStringList args = app.arguments().mid(1);
    if (args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"))) {
        QTextStream(stdout) << kUsage;
        return 0;
    }
    if (args.contains(QLatin1String("--version"))) {
        QTextStream(stdout) << "vocabrix-nibtool " << VOCABRIX_VERSION << '\n';
        return 0;
    }
    Options o;
    QString why;
    if (!parseArguments(args, &o, &why)) {
        err << "vocabrix-nibtool: " << why << "\n\n" << kUsage;
        return 2;
    }
    auto file = interface::openInterfaceFile(o.document, &why);
    if (!file) {
        err << "vocabrix-nibtool: " << why << '\n';
        return 1;
    }
    warnAll(err, file->warnings());
    if (o.list) {
        const int status = list(o, *file, err);
        if (status != 0) return status;
    }
    if (!o.writePath.isEmpty()) return merge(o, *file, err);
    return 0;
}
