#include "oxa/grids/CheckDBGridOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TCheckDBGridOxa::TCheckDBGridOxa(QWidget *parent)
    : TFocusNavigation<TCheckDBGridOxa, TCheckDBGrid>(parent)
{ }

TCheckDBGridOxa::~TCheckDBGridOxa() = default;

void RegisterCheckDBGridOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TCheckDBGridOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TCheckDBGridOxa"), QStringLiteral("CheckDBGridOxa"),
        QStringLiteral("oxa/grids/CheckDBGridOxa.h"))});
}

} // namespace oxa
