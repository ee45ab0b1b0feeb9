#include "oxa/toolkit/DataSet.h"

#include "oxa/toolkit/DataSource.h"
#include "oxa/toolkit/DateUtils.h"

#include <QLocale>

#include <algorithm>

namespace oxa {

namespace {

const QLocale &czech()
{
    static const QLocale locale(QLocale::Czech, QLocale::CzechRepublic);
    return locale;
}

bool textIsTrue(const QString &text)
{
    const QString t = text.trimmed().toLower();
    return t == QLatin1String("true") || t == QLatin1String("t") || t == QLatin1String("1") ||
        t == QLatin1String("ano") || t == QLatin1String("a") || t == QLatin1String("y") ||
        t == QLatin1String("yes");
}

QDate dateOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDate)
        return value.toDate();
    if (value.typeId() == QMetaType::QDateTime)
        return value.toDateTime().date();
    const QString text = value.toString().trimmed();
    QDate date = QDate::fromString(text.left(10), Qt::ISODate);
    if (!date.isValid())
        date = QDate::fromString(text, QStringLiteral("d.M.yyyy"));
    return date;
}

// Texts the user reads when a data set refuses an operation.
QString notActiveText()
{
    return QStringLiteral("Datová sada není otevřená.");
}

} // namespace

// ---------------------------------------------------------------------------
// TField

TField::TField(TDataSet *DataSet, int Index, const QString &FieldName, TFieldType DataType)
    : m_dataSet(DataSet), m_index(Index), m_fieldName(FieldName), m_dataType(DataType)
{ }

Qt::Alignment TField::Alignment() const
{
    return m_dataType == ftInteger || m_dataType == ftFloat ? Qt::AlignRight : Qt::AlignLeft;
}

QVariant TField::AsVariant() const
{
    return m_dataSet->CurrentValue(m_index);
}

void TField::SetAsVariant(const QVariant &Value)
{
    m_dataSet->SetCurrentValue(m_index, Value);
}

qlonglong TField::AsInteger() const
{
    return AsVariant().toLongLong();
}

bool TField::AsBoolean() const
{
    const QVariant value = AsVariant();
    return value.typeId() == QMetaType::QString ? textIsTrue(value.toString()) : value.toBool();
}

double TField::AsFloat() const
{
    return AsVariant().toDouble();
}

QString TField::AsString() const
{
    const QVariant value = AsVariant();
    if (value.isNull())
        return QString();
    switch (m_dataType) {
    case ftBoolean:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case ftFloat:
        return QString::number(value.toDouble(), 'g', 15);
    case ftDate:
        return value.toDate().toString(Qt::ISODate);
    case ftDateTime:
        return value.toDateTime().toString(Qt::ISODate);
    default:
        return value.toString();
    }
}

void TField::SetAsString(const QString &Value)
{
    if (Value.isEmpty() && m_dataType != ftString) {
        Clear();
        return;
    }
    switch (m_dataType) {
    case ftBoolean:
        SetAsVariant(textIsTrue(Value));
        break;
    case ftFloat: {
        bool ok = false;
        double number = czech().toDouble(Value.trimmed(), &ok);
        if (!ok)
            number = Value.trimmed().toDouble(&ok);
        if (!ok)
            throw EConvertError(QStringLiteral("„%1“ není platné číslo.").arg(Value));
        SetAsVariant(number);
        break;
    }
    case ftInteger: {
        bool ok = false;
        const qlonglong number = Value.trimmed().toLongLong(&ok);
        if (!ok)
            throw EConvertError(QStringLiteral("„%1“ není platné celé číslo.").arg(Value));
        SetAsVariant(number);
        break;
    }
    case ftDate: {
        const QDate date = dateOf(Value);
        if (!date.isValid())
            throw EConvertError(QStringLiteral("„%1“ není platné datum.").arg(Value));
        SetAsVariant(date);
        break;
    }
    default:
        SetAsVariant(Value);
        break;
    }
}

