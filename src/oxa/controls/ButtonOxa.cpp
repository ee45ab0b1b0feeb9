#include "oxa/controls/ButtonOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TButtonOxa::TButtonOxa(QWidget *parent) : Base(parent) { }

TButtonOxa::TButtonOxa(const QString &caption, QWidget *parent) : Base(caption, parent) { }

void TButtonOxa::DoEnter()
{
    if (Enabled())
        SetIsFocused(true);
    Base::DoEnter();
}

void TButtonOxa::DoExit()
{
    if (Enabled())
        SetIsFocused(false);
    Base::DoExit();
}

// Enter presses a focused button, as Space does.
void TButtonOxa::KeyDown(Word &Key, TShiftState Shift)
{
    Base::KeyDown(Key, Shift);
    if (Key == VK_RETURN && Shift == TShiftState() && isEnabled()) {
        Key = 0;
        animateClick();
    }
}

void TButtonOxa::SetIsFocused(bool value)
{
    if (value == FIsFocused)
        return;
    FIsFocused = value;
    Q_EMIT isFocusedChanged();
}

void RegisterButtonOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TButtonOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TButtonOxa"), QStringLiteral("ButtonOxa"),
        QStringLiteral("oxa/controls/ButtonOxa.h"))});
}

} // namespace oxa
