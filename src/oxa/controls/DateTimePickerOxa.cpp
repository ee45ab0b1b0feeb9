#include "oxa/controls/DateTimePickerOxa.h"
#include "oxa/controls/DateTimePickerOxa_p.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QFontMetrics>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QStringList>
#include <QStyle>

#include <algorithm>

namespace oxa {

namespace {

enum : quint8 { kDaySection = 0, kMonthSection = 1, kYearSection = 2 };

const QString kDayFormat = QStringLiteral("dd.MM.yyyy");
const QString kMonthYearFormat = QStringLiteral("MMMM.yyyy");
const QString kBlankFormat = QStringLiteral(" ");

QDateTimeEdit::Section qtSection(quint8 section)
{
    switch (section) {
    case kDaySection:
        return QDateTimeEdit::DaySection;
    case kMonthSection:
        return QDateTimeEdit::MonthSection;
    default:
        return QDateTimeEdit::YearSection;
    }
}

bool isBlankFormat(const QString &format)
{
    return !format.isEmpty() && format.trimmed().isEmpty();
}

} // namespace

TDateTimePickerOxa::TDateTimePickerOxa(QWidget *owner)
    : Base(owner), d(std::make_unique<TDateTimePickerOxaPrivate>())
{
    const QLocale czech = CzechLocale();
    setLocale(czech);
    setCalendarPopup(true);
    calendarWidget()->setLocale(czech);
    {
        const QScopedValueRollback guard(d->m_settingDate, true);
        setDateRange(DateTimeEpoch(), QDate(9999, 12, 31));
        setDate(DateTimeEpoch());
    }
    calendarWidget()->installEventFilter(this);
    lineEdit()->installEventFilter(this);
    connect(this, &QDateTimeEdit::dateTimeChanged, this, [this] {
        Q_EMIT valueChanged();
        if (!d->m_settingDate)
            HandleExceptions(this, [this] { DateTimeChanged(); });
    });
    PaintRule();
}

TDateTimePickerOxa::~TDateTimePickerOxa()
{
    calendarWidget()->removeEventFilter(this);
    lineEdit()->removeEventFilter(this);
}

// --- date -------------------------------------------------------------------

TDateTime TDateTimePickerOxa::DateTime() const
{
    return ComposeDateTime(QDateToDateTime(date()), d->FTimeOfDay);
}

void TDateTimePickerOxa::SetDateTime(TDateTime value)
{
    MsgSetDateTime(value);
    PaintRule();
}

TDateTime TDateTimePickerOxa::Date() const
{
    return DateOf(DateTime());
}

void TDateTimePickerOxa::SetDate(TDateTime value)
{
    SetDateTime(ComposeDateTime(value, d->FTimeOfDay));
}

void TDateTimePickerOxa::SetMinDate(TDateTime value)
{
    const QDate minimum = DateTimeToQDate(value);
    if (!minimum.isValid())
        throw EConvertError(QStringLiteral("Neplatné nejmenší datum"));
    const bool changed = value != d->FMinDate;
    d->FMinDate = value;
    {
        const QScopedValueRollback guard(d->m_settingDate, true);
        setMinimumDate(minimum);
    }
    PaintRule();
    if (changed)
        Q_EMIT minDateChanged();
}

TDateTime TDateTimePickerOxa::MinDate() const
{
    return d->FMinDate;
}

QString TDateTimePickerOxa::Format() const
{
    return d->FFormat;
}

bool TDateTimePickerOxa::EmptyDate() const
{
    return SameDate(DateTime(), d->FMinDate);
}

bool TDateTimePickerOxa::MsgSetDateTime(TDateTime value)
{
    const QDate day = DateTimeToQDate(value);
    if (!day.isValid() || day < minimumDate() || day > maximumDate()) {
        MessageService::MessageBox(this, Name(), QStringLiteral("Chyba nastaveni"), mtError);
        return false;
    }
    const QScopedValueRollback guard(d->m_settingDate, true);
    const bool sameDayOtherTime = day == date() && TimeOf(value) != d->FTimeOfDay;
    d->FTimeOfDay = TimeOf(value);
    setDate(day);
    if (sameDayOtherTime) // Qt's date edit sees no change
        Q_EMIT valueChanged();
    return true;
}

// --- format and the blank display ---------------------------------------------

void TDateTimePickerOxa::SetFormat(const QString &format)
{
    // A real format the host chooses is also the one to come back to after
    // the blank display.
    if (!isBlankFormat(format))
        d->FSavedFormat = format;
    SetFormatField(format);
    PaintRule();
}

bool TDateTimePickerOxa::IsMonthYearFormat() const
{
    return d->FFormat == kMonthYearFormat;
}

bool TDateTimePickerOxa::HoldsFocus() const
{
    // The open calendar has the keyboard, but the picker is still the field
    // being edited.
    return hasFocus() || d->FDroppedDown;
}

void TDateTimePickerOxa::SetFormatField(const QString &format)
{
    const bool changed = format != d->FFormat;
    d->FFormat = format;
    ApplyFormat();
    if (changed)
        Q_EMIT formatChanged();
}

// Shows d->FFormat: a blank format keeps the last real display format and shows
// the empty date (Qt's minimum) as a blank through the special-value text.
void TDateTimePickerOxa::ApplyFormat()
{
    QString display = d->FFormat.trimmed().isEmpty() ? d->FSavedFormat : d->FFormat;
    if (display.trimmed().isEmpty())
        display = kDayFormat;
    if (displayFormat() != display) {
        const QScopedValueRollback guard(d->m_settingDate, true);
        setDisplayFormat(display);
        if (displayFormat() != display) // a format without date sections
            setDisplayFormat(kDayFormat);
        RequestSectionSync();
    }
    const QString special = isBlankFormat(d->FFormat) ? kBlankFormat : QString();
    if (specialValueText() != special)
        setSpecialValueText(special);
}

void TDateTimePickerOxa::SetFocusRule()
{
    if (d->FFormat != kBlankFormat)
        d->FSavedFormat = d->FFormat;
    else
        SetFormatField(d->FSavedFormat);
}

void TDateTimePickerOxa::KillFocusRule()
{
    if (EmptyDate()) {
        d->FSavedFormat = d->FFormat;
        SetFormatField(kBlankFormat);
    } else {
        SetFormatField(d->FSavedFormat);
    }
}

void TDateTimePickerOxa::PaintRule()
{
    if (EmptyDate() && !HoldsFocus())
        SetFormatField(kBlankFormat);
    else if (d->FFormat.trimmed().isEmpty())
        SetFormatField(d->FSavedFormat);
}

void TDateTimePickerOxa::AfterNotification()
{
    if (HoldsFocus())
        return;
    if (EmptyDate())
        SetFormatField(kBlankFormat);
    else if (d->FFormat.trimmed().isEmpty())
        SetFormatField(kDayFormat);
}

// --- keys ------------------------------------------------------------------------

void TDateTimePickerOxa::keyPressEvent(QKeyEvent *event)
{
    ++d->m_keyDepth;
    Word key = 0;
    TShiftState shift;
    KeyFromEvent(event, key, shift);
    if (key != 0)
        HandleExceptions(this, [&] { WMKeyDown(key, shift); });
    Base::keyPressEvent(event);
    if (--d->m_keyDepth == 0 && d->m_sectionSyncPending)
        SyncSection();
}

// The quick keys and the section moves, before the key's ordinary handling.
void TDateTimePickerOxa::WMKeyDown(Word key, TShiftState shift)
{
    if (isReadOnly() && (key == VK_MULTIPLY || key == VK_DELETE))
        return;
    if (key == VK_MULTIPLY) {
        const TDateTime today = oxa::Date();
        if (today >= d->FMinDate) {
            SetDateTime(today);
            FireChange();
        }
    } else if (key == VK_DELETE) {
        SetDateTime(d->FMinDate);
        FireChange();
    } else if (!(shift & ssCtrl)) {
        if (!IsMonthYearFormat()) {
            if (key == VK_LEFT)
                d->FSection = quint8((d->FSection + 2) % 3);
            else if (key == VK_RIGHT)
                d->FSection = quint8((d->FSection + 1) % 3);
        } else {
            // No day in this format: only the month and the year take turns.
            if (d->FSection == kDaySection)
                d->FSection = kMonthSection;
            if (key == VK_LEFT || key == VK_RIGHT)
                d->FSection = d->FSection == kMonthSection ? kYearSection : kMonthSection;
        }
    }
}

void TDateTimePickerOxa::KeyDown(Word &Key, TShiftState Shift)
{
    d->FLastKey = Key;
    Base::KeyDown(Key, Shift);
    if (Key != 0)
        PlatformKeyDown(Key, Shift);
}

// What the picker control itself does with a key that nobody consumed: the
// step keys change the date (the date-changed notification then steps by the
// section), Left/Right move between the sections, F4 and Alt+Down open the
// calendar; star and Delete were handled before and do nothing more.
void TDateTimePickerOxa::PlatformKeyDown(Word &Key, TShiftState Shift)
{
    if ((Key == VK_DOWN && (Shift & ssAlt)) || Key == VK_F4) {
        OpenCalendar();
        Key = 0;
        return;
    }
    switch (Key) {
    case VK_UP:
    case VK_DOWN:
    case VK_ADD:
    case VK_SUBTRACT:
        if (!isReadOnly())
            DateTimeChanged();
        Key = 0;
        break;
    case VK_LEFT:
    case VK_RIGHT:
        RequestSectionSync();
        Key = 0;
        break;
    case VK_MULTIPLY:
    case VK_DELETE:
        Key = 0;
        break;
    default:
        if (const int digit = TypedDigit(Key);
            digit >= 0 && !(Shift & (ssCtrl | ssAlt)) && !isReadOnly() && TypeDigit(digit))
            Key = 0;
        break;
    }
}

// A digit typed into a section is that section's new value at once, and the
// date-changed notification then moves on to the next section, as every
// other change by typing does: "2" in the day of 15.06.2020 gives
// 02.06.2020 with the month selected. (Qt's own editing would hold "2" as
// the start of a two-digit day and change nothing yet.) A year takes the
// digit as a two-digit year of the current century; a 0 in the day or the
// month, and a digit that would make no date or one outside the picker's
// range, are refused with a beep. False when the picker does not edit a
// date section now (the blank display, an open calendar).
bool TDateTimePickerOxa::TypeDigit(int digit)
{
    if (d->FDroppedDown || isBlankFormat(d->FFormat) ||
        !(displayedSections() & qtSection(d->FSection)))
        return false;
    // The empty date is no date to change: typing starts from today's month
    // and year.
    const QDate current = EmptyDate() ? QDate::currentDate() : date();
    // A day beyond the new month's end becomes its last day, as stepping does.
    const auto dayIn = [&current](int year, int month) {
        const QDate first(year, month, 1);
        return first.isValid() ? QDate(year, month, std::min(current.day(), first.daysInMonth()))
                               : QDate();
    };
    QDate typed;
    if (d->FSection == kDaySection)
        typed = QDate(current.year(), current.month(), digit);
    else if (d->FSection == kMonthSection)
        typed = dayIn(current.year(), digit);
    else
        typed = dayIn(current.year() / 100 * 100 + digit, current.month());
    if (!typed.isValid() || typed < minimumDate() || typed > maximumDate()) {
        QApplication::beep();
        return true;
    }
    if (typed == date()) {
        DateTimeChanged(); // the same value typed again still moves on
        return true;
    }
    setDate(typed); // notifies DateTimeChanged
    return true;
}

bool TDateTimePickerOxa::focusNextPrevChild(bool next)
{
    // Tab leaves the picker instead of walking through its sections.
    return QWidget::focusNextPrevChild(next);
}

void TDateTimePickerOxa::stepBy(int steps)
{
    // Stepping belongs to the section rules (keys), not to Qt's spin box.
    Q_UNUSED(steps);
}

void TDateTimePickerOxa::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

// --- notifications ------------------------------------------------------------------

// The control changed its date: by typing, or (emulated) by a step key.
void TDateTimePickerOxa::DateTimeChanged()
{
    if (!d->FDroppedDown) {
        bool changed = true;
        switch (d->FLastKey) {
        case VK_UP:
        case VK_ADD:
            changed = StepDate(1);
            break;
        case VK_DOWN:
        case VK_SUBTRACT:
            changed = StepDate(-1);
            break;
        case VK_LEFT:
        case VK_RIGHT:
            break;
        default:
            SendKeyDown(this, VK_RIGHT); // a typed digit moves on to the next section
            break;
        }
        if (changed)
            FireChange();
    }
    AfterNotification();
}

// One day, month or year by the section. Going back is blocked when the day
// before lies before MinDate, except on the first two days of the calendar.
bool TDateTimePickerOxa::StepDate(int direction)
{
    const TDateTime current = DateTime();
    if (direction < 0 && DateOf(current) - 1 < d->FMinDate && DateOf(current) > 1)
        return false;
    TDateTime next = current;
    if (d->FSection == kDaySection)
        next = IncDay(current, direction);
    else if (d->FSection == kMonthSection)
        next = IncMonth(current, direction);
    else
        next = IncYear(current, direction);
    return MsgSetDateTime(next) && next != current;
}

void TDateTimePickerOxa::DroppedDown()
{
    d->FDroppedDown = true;
    AfterNotification();
}

void TDateTimePickerOxa::ClosedUp()
{
    d->FDroppedDown = false;
    const QDate selected = calendarWidget()->selectedDate();
    const TDateTime chosen = QDateToDateTime(selected);
    if (selected.isValid() && !(SameDate(chosen, DateTime()) && SameDate(chosen, d->FMinDate))) {
        MsgSetDateTime(ComposeDateTime(chosen, d->FTimeOfDay));
        if (OnCloseUp)
            OnCloseUp(this);
        Q_EMIT closedUp();
        FireChange();
        d->FSection = kDaySection;
        RequestSectionSync();
    }
    AfterNotification();
}

void TDateTimePickerOxa::FireChange()
{
    if (OnChange)
        OnChange(this);
    Q_EMIT changed();
}

void TDateTimePickerOxa::OpenCalendar()
{
    QWidget *popup = calendarWidget()->window();
    if (isReadOnly() || popup->isVisible())
        return;
    popup->move(mapToGlobal(rect().bottomLeft()));
    popup->show();
}

bool TDateTimePickerOxa::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == calendarWidget()) {
        // The calendar shows and hides with its popup, after the popup's own
        // handling (which may put the old date back when it is cancelled).
        if (event->type() == QEvent::Show)
            HandleExceptions(this, [this] { DroppedDown(); });
        else if (event->type() == QEvent::Hide)
            HandleExceptions(this, [this] { ClosedUp(); });
    } else if (watched == lineEdit() && event->type() == QEvent::MouseButtonPress) {
        // The text field covers most of the picker: its click is the
        // picker's click, evaluated after the field placed the caret.
        auto *mouse = static_cast<QMouseEvent *>(event);
        static_cast<QObject *>(lineEdit())->event(event);
        if (mouse->button() == Qt::LeftButton) {
            const int x = lineEdit()->mapTo(this, mouse->position().toPoint()).x();
            HandleExceptions(this, [this, x] { ClickAt(x); });
        }
        return true;
    }
    return Base::eventFilter(watched, event);
}

