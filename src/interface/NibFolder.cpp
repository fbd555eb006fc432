#include "NibFolder.h"

#include "XmlInterfaceFile.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace interface {

namespace {

class CompiledNibPlaceholder : public InterfaceFile {
public:
    explicit CompiledNibPlaceholder(const QString &path)
    {
        m_warnings.append(QStringLiteral("%1: compiled nibs cannot be read yet; no strings listed").arg(path));
    }
    QList<LocalizableString> strings() const override { return {}; }
    bool write(const QString &, const StringMap &, QString *error) const override
    {
        if (error) *error = QStringLiteral("Compiled nibs cannot be localized yet; open the source document instead.");
        return false;
    }
};

class NibFolderFile : public InterfaceFile {
public:
    NibFolderFile(const QString &folder, std::unique_ptr<InterfaceFile> designable)
        : m_folder(folder), m_designable(std::move(designable))
    {
    }
    QList<LocalizableString> strings() const override { return m_designable->strings(); }
    QStringList warnings() const override { return m_warnings + m_designable->warnings(); }

    bool write(const QString &outPath, const StringMap &translations, QString *error) const override
    {
        m_warnings.clear();
        if (!QDir().mkpath(outPath)) {
            if (error) *error = QStringLiteral("The folder \"%1\" could not be made.").arg(outPath);
            return false;
        }
        const QDir in(m_folder), out(outPath);
        for (const QString &name : in.entryList(QDir::Files | QDir::Hidden)) {
            if (name == QLatin1String("designable.nib")) continue;
            // The compiled variants are copied as they are until the compiled-nib writer is
            // wired in here; the application loads them, so the copy is not yet localized.
            if (name.startsWith(QLatin1String("keyedobjects")))
                m_warnings.append(QStringLiteral("%1 was copied unchanged: compiled nibs cannot be localized yet").arg(name));
            if (!copyFile(in.filePath(name), out.filePath(name), error)) return false;
        }
        return m_designable->write(out.filePath(QStringLiteral("designable.nib")), translations, error);
    }

private:
    static bool copyFile(const QString &from, const QString &to, QString *error)
    {
        QFile source(from);
        QSaveFile target(to);
        if (!source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly)
            || target.write(source.readAll()) != source.size() || !target.commit()) {
            if (error) *error = QStringLiteral("\"%1\" could not be copied to \"%2\".").arg(from, to);
            return false;
        }
        return true;
    }

    QString m_folder;
    std::unique_ptr<InterfaceFile> m_designable;
};

}  // namespace

std::unique_ptr<InterfaceFile> unsupportedCompiledNib(const QString &path)
{
    return std::make_unique<CompiledNibPlaceholder>(path);
}

std::unique_ptr<InterfaceFile> openNibFolder(const QString &path, QString *error)
{
    const QString designablePath = QDir(path).filePath(QStringLiteral("designable.nib"));
    QFile designable(designablePath);
    if (!designable.exists()) return unsupportedCompiledNib(path);
    if (!designable.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("The document \"%1\" could not be opened. %2.").arg(designablePath, designable.errorString());
        return nullptr;
    }
    QString why;
    auto file = openXmlInterfaceFile(designable.readAll(), &why);
    if (!file) {
        if (error) *error = QStringLiteral("The document \"%1\" could not be opened. %2").arg(designablePath, why);
        return nullptr;
    }
    return std::make_unique<NibFolderFile>(path, std::move(file));
}

}  // namespace interface
