// vocabrix-ibtool: lists the localizable strings of an interface file as a string table, and
// writes a localized copy from a translated table, with the command lines of Apple's ibtool:
//
//   vocabrix-ibtool --generate-strings-file OUT.strings FILE
//   vocabrix-ibtool FILE --strings-file TABLE.strings --write OUT
//   vocabrix-ibtool --generate-strings-files-beside TAG FILE...   (ours alone: many files, one run)
//
// Standard output carries a property list as ibtool's does (errors under
// "com.apple.ibtool.errors", an empty dictionary on success); standard error carries the same
// messages for people, plus warnings. Exit status 0 on success, 1 on failure, 2 on bad usage.

#include "IbtoolTable.h"
#include "InterfaceFile.h"
#include "VocabrixVersion.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

namespace {

struct Options {
    QString document;
    QString generatePath;
    QString stringsFile;
    QString writePath;
};

const char kUsage[] =
    "Usage: vocabrix-ibtool [--generate-strings-file OUT.strings] [--strings-file TABLE.strings --write OUT] FILE\n"
    "\n"
    "  --generate-strings-file PATH   write the localizable strings of FILE as a string table\n"
    "                                 (also --generate-stringsfile, --export-strings-file)\n"
    "  --strings-file PATH            a translated string table to merge into FILE\n"
    "  --write PATH                   where the localized copy of FILE is written\n"
    "  --generate-strings-files-beside TAG FILE...\n"
    "                                 the table of each FILE beside it, named <stem>TAG; a FILE\n"
    "                                 read with a warning or not at all gets none\n"
    "  --help, --version              print this help or the version and stop\n"
    "\n"
    "FILE is a xib, a storyboard, a legacy xib archive or a nib folder with designable.nib.\n";

QString xmlEscaped(const QString &s)
{
    QString out = s;
    out.replace(u'&', QLatin1String("&amp;"));
    out.replace(u'<', QLatin1String("&lt;"));
    out.replace(u'>', QLatin1String("&gt;"));
    return out;
}

// ibtool's machine-readable answer on standard output.
void printResult(QTextStream &out, const QString &error, const QString &suggestion)
{
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n";
    if (error.isEmpty()) {
        out << "<dict/>\n";
    } else {
        out << "<dict>\n\t<key>com.apple.ibtool.errors</key>\n\t<array>\n\t\t<dict>\n"
               "\t\t\t<key>description</key>\n\t\t\t<string>"
            << xmlEscaped(error) << "</string>\n";
        if (!suggestion.isEmpty())
            out << "\t\t\t<key>recovery-suggestion</key>\n\t\t\t<string>" << xmlEscaped(suggestion) << "</string>\n";
        out << "\t\t</dict>\n\t</array>\n</dict>\n";
    }
    out << "</plist>\n";
}

bool writeBytes(const QString &path, const QByteArray &bytes, QString *error)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit()) return true;
    *error = QStringLiteral("The file \"%1\" could not be written: %2").arg(path, file.errorString());
    return false;
}

// False with a message for arguments that make no command.
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
        if (a == QLatin1String("--generate-strings-file") || a == QLatin1String("--generate-stringsfile")
            || a == QLatin1String("--export-strings-file")) {
            if (!next(&o->generatePath)) return false;
        } else if (a == QLatin1String("--strings-file")) {
            if (!next(&o->stringsFile)) return false;
        } else if (a == QLatin1String("--write")) {
            if (!next(&o->writePath)) return false;
        } else if (a == QLatin1String("--errors") || a == QLatin1String("--warnings") || a == QLatin1String("--notices")) {
            // ibtool's report switches: messages are always reported here.
        } else if (a.startsWith(QLatin1String("--"))) {
            *why = QStringLiteral("unknown option %1").arg(a);
            return false;
        } else if (o->document.isEmpty()) {
            o->document = a;
        } else {
            *why = QStringLiteral("more than one document given (%1, %2)").arg(o->document, a);
            return false;
        }
    }
    if (o->document.isEmpty()) *why = QStringLiteral("no document given");
    else if (o->generatePath.isEmpty() && o->stringsFile.isEmpty() && o->writePath.isEmpty())
        *why = QStringLiteral("nothing to do: give --generate-strings-file, or --strings-file with --write");
    else if (o->stringsFile.isEmpty() != o->writePath.isEmpty())
        *why = QStringLiteral("--strings-file and --write go together");
    return why->isEmpty();
}

// Many files in one run, for a program that would otherwise start the tool once per file:
// each FILE read without a warning gets its table beside it; the others are named on standard
// error and get none. Exit status 0: what is missing is for the caller to notice.
int generateBeside(const QString &tag, const QStringList &files, QTextStream &out, QTextStream &err)
{
    for (const QString &path : files) {
        QString error;
        const auto file = interface::openInterfaceFile(path, &error);
        if (!file || !file->warnings().isEmpty()) {
            err << "vocabrix-ibtool: " << path << " skipped: " << (file ? file->warnings().join(u' ') : error) << "\n";
            continue;
        }
        const QFileInfo info(path);
        const QString table = info.absoluteDir().filePath(info.completeBaseName() + tag);
        if (!writeBytes(table, interface::ibtoolTableBytes(interface::inIbtoolOrder(file->strings())), &error))
            err << "vocabrix-ibtool: " << error << "\n";
    }
    printResult(out, QString(), QString());
    return 0;
}

}  // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout), err(stderr);
    QStringList args = app.arguments();
    args.removeFirst();
    if (args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"))) {
        out << kUsage;
        return 0;
    }
    if (args.contains(QLatin1String("--version"))) {
        out << "vocabrix-ibtool " << VOCABRIX_VERSION << "\n";
        return 0;
    }
    if (args.size() >= 2 && args.first() == QLatin1String("--generate-strings-files-beside"))
        return generateBeside(args.at(1), args.mid(2), out, err);
    Options o;
    QString why;
    if (!parseArguments(args, &o, &why)) {
        err << "vocabrix-ibtool: " << why << "\n" << kUsage;
        return 2;
    }

    auto failWith = [&](const QString &message, const QString &suggestion = QString()) {
        err << "vocabrix-ibtool: " << message << "\n";
        printResult(out, message, suggestion);
        return 1;
    };

    QString error;
    const auto file = interface::openInterfaceFile(o.document, &error);
    if (!file) return failWith(error);
    for (const QString &w : file->warnings()) err << "vocabrix-ibtool: warning: " << w << "\n";

    if (!o.generatePath.isEmpty()) {
        const auto table = interface::ibtoolTableBytes(interface::inIbtoolOrder(file->strings()));
        if (!writeBytes(o.generatePath, table, &error)) return failWith(error);
    }
    if (!o.stringsFile.isEmpty()) {
        const auto translations = interface::readStringsTable(o.stringsFile, &error);
        if (!translations) return failWith(error);
        if (!file->write(o.writePath, *translations, &error))
            return failWith(error, QStringLiteral("Check that the folder of the output can be written."));
        for (const QString &w : file->warnings()) err << "vocabrix-ibtool: warning: " << w << "\n";
    }
    printResult(out, QString(), QString());
    return 0;
}
