#include "oxa/controls/StringGridOxa.h"

#include "oxa/toolkit/Catalogue.h"

#include <QApplication>

namespace oxa {

TStringGridOxa::TStringGridOxa(QWidget *parent)
    : TFocusNavigation<TStringGridOxa, TStringGrid>(parent)
{ }

void TStringGridOxa::SetCantSelectColor(TColor Value)
{
    if (Value == FCantSelectColor)
        return;
    FCantSelectColor = Value;
    InvalidateGrid();
    Q_EMIT cantSelectColorChanged();
}

void TStringGridOxa::SetActiveColor(TColor Value)
{
    if (Value == FActiveColor)
        return;
    FActiveColor = Value;
    InvalidateGrid();
    Q_EMIT activeColorChanged();
}

void TStringGridOxa::SetDefaultColor(TColor Value)
{
    if (Value == FDefaultColor)
        return;
    FDefaultColor = Value;
    InvalidateGrid();
    Q_EMIT defaultColorChanged();
}

void TStringGridOxa::SetDeactiveTextColor(TColor Value)
{
    if (Value == FDeactiveTextColor)
        return;
    FDeactiveTextColor = Value;
    InvalidateGrid();
    Q_EMIT deactiveTextColorChanged();
}

void TStringGridOxa::SetDeactiveColor(TColor Value)
{
    if (Value == FDeactiveColor)
        return;
    FDeactiveColor = Value;
    InvalidateGrid();
    Q_EMIT deactiveColorChanged();
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
