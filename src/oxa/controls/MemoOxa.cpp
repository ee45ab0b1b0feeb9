#include "oxa/controls/MemoOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TMemoOxa::TMemoOxa(QWidget *parent)
    : Base(parent)
{
    SetColor(FDefaultColor);
}

void TMemoOxa::DoEnter()
{
    FIsFocused = true;
    SetColor(FActiveColor);
    Base::DoEnter();
}

void TMemoOxa::DoExit()
{
    FIsFocused = false;
    SetColor(FDefaultColor);
    Base::DoExit();
}

void TMemoOxa::Loaded()
{
    Base::Loaded();
    SetColor(FDefaultColor);
}

void RegisterMemoOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TMemoOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TMemoOxa"), QStringLiteral("MemoOxa"),
        QStringLiteral("oxa/controls/MemoOxa.h"))});
}

} // namespace oxa
