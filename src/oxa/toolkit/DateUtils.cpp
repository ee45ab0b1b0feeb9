#include "oxa/toolkit/DateUtils.h"

#include "oxa/toolkit/Exceptions.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

namespace oxa {

namespace {

constexpr qint64 kMsecPerDay = 24LL * 60 * 60 * 1000;

qint64 epochJulianDay()
{
    static const qint64 jd = QDate(1899, 12, 30).toJulianDay();
    return jd;
}

// Beyond this many days from the epoch no calendar date exists (year 9999
// ends at 2958465); the bound only keeps the conversion to an integer sane.
constexpr double kMaxDays = 1.0e7;

// Whole days of a value; the toolkit truncates towards zero and keeps the
// time of day as the absolute fraction, also before the epoch.
qint64 dayPart(TDateTime value)
{
    if (!std::isfinite(value) || std::fabs(value) > kMaxDays)
        return 0;
    return qint64(std::trunc(value));
}

bool representable(TDateTime value)
{
    return std::isfinite(value) && std::fabs(value) <= kMaxDays;
}

double timeFraction(TDateTime value)
{
    if (!representable(value))
        return 0;
    return std::fabs(value - std::trunc(value));
}

qint64 timeMsec(TDateTime value)
{
    return std::min<qint64>(qint64(std::llround(timeFraction(value) * kMsecPerDay)),
                            kMsecPerDay - 1);
}

TDateTime combine(qint64 days, double fraction)
{
    return days >= 0 ? double(days) + fraction : double(days) - fraction;
}

QDate dateOfDays(qint64 days)
{
    return QDate::fromJulianDay(days + epochJulianDay());
}

QString invalidDateMessage(const QString &text)
{
    return QStringLiteral("'%1' není platné datum").arg(text);
}

const char *const kLongDayNames[] = {"neděle",  "pondělí", "úterý", "středa",
                                     "čtvrtek", "pátek",   "sobota"};
const char *const kShortDayNames[] = {"ne", "po", "út", "st", "čt", "pá", "so"};
const char *const kLongMonthNames[] = {"leden",  "únor",   "březen",   "duben",
                                       "květen", "červen", "červenec", "srpen",
                                       "září",   "říjen",  "listopad", "prosinec"};
const char *const kShortMonthNames[] = {"led", "úno", "bře", "dub", "kvě", "čvn",
                                        "čvc", "srp", "zář", "říj", "lis", "pro"};

// Two-digit years fall within fifty years either side of the current year.
int expandTwoDigitYear(int year)
{
    const int current = QDate::currentDate().year();
    int full = (current / 100) * 100 + year;
    if (full < current - 50)
        full += 100;
    else if (full >= current + 50)
        full -= 100;
    return full;
}

bool allDigits(const QString &s)
{
    return !s.isEmpty() && std::all_of(s.begin(), s.end(), [](QChar c) { return c.isDigit(); });
}

// Reads the three date fields of the default Czech form. Returns false when
// the text does not have the shape of a date.
bool splitCzechDate(const QString &cleaned, QString &d, QString &m, QString &y)
{
    static const QString separators = QStringLiteral("./-");
    if (std::any_of(cleaned.begin(), cleaned.end(),
                    [](QChar c) { return separators.contains(c); })) {
        QString unified = cleaned;
        for (QChar &c : unified) {
            if (separators.contains(c))
                c = QLatin1Char('.');
        }
        const QStringList parts = unified.split(QLatin1Char('.'));
        if (parts.size() != 3)
            return false;
        d = parts[0], m = parts[1], y = parts[2];
        return d.size() <= 2 && m.size() <= 2 && (y.size() == 2 || y.size() == 4);
    }
    if (cleaned.size() == 8 || cleaned.size() == 6) {
        d = cleaned.left(2), m = cleaned.mid(2, 2), y = cleaned.mid(4);
        return true;
    }
    return false;
}

bool isDateLetter(QChar c)
{
    const QChar l = c.toLower();
    return l == QLatin1Char('d') || l == QLatin1Char('m') || l == QLatin1Char('y');
}

// Reads a date by an explicit format of d, m and y runs and separators ("/"
// stands for the date separator). A field followed by a separator or ending
// the format takes as many digits as it may hold; a field followed directly
// by another field takes exactly the width of its run.
bool splitByFormat(const QString &text, const QString &format, QString &d, QString &m, QString &y)
{
    int pos = 0;
    for (int i = 0; i < format.size();) {
        const QChar f = format[i].toLower();
        if (!isDateLetter(f)) {
            const QChar expected = f == QLatin1Char('/') ? DateSeparator : format[i];
            if (pos >= text.size() || text[pos] != expected)
                return false;
            ++pos, ++i;
            continue;
        }
        int run = 0;
        while (i + run < format.size() && format[i + run].toLower() == f)
            ++run;
        i += run;
        const bool abutting = i < format.size() && isDateLetter(format[i]);
        const int widest = f == QLatin1Char('y') ? 4 : 2;
        const int width = abutting ? std::min(run, widest) : widest;
        QString field;
        while (pos < text.size() && text[pos].isDigit() && field.size() < width)
            field += text[pos++];
        (f == QLatin1Char('d') ? d : f == QLatin1Char('m') ? m : y) = field;
    }
    return pos == text.size() && (y.size() == 2 || y.size() == 4);
}

} // namespace

QDate DateTimeEpoch()
{
    return QDate(1899, 12, 30);
}

TDateTime QDateToDateTime(const QDate &date)
{
    return double(date.toJulianDay() - epochJulianDay());
}

TDateTime QDateTimeToDateTime(const QDateTime &dateTime)
{
    const QTime t = dateTime.time();
    return combine(dateTime.date().toJulianDay() - epochJulianDay(),
                   double(t.msecsSinceStartOfDay()) / kMsecPerDay);
}

QDate DateTimeToQDate(TDateTime value)
{
    if (!representable(value))
        return QDate();
    return dateOfDays(dayPart(value));
}

QDateTime DateTimeToQDateTime(TDateTime value)
{
    return QDateTime(DateTimeToQDate(value), QTime::fromMSecsSinceStartOfDay(int(timeMsec(value))));
}

bool TryEncodeDate(int year, int month, int day, TDateTime &result)
{
    if (year < 1 || year > 9999 || !QDate::isValid(year, month, day))
        return false;
    result = QDateToDateTime(QDate(year, month, day));
    return true;
}

TDateTime EncodeDate(int year, int month, int day)
{
    TDateTime result = 0;
    if (!TryEncodeDate(year, month, day, result))
        throw EConvertError(QStringLiteral("Neplatný argument pro zakódování data (%1.%2.%3)")
                                .arg(day)
                                .arg(month)
                                .arg(year));
    return result;
}

TDateTime EncodeTime(int hour, int minute, int second, int msec)
{
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59 ||
        msec < 0 || msec > 999)
        throw EConvertError(QStringLiteral("Neplatný argument pro zakódování času"));
    return double(((hour * 60 + minute) * 60 + second) * 1000 + msec) / kMsecPerDay;
}

