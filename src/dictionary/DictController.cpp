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
    m_shownValid = false;
    emit entriesChanged();
    lookup(m_lookupText);
}

void DictController::lookup(const QString &text)
{
    m_shown = m_shownValid ? DictSearch::narrow(m_entries, m_shown, m_lookupText, text) : DictSearch::filter(m_entries, text);
    m_shownValid = true;
    m_lookupText = text;
    emit shownEntriesChanged();
}
