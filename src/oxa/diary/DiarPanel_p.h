#pragma once

// Internals of the diary panel: not part of the installed API.

#include "oxa/diary/DiarModel_p.h"
#include "oxa/diary/DiarPanel.h"

#include <QPointer>

#include <memory>
#include <optional>

class QItemSelection;

namespace oxa {

class TDiarPanelPrivate
{
public:
    explicit TDiarPanelPrivate(TDiarPanel *panel) : q(panel) { }

    TDayGroupBox *CreateDayGroupBox();
    int BoxCountFor(TDiarSize aSize) const;
    int MonthGridHeight() const;
    TDate FirstShownDate() const;
    void FillBox(TDayGroupBox *aBox);
    void RefreshBoxes();
    void UpdateActiveBox();
    void KeepOneSelection();
    void ListFocused(TDayListView *aList, Qt::FocusReason aReason);
    void ShowRecordChange(TDate aDatum);
    void ShowPeriod(bool aMonthChanged);
    void ShowNewMonth();
    void ShowEntryAdded(const TDayRecord &aZaznam, TDate aDatum);
    void ShowEntryRemoved(qint32 aID, TDate aDatum);

    void SelectBoxDay(TDayGroupBox *aBox);
    void FireDayClick(TDate aDate);
    void MoveSelectionByWheel(int aSteps);
    int DayStep(Word Key) const;
    TDate StepDate(TDate aFrom, int aStep) const;
    bool MoveEntry(const TDayRecord &aZaznam, TDate aTarget, bool aByDrag);
    void MoveEntryByKey(TDayGroupBox *aBox, int aStep);
    void FocusActiveList();

    void ShowEntryMenu(TDayGroupBox *aBox, const QPoint &aViewportPos);
    void OpenEntry(QObject *Sender, const TDayRecord &aZaznam);
    void ListSelectionChanged(TDayListView *aList, const QItemSelection &aSelected,
                              const QItemSelection &aDeselected);
    bool CanDropOn(TDayGroupBox *aBox); // not const: the model hands out its entries
    void DropOn(TDayGroupBox *aBox);

    void EnsureMonthGrid();
    void DiscardMonthGrid();
    void UnhookMonthGrid(TMonthGrid *aGrid);
    void SyncMonthGrid();

    TDiarPanel *const q; // the panel this is the private part of

    // The shown period and the entries; the boxes and the month grid observe it.
    TDiarModel model{TDiarPanel::DnuPred, TDiarPanel::DnuPo};
    QList<TDayGroupBox *> FDayGroupBoxArray; // the boxes of the current view
    QList<TDayGroupBox *> fBoxPool;          // every box created, shown or not
    TDiarNastaveni FDiarNastaveni;
    QPointer<QObject> FApplication;
    int FPopUpIndex = 0;
    QMenu *fPopUpMenu = nullptr;
    QAction *fMenuItemEdit = nullptr;
    QAction *fMenuItemPacient = nullptr;
    QMenu *fMonthGridMenu = nullptr;
    bool FReadOnly = false;
    int fDilekMinut = 15;
    bool fcanCallReanrangeDay = false;
    bool fDblClickOnItem = true;   // the last double click in a list hit an entry
    bool fBoxesStale = true;       // every box needs its date and entries anew
    int fSilentSelection = 0;      // selection changes made by the panel itself
    int fWheelDelta = 0;           // wheel rotation not yet turned into days
    std::optional<qint32> fDragID; // the entry of the drag over a list
    bool fMonthGridDirty = true;   // the grid's cells lag behind the store
    TMonthGrid *FMonthGrid = nullptr;
    // The focus policy of the active box's list; the others take the focus
    // only by a click, so that Tab enters and leaves the panel by the active one.
    Qt::FocusPolicy fListFocusPolicy = Qt::StrongFocus;
    // The list last reported by dayListViewChanged.
    QPointer<TDayListView> fReportedList;
};

} // namespace oxa
