#pragma once
// A language popup: a combo box whose items carry the language tags, filled by the model's
// setLanguageNameForPopupButtons. The tag is kept as the item's user data.

#include "Languages.h"

#include <QComboBox>

class LanguageComboBox : public QComboBox, public LanguagePopup {
    Q_OBJECT
public:
    explicit LanguageComboBox(QWidget *parent = nullptr);

    // LanguagePopup
    void removeAllItems() override { clear(); }
    void addItemWithTitle(const QString &title) override { addItem(title); }
    qsizetype numberOfItems() const override { return count(); }
    void setTagOfItemAtIndex(qsizetype index, int tag) override { setItemData(int(index), tag); }

    // Selects the item carrying `tag`; no item carries it: no selection at all.
    void ppSelectItemWithTag(int tag);
    // The selected item's tag, or 0 without a selection.
    int selectedTag() const;

signals:
    // The user chose an item (not emitted when the selection is set by the program).
    void tagChosen(int tag);
};
