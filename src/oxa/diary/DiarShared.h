#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Color.h"
#include "oxa/toolkit/DateUtils.h"
#include "oxa/toolkit/Exceptions.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <memory>
#include <type_traits>
#include <vector>

namespace oxa {

// A time of day (the fraction of a day) and a date, both the toolkit's
// date-time value.
using TTime = TDateTime;
using TDate = TDateTime;

// The text of the failure raised for an index outside a fixed array or a list.
OXA_EXPORT QString IndexOutOfBoundsMessage(long long index);

// A string of at most MaxLength characters, the records' short strings. A
// longer text is cut to the limit when it is assigned.
template<int MaxLength>
class TShortString
{
    static_assert(MaxLength > 0 && MaxLength <= 255, "a short string holds 1 to 255 characters");

public:
    static constexpr int Capacity = MaxLength;

    TShortString() = default;
    TShortString(const QString &text) : m_text(Cut(text)) { }
    TShortString(const char *utf8) : m_text(Cut(QString::fromUtf8(utf8))) { }

    TShortString &operator=(const QString &text)
    {
        m_text = Cut(text);
        return *this;
    }
    TShortString &operator=(const char *utf8) { return *this = QString::fromUtf8(utf8); }

    const QString &Text() const { return m_text; }
    operator QString() const { return m_text; }
    int Length() const { return int(m_text.size()); }
    bool IsEmpty() const { return m_text.isEmpty(); }

    friend bool operator==(const TShortString &, const TShortString &) = default;
    friend bool operator==(const TShortString &a, const QString &b) { return a.m_text == b; }
    friend bool operator==(const TShortString &a, const char *utf8)
    {
        return a.m_text == QString::fromUtf8(utf8);
    }

    // The text as it is stored: its first MaxLength characters, never half
    // of a surrogate pair.
    static QString Cut(const QString &text)
    {
        if (text.size() <= MaxLength)
            return text;
        qsizetype length = MaxLength;
        if (text.at(length - 1).isHighSurrogate())
            --length;
        return text.left(length);
    }

private:
    QString m_text;
};

// A fixed array indexed from Low to High: weekdays 1..7, days 1..31, the
// values of an enumeration or false..true. An index outside throws
// oxa::Exception.
template<class T, auto Low, auto High>
struct TFixedArray
{
    using Index = decltype(Low);
    static_assert(std::is_same_v<decltype(Low), decltype(High)>, "both bounds of one type");
    static constexpr int Count = int(High) - int(Low) + 1;

    std::array<T, Count> Items{};

    static constexpr Index Lowest() { return Low; }
    static constexpr Index Highest() { return High; }

    constexpr T &operator[](Index index) { return Items[Offset(index)]; }
    constexpr const T &operator[](Index index) const { return Items[Offset(index)]; }

    constexpr auto begin() { return Items.begin(); }
    constexpr auto end() { return Items.end(); }
    constexpr auto begin() const { return Items.begin(); }
    constexpr auto end() const { return Items.end(); }

    friend bool operator==(const TFixedArray &, const TFixedArray &) = default;

private:
    static constexpr std::size_t Offset(Index index)
    {
        if (int(index) < int(Low) || int(index) > int(High))
            throw Exception(IndexOutOfBoundsMessage(int(index)));
        return std::size_t(int(index) - int(Low));
    }
};

// Where the contact of a diary entry comes from.
enum TZdrojKontaktu { zkNone, zkPacient, zkPartner };

// The unit of a reminder's lead time.
enum TJednotkaUpozorneni { juMinuta, juHodina, juDen };

// A month of a year in the diary's packed form, (year - 1900) * 100 +
// month, as TDayRecord::RokMesic and the diary panel's MonthYear hold it:
// January 2000 is 10001. Months before 1900 pack to negative numbers.
class OXA_EXPORT TMesicRok
{
public:
    constexpr TMesicRok() = default;
    constexpr explicit TMesicRok(qint16 aPacked) : m_packed(aPacked) { }
    // Throws EConvertError when the month does not fit the packed form.
    static TMesicRok FromYearMonth(int aYear, int aMonth);
    static TMesicRok FromDate(TDate aDate);

    constexpr qint16 Packed() const { return m_packed; }
    constexpr int Year() const { return 1900 + FloorDiv(m_packed - 1, 100); }
    constexpr int Month() const { return m_packed - (Year() - 1900) * 100; }
    int DaysInMonth() const;
    // The date of day aDen of the month; EConvertError for a day the month
    // does not have.
    TDate Date(int aDen) const;
    bool TryDate(int aDen, TDate &aDatum) const;
    TDate FirstDay() const { return Date(1); }
    TDate LastDay() const { return Date(DaysInMonth()); }
    bool Contains(TDate aDatum) const { return FromDate(aDatum) == *this; }

