#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/DataSource.h"
#include "oxa/toolkit/WinControl.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

#include <memory>

namespace oxa {

// The data-aware controls: each shows one field (DataField) of the current
// record of a data source and writes the user's change into it, putting the
// data set into edit state on the first change. The change reaches the
// field when the control is left (or before the data set posts), Escape
// puts the field's value back.

class OXA_EXPORT TDBEdit : public TWinControl<QLineEdit>
{
    Q_OBJECT
    Q_PROPERTY(QString DataField READ DataField WRITE SetDataField NOTIFY dataFieldChanged)

public:
    explicit TDBEdit(QWidget *parent = nullptr);
    ~TDBEdit() override;

    TDataSource *DataSource() const;
    void SetDataSource(TDataSource *Value);
    QString DataField() const;
    void SetDataField(const QString &Value);
    TField *Field() const;
    // Writes the text into the field now.
    void UpdateRecord();

Q_SIGNALS:
    void dataFieldChanged();

protected:
    void KeyDown(Word &Key, TShiftState Shift) override;
    void DoExit() override;

private:
    struct OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

class OXA_EXPORT TDBComboBox : public TWinControl<QComboBox>
{
    Q_OBJECT
    Q_PROPERTY(QString DataField READ DataField WRITE SetDataField NOTIFY dataFieldChanged)

public:
    explicit TDBComboBox(QWidget *parent = nullptr);
    ~TDBComboBox() override;

    TDataSource *DataSource() const;
    void SetDataSource(TDataSource *Value);
    QString DataField() const;
    void SetDataField(const QString &Value);
    TField *Field() const;
    void UpdateRecord();

Q_SIGNALS:
    void dataFieldChanged();

protected:
    void KeyDown(Word &Key, TShiftState Shift) override;
    void DoExit() override;

private:
    struct OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

// Picks the key of a record of another data set (ListSource): the list
// shows ListField, the field receives KeyField.
class OXA_EXPORT TDBLookupComboBox : public TWinControl<QComboBox>
{
    Q_OBJECT
    Q_PROPERTY(QString DataField READ DataField WRITE SetDataField NOTIFY dataFieldChanged)
    Q_PROPERTY(QString KeyField READ KeyField WRITE SetKeyField NOTIFY keyFieldChanged)
    Q_PROPERTY(QString ListField READ ListField WRITE SetListField NOTIFY listFieldChanged)

public:
    explicit TDBLookupComboBox(QWidget *parent = nullptr);
    ~TDBLookupComboBox() override;

    TDataSource *DataSource() const;
    void SetDataSource(TDataSource *Value);
    QString DataField() const;
    void SetDataField(const QString &Value);
    TField *Field() const;
    TDataSource *ListSource() const;
    void SetListSource(TDataSource *Value);
    QString KeyField() const;
    void SetKeyField(const QString &Value);
    QString ListField() const;
    void SetListField(const QString &Value);
    // The key of the chosen list record.
    QVariant KeyValue() const;
    // Reads the list records again (a lookup list is short).
    void RefreshList();

Q_SIGNALS:
    void dataFieldChanged();
    void keyFieldChanged();
    void listFieldChanged();

private:
    struct OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

// A check box over a field: checked when the field holds ValueChecked (or
// true, for a Boolean field).
class OXA_EXPORT TDBCheckBox : public TWinControl<QCheckBox>
{
    Q_OBJECT
    Q_PROPERTY(QString DataField READ DataField WRITE SetDataField NOTIFY dataFieldChanged)
    Q_PROPERTY(
        QString ValueChecked READ ValueChecked WRITE SetValueChecked NOTIFY valueCheckedChanged)
    Q_PROPERTY(QString ValueUnchecked READ ValueUnchecked WRITE SetValueUnchecked NOTIFY
                   valueUncheckedChanged)

public:
    explicit TDBCheckBox(QWidget *parent = nullptr);
    ~TDBCheckBox() override;

    TDataSource *DataSource() const;
    void SetDataSource(TDataSource *Value);
    QString DataField() const;
    void SetDataField(const QString &Value);
    TField *Field() const;
    QString ValueChecked() const;
    void SetValueChecked(const QString &Value);
    QString ValueUnchecked() const;
    void SetValueUnchecked(const QString &Value);

Q_SIGNALS:
    void dataFieldChanged();
    void valueCheckedChanged();
    void valueUncheckedChanged();

private:
    struct OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

} // namespace oxa
