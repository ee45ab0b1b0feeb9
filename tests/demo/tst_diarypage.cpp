#include "DemoTestSupport.h"
#include "DiaryPage.h"

#include "oxa/diary/DiarPanel.h"
#include "oxa/diary/EnhancedMonthCalendar.h"
#include "oxa/diary/MonthGrid.h"
#include "oxa/toolkit/Color.h"
#include "support/TestDatabase.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTextCharFormat>
#include <QTimeEdit>
#include <QToolButton>

using namespace oxa;

namespace {

// What the diar table holds: "SELECT <what> FROM diar WHERE <where> ?".
QVariant Diar(const char *what, const char *where, const QVariant &value)
{
    return test::SampleValue(QStringLiteral("SELECT %1 FROM diar WHERE %2 ?")
                                 .arg(QLatin1String(what), QLatin1String(where)),
                             value);
}
QDate StoredDate(int id)
{
    return Diar("datum", "id =", id).toDate();
}

// Fills the entry dialog as the user does (the description typed, Enter to
// save); showings beyond the first are cancelled.
struct EntryTyping
{
    int shown = 0;
    test::DialogAnswerer answerer;
    EntryTyping(const QString &popis, QTime od, QTime doCasu)
        : answerer([=, this](QDialog *dialog) {
              if (++shown > 1)
                  return mrCancel;
              dialog->show();
              auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("editPopis"));
              edit->setFocus();
              edit->selectAll();
              QTest::keyClicks(edit, popis);
              dialog->findChild<QTimeEdit *>(QStringLiteral("timeOd"))->setTime(od);
              dialog->findChild<QTimeEdit *>(QStringLiteral("timeDo"))->setTime(doCasu);
              QTest::keyClick(edit, Qt::Key_Return);
              return dialog->result() == QDialog::Accepted ? mrOk : mrCancel;
          })
    { }
};

} // namespace

// The diary page as the nurse uses it: a real window, the keyboard, the
// month calendar, and the diar table read back.
class TestDiaryPage : public QObject
{
    Q_OBJECT

    std::unique_ptr<DiaryPage> m_page;

    TDiarPanel *Panel() const { return m_page->Panel(); }
    TEnhancedMonthCalendar *Calendar() const { return m_page->Calendar(); }
    QDate Selected() const { return DateTimeToQDate(Panel()->SelectedDay()); }
    // The first day from today on that has entries, shown in the diary.
    QDate ShowBusyDay()
    {
        const QDate day =
            Diar("min(datum)", "datum >=", QDate::currentDate().toString(Qt::ISODate)).toDate();
        Calendar()->setSelectedDate(day);
        return day;
    }
    void PressNewEntry()
    {
        QTest::mouseClick(m_page->findChild<QPushButton *>(QStringLiteral("buttonNovyZaznam")),
                          Qt::LeftButton);
    }
    // The sample database of the kind, with a new page on it shown.
    QString Open(const QString &kind)
    {
        m_page.reset();
        if (const QString why = test::OpenSample(kind); !why.isEmpty())
            return why;
        m_page = std::make_unique<DiaryPage>();
        m_page->resize(1600, 1000);
        return test::ShowAndActivate(m_page.get()) ? QString() : QStringLiteral("not shown");
    }

private Q_SLOTS:
    void initTestCase()
    {
        QCOMPARE(Open(QStringLiteral("sqlite")), QString());
        QCOMPARE(Selected(), QDate::currentDate()); // it opens on today
    }
    void cleanupTestCase()
    {
        m_page.reset();
        SampleDatabase::Close();
    }

    // The month arrows move the diary to the same day of the month shown
    // (its last day in a shorter month), with its entries; the holidays of
    // all days on the page are marked. A day of the next month chosen on
    // the page (which turns the page first) stays the chosen day.
    void calendarArrowsAndHolidays_data()
    {
        QTest::addColumn<QDate>("start");
        QTest::addColumn<QString>("arrow");
        QTest::addColumn<QDate>("moved");
        QTest::addColumn<QDate>("holiday");
        QTest::newRow("next: Christmas") << QDate(2026, 11, 24) << "qt_calendar_nextmonth"
                                         << QDate(2026, 12, 24) << QDate(2026, 12, 24);
        QTest::newRow("shorter month, Easter Monday in March")
            << QDate(2027, 3, 31) << "qt_calendar_nextmonth" << QDate(2027, 4, 30)
            << QDate(2027, 3, 29);
        QTest::newRow("day of the next month")
            << QDate(2026, 11, 10) << "" << QDate(2026, 12, 3) << QDate(2027, 1, 1);
    }
    void calendarArrowsAndHolidays()
    {
        QFETCH(QDate, start);
        QFETCH(QString, arrow);
        QFETCH(QDate, moved);
        QFETCH(QDate, holiday);
        Calendar()->setSelectedDate(start);
        if (arrow.isEmpty())
            Calendar()->setSelectedDate(moved);
        else
            QTest::mouseClick(Calendar()->findChild<QToolButton *>(arrow), Qt::LeftButton);
        QTest::qWait(0);
        QCOMPARE(Selected(), moved);
        QCOMPARE(Panel()->getZaznamyCount(moved.day()),
                 Diar("count(*)", "datum =", moved.toString(Qt::ISODate)).toInt());
        const QTextCharFormat marked = Calendar()->dateTextFormat(holiday);
        QCOMPARE(marked.background().color(),
                 ColorToQColor(Panel()->DiarNastaveni().barvaSvatek, m_page.get()));
        QCOMPARE(marked.toolTip(), NazevSvatku(QDateToDateTime(holiday)));
        QCOMPARE(Calendar()->dateTextFormat(holiday.addDays(-2)).background().style(), Qt::NoBrush);
    }