    friend constexpr bool operator==(TMesicRok, TMesicRok) = default;

private:
    static constexpr int FloorDiv(int a, int b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

    qint16 m_packed = 0;
};

// One diary entry (an appointment), copied by value between the store and
// the controls.
struct OXA_EXPORT TDayRecord
{
    qint32 ID_DIAR = 0;
    qint32 ID_PORIZOVACI = 0;
    TShortString<255> Parafa;
    bool Soukrome = false;
    qint16 Den = 0;
    qint16 RokMesic = 0; // the packed month, TMesicRok
    TTime CasOd = 0;
    TTime CasDo = 0;
    TShortString<33> Popis;
    qint16 ID_Barvy = 0;
    qint32 ID_KONTAKT = 0;
    QString KONTAKT;
    QString RC;
    TZdrojKontaktu TABULKA_REFERENCE = zkNone;
    QString PODROBNOSTI;
    qint16 SPLNENO = 0; // per cent, 100 = done
    qint16 UPOZORNIT = 0;
    TJednotkaUpozorneni JEDN_UPOZORNENI = juMinuta;
    qint32 idDiarPristroj = 0;

    friend bool operator==(const TDayRecord &, const TDayRecord &) = default;
};

// An entry held inside a TMonthArray; valid until that store changes.
using PDayRecord = TDayRecord *;
// One day's entries. A std::vector rather than an implicitly shared list, so
// that a PDayRecord never writes into a copy handed out earlier.
using TDayRecordArray = std::vector<TDayRecord>;

// A day's working hours: two intervals. An interval whose start is not
// before its end marks nothing.
struct OXA_EXPORT TPracDobaCas
{
    TTime CasOd = 0;
    TTime CasDo = 0;
    TTime CasOd1 = 0;
    TTime CasDo1 = 0;

    friend bool operator==(const TPracDobaCas &, const TPracDobaCas &) = default;
};

// Working hours per weekday, 1 = Monday ... 7 = Sunday (DayOfTheWeek).
using TPracDoba = TFixedArray<TPracDobaCas, 1, 7>;

// The intervals of one weekday in which patients may book with the doctor,
// and those of the seven weekdays (1 = Monday).
using TObjednaniKLekariDenCas = QList<TPracDobaCas>;
using TObjednaniKLekariCas = TFixedArray<TObjednaniKLekariDenCas, 1, 7>;

// One leave (absence).
struct OXA_EXPORT TDovolena
{
    TTime CasOd = 0;
    TTime CasDo = 0;
    TDate DatumOd = 0;
    TDate DatumDo = 0;
    bool BarvaIsSet = false;
    TColor Barva = 0;
    TShortString<255> Poznamka;

    friend bool operator==(const TDovolena &, const TDovolena &) = default;
};

using TDovolenaPole = QList<TDovolena>;

// The diary settings the host hands to the controls by value.
struct OXA_EXPORT TDiarNastaveni
{
    TColor barvaSvatek = 0;
    TColor barvaSoNe = 0;
    TColor barvaPracDoba = 0;
    TColor barvaSchuzky = 0;
    TColor barvaSchuzkyMes = 0;
    TColor barvaSchuzkySouk = 0;
    TColor barvaDovol = 0;
    qint32 casToDek = 0;
    TPracDoba pracDobaLichy; // odd ISO week numbers (WeekOf)
    TPracDoba pracDobaSudy;  // even ISO week numbers
    TDovolenaPole dovolena;
    bool schuzkaToDek = false;
    bool dblklikSchuzkaChangePac = false;
    TObjednaniKLekariCas objednaniKLekari;
    TColor barvaObjednaniKLekari = 0;
    qint32 minutDilek = 0;
    bool zobrDiarPristroj = false;
    qint32 zobrDiarID = 0;

    friend bool operator==(const TDiarNastaveni &, const TDiarNastaveni &) = default;
};

// One value per day of a month, indexed 1..31 (the bold days of a calendar).
using TCalDaysArray = TFixedArray<quint32, 1, 31>;

// A configured surgery-hours record of a doctor, as the host reads it.
class OXA_EXPORT TDiarKonfig
{
public:
    TDiarKonfig() = default;
    TDiarKonfig(const TDiarKonfig &ADiarKonfig) = default;
    TDiarKonfig &operator=(const TDiarKonfig &) = default;

    qint32 ID_DIARKONFIG = 0;
    qint32 ID_LEKAR = 0;
    TTime CASOD = 0;
    TTime CASDO = 0;
    TDate DATUMOD = 0;
    TDate DATUMDO = 0;
    qint32 ORDINUJE = 0; // non-zero: the doctor holds surgery in the interval
    qint32 DEN = 0;
    QString POZNAMKA;
    TColor barva = 0;

