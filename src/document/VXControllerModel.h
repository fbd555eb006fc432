#pragma once
// The application controller's model side, shared by the window application's VXController and
// by the command line: the registered default settings, the list of bundle extensions, the
// accepted file types, and the dictionary path of a language pair.

#include <QString>
#include <QStringList>

class VXControllerModel {
public:
    static VXControllerModel &instance();

    // Registers the defaults "BaseLanguage" = 1 and "TargetLanguage" = 2; runs before any
    // setting is read. Safe to call more than once.
    static void initialize();
    // Reads the bundle extensions from the BundleTypes resource (once, at start).
    void awakeFromNib();

    // Path extensions (without dots) of application-like bundles; empty when the resource cannot
    // be read. Read on first use when awakeFromNib has not run (headless programs).
    const QStringList &bundleFileTypes();
    // The dictionary file of a language pair, in the dictionary folder (which may be created
    // here); never creates the file itself.
    QString dictionaryPathrForBase(const QString &baseKey, const QString &targetKey) const;

    // The BundleTypes resource read again (export reads it on every destination choice).
    static QStringList readBundleTypes();
    // Tests: read the bundle extensions from this file instead of the resource; empty restores it.
    static void setBundleTypesPath(const QString &path);

private:
    VXControllerModel() = default;
    QStringList m_bundleFileTypes;
    bool m_awake = false;
};

// "nib", "xib", "strings", "plist", then the bundle extensions: a new list at each call.
QStringList acceptableFileTypes();
// True when the path's extension (exact case) is one of the bundle extensions.
bool isBundlePath(const QString &path, const QStringList &bundleExtensions);