    // A new entry over booked ones names them before it is stored: Ano
    // stores it, Ne returns to the dialog (cancelled here); free time asks
    // nothing. The stored entry is in the diary under its database key.
    void newEntryOverlap_data()
    {
        QTest::addColumn<bool>("overlapping");
        QTest::addColumn<int>("answer");
        QTest::newRow("overlap, Ano") << true << mrYes;
        QTest::newRow("overlap, Ne") << true << mrNo;
        QTest::newRow("free time") << false << mrNo;
    }
    void newEntryOverlap()
    {
        QFETCH(bool, overlapping);
        QFETCH(int, answer);
        const QDate day = ShowBusyDay();
        QSqlQuery booked(SampleDatabase::Database());
        booked.prepare(QStringLiteral("SELECT cas_od, cas_do, popis, (SELECT max(id) FROM diar)"
                                      " FROM diar WHERE datum = ? ORDER BY cas_od LIMIT 1"));
        booked.addBindValue(day.toString(Qt::ISODate));
        QVERIFY(booked.exec() && booked.next());
        const auto time = [&](int i) {
            return QTime::fromString(booked.value(i).toString(), "HH:mm");
        };

        test::MessageRecorder messages(answer);
        EntryTyping typing(QStringLiteral("Kontrola tlaku"), overlapping ? time(0) : QTime(23, 0),
                           overlapping ? time(1) : QTime(23, 30));
        PressNewEntry();
        const bool stored = answer == mrYes || !overlapping;
        QCOMPARE(typing.shown, stored ? 1 : 2);
        const int id = Diar("max(id)", "popis =", QStringLiteral("Kontrola tlaku")).toInt();
        QCOMPARE(id > booked.value(3).toInt(), stored);
        QVERIFY(!stored || Panel()->SelectItem(id));
        QCOMPARE(messages.Shown().size(), overlapping ? 1 : 0);
        if (overlapping) {
            const QString text = messages.Texts().first();
            QVERIFY(text.contains(booked.value(0).toString() + "–" + booked.value(1).toString()));
            QVERIFY(text.contains(booked.value(2).toString()));
            QVERIFY(text.endsWith(QStringLiteral("Uložit i přesto?")));
            QCOMPARE(messages.Shown().first().DefaultButton, TMsgDlgButtons(mbNo));
        }
    }

    // Ctrl+arrows move the selected entry at once; Ctrl+Z or "Vrátit
    // přesun" put it back, the last move first, on its day and selected.
    void moveIsUndone_data()
    {
        QTest::addColumn<bool>("byButton");
        QTest::newRow("Ctrl+Z") << false;
        QTest::newRow("Vrátit přesun") << true;
    }
    void moveIsUndone()
    {
        QFETCH(bool, byButton);
        test::MessageRecorder messages(mrOk);
        auto *undo = m_page->findChild<QPushButton *>(QStringLiteral("buttonVratitPresun"));
        QList<QDate> dates{ShowBusyDay()};
        TDayListView *list = Panel()->DayListView();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->topLevelItem(0)).center());
        const qint32 id = Panel()->GetSelectedItemID();
        for (int i = 0; i < 2; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right, Qt::ControlModifier);
            dates << StoredDate(id);
            QVERIFY(dates.last() > dates.at(i));
        }
        QVERIFY(messages.Shown().isEmpty()); // moved at once, nothing asked
        for (int step = 1; step >= 0; --step) {
            QVERIFY(undo->isEnabled());
            if (byButton)
                QTest::mouseClick(undo, Qt::LeftButton);
            else
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Z, Qt::ControlModifier);
            QCOMPARE(StoredDate(id), dates.at(step));
            QCOMPARE(Selected(), dates.at(step));
            QCOMPARE(Panel()->GetSelectedItemID(), id);
        }
        QVERIFY(!undo->isEnabled());
    }

    // A new entry keeps the key its database gave it: editing it afterwards
    // (Enter) changes that row; on PostgreSQL as on SQLite.
    void newEntryKeepsItsKey_data() { test::AddDatabaseRows(); }
    void newEntryKeepsItsKey()
    {
        QFETCH(QString, database);
        const QString why = Open(database);
        OXA_REQUIRE_DATABASE(why.isEmpty(), why);
        {
            EntryTyping typing(QStringLiteral("Prvni"), QTime(22, 0), QTime(22, 15));
            PressNewEntry();
        }
        const int id = Diar("id", "popis =", QStringLiteral("Prvni")).toInt();
        QVERIFY(Panel()->SelectItem(id));
        EntryTyping typing(QStringLiteral("Druhy"), QTime(22, 0), QTime(22, 30));
        QTest::keyClick(Panel()->DayListView(), Qt::Key_Return);
        QCOMPARE(typing.shown, 1);
        QCOMPARE(Diar("popis", "id =", id).toString(), QStringLiteral("Druhy"));
        QCOMPARE(Diar("count(*)", "popis =", QStringLiteral("Prvni")).toInt(), 0);
    }
};

QTEST_MAIN(TestDiaryPage)
#include "tst_diarypage.moc"
