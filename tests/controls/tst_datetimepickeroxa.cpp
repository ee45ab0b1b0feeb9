#include "oxa/controls/DateTimePickerOxa.h"
#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/Exceptions.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QLineEdit>
#include <QStyleOptionComboBox>
#include <QTableView>
#include <QTest>
#include <QVBoxLayout>
#include <memory>

using namespace oxa;

class TestDateTimePickerOxa : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void newPickerIsBlankUntilFocused();
    void deleteEmptiesTheDate();
    void keypadStarSetsToday();
    void sectionsTakeTurns_data();
    void sectionsTakeTurns();
    void typingADigitMovesToTheMonth();
    void upInTheMonthOn31January();
    void minDateBlocksSteppingBack();
    void refusedDateShowsTheName();
    void clickChoosesTheSection();
    void monthYearClickCountsFromTheRight();
    void noWindowNoMeasuring();
    void calendarChoosesADate();
    void calendarClosedOnEmptyPickerChangesNothing();
    void focusColoursAndRegistration();

private:
    std::unique_ptr<QWidget> m_form;
    QLineEdit *m_other = nullptr;
    TDateTimePickerOxa *m_picker = nullptr;
    int m_changes = 0;
    int m_closeUps = 0;

    void focusPicker(const QDate &date, const QString &format = QString());
    QDate pickerDate() const { return DateTimeToQDate(m_picker->Date()); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    QPoint arrowPos() const;
    static void click(QWidget *picker, const QPoint &pos);
};

void TestDateTimePickerOxa::init()
{
    m_form = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(m_form.get());
    m_other = new QLineEdit(m_form.get());
    m_picker = new TDateTimePickerOxa(m_form.get());
    m_picker->setObjectName(QStringLiteral("dtpNavsteva"));
    layout->addWidget(m_other);
    layout->addWidget(m_picker);
    m_changes = m_closeUps = 0;
    m_picker->OnChange = [this](QObject *) { ++m_changes; };
    m_picker->OnCloseUp = [this](QObject *) { ++m_closeUps; };
    QVERIFY(test::ShowAndActivate(m_form.get()));
    m_other->setFocus();
}

void TestDateTimePickerOxa::cleanup()
{
    m_form.reset();
}

void TestDateTimePickerOxa::focusPicker(const QDate &date, const QString &format)
{
    if (!format.isEmpty())
        m_picker->SetFormat(format);
    m_picker->SetDate(QDateToDateTime(date));
    m_picker->setFocus(Qt::TabFocusReason);
    QVERIFY(m_picker->hasFocus());
}

void TestDateTimePickerOxa::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(m_picker, key, modifiers);
}

QPoint TestDateTimePickerOxa::arrowPos() const
{
    QStyleOptionComboBox option;
    option.initFrom(m_picker);
    option.editable = true;
    return m_picker->style()
        ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, m_picker)
        .center();
}

// Clicks where the user would: on the child under the point (the text field
// covers most of the picker).
void TestDateTimePickerOxa::click(QWidget *picker, const QPoint &pos)
{
    QWidget *target = picker->childAt(pos);
    if (!target)
        target = picker;
    QTest::mouseClick(target, Qt::LeftButton, {}, target->mapFrom(picker, pos));
}

void TestDateTimePickerOxa::newPickerIsBlankUntilFocused()
{
    QCOMPARE(m_picker->DateTime(), 0.0);
    QCOMPARE(m_picker->MinDate(), 0.0);
    QVERIFY(m_picker->EmptyDate());
    QCOMPARE(m_picker->Format(), QStringLiteral(" "));
    QCOMPARE(m_picker->text(), QStringLiteral(" "));

    QTest::keyClick(m_other, Qt::Key_Tab);
    QVERIFY(m_picker->hasFocus());
    QCOMPARE(m_picker->text(), QStringLiteral("30.12.1899"));
    QCOMPARE(m_picker->displayFormat(), QStringLiteral("dd.MM.yyyy"));

    // Tab leaves the picker at once, and the empty date goes blank again.
    press(Qt::Key_Tab);
    QVERIFY(m_other->hasFocus());
    QCOMPARE(m_picker->text(), QStringLiteral(" "));

    m_picker->SetDate(EncodeDate(2019, 1, 31));
    QCOMPARE(m_picker->text(), QStringLiteral("31.01.2019"));
    QCOMPARE(m_changes, 0); // the host's own setting is no change by the user
}

