#include "oxa/controls/DateTimePickerOxa.h"
#include "oxa/toolkit/Exceptions.h"
#include "support/TestSupport.h"

#include <QCalendarWidget>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <memory>

using namespace oxa;

class TestDateTimePickerOxa : public QObject
{
    Q_OBJECT

    std::unique_ptr<test::TestForm> m_form;
    QLineEdit *m_other = nullptr;
    TDateTimePickerOxa *m_picker = nullptr;
    int m_changes = 0;
    int m_closeUps = 0;

    void focusPicker(const QDate &date, const QString &format = QString())
    {
        if (!format.isEmpty())
            m_picker->SetFormat(format);
        m_picker->SetDate(QDateToDateTime(date));
        m_picker->setFocus(Qt::TabFocusReason);
    }
    QDate pickerDate() const { return DateTimeToQDate(m_picker->Date()); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(m_picker, key, modifiers);
    }

private Q_SLOTS:
    void init()
    {
        m_form = std::make_unique<test::TestForm>();
        m_other = m_form->Add<QLineEdit>();
        m_picker = m_form->Add<TDateTimePickerOxa>();
        m_picker->setObjectName(QStringLiteral("dtpNavsteva"));
        m_changes = m_closeUps = 0;
        m_picker->OnChange = [this](QObject *) { ++m_changes; };
        m_picker->OnCloseUp = [this](QObject *) { ++m_closeUps; };
        QVERIFY(m_form->Show(m_other));
    }
    void cleanup() { m_form.reset(); }

    void blankFieldAndQuickKeys()
    {
        QVERIFY(m_picker->EmptyDate());
        QCOMPARE(m_picker->text(), QStringLiteral(" "));
        QTest::keyClick(m_other, Qt::Key_Tab);
        QCOMPARE(m_picker->text(), QStringLiteral("30.12.1899"));
        // Tab leaves at once (no walk through the sections); blank again.
        press(Qt::Key_Tab);
        QVERIFY(m_other->hasFocus());
        QCOMPARE(m_picker->text(), QStringLiteral(" "));

        m_picker->SetDate(EncodeDate(2019, 1, 31));
        m_picker->setFocus();
        press(Qt::Key_Delete);
        QVERIFY(m_picker->EmptyDate());
        QCOMPARE(m_changes, 1);
        press(Qt::Key_Asterisk, Qt::KeypadModifier);
        QCOMPARE(pickerDate(), QDate::currentDate());
        QCOMPARE(m_changes, 2);
        m_picker->SetMinDate(oxa::Date() + 10); // today is too early now
        press(Qt::Key_Asterisk, Qt::KeypadModifier);
        QCOMPARE(pickerDate(), QDate::currentDate().addDays(10));
        QCOMPARE(m_changes, 2);
    }

