#include "InterfaceFile.h"

#include "XmlInterfaceFile.h"
#include "nib/CompiledNib.h"

#include <QFile>
#include <QFileInfo>

namespace interface {

namespace {

// Interface files are a few megabytes at most; this bounds what a hostile one can make us read.
constexpr qint64 kMaxFileSize = 256 * 1024 * 1024;

}  // namespace

std::unique_ptr<InterfaceFile> openInterfaceFile(const QString &path, QString *error)
{
    auto fail = [&](const QString &why) -> std::unique_ptr<InterfaceFile> {
        if (error) *error = QStringLiteral("The document \"%1\" could not be opened. %2").arg(path, why);
        return nullptr;
    };
    const QFileInfo info(path);
    if (!info.exists()) return fail(QStringLiteral("There is no such file."));

    // Compiled nibs (NIBArchive, keyed archive) and nib folders with all their variants,
    // designable.nib included.
    if (nib::isCompiledNib(path)) return nib::openCompiledNib(path, error);

    // Everything else is XML: a xib, a storyboard or a legacy archive.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return fail(file.errorString() + u'.');
    if (file.size() > kMaxFileSize) return fail(QStringLiteral("The file is too large to be an interface file."));
    const QByteArray bytes = file.readAll();
    if (bytes.isEmpty()) return fail(QStringLiteral("The file is empty."));
    QString why;
    auto xml = openXmlInterfaceFile(bytes, &why);
    if (!xml) return fail(why);
    return xml;
}

}  // namespace interface
