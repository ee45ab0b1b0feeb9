#include "oxa/controls/StringGridOxa.h"

#include "oxa/toolkit/Catalogue.h"

#include <QApplication>

namespace oxa {

TStringGridOxa::TStringGridOxa(QWidget *parent)
    : TFocusNavigation<TStringGridOxa, TStringGrid>(parent)
{
}

void TStringGridOxa::SetCantSelectColor(TColor Value)
{
    FCantSelectColor = Value;
    InvalidateGrid();
}

void TStringGridOxa::SetActiveColor(TColor Value)
{
    FActiveColor = Value;
    InvalidateGrid();
}

void TStringGridOxa::SetDefaultColor(TColor Value)
{
    FDefaultColor = Value;
    InvalidateGrid();
}

void TStringGridOxa::SetDeactiveTextColor(TColor Value)
{
    FDeactiveTextColor = Value;
    InvalidateGrid();
}

void TStringGridOxa::SetDeactiveColor(TColor Value)
{
    FDeactiveColor = Value;
    InvalidateGrid();
}

QColor TStringGridOxa::Resolve(TColor color) const
{
    return ColorToQColor(color, QApplication::palette(this));
}

void TStringGridOxa::DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State)
{
    if (State.testFlag(gdSelected)) {
        if (Entered())
            SetCanvasColors(Resolve(FActiveColor), TextColor());
        else
            SetCanvasColors(Resolve(FDeactiveColor), Resolve(FDeactiveTextColor));
    } else if (State.testFlag(gdFixed)) {
        SetCanvasColors(FixedBackgroundColor(), TextColor());
    } else {
        bool canSelect = true;
        if (CanSelectCell)
            CanSelectCell(ACol, ARow, canSelect);
        SetCanvasColors(Resolve(canSelect ? FDefaultColor : FCantSelectColor), TextColor());
    }
    if (BeforeDrawCell)
        BeforeDrawCell(this, ACol, ARow, Rect, State);
    TStringGrid::DrawCell(ACol, ARow, Rect, State);
}

bool TStringGridOxa::SelectCell(int ACol, int ARow)
{
    bool canSelect = true;
    if (CanSelectCell)
        CanSelectCell(ACol, ARow, canSelect);
    if (OnSelectCell)
        OnSelectCell(this, ACol, ARow, canSelect);
    return canSelect;
}

void RegisterStringGridOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TStringGridOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TStringGridOxa"), QStringLiteral("StringGridOxa"),
        QStringLiteral("oxa/controls/StringGridOxa.h"))});
}

} // namespace oxa
