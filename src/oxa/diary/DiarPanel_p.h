#pragma once

// Internals of the diary panel: not part of the installed API.

#include "oxa/diary/DiarModel_p.h"
#include "oxa/diary/DiarPanel.h"

#include <QPointer>

#include <memory>
#include <optional>

namespace oxa {

class TDiarPanelPrivate
{
public:
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
