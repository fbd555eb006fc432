#pragma once
// Shared by the window tests: a small bundle-shaped tree with a previous release, and a save
// panel answered from a script.

#include "SavePanel.h"
#include "TestSupport.h"

#include <QStringList>

namespace AppTest {

// Foo.app with an English base folder (by abbreviation), and Foo-old.app, its previous release
// with a French folder. Returns the two bundle paths.
inline QPair<QString, QString> writeBundles(const TestSupport::Sandbox &box)
{
    const QString base = QStringLiteral("Foo.app/Contents/Resources/en.lproj/");
    box.write(base + QLatin1String("Localizable.strings"),
              "/* Greeting */\n\"hello\" = \"Hello\";\n\n/* Farewell */\n\"bye\" = \"Goodbye\";\n\n"
              "/* Cancel button */\n\"cancel\" = \"Cancel\";\n");
    box.write(base + QLatin1String("InfoPlist.strings"), "\"CFBundleName\" = \"Foo\";\n");
    box.write(base + QLatin1String("Credits.rtf"), "{\\rtf1 Credits}");
    const QString previous = QStringLiteral("Foo-old.app/Contents/Resources/fr.lproj/");
    box.write(previous + QLatin1String("Localizable.strings"), "\"hello\" = \"Bonjour\";\n");
    box.write(previous + QLatin1String("InfoPlist.strings"), "\"CFBundleName\" = \"Fou\";\n");
    return {box.path(QStringLiteral("Foo.app")), box.path(QStringLiteral("Foo-old.app"))};
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
