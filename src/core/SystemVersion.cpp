#include "SystemVersion.h"

#include "Settings.h"

#include <QStringList>

namespace {

int parseVersion(const QString &text)
{
    const QString t = text.trimmed();
    if (t.isEmpty()) return 0;
    bool ok = false;
    if (t.startsWith(QStringLiteral("0x"), Qt::CaseInsensitive)) {
        const int code = t.mid(2).toInt(&ok, 16);
        return ok ? code : 0;
    }
    const QStringList parts = t.split(u'.');
    if (parts.size() < 2 || parts.size() > 3) return 0;
    int numbers[3] = {0, 0, 0};
    for (int i = 0; i < parts.size(); ++i) {
        numbers[i] = parts[i].toInt(&ok);
        if (!ok || numbers[i] < 0) return 0;
    }
    // Minor and bug-fix numbers saturate at one hex digit each, as the code has no room for more.
    return 0x1000 + (qMin(numbers[1], 15) << 4) + qMin(numbers[2], 15) + (numbers[0] - 10) * 0x100;
}

}  // namespace

int gestaltSystemVersion()
{
    if (int v = parseVersion(qEnvironmentVariable("VOCABRIX_SYSTEM_VERSION"))) return v;
    if (int v = parseVersion(Settings::instance().value(SettingsKey::SystemVersion).toString())) return v;
    return 0x1068;
}
