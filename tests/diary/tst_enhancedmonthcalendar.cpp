#include "oxa/diary/EnhancedMonthCalendar.h"
#include "oxa/toolkit/Catalogue.h"

#include "support/TestSupport.h"

#include <QTest>
#include <QTextCharFormat>
#include <QToolButton>

using namespace oxa;

namespace {

// A month as the host is asked for it.
struct AskedMonth
{
    quint32 month;
    quint32 year;
    friend bool operator==(const AskedMonth &, const AskedMonth &) = default;
};

char *toString(const AskedMonth &m)
{
    return QTest::toString(QStringLiteral("%1/%2").arg(m.month).arg(m.year));
}

// A host answering with fixed bold days per month and recording the questions.
struct Host
{
    QList<AskedMonth> asked;
    QHash<QPair<quint32, quint32>, quint32> bold; // (month, year) -> mask

    void Attach(TEnhancedMonthCalendar &calendar)
    {
        calendar.OnEnhancedGetMonthInfoEvent = [this, &calendar](QObject *sender, quint32 month,
                                                                  quint32 year, quint32 &info) {
            QCOMPARE(sender, &calendar);
            QCOMPARE(info, 0u);
            asked.append({month, year});
            info = bold.value({month, year});
        };
    }
};

quint32 Days(std::initializer_list<int> days)
{
    quint32 mask = 0;
    for (int d : days)
        mask |= 1u << (d - 1);
    return mask;
}

void ClickNavigation(TEnhancedMonthCalendar &calendar, const char *button)
{
    auto *navigation = calendar.findChild<QToolButton *>(QLatin1String(button));
    QVERIFY(navigation);
    QTest::mouseClick(navigation, Qt::LeftButton);
}

} // namespace

class TestEnhancedMonthCalendar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksForTheThreeMonthsShown_data();
    void asksForTheThreeMonthsShown();
    void navigationButtonsAskAgain();
    void exactlyTheAnsweredDaysAreBold();
    void daysPastTheMonthEndAreIgnored();
    void otherFormatsOfADateStay();
    void nothingBoldWithoutTheEvent();
    void properties();
    void registration();
};

void TestEnhancedMonthCalendar::asksForTheThreeMonthsShown_data()
{
    QTest::addColumn<int>("year");
    QTest::addColumn<int>("month");
    QTest::addColumn<QList<AskedMonth>>("asked");

    QTest::newRow("December") << 2019 << 12
                              << QList<AskedMonth>{{11, 2019}, {12, 2019}, {1, 2020}};
    QTest::newRow("January") << 2020 << 1 << QList<AskedMonth>{{12, 2019}, {1, 2020}, {2, 2020}};
    QTest::newRow("June") << 2021 << 6 << QList<AskedMonth>{{5, 2021}, {6, 2021}, {7, 2021}};
}

void TestEnhancedMonthCalendar::asksForTheThreeMonthsShown()
{
    QFETCH(int, year);
    QFETCH(int, month);
    QFETCH(QList<AskedMonth>, asked);

    TEnhancedMonthCalendar calendar;
    Host host;
    host.Attach(calendar);
    calendar.setCurrentPage(year, month);
    QCOMPARE(host.asked, asked);
}

void TestEnhancedMonthCalendar::navigationButtonsAskAgain()
{
    TEnhancedMonthCalendar calendar;
    calendar.setCurrentPage(2019, 11);
    Host host;
    host.Attach(calendar);
    QVERIFY(test::ShowAndActivate(&calendar));
    QCOMPARE(host.asked, (QList<AskedMonth>{{10, 2019}, {11, 2019}, {12, 2019}}));

    host.asked.clear();
    ClickNavigation(calendar, "qt_calendar_nextmonth");
    QCOMPARE(host.asked, (QList<AskedMonth>{{11, 2019}, {12, 2019}, {1, 2020}}));

    host.asked.clear();
    ClickNavigation(calendar, "qt_calendar_nextmonth");
    QCOMPARE(host.asked, (QList<AskedMonth>{{12, 2019}, {1, 2020}, {2, 2020}}));

    host.asked.clear();
    ClickNavigation(calendar, "qt_calendar_prevmonth");
    ClickNavigation(calendar, "qt_calendar_prevmonth");
    QCOMPARE(host.asked, (QList<AskedMonth>{{11, 2019}, {12, 2019}, {1, 2020},
                                            {10, 2019}, {11, 2019}, {12, 2019}}));
}

