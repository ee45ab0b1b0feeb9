#include "BirthNumber.h"

#include <QTest>

// The birth number rules the demo's patient form checks before saving.
class TestBirthNumber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rules_data();
    void rules();
};

void TestBirthNumber::rules_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QDate>("born");
    QTest::addColumn<int>("sex");
    const int m = BirthNumber::Male, f = BirthNumber::Female;
    QTest::newRow("man") << "800101/1238" << true << QDate(1980, 1, 1) << m;
    QTest::newRow("without the slash") << "8001011238" << true << QDate(1980, 1, 1) << m;
    QTest::newRow("wrong check digit") << "800101/1239" << false << QDate() << m;
    QTest::newRow("woman: month + 50") << "736028/5163" << true << QDate(1973, 10, 28) << f;
    QTest::newRow("remainder 10, check digit 0")
        << "650512/1030" << true << QDate(1965, 5, 12) << m;
    QTest::newRow("2004 man: month + 20") << "042201/1238" << true << QDate(2004, 2, 1) << m;
    QTest::newRow("2004 woman: month + 70") << "047201/1232" << true << QDate(2004, 2, 1) << f;
    QTest::newRow("+20 before 2004 is no month") << "532201/123" << false << QDate() << m;
    QTest::newRow("nine digits, 1953") << "531231/123" << true << QDate(1953, 12, 31) << m;
    QTest::newRow("nine digits, 1954") << "540101/001" << false << QDate() << m;
    QTest::newRow("ten digits, 1954") << "540101/0010" << true << QDate(1954, 1, 1) << m;
    QTest::newRow("no such day") << "990230/1233" << false << QDate() << m;
    QTest::newRow("half typed") << "12345/" << false << QDate() << m;
    QTest::newRow("letters") << "80010a/1238" << false << QDate() << m;
}

void TestBirthNumber::rules()
{
    QFETCH(QString, typed);
    const BirthNumber number = BirthNumber::Parse(typed);
    QTEST(number.IsValid(), "valid");
    QCOMPARE(number.error.isEmpty(), number.IsValid());
    if (number.IsValid()) {
        QTEST(number.birthDate, "born");
        QTEST(int(number.sex), "sex");
    }
}

QTEST_MAIN(TestBirthNumber)
#include "tst_birthnumber.moc"
