#include "NibStrings.h"

#include "IbtoolTable.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <limits>

namespace interface::nib {
namespace {

enum class Special { None, Segments, HelpConnector, AccessibilityConnector, Binding, StatefulButton };

struct PropertyRule {
    QString archiveKey;
    QString property;
    QString via;  // the key of an intermediate object (a box's title cell) holding archiveKey
};

struct ClassRule {
    QString classField;  // the Class of the table; empty: the archived class that matched
    QList<PropertyRule> properties;
    Special special = Special::None;
};

// Classes are matched most specific first along the archived class chain, so an entry without
// properties stops a subclass from being read as its superclass (a pop-up cell is a button
// cell, but its title belongs to the selected menu item).
const QHash<QString, ClassRule> &classRules()
{
    static const QHash<QString, ClassRule> rules = [] {
        const auto s = [](const char *text) { return QString::fromLatin1(text); };
        QHash<QString, ClassRule> r;
        const ClassRule textCell{{}, {{s("NSContents"), s("title"), {}}, {s("NSPlaceholderString"), s("placeholderString"), {}}}};
        for (const char *cls : {"NSTextFieldCell", "NSSearchFieldCell", "NSSecureTextFieldCell", "NSComboBoxCell",
                                "NSTokenFieldCell", "NSFormCell"})
            r.insert(s(cls), textCell);
        r.insert(s("NSButtonCell"), {{}, {{s("NSContents"), s("title"), {}}, {s("NSAlternateContents"), s("alternateTitle"), {}}}});
        for (const char *stop : {"NSPopUpButtonCell", "NSMenuItemCell", "NSTableHeaderCell", "NSImageCell"})
            r.insert(s(stop), {});
        r.insert(s("NSWindowTemplate"), {s("NSWindow"), {{s("NSWindowTitle"), s("title"), {}}}});
        r.insert(s("NSMenu"), {{}, {{s("NSTitle"), s("title"), {}}}});
        r.insert(s("NSMenuItem"), {{}, {{s("NSTitle"), s("title"), {}}, {s("NSToolTip"), s("ibShadowedToolTip"), {}}}});
        r.insert(s("NSBox"), {{}, {{s("NSContents"), s("title"), s("NSTitleCell")}}});
        r.insert(s("NSTabViewItem"), {{}, {{s("NSLabel"), s("label"), {}}, {s("NSToolTip"), s("ibShadowedToolTip"), {}}}});
        r.insert(s("NSTableColumn"), {{}, {{s("NSContents"), s("headerCell.title"), s("NSHeaderCell")},
                                           {s("NSHeaderToolTip"), s("headerToolTip"), {}}}});
        r.insert(s("NSToolbarItem"), {{}, {{s("NSToolbarItemLabel"), s("label"), {}},
                                           {s("NSToolbarItemPaletteLabel"), s("paletteLabel"), {}},
                                           {s("NSToolbarItemToolTip"), s("toolTip"), {}}}});
        r.insert(s("NSSegmentedCell"), {{}, {}, Special::Segments});
        r.insert(s("NSIBHelpConnector"), {{}, {}, Special::HelpConnector});
        r.insert(s("NSNibAXAttributeConnector"), {{}, {}, Special::AccessibilityConnector});
        r.insert(s("NSNibBindingConnector"), {s("CocoaBindingsConnection"), {}, Special::Binding});
        // UIKit nibs.
        r.insert(s("UILabel"), {{}, {{s("UIText"), s("text"), {}}}});
        r.insert(s("UITextField"), {{}, {{s("UIPlaceholder"), s("placeholder"), {}}, {s("UIText"), s("text"), {}}}});
        r.insert(s("UINavigationItem"), {{}, {{s("UITitle"), s("title"), {}}, {s("UIPrompt"), s("prompt"), {}},
                                              {s("UIBackButtonTitle"), s("backButtonTitle"), {}}}});
        r.insert(s("UIBarButtonItem"), {{}, {{s("UITitle"), s("title"), {}}}});
        r.insert(s("UITabBarItem"), {{}, {{s("UITitle"), s("title"), {}}}});
        r.insert(s("UIButton"), {{}, {}, Special::StatefulButton});
        return r;
    }();
    return rules;
}

const QHash<QString, QString> &bindingPlaceholders()
{
    static const QHash<QString, QString> names{
        {QStringLiteral("NSNullPlaceholder"), QStringLiteral("ibShadowedIsNilPlaceholder")},
        {QStringLiteral("NSNoSelectionPlaceholder"), QStringLiteral("ibShadowedNoSelectionPlaceholder")},
        {QStringLiteral("NSDisplayPattern"), QStringLiteral("ibShadowedDisplayPattern")},
        {QStringLiteral("NSMultipleValuesPlaceholder"), QStringLiteral("ibShadowedMultipleValuesPlaceholder")},
        {QStringLiteral("NSNotApplicablePlaceholder"), QStringLiteral("ibShadowedNotApplicablePlaceholder")},
    };
    return names;
}

struct Candidate {
    int idObject = -1;
    QString className;
    QString property;
    Slot slot;
    bool throughOwner = false;  // reached through its owner (a box's title cell)
};

class Finder {
public:
    explicit Finder(const ArchiveGraph &g) : g(g) {}
    QList<FoundString> run();

private:
    QStringList chainOf(int object) const;
    QString displayClass(int object) const;
    void apply(int object, const QString &matched, const ClassRule &rule);
    void add(int idObject, const QString &cls, const QString &property, const Slot &slot, bool throughOwner = false);
    void dropOwnedCells();
    void readIdTable();
    QList<int> treeOrder(int objectData) const;
    QString objectId(int object) const;
    QList<FoundString> localizableStrings() const;
    QList<FoundString> ruleStrings() const;

