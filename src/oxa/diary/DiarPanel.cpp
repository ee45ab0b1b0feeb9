#include "oxa/diary/DiarPanel_p.h"

#include "oxa/diary/DiarModel_p.h"
#include "oxa/diary/MonthGrid.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/GeometryScale.h"

#include <QAction>
#include <QCursor>
#include <QDropEvent>
#include <QItemSelectionModel>
#include <QMenu>
#include <QMouseEvent>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace oxa {

namespace {

// A box lower than this (at the geometry scale) is not worth laying out
// below the month grid.
constexpr int MinBoxHeight = 90;
// One notch of a mouse wheel.
constexpr int WheelStep = 120;

int WholeDays(TDate aDatum)
{
    return int(std::floor(aDatum));
}

bool IsWeekend(TDate aDatum)
{
    return DayOfTheWeek(aDatum) >= 6;
}

// The caption of an entry in the month grid's menu: "08:30-09:15 Popis".
// An ampersand of the description is shown, not taken for a mnemonic.
QString MenuCaption(const TDayRecord &aZaznam)
{
    QString popis = aZaznam.Popis.Text();
    popis.replace(QLatin1Char('&'), QLatin1String("&&"));
    return FormatDateTime(QStringLiteral("hh:mm"), aZaznam.CasOd) +
        FormatDateTime(QStringLiteral("\"-\"hh:mm\" \""), aZaznam.CasDo) + popis;
}

} // namespace

// --- construction --------------------------------------------------------------

TDiarPanel::TDiarPanel(QWidget *AOwner)
    : TWinControl<QFrame>(AOwner), d(std::make_unique<TDiarPanelPrivate>())
{
    setMinimumSize(120, 80);

    d->fPopUpMenu = new QMenu(this);
    d->fPopUpMenu->setObjectName(QStringLiteral("PopupMenu"));
    d->fMenuItemEdit = d->fPopUpMenu->addAction(QStringLiteral("Editovat"));
    d->fMenuItemEdit->setObjectName(QStringLiteral("MenuItemEdit"));
    d->fMenuItemPacient = d->fPopUpMenu->addAction(QStringLiteral("Přejít na pacienta"));
    d->fMenuItemPacient->setObjectName(QStringLiteral("MenuItemPacient"));
    connect(d->fMenuItemEdit, &QAction::triggered, this, [this] { MenuItemEventEditovat(); });
    connect(d->fMenuItemPacient, &QAction::triggered, this, [this] { MenuItemEventPacient(); });
    connect(d->fPopUpMenu, &QMenu::aboutToShow, this, [this] { fPopUpMenuOnPopUp(); });

    d->fMonthGridMenu = new QMenu(this);
    d->fMonthGridMenu->setObjectName(QStringLiteral("MonthGridMenu"));

    connect(&d->model, &TDiarModel::periodChanged, this,
            [this](bool aMonthChanged) { ShowPeriod(aMonthChanged); });
    connect(&d->model, &TDiarModel::monthChanged, this, [this] { ShowNewMonth(); });
    connect(&d->model, &TDiarModel::entryAdded, this,
            [this](const TDayRecord &aZaznam, double aDatum) { ShowEntryAdded(aZaznam, aDatum); });
    connect(&d->model, &TDiarModel::entryRemoved, this,
            [this](qint32 aID, double aDatum) { ShowEntryRemoved(aID, aDatum); });
    connect(&d->model, &TDiarModel::entriesReset, this, [this] { RefreshBoxes(); });
    // Queued: the month grid takes its new row heights from the same signal.
    connect(
        TGeometryScale::Instance(), &TGeometryScale::factorChanged, this,
        [this] { RearangeDays(); }, Qt::QueuedConnection);

    GenerujBunky();
    GotoDate(Date());
    d->fcanCallReanrangeDay = true;
    RearangeDays();
}

TDiarPanel::~TDiarPanel()
{
    // The boxes are freed with the panel's children, after this part of it.
    for (TDayGroupBox *box : std::as_const(d->fBoxPool)) {
        box->removeEventFilter(this);
        box->DayListView()->removeEventFilter(this);
        box->DayListView()->viewport()->removeEventFilter(this);
        box->DayListView()->selectionModel()->disconnect(this);
    }
    // The grid is freed with the children too, when the model has gone.
    if (d->FMonthGrid)
        UnhookMonthGrid(d->FMonthGrid);
}

// --- accessors -----------------------------------------------------------------

