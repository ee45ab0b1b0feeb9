#include "oxa/diary/MonthGrid.h"

#include "support/TestSupport.h"

#include <QImage>
#include <QLabel>
#include <QScreen>
#include <QTest>

using namespace oxa;

namespace {

TTime Cas(int h, int n, int s = 0)
{
    return EncodeTime(h, n, s, 0);
}

// Easter Sunday by the anonymous Gregorian algorithm, independent of the
// grid's own rule.
QDate EasterSunday(int y)
{
    const int a = y % 19, b = y / 100, c = y % 100, d = b / 4, e = b % 4;
    const int f = (b + 8) / 25, g = (b - f + 1) / 3;
    const int h = (19 * a + b - d - g + 15) % 30;
    const int i = c / 4, k = c % 4;
    const int l = (32 + 2 * e + 2 * i - h - k) % 7;
    const int m = (a + 11 * h + 22 * l) / 451;
    const int month = (h + l - 7 * m + 114) / 31;
    const int day = (h + l - 7 * m + 114) % 31 + 1;
    return QDate(y, month, day);
}

constexpr TColor kSvatek = 0x00FF00;
constexpr TColor kSoNe = 0x808000;
constexpr TColor kPracDoba = 0xC0FFC0;
constexpr TColor kDovolena = 0xFF00FF;
constexpr TColor kObjednani = 0x00FFFF;
constexpr TColor kVlastniDovolena = 0x404080;

QColor Barva(TColor c)
{
    return ColorToQColor(c);
}

TDiarNastaveni Nastaveni()
{
    TDiarNastaveni n;
    n.barvaSvatek = kSvatek;
    n.barvaSoNe = kSoNe;
    n.barvaPracDoba = kPracDoba;
    n.barvaDovol = kDovolena;
    n.barvaObjednaniKLekari = kObjednani;
    n.minutDilek = 15;
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

TDayRecord Zaznam(qint32 id, int den, TTime od, TTime doCasu, const char *popis = "",
                  const char *kontakt = "", const char *parafa = "")
{
    TDayRecord z;
    z.ID_DIAR = id;
    z.Den = qint16(den);
    z.CasOd = od;
    z.CasDo = doCasu;
    z.Popis = popis;
    z.KONTAKT = QString::fromUtf8(kontakt);
    z.Parafa = parafa;
    return z;
}

// A month grid with its store, in a shown window large enough for a whole
// month of 15-minute slots.
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
    QList<QColor> leftEdge(int col, int row) const
    {
        const QImage image = grid->viewport()->grab().toImage();
        const QRect r = grid->CellRect(col, row);
        QList<QColor> colours;
        for (int y = r.top() + 1; y < r.bottom(); ++y)
            colours.append(image.pixelColor(r.left(), y));
        return colours;
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
    void fixedHolidays_data();
    void fixedHolidays();
    // layout and slot arithmetic
    void layout_data();
    void layout();
    void badSlotLengthFails();
    void datumResizesToMonth();
    void casOdAndAktivujCas();
    void selectionTimesAtEdges_data();
    void selectionTimesAtEdges();
    // cell preparation
    void entriesMarkTheSlotsTheyMeet();
    void entryHintLines();
    void workingHoursByWeekParity();
    void bookingHoursReplaceWorkingHours();
    void leaveMarksAndHints();
    void leaveFromPreviousMonthCoversWholeDays();
    void konfigZaznam();
    void existujeZaznam();
    // drawing and the user
    void drawnColours();
    void mouseAndKeyboardSelection();
    void hintAfterMouseRests();
    void hintKeptInsideScreen();
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
    QCOMPARE(VelikonocniPondeli(2000), IncDay(EncodeDate(2000, 4, 23)));
}

void TestMonthGrid::easterCells_data()
{
    QTest::addColumn<int>("rok");
    QTest::addColumn<int>("mesicPondeli");
    QTest::addColumn<int>("pondeli");
    QTest::addColumn<int>("mesicPatek");
    QTest::addColumn<int>("patek");
    QTest::newRow("2019") << 2019 << 4 << 22 << 4 << 19;
    QTest::newRow("2020") << 2020 << 4 << 13 << 4 << 10;
    QTest::newRow("1954, 18 April rule") << 1954 << 4 << 19 << 4 << 16;
    QTest::newRow("2049, 18 April rule") << 2049 << 4 << 19 << 4 << 16;
    QTest::newRow("1981, 19 April rule") << 1981 << 4 << 20 << 4 << 17;
    QTest::newRow("2016, Friday in March") << 2016 << 3 << 28 << 3 << 25;
    QTest::newRow("2024, across months") << 2024 << 4 << 1 << 3 << 29;
}

void TestMonthGrid::easterCells()
{
    QFETCH(int, rok);
    QFETCH(int, mesicPondeli);
    QFETCH(int, pondeli);
    QFETCH(int, mesicPatek);
    QFETCH(int, patek);
    MonthWindow w(EncodeDate(rok, mesicPondeli, 1));
    w.grid->Init();
    for (int c : {1, 50, 96}) {
        QVERIFY(w.cell(pondeli, c).svatek);
        QCOMPARE(w.cell(pondeli, c).hint, QStringLiteral("Velikonoce"));
    }
    QVERIFY(!w.cell(pondeli == 1 ? 2 : pondeli - 1, 1).svatek);

    w.grid->SetDatum(EncodeDate(rok, mesicPatek, 1));
    w.grid->Init();
    QVERIFY(w.cell(patek, 30).svatek);
    QCOMPARE(w.cell(patek, 30).hint, QStringLiteral("Velký pátek"));
}

void TestMonthGrid::fixedHolidays_data()
{
    QTest::addColumn<int>("den");
    QTest::addColumn<int>("mesic");
    QTest::addColumn<QString>("text");
    const char *texts[] = {
        "(01.01.) Nový rok",
        "(01.05.) Svátek práce",
        "(08.05.) Den vítezství",
        "(05.07.) Den slovanských věrozvěstů Cyrila a Metoděje",
        "(06.07.) Den upálení mistra Jana Husa",
        "(28.09.) Den české státnosti",
        "(28.10.) Den vzniku samostatného československého státu",
        "(17.11.) Den boje za svobodu a demokracii",
        "(24.12.) Štedrý den",
        "(25.12.) 1. svátek vánocní",
        "(26.12.) 2. svátek vánocní",
    };
    const int dates[][2] = {{1, 1},  {1, 5},  {8, 5},   {5, 7},   {6, 7},  {28, 9},
                            {28, 10}, {17, 11}, {24, 12}, {25, 12}, {26, 12}};
    for (int i = 0; i < 11; ++i)
        QTest::newRow(texts[i]) << dates[i][0] << dates[i][1] << QString::fromUtf8(texts[i]);
}

void TestMonthGrid::fixedHolidays()
{
    QFETCH(int, den);
    QFETCH(int, mesic);
    QFETCH(QString, text);
    MonthWindow w(EncodeDate(2023, mesic, 15));
    w.grid->Init();
    for (int c = 1; c <= 96; ++c) {
        QVERIFY(w.cell(den, c).svatek);
        QCOMPARE(w.cell(den, c).hint, text);
    }
    QCOMPARE(NazevSvatku(EncodeDate(1995, mesic, den)), text);
    const int jiny = den == 1 ? 2 : den - 1;
    if (!(mesic == 12 && jiny >= 24) && !(mesic == 7 && jiny == 5))
        QVERIFY(!w.cell(jiny, 10).svatek);
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
    QCOMPARE(grid.dilkyHodinyDen(), hodiny * 24);
    QCOMPARE(grid.ColCount(), hodiny * 24 + 1);
    QCOMPARE(grid.RowCount(), 32);
    QCOMPARE(grid.FixedCols(), 1);
    QCOMPARE(grid.FixedRows(), 1);
    QCOMPARE(grid.DefaultColWidth(), sirka);
    QCOMPARE(grid.ColWidths(1), sirka);
    QCOMPARE(grid.ColWidths(0), 35);
    QCOMPARE(grid.RowHeights(0), 14);
    QCOMPARE(grid.RowHeights(1), 13);
    QCOMPARE(grid.Datum(), 0.0);
    QCOMPARE(grid.property("dilkyHodinyDen").toInt(), hodiny * 24);
}

void TestMonthGrid::badSlotLengthFails()
{
    QVERIFY_THROWS_EXCEPTION(EInvalidOperation, TMonthGrid(nullptr, 0));
    QVERIFY_THROWS_EXCEPTION(EInvalidOperation, TMonthGrid(nullptr, 61));
}

void TestMonthGrid::datumResizesToMonth()
{
    MonthWindow w(EncodeDate(2024, 2, 10));
    QCOMPARE(w.grid->RowCount(), 30);
    QCOMPARE(w.grid->Row(), 10);
    w.grid->SetDatum(EncodeDate(2023, 12, 10));
    QCOMPARE(w.grid->RowCount(), 32);
    w.grid->Init();
    QVERIFY(w.cell(31, 1).vikend); // a Sunday
    w.grid->SetDatum(EncodeDate(2023, 4, 30));
    QCOMPARE(w.grid->RowCount(), 31);
    QCOMPARE(w.grid->Row(), 30);
    QCOMPARE(w.grid->DatumRadku(1), EncodeDate(2023, 4, 1));
    w.grid->Init();
    // A 30-day month keeps nothing in row 31.
    QVERIFY(!w.cell(31, 1).vikend);
    QVERIFY(w.cell(30, 1).vikend);
}

void TestMonthGrid::casOdAndAktivujCas()
{
    MonthWindow w(EncodeDate(2024, 1, 5));
    QVERIFY(w.show());
    w.grid->SetCasOd(8);
    QCOMPARE(w.grid->CasOd(), 8);
    QCOMPARE(w.grid->LeftCol(), 33);
    QCOMPARE(w.grid->Col(), 33);
    QCOMPARE(w.grid->Row(), 5);
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
    QTest::newRow("15 span") << 15 << 41 << 44 << QTime(10, 0) << QTime(11, 0);
    QTest::newRow("15 reversed") << 15 << 44 << 41 << QTime(10, 0) << QTime(11, 0);
    QTest::newRow("5 first") << 5 << 1 << 1 << QTime(0, 0) << QTime(0, 5);
    QTest::newRow("5 last") << 5 << 288 << 288 << QTime(23, 55) << QTime(23, 59);
    QTest::newRow("10 last") << 10 << 144 << 144 << QTime(23, 50) << QTime(23, 59);
    QTest::newRow("20 middle") << 20 << 2 << 3 << QTime(0, 20) << QTime(1, 0);
    QTest::newRow("20 last") << 20 << 1 << 72 << QTime(0, 0) << QTime(23, 59);
    QTest::newRow("past the end") << 20 << 70 << 500 << QTime(23, 0) << QTime(23, 59);
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
    QCOMPARE(grid.GetSelCellStartTime(), Cas(od.hour(), od.minute()));
    QCOMPARE(grid.GetSelCellEndTime(), Cas(konec.hour(), konec.minute()));
}

void TestMonthGrid::entriesMarkTheSlotsTheyMeet()
{
    MonthWindow w(EncodeDate(2024, 1, 1));
    TDayRecord prvni = Zaznam(1, 3, Cas(10, 0, 30), Cas(10, 30, 45), "Kontrola");
    prvni.SPLNENO = 100;
    TDayRecord druhy = Zaznam(2, 3, Cas(10, 15), Cas(11, 0), "Odběr");
    druhy.Soukrome = true;
    w.add(prvni);
    w.add(druhy);
    w.add(Zaznam(3, 4, Cas(9, 0), Cas(9, 0), "Telefon"));
    w.add(Zaznam(4, 4, Cas(23, 50), Cas(23, 59), "Pozdě"));
    w.add(Zaznam(5, 4, -Cas(1, 0), Cas(2, 0), "Záporný"));
    w.add(Zaznam(6, 4, Cas(12, 0), Cas(11, 0), "Obrácený"));
    w.grid->Init();

    QVERIFY(!w.cell(3, 40).zaznam); // ends where the entry starts
    QVERIFY(w.cell(3, 41).zaznam);
    QCOMPARE(w.cell(3, 41).splneno, 100);
    QVERIFY(!w.cell(3, 41).soukrom);
    QCOMPARE(w.cell(3, 42).splneno, 100); // the first entry found wins
    QVERIFY(w.cell(3, 44).zaznam);
    QVERIFY(w.cell(3, 44).soukrom);
    QVERIFY(!w.cell(3, 45).zaznam);

    QVERIFY(w.cell(4, 37).zaznam); // zero length: the slot that holds it
    QVERIFY(!w.cell(4, 36).zaznam);
    QVERIFY(!w.cell(4, 38).zaznam);
    QVERIFY(w.cell(4, 96).zaznam);
    QVERIFY(!w.cell(4, 95).zaznam);
    for (int c = 1; c <= 9; ++c)
        QVERIFY(!w.cell(4, c).zaznam);
    QVERIFY(!w.cell(4, 45).zaznam);
    QVERIFY(!w.cell(4, 48).zaznam);
}

void TestMonthGrid::entryHintLines()
{
    MonthWindow w(EncodeDate(2023, 10, 1));
    w.add(Zaznam(1, 28, Cas(8, 0), Cas(8, 30), " Kontrola ", "Novák Jan", "MD"));
    w.add(Zaznam(2, 28, Cas(8, 15), Cas(9, 0), "", "Dvořák"));
    w.add(Zaznam(3, 28, Cas(8, 15, 40), Cas(8, 45), "Odběr"));
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

void TestMonthGrid::workingHoursByWeekParity()
{
    // 1 January 2024 is a Monday of ISO week 1, 8 January of week 2.
    MonthWindow w(EncodeDate(2024, 1, 1));
    TDiarNastaveni n = Nastaveni();
    n.pracDobaLichy[1] = {Cas(8, 0), Cas(12, 0), Cas(13, 0), Cas(14, 0)};
    n.pracDobaSudy[1] = {Cas(13, 0), Cas(17, 0), Cas(18, 0), Cas(18, 0)};
    n.pracDobaLichy[2] = {Cas(7, 0), Cas(7, 0), 0, 0};
    w.grid->SetDiarNastaveni(n);
    w.grid->Init();

    for (int den : {1, 15, 29}) {
        QVERIFY(!w.cell(den, 32).pracDoba);
        QVERIFY(w.cell(den, 33).pracDoba);
        QCOMPARE(w.cell(den, 33).barva, kPracDoba);
        QVERIFY(w.cell(den, 48).pracDoba);
        QVERIFY(!w.cell(den, 49).pracDoba);
        QVERIFY(w.cell(den, 53).pracDoba); // the second interval
        QVERIFY(!w.cell(den, 57).pracDoba);
    }
    for (int den : {8, 22}) {
        QVERIFY(!w.cell(den, 33).pracDoba);
        QVERIFY(w.cell(den, 53).pracDoba);
        QVERIFY(w.cell(den, 68).pracDoba);
        QVERIFY(!w.cell(den, 69).pracDoba);
        QVERIFY(!w.cell(den, 73).pracDoba); // an empty interval marks nothing
    }
    for (int c = 1; c <= 96; ++c)
        QVERIFY(!w.cell(2, c).pracDoba);
    QVERIFY(!w.cell(3, 33).pracDoba);

    // Rebuilding one day rebuilds only that day.
    n.pracDobaLichy[1] = TPracDobaCas();
    w.grid->SetDiarNastaveni(n);
    w.grid->InitVykreslovani(15);
    QVERIFY(!w.cell(15, 33).pracDoba);
    QVERIFY(w.cell(1, 33).pracDoba);
}

void TestMonthGrid::bookingHoursReplaceWorkingHours()
{
    MonthWindow w(EncodeDate(2024, 1, 1));
    TDiarNastaveni n = Nastaveni();
    n.pracDobaLichy[3] = {Cas(8, 0), Cas(12, 0), 0, 0};
    n.pracDobaSudy[3] = n.pracDobaLichy[3];
    n.objednaniKLekari[3] = {{Cas(9, 0), Cas(10, 0), 0, 0}, {Cas(15, 0), Cas(16, 0), 0, 0}};
    w.grid->SetDiarNastaveni(n);
    w.grid->Init();
    for (int den : {3, 10}) {
        QCOMPARE(w.cell(den, 33).barva, kPracDoba);
        QCOMPARE(w.cell(den, 37).barva, kObjednani);
        QCOMPARE(w.cell(den, 40).barva, kObjednani);
        QCOMPARE(w.cell(den, 41).barva, kPracDoba);
        QVERIFY(w.cell(den, 61).pracDoba);
        QCOMPARE(w.cell(den, 61).barva, kObjednani);
    }
}

void TestMonthGrid::leaveMarksAndHints()
{
    MonthWindow w(EncodeDate(2024, 1, 1));
    TDiarNastaveni n = Nastaveni();
    n.dovolena = {Dovolena(EncodeDate(2024, 1, 10), Cas(12, 0), EncodeDate(2024, 1, 12),
                           Cas(10, 0), "hory")};
    TDovolena vlastni = Dovolena(EncodeDate(2024, 1, 20), Cas(8, 0), EncodeDate(2024, 1, 20),
                                 Cas(9, 0));
    vlastni.BarvaIsSet = true;
    vlastni.Barva = kVlastniDovolena;
    n.dovolena.append(vlastni);
    w.grid->SetDiarNastaveni(n);
    w.add(Zaznam(1, 11, Cas(9, 0), Cas(9, 15), "Kontrola"));
    w.grid->Init();

    QVERIFY(!w.cell(10, 48).dovolena);
    QVERIFY(w.cell(10, 49).dovolena);
    QCOMPARE(w.cell(10, 49).barva, kDovolena);
    QCOMPARE(w.cell(10, 49).hint, QStringLiteral("Dovolená: hory"));
    QVERIFY(w.cell(11, 1).dovolena);
    QVERIFY(w.cell(11, 96).dovolena);
    QCOMPARE(w.cell(11, 37).hint, QStringLiteral("09:00-09:15 Kontrola\r\nDovolená: hory"));
    QVERIFY(w.cell(12, 40).dovolena);
    QVERIFY(!w.cell(12, 41).dovolena);

    QVERIFY(w.cell(20, 33).dovolena);
    QCOMPARE(w.cell(20, 33).barva, kVlastniDovolena);
    QCOMPARE(w.cell(20, 33).hint, QString()); // no note, no line
    QVERIFY(!w.cell(20, 37).dovolena);
}

void TestMonthGrid::leaveFromPreviousMonthCoversWholeDays()
{
    MonthWindow w(EncodeDate(2024, 2, 1));
    TDiarNastaveni n = Nastaveni();
    n.dovolena = {Dovolena(EncodeDate(2024, 1, 30), Cas(12, 0), EncodeDate(2024, 3, 2),
                           Cas(10, 0), "léčení")};
    w.grid->SetDiarNastaveni(n);
    w.grid->Init();
    for (int den : {1, 15, 29}) {
        QVERIFY(w.cell(den, 1).dovolena);
        QVERIFY(w.cell(den, 96).dovolena);
    }
    QVERIFY(!w.cell(0, 1).dovolena);
}

void TestMonthGrid::konfigZaznam()
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

    n.dovolena = {Dovolena(EncodeDate(2024, 1, 3), Cas(23, 50), EncodeDate(2024, 1, 5),
                           Cas(0, 10))};
    grid.SetDiarNastaveni(n);
    QVERIFY(grid.ExistujeKonfigZaznam(1, 40, barva));
    QCOMPARE(barva, kPracDoba);
    QVERIFY(grid.ExistujeKonfigZaznam(1, 33, barva));
    QVERIFY(!grid.ExistujeKonfigZaznam(1, 32, barva));
    QCOMPARE(barva, clWhite);
    QVERIFY(!grid.ExistujeKonfigZaznam(1, 49, barva));
    QVERIFY(!grid.ExistujeKonfigZaznam(1, 55, barva)); // only the first interval counts
    QVERIFY(!grid.ExistujeKonfigZaznam(8, 40, barva)); // even week, no hours

    QVERIFY(!grid.ExistujeKonfigZaznam(3, 95, barva));
    QVERIFY(grid.ExistujeKonfigZaznam(3, 96, barva)); // ends at 23:59
    QCOMPARE(barva, kDovolena);
    QVERIFY(grid.ExistujeKonfigZaznam(4, 1, barva));
    QVERIFY(grid.ExistujeKonfigZaznam(5, 1, barva));
    QVERIFY(!grid.ExistujeKonfigZaznam(5, 2, barva));
    QVERIFY(!grid.ExistujeKonfigZaznam(6, 1, barva));
}

void TestMonthGrid::existujeZaznam()
{
    TMonthGrid grid(nullptr, 15);
    grid.SetDatum(EncodeDate(2024, 1, 1));
    TColor barva = 0;
    int splneno = -1;
    QVERIFY(!grid.ExistujeZaznam(5, 41, barva, splneno));

    TMonthArray zaznamy(0, 0);
    TDayRecord z = Zaznam(1, 5, Cas(10, 0), Cas(10, 30));
    z.Soukrome = true;
    z.SPLNENO = 40;
    zaznamy.AddDayRecord(z, zaznamy.SlotOfDay(5));
    zaznamy.AddDayRecord(Zaznam(2, 5, Cas(10, 0), Cas(11, 0)), zaznamy.SlotOfDay(5));
    grid.SetZaznamy(&zaznamy);
    QVERIFY(grid.ExistujeZaznam(5, 42, barva, splneno));
    QCOMPARE(barva, BarvaSchuzkyMonth[true]);
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
    n.pracDobaLichy[2] = {Cas(8, 0), Cas(12, 0), 0, 0};
    n.pracDobaSudy[2] = n.pracDobaLichy[2];
    n.dovolena = {Dovolena(EncodeDate(2023, 10, 5), Cas(8, 0), EncodeDate(2023, 10, 5),
                           Cas(9, 0))};
    w.grid->SetDiarNastaveni(n);
    TDayRecord hotovy = Zaznam(1, 3, Cas(9, 0), Cas(9, 15), "Hotovo");
    hotovy.SPLNENO = 100;
    w.add(hotovy);
    TDayRecord soukromy = Zaznam(2, 3, Cas(9, 15), Cas(9, 30), "Soukromé");
    soukromy.Soukrome = true;
    w.add(soukromy);
    w.add(Zaznam(3, 28, Cas(10, 0), Cas(10, 15), "O svátku"));
    w.grid->Init();
    QVERIFY(w.show());

    QCOMPARE(w.pixel(37, 3), Barva(0x0000FF));
    QCOMPARE(w.pixel(37, 3, {4, 6}), QColor(Qt::black)); // crossed out when done
    QCOMPARE(w.pixel(38, 3), Barva(0xE0C545));
    QCOMPARE(w.pixel(33, 3), Barva(kPracDoba));
    QCOMPARE(w.pixel(33, 4), Barva(clWhite)); // Wednesday has no hours
    QCOMPARE(w.pixel(33, 5), Barva(kDovolena));
    QCOMPARE(w.pixel(41, 28), Barva(0x0000FF)); // the entry before the holiday
    QCOMPARE(w.pixel(42, 28), Barva(kSvatek));  // the holiday before the weekend
    QCOMPARE(w.pixel(42, 1), Barva(kSoNe));
    QCOMPARE(w.pixel(0, 1, {17, 1}), Barva(kSoNe));
    QCOMPARE(w.pixel(0, 4, {17, 1}), Barva(clWhite));
    QCOMPARE(w.pixel(3, 0, {4, 1}), Barva(clWhite));

    // The selection in one row covers everything else.
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(37, 3));
    const QColor highlight = w.grid->palette().color(QPalette::Highlight);
    QCOMPARE(w.pixel(37, 3), highlight);
    QCOMPARE(w.pixel(38, 3), Barva(0xE0C545));
    // The current row is outlined, a dotted half hour line and a black hour line.
    QCOMPARE(w.pixel(50, 3, {4, 0}), Barva(0x1389CD));
    QCOMPARE(w.pixel(50, 3, {4, 12}), Barva(0x1389CD));
    QCOMPARE(w.pixel(50, 6, {4, 0}), Barva(clSilver));
    QCOMPARE(w.pixel(49, 6, {0, 6}), QColor(Qt::black));
    QCOMPARE(w.pixel(50, 6, {0, 6}), Barva(clSilver));
    QVERIFY(w.leftEdge(51, 6).contains(QColor(0x80, 0x80, 0x80)));
    QVERIFY(!w.leftEdge(50, 6).contains(QColor(0x80, 0x80, 0x80)));
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

    // Clicking the day column selects nothing.
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(0, 9));
    QCOMPARE(w.grid->Row(), 6);
}

