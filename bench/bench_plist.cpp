// Property-list throughput: reading each form and writing XML, binary and JSON.
//   bench_plist [--entries N]
// Generates a list shaped like a large resource file: an array of N dictionaries (default
// 20,000) with strings in several scripts, integers, reals, dates, booleans, data and a small
// array each. The OpenStep text holds the same tree with the scalars as strings, as that form
// has no other scalar. Prints one JSON line per figure.
#include "PropertyList.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimeZone>
#include <cstdio>
#include <functional>

using namespace plist;

namespace {

const char *const Words[] = {"Open", "Öffnen", "Fenster schließen", "開く", "ファイルを保存", "Préférences…",
                             "Zoom & <Pan>", "Quit %@", "Ångström", "编辑"};

Value generate(int entries)
{
    Array items;
    items.reserve(entries);
    const QDateTime start(QDate(2008, 3, 1), QTime(12, 0), QTimeZone::utc());
    for (int i = 0; i < entries; ++i) {
        const QString word = QString::fromUtf8(Words[i % 10]);
        Array tags{Value::fromString(word), Value::fromString(QStringLiteral("tag %1").arg(i % 97)),
                   Value::fromString(QString::fromUtf8(Words[(i * 7) % 10]))};
        QByteArray blob(32, '\0');
        for (int b = 0; b < blob.size(); ++b)
            blob[b] = char(i * 31 + b);
        items.append(Value::fromDictionary({
            {QStringLiteral("name"), Value::fromString(QStringLiteral("%1 %2").arg(word).arg(i))},
            {QStringLiteral("id"), Value::fromInteger(qint64(i) * 1000003)},
            {QStringLiteral("ratio"), Value::fromReal(i / 7.0)},
            {QStringLiteral("when"), Value::fromDate(start.addSecs(i * 3600))},
            {QStringLiteral("enabled"), Value::fromBoolean(i % 3 == 0)},
            {QStringLiteral("blob"), Value::fromData(blob)},
            {QStringLiteral("tags"), Value::fromArray(tags)},
        }));
    }
    return Value::fromDictionary({{QStringLiteral("items"), Value::fromArray(items)}});
}

void appendOpenStep(QByteArray &out, const Value &v)
{
    switch (v.type()) {
    case Type::Array:
        out += '(';
        for (qsizetype i = 0; i < v.array().size(); ++i) {
            out += i ? ", " : "";
            appendOpenStep(out, v.array()[i]);
        }
        out += ')';
        break;
    case Type::Dictionary:
        out += "{\n";
        for (const auto &entry : v.dictionary()) {
            out += "    " + entry.first.toUtf8() + " = ";
            appendOpenStep(out, entry.second);
            out += ";\n";
        }
        out += '}';
        break;
    case Type::Data:
        out += '<' + v.data().toHex() + '>';
        break;
    default: {
        // Scalars other than strings become the text of their JSON form.
        QByteArray text = v.isString() ? v.string().toUtf8() : toJson(v).trimmed();
        out += '"' + text.replace('\\', "\\\\").replace('"', "\\\"") + '"';
    }
    }
}

void report(const char *name, double value, const char *unit)
{
    std::printf("{\"benchmark\":\"%s\",\"value\":%.3f,\"unit\":\"%s\"}\n", name, value, unit);
    std::fflush(stdout);
}

// Megabytes per second over `bytes`, repeating `work` for at least half a second.
double throughput(qsizetype bytes, const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    int runs = 0;
    do {
        work();
        ++runs;
    } while (timer.nsecsElapsed() < 500'000'000);
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    return double(bytes) * runs / seconds / (1024.0 * 1024.0);
}

void readFigure(const char *name, const QByteArray &bytes)
{
    const ReadResult check = read(bytes);
    if (!check.value) {
        std::fprintf(stderr, "%s: %s\n", name, qPrintable(check.error));
        std::exit(1);
    }
    report(name, throughput(bytes.size(), [&] { (void)read(bytes); }), "MB/s");
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    int entries = 20000;
    const QStringList args = app.arguments();
    const qsizetype at = args.indexOf(QStringLiteral("--entries"));
    if (at > 0 && at + 1 < args.size())
        entries = qMax(1, args[at + 1].toInt());

    const Value root = generate(entries);
    const QByteArray xml = toXml(root);
    const QByteArray binary = toBinary(root);
    QByteArray openStep;
    appendOpenStep(openStep, root);
    report("plist_entries", entries, "dictionaries");
    report("plist_xml_size", double(xml.size()) / (1024.0 * 1024.0), "MB");
    report("plist_binary_size", double(binary.size()) / (1024.0 * 1024.0), "MB");
    report("plist_openstep_size", double(openStep.size()) / (1024.0 * 1024.0), "MB");

    readFigure("plist_xml_read", xml);
    readFigure("plist_binary_read", binary);
    readFigure("plist_openstep_read", openStep);
    report("plist_xml_write", throughput(xml.size(), [&] { (void)toXml(root); }), "MB/s");
    report("plist_binary_write", throughput(binary.size(), [&] { (void)toBinary(root); }), "MB/s");
    const QByteArray json = toJson(root);
    report("plist_json_write", throughput(json.size(), [&] { (void)toJson(root); }), "MB/s");
    return 0;
}
