// The SQL data set on SQLite and on a PostgreSQL server: paging by key in a
// bounded window, field types, editing, and the rule that no edit is lost
// when someone else changed the record, a constraint refused it or the
// connection went away.

#include "oxa/toolkit/DataSource.h"
#include "oxa/toolkit/SqlDataSet.h"
#include "support/TestDatabase.h"

#include <QSqlQuery>
#include <QtTest>

using namespace oxa;
using namespace oxa::test;

namespace {

// item: id 1..count, name "n<id>", amount id/4, done for even ids,
// born 2000-01-01 plus id days, level id % 3.
void createItems(int count)
{
    QSqlDatabase db = QSqlDatabase::database(kMain);
    const bool pg = db.driverName() == QLatin1String("QPSQL");
    exec(db,
         QStringLiteral("CREATE TABLE item (id %1 PRIMARY KEY, name VARCHAR(40) NOT NULL, "
                        "amount %2, done BOOLEAN, born DATE, level INTEGER CHECK (level >= 0))")
             .arg(pg ? "SERIAL" : "INTEGER", pg ? "DOUBLE PRECISION" : "REAL"));
    InsertNumbered(
        db, QStringLiteral("item"), count,
        QStringLiteral("'n' || id, id / 4.0, id % 2 = 0, %1, id % 3")
            .arg(pg ? "DATE '2000-01-01' + id" : "date('2000-01-01', '+' || id || ' days')"));
}

TField *F(const std::unique_ptr<TSqlDataSet> &set, const char *name)
{
    return set->FieldByName(QLatin1String(name));
}

QString failureOf(const std::function<void()> &fn)
{
    try {
        fn();
    } catch (const EDatabaseError &error) {
        return error.Message();
    }
    return QString();
}

class CountingLink : public TDataLink
{
public:
    int changed = 0;
    int scrolled = 0;
    int states = 0;

protected:
    void DataSetChanged() override { ++changed; }
    void DataSetScrolled(int) override { ++scrolled; }
    void EditingChanged() override { ++states; }
};

} // namespace

class TestSqlDataSet : public QObject
{
    Q_OBJECT

private:
    // Opens the test's databases (a main and a second connection) with the
    // item table, or skips.
    bool prepare(int count = 1000)
    {
        QFETCH_GLOBAL(QString, database);
        const QString why = test::OpenTestDatabase(database, kMain);
        if (!why.isEmpty()) {
            m_skip = why;
            return false;
        }
        createItems(count);
        test::CloneTestDatabase(kMain, kOther);
        return true;
    }
    // The items in pages of ten, those of level 1 only when filtered.
    std::unique_ptr<TSqlDataSet> itemSet(const QString &connection = kMain, bool filtered = false)
    {
        auto set = std::make_unique<TSqlDataSet>();
        set->SetConnectionName(connection);
        set->SetTableName(QStringLiteral("item"));
        if (filtered)
            set->SetFilter(QStringLiteral("level = ?"), {1});
        set->SetPacketRecords(10);
        set->Open();
        return set;
    }
    QString m_skip;

#define PREPARE(...) OXA_REQUIRE_DATABASE(prepare(__VA_ARGS__), m_skip)

private Q_SLOTS:
    // Every case runs on each database.
    void initTestCase_data()
    {
        test::AddDatabaseRows();
    }
    void cleanup()
    {
        test::CloseTestConnections();
    }

    void pagesByKeyInABoundedWindow()
    {
        PREPARE();
        auto set = itemSet();
        TField *id = F(set, "ID");
        QCOMPARE(set->MoveBy(25), 25);
        QCOMPARE(id->AsInteger(), 26);
        QCOMPARE(set->RecNo(), 26);

        // The count arrives after opening, without the data set waiting for it.
        QTRY_COMPARE(set->RecordCount(), 1000);

        set->Last();
        set->Next();
        QVERIFY(set->Eof());
        QCOMPARE(id->AsInteger(), 1000);
        QCOMPARE(set->RecNo(), 1000);
        set->SetRecNo(500);
        QCOMPARE(id->AsInteger(), 500);

        // Walking the whole table both ways keeps the window bounded and misses nothing.
        set->First();
        int expected = 1;
        int largestWindow = 0;
        while (!set->Eof()) {
            QCOMPARE(id->AsInteger(), expected++);
            largestWindow = std::max(largestWindow, set->BufferedRecords());
            set->Next();
        }
        QCOMPARE(expected, 1001);
        QVERIFY2(largestWindow <= 40, qPrintable(QString::number(largestWindow)));
        for (int i = 0; i < 999; ++i)
            set->Prior();
        QCOMPARE(id->AsInteger(), 1);
        QVERIFY(set->BufferedRecords() <= 40);
        set->Prior();
        QVERIFY(set->Bof());
    }

