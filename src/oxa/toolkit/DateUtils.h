#pragma once

#include "oxa/oxa_export.h"

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
OXA_EXPORT QDate DateTimeEpoch();

// Conversions between TDateTime and Qt's date and time types.
OXA_EXPORT TDateTime QDateToDateTime(const QDate &date);
OXA_EXPORT TDateTime QDateTimeToDateTime(const QDateTime &dateTime);
OXA_EXPORT QDate DateTimeToQDate(TDateTime value);
OXA_EXPORT QDateTime DateTimeToQDateTime(TDateTime value);

// Throws EConvertError for a day, month or year that does not exist.
OXA_EXPORT TDateTime EncodeDate(int year, int month, int day);
OXA_EXPORT TDateTime EncodeTime(int hour, int minute, int second, int msec = 0);
OXA_EXPORT bool TryEncodeDate(int year, int month, int day, TDateTime &result);
OXA_EXPORT void DecodeDate(TDateTime value, int &year, int &month, int &day);
OXA_EXPORT void DecodeTime(TDateTime value, int &hour, int &minute, int &second, int &msec);

OXA_EXPORT TDateTime DateOf(TDateTime value);
// The whole days of date with the time of day of time.
OXA_EXPORT TDateTime ComposeDateTime(TDateTime date, TDateTime time);
OXA_EXPORT TDateTime TimeOf(TDateTime value);
OXA_EXPORT TDateTime Now();
OXA_EXPORT TDateTime Date();

// The Inc functions keep the time of day.
OXA_EXPORT TDateTime IncDay(TDateTime value, int days = 1);
// Adds months keeping the day where the target month has it, otherwise the
// target month's last day. Throws EConvertError beyond the years 1 to 9999.
OXA_EXPORT TDateTime IncMonth(TDateTime value, int months = 1);
OXA_EXPORT TDateTime IncYear(TDateTime value, int years = 1);
OXA_EXPORT TDateTime IncMinute(TDateTime value, qint64 minutes = 1);

// ISO day of the week: 1 = Monday ... 7 = Sunday.
OXA_EXPORT int DayOfTheWeek(TDateTime value);
// The toolkit's DayOfWeek: 1 = Sunday ... 7 = Saturday.
OXA_EXPORT int DayOfWeek(TDateTime value);
// ISO 8601 week number (1..53).
OXA_EXPORT int WeekOf(TDateTime value);
OXA_EXPORT int DaysInAMonth(int year, int month);
OXA_EXPORT bool IsLeapYear(int year);
OXA_EXPORT bool SameDate(TDateTime a, TDateTime b);

// The locale of the library's visible texts (calendars, month names).
OXA_EXPORT QLocale CzechLocale();

// Czech locale settings of the short date form.
inline constexpr QChar DateSeparator = QLatin1Char('.');
inline constexpr QChar TimeSeparator = QLatin1Char(':');
OXA_EXPORT QString ShortDateFormat(); // "dd.mm.yyyy"
QString LongDateFormat();             // "d. mmmm yyyy"
QString ShortTimeFormat();            // "h:nn"
QString LongTimeFormat();             // "h:nn:ss"
QString ShortDayName(int dayOfWeek);  // 1 = Sunday, as the toolkit counts
QString LongDayName(int dayOfWeek);
OXA_EXPORT QString ShortMonthName(int month);
OXA_EXPORT QString LongMonthName(int month);

// Formats with the toolkit's tokens: d dd ddd dddd ddddd dddddd m mm mmm mmmm
// yy yyyy h hh n nn s ss z zzz c t tt, "/" and ":" (the locale's
// separators) and literals in single or double quotes.
OXA_EXPORT QString FormatDateTime(const QString &format, TDateTime value);
OXA_EXPORT QString DateToStr(TDateTime value);
OXA_EXPORT QString TimeToStr(TDateTime value);
OXA_EXPORT QString DateTimeToStr(TDateTime value);

// Reads a date typed in the masked date edit. With an empty format it
// accepts d.m.yyyy, dd.mm.yyyy, dd.mm.yy (also with "/" or "-") and
// ddmmyyyy, ddmmyy without separators, ignoring blanks and the mask's
// placeholder "_"; two-digit years fall within fifty years of this year.
// A format of d, m and y runs ("dd.mm.yyyy", "ddmmyy") reads that layout. Throws EConvertError
// with a Czech message naming the text when the text is not a real date.
OXA_EXPORT TDateTime FormatStrToDate(const QString &text, const QString &format = QString());
OXA_EXPORT TDateTime StrToDate(const QString &text);

} // namespace oxa
