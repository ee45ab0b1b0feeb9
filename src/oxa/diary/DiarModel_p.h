#pragma once

// The diary panel's model: not part of the installed API.

#include "oxa/diary/DayListView.h"
#include "oxa/diary/DiarShared.h"

#include <QObject>
#include <QStringList>

#include <memory>

namespace oxa {

// What the diary panel shows: the selected day with the period around it,
// and the store of the entries of the selected day's month and of the days
// around it. The panel's day boxes and its month grid both observe it, so a
// change of the date or of the entries flows one way: into the model, then
// out to every view.
class TDiarModel : public QObject
{
    Q_OBJECT

public:
    TDiarModel(quint16 aDnuPred, quint16 aDnuPo);

    // --- the shown period -------------------------------------------------
    TDiarSize DiarSize() const { return FDiarSize; }
    // Takes effect with the next GotoDate.
    void SetDiarSize(TDiarSize Value) { FDiarSize = Value; }
    int Day() const { return FDay; }
    TMesicRok MonthYear() const { return FMonthYear; }
    TDate SelectedDay() const { return FSelectedDay; }
    TDate VisibleDateMin() const { return FVisibleDateMin; }
    TDate VisibleDateMax() const { return FVisibleDateMax; }
    TDate DataDateMin() const;
    TDate DataDateMax() const;

    // Selects the date (in the work week a Saturday or Sunday selects the
    // Friday before it) and reports the period by periodChanged, also when it
    // stays the same. A new month empties the store first and is reported
    // by monthChanged last.
    void GotoDate(TDate aDatum);

    // --- the store --------------------------------------------------------
    const TMonthArray &Records() const { return FRecords; }
    TMonthArray &Records() { return FRecords; }
    // The store's slot of a date: slots before the month count back from
    // its first day, slots after it from the 32nd slot.
    int SlotOfDate(TDate aDatum) const;
    // A copy of the entry goes to its day's slot; an entry outside the
    // stored days is ignored. EConvertError when Den and RokMesic make no date.
    bool Add(const TDayRecord &aZaznam);
    // Removes the stored entry with the key; false when there is none.
    bool Remove(qint32 aID);
    PDayRecord Find(qint32 aID);
    bool RemoveRecords(QStringList &aList);
    void Clear();

    // Between these two the entries change without entryAdded and
    // entryRemoved; EndUpdate reports them all by entriesReset.
    void BeginUpdate() { ++FUpdating; }
    void EndUpdate();
    bool IsUpdating() const { return FUpdating > 0; }

    static TDate RecordDate(const TDayRecord &aZaznam);

Q_SIGNALS:
    // The selected day (and the period around it) was set; monthChanged
    // when it is in another month than before and the store was emptied.
    void periodChanged(bool monthChanged);
    // After periodChanged, when the month changed: every observer shows the
    // new month, the store is empty and waits for the month's entries.
    void monthChanged();
    void entryAdded(const oxa::TDayRecord &aZaznam, double aDatum);
    void entryRemoved(qint32 aID, double aDatum);
    // Any number of entries changed.
    void entriesReset();

private:
    int FDay = 0;
    TMesicRok FMonthYear;
    TDiarSize FDiarSize = dsWeek;
    TDate FSelectedDay = 0;
    TDate FVisibleDateMin = 0;
    TDate FVisibleDateMax = 0;
    TMonthArray FRecords;
    int FUpdating = 0;
};

} // namespace oxa
