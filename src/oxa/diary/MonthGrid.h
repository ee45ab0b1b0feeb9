#pragma once

#include "oxa/oxa_export.h"

#include "oxa/diary/DiarShared.h"
#include "oxa/toolkit/Grid.h"

#include <QColor>
#include <QPen>
#include <QString>

#include <array>
#include <vector>

class QLabel;
class QTimer;

namespace oxa {

// The colour of an appointment in the month grid, by its privacy.
inline constexpr TFixedArray<TColor, false, true> BarvaSchuzkyMonth{{0x0000FF, 0xE0C545}};
// Colours of configured surgery-hours records.
inline constexpr TFixedArray<TColor, false, true> BarvaKonfigZaznamu{{0x79FFF1, 0x79FFBE}};

// A public holiday on a fixed date.
struct OXA_EXPORT TSvatek
{
    int Den;
    int Mesic;
    const char *Text; // UTF-8
};

// The public holidays on fixed dates, with the texts shown in the cell hints.
OXA_EXPORT extern const std::array<TSvatek, 11> Svatky;

// Easter Monday of the year by the Gauss rule with the constants of the
// Gregorian years 1900 to 2099, used for every year.
OXA_EXPORT TDate VelikonocniPondeli(int aRok);
// The name of the public holiday on a date: the fixed table first, then
// "Velikonoce" (Easter Monday) and "Velký pátek" (Good Friday); empty on
// other days.
OXA_EXPORT QString NazevSvatku(TDate aDatum);

// What one cell of the month grid shows, prepared by InitVykreslovani.
struct OXA_EXPORT TMonthGridCell
{
    bool dovolena = false; // leave covers the slot
    bool svatek = false;   // the day is a public holiday
    bool pracDoba = false; // working or booking hours cover the slot
    bool zaznam = false;   // at least one entry meets the slot
    qint32 splneno = 0;    // completion of the first entry found
    bool soukrom = false;  // that entry is private
    TColor barva = 0;      // colour of the leave or of the hours
    QString hint;          // text of the cell's hint
    bool vikend = false;   // Saturday or Sunday
};

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
    Q_PROPERTY(double Datum READ Datum WRITE SetDatum)
    Q_PROPERTY(int CasOd READ CasOd WRITE SetCasOd)
    Q_PROPERTY(oxa::TMonthArray *Zaznamy READ Zaznamy WRITE SetZaznamy)
    Q_PROPERTY(int dilkyHodiny READ dilkyHodiny)
    Q_PROPERTY(int dilkyHodinyDen READ dilkyHodinyDen)

public:
    // aDilekMinut: minutes per slot, 1 to 60 (EInvalidOperation otherwise);
    // 5, 10, 15 and 20 have tuned column widths.
    explicit TMonthGrid(QWidget *AOwner = nullptr, int aDilekMinut = 15);
    ~TMonthGrid() override;

    // Any day of the month shown. A new date resizes the grid to the month
    // and makes the date's day the current row; call Init afterwards.
    TDate Datum() const { return FDatum; }
    virtual void SetDatum(TDate Value);
    // The hour the grid scrolls to horizontally.
    int CasOd() const { return FCasOd; }
    void SetCasOd(int Value);
    // The entries shown; not owned. Null shows none.
    TMonthArray *Zaznamy() const { return FZaznamy; }
    void SetZaznamy(TMonthArray *Value) { FZaznamy = Value; }

    int dilkyMinuta() const { return fDILKY_MINUTA; }
    int dilkyHodiny() const { return fDILKY_HODINY; }
    int dilkyHodinyDen() const { return fDILKY_HODINY_DEN; }

    const TDiarNastaveni &DiarNastaveni() const { return fDiarNastaveni; }
    void SetDiarNastaveni(const TDiarNastaveni &aDiarNastaveni);

    // Rebuilds the cells of every day.
    void Init() { InitVykreslovani(-1); }
    // Rebuilds the cells of day aDen, or of every day when aDen is negative.
    void InitVykreslovani(int aDen);
    // The prepared cell; EInvalidGridOperation outside the grid's cells.
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
    TTime SlotStartTime(int ACol) const { return double(ACol - 1) / fDILKY_HODINY_DEN; }
    TTime SlotEndTime(int ACol) const { return double(ACol) / fDILKY_HODINY_DEN; }
    // The column of the slot that contains the time of day.
    int SlotColumn(TTime aCas) const;
    // The date shown in a data row.
    virtual TDate DatumRadku(int ARow) const;
    // The date of the row last clicked with the mouse (0 before any click).
    TDate MouseDownDatum() const { return FMouseDownDatum; }

