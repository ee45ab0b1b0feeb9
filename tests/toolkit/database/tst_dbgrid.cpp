// The record grid on SQLite and PostgreSQL, driven by keys and clicks: what
// rows it paints, where the keys take the cursor, what reaches the database.

#include "oxa/toolkit/DBGrid.h"
#include "oxa/toolkit/SqlDataSet.h"
#include "support/TestDatabase.h"
#include "support/TestSupport.h"

#include <QLineEdit>
#include <QtTest>

using namespace oxa;
using namespace oxa::test;

namespace {

void createPatients(int count)
{
    QSqlDatabase db = QSqlDatabase::database(kMain);
    const bool pg = db.driverName() == QLatin1String("QPSQL");
    exec(db,
         QStringLiteral("CREATE TABLE patient (id %1 PRIMARY KEY, name VARCHAR(40), age INTEGER)")
             .arg(pg ? "SERIAL" : "INTEGER"));
    InsertNumbered(db, QStringLiteral("patient"), count, QStringLiteral("'p' || id, 20 + id % 50"));
}

} // namespace

class TestDBGrid : public QObject
{
    Q_OBJECT

    QString m_skip;
    std::unique_ptr<TSqlDataSet> m_set;
    std::unique_ptr<TDataSource> m_source;
    std::unique_ptr<TDBGrid> m_grid;
    // Texts of the name column as last painted, by grid row.
    QMap<int, QString> m_painted;

    bool prepare(int count)
    {
        QFETCH_GLOBAL(QString, database);
        const QString why = test::OpenTestDatabase(database, kMain);
        if (!why.isEmpty()) {
            m_skip = why;
            return false;
        }
        createPatients(count);
        test::CloneTestDatabase(kMain, kOther);
        m_set = std::make_unique<TSqlDataSet>();
        m_set->SetConnectionName(kMain);
        m_set->SetTableName(QStringLiteral("patient"));
        m_set->SetPacketRecords(20);
        m_set->Open();
        m_source = std::make_unique<TDataSource>();
        m_source->SetDataSet(m_set.get());
        m_grid = std::make_unique<TDBGrid>();
        m_grid->SetDataSource(m_source.get());
        m_grid->resize(360, 240);
        m_grid->OnDrawColumnCell = [this](QObject *, const QRect &rect, int, TColumn *column,
                                          TGridDrawState) {
            if (column->FieldName() == QLatin1String("name"))
                m_painted[rect.top()] = column->Field()->DisplayText();
        };
        return test::ShowAndActivate(m_grid.get());
    }

    // The names painted from top to bottom.
    QStringList paintedNames()
    {
        m_painted.clear();
        m_grid->viewport()->repaint();
        return m_painted.values();
    }
    int id() const { return int(m_set->FieldByName(QStringLiteral("id"))->AsInteger()); }
    void key(Qt::Key k, Qt::KeyboardModifiers m = Qt::NoModifier)
    {
        QWidget *target = QApplication::focusWidget() ? QApplication::focusWidget() : m_grid.get();
        QTest::keyClick(target, k, m);
    }

#define PREPARE(count) OXA_REQUIRE_DATABASE(prepare(count), m_skip)

private Q_SLOTS:
    // Every case runs on each database.
    void initTestCase_data()
    {
        test::AddDatabaseRows();
    }
    void cleanup()
    {
        m_grid.reset();
        m_source.reset();
        m_set.reset();
        test::CloseTestConnections();
    }

