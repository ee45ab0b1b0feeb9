#include "oxa/toolkit/SqlDataSet.h"

#include <QAtomicInt>
#include <QHash>
#include <QPointer>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlIndex>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTimer>

#include <thread>

namespace oxa {

namespace {

TFieldType typeOf(QMetaType type)
{
    switch (type.id()) {
    case QMetaType::Bool:
        return ftBoolean;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return ftInteger;
    case QMetaType::Double:
    case QMetaType::Float:
        return ftFloat;
    case QMetaType::QDate:
        return ftDate;
    case QMetaType::QDateTime:
        return ftDateTime;
    default:
        return ftString;
    }
}

// SQLite keeps the declared type only as text; read dates and Booleans from it.
TFieldType typeOfDeclared(const QString &declared, TFieldType fallback)
{
    const QString type = declared.toUpper();
    if (type.contains(QLatin1String("BOOL")))
        return ftBoolean;
    if (type.contains(QLatin1String("DATETIME")) || type.contains(QLatin1String("TIMESTAMP")))
        return ftDateTime;
    if (type.contains(QLatin1String("DATE")))
        return ftDate;
    return fallback;
}

bool isConnectionLost(const QSqlDatabase &db, const QSqlError &error)
{
    if (!db.isOpen())
        return true;
    // SQLite reports every failed step as a connection error; its connection
    // is lost only when it was closed.
    if (db.driverName() == QLatin1String("QSQLITE"))
        return false;
    if (error.type() == QSqlError::ConnectionError)
        return true;
    const QString text = error.text().toLower();
    return text.contains(QLatin1String("server closed the connection")) ||
        text.contains(QLatin1String("terminating connection")) ||
        text.contains(QLatin1String("no connection to the server")) ||
        text.contains(QLatin1String("connection to server"));
}

bool isConstraintViolation(const QSqlError &error)
{
    const QString code = error.nativeErrorCode();
    if (code.size() == 5 && code.startsWith(QLatin1String("23")))
        return true; // PostgreSQL's integrity-constraint class
    bool numeric = false;
    const int sqliteCode = code.toInt(&numeric);
    return numeric && (sqliteCode & 0xff) == 19; // SQLITE_CONSTRAINT and its extended codes
}

QString driverText(const QSqlError &error)
{
    QString text = error.databaseText().trimmed();
    if (text.isEmpty())
        text = error.text().trimmed();
    return text;
}

enum Action { aRead, aStore, aDelete };

// The Czech text of a failed statement, as the user reads it.
QString failureText(const QSqlDatabase &db, const QSqlError &error, Action action)
{
    if (isConnectionLost(db, error)) {
        switch (action) {
        case aRead:
            return QStringLiteral("Spojení s databází bylo přerušeno. Záznamy nelze načíst.");
        case aStore:
            return QStringLiteral("Spojení s databází bylo přerušeno. Záznam se nepodařilo uložit; "
                                  "vaše úpravy zůstávají v rozpracovaném záznamu.");
        case aDelete:
            return QStringLiteral(
                "Spojení s databází bylo přerušeno. Záznam se nepodařilo smazat.");
        }
    }
    switch (action) {
    case aRead:
        return QStringLiteral("Záznamy se nepodařilo načíst: %1").arg(driverText(error));
    case aStore:
        if (isConstraintViolation(error))
            return QStringLiteral("Záznam se nepodařilo uložit, protože porušuje pravidla databáze "
                                  "(%1). Vaše úpravy zůstávají v rozpracovaném záznamu.")
                .arg(driverText(error));
        return QStringLiteral("Záznam se nepodařilo uložit: %1 Vaše úpravy zůstávají "
                              "v rozpracovaném záznamu.")
            .arg(driverText(error));
    case aDelete:
        if (isConstraintViolation(error))
            return QStringLiteral("Záznam nelze smazat, protože na něj odkazují jiné údaje (%1).")
                .arg(driverText(error));
        return QStringLiteral("Záznam se nepodařilo smazat: %1").arg(driverText(error));
    }
    return driverText(error);
}

bool isInMemory(const QSqlDatabase &db)
{
    const QString name = db.databaseName();
    return db.driverName() == QLatin1String("QSQLITE") &&
        (name.isEmpty() || name == QLatin1String(":memory:") ||
         name.contains(QLatin1String("mode=memory")));
}

bool sameValue(const QVariant &a, const QVariant &b)
{
    return a.isNull() == b.isNull() && (a.isNull() || a == b);
}

} // namespace

struct TSqlDataSet::Private
{
    QString connectionName;
    QString tableName;
    QString sql;
    QString keyFieldsText;
    QString filter;
    QVariantList filterValues;
    QHash<QString, TFieldType> typeOverrides;

