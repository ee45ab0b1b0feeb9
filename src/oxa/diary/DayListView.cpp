#include "oxa/diary/DayListView.h"

#include "oxa/diary/DiarPanel.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/GeometryScale.h"

#include <QDrag>
#include <QFontMetrics>
#include <QHeaderView>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <limits>

namespace oxa {

const TFixedArray<QString, zkNone, zkPartner> ContactSourceTables{
    {QString(), QStringLiteral("TBLPACIENT"), QStringLiteral("TBLPARTNER")}};

// --- dates of the diary ------------------------------------------------------

TDate SpocitejDatum(int aDen, qint16 aMonthYear)
{
    return TMesicRok(aMonthYear).Date(aDen);
}

qint16 DateToMesicRok(TDate aDate)
{
    return TMesicRok::FromDate(aDate).Packed();
}

QString SpocitejHodiny(TTime start, TTime end)
{
    const QString format = QStringLiteral("hh:nn");
    QString result = FormatDateTime(format, start);
    const QString konec = FormatDateTime(format, end);
    if (!result.isEmpty() && !konec.isEmpty())
        result += QLatin1Char('-') + konec;
    return result;
}

TDate FirstVisibleDate(TDate aDate, TDiarSize aDiarSize)
{
    switch (aDiarSize) {
    case dsDay:
        break;
    case dsWorkWeek:
    case dsWeek:
        return aDate - DayOfTheWeek(aDate);
    case dsMonth: {
        int year = 0, month = 0, day = 0;
        DecodeDate(aDate, year, month, day);
        return aDate - day;
    }
    }
    return aDate;
}

TDate LastVisibleDate(TDate aDate, TDiarSize aDiarSize)
{
    const TDate first = FirstVisibleDate(aDate, aDiarSize);
    switch (aDiarSize) {
    case dsDay:
        break;
    case dsWorkWeek:
        return first + 5;
    case dsWeek:
        return first + 7;
    case dsMonth: {
        int year = 0, month = 0, day = 0;
        DecodeDate(aDate, year, month, day);
        return first + DaysInAMonth(year, month);
    }
    }
    return aDate;
}

// --- the items ---------------------------------------------------------------

namespace {

constexpr int DayItemType = QTreeWidgetItem::UserType + 1;
// Designed at the reference font; scaled by the geometry scale.
constexpr int TimeColumnWidth = 65;
constexpr int LongCaptionMinWidth = 90;

// An item of the day's list: it owns a copy of its entry, and takes its
// texts, font, colour and tool tip from it.
class TDayListItem : public QTreeWidgetItem
{
public:
    explicit TDayListItem(const TDayRecord &aZaznam) : QTreeWidgetItem(DayItemType)
    {
        SetZaznam(aZaznam);
    }

    const TDayRecord &Zaznam() const { return FZaznam; }

    void SetZaznam(const TDayRecord &aZaznam)
    {
        FZaznam = aZaznam;
        setText(0, SpocitejHodiny(aZaznam.CasOd, aZaznam.CasDo));
        setText(1, TDayListView::FormatPopis(aZaznam.Popis, aZaznam.KONTAKT, aZaznam.PODROBNOSTI));
    }

    QVariant data(int column, int role) const override
    {
        switch (role) {
        case Qt::FontRole:
            return ItemFont();
        case Qt::ForegroundRole: {
            const TColor color = BarvaSchuzky[FZaznam.Soukrome];
            if (color != clDefault)
                return QBrush(ColorToQColor(color, treeWidget()));
            break;
        }
        case Qt::ToolTipRole:
            if (FZaznam.PODROBNOSTI.isEmpty())
                return QVariant();
            return FZaznam.PODROBNOSTI;
        default:
            break;
        }
        return QTreeWidgetItem::data(column, role);
    }

    // The list's order: by the time text, so by start and then by end.
    bool operator<(const QTreeWidgetItem &other) const override { return text(0) < other.text(0); }

private:
    // Only the styles are set, the list's own font supplies the rest.
    QFont ItemFont() const
    {
        QFont font;
        font.setBold(false);
        font.setItalic(false);
        font.setUnderline(false);
        font.setStrikeOut(FontSchuzek[FZaznam.SPLNENO > 0]);
        return font;
    }

