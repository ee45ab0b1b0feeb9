#include "oxa/diary/DiarModel_p.h"

#include <cmath>

namespace oxa {

namespace {

int WholeDays(TDate aDatum)
{
    return int(std::floor(aDatum));
}

// A working day of the same ISO week: Saturday and Sunday become its Friday.
TDate WorkingDayOf(TDate aDatum)
{
    const int dow = DayOfTheWeek(aDatum);
    return dow >= 6 ? aDatum - (dow - 5) : aDatum;
}

} // namespace

TDiarModel::TDiarModel(quint16 aDnuPred, quint16 aDnuPo) : FRecords(aDnuPred, aDnuPo) { }

TDate TDiarModel::DataDateMin() const
{
    return FMonthYear.FirstDay() - FRecords.DnuPred();
}

TDate TDiarModel::DataDateMax() const
{
    return FMonthYear.LastDay() + FRecords.DnuPo();
}

void TDiarModel::GotoDate(TDate aDatum)
{
    const TDate datum = FDiarSize == dsWorkWeek ? WorkingDayOf(aDatum) : aDatum;
    int year = 0, month = 0, day = 0;
    DecodeDate(datum, year, month, day);
    const TMesicRok mesic = TMesicRok::FromYearMonth(year, month);
    const bool newMonth = mesic != FMonthYear;

    FDay = day;
    FMonthYear = mesic;
    FSelectedDay = datum;
    FVisibleDateMin = FirstVisibleDate(datum, FDiarSize);
    FVisibleDateMax = LastVisibleDate(datum, FDiarSize);
    // The store's slots count from the month: the entries of the old month
    // are no longer where they belong.
    if (newMonth)
        FRecords.Clear();
    Q_EMIT periodChanged(newMonth);
    if (newMonth)
        Q_EMIT monthChanged();
}

int TDiarModel::SlotOfDate(TDate aDatum) const
{
    const int first = WholeDays(FMonthYear.FirstDay());
    const int last = WholeDays(FMonthYear.LastDay());
    const int day = WholeDays(aDatum);
    const int pred = FRecords.DnuPred();
    if (day < first)
        return pred - (first - day);
    if (day <= last)
        return pred + (day - first);
    return pred + 31 + (day - last - 1);
}

TDate TDiarModel::RecordDate(const TDayRecord &aZaznam)
{
    return TMesicRok(aZaznam.RokMesic).Date(aZaznam.Den);
}

bool TDiarModel::Add(const TDayRecord &aZaznam)
{
    const TDate datum = RecordDate(aZaznam);
    const int slot = SlotOfDate(datum);
    if (slot < 0 || slot >= FRecords.SlotCount())
        return false;
    FRecords.AddDayRecord(aZaznam, slot);
    if (!FUpdating)
        Q_EMIT entryAdded(aZaznam, datum);
    return true;
}

PDayRecord TDiarModel::Find(qint32 aID)
{
    for (int slot = 0; slot < FRecords.SlotCount(); ++slot) {
        if (PDayRecord zaznam = FRecords.FindDayRecord(slot, false, aID))
            return zaznam;
    }
    return nullptr;
}

bool TDiarModel::Remove(qint32 aID)
{
    for (int slot = 0; slot < FRecords.SlotCount(); ++slot) {
        if (PDayRecord zaznam = FRecords.FindDayRecord(slot, false, aID)) {
            const TDate datum = RecordDate(*zaznam);
            FRecords.RemoveDayRecord(slot, aID);
            if (!FUpdating)
                Q_EMIT entryRemoved(aID, datum);
            return true;
        }
    }
    return false;
}

bool TDiarModel::RemoveRecords(QStringList &aList)
{
    const bool removed = FRecords.RemoveRecords(aList);
    if (removed && !FUpdating)
        Q_EMIT entriesReset();
    return removed;
}

void TDiarModel::Clear()
{
    FRecords.Clear();
    if (!FUpdating)
        Q_EMIT entriesReset();
}

void TDiarModel::EndUpdate()
{
    if (FUpdating == 0 || --FUpdating > 0)
        return;
    Q_EMIT entriesReset();
}

} // namespace oxa