TDiarSize TDiarPanel::DiarSize() const
{
    return d->model.DiarSize();
}
int TDiarPanel::Day() const
{
    return d->model.Day();
}
qint16 TDiarPanel::MonthYear() const
{
    return d->model.MonthYear().Packed();
}
TDate TDiarPanel::SelectedDay() const
{
    return d->model.SelectedDay();
}
TDate TDiarPanel::VisibleDateMin() const
{
    return d->model.VisibleDateMin();
}
TDate TDiarPanel::VisibleDateMax() const
{
    return d->model.VisibleDateMax();
}
int TDiarPanel::DayGroupBoxCount() const
{
    return int(d->FDayGroupBoxArray.size());
}
bool TDiarPanel::IsUpdating() const
{
    return d->model.IsUpdating();
}
const TMonthArray &TDiarPanel::Records() const
{
    return d->model.Records();
}
QMenu *TDiarPanel::MonthGridMenu() const
{
    return d->fMonthGridMenu;
}
const TDiarNastaveni &TDiarPanel::DiarNastaveni() const
{
    return d->FDiarNastaveni;
}
int TDiarPanel::DilekMinut() const
{
    return d->fDilekMinut;
}
bool TDiarPanel::ReadOnly() const
{
    return d->FReadOnly;
}
void TDiarPanel::SetReadOnly(bool Value)
{
    if (Value == d->FReadOnly)
        return;
    d->FReadOnly = Value;
    Q_EMIT readOnlyChanged(Value);
}
QObject *TDiarPanel::Application() const
{
    return d->FApplication;
}
void TDiarPanel::SetApplication(QObject *Application)
{
    d->FApplication = Application;
}
int TDiarPanel::PopUpIndex() const
{
    return d->FPopUpIndex;
}
void TDiarPanel::SetPopUpIndex(int Value)
{
    d->FPopUpIndex = Value;
}
QMenu *TDiarPanel::PopupMenu() const
{
    return d->fPopUpMenu;
}
QAction *TDiarPanel::MenuItemEdit() const
{
    return d->fMenuItemEdit;
}
QAction *TDiarPanel::MenuItemPacient() const
{
    return d->fMenuItemPacient;
}

TDayGroupBox *TDiarPanel::CreateDayGroupBox()
{
    auto *box = new TDayGroupBox(this);
    TDayListView *list = box->DayListView();
    box->OnSelectDayItem = [this, box](QObject *, int) { SelectBoxDay(box); };
    box->OnDoubleClickDayItem = [this](QObject *Sender, const TDayRecord &aZaznam) {
        DoubleClickDayEvent(Sender, aZaznam);
    };
    box->installEventFilter(this);
    list->installEventFilter(this);
    list->viewport()->installEventFilter(this);
    d->fListFocusPolicy = list->focusPolicy();

    list->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(list, &QWidget::customContextMenuRequested, this,
            [this, box](const QPoint &pos) { ShowEntryMenu(box, pos); });
    connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this, list](const QItemSelection &selected, const QItemSelection &deselected) {
                ListSelectionChanged(list, selected, deselected);
            });

    list->OnStartDrag = [this](QObject *, TTextDragObject &DragObject, bool &Allow) {
        Allow = !d->FReadOnly && TDayListView::ItemRecord(DragObject.DataItem);
    };
    list->OnDragOver = [this, box](QObject *, QObject *, const QPoint &, bool &Accept) {
        Accept = CanDropOn(box);
    };
    list->OnDragDrop = [this, box](QObject *, QObject *, const QPoint &) { DropOn(box); };
    d->fBoxPool.append(box);
    return box;
}

// --- the shown period ----------------------------------------------------------

int TDiarPanel::BoxCountFor(TDiarSize aSize) const
{
    switch (aSize) {
    case dsWorkWeek:
        return 5;
    case dsWeek:
        return 7;
    case dsDay:
    case dsMonth:
        break;
    }
    return 1;
}

void TDiarPanel::SetDiarSize(TDiarSize Value)
{
    if (Value == d->model.DiarSize())
        return;
    d->model.SetDiarSize(Value);
    GenerujBunky();
    if (Value == dsMonth) {
        EnsureMonthGrid();
        d->FMonthGrid->show();
    } else if (d->FMonthGrid) {
        d->FMonthGrid->hide();
    }
    GotoDate(d->model.SelectedDay());
    RearangeDays();
    Q_EMIT diarSizeChanged(Value);
}

TDate TDiarPanel::DataDateMin() const
{
    return d->model.DataDateMin();
}

TDate TDiarPanel::DataDateMax() const
{
    return d->model.DataDateMax();
}

void TDiarPanel::GotoDate(TDate aValue)
{
    d->model.GotoDate(DateOf(aValue));
}

void TDiarPanel::GotoDate(int aDay, qint16 aMonthYear)
{
    d->model.GotoDate(TMesicRok(aMonthYear).Date(aDay));
}

// The model moved: the boxes show the new period; the month grid follows
// through its own connections.
void TDiarPanel::ShowPeriod(bool aMonthChanged)
{
    if (aMonthChanged)
        d->fBoxesStale = true;
    InitDays();
}

// Reported once every view shows the new month: the host loads its entries.
void TDiarPanel::ShowNewMonth()
{
    // Months differ in length, and so does the month grid.
    if (d->model.DiarSize() == dsMonth)
        RearangeDays();
    Q_EMIT monthYearChanged(d->model.MonthYear().Packed());
}

void TDiarPanel::GotoMonth(int aMonth, int aYear)
{
    if (aMonth < 1 || aMonth > 12)
        throw EConvertError(QStringLiteral("Neplatný měsíc %1").arg(aMonth));
    const int day = std::min(std::max(d->model.Day(), 1), DaysInAMonth(aYear, aMonth));
    GotoDate(day, TMesicRok::FromYearMonth(aYear, aMonth).Packed());
}

void TDiarPanel::GotoMonth(qint16 aMonthYear)
{
    const TMesicRok mesic(aMonthYear);
    GotoMonth(mesic.Month(), mesic.Year());
}