    // Set when the data set opens.
    QStringList columns;     // the fields, then hidden key columns
    QList<TFieldType> types; // per column
    QList<int> keyColumns;   // positions of the key values in a record
    bool readOnly = true;
    bool postgres = false;
    int fieldCount = 0;

    std::thread counter;
    QAtomicInt countGeneration;

    ~Private() { joinCounter(); }
    void joinCounter()
    {
        if (counter.joinable())
            counter.join();
    }
};

TSqlDataSet::TSqlDataSet(QObject *parent) : TDataSet(parent), d(new Private) { }

TSqlDataSet::~TSqlDataSet()
{
    d->countGeneration.fetchAndAddOrdered(1);
    d->joinCounter();
    Close();
}

QString TSqlDataSet::ConnectionName() const
{
    return d->connectionName;
}

void TSqlDataSet::SetConnectionName(const QString &Value)
{
    const auto before = ConnectionName();
    d->connectionName = Value;
    if (ConnectionName() != before)
        Q_EMIT connectionNameChanged();
}

QSqlDatabase TSqlDataSet::Database() const
{
    return d->connectionName.isEmpty()
        ? QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false)
        : QSqlDatabase::database(d->connectionName, false);
}

QString TSqlDataSet::TableName() const
{
    return d->tableName;
}

void TSqlDataSet::SetTableName(const QString &Value)
{
    const auto before = TableName();
    d->tableName = Value;
    if (TableName() != before)
        Q_EMIT tableNameChanged();
}

QString TSqlDataSet::SQL() const
{
    return d->sql;
}

void TSqlDataSet::SetSQL(const QString &Value)
{
    const auto before = SQL();
    d->sql = Value;
    if (SQL() != before)
        Q_EMIT sqlChanged();
}

QString TSqlDataSet::KeyFields() const
{
    return d->keyFieldsText;
}

void TSqlDataSet::SetKeyFields(const QString &Value)
{
    const auto before = KeyFields();
    d->keyFieldsText = Value;
    if (KeyFields() != before)
        Q_EMIT keyFieldsChanged();
}

QString TSqlDataSet::Filter() const
{
    return d->filter;
}

void TSqlDataSet::SetFilter(const QString &Value, const QVariantList &Values)
{
    const auto before = Filter();
    d->filter = Value;
    d->filterValues = Values;
    if (Filter() != before)
        Q_EMIT filterChanged();
}

QVariantList TSqlDataSet::FilterValues() const
{
    return d->filterValues;
}

void TSqlDataSet::SetFieldType(const QString &FieldName, TFieldType Type)
{
    d->typeOverrides.insert(FieldName.toLower(), Type);
}

int TSqlDataSet::RecordWidth() const
{
    return int(d->columns.size());
}

bool TSqlDataSet::DoCanModify() const
{
    return !d->readOnly;
}

// ---- statements

namespace {

struct Statement
{
    QString text;
    QVariantList values;
};

} // namespace

// Builds the pieces every statement shares.
class SqlBuilder
{
public:
    SqlBuilder(const QSqlDatabase &db, const QString &table, const QString &sql,
               const QStringList &columns, const QList<int> &keys, int fieldCount)
        : m_db(db), m_columns(columns), m_keys(keys), m_fieldCount(fieldCount)
    {
        m_source = table.isEmpty() ? QStringLiteral("(%1) AS oxa_q").arg(sql)
                                   : Name(table, QSqlDriver::TableName);
    }

