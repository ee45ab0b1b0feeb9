#include "oxa/diary/MonthGrid.h"

#include "support/TestSupport.h"

#include <QImage>
#include <QLabel>
#include <QScreen>
#include <QTest>

using namespace oxa;

namespace {

TTime Cas(int h, int n, int s = 0) { return EncodeTime(h, n, s, 0); }
TTime Cas(QTime t) { return EncodeTime(t.hour(), t.minute(), 0, 0); }

// Easter Sunday by the anonymous Gregorian algorithm, independent of the grid's rule.
QDate EasterSunday(int y)
{
    const int a = y % 19, b = y / 100, c = y % 100, d = b / 4, e = b % 4;
    const int g = (b - (b + 8) / 25 + 1) / 3;
    const int h = (19 * a + b - d - g + 15) % 30;
    const int l = (32 + 2 * e + 2 * (c / 4) - h - c % 4) % 7;
    const int m = (a + 11 * h + 22 * l) / 451;
    return QDate(y, (h + l - 7 * m + 114) / 31, (h + l - 7 * m + 114) % 31 + 1);
}

constexpr TColor kSvatek = 0x00FF00, kSoNe = 0x808000, kPracDoba = 0xC0FFC0;
constexpr TColor kDovolena = 0xFF00FF, kObjednani = 0x00FFFF, kVlastni = 0x404080;

TDiarNastaveni Nastaveni()
{
    TDiarNastaveni n;
    n.barvaSvatek = kSvatek;
    n.barvaSoNe = kSoNe;
    n.barvaPracDoba = kPracDoba;
    n.barvaDovol = kDovolena;
    n.barvaObjednaniKLekari = kObjednani;
    return n;
}

TDovolena Dovolena(TDate od, TTime casOd, TDate doDne, TTime casDo, const char *poznamka = "")
{
    TDovolena d;
    d.DatumOd = od;
    d.CasOd = casOd;
    d.DatumDo = doDne;
    d.CasDo = casDo;
    d.Poznamka = poznamka;
    return d;
}

TDayRecord Zaznam(int den, TTime od, TTime doCasu, const char *popis = "",
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

// A month grid over its store in a window large enough for a month of
// 15-minute slots.
struct MonthWindow
{
    QWidget window;
    TMonthGrid *grid;
    TMonthArray zaznamy{0, 0};

    explicit MonthWindow(TDate datum, int minut = 15)
    {
        grid = new TMonthGrid(&window, minut);
        grid->setGeometry(0, 0, 960, 460);
        window.resize(980, 480);
        grid->SetZaznamy(&zaznamy);
        grid->SetDiarNastaveni(Nastaveni());
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
        if (!test::ShowAndActivate(&window))
            return false;
        grid->setFocus();
        return grid->hasFocus();
    }
    QPoint centre(int col, int row) const { return grid->CellRect(col, row).center(); }
    // A pixel of the cell away from its lines and its diagonal.
    QColor pixel(int col, int row, QPoint offset = {6, 3}) const
    {
        const QImage image = grid->viewport()->grab().toImage();
        return image.pixelColor(grid->CellRect(col, row).topLeft() + offset);
    }
    const TMonthGridCell &cell(int row, int col) const { return grid->DataPaint(row, col); }
};

} // namespace

class TestMonthGrid : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // holidays
    void easterMondayAgainstIndependentRule();
    void easterCells_data();
    void easterCells();
    void fixedHolidays();
    // layout and slot arithmetic
    void layout_data();
    void layout();
    void datumCasOdAndAktivujCas();
    void selectionTimesAtEdges_data();
    void selectionTimesAtEdges();
    // cell preparation and the questions about a cell
    void entriesMarkTheSlotsTheyMeet();
    void entryHintLines();
    void workingAndBookingHours();
    void leave();
    void konfigAndZaznamQuestions();
    // drawing and the user
    void drawnColours();
    void mouseAndKeyboardSelection();
    void hintAfterMouseRests();
};

void TestMonthGrid::easterMondayAgainstIndependentRule()
{
    for (int rok = 1900; rok <= 2099; ++rok) {
        const QDate pondeli = EasterSunday(rok).addDays(1);
        QCOMPARE(DateTimeToQDate(VelikonocniPondeli(rok)), pondeli);
        QCOMPARE(NazevSvatku(QDateToDateTime(pondeli)), QStringLiteral("Velikonoce"));
        QCOMPARE(NazevSvatku(QDateToDateTime(pondeli.addDays(-3))), QStringLiteral("Velký pátek"));
        QCOMPARE(NazevSvatku(QDateToDateTime(pondeli.addDays(-1))), QString());
    }
}

