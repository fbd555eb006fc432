#pragma once
// What the interface, handler and corpus tests compare: the words of a file's entries.

#include "CaseData.h"
#include "LocFile.h"


namespace TestSupport {

// The localized words of a file's entries with their check marks, "Oui+|Non-"; with keys
// "key=Oui+|..." (an entry keyed by its text: "base=Oui+").
inline QString entryWords(const LocFilePtr &file, bool withKeys = false)
{
    QStringList list;
    for (const LocEntryPtr &e : file->allEntries())
        list << (withKeys ? StringUtility::wordOrEmpty(e->keyWord() ? e->keyWord() : e->baseWord()) + u'=' : QString())
                    + StringUtility::wordOrEmpty(e->localizedWord()) + (e->isChecked() ? u'+' : u'-');
    return list.join(u'|');
}

}  // namespace TestSupport