    friend bool operator==(const TDiarKonfig &, const TDiarKonfig &) = default;
};

// An owning list of TDiarKonfig. An index outside the list throws
// oxa::Exception.
class OXA_EXPORT TDiarKonfigList
{
public:
    TDiarKonfigList() = default;
    TDiarKonfigList(const TDiarKonfigList &) = delete;
    TDiarKonfigList &operator=(const TDiarKonfigList &) = delete;
    TDiarKonfigList(TDiarKonfigList &&) noexcept = default;
    TDiarKonfigList &operator=(TDiarKonfigList &&) noexcept = default;

    int Count() const { return int(m_items.size()); }
    bool IsEmpty() const { return m_items.empty(); }

    TDiarKonfig *Items(int Index) const;
    TDiarKonfig *operator[](int Index) const { return Items(Index); }
    // Puts Item in place of the one at Index, which is freed.
    void SetItems(int Index, std::unique_ptr<TDiarKonfig> Item);

    // Appends the item and returns its index.
    int Add(std::unique_ptr<TDiarKonfig> Item);
    TDiarKonfig *First() const { return Items(0); }
    TDiarKonfig *Last() const { return Items(Count() - 1); }
    int IndexOf(const TDiarKonfig *Item) const;
    // Takes the item out of the list without freeing it; null when the item
    // is not in the list.
    std::unique_ptr<TDiarKonfig> Extract(TDiarKonfig *Item);
    void Delete(int Index);
    void Clear() { m_items.clear(); }

private:
    void CheckIndex(int Index) const;

    std::vector<std::unique_ptr<TDiarKonfig>> m_items;
};

// The store of the entries of a displayed period: one slot per day. Slots 0
// to DnuPred - 1 are the days shown before the month, slot DnuPred + d - 1 is
// day d of the month (always 31 of them), the last DnuPo slots follow it.
class OXA_EXPORT TMonthArray
{
public:
    TMonthArray(quint16 aDnuPred, quint16 aDnuPo);
    TMonthArray(const TMonthArray &) = delete;
    TMonthArray &operator=(const TMonthArray &) = delete;

    quint16 DnuPred() const { return fDnuPred; }
    quint16 DnuPo() const { return fDnuPo; }
    int SlotCount() const { return int(fMonthRecordArray.size()); }
    // The slot of day aDen of the month.
    int SlotOfDay(int aDen) const { return fDnuPred + aDen - 1; }

    // Empties every slot; the number of slots stays.
    void Clear();

    // A copy of the slot's entries. With aDenMesice aPozice is a day of the
    // month, otherwise the slot itself. A slot outside gives no entries.
    TDayRecordArray GetDayRecordArray(int aPozice, bool aDenMesice) const;

    // The entries of day aDen of the month that meet the span, in the slot's
    // order. An entry's times are cut to whole minutes first; an entry that
    // only touches an edge of the span does not meet it, and one of no
    // length meets the span that contains it.
    QList<PDayRecord> FindDayRecord(int aDen, TTime aCasOd, TTime aCasDo);
    // The entry with the key in the slot chosen as in GetDayRecordArray, or null.
    PDayRecord FindDayRecord(int aPozice, bool aDenMesice, qint32 aID);

    bool IsDayEmpty(int aPozice) const;

    // Appends a copy of the entry to the slot; a slot outside is ignored.
    void AddDayRecord(const TDayRecord &aZaznam, int aPozice);
    // Removes the first entry with the key from the slot; an unknown key or a
    // slot outside changes nothing.
    void RemoveDayRecord(int aPozice, qint32 aID);
    // Removes one entry for each key of aList (decimal strings, taken from
    // the last) and deletes the key from the list; the keys not found stay.
    // Returns true when at least one entry was removed.
    bool RemoveRecords(QStringList &aList);

    // Element d becomes d when day d of the month has an entry, else 0.
    void getAktualniPocty(TCalDaysArray &aktMesic) const;
    // The number of entries of day aDen of the month.
    int getZaznamyCount(int aDen) const;

private:
    bool IsSlot(int aPozice) const { return aPozice >= 0 && aPozice < SlotCount(); }
    int SlotOf(int aPozice, bool aDenMesice) const
    {
        return aDenMesice ? SlotOfDay(aPozice) : aPozice;
    }
    bool RemoveFirst(qint32 aID);

    std::vector<TDayRecordArray> fMonthRecordArray;
    quint16 fDnuPred = 0;
    quint16 fDnuPo = 0;
};

// The names of the contact sources.
OXA_EXPORT extern const TFixedArray<QString, zkNone, zkPartner> ZdrojKontaktuNazev;

// Background of a day by weekday (1 = Monday): white on working days, light
// grey at the weekend.
inline constexpr TFixedArray<TColor, 1, 7> DaysColor{
    {0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xE0E0E0, 0xE0E0E0}};

} // namespace oxa