QDate TField::AsDate() const
{
    return dateOf(AsVariant());
}

QString TField::DisplayText() const
{
    return DisplayTextOf(AsVariant());
}

QString TField::DisplayTextOf(const QVariant &Value) const
{
    if (Value.isNull())
        return QString();
    switch (m_dataType) {
    case ftBoolean:
        return Value.toBool() ? QStringLiteral("Ano") : QStringLiteral("Ne");
    case ftFloat:
        return czech().toString(Value.toDouble(), 'g', 15);
    case ftDate:
        return Value.toDate().toString(QStringLiteral("d.M.yyyy"));
    case ftDateTime:
        return Value.toDateTime().toString(QStringLiteral("d.M.yyyy h:mm:ss"));
    default:
        return Value.toString();
    }
}

QVariant TField::Normalized(const QVariant &Value) const
{
    if (Value.isNull() || !Value.isValid())
        return QVariant();
    bool ok = true;
    switch (m_dataType) {
    case ftBoolean:
        if (Value.typeId() == QMetaType::QString)
            return textIsTrue(Value.toString());
        return Value.toBool();
    case ftInteger: {
        const qlonglong number = Value.toLongLong(&ok);
        if (ok)
            return number;
        const double real = Value.toDouble(&ok);
        return ok ? QVariant(qlonglong(real)) : QVariant();
    }
    case ftFloat: {
        const double number = Value.toDouble(&ok);
        return ok ? QVariant(number) : QVariant();
    }
    case ftDate: {
        const QDate date = dateOf(Value);
        return date.isValid() ? QVariant(date) : QVariant();
    }
    case ftDateTime: {
        const QDateTime time = Value.typeId() == QMetaType::QDateTime
            ? Value.toDateTime()
            : QDateTime::fromString(Value.toString(), Qt::ISODate);
        return time.isValid() ? QVariant(time) : QVariant();
    }
    default:
        return Value.toString();
    }
}

// ---------------------------------------------------------------------------
// TDataSet

namespace {

struct WindowRecord
{
    TRecordValues values;
    bool inserted = false;
};

} // namespace

struct TDataSet::Private
{
    TDataSetState state = dsInactive;
    QList<TField *> fields;
    // The records held in memory, in key order, around the cursor.
    QList<WindowRecord> window;
    int cur = -1;
    bool atStart = false; // window[0] is the first stored record
    bool atEnd = false;   // the last window record is the last stored one
    int firstRecNo = 0;   // record number of window[0]; 0 while unknown
    int recordCount = -1;
    bool bof = true;
    bool eof = true;
    TRecordValues original; // the edited record as it was read
    TRecordValues buffer;   // the edited record with the user's changes
    bool modified = false;
    int insertReturn = -1; // where Cancel of an insert puts the cursor
    int disableCount = 0;
    bool changedWhileDisabled = false;
    bool stateChangedWhileDisabled = false;
    int packet = 100;
    int activeOffset = 0;
    int keepBefore = 0;
    int keepAfter = 0;
    QList<TDataSource *> sources;

    bool editing() const { return state == dsEdit || state == dsInsert; }
    int storedCount() const
    {
        return int(std::count_if(window.cbegin(), window.cend(),
                                 [](const WindowRecord &r) { return !r.inserted; }));
    }
    const TRecordValues *firstStored() const
    {
        for (const WindowRecord &r : window) {
            if (!r.inserted)
                return &r.values;
        }
        return nullptr;
    }
    const TRecordValues *lastStored() const
    {
        for (auto it = window.crbegin(); it != window.crend(); ++it) {
            if (!it->inserted)
                return &it->values;
        }
        return nullptr;
    }
    int maxWindow() const { return std::max(4 * packet, keepBefore + keepAfter + 2 * packet); }

    TDataSet *q = nullptr;
    bool fetchAfterWindow();
    bool fetchBeforeWindow();
    void loadAround(const TRecordValues &record, bool includeRecord);
};

