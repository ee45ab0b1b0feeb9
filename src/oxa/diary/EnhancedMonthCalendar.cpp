#include "oxa/diary/EnhancedMonthCalendar.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/DateUtils.h"

#include <QTextCharFormat>

#include <algorithm>

namespace oxa {

namespace {

// The months a page shows: the one before the page's month, the page's and
// the one after it.
constexpr int ShownMonths = 3;

} // namespace

TEnhancedMonthCalendar::TEnhancedMonthCalendar(QWidget *aOwner)
    : TWinControl<QCalendarWidget>(aOwner)
{
    // The platform calendar's defaults: weeks from Monday, no week numbers.
    setLocale(CzechLocale());
    setFirstDayOfWeek(Qt::Monday);
    setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    connect(this, &QCalendarWidget::currentPageChanged, this, [this] { UpdateBoldDays(); });
    connect(this, &QCalendarWidget::selectionChanged, this, [this] { Q_EMIT dateChanged(Date()); });
}

TDate TEnhancedMonthCalendar::Date() const
{
    return QDateToDateTime(selectedDate());
}

void TEnhancedMonthCalendar::SetDate(TDate Value)
{
    setSelectedDate(DateTimeToQDate(Value));
}

TDate TEnhancedMonthCalendar::MinDate() const
{
    return QDateToDateTime(minimumDate());
}

void TEnhancedMonthCalendar::SetMinDate(TDate Value)
{
    const QDate oldMin = minimumDate(), oldMax = maximumDate();
    setMinimumDate(DateTimeToQDate(Value));
    ReportRange(oldMin, oldMax);
}

TDate TEnhancedMonthCalendar::MaxDate() const
{
    return QDateToDateTime(maximumDate());
}

void TEnhancedMonthCalendar::SetMaxDate(TDate Value)
{
    const QDate oldMin = minimumDate(), oldMax = maximumDate();
    setMaximumDate(DateTimeToQDate(Value));
    ReportRange(oldMin, oldMax);
}

// Either bound may move the other one.
void TEnhancedMonthCalendar::ReportRange(const QDate &aOldMin, const QDate &aOldMax)
{
    if (minimumDate() != aOldMin)
        Q_EMIT minDateChanged(MinDate());
    if (maximumDate() != aOldMax)
        Q_EMIT maxDateChanged(MaxDate());
}

bool TEnhancedMonthCalendar::WeekNumbers() const
{
    return verticalHeaderFormat() == QCalendarWidget::ISOWeekNumbers;
}

void TEnhancedMonthCalendar::SetWeekNumbers(bool Value)
{
    if (Value == WeekNumbers())
        return;
    setVerticalHeaderFormat(Value ? QCalendarWidget::ISOWeekNumbers
                                  : QCalendarWidget::NoVerticalHeader);
    Q_EMIT weekNumbersChanged(Value);
}

void TEnhancedMonthCalendar::UpdateBoldDays()
{
    int month = monthShown() - 1;
    int year = yearShown();
    if (month < 1) {
        month = 12;
        --year;
    }
    QList<quint32> dayState(ShownMonths, 0);
    bool failed = false;
    guarded([&] { GetDayState(quint32(month), quint32(year), dayState); }, failed);
    ApplyBoldDays(month, year, dayState);
}

void TEnhancedMonthCalendar::GetDayState(quint32 aMonth, quint32 aYear, QList<quint32> &aDayState)
{
    std::fill(aDayState.begin(), aDayState.end(), 0u);
    if (!OnEnhancedGetMonthInfoEvent)
        return;
    quint32 month = aMonth;
    quint32 year = aYear;
    for (quint32 &monthBoldInfo : aDayState) {
        OnEnhancedGetMonthInfoEvent(this, month, year, monthBoldInfo);
        if (++month > 12) {
            month -= 12;
            ++year;
        }
    }
}

void TEnhancedMonthCalendar::ApplyBoldDays(int aMonth, int aYear, const QList<quint32> &aDayState)
{
    QSet<QDate> bold;
    QDate first(aYear, aMonth, 1);
    for (const quint32 mask : aDayState) {
        for (int day = 1; first.isValid() && day <= first.daysInMonth(); ++day) {
            if (mask & (1u << (day - 1)))
                bold.insert(first.addDays(day - 1));
        }
        first = first.addMonths(1);
    }

    // Only the weight is touched, so other formats of a date stay.
    for (const QDate &date : std::as_const(FBoldDates)) {
        if (bold.contains(date))
            continue;
        QTextCharFormat format = dateTextFormat(date);
        format.clearProperty(QTextFormat::FontWeight);
        setDateTextFormat(date, format);
    }
    for (const QDate &date : std::as_const(bold)) {
        QTextCharFormat format = dateTextFormat(date);
        format.setFontWeight(QFont::Bold);
        setDateTextFormat(date, format);
    }
    FBoldDates = bold;
}

QList<QDate> TEnhancedMonthCalendar::BoldDates() const
{
    QList<QDate> dates(FBoldDates.begin(), FBoldDates.end());
    std::sort(dates.begin(), dates.end());
    return dates;
}

void TEnhancedMonthCalendar::showEvent(QShowEvent *event)
{
    TWinControl<QCalendarWidget>::showEvent(event);
    UpdateBoldDays();
}

void RegisterEnhancedMonthCalendar()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TEnhancedMonthCalendar>(
        QStringLiteral("Oxa Diar"), QStringLiteral("TEnhancedMonthCalendar"),
        QStringLiteral("EnhancedMonthCalendar"),
        QStringLiteral("oxa/diary/EnhancedMonthCalendar.h"))});
}

} // namespace oxa