// --- the day boxes -------------------------------------------------------------

TDayGroupBox *TDiarPanel::DayGroupBox(int Index) const
{
    return Index >= 0 && Index < d->FDayGroupBoxArray.size() ? d->FDayGroupBoxArray.at(Index)
                                                             : nullptr;
}

TDayGroupBox *TDiarPanel::GetDayGroupBox(TDate aDatum) const
{
    for (TDayGroupBox *box : d->FDayGroupBoxArray) {
        if (SameDate(box->Date(), aDatum))
            return box;
    }
    return nullptr;
}

TDayGroupBox *TDiarPanel::GetDayGroupBox(int aDay, qint16 aMonthYear) const
{
    TDate datum = 0;
    if (!TMesicRok(aMonthYear).TryDate(aDay, datum))
        return nullptr;
    return GetDayGroupBox(datum);
}

TDayGroupBox *TDiarPanel::ActiveDayGroupBox() const
{
    return GetDayGroupBox(d->model.SelectedDay());
}

TDayListView *TDiarPanel::DayListView() const
{
    TDayGroupBox *box = ActiveDayGroupBox();
    return box ? box->DayListView() : nullptr;
}

void TDiarPanel::GenerujBunky()
{
    const int count = BoxCountFor(d->model.DiarSize());
    while (d->fBoxPool.size() < count)
        CreateDayGroupBox();
    d->FDayGroupBoxArray = d->fBoxPool.mid(0, count);
    // Boxes the view does not need wait hidden and empty for another view.
    for (int i = 0; i < d->fBoxPool.size(); ++i) {
        TDayGroupBox *box = d->fBoxPool.at(i);
        box->setVisible(i < count);
        if (i >= count && box->DayListView()->Count() > 0) {
            ++d->fSilentSelection;
            box->Clear();
            --d->fSilentSelection;
        }
    }
    d->fBoxesStale = true;
}

TDate TDiarPanel::FirstShownDate() const
{
    switch (d->model.DiarSize()) {
    case dsWorkWeek:
    case dsWeek:
        return d->model.VisibleDateMin() + 1; // the Monday
    case dsDay:
    case dsMonth:
        break;
    }
    return d->model.SelectedDay();
}

void TDiarPanel::InitDays()
{
    const TDate first = FirstShownDate();
    for (int i = 0; i < d->FDayGroupBoxArray.size(); ++i) {
        const TDate datum = first + i;
        if (d->fBoxesStale || !SameDate(d->FDayGroupBoxArray.at(i)->Date(), datum))
            SetDayGroupBox(i, datum);
    }
    d->fBoxesStale = false;
    UpdateActiveBox();
}

void TDiarPanel::SetDayGroupBox(int Index, TDate aDatum)
{
    TDayGroupBox *box = DayGroupBox(Index);
    if (!box)
        throw EInvalidOperation(QStringLiteral("Den %1 panel nezobrazuje").arg(Index));
    box->SetDate(DateOf(aDatum));
    FillBox(box);
    box->SetActive(SameDate(aDatum, d->model.SelectedDay()));
}

void TDiarPanel::UpdateActiveBox()
{
    for (TDayGroupBox *box : std::as_const(d->FDayGroupBoxArray)) {
        const bool active = SameDate(box->Date(), d->model.SelectedDay());
        if (box->Active() != active)
            box->SetActive(active);
    }
    KeepOneSelection();
    TDayListView *list = DayListView();
    if (list != d->fReportedList) {
        d->fReportedList = list;
        Q_EMIT dayListViewChanged(list);
    }
}

// One selection per panel: only the active box's list shows a selected
// entry, only that list is a tab stop, and a focus on another day list moves
// to it. The keys reach the focused list and the menu asks the active one,
// so every command acts on the entry the user sees selected.
void TDiarPanel::KeepOneSelection()
{
    TDayListView *active = DayListView();
    for (TDayGroupBox *box : std::as_const(d->fBoxPool)) {
        TDayListView *list = box->DayListView();
        list->setFocusPolicy(list == active ? d->fListFocusPolicy : Qt::ClickFocus);
        if (list == active)
            continue;
        // The host hears of the deselection: its detail must not keep it.
        if (list->selectionModel()->hasSelection())
            list->clearSelection();
        if (list->currentItem())
            list->setCurrentItem(nullptr, 0, QItemSelectionModel::NoUpdate);
    }
    FocusActiveList();
}

// A day list took the focus (a click, or the host's setFocus): its day
// becomes the selected one.
void TDiarPanel::ListFocused(TDayListView *aList, Qt::FocusReason aReason)
{
    TDayGroupBox *box = aList->DayGroupBox();
    if (!box || box->Active() || !d->FDayGroupBoxArray.contains(box))
        return;
    GotoDate(box->Date());
    // A click reports its day when the button is released.
    if (aReason != Qt::MouseFocusReason)
        FireDayClick(d->model.SelectedDay());
}

