#include "Glossary.h"

#include <QStringDecoder>

using StringUtility::substringFrom;

namespace Glossary {

namespace {

// The text of one element: its stretch runs from the first `name` to the next `name` (the closing
// tag, or any later text holding those letters), and the text is what lies between the
// stretch's first ">" and the next "<".
OptString elementText(const QString &piece, const QString &name)
{
    const OptString stretch = substringFrom(piece, name, name);
    return stretch ? substringFrom(*stretch, QStringLiteral(">"), QStringLiteral("<")) : std::nullopt;
}

}  // namespace

QList<Unit> units(const QString &text)
{
    QList<Unit> list;
    const QString base = QStringLiteral("base");
    const QString tran = QStringLiteral("tran");
    const QString baseLoc = QStringLiteral("base loc=\"");
    const QString tranLoc = QStringLiteral("tran loc=\"");
    const QString quote = QStringLiteral("\"");
    for (const QString &piece : text.split(QStringLiteral("<TranslationSet>"))) {
        Unit u;
        u.baseText = elementText(piece, base);
        u.baseLoc = substringFrom(piece, baseLoc, quote);
        u.tranText = elementText(piece, tran);
        u.tranLoc = substringFrom(piece, tranLoc, quote);
        list.append(std::move(u));
    }
    return list;
}

Reading pairsFromData(const QByteArray &data, const QString &baseShort, const QString &targetShort, bool skipRtf)
{
    Reading reading;
    if (data.size() > maximumBytes) {
        reading.error = QStringLiteral("the glossary is larger than %1 MB").arg(maximumBytes >> 20);
        return reading;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(data);
    if (decoder.hasError()) {
        reading.error = QStringLiteral("the glossary is not UTF-8 text");
        return reading;
    }
    QList<Unit> all = units(text);
    for (qsizetype i = 0; i < all.size(); ++i) {
        Unit &u = all[i];
        if (u.baseLoc == targetShort && u.tranLoc == baseShort) {
            std::swap(u.baseText, u.tranText);
            std::swap(u.baseLoc, u.tranLoc);
        }
        const bool ours = u.baseLoc && u.tranLoc && *u.baseLoc == baseShort && *u.tranLoc == targetShort;
        if (!ours || !u.baseText || !u.tranText || (skipRtf && u.baseText->startsWith(QLatin1String("{\\rtf")))) {
            // The piece before the first marker is looked at like the others, but is no unit.
            if (i > 0) ++reading.skipped;
            continue;
        }
        reading.pairs.append({*u.baseText, *u.tranText});
    }
    return reading;
}

}  // namespace Glossary
