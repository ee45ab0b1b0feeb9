#include "oxa/toolkit/DBControls.h"

#include "oxa/toolkit/MessageService.h"

#include <QSignalBlocker>

namespace oxa {

namespace {

TField *fieldOf(const TFieldDataLink &link)
{
    return link.Field();
}

} // namespace

// ---------------------------------------------------------------------------
// TDBEdit

struct TDBEdit::Private
{
    TFieldDataLink link;
    bool modified = false; // the user typed since the field was shown
};

TDBEdit::TDBEdit(QWidget *parent) : TWinControl<QLineEdit>(parent), d(new Private)
{
    d->link.OnDataChange = [this] {
        if (d->modified)
            return;
        TField *field = Field();
        const QSignalBlocker blocker(this);
        setText(field ? field->DisplayText() : QString());
        setReadOnly(!d->link.CanModify());
    };
    d->link.OnUpdateData = [this] { UpdateRecord(); };
    connect(this, &QLineEdit::textEdited, this, [this] {
        // Mark first: entering edit state shows the record again.
        d->modified = true;
        if (!d->link.Edit()) {
            d->modified = false;
            d->link.OnDataChange();
        }
    });
}

TDBEdit::~TDBEdit() = default;

TDataSource *TDBEdit::DataSource() const
{
    return d->link.DataSource();
}
void TDBEdit::SetDataSource(TDataSource *Value)
{
    d->link.SetDataSource(Value);
}
QString TDBEdit::DataField() const
{
    return d->link.FieldName();
}
void TDBEdit::SetDataField(const QString &Value)
{
    const auto before = DataField();
    d->link.SetFieldName(Value);
    if (DataField() != before)
        Q_EMIT dataFieldChanged();
}
TField *TDBEdit::Field() const
{
    return fieldOf(d->link);
}

void TDBEdit::UpdateRecord()
{
    TField *field = Field();
    if (!d->modified || !field)
        return;
    d->modified = false;
    if (field->DisplayText() != text())
        field->SetAsString(text());
}

void TDBEdit::KeyDown(Word &Key, TShiftState Shift)
{
    if (Key == VK_ESCAPE && d->modified) {
        d->modified = false;
        d->link.OnDataChange();
        Key = 0;
    }
    TWinControl<QLineEdit>::KeyDown(Key, Shift);
}

void TDBEdit::DoExit()
{
    UpdateRecord();
    TWinControl<QLineEdit>::DoExit();
}

// ---------------------------------------------------------------------------
// TDBComboBox

struct TDBComboBox::Private
{
    TFieldDataLink link;
    bool modified = false;
};

TDBComboBox::TDBComboBox(QWidget *parent) : TWinControl<QComboBox>(parent), d(new Private)
{
    setEditable(true);
    d->link.OnDataChange = [this] {
        if (d->modified)
            return;
        TField *field = Field();
        const QSignalBlocker blocker(this);
        setCurrentText(field ? field->DisplayText() : QString());
    };
    d->link.OnUpdateData = [this] { UpdateRecord(); };
    auto changed = [this] {
        d->modified = true;
        if (!d->link.Edit()) {
            d->modified = false;
            d->link.OnDataChange();
        }
    };
    connect(lineEdit(), &QLineEdit::textEdited, this, changed);
    connect(this, qOverload<int>(&QComboBox::activated), this, [this, changed](int) {
        changed();
        UpdateRecord();
    });
}

TDBComboBox::~TDBComboBox() = default;

TDataSource *TDBComboBox::DataSource() const
{
    return d->link.DataSource();
}
void TDBComboBox::SetDataSource(TDataSource *Value)
{
    d->link.SetDataSource(Value);
}
QString TDBComboBox::DataField() const
{
    return d->link.FieldName();
}
void TDBComboBox::SetDataField(const QString &Value)
{
    const auto before = DataField();
    d->link.SetFieldName(Value);
    if (DataField() != before)
        Q_EMIT dataFieldChanged();
}
TField *TDBComboBox::Field() const
{
    return fieldOf(d->link);
}

void TDBComboBox::UpdateRecord()
{
    TField *field = Field();
    if (!d->modified || !field)
        return;
    d->modified = false;
    if (field->DisplayText() != currentText())
        field->SetAsString(currentText());
}

void TDBComboBox::KeyDown(Word &Key, TShiftState Shift)
{
    if (Key == VK_ESCAPE && d->modified) {
        d->modified = false;
        d->link.OnDataChange();
        Key = 0;
    }
    TWinControl<QComboBox>::KeyDown(Key, Shift);
}

void TDBComboBox::DoExit()
{
    UpdateRecord();
    TWinControl<QComboBox>::DoExit();
}

// ---------------------------------------------------------------------------
// TDBLookupComboBox

namespace {

// Follows the list source: a new or changed list is read again.
class ListLink : public TDataLink
{
public:
    std::function<void()> OnChange;

protected:
    void ActiveChanged() override { DataSetChanged(); }
    void DataSetChanged() override
    {
        if (OnChange)
            OnChange();
    }
    void DataSetScrolled(int) override { }
};

} // namespace

struct TDBLookupComboBox::Private
{
    TFieldDataLink link;
    ListLink list;
    QString keyField;
    QString listField;
    bool refreshing = false;
};

TDBLookupComboBox::TDBLookupComboBox(QWidget *parent)
    : TWinControl<QComboBox>(parent), d(new Private)
{
    d->link.OnDataChange = [this] {
        TField *field = Field();
        const QSignalBlocker blocker(this);
        setCurrentIndex(field && !field->IsNull() ? findData(field->AsVariant()) : -1);
    };
    d->list.OnChange = [this] {
        if (!d->refreshing)
            RefreshList();
    };
    connect(this, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        HandleExceptions(this, [&] {
            TField *field = Field();
            if (field && d->link.Edit())
                field->SetAsVariant(itemData(index));
            else
                d->link.OnDataChange();
        });
    });
}

