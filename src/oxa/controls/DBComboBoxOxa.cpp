#include "oxa/controls/DBComboBoxOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TDBComboBoxOxa::TDBComboBoxOxa(QWidget *parent) : Base(parent) { }

TDBComboBoxOxa::~TDBComboBoxOxa() = default;

void TDBComboBoxOxa::DoEnter()
{
    ShowActiveColor();
    Base::DoEnter();
}

void TDBComboBoxOxa::DoExit()
{
    ShowDefaultColor();
    Base::DoExit();
}

void TDBComboBoxOxa::Loaded()
{
    Base::Loaded();
    ResetToDefaultColor();
}

void RegisterDBComboBoxOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TDBComboBoxOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TDBComboBoxOxa"), QStringLiteral("DBComboBoxOxa"),
        QStringLiteral("oxa/controls/DBComboBoxOxa.h"))});
}

} // namespace oxa
