#pragma once

#include "oxa/oxa_export.h"

#include "oxa/diary/DiarShared.h"
#include "oxa/toolkit/WinControl.h"

#include <QCalendarWidget>
#include <QDate>
#include <QList>
#include <QSet>

#include <functional>

namespace oxa {

// Asks the host for the bold days of one month: bit d - 1 of MonthBoldInfo
// set shows day d in bold. MonthBoldInfo comes in as 0.
using TOnEnhancedGetMonthInfoEvent =
    std::function<void(QObject *Sender, quint32 Month, quint32 Year, quint32 &MonthBoldInfo)>;
// The base calendar's question for the month in focus only.
using TOnGetMonthInfoEvent =
    std::function<void(QObject *Sender, quint32 Month, quint32 &MonthBoldInfo)>;

// A month calendar whose host marks days in bold in every month it shows:
// the previous, the shown and the next month, whose days fill the first and
// the last rows. The host is asked whenever the shown page changes, when the
// calendar is shown and when UpdateBoldDays is called.
class OXA_EXPORT TEnhancedMonthCalendar : public TWinControl<QCalendarWidget>
{
    Q_OBJECT
    Q_PROPERTY(double Date READ Date WRITE SetDate NOTIFY dateChanged USER true)
    Q_PROPERTY(double MinDate READ MinDate WRITE SetMinDate NOTIFY minDateChanged)
    Q_PROPERTY(double MaxDate READ MaxDate WRITE SetMaxDate NOTIFY maxDateChanged)
    Q_PROPERTY(bool WeekNumbers READ WeekNumbers WRITE SetWeekNumbers NOTIFY weekNumbersChanged)

public:
    explicit TEnhancedMonthCalendar(QWidget *aOwner = nullptr);

    TDate Date() const;
    void SetDate(TDate Value);
    TDate MinDate() const;
    void SetMinDate(TDate Value);
    TDate MaxDate() const;
    void SetMaxDate(TDate Value);
    bool WeekNumbers() const;
    void SetWeekNumbers(bool Value);

    // Asks the host again for the bold days of the months shown.
    void UpdateBoldDays();
    // The days currently drawn in bold.
    QList<QDate> BoldDates() const;

    TOnEnhancedGetMonthInfoEvent OnEnhancedGetMonthInfoEvent;
    // Kept for hosts that assign it; the calendar asks only
    // OnEnhancedGetMonthInfoEvent, so on its own it bolds nothing.
    TOnGetMonthInfoEvent OnGetMonthInfo;

Q_SIGNALS:
    void dateChanged(double Date);
    void minDateChanged(double MinDate);
    void maxDateChanged(double MaxDate);
    void weekNumbersChanged(bool WeekNumbers);

protected:
    // Fills one bold-day mask per month, starting with aMonth of aYear: all
    // cleared, then each answered by OnEnhancedGetMonthInfoEvent when assigned.
    virtual void GetDayState(quint32 aMonth, quint32 aYear, QList<quint32> &aDayState);

    void showEvent(QShowEvent *event) override;

private:
    void ReportRange(const QDate &aOldMin, const QDate &aOldMax);
    void ApplyBoldDays(int aMonth, int aYear, const QList<quint32> &aDayState);

    QSet<QDate> FBoldDates;
};

// Registers TEnhancedMonthCalendar on the palette page "Oxa Diar".
OXA_EXPORT void RegisterEnhancedMonthCalendar();

} // namespace oxa
