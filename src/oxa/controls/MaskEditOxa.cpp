#include "oxa/controls/MaskEditOxa.h"

#include <QMouseEvent>

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/DateUtils.h"
#include "oxa/toolkit/Exceptions.h"

#include <QStringList>
#include <algorithm>

namespace oxa {

namespace {

// Caret positions of the day.month.year layout: 0-1 day, 2-4 month, 5+ year.
constexpr int kMonthStart = 2;
constexpr int kYearStart = 5;

// Characters with a meaning of their own in a Qt input mask.
const QString &qtMaskSpecials()
{
    static const QString specials = QStringLiteral("AaNnXx90Dd#HhBb><!\\[]{};");
    return specials;
}

void appendLiteral(QString &qtMask, QChar c)
{
    if (qtMaskSpecials().contains(c))
        qtMask += QLatin1Char('\\');
    qtMask += c;
}

// One character of the toolkit's mask in Qt's terms; false for a literal.
bool translateMaskChar(QChar c, QString &qtMask)
{
    static const char *const pairs[][2] = {
        {"L", "A"}, {"l", "a"}, {"A", "N"}, {"a", "n"}, {"C", "X"}, {"c", "x"},
        {"0", "9"}, {"9", "0"}, {"#", "#"}, {">", ">"}, {"<", "<"},
    };
    for (const auto &pair : pairs) {
        if (c == QLatin1Char(pair[0][0])) {
            qtMask += QLatin1Char(pair[1][0]);
            return true;
        }
    }
    return false;
}

} // namespace

TMaskEditOxa::TMaskEditOxa(QWidget *owner) : Base(owner) { }

QString TMaskEditOxa::DefaultDateMask()
{
    return QStringLiteral("!99/99/0000;1;_");
}

QString TMaskEditOxa::ToQtInputMask(const QString &editMask)
{
    if (editMask.isEmpty())
        return QString();
    // The body ends at the first unescaped ";"; then come the flag that keeps
    // the literals in the text (Qt always keeps them) and the blank character.
    int bodyEnd = 0;
    while (bodyEnd < editMask.size() && editMask[bodyEnd] != QLatin1Char(';'))
        bodyEnd += editMask[bodyEnd] == QLatin1Char('\\') ? 2 : 1;
    bodyEnd = std::min<int>(bodyEnd, int(editMask.size()));
    const QStringList fields = editMask.mid(bodyEnd + 1).split(QLatin1Char(';'));
    const QString blankField = fields.size() >= 2 ? fields[1] : QString();
    const QChar blank = blankField.isEmpty() ? QLatin1Char('_') : blankField[0];

    QString qtMask;
    for (int i = 0; i < bodyEnd; ++i) {
        const QChar c = editMask[i];
        if (c == QLatin1Char('\\') && i + 1 < bodyEnd) {
            appendLiteral(qtMask, editMask[++i]);
        } else if (c == QLatin1Char('<') && i + 1 < bodyEnd &&
                   editMask[i + 1] == QLatin1Char('>')) {
            qtMask += QLatin1Char('!'); // case conversion off
            ++i;
        } else if (c == QLatin1Char('!')) {
            continue; // leading blanks: Qt has no such setting
        } else if (c == QLatin1Char('/')) {
            appendLiteral(qtMask, DateSeparator);
        } else if (c == QLatin1Char(':')) {
            appendLiteral(qtMask, TimeSeparator);
        } else if (c == QLatin1Char('_')) {
            qtMask += QLatin1Char(' ');
        } else if (!translateMaskChar(c, qtMask)) {
            appendLiteral(qtMask, c);
        }
    }
    return qtMask + QLatin1Char(';') + blank;
}

void TMaskEditOxa::SetEditMask(const QString &mask)
{
    const bool changed = mask != FEditMask;
    FEditMask = mask;
    setInputMask(ToQtInputMask(mask));
    if (changed)
        Q_EMIT editMaskChanged();
}

void TMaskEditOxa::SetIsDateFormat(bool value)
{
    const bool changed = value != FDateFormat;
    FDateFormat = value;
    if (FDateFormat && inputMask().isEmpty())
        SetEditMask(DefaultDateMask());
    if (changed)
        Q_EMIT isDateFormatChanged();
}

void TMaskEditOxa::KeyDown(Word &Key, TShiftState Shift)
{
    HandleFocusKey(Key, Shift);
    if (FDateFormat && !isReadOnly())
        DateKeyDown(Key);
    TWinControl<QLineEdit>::KeyDown(Key, Shift);
}

void TMaskEditOxa::DateKeyDown(Word &Key)
{
    if (Key == VK_MULTIPLY) {
        setText(DateToStr(Date()));
        Key = 0;
        return;
    }
    try {
        StepDate(Key);
    } catch (const std::exception &) {
        // A text that is no date leaves the key to the edit.
    }
}

// Keypad plus and Up step forward, keypad minus and Down back: the day, the
// month or the year by where the selection starts; the selection survives.
void TMaskEditOxa::StepDate(Word &Key)
{
    int direction = 0;
    if (Key == VK_ADD || Key == VK_UP)
        direction = 1;
    else if (Key == VK_SUBTRACT || Key == VK_DOWN)
        direction = -1;
    if (direction == 0)
        return;
    TDateTime date = FormatStrToDate(text(), QString());

    const bool selected = hasSelectedText();
    const int cursor = cursorPosition();
    const int selStart = selected ? selectionStart() : cursor;
    const int anchor = selected && cursor == selStart ? selectionEnd() : selStart;

    if (selStart < kMonthStart)
        date = IncDay(date, direction);
    else if (selStart < kYearStart)
        date = IncMonth(date, direction);
    else
        date = IncMonth(date, 12 * direction);
    setText(DateToStr(date));
    Key = 0;

    if (selected)
        setSelection(anchor, cursor - anchor);
    else
        setCursorPosition(cursor);
}

void TMaskEditOxa::KeyPress(QChar &Key)
{
    // The keypad's date keys must never reach the mask.
    if (Key == QLatin1Char('*') || Key == QLatin1Char('+') || Key == QLatin1Char('-'))
        Key = QChar();
    Base::KeyPress(Key);
}

void TMaskEditOxa::DoEnter()
{
    Base::DoEnter();
    ShowActiveColor();
}

void TMaskEditOxa::DoExit()
{
    if (FDateFormat && !IsEmptyDate())
        CheckDateOnExit();
    FinishExit();
}

void TMaskEditOxa::FinishExit()
{
    Base::DoExit();
    ShowDefaultColor();
}

// A text that is no date refuses the exit: the focus comes back and the
// parser's error is shown; the edit stays entered and keeps its colour.
// An edit that can no longer take the focus (hidden, disabled) lets the
// focus go, and the error still tells the user.
void TMaskEditOxa::CheckDateOnExit()
{
    try {
        FormatStrToDate(text(), QString());
    } catch (const Exception &) {
        if (isVisible() && isEnabled()) {
            SetEntered(true);
            setFocus(Qt::OtherFocusReason);
        } else {
            FinishExit();
        }
        throw;
    }
}

// The first input position of the mask that holds nothing yet; -1 when
// every position is filled or there is no mask.
int TMaskEditOxa::FirstBlankPosition() const
{
    const QString mask = inputMask();
    const qsizetype blankAt = mask.lastIndexOf(QLatin1Char(';'));
    if (mask.isEmpty() || blankAt < 0 || blankAt + 1 >= mask.size())
        return -1;
    const QChar blank = mask.at(blankAt + 1);
    const QString shown = displayText();
    int position = 0;
    for (qsizetype i = 0; i < blankAt && position < shown.size(); ++i) {
        const QChar c = mask.at(i);
        if (c == QLatin1Char('<') || c == QLatin1Char('>') || c == QLatin1Char('!'))
            continue; // case switches take no position
        if (c == QLatin1Char('\\')) {
            ++i; // an escaped literal
        } else if (QStringView(u"AaNnXx90DdHhBb#").contains(c) && shown.at(position) == blank) {
            return position;
        }
        ++position;
    }
    return -1;
}

// A click behind what was typed puts the caret on the first empty position,
// where typing goes on: behind the mask's end a typed digit would be lost.
void TMaskEditOxa::mouseReleaseEvent(QMouseEvent *event)
{
    Base::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton || hasSelectedText())
        return;
    const int blank = FirstBlankPosition();
    if (blank >= 0 && cursorPosition() > blank)
        setCursorPosition(blank);
}

// Nothing but separators and blanks: the untouched mask.
bool TMaskEditOxa::IsEmptyDate() const
{
    return QString(text()).replace(DateSeparator, QLatin1Char(' ')).trimmed().isEmpty();
}

void TMaskEditOxa::Loaded()
{
    Base::Loaded();
    ResetToDefaultColor();
}

void RegisterMaskEditOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TMaskEditOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TMaskEditOxa"), QStringLiteral("MaskEditOxa"),
        QStringLiteral("oxa/controls/MaskEditOxa.h"))});
}

} // namespace oxa
