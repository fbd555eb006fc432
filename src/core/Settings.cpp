#include "Settings.h"

#include <QSettings>

const QList<Settings::Key> &Settings::keys()
{
    static const QList<Key> table = {
        {SettingsKey::BaseLanguage, QMetaType::Int, 1},
        {SettingsKey::TargetLanguage, QMetaType::Int, 2},
        {SettingsKey::IgnoreEmptyWords, QMetaType::Bool, false},
        {SettingsKey::IgnoreLocalizedWords, QMetaType::Bool, false},
        {SettingsKey::ContinuousSpellCheckingEnabled, QMetaType::Bool, false},
        {SettingsKey::SystemVersion, QMetaType::QString, QString()},
    };
    return table;
}

Settings::Settings() : m_store(std::make_unique<QSettings>()) {}
Settings::~Settings() = default;

Settings &Settings::instance()
{
    static Settings settings;
    return settings;
}

void Settings::useStore(const QString &iniPath)
{
    Settings &s = instance();
    s.m_store = iniPath.isEmpty() ? std::make_unique<QSettings>()
                                  : std::make_unique<QSettings>(iniPath, QSettings::IniFormat);
    for (const Key &k : keys()) s.announce(k.name);
}

void Settings::registerDefaults(const QVariantMap &defaults)
{
    for (auto it = defaults.cbegin(); it != defaults.cend(); ++it) m_registered.insert(it.key(), it.value());
}

QVariant Settings::value(const QString &key) const
{
    QVariant v = m_store->value(key);
    if (!v.isValid()) v = m_registered.value(key);
    for (const Key &k : keys()) {
        if (k.name != key) continue;
        if (!v.isValid()) return k.fallback;
        // INI files give strings back ("true", "3"): hand out the key's own type.
        QVariant typed = v;
        return typed.convert(QMetaType(k.type)) ? typed : k.fallback;
    }
    return v;
}

void Settings::setValue(const QString &key, const QVariant &v)
{
    if (m_store->contains(key) && value(key) == v) return;
    m_store->setValue(key, v);
    announce(key);
}

void Settings::remove(const QString &key)
{
    m_store->remove(key);
    announce(key);
}

void Settings::synchronize()
{
    m_store->sync();
}

void Settings::announce(const QString &key)
{
    emit valueChanged(key);
    if (key == SettingsKey::BaseLanguage) emit baseLanguageChanged();
    else if (key == SettingsKey::TargetLanguage) emit targetLanguageChanged();
    else if (key == SettingsKey::IgnoreEmptyWords) emit ignoreEmptyWordsChanged();
    else if (key == SettingsKey::IgnoreLocalizedWords) emit ignoreLocalizedWordsChanged();
    else if (key == SettingsKey::ContinuousSpellCheckingEnabled) emit continuousSpellCheckingEnabledChanged();
}