void TestMonthGrid::easterCells_data()
{
    QTest::addColumn<QDate>("pondeli");
    QTest::addColumn<QDate>("patek");
    QTest::newRow("2019") << QDate(2019, 4, 22) << QDate(2019, 4, 19);
    QTest::newRow("2020") << QDate(2020, 4, 13) << QDate(2020, 4, 10);
    QTest::newRow("2000") << QDate(2000, 4, 24) << QDate(2000, 4, 21);
    QTest::newRow("1954, the 18 April rule") << QDate(1954, 4, 19) << QDate(1954, 4, 16);
    QTest::newRow("1981, the 19 April rule") << QDate(1981, 4, 20) << QDate(1981, 4, 17);
    QTest::newRow("2024, across months") << QDate(2024, 4, 1) << QDate(2024, 3, 29);
}

void TestMonthGrid::easterCells()
{
    QFETCH(QDate, pondeli);
    QFETCH(QDate, patek);
    MonthWindow w(QDateToDateTime(pondeli));
    w.grid->Init();
    for (int c : {1, 50, 96})
        QCOMPARE(w.cell(pondeli.day(), c).hint, QStringLiteral("Velikonoce"));
    QVERIFY(w.cell(pondeli.day(), 50).svatek);
    QVERIFY(!w.cell(pondeli.addDays(1).day(), 1).svatek);
    w.grid->SetDatum(QDateToDateTime(patek));
    w.grid->Init();
    QVERIFY(w.cell(patek.day(), 30).svatek);
    QCOMPARE(w.cell(patek.day(), 30).hint, QStringLiteral("Velký pátek"));
}

void TestMonthGrid::fixedHolidays()
{
    const struct { int den, mesic; const char *text; } svatky[] = {
        {1, 1, "(01.01.) Nový rok"},
        {1, 5, "(01.05.) Svátek práce"},
        {8, 5, "(08.05.) Den vítezství"},
        {5, 7, "(05.07.) Den slovanských věrozvěstů Cyrila a Metoděje"},
        {6, 7, "(06.07.) Den upálení mistra Jana Husa"},
        {28, 9, "(28.09.) Den české státnosti"},
        {28, 10, "(28.10.) Den vzniku samostatného československého státu"},
        {17, 11, "(17.11.) Den boje za svobodu a demokracii"},
        {24, 12, "(24.12.) Štedrý den"},
        {25, 12, "(25.12.) 1. svátek vánocní"},
        {26, 12, "(26.12.) 2. svátek vánocní"},
    };
    int pocet = 0;
    for (int mesic = 1; mesic <= 12; ++mesic) {
        MonthWindow w(EncodeDate(2023, mesic, 1));
        w.grid->Init();
        for (int den = 1; den <= DaysInAMonth(2023, mesic); ++den) {
            QString text;
            for (const auto &s : svatky)
                text = s.den == den && s.mesic == mesic ? QString::fromUtf8(s.text) : text;
            if (QDate(2023, mesic, den) == QDate(2023, 4, 10)) // Easter Monday
                text = QStringLiteral("Velikonoce");
            if (QDate(2023, mesic, den) == QDate(2023, 4, 7))
                text = QStringLiteral("Velký pátek");
            for (int c = 1; c <= 96; c += 19) {
                QCOMPARE(w.cell(den, c).svatek, !text.isEmpty());
                QCOMPARE(w.cell(den, c).hint, text);
            }
            pocet += text.isEmpty() ? 0 : 1;
        }
    }
    QCOMPARE(pocet, 13);
}

void TestMonthGrid::layout_data()
{
    QTest::addColumn<int>("minut");
    QTest::addColumn<int>("hodiny");
    QTest::addColumn<int>("sirka");
    QTest::newRow("5") << 5 << 12 << 9;
    QTest::newRow("10") << 10 << 6 << 9;
    QTest::newRow("15") << 15 << 4 << 9;
    QTest::newRow("20") << 20 << 3 << 12;
    QTest::newRow("30") << 30 << 2 << 9;
}

