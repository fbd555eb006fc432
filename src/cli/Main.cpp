// vocabrix-cli: the model's command-line front end, for scripts and CI. It links no widgets.
#include "Command.h"
#include "Handlers.h"
#include "Settings.h"
#include "VocabrixVersion.h"

#include <QCoreApplication>
#include <QIODevice>
#include <algorithm>

QList<Command> &commands()
{
    static QList<Command> list;
    return list;
}

QString jsonString(const QString &s)
{
    return json::quoted(s);
}

json::Writer jsonOutput(QTextStream &out)
{
    out.flush();
    return json::Writer([&out](QByteArrayView bytes) {
        if (QIODevice *device = out.device()) device->write(bytes.data(), bytes.size());
        else out << QString::fromUtf8(bytes);
    });
}

static void printHelp(QTextStream &out)
{
    out << "Usage: vocabrix-cli COMMAND [ARGUMENTS]\n\n"
           "Vocabrix's model on the command line: read resource files, list their entries, export\n"
           "localized files. Options common to all commands:\n"
           "  --settings FILE   use this INI file as the settings store instead of the user's own\n"
           "  --version         print the version and stop\n\n"
           "Commands:\n";
    QList<Command> sorted = commands();
    std::sort(sorted.begin(), sorted.end(), [](const Command &a, const Command &b) { return a.name < b.name; });
    for (const Command &c : sorted) {
        out << "  " << c.synopsis << "\n";
        for (const QString &line : c.description.split(u'\n')) out << "      " << line << "\n";
        out << "\n";
    }
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Vocabrix"));
    QCoreApplication::setApplicationName(QStringLiteral("Vocabrix"));
    QTextStream out(stdout), err(stderr);
    out.setEncoding(QStringConverter::Utf8);
    err.setEncoding(QStringConverter::Utf8);

    QStringList args = app.arguments().mid(1);
    const qsizetype settingsAt = args.indexOf(QStringLiteral("--settings"));
    if (settingsAt >= 0) {
        if (settingsAt + 1 >= args.size()) {
            err << "vocabrix-cli: --settings needs a file\n";
            return 2;
        }
        Settings::useStore(args.at(settingsAt + 1));
        args.remove(settingsAt, 2);
    }
    Settings::instance().registerDefaults({{SettingsKey::BaseLanguage, 1}, {SettingsKey::TargetLanguage, 2}});
    registerResourceHandlers();

    if (args.isEmpty() || args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h")
        || args.first() == QLatin1String("help")) {
        printHelp(out);
        return args.isEmpty() ? 2 : 0;
    }
    if (args.first() == QLatin1String("--version")) {
        out << "vocabrix-cli " << VOCABRIX_VERSION << "\n";
        return 0;
    }
    const QString name = args.takeFirst();
    for (const Command &c : commands()) {
        if (c.name != name) continue;
        if (args.contains(QStringLiteral("--help"))) {
            out << "Usage: vocabrix-cli " << c.synopsis << "\n\n" << c.description << "\n";
            return 0;
        }
        return c.run(args, out, err);
    }
    err << "vocabrix-cli: unknown command \"" << name << "\"; see vocabrix-cli --help\n";
    return 2;
}
