#pragma once
// The object graph of a compiled nib, as the string rules see it, whichever container it came
// in (NIBArchive or a keyed archive in a binary property list). Objects are numbered as the
// container numbers them; a slot is one place that refers to an object (a keyed value, or the
// n-th element of a collection), and is where a translated string gets attached.

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

namespace interface::nib {

struct Slot {
    int holder = -1;
    QString key;
    int occurrence = -1;  // -1: the holder's value for `key`; n >= 0: the n-th element under it

    bool operator==(const Slot &o) const { return holder == o.holder && key == o.key && occurrence == o.occurrence; }
};

class ArchiveGraph {
public:
    virtual ~ArchiveGraph() = default;
    virtual std::unique_ptr<ArchiveGraph> clone() const = 0;

    virtual int objectCount() const = 0;
    // The NSIBObjectData object the archive's top refers to; none when there is no such object.
    virtual std::optional<int> objectData() const = 0;
    // The archived class first, then what the archive says about its superclasses (keyed
    // archives list them; NIBArchive only has fallbacks). Empty for plain values.
    virtual QStringList classChain(int object) const = 0;

    virtual std::optional<int> target(const Slot &slot) const = 0;
    std::optional<int> reference(int object, const QString &key) const { return target({object, key, -1}); }
    // The object's text when it is a string of any kind (NSString, NSMutableString,
    // NSLocalizableString, a plain string of a keyed archive). Attributed strings are no text.
    virtual std::optional<QString> text(int object) const = 0;
    // An NSNumber or plain integer object.
    virtual std::optional<qint64> number(int object) const = 0;
    // An integer stored inline under a key (NSNextOid).
    virtual std::optional<qint64> inlineInteger(int object, const QString &key) const = 0;
    // The element places of an array or set, in order.
    virtual QList<Slot> elementSlots(int object) const = 0;
    // The (key slot, value slot) pairs of a dictionary, in order.
    virtual QList<QPair<Slot, Slot>> dictionarySlots(int object) const = 0;
    // Every slot of the object that refers to another object.
    virtual QList<Slot> slotsOf(int object) const = 0;

    // How many places refer to the object (a string shared by several controls counts each).
    virtual int referenceCount(int object) const = 0;
    // Puts `text` at the slot: in place when the string there is referred to from this slot
    // only, else as a new string object of the same kind, so other users keep the old text.
    // An NSLocalizableString keeps its key and development text. False when no string is there.
    virtual bool setText(const Slot &slot, const QString &text) = 0;
    virtual QByteArray serialize() const = 0;
};

}  // namespace interface::nib