void TestMonthGrid::layout()
{
    QFETCH(int, minut);
    QFETCH(int, hodiny);
    QFETCH(int, sirka);
    TMonthGrid grid(nullptr, minut);
    QCOMPARE(grid.dilkyHodiny(), hodiny);
    QCOMPARE(grid.property("dilkyHodinyDen").toInt(), hodiny * 24);
    QCOMPARE(grid.ColCount(), hodiny * 24 + 1);
    QCOMPARE(grid.RowCount(), 32);
    QCOMPARE(grid.ColWidths(1), sirka);
    QCOMPARE(grid.ColWidths(0), 35);
    QCOMPARE(grid.RowHeights(0), 14);
    QCOMPARE(grid.RowHeights(1), 13);
    QVERIFY_THROWS_EXCEPTION(EInvalidOperation, TMonthGrid(nullptr, 0));
    QVERIFY_THROWS_EXCEPTION(EInvalidOperation, TMonthGrid(nullptr, 61));
}

void TestMonthGrid::datumCasOdAndAktivujCas()
{
    MonthWindow w(EncodeDate(2023, 12, 10));
    QCOMPARE(w.grid->RowCount(), 32);
    w.grid->Init();
    QVERIFY(w.cell(31, 1).vikend); // a Sunday
    w.grid->SetDatum(EncodeDate(2024, 2, 9));
    QCOMPARE(w.grid->RowCount(), 30);
    QCOMPARE(w.grid->Row(), 9);
    QCOMPARE(w.grid->DatumRadku(1), EncodeDate(2024, 2, 1));
    w.grid->Init();
    QVERIFY(!w.cell(31, 1).vikend); // rows past the month keep nothing

    QVERIFY(w.show());
    w.grid->SetCasOd(8);
    QCOMPARE(w.grid->LeftCol(), 33);
    QCOMPARE(w.grid->Col(), 33);
    QCOMPARE(w.grid->Row(), 9);
    w.grid->SetCasOd(30);
    QCOMPARE(w.grid->Col(), 96);
    w.grid->AktivujCas(Cas(10, 14, 59));
    QCOMPARE(w.grid->Col(), 41);
    w.grid->AktivujCas(Cas(23, 59, 59));
    QCOMPARE(w.grid->Col(), 96);
}

void TestMonthGrid::selectionTimesAtEdges_data()
{
    QTest::addColumn<int>("minut");
    QTest::addColumn<int>("odSloupce");
    QTest::addColumn<int>("doSloupce");
    QTest::addColumn<QTime>("od");
    QTest::addColumn<QTime>("konec");
    QTest::newRow("15 first") << 15 << 1 << 1 << QTime(0, 0) << QTime(0, 15);
    QTest::newRow("15 last") << 15 << 96 << 96 << QTime(23, 45) << QTime(23, 59);
    QTest::newRow("15 reversed") << 15 << 44 << 41 << QTime(10, 0) << QTime(11, 0);
    QTest::newRow("5 last") << 5 << 288 << 288 << QTime(23, 55) << QTime(23, 59);
    QTest::newRow("10 last") << 10 << 144 << 144 << QTime(23, 50) << QTime(23, 59);
    QTest::newRow("20 middle") << 20 << 2 << 3 << QTime(0, 20) << QTime(1, 0);
    QTest::newRow("20 past the end") << 20 << 70 << 500 << QTime(23, 0) << QTime(23, 59);
}

void TestMonthGrid::selectionTimesAtEdges()
{
    QFETCH(int, minut);
    QFETCH(int, odSloupce);
    QFETCH(int, doSloupce);
    QFETCH(QTime, od);
    QFETCH(QTime, konec);
    TMonthGrid grid(nullptr, minut);
    grid.SetDatum(EncodeDate(2024, 3, 12));
    grid.setSelectedCell(odSloupce, doSloupce);
    QCOMPARE(grid.Selection().Top, 12);
    QCOMPARE(grid.GetSelCellStartTime(), Cas(od));
    QCOMPARE(grid.GetSelCellEndTime(), Cas(konec));
}

