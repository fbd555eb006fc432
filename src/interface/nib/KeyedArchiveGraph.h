#pragma once
// The object graph of an NSKeyedArchiver nib (keyedobjects.nib, or a single-file nib that is a
// binary property list): "$objects" holds every object, references are UIDs (read as
// {"CF$UID": n}), and index 0 is "$null". Strings are plain strings or dictionaries of class
// NSString, NSMutableString or NSLocalizableString with "NS.string" (or UTF-8 "NS.bytes").

#include "ArchiveGraph.h"
#include "PropertyList.h"

namespace interface::nib {

class KeyedArchiveGraph final : public ArchiveGraph {
public:
    // True when the list is a keyed archive ($archiver, $objects, $top); none otherwise.
    static std::optional<KeyedArchiveGraph> fromValue(const plist::Value &root, QString *error);

    std::unique_ptr<ArchiveGraph> clone() const override { return std::make_unique<KeyedArchiveGraph>(*this); }
    int objectCount() const override { return int(objects().size()); }
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
    QByteArray serialize() const override { return plist::toBinary(m_root); }

    const plist::Value &root() const { return m_root; }

private:
    KeyedArchiveGraph() = default;
    const plist::Array &objects() const { return m_root.dictionary()[m_objectsAt].second.array(); }
    plist::Array &objects() { return m_root.dictionary()[m_objectsAt].second.array(); }
    const plist::Value *object(int index) const;
    const plist::Value *slotValue(const Slot &slot) const;
    plist::Value *slotValue(const Slot &slot);
    bool isStringObject(const plist::Value &v) const;
    void countReferences() const;

    plist::Value m_root;
    qsizetype m_objectsAt = 0;
    mutable QList<int> m_referenceCounts;
    mutable int m_highestReference = 0;  // may lie past the table in a damaged archive
};

}  // namespace interface::nib
