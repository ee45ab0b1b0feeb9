#pragma once

// What the diary's tests share: times, entries and a grid shown over its own
// store.

#include "oxa/diary/DayListView.h"
#include "oxa/diary/MonthGrid_p.h"

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

// The centre of a list's item, in viewport coordinates.
inline QPoint ItemCenter(const TDayListView *list, int index)
{
    return list->visualItemRect(list->topLevelItem(index)).center();
}

// An entry of day den of the store's month, with a key of its own.
inline TDayRecord Zaznam(int den, TTime od, TTime doCasu, const char *popis = "",
                         const char *kontakt = "", const char *parafa = "")
{
    static qint32 id = 0;
    TDayRecord z;
    z.ID_DIAR = ++id;
    z.Den = qint16(den);
    z.CasOd = od;
    z.CasDo = doCasu;
    z.Popis = popis;
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
    QPoint centre(int col, int row = 1) const { return grid->CellRect(col, row).center(); }
    // A pixel of the cell away from its lines and its diagonal.
    QColor pixel(int col, int row = 1, QPoint offset = {6, 3}) const
    {
        const QImage image = grid->viewport()->grab().toImage();
        return image.pixelColor(grid->CellRect(col, row).topLeft() + offset);
    }
};

} // namespace oxa::test