void DecodeDate(TDateTime value, int &year, int &month, int &day)
{
    DateTimeToQDate(value).getDate(&year, &month, &day);
}

void DecodeTime(TDateTime value, int &hour, int &minute, int &second, int &msec)
{
    const qint64 ms = timeMsec(value);
    hour = int(ms / 3600000);
    minute = int(ms / 60000 % 60);
    second = int(ms / 1000 % 60);
    msec = int(ms % 1000);
}

TDateTime DateOf(TDateTime value)
{
    return double(dayPart(value));
}

TDateTime TimeOf(TDateTime value)
{
    return timeFraction(value);
}

TDateTime Now()
{
    return QDateTimeToDateTime(QDateTime::currentDateTime());
}

TDateTime Date()
{
    return QDateToDateTime(QDate::currentDate());
}

TDateTime ComposeDateTime(TDateTime date, TDateTime time)
{
    return combine(dayPart(date), timeFraction(time));
}

// Moves the whole days and keeps the time of day, also across the epoch
// where the sign of the value flips.
TDateTime IncDay(TDateTime value, int days)
{
    return combine(dayPart(value) + days, timeFraction(value));
}

TDateTime IncMonth(TDateTime value, int months)
{
    int y = 0, m = 0, d = 0;
    DecodeDate(value, y, m, d);
    const qint64 total = qint64(y) * 12 + (m - 1) + months;
    if (total < 12 || total >= 10000 * 12)
        throw EConvertError(QStringLiteral("Neplatný argument pro zakódování data"));
    const int ny = int(total / 12);
    const int nm = int(total % 12) + 1;
    const int nd = std::min(d, DaysInAMonth(ny, nm));
    return combine(QDate(ny, nm, nd).toJulianDay() - epochJulianDay(), timeFraction(value));
}

