#pragma once
// Exact search for a short text in a long one, faster than QStringView::indexOf for the short
// keys of a search field and of the delimiters entries are cut at.

#include <QtGlobal>
#include <string_view>

namespace TextSearch {

// First position at or after `from` where `key` occurs in the `size` units at `text`, or -1.
qsizetype find(const char16_t *text, qsizetype size, std::u16string_view key, qsizetype from);

}  // namespace TextSearch
