#include "LanguageComboBox.h"

LanguageComboBox::LanguageComboBox(QWidget *parent) : QComboBox(parent)
{
    // Between the toolbar item's smallest and largest widths, wide enough for most names.
    setMinimumWidth(100);
    setMaximumWidth(230);
    setMinimumContentsLength(14);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    // Focus comes to a popup only when it is clicked: a letter typed for the entry editor while
    // the focus had wandered here would switch the document's language without a word.
    setFocusPolicy(Qt::ClickFocus);
    connect(this, &QComboBox::activated, this, [this](int index) {
        const QVariant tag = itemData(index);
        if (tag.isValid()) emit tagChosen(tag.toInt());
    });
}

void LanguageComboBox::ppSelectItemWithTag(int tag)
{
    setCurrentIndex(findData(tag));
}

int LanguageComboBox::selectedTag() const
{
    return currentIndex() < 0 ? 0 : currentData().toInt();
}