void TDiarPanel::RearangeDays()
{
    if (!d->fcanCallReanrangeDay)
        return;
    QRect area = contentsRect();
    if (d->model.DiarSize() == dsMonth && d->FMonthGrid) {
        int gridHeight = MonthGridHeight();
        const int minBoxHeight = ScalePixels(MinBoxHeight);
        if (area.height() - gridHeight < minBoxHeight)
            gridHeight = std::max(area.height() * 2 / 3, area.height() - minBoxHeight);
        d->FMonthGrid->setGeometry(area.left(), area.top(), area.width(), gridHeight);
        area.setTop(area.top() + gridHeight);
    }
    // The days side by side, the width shared out evenly.
    const int count = int(d->FDayGroupBoxArray.size());
    int left = area.left();
    for (int i = 0; i < count; ++i) {
        const int width = area.width() / count + (i < area.width() % count ? 1 : 0);
        d->FDayGroupBoxArray.at(i)->setGeometry(left, area.top(), width, area.height());
        left += width;
    }
}

// The height that shows every day of the month without a vertical scroll bar.
int TDiarPanel::MonthGridHeight() const
{
    const int line = d->FMonthGrid->GridLineWidth();
    int height = 2 * d->FMonthGrid->frameWidth() +
        style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, d->FMonthGrid);
    for (int row = 0; row < d->FMonthGrid->RowCount(); ++row)
        height += d->FMonthGrid->RowHeights(row) + line;
    return height;
}

void TDiarPanel::resizeEvent(QResizeEvent *event)
{
    TWinControl<QFrame>::resizeEvent(event);
    RearangeDays();
}

// --- the store -----------------------------------------------------------------

void TDiarPanel::FillBox(TDayGroupBox *aBox)
{
    TDayListView *list = aBox->DayListView();
    const TDayRecord *selected = list->SelectedRecord();
    const qint32 selectedID = selected ? selected->ID_DIAR : -1;
    ++d->fSilentSelection;
    list->setUpdatesEnabled(false);
    list->Clear();
    if (!d->model.IsUpdating()) {
        for (const TDayRecord &zaznam :
             d->model.Records().GetDayRecordArray(d->model.SlotOfDate(aBox->Date()), false))
            list->AddItem(zaznam);
        if (selectedID >= 0) {
            if (QTreeWidgetItem *item = list->topLevelItem(list->VratIndexPrvku(selectedID)))
                list->setCurrentItem(item);
        }
    }
    list->setUpdatesEnabled(true);
    --d->fSilentSelection;
}

void TDiarPanel::RefreshBoxes()
{
    for (TDayGroupBox *box : std::as_const(d->FDayGroupBoxArray))
        FillBox(box);
    UpdateActiveBox();
}

void TDiarPanel::ShowRecordChange(TDate aDatum)
{
    if (!d->model.MonthYear().Contains(aDatum))
        return;
    if (!MonthGridShowing()) {
        d->fMonthGridDirty = true;
        return;
    }
    int year = 0, month = 0, day = 0;
    DecodeDate(aDatum, year, month, day);
    d->FMonthGrid->InitVykreslovani(day);
    d->FMonthGrid->InvalidateRow(day);
}

void TDiarPanel::ShowEntryAdded(const TDayRecord &aZaznam, TDate aDatum)
{
    if (TDayGroupBox *box = GetDayGroupBox(aDatum)) {
        ++d->fSilentSelection;
        box->DayListView()->AddItem(aZaznam);
        --d->fSilentSelection;
    }
}

void TDiarPanel::ShowEntryRemoved(qint32 aID, TDate aDatum)
{
    if (TDayGroupBox *box = GetDayGroupBox(aDatum)) {
        ++d->fSilentSelection;
        box->DayListView()->RemoveItem(aID);
        --d->fSilentSelection;
    }
}

void TDiarPanel::AddDayRecord(const TDayRecord &aZaznam)
{
    d->model.Add(aZaznam);
}

void TDiarPanel::AddDayRecord_BeginUpdate()
{
    d->model.BeginUpdate();
}

void TDiarPanel::AddDayRecord_EndUpdate()
{
    d->model.EndUpdate();
}

void TDiarPanel::RemoveDayRecord(const TDayRecord &aZaznam)
{
    d->model.Remove(aZaznam.ID_DIAR);
}

void TDiarPanel::ChangeDayRecord(const TDayRecord &aZaznam)
{
    const bool wasSelected = GetSelectedItemID() == aZaznam.ID_DIAR;
    RemoveDayRecord(aZaznam);
    AddDayRecord(aZaznam);
    if (wasSelected)
        SelectItem(aZaznam.ID_DIAR);
}

bool TDiarPanel::RemoveRecords(QStringList &aList)
{
    return d->model.RemoveRecords(aList);
}

void TDiarPanel::Clear()
{
    d->model.Clear();
}

const TDayRecord *TDiarPanel::GetSelectedItem() const
{
    const TDayListView *list = DayListView();
    return list ? list->SelectedRecord() : nullptr;
}

qint32 TDiarPanel::GetSelectedItemID() const
{
    const TDayRecord *zaznam = GetSelectedItem();
    return zaznam ? zaznam->ID_DIAR : -1;
}

bool TDiarPanel::SelectItem(qint32 aID)
{
    TDayListView *list = DayListView();
    QTreeWidgetItem *item = list ? list->topLevelItem(list->VratIndexPrvku(aID)) : nullptr;
    if (!item)
        return false;
    ++d->fSilentSelection;
    list->setCurrentItem(item);
    --d->fSilentSelection;
    // The active box may have changed without the period moving.
    UpdateActiveBox();
    return true;
}

