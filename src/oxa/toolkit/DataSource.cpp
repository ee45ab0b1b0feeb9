#include "oxa/toolkit/DataSource.h"

namespace oxa {

TDataSource::TDataSource(QObject *parent) : QObject(parent) { }

TDataSource::~TDataSource()
{
    SetDataSet(nullptr);
    const auto links = m_links;
    for (TDataLink *link : links)
        link->m_source = nullptr;
}

TDataSet *TDataSource::DataSet() const
{
    return m_dataSet;
}

void TDataSource::SetDataSet(TDataSet *Value)
{
    if (m_dataSet == Value)
        return;
    if (m_dataSet)
        m_dataSet->DetachDataSource(this);
    m_dataSet = Value;
    if (m_dataSet)
        m_dataSet->AttachDataSource(this);
    Notify(deActiveChange, nullptr, 0);
}

TDataSetState TDataSource::State() const
{
    return m_dataSet ? m_dataSet->State() : dsInactive;
}

void TDataSource::Edit()
{
    if (m_dataSet && m_dataSet->State() == dsBrowse)
        m_dataSet->Edit();
}

void TDataSource::Notify(TDataEvent Event, TField *Field, int Info)
{
    const auto links = m_links;
    for (TDataLink *link : links) {
        if (m_links.contains(link))
            link->DataEvent(Event, Field, Info);
    }
    if (Event == deUpdateState && OnStateChange)
        OnStateChange(this);
    if ((Event == deFieldChange || Event == deRecordChange || Event == deDataSetChange ||
         Event == deDataSetScroll) &&
        OnDataChange)
        OnDataChange(this, Field);
}

void TDataSource::AddLink(TDataLink *Link)
{
    if (!m_links.contains(Link))
        m_links.append(Link);
}

void TDataSource::RemoveLink(TDataLink *Link)
{
    m_links.removeAll(Link);
}

TDataLink::~TDataLink()
{
    if (m_source)
        m_source->RemoveLink(this);
}

void TDataLink::SetDataSource(TDataSource *Value)
{
    if (m_source == Value)
        return;
    if (m_source)
        m_source->RemoveLink(this);
    m_source = Value;
    if (m_source)
        m_source->AddLink(this);
    ActiveChanged();
}

TDataSet *TDataLink::DataSet() const
{
    return m_source ? m_source->DataSet() : nullptr;
}

bool TDataLink::Active() const
{
    return DataSet() && DataSet()->Active();
}

bool TDataLink::Editing() const
{
    const TDataSetState state = m_source ? m_source->State() : dsInactive;
    return state == dsEdit || state == dsInsert;
}

bool TDataLink::Edit()
{
    if (!Active())
        return false;
    if (!Editing() && DataSet()->CanModify())
        DataSet()->Edit();
    return Editing();
}

void TDataLink::DataEvent(TDataEvent Event, TField *Field, int Info)
{
    switch (Event) {
    case deActiveChange:
        ActiveChanged();
        break;
    case deDataSetChange:
        DataSetChanged();
        break;
    case deDataSetScroll:
        DataSetScrolled(Info);
        break;
    case deFieldChange:
    case deRecordChange:
        RecordChanged(Field);
        break;
    case deUpdateState:
        EditingChanged();
        break;
    case deUpdateRecord:
        UpdateData();
        break;
    case deCheckBrowseMode:
        break;
    }
}

void TFieldDataLink::SetFieldName(const QString &Value)
{
    m_fieldName = Value;
    DataSetChanged();
}

TField *TFieldDataLink::Field() const
{
    return Active() ? DataSet()->FindField(m_fieldName) : nullptr;
}

bool TFieldDataLink::CanModify() const
{
    TField *field = Field();
    return field && !field->ReadOnly() && DataSet()->CanModify();
}

void TFieldDataLink::ActiveChanged()
{
    if (OnActiveChange)
        OnActiveChange();
    DataSetChanged();
}

void TFieldDataLink::DataSetChanged()
{
    if (OnDataChange)
        OnDataChange();
}

void TFieldDataLink::RecordChanged(TField *Field)
{
    if (!Field || Field == this->Field())
        DataSetChanged();
}

void TFieldDataLink::EditingChanged()
{
    if (OnEditingChange)
        OnEditingChange();
}

void TFieldDataLink::UpdateData()
{
    if (OnUpdateData)
        OnUpdateData();
}

} // namespace oxa
