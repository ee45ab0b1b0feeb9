#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace oxa {

// Conversion between UTF-16 text and the Windows Central European single-byte
// code page 1250: the code page our spreadsheet files declare and the one the
// header of a rich-text stream is written in, whatever the locale. The table is
// our own, so the bytes written do not depend on the machine's locale.
//
// A UTF-16 code unit that has no place in code page 1250 (a character of
// another script, a C1 control, each half of a surrogate pair) becomes the
// question mark, one byte per code unit. The substitute is visible in the
// sheet, and the byte count of a converted text always equals its count of
// UTF-16 code units, which is what the text cell's length byte counts.
namespace CodePage1250 {

// The byte written for a character that code page 1250 lacks.
inline constexpr char Replacement = '?';

// The code page 1250 byte of one UTF-16 code unit; Replacement if it has none.
char FromUnicode(char16_t unit) noexcept;

// Converts text into dest, which must hold text.size() bytes.
void FromUnicode(QStringView text, char *dest) noexcept;
QByteArray FromUnicode(QStringView text);

// The character of one code page 1250 byte; U+FFFD for the five bytes the
// code page leaves undefined (0x81, 0x83, 0x88, 0x90, 0x98).
char16_t ToUnicode(unsigned char byte) noexcept;
QString ToUnicode(QByteArrayView bytes);

} // namespace CodePage1250
} // namespace oxa
