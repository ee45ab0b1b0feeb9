#include "DiaryTestSupport.h"

#include "support/TestSupport.h"

#include "oxa/toolkit/GeometryScale.h"

#include <QLabel>
#include <QTest>

using namespace oxa;
using test::Cas;
using test::Zaznam;

namespace {

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
    n.barvaPracDoba = kPracDoba;
    n.barvaDovol = kDovolena;
    n.barvaObjednaniKLekari = kObjednani;
    return n;
}

TDovolena Dovolena(TDate od, TTime casOd, TDate doDne, TTime casDo, const char *poznamka = "")
{
    return TDovolena{casOd, casDo, od, doDne, false, 0, poznamka};
}

// A month grid large enough for a month of 15-minute slots.
struct MonthWindow : test::GridWindow<TMonthGrid>
{
    explicit MonthWindow(TDate datum) : GridWindow(datum, {960, 460})
    {
        grid->SetDiarNastaveni(Nastaveni());
    }
};

} // namespace

class TestMonthGrid : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The sizes asserted here are the designed pixels: scale 1.
    void initTestCase() { TGeometryScale::Instance()->SetFactor(1.0); }
    void cleanupTestCase() { TGeometryScale::Instance()->ResetFactor(); }
    void easterAgainstIndependentRule();
    void holidayCells();
    void selectionTimes_data();
    void selectionTimes();
    void entriesMarkTheSlotsTheyMeet();
    void workingAndBookingHours();
    void leave();
    void konfigAndZaznamQuestions();
    void drawnColours();
    void datumAndSelection();
    void hintAfterMouseRests();
};

// Every year has the eleven fixed days and the two of Easter, nothing else;
// 1954 and 1981 take the 18 and 19 April exceptions. The names keep their
// misspellings.
void TestMonthGrid::easterAgainstIndependentRule()
{
    const struct
    {
        int den, mesic;
        const char *text;
    } svatky[] = {
        {8, 5, "(08.05.) Den vítezství"},
        {24, 12, "(24.12.) Štedrý den"},
        {25, 12, "(25.12.) 1. svátek vánocní"},
    };
    for (int rok = 1900; rok <= 2099; ++rok) {
        const QDate pondeli = EasterSunday(rok).addDays(1);
        QCOMPARE(DateTimeToQDate(VelikonocniPondeli(rok)), pondeli);
        int pocet = 0;
        for (QDate day(rok, 1, 1); day.year() == rok; day = day.addDays(1))
            pocet += NazevSvatku(QDateToDateTime(day)).isEmpty() ? 0 : 1;
        QCOMPARE(pocet, 13);
        QCOMPARE(NazevSvatku(QDateToDateTime(pondeli)), QStringLiteral("Velikonoce"));
        QCOMPARE(NazevSvatku(QDateToDateTime(pondeli.addDays(-3))), QStringLiteral("Velký pátek"));
        for (const auto &s : svatky)
            QCOMPARE(NazevSvatku(EncodeDate(rok, s.mesic, s.den)), QString::fromUtf8(s.text));
    }
}

// The cells of every day show the day's holiday, also in 2024 when Good
// Friday (29 March) and Easter Monday (1 April) fall in two months.
void TestMonthGrid::holidayCells()
{
    for (int mesic = 1; mesic <= 12; ++mesic) {
        MonthWindow w(EncodeDate(2024, mesic, 1));
        w.grid->Init();
        for (int den = 1; den <= DaysInAMonth(2024, mesic); ++den) {
            const QString text = NazevSvatku(EncodeDate(2024, mesic, den));
            for (int c = 1; c <= 96; c += 19) {
                QCOMPARE(w.cell(den, c).svatek, !text.isEmpty());
                QCOMPARE(w.cell(den, c).hint, text);
            }
        }
    }
}

void TestMonthGrid::selectionTimes_data()
{
    QTest::addColumn<int>("minut");
    QTest::addColumn<int>("odSloupce");
    QTest::addColumn<int>("doSloupce");
    QTest::addColumn<QTime>("od");
    QTest::addColumn<QTime>("konec");
    QTest::newRow("5 last") << 5 << 288 << 288 << QTime(23, 55) << QTime(23, 59);
    QTest::newRow("15 first") << 15 << 1 << 1 << QTime(0, 0) << QTime(0, 15);
    QTest::newRow("15 reversed") << 15 << 44 << 41 << QTime(10, 0) << QTime(11, 0);
    QTest::newRow("20 past the end") << 20 << 70 << 500 << QTime(23, 0) << QTime(23, 59);
}

