#pragma once
// What the two XML forms of interface files share: the parsed document, every localizable string
// found in it together with the place its value came from, and the merge, which rewrites only
// those places in the original bytes.
//
//   XibFile        <document version="3.0">: xibs and storyboards (interface-files.md section 2)
//   LegacyXibFile  <archive type="com.apple.InterfaceBuilder3.Cocoa.XIB">: IB3 xibs and the
//                  designable.nib of nib folders (section 3.1)

#include "InterfaceFile.h"
#include "TextEdits.h"
#include "XmlDocument.h"

#include <QHash>
#include <QSet>

namespace interface {

// Where a value lives in the XML, so that the merge can replace exactly it.
struct ValueLocation {
    enum Kind {
        Attribute,    // attribute `name` of element `holder`
        StringChild,  // <string key="name"> (or <mutableString>) child `element` of `holder`
        ArchiveText,  // legacy archive: the text of element `element` (<string> or <characters>)
        ArchiveReference,  // legacy archive: <reference key="name" ref=…> child `element` of
                           // `holder` that points at a shared string; the merge replaces the
                           // reference by a string of its own, leaving the shared one alone
    };
    Kind kind = Attribute;
    int holder = -1;
    int element = -1;
    QByteArray name;
};

class XmlInterfaceFile : public InterfaceFile {
public:
    QList<LocalizableString> strings() const override { return m_strings; }
    bool write(const QString &outPath, const StringMap &translations, QString *error) const override;
    // The merged bytes, without writing them (the tool and the tests write or compare them).
    bool merged(const StringMap &translations, QByteArray *out, QString *error) const;

    const XmlDocument &xml() const { return m_xml; }
    // Every object of the file (localizable or not): its ObjectID → its Class as a table's
    // comment names it. Tells a stale key (object gone) from a live one.
    const QHash<QString, QString> &objectClasses() const { return m_objectClasses; }
    // 0 UTF-8, 1 UTF-16LE, 2 UTF-16BE: the form that write() produces.
    void setEncoding(int encoding) { m_encoding = Encoding(encoding); }

protected:
    void add(const LocalizableString &s, const ValueLocation &where);
    // Reads the value of property `name` of element `holder`: the attribute, else a
    // <string key="name"> or <mutableString key="name"> child (base64-UTF8="YES" decoded).
    // An absent or empty value gives false.
    bool readValue(int holder, const char *name, QString *value, ValueLocation *where) const;

    XmlDocument m_xml;
    QHash<QString, QString> m_objectClasses;
    // Text files that were UTF-16 are parsed as UTF-8 and written back as they came.
    enum class Encoding { Utf8, Utf16LE, Utf16BE } m_encoding = Encoding::Utf8;

private:
    void applyValue(TextEdits &edits, QHash<int, QList<QByteArray>> &newChildren,
                    const ValueLocation &where, const QString &value) const;

    QList<LocalizableString> m_strings;
    QList<ValueLocation> m_locations;
    QHash<QString, qsizetype> m_byKey;
    QSet<QString> m_places;
};

// Opens an XML interface file from its bytes: the root element decides between the two forms.
// UTF-16 files (with a byte-order mark) are read as UTF-8 and written back in UTF-16.
std::unique_ptr<InterfaceFile> openXmlInterfaceFile(const QByteArray &bytes, QString *error);

}  // namespace interface
