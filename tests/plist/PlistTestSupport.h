#pragma once
// Helpers of the property-list tests: fixture files, and binary lists assembled byte by byte so
// the reader is checked against hand-made input rather than against our own writer.

#include "PropertyList.h"
#include "TestSupport.h"

#include <QList>
#include <QString>

namespace PlistTest {

inline QString dataPath(const QString &name)
{
    return QStringLiteral(PLIST_TEST_DATA "/") + name;
}

// A "bplist00" file from objects given in hex ("A2 01 02"). References are one byte, offsets are
// computed, and every trailer field can be overridden to make an inconsistent file.
struct BinaryBuilder {
    QList<QByteArray> objects;
    int offsetSize = 1;
    int refSize = 1;
    qint64 objectCount = -1;   // default: objects.size()
    qint64 topObject = 0;
    qint64 tableOffset = -1;   // default: where the table really is
    QList<quint64> offsetOverrides;  // replaces the computed offsets when not empty

    // A builder from a row of a case table: objects in hex separated by "|", and the trailer
    // fields that differ from a consistent one ("top=5 refSize=2"; offset= count= table=
    // offsetSize= as well).
    static BinaryBuilder fromRow(const QString &objects, const QString &trailer)
    {
        BinaryBuilder b;
        for (const QString &object : objects.split(u'|')) b.objects.append(QByteArray::fromHex(object.toLatin1()));
        for (const QString &field : trailer.split(u' ', Qt::SkipEmptyParts)) {
            const QString name = field.section(u'=', 0, 0);
            const qint64 value = field.section(u'=', 1).toLongLong();
            if (name == u"offset") b.offsetOverrides = {quint64(value)};
            else if (name == u"count") b.objectCount = value;
            else if (name == u"top") b.topObject = value;
            else if (name == u"table") b.tableOffset = value;
            else if (name == u"offsetSize") b.offsetSize = int(value);
            else if (name == u"refSize") b.refSize = int(value);
        }
        return b;
    }

    BinaryBuilder &add(const char *hex)
    {
        objects.append(QByteArray::fromHex(hex));
        return *this;
    }

    static void big(QByteArray &out, quint64 v, int size)
    {
        for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
            out.append(char((v >> shift) & 0xFF));
    }

    QByteArray build() const
    {
        QByteArray out("bplist00");
        QList<quint64> offsets;
        for (const QByteArray &o : objects) {
            offsets.append(quint64(out.size()));
            out.append(o);
        }
        if (!offsetOverrides.isEmpty())
            offsets = offsetOverrides;
        const quint64 table = quint64(out.size());
        for (quint64 off : offsets)
            big(out, off, offsetSize);
        out.append(6, '\0');
        out.append(char(offsetSize));
        out.append(char(refSize));
        big(out, objectCount < 0 ? quint64(offsets.size()) : quint64(objectCount), 8);
        big(out, quint64(topObject), 8);
        big(out, tableOffset < 0 ? table : quint64(tableOffset), 8);
        return out;
    }
};

}  // namespace PlistTest
