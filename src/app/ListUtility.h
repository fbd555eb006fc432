#pragma once
// Reordering helpers of the file table (group myUtility).

#include <QList>
#include <algorithm>

// Moves the objects at `rows` (indexes into `list`) to the drop row `to` (0..size, size meaning
// below the last row). The moved objects keep their relative order and end as one run: all are
// taken out, then inserted at `to` minus the number of moved rows above it. Indexes outside the
// list are ignored.
template <typename T>
QList<T> movedRows(const QList<T> &list, QList<int> rows, int to)
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    rows.removeIf([&list](int r) { return r < 0 || r >= list.size(); });
    to = std::clamp(to, 0, int(list.size()));
    QList<T> moved;
    QList<T> rest;
    for (int i = 0; i < list.size(); ++i) (rows.contains(i) ? moved : rest).append(list.at(i));
    const int above = int(std::count_if(rows.cbegin(), rows.cend(), [to](int r) { return r < to; }));
    const int at = std::clamp(to - above, 0, int(rest.size()));
    for (int i = 0; i < moved.size(); ++i) rest.insert(at + i, moved.at(i));
    return rest;
}
