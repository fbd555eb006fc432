#pragma once
// The two XML forms of interface files, read by the rules of interface-files.md:
//   XibFile        <document version="3.0">: xibs and storyboards for Cocoa, CocoaTouch
//                  (iOS, tvOS) and WatchKit (section 2);
//   LegacyXibFile  <archive type="com.apple.InterfaceBuilder3.Cocoa.XIB">: IB3 and Xcode 3/4
//                  xibs, and the designable.nib inside nib folders (section 3.1).

#include "XmlInterfaceFile.h"

namespace interface {

class XibFile : public XmlInterfaceFile {
public:
    enum class Flavor { Cocoa, Touch, WatchKit };
    // From a parsed document whose root is <document>.
    static std::unique_ptr<XibFile> fromXml(XmlDocument &&xml, QString *error);
    Flavor flavor() const { return m_flavor; }

private:
    void collect();
    void collectCocoa(int index, const QString &oid, const QString &note);
    void collectTouch(int index, const QString &oid, const QString &note);
    QString className(int index) const;
    QString noteOf(int index) const;
    // Adds property `attr` of `holder`, keyed `property` on object `oid`, when it has a value.
    void property(int holder, const char *attr, const QString &oid, const QString &cls, const QString &property,
                  const QString &note);

    Flavor m_flavor = Flavor::Cocoa;
};

class LegacyXibFile : public XmlInterfaceFile {
public:
    // From a parsed document whose root is <archive>.
    static std::unique_ptr<LegacyXibFile> fromXml(XmlDocument &&xml, QString *error);

private:
    void collect();
    // The element that a <reference ref="..."> (or the element itself) stands for.
    int resolve(int index) const;
    // The string value of key `key` of object element `object`: <string>, base64 <string>,
    // NSMutableString/NSString with NS.bytes, NSAttributedString's NSString; references followed.
    bool archivedString(int object, const char *key, QString *value, ValueLocation *where) const;
    int keyedChild(int object, const char *key) const;
    // The Class a table names for an archived object.
    QString shownClass(int object) const;

    QHash<QString, int> m_byXmlId;  // XML id attribute → element
};

// Parses UTF-8 bytes and opens whichever of the two forms the root element names. `encoding`:
// 0 UTF-8, 1 UTF-16LE, 2 UTF-16BE (the form to write back).
std::unique_ptr<InterfaceFile> openXibBytes(const QByteArray &utf8, int encoding, QString *error);

}  // namespace interface
