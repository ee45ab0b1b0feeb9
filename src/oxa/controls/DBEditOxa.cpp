#include "oxa/controls/DBEditOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TDBEditOxa::TDBEditOxa(QWidget *parent) : Base(parent) { }

TDBEditOxa::~TDBEditOxa() = default;

void TDBEditOxa::DoEnter()
{
    ShowActiveColor();
    Base::DoEnter();
}

void TDBEditOxa::DoExit()
{
    ShowDefaultColor();
    Base::DoExit();
}

void TDBEditOxa::Loaded()
{
    Base::Loaded();
    ResetToDefaultColor();
}

void RegisterDBEditOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TDBEditOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TDBEditOxa"), QStringLiteral("DBEditOxa"),
        QStringLiteral("oxa/controls/DBEditOxa.h"))});
}

} // namespace oxa
