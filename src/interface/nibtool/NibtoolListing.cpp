#include "NibtoolListing.h"

#include "IbtoolTable.h"

#include <QHash>
#include <algorithm>

namespace interface::nibtool {
namespace {

// Objects the old tool named without the "(label)" part.
bool namedWithoutLabel(const QString &cls)
{
    return cls == QLatin1String("NSMenu") || cls == QLatin1String("NSMenuItem") || cls == QLatin1String("NSTableColumn");
}

// The comment shows titles as they are, but two sequences could break what reads it: "*/"
// would end the comment, and "> (" would be taken for the start of the object marker.
QString commentSafe(QString text)
{
    text.replace(QLatin1String("*/"), QLatin1String("* /"));
    text.replace(QLatin1String("> ("), QLatin1String(">("));
    return text;
}

QString commentFor(const LocalizableString &s)
{
    const QString cls = listingClass(s.className);
    const QString title = commentSafe(s.value);
    QString label;
    if (!namedWithoutLabel(cls)) {
        QString oneLine = title;
        oneLine.replace(u'\n', u' ');
        label = QStringLiteral(" (%1)").arg(oneLine);
    }
    // The marker must name one string: the old tool only listed titles, other properties of
    // the same object get their own.
    const QString marker = s.property == QLatin1String("title") ? s.objectId : s.key();
    return QStringLiteral("/* %1%2 : <%3:%4> (oid:%5) */").arg(cls, label, s.property, title, marker);
}

}  // namespace

QString listingClass(const QString &ibtoolClass)
{
    if (ibtoolClass.endsWith(QLatin1String("Cell")) && ibtoolClass != QLatin1String("NSTableHeaderCell"))
        return ibtoolClass.chopped(4);
    return ibtoolClass;
}

QList<ListingBlock> listingBlocks(const InterfaceFile &file, const InterfaceFile *previous, const StringMap *dictionary)
{
    // Objects of each text, in ibtool's order; the block names the last of them.
    QHash<QString, QList<LocalizableString>> byText;
    QStringList texts;
    for (const LocalizableString &s : inIbtoolOrder(file.strings())) {
        auto &group = byText[s.value];
        if (group.isEmpty()) texts.append(s.value);
        group.append(s);
    }
    std::sort(texts.begin(), texts.end());  // code-unit order

    QHash<QString, QString> previousValues;
    if (previous)
        for (const LocalizableString &s : previous->strings()) previousValues.insert(s.key(), s.value);

    QList<ListingBlock> blocks;
    blocks.reserve(texts.size());
    for (const QString &text : std::as_const(texts)) {
        const QList<LocalizableString> &group = byText[text];
        ListingBlock block;
        block.comment = commentFor(group.last());
        block.text = text;
        block.value = text;
        bool found = false;
        // The named object's counterpart first, then those of the others with the same text. A
        // previous version that kept the base text has no word for it: the dictionary may.
        for (auto it = group.crbegin(); it != group.crend() && !found; ++it) {
            const auto v = previousValues.constFind(it->key());
            if (v != previousValues.constEnd() && !v->isEmpty() && *v != text) {
                block.value = *v;
                found = true;
            }
        }
        if (!found && dictionary)
            if (const auto v = dictionary->find(text)) block.value = v->toString();
        blocks.append(block);
    }
    return blocks;
}

QString listingText(const QList<ListingBlock> &blocks)
{
    QString out;
    for (const ListingBlock &b : blocks) {
        out += b.comment;
        out += QLatin1String("\n\"");
        out += escapeTableText(b.text);
        out += QLatin1String("\" = \"");
        out += escapeTableText(b.value);
        out += QLatin1String("\";\n\n");
    }
    return out;
}

StringMap translationsByText(const InterfaceFile &file, const StringMap &table)
{
    StringMap translations;
    for (const LocalizableString &s : file.strings())
        if (const auto v = table.find(s.value)) translations.insert(s.key(), *v);
    return translations;
}

}  // namespace interface::nibtool
