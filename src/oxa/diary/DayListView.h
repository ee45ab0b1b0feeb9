#pragma once

#include "oxa/oxa_export.h"

#include "oxa/diary/DiarShared.h"
#include "oxa/toolkit/WinControl.h"

#include <QGroupBox>
#include <QIcon>
#include <QList>
#include <QPixmap>
#include <QTreeWidget>

#include <functional>
#include <utility>

class QDrag;
class QMimeData;

namespace oxa {

class TDayGroupBox;
class TTextDragObject;

// How many days the diary panel shows.
enum TDiarSize { dsDay, dsWorkWeek, dsWeek, dsMonth };

// The date of day aDen of the packed month aMonthYear ((year - 1900) * 100 +
// month). Throws EConvertError for a day the month does not have.
OXA_EXPORT TDate SpocitejDatum(int aDen, qint16 aMonthYear);
// The packed month of a date: 15 January 2000 gives 10001.
OXA_EXPORT qint16 DateToMesicRok(TDate aDate);
// The time text of an entry, "08:30-09:15".
OXA_EXPORT QString SpocitejHodiny(TTime start, TTime end);
// The bounds of the period shown around aDate. The first visible date lies
// one day before the first day shown (the Sunday before a week, the last day
// of the previous month); the last visible date is the last day shown.
OXA_EXPORT TDate FirstVisibleDate(TDate aDate, TDiarSize aDiarSize);
OXA_EXPORT TDate LastVisibleDate(TDate aDate, TDiarSize aDiarSize);

// The font colour of an entry by its privacy (Soukrome): the list's own
// colour, or blue for a private entry.
inline constexpr TFixedArray<TColor, false, true> BarvaSchuzky{{clDefault, 0xFF0000}};
// Whether an entry's text is struck out, by its completion (SPLNENO > 0).
inline constexpr TFixedArray<bool, false, true> FontSchuzek{{false, true}};
// The host's table a contact comes from: "", "TBLPACIENT", "TBLPARTNER".
OXA_EXPORT extern const TFixedArray<QString, zkNone, zkPartner> ContactSourceTables;

// The diary's events.
using TOnDateOfMonthListView = std::function<void(QObject *Sender, qint16 MonthYear)>;
using TOnDayEditEvent = std::function<void(QObject *Sender, const TDayRecord &aDayRecord)>;
// Index is the selected item of the day's list, or -1.
using TSelectDayItemEvent = std::function<void(QObject *Sender, int Index)>;
// A drag of an entry is about to start; Allow = false cancels it.
using TStartDragEvent =
    std::function<void(QObject *Sender, TTextDragObject &DragObject, bool &Allow)>;
// An entry dragged from Source is over the list at Pos (viewport coordinates).
using TDragOverEvent =
    std::function<void(QObject *Sender, QObject *Source, const QPoint &Pos, bool &Accept)>;
using TDragDropEvent = std::function<void(QObject *Sender, QObject *Source, const QPoint &Pos)>;

// The appointments of one day as a two-column report list, "Od - do:" and
// "Popis:". The items stay in the order of their time text; every item owns
// a copy of its entry, which gives its text, its font (struck out once
// completion started, blue when private) and its tool tip (the details).
class OXA_EXPORT TDayListView : public TWinControl<QTreeWidget>
{
    Q_OBJECT
    Q_PROPERTY(QList<QIcon> ItemListImages READ ItemListImages WRITE SetItemListImages NOTIFY
                   itemListImagesChanged)
    Q_PROPERTY(bool NoTime READ NoTime WRITE SetNoTime NOTIFY noTimeChanged)

public:
    explicit TDayListView(QWidget *aOwner = nullptr);
    ~TDayListView() override;

    // Adds an item for a copy of the entry, in its place by time.
    void AddItem(const TDayRecord &aZaznam);
    // Replaces the entry with the same key; an unknown key changes nothing.
    void ChangeItem(const TDayRecord &aZaznam);
    // Removes the entry with the key; an unknown key changes nothing.
    void RemoveItem(qint32 aID);
    // The index of the first item of the key, or -1.
    int VratIndexPrvku(qint32 aID) const;
    void Clear();

    int Count() const { return topLevelItemCount(); }
    // The entry of an item; null for an index outside or an item without one.
    const TDayRecord *ItemRecord(int Index) const;
    static const TDayRecord *ItemRecord(const QTreeWidgetItem *Item);
    // The entry of the selected item, or null.
    const TDayRecord *SelectedRecord() const;

    // The description column: "popis : kontakt, podrobnosti" without the
    // empty parts.
    static QString FormatPopis(const QString &aPopis, const QString &aKontakt,
                               const QString &aPodrobnosti);

    // Images the host offers for the items; the list keeps them for it.
    QList<QIcon> ItemListImages() const { return FItemListImages; }
    void SetItemListImages(const QList<QIcon> &Value);
    // Hides the time column; the items keep their order by time.
    bool NoTime() const { return FNoTime; }
    void SetNoTime(bool Value);

    // The day shown; a change of its month is reported by OnDateOfMonthListView.
    int Den() const { return FDen; }
    qint16 MesicRok() const { return FMesicRok; }
    void SetDenMesicRok(int aDen, qint16 aMesicRok);

