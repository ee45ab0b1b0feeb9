#pragma once

// What the diary's tests share: times, entries and a grid shown over its own
// store.

#include "oxa/diary/DayListView.h"
#include "oxa/diary/MonthGrid_p.h"
#include "support/TestSupport.h"

#include <QImage>
#include <QTime>
#include <QWidget>

namespace oxa::test {

inline TTime Cas(int h, int n, int s = 0)
{
    return EncodeTime(h, n, s, 0);
}
inline TTime Cas(QTime t)
{
    return EncodeTime(t.hour(), t.minute(), t.second(), 0);
}

// The keys of entries, in their order.
template<class Records>
QList<qint32> Klice(const Records &zaznamy)
{
    QList<qint32> klice;
    for (const TDayRecord &z : zaznamy)
        klice.append(z.ID_DIAR);
    return klice;
}

// The centre of a list's item, in viewport coordinates.
inline QPoint ItemCenter(const TDayListView *list, int index)
{
    return list->visualItemRect(list->topLevelItem(index)).center();
}

// An entry with its key, of no day in particular.
inline TDayRecord Polozka(qint32 id, TTime od = 0, TTime doCasu = 0, const char *popis = "")
{
    TDayRecord z;
    z.ID_DIAR = id;
    z.CasOd = od;
    z.CasDo = doCasu;
    z.Popis = popis;
    return z;
}

// An entry of day den of the store's month, with a key of its own.
inline TDayRecord Zaznam(int den, TTime od, TTime doCasu, const char *popis = "",
                         const char *kontakt = "", const char *parafa = "")
{
    static qint32 id = 0;
    TDayRecord z = Polozka(++id, od, doCasu, popis);
    z.Den = qint16(den);
    z.KONTAKT = QString::fromUtf8(kontakt);
    z.Parafa = parafa;
    return z;
}

// A month or day grid of 15-minute slots over a store, in a window that
// leaves room around it.
template<class TGrid>
struct GridWindow
{
    QWidget window;
    TGrid *grid;
    TMonthArray zaznamy{0, 0};

    GridWindow(TDate datum, QSize size)
    {
        grid = new TGrid(&window, 15);
        grid->setGeometry(QRect(QPoint(0, 0), size));
        window.resize(size + QSize(20, 20));
        grid->SetZaznamy(&zaznamy);
        grid->SetDatum(datum);
    }
    void add(const TDayRecord &z) { zaznamy.AddDayRecord(z, zaznamy.SlotOfDay(z.Den)); }
    void settings(const TDiarNastaveni &n)
    {
        grid->SetDiarNastaveni(n);
        grid->Init();
    }
    bool show()
    {
        if (!ShowAndActivate(&window))
            return false;
        grid->setFocus();
        return grid->hasFocus();
    }
    const TMonthGridCell &cell(int row, int col) const { return grid->DataPaint(row, col); }
    QPoint centre(int col, int row = 1) const { return grid->CellRect(col, row).center(); }
    // A pixel of the cell away from its lines and its diagonal.
    QColor pixel(int col, int row = 1, QPoint offset = {6, 3}) const
    {
        const QImage image = grid->viewport()->grab().toImage();
        return image.pixelColor(grid->CellRect(col, row).topLeft() + offset);
    }
};

} // namespace oxa::test
