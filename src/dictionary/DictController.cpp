#include "DictController.h"

#include "StringsTable.h"

void DictController::setPath(const QString &path)
{
    m_path = path;
    addDictionary(dictionaryWithContentsOfFile(path).value_or(StringMap()));
}

void DictController::addDictionary(const StringMap &map)
{
    DictRows rows;
    DictRowList::appendDistinct(rows, map);
    m_entries = std::move(rows);
    emit entriesChanged();
    lookup(m_lookupText);
}

void DictController::lookup(const QString &text)
{
    m_lookupText = text;
    m_shown = DictSearch::filter(m_entries, text);
    emit shownEntriesChanged();
}
