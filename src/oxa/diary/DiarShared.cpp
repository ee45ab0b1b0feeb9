#include "oxa/diary/DiarShared_p.h"

#include <algorithm>
#include <limits>

namespace oxa {

// --- TMesicRok -----------------------------------------------------------------

TMesicRok TMesicRok::FromYearMonth(int aYear, int aMonth)
{
    const int packed = (aYear - 1900) * 100 + aMonth;
    if (packed < std::numeric_limits<qint16>::min() || packed > std::numeric_limits<qint16>::max())
        throw EConvertError(QStringLiteral("Měsíc %1/%2 mimo rozsah diáře").arg(aMonth).arg(aYear));
    return TMesicRok(qint16(packed));
}

TMesicRok TMesicRok::FromDate(TDate aDate)
{
    int year = 0, month = 0, day = 0;
    DecodeDate(aDate, year, month, day);
    return FromYearMonth(year, month);
}

int TMesicRok::DaysInMonth() const
{
    return DaysInAMonth(Year(), Month());
}

TDate TMesicRok::Date(int aDen) const
{
    return EncodeDate(Year(), Month(), aDen);
}

bool TMesicRok::TryDate(int aDen, TDate &aDatum) const
{
    return TryEncodeDate(Year(), Month(), aDen, aDatum);
}

QString IndexOutOfBoundsMessage(long long index)
{
    return QStringLiteral("Index mimo rozsah (%1)").arg(index);
}

const TFixedArray<QString, zkNone, zkPartner> ZdrojKontaktuNazev{
    {QStringLiteral("Kontakt"), QStringLiteral("Pacient"), QStringLiteral("Partner")}};

// --- TDiarKonfigList ---------------------------------------------------------

void TDiarKonfigList::CheckIndex(int Index) const
{
    if (Index < 0 || Index >= Count())
        throw Exception(IndexOutOfBoundsMessage(Index));
}

TDiarKonfig *TDiarKonfigList::Items(int Index) const
{
    CheckIndex(Index);
    return m_items[std::size_t(Index)].get();
}

void TDiarKonfigList::SetItems(int Index, std::unique_ptr<TDiarKonfig> Item)
{
    CheckIndex(Index);
    m_items[std::size_t(Index)] = std::move(Item);
}

int TDiarKonfigList::Add(std::unique_ptr<TDiarKonfig> Item)
{
    m_items.push_back(std::move(Item));
    return Count() - 1;
}

int TDiarKonfigList::IndexOf(const TDiarKonfig *Item) const
{
    const auto it = std::find_if(m_items.begin(), m_items.end(),
                                 [Item](const auto &owned) { return owned.get() == Item; });
    return it == m_items.end() ? -1 : int(it - m_items.begin());
}

std::unique_ptr<TDiarKonfig> TDiarKonfigList::Extract(TDiarKonfig *Item)
{
    const int index = Item ? IndexOf(Item) : -1;
    if (index < 0)
        return nullptr;
    std::unique_ptr<TDiarKonfig> extracted = std::move(m_items[std::size_t(index)]);
    m_items.erase(m_items.begin() + index);
    return extracted;
}

void TDiarKonfigList::Delete(int Index)
{
    CheckIndex(Index);
    m_items.erase(m_items.begin() + Index);
}

// --- time spans --------------------------------------------------------------

TTime TruncToMinutes(TTime aCas)
{
    int hour = 0, minute = 0, second = 0, msec = 0;
    DecodeTime(aCas, hour, minute, second, msec);
    const TDateTime minutes = EncodeTime(hour, minute, 0, 0);
    // The toolkit keeps the time of day as the absolute fraction, also
    // before its epoch.
    return aCas < 0 ? DateOf(aCas) - minutes : DateOf(aCas) + minutes;
}

bool EntryMeetsSpan(const TDayRecord &aZaznam, TTime aCasOd, TTime aCasDo)
{
    return MinutesMeetSpan(TruncToMinutes(aZaznam.CasOd), TruncToMinutes(aZaznam.CasDo), aCasOd,
                           aCasDo);
}

// --- TMonthArray -------------------------------------------------------------

TMonthArray::TMonthArray(quint16 aDnuPred, quint16 aDnuPo)
    : fMonthRecordArray(std::size_t(aDnuPred) + 31 + aDnuPo), fDnuPred(aDnuPred), fDnuPo(aDnuPo)
{ }

void TMonthArray::Clear()
{
    for (TDayRecordArray &slot : fMonthRecordArray)
        slot.clear();
}

TDayRecordArray TMonthArray::GetDayRecordArray(int aPozice, bool aDenMesice) const
{
    const int slot = SlotOf(aPozice, aDenMesice);
    return IsSlot(slot) ? fMonthRecordArray[std::size_t(slot)] : TDayRecordArray();
}

QList<PDayRecord> TMonthArray::FindDayRecord(int aDen, TTime aCasOd, TTime aCasDo)
{
    QList<PDayRecord> found;
    const int slot = SlotOfDay(aDen);
    if (!IsSlot(slot))
        return found;
    for (TDayRecord &zaznam : fMonthRecordArray[std::size_t(slot)]) {
        if (EntryMeetsSpan(zaznam, aCasOd, aCasDo))
            found.append(&zaznam);
    }
    return found;
}

PDayRecord TMonthArray::FindDayRecord(int aPozice, bool aDenMesice, qint32 aID)
{
    const int slot = SlotOf(aPozice, aDenMesice);
    if (!IsSlot(slot))
        return nullptr;
    TDayRecordArray &zaznamy = fMonthRecordArray[std::size_t(slot)];
    const auto it = std::find_if(zaznamy.begin(), zaznamy.end(),
                                 [aID](const TDayRecord &z) { return z.ID_DIAR == aID; });
    return it == zaznamy.end() ? nullptr : &*it;
}

bool TMonthArray::IsDayEmpty(int aPozice) const
{
    return !IsSlot(aPozice) || fMonthRecordArray[std::size_t(aPozice)].empty();
}

void TMonthArray::AddDayRecord(const TDayRecord &aZaznam, int aPozice)
{
    if (IsSlot(aPozice))
        fMonthRecordArray[std::size_t(aPozice)].push_back(aZaznam);
}

void TMonthArray::RemoveDayRecord(int aPozice, qint32 aID)
{
    if (!IsSlot(aPozice))
        return;
    TDayRecordArray &zaznamy = fMonthRecordArray[std::size_t(aPozice)];
    const auto it = std::find_if(zaznamy.begin(), zaznamy.end(),
                                 [aID](const TDayRecord &z) { return z.ID_DIAR == aID; });
    if (it != zaznamy.end())
        zaznamy.erase(it);
}

bool TMonthArray::RemoveFirst(qint32 aID)
{
    for (int slot = 0; slot < SlotCount(); ++slot) {
        if (FindDayRecord(slot, false, aID)) {
            RemoveDayRecord(slot, aID);
            return true;
        }
    }
    return false;
}

bool TMonthArray::RemoveRecords(QStringList &aList)
{
    bool removed = false;
    for (qsizetype i = aList.size() - 1; i >= 0; --i) {
        bool isNumber = false;
        const qint32 id = aList.at(i).trimmed().toInt(&isNumber);
        // A text that is no key cannot have been shown: it stays in the list.
        if (isNumber && RemoveFirst(id)) {
            aList.removeAt(i);
            removed = true;
        }
    }
    return removed;
}

void TMonthArray::getAktualniPocty(TCalDaysArray &aktMesic) const
{
    for (int den = 1; den <= 31; ++den)
        aktMesic[den] = IsDayEmpty(SlotOfDay(den)) ? 0u : quint32(den);
}

int TMonthArray::getZaznamyCount(int aDen) const
{
    const int slot = SlotOfDay(aDen);
    return IsSlot(slot) ? int(fMonthRecordArray[std::size_t(slot)].size()) : 0;
}

} // namespace oxa
