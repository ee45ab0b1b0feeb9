#include "oxa/controls/NumEditOxa.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/Exceptions.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QRegularExpression>
#include <QtNumeric>
#include <algorithm>
#include <cmath>

namespace oxa {

namespace {

QChar gDecimalSeparator = QLatin1Char(',');

constexpr QChar kMinus = QLatin1Char('-');
constexpr QChar kFullStop = QLatin1Char('.');
constexpr QChar kComma = QLatin1Char(',');

EConvertError notAnInteger(const QString &text)
{
    return EConvertError(QStringLiteral("'%1' není platné celé číslo").arg(text));
}

EConvertError notANumber(const QString &text)
{
    return EConvertError(QStringLiteral("'%1' není platné číslo").arg(text));
}

// The characters each number type takes from the keyboard; Backspace (8)
// belongs to all of them but ntNone.
QStringView acceptedCharacters(TNumEditOxa::TNumType type)
{
    switch (type) {
    case TNumEditOxa::ntNone:
        return u"";
    case TNumEditOxa::ntInteger:
        return u"\b-0123456789";
    case TNumEditOxa::ntCardinal:
        return u"\b0123456789";
    case TNumEditOxa::ntDouble:
    case TNumEditOxa::ntCurrency:
        return u"\b,-.0123456789";
    }
    return u"";
}

// Esc and Delete arrive as characters from some keyboards, yet are keys of
// their own: Esc belongs to the dialog, Delete to the edit.
bool isKeyOfItsOwn(QChar key)
{
    return key == QChar(0x1B) || key == QChar(0x7F);
}

// The text as the C locale writes numbers: trimmed, with a full stop for the
// decimal separator. Where the separator is a comma, a full stop is no
// separator and makes the text fail.
bool toCNotation(const QString &text, QString &result)
{
    result = text.trimmed();
    const QChar separator = DecimalSeparator();
    if (separator == kFullStop)
        return true;
    if (result.contains(kFullStop))
        return false;
    result.replace(separator, kFullStop);
    return true;
}

qint32 strToInt(const QString &text)
{
    static const QRegularExpression integer(QStringLiteral("^[+-]?[0-9]+$"));
    const QString trimmed = text.trimmed();
    bool ok = false;
    const qint32 value = integer.match(trimmed).hasMatch() ? trimmed.toInt(&ok) : 0;
    if (!ok)
        throw notAnInteger(text);
    return value;
}

double strToFloat(const QString &text)
{
    static const QRegularExpression number(
        QStringLiteral("^[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][+-]?[0-9]+)?$"));
    QString c;
    bool ok = toCNotation(text, c) && number.match(c).hasMatch();
    const double value = ok ? c.toDouble(&ok) : 0.0;
    if (!ok || !std::isfinite(value))
        throw notANumber(text);
    return value;
}

// Whole and fractional digits as ten-thousandths, rounded half away from
// zero at the fifth decimal; false on overflow.
bool toTenThousandths(QStringView whole, QStringView fraction, qint64 &scaled)
{
    const QString digits =
        whole.toString() + fraction.left(4).toString().leftJustified(4, QLatin1Char('0'));
    scaled = 0;
    for (QChar digit : digits) {
        if (qMulOverflow(scaled, qint64(10), &scaled) ||
            qAddOverflow(scaled, qint64(digit.digitValue()), &scaled))
            return false;
    }
    const bool roundUp = fraction.size() > 4 && fraction[4] >= QLatin1Char('5');
    return !roundUp || !qAddOverflow(scaled, qint64(1), &scaled);
}

// Exact decimal reading: a currency amount must not pass through a double.
TCurrency strToCurr(const QString &text)
{
    static const QRegularExpression amount(QStringLiteral("^([+-]?)([0-9]*)(?:\\.([0-9]*))?$"));
    QString c;
    QRegularExpressionMatch match;
    if (toCNotation(text, c))
        match = amount.match(c);
    qint64 scaled = 0;
    if (!match.hasMatch() || match.capturedLength(2) + match.capturedLength(3) == 0 ||
        !toTenThousandths(match.capturedView(2), match.capturedView(3), scaled))
        throw notANumber(text);
    return TCurrency::FromScaled(match.capturedView(1) == QStringView(u"-") ? -scaled : scaled);
}

// "-0,00" is shown as "0,00".
QString withoutNegativeZero(QString text)
{
    const bool zero = std::none_of(text.cbegin(), text.cend(), [](QChar c) {
        return c >= QLatin1Char('1') && c <= QLatin1Char('9');
    });
    if (zero && text.startsWith(kMinus))
        text.remove(0, 1);
    return text;
}

qint64 powerOfTen(int exponent)
{
    qint64 power = 1;
    while (exponent-- > 0)
        power *= 10;
    return power;
}

QString currToStr(TCurrency value, int digits)
{
    const qint64 divisor = powerOfTen(TNumEditOxa::MaxDigits - digits);
    const qint64 scaled = value.Scaled();
    qint64 rounded = scaled / divisor;
    if (2 * qAbs(scaled % divisor) >= divisor)
        rounded += scaled < 0 ? -1 : 1;
    const quint64 magnitude = rounded < 0 ? 0 - quint64(rounded) : quint64(rounded);
    const quint64 unit = quint64(powerOfTen(digits));
    QString text = rounded < 0 ? QString(kMinus) : QString();
    text += QString::number(magnitude / unit);
    if (digits > 0)
        text += DecimalSeparator() +
            QString::number(magnitude % unit).rightJustified(digits, QLatin1Char('0'));
    return text;
}

Qt::Alignment horizontalAlignment(TNumEditOxa::TAlignment alignment)
{
    switch (alignment) {
    case TNumEditOxa::taRightJustify:
        return Qt::AlignRight;
    case TNumEditOxa::taCenter:
        return Qt::AlignHCenter;
    case TNumEditOxa::taLeftJustify:
        break;
    }
    return Qt::AlignLeft;
}

} // namespace

TCurrency TCurrency::FromDouble(double value)
{
    // The largest amount is 922337203685477.5807.
    const double scaled = value * 10000.0;
    if (!std::isfinite(scaled) || std::fabs(scaled) >= 9.2233720368547758e18)
        throw notANumber(QString::number(value));
    return TCurrency(qRound64(scaled));
}

QChar DecimalSeparator()
{
    return gDecimalSeparator;
}

void SetDecimalSeparator(QChar separator)
{
    if (separator.isNull() || separator.isDigit() || separator == kMinus ||
        separator == QLatin1Char('+'))
        throw EInvalidOperation(
            QStringLiteral("'%1' nemůže oddělovat desetinná místa").arg(separator));
    gDecimalSeparator = separator;
}

TNumEditOxa::TNumEditOxa(QWidget *parent) : TEditOxa(parent)
{
    // Dropped text would pass by both the typed-character check and the
    // rewrite; the platform's edits take no drops either.
    setAcceptDrops(false);
}

void TNumEditOxa::SetAligment(TAlignment value)
{
    if (value == fAligment)
        return;
    fAligment = value;
    setAlignment(horizontalAlignment(value) | Qt::AlignVCenter);
    Q_EMIT aligmentChanged();
}

void TNumEditOxa::SetDigits(int value)
{
    const int digits = std::clamp(value, 0, MaxDigits);
    const bool changed = digits != fDigits;
    fDigits = digits;
    Refresh();
    if (changed)
        Q_EMIT digitsChanged();
}

void TNumEditOxa::SetNumType(TNumType value)
{
    if (value == fNumType)
        return;
    fNumType = value;
    Q_EMIT numTypeChanged();
}

QString TNumEditOxa::GetText() const
{
    const QString current = text();
    return current.isEmpty() || current == kMinus ? QStringLiteral("0") : current;
}

qint32 TNumEditOxa::getInteger() const
{
    return strToInt(GetText());
}

quint32 TNumEditOxa::getCardinal() const
{
    // Converted as a signed integer, as the toolkit always did.
    return static_cast<quint32>(getInteger());
}

double TNumEditOxa::getDouble() const
{
    return strToFloat(GetText());
}

TCurrency TNumEditOxa::getCurrency() const
{
    return strToCurr(GetText());
}

void TNumEditOxa::setInteger(qint32 value)
{
    SetCanonicalText(QString::number(value));
}

void TNumEditOxa::setCardinal(quint32 value)
{
    // Printed as a signed integer, as the toolkit always did.
    setInteger(static_cast<qint32>(value));
}

void TNumEditOxa::setDouble(double value)
{
    if (!std::isfinite(value))
        throw notANumber(QString::number(value));
    QString fixed = QString::asprintf(GetMaska().toLatin1().constData(), value);
    fixed.replace(kFullStop, DecimalSeparator());
    SetCanonicalText(withoutNegativeZero(fixed));
}

void TNumEditOxa::setCurrency(TCurrency value)
{
    SetCanonicalText(currToStr(value, fDigits));
}

QString TNumEditOxa::GetMaska() const
{
    return QStringLiteral("%0.") + QString::number(fDigits) + QLatin1Char('f');
}

void TNumEditOxa::Refresh()
{
    switch (fNumType) {
    case ntNone:
        break;
    case ntInteger:
        setInteger(getInteger());
        break;
    case ntCardinal:
        setCardinal(getCardinal());
        break;
    case ntDouble:
        setDouble(getDouble());
        break;
    case ntCurrency:
        setCurrency(getCurrency());
        break;
    }
}

// Rewriting the text it already has would lose the selection that Tab made.
// A text selected whole stays so, and so does the 0 that an empty text
// becomes, so that typing replaces it.
void TNumEditOxa::SetCanonicalText(const QString &canonical)
{
    if (text() == canonical)
        return;
    const bool selectWhole = text().isEmpty() || selectedText().length() == text().length();
    setText(canonical);
    if (selectWhole)
        selectAll();
}

int TNumEditOxa::SelStart() const
{
    return hasSelectedText() ? selectionStart() : cursorPosition();
}

bool TNumEditOxa::IsAccepted(QChar Key) const
{
    return Key.unicode() < 256 && acceptedCharacters(fNumType).contains(Key);
}

void TNumEditOxa::KeyDown(Word &Key, TShiftState Shift)
{
    TEditOxa::KeyDown(Key, Shift);
    if ((Shift & ssCtrl) &&
        (Key == VK_Letter('C') || Key == VK_Letter('V') || Key == VK_Letter('X')))
        fCtrlKey = Key;
}

void TNumEditOxa::KeyUp(Word &Key, TShiftState Shift)
{
    TEditOxa::KeyUp(Key, Shift);
    fCtrlKey = 0;
}

// The characters of the clipboard shortcuts pass untouched while their key
// is held; any other typed character must suit the number type.
void TNumEditOxa::KeyPress(QChar &Key)
{
    if (fCtrlKey == 0 && !isKeyOfItsOwn(Key)) {
        if (!IsAccepted(Key))
            Key = QChar();
        if (Key == kMinus) {
            if (text().contains(kMinus))
                Key = QChar();
            else
                setCursorPosition(0); // the minus goes to the front
        }
        if (Key == kComma || Key == kFullStop) {
            Key = DecimalSeparator();
            if (text().contains(Key))
                Key = QChar();
        }
        if (SelStart() == 0 && !Key.isNull() && text().contains(kMinus))
            Key = QChar(); // nothing in front of the minus
    }
    TEditOxa::KeyPress(Key);
}

// A text that does not convert still lets the edit be entered; the error
// tells the user why it is not rewritten.
void TNumEditOxa::DoEnter()
{
    try {
        Refresh();
    } catch (const Exception &) {
        TEditOxa::DoEnter();
        throw;
    }
    TEditOxa::DoEnter();
}

// A text that does not convert refuses the exit: the focus comes back, the
// edit stays entered and the error is shown. An edit that can no longer
// take the focus lets it go, and the error still tells the user.
void TNumEditOxa::DoExit()
{
    fCtrlKey = 0;
    try {
        Refresh();
    } catch (const Exception &) {
        if (isVisible() && isEnabled()) {
            SetEntered(true);
            setFocus(Qt::OtherFocusReason);
        } else {
            TEditOxa::DoExit();
        }
        throw;
    }
    TEditOxa::DoExit();
}

void TNumEditOxa::keyPressEvent(QKeyEvent *event)
{
    if (isReadOnly() || !event->matches(QKeySequence::Paste)) {
        TEditOxa::keyPressEvent(event);
        return;
    }
    const TEditState before = SaveState();
    TEditOxa::keyPressEvent(event);
    WMPaste(before);
}

void TNumEditOxa::PopUpOnItemClick(QObject *Sender, TItemTyp Item, QChar Key)
{
    if (Item == itPaste)
        PasteFromClipboard();
    else
        TEditOxa::PopUpOnItemClick(Sender, Item, Key);
}

// Without a menu of the library's, Qt's own menu of a line edit is shown;
// its paste must rewrite as well.
void TNumEditOxa::contextMenuEvent(QContextMenuEvent *event)
{
    if (PopupMenu()) {
        TEditOxa::contextMenuEvent(event);
        return;
    }
    QMenu *menu = createStandardContextMenu();
    for (QAction *action : menu->actions()) {
        if (action->text().startsWith(QLineEdit::tr("&Paste")) && action->disconnect(this))
            connect(action, &QAction::triggered, this, [this] { PasteFromClipboard(); });
    }
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
    event->accept();
}

void TNumEditOxa::PasteFromClipboard()
{
    if (isReadOnly())
        return;
    const TEditState before = SaveState();
    paste();
    WMPaste(before);
}

// A paste that does not convert is undone before the error is shown, so the
// edit always holds a text it can read.
void TNumEditOxa::WMPaste(const TEditState &before)
{
    // A message box may take the release of the shortcut's key.
    fCtrlKey = 0;
    try {
        Refresh();
    } catch (const Exception &error) {
        RestoreState(before);
        MessageService::ShowException(error, this);
    }
}

TNumEditOxa::TEditState TNumEditOxa::SaveState() const
{
    return {text(), SelStart(), int(selectedText().length())};
}

void TNumEditOxa::RestoreState(const TEditState &state)
{
    setText(state.text);
    if (state.selLength > 0)
        setSelection(state.selStart, state.selLength);
    else
        setCursorPosition(state.selStart);
}

void RegisterNumEditOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TNumEditOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TNumEditOxa"), QStringLiteral("NumEditOxa"),
        QStringLiteral("oxa/controls/NumEditOxa.h"))});
}

} // namespace oxa
