#include "oxa/grids/DBGridOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

TDBGridOxa::TDBGridOxa(QWidget *parent) : TFocusNavigation<TDBGridOxa, TDBGrid>(parent) { }

TDBGridOxa::~TDBGridOxa() = default;

void RegisterDBGridOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TDBGridOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TDBGridOxa"), QStringLiteral("DBGridOxa"),
        QStringLiteral("oxa/grids/DBGridOxa.h"))});
}

} // namespace oxa