TDataSet::TDataSet(QObject *parent) : QObject(parent), d(new Private)
{
    d->q = this;
}

TDataSet::~TDataSet()
{
    const auto sources = d->sources;
    for (TDataSource *source : sources)
        source->m_dataSet = nullptr;
    qDeleteAll(d->fields);
}

int TDataSet::RecordWidth() const
{
    return int(d->fields.size());
}

void TDataSet::CheckActive() const
{
    if (d->state == dsInactive)
        throw EDatabaseError(notActiveText());
}

void TDataSet::SetState(TDataSetState Value)
{
    if (d->state == Value)
        return;
    d->state = Value;
    NotifyLinks(deUpdateState);
}

void TDataSet::NotifyLinks(int Event, TField *Field, int Info)
{
    if (d->disableCount > 0 && Event != deUpdateRecord) {
        d->changedWhileDisabled = true;
        if (Event == deUpdateState)
            d->stateChangedWhileDisabled = true;
        return;
    }
    const auto sources = d->sources;
    for (TDataSource *source : sources)
        source->Notify(TDataEvent(Event), Field, Info);
}

void TDataSet::AttachDataSource(TDataSource *Source)
{
    if (!d->sources.contains(Source))
        d->sources.append(Source);
}

void TDataSet::DetachDataSource(TDataSource *Source)
{
    d->sources.removeAll(Source);
}

// ---- opening and closing

void TDataSet::Open()
{
    if (d->state != dsInactive)
        return;
    if (BeforeOpen)
        BeforeOpen(this);
    d->fields = DoOpen();
    d->state = dsBrowse;
    try {
        d->window.clear();
        const QList<TRecordValues> rows = FetchFirst(d->packet);
        for (const TRecordValues &row : rows)
            d->window.append({row, false});
    } catch (...) {
        Close();
        throw;
    }
    d->cur = d->window.isEmpty() ? -1 : 0;
    d->atStart = true;
    d->atEnd = d->window.size() < d->packet;
    d->firstRecNo = 1;
    d->bof = true;
    d->eof = d->window.isEmpty();
    d->recordCount = d->atEnd ? int(d->window.size()) : -1;
    if (d->recordCount < 0)
        StartRecordCount();
    Q_EMIT ActiveChanged();
    NotifyLinks(deActiveChange);
    if (AfterOpen)
        AfterOpen(this);
}

void TDataSet::Close()
{
    if (d->state == dsInactive)
        return;
    if (BeforeClose)
        BeforeClose(this);
    DoClose();
    d->state = dsInactive;
    d->window.clear();
    d->cur = -1;
    d->bof = d->eof = true;
    d->recordCount = -1;
    d->modified = false;
    Q_EMIT ActiveChanged();
    NotifyLinks(deActiveChange);
    qDeleteAll(d->fields);
    d->fields.clear();
    if (AfterClose)
        AfterClose(this);
}

bool TDataSet::Active() const
{
    return d->state != dsInactive;
}

void TDataSet::SetActive(bool Value)
{
    if (Value)
        Open();
    else
        Close();
}

TDataSetState TDataSet::State() const
{
    return d->state;
}

// ---- the window

// Reads the page after the window; false when storage has no more.
bool TDataSet::Private::fetchAfterWindow()
{
    Private *d = this;
    const TRecordValues *last = d->lastStored();
    if (d->atEnd || !last)
        return false;
    const QList<TRecordValues> rows = q->FetchAfter(*last, d->packet);
    for (const TRecordValues &row : rows)
        d->window.append({row, false});
    if (rows.size() < d->packet)
        d->atEnd = true;
    // Keep the window bounded: drop from the front what the cursor left.
    const int excess = int(d->window.size()) - d->maxWindow();
    const int canDrop = std::max(0, d->cur - d->keepBefore);
    const int drop = std::min(excess, canDrop);
    if (drop > 0 && d->state != dsInsert) {
        d->window.erase(d->window.begin(), d->window.begin() + drop);
        d->cur -= drop;
        d->atStart = false;
        if (d->firstRecNo > 0)
            d->firstRecNo += drop;
    }
    return !rows.isEmpty();
}

