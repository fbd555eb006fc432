#include "SpellChecker.h"

#include <hunspell.hxx>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringDecoder>

namespace {

// Regions whose dictionary stands for the language when the abbreviation names none.
const QHash<QString, QString> &usualRegions()
{
    static const QHash<QString, QString> regions{
        {QStringLiteral("en"), QStringLiteral("US")}, {QStringLiteral("sv"), QStringLiteral("SE")},
        {QStringLiteral("da"), QStringLiteral("DK")}, {QStringLiteral("el"), QStringLiteral("GR")},
        {QStringLiteral("nb"), QStringLiteral("NO")}, {QStringLiteral("ko"), QStringLiteral("KR")},
        {QStringLiteral("cs"), QStringLiteral("CZ")}, {QStringLiteral("uk"), QStringLiteral("UA")},
        {QStringLiteral("zh"), QStringLiteral("CN")}, {QStringLiteral("ja"), QStringLiteral("JP")},
    };
    return regions;
}

QStringList availableNames(const QString &folder)
{
    QStringList names;
    for (const QString &aff : QDir(folder).entryList({QStringLiteral("*.aff")}, QDir::Files | QDir::Readable, QDir::Name)) {
        const QString name = QFileInfo(aff).completeBaseName();
        if (QFileInfo::exists(QDir(folder).filePath(name + QLatin1String(".dic")))) names.append(name);
    }
    return names;
}

}  // namespace

SpellChecker::SpellChecker() = default;
SpellChecker::~SpellChecker() = default;

QStringList SpellChecker::dictionaryFolders()
{
    QStringList folders;
    const QString own = qEnvironmentVariable("VOCABRIX_HUNSPELL_DIR");
    if (!own.isEmpty()) folders.append(own);
    folders << QStringLiteral("/usr/share/hunspell") << QStringLiteral("/usr/share/myspell/dicts")
            << QStringLiteral("/usr/share/myspell");
    return folders;
}

QString SpellChecker::dictionaryNameFor(const QString &abbreviation, const QStringList &available)
{
    if (abbreviation.isEmpty()) return QString();
    QString code = abbreviation;
    code.replace(u'-', u'_');
    const QString language = code.section(u'_', 0, 0).toLower();
    // A region the abbreviation names comes first, then the language's usual region, then the
    // bare language, then any region of it.
    QStringList wanted;
    if (code != language) wanted << code << language + u'_' + code.section(u'_', 1).toUpper();
    wanted.append(language + u'_' + usualRegions().value(language, language.toUpper()));
    wanted.append(language);
    for (const QString &name : std::as_const(wanted))
        if (available.contains(name)) return name;
    for (const QString &name : available)
        if (name.startsWith(language + u'_')) return name;
    return QString();
}

bool SpellChecker::setLanguage(const QString &abbreviation)
{
    m_hunspell.reset();
    m_name.clear();
    for (const QString &folder : dictionaryFolders()) {
        const QString name = dictionaryNameFor(abbreviation, availableNames(folder));
        if (name.isEmpty()) continue;
        const QByteArray aff = QFile::encodeName(QDir(folder).filePath(name + QLatin1String(".aff")));
        const QByteArray dic = QFile::encodeName(QDir(folder).filePath(name + QLatin1String(".dic")));
        m_hunspell = std::make_unique<Hunspell>(aff.constData(), dic.constData());
        m_name = name;
        m_encoding = QString::fromStdString(m_hunspell->get_dict_encoding());
        return true;
    }
    return false;
}

std::string SpellChecker::encode(const QString &word) const
{
    QStringEncoder encoder(m_encoding.toLatin1().constData());
    if (!encoder.isValid()) encoder = QStringEncoder(QStringConverter::Latin1);
    const QByteArray bytes = encoder.encode(word);
    return std::string(bytes.constData(), size_t(bytes.size()));
}

bool SpellChecker::isCorrect(const QString &word) const
{
    if (!m_hunspell || word.isEmpty()) return true;
    return m_hunspell->spell(encode(word));
}

QStringList SpellChecker::suggestions(const QString &word, int limit) const
{
    QStringList list;
    if (!m_hunspell) return list;
    QStringDecoder decoder(m_encoding.toLatin1().constData());
    if (!decoder.isValid()) decoder = QStringDecoder(QStringConverter::Latin1);
    for (const std::string &s : m_hunspell->suggest(encode(word))) {
        if (list.size() >= limit) break;
        list.append(decoder.decode(QByteArrayView(s.data(), qsizetype(s.size()))));
    }
    return list;
}
