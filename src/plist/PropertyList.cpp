// Entry points: which form the bytes are in, files, and the helpers the forms share.
#include "PlistInternal.h"

#include <QFile>
#include <QStringDecoder>
#include <QTimeZone>

#include <charconv>
#include <cmath>

namespace plist {

namespace {

// A property list is a resource file; anything larger is not one we should hold in memory.
constexpr qint64 MaxFileSize = 256 * 1024 * 1024;

bool isXmlSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Whether text (not binary) bytes open with '<', past any byte-order mark and blank space.
// OpenStep roots start with '{' or '(', so '<' is enough to tell the two text forms apart.
bool looksLikeXml(const QByteArray &data)
{
    if (data.startsWith("\xFE\xFF") || data.startsWith("\xFF\xFE")) {
        const bool bigEndian = data.startsWith("\xFE\xFF");
        for (qsizetype i = 2; i + 1 < data.size(); i += 2) {
            const char hi = bigEndian ? data[i] : data[i + 1];
            const char lo = bigEndian ? data[i + 1] : data[i];
            if (hi != 0 || !isXmlSpace(lo))
                return hi == 0 && lo == '<';
        }
        return false;
    }
    // UTF-16 without a byte-order mark shows as '<' next to a zero byte.
    if (data.size() >= 2 && ((data[0] == 0 && data[1] == '<') || (data[0] == '<' && data[1] == 0)))
        return true;
    qsizetype i = data.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (i < data.size() && isXmlSpace(data[i]))
        ++i;
    return i < data.size() && data[i] == '<';
}

// Zero bytes in 8-bit text mean some other binary file (a NIBArchive, a typedstream) whose
// reading as OpenStep text would only produce a puzzling syntax error.
bool looksBinary(const QByteArray &data)
{
    if (data.startsWith("\xFE\xFF") || data.startsWith("\xFF\xFE"))
        return false;
    return data.left(512).contains('\0');
}

}  // namespace

ReadResult read(const QByteArray &data)
{
    if (data.isEmpty())
        return {std::nullopt, Format::Xml, QStringLiteral("The file is empty.")};
    if (data.startsWith("bplist")) {
        if (data.startsWith("bplist00"))
            return detail::readBinary(data);
        return {std::nullopt, Format::Binary,
                QStringLiteral("binary property list: unsupported version \"%1\"")
                    .arg(QString::fromLatin1(data.left(8)))};
    }
    if (looksLikeXml(data))
        return detail::readXml(data);
    if (looksBinary(data))
        return {std::nullopt, Format::Binary,
                QStringLiteral("The data is no property list: it is binary, but does not start with \"bplist00\".")};
    return detail::readOpenStep(data);
}

ReadResult readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {std::nullopt, Format::Xml,
                QStringLiteral("Could not open \"%1\": %2").arg(path, file.errorString())};
    if (file.size() > MaxFileSize)
        return {std::nullopt, Format::Xml,
                QStringLiteral("\"%1\" is too large to be a property list (%2 bytes).")
                    .arg(path).arg(file.size())};
    const QByteArray data = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return {std::nullopt, Format::Xml,
                QStringLiteral("Could not read \"%1\": %2").arg(path, file.errorString())};
    return read(data);
}

std::optional<Dictionary> readStringDictionary(const QByteArray &data)
{
    ReadResult r = read(data);
    if (!r.value || !r.value->isDictionary())
        return std::nullopt;
    for (const auto &entry : r.value->dictionary())
        if (!entry.second.isString())
            return std::nullopt;
    return r.value->dictionary();
}

namespace detail {

QDateTime referenceDate()
{
    return QDateTime(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
}

QByteArray isoDate(const QDateTime &d)
{
    return d.toUTC().toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'")).toLatin1();
}

QByteArray realText(double d, bool shortest)
{
    if (std::isnan(d))
        return QByteArrayLiteral("nan");
    if (std::isinf(d))
        return d > 0 ? QByteArrayLiteral("+infinity") : QByteArrayLiteral("-infinity");
    // to_chars ignores the C locale, which a Qt application sets from the environment.
    char buf[64];
    const auto r = shortest ? std::to_chars(buf, buf + sizeof buf, d)
                            : std::to_chars(buf, buf + sizeof buf, d, std::chars_format::general, 17);
    return QByteArray(buf, r.ptr - buf);
}

QString pairedSurrogates(QString s)
{
    for (qsizetype i = 0; i < s.size(); ++i) {
        if (s[i].isHighSurrogate() && i + 1 < s.size() && s[i + 1].isLowSurrogate())
            ++i;
        else if (s[i].isSurrogate())
            s[i] = QChar::ReplacementCharacter;
    }
    return s;
}

int lineAt(QStringView text, qsizetype pos)
{
    int line = 1;
    pos = qMin(pos, text.size());
    for (qsizetype i = 0; i < pos; ++i) {
        if (text[i] == u'\n')
            ++line;
        else if (text[i] == u'\r' && (i + 1 >= text.size() || text[i + 1] != u'\n'))
            ++line;
    }
    return line;
}

QString decodeText(const QByteArray &data)
{
    if (data.startsWith("\xFE\xFF"))
        return QStringDecoder(QStringDecoder::Utf16BE, QStringDecoder::Flag::Stateless).decode(data.mid(2));
    if (data.startsWith("\xFF\xFE"))
        return QStringDecoder(QStringDecoder::Utf16LE, QStringDecoder::Flag::Stateless).decode(data.mid(2));
    const QByteArray body = data.startsWith("\xEF\xBB\xBF") ? data.mid(3) : data;
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(body);
    if (!utf8.hasError())
        return text;
    QStringDecoder macRoman("macintosh");
    if (macRoman.isValid())
        return macRoman.decode(body);
    return QString::fromLatin1(body);
}

}  // namespace detail

}  // namespace plist
