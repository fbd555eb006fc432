#include "TextFile.h"

#include <QFile>
#include <QStringDecoder>

namespace {

bool hasUtf8Bom(const QByteArray &b) { return b.startsWith("\xEF\xBB\xBF"); }

std::optional<QString> decodeUtf8(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(QByteArrayView(bytes).sliced(hasUtf8Bom(bytes) ? 3 : 0));
    if (decoder.hasError()) return std::nullopt;
    return text;
}

// UTF-16 without a byte-order mark is valid UTF-8 when it holds only ASCII (every other byte is
// NUL), and would decode to text riddled with NUL characters that no string table contains.
// When the NULs sit on one side of the code units, the bytes are taken as UTF-16 in
// that order instead.
std::optional<QStringConverter::Encoding> unmarkedUtf16(const QByteArray &bytes)
{
    if (bytes.size() < 4 || bytes.size() % 2 != 0 || !bytes.contains('\0')) return std::nullopt;
    qsizetype evenNul = 0, oddNul = 0;
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) {
        evenNul += bytes[i] == '\0';
        oddNul += bytes[i + 1] == '\0';
    }
    const qsizetype units = bytes.size() / 2;
    // The syntax of a table alone (quotes, "=", ";", line ends) puts NULs on one side of a good
    // share of the units, even when the words are in a non-Latin script.
    if (evenNul * 10 >= units * 3 && oddNul * 20 <= evenNul) return QStringConverter::Utf16BE;
    if (oddNul * 10 >= units * 3 && evenNul * 20 <= oddNul) return QStringConverter::Utf16LE;
    return std::nullopt;
}

}  // namespace

TextEncoding detectTextEncoding(const QByteArray &bytes)
{
    if (auto order = unmarkedUtf16(bytes))
        return *order == QStringConverter::Utf16BE ? TextEncoding::Utf16BE : TextEncoding::Utf16LE;
    if (decodeUtf8(bytes)) return TextEncoding::Utf8;
    if (bytes.startsWith("\xFE\xFF")) return TextEncoding::Utf16BE;
    if (bytes.startsWith("\xFF\xFE")) return TextEncoding::Utf16LE;
    return TextEncoding::MacRoman;
}

OptString decodeTextFileData(const QByteArray &bytes)
{
    if (auto order = unmarkedUtf16(bytes)) {
        QStringDecoder decoder(*order, QStringConverter::Flag::Stateless);
        QString text = decoder.decode(bytes);
        if (!decoder.hasError()) return text;
    }
    if (auto text = decodeUtf8(bytes)) return text;
    const bool be = bytes.startsWith("\xFE\xFF");
    const bool le = bytes.startsWith("\xFF\xFE");
    if (be || le) {
        QStringDecoder decoder(be ? QStringConverter::Utf16BE : QStringConverter::Utf16LE,
                               QStringConverter::Flag::Stateless);
        QString text = decoder.decode(QByteArrayView(bytes).sliced(2));
        if (decoder.hasError()) return std::nullopt;
        return text;
    }
    QStringDecoder macRoman("macintosh");
    if (!macRoman.isValid()) return std::nullopt;
    QString text = macRoman.decode(bytes);
    if (macRoman.hasError()) return std::nullopt;
    return text;
}

OptString readTextFileAtPath(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return decodeTextFileData(file.readAll());
}
