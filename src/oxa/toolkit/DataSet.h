#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/Exceptions.h"

#include <QDate>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QVector>

#include <functional>
#include <memory>

namespace oxa {

// A failure of a data set: a closed data set asked for data, a field that
// does not exist, a record that could not be stored. The message is the
// Czech text the user reads.
class OXA_EXPORT EDatabaseError : public Exception
{
    using Exception::Exception;
};

enum TFieldType { ftUnknown, ftBoolean, ftInteger, ftFloat, ftString, ftDate, ftDateTime };

enum TDataSetState { dsInactive, dsBrowse, dsEdit, dsInsert };

class TDataSet;
class TDataSource;

// One column of a data set's records. A field reads and writes the current
// record of its data set; its value is always of the field's own type
// (a Boolean field holds a real bool, an integer field a qlonglong).
class OXA_EXPORT TField
{
public:
    TField(TDataSet *DataSet, int Index, const QString &FieldName, TFieldType DataType);

    TDataSet *DataSet() const { return m_dataSet; }
    int Index() const { return m_index; }
    QString FieldName() const { return m_fieldName; }
    TFieldType DataType() const { return m_dataType; }
    bool ReadOnly() const { return m_readOnly; }
    void SetReadOnly(bool Value) { m_readOnly = Value; }
    // Whether the field is part of the key that names a record.
    bool IsKey() const { return m_isKey; }
    void SetIsKey(bool Value) { m_isKey = Value; }
    QString DisplayLabel() const { return m_displayLabel.isEmpty() ? m_fieldName : m_displayLabel; }
    void SetDisplayLabel(const QString &Value) { m_displayLabel = Value; }
    // Numbers are right-aligned, everything else left-aligned.
    Qt::Alignment Alignment() const;

    QVariant AsVariant() const;
    void SetAsVariant(const QVariant &Value);
    qlonglong AsInteger() const;
    void SetAsInteger(qlonglong Value) { SetAsVariant(Value); }
    bool AsBoolean() const;
    void SetAsBoolean(bool Value) { SetAsVariant(Value); }
    double AsFloat() const;
    void SetAsFloat(double Value) { SetAsVariant(Value); }
    QString AsString() const;
    void SetAsString(const QString &Value);
    QDate AsDate() const;
    void SetAsDate(const QDate &Value) { SetAsVariant(Value); }
    bool IsNull() const { return AsVariant().isNull(); }
    void Clear() { SetAsVariant(QVariant()); }
    // The text a control shows for the value: Czech number and date forms,
    // "Ano"/"Ne" for a Boolean, empty for a null.
    QString DisplayText() const;

    // Converts a value coming from a database or a control to the field's
    // type; a value that does not convert becomes null.
    QVariant Normalized(const QVariant &Value) const;
    QString DisplayTextOf(const QVariant &Value) const;

private:
    TDataSet *m_dataSet;
    int m_index;
    QString m_fieldName;
    QString m_displayLabel;
    TFieldType m_dataType;
    bool m_readOnly = false;
    bool m_isKey = false;
};

// One record as a data set holds it: the values of its fields in field
// order, followed by hidden key values a provider may need.
using TRecordValues = QVector<QVariant>;

// A cursor over records with the toolkit's states and events. The data set
// keeps only a bounded window of records around the cursor; a provider
// (the SQL data set) fills it page by page. Data-aware controls follow the
// data set through a TDataSource.
//
// Failures are EDatabaseError exceptions with a Czech message; a record
// whose Post failed stays in its edit or insert state with the user's
// values.
class OXA_EXPORT TDataSet : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool Active READ Active WRITE SetActive NOTIFY ActiveChanged)
    Q_PROPERTY(
        int PacketRecords READ PacketRecords WRITE SetPacketRecords NOTIFY packetRecordsChanged)

