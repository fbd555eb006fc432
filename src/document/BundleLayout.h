#pragma once
// Where a bundle keeps its language folders, and which of them stands for a language. Apple's
// layouts: an application's (and most bundles') Contents/Resources, a framework's Resources or
// Versions/Current/Resources. Since Base internationalization, interface files live once in
// Base.lproj and every language folder holds string tables only; older bundles keep whole
// interface files per language. Folder names come as the language table's key (French.lproj),
// its abbreviation (fr.lproj) or a regional form (fr_CA.lproj, pt-BR.lproj).

#include <QString>
#include <QStringList>

namespace BundleLayout {

inline const QString kBaseFolder = QStringLiteral("Base.lproj");

// The folder that holds the bundle's .lproj folders; Contents/Resources when none of the known
// places exists (where a bundle's folders have always been looked for).
QString resourcesFolder(const QString &bundle);
// The frameworks an application carries, each a bundle with its own language folders
// (Contents/Frameworks/X.framework on the Mac, Frameworks/X.framework on iOS), sorted by name.
QStringList frameworks(const QString &bundle);
// The part of a file's path that names the framework holding it, from the application's
// "Contents/Frameworks/" or "Frameworks/" on ("Contents/Frameworks/Sparkle.framework"); empty
// for a file of the application itself.
QString frameworkPart(const QString &path);

// Names the file system hides, and AppleDouble copies ("._X") that archives carry along: never
// resources of their own.
bool isHiddenName(const QString &name);

// Interface files as Base internationalization keeps them: xib, storyboard, nib (file or folder).
bool isInterfaceFile(const QString &name);

// True for a file inside a Base.lproj folder.
bool isInBaseFolder(const QString &path);

// The .lproj folders of a resources folder, sorted by name, hidden ones left out.
QStringList languageFolders(const QString &resources);

// The existing folders that stand for a language, best first: the key's folder, else the
// abbreviation's (regional forms compared with "-" and "_" alike, letters in any case); else every
// folder whose language part (before "-" or "_") is the abbreviation's. More than one name means
// the caller has to ask which. Empty when no folder fits.
QStringList candidateFolders(const QString &resources, const QString &key, const QString &abbreviation);

// The name of a language folder that must be made, in the style the bundle already uses: the
// abbreviation when it has Base.lproj or abbreviation-named folders; the key when its folders
// are named by keys, or when it has none (the older layout).
QString newFolderName(const QString &resources, const QString &key, const QString &abbreviation);

}  // namespace BundleLayout