bool TDiarPanel::IsDayEmpty(TDate aDatum) const
{
    return d->model.Records().IsDayEmpty(d->model.SlotOfDate(aDatum));
}

void TDiarPanel::getAktualniPocty(TCalDaysArray &aktMesic) const
{
    d->model.Records().getAktualniPocty(aktMesic);
}

int TDiarPanel::getZaznamyCount(int aDen) const
{
    return d->model.Records().getZaznamyCount(aDen);
}

QList<PDayRecord> TDiarPanel::returnRecords(TTime casOd, TTime casDo)
{
    return d->model.Records().FindDayRecord(d->model.Day(), casOd, casDo);
}

// --- settings ------------------------------------------------------------------

void TDiarPanel::SetDiarNastaveni(const TDiarNastaveni &aDiarNastaveni)
{
    d->FDiarNastaveni = aDiarNastaveni;
    const int minut = aDiarNastaveni.minutDilek;
    const int dilek = minut > 0 && minut <= 60 && 60 % minut == 0 ? minut : 15;
    if (dilek != d->fDilekMinut) {
        d->fDilekMinut = dilek;
        // The grid's columns are fixed by its slot length: a new grid.
        DiscardMonthGrid();
        if (d->model.DiarSize() == dsMonth) {
            EnsureMonthGrid();
            d->FMonthGrid->show();
            RearangeDays();
        }
    }
    if (d->FMonthGrid) {
        d->FMonthGrid->SetDiarNastaveni(d->FDiarNastaveni);
        d->fMonthGridDirty = true;
        SyncMonthGrid();
    }
}

// --- the month grid ------------------------------------------------------------

TMonthGrid *TDiarPanel::MonthGrid() const
{
    return d->FMonthGrid;
}

void TDiarPanel::EnsureMonthGrid()
{
    if (d->FMonthGrid)
        return;
    auto *grid = new TMonthGrid(this, d->fDilekMinut);
    d->FMonthGrid = grid;
    grid->setObjectName(QStringLiteral("MonthGrid"));
    grid->SetDiarNastaveni(d->FDiarNastaveni);
    grid->SetZaznamy(&d->model.Records());
    grid->OnSelectCell = [this](QObject *Sender, int ACol, int ARow, bool &CanSelect) {
        OnMonthGridSelectCell(Sender, ACol, ARow, CanSelect);
    };
    grid->OnClick = [this](QObject *Sender) {
        if (Sender == d->FMonthGrid)
            FireDayClick(d->model.SelectedDay());
    };
    grid->OnDblClick = [this](QObject *Sender) { OnMonthGridDblClick(Sender); };
    grid->OnKeyDown = [this](QObject *Sender, Word &Key, TShiftState Shift) {
        OnMonthGridKeyDown(Sender, Key, Shift);
    };
    // The grid observes the model on its own; these end with the grid.
    connect(&d->model, &TDiarModel::periodChanged, grid, [this](bool aMonthChanged) {
        if (aMonthChanged)
            d->fMonthGridDirty = true;
        SyncMonthGrid();
    });
    connect(&d->model, &TDiarModel::entryAdded, grid,
            [this](const TDayRecord &, double aDatum) { ShowRecordChange(aDatum); });
    connect(&d->model, &TDiarModel::entryRemoved, grid,
            [this](qint32, double aDatum) { ShowRecordChange(aDatum); });
    connect(&d->model, &TDiarModel::entriesReset, grid, [this] {
        d->fMonthGridDirty = true;
        SyncMonthGrid();
    });
    d->fMonthGridDirty = true;
    SyncMonthGrid();
}

void TDiarPanel::DiscardMonthGrid()
{
    if (!d->FMonthGrid)
        return;
    TMonthGrid *grid = d->FMonthGrid;
    d->FMonthGrid = nullptr;
    grid->hide();
    UnhookMonthGrid(grid);
    // It may be the grid whose handler got here.
    grid->deleteLater();
}

// Cuts the grid off the panel and its model.
void TDiarPanel::UnhookMonthGrid(TMonthGrid *aGrid)
{
    d->model.disconnect(aGrid);
    aGrid->SetZaznamy(nullptr);
    aGrid->OnSelectCell = nullptr;
    aGrid->OnClick = nullptr;
    aGrid->OnDblClick = nullptr;
    aGrid->OnKeyDown = nullptr;
}

// Brings the grid to the selected day and, when the store changed, rebuilds
// its cells. A grid that is not shown waits until it is.
void TDiarPanel::SyncMonthGrid()
{
    if (!d->FMonthGrid || d->model.DiarSize() != dsMonth)
        return;
    // A date the grid already shows (its own row) changes nothing.
    d->FMonthGrid->SetDatum(d->model.SelectedDay());
    if (d->fMonthGridDirty && !d->model.IsUpdating()) {
        d->fMonthGridDirty = false;
        d->FMonthGrid->Init();
        d->FMonthGrid->InvalidateGrid();
    }
}