    // The box that holds the list, or null.
    TDayGroupBox *DayGroupBox() const { return FDayGroupBox; }

    TNotifyEvent OnClick;
    TNotifyEvent OnDblClick;
    TNotifyEvent OnResize;
    TOnDateOfMonthListView OnDateOfMonthListView;
    TStartDragEvent OnStartDrag;
    // Without OnDragOver the list accepts no drop.
    TDragOverEvent OnDragOver;
    TDragDropEvent OnDragDrop;

Q_SIGNALS:
    void itemListImagesChanged(const QList<QIcon> &ItemListImages);
    void noTimeChanged(bool NoTime);

protected:
    // Column 0 keeps 65 pixels (at the geometry scale), column 1 takes the
    // rest of the client width.
    virtual void Resize();

    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    friend class TDayGroupBox;

    void ItemsChanged();
    void SortItems();
    bool AcceptsDrag(QDropEvent *event);

    QList<QIcon> FItemListImages;
    bool FNoTime = false;
    int FDen = 0;
    qint16 FMesicRok = 0;
    TDayGroupBox *FDayGroupBox = nullptr;
    bool FPressedInside = false;
};

// The diary panel as its day boxes see it. The panel that lays out the
// boxes implements it; a box with no such panel above it leaves double
// clicks and keys alone.
class OXA_EXPORT TDayGroupBoxHost
{
public:
    virtual bool ReadOnly() const = 0;
    // Asks the host whether the entry may be deleted (OnDayDeleteEvent).
    virtual void DayDeleteEvent(QObject *Sender, PDayRecord aData, bool &AllowDelete) = 0;
    // Removes the entry from the store and from its box.
    virtual void RemoveDayRecord(const TDayRecord &aZaznam) = 0;
    // A key other than Delete in a day's list: the panel's moves between days.
    virtual void OnDayMove(QObject *Sender, Word &Key, TShiftState Shift) = 0;
    virtual void OnDayResize(QObject *Sender) = 0;

protected:
    ~TDayGroupBoxHost() = default;
};

// A framed box showing one day: its caption names the day and the number of
// its entries, the list of the entries fills it.
class OXA_EXPORT TDayGroupBox : public QGroupBox
{
    Q_OBJECT
    Q_PROPERTY(oxa::TDayListView *DayListView READ DayListView CONSTANT)
    Q_PROPERTY(double Date READ Date WRITE SetDate NOTIFY dateChanged)
    Q_PROPERTY(bool Active READ Active WRITE SetActive NOTIFY activeChanged)

public:
    explicit TDayGroupBox(QWidget *aOwner = nullptr);
    ~TDayGroupBox() override;

    TDayListView *DayListView() const { return FDayListView; }

    TDate Date() const { return FDate; }
    // Stores the date and captions the box with it: " ddd d. mmmm" when the
    // box is at least 90 pixels (at the geometry scale) wide, else " d.mm",
    // followed by "   (count) " when it lists entries, else by " ".
    void SetDate(TDate aDate);
    void SetDayMonthYear(int aDay, qint16 aMonthYear);

    bool Active() const { return FActive; }
    // Active: a navy box with a caption in the window colour and the list on
    // the hint colour; inactive: the box in the colour of its weekday.
    void SetActive(bool Value);
    // The box's background colour.
    TColor Color() const { return FColor; }

    void Clear();

    TSelectDayItemEvent OnSelectDayItem;
    TOnDayEditEvent OnDoubleClickDayItem;

Q_SIGNALS:
    void dateChanged(double Date);
    void activeChanged(bool Active);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    friend class TDayListView;

    void OnDayListViewClick(QObject *Sender);
    void OnDayResize(QObject *Sender);
    void OnListViewDblClick(QObject *Sender);
    void OnKeyDown(QObject *Sender, Word &Key, TShiftState Shift);

    TDayGroupBoxHost *Host() const;
    void UpdateCaption();
    void ApplyColors();
    void SetColor(TColor Value);

    TDate FDate = 0;
    bool FDateSet = false;
    bool FActive = false;
    TColor FColor = clBtnFace;
    TDayListView *FDayListView = nullptr;
};

// What a drag of an entry carries: the dragged item, its text and its image.
class OXA_EXPORT TTextDragObject
{
public:
    // The MIME type under which a drag holds the entry's key.
    static QString MimeType();
    // The text shown when no item is dragged.
    static QString NothingSelectedText();

    explicit TTextDragObject(QTreeWidgetItem *aDataItem = nullptr);

    // The dragged item; not owned.
    QTreeWidgetItem *DataItem = nullptr;

    // The item's time text, or "- nevybráno -".
    QString DragText() const;
    // The image shown under the mouse while dragging: the text in Arial.
    QPixmap GetDragImages();
    Qt::CursorShape GetDragCursor(bool Accepted) const;
    // A drag ready to be run, parented to Source (Qt deletes it after the drop).
    QDrag *CreateDrag(QObject *Source);

    // The key of the entry a drag carries.
    static bool DraggedID(const QMimeData *Data, qint32 &aID);

private:
    QPixmap FDragImages;
};

// Registers TDayListView and TDayGroupBox on the palette page "Oxa Diar".
OXA_EXPORT void RegisterDayListView();

} // namespace oxa
