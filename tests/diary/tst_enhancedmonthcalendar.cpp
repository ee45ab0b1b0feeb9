#include "oxa/diary/EnhancedMonthCalendar.h"

#include "support/TestSupport.h"

#include <QTest>
#include <QTextCharFormat>
#include <QToolButton>

using namespace oxa;

namespace {

void Click(TEnhancedMonthCalendar &calendar, const char *button)
{
    QTest::mouseClick(calendar.findChild<QToolButton *>(QLatin1String(button)), Qt::LeftButton);
}

bool IsBold(const TEnhancedMonthCalendar &calendar, const QDate &date)
{
    return calendar.dateTextFormat(date).fontWeight() == QFont::Bold;
}

} // namespace

class TestEnhancedMonthCalendar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boldDaysOfTheMonthsShown();
};

void TestEnhancedMonthCalendar::boldDaysOfTheMonthsShown()
{
    TEnhancedMonthCalendar calendar;
    QTextCharFormat red;
    red.setForeground(Qt::red);
    calendar.setDateTextFormat(QDate(2019, 12, 24), red);
    int baseAsked = 0; // the inherited event is never asked
    calendar.OnGetMonthInfo = [&baseAsked](QObject *, quint32, quint32 &info) {
        ++baseAsked;
        info = 0xFFFFFFFF;
    };
    // The host answers with fixed bold days per month ("m/yyyy") and records
    // the months it was asked for.
    QStringList asked;
    QHash<QString, QList<int>> bold{{"11/2019", {30, 31}}, // November has no 31st
                                    {"12/2019", {1, 24, 31}},
                                    {"1/2020", {2}}};
    calendar.OnEnhancedGetMonthInfoEvent = [&](QObject *sender, quint32 month, quint32 year,
                                               quint32 &info) {
        QCOMPARE(sender, &calendar);
        QCOMPARE(info, 0u);
        asked << QStringLiteral("%1/%2").arg(month).arg(year);
        for (int d : bold.value(asked.last()))
            info |= 1u << (d - 1);
    };
    calendar.setCurrentPage(2019, 12);
    QCOMPARE(asked, (QStringList{"11/2019", "12/2019", "1/2020"}));
    const QList<QDate> expected{QDate(2019, 11, 30), QDate(2019, 12, 1), QDate(2019, 12, 24),
                                QDate(2019, 12, 31), QDate(2020, 1, 2)};
    QCOMPARE(calendar.BoldDates(), expected);
    for (QDate d(2019, 11, 1); d <= QDate(2020, 1, 31); d = d.addDays(1))
        QCOMPARE(IsBold(calendar, d), expected.contains(d));

    // Showing and paging ask again; a new answer clears what the last one
    // made bold, and only that.
    asked.clear();
    bold = {{"1/2020", {15}}};
    QVERIFY(test::ShowAndActivate(&calendar));
    Click(calendar, "qt_calendar_nextmonth");
    QCOMPARE(asked, (QStringList{"11/2019", "12/2019", "1/2020", "12/2019", "1/2020", "2/2020"}));
    QCOMPARE(calendar.BoldDates(), QList<QDate>{QDate(2020, 1, 15)});
    QVERIFY(!IsBold(calendar, QDate(2019, 12, 24)));
    QCOMPARE(calendar.dateTextFormat(QDate(2019, 12, 24)).foreground().color(), QColor(Qt::red));

    // The host's data changed: it is asked again on request.
    bold["1/2020"] = {16};
    calendar.UpdateBoldDays();
    QCOMPARE(calendar.BoldDates(), QList<QDate>{QDate(2020, 1, 16)});

    // A host that stops answering leaves nothing bold behind.
    calendar.OnEnhancedGetMonthInfoEvent = nullptr;
    Click(calendar, "qt_calendar_prevmonth");
    QVERIFY(calendar.BoldDates().isEmpty());
    QVERIFY(!IsBold(calendar, QDate(2020, 1, 16)));
    QCOMPARE(baseAsked, 0);
}

QTEST_MAIN(TestEnhancedMonthCalendar)
#include "tst_enhancedmonthcalendar.moc"
