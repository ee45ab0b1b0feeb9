#include "oxa/diary/MonthGrid.h"

#include "support/TestSupport.h"

#include <QImage>
#include <QTest>

using namespace oxa;

namespace {

TTime Cas(int h, int n)
{
    return EncodeTime(h, n, 0, 0);
}

constexpr TColor kPracDoba = 0xC0FFC0;
constexpr TColor kSvatek = 0x00FF00;

// A day grid over a store, shown in a window wide enough for all its slots.
struct DayWindow
{
    QWidget window;
    TDayGrid *grid;
    TMonthArray zaznamy{0, 0};

    explicit DayWindow(TDate datum, int minut = 15)
    {
        grid = new TDayGrid(&window, minut);
        grid->setGeometry(0, 0, 960, 60);
        window.resize(980, 80);
        grid->SetZaznamy(&zaznamy);
        grid->SetDatum(datum);
    }
    void add(int den, TTime od, TTime doCasu, const char *popis, bool soukrome = false)
    {
        TDayRecord z;
        z.ID_DIAR = zaznamy.getZaznamyCount(den) + 1;
        z.Den = qint16(den);
        z.CasOd = od;
        z.CasDo = doCasu;
        z.Popis = popis;
        z.Soukrome = soukrome;
        zaznamy.AddDayRecord(z, zaznamy.SlotOfDay(den));
    }
    bool show()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        grid->setFocus();
        return grid->hasFocus();
    }
    QPoint centre(int col, int row = 1) const { return grid->CellRect(col, row).center(); }
    QColor pixel(int col, int row = 1, QPoint offset = {6, 3}) const
    {
        const QImage image = grid->viewport()->grab().toImage();
        return image.pixelColor(grid->CellRect(col, row).topLeft() + offset);
    }
};

} // namespace

class TestDayGrid : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void constructionAndDatum();
    void selectionTimes_data();
    void selectionTimes();
    void selectionStartTimeAsymmetry_data();
    void selectionStartTimeAsymmetry();
    void mouse();
    void drawnColours();
    void hintFromTheMonthCells();
};

void TestDayGrid::constructionAndDatum()
{
    DayWindow w(EncodeDate(2024, 1, 1));
    QCOMPARE(w.grid->RowCount(), 2);
    QCOMPARE(w.grid->Row(), 1);
    QCOMPARE(w.grid->ColCount(), 97);
    QCOMPARE(w.grid->SelColFrom(), 49);
    QCOMPARE(w.grid->SelColTo(), 49);

    // A new date keeps the prepared cells of the month; Init rebuilds them.
    w.add(9, Cas(8, 0), Cas(9, 0), "Kontrola");
    w.grid->Init();
    w.grid->SetDatum(EncodeDate(2024, 1, 9));
    QCOMPARE(w.grid->RowCount(), 2);
    QCOMPARE(w.grid->Row(), 1);
    QVERIFY(w.grid->DataPaint(9, 33).zaznam);
    w.zaznamy.Clear();
    w.grid->SetDatum(EncodeDate(2024, 1, 10));
    QVERIFY(w.grid->DataPaint(9, 33).zaznam);
    w.grid->Init();
    QVERIFY(!w.grid->DataPaint(9, 33).zaznam);
}

void TestDayGrid::selectionTimes_data()
{
    QTest::addColumn<int>("minut");
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("right");
    QTest::addColumn<int>("startCell");
    QTest::addColumn<QTime>("od");
    QTest::addColumn<QTime>("konec");
    QTest::newRow("15 ten to eleven") << 15 << 41 << 44 << 40 << QTime(10, 0) << QTime(11, 0);
    QTest::newRow("15 first slot") << 15 << 1 << 1 << 0 << QTime(0, 0) << QTime(0, 15);
    QTest::newRow("15 last slot") << 15 << 96 << 96 << 95 << QTime(23, 45) << QTime(23, 59);
    QTest::newRow("5 last slot") << 5 << 288 << 288 << 287 << QTime(23, 55) << QTime(23, 59);
    QTest::newRow("10 morning") << 10 << 49 << 54 << 48 << QTime(8, 0) << QTime(9, 0);
    QTest::newRow("20 whole day") << 20 << 1 << 72 << 0 << QTime(0, 0) << QTime(23, 59);
}

void TestDayGrid::selectionTimes()
{
    QFETCH(int, minut);
    QFETCH(int, left);
    QFETCH(int, right);
    QFETCH(int, startCell);
    QFETCH(QTime, od);
    QFETCH(QTime, konec);
    TDayGrid grid(nullptr, minut);
    grid.setSelection(left, 1, right, 1);
    QCOMPARE(grid.GetSelectionStartCell(), startCell);
    QCOMPARE(grid.GetSelectionEndCell(), right);
    QCOMPARE(TruncToMinutes(grid.GetSelectionStartTime()), Cas(od.hour(), od.minute()));
    QCOMPARE(TruncToMinutes(grid.GetSelectionEndTime()), Cas(konec.hour(), konec.minute()));
}

