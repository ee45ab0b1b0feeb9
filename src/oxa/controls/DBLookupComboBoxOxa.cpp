#include "oxa/controls/DBLookupComboBoxOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TDBLookupComboBoxOxa::TDBLookupComboBoxOxa(QWidget *parent) : Base(parent) { }

TDBLookupComboBoxOxa::~TDBLookupComboBoxOxa() = default;

void TDBLookupComboBoxOxa::DoEnter()
{
    ShowActiveColor();
    Base::DoEnter();
}

void TDBLookupComboBoxOxa::DoExit()
{
    ShowDefaultColor();
    Base::DoExit();
}

void TDBLookupComboBoxOxa::Loaded()
{
    Base::Loaded();
    ResetToDefaultColor();
}

void RegisterDBLookupComboBoxOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TDBLookupComboBoxOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TDBLookupComboBoxOxa"),
        QStringLiteral("DBLookupComboBoxOxa"),
        QStringLiteral("oxa/controls/DBLookupComboBoxOxa.h"))});
}

} // namespace oxa
