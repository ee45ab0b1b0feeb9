#pragma once

#include "oxa/oxa_export.h"

#include "oxa/diary/DayListView.h"
#include "oxa/diary/DiarShared.h"
#include "oxa/toolkit/WinControl.h"

#include <QFrame>
#include <QList>

#include <functional>
#include <memory>

class QAction;
class QMenu;
class QTreeWidgetItem;

namespace oxa {

class TDiarPanelPrivate;
class TMonthGrid;

// The events of the diary panel. Sender is the panel or the control of the
// panel that fired the event.
using TOnDayClick = std::function<void(QObject *Sender, TDate aDate)>;
using TOnDayDblClick = std::function<void(QObject *Sender, TDate aDate)>;
using TOnDayInsertEvent = std::function<void(QObject *Sender, TDate aDate)>;
// aData points to a copy of the entry; AllowDelete comes in as true.
using TOnDayDeleteEvent = std::function<void(QObject *Sender, PDayRecord aData, bool &AllowDelete)>;
using TOnDayMoveEvent = std::function<void(QObject *Sender, const TDayRecord &OldDayRecord,
                                           const TDayRecord &NewDayRecord)>;
// Allow comes in as true; false keeps the entry where it is.
using TOnDayBeforeMoveEvent = std::function<void(QObject *Sender, const TDayRecord &OldDayRecord,
                                                 const TDayRecord &NewDayRecord, bool &Allow)>;
using TOnDaySelectItemEvent =
    std::function<void(QObject *Sender, QTreeWidgetItem *Item, bool Selected)>;

// The diary control: the entries of a day, a work week, a week or a month,
// shown as day boxes (TDayGroupBox) and, in the month view, as the month
// grid with the selected day's box under it.
//
// The panel keeps the entries of the month of the selected day and of the
// seven days on either side of it (DataDateMin to DataDateMax) in its store.
// When the selected day moves into another month the store is emptied and
// monthYearChanged is emitted: the host loads the new range there, best
// between AddDayRecord_BeginUpdate and AddDayRecord_EndUpdate.
//
// The user moves the selected day with clicks, the wheel and the arrow keys,
// opens entries by double clicks and the popup menu, moves them to another
// day by dragging or with Ctrl+arrow keys and deletes them with Delete; each
// of these reaches the host through the On... events, and the host stores
// the change.
class OXA_EXPORT TDiarPanel : public TWinControl<QFrame>, public TDayGroupBoxHost
{
    Q_OBJECT
    Q_PROPERTY(oxa::TDayListView *DayListView READ DayListView NOTIFY dayListViewChanged)
    Q_PROPERTY(oxa::TDiarSize DiarSize READ DiarSize WRITE SetDiarSize NOTIFY diarSizeChanged)
    Q_PROPERTY(int MonthYear READ MonthYear WRITE SetMonthYear NOTIFY monthYearChanged)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly NOTIFY readOnlyChanged)

public:
    // Days the store keeps before and after the month.
    static constexpr int DnuPred = 7;
    static constexpr int DnuPo = 7;

    explicit TDiarPanel(QWidget *AOwner = nullptr);
    ~TDiarPanel() override;

    // --- the shown period -------------------------------------------------
    TDiarSize DiarSize() const;
    void SetDiarSize(TDiarSize Value);

    // The selected day: its day of the month and its packed month.
    int Day() const;
    qint16 MonthYear() const;
    void SetMonthYear(int Value) { GotoMonth(qint16(Value)); }
    TDate SelectedDay() const;
    // The day before the first day shown and the last day shown
    // (FirstVisibleDate, LastVisibleDate).
    TDate VisibleDateMin() const;
    TDate VisibleDateMax() const;
    // The days whose entries the store keeps.
    TDate DataDateMin() const;
    TDate DataDateMax() const;

    // Shows the period containing the date and selects the date. In the
    // work-week view a Saturday or Sunday selects the Friday before it.
    // Throws EConvertError for a day the month does not have.
    void GotoDate(TDate aValue);
    void GotoDate(int aDay, qint16 aMonthYear);
    // The same day in another month (its last day when the month is shorter).
    void GotoMonth(int aMonth, int aYear);
    void GotoMonth(qint16 aMonthYear);

    // --- the day boxes ----------------------------------------------------
    int DayGroupBoxCount() const;
    TDayGroupBox *DayGroupBox(int Index) const;
    // The box showing the date (the time of day is ignored), or null.
    TDayGroupBox *GetDayGroupBox(TDate aDatum) const;
    TDayGroupBox *GetDayGroupBox(int aDay, qint16 aMonthYear) const;
    // The active box (the selected day's), or null.
    TDayGroupBox *ActiveDayGroupBox() const;
    // The list of the active box.
    TDayListView *DayListView() const;

    // Makes the box at Index show the date and its entries.
    void SetDayGroupBox(int Index, TDate aDatum);
    // Creates (or hides) the boxes the current view needs.
    void GenerujBunky();
    // Gives every box its date of the shown period and its entries.
    void InitDays();
    // Lays the boxes (and the month grid) out in the client area.
    void RearangeDays();

