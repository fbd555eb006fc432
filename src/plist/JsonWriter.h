#pragma once
// JSON text straight into UTF-8 bytes, for everything the command line prints. Strings are
// escaped the way QJsonDocument escapes them (quote, backslash and control characters; a lone
// surrogate as \uXXXX), so output made either way is the same byte for byte.

#include <QByteArray>
#include <QStringView>
#include <functional>

namespace json {

// Appends `s` as a JSON string, quotes included.
void appendString(QByteArray &out, QStringView s);
// The same, as text.
QString quoted(QStringView s);

// Collects JSON text and hands it on in large chunks, so that printing a table of a hundred
// thousand pairs costs neither a copy of the whole text nor a write per string.
class Writer {
public:
    using Sink = std::function<void(QByteArrayView)>;
    explicit Writer(Sink sink) : m_sink(std::move(sink)) { m_buffer.reserve(kChunk + 1024); }
    ~Writer() { flush(); }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    Writer &raw(QByteArrayView bytes)
    {
        m_buffer.append(bytes);
        return spill();
    }
    Writer &string(QStringView s)
    {
        appendString(m_buffer, s);
        return spill();
    }
    void flush();

private:
    static constexpr qsizetype kChunk = 64 * 1024;
    Writer &spill()
    {
        if (m_buffer.size() >= kChunk) flush();
        return *this;
    }
    Sink m_sink;
    QByteArray m_buffer;
};

}  // namespace json
