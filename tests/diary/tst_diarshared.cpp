#include "DiaryTestSupport.h"

#include <QTest>

using namespace oxa;
using test::Cas;
using test::Klice;
using test::Polozka;

class TestDiarShared : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shortStrings();
    void storeSlots();
    void removingEntries();
    void findDayRecordBySpan_data();
    void findDayRecordBySpan();
};

void TestDiarShared::shortStrings()
{
    TDayRecord z;
    z.Popis = QString(34, QChar(0x0159));
    z.Parafa = QString(300, 'a');
    QCOMPARE(z.Popis.Text(), QString(33, QChar(0x0159)));
    QCOMPARE(z.Parafa.Length(), 255);
    // A character outside the basic plane is never cut in half.
    z.Popis = QString(32, 'a') + QString::fromUtf8("\xF0\x9F\x98\x80");
    QCOMPARE(z.Popis.Text(), QString(32, 'a'));
}

void TestDiarShared::storeSlots()
{
    TMonthArray store(3, 4);
    QCOMPARE(store.SlotCount(), 3 + 31 + 4);
    // February has 28 days; slots 29 to 31 exist all the same.
    store.AddDayRecord(Polozka(1), store.SlotOfDay(31));
    store.AddDayRecord(Polozka(2), -1);
    store.AddDayRecord(Polozka(3), store.SlotCount());
    QCOMPARE(Klice(store.GetDayRecordArray(31, true)), QList<qint32>{1});
    QCOMPARE(Klice(store.GetDayRecordArray(3 + 30, false)), QList<qint32>{1});
    QVERIFY(store.GetDayRecordArray(-1, false).empty());

    store.AddDayRecord(Polozka(4), store.SlotOfDay(15));
    store.AddDayRecord(Polozka(5), store.SlotOfDay(15));
    store.AddDayRecord(Polozka(6), 0); // before the month
    TCalDaysArray dny;
    dny[2] = 77; // every day is written
    store.getAktualniPocty(dny);
    for (int den = 1; den <= 31; ++den)
        QCOMPARE(dny[den], (den == 15 || den == 31) ? quint32(den) : 0u);
    QCOMPARE(store.getZaznamyCount(15), 2);

    // A copy is handed out; FindDayRecord by key points into the store.
    const TDayRecordArray kopie = store.GetDayRecordArray(15, true);
    PDayRecord paty = store.FindDayRecord(15, true, 5);
    QVERIFY(paty);
    paty->Popis = "upraveno";
    QCOMPARE(store.GetDayRecordArray(15, true)[1].Popis.Text(), QStringLiteral("upraveno"));
    QVERIFY(kopie[1].Popis.IsEmpty());
    QVERIFY(!store.FindDayRecord(15, true, 6));
    QVERIFY(!store.FindDayRecord(40, true, 1));

    store.Clear();
    QCOMPARE(store.SlotCount(), 38);
    QVERIFY(store.IsDayEmpty(store.SlotOfDay(15)));
}

void TestDiarShared::removingEntries()
{
    TMonthArray store(1, 1);
    store.AddDayRecord(Polozka(1), 4);
    store.AddDayRecord(Polozka(8, 0, 0, "první"), 4);
    store.AddDayRecord(Polozka(8, 0, 0, "druhý"), 4);
    store.AddDayRecord(Polozka(2), 4);
    store.RemoveDayRecord(4, 8);
    store.RemoveDayRecord(4, 77);
    const TDayRecordArray zbytek = store.GetDayRecordArray(4, false);
    QCOMPARE(Klice(zbytek), (QList<qint32>{1, 8, 2}));
    QCOMPARE(zbytek[1].Popis.Text(), QStringLiteral("druhý"));

    // One key removes one entry, the one in the lowest slot; the keys not
    // found stay.
    store.AddDayRecord(Polozka(3), 2);
    store.AddDayRecord(Polozka(3), 1);
    QStringList klice{"3", "ne", "42"};
    QVERIFY(store.RemoveRecords(klice));
    QCOMPARE(klice, (QStringList{"ne", "42"}));
    QVERIFY(store.IsDayEmpty(1));
    QVERIFY(!store.IsDayEmpty(2));
    QVERIFY(!store.RemoveRecords(klice));
}

void TestDiarShared::findDayRecordBySpan_data()
{
    QTest::addColumn<TTime>("od");
    QTest::addColumn<TTime>("doCasu");
    QTest::addColumn<QList<qint32>>("found");

    // Entry 1: 10:00:30 to 10:30:45, taken as 10:00 to 10:30.
    // Entry 2: the moment 10:15.  Entry 3: negative start, never found.
    QTest::newRow("last minute") << Cas(10, 29) << Cas(10, 30) << QList<qint32>{1};
    QTest::newRow("touches end") << Cas(10, 30, 10) << Cas(10, 45) << QList<qint32>{};
    QTest::newRow("touches start") << Cas(9, 45) << Cas(10, 0) << QList<qint32>{};
    QTest::newRow("encloses") << Cas(9, 0) << Cas(11, 0) << QList<qint32>{1, 2};
    QTest::newRow("moment at start") << Cas(10, 15) << Cas(10, 30) << QList<qint32>{1, 2};
    QTest::newRow("moment at end") << Cas(10, 0) << Cas(10, 15) << QList<qint32>{1};
}

void TestDiarShared::findDayRecordBySpan()
{
    QFETCH(TTime, od);
    QFETCH(TTime, doCasu);
    QFETCH(QList<qint32>, found);

    TMonthArray store(2, 0);
    store.AddDayRecord(Polozka(1, Cas(10, 0, 30), Cas(10, 30, 45)), store.SlotOfDay(6));
    store.AddDayRecord(Polozka(2, Cas(10, 15), Cas(10, 15)), store.SlotOfDay(6));
    store.AddDayRecord(Polozka(3, -Cas(10, 0), Cas(11, 0)), store.SlotOfDay(6));
    store.AddDayRecord(Polozka(4, Cas(10, 0), Cas(11, 0)), store.SlotOfDay(7));

    QList<qint32> klice;
    for (PDayRecord z : store.FindDayRecord(6, od, doCasu)) {
        QCOMPARE(z, store.FindDayRecord(6, true, z->ID_DIAR)); // a reference into the store
        klice.append(z->ID_DIAR);
    }
    QCOMPARE(klice, found);
}

QTEST_MAIN(TestDiarShared)
#include "tst_diarshared.moc"
