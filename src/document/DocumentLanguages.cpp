// MyDocument: its two languages as keys, abbreviations and folder names, and the dictionary of
// the language pair.
#include "MyDocument.h"

#include "Languages.h"
#include "VXControllerModel.h"

namespace {

OptString folderName(const OptString &key)
{
    return key ? OptString(QStringLiteral("%1.lproj").arg(*key)) : std::nullopt;
}

}  // namespace

OptString MyDocument::languageKeyForLanguage(int tag)
{
    return ::languageKeyForLanguage(tag);
}

OptString MyDocument::languageAbbreviationForLanguage(int tag)
{
    return ::languageAbbreviationForLanguage(tag);
}

OptString MyDocument::baseLanguageKey() const
{
    return languageKeyForLanguage(m_locLangFrom);
}

OptString MyDocument::baseLanguageAbbreviation() const
{
    return languageAbbreviationForLanguage(m_locLangFrom);
}

OptString MyDocument::baseFolderName() const
{
    return folderName(baseLanguageKey());
}

OptString MyDocument::targetLanguageKey() const
{
    return languageKeyForLanguage(m_locLangTo);
}

OptString MyDocument::targetLanguageAbbreviation() const
{
    return languageAbbreviationForLanguage(m_locLangTo);
}

OptString MyDocument::targetFolderName() const
{
    return folderName(targetLanguageKey());
}

QString MyDocument::dictionaryPath() const
{
    // A language without a row has no key, and "-French.strings" would name nobody's dictionary.
    const OptString base = baseLanguageKey();
    const OptString target = targetLanguageKey();
    if (!base || !target) return QString();
    return VXControllerModel::instance().dictionaryPathrForBase(*base, *target);
}

void MyDocument::resetDictionaryPath()
{
    emit dictionaryPathReset(dictionaryPath());
}

MergeResult MyDocument::saveDictionary(const StringMap &pairs)
{
    const QString path = dictionaryPath();
    if (path.isEmpty()) {
        MergeResult refused;
        refused.message = QStringLiteral("The translations were not added to a dictionary: the base or the target "
                                         "language of this document is not in the language table.");
        return refused;
    }
    return mergeIntoDictionary(path, pairs, this);
}