    QString Name(const QString &name, QSqlDriver::IdentifierType type = QSqlDriver::FieldName) const
    {
        if (name == QLatin1String("rowid"))
            return name;
        return m_db.driver()->escapeIdentifier(name, type);
    }
    QString Source() const { return m_source; }
    QString SelectList() const
    {
        QStringList names;
        for (const QString &column : m_columns)
            names << Name(column);
        return names.join(QLatin1String(", "));
    }
    QString KeyList(bool descending) const
    {
        QStringList names;
        for (int key : m_keys)
            names << Name(m_columns.at(key)) + (descending ? QLatin1String(" DESC") : QString());
        return names.join(QLatin1String(", "));
    }
    // "(k1, k2) > (?, ?)" or "k > ?".
    QString KeyCompare(const QString &op) const
    {
        QStringList names;
        QStringList marks;
        for (int key : m_keys) {
            names << Name(m_columns.at(key));
            marks << QStringLiteral("?");
        }
        if (m_keys.size() == 1)
            return names.first() + op + marks.first();
        return QStringLiteral("(%1) %2 (%3)")
            .arg(names.join(QLatin1String(", ")), op, marks.join(QLatin1String(", ")));
    }
    QVariantList KeyValues(const TRecordValues &record) const
    {
        QVariantList values;
        for (int key : m_keys)
            values << record.value(key);
        return values;
    }
    QString KeyEquals() const
    {
        QStringList parts;
        for (int key : m_keys)
            parts << Name(m_columns.at(key)) + QLatin1String(" = ?");
        return parts.join(QLatin1String(" AND "));
    }

private:
    QSqlDatabase m_db;
    QStringList m_columns;
    QList<int> m_keys;
    int m_fieldCount;
    QString m_source;
};

namespace {

QVariant bindable(const QVariant &value, TFieldType type, bool postgres)
{
    if (value.isNull()) {
        switch (type) {
        case ftBoolean:
            return QVariant(QMetaType::fromType<bool>());
        case ftInteger:
            return QVariant(QMetaType::fromType<qlonglong>());
        case ftFloat:
            return QVariant(QMetaType::fromType<double>());
        case ftDate:
            return QVariant(QMetaType::fromType<QDate>());
        default:
            return QVariant(QMetaType::fromType<QString>());
        }
    }
    if (!postgres && type == ftDate)
        return value.toDate().toString(Qt::ISODate);
    if (!postgres && type == ftDateTime)
        return value.toDateTime().toString(Qt::ISODate);
    return value;
}

} // namespace

static QList<TRecordValues> runSelect(TSqlDataSet *self, const QSqlDatabase &db,
                                      const Statement &st, const QList<TField *> &fields, int width)
{
    Q_UNUSED(self)
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.prepare(st.text))
        throw EDatabaseError(failureText(db, query.lastError(), aRead));
    for (const QVariant &value : st.values)
        query.addBindValue(value);
    if (!query.exec())
        throw EDatabaseError(failureText(db, query.lastError(), aRead));
    QList<TRecordValues> rows;
    while (query.next()) {
        TRecordValues row(width);
        for (int i = 0; i < width; ++i) {
            const QVariant raw = query.value(i);
            row[i] = i < fields.size() ? fields.at(i)->Normalized(raw) : raw;
        }
        rows.append(row);
    }
    return rows;
}

