#pragma once
// Shared by the window tests: private settings and dictionaries, a small bundle-shaped tree with a
// previous release, and a save panel answered from a script.

#include "SavePanel.h"
#include "TestSupport.h"

#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>

namespace AppTest {

// Settings in a throw-away file, dictionaries in the test's own folder (XDG_DATA_HOME is honoured
// outside test mode), so test programs never share a file with each other or with a user.
inline void isolate(QTemporaryDir &dir)
{
    TestSupport::isolate(dir);
    QStandardPaths::setTestModeEnabled(false);
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath(QStringLiteral("data"))));
}

// Foo.app with an English base folder (by abbreviation), and Foo-old.app, its previous release
// with a French folder. Returns the two bundle paths.
inline QPair<QString, QString> writeBundles(const QTemporaryDir &dir)
{
    const QString base = dir.filePath(QStringLiteral("Foo.app/Contents/Resources/en.lproj/"));
    TestSupport::writeFile(base + QLatin1String("Localizable.strings"),
                           "/* Greeting */\n\"hello\" = \"Hello\";\n\n/* Farewell */\n\"bye\" = \"Goodbye\";\n\n"
                           "/* Cancel button */\n\"cancel\" = \"Cancel\";\n");
    TestSupport::writeFile(base + QLatin1String("InfoPlist.strings"), "\"CFBundleName\" = \"Foo\";\n");
    TestSupport::writeFile(base + QLatin1String("Credits.rtf"), "{\\rtf1 Credits}");
    const QString previous = dir.filePath(QStringLiteral("Foo-old.app/Contents/Resources/fr.lproj/"));
    TestSupport::writeFile(previous + QLatin1String("Localizable.strings"), "\"hello\" = \"Bonjour\";\n");
    TestSupport::writeFile(previous + QLatin1String("InfoPlist.strings"), "\"CFBundleName\" = \"Fou\";\n");
    return {dir.filePath(QStringLiteral("Foo.app")), dir.filePath(QStringLiteral("Foo-old.app"))};
}

class ScriptedSavePanel : public SavePanel {
public:
    QStringList answers;  // an empty answer cancels
    int asked = 0;
    QString runSavePanel(const QString &, const QString &) override
    {
        ++asked;
        return answers.isEmpty() ? QString() : answers.takeFirst();
    }
};

}  // namespace AppTest
