#pragma once
// The per-user settings store: QSettings behind the one table of every key the application
// reads or writes, the defaults registered at start, and a change signal per observed key.

#include <QObject>
#include <QVariant>
#include <memory>

class QSettings;

namespace SettingsKey {
inline const QString BaseLanguage = QStringLiteral("BaseLanguage");
inline const QString TargetLanguage = QStringLiteral("TargetLanguage");
inline const QString IgnoreEmptyWords = QStringLiteral("IgnoreEmptyWords");
inline const QString IgnoreLocalizedWords = QStringLiteral("IgnoreLocalizedWords");
inline const QString ContinuousSpellCheckingEnabled = QStringLiteral("ContinuousSpellCheckingEnabled");
// Not a user setting on the Mac: stands in for the system version that picks the interface tool.
inline const QString SystemVersion = QStringLiteral("SystemVersion");
}  // namespace SettingsKey

class Settings : public QObject {
    Q_OBJECT
public:
    struct Key {
        QString name;
        QMetaType::Type type;
        QVariant fallback;  // what an unset, unregistered key reads as
    };
    // Every key of the application, with its type.
    static const QList<Key> &keys();

    static Settings &instance();
    // Points the store at an INI file (tests, and the command line's --settings); empty for the
    // user's own store.
    static void useStore(const QString &iniPath);

    // Defaults used while the user has stored no value of their own.
    void registerDefaults(const QVariantMap &defaults);
    QVariant value(const QString &key) const;
    bool boolValue(const QString &key) const { return value(key).toBool(); }
    int intValue(const QString &key) const { return value(key).toInt(); }
    void setValue(const QString &key, const QVariant &value);
    void remove(const QString &key);
    // Writes pending changes to disk now (a value that must survive a crash right after).
    void synchronize();

signals:
    void valueChanged(const QString &key);
    void baseLanguageChanged();
    void targetLanguageChanged();
    void ignoreEmptyWordsChanged();
    void ignoreLocalizedWordsChanged();
    void continuousSpellCheckingEnabledChanged();

private:
    Settings();
    ~Settings() override;
    void announce(const QString &key);
    std::unique_ptr<QSettings> m_store;
    QVariantMap m_registered;
};