public:
    using TDataSetNotifyEvent = std::function<void(TDataSet *DataSet)>;

    explicit TDataSet(QObject *parent = nullptr);
    ~TDataSet() override;

    void Open();
    void Close();
    bool Active() const;
    void SetActive(bool Value);
    TDataSetState State() const;

    void First();
    void Last();
    void Next();
    void Prior();
    // Moves by Distance records (negative: back) and returns how far it got.
    int MoveBy(int Distance);
    bool Bof() const;
    bool Eof() const;
    bool IsEmpty() const;
    // The current record's number from 1; -1 while it is not known (the
    // number of records is still being counted).
    int RecNo() const;
    // Jumps to a record by its number; this is what a dragged scroll-bar
    // thumb does, and the only move that reads by position.
    void SetRecNo(int Value);
    // The number of records; -1 while it is being counted.
    int RecordCount() const;

    void Edit();
    void Insert();
    void Append();
    void Post();
    void Cancel();
    void Delete();
    // Posts a pending edit or insert; a data set in browse state stays.
    void CheckBrowseMode();
    // Whether a field of the record being edited or inserted was changed.
    bool Modified() const;
    bool CanModify() const;
    // Reads the window again around the current record.
    void Refresh();

    const QList<TField *> &Fields() const;
    int FieldCount() const;
    // The field of that name (case-insensitive); EDatabaseError when none.
    TField *FieldByName(const QString &FieldName) const;
    TField *FindField(const QString &FieldName) const;

    // While disabled (counted), data links are not told of moves and
    // changes; enabling tells them that everything changed.
    void DisableControls();
    void EnableControls();
    bool ControlsDisabled() const;

    // Records around the cursor for a control that shows several: makes
    // the window hold up to Before records before the current one and up
    // to After records after it (as far as they exist) without moving the
    // cursor. RecordsBefore/RecordsAfter tell how many are there.
    void EnsureRecords(int Before, int After);
    int RecordsBefore() const;
    int RecordsAfter() const;
    // A field's value in the record Offset records from the current one
    // (0: the current one, with its pending edits).
    QVariant RecordValue(int Offset, int FieldIndex) const;
    // Whether the record Offset away is the one being inserted.
    bool IsInsertedRecord(int Offset) const;
    // While a grid paints a row, the fields read the record Offset away from
    // the cursor (the toolkit's active record); 0 again afterwards.
    int ActiveOffset() const;
    void SetActiveOffset(int Offset);
    // Records held in memory now; bounded whatever the size of the table.
    int BufferedRecords() const;

    int PacketRecords() const;
    void SetPacketRecords(int Value);

    TDataSetNotifyEvent BeforeOpen, AfterOpen, BeforeClose, AfterClose;
    TDataSetNotifyEvent BeforeScroll, AfterScroll;
    TDataSetNotifyEvent BeforeEdit, AfterEdit, BeforeInsert, AfterInsert;
    TDataSetNotifyEvent BeforePost, AfterPost, BeforeCancel, AfterCancel;
    TDataSetNotifyEvent BeforeDelete, AfterDelete;
    // Called when a new record is started; the place to set defaults.
    TDataSetNotifyEvent OnNewRecord;

Q_SIGNALS:
    void packetRecordsChanged();
    void ActiveChanged();
    void RecordCountChanged(int Count);

protected:
    // The provider: reads and writes records of the underlying storage.
    // Pages are in key order; Before/After exclude the given record.
    virtual QList<TField *> DoOpen() = 0;
    virtual void DoClose() = 0;
    virtual QList<TRecordValues> FetchFirst(int Count) = 0;
    virtual QList<TRecordValues> FetchLast(int Count) = 0;
    virtual QList<TRecordValues> FetchAfter(const TRecordValues &Record, int Count) = 0;
    virtual QList<TRecordValues> FetchBefore(const TRecordValues &Record, int Count) = 0;
    virtual QList<TRecordValues> FetchAt(int Offset, int Count) = 0;
    // The record as storage holds it now; false when it is gone.
    virtual bool FetchCurrent(const TRecordValues &Record, TRecordValues &Current) = 0;
    // Stores an edited record named by its key and its original values;
    // true when exactly that one record was changed, false when storage no
    // longer holds the record as it was read.
    virtual bool DoUpdate(const TRecordValues &Original, const TRecordValues &Edited) = 0;
    // Stores a new record and returns it as storage completed it.
    virtual TRecordValues DoInsert(const TRecordValues &Values) = 0;
    virtual void DoDelete(const TRecordValues &Record) = 0;
    virtual bool DoCanModify() const = 0;
    // Starts counting the records; the provider reports through SetRecordCount.
    virtual void StartRecordCount() = 0;
    // Number of stored values per record (fields and hidden key values).
    virtual int RecordWidth() const;

    void SetRecordCount(int Count);
    // Moves to a stored record (only its key values are looked at); false,
    // and the cursor where it was, when storage does not hold it.
    bool MoveToRecord(const TRecordValues &Record);
    // For a field: its value in the current record / a change of it.
    friend class TField;
    QVariant CurrentValue(int FieldIndex) const;
    void SetCurrentValue(int FieldIndex, const QVariant &Value);

private:
    void NotifyLinks(int Event, TField *Field = nullptr, int Info = 0);
    void AttachDataSource(TDataSource *Source);
    void DetachDataSource(TDataSource *Source);
    friend class TDataSource;
    void CheckActive() const;
    void SetState(TDataSetState Value);
    void LoadLastWindow();
    void PrepareNewRecord();
    void StartNewRecord();

    struct OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

} // namespace oxa
