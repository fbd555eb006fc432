#pragma once
// The interface-file engine's common model: the localizable strings of an interface file (xib,
// storyboard, legacy IB3 archive, compiled nib) as ibtool names them, and the two operations the
// tools need: list them, and write a copy with some of them replaced.
//
// Readers: XibFile (document-3.0 xibs and storyboards), LegacyXibFile (IB3 <archive> xibs and the
// designable.nib of a nib folder); compiled nibs live under nib/. The string table in ibtool's
// form is written by IbtoolTable.h. See docs/interface-files.md of the shared documents.

#include "StringMap.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

namespace interface {

struct LocalizableString {
    QString objectId;   // "12" or "5V8-N1-SQd"
    QString className;  // the Class field of the table comment, e.g. "NSButtonCell"
    QString property;   // key path after the object id: "title", "headerCell.title", "ibShadowedToolTips[0]"
    QString value;      // base-language value, unescaped
    QString note;       // localizer note; empty when there is none

    QString key() const { return objectId + u'.' + property; }
    // The property as the table's comment names it: array elements repeat the object id
    // ("bQc-2s-1MS.ibShadowedLabels[0]"), everything else is the property itself.
    QString commentProperty() const
    {
        return property.contains(u'[') ? key() : property;
    }
};

class InterfaceFile {
public:
    virtual ~InterfaceFile() = default;
    // Every localizable string, in the file's own order.
    virtual QList<LocalizableString> strings() const = 0;
    // Writes a copy at `outPath` in the form the file was read in, with the values of the keys
    // ("OID.property") that `translations` holds replaced; other keys are ignored, missing keys
    // keep the base value. False, with a reason, when it could not be written.
    virtual bool write(const QString &outPath, const StringMap &translations, QString *error) const = 0;
    // What reading or the last write could not take (keys that match nothing, parts of a file
    // that are not understood); for the tools' standard error, never a failure by itself.
    virtual QStringList warnings() const { return m_warnings; }

protected:
    mutable QStringList m_warnings;
};

// Opens any interface file the engine knows (xib, storyboard, nib file or nib folder). None,
// with a reason a user understands, for a missing, unreadable or malformed file.
std::unique_ptr<InterfaceFile> openInterfaceFile(const QString &path, QString *error);

}  // namespace interface
