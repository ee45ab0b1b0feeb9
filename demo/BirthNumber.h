#pragma once

#include <QDate>
#include <QString>

// The Czech birth number (rodné číslo): RRMMDD/XXX for people born before
// 1954, RRMMDD/XXXX with a check digit since. Women have 50 added to the
// month; since 2004 a further 20 may be added when a day's numbers run out.
struct BirthNumber
{
    enum Sex { Male, Female };

    // Empty when the number is valid, else what is wrong, in Czech.
    QString error;
    QDate birthDate;
    Sex sex = Male;

    bool IsValid() const { return error.isEmpty(); }

    // Reads the number as typed, with or without the slash and blanks.
    static BirthNumber Parse(const QString &text);
    // The digits alone; empty when nothing was typed.
    static QString Digits(const QString &text);
};