void TestDateTimePickerOxa::deleteEmptiesTheDate()
{
    focusPicker(QDate(2019, 1, 31));
    m_picker->SetDateTime(m_picker->Date() + 0.5);
    press(Qt::Key_Delete);
    QVERIFY(m_picker->EmptyDate());
    QCOMPARE(m_changes, 1);
    QCOMPARE(m_picker->text(), QStringLiteral("30.12.1899"));
    m_other->setFocus();
    QCOMPARE(m_picker->text(), QStringLiteral(" "));
}

void TestDateTimePickerOxa::keypadStarSetsToday()
{
    focusPicker(QDate(2019, 1, 31));
    press(Qt::Key_Asterisk, Qt::KeypadModifier);
    QCOMPARE(pickerDate(), QDate::currentDate());
    QCOMPARE(m_changes, 1);

    // Today before the earliest date: nothing happens.
    m_picker->SetMinDate(oxa::Date() + 10);
    press(Qt::Key_Asterisk, Qt::KeypadModifier);
    QCOMPARE(pickerDate(), QDate::currentDate().addDays(10));
    QCOMPARE(m_changes, 1);
}

void TestDateTimePickerOxa::sectionsTakeTurns_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QDate>("afterUp");
    QTest::addColumn<int>("shownSection");
    const QDate start(2019, 3, 15);
    const QString day = QStringLiteral("dd.MM.yyyy");
    const QString month = QStringLiteral("MMMM.yyyy");
    QTest::newRow("day first") << day << QList<int>{} << start.addDays(1)
                               << int(QDateTimeEdit::DaySection);
    QTest::newRow("Right to the month") << day << QList<int>{Qt::Key_Right} << start.addMonths(1)
                                        << int(QDateTimeEdit::MonthSection);
    QTest::newRow("Left from the day to the year") << day << QList<int>{Qt::Key_Left}
                                                   << start.addYears(1)
                                                   << int(QDateTimeEdit::YearSection);
    QTest::newRow("Right from the year to the day")
        << day << QList<int>{Qt::Key_Right, Qt::Key_Right, Qt::Key_Right} << start.addDays(1)
        << int(QDateTimeEdit::DaySection);
    QTest::newRow("month name: Left to the year") << month << QList<int>{Qt::Key_Left}
                                                  << start.addYears(1)
                                                  << int(QDateTimeEdit::YearSection);
    QTest::newRow("month name: and back to the month")
        << month << QList<int>{Qt::Key_Left, Qt::Key_Right} << start.addMonths(1)
        << int(QDateTimeEdit::MonthSection);
    QTest::newRow("month name: any key leaves the day")
        << month << QList<int>{} << start.addMonths(1) << int(QDateTimeEdit::MonthSection);
}

void TestDateTimePickerOxa::sectionsTakeTurns()
{
    QFETCH(QString, format);
    QFETCH(QList<int>, keys);
    QFETCH(QDate, afterUp);
    QFETCH(int, shownSection);
    focusPicker(QDate(2019, 3, 15), format);
    for (int key : keys)
        press(Qt::Key(key));
    press(Qt::Key_Up);
    QCOMPARE(pickerDate(), afterUp);
    QCOMPARE(int(m_picker->currentSection()), shownSection);
    QCOMPARE(m_changes, 1);

    // Ctrl+Left/Right do not move between the sections.
    press(Qt::Key_Left, Qt::ControlModifier);
    press(Qt::Key_Down);
    QCOMPARE(pickerDate(), QDate(2019, 3, 15));
}

