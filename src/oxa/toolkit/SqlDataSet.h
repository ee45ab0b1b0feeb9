#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/DataSet.h"

#include <QSqlDatabase>
#include <QStringList>
#include <QVariantList>

namespace oxa {

// A data set over a table or a query of a QSqlDatabase connection
// (SQLite, PostgreSQL). It never reads a whole table: it pages by key
// (WHERE key > ? ORDER BY key LIMIT n, and the reverse towards the end)
// and keeps a bounded window of records around the cursor; the number of
// records is counted on a connection of its own in a worker thread, so
// opening does not wait for it. Only a jump to a record number (a dragged
// scroll-bar thumb) reads by offset.
//
// Changes are written through at once, each in a transaction. An update
// names the record by its key and by all the values it held when it was
// read, and must change exactly one row; otherwise the record is read
// again and the user learns whether someone else deleted or changed it.
class OXA_EXPORT TSqlDataSet : public TDataSet
{
    Q_OBJECT
    Q_PROPERTY(QString ConnectionName READ ConnectionName WRITE SetConnectionName NOTIFY
                   connectionNameChanged)
    Q_PROPERTY(QString TableName READ TableName WRITE SetTableName NOTIFY tableNameChanged)
    Q_PROPERTY(QString SQL READ SQL WRITE SetSQL NOTIFY sqlChanged)
    Q_PROPERTY(QString KeyFields READ KeyFields WRITE SetKeyFields NOTIFY keyFieldsChanged)
    Q_PROPERTY(QString Filter READ Filter WRITE SetFilter NOTIFY filterChanged)

public:
    explicit TSqlDataSet(QObject *parent = nullptr);
    ~TSqlDataSet() override;

    // The connection by its QSqlDatabase name (the default connection when empty).
    QString ConnectionName() const;
    void SetConnectionName(const QString &Value);
    QSqlDatabase Database() const;

    // Either a table (records can be changed) or a SELECT (read-only).
    QString TableName() const;
    void SetTableName(const QString &Value);
    QString SQL() const;
    void SetSQL(const QString &Value);
    // The ";"-separated fields that name a record and order the pages.
    // Empty: the table's primary key, or SQLite's row id.
    QString KeyFields() const;
    void SetKeyFields(const QString &Value);
    // An SQL condition the records must meet, with "?" placeholders bound
    // to FilterValues in order ("patient_id = ?").
    QString Filter() const;
    void SetFilter(const QString &Value, const QVariantList &Values = {});
    QVariantList FilterValues() const;
    // Overrides the type read from the database (SQLite declares loosely).
    void SetFieldType(const QString &FieldName, TFieldType Type);

    // Moves to the record with these key values (in KeyFields order);
    // false, and the cursor where it was, when there is none.
    bool Locate(const QVariantList &KeyValues);

Q_SIGNALS:
    void connectionNameChanged();
    void tableNameChanged();
    void sqlChanged();
    void keyFieldsChanged();
    void filterChanged();

protected:
    QList<TField *> DoOpen() override;
    void DoClose() override;
    QList<TRecordValues> FetchFirst(int Count) override;
    QList<TRecordValues> FetchLast(int Count) override;
    QList<TRecordValues> FetchAfter(const TRecordValues &Record, int Count) override;
    QList<TRecordValues> FetchBefore(const TRecordValues &Record, int Count) override;
    QList<TRecordValues> FetchAt(int Offset, int Count) override;
    bool FetchCurrent(const TRecordValues &Record, TRecordValues &Current) override;
    bool DoUpdate(const TRecordValues &Original, const TRecordValues &Edited) override;
    TRecordValues DoInsert(const TRecordValues &Values) override;
    void DoDelete(const TRecordValues &Record) override;
    bool DoCanModify() const override;
    void StartRecordCount() override;
    int RecordWidth() const override;

private:
    struct OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

} // namespace oxa
