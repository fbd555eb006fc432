#pragma once
// Texts of the window application. Every text is looked up in the model's table of localized
// interface texts first; identifiers that the table leaves untranslated (toolbar item names such
// as "AddFile") get the English label of this file instead of showing as raw identifiers.

#include <QString>

QString uiText(const QString &key);

// "1 file" / "3 files": `one` for a count of one, else `many` with %1 replaced by the count.
QString countedText(qsizetype count, const QString &one, const QString &many);
