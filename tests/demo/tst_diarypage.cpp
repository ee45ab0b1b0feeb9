#include "DiaryPage.h"
#include "SampleDatabase.h"

#include "oxa/diary/DayListView.h"
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
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCharFormat>
#include <QTimeEdit>
#include <QToolButton>

using namespace oxa;

namespace {

QVariant Scalar(const QString &sql, const QVariantList &values = {})
{
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(sql);
    for (const QVariant &value : values)
        q.addBindValue(value);
    return q.exec() && q.next() ? q.value(0) : QVariant();
}

QDate StoredDate(int id)
{
    return QDate::fromString(
        Scalar(QStringLiteral("SELECT datum FROM diar WHERE id = ?"), {id}).toString(),
        Qt::ISODate);
}

int EntriesOn(const QDate &day)
{
    return Scalar(QStringLiteral("SELECT count(*) FROM diar WHERE datum = ?"),
                  {day.toString(Qt::ISODate)})
        .toInt();
}

// Fills the entry dialog as the user does: the description typed, the times
// set, Enter to save. Showings beyond the accepted ones are cancelled.
class EntryTyping
{
public:
    EntryTyping(const QString &popis, QTime od, QTime doCasu, int accepted = 1)
        : m_answerer([=, this](QDialog *dialog) {
              if (++m_shown > accepted)
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
    int Shown() const { return m_shown; }

private:
    int m_shown = 0;
    test::DialogAnswerer m_answerer;
};

} // namespace

// The diary page as the nurse uses it: a real window, the keyboard, the
// month calendar, and the diar table read back.
class TestDiaryPage : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<DiaryPage> m_page;

    TDiarPanel *Panel() const { return m_page->Panel(); }
    TEnhancedMonthCalendar *Calendar() const { return m_page->Calendar(); }
    QDate Selected() const { return DateTimeToQDate(Panel()->SelectedDay()); }
    // A day from today on that has entries.
    QDate BusyDay() const
    {
        return QDate::fromString(
            Scalar(QStringLiteral("SELECT min(datum) FROM diar WHERE datum >= ?"),
                   {QDate::currentDate().toString(Qt::ISODate)})
                .toString(),
            Qt::ISODate);
    }
    void ClickEntry(int index)
    {
        TDayListView *list = Panel()->DayListView();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->topLevelItem(index)).center());
    }
    void PressNewEntry()
    {
        auto *button = m_page->findChild<QPushButton *>(QStringLiteral("buttonNovyZaznam"));
        QTest::mouseClick(button, Qt::LeftButton);
    }
    // Opens the sample database of the kind with a new page on it.
    QString Open(const QString &kind)
    {
        m_page.reset();
        SampleDatabase::Close();
        QString address = m_dir.filePath(kind + QStringLiteral(".sqlite"));
        if (kind == QLatin1String("postgresql")) {
            const QString why = test::OpenTestDatabase(kind, QStringLiteral("probe"));
            if (!why.isEmpty())
                return why;
            {
                QSqlDatabase probe = QSqlDatabase::database(QStringLiteral("probe"));
                address = QStringLiteral("postgresql://oxa@/%1?host=%2")
                              .arg(probe.databaseName(), probe.hostName());
                probe.close();
            }
            QSqlDatabase::removeDatabase(QStringLiteral("probe"));
        }
        QString error;
        if (!SampleDatabase::Open(address, &error))
            return error;
        m_page = std::make_unique<DiaryPage>();
        m_page->resize(1600, 1000);
        return test::ShowAndActivate(m_page.get()) ? QString() : QStringLiteral("not shown");
    }