    void paintsOnlyTheRecordsItShows()
    {
        PREPARE(5000);
        const int rows = m_grid->VisibleRecordRows();
        QVERIFY(rows > 3);
        QCOMPARE(m_grid->RowCount(), rows + 1);
        const QStringList first = paintedNames();
        QCOMPARE(first.size(), rows);
        QCOMPARE(first.first(), QStringLiteral("p1"));

        // Ctrl+End shows the last record on the bottom row.
        key(Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(id(), 5000);
        const QStringList last = paintedNames();
        QCOMPARE(last.size(), rows);
        QCOMPARE(last.last(), QStringLiteral("p5000"));
        QCOMPARE(m_grid->Row(), rows);
        QVERIFY(m_set->BufferedRecords() <= 4 * 20 + 2 * rows);
        key(Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(m_grid->Row(), 1);
        key(Qt::Key_PageDown);
        QCOMPARE(id(), 1 + rows);
        key(Qt::Key_Up);
        QCOMPARE(id(), rows);

        // The wheel moves one record per notch.
        QWheelEvent wheel(QPointF(50, 50), m_grid->mapToGlobal(QPointF(50, 50)), QPoint(),
                          QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_grid->viewport(), &wheel);
        QCOMPARE(id(), rows + 1);
    }

    void editsReachTheDatabase()
    {
        PREPARE(5);
        key(Qt::Key_Down);
        m_grid->SetSelectedIndex(1);
        key(Qt::Key_F2);
        QLineEdit *editor = m_grid->InplaceEditor();
        QVERIFY(editor && editor->isVisible());
        editor->selectAll();
        QTest::keyClicks(editor, QStringLiteral("Novak"));
        key(Qt::Key_Down);
        QCOMPARE(scalar("SELECT name FROM patient WHERE id = 2").toString(),
                 QStringLiteral("Novak"));
        QCOMPARE(id(), 3);

        // Escape drops the edit.
        key(Qt::Key_F2);
        m_grid->InplaceEditor()->selectAll();
        QTest::keyClicks(m_grid->InplaceEditor(), QStringLiteral("x"));
        key(Qt::Key_Return);
        QCOMPARE(m_set->State(), dsEdit);
        key(Qt::Key_Escape);
        QCOMPARE(m_set->State(), dsBrowse);
        QCOMPARE(scalar("SELECT name FROM patient WHERE id = 3").toString(), QStringLiteral("p3"));
    }

    void downOnTheLastRecordAppends()
    {
        PREPARE(3);
        key(Qt::Key_End, Qt::ControlModifier);
        key(Qt::Key_Down);
        QCOMPARE(m_set->State(), dsInsert);
        QCOMPARE(paintedNames().size(), 4);
        key(Qt::Key_Down); // an untouched new record stays where it is
        QCOMPARE(m_set->State(), dsInsert);
        key(Qt::Key_Up); // and goes again when the user moves away
        QCOMPARE(m_set->State(), dsBrowse);
        QCOMPARE(id(), 3);
        QCOMPARE(paintedNames().size(), 3);

        key(Qt::Key_Down);
        m_grid->SetSelectedIndex(1);
        key(Qt::Key_F2);
        QTest::keyClicks(m_grid->InplaceEditor(), QStringLiteral("Dvorak"));
        key(Qt::Key_Up);
        QCOMPARE(scalar("SELECT COUNT(*) FROM patient").toInt(), 4);
        QCOMPARE(scalar("SELECT name FROM patient WHERE id = 4").toString(),
                 QStringLiteral("Dvorak"));

        // Without the editing option Down stops at the last record.
        m_grid->SetDBOptions(m_grid->DBOptions() & ~TDBGridOptions(dgEditing));
        key(Qt::Key_End, Qt::ControlModifier);
        key(Qt::Key_Down);
        QCOMPARE(m_set->State(), dsBrowse);
    }

    void ctrlDeleteAsksFirst_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("left");
        QTest::newRow("ok") << int(mrOk) << 2;
        QTest::newRow("cancel") << int(mrCancel) << 3;
    }
    void ctrlDeleteAsksFirst()
    {
        QFETCH(int, answer);
        QFETCH(int, left);
        PREPARE(3);
        test::MessageRecorder messages(answer);
        key(Qt::Key_Down);
        key(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(messages.Texts(), QStringList{QStringLiteral("Smazat záznam?")});
        QCOMPARE(scalar("SELECT COUNT(*) FROM patient").toInt(), left);
    }

    void concurrentChangeIsReported()
    {
        PREPARE(5);
        test::MessageRecorder messages;
        m_grid->SetSelectedIndex(1);
        key(Qt::Key_F2);
        m_grid->InplaceEditor()->selectAll();
        QTest::keyClicks(m_grid->InplaceEditor(), QStringLiteral("muj"));
        key(Qt::Key_Return);
        exec(QSqlDatabase::database(kOther),
             QStringLiteral("UPDATE patient SET age = 99 WHERE id = 1"));
        key(Qt::Key_Down);
        QCOMPARE(messages.Shown().size(), 1);
        QVERIFY(messages.Texts().first().startsWith(
            QStringLiteral("Záznam mezitím změnil jiný uživatel.")));
        QCOMPARE(m_set->State(), dsEdit);
        QCOMPARE(id(), 1);
        QCOMPARE(m_set->FieldByName(QStringLiteral("name"))->AsString(), QStringLiteral("muj"));
        QCOMPARE(scalar("SELECT age FROM patient WHERE id = 1").toInt(), 99);
    }
};

QTEST_MAIN(TestDBGrid)
#include "tst_dbgrid.moc"