void TestMonthGrid::hintAfterMouseRests()
{
    MonthWindow w(EncodeDate(2024, 1, 1));
    w.add(Zaznam(1, 4, Cas(10, 0), Cas(10, 30), "Kontrola", "Novák"));
    w.add(Zaznam(2, 4, Cas(10, 15), Cas(10, 30), "Odběr"));
    w.grid->Init();
    QVERIFY(w.show());

    QTest::mouseMove(w.grid->viewport(), w.centre(42, 4));
    QVERIFY(!w.grid->HintActive());
    QTRY_VERIFY(w.grid->HintActive());
    QCOMPARE(w.grid->HintText(), QStringLiteral("10:00-10:30 Novák: Kontrola\r\n  10:15-10:30 Odběr"));
    QVERIFY(w.grid->HintWindow()->isVisible());
    QCOMPARE(w.grid->HintWindow()->text(),
             QStringLiteral("10:00-10:30 Novák: Kontrola\n  10:15-10:30 Odběr"));

    // Moving within the cell keeps it, onto another cell hides it.
    QTest::mouseMove(w.grid->viewport(), w.centre(42, 4) + QPoint(1, 1));
    QVERIFY(w.grid->HintActive());
    QTest::mouseMove(w.grid->viewport(), w.centre(41, 4));
    QVERIFY(!w.grid->HintActive());
    QVERIFY(!w.grid->HintWindow()->isVisible());
    QTRY_VERIFY(w.grid->HintActive());
    QCOMPARE(w.grid->HintText(), QStringLiteral("10:00-10:30 Novák: Kontrola"));
    // It lives for a while, then goes.
    QTest::qWait(300);
    QVERIFY(w.grid->HintActive());
    QTRY_VERIFY_WITH_TIMEOUT(!w.grid->HintActive(), 6000);
    QVERIFY(!w.grid->HintWindow()->isVisible());

    // A cell without a hint shows none.
    QTest::mouseMove(w.grid->viewport(), w.centre(60, 4));
    QTest::qWait(400);
    QVERIFY(!w.grid->HintActive());
}

void TestMonthGrid::hintKeptInsideScreen()
{
    MonthWindow w(EncodeDate(2024, 1, 1));
    w.add(Zaznam(1, 2, Cas(18, 0), Cas(19, 0), "Velmi dlouhý popis návštěvy", "Pacient s dlouhým jménem"));
    w.grid->Init();
    QVERIFY(w.show());
    const QRect screen = w.grid->screen()->availableGeometry();
    const int col = 73;
    const QPoint global = w.grid->viewport()->mapToGlobal(w.centre(col, 2));
    if (global.x() >= screen.right())
        QSKIP("the cell lies beyond the screen");
    QTest::mouseMove(w.grid->viewport(), w.centre(col, 2));
    QTRY_VERIFY(w.grid->HintActive());
    QVERIFY(w.grid->HintWindow()->frameGeometry().right() <= screen.right());
    QVERIFY(w.grid->HintWindow()->frameGeometry().left() >= screen.left());
}

QTEST_MAIN(TestMonthGrid)
#include "tst_monthgrid.moc"