    // --- the entries ------------------------------------------------------
    // Stores a copy of the entry and shows it in its day's box; an entry
    // outside DataDateMin..DataDateMax is ignored. Throws EConvertError when
    // Den and RokMesic make no date.
    void AddDayRecord(const TDayRecord &aZaznam);
    // Between these two, AddDayRecord only stores; EndUpdate shows all.
    void AddDayRecord_BeginUpdate();
    void AddDayRecord_EndUpdate();
    bool IsUpdating() const;
    // Removes the entry with the record's key from the store and its box.
    void RemoveDayRecord(const TDayRecord &aZaznam) override;
    // Puts the record in place of the stored entry with its key (also on
    // another day).
    void ChangeDayRecord(const TDayRecord &aZaznam);
    // As TMonthArray::RemoveRecords; the boxes follow.
    bool RemoveRecords(QStringList &aList);
    // Empties the store and every box.
    void Clear();

    // The entry selected in the active box (valid until the box changes),
    // and its key (-1 when none).
    const TDayRecord *GetSelectedItem() const;
    qint32 GetSelectedItemID() const;
    // Selects the entry with the key in the active box.
    bool SelectItem(qint32 aID);

    // Forwarded to the store; returnRecords asks for the selected day.
    bool IsDayEmpty(TDate aDatum) const;
    void getAktualniPocty(TCalDaysArray &aktMesic) const;
    int getZaznamyCount(int aDen) const;
    QList<PDayRecord> returnRecords(TTime casOd, TTime casDo);
    const TMonthArray &Records() const;

    // --- the month grid ---------------------------------------------------
    // The month grid; null until the month view is first shown.
    TMonthGrid *MonthGrid() const;
    // The times of the month grid's selection; "MonthGrid je nil" without it.
    TTime getMonthGridSelectStartTime() const;
    TTime getMonthGridSelectEndTime() const;
    void PrekresliUdajMesice(TTime CasOd, TTime CasDo);
    void MonthGridInvalidate();
    bool MonthGridShowing() const;
    void AktivujCasMesice(TTime aCas);
    // The menu of the entries under the last double click on the month grid.
    QMenu *MonthGridMenu() const;

    // --- settings ---------------------------------------------------------
    const TDiarNastaveni &DiarNastaveni() const;
    void SetDiarNastaveni(const TDiarNastaveni &aDiarNastaveni);
    // Minutes per slot of the month grid: the settings' minutDilek when it
    // divides an hour, else 15.
    int DilekMinut() const;

    bool ReadOnly() const override;
    void SetReadOnly(bool Value);

    QObject *Application() const;
    void SetApplication(QObject *Application);
    int PopUpIndex() const;
    void SetPopUpIndex(int Value);

    // The entries' popup menu and its two items.
    QMenu *PopupMenu() const;
    QAction *MenuItemEdit() const;
    QAction *MenuItemPacient() const;

    // --- TDayGroupBoxHost -------------------------------------------------
    void DayDeleteEvent(QObject *Sender, PDayRecord aData, bool &AllowDelete) override;
    void OnDayMove(QObject *Sender, Word &Key, TShiftState Shift) override;
    void OnDayResize(QObject *Sender) override;

    // A double click on an entry: OnDoubleClickItemEvent when assigned,
    // otherwise OnChangePacient when the settings ask for it and the contact
    // is a patient, otherwise OnDayEditEvent.
    void DoubleClickDayEvent(QObject *Sender, const TDayRecord &aZaznam);

    TOnDayClick OnDayClick;
    TOnDayDblClick OnDayDblClick;
    TOnDayEditEvent OnDayEditEvent;
    TOnDayInsertEvent OnDayInsertEvent;
    TOnDayDeleteEvent OnDayDeleteEvent;
    // An entry was moved to another day with Ctrl+arrow keys.
    TOnDayMoveEvent OnDayMoveEvent;
    // An entry was moved to another day by drag and drop.
    TOnDayMoveEvent OnDayItemMoveEvent;
    // Asked before either move.
    TOnDayBeforeMoveEvent OnDayItemBeforeMoveEvent;
    TOnDaySelectItemEvent OnDaySelectItemEvent;
    TOnDayEditEvent OnChangePacient;
    TOnDayEditEvent OnDoubleClickItemEvent;

Q_SIGNALS:
    // The selected day moved into another month and the store was emptied:
    // load the entries of DataDateMin..DataDateMax.
    void monthYearChanged(int MonthYear);
    // The view changed (DiarSize).
    void diarSizeChanged(oxa::TDiarSize DiarSize);
    // The active box, and with it the list of DayListView, changed.
    void dayListViewChanged(oxa::TDayListView *DayListView);
    void readOnlyChanged(bool ReadOnly);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

    // Menu handlers.
    void MenuItemEventEditovat();
    void MenuItemEventPacient();
    void fPopUpMenuOnPopUp();

    // Month grid handlers.
    void OnMonthGridSelectCell(QObject *Sender, int ACol, int ARow, bool &CanSelect);
    void OnMonthGridDblClick(QObject *Sender);
    void OnMonthGridKeyDown(QObject *Sender, Word &Key, TShiftState Shift);

private:
    friend class TDiarPanelPrivate;
    std::unique_ptr<TDiarPanelPrivate> const d;
};

} // namespace oxa
