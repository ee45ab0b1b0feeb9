#include "oxa/toolkit/DateUtils.h"
#include "oxa/toolkit/Exceptions.h"

#include <QTest>
#include <cmath>

using namespace oxa;

class TestDateUtils : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void epochAndRoundTrip();
    void encodeRejectsImpossibleDates();
    void timeOfDayAcrossTheEpoch();
    void incMonthClampsTheDay_data();
    void incMonthClampsTheDay();
    void incMonthOutsideTheCalendarThrows();
    void isoWeekdayAndWeek_data();
    void isoWeekdayAndWeek();
    void formatDateTime_data();
    void formatDateTime();
    void formatStrToDateReads_data();
    void formatStrToDateReads();
    void formatStrToDateRejects_data();
    void formatStrToDateRejects();
    void formatStrToDateWithFormat_data();
    void formatStrToDateWithFormat();
};

void TestDateUtils::epochAndRoundTrip()
{
    QCOMPARE(EncodeDate(1899, 12, 30), 0.0);
    QCOMPARE(DateTimeToQDate(0), QDate(1899, 12, 30));
    QCOMPARE(EncodeDate(2019, 1, 31), 43496.0);

    // Every day of four centuries around the epoch decodes to what encoded it.
    for (int days = -40000; days <= 110000; days += 7) {
        int y = 0, m = 0, d = 0;
        DecodeDate(ComposeDateTime(days, 0.75), y, m, d);
        QCOMPARE(EncodeDate(y, m, d), double(days));
    }
    QCOMPARE(DateToStr(EncodeDate(1, 1, 1)), QStringLiteral("01.01.0001"));
    QCOMPARE(DateToStr(EncodeDate(9999, 12, 31)), QStringLiteral("31.12.9999"));
}

void TestDateUtils::encodeRejectsImpossibleDates()
{
    QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeDate(2019, 2, 29));
    QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeDate(2019, 13, 1));
    QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeDate(0, 1, 1));
    QCOMPARE(EncodeDate(2020, 2, 29), 43890.0);
    // Values that are no date at all decode to nothing instead of misbehaving.
    QVERIFY(!DateTimeToQDate(std::nan("")).isValid());
    QVERIFY(!DateTimeToQDate(1e300).isValid());
}

void TestDateUtils::timeOfDayAcrossTheEpoch()
{
    // Before the epoch the time is the absolute fraction: -1.25 is 29.12.1899 6:00.
    QCOMPARE(FormatDateTime(QStringLiteral("dd.mm.yyyy hh:nn"), -1.25),
             QStringLiteral("29.12.1899 06:00"));
    QCOMPARE(IncDay(-1.25, 2), 1.25);
    QCOMPARE(IncDay(0.5, -2), -2.5);
    QCOMPARE(IncMinute(-1.25, 18 * 60), 0.0);         // 29.12. 24:00 is 30.12. 0:00
    QCOMPARE(IncMinute(0.25, -12 * 60), -1.75);       // 29.12.1899 18:00
    QCOMPARE(ComposeDateTime(-3.9, 0.5), -3.5);
    QCOMPARE(DateOf(43496.75), 43496.0);
    QVERIFY(SameDate(43496.1, 43496.9));
}

void TestDateUtils::incMonthClampsTheDay_data()
{
    QTest::addColumn<QDate>("from");
    QTest::addColumn<int>("months");
    QTest::addColumn<QDate>("expected");
    QTest::newRow("31.1. + 1 in a common year") << QDate(2019, 1, 31) << 1 << QDate(2019, 2, 28);
    QTest::newRow("31.1. + 1 in a leap year") << QDate(2020, 1, 31) << 1 << QDate(2020, 2, 29);
    QTest::newRow("31.3. - 1") << QDate(2019, 3, 31) << -1 << QDate(2019, 2, 28);
    QTest::newRow("31.5. + 1") << QDate(2019, 5, 31) << 1 << QDate(2019, 6, 30);
    QTest::newRow("across the year") << QDate(2019, 12, 15) << 1 << QDate(2020, 1, 15);
    QTest::newRow("back across the year") << QDate(2020, 1, 15) << -13 << QDate(2018, 12, 15);
    QTest::newRow("IncYear on 29.2.") << QDate(2020, 2, 29) << 12 << QDate(2021, 2, 28);
    QTest::newRow("IncYear back on 29.2.") << QDate(2020, 2, 29) << -12 << QDate(2019, 2, 28);
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
}

void TestDateUtils::incMonthOutsideTheCalendarThrows()
{
    QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(EncodeDate(9999, 12, 1), 1));
    QVERIFY_THROWS_EXCEPTION(EConvertError, IncYear(EncodeDate(1, 6, 1), -1));
}

