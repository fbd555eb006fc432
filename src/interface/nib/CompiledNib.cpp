#include "CompiledNib.h"

#include "KeyedArchiveGraph.h"
#include "NibArchive.h"
#include "NibArchiveGraph.h"
#include "NibBundle.h"
#include "PropertyList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSet>

namespace interface::nib {
namespace {

bool fail(QString *error, const QString &why)
{
    if (error) *error = why;
    return false;
}

}  // namespace

QString cannotOpen(const QString &path, const QString &why)
{
    return QStringLiteral("The document \"%1\" could not be opened. %2").arg(path, why);
}

CompiledNib::CompiledNib(NibForm form, std::unique_ptr<ArchiveGraph> graph)
    : m_form(form), m_graph(std::move(graph)), m_found(findLocalizableStrings(*m_graph))
{
}

std::unique_ptr<CompiledNib> CompiledNib::fromData(const QByteArray &bytes, QString *error)
{
    if (NibArchive::looksLike(bytes)) {
        QString why;
        auto archive = NibArchive::parse(bytes, &why);
        if (!archive) {
            fail(error, why);
            return nullptr;
        }
        return std::unique_ptr<CompiledNib>(
            new CompiledNib(NibForm::NibArchive, std::make_unique<NibArchiveGraph>(std::move(*archive))));
    }
    if (!bytes.startsWith("bplist00")) {
        fail(error, QStringLiteral("It is not a compiled nib."));
        return nullptr;
    }
    const plist::ReadResult list = plist::read(bytes);
    if (!list.value) {
        fail(error, QStringLiteral("The compiled nib is damaged: %1").arg(list.error));
        return nullptr;
    }
    QString why;
    auto graph = KeyedArchiveGraph::fromValue(*list.value, &why);
    if (!graph) {
        fail(error, why);
        return nullptr;
    }
    return std::unique_ptr<CompiledNib>(
        new CompiledNib(NibForm::KeyedArchive, std::make_unique<KeyedArchiveGraph>(std::move(*graph))));
}

std::unique_ptr<CompiledNib> CompiledNib::open(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        fail(error, cannotOpen(path, file.errorString() + u'.'));
        return nullptr;
    }
    if (file.size() > MaxSize) {
        fail(error, cannotOpen(path, QStringLiteral("The file is too large to be a compiled nib.")));
        return nullptr;
    }
    QString why;
    auto nib = fromData(file.readAll(), &why);
    if (!nib) fail(error, cannotOpen(path, why));
    return nib;
}

QList<LocalizableString> CompiledNib::strings() const
{
    QList<LocalizableString> list;
    list.reserve(m_found.size());
    for (const FoundString &f : m_found) list.append(f.string);
    return list;
}

QByteArray CompiledNib::localizedData(const StringMap &translations, int *replaced) const
{
    std::unique_ptr<ArchiveGraph> copy = m_graph->clone();
    int changed = 0;
    for (const FoundString &f : m_found) {
        const auto value = translations.find(f.string.key());
        if (!value || *value == f.string.value) continue;
        for (const Slot &slot : f.places)
            if (copy->setText(slot, value->toString())) ++changed;
    }
    if (replaced) *replaced = changed;
    return copy->serialize();
}

bool CompiledNib::write(const QString &outPath, const StringMap &translations, QString *error) const
{
    m_warnings.clear();
    QSet<QString> keys;
    for (const FoundString &f : m_found) keys.insert(f.string.key());
    for (const auto &pair : translations)
        if (!keys.contains(pair.first.toString()))
            m_warnings.append(QStringLiteral("key \"%1\" names no localizable string of the file; ignored").arg(pair.first));
    return writeFileAtomically(outPath, localizedData(translations), error);
}

bool writeFileAtomically(const QString &path, const QByteArray &bytes, QString *error)
{
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly))
        return fail(error, QStringLiteral("The file \"%1\" could not be written. %2.").arg(path, out.errorString()));
    if (out.write(bytes) != bytes.size() || !out.commit())
        return fail(error, QStringLiteral("The file \"%1\" could not be written. %2.").arg(path, out.errorString()));
    return true;
}

bool isCompiledNib(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir()) return true;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return false;
    const QByteArray head = file.read(10);
    return NibArchive::looksLike(head) || head.startsWith("bplist00");
}

std::unique_ptr<InterfaceFile> openCompiledNib(const QString &path, QString *error)
{
    if (QFileInfo(path).isDir()) return NibBundle::open(path, error);
    return CompiledNib::open(path, error);
}

}  // namespace interface::nib
