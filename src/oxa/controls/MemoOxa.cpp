#include "oxa/controls/MemoOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TMemoOxa::TMemoOxa(QWidget *parent) : Base(parent)
{
    setTabChangesFocus(true);
}

void TMemoOxa::SetWantTabs(bool value)
{
    if (value == WantTabs())
        return;
    setTabChangesFocus(!value);
    Q_EMIT wantTabsChanged();
}

// Tab itself never reaches here while it moves the focus.
void TMemoOxa::KeyDown(Word &Key, TShiftState Shift)
{
    Base::KeyDown(Key, Shift);
    if (Key == VK_TAB && Shift == TShiftState(ssCtrl) && !WantTabs() && !isReadOnly()) {
        insertPlainText(QStringLiteral("\t"));
        Key = 0;
    }
}

void TMemoOxa::DoEnter()
{
    ShowActiveColor();
    Base::DoEnter();
}

void TMemoOxa::DoExit()
{
    ShowDefaultColor();
    Base::DoExit();
}

void TMemoOxa::Loaded()
{
    Base::Loaded();
    ResetToDefaultColor();
}

void RegisterMemoOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TMemoOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TMemoOxa"), QStringLiteral("MemoOxa"),
        QStringLiteral("oxa/controls/MemoOxa.h"))});
}

} // namespace oxa
