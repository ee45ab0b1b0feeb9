#pragma once

// Databases for the data tests: a fresh SQLite file, and a fresh database on
// the throw-away PostgreSQL server the test run starts (pgcluster.sh; its
// state file is named by OXA_PG_STATE).

#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QVariant>

namespace oxa::test {

// The connection a test works on, and a second one to the same database that
// sees only what was committed.
inline const QString kMain = QStringLiteral("main");
inline const QString kOther = QStringLiteral("other");

// Runs a statement the test cannot go on without.
inline void exec(const QSqlDatabase &db, const QString &sql)
{
    QSqlQuery query(db);
    if (!query.exec(sql))
        qFatal("%s: %s", qPrintable(sql), qPrintable(query.lastError().text()));
}

// Fills table with the rows id = 1..count, the other columns computed from
// id by the expressions; a serial key goes on after the last id.
inline void InsertNumbered(const QSqlDatabase &db, const QString &table, int count,
                           const QString &expressions)
{
    exec(db,
         QStringLiteral("INSERT INTO %1 WITH RECURSIVE n(id) AS (SELECT 1 UNION ALL "
                        "SELECT id + 1 FROM n WHERE id < %2) SELECT id, %3 FROM n")
             .arg(table, QString::number(count), expressions));
    if (db.driverName() == QLatin1String("QPSQL"))
        exec(db,
             QStringLiteral("SELECT setval(pg_get_serial_sequence('%1', 'id'), %2)")
                 .arg(table)
                 .arg(count));
}

// The first value of a query on the second connection: what is committed.
inline QVariant scalar(const QString &sql)
{
    QSqlQuery query(QSqlDatabase::database(kOther));
    if (!query.exec(sql) || !query.next())
        return QVariant(QStringLiteral("<%1>").arg(query.lastError().text()));
    return query.value(0);
}

// The "database" column of a data-driven test: one row per kind.
inline void AddDatabaseRows()
{
    QTest::addColumn<QString>("database");
    for (const char *kind : {"sqlite", "postgresql"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

// Closes and forgets the test's two connections.
inline void CloseTestConnections()
{
    for (const QString &name : {kMain, kOther}) {
        QSqlDatabase::database(name, false).close();
        QSqlDatabase::removeDatabase(name);
    }
}

// The socket directory of the test server; empty, with why, when there is none.
inline QString PostgresSocketDir(QString &why)
{
    const QString stateFile = qEnvironmentVariable("OXA_PG_STATE");
    QFile file(stateFile);
    if (stateFile.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        why = QStringLiteral("no PostgreSQL test server (%1)")
                  .arg(stateFile.isEmpty() ? QStringLiteral("OXA_PG_STATE not set")
                                           : stateFile + QStringLiteral(" missing"));
        return {};
    }
    const QString line = QString::fromUtf8(file.readLine()).trimmed();
    if (line.startsWith(QLatin1String("dir=")))
        return line.mid(4) + QLatin1String("/sock");
    why = line.startsWith(QLatin1String("unavailable=")) ? line.mid(12) : line;
    return {};
}

// Opens a new, empty database of the kind under the connection name;
// returns the reason when it cannot. Further connections to the same
// database are made with CloneTestDatabase.
inline QString OpenTestDatabase(const QString &kind, const QString &connection)
{
    static QTemporaryDir files;
    static int serial = 0;
    ++serial;
    if (QSqlDatabase::contains(connection))
        QSqlDatabase::removeDatabase(connection);
    if (kind == QLatin1String("sqlite")) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(files.filePath(QStringLiteral("test%1.sqlite").arg(serial)));
        return db.open() ? QString() : db.lastError().text();
    }
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL")))
        return QStringLiteral("Qt's PostgreSQL driver is missing (Debian package libqt6sql6-psql)");
    QString why;
    const QString dir = PostgresSocketDir(why);
    if (dir.isEmpty())
        return why;
    const auto connect = [&dir](const QString &name, const QString &database) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        db.setHostName(dir);
        db.setUserName(QStringLiteral("oxa"));
        db.setDatabaseName(database);
        return db;
    };
    const QString name = QStringLiteral("%1_%2_%3")
                             .arg(QCoreApplication::applicationName().toLower())
                             .arg(QCoreApplication::applicationPid())
                             .arg(serial);
    {
        QSqlDatabase admin = connect(connection + "_admin", QStringLiteral("postgres"));
        if (!admin.open())
            return admin.lastError().text();
        QSqlQuery query(admin);
        if (!query.exec(QStringLiteral("CREATE DATABASE %1").arg(name)))
            return query.lastError().text();
    }
    QSqlDatabase::removeDatabase(connection + "_admin");
    QSqlDatabase db = connect(connection, name);
    return db.open() ? QString() : db.lastError().text();
}

// A second connection to the database of another one (a second user).
inline QSqlDatabase CloneTestDatabase(const QString &connection, const QString &clone)
{
    if (QSqlDatabase::contains(clone))
        QSqlDatabase::removeDatabase(clone);
    QSqlDatabase db = QSqlDatabase::cloneDatabase(connection, clone);
    db.open();
    return db;
}

} // namespace oxa::test

// A database the test could not prepare: a failure where the full test
// command requires the PostgreSQL server, a skip with the reason elsewhere.
#define OXA_REQUIRE_DATABASE(prepared, reason) \
    OXA_REQUIRE_OR_SKIP(prepared, "OXA_REQUIRE_POSTGRES", reason)