// --- mouse and sections -------------------------------------------------------------

void TDateTimePickerOxa::mousePressEvent(QMouseEvent *event)
{
    Base::mousePressEvent(event);
    if (event->button() == Qt::LeftButton) {
        const int x = event->position().toPoint().x();
        HandleExceptions(this, [this, x] { ClickAt(x); });
    }
}

void TDateTimePickerOxa::ClickAt(int x)
{
    d->FPrevSection = d->FSection;
    d->FSection = quint8(VyhodnotStisk(x));
    RequestSectionSync();
}

QWidget *TDateTimePickerOxa::FindCanvas() const
{
    for (QWidget *w = parentWidget(); w; w = w->parentWidget()) {
        if (w->isWindow())
            return w;
    }
    throw Exception(QStringLiteral("Neexistuje parent třídy TForm"));
}

int TDateTimePickerOxa::VyhodnotStisk(int x)
{
    if (x < 2 || d->FDroppedDown)
        return d->FSection;
    const QFontMetrics metrics(font(), FindCanvas());
    const QStringList fields = text().split(QLatin1Char('.'));
    const QString first = fields.value(0);
    if (d->FFormat.isEmpty() || d->FFormat == kDayFormat) {
        const QString day = (first + QLatin1Char('.')).left(3);
        if (metrics.horizontalAdvance(day) + 1 >= x)
            return kDaySection;
        const QString dayMonth =
            (first + QLatin1Char('.') + fields.value(1) + QLatin1Char('.')).left(6);
        return metrics.horizontalAdvance(dayMonth) + 1 < x ? kYearSection : kMonthSection;
    }
    if (IsMonthYearFormat()) {
        // Counted from the right-hand edge, unlike the day format.
        const int month = metrics.horizontalAdvance(first.left(4));
        const int scrollBar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
        return width() - month - scrollBar - 9 < x ? kYearSection : kMonthSection;
    }
    return kDaySection;
}

