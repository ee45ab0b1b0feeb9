#pragma once

#include "oxa/oxa_export.h"

#include "oxa/diary/DiarShared.h"
#include "oxa/toolkit/Grid.h"

#include <QColor>
#include <QString>

#include <memory>

class QLabel;
class QTimer;

namespace oxa {

// The name of the public holiday on a date: the fixed table first, then
// "Velikonoce" (Easter Monday) and "Velký pátek" (Good Friday); empty on
// other days. The month grid marks these days; hosts mark them elsewhere
// (a month calendar, say) by the same rule.
OXA_EXPORT QString NazevSvatku(TDate aDatum);

// The colour of an appointment in the month grid, by its privacy.
inline constexpr TFixedArray<TColor, false, true> BarvaSchuzkyMonth{{0x0000FF, 0xE0C545}};
// Colours of configured surgery-hours records.
inline constexpr TFixedArray<TColor, false, true> BarvaKonfigZaznamu{{0x79FFF1, 0x79FFBE}};

struct TMonthGridCell;
struct TMonthGridStyle;
class TMonthGridPrivate;
class TDayGridPrivate;

// One calendar month as a grid: a row per day (row r is day r), a column per
// time slot (column c covers (c - 1) / dilkyHodinyDen to c / dilkyHodinyDen
// of the day). Each cell is coloured by what lies in its slot: an entry, a
// public holiday, leave, working or booking hours, a weekend. The grid reads
// the entries from a TMonthArray it does not own and a copy of the diary
// settings; Init (InitVykreslovani) prepares the cells after any of them, or
// the month, changed. After the mouse rests on a cell for 250 ms its hint
// shows for 4 s.
class OXA_EXPORT TMonthGrid : public TDrawGrid
{
    Q_OBJECT
    Q_PROPERTY(double Datum READ Datum WRITE SetDatum NOTIFY datumChanged)
    Q_PROPERTY(int CasOd READ CasOd WRITE SetCasOd NOTIFY casOdChanged)
    Q_PROPERTY(oxa::TMonthArray *Zaznamy READ Zaznamy WRITE SetZaznamy NOTIFY zaznamyChanged)
    Q_PROPERTY(int dilkyHodiny READ dilkyHodiny CONSTANT)
    Q_PROPERTY(int dilkyHodinyDen READ dilkyHodinyDen CONSTANT)

public:
    // aDilekMinut: minutes per slot, 1 to 60 (EInvalidOperation otherwise);
    // 5, 10, 15 and 20 have tuned column widths.
    explicit TMonthGrid(QWidget *AOwner = nullptr, int aDilekMinut = 15);
    ~TMonthGrid() override;

    // Any day of the month shown. A new date resizes the grid to the month
    // and makes the date's day the current row; call Init afterwards.
    TDate Datum() const;
    virtual void SetDatum(TDate Value);
    // The hour the grid scrolls to horizontally.
    int CasOd() const;
    void SetCasOd(int Value);
    // The entries shown; not owned. Null shows none.
    TMonthArray *Zaznamy() const;
    void SetZaznamy(TMonthArray *Value);

    int dilkyMinuta() const;
    int dilkyHodiny() const;
    int dilkyHodinyDen() const;

    const TDiarNastaveni &DiarNastaveni() const;
    void SetDiarNastaveni(const TDiarNastaveni &aDiarNastaveni);

    // Rebuilds the cells of every day.
    void Init() { InitVykreslovani(-1); }
    // Rebuilds the cells of day aDen, or of every day when aDen is negative.
    void InitVykreslovani(int aDen);
    // The prepared cell (MonthGrid_p.h); EInvalidGridOperation outside the
    // grid's cells.
    const TMonthGridCell &DataPaint(int ARow, int ACol) const;

    // Whether an entry of day ARow meets the slot of column ACol; then Color
    // is its month colour and Splneno its completion (the first such entry).
    bool ExistujeZaznam(int ARow, int ACol, TColor &Color, int &Splneno) const;
    // Whether leave or the working hours cover the cell, with their colour.
    // Without any leave record configured the answer is always false.
    bool ExistujeKonfigZaznam(int ARow, int ACol, TColor &Color) const;

