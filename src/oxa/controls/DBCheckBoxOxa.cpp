#include "oxa/controls/DBCheckBoxOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TDBCheckBoxOxa::TDBCheckBoxOxa(QWidget *parent) : Base(parent) { }

TDBCheckBoxOxa::~TDBCheckBoxOxa() = default;

void TDBCheckBoxOxa::DoEnter()
{
    ShowActiveColor();
    Base::DoEnter();
}

void TDBCheckBoxOxa::DoExit()
{
    ShowDefaultColor();
    Base::DoExit();
}

void TDBCheckBoxOxa::Loaded()
{
    Base::Loaded();
    ResetToDefaultColor();
}

void RegisterDBCheckBoxOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TDBCheckBoxOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TDBCheckBoxOxa"), QStringLiteral("DBCheckBoxOxa"),
        QStringLiteral("oxa/controls/DBCheckBoxOxa.h"))});
}

} // namespace oxa
