#include "oxa/toolkit/DateUtils.h"
#include "oxa/toolkit/Exceptions.h"

#include <QTest>
#include <cmath>

using namespace oxa;

class TestDateUtils : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void encodeDecodeAndDatesBeforeTheEpoch();
    void incMonthClampsTheDay_data();
    void incMonthClampsTheDay();
    void isoWeekdayAndWeek_data();
    void isoWeekdayAndWeek();
    void formatDateTime_data();
    void formatDateTime();
    void formatStrToDate_data();
    void formatStrToDate();
};

void TestDateUtils::encodeDecodeAndDatesBeforeTheEpoch()
{
    QCOMPARE(EncodeDate(1899, 12, 30), 0.0);
    QCOMPARE(EncodeDate(2019, 1, 31), 43496.0);
    for (int days = -40000; days <= 110000; days += 7) {
        int y = 0, m = 0, d = 0;
        DecodeDate(ComposeDateTime(days, 0.75), y, m, d);
        QCOMPARE(EncodeDate(y, m, d), double(days));
    }
    QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeDate(2019, 2, 29));
    QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeDate(0, 1, 1));
    QVERIFY(!DateTimeToQDate(std::nan("")).isValid());
    // Before the epoch the time is the absolute fraction: -1.25 is 29.12.1899 6:00.
    QCOMPARE(FormatDateTime(QStringLiteral("dd.mm.yyyy hh:nn"), -1.25),
             QStringLiteral("29.12.1899 06:00"));
    QCOMPARE(IncDay(-1.25, 2), 1.25);
    QCOMPARE(IncDay(0.5, -2), -2.5);
    QCOMPARE(IncMinute(-1.25, 18 * 60), 0.0);
}

void TestDateUtils::incMonthClampsTheDay_data()
{
    QTest::addColumn<QDate>("from");
    QTest::addColumn<int>("months");
    QTest::addColumn<QDate>("expected");
    QTest::newRow("31.1. + 1, common year") << QDate(2019, 1, 31) << 1 << QDate(2019, 2, 28);
    QTest::newRow("31.1. + 1, leap year") << QDate(2020, 1, 31) << 1 << QDate(2020, 2, 29);
    QTest::newRow("back across the year") << QDate(2020, 1, 31) << -13 << QDate(2018, 12, 31);
    QTest::newRow("IncYear on 29.2.") << QDate(2020, 2, 29) << 12 << QDate(2021, 2, 28);
}

void TestDateUtils::incMonthClampsTheDay()
{
    QFETCH(QDate, from);
    QFETCH(int, months);
    QFETCH(QDate, expected);
    const TDateTime noon = QDateToDateTime(from) + 0.5;
    QCOMPARE(IncMonth(noon, months), QDateToDateTime(expected) + 0.5);
    if (months % 12 == 0)
        QCOMPARE(IncYear(noon, months / 12), QDateToDateTime(expected) + 0.5);
    QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(EncodeDate(9999, 12, 1), 1));
}

void TestDateUtils::isoWeekdayAndWeek_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<int>("isoDay");
    QTest::addColumn<int>("week");
    QTest::newRow("1.1.2021 in week 53 of 2020") << QDate(2021, 1, 1) << 5 << 53;
    QTest::newRow("1.1.2017, a Sunday in week 52") << QDate(2017, 1, 1) << 7 << 52;
    QTest::newRow("31.12.2024 in week 1") << QDate(2024, 12, 31) << 2 << 1;
}

void TestDateUtils::isoWeekdayAndWeek()
{
    QFETCH(QDate, date);
    QFETCH(int, isoDay);
    QFETCH(int, week);
    const TDateTime value = QDateToDateTime(date) + 0.99;
    QCOMPARE(DayOfTheWeek(value), isoDay);
    QCOMPARE(DayOfWeek(value), isoDay % 7 + 1);
    QCOMPARE(WeekOf(value), week);
}

void TestDateUtils::formatDateTime_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("expected");
    // Monday 4 February 2019 08:05:09
    const char *rows[][3] = {{"short tokens", "d.m.yy", "4.2.19"},
                             {"names", "ddd dddd mmm mmmm", "po pondělí úno únor"},
                             {"time", "h:n:s hh:nn:ss", "8:5:9 08:05:09"},
                             {"m after h is minutes", "hh:mm h m", "08:05 8 5"},
                             {"quoted literals", "'den' d \"v\" hh'm'mm", "den 4 v 08m05"},
                             {"separators, any case", "dd/MM/yyyy MMMM", "04.02.2019 únor"},
                             {"c", "c", "04.02.2019 8:05:09"}};
    for (const auto &[name, format, expected] : rows)
        QTest::newRow(name) << QString::fromUtf8(format) << QString::fromUtf8(expected);
}

void TestDateUtils::formatDateTime()
{
    QFETCH(QString, format);
    QFETCH(QString, expected);
    QCOMPARE(FormatDateTime(format, EncodeDate(2019, 2, 4) + EncodeTime(8, 5, 9)), expected);
}

void TestDateUtils::formatStrToDate_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QDate>("expected"); // invalid: refused
    const int century = QDate::currentDate().year() / 100 * 100;
    const struct
    {
        const char *name, *text, *format;
        QDate expected;
    } rows[] = {{"d.m.yyyy", "1.2.2019", "", QDate(2019, 2, 1)},
                {"dd.mm.yy", "31.01.19", "", QDate(century + 19, 1, 31)},
                {"ddmmyyyy", "31012019", "", QDate(2019, 1, 31)},
                {"blanks and placeholders", " 1_. 2.2019 ", "", QDate(2019, 2, 1)},
                {"format, toolkit separator", "3.1.2019", "dd/mm/yyyy", QDate(2019, 1, 3)},
                {"format, year first", "2019-01-31", "yyyy-mm-dd", QDate(2019, 1, 31)},
                {"29.2. in a common year", "29.02.2019", "", QDate()},
                {"untouched mask", "  .  .    ", "", QDate()},
                {"three-digit year", "1.1.201", "", QDate()},
                {"format, extra digit", "310120197", "ddmmyyyy", QDate()}};
    for (const auto &row : rows)
        QTest::newRow(row.name) << QString(row.text) << QString(row.format) << row.expected;
}

void TestDateUtils::formatStrToDate()
{
    QFETCH(QString, text);
    QFETCH(QString, format);
    QFETCH(QDate, expected);
    try {
        QCOMPARE(DateTimeToQDate(FormatStrToDate(text, format)), expected);
    } catch (const EConvertError &error) {
        QVERIFY(!expected.isValid());
        QCOMPARE(error.Message(), QStringLiteral("'%1' není platné datum").arg(text));
    }
}

QTEST_GUILESS_MAIN(TestDateUtils)
#include "tst_dateutils.moc"
