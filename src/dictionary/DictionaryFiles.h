#pragma once
// Where the translation dictionaries live and how their files are named: one string table per
// ordered language pair, "<base key>-<target key>.strings", in the user's data folder under
// "Vocabrix" (QStandardPaths::GenericDataLocation, so $XDG_DATA_HOME/Vocabrix when it is set,
// else ~/.local/share/Vocabrix).

#include <QString>
#include <optional>

// The user-domain folder of a four-character folder type. Only "asup" (application support) is
// known here; any other type gives an empty path. Nothing is created.
QString folderPathForFolderType(const QString &folderType);

// The application-support folder joined with `name`, created (with the folders above it) when
// nothing exists there. The path is returned whether or not the creation succeeded.
QString applicationSupportPathForName(const QString &name);

namespace DictionaryFiles {

// "Vocabrix" under the application-support folder (created on demand, as above).
QString dictionaryFolder();
// "%1-%2.strings" of the two language keys, base first.
QString fileName(const QString &baseKey, const QString &targetKey);
// The base and target keys read back from a file name: the text before the first "-", and the
// text between it and ".strings". None for a name of another shape.
std::optional<std::pair<QString, QString>> languageKeysFromFileName(const QString &fileName);

}  // namespace DictionaryFiles