    void fieldsHaveTheirTypes()
    {
        PREPARE(10);
        exec(QSqlDatabase::database(kMain),
             QStringLiteral("UPDATE item SET amount = NULL, done = NULL WHERE id = 3"));
        auto set = itemSet();
        set->MoveBy(1);
        QCOMPARE(F(set, "done")->AsVariant(), QVariant(true));
        QCOMPARE(F(set, "done")->DisplayText(), QStringLiteral("Ano"));
        QCOMPARE(F(set, "amount")->DisplayText(), QStringLiteral("0,5"));
        QCOMPARE(F(set, "born")->AsDate(), QDate(2000, 1, 3));
        QCOMPARE(F(set, "born")->DisplayText(), QStringLiteral("3.1.2000"));
        set->Next();
        QVERIFY(F(set, "done")->IsNull());
        QVERIFY(F(set, "amount")->IsNull());
        QCOMPARE(F(set, "amount")->DisplayText(), QString());
        QCOMPARE(failureOf([&] { F(set, "missing"); }),
                 QStringLiteral("Pole „missing“ nebylo nalezeno."));
        QCOMPARE(failureOf([&] { F(set, "name")->SetAsString("x"); }),
                 QStringLiteral("Záznam není otevřen pro úpravy."));

        // Every type survives a round trip through the database.
        set->Edit();
        F(set, "done")->SetAsBoolean(true);
        F(set, "amount")->SetAsString(QStringLiteral("2,75"));
        F(set, "born")->SetAsDate(QDate(2024, 2, 29));
        set->Post();
        set->Refresh();
        QCOMPARE(F(set, "done")->AsBoolean(), true);
        QCOMPARE(F(set, "amount")->AsFloat(), 2.75);
        QCOMPARE(F(set, "born")->AsDate(), QDate(2024, 2, 29));
        QCOMPARE(scalar("SELECT amount FROM item WHERE id = 3").toDouble(), 2.75);
    }

    void editingWritesThrough()
    {
        PREPARE(50);
        auto set = itemSet();
        TField *name = F(set, "name");
        set->MoveBy(4);
        set->Edit();
        name->SetAsString(QStringLiteral("Žluťoučký"));
        set->Next(); // moving on posts
        QCOMPARE(set->State(), dsBrowse);
        QCOMPARE(scalar("SELECT name FROM item WHERE id = 5").toString(),
                 QStringLiteral("Žluťoučký"));

        // Appending stores a new record with the key the database gave it.
        set->Append();
        QCOMPARE(set->State(), dsInsert);
        name->SetAsString(QStringLiteral("nový"));
        F(set, "level")->SetAsInteger(2);
        set->Post();
        QCOMPARE(F(set, "id")->AsInteger(), 51);
        QCOMPARE(scalar("SELECT name FROM item WHERE id = 51").toString(), QStringLiteral("nový"));

        set->First();
        set->MoveBy(9);
        set->Delete();
        QCOMPARE(F(set, "id")->AsInteger(), 11);
        QCOMPARE(scalar("SELECT COUNT(*) FROM item WHERE id = 10").toInt(), 0);
    }

    void concurrentChangeLosesNothing_data()
    {
        QTest::addColumn<bool>("deleted");
        QTest::addColumn<QString>("message");
        QTest::newRow("changed") << false << QStringLiteral("Záznam mezitím změnil jiný uživatel.");
        QTest::newRow("deleted") << true << QStringLiteral("Záznam mezitím smazal jiný uživatel.");
    }
    void concurrentChangeLosesNothing()
    {
        QFETCH(bool, deleted);
        QFETCH(QString, message);
        PREPARE(20);
        auto first = itemSet(kMain);
        auto second = itemSet(kOther);
        first->MoveBy(6);
        second->MoveBy(6);
        second->Edit();
        F(second, "name")->SetAsString(QStringLiteral("druhý"));
        if (deleted) {
            first->Delete();
        } else {
            first->Edit();
            F(first, "name")->SetAsString(QStringLiteral("první"));
            first->Post();
        }
        const QString failure = failureOf([&] { second->Post(); });
        QVERIFY2(failure.startsWith(message), qPrintable(failure));
        QCOMPARE(second->State(), dsEdit);
        QCOMPARE(F(second, "name")->AsString(), QStringLiteral("druhý"));
        if (deleted) {
            QCOMPARE(scalar("SELECT COUNT(*) FROM item WHERE id = 7").toInt(), 0);
            QVERIFY(!failureOf([&] { second->Post(); }).isEmpty());
            second->Cancel();
            return;
        }
        QCOMPARE(scalar("SELECT name FROM item WHERE id = 7").toString(), QStringLiteral("první"));
        // Told about it, the second user may store the values deliberately.
        second->Post();
        QCOMPARE(second->State(), dsBrowse);
        QCOMPARE(scalar("SELECT name FROM item WHERE id = 7").toString(), QStringLiteral("druhý"));
    }

