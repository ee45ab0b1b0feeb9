#pragma once

#include <QString>
#include <limits>

namespace oxa {

// The toolkit's integer reading: optional blanks in front, an optional sign,
// decimal digits or "$"/"0x" and hexadecimal digits; anything else, or a
// value out of the 32-bit range, gives the default.
inline int StrToIntDef(const QString &text, int def)
{
    QStringView s(text);
    while (!s.isEmpty() && s.front() == u' ')
        s = s.mid(1);
    bool negative = false;
    if (!s.isEmpty() && (s.front() == u'-' || s.front() == u'+')) {
        negative = s.front() == u'-';
        s = s.mid(1);
    }
    int base = 10;
    if (s.startsWith(u'$')) {
        base = 16;
        s = s.mid(1);
    } else if (s.startsWith(u"0x", Qt::CaseInsensitive)) {
        base = 16;
        s = s.mid(2);
    }
    if (s.isEmpty())
        return def;
    qint64 value = 0;
    for (QChar c : s) {
        const int digit = c.isDigit() ? c.digitValue()
            : (base == 16 && c.toLower() >= u'a' && c.toLower() <= u'f')
            ? c.toLower().unicode() - u'a' + 10
            : -1;
        if (digit < 0 || digit >= base || c.unicode() > 0x7F)
            return def;
        value = value * base + digit;
        if (value > qint64(std::numeric_limits<quint32>::max()))
            return def;
    }
    if (negative)
        value = -value;
    // Hexadecimal reads the 32 bits as they stand, as colour values are written.
    if (base == 16 && value > std::numeric_limits<int>::max())
        return int(quint32(value));
    if (value > std::numeric_limits<int>::max() || value < std::numeric_limits<int>::min())
        return def;
    return int(value);
}

} // namespace oxa