void TestDateTimePickerOxa::typingADigitMovesToTheMonth()
{
    focusPicker(QDate(2019, 1, 31));
    QTest::keyClick(m_picker, Qt::Key_5);
    QCOMPARE(pickerDate(), QDate(2019, 1, 5));
    QCOMPARE(m_changes, 1);
    QCOMPARE(m_picker->currentSection(), QDateTimeEdit::MonthSection);
    press(Qt::Key_Up);
    QCOMPARE(pickerDate(), QDate(2019, 2, 5));
}

void TestDateTimePickerOxa::upInTheMonthOn31January()
{
    focusPicker(QDate(2019, 1, 31));
    press(Qt::Key_Right);
    press(Qt::Key_Up);
    QCOMPARE(pickerDate(), QDate(2019, 2, 28));
    press(Qt::Key_Plus, Qt::KeypadModifier);
    QCOMPARE(pickerDate(), QDate(2019, 3, 28));
    press(Qt::Key_Minus, Qt::KeypadModifier);
    QCOMPARE(pickerDate(), QDate(2019, 2, 28));
    QCOMPARE(m_changes, 3);
}

void TestDateTimePickerOxa::minDateBlocksSteppingBack()
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

    // A month back from a later day lands before MinDate: refused.
    m_picker->SetDate(EncodeDate(2020, 1, 15));
    press(Qt::Key_Down);
    QCOMPARE(pickerDate(), QDate(2020, 1, 15));
    QCOMPARE(messages.Texts(), QStringList{QStringLiteral("dtpNavsteva")});
}

void TestDateTimePickerOxa::refusedDateShowsTheName()
{
    test::MessageRecorder messages;
    // The empty date's day count (0) is not above 1: the step is not blocked
    // by the MinDate rule, and the control refuses the day before MinDate.
    focusPicker(DateTimeEpoch());
    press(Qt::Key_Down);
    QVERIFY(m_picker->EmptyDate());
    QCOMPARE(messages.Shown().size(), 1);
    QCOMPARE(messages.Shown().first().Caption, QStringLiteral("Chyba nastaveni"));
    QCOMPARE(messages.Shown().first().Text, QStringLiteral("dtpNavsteva"));

    m_picker->SetDateTime(EncodeDate(2019, 1, 31) + 0.25);
    m_picker->SetDateTime(-3);
    QCOMPARE(m_picker->DateTime(), EncodeDate(2019, 1, 31) + 0.25);
    QCOMPARE(messages.Shown().size(), 2);
}

void TestDateTimePickerOxa::clickChoosesTheSection()
{
    focusPicker(QDate(2019, 1, 31));
    const QFontMetrics metrics(m_picker->font(), m_form.get());
    const int y = m_picker->height() / 2;
    const int monthX = metrics.horizontalAdvance(QStringLiteral("31.")) + 2;
    const int yearX = metrics.horizontalAdvance(QStringLiteral("31.01.")) + 2;

    click(m_picker, QPoint(yearX, y));
    QCOMPARE(m_picker->currentSection(), QDateTimeEdit::YearSection);
    click(m_picker, QPoint(1, y)); // the first pixel: no change
    press(Qt::Key_Up);
    QCOMPARE(pickerDate(), QDate(2020, 1, 31));

    click(m_picker, QPoint(monthX, y));
    press(Qt::Key_Up);
    QCOMPARE(pickerDate(), QDate(2020, 2, 29));
    QCOMPARE(m_picker->VyhodnotStisk(monthX - 1), 0);
}

void TestDateTimePickerOxa::monthYearClickCountsFromTheRight()
{
    focusPicker(QDate(2019, 1, 31), QStringLiteral("MMMM.yyyy"));
    const QFontMetrics metrics(m_picker->font(), m_form.get());
    const int edge = m_picker->width() - metrics.horizontalAdvance(m_picker->text().left(4))
                     - m_picker->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_picker)
                     - 9;
    QCOMPARE(m_picker->VyhodnotStisk(edge), 1);
    QCOMPARE(m_picker->VyhodnotStisk(edge + 1), 2);
}

