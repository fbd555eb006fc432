#include "PrefWinController.h"

#include "LanguageComboBox.h"
#include "Settings.h"
#include "WindowFrame.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace {
const QString autosaveName = QStringLiteral("PreferenceWindow");
}

PrefWinController::PrefWinController(QWidget *parent) : QWidget(parent, Qt::Window)
{
    setObjectName(autosaveName);
    setWindowTitle(tr("Preferences"));
    m_languageFromPp = new LanguageComboBox(this);
    m_languageFromPp->setObjectName(QStringLiteral("languageFromPp"));
    m_languageToPp = new LanguageComboBox(this);
    m_languageToPp->setObjectName(QStringLiteral("languageToPp"));
    m_ignoreEmpty = new QCheckBox(tr("Hide entries whose base and localized words are empty"), this);
    m_ignoreEmpty->setObjectName(SettingsKey::IgnoreEmptyWords);
    m_ignoreLocalized = new QCheckBox(tr("Hide checked entries"), this);
    m_ignoreLocalized->setObjectName(SettingsKey::IgnoreLocalizedWords);

    auto *languages = new QGroupBox(tr("Languages of new documents"), this);
    auto *form = new QFormLayout(languages);
    form->addRow(tr("Base language:"), m_languageFromPp);
    form->addRow(tr("Target language:"), m_languageToPp);
    auto *filters = new QGroupBox(tr("Entry lists"), this);
    auto *filterLayout = new QVBoxLayout(filters);
    filterLayout->addWidget(m_ignoreEmpty);
    filterLayout->addWidget(m_ignoreLocalized);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(languages);
    layout->addWidget(filters);
    layout->addStretch();
    // A window of settings applied at once: Close (or Esc) is all it needs.
    auto *closeButton = new QPushButton(tr("Close"), this);
    closeButton->setObjectName(QStringLiteral("closeButton"));
    connect(closeButton, &QPushButton::clicked, this, &QWidget::close);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(closeButton);
    layout->addLayout(buttons);
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);
    // Here the popups are the window's main controls: reachable with Tab.
    m_languageFromPp->setFocusPolicy(Qt::StrongFocus);
    m_languageToPp->setFocusPolicy(Qt::StrongFocus);

    Settings &settings = Settings::instance();
    connect(m_languageFromPp, &LanguageComboBox::tagChosen, this,
            [](int tag) { Settings::instance().setValue(SettingsKey::BaseLanguage, tag); });
    connect(m_languageToPp, &LanguageComboBox::tagChosen, this,
            [](int tag) { Settings::instance().setValue(SettingsKey::TargetLanguage, tag); });
    connect(m_ignoreEmpty, &QCheckBox::toggled, this,
            [](bool on) { Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, on); });
    connect(m_ignoreLocalized, &QCheckBox::toggled, this,
            [](bool on) { Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, on); });
    connect(&settings, &Settings::ignoreEmptyWordsChanged, this, &PrefWinController::readSwitches);
    connect(&settings, &Settings::ignoreLocalizedWordsChanged, this, &PrefWinController::readSwitches);
    connect(&settings, &Settings::baseLanguageChanged, this,
            [this] { m_languageFromPp->ppSelectItemWithTag(Settings::instance().intValue(SettingsKey::BaseLanguage)); });
    connect(&settings, &Settings::targetLanguageChanged, this,
            [this] { m_languageToPp->ppSelectItemWithTag(Settings::instance().intValue(SettingsKey::TargetLanguage)); });

    windowDidLoad();
    if (!WindowFrame::restore(this, autosaveName)) resize(sizeHint());
}

void PrefWinController::windowDidLoad()
{
    setLanguageNameForPopupButtons({m_languageFromPp, m_languageToPp});
    const Settings &settings = Settings::instance();
    m_languageFromPp->ppSelectItemWithTag(settings.intValue(SettingsKey::BaseLanguage));
    m_languageToPp->ppSelectItemWithTag(settings.intValue(SettingsKey::TargetLanguage));
    readSwitches();
    registerMyNotifications();
}

void PrefWinController::readSwitches()
{
    const Settings &settings = Settings::instance();
    const QSignalBlocker a(m_ignoreEmpty);
    const QSignalBlocker b(m_ignoreLocalized);
    m_ignoreEmpty->setChecked(settings.boolValue(SettingsKey::IgnoreEmptyWords));
    m_ignoreLocalized->setChecked(settings.boolValue(SettingsKey::IgnoreLocalizedWords));
}

// Closing only hides the window: the controller is made once and kept.
void PrefWinController::closeEvent(QCloseEvent *event)
{
    WindowFrame::save(this, autosaveName);
    event->accept();
}
