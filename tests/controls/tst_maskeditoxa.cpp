#include "oxa/controls/MaskEditOxa.h"
#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/DateUtils.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>
#include <memory>

using namespace oxa;

class TestMaskEditOxa : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void editMaskBecomesQtInputMask_data();
    void editMaskBecomesQtInputMask();
    void dateFormatBringsADateMask();
    void dateKeysStepByCaret_data();
    void dateKeysStepByCaret();
    void stepKeepsTheSelection();
    void keypadStarPutsToday();
    void stepOnEmptyDateDoesNothing();
    void dateKeysCharactersNeverTyped_data();
    void dateKeysCharactersNeverTyped();
    void invalidDateKeepsTheFocus();
    void untouchedMaskMayBeLeft();
    void ctrlUpMovesFocusOrStepsTheDate();
    void registersOnOxaPage();

private:
    std::unique_ptr<QWidget> m_form;
    TMaskEditOxa *m_edit = nullptr;
    QLineEdit *m_next = nullptr;

    void focusDateEdit(const QString &text, int caret);
};

void TestMaskEditOxa::init()
{
    m_form = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(m_form.get());
    m_edit = new TMaskEditOxa(m_form.get());
    m_edit->SetIsDateFormat(true);
    m_next = new QLineEdit(m_form.get());
    layout->addWidget(m_edit);
    layout->addWidget(m_next);
    QVERIFY(test::ShowAndActivate(m_form.get()));
}

void TestMaskEditOxa::cleanup()
{
    m_form.reset();
}

void TestMaskEditOxa::focusDateEdit(const QString &text, int caret)
{
    m_edit->setFocus();
    m_edit->setText(text);
    m_edit->setCursorPosition(caret);
}

void TestMaskEditOxa::editMaskBecomesQtInputMask_data()
{
    QTest::addColumn<QString>("editMask");
    QTest::addColumn<QString>("inputMask");
    QTest::newRow("date") << "!99/99/0000;1;_" << "00.00.9999;_";
    QTest::newRow("time, blank space") << "!90:00;1; " << "09:99; ";
    QTest::newRow("letters and case") << ">LL<ll;0;*" << ">AA<aa;*";
    QTest::newRow("escaped and Qt-special literals") << "\\9\\L-H;1" << "\\9L-\\H;_";
    QTest::newRow("case conversion off, any character") << "<>Cc;1;_" << "!Xx;_";
    QTest::newRow("no mask") << "" << "";
}

void TestMaskEditOxa::editMaskBecomesQtInputMask()
{
    QFETCH(QString, editMask);
    QFETCH(QString, inputMask);
    QCOMPARE(TMaskEditOxa::ToQtInputMask(editMask), inputMask);
}

void TestMaskEditOxa::dateFormatBringsADateMask()
{
    QCOMPARE(m_edit->EditMask(), QStringLiteral("!99/99/0000;1;_"));
    QCOMPARE(m_edit->inputMask(), QStringLiteral("00.00.9999;_"));

    TMaskEditOxa phone(m_form.get());
    phone.SetEditMask(QStringLiteral("000 000 000;1;_"));
    phone.SetIsDateFormat(true);
    QCOMPARE(phone.EditMask(), QStringLiteral("000 000 000;1;_"));
}

void TestMaskEditOxa::dateKeysStepByCaret_data()
{
    QTest::addColumn<int>("caret");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("expected");
    const int keypad = Qt::KeypadModifier;
    QTest::newRow("keypad plus in the day") << 1 << int(Qt::Key_Plus) << keypad << "01.02.2019";
    QTest::newRow("keypad minus in the day") << 0 << int(Qt::Key_Minus) << keypad << "30.01.2019";
    QTest::newRow("Up in the month: end of February") << 3 << int(Qt::Key_Up) << 0 << "28.02.2019";
    QTest::newRow("Down on the month's last digit") << 4 << int(Qt::Key_Down) << 0 << "31.12.2018";
    QTest::newRow("Down in the year") << 7 << int(Qt::Key_Down) << 0 << "31.01.2018";
    QTest::newRow("keypad plus at the year's start") << 6 << int(Qt::Key_Plus) << keypad << "31.01.2020";
}

void TestMaskEditOxa::dateKeysStepByCaret()
{
    QFETCH(int, caret);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, expected);
    focusDateEdit(QStringLiteral("31.01.2019"), caret);
    QTest::keyClick(m_edit, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(m_edit->text(), expected);
    QCOMPARE(m_edit->cursorPosition(), caret);
    QVERIFY(m_edit->hasFocus());
}

void TestMaskEditOxa::stepKeepsTheSelection()
{
    focusDateEdit(QStringLiteral("31.01.2019"), 0);
    m_edit->setSelection(5, -2); // the month, selected leftwards
    QTest::keyClick(m_edit, Qt::Key_Up);
    QCOMPARE(m_edit->text(), QStringLiteral("28.02.2019"));
    QCOMPARE(m_edit->selectedText(), QStringLiteral("02"));
    QCOMPARE(m_edit->cursorPosition(), 3);
}

