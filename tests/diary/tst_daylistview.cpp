#include "oxa/diary/DayListView.h"
#include "oxa/toolkit/GeometryScale.h"

#include "DiaryTestSupport.h"
#include "support/TestSupport.h"

#include <QTest>

using namespace oxa;
using test::Cas;
using test::Polozka;

namespace {

QStringList Captions(const TDayListView &list)
{
    QStringList captions;
    for (int i = 0; i < list.Count(); ++i)
        captions << list.topLevelItem(i)->text(0);
    return captions;
}

} // namespace

class TestDayListView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The sizes asserted here are the designed pixels: scale 1.
    void initTestCase() { TGeometryScale::Instance()->SetFactor(1.0); }
    void cleanupTestCase() { TGeometryScale::Instance()->ResetFactor(); }
    void packedMonths();
    void itemsFollowTheirTimes();
    void columnsTextsAndLooks();
    void boxCaption_data();
    void boxCaption();
};

void TestDayListView::packedMonths()
{
    QCOMPARE(DateToMesicRok(EncodeDate(2000, 1, 15)), qint16(10001));
    QCOMPARE(DateToMesicRok(EncodeDate(2019, 4, 30) + Cas(23, 59)), qint16(11904));
    QCOMPARE(SpocitejDatum(1, 10001), EncodeDate(2000, 1, 1));
    QVERIFY_THROWS_EXCEPTION(EConvertError, SpocitejDatum(29, 11902));
    // Months before 1900 pack below zero and unpack to themselves.
    QCOMPARE(DateToMesicRok(EncodeDate(1899, 12, 31)), qint16(-88));
    QCOMPARE(TMesicRok(-88).Year(), 1899);
    QCOMPARE(SpocitejDatum(31, -88), EncodeDate(1899, 12, 31));
    QCOMPARE(TMesicRok(11902).LastDay(), EncodeDate(2019, 2, 28));
    QCOMPARE(SpocitejHodiny(Cas(8, 0), Cas(8, 0)), QStringLiteral("08:00-08:00"));
}

void TestDayListView::itemsFollowTheirTimes()
{
    TDayListView list;
    list.AddItem(Polozka(1, Cas(10, 0), Cas(10, 30)));
    list.AddItem(Polozka(2, Cas(8, 30), Cas(9, 0)));
    list.AddItem(Polozka(4, Cas(8, 30), Cas(8, 45)));
    list.AddItem(Polozka(5, Cas(11, 0), Cas(12, 0)));
    list.AddItem(Polozka(6, Cas(11, 0), Cas(12, 0)));
    QCOMPARE(
        Captions(list),
        (QStringList{"08:30-08:45", "08:30-09:00", "10:00-10:30", "11:00-12:00", "11:00-12:00"}));
    QCOMPARE(list.ItemRecord(4)->ID_DIAR, 6); // equal times keep their arrival order

    list.ChangeItem(Polozka(1, Cas(7, 0), Cas(7, 15), "změna"));
    QCOMPARE(list.VratIndexPrvku(1), 0);
    QCOMPARE(list.topLevelItem(0)->text(1), QStringLiteral("změna"));
    list.RemoveItem(2);
    QCOMPARE(list.Count(), 4);
    QCOMPARE(list.VratIndexPrvku(2), -1);
}

void TestDayListView::columnsTextsAndLooks()
{
    TDayListView list;
    TDayRecord hotovy = Polozka(1, Cas(8, 0), Cas(9, 0), " Převaz ");
    hotovy.KONTAKT = QStringLiteral("Novák Jan");
    hotovy.PODROBNOSTI = QStringLiteral("zpráva\r\nz RTG");
    hotovy.SPLNENO = 100;
    TDayRecord soukromy = Polozka(2, Cas(9, 0), Cas(10, 0), "soukromé");
    soukromy.Soukrome = true;
    list.AddItem(hotovy);
    list.AddItem(soukromy);
    QCOMPARE(list.topLevelItem(0)->text(1), QStringLiteral("Převaz : Novák Jan, zpráva z RTG"));
    QCOMPARE(TDayListView::FormatPopis("", "Novák", "zpráva"), QStringLiteral("Novák, zpráva"));
    QCOMPARE(TDayListView::FormatPopis("Převaz", " ", "zpráva"), QStringLiteral("Převaz : zpráva"));
    QCOMPARE(TDayListView::FormatPopis(" ", "", " "), QString());

    // Completed entries are struck out, private ones blue; the tip is the details.
    QVERIFY(list.topLevelItem(0)->font(1).strikeOut());
    QVERIFY(!list.topLevelItem(1)->font(0).strikeOut());
    QCOMPARE(list.topLevelItem(1)->foreground(1).color(), QColor(Qt::blue));
    QCOMPARE(list.topLevelItem(0)->toolTip(1), hotovy.PODROBNOSTI);
    QCOMPARE(list.topLevelItem(1)->toolTip(1), QString());

    list.SetNoTime(true);
    QVERIFY(list.isColumnHidden(0));
}

void TestDayListView::boxCaption_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("entries");
    QTest::addColumn<QString>("caption");

    QTest::newRow("89 pixels") << 89 << 0 << " 15.04 ";
    QTest::newRow("90 pixels") << 90 << 0 << " po 15. duben ";
    QTest::newRow("with entries") << 200 << 2 << " po 15. duben   (2) ";
}

void TestDayListView::boxCaption()
{
    QFETCH(int, width);
    QFETCH(int, entries);
    QFETCH(QString, caption);

    TDayGroupBox box;
    box.resize(width, 150);
    QList<qint16> months;
    box.DayListView()->OnDateOfMonthListView = [&months](QObject *, qint16 m) { months << m; };
    for (int i = 0; i < entries; ++i)
        box.DayListView()->AddItem(Polozka(i + 1, Cas(8 + i, 0), Cas(9 + i, 0)));
    box.SetDayMonthYear(15, 11904);
    QCOMPARE(box.title(), caption);
    QCOMPARE(box.DayListView()->Den(), 15);
    QCOMPARE(months, QList<qint16>{11904});
}

QTEST_MAIN(TestDayListView)
#include "tst_daylistview.moc"
