#pragma once
// A compiled nib file in either container (NIBArchive, or a keyed archive in a binary property
// list), as an interface file: its localizable strings, and a copy written back in the same
// container with some of them replaced. Also the entry point for everything this folder reads.

#include "ArchiveGraph.h"
#include "InterfaceFile.h"
#include "NibStrings.h"

namespace interface::nib {

enum class NibForm { NibArchive, KeyedArchive };

class CompiledNib final : public InterfaceFile {
public:
    // Files larger than this are refused: real nibs stay far below it.
    static constexpr qint64 MaxSize = 64 * 1024 * 1024;

    static std::unique_ptr<CompiledNib> fromData(const QByteArray &bytes, QString *error);
    static std::unique_ptr<CompiledNib> open(const QString &path, QString *error);

    NibForm form() const { return m_form; }
    const ArchiveGraph &graph() const { return *m_graph; }
    const QList<FoundString> &found() const { return m_found; }

    QList<LocalizableString> strings() const override;
    bool write(const QString &outPath, const StringMap &translations, QString *error) const override;
    // The bytes of the localized copy; `replaced` counts the strings that changed.
    QByteArray localizedData(const StringMap &translations, int *replaced = nullptr) const;

private:
    CompiledNib(NibForm form, std::unique_ptr<ArchiveGraph> graph);
    NibForm m_form;
    std::unique_ptr<ArchiveGraph> m_graph;
    QList<FoundString> m_found;
};

// True for what this folder reads: a nib folder, or a file that begins as a NIBArchive or a
// binary property list does. Xibs and legacy designable.nib archives are XML: not ours.
bool isCompiledNib(const QString &path);
// A compiled nib file or a nib folder; none, with a reason a user understands, otherwise.
std::unique_ptr<InterfaceFile> openCompiledNib(const QString &path, QString *error);

// "The document ... could not be opened." with the reason, as every reader of the engine says it.
QString cannotOpen(const QString &path, const QString &why);
// Writes bytes atomically; false with a reason.
bool writeFileAtomically(const QString &path, const QByteArray &bytes, QString *error);

}  // namespace interface::nib
