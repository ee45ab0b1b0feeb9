#include "BirthNumber.h"

namespace {

BirthNumber Failure(const QString &error)
{
    BirthNumber number;
    number.error = error;
    return number;
}

} // namespace

QString BirthNumber::Digits(const QString &text)
{
    QString digits = text;
    digits.remove(QLatin1Char('/')).remove(QLatin1Char(' ')).remove(QLatin1Char('_'));
    return digits;
}

BirthNumber BirthNumber::Parse(const QString &text)
{
    const QString digits = Digits(text);
    bool numeric = false;
    const qint64 value = digits.toLongLong(&numeric);
    if (!numeric || (digits.size() != 9 && digits.size() != 10))
        return Failure(QStringLiteral(
            "Rodné číslo má tvar RRMMDD/XXXX (devět číslic jen u narozených před rokem 1954)."));

    const int yy = digits.left(2).toInt();
    int month = digits.mid(2, 2).toInt();
    const int day = digits.mid(4, 2).toInt();
    int year = 1900 + yy;
    if (digits.size() == 10 && yy < 54)
        year += 100;
    if (digits.size() == 9 && yy >= 54)
        return Failure(QStringLiteral(
            "Devítimístné rodné číslo se přidělovalo jen narozeným před rokem 1954."));

    BirthNumber number;
    if (month > 50) {
        number.sex = Female;
        month -= 50;
    }
    // The extra 20 exists only for numbers given since 2004.
    if (month > 20 && year >= 2004)
        month -= 20;
    number.birthDate = QDate(year, month, day);
    if (!number.birthDate.isValid())
        return Failure(QStringLiteral("Rodné číslo neobsahuje platné datum narození."));

    if (digits.size() == 10) {
        // Divisible by 11; where the first nine digits leave 10, the check
        // digit is 0 (numbers of that kind were given until 1985).
        const qint64 rest = (value / 10) % 11;
        const int check = int(value % 10);
        if (!(value % 11 == 0 || (rest == 10 && check == 0)))
            return Failure(QStringLiteral("Rodné číslo nemá správnou kontrolní číslici."));
    }
    return number;
}