bool TDataSet::Private::fetchBeforeWindow()
{
    Private *d = this;
    const TRecordValues *first = d->firstStored();
    if (d->atStart || !first)
        return false;
    const QList<TRecordValues> rows = q->FetchBefore(*first, d->packet);
    for (auto it = rows.crbegin(); it != rows.crend(); ++it)
        d->window.prepend({*it, false});
    const int added = int(rows.size());
    d->cur += added;
    if (d->firstRecNo > 0)
        d->firstRecNo = std::max(1, d->firstRecNo - added);
    if (rows.size() < d->packet) {
        d->atStart = true;
        d->firstRecNo = 1;
    }
    const int excess = int(d->window.size()) - d->maxWindow();
    const int canDrop = std::max(0, int(d->window.size()) - 1 - d->cur - d->keepAfter);
    const int drop = std::min(excess, canDrop);
    if (drop > 0 && d->state != dsInsert) {
        d->window.erase(d->window.end() - drop, d->window.end());
        d->atEnd = false;
    }
    return added > 0;
}

void TDataSet::EnsureRecords(int Before, int After)
{
    CheckActive();
    d->keepBefore = std::max(0, Before);
    d->keepAfter = std::max(0, After);
    while (RecordsAfter() < d->keepAfter && d->fetchAfterWindow()) { }
    while (RecordsBefore() < d->keepBefore && d->fetchBeforeWindow()) { }
}

int TDataSet::RecordsBefore() const
{
    return std::max(0, d->cur);
}

int TDataSet::RecordsAfter() const
{
    return d->cur < 0 ? 0 : int(d->window.size()) - 1 - d->cur;
}

QVariant TDataSet::RecordValue(int Offset, int FieldIndex) const
{
    if (Offset == 0)
        return CurrentValue(FieldIndex);
    const int index = d->cur + Offset;
    if (d->cur < 0 || index < 0 || index >= d->window.size())
        return QVariant();
    return d->window.at(index).values.value(FieldIndex);
}

bool TDataSet::IsInsertedRecord(int Offset) const
{
    const int index = d->cur + Offset;
    return d->cur >= 0 && index >= 0 && index < d->window.size() && d->window.at(index).inserted;
}

int TDataSet::BufferedRecords() const
{
    return int(d->window.size());
}

int TDataSet::PacketRecords() const
{
    return d->packet;
}

void TDataSet::SetPacketRecords(int Value)
{
    const auto before = PacketRecords();
    d->packet = std::max(2, Value);
    if (PacketRecords() != before)
        Q_EMIT packetRecordsChanged();
}

// ---- moving

void TDataSet::First()
{
    CheckActive();
    CheckBrowseMode();
    if (BeforeScroll)
        BeforeScroll(this);
    if (!d->atStart) {
        d->window.clear();
        for (const TRecordValues &row : FetchFirst(d->packet))
            d->window.append({row, false});
        d->atStart = true;
        d->atEnd = d->window.size() < d->packet;
        d->firstRecNo = 1;
    }
    d->cur = d->window.isEmpty() ? -1 : 0;
    d->bof = true;
    d->eof = d->window.isEmpty();
    NotifyLinks(deDataSetChange);
    if (AfterScroll)
        AfterScroll(this);
}

// The window becomes the last page of records, unless it holds it already.
void TDataSet::LoadLastWindow()
{
    if (d->atEnd)
        return;
    d->window.clear();
    for (const TRecordValues &row : FetchLast(d->packet))
        d->window.append({row, false});
    d->atEnd = true;
    d->atStart = d->window.size() < d->packet;
    d->firstRecNo = d->atStart ? 1
        : d->recordCount >= 0  ? d->recordCount - int(d->window.size()) + 1
                               : 0;
}