TTime TDiarPanel::getMonthGridSelectStartTime() const
{
    if (!d->FMonthGrid)
        throw Exception(QStringLiteral("MonthGrid je nil"));
    return d->FMonthGrid->GetSelCellStartTime();
}

TTime TDiarPanel::getMonthGridSelectEndTime() const
{
    if (!d->FMonthGrid)
        throw Exception(QStringLiteral("MonthGrid je nil"));
    return d->FMonthGrid->GetSelCellEndTime();
}

void TDiarPanel::PrekresliUdajMesice(TTime CasOd, TTime CasDo)
{
    if (d->FMonthGrid)
        d->FMonthGrid->PrekresliUdaj(CasOd, CasDo);
}

void TDiarPanel::MonthGridInvalidate()
{
    if (d->FMonthGrid)
        d->FMonthGrid->prekresliGrid();
}

bool TDiarPanel::MonthGridShowing() const
{
    return d->FMonthGrid && d->model.DiarSize() == dsMonth && !d->FMonthGrid->isHidden();
}

void TDiarPanel::AktivujCasMesice(TTime aCas)
{
    if (d->FMonthGrid)
        d->FMonthGrid->AktivujCas(aCas);
}

// The grid's row is the selected day: a row chosen by the user, with the
// mouse, the keys or the wheel, selects its day.
void TDiarPanel::OnMonthGridSelectCell(QObject *Sender, int ACol, int ARow, bool &CanSelect)
{
    Q_UNUSED(ACol);
    Q_UNUSED(CanSelect);
    if (Sender != d->FMonthGrid || ARow < 1 || ARow == d->model.Day())
        return;
    GotoDate(ARow, d->model.MonthYear().Packed());
}

void TDiarPanel::OnMonthGridDblClick(QObject *Sender)
{
    Q_UNUSED(Sender);
    if (d->FReadOnly || !d->FMonthGrid)
        return;
    d->fMonthGridMenu->clear();
    TDayRecordArray zaznamy;
    for (PDayRecord zaznam :
         returnRecords(getMonthGridSelectStartTime(), getMonthGridSelectEndTime()))
        zaznamy.push_back(*zaznam);

    if (zaznamy.empty()) {
        if (OnDayDblClick)
            Safely([this] { OnDayDblClick(this, d->model.SelectedDay()); });
        return;
    }
    if (zaznamy.size() == 1) {
        OpenEntry(d->FMonthGrid, zaznamy.front());
        return;
    }
    int number = 0;
    for (const TDayRecord &zaznam : zaznamy) {
        QAction *item = d->fMonthGridMenu->addAction(MenuCaption(zaznam));
        item->setObjectName(QStringLiteral("MenuItem%1").arg(++number));
        item->setData(zaznam.ID_DIAR);
        const qint32 id = zaznam.ID_DIAR;
        connect(item, &QAction::triggered, this, [this, id] {
            // The entry as it is stored now; one deleted meanwhile opens nothing.
            if (PDayRecord stored = d->model.Find(id)) {
                const TDayRecord copy = *stored;
                OpenEntry(d->FMonthGrid, copy);
            }
        });
    }
    d->fMonthGridMenu->popup(QCursor::pos());
}

void TDiarPanel::OnMonthGridKeyDown(QObject *Sender, Word &Key, TShiftState Shift)
{
    Q_UNUSED(Shift);
    // The grid moves its row and slot itself; the panel only adds Insert.
    if (Key == VK_INSERT) {
        Key = 0;
        if (!d->FReadOnly && OnDayInsertEvent)
            Safely([this, Sender] { OnDayInsertEvent(Sender, d->model.SelectedDay()); });
    }
}

// --- events of the day boxes ---------------------------------------------------

void TDiarPanel::FireDayClick(TDate aDate)
{
    if (OnDayClick)
        Safely([this, aDate] { OnDayClick(this, aDate); });
}

void TDiarPanel::SelectBoxDay(TDayGroupBox *aBox)
{
    if (!d->FDayGroupBoxArray.contains(aBox))
        return;
    GotoDate(aBox->Date());
    FireDayClick(d->model.SelectedDay());
}

void TDiarPanel::DayDeleteEvent(QObject *Sender, PDayRecord aData, bool &AllowDelete)
{
    Q_UNUSED(Sender);
    if (OnDayDeleteEvent)
        Safely([&] { OnDayDeleteEvent(this, aData, AllowDelete); }, AllowDelete);
}

void TDiarPanel::OnDayResize(QObject *Sender)
{
    // A box captions itself by its width; the layout is the panel's own.
    Q_UNUSED(Sender);
}

void TDiarPanel::DoubleClickDayEvent(QObject *Sender, const TDayRecord &aZaznam)
{
    // The box opens its selected entry; below the entries the user meant the day.
    if (!d->fDblClickOnItem)
        return;
    OpenEntry(Sender, aZaznam);
}

void TDiarPanel::OpenEntry(QObject *Sender, const TDayRecord &aZaznam)
{
    if (d->FReadOnly)
        return;
    if (OnDoubleClickItemEvent) {
        Safely([&] { OnDoubleClickItemEvent(Sender, aZaznam); });
    } else if (d->FDiarNastaveni.dblklikSchuzkaChangePac &&
               aZaznam.TABULKA_REFERENCE == zkPacient && OnChangePacient) {
        Safely([&] { OnChangePacient(this, aZaznam); });
    } else if (OnDayEditEvent) {
        Safely([&] { OnDayEditEvent(this, aZaznam); });
    }
}

