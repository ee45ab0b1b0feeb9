#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/Keys.h"
#include "oxa/toolkit/WinControl.h"

#include <QLineEdit>
#include <QTest>

#include "support/TestSupport.h"

using namespace oxa;

using Edit = TWinControl<QLineEdit>;
using KeyDown = QPair<Word, TShiftState>;

class TestKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void qtKeysMapToVirtualKeys_data();
    void qtKeysMapToVirtualKeys();
    void shiftStatesAndShortCuts();
    void eventsReachTheHandlers();
};

void TestKeys::qtKeysMapToVirtualKeys_data()
{
    QTest::addColumn<int>("qtKey");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("vk");
    QTest::newRow("keypad star") << int(Qt::Key_Asterisk) << int(Qt::KeypadModifier)
                                 << int(VK_MULTIPLY);
    QTest::newRow("keypad 7") << int(Qt::Key_7) << int(Qt::KeypadModifier) << 0x67;
    QTest::newRow("main minus") << int(Qt::Key_Minus) << 0 << int(VK_OEM_MINUS);
    QTest::newRow("keypad arrow stays an arrow")
        << int(Qt::Key_Up) << int(Qt::KeypadModifier) << int(VK_UP);
}

void TestKeys::qtKeysMapToVirtualKeys()
{
    QFETCH(int, qtKey);
    QFETCH(int, modifiers);
    QFETCH(int, vk);
    QCOMPARE(int(QtKeyToVirtualKey(qtKey, Qt::KeyboardModifiers(modifiers))), vk);
    if (qtKey != Qt::Key_Up) {
        bool keypad = false;
        QCOMPARE(VirtualKeyToQtKey(Word(vk), &keypad), qtKey);
        QCOMPARE(keypad, bool(modifiers & Qt::KeypadModifier));
    }
}

void TestKeys::shiftStatesAndShortCuts()
{
    QCOMPARE(ShiftStateFromModifiers(Qt::KeypadModifier), TShiftState());
    QCOMPARE(ShiftStateFromMouse(Qt::AltModifier, Qt::LeftButton | Qt::RightButton, true),
             ssAlt | ssLeft | ssRight | ssDouble);
    QCOMPARE(ShortCutToText(ShortCut(VK_Letter('a'), ssShift | ssAlt)),
             QStringLiteral("Shift+Alt+A"));
    QCOMPARE(ShortCutToText(ShortCut(VK_DELETE, ssCtrl)), QStringLiteral("Ctrl+Del"));
    QCOMPARE(TextToShortCut(QStringLiteral("Ctrl+F1")), ShortCut(VK_F1, ssCtrl));
}

// Real key and focus events on a shown edit, through its published events: a
// key or character zeroed by a handler is consumed, a replaced character is
// typed instead, an exception escaping a handler is shown and eats the key.
void TestKeys::eventsReachTheHandlers()
{
    test::MessageRecorder messages;
    QWidget window;
    auto *edit = new Edit(&window);
    auto *other = new Edit(&window);
    KeyDown down;
    Word up = 0, swallowKey = VK_LEFT;
    QString pressed;
    QStringList focus;
    edit->OnKeyDown = [&](QObject *, Word &key, TShiftState shift) {
        down = {key, shift};
        if (key == swallowKey)
            key = 0;
    };
    edit->OnKeyPress = [&](QObject *, QChar &ch) {
        pressed += ch;
        if (ch == u'+')
            ch = QChar();
        else if (ch == u'a')
            ch = u'x';
    };
    edit->OnKeyUp = [&](QObject *, Word &key, TShiftState) { up = key; };
    for (Edit *control : {edit, other}) {
        control->OnEnter = [&](QObject *sender) { focus << sender->objectName() + " in"; };
        control->OnExit = [&](QObject *sender) { focus << sender->objectName() + " out"; };
    }
    edit->setObjectName(QStringLiteral("edit"));
    other->setObjectName(QStringLiteral("other"));
    edit->setText(QStringLiteral("abc"));
    QVERIFY(test::ShowAndActivate(&window));
    edit->setFocus();

    QTest::keyClick(edit, Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(edit->cursorPosition(), 3);
    QCOMPARE(down, KeyDown(VK_LEFT, ssCtrl));
    swallowKey = 0;
    QTest::keyClick(edit, Qt::Key_Left);
    QCOMPARE(edit->cursorPosition(), 2);

    QTest::keyClicks(edit, QStringLiteral("1+"));
    QTest::keyClick(edit, Qt::Key_Plus, Qt::KeypadModifier);
    QCOMPARE(down, KeyDown(VK_ADD, {}));
    QTest::keyClick(edit, Qt::Key_A);
    QCOMPARE(pressed, QStringLiteral("1++a"));
    QCOMPARE(edit->text(), QStringLiteral("ab1xc"));
    QTest::keyRelease(edit, Qt::Key_F2);
    QCOMPARE(up, VK_F2);
    edit->OnKeyDown = [](QObject *, Word &, TShiftState) {
        throw Exception(QStringLiteral("Chyba"));
    };
    QTest::keyClick(edit, Qt::Key_B);
    QCOMPARE(messages.Texts(), QStringList{QStringLiteral("Chyba")});
    QCOMPARE(messages.Shown().first().Type, mtError);
    QCOMPARE(edit->text(), QStringLiteral("ab1xc"));

    other->setFocus();
    // A popup taking the focus is not an exit of the control.
    QFocusEvent popupOut(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(other, &popupOut);
    QCOMPARE(focus, (QStringList{"edit in", "edit out", "other in"}));
}

QTEST_MAIN(TestKeys)
#include "tst_keys.moc"