TDBLookupComboBox::~TDBLookupComboBox() = default;

TDataSource *TDBLookupComboBox::DataSource() const
{
    return d->link.DataSource();
}
void TDBLookupComboBox::SetDataSource(TDataSource *Value)
{
    d->link.SetDataSource(Value);
}
QString TDBLookupComboBox::DataField() const
{
    return d->link.FieldName();
}
void TDBLookupComboBox::SetDataField(const QString &Value)
{
    const auto before = DataField();
    d->link.SetFieldName(Value);
    if (DataField() != before)
        Q_EMIT dataFieldChanged();
}
TField *TDBLookupComboBox::Field() const
{
    return fieldOf(d->link);
}
TDataSource *TDBLookupComboBox::ListSource() const
{
    return d->list.DataSource();
}
void TDBLookupComboBox::SetListSource(TDataSource *Value)
{
    d->list.SetDataSource(Value);
}
QString TDBLookupComboBox::KeyField() const
{
    return d->keyField;
}
QString TDBLookupComboBox::ListField() const
{
    return d->listField;
}

void TDBLookupComboBox::SetKeyField(const QString &Value)
{
    const auto before = KeyField();
    d->keyField = Value;
    RefreshList();
    if (KeyField() != before)
        Q_EMIT keyFieldChanged();
}

void TDBLookupComboBox::SetListField(const QString &Value)
{
    const auto before = ListField();
    d->listField = Value;
    RefreshList();
    if (ListField() != before)
        Q_EMIT listFieldChanged();
}

QVariant TDBLookupComboBox::KeyValue() const
{
    return currentIndex() >= 0 ? itemData(currentIndex()) : QVariant();
}

void TDBLookupComboBox::RefreshList()
{
    TDataSet *list = d->list.Active() ? d->list.DataSet() : nullptr;
    TField *key = list ? list->FindField(d->keyField) : nullptr;
    TField *text = list ? list->FindField(d->listField) : nullptr;
    const QSignalBlocker blocker(this);
    clear();
    if (!key || !text) {
        d->link.OnDataChange();
        return;
    }
    d->refreshing = true;
    list->DisableControls();
    try {
        for (list->First(); !list->Eof(); list->Next())
            addItem(text->DisplayText(), key->AsVariant());
        list->First();
    } catch (...) {
        list->EnableControls();
        d->refreshing = false;
        throw;
    }
    list->EnableControls();
    d->refreshing = false;
    d->link.OnDataChange();
}

// ---------------------------------------------------------------------------
// TDBCheckBox

struct TDBCheckBox::Private
{
    TFieldDataLink link;
    QString valueChecked = QStringLiteral("True");
    QString valueUnchecked = QStringLiteral("False");
};

TDBCheckBox::TDBCheckBox(QWidget *parent) : TWinControl<QCheckBox>(parent), d(new Private)
{
    d->link.OnDataChange = [this] {
        TField *field = Field();
        const QSignalBlocker blocker(this);
        if (!field)
            setChecked(false);
        else if (field->DataType() == ftBoolean)
            setChecked(field->AsBoolean());
        else
            setChecked(field->AsString().compare(d->valueChecked, Qt::CaseInsensitive) == 0);
    };
    connect(this, &QCheckBox::clicked, this, [this](bool checked) {
        HandleExceptions(this, [&] {
            TField *field = Field();
            if (!field || !d->link.Edit()) {
                d->link.OnDataChange();
                return;
            }
            if (field->DataType() == ftBoolean)
                field->SetAsBoolean(checked);
            else
                field->SetAsString(checked ? d->valueChecked : d->valueUnchecked);
        });
    });
}

TDBCheckBox::~TDBCheckBox() = default;

TDataSource *TDBCheckBox::DataSource() const
{
    return d->link.DataSource();
}
void TDBCheckBox::SetDataSource(TDataSource *Value)
{
    d->link.SetDataSource(Value);
}
QString TDBCheckBox::DataField() const
{
    return d->link.FieldName();
}
void TDBCheckBox::SetDataField(const QString &Value)
{
    const auto before = DataField();
    d->link.SetFieldName(Value);
    if (DataField() != before)
        Q_EMIT dataFieldChanged();
}
TField *TDBCheckBox::Field() const
{
    return fieldOf(d->link);
}
QString TDBCheckBox::ValueChecked() const
{
    return d->valueChecked;
}
void TDBCheckBox::SetValueChecked(const QString &Value)
{
    const auto before = ValueChecked();
    d->valueChecked = Value;
    if (ValueChecked() != before)
        Q_EMIT valueCheckedChanged();
}
QString TDBCheckBox::ValueUnchecked() const
{
    return d->valueUnchecked;
}
void TDBCheckBox::SetValueUnchecked(const QString &Value)
{
    const auto before = ValueUnchecked();
    d->valueUnchecked = Value;
    if (ValueUnchecked() != before)
        Q_EMIT valueUncheckedChanged();
}

} // namespace oxa