void TestMonthGrid::entriesMarkTheSlotsTheyMeet()
{
    MonthWindow w(EncodeDate(2024, 1, 1));
    TDayRecord prvni = Zaznam(3, Cas(10, 0, 30), Cas(10, 30, 45)); // 10:00 to 10:30
    prvni.SPLNENO = 100;
    TDayRecord druhy = Zaznam(3, Cas(10, 15), Cas(11, 0));
    druhy.Soukrome = true;
    for (const TDayRecord &z : {prvni, druhy, Zaznam(4, Cas(9, 0), Cas(9, 0)),
                                Zaznam(4, Cas(23, 50), Cas(23, 59)),
                                Zaznam(4, -Cas(1, 0), Cas(2, 0)), Zaznam(4, Cas(12, 0), Cas(11, 0))})
        w.add(z);
    w.grid->Init();

    const auto marked = [&](int den) {
        QList<int> cols;
        for (int c = 1; c <= 96; ++c)
            if (w.cell(den, c).zaznam)
                cols.append(c);
        return cols;
    };
    // Touching edges do not count; a zero-length entry marks the slot holding
    // it; negative and reversed spans mark nothing.
    QCOMPARE(marked(3), QList<int>({41, 42, 43, 44}));
    QCOMPARE(marked(4), QList<int>({37, 96}));
    QCOMPARE(w.cell(3, 42).splneno, 100); // the first entry found wins
    QVERIFY(!w.cell(3, 42).soukrom);
    QCOMPARE(w.cell(3, 43).splneno, 0);
    QVERIFY(w.cell(3, 43).soukrom);
}

void TestMonthGrid::entryHintLines()
{
    MonthWindow w(EncodeDate(2023, 10, 1));
    w.add(Zaznam(28, Cas(8, 0), Cas(8, 30), " Kontrola ", "Novák Jan", "MD"));
    w.add(Zaznam(28, Cas(8, 15), Cas(9, 0), "", "Dvořák"));
    w.add(Zaznam(28, Cas(8, 15, 40), Cas(8, 45), "Odběr"));
    w.grid->Init();

    // The entries replace the holiday name; the cell stays a holiday.
    QCOMPARE(w.cell(28, 33).hint, QStringLiteral("MD  08:00-08:30 Novák Jan: Kontrola"));
    QVERIFY(w.cell(28, 33).svatek);
    QCOMPARE(w.cell(28, 34).hint, QStringLiteral("MD  08:00-08:30 Novák Jan: Kontrola\r\n"
                                                 "  08:15-09:00 Dvořák\r\n"
                                                 "  08:15-08:45 Odběr"));
    QCOMPARE(w.cell(28, 36).hint, QStringLiteral("08:15-09:00 Dvořák"));
    QCOMPARE(w.cell(28, 37).hint,
             QStringLiteral("(28.10.) Den vzniku samostatného československého státu"));
}

void TestMonthGrid::workingAndBookingHours()
{
    // 1 January 2024 is a Monday of ISO week 1, 8 January of week 2.
    MonthWindow w(EncodeDate(2024, 1, 1));
    TDiarNastaveni n = Nastaveni();
    n.pracDobaLichy[1] = {Cas(8, 0), Cas(12, 0), Cas(13, 0), Cas(14, 0)};
    n.pracDobaSudy[1] = {Cas(13, 0), Cas(17, 0), Cas(18, 0), Cas(18, 0)};
    n.objednaniKLekari[1] = {{Cas(9, 0), Cas(10, 0), 0, 0}, {Cas(16, 0), Cas(16, 30), 0, 0}};
    w.settings(n);

    const auto barvy = [&](int den, QList<int> cols) {
        QList<TColor> result;
        for (int c : cols)
            result.append(w.cell(den, c).pracDoba ? w.cell(den, c).barva : clNone);
        return result;
    };
    const QList<int> cols = {32, 33, 37, 40, 41, 48, 49, 53, 56, 57, 65, 68, 69, 73};
    const QList<TColor> lichy = {clNone, kPracDoba, kObjednani, kObjednani, kPracDoba, kPracDoba,
                                 clNone, kPracDoba, kPracDoba, clNone, kObjednani, clNone, clNone,
                                 clNone};
    const QList<TColor> sudy = {clNone, clNone, kObjednani, kObjednani, clNone, clNone, clNone,
                                kPracDoba, kPracDoba, kPracDoba, kObjednani, kPracDoba, clNone,
                                clNone};
    for (int den : {1, 15, 29})
        QCOMPARE(barvy(den, cols), lichy);
    for (int den : {8, 22})
        QCOMPARE(barvy(den, cols), sudy);
    QCOMPARE(barvy(2, cols), QList<TColor>(cols.size(), clNone));

    // Rebuilding one day rebuilds only that day.
    n.pracDobaLichy[1] = TPracDobaCas();
    w.grid->SetDiarNastaveni(n);
    w.grid->InitVykreslovani(15);
    QVERIFY(!w.cell(15, 33).pracDoba);
    QVERIFY(w.cell(1, 33).pracDoba);
}

