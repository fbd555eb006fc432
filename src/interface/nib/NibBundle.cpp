#include "NibBundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QTemporaryDir>

namespace interface::nib {
namespace {

const QString DesignableName = QStringLiteral("designable.nib");

bool fail(QString *error, const QString &why)
{
    if (error) *error = why;
    return false;
}

// Puts the finished staging folder where the output goes; an existing file or folder there is
// replaced only once the new one is complete.
bool swapIn(QTemporaryDir &staging, const QString &outPath, QString *error)
{
    const QFileInfo out(outPath);
    QString backup;
    if (out.exists() || out.isSymLink()) {
        backup = staging.path() + QStringLiteral(".old");
        if (!QDir().rename(outPath, backup))
            return fail(error, QStringLiteral("\"%1\" could not be replaced.").arg(outPath));
    }
    if (!QDir().rename(staging.path(), outPath)) {
        if (!backup.isEmpty()) QDir().rename(backup, outPath);
        return fail(error, QStringLiteral("The folder \"%1\" could not be written.").arg(outPath));
    }
    staging.setAutoRemove(false);
    if (!backup.isEmpty()) {
        if (QFileInfo(backup).isDir())
            QDir(backup).removeRecursively();
        else
            QFile::remove(backup);
    }
    return true;
}

}  // namespace

std::unique_ptr<NibBundle> NibBundle::open(const QString &path, QString *error)
{
    std::unique_ptr<NibBundle> folder(new NibBundle);
    folder->m_path = path;
    const QDir dir(path);
    if (!dir.exists()) {
        fail(error, cannotOpen(path, QStringLiteral("There is no such folder.")));
        return nullptr;
    }
    const QStringList variants = dir.entryList({QStringLiteral("keyedobjects*.nib")}, QDir::Files, QDir::Name);
    for (const QString &name : variants) {
        QString why;
        auto nib = CompiledNib::open(dir.filePath(name), &why);
        if (!nib) {
            fail(error, why);
            return nullptr;
        }
        folder->m_variants.emplace_back(name, std::move(nib));
    }
    QString &designableError = folder->m_designableError;
    if (QFileInfo(dir.filePath(DesignableName)).isFile())
        folder->m_designable = openInterfaceFile(dir.filePath(DesignableName), &designableError);
    if (folder->m_designable) designableError.clear();
    if (folder->m_designable) {
        folder->m_primary = folder->m_designable.get();
    } else if (!folder->m_variants.empty()) {
        folder->m_primary = folder->m_variants.front().second.get();
        for (const auto &[name, nib] : folder->m_variants)
            if (name == QLatin1String("keyedobjects.nib")) folder->m_primary = nib.get();
    } else {
        fail(error, designableError.isEmpty()
                        ? cannotOpen(path, QStringLiteral("The nib folder holds neither keyedobjects.nib nor designable.nib."))
                        : designableError);
        return nullptr;
    }
    return folder;
}

QStringList NibBundle::warnings() const
{
    QStringList all = m_warnings;
    const auto take = [&all](const InterfaceFile *part) {
        for (const QString &w : part->warnings())
            if (!all.contains(w)) all.append(w);
    };
    if (m_designable) take(m_designable.get());
    for (const auto &[name, nib] : m_variants) take(nib.get());
    return all;
}

StringMap NibBundle::translationsFor(const InterfaceFile &part, const QList<LocalizableString> &primary,
                                     const StringMap &translations)
{
    QHash<QString, QString> valueOfKey;
    QHash<QString, QStringList> keysOfValue;
    for (const LocalizableString &p : primary) {
        valueOfKey.insert(p.key(), p.value);
        keysOfValue[p.value].append(p.key());
    }
    StringMap mapped;
    QHash<QString, int> seen;
    for (const LocalizableString &s : part.strings()) {
        QString key;
        const auto same = valueOfKey.constFind(s.key());
        if (same != valueOfKey.constEnd() && *same == s.value) {
            key = s.key();
        } else {
            const QStringList keys = keysOfValue.value(s.value);
            const int n = seen[s.value]++;
            if (!keys.isEmpty()) key = keys[std::min<qsizetype>(n, keys.size() - 1)];
        }
        if (const auto value = key.isEmpty() ? std::nullopt : translations.find(key)) mapped.insert(s.key(), *value);
    }
    return mapped;
}

bool NibBundle::write(const QString &outPath, const StringMap &translations, QString *error) const
{
    const QFileInfo out(outPath);
    if (!out.absoluteDir().exists())
        return fail(error, QStringLiteral("The folder \"%1\" could not be made: its parent folder does not exist.").arg(outPath));
    QTemporaryDir staging(out.absoluteDir().filePath(QStringLiteral(".%1-XXXXXX").arg(out.fileName())));
    if (!staging.isValid())
        return fail(error, QStringLiteral("The folder \"%1\" could not be made. %2.").arg(outPath, staging.errorString()));
    m_warnings.clear();
    if (!m_designableError.isEmpty())
        m_warnings.append(QStringLiteral("designable.nib was copied unchanged: %1").arg(m_designableError));
    const QList<LocalizableString> primary = m_primary->strings();
    const QDir source(m_path);
    const auto entries = source.entryInfoList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &entry : entries) {
        const QString name = entry.fileName();
        const QString target = QDir(staging.path()).filePath(name);
        const InterfaceFile *part = nullptr;
        if (name == DesignableName) part = m_designable.get();
        for (const auto &[variant, nib] : m_variants)
            if (variant == name) part = nib.get();
        if (part) {
            const StringMap mapped = part == m_primary ? translations : translationsFor(*part, primary, translations);
            if (!part->write(target, mapped, error)) return false;
        } else if (!QFile::copy(entry.filePath(), target)) {
            return fail(error, QStringLiteral("\"%1\" could not be copied to \"%2\".").arg(entry.filePath(), target));
        } else {
            QFile::setPermissions(target, QFile::permissions(target) | QFileDevice::WriteOwner);
        }
    }
    // A temporary folder is private to its owner; the nib folder is an ordinary one.
    QFile::setPermissions(staging.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
                                              | QFileDevice::ReadGroup | QFileDevice::ExeGroup | QFileDevice::ReadOther
                                              | QFileDevice::ExeOther);
    return swapIn(staging, outPath, error);
}

}  // namespace interface::nib
