#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/Keys.h"
#include "oxa/toolkit/WinControl.h"

#include <QLineEdit>
#include <QTest>

#include "support/TestSupport.h"

using namespace oxa;

namespace {

// Records what the toolkit's handlers receive; zeroes keys it is told to.
class ProbeEdit : public TWinControl<QLineEdit>
{
public:
    using TWinControl::TWinControl;
    QList<QPair<Word, TShiftState>> downs;
    QList<Word> ups;
    QString pressed;
    Word swallowKey = 0;
    QChar swallowChar;
    QChar replaceChar;
    int entered = 0;
    int exited = 0;

protected:
    void KeyDown(Word &key, TShiftState shift) override
    {
        downs.append({key, shift});
        if (key == swallowKey)
            key = 0;
        TWinControl::KeyDown(key, shift);
    }
    void KeyPress(QChar &ch) override
    {
        pressed += ch;
        if (ch == swallowChar)
            ch = QChar();
        else if (!replaceChar.isNull())
            ch = replaceChar;
    }
    void KeyUp(Word &key, TShiftState) override { ups.append(key); }
    void DoEnter() override { ++entered; }
    void DoExit() override { ++exited; }
};

} // namespace

class TestKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void qtKeysMapToVirtualKeys_data();
    void qtKeysMapToVirtualKeys();
    void shiftStateIsTheSetOfModifiers();
    void shortCutTexts();
    void keyDownZeroedKeyIsConsumed();
    void keyPressCanDiscardOrReplaceCharacters();
    void keyUpAndFocusEntryExit();
    void escapingExceptionReachesTheUser();
};

void TestKeys::qtKeysMapToVirtualKeys_data()
{
    QTest::addColumn<int>("qtKey");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("vk");
    QTest::newRow("left") << int(Qt::Key_Left) << 0 << int(VK_LEFT);
    QTest::newRow("down") << int(Qt::Key_Down) << 0 << int(VK_DOWN);
    QTest::newRow("keypad star") << int(Qt::Key_Asterisk) << int(Qt::KeypadModifier) << int(VK_MULTIPLY);
    QTest::newRow("keypad plus") << int(Qt::Key_Plus) << int(Qt::KeypadModifier) << int(VK_ADD);
    QTest::newRow("keypad minus") << int(Qt::Key_Minus) << int(Qt::KeypadModifier) << int(VK_SUBTRACT);
    QTest::newRow("keypad 7") << int(Qt::Key_7) << int(Qt::KeypadModifier) << 0x67;
    QTest::newRow("main minus") << int(Qt::Key_Minus) << 0 << int(VK_OEM_MINUS);
    QTest::newRow("letter") << int(Qt::Key_F) << 0 << 0x46;
    QTest::newRow("digit") << int(Qt::Key_5) << 0 << 0x35;
    QTest::newRow("F4") << int(Qt::Key_F4) << 0 << int(VK_F4);
    QTest::newRow("space") << int(Qt::Key_Space) << 0 << int(VK_SPACE);
    QTest::newRow("delete") << int(Qt::Key_Delete) << 0 << int(VK_DELETE);
    QTest::newRow("keypad arrow stays an arrow") << int(Qt::Key_Up) << int(Qt::KeypadModifier) << int(VK_UP);
}

void TestKeys::qtKeysMapToVirtualKeys()
{
    QFETCH(int, qtKey);
    QFETCH(int, modifiers);
    QFETCH(int, vk);
    QCOMPARE(int(QtKeyToVirtualKey(qtKey, Qt::KeyboardModifiers(modifiers))), vk);
    if (vk != 0 && qtKey != Qt::Key_Up) {
        bool keypad = false;
        QCOMPARE(VirtualKeyToQtKey(Word(vk), &keypad), qtKey);
        QCOMPARE(keypad, bool(modifiers & Qt::KeypadModifier));
    }
}