void TestDayGrid::selectionStartTimeAsymmetry_data()
{
    QTest::addColumn<int>("minut");
    QTest::addColumn<QTime>("od");
    QTest::addColumn<QTime>("konec");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    // The end is counted in slots per hour: 4 x 0.375 = 1.5 goes to 2.
    QTest::newRow("15 eight to nine") << 15 << QTime(8, 0) << QTime(9, 0) << 33 << 2;
    QTest::newRow("15 half to even down") << 15 << QTime(0, 7, 30) << QTime(3, 0) << 1 << 0;
    QTest::newRow("15 half to even up") << 15 << QTime(0, 22, 30) << QTime(15, 0) << 3 << 2;
    QTest::newRow("10 six o'clock") << 10 << QTime(6, 0) << QTime(6, 0) << 37 << 2;
    QTest::newRow("20 noon") << 20 << QTime(12, 0) << QTime(12, 0) << 37 << 2;
    QTest::newRow("5 evening") << 5 << QTime(18, 0) << QTime(20, 0) << 217 << 10;
}

void TestDayGrid::selectionStartTimeAsymmetry()
{
    QFETCH(int, minut);
    QFETCH(QTime, od);
    QFETCH(QTime, konec);
    QFETCH(int, from);
    QFETCH(int, to);
    TDayGrid grid(nullptr, minut);
    grid.setSelectionStartTime(EncodeTime(od.hour(), od.minute(), od.second(), 0),
                               EncodeTime(konec.hour(), konec.minute(), konec.second(), 0));
    QCOMPARE(grid.SelColFrom(), from);
    QCOMPARE(grid.SelColTo(), to);
}

void TestDayGrid::mouse()
{
    DayWindow w(EncodeDate(2024, 1, 9));
    int downs = 0;
    w.grid->OnMouseDown = [&](QObject *, TMouseButton, TShiftState, int, int) { ++downs; };
    QVERIFY(w.show());
    QTest::mousePress(w.grid->viewport(), Qt::LeftButton, {}, w.centre(41));
    QTest::mouseMove(w.grid->viewport(), w.centre(42));
    QTest::mouseRelease(w.grid->viewport(), Qt::LeftButton, {}, w.centre(44));
    QCOMPARE(w.grid->GetSelectionStartTime(), Cas(10, 0));
    QCOMPARE(w.grid->GetSelectionEndTime(), Cas(11, 0));
    QCOMPARE(w.grid->MouseDownDatum(), EncodeDate(2024, 1, 9));
    QCOMPARE(downs, 1);

    // A click or double click on the header column does nothing.
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(0));
    QTest::mouseDClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(0));
    QCOMPARE(downs, 1);
    QCOMPARE(w.grid->Selection(), (TGridRect{41, 1, 44, 1}));

    QTest::keyClick(w.grid, Qt::Key_End, Qt::ShiftModifier);
    QCOMPARE(w.grid->GetSelectionEndTime(), Cas(23, 59));
}

void TestDayGrid::drawnColours()
{
    // Saturday 28 October 2023, a public holiday.
    DayWindow w(EncodeDate(2023, 10, 28));
    TDiarNastaveni n;
    n.barvaSvatek = kSvatek;
    n.barvaPracDoba = kPracDoba;
    n.pracDobaSudy[6] = {Cas(8, 0), Cas(12, 0), 0, 0};
    n.pracDobaLichy[6] = n.pracDobaSudy[6];
    n.dovolena = {TDovolena{Cas(8, 0), Cas(9, 0), EncodeDate(2023, 11, 5), EncodeDate(2023, 11, 5),
                            false, 0, {}}};
    w.grid->SetDiarNastaveni(n);
    w.add(28, Cas(10, 0), Cas(10, 30), "Kontrola");
    w.add(28, Cas(11, 0), Cas(11, 15), "Soukromé", true);
    w.grid->setSelection(80, 1, 82, 1);
    QVERIFY(w.show());

    QCOMPARE(w.pixel(41), ColorToQColor(0x0000FF));
    QCOMPARE(w.pixel(45), ColorToQColor(0xE0C545));
    QCOMPARE(w.pixel(33), ColorToQColor(kPracDoba));
    // No holiday colour: the weekday's own.
    QCOMPARE(w.pixel(60), ColorToQColor(0xE0E0E0));
    const QColor highlight = w.grid->palette().color(QPalette::Highlight);
    QCOMPARE(w.pixel(81), highlight);
    QCOMPARE(w.pixel(81, 0, {6, 1}), ColorToQColor(clWhite));

    // Selecting with the mouse repaints the chosen slots at once.
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(41));
    QCOMPARE(w.pixel(41), highlight);
    QCOMPARE(w.pixel(81), ColorToQColor(0xE0E0E0));
}

void TestDayGrid::hintFromTheMonthCells()
{
    DayWindow w(EncodeDate(2024, 1, 9));
    w.add(9, Cas(8, 0), Cas(9, 0), "Kontrola");
    w.add(1, Cas(8, 0), Cas(9, 0), "Jiný den");
    w.grid->Init();
    QVERIFY(w.show());
    QTest::mouseMove(w.grid->viewport(), w.centre(34));
    QTRY_VERIFY(w.grid->HintActive());
    QCOMPARE(w.grid->HintText(), QStringLiteral("08:00-09:00 Kontrola"));
}

QTEST_MAIN(TestDayGrid)
#include "tst_daygrid.moc"