void TestMaskEditOxa::keypadStarPutsToday()
{
    focusDateEdit(QString(), 0);
    QTest::keyClick(m_edit, Qt::Key_Asterisk, Qt::KeypadModifier);
    QCOMPARE(m_edit->text(), DateToStr(oxa::Date()));
}

void TestMaskEditOxa::stepOnEmptyDateDoesNothing()
{
    test::MessageRecorder messages;
    focusDateEdit(QString(), 3);
    const QString untouched = m_edit->text();
    QTest::keyClick(m_edit, Qt::Key_Minus, Qt::KeypadModifier);
    QTest::keyClick(m_edit, Qt::Key_Up);
    QCOMPARE(m_edit->text(), untouched);
    QVERIFY(messages.Shown().isEmpty());
}

void TestMaskEditOxa::dateKeysCharactersNeverTyped_data()
{
    QTest::addColumn<bool>("dateFormat");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("typed");
    QTest::newRow("plain edit, main keyboard") << false << 0 << "+-*";
    QTest::newRow("plain edit, keypad") << false << int(Qt::KeypadModifier) << "+-*";
    QTest::newRow("date edit, main keyboard") << true << 0 << "+-*";
    QTest::newRow("date edit, keypad, no date to step") << true << int(Qt::KeypadModifier) << "+-";
}

void TestMaskEditOxa::dateKeysCharactersNeverTyped()
{
    QFETCH(bool, dateFormat);
    QFETCH(int, modifiers);
    QFETCH(QString, typed);
    TMaskEditOxa edit(m_form.get());
    edit.SetIsDateFormat(dateFormat);
    edit.show();
    edit.setFocus();
    for (QChar c : typed)
        QTest::keyClick(&edit, c.toLatin1(), Qt::KeyboardModifiers(modifiers));
    QTest::keyClicks(&edit, QStringLiteral("1"));
    if (dateFormat)
        QCOMPARE(edit.text(), QStringLiteral("1.."));
    else
        QCOMPARE(edit.text(), QStringLiteral("1"));
}

void TestMaskEditOxa::invalidDateKeepsTheFocus()
{
    test::MessageRecorder messages;
    int exits = 0, enters = 0;
    m_edit->OnExit = [&](QObject *) { ++exits; };
    m_edit->OnEnter = [&](QObject *) { ++enters; };
    m_edit->setFocus();
    m_edit->setCursorPosition(0);
    QCOMPARE(m_edit->Color(), clYellow);

    QTest::keyClicks(m_edit, QStringLiteral("32132019"));
    QTest::keyClick(m_edit, Qt::Key_Tab);
    QVERIFY(m_edit->hasFocus());
    QCOMPARE(QApplication::focusWidget(), m_edit);
    QCOMPARE(messages.Texts(), QStringList{QStringLiteral("'32.13.2019' není platné datum")});
    QCOMPARE(messages.Shown().first().Type, mtError);
    QCOMPARE(m_edit->Color(), m_edit->ActiveColor());
    QCOMPARE(exits, 0);
    QCOMPARE(enters, 0); // entered when the form was activated, never left

    // Once the date is right the edit may be left as usual.
    m_edit->setText(QStringLiteral("29.02.2020"));
    QTest::keyClick(m_edit, Qt::Key_Tab);
    QVERIFY(m_next->hasFocus());
    QCOMPARE(m_edit->Color(), m_edit->DefaultColor());
    QCOMPARE(exits, 1);
    QCOMPARE(messages.Shown().size(), 1);
}

void TestMaskEditOxa::untouchedMaskMayBeLeft()
{
    test::MessageRecorder messages;
    m_edit->setFocus();
    m_next->setFocus(Qt::TabFocusReason);
    QVERIFY(m_next->hasFocus());
    QVERIFY(messages.Shown().isEmpty());
    QCOMPARE(m_edit->Color(), clWindow);
}

void TestMaskEditOxa::ctrlUpMovesFocusOrStepsTheDate()
{
    focusDateEdit(QStringLiteral("31.01.2019"), 0);
    QTest::keyClick(m_edit, Qt::Key_Up, Qt::ControlModifier);
    QCOMPARE(m_edit->text(), QStringLiteral("01.02.2019"));

    m_edit->SetFocUp(m_next);
    QTest::keyClick(m_edit, Qt::Key_Up, Qt::ControlModifier);
    QVERIFY(m_next->hasFocus());
    QCOMPARE(m_edit->text(), QStringLiteral("01.02.2019"));
}

void TestMaskEditOxa::registersOnOxaPage()
{
    RegisterMaskEditOxa();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TMaskEditOxa"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    std::unique_ptr<QObject> made(entry->Factory(nullptr));
    QVERIFY(qobject_cast<TMaskEditOxa *>(made.get()));
}

QTEST_MAIN(TestMaskEditOxa)
#include "tst_maskeditoxa.moc"