void TestMonthGrid::leave()
{
    MonthWindow w(EncodeDate(2024, 1, 1));
    TDiarNastaveni n = Nastaveni();
    TDovolena vlastni = Dovolena(EncodeDate(2024, 1, 20), Cas(8, 0), EncodeDate(2024, 1, 20),
                                 Cas(9, 0));
    vlastni.BarvaIsSet = true;
    vlastni.Barva = kVlastni;
    n.dovolena = {Dovolena(EncodeDate(2024, 1, 10), Cas(12, 0), EncodeDate(2024, 1, 12),
                           Cas(10, 0), "hory"),
                  vlastni,
                  Dovolena(EncodeDate(2023, 12, 30), Cas(12, 0), EncodeDate(2024, 1, 2), Cas(8, 0))};
    w.add(Zaznam(11, Cas(9, 0), Cas(9, 15), "Kontrola"));
    w.settings(n);

    QVERIFY(!w.cell(10, 48).dovolena);
    QVERIFY(w.cell(10, 49).dovolena);
    QCOMPARE(w.cell(10, 49).barva, kDovolena);
    QCOMPARE(w.cell(10, 49).hint, QStringLiteral("Dovolená: hory"));
    QVERIFY(w.cell(11, 1).dovolena && w.cell(11, 96).dovolena);
    QCOMPARE(w.cell(11, 37).hint, QStringLiteral("09:00-09:15 Kontrola\r\nDovolená: hory"));
    QVERIFY(w.cell(12, 40).dovolena);
    QVERIFY(!w.cell(12, 41).dovolena);

    QCOMPARE(w.cell(20, 33).barva, kVlastni);
    QCOMPARE(w.cell(20, 33).hint, QString()); // no note, no line
    QVERIFY(!w.cell(20, 37).dovolena);

    // Begun in the previous month: the first day is covered whole.
    QVERIFY(w.cell(1, 1).dovolena && w.cell(1, 96).dovolena);
    QVERIFY(w.cell(2, 32).dovolena);
    QVERIFY(!w.cell(2, 33).dovolena);
}

void TestMonthGrid::konfigAndZaznamQuestions()
{
    TMonthGrid grid(nullptr, 15);
    grid.SetDatum(EncodeDate(2024, 1, 1));
    TDiarNastaveni n = Nastaveni();
    n.pracDobaLichy[1] = {Cas(8, 0), Cas(12, 0), Cas(13, 0), Cas(15, 0)};
    grid.SetDiarNastaveni(n);

    // Without any leave record even working hours are not reported.
    TColor barva = 0x123456;
    QVERIFY(!grid.ExistujeKonfigZaznam(1, 40, barva));
    QCOMPARE(barva, TColor(0x123456));

    n.dovolena = {Dovolena(EncodeDate(2024, 1, 3), Cas(23, 50), EncodeDate(2024, 1, 5), Cas(0, 10))};
    grid.SetDiarNastaveni(n);
    const auto konfig = [&](int den, int col) {
        TColor c = 0x123456;
        return grid.ExistujeKonfigZaznam(den, col, c) ? c : (c == clWhite ? clNone : c);
    };
    QCOMPARE(konfig(1, 33), kPracDoba);
    QCOMPARE(konfig(1, 48), kPracDoba);
    QCOMPARE(konfig(1, 32), clNone);
    QCOMPARE(konfig(1, 49), clNone);
    QCOMPARE(konfig(1, 55), clNone); // only the first interval counts
    QCOMPARE(konfig(8, 40), clNone); // an even week has no hours
    QCOMPARE(konfig(3, 95), clNone);
    QCOMPARE(konfig(3, 96), kDovolena); // the last slot ends at 23:59
    QCOMPARE(konfig(4, 1), kDovolena);
    QCOMPARE(konfig(5, 1), kDovolena);
    QCOMPARE(konfig(5, 2), clNone);

    int splneno = -1;
    QVERIFY(!grid.ExistujeZaznam(5, 41, barva, splneno)); // no store
    TMonthArray zaznamy(0, 0);
    TDayRecord z = Zaznam(5, Cas(10, 0), Cas(10, 30));
    z.Soukrome = true;
    z.SPLNENO = 40;
    zaznamy.AddDayRecord(z, zaznamy.SlotOfDay(5));
    zaznamy.AddDayRecord(Zaznam(5, Cas(10, 0), Cas(11, 0)), zaznamy.SlotOfDay(5));
    grid.SetZaznamy(&zaznamy);
    QVERIFY(grid.ExistujeZaznam(5, 42, barva, splneno));
    QCOMPARE(barva, TColor(0xE0C545));
    QCOMPARE(splneno, 40);
    QVERIFY(grid.ExistujeZaznam(5, 43, barva, splneno));
    QCOMPARE(barva, TColor(0x0000FF));
    QCOMPARE(splneno, 0);
    QVERIFY(!grid.ExistujeZaznam(5, 45, barva, splneno));
    QVERIFY(!grid.ExistujeZaznam(6, 42, barva, splneno));
}

