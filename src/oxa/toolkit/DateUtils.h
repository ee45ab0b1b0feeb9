#pragma once

#include <QDate>
#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QTime>

namespace oxa {

// The toolkit's date-time value: days since 30 December 1899, the time of
// day as the fraction (0.5 is noon).
using TDateTime = double;

// Day 0 of TDateTime.
QDate DateTimeEpoch();

// Conversions between TDateTime and Qt's date and time types.
TDateTime QDateToDateTime(const QDate &date);
TDateTime QDateTimeToDateTime(const QDateTime &dateTime);
QDate DateTimeToQDate(TDateTime value);
QDateTime DateTimeToQDateTime(TDateTime value);

// Throws EConvertError for a day, month or year that does not exist.
TDateTime EncodeDate(int year, int month, int day);
TDateTime EncodeTime(int hour, int minute, int second, int msec = 0);
bool TryEncodeDate(int year, int month, int day, TDateTime &result);
void DecodeDate(TDateTime value, int &year, int &month, int &day);
void DecodeTime(TDateTime value, int &hour, int &minute, int &second, int &msec);

TDateTime DateOf(TDateTime value);
// The whole days of date with the time of day of time.
TDateTime ComposeDateTime(TDateTime date, TDateTime time);
TDateTime TimeOf(TDateTime value);
TDateTime Now();
TDateTime Date();

// The Inc functions keep the time of day.
TDateTime IncDay(TDateTime value, int days = 1);
// Adds months keeping the day where the target month has it, otherwise the
// target month's last day. Throws EConvertError beyond the years 1 to 9999.
TDateTime IncMonth(TDateTime value, int months = 1);
TDateTime IncYear(TDateTime value, int years = 1);
TDateTime IncMinute(TDateTime value, qint64 minutes = 1);

// ISO day of the week: 1 = Monday ... 7 = Sunday.
int DayOfTheWeek(TDateTime value);
// The toolkit's DayOfWeek: 1 = Sunday ... 7 = Saturday.
int DayOfWeek(TDateTime value);
// ISO 8601 week number (1..53).
int WeekOf(TDateTime value);
int DaysInAMonth(int year, int month);
bool IsLeapYear(int year);
bool SameDate(TDateTime a, TDateTime b);

// The locale of the library's visible texts (calendars, month names).
QLocale CzechLocale();

// Czech locale settings of the short date form.
inline constexpr QChar DateSeparator = QLatin1Char('.');
inline constexpr QChar TimeSeparator = QLatin1Char(':');
QString ShortDateFormat();   // "dd.mm.yyyy"
QString LongDateFormat();    // "d. mmmm yyyy"
QString ShortTimeFormat();   // "h:nn"
QString LongTimeFormat();    // "h:nn:ss"
QString ShortDayName(int dayOfWeek);   // 1 = Sunday, as the toolkit counts
QString LongDayName(int dayOfWeek);
QString ShortMonthName(int month);
QString LongMonthName(int month);

// Formats with the toolkit's tokens: d dd ddd dddd ddddd dddddd m mm mmm mmmm
// yy yyyy h hh n nn s ss z zzz c t tt, "/" and ":" (the locale's
// separators) and literals in single or double quotes.
QString FormatDateTime(const QString &format, TDateTime value);
QString DateToStr(TDateTime value);
QString TimeToStr(TDateTime value);
QString DateTimeToStr(TDateTime value);

// Reads a date typed in the masked date edit. With an empty format it
// accepts d.m.yyyy, dd.mm.yyyy, dd.mm.yy (also with "/" or "-") and
// ddmmyyyy, ddmmyy without separators, ignoring blanks and the mask's
// placeholder "_"; two-digit years fall within fifty years of this year.
// A format of d, m and y runs ("dd.mm.yyyy", "ddmmyy") reads that layout. Throws EConvertError
// with a Czech message naming the text when the text is not a real date.
TDateTime FormatStrToDate(const QString &text, const QString &format = QString());
TDateTime StrToDate(const QString &text);

} // namespace oxa