void TestKeys::shiftStateIsTheSetOfModifiers()
{
    QCOMPARE(ShiftStateFromModifiers(Qt::ControlModifier), TShiftState(ssCtrl));
    QCOMPARE(ShiftStateFromModifiers(Qt::ControlModifier | Qt::ShiftModifier), ssCtrl | ssShift);
    QCOMPARE(ShiftStateFromModifiers(Qt::KeypadModifier), TShiftState());
    QCOMPARE(ShiftStateFromMouse(Qt::AltModifier, Qt::LeftButton | Qt::RightButton, true),
             ssAlt | ssLeft | ssRight | ssDouble);
}

void TestKeys::shortCutTexts()
{
    QCOMPARE(ShortCutToText(ShortCut(VK_F1, ssCtrl)), QStringLiteral("Ctrl+F1"));
    QCOMPARE(ShortCutToText(ShortCut(VK_F4, {})), QStringLiteral("F4"));
    QCOMPARE(ShortCutToText(ShortCut(VK_Letter('a'), ssShift | ssAlt)), QStringLiteral("Shift+Alt+A"));
    QCOMPARE(ShortCutToText(ShortCut(VK_DELETE, ssCtrl)), QStringLiteral("Ctrl+Del"));
    QCOMPARE(TextToShortCut(QStringLiteral("Ctrl+F1")), ShortCut(VK_F1, ssCtrl));
    QCOMPARE(ShortCutToText(0), QString());
}

void TestKeys::keyDownZeroedKeyIsConsumed()
{
    QWidget window;
    auto *edit = new ProbeEdit(&window);
    QVERIFY(test::ShowAndActivate(&window));
    edit->setFocus();
    edit->setText(QStringLiteral("abc"));
    edit->setCursorPosition(3);

    edit->swallowKey = VK_LEFT;
    QTest::keyClick(edit, Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(edit->cursorPosition(), 3);
    QCOMPARE(edit->downs.last().first, VK_LEFT);
    QCOMPARE(edit->downs.last().second, TShiftState(ssCtrl));

    edit->swallowKey = 0;
    QTest::keyClick(edit, Qt::Key_Left);
    QCOMPARE(edit->cursorPosition(), 2);
}

void TestKeys::keyPressCanDiscardOrReplaceCharacters()
{
    QWidget window;
    auto *edit = new ProbeEdit(&window);
    QVERIFY(test::ShowAndActivate(&window));
    edit->setFocus();
    edit->swallowChar = QLatin1Char('+');
    QTest::keyClicks(edit, QStringLiteral("1+2"));
    QCOMPARE(edit->text(), QStringLiteral("12"));
    QCOMPARE(edit->pressed, QStringLiteral("1+2"));
    edit->replaceChar = QLatin1Char('x');
    QTest::keyClick(edit, Qt::Key_A, Qt::NoModifier);
    QCOMPARE(edit->text(), QStringLiteral("12x"));
}

void TestKeys::keyUpAndFocusEntryExit()
{
    QWidget window;
    auto *first = new ProbeEdit(&window);
    auto *second = new ProbeEdit(&window);
    QVERIFY(test::ShowAndActivate(&window));
    first->setFocus();
    QCOMPARE(first->entered, 1);
    QTest::keyRelease(first, Qt::Key_F2);
    QCOMPARE(first->ups, QList<Word>{VK_F2});
    second->setFocus();
    QCOMPARE(first->exited, 1);
    QCOMPARE(second->entered, 1);
    // A popup taking the focus is not an exit of the control.
    QFocusEvent popupOut(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(second, &popupOut);
    QCOMPARE(second->exited, 0);
}

void TestKeys::escapingExceptionReachesTheUser()
{
    test::MessageRecorder messages;
    QWidget window;
    auto *edit = new ProbeEdit(&window);
    edit->OnKeyDown = [](QObject *, Word &, TShiftState) {
        throw Exception(QStringLiteral("Chyba v obsluze"));
    };
    QVERIFY(test::ShowAndActivate(&window));
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_B);
    QCOMPARE(messages.Texts(), QStringList{QStringLiteral("Chyba v obsluze")});
    QCOMPARE(messages.Shown().first().Type, mtError);
    QCOMPARE(edit->text(), QString());
}

QTEST_MAIN(TestKeys)
#include "tst_keys.moc"