void TestMonthGrid::selectionTimes()
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
    for (const TDayRecord &z :
         {prvni, druhy, Zaznam(4, Cas(9, 0), Cas(9, 0)), Zaznam(4, Cas(23, 50), Cas(23, 59)),
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

    // ExistujeZaznam asks the store directly, by the same rule.
    TColor barva = 0;
    int splneno = -1;
    for (int den : {3, 4, 5})
        for (int c = 1; c <= 96; ++c)
            QCOMPARE(w.grid->ExistujeZaznam(den, c, barva, splneno), w.cell(den, c).zaznam);
    w.grid->SetZaznamy(nullptr);
    QVERIFY(!w.grid->ExistujeZaznam(3, 42, barva, splneno));
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

    const QList<int> cols = {32, 33, 37, 40, 41, 48, 49, 53, 56, 57, 65, 68, 69, 73};
    const auto barvy = [&](int den) {
        QList<TColor> result;
        for (int c : cols)
            result.append(w.cell(den, c).pracDoba ? w.cell(den, c).barva : clNone);
        return result;
    };
    const TColor P = kPracDoba, O = kObjednani, _ = clNone;
    const QList<TColor> lichy = {_, P, O, O, P, P, _, P, P, _, O, _, _, _};
    const QList<TColor> sudy = {_, _, O, O, _, _, _, P, P, P, O, P, _, _};
    for (int den : {1, 15, 29})
        QCOMPARE(barvy(den), lichy);
    for (int den : {8, 22})
        QCOMPARE(barvy(den), sudy);

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
    TDovolena vlastni =
        Dovolena(EncodeDate(2024, 1, 20), Cas(8, 0), EncodeDate(2024, 1, 20), Cas(9, 0));
    vlastni.BarvaIsSet = true;
    vlastni.Barva = kVlastni;
    n.dovolena = {
        Dovolena(EncodeDate(2024, 1, 10), Cas(12, 0), EncodeDate(2024, 1, 12), Cas(10, 0), "hory"),
        vlastni, Dovolena(EncodeDate(2023, 12, 30), Cas(12, 0), EncodeDate(2024, 1, 2), Cas(8, 0))};
    w.add(Zaznam(11, Cas(9, 0), Cas(9, 15), "Kontrola"));
    w.settings(n);

    QVERIFY(!w.cell(10, 48).dovolena);
    QCOMPARE(w.cell(10, 49).barva, kDovolena);
    QCOMPARE(w.cell(10, 49).hint, QStringLiteral("Dovolená: hory"));
    QVERIFY(w.cell(11, 1).dovolena && w.cell(11, 96).dovolena);
    QCOMPARE(w.cell(11, 37).hint, QStringLiteral("09:00-09:15 Kontrola\r\nDovolená: hory"));
    QVERIFY(w.cell(12, 40).dovolena && !w.cell(12, 41).dovolena);
    QCOMPARE(w.cell(20, 33).barva, kVlastni);
    QCOMPARE(w.cell(20, 33).hint, QString()); // no note, no line
    QVERIFY(!w.cell(20, 37).dovolena);
    // Begun in the previous month: the first day is covered whole.
    QVERIFY(w.cell(1, 1).dovolena && w.cell(1, 96).dovolena);
    QVERIFY(w.cell(2, 32).dovolena && !w.cell(2, 33).dovolena);
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

    n.dovolena = {
        Dovolena(EncodeDate(2024, 1, 3), Cas(23, 50), EncodeDate(2024, 1, 5), Cas(0, 10))};
    grid.SetDiarNastaveni(n);
    const auto konfig = [&](int den, int col) {
        TColor c = 0x123456;
        return grid.ExistujeKonfigZaznam(den, col, c) ? c : (c == clWhite ? clNone : c);
    };
    const QList<std::tuple<int, int, TColor>> cases = {
        {1, 33, kPracDoba}, {1, 48, kPracDoba}, {1, 32, clNone},
        {1, 49, clNone},    {1, 55, clNone},    // only the first interval counts
        {8, 40, clNone},                        // an even week has no hours
        {3, 95, clNone},    {3, 96, kDovolena}, // the last slot ends at 23:59
        {4, 1, kDovolena},  {5, 1, kDovolena},  {5, 2, clNone}};
    for (const auto &[den, col, expected] : cases)
        QCOMPARE(konfig(den, col), expected);
}

// The colours of the cells' data, a done entry crossed out, the holiday
// before the weekend, a selection over everything.
void TestMonthGrid::drawnColours()
{
    // October 2023: the 28th is a Saturday and a holiday, the 1st a Sunday.
    MonthWindow w(EncodeDate(2023, 10, 2));
    TDiarNastaveni n = Nastaveni();
    n.barvaSvatek = kSvatek;
    n.barvaSoNe = kSoNe;
    TDayRecord hotovy = Zaznam(3, Cas(9, 0), Cas(9, 15));
    hotovy.SPLNENO = 100;
    TDayRecord soukromy = Zaznam(3, Cas(9, 15), Cas(9, 30));
    soukromy.Soukrome = true;
    for (const TDayRecord &z : {hotovy, soukromy})
        w.add(z);
    w.settings(n);
    QVERIFY(w.show());

    QCOMPARE(w.pixel(37, 3), ColorToQColor(0x0000FF));
    QCOMPARE(w.pixel(37, 3, {4, 6}), QColor(Qt::black));
    QCOMPARE(w.pixel(38, 3), ColorToQColor(0xE0C545));
    QCOMPARE(w.pixel(42, 28), ColorToQColor(kSvatek));
    QCOMPARE(w.pixel(42, 1), ColorToQColor(kSoNe));
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(37, 3));
    QCOMPARE(w.pixel(37, 3), w.grid->palette().color(QPalette::Highlight));
}

