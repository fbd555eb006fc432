#pragma once
// Byte-span edits on a file's original bytes: the writers replace only the values they change
// and copy every other byte, so a localized copy differs from its base in those values alone.

#include <QByteArray>
#include <vector>

namespace interface {

class TextEdits {
public:
    // Replace [start, end) by `text`; start == end inserts. Insertions at one place keep the
    // order in which they were added.
    void replace(qsizetype start, qsizetype end, const QByteArray &text);
    void insert(qsizetype at, const QByteArray &text) { replace(at, at, text); }
    void remove(qsizetype start, qsizetype end) { replace(start, end, QByteArray()); }
    bool isEmpty() const { return m_edits.empty(); }

    // The edited bytes; false when two edits overlap (a writer bug, never silently merged).
    bool apply(const QByteArray &original, QByteArray *out) const;

private:
    struct Edit {
        qsizetype start;
        qsizetype end;
        QByteArray text;
        size_t order;
    };
    std::vector<Edit> m_edits;
};

// The whitespace that starts the line holding `position` (empty when something else comes
// before it on that line).
QByteArray lineIndent(const QByteArray &bytes, qsizetype position);
// [start, end) widened to whole lines when only whitespace surrounds it on its lines, so that
// removing it leaves no blank line behind.
void widenToLines(const QByteArray &bytes, qsizetype *start, qsizetype *end);

}  // namespace interface
