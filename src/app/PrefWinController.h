#pragma once
// The preference window: the default base and target languages of new documents, and the two
// filters of the entry lists (hide entries whose words are both empty, hide checked entries).
// Every control stores its value in the settings at once and follows the settings when they
// change elsewhere.

#include <QWidget>

class LanguageComboBox;
class QCheckBox;

class PrefWinController : public QWidget {
    Q_OBJECT
public:
    explicit PrefWinController(QWidget *parent = nullptr);

    LanguageComboBox *languageFromPp() const { return m_languageFromPp; }
    LanguageComboBox *languageToPp() const { return m_languageToPp; }
    QCheckBox *ignoreEmptyWordsSwitch() const { return m_ignoreEmpty; }
    QCheckBox *ignoreLocalizedWordsSwitch() const { return m_ignoreLocalized; }

    // Fills and sets the popups from the settings.
    void windowDidLoad();
    void registerMyNotifications() {}

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void readSwitches();
    LanguageComboBox *m_languageFromPp;
    LanguageComboBox *m_languageToPp;
    QCheckBox *m_ignoreEmpty;
    QCheckBox *m_ignoreLocalized;
};
