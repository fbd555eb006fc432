#include "XibFile.h"

namespace interface {

namespace {

QString upperFirst(const QByteArray &name)
{
    QString s = QString::fromUtf8(name);
    if (!s.isEmpty()) s[0] = s[0].toUpper();
    return s;
}

bool isOneOf(const QByteArray &name, std::initializer_list<const char *> names)
{
    for (const char *n : names)
        if (name == n) return true;
    return false;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Document-3.0 xibs and storyboards

std::unique_ptr<XibFile> XibFile::fromXml(XmlDocument &&xml, QString *error)
{
    std::unique_ptr<XibFile> file(new XibFile);
    file->m_xml = std::move(xml);
    const XmlElement &root = file->m_xml.element(0);
    const QString type = root.attributeValue("type");
    if (type.contains(QLatin1String("WatchKit"))) file->m_flavor = Flavor::WatchKit;
    else if (type.contains(QLatin1String("CocoaTouch")) || type.contains(QLatin1String("AppleTV")))
        file->m_flavor = Flavor::Touch;
    else file->m_flavor = Flavor::Cocoa;
    Q_UNUSED(error);
    file->collect();
    return file;
}

QString XibFile::className(int index) const
{
    const QByteArray &name = m_xml.element(index).name;
    switch (m_flavor) {
    case Flavor::Cocoa:
        if (name == "window") return QStringLiteral("NSWindow");
        if (name == "customView" || name == "view") return QStringLiteral("NSView");
        if (name == "binding") return QStringLiteral("CocoaBindingsConnection");
        return QStringLiteral("NS") + upperFirst(name);
    case Flavor::Touch:
        return QStringLiteral("UI") + upperFirst(name);
    case Flavor::WatchKit:
        if (name == "controller") return QStringLiteral("WKInterfaceController");
        return QStringLiteral("WKInterface") + upperFirst(name);
    }
    return QString();
}

QString XibFile::noteOf(int index) const
{
    const int comments = m_xml.child(index, "attributedString", "userComments");
    if (comments < 0) return QString();
    QString note;
    for (int f : m_xml.element(comments).children) {
        const XmlElement &fragment = m_xml.element(f);
        if (fragment.name != "fragment") continue;
        if (const XmlAttribute *content = fragment.attribute("content")) {
            note += content->value;
            continue;
        }
        const int s = m_xml.child(f, "string", "content");
        if (s < 0) continue;
        QString text = m_xml.text(s);
        if (m_xml.element(s).attributeValue("base64-UTF8") == QLatin1String("YES")) text = decodeLenientBase64Utf8(text);
        note += text;
    }
    return note;
}

void XibFile::property(int holder, const char *attr, const QString &oid, const QString &cls, const QString &prop,
                       const QString &note)
{
    QString value;
    ValueLocation where;
    if (!readValue(holder, attr, &value, &where)) return;
    add({oid, cls, prop, value, note}, where);
}

void XibFile::collect()
{
    const auto &elements = m_xml.elements();
    for (int i = 0; i < int(elements.size()); ++i) {
        const XmlAttribute *id = elements[size_t(i)].attribute("id");
        if (!id || id->value.isEmpty()) continue;
        m_objectClasses.insert(id->value, className(i));
        const QString note = noteOf(i);
        if (m_flavor == Flavor::Cocoa) collectCocoa(i, id->value, note);
        else collectTouch(i, id->value, note);
    }
}

void XibFile::collectCocoa(int index, const QString &oid, const QString &note)
{
    const XmlElement &el = m_xml.element(index);
    const QByteArray &name = el.name;
    const QString cls = className(index);
    auto prop = [&](const char *attr, const QString &key) { property(index, attr, oid, cls, key, note); };

    if (isOneOf(name, {"menuItem", "menu", "window", "box", "viewController"})) prop("title", QStringLiteral("title"));
    if (name == "buttonCell") {
        prop("title", QStringLiteral("title"));
        prop("alternateTitle", QStringLiteral("alternateTitle"));
    }
    if (isOneOf(name, {"textFieldCell", "searchFieldCell", "tokenFieldCell", "comboBoxCell", "secureTextFieldCell",
                       "formCell"})) {
        prop("title", QStringLiteral("title"));
        prop("placeholderString", QStringLiteral("placeholderString"));
    }
    if (name == "tabViewItem") prop("label", QStringLiteral("label"));
    if (name == "tableColumn") {
        const int header = m_xml.child(index, "tableHeaderCell", "headerCell");
        if (header >= 0) property(header, "title", oid, cls, QStringLiteral("headerCell.title"), note);
        prop("headerToolTip", QStringLiteral("headerToolTip"));
    }
    if (name == "toolbarItem") {
        prop("label", QStringLiteral("label"));
        prop("paletteLabel", QStringLiteral("paletteLabel"));
        prop("toolTip", QStringLiteral("toolTip"));
    }
    if (name == "segmentedCell") {
        const int segments = m_xml.child(index, "segments");
        if (segments >= 0) {
            int i = 0;
            for (int s : m_xml.element(segments).children) {
                if (m_xml.element(s).name != "segment") continue;
                property(s, "label", oid, cls, QStringLiteral("ibShadowedLabels[%1]").arg(i), note);
                property(s, "toolTip", oid, cls, QStringLiteral("ibShadowedToolTips[%1]").arg(i), note);
                ++i;
            }
        }
    }
    if (name != "toolbarItem" && name != "tableColumn") prop("toolTip", QStringLiteral("ibShadowedToolTip"));
    for (int c : el.children) {
        const XmlElement &ch = m_xml.element(c);
        if (ch.name != "accessibility" || ch.hasAttribute("key")) continue;
        property(c, "description", oid, cls, QStringLiteral("ibExternalAccessibilityDescription"), note);
        property(c, "help", oid, cls, QStringLiteral("ibExternalAccessibilityHelp"), note);
    }
    if (name == "binding") {
        const int options = m_xml.child(index, "dictionary", "options");
        if (options >= 0) {
            static const std::pair<const char *, const char *> placeholders[] = {
                {"NSNullPlaceholder", "ibShadowedIsNilPlaceholder"},
                {"NSNoSelectionPlaceholder", "ibShadowedNoSelectionPlaceholder"},
                {"NSDisplayPattern", "ibShadowedDisplayPattern"},
                {"NSMultipleValuesPlaceholder", "ibShadowedMultipleValuesPlaceholder"},
                {"NSNotApplicablePlaceholder", "ibShadowedNotApplicablePlaceholder"},
            };
            for (const auto &[option, key] : placeholders) {
                // Only text options: <integer key="NSNullPlaceholder" value="-1"/> is no string.
                int s = m_xml.child(options, "string", option);
                if (s < 0) continue;
                property(options, option, oid, cls, QLatin1String(key), note);
            }
        }
    }
}

void XibFile::collectTouch(int index, const QString &oid, const QString &note)
{
    const XmlElement &el = m_xml.element(index);
    const QByteArray &name = el.name;
    const QString cls = className(index);
    auto prop = [&](const char *attr, const QString &key) { property(index, attr, oid, cls, key, note); };
    const bool watch = m_flavor == Flavor::WatchKit;

    if (name == "label") prop("text", QStringLiteral("text"));
    if (name == "button") {
        if (watch) prop("title", QStringLiteral("title"));
        for (int c : el.children) {
            const XmlElement &state = m_xml.element(c);
            if (state.name != "state") continue;
            const QString key = state.attributeValue("key");
            if (key == QLatin1String("normal") || key == QLatin1String("highlighted") || key == QLatin1String("selected")
                || key == QLatin1String("disabled"))
                property(c, "title", oid, cls, key + QLatin1String("Title"), note);
        }
    }
    if (name == "textField") {
        prop("placeholder", QStringLiteral("placeholder"));
        prop("text", QStringLiteral("text"));
    }
    if (name == "textView") prop("text", QStringLiteral("text"));
    if (name == "navigationItem") {
        prop("title", QStringLiteral("title"));
        prop("prompt", QStringLiteral("prompt"));
        prop("backButtonTitle", QStringLiteral("backButtonTitle"));
    }
    if (name == "barButtonItem" || name == "tabBarItem") prop("title", QStringLiteral("title"));
    if (name == "tableViewSection") {
        prop("headerTitle", QStringLiteral("headerTitle"));
        prop("footerTitle", QStringLiteral("footerTitle"));
    }
    if (name.endsWith("Controller") || name == "controller") prop("title", QStringLiteral("title"));
    if (name == "segmentedControl") {
        const int segments = m_xml.child(index, "segments");
        if (segments >= 0) {
            int i = 0;
            for (int s : m_xml.element(segments).children) {
                if (m_xml.element(s).name != "segment") continue;
                property(s, "title", oid, cls, QStringLiteral("segmentTitles[%1]").arg(i), note);
                ++i;
            }
        }
    }
    if (name == "searchBar") {
        prop("placeholder", QStringLiteral("placeholder"));
        prop("prompt", QStringLiteral("prompt"));
        prop("text", QStringLiteral("text"));
    }
    const int accessibility = m_xml.child(index, "accessibility", "accessibilityConfiguration");
    if (accessibility >= 0) {
        property(accessibility, "label", oid, cls, QStringLiteral("accessibilityLabel"), note);
        property(accessibility, "hint", oid, cls, QStringLiteral("accessibilityHint"), note);
        property(accessibility, "value", oid, cls, QStringLiteral("accessibilityValue"), note);
    }
}

// ---------------------------------------------------------------------------------------------
// Legacy IB3 archives

std::unique_ptr<LegacyXibFile> LegacyXibFile::fromXml(XmlDocument &&xml, QString *error)
{
    std::unique_ptr<LegacyXibFile> file(new LegacyXibFile);
    file->m_xml = std::move(xml);
    Q_UNUSED(error);
    file->collect();
    return file;
}

int LegacyXibFile::resolve(int index) const
{
    // A chain of references is followed a bounded number of times.
    for (int hops = 0; index >= 0 && hops < 8; ++hops) {
        const XmlElement &el = m_xml.element(index);
        if (el.name != "reference") return index;
        const XmlAttribute *ref = el.attribute("ref");
        if (!ref) return -1;
        index = m_byXmlId.value(ref->value, -1);
    }
    return -1;
}

QString LegacyXibFile::shownClass(int object) const
{
    const QString cls = m_xml.element(object).attributeValue("class");
    if (cls != QLatin1String("NSWindowTemplate")) return cls;
    // A window is archived as its template; the table names the window's class.
    QString windowClass;
    ValueLocation ignored;
    archivedString(object, "NSWindowClass", &windowClass, &ignored);
    return windowClass == QLatin1String("NSPanel") ? windowClass : QStringLiteral("NSWindow");
}

int LegacyXibFile::keyedChild(int object, const char *key) const
{
    for (int c : m_xml.element(object).children) {
        const XmlAttribute *k = m_xml.element(c).attribute("key");
        if (k && k->value == QLatin1String(key)) return c;
    }
    return -1;
}

bool LegacyXibFile::archivedString(int object, const char *key, QString *value, ValueLocation *where) const
{
    const int child = keyedChild(object, key);
    if (child < 0) return false;
    const int target = resolve(child);
    if (target < 0) return false;
    const bool viaReference = target != child;
    const XmlElement &el = m_xml.element(target);
    auto text = [&](int element) {
        QString t = m_xml.text(element);
        if (m_xml.element(element).attributeValue("type") == QLatin1String("base64-UTF8")) t = decodeLenientBase64Utf8(t);
        return t;
    };
    int textElement = -1;
    if (el.name == "string") {
        textElement = target;
    } else if (el.name == "object") {
        const QString cls = el.attributeValue("class");
        if (cls == QLatin1String("NSMutableString") || cls == QLatin1String("NSString")) {
            textElement = keyedChild(target, "NS.bytes");
        } else if (cls == QLatin1String("NSAttributedString") || cls == QLatin1String("NSMutableAttributedString")) {
            // The attributed string's characters; writing replaces them and keeps the
            // attributes, which cover the whole text in what Interface Builder writes.
            if (!archivedString(target, "NSString", value, where)) return false;
            if (viaReference) *where = {ValueLocation::ArchiveReference, object, child, QByteArray(key)};
            return true;
        }
    }
    if (textElement < 0) return false;
    const QString t = text(textElement);
    if (t.isEmpty()) return false;
    *value = t;
    if (viaReference) *where = {ValueLocation::ArchiveReference, object, child, QByteArray(key)};
    else *where = {ValueLocation::ArchiveText, object, textElement, QByteArray(key)};
    return true;
}

void LegacyXibFile::collect()
{
    const auto &elements = m_xml.elements();
    for (int i = 0; i < int(elements.size()); ++i)
        if (const XmlAttribute *id = elements[size_t(i)].attribute("id")) m_byXmlId.insert(id->value, i);

    // Object records: element → ObjectID.
    QHash<int, QString> objectIds;
    for (int i = 0; i < int(elements.size()); ++i) {
        const XmlElement &el = elements[size_t(i)];
        if (el.name != "object" || el.attributeValue("class") != QLatin1String("IBObjectRecord")) continue;
        const int idElement = keyedChild(i, "objectID");
        const int objElement = keyedChild(i, "object");
        if (idElement < 0 || objElement < 0) continue;
        const QString oid = m_xml.text(idElement).trimmed();
        const int object = resolve(objElement);
        if (object < 0 || oid.isEmpty()) continue;
        objectIds.insert(object, oid);
        m_objectClasses.insert(oid, shownClass(object));
    }

    auto stringProp = [&](int object, const char *key, const QString &oid, const QString &cls, const QString &prop) {
        QString value;
        ValueLocation where;
        if (archivedString(object, key, &value, &where)) add({oid, cls, prop, value, QString()}, where);
    };
    // A property held by a sub-object (the box's title cell, the column's header cell).
    auto cellProp = [&](int object, const char *cellKey, const char *key, const QString &oid, const QString &cls,
                        const QString &prop) {
        const int cell = resolve(keyedChild(object, cellKey));
        if (cell >= 0) stringProp(cell, key, oid, cls, prop);
    };

    for (int i = 0; i < int(elements.size()); ++i) {
        const auto it = objectIds.constFind(i);
        if (it == objectIds.constEnd()) continue;
        const QString &oid = *it;
        const QString cls = elements[size_t(i)].attributeValue("class");
        if (cls == QLatin1String("NSWindowTemplate")) {
            stringProp(i, "NSWindowTitle", oid, shownClass(i), QStringLiteral("title"));
        } else if (cls == QLatin1String("NSMenu") || cls == QLatin1String("NSMenuItem")) {
            stringProp(i, "NSTitle", oid, cls, QStringLiteral("title"));
        } else if (cls == QLatin1String("NSButtonCell")) {
            stringProp(i, "NSContents", oid, cls, QStringLiteral("title"));
            stringProp(i, "NSAlternateContents", oid, cls, QStringLiteral("alternateTitle"));
        } else if (cls == QLatin1String("NSTextFieldCell") || cls == QLatin1String("NSSearchFieldCell")
                   || cls == QLatin1String("NSSecureTextFieldCell") || cls == QLatin1String("NSComboBoxCell")
                   || cls == QLatin1String("NSTokenFieldCell") || cls == QLatin1String("NSFormCell")) {
            stringProp(i, "NSContents", oid, cls, QStringLiteral("title"));
            stringProp(i, "NSPlaceholderString", oid, cls, QStringLiteral("placeholderString"));
        } else if (cls == QLatin1String("NSBox")) {
            cellProp(i, "NSTitleCell", "NSContents", oid, cls, QStringLiteral("title"));
        } else if (cls == QLatin1String("NSTabViewItem")) {
            stringProp(i, "NSLabel", oid, cls, QStringLiteral("label"));
        } else if (cls == QLatin1String("NSTableColumn")) {
            cellProp(i, "NSHeaderCell", "NSContents", oid, cls, QStringLiteral("headerCell.title"));
        } else if (cls == QLatin1String("NSToolbarItem")) {
            stringProp(i, "NSToolbarItemLabel", oid, cls, QStringLiteral("label"));
            stringProp(i, "NSToolbarItemPaletteLabel", oid, cls, QStringLiteral("paletteLabel"));
            stringProp(i, "NSToolbarItemToolTip", oid, cls, QStringLiteral("toolTip"));
        }
    }

    // Tool tips: IBToolTipAttribute objects of the flattened properties name their object.
    for (int i = 0; i < int(elements.size()); ++i) {
        const XmlElement &el = elements[size_t(i)];
        if (el.name != "object" || el.attributeValue("class") != QLatin1String("IBToolTipAttribute")) continue;
        const int object = resolve(keyedChild(i, "object"));
        const auto it = objectIds.constFind(object);
        if (object < 0 || it == objectIds.constEnd()) continue;
        stringProp(i, "toolTip", *it, m_xml.element(object).attributeValue("class"), QStringLiteral("ibShadowedToolTip"));
    }
}

// ---------------------------------------------------------------------------------------------

std::unique_ptr<InterfaceFile> openXibBytes(const QByteArray &utf8, int encoding, QString *error)
{
    XmlDocument xml;
    QString why;
    if (!xml.parse(utf8, &why)) {
        if (error) *error = QStringLiteral("The document could not be read as XML (%1).").arg(why);
        return nullptr;
    }
    const XmlElement &root = xml.element(0);
    std::unique_ptr<XmlInterfaceFile> file;
    if (root.name == "document") {
        file = XibFile::fromXml(std::move(xml), error);
    } else if (root.name == "archive") {
        file = LegacyXibFile::fromXml(std::move(xml), error);
    } else {
        if (error)
            *error = QStringLiteral("The document is not an interface file: its root element is <%1>.")
                         .arg(QString::fromUtf8(root.name));
        return nullptr;
    }
    if (file) file->setEncoding(encoding);
    return file;
}

}  // namespace interface
