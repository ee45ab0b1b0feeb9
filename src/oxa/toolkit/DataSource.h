#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/DataSet.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>

namespace oxa {

// What a data set tells its links.
enum TDataEvent {
    deFieldChange,     // a field of the current record changed (Field)
    deRecordChange,    // the current record's values changed (Field may be null)
    deDataSetChange,   // anything may have changed: show everything again
    deDataSetScroll,   // the cursor moved (Info: the distance, when known)
    deUpdateRecord,    // about to post: controls write their pending text
    deUpdateState,     // the state (browse, edit, insert) changed
    deActiveChange,    // the data set opened or closed
    deCheckBrowseMode, // the cursor is about to move
};

class TDataLink;

// Connects data-aware controls to a data set. Several controls share one
// source; the source may be switched to another data set at run time.
class OXA_EXPORT TDataSource : public QObject
{
    Q_OBJECT
public:
    explicit TDataSource(QObject *parent = nullptr);
    ~TDataSource() override;

    TDataSet *DataSet() const;
    void SetDataSet(TDataSet *Value);
    TDataSetState State() const;
    // Starts editing the current record when the data set is browsing.
    void Edit();

    std::function<void(TDataSource *Sender, TField *Field)> OnDataChange;
    std::function<void(TDataSource *Sender)> OnStateChange;

private:
    friend class TDataLink;
    friend class TDataSet;
    void Notify(TDataEvent Event, TField *Field, int Info);
    void AddLink(TDataLink *Link);
    void RemoveLink(TDataLink *Link);

    QPointer<TDataSet> m_dataSet;
    QList<TDataLink *> m_links;
};

// A control's connection to a data source. The control derives from it (or
// owns one) and overrides the notifications it cares for.
class OXA_EXPORT TDataLink
{
public:
    TDataLink() = default;
    virtual ~TDataLink();
    TDataLink(const TDataLink &) = delete;
    TDataLink &operator=(const TDataLink &) = delete;

    TDataSource *DataSource() const { return m_source; }
    void SetDataSource(TDataSource *Value);
    TDataSet *DataSet() const;
    // Whether the data source has an open data set.
    bool Active() const;
    bool Editing() const;
    // Puts the data set into edit state (when it may) and tells whether it is.
    bool Edit();

protected:
    virtual void ActiveChanged() { }
    virtual void DataSetChanged() { }
    virtual void DataSetScrolled(int Distance)
    {
        Q_UNUSED(Distance)
        DataSetChanged();
    }
    virtual void RecordChanged(TField *Field) { Q_UNUSED(Field) }
    virtual void EditingChanged() { }
    virtual void UpdateData() { }

private:
    friend class TDataSource;
    void DataEvent(TDataEvent Event, TField *Field, int Info);
    QPointer<TDataSource> m_source;
};

// The link of a control that shows one field of the current record.
class OXA_EXPORT TFieldDataLink : public TDataLink
{
public:
    QString FieldName() const { return m_fieldName; }
    void SetFieldName(const QString &Value);
    // The field, or null when the data set is closed or has no such field.
    TField *Field() const;
    bool CanModify() const;

    // The control shows the field's value again.
    std::function<void()> OnDataChange;
    // The control writes its pending value into the field.
    std::function<void()> OnUpdateData;
    // The data set entered or left an edit state.
    std::function<void()> OnEditingChange;
    std::function<void()> OnActiveChange;

protected:
    void ActiveChanged() override;
    void DataSetChanged() override;
    void RecordChanged(TField *Field) override;
    void EditingChanged() override;
    void UpdateData() override;

private:
    QString m_fieldName;
};

} // namespace oxa