    // The hint window and what it shows.
    bool HintActive() const { return FHintActive; }
    QString HintText() const;
    QLabel *HintWindow() const { return FHintWindow; }
    void HideHint();

protected:
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void MouseMove(TShiftState Shift, int X, int Y) override;
    void MouseLeave() override;
    void SelectionMoved(const TGridRect &OldSel, TGridCoord OldCurrent) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;

    // The row of the cell records that a grid row shows.
    virtual int DataRowOf(int ARow) const { return ARow; }

    // Stores the date without any other change.
    void StoreDatum(TDate Value) { FDatum = Value; }
    int MouseRow() const { return FMouseRow; }
    int MouseCol() const { return FMouseCol; }

    // Painting in the month grid's style, shared with the day grid.
    struct PaintStyle
    {
        QColor white, highlight, silver, black, rowOutline;
        QPen dotted;
        int hourTextWidth = 0;
    };
    const PaintStyle &Style() const { return FStyle; }
    QColor SettingsColor(TColor Color) const;
    void FillCell(const QRect &Rect, const QColor &Background);
    void DrawCellTexts(int ACol, int ARow, const QRect &Rect, TDate aDen);
    void DrawDataLines(int ACol, const QRect &Rect, bool Splneno);
    void DrawEdges(int ACol, int ARow, const QRect &Rect);

private:
    void OnHintTimer();
    void ShowHint();
    TMonthGridCell &Cell(int ARow, int ACol)
    {
        return fDataPaint[std::size_t(ARow * fCellCols + ACol)];
    }
    void ClearRow(int ARow, const QString &aSvatek, bool aVikend);
    // A slot met by an entry of the day being prepared.
    struct THit
    {
        int col;
        int line;
        const TDayRecord *zaznam;
    };
    void MarkEntries(int ARow);
    void SortHitsByColumn();
    static QString JoinTrimmed(const std::vector<QString> &lines,
                               std::vector<THit>::const_iterator from,
                               std::vector<THit>::const_iterator to);
    void MarkHours(int ARow, const TPracDobaCas &aCas, TColor aBarva);
    void MarkLeave(const TDovolena &aDovolena, int aFirst, int aLast);
    TTime CutSlotTime(double aSlot) const;
    int SlotsBefore(TTime aCas) const;
    QColor CellBackground(int ACol, int ARow) const;

    int fDILKY_MINUTA = 15;
    int fDILKY_HODINY = 4;
    int fDILKY_HODINY_DEN = 96;
    TDate FDatum = 0;
    int FCasOd = 0;
    TMonthArray *FZaznamy = nullptr;
    TDiarNastaveni fDiarNastaveni;
    int FMouseX = 0;
    int FMouseY = 0;
    int FMouseCol = -1;
    QTimer *FHintTimer = nullptr;
    QLabel *FHintWindow = nullptr;
    bool FHintActive = false;
    QString FHintText;
    // The cell records, [row][column] row by row: 32 rows of ColCount cells.
    std::vector<TMonthGridCell> fDataPaint;
    int fCellCols = 0;
    int FMouseRow = -1;
    TDate FMouseDownDatum = 0;
    // Buffers of MarkEntries, kept to spare allocations per day.
    std::vector<THit> fHits;
    std::vector<THit> fSortedHits;
    std::vector<int> fColumnStarts;
    PaintStyle FStyle;
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

    // Stores the date and repaints; the cell records are not rebuilt.
    void SetDatum(TDate Value) override;
    TDate DatumRadku(int ARow) const override;

    void setSelection(int left, int top, int right, int bottom);
    // Zero-based number of the first selected slot, and the last selected column.
    int GetSelectionStartCell() const;
    int GetSelectionEndCell() const;
    TTime GetSelectionStartTime() const;
    // A span ending at midnight ends at 23:59.
    TTime GetSelectionEndTime() const;
    // The columns of a span to select: the start from the slots per day, the
    // end from the slots per hour, both rounded half to even.
    void setSelectionStartTime(TTime startTime, TTime stopTime);
    int SelColFrom() const { return FSelColFrom; }
    int SelColTo() const { return FSelColTo; }

protected:
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    int DataRowOf(int ARow) const override;

private:
    int FSelColFrom = 49;
    int FSelColTo = 49;
};

} // namespace oxa