void TestDateUtils::isoWeekdayAndWeek_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<int>("isoDay");
    QTest::addColumn<int>("week");
    QTest::newRow("the epoch, a Saturday") << QDate(1899, 12, 30) << 6 << 52;
    QTest::newRow("Monday") << QDate(2019, 1, 28) << 1 << 5;
    QTest::newRow("Sunday") << QDate(2019, 2, 3) << 7 << 5;
    QTest::newRow("1.1.2021 in week 53 of 2020") << QDate(2021, 1, 1) << 5 << 53;
    QTest::newRow("31.12.2020 in week 53") << QDate(2020, 12, 31) << 4 << 53;
    QTest::newRow("1.1.2017 in week 52") << QDate(2017, 1, 1) << 7 << 52;
    QTest::newRow("31.12.2024 in week 1") << QDate(2024, 12, 31) << 2 << 1;
    QTest::newRow("31.12.2015 in week 53") << QDate(2015, 12, 31) << 4 << 53;
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
    QTest::newRow("short tokens") << "d.m.yy" << "4.2.19";
    QTest::newRow("padded tokens") << "dd.mm.yyyy" << "04.02.2019";
    QTest::newRow("day names") << "ddd dddd" << QStringLiteral("po pondělí");
    QTest::newRow("month names") << "mmm mmmm" << QStringLiteral("úno únor");
    QTest::newRow("time") << "h:n:s hh:nn:ss" << "8:5:9 08:05:09";
    QTest::newRow("m after h is minutes") << "hh:mm" << "08:05";
    QTest::newRow("m after h, unpadded") << "h m" << "8 5";
    QTest::newRow("m after a date token is the month") << "dd mm" << "04 02";
    QTest::newRow("quoted literals") << "'den' d \"v\" mmmm" << QStringLiteral("den 4 v únor");
    QTest::newRow("quoted m stays a literal") << "hh'm'mm" << "08m05";
    QTest::newRow("separators") << "dd/mm/yyyy hh:nn" << "04.02.2019 08:05";
    QTest::newRow("case-insensitive") << "dd.MM.yyyy" << "04.02.2019";
    QTest::newRow("month and year") << "MMMM.yyyy" << QStringLiteral("únor.2019");
    QTest::newRow("short date") << "ddddd" << "04.02.2019";
    QTest::newRow("c") << "c" << "04.02.2019 8:05:09";
    QTest::newRow("plain text") << "x-" << "x-";
}

void TestDateUtils::formatDateTime()
{
    QFETCH(QString, format);
    QFETCH(QString, expected);
    const TDateTime value = EncodeDate(2019, 2, 4) + EncodeTime(8, 5, 9);
    QCOMPARE(FormatDateTime(format, value), expected);
}

void TestDateUtils::formatStrToDateReads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDate>("expected");
    const int century = QDate::currentDate().year() / 100 * 100;
    QTest::newRow("d.m.yyyy") << "1.2.2019" << QDate(2019, 2, 1);
    QTest::newRow("dd.mm.yyyy") << "31.01.2019" << QDate(2019, 1, 31);
    QTest::newRow("dd.mm.yy") << "31.01.19" << QDate(century + 19, 1, 31);
    QTest::newRow("ddmmyyyy") << "31012019" << QDate(2019, 1, 31);
    QTest::newRow("ddmmyy") << "310119" << QDate(century + 19, 1, 31);
    QTest::newRow("blanks of the mask") << " 1. 2.2019 " << QDate(2019, 2, 1);
    QTest::newRow("placeholders of the mask") << "1_.02.2019" << QDate(2019, 2, 1);
    QTest::newRow("slashes") << "31/01/2019" << QDate(2019, 1, 31);
    QTest::newRow("leap day") << "29.02.2020" << QDate(2020, 2, 29);
}

void TestDateUtils::formatStrToDateReads()
{
    QFETCH(QString, text);
    QFETCH(QDate, expected);
    QCOMPARE(DateTimeToQDate(FormatStrToDate(text)), expected);
    QCOMPARE(DateTimeToQDate(StrToDate(text)), expected);
}

void TestDateUtils::formatStrToDateRejects_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("day and month out of range") << "32.13.2019";
    QTest::newRow("29.2. in a common year") << "29.02.2019";
    QTest::newRow("empty") << "";
    QTest::newRow("untouched mask") << "  .  .    ";
    QTest::newRow("mask placeholders") << "__.__.____";
    QTest::newRow("three-digit year") << "1.1.201";
    QTest::newRow("letters") << "1.led.2019";
    QTest::newRow("seven digits") << "3101201";
    QTest::newRow("year 0") << "01.01.0000";
    QTest::newRow("four fields") << "1.1.2019.";
}

void TestDateUtils::formatStrToDateRejects()
{
    QFETCH(QString, text);
    try {
        FormatStrToDate(text);
        QFAIL("no error for a text that is not a date");
    } catch (const EConvertError &error) {
        QCOMPARE(error.Message(), QStringLiteral("'%1' není platné datum").arg(text));
    }
}

void TestDateUtils::formatStrToDateWithFormat_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QDate>("expected");
    QTest::newRow("dd.mm.yyyy") << "3.1.2019" << "dd.mm.yyyy" << QDate(2019, 1, 3);
    QTest::newRow("toolkit separator") << "31.01.2019" << "dd/mm/yyyy" << QDate(2019, 1, 31);
    QTest::newRow("fields abutting") << "31012019" << "ddmmyyyy" << QDate(2019, 1, 31);
    QTest::newRow("month first") << "01-31-2019" << "mm-dd-yyyy" << QDate(2019, 1, 31);
    QTest::newRow("year first") << "2019.01.31" << "yyyy.mm.dd" << QDate(2019, 1, 31);
}

void TestDateUtils::formatStrToDateWithFormat()
{
    QFETCH(QString, text);
    QFETCH(QString, format);
    QFETCH(QDate, expected);
    QCOMPARE(DateTimeToQDate(FormatStrToDate(text, format)), expected);
    QVERIFY_THROWS_EXCEPTION(EConvertError, FormatStrToDate(text + QLatin1Char('7'), format));
}

QTEST_GUILESS_MAIN(TestDateUtils)
#include "tst_dateutils.moc"
