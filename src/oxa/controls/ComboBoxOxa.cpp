#include "oxa/controls/ComboBoxOxa.h"

#include "oxa/toolkit/Catalogue.h"

#include <QLineEdit>

namespace oxa {

TComboBoxOxa::TComboBoxOxa(QWidget *parent) : Base(parent)
{
    connect(this, &QComboBox::activated, this,
            [this] { HandleExceptions(this, [this] { Change(); }); });
    // The line edit of an editable box is marked modified only by typing,
    // not by a text the program sets.
    connect(this, &QComboBox::editTextChanged, this, [this] {
        if (lineEdit() && lineEdit()->isModified())
            HandleExceptions(this, [this] { Change(); });
    });
}

void TComboBoxOxa::Change()
{
    if (OnChange)
        OnChange(this);
}

void TComboBoxOxa::KeyDown(Word &key, TShiftState shift)
{
    TFocusDirection direction;
    if (FocusDirectionOfKey(key, direction)) {
        // Ctrl+arrow is consumed whether a neighbour is set or not.
        if (shift == TShiftState(ssCtrl)) {
            key = 0;
            if (Foc(direction))
                MoveFocus(direction, Foc(direction), 0);
        }
    } else if (key == VK_SPACE) {
        selectNextOnSpace(key);
    }
    // The toolkit's handler, past the edits' focus-key handling.
    TWinControl<QComboBox>::KeyDown(key, shift);
}

void TComboBoxOxa::selectNextOnSpace(Word &key)
{
    if (isEditable() || count() < 1)
        return;
    setCurrentIndex((currentIndex() + 1) % count());
    Change();
    key = 0;
}

void TComboBoxOxa::DoEnter()
{
    ShowActiveColor();
    Base::DoEnter();
}

void TComboBoxOxa::DoExit()
{
    ShowDefaultColor();
    Base::DoExit();
}

void TComboBoxOxa::Loaded()
{
    Base::Loaded();
    ResetToDefaultColor();
}

void RegisterComboBoxOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TComboBoxOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TComboBoxOxa"), QStringLiteral("ComboBoxOxa"),
        QStringLiteral("oxa/controls/ComboBoxOxa.h"))});
}

} // namespace oxa
