#pragma once

// Internals of the month and day grids: not part of the installed API.

#include "oxa/diary/DiarShared_p.h"
#include "oxa/diary/MonthGrid.h"

#include <QColor>
#include <QPen>
#include <QString>

#include <array>
#include <vector>

class QLabel;
class QTimer;

namespace oxa {

// A public holiday on a fixed date.
struct TSvatek
{
    int Den;
    int Mesic;
    const char *Text; // UTF-8
};

// The public holidays on fixed dates, with the texts shown in the cell hints.
extern const std::array<TSvatek, 11> Svatky;

// Easter Monday of the year by the Gauss rule with the constants of the
// Gregorian years 1900 to 2099, used for every year.
TDate VelikonocniPondeli(int aRok);
// The name of the public holiday on a date: the fixed table first, then
// "Velikonoce" (Easter Monday) and "Velký pátek" (Good Friday); empty on
// other days.
QString NazevSvatku(TDate aDatum);

// What one cell of the month grid shows, prepared by InitVykreslovani.
struct TMonthGridCell
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

// The month grid's pens and colours, taken from the palette before each paint.
struct TMonthGridStyle
{
    QColor white, highlight, silver, black, rowOutline;
    QPen dotted;
    int hourTextWidth = 0;
};

class TMonthGridPrivate
{
public:
    // One header row and up to 31 days.
    static constexpr int kRowCount = 32;

    TMonthGridPrivate(TMonthGrid *q, int aDilekMinut);

    // Column widths, row heights and the font at the geometry scale.
    void ApplyGeometryScale();

    TMonthGridCell &Cell(int ARow, int ACol)
    {
        return fDataPaint[std::size_t(ARow * fCellCols + ACol)];
    }
    const TMonthGridCell &Cell(int ARow, int ACol) const
    {
        return fDataPaint[std::size_t(ARow * fCellCols + ACol)];
    }
    bool HasCell(int ARow, int ACol) const
    {
        return ARow >= 0 && ARow < kRowCount && ACol >= 0 && ACol < fCellCols;
    }
    void ClearRow(int ARow, const QString &aSvatek, bool aVikend);
    void MarkEntries(int ARow);
    void MarkHours(int ARow, const TPracDobaCas &aCas, TColor aBarva);
    void MarkLeave(const TDovolena &aDovolena, int aFirst, int aLast);
    // The whole slots that fit before a configured time.
    int SlotsBefore(TTime aCas) const;
    // A slot boundary cut to whole minutes; as an end, midnight is 23:59.
    TTime CutSlotTime(double aSlot) const;

    // A slot met by an entry of the day being prepared.
    struct THit
    {
        int col;
        int line;
        const TDayRecord *zaznam;
    };
    void SortHitsByColumn();
    static QString JoinTrimmed(const std::vector<QString> &lines,
                               std::vector<THit>::const_iterator from,
                               std::vector<THit>::const_iterator to);

    TMonthGrid *const q;
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
    TMonthGridStyle FStyle;
};

class TDayGridPrivate
{
public:
    int FSelColFrom = 49;
    int FSelColTo = 49;
};

} // namespace oxa