void TestMonthGrid::drawnColours()
{
    // October 2023: the 28th is a Saturday and a holiday, the 1st a Sunday.
    MonthWindow w(EncodeDate(2023, 10, 2));
    TDiarNastaveni n = Nastaveni();
    n.pracDobaLichy[2] = n.pracDobaSudy[2] = {Cas(8, 0), Cas(12, 0), 0, 0};
    n.dovolena = {Dovolena(EncodeDate(2023, 10, 5), Cas(8, 0), EncodeDate(2023, 10, 5), Cas(9, 0))};
    TDayRecord hotovy = Zaznam(3, Cas(9, 0), Cas(9, 15));
    hotovy.SPLNENO = 100;
    TDayRecord soukromy = Zaznam(3, Cas(9, 15), Cas(9, 30));
    soukromy.Soukrome = true;
    for (const TDayRecord &z : {hotovy, soukromy, Zaznam(28, Cas(10, 0), Cas(10, 15))})
        w.add(z);
    w.settings(n);
    QVERIFY(w.show());

    const auto barva = [](TColor c) { return ColorToQColor(c); };
    QCOMPARE(w.pixel(37, 3), barva(0x0000FF));
    QCOMPARE(w.pixel(37, 3, {4, 6}), QColor(Qt::black)); // crossed out when done
    QCOMPARE(w.pixel(38, 3), barva(0xE0C545));
    QCOMPARE(w.pixel(33, 3), barva(kPracDoba));
    QCOMPARE(w.pixel(33, 4), barva(clWhite));   // Wednesday has no hours
    QCOMPARE(w.pixel(33, 5), barva(kDovolena));
    QCOMPARE(w.pixel(41, 28), barva(0x0000FF)); // the entry before the holiday
    QCOMPARE(w.pixel(42, 28), barva(kSvatek));  // the holiday before the weekend
    QCOMPARE(w.pixel(42, 1), barva(kSoNe));
    QCOMPARE(w.pixel(0, 1, {17, 1}), barva(kSoNe));
    QCOMPARE(w.pixel(0, 4, {17, 1}), barva(clWhite));
    QCOMPARE(w.pixel(3, 0, {4, 1}), barva(clWhite));

    // A selection in one row covers everything else; the current row is
    // outlined.
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(37, 3));
    QCOMPARE(w.pixel(37, 3), w.grid->palette().color(QPalette::Highlight));
    QCOMPARE(w.pixel(38, 3), barva(0xE0C545));
    QCOMPARE(w.pixel(50, 3, {4, 0}), barva(0x1389CD));
    QCOMPARE(w.pixel(50, 3, {4, 12}), barva(0x1389CD));
    QCOMPARE(w.pixel(50, 6, {4, 0}), barva(clSilver));
    // Hour lines are black, half-hour lines dotted grey, the others silver.
    QCOMPARE(w.pixel(49, 6, {0, 6}), QColor(Qt::black));
    QCOMPARE(w.pixel(50, 6, {0, 6}), barva(clSilver));
    QList<QColor> edge;
    for (int y = 1; y < 12; ++y)
        edge.append(w.pixel(51, 6, {0, y}));
    QVERIFY(edge.contains(QColor(0x80, 0x80, 0x80)));
}

