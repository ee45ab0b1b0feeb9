#include "oxa/toolkit/Keys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace oxa {

namespace {

struct KeyPair
{
    int qt;
    Word vk;
};

// Keys whose code does not follow from a range.
constexpr KeyPair kKeys[] = {
    {Qt::Key_Backspace, VK_BACK},    {Qt::Key_Tab, VK_TAB},
    {Qt::Key_Backtab, VK_TAB},       {Qt::Key_Return, VK_RETURN},
    {Qt::Key_Enter, VK_RETURN},      {Qt::Key_Shift, VK_SHIFT},
    {Qt::Key_Control, VK_CONTROL},   {Qt::Key_Alt, VK_MENU},
    {Qt::Key_Pause, VK_PAUSE},       {Qt::Key_CapsLock, VK_CAPITAL},
    {Qt::Key_Escape, VK_ESCAPE},     {Qt::Key_Space, VK_SPACE},
    {Qt::Key_PageUp, VK_PRIOR},      {Qt::Key_PageDown, VK_NEXT},
    {Qt::Key_End, VK_END},           {Qt::Key_Home, VK_HOME},
    {Qt::Key_Left, VK_LEFT},         {Qt::Key_Up, VK_UP},
    {Qt::Key_Right, VK_RIGHT},       {Qt::Key_Down, VK_DOWN},
    {Qt::Key_Print, VK_SNAPSHOT},    {Qt::Key_Insert, VK_INSERT},
    {Qt::Key_Delete, VK_DELETE},     {Qt::Key_Meta, VK_LWIN},
    {Qt::Key_Menu, VK_APPS},         {Qt::Key_NumLock, VK_NUMLOCK},
    {Qt::Key_ScrollLock, VK_SCROLL}, {Qt::Key_Semicolon, VK_OEM_1},
    {Qt::Key_Equal, VK_OEM_PLUS},    {Qt::Key_Plus, VK_OEM_PLUS},
    {Qt::Key_Comma, VK_OEM_COMMA},   {Qt::Key_Minus, VK_OEM_MINUS},
    {Qt::Key_Period, VK_OEM_PERIOD}, {Qt::Key_Slash, VK_OEM_2},
    {Qt::Key_QuoteLeft, VK_OEM_3},   {Qt::Key_BracketLeft, VK_OEM_4},
    {Qt::Key_Backslash, VK_OEM_5},   {Qt::Key_BracketRight, VK_OEM_6},
    {Qt::Key_Apostrophe, VK_OEM_7},
};

// Keys that have codes of their own on the numeric keypad.
constexpr KeyPair kKeypadKeys[] = {
    {Qt::Key_Asterisk, VK_MULTIPLY}, {Qt::Key_Plus, VK_ADD},      {Qt::Key_Minus, VK_SUBTRACT},
    {Qt::Key_Period, VK_DECIMAL},    {Qt::Key_Comma, VK_DECIMAL}, {Qt::Key_Slash, VK_DIVIDE},
    {Qt::Key_Enter, VK_RETURN},
};

const char *const kKeyNames[][2] = {
    {"\x08", "BkSp"}, {"\x09", "Tab"},   {"\x0D", "Enter"}, {"\x1B", "Esc"},  {"\x20", "Space"},
    {"\x21", "PgUp"}, {"\x22", "PgDn"},  {"\x23", "End"},   {"\x24", "Home"}, {"\x25", "Left"},
    {"\x26", "Up"},   {"\x27", "Right"}, {"\x28", "Down"},  {"\x2D", "Ins"},  {"\x2E", "Del"},
};

QString keyName(Word key)
{
    for (const auto &entry : kKeyNames) {
        if (Word(entry[0][0]) == key)
            return QString::fromLatin1(entry[1]);
    }
    if ((key >= VK_0 && key <= VK_0 + 9) || (key >= VK_A && key <= VK_A + 25))
        return QString(QChar(key));
    if (key >= VK_F1 && key <= VK_F1 + 23)
        return QStringLiteral("F%1").arg(key - VK_F1 + 1);
    if (key >= VK_NUMPAD0 && key <= VK_NUMPAD0 + 9)
        return QStringLiteral("Num %1").arg(key - VK_NUMPAD0);
    return QString();
}

} // namespace

TShiftState ShiftStateFromModifiers(Qt::KeyboardModifiers modifiers)
{
    TShiftState s;
    if (modifiers & Qt::ShiftModifier)
        s |= ssShift;
    if (modifiers & Qt::AltModifier)
        s |= ssAlt;
    if (modifiers & Qt::ControlModifier)
        s |= ssCtrl;
    return s;
}

TShiftState ShiftStateFromMouse(Qt::KeyboardModifiers modifiers, Qt::MouseButtons buttons,
                                bool doubleClick)
{
    TShiftState s = ShiftStateFromModifiers(modifiers);
    if (buttons & Qt::LeftButton)
        s |= ssLeft;
    if (buttons & Qt::RightButton)
        s |= ssRight;
    if (buttons & Qt::MiddleButton)
        s |= ssMiddle;
    if (doubleClick)
        s |= ssDouble;
    return s;
}

