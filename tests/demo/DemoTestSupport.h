#pragma once

#include "SampleDatabase.h"

#include "support/TestDatabase.h"

#include <QSqlQuery>
#include <QTemporaryDir>

namespace oxa::test {

// Opens a new sample database of the kind (SQLite or the test run's
// PostgreSQL server), filled as on the demo's first start; or says why not.
inline QString OpenSample(const QString &kind)
{
    static QTemporaryDir files;
    static int serial = 0;
    SampleDatabase::Close();
    QString address = files.filePath(QStringLiteral("clinic%1.sqlite").arg(++serial));
    if (kind == QLatin1String("postgresql")) {
        if (const QString why = OpenTestDatabase(kind, kMain); !why.isEmpty())
            return why;
        const QSqlDatabase db = QSqlDatabase::database(kMain);
        address =
            QStringLiteral("postgresql://oxa@/%1?host=%2").arg(db.databaseName(), db.hostName());
    }
    CloseTestConnections();
    QString error;
    if (SampleDatabase::Open(address, &error))
        return QString();
    return error.isEmpty() ? QStringLiteral("the sample database did not open") : error;
}

// The first value a query with one bound value reads from the sample database.
inline QVariant SampleValue(const QString &sql, const QVariant &value)
{
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(sql);
    q.addBindValue(value);
    return q.exec() && q.next() ? q.value(0) : QVariant();
}

} // namespace oxa::test