void TDateTimePickerOxa::RequestSectionSync()
{
    if (d->m_keyDepth > 0)
        d->m_sectionSyncPending = true;
    else
        SyncSection();
}

// Qt's current section follows the picker's, so that the highlighted part
// is the one the step keys change and typing replaces.
void TDateTimePickerOxa::SyncSection()
{
    d->m_sectionSyncPending = false;
    const QDateTimeEdit::Section section = qtSection(d->FSection);
    if (!hasFocus() || !(displayedSections() & section) || isBlankFormat(d->FFormat))
        return;
    setCurrentSection(section);
    setSelectedSection(section);
}

// --- focus and painting ----------------------------------------------------------------

void TDateTimePickerOxa::focusInEvent(QFocusEvent *event)
{
    SetFocusRule();
    Base::focusInEvent(event);
    if (event->reason() != Qt::MouseFocusReason && event->reason() != Qt::PopupFocusReason)
        RequestSectionSync();
}

void TDateTimePickerOxa::focusOutEvent(QFocusEvent *event)
{
    KillFocusRule();
    Base::focusOutEvent(event);
}

void TDateTimePickerOxa::paintEvent(QPaintEvent *event)
{
    PaintRule();
    Base::paintEvent(event);
}

void TDateTimePickerOxa::DoEnter()
{
    Base::DoEnter();
    ShowActiveColor();
}

void TDateTimePickerOxa::DoExit()
{
    Base::DoExit();
    ShowDefaultColor();
}

void TDateTimePickerOxa::Loaded()
{
    Base::Loaded();
    ResetToDefaultColor();
}

void RegisterDateTimePickerOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TDateTimePickerOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TDateTimePickerOxa"),
        QStringLiteral("DateTimePickerOxa"), QStringLiteral("oxa/controls/DateTimePickerOxa.h"))});
}

} // namespace oxa