    TDayRecord FZaznam;
};

TDayListItem *DayItem(QTreeWidgetItem *item)
{
    return item && item->type() == DayItemType ? static_cast<TDayListItem *>(item) : nullptr;
}

const TDayListItem *DayItem(const QTreeWidgetItem *item)
{
    return item && item->type() == DayItemType ? static_cast<const TDayListItem *>(item) : nullptr;
}

} // namespace

// --- TDayListView ------------------------------------------------------------

TDayListView::TDayListView(QWidget *aOwner) : TWinControl<QTreeWidget>(aOwner)
{
    setColumnCount(2);
    setHeaderLabels({QStringLiteral("Od - do:"), QStringLiteral("Popis:")});
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setDragEnabled(true);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    setColumnWidth(0, ScalePixels(TimeColumnWidth));
    connect(TGeometryScale::Instance(), &TGeometryScale::factorChanged, this, [this] { Resize(); });
    // The list keeps its own colours whatever its box is painted with.
    SetColor(clWindow);
    SetControlFontColor(this, clWindowText);
    SetControlColor(header(), clBtnFace);
}

TDayListView::~TDayListView() = default;

QString TDayListView::FormatPopis(const QString &aPopis, const QString &aKontakt,
                                  const QString &aPodrobnosti)
{
    QString podrobnosti = aPodrobnosti;
    // One line in the list: the details' line breaks become spaces.
    podrobnosti.replace(QLatin1String("\r\n"), QLatin1String(" "));
    podrobnosti.replace(QLatin1Char('\n'), QLatin1Char(' '))
        .replace(QLatin1Char('\r'), QLatin1Char(' '));

    QStringList dalsi;
    for (const QString &part : {aKontakt.trimmed(), podrobnosti.trimmed()}) {
        if (!part.isEmpty())
            dalsi.append(part);
    }
    const QString popis = aPopis.trimmed();
    const QString zbytek = dalsi.join(QLatin1String(", "));
    if (popis.isEmpty() || zbytek.isEmpty())
        return (popis + zbytek).trimmed();
    return (popis + QLatin1String(" : ") + zbytek).trimmed();
}

void TDayListView::AddItem(const TDayRecord &aZaznam)
{
    addTopLevelItem(new TDayListItem(aZaznam));
    SortItems();
    ItemsChanged();
}

void TDayListView::ChangeItem(const TDayRecord &aZaznam)
{
    TDayListItem *item = DayItem(topLevelItem(VratIndexPrvku(aZaznam.ID_DIAR)));
    if (!item)
        return;
    item->SetZaznam(aZaznam);
    SortItems();
    ItemsChanged();
}

void TDayListView::RemoveItem(qint32 aID)
{
    const int index = VratIndexPrvku(aID);
    if (index < 0)
        return;
    delete takeTopLevelItem(index);
    ItemsChanged();
}

int TDayListView::VratIndexPrvku(qint32 aID) const
{
    for (int i = 0; i < topLevelItemCount(); ++i) {
        const TDayRecord *zaznam = ItemRecord(i);
        if (zaznam && zaznam->ID_DIAR == aID)
            return i;
    }
    return -1;
}

void TDayListView::Clear()
{
    clear();
    ItemsChanged();
}

const TDayRecord *TDayListView::ItemRecord(int Index) const
{
    return ItemRecord(topLevelItem(Index));
}

const TDayRecord *TDayListView::ItemRecord(const QTreeWidgetItem *Item)
{
    const TDayListItem *item = DayItem(Item);
    return item ? &item->Zaznam() : nullptr;
}

const TDayRecord *TDayListView::SelectedRecord() const
{
    const QList<QTreeWidgetItem *> selected = selectedItems();
    return selected.isEmpty() ? nullptr : ItemRecord(selected.first());
}

void TDayListView::SetNoTime(bool Value)
{
    const bool changed = Value != FNoTime;
    FNoTime = Value;
    setColumnHidden(0, Value);
    Resize();
    if (changed)
        Q_EMIT noTimeChanged(Value);
}

void TDayListView::SetItemListImages(const QList<QIcon> &Value)
{
    FItemListImages = Value;
    Q_EMIT itemListImagesChanged(Value);
}

void TDayListView::SetDenMesicRok(int aDen, qint16 aMesicRok)
{
    FDen = aDen;
    if (aMesicRok == FMesicRok)
        return;
    FMesicRok = aMesicRok;
    if (OnDateOfMonthListView)
        Safely([this] { OnDateOfMonthListView(this, FMesicRok); });
}

void TDayListView::SortItems()
{
    sortItems(0, Qt::AscendingOrder);
}

void TDayListView::ItemsChanged()
{
    if (FDayGroupBox)
        FDayGroupBox->UpdateCaption();
}

void TDayListView::Resize()
{
    const int clientWidth = viewport()->width();
    const int timeWidth = ScalePixels(TimeColumnWidth);
    if (columnCount() < 2 || clientWidth < timeWidth)
        return;
    setColumnWidth(0, timeWidth);
    setColumnWidth(1, clientWidth - (FNoTime ? 0 : timeWidth));
}

// A scroll area receives the resizes of its viewport here, so the columns
// follow the client width also when a scroll bar appears.
void TDayListView::resizeEvent(QResizeEvent *event)
{
    TWinControl<QTreeWidget>::resizeEvent(event);
    Resize();
    if (OnResize)
        Safely([this] { OnResize(this); });
}

void TDayListView::mousePressEvent(QMouseEvent *event)
{
    FPressedInside = event->button() == Qt::LeftButton;
    TWinControl<QTreeWidget>::mousePressEvent(event);
}

void TDayListView::mouseReleaseEvent(QMouseEvent *event)
{
    TWinControl<QTreeWidget>::mouseReleaseEvent(event);
    const bool click = FPressedInside && event->button() == Qt::LeftButton &&
        viewport()->rect().contains(event->position().toPoint());
    FPressedInside = false;
    if (click && OnClick)
        Safely([this] { OnClick(this); });
}

void TDayListView::mouseDoubleClickEvent(QMouseEvent *event)
{
    TWinControl<QTreeWidget>::mouseDoubleClickEvent(event);
    // The release that ends a double click is no click of its own.
    FPressedInside = false;
    if (event->button() == Qt::LeftButton && OnDblClick)
        Safely([this] { OnDblClick(this); });
}

void TDayListView::startDrag(Qt::DropActions supportedActions)
{
    Q_UNUSED(supportedActions);
    FPressedInside = false;
    const QList<QTreeWidgetItem *> selected = selectedItems();
    TTextDragObject dragObject(selected.isEmpty() ? currentItem() : selected.first());
    bool allow = true;
    if (OnStartDrag)
        Safely([&] { OnStartDrag(this, dragObject, allow); }, allow);
    if (allow)
        dragObject.CreateDrag(this)->exec(Qt::MoveAction);
}

bool TDayListView::AcceptsDrag(QDropEvent *event)
{
    qint32 id = 0;
    if (!OnDragOver || !TTextDragObject::DraggedID(event->mimeData(), id))
        return false;
    bool accept = true;
    Safely([&] { OnDragOver(this, event->source(), event->position().toPoint(), accept); }, accept);
    return accept;
}

void TDayListView::dragEnterEvent(QDragEnterEvent *event)
{
    if (AcceptsDrag(event))
        event->acceptProposedAction();
    else
        event->ignore();
}

void TDayListView::dragMoveEvent(QDragMoveEvent *event)
{
    if (AcceptsDrag(event))
        event->acceptProposedAction();
    else
        event->ignore();
}

void TDayListView::dragLeaveEvent(QDragLeaveEvent *event)
{
    TWinControl<QTreeWidget>::dragLeaveEvent(event);
}

void TDayListView::dropEvent(QDropEvent *event)
{
    if (!AcceptsDrag(event)) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    if (OnDragDrop)
        Safely([&] { OnDragDrop(this, event->source(), event->position().toPoint()); });
}

// --- TDayGroupBox ------------------------------------------------------------

TDayGroupBox::TDayGroupBox(QWidget *aOwner)
    : QGroupBox(aOwner), FDayListView(new TDayListView(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(FDayListView);

    FDayListView->FDayGroupBox = this;
    FDayListView->OnClick = [this](QObject *sender) { OnDayListViewClick(sender); };
    FDayListView->OnDblClick = [this](QObject *sender) { OnListViewDblClick(sender); };
    FDayListView->OnResize = [this](QObject *sender) { OnDayResize(sender); };
    FDayListView->OnKeyDown = [this](QObject *sender, Word &key, TShiftState shift) {
        OnKeyDown(sender, key, shift);
    };
    connect(TGeometryScale::Instance(), &TGeometryScale::factorChanged, this,
            [this] { UpdateCaption(); });
}

TDayGroupBox::~TDayGroupBox()
{
    // The list outlives this part of the box while the children are freed.
    FDayListView->FDayGroupBox = nullptr;
    FDayListView->OnClick = nullptr;
    FDayListView->OnDblClick = nullptr;
    FDayListView->OnResize = nullptr;
    FDayListView->OnKeyDown = nullptr;
}

void TDayGroupBox::SetDate(TDate aDate)
{
    const bool changed = !FDateSet || aDate != FDate;
    FDate = aDate;
    FDateSet = true;
    int year = 0, month = 0, day = 0;
    DecodeDate(aDate, year, month, day);
    FDayListView->SetDenMesicRok(day, DateToMesicRok(aDate));
    UpdateCaption();
    if (!FActive)
        SetColor(DaysColor[DayOfTheWeek(aDate)]);
    if (changed)
        Q_EMIT dateChanged(aDate);
}

void TDayGroupBox::SetDayMonthYear(int aDay, qint16 aMonthYear)
{
    SetDate(SpocitejDatum(aDay, aMonthYear));
}

void TDayGroupBox::SetActive(bool Value)
{
    const bool changed = Value != FActive;
    FActive = Value;
    ApplyColors();
    if (changed)
        Q_EMIT activeChanged(Value);
}

void TDayGroupBox::Clear()
{
    FDayListView->Clear();
}

void TDayGroupBox::UpdateCaption()
{
    if (!FDateSet)
        return;
    const QString format = width() >= ScalePixels(LongCaptionMinWidth)
        ? QStringLiteral("ddd d. mmmm")
        : QStringLiteral("d.mm");
    QString caption = QLatin1Char(' ') + FormatDateTime(format, FDate);
    const int count = FDayListView->Count();
    caption += count > 0 ? QStringLiteral("   (%1) ").arg(count) : QStringLiteral(" ");
    setTitle(caption);
}

void TDayGroupBox::ApplyColors()
{
    if (FActive) {
        SetColor(clNavy);
        SetControlFontColor(this, clWindow);
        FDayListView->SetColor(clInfoBk);
    } else {
        SetColor(DaysColor[DayOfTheWeek(FDate)]);
        SetControlFontColor(this, clWindowText);
        FDayListView->SetColor(clWindow);
    }
}

void TDayGroupBox::SetColor(TColor Value)
{
    FColor = Value;
    SetControlColor(this, Value);
    setAutoFillBackground(true);
}

void TDayGroupBox::resizeEvent(QResizeEvent *event)
{
    QGroupBox::resizeEvent(event);
    UpdateCaption();
}

TDayGroupBoxHost *TDayGroupBox::Host() const
{
    for (QWidget *owner = parentWidget(); owner; owner = owner->parentWidget()) {
        if (auto *host = dynamic_cast<TDayGroupBoxHost *>(owner))
            return host;
    }
    return nullptr;
}

void TDayGroupBox::OnDayListViewClick(QObject *Sender)
{
    Q_UNUSED(Sender);
    if (!OnSelectDayItem)
        return;
    const QList<QTreeWidgetItem *> selected = FDayListView->selectedItems();
    OnSelectDayItem(this,
                    selected.isEmpty() ? -1 : FDayListView->indexOfTopLevelItem(selected.first()));
}

void TDayGroupBox::OnDayResize(QObject *Sender)
{
    Q_UNUSED(Sender);
    if (TDayGroupBoxHost *host = Host())
        host->OnDayResize(this);
}

void TDayGroupBox::OnListViewDblClick(QObject *Sender)
{
    Q_UNUSED(Sender);
    TDayGroupBoxHost *host = Host();
    if (!host || host->ReadOnly() || !OnDoubleClickDayItem)
        return;
    if (const TDayRecord *selected = FDayListView->SelectedRecord()) {
        // A copy: the handler may well change the list.
        const TDayRecord zaznam = *selected;
        OnDoubleClickDayItem(this, zaznam);
    }
}

void TDayGroupBox::OnKeyDown(QObject *Sender, Word &Key, TShiftState Shift)
{
    Q_UNUSED(Sender);
    TDayGroupBoxHost *host = Host();
    if (!host)
        return;
    if (Key != VK_DELETE) {
        host->OnDayMove(this, Key, Shift);
        return;
    }
    Key = 0;
    const TDayRecord *selected = FDayListView->SelectedRecord();
    if (!selected || host->ReadOnly())
        return;
    TDayRecord zaznam = *selected;
    bool allowDelete = true;
    host->DayDeleteEvent(this, &zaznam, allowDelete);
    if (allowDelete)
        host->RemoveDayRecord(zaznam);
}

// --- TTextDragObject ---------------------------------------------------------

QString TTextDragObject::MimeType()
{
    return QStringLiteral("application/x-oxa-diar-zaznam");
}

QString TTextDragObject::NothingSelectedText()
{
    return QStringLiteral("- nevybráno -");
}

TTextDragObject::TTextDragObject(QTreeWidgetItem *aDataItem) : DataItem(aDataItem) { }

QString TTextDragObject::DragText() const
{
    return DataItem ? DataItem->text(0) : NothingSelectedText();
}

QPixmap TTextDragObject::GetDragImages()
{
    QFont font(QStringLiteral("Arial"));
    font.setPointSize(9);
    const QString text = DragText();
    const QFontMetrics metrics(font);
    const QSize size(metrics.horizontalAdvance(text) + 8, metrics.height() + 4);

    FDragImages = QPixmap(size);
    FDragImages.fill(ColorToQColor(clInfoBk));
    QPainter painter(&FDragImages);
    painter.setPen(ColorToQColor(clInfoText));
    painter.drawRect(0, 0, size.width() - 1, size.height() - 1);
    painter.setFont(font);
    painter.drawText(QRect(QPoint(0, 0), size), Qt::AlignCenter, text);
    painter.end();
    return FDragImages;
}

Qt::CursorShape TTextDragObject::GetDragCursor(bool Accepted) const
{
    return Accepted ? Qt::DragMoveCursor : Qt::ForbiddenCursor;
}

QDrag *TTextDragObject::CreateDrag(QObject *Source)
{
    auto *data = new QMimeData;
    data->setText(DragText());
    if (const TDayRecord *zaznam = TDayListView::ItemRecord(DataItem))
        data->setData(MimeType(), QByteArray::number(zaznam->ID_DIAR));
    auto *drag = new QDrag(Source);
    drag->setMimeData(data);
    drag->setPixmap(GetDragImages());
    drag->setHotSpot(QPoint(-12, -4));
    return drag;
}

bool TTextDragObject::DraggedID(const QMimeData *Data, qint32 &aID)
{
    if (!Data || !Data->hasFormat(MimeType()))
        return false;
    bool ok = false;
    const qint32 id = Data->data(MimeType()).toInt(&ok);
    if (ok)
        aID = id;
    return ok;
}

// --- registration ------------------------------------------------------------

namespace {

template<class T>
TComponentEntry DiarEntry(const char *className,
                          const char *includeFile = "oxa/diary/DayListView.h")
{
    return WidgetEntry<T>(QStringLiteral("Oxa Diar"), QString::fromLatin1(className),
                          QStringLiteral("DayListView"), QString::fromLatin1(includeFile));
}

} // namespace

void RegisterDayListView()
{
    Catalogue::Instance().RegisterComponents({
        DiarEntry<TDayListView>("TDayListView"),
        DiarEntry<TDayGroupBox>("TDayGroupBox"),
        DiarEntry<TDiarPanel>("TDiarPanel", "oxa/diary/DiarPanel.h"),
    });
}

} // namespace oxa
