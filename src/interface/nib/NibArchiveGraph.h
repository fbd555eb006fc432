#pragma once
// The object graph of a NIBArchive. Strings are objects of class NSString, NSMutableString or
// NSLocalizableString holding UTF-8 under "NS.bytes"; collections hold their elements (and a
// dictionary its keys and values, alternately) as "UINibEncoderEmptyKey" values.

#include "ArchiveGraph.h"
#include "NibArchive.h"

#include <QHash>
#include <memory>

namespace interface::nib {

class NibArchiveGraph final : public ArchiveGraph {
public:
    explicit NibArchiveGraph(NibArchive archive);

    const NibArchive &archive() const { return m_archive; }

    std::unique_ptr<ArchiveGraph> clone() const override { return std::make_unique<NibArchiveGraph>(*this); }
    int objectCount() const override { return int(m_archive.objects.size()); }
    std::optional<int> objectData() const override;
    QStringList classChain(int object) const override;
    std::optional<int> target(const Slot &slot) const override;
    std::optional<QString> text(int object) const override;
    std::optional<qint64> number(int object) const override;
    std::optional<qint64> inlineInteger(int object, const QString &key) const override;
    QList<Slot> elementSlots(int object) const override;
    QList<QPair<Slot, Slot>> dictionarySlots(int object) const override;
    QList<Slot> slotsOf(int object) const override;
    int referenceCount(int object) const override;
    bool setText(const Slot &slot, const QString &text) override;
    QByteArray serialize() const override { return m_archive.serialize(); }

private:
    // Index into the value table of the slot's value, or -1.
    qsizetype valueIndex(const Slot &slot) const;
    qsizetype firstValue(int object, const QString &key) const;
    bool isStringClass(int object) const;
    void countReferences() const;
    // Indices into the value table of the object's values under one key, in order.
    const QList<quint32> &positions(int object, quint32 key) const;

    NibArchive m_archive;
    QHash<QString, quint32> m_keyIndex;
    QStringList m_keyNames;
    QList<QStringList> m_classChains;  // per class: the name, then its fallbacks
    mutable QList<int> m_referenceCounts;  // filled on first use
    mutable QHash<quint64, QList<quint32>> m_positions;
};

}  // namespace interface::nib
