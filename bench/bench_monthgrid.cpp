// The month grid's two hot paths on a busy month (May 2024: two public
// holidays, working and booking hours every weekday, two leaves, 2,000
// entries with hint texts):
//  - InitVykreslovani of the whole month, which the panel runs after every
//    change of the month, the settings or the entries;
//  - a full repaint of the grid at 1920x1080 on the offscreen platform, both
//    through the widget's own repaint (backing store) and rendered into an
//    image.
// The slot length is the argument: 15 minutes (the target) and 5 minutes
// (three times the columns).

#include "oxa/diary/MonthGrid.h"

#include <QApplication>
#include <QImage>
#include <QPainter>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace oxa;

constexpr int kEntries = 2000;
constexpr int kYear = 2024;
constexpr int kMonth = 5;

const char *const Names[] = {"Novák Jan",       "Svobodová Eva",  "Dvořák Petr",  "Černá Jana",
                             "Procházka Karel", "Kučerová Marie", "Veselý Tomáš", "Horáková Lenka"};
const char *const Texts[] = {"Kontrola",   "Odběr krve",        "Očkování", "Převaz",
                             "Konzultace", "Vstupní prohlídka", "EKG",      "Recept"};

TTime Cas(int h, int n)
{
    return EncodeTime(h, n, 0, 0);
}

TDiarNastaveni Settings()
{
    TDiarNastaveni n;
    n.barvaSvatek = 0x00FF00;
    n.barvaSoNe = 0xE0E0E0;
    n.barvaPracDoba = 0xC0FFC0;
    n.barvaDovol = 0xFF00FF;
    n.barvaObjednaniKLekari = 0x00FFFF;
    n.minutDilek = 15;
    for (int d = 1; d <= 5; ++d) {
        n.pracDobaLichy[d] = {Cas(7, 0), Cas(12, 0), Cas(13, 0), Cas(15, 30)};
        n.pracDobaSudy[d] = {Cas(11, 0), Cas(15, 0), Cas(16, 0), Cas(19, 0)};
        n.objednaniKLekari[d] = {{Cas(9, 0), Cas(10, 0), 0, 0}, {Cas(14, 0), Cas(14, 30), 0, 0}};
    }
    TDovolena jaro;
    jaro.DatumOd = EncodeDate(kYear, kMonth, 13);
    jaro.CasOd = Cas(12, 0);
    jaro.DatumDo = EncodeDate(kYear, kMonth, 15);
    jaro.CasDo = Cas(10, 0);
    jaro.Poznamka = "Školení";
    TDovolena odpoledne = jaro;
    odpoledne.DatumOd = odpoledne.DatumDo = EncodeDate(kYear, kMonth, 24);
    odpoledne.CasOd = Cas(13, 0);
    odpoledne.CasDo = Cas(19, 0);
    odpoledne.BarvaIsSet = true;
    odpoledne.Barva = 0x4080FF;
    n.dovolena = {jaro, odpoledne};
    return n;
}

// 2,000 entries spread over the 31 days between 7:00 and 19:00, 10 to 60
// minutes long, some overlapping, some private and some done.
void Fill(TMonthArray &zaznamy)
{
    for (int i = 0; i < kEntries; ++i) {
        TDayRecord z;
        z.ID_DIAR = i + 1;
        z.Den = qint16(i % 31 + 1);
        const int start = 7 * 60 + (i * 37) % (12 * 60);
        const int length = 10 + (i * 7) % 51;
        z.CasOd = double(start) / 1440;
        z.CasDo = double(std::min(start + length, 1439)) / 1440;
        z.Parafa = i % 3 == 0 ? "MD" : "";
        z.KONTAKT = QString::fromUtf8(Names[i % 8]);
        z.Popis = Texts[(i / 8) % 8];
        z.Soukrome = i % 11 == 0;
        z.SPLNENO = i % 5 == 0 ? 100 : 0;
        zaznamy.AddDayRecord(z, zaznamy.SlotOfDay(z.Den));
    }
}

struct Month
{
    TMonthArray zaznamy{0, 0};
    std::unique_ptr<TMonthGrid> grid;

    explicit Month(int minut)
    {
        Fill(zaznamy);
        grid = std::make_unique<TMonthGrid>(nullptr, minut);
        grid->SetDiarNastaveni(Settings());
        grid->SetZaznamy(&zaznamy);
        grid->SetDatum(EncodeDate(kYear, kMonth, 20));
        grid->Init();
        grid->resize(1920, 1080);
    }
};

void BM_InitVykreslovani(benchmark::State &state)
{
    Month month(int(state.range(0)));
    for (auto _ : state)
        month.grid->InitVykreslovani(-1);
    state.counters["cells"] = double(month.grid->RowCount() - 1) * month.grid->dilkyHodinyDen();
}
BENCHMARK(BM_InitVykreslovani)->Arg(15)->Arg(5)->Unit(benchmark::kMillisecond);

void BM_RepaintMonthGrid(benchmark::State &state)
{
    Month month(int(state.range(0)));
    month.grid->show();
    QApplication::processEvents();
    for (auto _ : state) {
        month.grid->viewport()->repaint();
    }
    state.counters["shownCols"] = month.grid->VisibleColCount();
}
BENCHMARK(BM_RepaintMonthGrid)->Arg(15)->Arg(5)->Unit(benchmark::kMillisecond);

void BM_RenderMonthGridToImage(benchmark::State &state)
{
    Month month(int(state.range(0)));
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        month.grid->render(&image);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_RenderMonthGridToImage)->Arg(15)->Arg(5)->Unit(benchmark::kMillisecond);

} // namespace

OXA_BENCHMARK_MAIN()