void TDataSet::Last()
{
    CheckActive();
    CheckBrowseMode();
    if (BeforeScroll)
        BeforeScroll(this);
    LoadLastWindow();
    d->cur = int(d->window.size()) - 1;
    d->eof = true;
    d->bof = d->window.isEmpty();
    NotifyLinks(deDataSetChange);
    if (AfterScroll)
        AfterScroll(this);
}

void TDataSet::Next()
{
    MoveBy(1);
}

void TDataSet::Prior()
{
    MoveBy(-1);
}

int TDataSet::MoveBy(int Distance)
{
    CheckActive();
    CheckBrowseMode();
    if (BeforeScroll)
        BeforeScroll(this);
    int moved = 0;
    if (Distance > 0 && !d->window.isEmpty()) {
        d->bof = false;
        while (moved < Distance) {
            if (d->cur + 1 >= d->window.size() && !d->fetchAfterWindow())
                break;
            if (d->cur + 1 >= d->window.size())
                break;
            ++d->cur;
            ++moved;
        }
        d->eof = moved < Distance;
    } else if (Distance < 0 && !d->window.isEmpty()) {
        d->eof = false;
        while (moved > Distance) {
            if (d->cur == 0 && !d->fetchBeforeWindow())
                break;
            if (d->cur == 0)
                break;
            --d->cur;
            --moved;
        }
        d->bof = moved > Distance;
    }
    if (moved != 0)
        NotifyLinks(deDataSetScroll, nullptr, moved);
    if (AfterScroll)
        AfterScroll(this);
    return moved;
}

bool TDataSet::Bof() const
{
    return d->bof;
}

bool TDataSet::Eof() const
{
    return d->eof;
}

bool TDataSet::IsEmpty() const
{
    return d->window.isEmpty();
}

int TDataSet::RecNo() const
{
    if (d->state == dsInsert || d->cur < 0 || d->firstRecNo <= 0)
        return -1;
    return d->firstRecNo + d->cur;
}

void TDataSet::SetRecNo(int Value)
{
    CheckActive();
    CheckBrowseMode();
    const int count = RecordCount();
    if (count >= 0)
        Value = std::clamp(Value, 1, std::max(1, count));
    if (d->firstRecNo > 0 && Value >= d->firstRecNo && Value < d->firstRecNo + d->window.size()) {
        MoveBy(Value - RecNo());
        return;
    }
    if (BeforeScroll)
        BeforeScroll(this);
    const int offset = std::max(0, Value - 1 - d->packet / 2);
    d->window.clear();
    for (const TRecordValues &row : FetchAt(offset, d->packet))
        d->window.append({row, false});
    d->firstRecNo = offset + 1;
    d->atStart = offset == 0;
    d->atEnd = d->window.size() < d->packet;
    d->cur = d->window.isEmpty() ? -1 : std::min(Value - 1 - offset, int(d->window.size()) - 1);
    d->bof = d->cur <= 0 && d->atStart;
    d->eof = d->window.isEmpty();
    NotifyLinks(deDataSetChange);
    if (AfterScroll)
        AfterScroll(this);
}

int TDataSet::RecordCount() const
{
    if (d->state == dsInactive)
        return -1;
    if (d->atStart && d->atEnd)
        return d->storedCount();
    return d->recordCount;
}

void TDataSet::SetRecordCount(int Count)
{
    if (d->state == dsInactive)
        return;
    d->recordCount = Count;
    if (d->firstRecNo <= 0 && d->atEnd)
        d->firstRecNo = Count - d->storedCount() + 1;
    Q_EMIT RecordCountChanged(Count);
}

// ---- reading and writing the current record

int TDataSet::ActiveOffset() const
{
    return d->activeOffset;
}

void TDataSet::SetActiveOffset(int Offset)
{
    d->activeOffset = Offset;
}