TDateTime IncYear(TDateTime value, int years)
{
    return IncMonth(value, years * 12);
}

TDateTime IncMinute(TDateTime value, qint64 minutes)
{
    const qint64 msec = dayPart(value) * kMsecPerDay + timeMsec(value) + minutes * 60 * 1000;
    const qint64 days = msec >= 0 ? msec / kMsecPerDay : -((-msec + kMsecPerDay - 1) / kMsecPerDay);
    return combine(days, double(msec - days * kMsecPerDay) / kMsecPerDay);
}

int DayOfTheWeek(TDateTime value)
{
    return DateTimeToQDate(value).dayOfWeek();
}

int DayOfWeek(TDateTime value)
{
    return DayOfTheWeek(value) % 7 + 1;
}

int WeekOf(TDateTime value)
{
    return DateTimeToQDate(value).weekNumber();
}

int DaysInAMonth(int year, int month)
{
    return QDate(year, month, 1).daysInMonth();
}

bool IsLeapYear(int year)
{
    return QDate::isLeapYear(year);
}

bool SameDate(TDateTime a, TDateTime b)
{
    return dayPart(a) == dayPart(b);
}

QLocale CzechLocale()
{
    return QLocale(QLocale::Czech, QLocale::CzechRepublic);
}

QString ShortDateFormat()
{
    return QStringLiteral("dd.mm.yyyy");
}
QString LongDateFormat()
{
    return QStringLiteral("d. mmmm yyyy");
}
QString ShortTimeFormat()
{
    return QStringLiteral("h:nn");
}
QString LongTimeFormat()
{
    return QStringLiteral("h:nn:ss");
}

QString ShortDayName(int dayOfWeek)
{
    return QString::fromUtf8(kShortDayNames[(dayOfWeek + 6) % 7]);
}

QString LongDayName(int dayOfWeek)
{
    return QString::fromUtf8(kLongDayNames[(dayOfWeek + 6) % 7]);
}

QString ShortMonthName(int month)
{
    return QString::fromUtf8(kShortMonthNames[(month + 11) % 12]);
}

QString LongMonthName(int month)
{
    return QString::fromUtf8(kLongMonthNames[(month + 11) % 12]);
}