QList<TField *> TSqlDataSet::DoOpen()
{
    QSqlDatabase db = Database();
    if (!db.isOpen())
        throw EDatabaseError(QStringLiteral("Spojení s databází není otevřené."));
    d->postgres = db.driverName() == QLatin1String("QPSQL");
    d->columns.clear();
    d->types.clear();
    d->keyColumns.clear();

    QSqlRecord record;
    if (!d->tableName.isEmpty()) {
        record = db.record(d->tableName);
        if (record.isEmpty())
            throw EDatabaseError(QStringLiteral("Tabulka „%1“ neexistuje.").arg(d->tableName));
    } else {
        QSqlQuery probe(db);
        if (!probe.exec(QStringLiteral("SELECT * FROM (%1) AS oxa_q LIMIT 0").arg(d->sql)))
            throw EDatabaseError(failureText(db, probe.lastError(), aRead));
        record = probe.record();
    }
    QHash<QString, QString> declared;
    if (!d->tableName.isEmpty() && db.driverName() == QLatin1String("QSQLITE")) {
        QSqlQuery info(db);
        if (info.exec(
                QStringLiteral("PRAGMA table_info(%1)")
                    .arg(db.driver()->escapeIdentifier(d->tableName, QSqlDriver::TableName)))) {
            while (info.next())
                declared.insert(info.value(1).toString().toLower(), info.value(2).toString());
        }
    }
    for (int i = 0; i < record.count(); ++i) {
        const QSqlField field = record.field(i);
        const QString name = field.name();
        TFieldType type = typeOfDeclared(declared.value(name.toLower()), typeOf(field.metaType()));
        type = d->typeOverrides.value(name.toLower(), type);
        d->columns << name;
        d->types << type;
    }
    d->fieldCount = int(d->columns.size());

    QStringList keys;
    for (const QString &key : d->keyFieldsText.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        keys << key.trimmed();
    if (keys.isEmpty() && !d->tableName.isEmpty()) {
        const QSqlIndex primary = db.primaryIndex(d->tableName);
        for (int i = 0; i < primary.count(); ++i)
            keys << primary.fieldName(i);
        if (keys.isEmpty() && db.driverName() == QLatin1String("QSQLITE"))
            keys << QStringLiteral("rowid");
    }
    if (keys.isEmpty())
        throw EDatabaseError(QStringLiteral("Záznamy nelze číst: není určen klíč (KeyFields)."));
    for (const QString &key : keys) {
        int index = -1;
        for (int i = 0; i < d->fieldCount; ++i) {
            if (d->columns.at(i).compare(key, Qt::CaseInsensitive) == 0)
                index = i;
        }
        if (index < 0 && key == QLatin1String("rowid")) {
            d->columns << key;
            d->types << ftInteger;
            index = int(d->columns.size()) - 1;
        }
        if (index < 0)
            throw EDatabaseError(QStringLiteral("Klíčové pole „%1“ nebylo nalezeno.").arg(key));
        d->keyColumns << index;
    }
    d->readOnly = d->tableName.isEmpty();

    QList<TField *> fields;
    for (int i = 0; i < d->fieldCount; ++i) {
        auto *field = new TField(this, i, d->columns.at(i), d->types.at(i));
        field->SetIsKey(d->keyColumns.contains(i));
        field->SetReadOnly(d->readOnly);
        fields << field;
    }
    return fields;
}

void TSqlDataSet::DoClose()
{
    d->countGeneration.fetchAndAddOrdered(1);
}

static QString whereOf(const QString &filter, const QString &condition)
{
    QStringList parts;
    if (!filter.isEmpty())
        parts << QStringLiteral("(%1)").arg(filter);
    if (!condition.isEmpty())
        parts << condition;
    return parts.isEmpty() ? QString()
                           : QLatin1String(" WHERE ") + parts.join(QLatin1String(" AND "));
}

QList<TRecordValues> TSqlDataSet::FetchFirst(int Count)
{
    const QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    const Statement st{
        QStringLiteral("SELECT %1 FROM %2%3 ORDER BY %4 LIMIT %5")
            .arg(b.SelectList(), b.Source(), whereOf(d->filter, QString()), b.KeyList(false))
            .arg(Count),
        d->filterValues};
    return runSelect(this, db, st, Fields(), RecordWidth());
}

QList<TRecordValues> TSqlDataSet::FetchLast(int Count)
{
    const QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    const Statement st{
        QStringLiteral("SELECT %1 FROM %2%3 ORDER BY %4 LIMIT %5")
            .arg(b.SelectList(), b.Source(), whereOf(d->filter, QString()), b.KeyList(true))
            .arg(Count),
        d->filterValues};
    QList<TRecordValues> rows = runSelect(this, db, st, Fields(), RecordWidth());
    std::reverse(rows.begin(), rows.end());
    return rows;
}

QList<TRecordValues> TSqlDataSet::FetchAfter(const TRecordValues &Record, int Count)
{
    const QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    const Statement st{QStringLiteral("SELECT %1 FROM %2%3 ORDER BY %4 LIMIT %5")
                           .arg(b.SelectList(), b.Source(),
                                whereOf(d->filter, b.KeyCompare(QStringLiteral(" > "))),
                                b.KeyList(false))
                           .arg(Count),
                       d->filterValues + b.KeyValues(Record)};
    return runSelect(this, db, st, Fields(), RecordWidth());
}

QList<TRecordValues> TSqlDataSet::FetchBefore(const TRecordValues &Record, int Count)
{
    const QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    const Statement st{QStringLiteral("SELECT %1 FROM %2%3 ORDER BY %4 LIMIT %5")
                           .arg(b.SelectList(), b.Source(),
                                whereOf(d->filter, b.KeyCompare(QStringLiteral(" < "))),
                                b.KeyList(true))
                           .arg(Count),
                       d->filterValues + b.KeyValues(Record)};
    QList<TRecordValues> rows = runSelect(this, db, st, Fields(), RecordWidth());
    std::reverse(rows.begin(), rows.end());
    return rows;
}

QList<TRecordValues> TSqlDataSet::FetchAt(int Offset, int Count)
{
    const QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    const Statement st{
        QStringLiteral("SELECT %1 FROM %2%3 ORDER BY %4 LIMIT %5 OFFSET %6")
            .arg(b.SelectList(), b.Source(), whereOf(d->filter, QString()), b.KeyList(false))
            .arg(Count)
            .arg(std::max(0, Offset)),
        d->filterValues};
    return runSelect(this, db, st, Fields(), RecordWidth());
}

bool TSqlDataSet::FetchCurrent(const TRecordValues &Record, TRecordValues &Current)
{
    const QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    const Statement st{
        QStringLiteral("SELECT %1 FROM %2 WHERE %3").arg(b.SelectList(), b.Source(), b.KeyEquals()),
        b.KeyValues(Record)};
    const QList<TRecordValues> rows = runSelect(this, db, st, Fields(), RecordWidth());
    if (rows.isEmpty())
        return false;
    Current = rows.first();
    return true;
}

// Runs one changing statement in a transaction of its own; returns the
// number of rows it changed and, for a RETURNING statement, the row.
static int runChange(QSqlDatabase db, const Statement &st, Action action, bool expectOne,
                     QSqlRecord *returned, QVariantList *returnedValues)
{
    const bool ownTransaction = db.transaction();
    QSqlQuery query(db);
    auto fail = [&](const QSqlError &error) {
        const QString text = failureText(db, error, action);
        query.finish();
        if (ownTransaction)
            db.rollback();
        throw EDatabaseError(text);
    };
    if (!query.prepare(st.text))
        fail(query.lastError());
    for (const QVariant &value : st.values)
        query.addBindValue(value);
    if (!query.exec())
        fail(query.lastError());
    int rows = query.numRowsAffected();
    if (returned && query.next()) {
        *returned = query.record();
        for (int i = 0; i < query.record().count(); ++i)
            *returnedValues << query.value(i);
        rows = 1;
    }
    query.finish();
    if (expectOne && rows != 1) {
        if (ownTransaction)
            db.rollback();
        return rows;
    }
    if (ownTransaction && !db.commit())
        fail(db.lastError());
    return rows;
}

bool TSqlDataSet::DoUpdate(const TRecordValues &Original, const TRecordValues &Edited)
{
    QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    QStringList sets;
    QVariantList values;
    for (int i = 0; i < d->fieldCount; ++i) {
        if (sameValue(Original.value(i), Edited.value(i)))
            continue;
        sets << b.Name(d->columns.at(i)) + QLatin1String(" = ?");
        values << bindable(Edited.value(i), d->types.at(i), d->postgres);
    }
    if (sets.isEmpty())
        return true;
    // The record as it was read: its key and every value it held.
    QStringList where{b.KeyEquals()};
    values << b.KeyValues(Original);
    const QString same =
        d->postgres ? QStringLiteral(" IS NOT DISTINCT FROM ?") : QStringLiteral(" IS ?");
    for (int i = 0; i < d->fieldCount; ++i) {
        if (d->keyColumns.contains(i))
            continue;
        where << b.Name(d->columns.at(i)) + same;
        values << bindable(Original.value(i), d->types.at(i), d->postgres);
    }
    const Statement st{
        QStringLiteral("UPDATE %1 SET %2 WHERE %3")
            .arg(b.Source(), sets.join(QLatin1String(", ")), where.join(QLatin1String(" AND "))),
        values};
    return runChange(db, st, aStore, true, nullptr, nullptr) == 1;
}

TRecordValues TSqlDataSet::DoInsert(const TRecordValues &Values)
{
    QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    QStringList names;
    QStringList marks;
    QVariantList values;
    for (int i = 0; i < d->fieldCount; ++i) {
        if (Values.value(i).isNull())
            continue; // left to the column's default (a serial key, say)
        names << b.Name(d->columns.at(i));
        marks << QStringLiteral("?");
        values << bindable(Values.value(i), d->types.at(i), d->postgres);
    }
    const QString insert = names.isEmpty()
        ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(b.Source())
        : QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
              .arg(b.Source(), names.join(QLatin1String(", ")), marks.join(QLatin1String(", ")));
    const Statement st{insert + QLatin1String(" RETURNING ") + b.SelectList(), values};
    QSqlRecord returned;
    QVariantList stored;
    runChange(db, st, aStore, false, &returned, &stored);
    TRecordValues record(RecordWidth());
    for (int i = 0; i < record.size() && i < stored.size(); ++i)
        record[i] = i < d->fieldCount ? Fields().at(i)->Normalized(stored.at(i)) : stored.at(i);
    return record;
}

void TSqlDataSet::DoDelete(const TRecordValues &Record)
{
    QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    // A record someone else deleted already is gone as the user wants it.
    const Statement st{QStringLiteral("DELETE FROM %1 WHERE %2").arg(b.Source(), b.KeyEquals()),
                       b.KeyValues(Record)};
    runChange(db, st, aDelete, false, nullptr, nullptr);
}

bool TSqlDataSet::Locate(const QVariantList &KeyValues)
{
    TRecordValues record(RecordWidth());
    for (int i = 0; i < d->keyColumns.size() && i < KeyValues.size(); ++i)
        record[d->keyColumns.at(i)] = KeyValues.at(i);
    return MoveToRecord(record);
}

// ---- counting

void TSqlDataSet::StartRecordCount()
{
    const QSqlDatabase db = Database();
    const SqlBuilder b(db, d->tableName, d->sql, d->columns, d->keyColumns, d->fieldCount);
    const QString text =
        QStringLiteral("SELECT COUNT(*) FROM %1%2").arg(b.Source(), whereOf(d->filter, QString()));
    const QVariantList values = d->filterValues;
    const int generation = d->countGeneration.fetchAndAddOrdered(1) + 1;
    QPointer<TSqlDataSet> self(this);
    auto deliver = [this, self, generation](int count) {
        if (self && d->countGeneration.loadAcquire() == generation && count >= 0)
            SetRecordCount(count);
    };
    auto count = [text, values](const QSqlDatabase &on) {
        QSqlQuery query(on);
        query.setForwardOnly(true);
        if (!query.prepare(text))
            return -1;
        for (const QVariant &value : values)
            query.addBindValue(value);
        return query.exec() && query.next() ? query.value(0).toInt() : -1;
    };
    if (isInMemory(db)) {
        // No second connection sees this database: count after the first frame.
        QTimer::singleShot(0, this, [db, count, deliver] { deliver(count(db)); });
        return;
    }
    d->joinCounter();
    const QString source = db.connectionName();
    const QString name = QStringLiteral("oxa-count-%1-%2").arg(quintptr(this)).arg(generation);
    d->counter = std::thread([this, source, name, count, generation] {
        int result = -1;
        {
            QSqlDatabase own = QSqlDatabase::cloneDatabase(source, name);
            if (own.open())
                result = count(own);
            own.close();
        }
        QSqlDatabase::removeDatabase(name);
        if (d->countGeneration.loadAcquire() != generation)
            return;
        QMetaObject::invokeMethod(
            this,
            [this, result, generation] {
                if (d->countGeneration.loadAcquire() == generation && result >= 0)
                    SetRecordCount(result);
            },
            Qt::QueuedConnection);
    });
}

} // namespace oxa