QVariant TDataSet::CurrentValue(int FieldIndex) const
{
    if (d->activeOffset != 0) {
        const int index = d->cur + d->activeOffset;
        return d->cur >= 0 && index >= 0 && index < d->window.size()
            ? d->window.at(index).values.value(FieldIndex)
            : QVariant();
    }
    if (d->editing())
        return d->buffer.value(FieldIndex);
    if (d->cur < 0 || d->cur >= d->window.size())
        return QVariant();
    return d->window.at(d->cur).values.value(FieldIndex);
}

void TDataSet::SetCurrentValue(int FieldIndex, const QVariant &Value)
{
    TField *field = d->fields.value(FieldIndex);
    if (!field)
        return;
    if (!d->editing())
        throw EDatabaseError(QStringLiteral("Záznam není otevřen pro úpravy."));
    if (field->ReadOnly())
        throw EDatabaseError(QStringLiteral("Pole „%1“ je jen pro čtení.").arg(field->FieldName()));
    const QVariant value = field->Normalized(Value);
    if (d->buffer.value(FieldIndex) == value &&
        d->buffer.value(FieldIndex).isNull() == value.isNull())
        return;
    d->buffer[FieldIndex] = value;
    d->modified = true;
    if (d->state == dsInsert && d->cur >= 0)
        d->window[d->cur].values = d->buffer;
    NotifyLinks(deFieldChange, field);
}

bool TDataSet::Modified() const
{
    return d->editing() && d->modified;
}

bool TDataSet::CanModify() const
{
    return Active() && DoCanModify();
}

void TDataSet::Edit()
{
    CheckActive();
    if (d->editing())
        return;
    if (d->window.isEmpty()) {
        Append();
        return;
    }
    if (!DoCanModify())
        throw EDatabaseError(QStringLiteral("Tato data nelze měnit."));
    if (BeforeEdit)
        BeforeEdit(this);
    d->original = d->window.at(d->cur).values;
    d->buffer = d->original;
    d->modified = false;
    SetState(dsEdit);
    NotifyLinks(deRecordChange);
    if (AfterEdit)
        AfterEdit(this);
}

static TRecordValues emptyRecord(int width)
{
    return TRecordValues(width);
}

// What Insert and Append check and announce before the new record exists.
void TDataSet::PrepareNewRecord()
{
    CheckActive();
    CheckBrowseMode();
    if (!DoCanModify())
        throw EDatabaseError(QStringLiteral("Tato data nelze měnit."));
    if (BeforeInsert)
        BeforeInsert(this);
    if (BeforeScroll)
        BeforeScroll(this);
}

// The record at the cursor, just added to the window, becomes the one being
// inserted: empty values, the new-record handler, then the links and the
// after-events.
void TDataSet::StartNewRecord()
{
    d->buffer = emptyRecord(RecordWidth());
    d->original = d->buffer;
    d->modified = false;
    d->state = dsInsert;
    if (OnNewRecord)
        OnNewRecord(this);
    d->window[d->cur].values = d->buffer;
    NotifyLinks(deUpdateState);
    NotifyLinks(deDataSetChange);
    if (AfterInsert)
        AfterInsert(this);
    if (AfterScroll)
        AfterScroll(this);
}

void TDataSet::Insert()
{
    PrepareNewRecord();
    const int at = std::max(0, d->cur);
    d->insertReturn = d->cur;
    d->window.insert(at, {emptyRecord(RecordWidth()), true});
    d->cur = at;
    StartNewRecord();
}

void TDataSet::Append()
{
    PrepareNewRecord();
    LoadLastWindow();
    d->insertReturn = int(d->window.size()) - 1;
    d->window.append({emptyRecord(RecordWidth()), true});
    d->cur = int(d->window.size()) - 1;
    d->eof = true;
    StartNewRecord();
}

