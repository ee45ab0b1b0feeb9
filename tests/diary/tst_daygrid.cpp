#include "DiaryTestSupport.h"

#include "support/TestSupport.h"

#include <QTest>

using namespace oxa;

using test::Cas;

namespace {

// A day grid wide enough for all its slots.
struct DayWindow : test::GridWindow<TDayGrid>
{
    explicit DayWindow(TDate datum) : GridWindow(datum, {960, 60}) { }
    void add(int den, TTime od, TTime doCasu, const char *popis)
    {
        GridWindow::add(test::Zaznam(den, od, doCasu, popis));
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
    void mouseDrawingAndHint();
};

void TestDayGrid::constructionAndDatum()
{
    DayWindow w(EncodeDate(2024, 1, 1));
    QCOMPARE(w.grid->SelColFrom(), 49);
    // Halves of the start go to the even neighbour too.
    w.grid->setSelectionStartTime(Cas(0, 7, 30), Cas(3, 0));
    QCOMPARE(w.grid->SelColFrom(), 1);
    w.grid->setSelectionStartTime(Cas(0, 22, 30), Cas(3, 0));
    QCOMPARE(w.grid->SelColFrom(), 3);

    // A new date keeps the prepared cells of the month; Init rebuilds them.
    w.add(9, Cas(8, 0), Cas(9, 0), "Kontrola");
    w.grid->Init();
    w.zaznamy.Clear();
    w.grid->SetDatum(EncodeDate(2024, 1, 9));
    QCOMPARE(w.grid->Row(), 1);
    QVERIFY(w.cell(9, 33).zaznam);
    w.grid->Init();
    QVERIFY(!w.cell(9, 33).zaznam);
}

void TestDayGrid::selectionTimes_data()
{
    QTest::addColumn<int>("minut");
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("right");
    QTest::addColumn<QTime>("od");
    QTest::addColumn<QTime>("konec");
    QTest::addColumn<int>("to");
    // The end column is counted in slots per hour, not per day.
    QTest::newRow("15 eight to nine") << 15 << 33 << 36 << QTime(8, 0) << QTime(9, 0) << 2; // 1.5
    QTest::newRow("15 to three") << 15 << 57 << 60 << QTime(14, 0) << QTime(15, 0) << 2;    // 2.5
    QTest::newRow("15 first slot") << 15 << 1 << 1 << QTime(0, 0) << QTime(0, 15) << 0;
    QTest::newRow("5 last slot") << 5 << 288 << 288 << QTime(23, 55) << QTime(23, 59) << 12;
    QTest::newRow("20 whole day") << 20 << 1 << 72 << QTime(0, 0) << QTime(23, 59) << 3;
}

void TestDayGrid::selectionTimes()
{
    QFETCH(int, minut);
    QFETCH(int, left);
    QFETCH(int, right);
    QFETCH(QTime, od);
    QFETCH(QTime, konec);
    QFETCH(int, to);
    TDayGrid grid(nullptr, minut);
    grid.SetSelection(TGridRect{left, 1, right, 1});
    QCOMPARE(grid.GetSelectionStartCell(), left - 1);
    QCOMPARE(grid.GetSelectionEndCell(), right);
    QCOMPARE(TruncToMinutes(grid.GetSelectionStartTime()), Cas(od));
    QCOMPARE(TruncToMinutes(grid.GetSelectionEndTime()), Cas(konec));
    grid.setSelectionStartTime(Cas(od), Cas(konec));
    QCOMPARE(grid.SelColFrom(), left);
    QCOMPARE(grid.SelColTo(), to);
}

void TestDayGrid::mouseDrawingAndHint()
{
    // Saturday 28 October 2023, a public holiday.
    DayWindow w(EncodeDate(2023, 10, 28));
    TDiarNastaveni n;
    n.barvaSvatek = 0x00FF00;
    w.add(28, Cas(10, 0), Cas(10, 30), "Kontrola");
    w.add(1, Cas(9, 0), Cas(9, 15), "Jiný den");
    w.settings(n);
    QVERIFY(test::ShowAndActivate(&w.window));
    QCOMPARE(w.pixel(41), ColorToQColor(0x0000FF));
    QCOMPARE(w.pixel(60), ColorToQColor(0xE0E0E0)); // no holiday colour: the weekday's own

    // Selecting with the mouse repaints the chosen slots at once.
    QTest::mousePress(w.grid->viewport(), Qt::LeftButton, {}, w.centre(41));
    QTest::mouseMove(w.grid->viewport(), w.centre(42));
    QTest::mouseRelease(w.grid->viewport(), Qt::LeftButton, {}, w.centre(44));
    QCOMPARE(w.grid->GetSelectionStartTime(), Cas(10, 0));
    QCOMPARE(w.grid->GetSelectionEndTime(), Cas(11, 0));
    QCOMPARE(w.grid->MouseDownDatum(), EncodeDate(2023, 10, 28));
    QCOMPARE(w.pixel(41), w.grid->palette().color(QPalette::Highlight));

    // A click or double click on the header column does nothing.
    QTest::mouseDClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(0));
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(0));
    QCOMPARE(w.grid->Selection(), (TGridRect{41, 1, 44, 1}));

    // The hint is that of the day's row in the month's cells.
    QTest::mouseMove(w.grid->viewport(), w.centre(37));
    QTRY_VERIFY(w.grid->HintActive());
    QCOMPARE(w.grid->HintText(),
             QStringLiteral("(28.10.) Den vzniku samostatného československého státu"));
    QTest::mouseMove(w.grid->viewport(), w.centre(42));
    QTRY_COMPARE(w.grid->HintText(), QStringLiteral("10:00-10:30 Kontrola"));
}

QTEST_MAIN(TestDayGrid)
#include "tst_daygrid.moc"
