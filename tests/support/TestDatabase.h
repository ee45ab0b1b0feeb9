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

// The first value of a query on the second connection: what is committed.
inline QVariant scalar(const QString &sql)
{
    QSqlQuery query(QSqlDatabase::database(kOther));
    if (!query.exec(sql) || !query.next())
        return QVariant(QStringLiteral("<%1>").arg(query.lastError().text()));
    return query.value(0);
}

inline QStringList DatabaseKinds()
{
    return {QStringLiteral("sqlite"), QStringLiteral("postgresql")};
}

// The "database" column of a data-driven test: one row per kind.
inline void AddDatabaseRows()
{
    QTest::addColumn<QString>("database");
    for (const QString &kind : DatabaseKinds())
        QTest::newRow(qPrintable(kind)) << kind;
}

// Closes and forgets the test's two connections.
inline void CloseTestConnections()
{
    for (const QString &name : {kMain, kOther}) {
        QSqlDatabase::database(name, false).close();
        QSqlDatabase::removeDatabase(name);
    }
}

// The socket directory of the test server, or why there is none.
inline bool PostgresSocketDir(QString &dir, QString &why)
{
    const QString stateFile = qEnvironmentVariable("OXA_PG_STATE");
    if (stateFile.isEmpty()) {
        why = QStringLiteral("no PostgreSQL test server (OXA_PG_STATE not set)");
        return false;
    }
    QFile file(stateFile);
    if (!file.open(QIODevice::ReadOnly)) {
        why = QStringLiteral("no PostgreSQL test server (%1 missing)").arg(stateFile);
        return false;
    }
    const QString line = QString::fromUtf8(file.readLine()).trimmed();
    if (line.startsWith(QLatin1String("dir="))) {
        dir = line.mid(4) + QLatin1String("/sock");
        return true;
    }
    why = line.startsWith(QLatin1String("unavailable=")) ? line.mid(12) : line;
    return false;
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
    QString dir;
    QString why;
    if (!PostgresSocketDir(dir, why))
        return why;
    const QString name = QStringLiteral("%1_%2_%3")
                             .arg(QCoreApplication::applicationName().toLower())
                             .arg(QCoreApplication::applicationPid())
                             .arg(serial);
    {
        QSqlDatabase admin =
            QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection + "_admin");
        admin.setHostName(dir);
        admin.setUserName(QStringLiteral("oxa"));
        admin.setDatabaseName(QStringLiteral("postgres"));
        if (!admin.open())
            return admin.lastError().text();
        QSqlQuery query(admin);
        if (!query.exec(QStringLiteral("CREATE DATABASE %1").arg(name)))
            return query.lastError().text();
        admin.close();
    }
    QSqlDatabase::removeDatabase(connection + "_admin");
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection);
    db.setHostName(dir);
    db.setUserName(QStringLiteral("oxa"));
    db.setDatabaseName(name);
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

// Opens the database of the test's "database" column, or skips with the
// reason; when OXA_REQUIRE_POSTGRES is set a missing server fails instead.
#define OXA_OPEN_TEST_DATABASE(kind, connection) \
    do { \
        const QString oxaWhy = oxa::test::OpenTestDatabase(kind, connection); \
        OXA_REQUIRE_OR_SKIP(oxaWhy.isEmpty(), "OXA_REQUIRE_POSTGRES", oxaWhy); \
    } while (false)