// Fills the window around a record: the records before and after it by
// key, and the record itself when storage still holds it.
void TDataSet::Private::loadAround(const TRecordValues &record, bool includeRecord)
{
    Private *d = this;
    const int half = std::max(1, d->packet / 2);
    const QList<TRecordValues> head = q->FetchBefore(record, half);
    const QList<TRecordValues> tail = q->FetchAfter(record, d->packet);
    d->window.clear();
    for (const TRecordValues &row : head)
        d->window.append({row, false});
    if (includeRecord)
        d->window.append({record, false});
    for (const TRecordValues &row : tail)
        d->window.append({row, false});
    d->atStart = head.size() < half;
    d->atEnd = tail.size() < d->packet;
    d->firstRecNo = d->atStart ? 1 : 0;
    if (d->firstRecNo == 0 && d->atEnd && d->recordCount >= 0)
        d->firstRecNo = d->recordCount - int(d->window.size()) + 1;
    if (d->window.isEmpty())
        d->cur = -1;
    else
        d->cur = std::min(int(head.size()), int(d->window.size()) - 1);
    d->bof = d->cur <= 0 && d->atStart;
    d->eof = d->window.isEmpty();
}

void TDataSet::Post()
{
    CheckActive();
    if (!d->editing())
        return;
    NotifyLinks(deUpdateRecord);
    if (BeforePost)
        BeforePost(this);
    if (d->state == dsEdit) {
        if (d->buffer != d->original) {
            if (!DoUpdate(d->original, d->buffer)) {
                TRecordValues current;
                if (!FetchCurrent(d->original, current))
                    throw EDatabaseError(QStringLiteral(
                        "Záznam mezitím smazal jiný uživatel. Vaše změny nebyly uloženy a "
                        "zůstávají v rozpracovaném záznamu; klávesou Esc je zahodíte."));
                // Saving once more now deliberately overwrites the other
                // user's values, which the user was just told about.
                d->original = current;
                throw EDatabaseError(QStringLiteral(
                    "Záznam mezitím změnil jiný uživatel. Vaše změny nebyly uloženy a zůstávají "
                    "v rozpracovaném záznamu. Dalším uložením přepíšete změny druhého "
                    "uživatele, klávesou Esc je zahodíte."));
            }
            d->window[d->cur].values = d->buffer;
        }
        d->modified = false;
        d->state = dsBrowse;
        NotifyLinks(deUpdateState);
        NotifyLinks(deRecordChange);
    } else {
        const TRecordValues stored = DoInsert(d->buffer);
        d->modified = false;
        d->state = dsBrowse;
        if (d->recordCount >= 0)
            ++d->recordCount;
        d->loadAround(stored, true);
        NotifyLinks(deUpdateState);
        NotifyLinks(deDataSetChange);
        if (d->recordCount >= 0)
            Q_EMIT RecordCountChanged(d->recordCount);
    }
    if (AfterPost)
        AfterPost(this);
}

void TDataSet::Cancel()
{
    if (!d->editing())
        return;
    if (BeforeCancel)
        BeforeCancel(this);
    if (d->state == dsInsert) {
        const int at = d->cur;
        d->window.removeAt(at);
        if (d->window.isEmpty())
            d->cur = -1;
        else
            d->cur = std::clamp(d->insertReturn < at ? d->insertReturn : at, 0,
                                int(d->window.size()) - 1);
        d->eof = d->window.isEmpty();
        d->bof = d->window.isEmpty();
    }
    d->buffer.clear();
    d->original.clear();
    d->modified = false;
    d->state = dsBrowse;
    NotifyLinks(deUpdateState);
    NotifyLinks(deDataSetChange);
    if (AfterCancel)
        AfterCancel(this);
}