    // Repaints the cells of the current row between the two times.
    void PrekresliUdaj(TTime CasOd, TTime CasDo);
    void prekresliGrid() { InvalidateGrid(); }

    // The time span of the selected slots, cut to minutes; a span ending at
    // midnight ends at 23:59.
    TTime GetSelCellStartTime() const;
    TTime GetSelCellEndTime() const;
    // Selects the columns startCol to stopCol of the current row.
    void setSelectedCell(int startCol, int stopCol);
    // Whether the mouse is still over the cell remembered by the last move.
    bool IsMouseOk() const;
    // Makes the slot of the time (seconds cut off) current on the current day.
    void AktivujCas(TTime aCas);

    // The slot of column ACol as the entries are tested against it.
    TTime SlotStartTime(int ACol) const;
    TTime SlotEndTime(int ACol) const;
    // The column of the slot that contains the time of day.
    int SlotColumn(TTime aCas) const;
    // The date shown in a data row.
    virtual TDate DatumRadku(int ARow) const;
    // The date of the row last clicked with the mouse (0 before any click).
    TDate MouseDownDatum() const;

    // The hint window and what it shows.
    bool HintActive() const;
    QString HintText() const;
    QLabel *HintWindow() const;
    void HideHint();

Q_SIGNALS:
    void datumChanged(double Datum);
    void casOdChanged(int CasOd);
    void zaznamyChanged(oxa::TMonthArray *Zaznamy);

protected:
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void MouseMove(TShiftState Shift, int X, int Y) override;
    void MouseLeave() override;
    // The date follows the row the user picks before OnSelectCell is asked,
    // so that a handler setting the same date changes nothing.
    bool SelectCell(int ACol, int ARow) override;
    void SelectionMoved(const TGridRect &OldSel, TGridCoord OldCurrent) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;

    // The row of the cell records that a grid row shows.
    virtual int DataRowOf(int ARow) const { return ARow; }

    // Stores the date without any other change.
    void StoreDatum(TDate Value);
    int MouseRow() const;
    int MouseCol() const;

    // Painting in the month grid's style, shared with the day grid.
    const TMonthGridStyle &Style() const;
    QColor SettingsColor(TColor Color) const;
    void FillCell(const QRect &Rect, const QColor &Background);
    void DrawCellTexts(int ACol, int ARow, const QRect &Rect, TDate aDen);
    void DrawDataLines(int ACol, const QRect &Rect, bool Splneno);
    void DrawEdges(int ACol, int ARow, const QRect &Rect);

private:
    friend class TMonthGridPrivate;
    void OnHintTimer();
    void ShowHint();
    QColor CellBackground(int ACol, int ARow) const;

    std::unique_ptr<TMonthGridPrivate> const d;
};

// One day of the month grid as a strip of time slots, where the user picks a
// time span (a new appointment's start and end). Its cells are coloured at
// drawing time from the entries and the settings; public holidays are not
// shown. The hint comes from the month's prepared cells of the day.
class OXA_EXPORT TDayGrid : public TMonthGrid
{
    Q_OBJECT

public:
    explicit TDayGrid(QWidget *AOwner = nullptr, int aDilekMinut = 15);
    ~TDayGrid() override;

    // Stores the date and repaints; the cell records are not rebuilt.
    void SetDatum(TDate Value) override;
    TDate DatumRadku(int ARow) const override;

    // Zero-based number of the first selected slot, and the last selected column.
    int GetSelectionStartCell() const;
    int GetSelectionEndCell() const;
    TTime GetSelectionStartTime() const;
    // A span ending at midnight ends at 23:59.
    TTime GetSelectionEndTime() const;
    // The columns of a span to select: the start from the slots per day, the
    // end from the slots per hour, both rounded half to even.
    void setSelectionStartTime(TTime startTime, TTime stopTime);
    int SelColFrom() const;
    int SelColTo() const;

protected:
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    int DataRowOf(int ARow) const override;

private:
    std::unique_ptr<TDayGridPrivate> const d;
};

} // namespace oxa
