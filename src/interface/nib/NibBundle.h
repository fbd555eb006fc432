#pragma once
// A nib folder (X.nib/): one or more compiled variants (keyedobjects.nib,
// keyedobjects-101300.nib, keyedobjects-110000.nib, ...), perhaps the editable designable.nib
// and IB 2's classes.nib and info.nib. The strings are those of designable.nib when it can be
// read (its ids are the ones ibtool used), else those of keyedobjects.nib (else the first
// variant). A written folder stays a folder: every variant and designable.nib are translated,
// everything else is copied.

#include "CompiledNib.h"

#include <vector>

namespace interface::nib {

class NibBundle final : public InterfaceFile {
public:
    static std::unique_ptr<NibBundle> open(const QString &path, QString *error);

    QList<LocalizableString> strings() const override { return m_primary->strings(); }
    bool write(const QString &outPath, const StringMap &translations, QString *error) const override;
    QStringList warnings() const override;

    // Translations keyed for `part`, from translations keyed for the primary source. Ids differ
    // between designable.nib and the compiled variants of IB 3 folders, so strings are paired by
    // key where key and text agree, else by text (the n-th equal text with the n-th).
    static StringMap translationsFor(const InterfaceFile &part, const QList<LocalizableString> &primary,
                                     const StringMap &translations);

private:
    NibBundle() = default;
    QString m_path;
    std::unique_ptr<InterfaceFile> m_designable;
    QString m_designableError;  // why an existing designable.nib could not be read
    std::vector<std::pair<QString, std::unique_ptr<CompiledNib>>> m_variants;  // file name, nib
    const InterfaceFile *m_primary = nullptr;
};

}  // namespace interface::nib