TShiftState KeyboardShiftState()
{
    return ShiftStateFromMouse(QApplication::queryKeyboardModifiers(),
                               QApplication::mouseButtons());
}

Word QtKeyToVirtualKey(int qtKey, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::KeypadModifier) {
        if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9)
            return Word(VK_NUMPAD0 + (qtKey - Qt::Key_0));
        for (const KeyPair &p : kKeypadKeys) {
            if (p.qt == qtKey)
                return p.vk;
        }
    }
    if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9)
        return Word(VK_0 + (qtKey - Qt::Key_0));
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z)
        return Word(VK_A + (qtKey - Qt::Key_A));
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24)
        return Word(VK_F1 + (qtKey - Qt::Key_F1));
    for (const KeyPair &p : kKeys) {
        if (p.qt == qtKey)
            return p.vk;
    }
    // The star and the other shifted digits of the main keyboard have no code
    // of their own; the key that produces them does.
    if (qtKey == Qt::Key_Asterisk)
        return Word(VK_0 + 8);
    return 0;
}

int VirtualKeyToQtKey(Word key, bool *keypad)
{
    if (keypad)
        *keypad = false;
    const auto onKeypad = [keypad](int qt) {
        if (keypad)
            *keypad = true;
        return qt;
    };
    if (key >= VK_NUMPAD0 && key <= VK_NUMPAD0 + 9)
        return onKeypad(Qt::Key_0 + (key - VK_NUMPAD0));
    for (const KeyPair &p : kKeypadKeys) {
        if (p.vk == key && key != VK_RETURN)
            return onKeypad(p.qt);
    }
    if (key >= VK_0 && key <= VK_0 + 9)
        return Qt::Key_0 + (key - VK_0);
    if (key >= VK_A && key <= VK_A + 25)
        return Qt::Key_A + (key - VK_A);
    if (key >= VK_F1 && key <= VK_F1 + 23)
        return Qt::Key_F1 + (key - VK_F1);
    for (const KeyPair &p : kKeys) {
        if (p.vk == key)
            return p.qt;
    }
    return 0;
}

void KeyFromEvent(const QKeyEvent *event, Word &key, TShiftState &shift)
{
    key = QtKeyToVirtualKey(event->key(), event->modifiers());
    shift = ShiftStateFromModifiers(event->modifiers());
}

void SendKeyDown(QWidget *widget, Word key, TShiftState shift)
{
    if (!widget)
        return;
    bool keypad = false;
    const int qtKey = VirtualKeyToQtKey(key, &keypad);
    Qt::KeyboardModifiers mods;
    if (shift & ssShift)
        mods |= Qt::ShiftModifier;
    if (shift & ssAlt)
        mods |= Qt::AltModifier;
    if (shift & ssCtrl)
        mods |= Qt::ControlModifier;
    if (keypad)
        mods |= Qt::KeypadModifier;
    QKeyEvent event(QEvent::KeyPress, qtKey, mods);
    QApplication::sendEvent(widget, &event);
}

TShortCut ShortCut(Word key, TShiftState shift)
{
    TShortCut sc = TShortCut(key & 0xFF);
    if (shift & ssShift)
        sc |= scShift;
    if (shift & ssCtrl)
        sc |= scCtrl;
    if (shift & ssAlt)
        sc |= scAlt;
    return sc;
}

QString ShortCutToText(TShortCut shortCut)
{
    const QString name = keyName(Word(shortCut & 0xFF));
    if (name.isEmpty())
        return QString();
    QString text;
    if (shortCut & scShift)
        text += QLatin1String("Shift+");
    if (shortCut & scCtrl)
        text += QLatin1String("Ctrl+");
    if (shortCut & scAlt)
        text += QLatin1String("Alt+");
    return text + name;
}

TShortCut TextToShortCut(const QString &text)
{
    TShortCut mods = 0;
    QString rest = text.trimmed();
    for (;;) {
        if (rest.startsWith(QLatin1String("Shift+"), Qt::CaseInsensitive))
            mods |= scShift, rest = rest.mid(6);
        else if (rest.startsWith(QLatin1String("Ctrl+"), Qt::CaseInsensitive))
            mods |= scCtrl, rest = rest.mid(5);
        else if (rest.startsWith(QLatin1String("Alt+"), Qt::CaseInsensitive))
            mods |= scAlt, rest = rest.mid(4);
        else
            break;
    }
    for (int k = 1; k < 0xFF; ++k) {
        const QString name = keyName(Word(k));
        if (!name.isEmpty() && name.compare(rest, Qt::CaseInsensitive) == 0)
            return TShortCut(mods | k);
    }
    return 0;
}

} // namespace oxa