    void failedPostKeepsTheEdit()
    {
        PREPARE(5);
        auto set = itemSet();
        TField *level = F(set, "level");
        set->Edit();
        level->SetAsInteger(-1);
        const QString failure = failureOf([&] { set->Post(); });
        QVERIFY2(failure.startsWith(QStringLiteral("Záznam se nepodařilo uložit, protože porušuje "
                                                   "pravidla databáze")),
                 qPrintable(failure));
        QCOMPARE(set->State(), dsEdit);
        QCOMPARE(level->AsInteger(), -1);
        level->SetAsInteger(7);
        set->Post();
        QCOMPARE(scalar("SELECT level FROM item WHERE id = 1").toInt(), 7);

        // A new record refused by the database stays in insert state.
        set->Append();
        F(set, "level")->SetAsInteger(1);
        QVERIFY(failureOf([&] { set->Post(); }).contains(QStringLiteral("porušuje")));
        QCOMPARE(set->State(), dsInsert);
        QCOMPARE(F(set, "level")->AsInteger(), 1);
        set->Cancel();
    }

    void droppedConnectionIsReported()
    {
        QFETCH_GLOBAL(QString, database);
        PREPARE(100);
        auto set = itemSet();
        set->Edit();
        F(set, "name")->SetAsString(QStringLiteral("uloženo později"));
        QSqlDatabase db = QSqlDatabase::database(kMain);
        if (database == QLatin1String("postgresql")) {
            QSqlQuery pid(db);
            QVERIFY(pid.exec(QStringLiteral("SELECT pg_backend_pid()")) && pid.next());
            exec(QSqlDatabase::database(kOther),
                 QStringLiteral("SELECT pg_terminate_backend(%1)").arg(pid.value(0).toInt()));
        } else {
            db.close();
        }
        const QString failure = failureOf([&] { set->Post(); });
        QVERIFY2(failure.startsWith(QStringLiteral("Spojení s databází bylo přerušeno.")),
                 qPrintable(failure));
        QCOMPARE(set->State(), dsEdit);
        QCOMPARE(F(set, "name")->AsString(), QStringLiteral("uloženo později"));
        set->Cancel();
        // Reading past the window fails with a message, not a crash.
        const QString reading = failureOf([&] { set->MoveBy(50); });
        QVERIFY2(reading.startsWith(QStringLiteral("Spojení s databází bylo přerušeno.")),
                 qPrintable(reading));
    }

    void eventsAndLinks()
    {
        PREPARE(30);
        auto set = itemSet();
        TDataSource source;
        source.SetDataSet(set.get());
        CountingLink link;
        link.SetDataSource(&source);
        set->Next();
        set->Next();
        QCOMPARE(link.scrolled, 2);

        // Disabled controls hear one change at the end, not every move.
        link.changed = link.scrolled = 0;
        set->DisableControls();
        set->MoveBy(5);
        set->Prior();
        QCOMPARE(link.scrolled + link.changed, 0);
        set->EnableControls();
        QCOMPARE(link.changed, 1);
        set->Edit();
        QCOMPARE(link.states, 1);
    }

    void filterNarrowsTheRecords()
    {
        PREPARE(300);
        auto set = itemSet(kMain, true);
        QTRY_COMPARE(set->RecordCount(), 100);
        set->Last();
        QCOMPARE(F(set, "id")->AsInteger(), 298);
        QVERIFY(set->Locate({QVariant(151)}));
        QCOMPARE(F(set, "name")->AsString(), QStringLiteral("n151"));
        QVERIFY(!set->Locate({QVariant(5000)}));
        QCOMPARE(F(set, "id")->AsInteger(), 151);
    }
};

QTEST_MAIN(TestSqlDataSet)
#include "tst_sqldataset.moc"
