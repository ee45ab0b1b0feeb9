#include "oxa/toolkit/CodePage1250.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace oxa::CodePage1250 {

namespace {

constexpr char16_t Undefined = 0xFFFD;

// The characters of the bytes 0x80 to 0xFF; the lower half is ASCII.
constexpr std::array<char16_t, 128> UpperHalf = {
    // 0x80
    0x20AC,
    Undefined,
    0x201A,
    Undefined,
    0x201E,
    0x2026,
    0x2020,
    0x2021,
    Undefined,
    0x2030,
    0x0160,
    0x2039,
    0x015A,
    0x0164,
    0x017D,
    0x0179,
    // 0x90
    Undefined,
    0x2018,
    0x2019,
    0x201C,
    0x201D,
    0x2022,
    0x2013,
    0x2014,
    Undefined,
    0x2122,
    0x0161,
    0x203A,
    0x015B,
    0x0165,
    0x017E,
    0x017A,
    // 0xA0
    0x00A0,
    0x02C7,
    0x02D8,
    0x0141,
    0x00A4,
    0x0104,
    0x00A6,
    0x00A7,
    0x00A8,
    0x00A9,
    0x015E,
    0x00AB,
    0x00AC,
    0x00AD,
    0x00AE,
    0x017B,
    // 0xB0
    0x00B0,
    0x00B1,
    0x02DB,
    0x0142,
    0x00B4,
    0x00B5,
    0x00B6,
    0x00B7,
    0x00B8,
    0x0105,
    0x015F,
    0x00BB,
    0x013D,
    0x02DD,
    0x013E,
    0x017C,
    // 0xC0
    0x0154,
    0x00C1,
    0x00C2,
    0x0102,
    0x00C4,
    0x0139,
    0x0106,
    0x00C7,
    0x010C,
    0x00C9,
    0x0118,
    0x00CB,
    0x011A,
    0x00CD,
    0x00CE,
    0x010E,
    // 0xD0
    0x0110,
    0x0143,
    0x0147,
    0x00D3,
    0x00D4,
    0x0150,
    0x00D6,
    0x00D7,
    0x0158,
    0x016E,
    0x00DA,
    0x0170,
    0x00DC,
    0x00DD,
    0x0162,
    0x00DF,
    // 0xE0
    0x0155,
    0x00E1,
    0x00E2,
    0x0103,
    0x00E4,
    0x013A,
    0x0107,
    0x00E7,
    0x010D,
    0x00E9,
    0x0119,
    0x00EB,
    0x011B,
    0x00ED,
    0x00EE,
    0x010F,
    // 0xF0
    0x0111,
    0x0144,
    0x0148,
    0x00F3,
    0x00F4,
    0x0151,
    0x00F6,
    0x00F7,
    0x0159,
    0x016F,
    0x00FA,
    0x0171,
    0x00FC,
    0x00FD,
    0x0163,
    0x02D9,
};

// Every character up to U+017F (Latin Extended-A, where all Czech letters
// live) is found by direct index; the few above it by binary search.
constexpr char16_t DirectLimit = 0x0180;

constexpr std::array<char, DirectLimit> MakeDirectTable()
{
    std::array<char, DirectLimit> table{};
    for (char16_t u = 0; u < DirectLimit; ++u)
        table[u] = u < 0x80 ? char(u) : Replacement;
    for (int i = 0; i < 128; ++i) {
        if (UpperHalf[i] < DirectLimit)
            table[UpperHalf[i]] = char(0x80 + i);
    }
    return table;
}

struct THighEntry
{
    char16_t Unit;
    char Byte;
};

constexpr int HighCount()
{
    return int(std::count_if(UpperHalf.begin(), UpperHalf.end(),
                             [](char16_t u) { return u >= DirectLimit && u != Undefined; }));
}

constexpr std::array<THighEntry, HighCount()> MakeHighTable()
{
    std::array<THighEntry, HighCount()> table{};
    int n = 0;
    for (int i = 0; i < 128; ++i) {
        if (UpperHalf[i] >= DirectLimit && UpperHalf[i] != Undefined)
            table[n++] = {UpperHalf[i], char(0x80 + i)};
    }
    std::sort(table.begin(), table.end(),
              [](const THighEntry &a, const THighEntry &b) { return a.Unit < b.Unit; });
    return table;
}

constexpr auto DirectTable = MakeDirectTable();
constexpr auto HighTable = MakeHighTable();

char FromHighUnit(char16_t unit) noexcept
{
    const auto it = std::lower_bound(HighTable.begin(), HighTable.end(), unit,
                                     [](const THighEntry &e, char16_t u) { return e.Unit < u; });
    return it != HighTable.end() && it->Unit == unit ? it->Byte : Replacement;
}

inline char Encode(char16_t unit) noexcept
{
    return unit < DirectLimit ? DirectTable[unit] : FromHighUnit(unit);
}

} // namespace

char FromUnicode(char16_t unit) noexcept
{
    return Encode(unit);
}

void FromUnicode(QStringView text, char *dest) noexcept
{
    const char16_t *units = text.utf16();
    for (qsizetype i = 0, n = text.size(); i < n; ++i)
        dest[i] = Encode(units[i]);
}

QByteArray FromUnicode(QStringView text)
{
    QByteArray bytes(text.size(), Qt::Uninitialized);
    FromUnicode(text, bytes.data());
    return bytes;
}

char16_t ToUnicode(unsigned char byte) noexcept
{
    return byte < 0x80 ? char16_t(byte) : UpperHalf[byte - 0x80];
}

QString ToUnicode(QByteArrayView bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (const char b : bytes)
        *out++ = QChar(ToUnicode(static_cast<unsigned char>(b)));
    return text;
}

} // namespace oxa::CodePage1250
