#include "oxa/controls/MaskEditOxa.h"
#include "oxa/toolkit/DateUtils.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <memory>

using namespace oxa;

class TestMaskEditOxa : public QObject
{
    Q_OBJECT

    std::unique_ptr<test::TestForm> m_form;
    TMaskEditOxa *m_edit = nullptr;
    QLineEdit *m_next = nullptr;

    void focusDateEdit(const QString &text, int caret)
    {
        m_edit->setFocus();
        m_edit->setText(text);
        m_edit->setCursorPosition(caret);
    }

private Q_SLOTS:
    void init()
    {
        m_form = std::make_unique<test::TestForm>();
        m_edit = m_form->Add<TMaskEditOxa>();
        m_next = m_form->Add<QLineEdit>();
        m_edit->SetIsDateFormat(true);
        QVERIFY(m_form->Show());
    }
    void cleanup() { m_form.reset(); }

    void editMaskBecomesQtInputMask()
    {
        // A date edit without a mask of its own gets the date mask.
        QCOMPARE(m_edit->inputMask(), QStringLiteral("00.00.9999;_"));
        m_edit->SetEditMask(QStringLiteral(">LL<ll\\9-H;0;*"));
        QCOMPARE(m_edit->inputMask(), QStringLiteral(">AA<aa\\9-\\H;*"));
    }

    void dateKeysStepByCaret_data()
    {
        QTest::addColumn<int>("caret");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("expected");
        const int keypad = Qt::KeypadModifier, plus = Qt::Key_Plus, minus = Qt::Key_Minus;
        QTest::newRow("keypad plus in the day") << 1 << plus << keypad << "01.02.2019";
        QTest::newRow("Up in the month: end of February")
            << 3 << int(Qt::Key_Up) << 0 << "28.02.2019";
        QTest::newRow("Down on the month's last digit")
            << 4 << int(Qt::Key_Down) << 0 << "31.12.2018";
        QTest::newRow("keypad minus at the year's start") << 6 << minus << keypad << "31.01.2018";
    }

    void dateKeysStepByCaret()
    {
        QFETCH(int, caret);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        focusDateEdit(QStringLiteral("31.01.2019"), caret);
        QTest::keyClick(m_edit, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QTEST(m_edit->text(), "expected");
        QCOMPARE(m_edit->cursorPosition(), caret);
        // A selection (here the month, made leftwards) survives the step.
        m_edit->setSelection(5, -2);
        QTest::keyClick(m_edit, Qt::Key_Up);
        QCOMPARE(m_edit->selectedText(), m_edit->text().mid(3, 2));
        QCOMPARE(m_edit->cursorPosition(), 3);
    }

    void keypadStarAndEmptyDate()
    {
        test::MessageRecorder messages;
        focusDateEdit(QString(), 3);
        QTest::keyClick(m_edit, Qt::Key_Minus, Qt::KeypadModifier);
        QTest::keyClick(m_edit, Qt::Key_Up);
        QCOMPARE(m_edit->text(), QStringLiteral(".."));
        QVERIFY(messages.Shown().isEmpty());
        QTest::keyClick(m_edit, Qt::Key_Asterisk, Qt::KeypadModifier);
        QCOMPARE(m_edit->text(), DateToStr(oxa::Date()));
    }

    // A click anywhere behind what was typed lands on the first empty
    // position, so the next digits are not lost behind the mask's end.
    void clickBehindTheTextGoesToTheFirstBlank()
    {
        const QPoint nearRightEdge(m_edit->width() - 4, m_edit->height() / 2);
        QTest::mouseClick(m_edit, Qt::LeftButton, {}, nearRightEdge);
        QCOMPARE(m_edit->cursorPosition(), 0);
        QTest::keyClicks(m_edit, QStringLiteral("2412"));
        QCOMPARE(m_edit->text(), QStringLiteral("24.12."));
        QTest::mouseClick(m_edit, Qt::LeftButton, {}, nearRightEdge);
        QCOMPARE(m_edit->cursorPosition(), 6);
        QTest::keyClicks(m_edit, QStringLiteral("2026"));
        QCOMPARE(m_edit->text(), QStringLiteral("24.12.2026"));
    }

    void dateKeysCharactersNeverTyped_data()
    {
        QTest::addColumn<bool>("dateFormat");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("typed");
        QTest::newRow("plain edit, main keyboard") << false << 0 << "+-*";
        QTest::newRow("date edit, keypad, no date to step")
            << true << int(Qt::KeypadModifier) << "+-";
    }

    void dateKeysCharactersNeverTyped()
    {
        QFETCH(bool, dateFormat);
        QFETCH(int, modifiers);
        QFETCH(QString, typed);
        m_edit->SetIsDateFormat(dateFormat);
        m_edit->setInputMask(dateFormat ? m_edit->inputMask() : QString());
        m_edit->setFocus();
        for (QChar c : typed)
            QTest::keyClick(m_edit, c.toLatin1(), Qt::KeyboardModifiers(modifiers));
        QTest::keyClicks(m_edit, QStringLiteral("1"));
        QCOMPARE(m_edit->text(), dateFormat ? QStringLiteral("1..") : QStringLiteral("1"));
    }

    void leavingChecksTheDate()
    {
        test::MessageRecorder messages;
        int exits = 0;
        m_edit->OnExit = [&](QObject *) { ++exits; };
        focusDateEdit(QString(), 0);
        m_next->setFocus(Qt::TabFocusReason); // an untouched mask may be left
        QCOMPARE(exits, 1);

        focusDateEdit(QString(), 0);
        QTest::keyClicks(m_edit, QStringLiteral("32132019"));
        QTest::keyClick(m_edit, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), m_edit);
        QCOMPARE(messages.Texts(), QStringList{QStringLiteral("'32.13.2019' není platné datum")});
        QCOMPARE(m_edit->Color(), clYellow);
        QCOMPARE(exits, 1);

        m_edit->setText(QStringLiteral("29.02.2020"));
        QTest::keyClick(m_edit, Qt::Key_Tab);
        QVERIFY(m_next->hasFocus());
        QCOMPARE(m_edit->Color(), clWindow);
        QCOMPARE(exits, 2);
        QCOMPARE(messages.Shown().size(), 1);
    }

    void ctrlUpMovesFocusOrStepsTheDate()
    {
        focusDateEdit(QStringLiteral("31.01.2019"), 0);
        QTest::keyClick(m_edit, Qt::Key_Up, Qt::ControlModifier);
        QCOMPARE(m_edit->text(), QStringLiteral("01.02.2019"));
        m_edit->SetFocUp(m_next);
        QTest::keyClick(m_edit, Qt::Key_Up, Qt::ControlModifier);
        QVERIFY(m_next->hasFocus());
        QCOMPARE(m_edit->text(), QStringLiteral("01.02.2019"));
    }
};

QTEST_MAIN(TestMaskEditOxa)
#include "tst_maskeditoxa.moc"
