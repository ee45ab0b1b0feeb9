// The diary panel moving from one busy month to another: GotoDate empties
// the store, the host reloads the new month's entries in one bulk load (as
// it does on monthYearChanged) and the boxes, or the month grid, show them.
#include "oxa/diary/DiarPanel.h"
#include "oxa/diary/MonthGrid.h"

#include <QApplication>
#include <QImage>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

using namespace oxa;

namespace {

// About fifteen appointments on every working day of a month, some private,
// some completed, and a few overlapping ones.
std::vector<TDayRecord> BusyMonth(int year, int month, qint32 &nextId)
{
    std::vector<TDayRecord> zaznamy;
    const TDate first = EncodeDate(year, month, 1);
    // The seven days on either side belong to the panel's range too.
    for (TDate datum = first - 7; datum < first + DaysInAMonth(year, month) + 7; datum += 1) {
        if (DayOfTheWeek(datum) >= 6)
            continue;
        int y = 0, m = 0, d = 0;
        DecodeDate(datum, y, m, d);
        for (int i = 0; i < 15; ++i) {
            TDayRecord z;
            z.ID_DIAR = nextId++;
            z.Den = qint16(d);
            z.RokMesic = DateToMesicRok(datum);
            const int start = 7 * 60 + i * 35;
            z.CasOd = EncodeTime(start / 60, start % 60, 0);
            z.CasDo = EncodeTime((start + 45) / 60, (start + 45) % 60, 0);
            z.Popis = "Kontrola";
            z.KONTAKT = QStringLiteral("Novák Jan");
            z.PODROBNOSTI = QStringLiteral("přinést výsledky");
            z.Soukrome = i % 7 == 0;
            z.SPLNENO = i % 3 == 0 ? 100 : 0;
            z.TABULKA_REFERENCE = zkPacient;
            zaznamy.push_back(z);
        }
    }
    return zaznamy;
}

TDiarNastaveni Nastaveni()
{
    TDiarNastaveni n;
    n.barvaSvatek = 0x9999FF;
    n.barvaSoNe = 0xE0E0E0;
    n.barvaPracDoba = 0xD8F5D8;
    n.barvaDovol = 0x80D0FF;
    n.barvaObjednaniKLekari = 0xFFE0C0;
    n.minutDilek = 15;
    for (int den = 1; den <= 5; ++den) {
        n.pracDobaLichy[den] = {EncodeTime(7, 0, 0), EncodeTime(11, 30, 0), EncodeTime(12, 30, 0),
                                EncodeTime(17, 0, 0)};
        n.pracDobaSudy[den] = {EncodeTime(7, 0, 0), EncodeTime(12, 0, 0), EncodeTime(13, 0, 0),
                               EncodeTime(18, 0, 0)};
        n.objednaniKLekari[den].append({EncodeTime(13, 0, 0), EncodeTime(15, 0, 0), 0, 0});
    }
    n.dovolena.append({EncodeTime(12, 0, 0), EncodeTime(23, 59, 0), EncodeDate(2026, 11, 13),
                       EncodeDate(2026, 11, 13), false, 0, "Seminář"});
    return n;
}

// A shown panel whose host loads the months on demand.
struct Host
{
    TDiarPanel panel;
    std::vector<TDayRecord> zaznamy;
    int loaded = 0;

    explicit Host(TDiarSize size)
    {
        qint32 id = 1;
        for (const auto &[year, month] : {std::pair{2026, 11}, std::pair{2027, 1}}) {
            const std::vector<TDayRecord> month_ = BusyMonth(year, month, id);
            zaznamy.insert(zaznamy.end(), month_.begin(), month_.end());
        }
        panel.resize(1400, 800);
        panel.SetDiarNastaveni(Nastaveni());
        panel.SetDiarSize(size);
        QObject::connect(&panel, &TDiarPanel::monthYearChanged, [this] { Load(); });
        panel.show();
        QApplication::processEvents();
    }

    void Load()
    {
        const TDate from = panel.DataDateMin(), to = panel.DataDateMax();
        panel.AddDayRecord_BeginUpdate();
        loaded = 0;
        for (const TDayRecord &z : zaznamy) {
            const TDate datum = SpocitejDatum(z.Den, z.RokMesic);
            if (datum >= from && datum <= to) {
                panel.AddDayRecord(z);
                ++loaded;
            }
        }
        panel.AddDayRecord_EndUpdate();
    }
};

// Arguments: the view, and what follows the switch: nothing (0), painting
// the whole panel into an image as its window's backing store would (1), or
// a synchronous repaint through the offscreen platform, whose flush copies
// the window to its screen image on top (2).
void BM_GotoDate(benchmark::State &state)
{
    Host host(TDiarSize(state.range(0)));
    const int paint = int(state.range(1));
    QImage frame(host.panel.size(), QImage::Format_ARGB32_Premultiplied);
    const TDate dates[] = {EncodeDate(2026, 11, 18), EncodeDate(2027, 1, 20)};
    host.panel.GotoDate(dates[1]);
    int turn = 0;
    for (auto _ : state) {
        host.panel.GotoDate(dates[turn]);
        turn = 1 - turn;
        if (paint == 1)
            host.panel.render(&frame);
        else if (paint == 2)
            host.panel.repaint();
    }
    state.counters["entries"] = host.loaded;
    state.SetLabel(state.range(0) == dsMonth ? "month view" : "week view");
}

BENCHMARK(BM_GotoDate)
    ->ArgNames({"view", "paint"})
    ->Args({dsWeek, 0})
    ->Args({dsWeek, 1})
    ->Args({dsWeek, 2})
    ->Args({dsMonth, 0})
    ->Args({dsMonth, 1})
    ->Args({dsMonth, 2})
    ->Unit(benchmark::kMillisecond);

// A move within the shown month: no reload, only the selected day changes.
void BM_GotoDateSameMonth(benchmark::State &state)
{
    Host host(TDiarSize(state.range(0)));
    host.panel.GotoDate(EncodeDate(2026, 11, 2));
    host.Load();
    int day = 2;
    for (auto _ : state) {
        day = day == 27 ? 2 : day + 1;
        host.panel.GotoDate(day, DateToMesicRok(EncodeDate(2026, 11, 1)));
    }
}

BENCHMARK(BM_GotoDateSameMonth)
    ->ArgName("view")
    ->Arg(dsWeek)
    ->Arg(dsMonth)
    ->Unit(benchmark::kMicrosecond);

} // namespace

OXA_BENCHMARK_MAIN()