void TDiarPanel::ListSelectionChanged(TDayListView *aList, const QItemSelection &aSelected,
                                      const QItemSelection &aDeselected)
{
    if (d->fSilentSelection || !OnDaySelectItemEvent)
        return;
    const auto report = [this, aList](const QItemSelection &selection, bool selected) {
        for (const QModelIndex &index : selection.indexes()) {
            if (index.column() != 0)
                continue;
            if (QTreeWidgetItem *item = aList->topLevelItem(index.row()))
                Safely([&] { OnDaySelectItemEvent(aList, item, selected); });
        }
    };
    report(aDeselected, false);
    report(aSelected, true);
}

// --- keys ----------------------------------------------------------------------

// The days an arrow key moves: Left and Right by a day, Up and Down by a
// week in the week views (the days stand side by side) and by a day in the
// day and month views (the month grid has a row per day). 0 for other keys.
int TDiarPanel::DayStep(Word Key) const
{
    const bool weekView = d->model.DiarSize() == dsWorkWeek || d->model.DiarSize() == dsWeek;
    switch (Key) {
    case VK_LEFT:
        return -1;
    case VK_RIGHT:
        return 1;
    case VK_UP:
        return weekView ? -7 : -1;
    case VK_DOWN:
        return weekView ? 7 : 1;
    default:
        return 0;
    }
}

// The day aStep days from aFrom; the work week steps over the weekend.
TDate TDiarPanel::StepDate(TDate aFrom, int aStep) const
{
    TDate datum = DateOf(aFrom) + aStep;
    if (d->model.DiarSize() == dsWorkWeek && IsWeekend(datum)) {
        const int dow = DayOfTheWeek(datum);
        datum = aStep > 0 ? datum + (8 - dow) : datum - (dow - 5);
    }
    return datum;
}

void TDiarPanel::OnDayMove(QObject *Sender, Word &Key, TShiftState Shift)
{
    auto *box = qobject_cast<TDayGroupBox *>(Sender);
    const TDate from =
        box && d->FDayGroupBoxArray.contains(box) ? box->Date() : d->model.SelectedDay();
    if (Key == VK_INSERT) {
        Key = 0;
        if (!d->FReadOnly && OnDayInsertEvent)
            Safely([&] { OnDayInsertEvent(this, from); });
        return;
    }
    if (Key == VK_RETURN && box) {
        Key = 0;
        if (const TDayRecord *selected = box->DayListView()->SelectedRecord()) {
            const TDayRecord zaznam = *selected;
            OpenEntry(box, zaznam);
        }
        return;
    }
    const int step = DayStep(Key);
    if (step == 0 || Shift.testFlag(ssShift) || Shift.testFlag(ssAlt))
        return;
    Key = 0;
    if (Shift.testFlag(ssCtrl)) {
        if (box)
            MoveEntryByKey(box, step);
        return;
    }
    GotoDate(StepDate(from, step));
    FireDayClick(d->model.SelectedDay());
    FocusActiveList();
}

// Only a focus on a day list moves: one on the month grid stays there.
void TDiarPanel::FocusActiveList()
{
    TDayListView *list = DayListView();
    auto *focused = qobject_cast<TDayListView *>(window()->focusWidget());
    if (list && focused && focused != list && d->fBoxPool.contains(focused->DayGroupBox()))
        list->setFocus(Qt::OtherFocusReason);
}

// --- moving entries ------------------------------------------------------------

bool TDiarPanel::MoveEntry(const TDayRecord &aZaznam, TDate aTarget, bool aByDrag)
{
    int year = 0, month = 0, day = 0;
    DecodeDate(aTarget, year, month, day);
    TDayRecord nove = aZaznam;
    nove.Den = qint16(day);
    nove.RokMesic = TMesicRok::FromDate(aTarget).Packed();

    bool allow = true;
    if (OnDayItemBeforeMoveEvent)
        Safely([&] { OnDayItemBeforeMoveEvent(this, aZaznam, nove, allow); }, allow);
    if (!allow)
        return false;
    RemoveDayRecord(aZaznam);
    AddDayRecord(nove);
    const TOnDayMoveEvent &told = aByDrag ? OnDayItemMoveEvent : OnDayMoveEvent;
    if (told)
        Safely([&] { told(this, aZaznam, nove); });
    return true;
}

void TDiarPanel::MoveEntryByKey(TDayGroupBox *aBox, int aStep)
{
    const TDayRecord *selected = aBox->DayListView()->SelectedRecord();
    if (d->FReadOnly || !selected)
        return;
    const TDayRecord zaznam = *selected;
    const TDate target = StepDate(aBox->Date(), aStep);
    if (!MoveEntry(zaznam, target, false))
        return;
    // The entry stays under the cursor: its new day becomes the selected one.
    GotoDate(target);
    SelectItem(zaznam.ID_DIAR);
    FireDayClick(d->model.SelectedDay());
    FocusActiveList();
}

