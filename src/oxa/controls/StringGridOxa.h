#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Color.h"
#include "oxa/toolkit/FocusNavigation.h"
#include "oxa/toolkit/StringGrid.h"

#include <functional>

namespace oxa {

// The string grid of the data-entry family: Ctrl+arrow moves the focus to
// the neighbours FocUp/FocDown/FocLeft/FocRight, plain arrows move between
// cells, and cells are coloured by state:
//   selected, grid focused    ActiveColor
//   selected, grid unfocused  DeactiveColor, text in DeactiveTextColor
//   fixed                     FixedColor
//   other                     DefaultColor, or CantSelectColor where
//                             CanSelectCell refuses the cell
// BeforeDrawCell runs for every cell after these colours are set on the
// canvas and before the cell is drawn.
class OXA_EXPORT TStringGridOxa : public TFocusNavigation<TStringGridOxa, TStringGrid>
{
    Q_OBJECT
    Q_PROPERTY(uint CantSelectColor READ CantSelectColor WRITE SetCantSelectColor NOTIFY
                   cantSelectColorChanged)
    Q_PROPERTY(uint ActiveColor READ ActiveColor WRITE SetActiveColor NOTIFY activeColorChanged)
    Q_PROPERTY(uint DefaultColor READ DefaultColor WRITE SetDefaultColor NOTIFY defaultColorChanged)
    Q_PROPERTY(uint DeactiveTextColor READ DeactiveTextColor WRITE SetDeactiveTextColor NOTIFY
                   deactiveTextColorChanged)
    Q_PROPERTY(
        uint DeactiveColor READ DeactiveColor WRITE SetDeactiveColor NOTIFY deactiveColorChanged)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)

public:
    using TCanSelectCellEvent = std::function<void(int ACol, int ARow, bool &CanSelect)>;

    explicit TStringGridOxa(QWidget *parent = nullptr);

    TColor CantSelectColor() const { return FCantSelectColor; }
    void SetCantSelectColor(TColor Value);
    TColor ActiveColor() const { return FActiveColor; }
    void SetActiveColor(TColor Value);
    TColor DefaultColor() const { return FDefaultColor; }
    void SetDefaultColor(TColor Value);
    TColor DeactiveTextColor() const { return FDeactiveTextColor; }
    void SetDeactiveTextColor(TColor Value);
    TColor DeactiveColor() const { return FDeactiveColor; }
    void SetDeactiveColor(TColor Value);

    // Asked whether a cell may be selected: by SelectCell, and by the
    // drawing of every unselected cell (refused cells get CantSelectColor).
    TCanSelectCellEvent CanSelectCell;
    TDrawCellEvent BeforeDrawCell;

Q_SIGNALS:
    void cantSelectColorChanged();
    void activeColorChanged();
    void defaultColorChanged();
    void deactiveTextColorChanged();
    void deactiveColorChanged();
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();

protected:
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override;
    // true, then CanSelectCell, then OnSelectCell may change the answer.
    bool SelectCell(int ACol, int ARow) override;

private:
    QColor Resolve(TColor color) const;

    TColor FCantSelectColor = clInactiveBorder;
    TColor FActiveColor = clYellow;
    TColor FDefaultColor = clWindow;
    TColor FDeactiveTextColor = clWindowText;
    TColor FDeactiveColor = 0x00B9FFFF;
};

// Adds TStringGridOxa to the catalogue, page "Oxa".
OXA_EXPORT void RegisterStringGridOxa();

} // namespace oxa