void TestMonthGrid::datumAndSelection()
{
    QVERIFY_THROWS_EXCEPTION(EInvalidOperation, TMonthGrid(nullptr, 0)); // minutes a slot
    QVERIFY_THROWS_EXCEPTION(EInvalidOperation, TMonthGrid(nullptr, 61));
    MonthWindow w(EncodeDate(2023, 12, 10));
    w.grid->Init();
    QVERIFY(w.cell(31, 1).vikend); // a Sunday
    w.grid->SetDatum(EncodeDate(2024, 2, 9));
    QCOMPARE(w.grid->RowCount(), 30);
    QCOMPARE(w.grid->Row(), 9);
    w.grid->Init();
    QVERIFY(!w.cell(31, 1).vikend); // rows past the month keep nothing
    QVERIFY(w.show());

    w.grid->SetCasOd(8);
    QCOMPARE(w.grid->Col(), 33);
    w.grid->SetCasOd(30);
    QCOMPARE(w.grid->Col(), 96);
    w.grid->AktivujCas(Cas(23, 59, 59));
    QCOMPARE(w.grid->Col(), 96);
    w.grid->AktivujCas(Cas(10, 14, 59));
    QCOMPARE(w.grid->Col(), 41);
    QCOMPARE(w.grid->Row(), 9);
}

void TestMonthGrid::hintAfterMouseRests()
{
    // 28 October: the entries' lines replace the holiday name in the hint.
    MonthWindow w(EncodeDate(2023, 10, 1));
    w.add(Zaznam(28, Cas(10, 0), Cas(10, 30), " Kontrola ", "Novák Jan", "MD"));
    w.add(Zaznam(28, Cas(10, 15, 40), Cas(10, 45), "", "Dvořák"));
    w.grid->Init();
    QVERIFY(w.cell(28, 42).svatek);
    QVERIFY(w.show());
    QWidget *viewport = w.grid->viewport();

    QTest::mouseMove(viewport, w.centre(42, 28));
    QVERIFY(!w.grid->HintActive());
    QTRY_VERIFY(w.grid->HintActive() && w.grid->HintWindow()->isVisible());
    QCOMPARE(w.grid->HintWindow()->text(),
             QStringLiteral("MD  10:00-10:30 Novák Jan: Kontrola\n  10:15-10:45 Dvořák"));

    // Another cell hides it at once and shows its own.
    QTest::mouseMove(viewport, w.centre(43, 28));
    QVERIFY(!w.grid->HintActive() && !w.grid->HintWindow()->isVisible());
    QTRY_COMPARE(w.grid->HintText(), QStringLiteral("10:15-10:45 Dvořák"));
}

QTEST_MAIN(TestMonthGrid)
#include "tst_monthgrid.moc"
