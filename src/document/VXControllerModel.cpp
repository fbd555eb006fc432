#include "VXControllerModel.h"

#include "DictionaryFiles.h"
#include "PropertyList.h"
#include "Resources.h"
#include "Settings.h"

#include <QDir>
#include <QFileInfo>

namespace {
QString g_bundleTypesPath;  // empty: the built-in resource
}

VXControllerModel &VXControllerModel::instance()
{
    static VXControllerModel model;
    return model;
}

void VXControllerModel::initialize()
{
    Settings::instance().registerDefaults({{SettingsKey::BaseLanguage, 1}, {SettingsKey::TargetLanguage, 2}});
}

void VXControllerModel::awakeFromNib()
{
    m_bundleFileTypes = readBundleTypes();
    m_awake = true;
}

const QStringList &VXControllerModel::bundleFileTypes()
{
    if (!m_awake) awakeFromNib();
    return m_bundleFileTypes;
}

QString VXControllerModel::dictionaryPathrForBase(const QString &baseKey, const QString &targetKey) const
{
    return QDir(DictionaryFiles::dictionaryFolder()).filePath(DictionaryFiles::fileName(baseKey, targetKey));
}

QStringList VXControllerModel::readBundleTypes()
{
    initVocabrixResources();
    const QString path = g_bundleTypesPath.isEmpty() ? QStringLiteral(":/vocabrix/BundleTypes.plist") : g_bundleTypesPath;
    const plist::ReadResult read = plist::readFile(path);
    QStringList types;
    if (!read.value || !read.value->isArray()) return types;
    for (const plist::Value &v : read.value->array())
        if (v.isString() && !v.string().isEmpty()) types.append(v.string());
    return types;
}

void VXControllerModel::setBundleTypesPath(const QString &path)
{
    g_bundleTypesPath = path;
}

QStringList acceptableFileTypes()
{
    QStringList types{QStringLiteral("nib"),   QStringLiteral("xib"),        QStringLiteral("strings"),
                      QStringLiteral("plist"), QStringLiteral("storyboard"), QStringLiteral("stringsdict")};
    types.append(VXControllerModel::instance().bundleFileTypes());
    return types;
}

bool isBundlePath(const QString &path, const QStringList &bundleExtensions)
{
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(u'/')) trimmed.chop(1);
    const QString ext = QFileInfo(trimmed).suffix();
    return !ext.isEmpty() && bundleExtensions.contains(ext);
}
