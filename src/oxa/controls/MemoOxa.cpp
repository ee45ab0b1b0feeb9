#include "oxa/controls/MemoOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TMemoOxa::TMemoOxa(QWidget *parent)
    : Base(parent)
{
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
