#pragma once

#include "oxa/oxa_export.h"

#include <QFlags>
#include <Qt>
#include <QtGlobal>

class QKeyEvent;
class QWidget;
class QMouseEvent;

namespace oxa {

// A virtual-key code of the platform the system was designed on.
using Word = quint16;

inline constexpr Word VK_LBUTTON = 0x01;
inline constexpr Word VK_RBUTTON = 0x02;
inline constexpr Word VK_MBUTTON = 0x04;
inline constexpr Word VK_BACK = 0x08;
inline constexpr Word VK_TAB = 0x09;
inline constexpr Word VK_RETURN = 0x0D;
inline constexpr Word VK_SHIFT = 0x10;
inline constexpr Word VK_CONTROL = 0x11;
inline constexpr Word VK_MENU = 0x12;
inline constexpr Word VK_PAUSE = 0x13;
inline constexpr Word VK_CAPITAL = 0x14;
inline constexpr Word VK_ESCAPE = 0x1B;
inline constexpr Word VK_SPACE = 0x20;
inline constexpr Word VK_PRIOR = 0x21;
inline constexpr Word VK_NEXT = 0x22;
inline constexpr Word VK_END = 0x23;
inline constexpr Word VK_HOME = 0x24;
inline constexpr Word VK_LEFT = 0x25;
inline constexpr Word VK_UP = 0x26;
inline constexpr Word VK_RIGHT = 0x27;
inline constexpr Word VK_DOWN = 0x28;
inline constexpr Word VK_SNAPSHOT = 0x2C;
inline constexpr Word VK_INSERT = 0x2D;
inline constexpr Word VK_DELETE = 0x2E;
inline constexpr Word VK_0 = 0x30; // '0'..'9' are 0x30..0x39
inline constexpr Word VK_A = 0x41; // 'A'..'Z' are 0x41..0x5A
inline constexpr Word VK_LWIN = 0x5B;
inline constexpr Word VK_RWIN = 0x5C;
inline constexpr Word VK_APPS = 0x5D;
inline constexpr Word VK_NUMPAD0 = 0x60; // keypad digits are 0x60..0x69
inline constexpr Word VK_MULTIPLY = 0x6A;
inline constexpr Word VK_ADD = 0x6B;
inline constexpr Word VK_SEPARATOR = 0x6C;
inline constexpr Word VK_SUBTRACT = 0x6D;
inline constexpr Word VK_DECIMAL = 0x6E;
inline constexpr Word VK_DIVIDE = 0x6F;
inline constexpr Word VK_F1 = 0x70; // F1..F24 are 0x70..0x87
inline constexpr Word VK_F2 = 0x71;
inline constexpr Word VK_F3 = 0x72;
inline constexpr Word VK_F4 = 0x73;
inline constexpr Word VK_F5 = 0x74;
inline constexpr Word VK_F6 = 0x75;
inline constexpr Word VK_F7 = 0x76;
inline constexpr Word VK_F8 = 0x77;
inline constexpr Word VK_F9 = 0x78;
inline constexpr Word VK_F10 = 0x79;
inline constexpr Word VK_F11 = 0x7A;
inline constexpr Word VK_F12 = 0x7B;
inline constexpr Word VK_NUMLOCK = 0x90;
inline constexpr Word VK_SCROLL = 0x91;
inline constexpr Word VK_OEM_1 = 0xBA;      // ;
inline constexpr Word VK_OEM_PLUS = 0xBB;   // =
inline constexpr Word VK_OEM_COMMA = 0xBC;  // ,
inline constexpr Word VK_OEM_MINUS = 0xBD;  // -
inline constexpr Word VK_OEM_PERIOD = 0xBE; // .
inline constexpr Word VK_OEM_2 = 0xBF;      // /
inline constexpr Word VK_OEM_3 = 0xC0;      // `
inline constexpr Word VK_OEM_4 = 0xDB;      // [
inline constexpr Word VK_OEM_5 = 0xDC;      // backslash
inline constexpr Word VK_OEM_6 = 0xDD;      // ]
inline constexpr Word VK_OEM_7 = 0xDE;      // '

constexpr Word VK_Letter(char c)
{
    return Word(VK_A + (c >= 'a' ? c - 'a' : c - 'A'));
}
constexpr Word VK_Digit(int d)
{
    return Word(VK_0 + d);
}
constexpr Word VK_Function(int n)
{
    return Word(VK_F1 + n - 1);
}
// The digit a key types, from the main keys or the keypad; -1 for any other key.
constexpr int TypedDigit(Word key)
{
    if (key >= VK_0 && key <= VK_0 + 9)
        return key - VK_0;
    if (key >= VK_NUMPAD0 && key <= VK_NUMPAD0 + 9)
        return key - VK_NUMPAD0;
    return -1;
}

// The shift state of a key or mouse event.
enum TShiftStateFlag {
    ssShift = 0x01,
    ssAlt = 0x02,
    ssCtrl = 0x04,
    ssLeft = 0x08,
    ssRight = 0x10,
    ssMiddle = 0x20,
    ssDouble = 0x40,
};
Q_DECLARE_FLAGS(TShiftState, TShiftStateFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(TShiftState)

// Shift, Alt and Ctrl from Qt's keyboard modifiers.
OXA_EXPORT TShiftState ShiftStateFromModifiers(Qt::KeyboardModifiers modifiers);
// Keyboard modifiers plus mouse buttons (and the double-click flag).
OXA_EXPORT TShiftState ShiftStateFromMouse(Qt::KeyboardModifiers modifiers,
                                           Qt::MouseButtons buttons, bool doubleClick = false);
// The keyboard's shift state right now, as GetKeyboardState reports it.
OXA_EXPORT TShiftState KeyboardShiftState();

// The virtual-key code of a Qt key; keypad keys get their keypad codes.
// Returns 0 for keys without a code.
OXA_EXPORT Word QtKeyToVirtualKey(int qtKey, Qt::KeyboardModifiers modifiers);
// The Qt key and the keypad flag that produce a virtual-key code.
OXA_EXPORT int VirtualKeyToQtKey(Word key, bool *keypad = nullptr);

// Reads a key event as (key code, shift state).
OXA_EXPORT void KeyFromEvent(const QKeyEvent *event, Word &key, TShiftState &shift);

// Sends the widget a key press of the code, as the toolkit's key-down message
// would, through the widget's own key handling.
OXA_EXPORT void SendKeyDown(QWidget *widget, Word key, TShiftState shift = {});

// "Ctrl+F1", "F4", "Shift+Alt+A": the toolkit's text of a shortcut.
using TShortCut = quint16; // key code in the low byte, scShift/scCtrl/scAlt above
inline constexpr TShortCut scShift = 0x2000;
inline constexpr TShortCut scCtrl = 0x4000;
inline constexpr TShortCut scAlt = 0x8000;
OXA_EXPORT TShortCut ShortCut(Word key, TShiftState shift);
OXA_EXPORT QString ShortCutToText(TShortCut shortCut);
OXA_EXPORT TShortCut TextToShortCut(const QString &text);

} // namespace oxa
