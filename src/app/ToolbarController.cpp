#include "ToolbarController.h"

#include "CustomizeToolbarDialog.h"
#include "Settings.h"
#include "ToolbarIcons.h"
#include "UiText.h"

#include <QAction>
#include <QMainWindow>
#include <QToolBar>
#include <QWidgetAction>
#include <utility>

const QString ToolbarController::SpaceItem = QStringLiteral("Space");
const QString ToolbarController::FlexibleSpaceItem = QStringLiteral("FlexibleSpace");
const QString ToolbarController::SeparatorItem = QStringLiteral("Separator");
const QString ToolbarController::CustomizeItem = QStringLiteral("Customize");

namespace {

bool isStandard(const QString &id)
{
    return id == ToolbarController::SpaceItem || id == ToolbarController::FlexibleSpaceItem
        || id == ToolbarController::SeparatorItem || id == ToolbarController::CustomizeItem;
}

// Spaces and separators may appear any number of times; every other item once.
bool isRepeatable(const QString &id)
{
    return id == ToolbarController::SpaceItem || id == ToolbarController::FlexibleSpaceItem
        || id == ToolbarController::SeparatorItem;
}

}  // namespace

QStringList ToolbarController::defaultItemIdentifiers()
{
    return {QStringLiteral("LanguageFrom"), QStringLiteral("LanguageTo"), SpaceItem, QStringLiteral("AddFile"),
            QStringLiteral("Export"), FlexibleSpaceItem, CustomizeItem, SeparatorItem, QStringLiteral("Files")};
}

QStringList ToolbarController::allowedItemIdentifiers()
{
    return {QStringLiteral("LanguageFrom"), QStringLiteral("LanguageTo"), QStringLiteral("AddFile"),
            QStringLiteral("Delete"), QStringLiteral("Files"), QStringLiteral("Export"),
            QStringLiteral("ExportAll"), CustomizeItem, SeparatorItem, SpaceItem, FlexibleSpaceItem};
}

QString ToolbarController::paletteLabel(const QString &identifier)
{
    if (identifier == SpaceItem) return tr("Space");
    if (identifier == FlexibleSpaceItem) return tr("Flexible Space");
    if (identifier == SeparatorItem) return tr("Separator");
    if (identifier == CustomizeItem) return tr("Customize");
    return uiText(identifier);
}

ToolbarController::ToolbarController(QMainWindow *window, const QHash<QString, QAction *> &items, QWidget *trailing)
    : QObject(window), m_window(window), m_items(items)
{
    m_toolbar = window->addToolBar(tr("Toolbar"));
    m_toolbar->setObjectName(toolbarName());
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    m_toolbar->setIconSize(QSize(28, 28));
    m_toolbar->setMovable(false);
    m_toolbar->toggleViewAction()->setEnabled(false);  // hidden toolbars hide the language pair
    if (trailing) {
        auto *action = new QWidgetAction(this);
        action->setDefaultWidget(trailing);
        m_trailing = action;
    }
    m_identifiers = savedItemIdentifiers();
    rebuild();
}

QStringList ToolbarController::savedItemIdentifiers()
{
    const QVariant saved = Settings::instance().value(toolbarName());
    if (!saved.isValid()) return defaultItemIdentifiers();
    return saved.toStringList();
}

void ToolbarController::setItemIdentifiers(const QStringList &identifiers)
{
    const QStringList allowed = allowedItemIdentifiers();
    QStringList kept;
    for (const QString &id : identifiers)
        if (allowed.contains(id) && (isRepeatable(id) || !kept.contains(id))) kept.append(id);
    m_identifiers = kept;
    Settings::instance().setValue(toolbarName(), kept);
    rebuild();
}

void ToolbarController::rebuild()
{
    m_toolbar->clear();
    qDeleteAll(m_standardItems);  // a widget action takes its spacer widget with it
    m_standardItems.clear();
    QStringList shown;
    for (const QString &id : std::as_const(m_identifiers)) {
        QAction *item = isStandard(id) ? makeStandardItem(id) : m_items.value(id);
        if (!item || (!isRepeatable(id) && shown.contains(id))) continue;
        shown.append(id);
        m_toolbar->addAction(item);
    }
    m_identifiers = shown;
    if (m_trailing) m_toolbar->addAction(m_trailing);
}

QAction *ToolbarController::makeStandardItem(const QString &id)
{
    QAction *item = nullptr;
    if (id == SeparatorItem) {
        item = new QAction(this);
        item->setSeparator(true);
    } else if (id == CustomizeItem) {
        item = new QAction(toolbarIcon(CustomizeItem), tr("Customize"), this);
        item->setToolTip(tr("Choose the items of this toolbar"));
        connect(item, &QAction::triggered, this, [this] { runCustomizePalette(); });
    } else {
        auto *space = new QWidget;
        if (id == FlexibleSpaceItem) space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        else space->setFixedWidth(16);
        auto *action = new QWidgetAction(this);
        action->setDefaultWidget(space);
        item = action;
    }
    item->setObjectName(id);
    m_standardItems.append(item);
    return item;
}

CustomizeToolbarDialog *ToolbarController::runCustomizePalette()
{
    if (m_palette && m_palette->isVisible()) {
        m_palette->raise();
        return m_palette;
    }
    auto *dialog = new CustomizeToolbarDialog(allowedItemIdentifiers(), defaultItemIdentifiers(), m_identifiers, m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { setItemIdentifiers(dialog->itemIdentifiers()); });
    dialog->open();
    m_palette = dialog;
    return dialog;
}