    void sectionsTakeTurns_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("keys"); // L Left, R Right, digits
        QTest::addColumn<QDate>("afterUp");
        QTest::addColumn<int>("shownSection");
        const QString day = QStringLiteral("dd.MM.yyyy"), month = QStringLiteral("MMMM.yyyy");
        const int d = QDateTimeEdit::DaySection, m = QDateTimeEdit::MonthSection,
                  y = QDateTimeEdit::YearSection;
        QTest::newRow("day first") << day << "" << QDate(2019, 2, 1) << d;
        QTest::newRow("month: 31 January + 1") << day << "R" << QDate(2019, 2, 28) << m;
        // "2" could begin a two-digit day: it is the day at once all the same.
        QTest::newRow("first digit of a longer day") << day << "2" << QDate(2019, 2, 2) << m;
        QTest::newRow("month digit, day kept within it") << day << "R4" << QDate(2020, 4, 30) << y;
        QTest::newRow("year digit: this century, then day")
            << day << "L7" << QDate(2007, 2, 1) << d;
        QTest::newRow("a 0 day refused, section stays") << day << "0" << QDate(2019, 2, 1) << d;
        QTest::newRow("month name: Left to the year") << month << "L" << QDate(2020, 1, 31) << y;
    }

    void sectionsTakeTurns()
    {
        QFETCH(QString, format);
        QFETCH(QString, keys);
        focusPicker(QDate(2019, 1, 31), format);
        for (QChar c : keys)
            press(c == u'L' ? Qt::Key_Left : c == u'R' ? Qt::Key_Right : Qt::Key(c.unicode()));
        const int changes = m_changes;
        press(Qt::Key_Up);
        QTEST(pickerDate(), "afterUp");
        QTEST(int(m_picker->currentSection()), "shownSection");
        QCOMPARE(m_changes, changes + 1);
    }

    // An empty picker takes a typed date: the digits start from today's
    // month and year, section by section.
    void typingIntoTheEmptyDate()
    {
        test::MessageRecorder messages;
        m_picker->setFocus(Qt::TabFocusReason);
        press(Qt::Key_5);
        const QDate today = QDate::currentDate();
        QCOMPARE(pickerDate(), QDate(today.year(), today.month(), 5));
        QCOMPARE(m_picker->currentSection(), QDateTimeEdit::MonthSection);
        press(Qt::Key_3);
        QCOMPARE(pickerDate(), QDate(today.year(), 3, 5));
        QCOMPARE(m_changes, 2);
        QVERIFY(messages.Shown().isEmpty());
    }

    void minDateRules()
    {
        test::MessageRecorder messages;
        m_picker->SetMinDate(EncodeDate(2020, 1, 10));
        focusPicker(QDate(2020, 1, 10));
        press(Qt::Key_Down);
        press(Qt::Key_Right);
        press(Qt::Key_Down); // the day before decides, whatever the section
        QCOMPARE(pickerDate(), QDate(2020, 1, 10));
        QCOMPARE(m_changes, 0);
        QVERIFY(messages.Shown().isEmpty());

        // A month back from a later day would land before MinDate: the
        // control refuses it with the picker's name.
        m_picker->SetDate(EncodeDate(2020, 1, 15));
        press(Qt::Key_Down);
        QCOMPARE(pickerDate(), QDate(2020, 1, 15));
        QCOMPARE(messages.Texts(), QStringList{QStringLiteral("dtpNavsteva")});
        QCOMPARE(messages.Shown().first().Caption, QStringLiteral("Chyba nastaveni"));

        // The empty date's day count 0 is not above 1: not blocked by the
        // rule, so the refusal of the control answers.
        m_picker->SetMinDate(0);
        press(Qt::Key_Left);
        m_picker->SetDateTime(0.25);
        press(Qt::Key_Down);
        QCOMPARE(m_picker->DateTime(), 0.25);
        QCOMPARE(messages.Shown().size(), 2);
    }

    // Which section a click at x lands in, as the control measures it.
    void vyhodnotStisk()
    {
        focusPicker(QDate(2019, 1, 31));
        const QFontMetrics metrics(m_picker->font(), m_form.get());
        const int monthX = metrics.horizontalAdvance(QStringLiteral("31.")) + 2;
        QCOMPARE(m_picker->VyhodnotStisk(monthX - 1), 0);

        // In the month-name format the test counts from the right-hand edge.
        m_picker->SetFormat(QStringLiteral("MMMM.yyyy"));
        const int edge = m_picker->width() - metrics.horizontalAdvance(m_picker->text().left(4)) -
            m_picker->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_picker) - 9;
        QCOMPARE(m_picker->VyhodnotStisk(edge), 1);
        QCOMPARE(m_picker->VyhodnotStisk(edge + 1), 2);
    }

    // Without a form to measure in, a click tells the user so.
    void noWindowNoMeasuring()
    {
        test::MessageRecorder messages;
        TDateTimePickerOxa alone;
        QCOMPARE(alone.VyhodnotStisk(1), 0);
        QVERIFY_THROWS_EXCEPTION(Exception, alone.VyhodnotStisk(40));
        alone.show();
        const QPoint at(20, alone.height() / 2);
        QWidget *target = alone.childAt(at) ? alone.childAt(at) : &alone;
        QTest::mouseClick(target, Qt::LeftButton, {}, target->mapFrom(&alone, at));
        QCOMPARE(messages.Texts(), QStringList{QStringLiteral("Neexistuje parent třídy TForm")});
    }

    void calendar()
    {
        focusPicker(QDate(2019, 1, 31));
        press(Qt::Key_Left); // the year section
        press(Qt::Key_F4);
        QCalendarWidget *calendar = m_picker->calendarWidget();
        auto *view = calendar->findChild<QTableView *>();
        QTRY_VERIFY(calendar->isVisible());
        // Moving in the open calendar changes the date, but steps nothing
        // and is no change yet.
        QTest::keyClick(view, Qt::Key_Right);
        QCOMPARE(pickerDate(), QDate(2019, 2, 1));
        QCOMPARE(m_changes, 0);
        QTest::keyClick(view, Qt::Key_Down);
        QTest::keyClick(view, Qt::Key_Return);
        QTRY_VERIFY(!calendar->isVisible());
        QCOMPARE(pickerDate(), QDate(2019, 2, 8));
        QCOMPARE(m_closeUps, 1);
        QCOMPARE(m_changes, 1);
    }
};

QTEST_MAIN(TestDateTimePickerOxa)
#include "tst_datetimepickeroxa.moc"