void TestEnhancedMonthCalendar::exactlyTheAnsweredDaysAreBold()
{
    TEnhancedMonthCalendar calendar;
    Host host;
    host.bold[{11, 2019}] = Days({30});
    host.bold[{12, 2019}] = Days({1, 24, 31});
    host.bold[{1, 2020}] = Days({2});
    host.Attach(calendar);
    calendar.setCurrentPage(2019, 12);

    const QList<QDate> expected{QDate(2019, 11, 30), QDate(2019, 12, 1), QDate(2019, 12, 24),
                                QDate(2019, 12, 31), QDate(2020, 1, 2)};
    QCOMPARE(calendar.BoldDates(), expected);
    for (QDate d(2019, 11, 1); d <= QDate(2020, 1, 31); d = d.addDays(1)) {
        const bool bold = calendar.dateTextFormat(d).fontWeight() == QFont::Bold;
        QCOMPARE(bold, expected.contains(d));
    }

    // The next page clears what the last answer made bold.
    host.bold.clear();
    host.bold[{1, 2020}] = Days({15});
    calendar.setCurrentPage(2020, 1);
    QCOMPARE(calendar.BoldDates(), QList<QDate>{QDate(2020, 1, 15)});
    QVERIFY(calendar.dateTextFormat(QDate(2019, 12, 24)).fontWeight() != QFont::Bold);
    QVERIFY(calendar.dateTextFormat(QDate(2020, 1, 2)).fontWeight() != QFont::Bold);

    // The host's data changed: it is asked again on request.
    host.bold[{1, 2020}] = Days({16});
    calendar.UpdateBoldDays();
    QCOMPARE(calendar.BoldDates(), QList<QDate>{QDate(2020, 1, 16)});
}

void TestEnhancedMonthCalendar::daysPastTheMonthEndAreIgnored()
{
    TEnhancedMonthCalendar calendar;
    Host host;
    host.bold[{2, 2019}] = Days({28, 29, 30, 31, 32});
    host.Attach(calendar);
    calendar.setCurrentPage(2019, 3);
    QCOMPARE(calendar.BoldDates(), QList<QDate>{QDate(2019, 2, 28)});
}

void TestEnhancedMonthCalendar::otherFormatsOfADateStay()
{
    TEnhancedMonthCalendar calendar;
    QTextCharFormat red;
    red.setForeground(Qt::red);
    calendar.setDateTextFormat(QDate(2019, 12, 24), red);
    Host host;
    host.bold[{12, 2019}] = Days({24});
    host.Attach(calendar);
    calendar.setCurrentPage(2019, 12);
    QCOMPARE(calendar.dateTextFormat(QDate(2019, 12, 24)).fontWeight(), int(QFont::Bold));

    host.bold.clear();
    calendar.UpdateBoldDays();
    const QTextCharFormat after = calendar.dateTextFormat(QDate(2019, 12, 24));
    QVERIFY(after.fontWeight() != QFont::Bold);
    QCOMPARE(after.foreground().color(), QColor(Qt::red));
}

void TestEnhancedMonthCalendar::nothingBoldWithoutTheEvent()
{
    TEnhancedMonthCalendar calendar;
    int baseAsked = 0;
    calendar.OnGetMonthInfo = [&baseAsked](QObject *, quint32, quint32 &info) {
        ++baseAsked;
        info = 0xFFFFFFFF;
    };
    calendar.setCurrentPage(2019, 12);
    QVERIFY(test::ShowAndActivate(&calendar));
    ClickNavigation(calendar, "qt_calendar_nextmonth");
    QVERIFY(calendar.BoldDates().isEmpty());
    QCOMPARE(baseAsked, 0);
    for (QDate d(2019, 12, 1); d <= QDate(2020, 2, 29); d = d.addDays(1))
        QVERIFY(calendar.dateTextFormat(d).fontWeight() != QFont::Bold);

    // A host that stops answering leaves nothing bold behind.
    Host host;
    host.bold[{1, 2020}] = Days({1});
    host.Attach(calendar);
    calendar.UpdateBoldDays();
    QCOMPARE(calendar.BoldDates().size(), 1);
    calendar.OnEnhancedGetMonthInfoEvent = nullptr;
    ClickNavigation(calendar, "qt_calendar_prevmonth");
    QVERIFY(calendar.BoldDates().isEmpty());
    QVERIFY(calendar.dateTextFormat(QDate(2020, 1, 1)).fontWeight() != QFont::Bold);
}

void TestEnhancedMonthCalendar::properties()
{
    TEnhancedMonthCalendar calendar;
    QVERIFY(!calendar.WeekNumbers());
    QCOMPARE(calendar.firstDayOfWeek(), Qt::Monday);
    calendar.setProperty("Date", EncodeDate(2019, 12, 24));
    QCOMPARE(calendar.selectedDate(), QDate(2019, 12, 24));
    QCOMPARE(calendar.property("Date").toDouble(), EncodeDate(2019, 12, 24));
    calendar.SetMinDate(EncodeDate(2019, 1, 1));
    calendar.SetMaxDate(EncodeDate(2020, 12, 31));
    QCOMPARE(calendar.minimumDate(), QDate(2019, 1, 1));
    QCOMPARE(calendar.MaxDate(), EncodeDate(2020, 12, 31));
    calendar.SetWeekNumbers(true);
    QCOMPARE(calendar.verticalHeaderFormat(), QCalendarWidget::ISOWeekNumbers);
}

void TestEnhancedMonthCalendar::registration()
{
    Catalogue::Instance().Clear();
    RegisterEnhancedMonthCalendar();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TEnhancedMonthCalendar"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa Diar"));
    QCOMPARE(entry->Unit, QStringLiteral("EnhancedMonthCalendar"));
    QWidget owner;
    QVERIFY(qobject_cast<TEnhancedMonthCalendar *>(
        Catalogue::Instance().Create(QStringLiteral("TEnhancedMonthCalendar"), &owner)));
    Catalogue::Instance().Clear();
}

QTEST_MAIN(TestEnhancedMonthCalendar)
#include "tst_enhancedmonthcalendar.moc"