void TestMonthGrid::mouseAndKeyboardSelection()
{
    MonthWindow w(EncodeDate(2024, 1, 20));
    QList<int> selectedRows;
    w.grid->OnSelectCell = [&](QObject *, int, int ARow, bool &) { selectedRows.append(ARow); };
    QVERIFY(w.show());

    QTest::mousePress(w.grid->viewport(), Qt::LeftButton, {}, w.centre(41, 5));
    QTest::mouseMove(w.grid->viewport(), w.centre(43, 5));
    QTest::mouseRelease(w.grid->viewport(), Qt::LeftButton, {}, w.centre(44, 5));
    QCOMPARE(w.grid->MouseDownDatum(), EncodeDate(2024, 1, 5));
    QVERIFY(selectedRows.contains(5));
    QCOMPARE(w.grid->GetSelCellStartTime(), Cas(10, 0));
    QCOMPARE(w.grid->GetSelCellEndTime(), Cas(11, 0));

    QTest::keyClick(w.grid, Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(w.grid->GetSelCellEndTime(), Cas(11, 15));
    QTest::keyClick(w.grid, Qt::Key_Down);
    QCOMPARE(w.grid->Row(), 6);
    QCOMPARE(w.grid->GetSelCellStartTime(), Cas(11, 0));
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(0, 9));
    QCOMPARE(w.grid->Row(), 6); // the day column selects nothing
}

void TestMonthGrid::hintAfterMouseRests()
{
    MonthWindow w(EncodeDate(2024, 1, 1));
    w.add(Zaznam(4, Cas(10, 0), Cas(10, 30), "Kontrola", "Novák"));
    w.add(Zaznam(4, Cas(10, 15), Cas(10, 30), "Odběr"));
    w.add(Zaznam(2, Cas(18, 0), Cas(19, 0), "Velmi dlouhý popis", "Pacient s dlouhým jménem"));
    w.grid->Init();
    QVERIFY(w.show());
    QWidget *viewport = w.grid->viewport();

    QTest::mouseMove(viewport, w.centre(42, 4));
    QVERIFY(!w.grid->HintActive());
    QTRY_VERIFY(w.grid->HintActive());
    QCOMPARE(w.grid->HintText(), QStringLiteral("10:00-10:30 Novák: Kontrola\r\n  10:15-10:30 Odběr"));
    QVERIFY(w.grid->HintWindow()->isVisible());
    QCOMPARE(w.grid->HintWindow()->text(),
             QStringLiteral("10:00-10:30 Novák: Kontrola\n  10:15-10:30 Odběr"));

    // Moving within the cell keeps it, onto another cell hides it at once.
    QTest::mouseMove(viewport, w.centre(42, 4) + QPoint(1, 1));
    QVERIFY(w.grid->HintActive());
    QTest::mouseMove(viewport, w.centre(41, 4));
    QVERIFY(!w.grid->HintActive() && !w.grid->HintWindow()->isVisible());
    QTRY_VERIFY(w.grid->HintActive());
    QCOMPARE(w.grid->HintText(), QStringLiteral("10:00-10:30 Novák: Kontrola"));
    // It lives for a while, then goes.
    QTest::qWait(300);
    QVERIFY(w.grid->HintActive());
    QTRY_VERIFY_WITH_TIMEOUT(!w.grid->HintActive(), 6000);
    QVERIFY(!w.grid->HintWindow()->isVisible());

    // A cell without a hint shows none.
    QTest::mouseMove(viewport, w.centre(60, 4));
    QTest::qWait(400);
    QVERIFY(!w.grid->HintActive());

    // A long hint near the screen's right edge is moved inside it.
    const QRect screen = w.grid->screen()->availableGeometry();
    if (viewport->mapToGlobal(w.centre(73, 2)).x() < screen.right()) {
        QTest::mouseMove(viewport, w.centre(73, 2));
        QTRY_VERIFY(w.grid->HintActive());
        QVERIFY(w.grid->HintWindow()->frameGeometry().right() <= screen.right());
    }
}

QTEST_MAIN(TestMonthGrid)
#include "tst_monthgrid.moc"
