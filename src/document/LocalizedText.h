#pragma once
// The application's table of localized interface texts: alert titles and messages, panel
// messages, button titles. Keys are the English texts; a key without a translation is shown as
// it stands. The tables ship as string tables in the resources (:/vocabrix/<lang>.lproj/
// Localizable.strings), chosen by the user's interface languages.

#include <QString>

QString localizedString(const QString &key);

// Chooses the table by language code ("en", "fr"); empty: the system's interface languages.
// For tests and for a command-line override.
void setInterfaceLanguage(const QString &language);