bool TDiarPanel::CanDropOn(TDayGroupBox *aBox) const
{
    if (d->FReadOnly || !d->fDragID || !d->FDayGroupBoxArray.contains(aBox))
        return false;
    PDayRecord zaznam = d->model.Find(*d->fDragID);
    return zaznam && !SameDate(TDiarModel::RecordDate(*zaznam), aBox->Date());
}

void TDiarPanel::DropOn(TDayGroupBox *aBox)
{
    if (!CanDropOn(aBox))
        return;
    const TDayRecord zaznam = *d->model.Find(*d->fDragID);
    d->fDragID.reset();
    const TDate target = aBox->Date();
    if (!MoveEntry(zaznam, target, true))
        return;
    GotoDate(target);
    SelectItem(zaznam.ID_DIAR);
    FireDayClick(d->model.SelectedDay());
}

// --- popup menu ----------------------------------------------------------------

void TDiarPanel::ShowEntryMenu(TDayGroupBox *aBox, const QPoint &aViewportPos)
{
    if (!d->FDayGroupBoxArray.contains(aBox))
        return;
    if (!aBox->Active())
        SelectBoxDay(aBox);
    d->fPopUpMenu->popup(aBox->DayListView()->viewport()->mapToGlobal(aViewportPos));
}

void TDiarPanel::fPopUpMenuOnPopUp()
{
    const TDayRecord *selected = GetSelectedItem();
    d->fMenuItemEdit->setEnabled(selected != nullptr);
    d->fMenuItemPacient->setEnabled(selected && selected->TABULKA_REFERENCE == zkPacient);
}

void TDiarPanel::MenuItemEventEditovat()
{
    const TDayRecord *selected = GetSelectedItem();
    if (!selected || !OnDayEditEvent)
        return;
    const TDayRecord zaznam = *selected;
    Safely([&] { OnDayEditEvent(this, zaznam); });
}

void TDiarPanel::MenuItemEventPacient()
{
    const TDayRecord *selected = GetSelectedItem();
    if (!selected || selected->TABULKA_REFERENCE != zkPacient || !OnChangePacient)
        return;
    const TDayRecord zaznam = *selected;
    Safely([&] { OnChangePacient(this, zaznam); });
}

// --- mouse ---------------------------------------------------------------------

// Wheel down selects the next day up to the last day shown, wheel up the
// previous one down to the first day of the month.
void TDiarPanel::MoveSelectionByWheel(int aSteps)
{
    bool moved = false;
    for (; aSteps != 0; aSteps += aSteps > 0 ? -1 : 1) {
        TDate target = 0;
        if (aSteps > 0) {
            if (WholeDays(d->model.SelectedDay()) >= WholeDays(d->model.VisibleDateMax()))
                break;
            target = StepDate(d->model.SelectedDay(), 1);
        } else {
            target = StepDate(d->model.SelectedDay(), -1);
            if (d->model.Day() == 1 || !d->model.MonthYear().Contains(target))
                break;
        }
        GotoDate(target);
        moved = true;
    }
    if (moved)
        FireDayClick(d->model.SelectedDay());
}

void TDiarPanel::wheelEvent(QWheelEvent *event)
{
    d->fWheelDelta += event->angleDelta().y();
    const int steps = d->fWheelDelta / WheelStep;
    d->fWheelDelta -= steps * WheelStep;
    // Rolling the wheel towards the user (a negative delta) goes later.
    MoveSelectionByWheel(-steps);
    event->accept();
}

bool TDiarPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn) {
        if (auto *focused = qobject_cast<TDayListView *>(watched))
            ListFocused(focused, static_cast<QFocusEvent *>(event)->reason());
        return TWinControl<QFrame>::eventFilter(watched, event);
    }
    auto *box = qobject_cast<TDayGroupBox *>(watched);
    TDayListView *list = nullptr;
    if (!box && watched->parent()) {
        list = qobject_cast<TDayListView *>(watched->parent());
        box = list ? list->DayGroupBox() : nullptr;
    }
    if (!box || !d->FDayGroupBoxArray.contains(box))
        return TWinControl<QFrame>::eventFilter(watched, event);

    switch (event->type()) {
    case QEvent::Wheel:
        wheelEvent(static_cast<QWheelEvent *>(event));
        return true;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop: {
        // The list asks the panel about the drop; the entry is in the data.
        qint32 id = 0;
        if (TTextDragObject::DraggedID(static_cast<QDropEvent *>(event)->mimeData(), id))
            d->fDragID = id;
        else
            d->fDragID.reset();
        break;
    }
    case QEvent::MouseButtonRelease:
        // A click on the box's frame or caption selects its day, as one in
        // its list does.
        if (!list && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton)
            SelectBoxDay(box);
        break;
    case QEvent::MouseButtonDblClick: {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        const bool onItem = list && list->itemAt(mouse->position().toPoint());
        d->fDblClickOnItem = onItem;
        if (mouse->button() == Qt::LeftButton && !onItem && !d->FReadOnly && OnDayDblClick) {
            const TDate datum = box->Date();
            Safely([this, datum] { OnDayDblClick(this, datum); });
        }
        break;
    }
    default:
        break;
    }
    return TWinControl<QFrame>::eventFilter(watched, event);
}

} // namespace oxa