void TDataSet::Delete()
{
    CheckActive();
    if (d->state == dsInsert) {
        Cancel();
        return;
    }
    if (d->window.isEmpty())
        throw EDatabaseError(QStringLiteral("Nelze mazat: datová sada je prázdná."));
    if (!DoCanModify())
        throw EDatabaseError(QStringLiteral("Tato data nelze měnit."));
    if (BeforeDelete)
        BeforeDelete(this);
    if (BeforeScroll)
        BeforeScroll(this);
    const TRecordValues record = d->state == dsEdit ? d->original : d->window.at(d->cur).values;
    DoDelete(record);
    d->buffer.clear();
    d->original.clear();
    d->modified = false;
    d->state = dsBrowse;
    d->window.removeAt(d->cur);
    if (d->recordCount >= 0)
        --d->recordCount;
    if (d->window.isEmpty()) {
        d->loadAround(record, false);
    } else if (d->cur >= d->window.size()) {
        d->fetchAfterWindow();
        d->cur = std::min(d->cur, int(d->window.size()) - 1);
    }
    d->eof = d->window.isEmpty();
    d->bof = d->window.isEmpty();
    NotifyLinks(deUpdateState);
    NotifyLinks(deDataSetChange);
    if (d->recordCount >= 0)
        Q_EMIT RecordCountChanged(d->recordCount);
    if (AfterDelete)
        AfterDelete(this);
    if (AfterScroll)
        AfterScroll(this);
}

void TDataSet::CheckBrowseMode()
{
    CheckActive();
    if (!d->editing())
        return;
    NotifyLinks(deUpdateRecord);
    if (d->modified)
        Post();
    else
        Cancel();
}

void TDataSet::Refresh()
{
    CheckActive();
    CheckBrowseMode();
    if (d->cur < 0) {
        d->window.clear();
        for (const TRecordValues &row : FetchFirst(d->packet))
            d->window.append({row, false});
        d->atStart = true;
        d->atEnd = d->window.size() < d->packet;
        d->firstRecNo = 1;
        d->cur = d->window.isEmpty() ? -1 : 0;
    } else {
        const TRecordValues record = d->window.at(d->cur).values;
        TRecordValues current;
        const bool exists = FetchCurrent(record, current);
        d->loadAround(exists ? current : record, exists);
    }
    d->eof = d->window.isEmpty();
    d->bof = d->window.isEmpty();
    if (!(d->atStart && d->atEnd))
        StartRecordCount();
    NotifyLinks(deDataSetChange);
}

bool TDataSet::MoveToRecord(const TRecordValues &Record)
{
    CheckActive();
    CheckBrowseMode();
    TRecordValues current;
    if (!FetchCurrent(Record, current))
        return false;
    if (BeforeScroll)
        BeforeScroll(this);
    d->loadAround(current, true);
    NotifyLinks(deDataSetChange);
    if (AfterScroll)
        AfterScroll(this);
    return true;
}

// ---- fields and controls

const QList<TField *> &TDataSet::Fields() const
{
    return d->fields;
}

int TDataSet::FieldCount() const
{
    return int(d->fields.size());
}

TField *TDataSet::FindField(const QString &FieldName) const
{
    for (TField *field : d->fields) {
        if (field->FieldName().compare(FieldName, Qt::CaseInsensitive) == 0)
            return field;
    }
    return nullptr;
}

TField *TDataSet::FieldByName(const QString &FieldName) const
{
    TField *field = FindField(FieldName);
    if (!field)
        throw EDatabaseError(QStringLiteral("Pole „%1“ nebylo nalezeno.").arg(FieldName));
    return field;
}

void TDataSet::DisableControls()
{
    ++d->disableCount;
}

void TDataSet::EnableControls()
{
    if (d->disableCount == 0)
        return;
    if (--d->disableCount == 0 && d->changedWhileDisabled) {
        d->changedWhileDisabled = false;
        if (d->stateChangedWhileDisabled) {
            d->stateChangedWhileDisabled = false;
            NotifyLinks(deUpdateState);
        }
        NotifyLinks(deDataSetChange);
    }
}

bool TDataSet::ControlsDisabled() const
{
    return d->disableCount > 0;
}

} // namespace oxa
