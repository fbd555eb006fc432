#pragma once
// Shared by the window tests: a small bundle with a previous release, and a save panel answered
// from a script.

#include "CaseData.h"
#include "SavePanel.h"

#include <QStringList>

namespace AppTest {

// Foo.app with an English base folder (by abbreviation), and Foo-old.app, its previous release
// with a French folder: the two bundle paths. Read only; nothing is written into them.
inline QPair<QString, QString> bundles()
{
    const QString dir = TestSupport::dataDir(QStringLiteral("app/bundles/"));
    return {dir + QLatin1String("Foo.app"), dir + QLatin1String("Foo-old.app")};
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
