#include "oxa/grids/CheckTreeViewOxa.h"

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

// Nothing of its own yet; the place for it keeps the class's layout stable.
class TCheckTreeViewOxa::Private
{ };

TCheckTreeViewOxa::TCheckTreeViewOxa(QWidget *parent)
    : TFocusNavigation<TCheckTreeViewOxa, TCheckTreeView>(parent), d(std::make_unique<Private>())
{ }

TCheckTreeViewOxa::~TCheckTreeViewOxa() = default;

void RegisterCheckTreeViewOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TCheckTreeViewOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TCheckTreeViewOxa"),
        QStringLiteral("CheckTreeViewOxa"), QStringLiteral("oxa/grids/CheckTreeViewOxa.h"))});
}

} // namespace oxa
