#include "CustomizeToolbarDialog.h"

#include "ToolbarController.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int IdentifierRole = Qt::UserRole;
}

CustomizeToolbarDialog::CustomizeToolbarDialog(const QStringList &allowed, const QStringList &defaults,
                                               const QStringList &current, QWidget *parent)
    : QDialog(parent), m_defaults(defaults)
{
    setObjectName(QStringLiteral("customizeToolbar"));
    setWindowTitle(tr("Customize Toolbar"));
    m_palette = new QListWidget(this);
    m_palette->setObjectName(QStringLiteral("palette"));
    m_palette->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_palette->setDragDropMode(QAbstractItemView::DragOnly);
    m_palette->setDefaultDropAction(Qt::CopyAction);  // the palette keeps what is dragged out
    m_palette->setIconSize(QSize(24, 24));
    m_toolbarList = new QListWidget(this);
    m_toolbarList->setObjectName(QStringLiteral("toolbarItems"));
    m_toolbarList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    // Reordered by dragging within; items dragged in from the palette are copied.
    m_toolbarList->setDragDropMode(QAbstractItemView::DragDrop);
    m_toolbarList->setDefaultDropAction(Qt::MoveAction);
    m_toolbarList->setIconSize(QSize(24, 24));
    setItems(m_palette, allowed);
    setItems(m_toolbarList, current);

    m_add = new QPushButton(tr("Add \u2192"), this);
    m_remove = new QPushButton(tr("\u2190 Remove"), this);
    m_up = new QPushButton(tr("Move Up"), this);
    m_down = new QPushButton(tr("Move Down"), this);
    auto *restore = new QPushButton(tr("Restore Default"), this);
    restore->setObjectName(QStringLiteral("restoreDefault"));
    connect(m_add, &QPushButton::clicked, this, &CustomizeToolbarDialog::addSelected);
    connect(m_remove, &QPushButton::clicked, this, &CustomizeToolbarDialog::removeSelected);
    connect(m_up, &QPushButton::clicked, this, [this] { moveSelected(-1); });
    connect(m_down, &QPushButton::clicked, this, [this] { moveSelected(1); });
    connect(restore, &QPushButton::clicked, this, &CustomizeToolbarDialog::restoreDefault);
    connect(m_palette, &QListWidget::itemDoubleClicked, this, &CustomizeToolbarDialog::addSelected);
    connect(m_palette, &QListWidget::itemSelectionChanged, this, &CustomizeToolbarDialog::validateButtons);
    connect(m_toolbarList, &QListWidget::itemSelectionChanged, this, &CustomizeToolbarDialog::validateButtons);

    auto *buttons = new QVBoxLayout;
    buttons->addStretch();
    for (QPushButton *b : {m_add, m_remove, m_up, m_down}) buttons->addWidget(b);
    buttons->addStretch();
    auto *box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    box->addButton(restore, QDialogButtonBox::ResetRole);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *grid = new QGridLayout(this);
    grid->addWidget(new QLabel(tr("Items you can add:"), this), 0, 0);
    grid->addWidget(new QLabel(tr("Items in the toolbar, left to right:"), this), 0, 2);
    grid->addWidget(m_palette, 1, 0);
    grid->addLayout(buttons, 1, 1);
    grid->addWidget(m_toolbarList, 1, 2);
    grid->addWidget(new QLabel(tr("Drag items into the list on the right, or drag them there to change their order."), this),
                    2, 0, 1, 3);
    grid->addWidget(box, 3, 0, 1, 3);
    resize(600, 420);
    validateButtons();
}

QListWidgetItem *CustomizeToolbarDialog::makeItem(const QString &identifier) const
{
    auto *item = new QListWidgetItem(ToolbarController::paletteLabel(identifier));
    item->setData(IdentifierRole, identifier);
    QIcon icon;
    if (auto *owner = parentWidget())
        if (auto *action = owner->findChild<QAction *>(identifier)) icon = action->icon();
    if (icon.isNull()) {
        // Items without an image keep their labels in line with the others.
        QPixmap blank(m_palette->iconSize());
        blank.fill(Qt::transparent);
        icon = QIcon(blank);
    }
    item->setIcon(icon);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
    return item;
}

void CustomizeToolbarDialog::setItems(QListWidget *list, const QStringList &identifiers)
{
    list->clear();
    for (const QString &id : identifiers) list->addItem(makeItem(id));
}

QStringList CustomizeToolbarDialog::itemIdentifiers() const
{
    QStringList ids;
    for (int i = 0; i < m_toolbarList->count(); ++i) {
        const QString id = m_toolbarList->item(i)->data(IdentifierRole).toString();
        if (!id.isEmpty()) ids.append(id);
    }
    return ids;
}

void CustomizeToolbarDialog::addSelected()
{
    const QStringList present = itemIdentifiers();
    int at = m_toolbarList->currentRow() >= 0 ? m_toolbarList->currentRow() + 1 : m_toolbarList->count();
    for (int i = 0; i < m_palette->count(); ++i) {
        const QListWidgetItem *chosen = m_palette->item(i);
        if (!chosen->isSelected()) continue;
        const QString id = chosen->data(IdentifierRole).toString();
        const bool repeatable = id == ToolbarController::SpaceItem || id == ToolbarController::FlexibleSpaceItem
                             || id == ToolbarController::SeparatorItem;
        if (!repeatable && present.contains(id)) continue;  // each item once
        m_toolbarList->insertItem(at, makeItem(id));
        m_toolbarList->setCurrentRow(at++, QItemSelectionModel::ClearAndSelect);
    }
    validateButtons();
}

void CustomizeToolbarDialog::removeSelected()
{
    for (QListWidgetItem *item : m_toolbarList->selectedItems()) delete item;
    validateButtons();
}

void CustomizeToolbarDialog::moveSelected(int by)
{
    const int row = m_toolbarList->currentRow();
    const int to = row + by;
    if (row < 0 || to < 0 || to >= m_toolbarList->count()) return;
    QListWidgetItem *item = m_toolbarList->takeItem(row);
    m_toolbarList->insertItem(to, item);
    m_toolbarList->setCurrentRow(to, QItemSelectionModel::ClearAndSelect);
}

void CustomizeToolbarDialog::restoreDefault()
{
    setItems(m_toolbarList, m_defaults);
    validateButtons();
}

void CustomizeToolbarDialog::validateButtons()
{
    m_add->setEnabled(!m_palette->selectedItems().isEmpty());
    const bool chosen = !m_toolbarList->selectedItems().isEmpty();
    m_remove->setEnabled(chosen);
    m_up->setEnabled(chosen);
    m_down->setEnabled(chosen);
}