QString FormatDateTime(const QString &format, TDateTime value)
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, msec = 0;
    DecodeDate(value, year, month, day);
    DecodeTime(value, hour, minute, second, msec);
    const auto two = [](int n) { return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0')); };

    QString out;
    bool afterHour = false; // "m" right after an hour token means minutes
    const int n = int(format.size());
    for (int i = 0; i < n;) {
        const QChar c = format[i];
        const QChar lc = c.toLower();
        int run = 1;
        while (i + run < n && format[i + run].toLower() == lc)
            ++run;

        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            const int end = int(format.indexOf(c, i + 1));
            out += format.mid(i + 1, (end < 0 ? n : end) - i - 1);
            i = end < 0 ? n : end + 1;
            continue;
        }
        if (lc == QLatin1Char('d')) {
            switch (std::min(run, 6)) {
            case 1:
                out += QString::number(day);
                break;
            case 2:
                out += two(day);
                break;
            case 3:
                out += ShortDayName(DayOfWeek(value));
                break;
            case 4:
                out += LongDayName(DayOfWeek(value));
                break;
            case 5:
                out += FormatDateTime(ShortDateFormat(), value);
                break;
            default:
                out += FormatDateTime(LongDateFormat(), value);
                break;
            }
            afterHour = false;
        } else if (lc == QLatin1Char('m')) {
            if (afterHour) {
                out += run == 1 ? QString::number(minute) : two(minute);
            } else {
                switch (std::min(run, 4)) {
                case 1:
                    out += QString::number(month);
                    break;
                case 2:
                    out += two(month);
                    break;
                case 3:
                    out += ShortMonthName(month);
                    break;
                default:
                    out += LongMonthName(month);
                    break;
                }
            }
            afterHour = false;
        } else if (lc == QLatin1Char('y')) {
            out += run <= 2 ? two(year % 100)
                            : QStringLiteral("%1").arg(year, 4, 10, QLatin1Char('0'));
            afterHour = false;
        } else if (lc == QLatin1Char('h')) {
            out += run == 1 ? QString::number(hour) : two(hour);
            afterHour = true;
        } else if (lc == QLatin1Char('n')) {
            out += run == 1 ? QString::number(minute) : two(minute);
            afterHour = false;
        } else if (lc == QLatin1Char('s')) {
            out += run == 1 ? QString::number(second) : two(second);
            afterHour = false;
        } else if (lc == QLatin1Char('z')) {
            out += run >= 3 ? QStringLiteral("%1").arg(msec, 3, 10, QLatin1Char('0'))
                            : QString::number(msec);
            afterHour = false;
        } else if (lc == QLatin1Char('c') && run == 1) {
            out += FormatDateTime(ShortDateFormat(), value);
            if (timeFraction(value) != 0)
                out += QLatin1Char(' ') + FormatDateTime(LongTimeFormat(), value);
            afterHour = false;
        } else if (lc == QLatin1Char('t') && run <= 2) {
            out += FormatDateTime(run == 1 ? ShortTimeFormat() : LongTimeFormat(), value);
            afterHour = false;
        } else if (c == QLatin1Char('/')) {
            out += QString(DateSeparator).repeated(run);
        } else if (c == QLatin1Char(':')) {
            out += QString(TimeSeparator).repeated(run);
        } else {
            out += format.mid(i, run);
            if (c.isLetter())
                afterHour = false;
        }
        i += run;
    }
    return out;
}

QString DateToStr(TDateTime value)
{
    return FormatDateTime(ShortDateFormat(), value);
}

QString TimeToStr(TDateTime value)
{
    return FormatDateTime(LongTimeFormat(), value);
}

QString DateTimeToStr(TDateTime value)
{
    return FormatDateTime(QStringLiteral("c"), value);
}

TDateTime FormatStrToDate(const QString &text, const QString &format)
{
    QString cleaned;
    for (QChar c : text) {
        if (!c.isSpace() && c != QLatin1Char('_'))
            cleaned += c;
    }
    QString d, m, y;
    const QString compactFormat = QString(format).remove(QLatin1Char(' '));
    const bool shaped = compactFormat.isEmpty() ? splitCzechDate(cleaned, d, m, y)
                                                : splitByFormat(cleaned, compactFormat, d, m, y);
    if (!shaped || !allDigits(d) || !allDigits(m) || !allDigits(y))
        throw EConvertError(invalidDateMessage(text));
    const int year = y.size() <= 2 ? expandTwoDigitYear(y.toInt()) : y.toInt();
    TDateTime result = 0;
    if (!TryEncodeDate(year, m.toInt(), d.toInt(), result))
        throw EConvertError(invalidDateMessage(text));
    return result;
}

TDateTime StrToDate(const QString &text)
{
    return FormatStrToDate(text);
}

} // namespace oxa