    const ArchiveGraph &g;
    QList<Candidate> candidates;
    QHash<int, qint64> oids;
    QHash<int, qint64> cellIds;  // IB 2 cells, numbered after NSNextOid
};

QStringList Finder::chainOf(int object) const
{
    QStringList chain = g.classChain(object);
    // A custom class stands in front of the framework object it replaces.
    if (chain.value(0) == QLatin1String("NSClassSwapper")) {
        const auto original = g.reference(object, QStringLiteral("NSOriginalClassName"));
        const auto name = original ? g.text(*original) : std::nullopt;
        return name ? QStringList{*name} : QStringList{};
    }
    return chain;
}

QString Finder::displayClass(int object) const
{
    const QStringList chain = chainOf(object);
    for (const QString &c : chain) {
        if (c == QLatin1String("NSWindowTemplate")) return QStringLiteral("NSWindow");
        if (classRules().contains(c) || c.startsWith(QLatin1String("NS")) || c.startsWith(QLatin1String("UI"))) return c;
    }
    return chain.value(0);
}

void Finder::add(int idObject, const QString &cls, const QString &property, const Slot &slot, bool throughOwner)
{
    const auto t = g.target(slot);
    const auto value = t ? g.text(*t) : std::nullopt;
    if (value && !value->isEmpty() && idObject >= 0) candidates.append({idObject, cls, property, slot, throughOwner});
}

// A box's title cell is a text cell too; its title belongs to the box, once.
void Finder::dropOwnedCells()
{
    QSet<QPair<int, QString>> owned;  // such places are plain keyed values
    for (const Candidate &c : candidates)
        if (c.throughOwner) owned.insert({c.slot.holder, c.slot.key});
    candidates.removeIf([&owned](const Candidate &c) {
        return !c.throughOwner && c.slot.occurrence < 0 && owned.contains({c.slot.holder, c.slot.key});
    });
}

void Finder::apply(int object, const QString &matched, const ClassRule &rule)
{
    const QString cls = rule.classField.isEmpty() ? matched : rule.classField;
    for (const PropertyRule &p : rule.properties) {
        int holder = object;
        if (!p.via.isEmpty()) {
            const auto inner = g.reference(object, p.via);
            if (!inner) continue;
            holder = *inner;
        }
        add(object, cls, p.property, {holder, p.archiveKey, -1}, holder != object);
    }
    switch (rule.special) {
    case Special::None: break;
    case Special::Segments: {
        const auto segments = g.reference(object, QStringLiteral("NSSegmentImages"));
        const QList<Slot> items = segments ? g.elementSlots(*segments) : QList<Slot>();
        for (qsizetype i = 0; i < items.size(); ++i) {
            const auto item = g.target(items[i]);
            if (!item) continue;
            const QString n = QString::number(i);
            add(object, cls, QStringLiteral("ibShadowedLabels[%1]").arg(n), {*item, QStringLiteral("NSSegmentItemLabel"), -1});
            add(object, cls, QStringLiteral("ibShadowedToolTips[%1]").arg(n), {*item, QStringLiteral("NSSegmentItemTooltip"), -1});
        }
        break;
    }
    case Special::HelpConnector: {
        // One of NSFile / NSMarker names the kind of help, the other holds the text.
        const auto destination = g.reference(object, QStringLiteral("NSDestination"));
        const QString toolTipKind = QStringLiteral("NSToolTipHelpKey");
        for (const auto &[kindKey, textKey] : {std::pair{"NSFile", "NSMarker"}, std::pair{"NSMarker", "NSFile"}}) {
            const auto kind = g.reference(object, QString::fromLatin1(kindKey));
            if (destination && kind && g.text(*kind) == toolTipKind) {
                add(*destination, displayClass(*destination), QStringLiteral("ibShadowedToolTip"),
                    {object, QString::fromLatin1(textKey), -1});
                break;
            }
        }
        break;
    }
    case Special::AccessibilityConnector: {
        const auto destination = g.reference(object, QStringLiteral("AXDestinationArchiveKey"));
        const auto type = g.reference(object, QStringLiteral("AXAttributeTypeArchiveKey"));
        const auto typeName = type ? g.text(*type) : std::nullopt;
        QString property;
        if (typeName == QLatin1String("AXDescription")) property = QStringLiteral("ibExternalAccessibilityDescription");
        if (typeName == QLatin1String("AXHelp")) property = QStringLiteral("ibExternalAccessibilityHelp");
        if (destination && !property.isEmpty())
            add(*destination, displayClass(*destination), property, {object, QStringLiteral("AXAttributeValueArchiveKey"), -1});
        break;
    }
    case Special::Binding: {
        const auto options = g.reference(object, QStringLiteral("NSOptions"));
        if (!options) break;
        for (const auto &[keySlot, valueSlot] : g.dictionarySlots(*options)) {
            const auto key = g.target(keySlot);
            const auto name = key ? g.text(*key) : std::nullopt;
            if (name && bindingPlaceholders().contains(*name)) add(object, cls, bindingPlaceholders().value(*name), valueSlot);
        }
        break;
    }
    case Special::StatefulButton: {
        static const QHash<qint64, QString> states{{0, QStringLiteral("normalTitle")}, {1, QStringLiteral("highlightedTitle")},
                                                   {2, QStringLiteral("disabledTitle")}, {4, QStringLiteral("selectedTitle")}};
        const auto content = g.reference(object, QStringLiteral("UIButtonStatefulContent"));
        if (!content) break;
        for (const auto &[keySlot, valueSlot] : g.dictionarySlots(*content)) {
            const auto key = g.target(keySlot);
            const qint64 state = key ? g.number(*key).value_or(-1) : -1;
            const auto stateContent = g.target(valueSlot);
            const QString property = states.value(state);
            if (stateContent && !property.isEmpty()) add(object, cls, property, {*stateContent, QStringLiteral("UITitle"), -1});
        }
        break;
    }
    }
}

void Finder::readIdTable()
{
    const auto od = g.objectData();
    if (!od) return;
    const auto keys = g.reference(*od, QStringLiteral("NSOidsKeys"));
    const auto values = g.reference(*od, QStringLiteral("NSOidsValues"));
    if (!keys || !values) return;
    const QList<Slot> k = g.elementSlots(*keys);
    const QList<Slot> v = g.elementSlots(*values);
    for (qsizetype i = 0; i < std::min(k.size(), v.size()); ++i) {
        const auto object = g.target(k[i]);
        const auto number = g.target(v[i]);
        const auto oid = number ? g.number(*number) : std::nullopt;
        if (object && oid && !oids.contains(*object)) oids.insert(*object, *oid);
    }
    // IB 2 numbered controls but not their cells; ibtool numbered the cell of the i-th control
    // met (among controls owning a cell without an oid) NSNextOid + 1 + i, walking the object
    // tree from the root depth first with children in ascending oid.
    const auto next = g.inlineInteger(*od, QStringLiteral("NSNextOid"));
    if (!next) return;
    qint64 n = *next + 1;
    for (int object : treeOrder(*od)) {
        const auto cell = g.reference(object, QStringLiteral("NSCell"));
        if (cell && !oids.contains(*cell) && !cellIds.contains(*cell)) cellIds.insert(*cell, n++);
    }
}

// Objects with an oid in tree order (see above); those the tree misses follow in oid order.
QList<int> Finder::treeOrder(int objectData) const
{
    QHash<int, QList<int>> children;
    const auto childrenKeys = g.reference(objectData, QStringLiteral("NSObjectsKeys"));
    const auto parentValues = g.reference(objectData, QStringLiteral("NSObjectsValues"));
    const QList<Slot> c = childrenKeys ? g.elementSlots(*childrenKeys) : QList<Slot>();
    const QList<Slot> p = parentValues ? g.elementSlots(*parentValues) : QList<Slot>();
    for (qsizetype i = 0; i < std::min(c.size(), p.size()); ++i) {
        const auto child = g.target(c[i]);
        const auto parent = g.target(p[i]);
        if (child && parent && *child != *parent) children[*parent].append(*child);
    }
    const auto byOid = [this](int a, int b) {
        return std::pair(oids.value(a, std::numeric_limits<qint64>::max()), a)
               < std::pair(oids.value(b, std::numeric_limits<qint64>::max()), b);
    };
    QList<int> order;
    QSet<int> seen;
    QList<int> stack;
    if (const auto root = g.reference(objectData, QStringLiteral("NSRoot"))) stack.append(*root);
    while (!stack.isEmpty()) {
        const int object = stack.takeLast();
        if (seen.contains(object)) continue;
        seen.insert(object);
        if (oids.contains(object)) order.append(object);
        QList<int> kids = children.value(object);
        std::sort(kids.begin(), kids.end(), byOid);
        for (auto it = kids.crbegin(); it != kids.crend(); ++it) stack.append(*it);
    }
    QList<int> rest;
    for (auto it = oids.cbegin(); it != oids.cend(); ++it)
        if (!seen.contains(it.key())) rest.append(it.key());
    std::sort(rest.begin(), rest.end(), byOid);
    return order + rest;
}

QString Finder::objectId(int object) const
{
    if (const auto it = oids.constFind(object); it != oids.constEnd()) return QString::number(*it);
    if (const auto it = cellIds.constFind(object); it != cellIds.constEnd()) return QString::number(*it);
    return QStringLiteral("o%1").arg(object);
}

QList<FoundString> Finder::ruleStrings() const
{
    QList<FoundString> found;
    for (const Candidate &c : candidates) {
        FoundString f;
        f.string.objectId = objectId(c.idObject);
        f.string.className = c.className;
        f.string.property = c.property;
        f.string.value = *g.text(*g.target(c.slot));
        f.places = {c.slot};
        found.append(f);
    }
    return found;
}

QList<FoundString> Finder::localizableStrings() const
{
    QHash<QPair<int, QString>, QString> ruleClass;  // (holder, key) of a plain slot -> Class
    for (const Candidate &c : candidates)
        if (c.slot.occurrence < 0) ruleClass.insert({c.slot.holder, c.slot.key}, c.className);
    QList<FoundString> found;
    bool any = false;
    for (int i = 0; i < g.objectCount() && !any; ++i) any = g.classChain(i).value(0) == QLatin1String("NSLocalizableString");
    if (!any) return found;
    for (int i = 0; i < g.objectCount(); ++i) {
        // A localizable string's own parts (its key, its development text) are not places
        // where it is shown.
        if (g.classChain(i).value(0) == QLatin1String("NSLocalizableString")) continue;
        for (const Slot &slot : g.slotsOf(i)) {
            const auto t = g.target(slot);
            if (!t || g.classChain(*t).value(0) != QLatin1String("NSLocalizableString")) continue;
            const auto keyObject = g.reference(*t, QStringLiteral("NSKey"));
            const auto key = keyObject ? g.text(*keyObject) : std::nullopt;
            const auto value = g.text(*t);
            if (!key || key->isEmpty() || !value) continue;
            FoundString f;
            const qsizetype dot = key->indexOf(u'.');
            f.string.objectId = dot < 0 ? *key : key->left(dot);
            f.string.property = dot < 0 ? QString() : key->mid(dot + 1);
            f.string.className = ruleClass.value({slot.holder, slot.key}, displayClass(slot.holder));
            f.string.value = *value;
            f.places = {slot};
            found.append(f);
        }
    }
    return found;
}

QList<FoundString> Finder::run()
{
    readIdTable();
    for (int i = 0; i < g.objectCount(); ++i) {
        for (const QString &c : chainOf(i)) {
            const auto rule = classRules().constFind(c);
            if (rule == classRules().constEnd()) continue;
            apply(i, c, *rule);
            break;
        }
    }
    dropOwnedCells();
    QList<FoundString> all = localizableStrings();
    if (all.isEmpty()) all = ruleStrings();
    // One entry per key; a key met twice (one string shown in two places) keeps every place.
    QList<FoundString> unique;
    QHash<QString, qsizetype> byKey;
    for (FoundString &f : all) {
        const QString key = f.string.key();
        if (const auto it = byKey.constFind(key); it != byKey.constEnd()) {
            for (const Slot &s : f.places)
                if (!unique[*it].places.contains(s)) unique[*it].places.append(s);
            continue;
        }
        byKey.insert(key, unique.size());
        unique.append(std::move(f));
    }
    QList<LocalizableString> strings;
    strings.reserve(unique.size());
    for (const FoundString &f : unique) strings.append(f.string);
    QList<FoundString> ordered;
    ordered.reserve(unique.size());
    for (const LocalizableString &s : inIbtoolOrder(strings)) ordered.append(unique[byKey.value(s.key())]);
    return ordered;
}

}  // namespace

QList<FoundString> findLocalizableStrings(const ArchiveGraph &graph)
{
    return Finder(graph).run();
}

}  // namespace interface::nib