void TestDateTimePickerOxa::noWindowNoMeasuring()
{
    test::MessageRecorder messages;
    TDateTimePickerOxa alone;
    QCOMPARE(alone.VyhodnotStisk(1), 0);
    try {
        alone.VyhodnotStisk(40);
        QFAIL("measured without a window");
    } catch (const Exception &error) {
        QCOMPARE(error.Message(), QStringLiteral("Neexistuje parent třídy TForm"));
    }
    // A click reports it like any failing handler.
    alone.show();
    click(&alone, QPoint(20, alone.height() / 2));
    QCOMPARE(messages.Texts(), QStringList{QStringLiteral("Neexistuje parent třídy TForm")});
}

void TestDateTimePickerOxa::calendarChoosesADate()
{
    focusPicker(QDate(2019, 1, 31));
    press(Qt::Key_Left); // the year section
    click(m_picker, arrowPos());
    QCalendarWidget *calendar = m_picker->calendarWidget();
    QTRY_VERIFY(calendar->isVisible());

    // Moving in the open calendar changes the date but steps nothing and
    // is no change yet.
    auto *view = calendar->findChild<QTableView *>();
    QVERIFY(view);
    QTest::keyClick(view, Qt::Key_Right);
    QCOMPARE(pickerDate(), QDate(2019, 2, 1));
    QCOMPARE(m_changes, 0);

    QModelIndex fourteenth;
    for (int row = 1; row < view->model()->rowCount() && !fourteenth.isValid(); ++row) {
        for (int column = 0; column < view->model()->columnCount(); ++column) {
            const QModelIndex index = view->model()->index(row, column);
            if (index.data().toInt() == 14)
                fourteenth = index;
        }
    }
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(fourteenth).center());
    QTRY_VERIFY(!calendar->isVisible());
    QCOMPARE(pickerDate(), QDate(2019, 2, 14));
    QCOMPARE(m_closeUps, 1);
    QCOMPARE(m_changes, 1);

    // Back in the day section after the calendar closed.
    press(Qt::Key_Up);
    QCOMPARE(pickerDate(), QDate(2019, 2, 15));

    // F4 opens it from the keyboard, Escape closes it on the same date.
    press(Qt::Key_F4);
    QTRY_VERIFY(calendar->isVisible());
    QTest::keyClick(view, Qt::Key_Escape);
    QTRY_VERIFY(!calendar->isVisible());
    QCOMPARE(pickerDate(), QDate(2019, 2, 15));
    QCOMPARE(m_closeUps, 2);
}

void TestDateTimePickerOxa::calendarClosedOnEmptyPickerChangesNothing()
{
    m_picker->setFocus();
    click(m_picker, arrowPos());
    QCalendarWidget *calendar = m_picker->calendarWidget();
    QTRY_VERIFY(calendar->isVisible());
    QTest::keyClick(calendar->findChild<QTableView *>(), Qt::Key_Escape);
    QTRY_VERIFY(!calendar->isVisible());
    QVERIFY(m_picker->EmptyDate());
    QCOMPARE(m_closeUps, 0);
    QCOMPARE(m_changes, 0);
}

void TestDateTimePickerOxa::focusColoursAndRegistration()
{
    QCOMPARE(m_picker->Color(), clWindow);
    m_picker->SetActiveColor(clAqua);
    m_picker->setFocus();
    QCOMPARE(m_picker->Color(), clAqua);
    m_picker->SetFocUp(m_other);
    press(Qt::Key_Up, Qt::ControlModifier);
    QVERIFY(m_other->hasFocus());
    QCOMPARE(m_picker->Color(), clWindow);

    RegisterDateTimePickerOxa();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TDateTimePickerOxa"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
}

QTEST_MAIN(TestDateTimePickerOxa)
#include "tst_datetimepickeroxa.moc"