private Q_SLOTS:
    void initTestCase() { QCOMPARE(Open(QStringLiteral("sqlite")), QString()); }
    void cleanupTestCase()
    {
        m_page.reset();
        SampleDatabase::Close();
    }

    void opensOnToday()
    {
        QCOMPARE(Selected(), QDate::currentDate());
        QCOMPARE(Calendar()->selectedDate(), QDate::currentDate());
    }

    // The month arrows move the diary to the same day of the next or the
    // previous month (its last day when the month is shorter), with that
    // range's entries loaded, and the public holidays of every month the
    // page shows are marked.
    void calendarArrowsAndHolidays_data()
    {
        QTest::addColumn<QDate>("start");
        QTest::addColumn<QString>("arrow");
        QTest::addColumn<QDate>("moved");
        QTest::addColumn<QDate>("holiday");
        QTest::addColumn<QDate>("workday");
        QTest::newRow("next: Christmas")
            << QDate(2026, 11, 24) << "qt_calendar_nextmonth" << QDate(2026, 12, 24)
            << QDate(2026, 12, 24) << QDate(2026, 12, 23);
        QTest::newRow("previous: 28 October")
            << QDate(2026, 11, 24) << "qt_calendar_prevmonth" << QDate(2026, 10, 24)
            << QDate(2026, 10, 28) << QDate(2026, 10, 27);
        QTest::newRow("shorter month: Easter on the March days")
            << QDate(2027, 3, 31) << "qt_calendar_nextmonth" << QDate(2027, 4, 30)
            << QDate(2027, 3, 29) << QDate(2027, 3, 30);
        QTest::newRow("next: New Year, January after December")
            << QDate(2026, 12, 15) << "qt_calendar_nextmonth" << QDate(2027, 1, 15)
            << QDate(2027, 1, 1) << QDate(2027, 1, 2);
    }
    void calendarArrowsAndHolidays()
    {
        QFETCH(QDate, start);
        QFETCH(QString, arrow);
        QFETCH(QDate, moved);
        QFETCH(QDate, holiday);
        QFETCH(QDate, workday);
        Calendar()->setSelectedDate(start);
        QCOMPARE(Selected(), start);
        QTest::mouseClick(Calendar()->findChild<QToolButton *>(arrow), Qt::LeftButton);
        QTRY_COMPARE(Selected(), moved);
        QCOMPARE(Calendar()->selectedDate(), moved);
        QCOMPARE(Panel()->getZaznamyCount(moved.day()), EntriesOn(moved));

        const QColor colour = ColorToQColor(Panel()->DiarNastaveni().barvaSvatek, m_page.get());
        const QTextCharFormat marked = Calendar()->dateTextFormat(holiday);
        QCOMPARE(marked.background().color(), colour);
        QCOMPARE(marked.toolTip(), NazevSvatku(QDateToDateTime(holiday)));
        QCOMPARE(Calendar()->dateTextFormat(workday).background().style(), Qt::NoBrush);
    }

    // A day of the next month chosen on the page (the calendar turns the
    // page before it selects the day, as a click on a grey day does) is the
    // day the diary shows, not the same day of that month.
    void calendarDayOfTheNextMonth()
    {
        Calendar()->setSelectedDate(QDate(2026, 11, 10));
        Calendar()->setSelectedDate(QDate(2026, 12, 3));
        QTest::qWait(0);
        QCOMPARE(Selected(), QDate(2026, 12, 3));
    }

    // A new entry that overlaps booked ones names them before it is stored:
    // Ano stores it, Ne returns to the dialog (here cancelled); an entry in
    // free time asks nothing. The stored entry is in the diary under the
    // key the database gave it.
    void newEntryOverlap_data()
    {
        QTest::addColumn<bool>("overlapping");
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("stored");
        QTest::addColumn<int>("dialogs");
        QTest::newRow("overlap, Ano") << true << mrYes << 1 << 1;
        QTest::newRow("overlap, Ne") << true << mrNo << 0 << 2;
        QTest::newRow("free time") << false << mrNo << 1 << 1;
    }
    void newEntryOverlap()
    {
        QFETCH(bool, overlapping);
        QFETCH(int, answer);
        QFETCH(int, stored);
        QFETCH(int, dialogs);
        const QDate day = BusyDay();
        Calendar()->setSelectedDate(day);
        QSqlQuery booked(SampleDatabase::Database());
        booked.prepare(QStringLiteral("SELECT cas_od, cas_do, popis FROM diar WHERE datum = ?"
                                      " ORDER BY cas_od LIMIT 1"));
        booked.addBindValue(day.toString(Qt::ISODate));
        QVERIFY(booked.exec() && booked.next());
        const QTime from = QTime::fromString(booked.value(0).toString(), QStringLiteral("HH:mm"));
        const QTime to = QTime::fromString(booked.value(1).toString(), QStringLiteral("HH:mm"));

        const int before = EntriesOn(day);
        test::MessageRecorder messages(answer);
        EntryTyping typing(QStringLiteral("Kontrola tlaku"), overlapping ? from : QTime(23, 0),
                           overlapping ? to : QTime(23, 30));
        PressNewEntry();
        QCOMPARE(typing.Shown(), dialogs);
        QCOMPARE(EntriesOn(day), before + stored);
        if (overlapping) {
            QCOMPARE(messages.Shown().size(), 1);
            const QString text = messages.Texts().first();
            QVERIFY2(text.contains(booked.value(0).toString() + QStringLiteral("–") +
                                   booked.value(1).toString()),
                     qPrintable(text));
            QVERIFY2(text.contains(booked.value(2).toString()), qPrintable(text));
            QVERIFY(text.endsWith(QStringLiteral("Uložit i přesto?")));
            QCOMPARE(messages.Shown().first().DefaultButton, TMsgDlgButtons(mbNo));
        } else {
            QCOMPARE(messages.Shown().size(), 0);
        }
        if (stored) {
            const int id = Scalar(QStringLiteral("SELECT max(id) FROM diar")).toInt();
            QVERIFY(Panel()->SelectItem(id));
            QCOMPARE(Panel()->GetSelectedItem()->Popis.Text(), QStringLiteral("Kontrola tlaku"));
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
        QVERIFY(!undo->isEnabled());
        const QDate day = BusyDay();
        Calendar()->setSelectedDate(day);
        Panel()->DayListView()->setFocus();
        ClickEntry(0);
        const qint32 id = Panel()->GetSelectedItemID();
        QVERIFY(id > 0);

        QList<QDate> dates{day};
        for (Qt::Key key : {Qt::Key_Right, Qt::Key_Right}) {
            QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier);
            dates << StoredDate(id);
            QVERIFY(dates.last() > dates.at(dates.size() - 2));
            QVERIFY(undo->isEnabled());
        }
        QCOMPARE(messages.Shown().size(), 0); // moved at once, nothing asked
        for (int step = dates.size() - 2; step >= 0; --step) {
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

    // A new entry gets the key its database gave it, so that editing it
    // afterwards changes that row; on PostgreSQL as on SQLite.
    void newEntryKeepsItsKey_data() { test::AddDatabaseRows(); }
    void newEntryKeepsItsKey()
    {
        QFETCH(QString, database);
        const QString why = Open(database);
        OXA_REQUIRE_DATABASE(why.isEmpty(), why);
        const QDate day = QDate::currentDate();
        Calendar()->setSelectedDate(day);
        {
            EntryTyping typing(QStringLiteral("Novy zaznam s klicem"), QTime(22, 0), QTime(22, 15));
            PressNewEntry();
        }
        const int id = Scalar(QStringLiteral("SELECT id FROM diar WHERE popis = ?"),
                              {QStringLiteral("Novy zaznam s klicem")})
                           .toInt();
        QVERIFY(id > 0);
        QCOMPARE(Panel()->SelectItem(id), true);

        EntryTyping typing(QStringLiteral("Upraveny zaznam"), QTime(22, 0), QTime(22, 30));
        QTest::keyClick(Panel()->DayListView(), Qt::Key_Return);
        QCOMPARE(typing.Shown(), 1);
        QCOMPARE(Scalar(QStringLiteral("SELECT popis FROM diar WHERE id = ?"), {id}).toString(),
                 QStringLiteral("Upraveny zaznam"));
        QCOMPARE(Scalar(QStringLiteral("SELECT count(*) FROM diar WHERE popis IN (?, ?)"),
                        {QStringLiteral("Novy zaznam s klicem"), QStringLiteral("Upraveny zaznam")})
                     .toInt(),
                 1);
    }
};

QTEST_MAIN(TestDiaryPage)
#include "tst_diarypage.moc"
