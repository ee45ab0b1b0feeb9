// The record grid over a table of 1,000,000 records (six fields of mixed
// types) on SQLite and on a PostgreSQL server, beside QTableView over
// QSqlTableModel on the same table in the same run.
//
// SQLite: a file in the temporary directory, made on the first run.
// PostgreSQL: the server whose socket directory OXA_BENCH_PG names (for
// example one started by tests/support/pgcluster.sh, user "oxa"); without
// it the PostgreSQL benchmarks are skipped.
//
// Memory is read from /proc/self/statm against the process right after
// start; run the memory benchmarks one per process
// (--benchmark_filter=BM_GridMemory/0 and so on) so that nothing else has
// grown the heap before.

#include "BenchMain.h"

#include "oxa/toolkit/DBGrid.h"
#include "oxa/toolkit/SqlDataSet.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlTableModel>
#include <QTableView>

#include <unistd.h>

using namespace oxa;

namespace {

constexpr int kRecords = 1000000;

double residentMegabytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> parts = statm.readAll().split(' ');
    return parts.size() > 1 ? parts.at(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / 1048576.0
                            : 0;
}

const double kEmptyProcess = residentMegabytes();

// 0: SQLite, 1: PostgreSQL. Returns the connection name, or empty.
QString connection(int kind)
{
    static QString names[2];
    static bool tried[2] = {false, false};
    if (tried[kind])
        return names[kind];
    tried[kind] = true;
    const QString name = kind == 0 ? QStringLiteral("bench-sqlite") : QStringLiteral("bench-pg");
    QSqlDatabase db;
    if (kind == 0) {
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(QDir::temp().filePath(QStringLiteral("oxa-bench-dbgrid.sqlite")));
    } else {
        const QString socket = qEnvironmentVariable("OXA_BENCH_PG");
        if (socket.isEmpty())
            return QString();
        db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        db.setHostName(socket);
        db.setUserName(QStringLiteral("oxa"));
        db.setDatabaseName(QStringLiteral("postgres"));
    }
    if (!db.open())
        return QString();
    QSqlQuery query(db);
    if (query.exec(QStringLiteral("SELECT COUNT(*) FROM big")) && query.next() &&
        query.value(0).toInt() == kRecords) {
        names[kind] = name;
        return name;
    }
    query.exec(QStringLiteral("DROP TABLE IF EXISTS big"));
    query.exec(QStringLiteral("CREATE TABLE big (id INTEGER PRIMARY KEY, name VARCHAR(40), "
                              "amount %1, done BOOLEAN, born DATE, level INTEGER)")
                   .arg(kind == 0 ? "REAL" : "DOUBLE PRECISION"));
    const bool filled = kind == 0
        ? query.exec(
              QStringLiteral(
                  "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c WHERE x < %1) "
                  "INSERT INTO big SELECT x, 'pacient ' || x, x * 0.25, x % 2, "
                  "date('2000-01-01', '+' || (x % 9000) || ' days'), x % 3 FROM c")
                  .arg(kRecords))
        : query.exec(QStringLiteral("INSERT INTO big SELECT x, 'pacient ' || x, x * 0.25, "
                                    "x % 2 = 0, DATE '2000-01-01' + x % 9000, x % 3 "
                                    "FROM generate_series(1, %1) x")
                         .arg(kRecords));
    if (!filled)
        qFatal("%s", qPrintable(query.lastError().text()));
    if (kind == 1)
        query.exec(QStringLiteral("VACUUM ANALYZE big"));
    names[kind] = name;
    return name;
}

struct GridView
{
    TSqlDataSet set;
    TDataSource source;
    TDBGrid grid;

    explicit GridView(const QString &db)
    {
        set.SetConnectionName(db);
        set.SetTableName(QStringLiteral("big"));
        source.SetDataSet(&set);
        grid.resize(900, 600);
        grid.show();
    }
    void open()
    {
        set.Open();
        grid.SetDataSource(&source);
        grid.viewport()->repaint();
    }
    void key(int k, Qt::KeyboardModifiers m = Qt::NoModifier)
    {
        QKeyEvent press(QEvent::KeyPress, k, m);
        QApplication::sendEvent(&grid, &press);
        grid.viewport()->repaint();
    }
};

struct TableView
{
    QSqlTableModel model;
    QTableView view;

    explicit TableView(const QString &db) : model(nullptr, QSqlDatabase::database(db))
    {
        model.setTable(QStringLiteral("big"));
        view.resize(900, 600);
        view.show();
    }
    void open()
    {
        model.select();
        view.setModel(&model);
        view.viewport()->repaint();
    }
    void key(int k, Qt::KeyboardModifiers m = Qt::NoModifier)
    {
        QKeyEvent press(QEvent::KeyPress, k, m);
        QApplication::sendEvent(&view, &press);
        view.viewport()->repaint();
    }
};

bool skipWithout(benchmark::State &state, const QString &db)
{
    if (!db.isEmpty())
        return false;
    state.SkipWithError("no database (set OXA_BENCH_PG for PostgreSQL)");
    return true;
}

template<class View>
void openToFirstFrame(benchmark::State &state)
{
    const QString db = connection(int(state.range(0)));
    if (skipWithout(state, db))
        return;
    for (auto _ : state) {
        state.PauseTiming();
        auto view = std::make_unique<View>(db);
        QApplication::processEvents();
        state.ResumeTiming();
        view->open();
        state.PauseTiming();
        view.reset();
        state.ResumeTiming();
    }
}

void BM_GridOpen(benchmark::State &state)
{
    openToFirstFrame<GridView>(state);
}
void BM_TableViewOpen(benchmark::State &state)
{
    openToFirstFrame<TableView>(state);
}

void BM_GridCtrlEnd(benchmark::State &state)
{
    const QString db = connection(int(state.range(0)));
    if (skipWithout(state, db))
        return;
    GridView view(db);
    view.open();
    for (auto _ : state) {
        view.key(Qt::Key_End, Qt::ControlModifier);
        state.PauseTiming();
        if (view.set.FieldByName(QStringLiteral("id"))->AsInteger() != kRecords)
            state.SkipWithError("not at the last record");
        view.key(Qt::Key_Home, Qt::ControlModifier);
        state.ResumeTiming();
    }
}

// QSqlTableModel knows only what it fetched: Ctrl+End needs every row first.
void BM_TableViewCtrlEnd(benchmark::State &state)
{
    const QString db = connection(int(state.range(0)));
    if (skipWithout(state, db))
        return;
    for (auto _ : state) {
        state.PauseTiming();
        auto view = std::make_unique<TableView>(db);
        view->open();
        const double before = residentMegabytes();
        state.ResumeTiming();
        while (view->model.canFetchMore())
            view->model.fetchMore();
        view->key(Qt::Key_End, Qt::ControlModifier);
        state.PauseTiming();
        state.counters["rows"] = view->model.rowCount();
        state.counters["MB_grown"] = residentMegabytes() - before;
        view.reset();
        state.ResumeTiming();
    }
}

void BM_GridPageDown(benchmark::State &state)
{
    const QString db = connection(int(state.range(0)));
    if (skipWithout(state, db))
        return;
    GridView view(db);
    view.open();
    int pages = 0;
    for (auto _ : state) {
        view.key(Qt::Key_PageDown);
        if (++pages == 1000) {
            state.PauseTiming();
            view.key(Qt::Key_Home, Qt::ControlModifier);
            pages = 0;
            state.ResumeTiming();
        }
    }
}

void BM_TableViewPageDown(benchmark::State &state)
{
    const QString db = connection(int(state.range(0)));
    if (skipWithout(state, db))
        return;
    TableView view(db);
    view.open();
    for (auto _ : state)
        view.key(Qt::Key_PageDown);
}

// Resident memory above the empty process after the first record, the last
// record and 10,000 records paged through.
void BM_GridMemory(benchmark::State &state)
{
    const QString db = connection(int(state.range(0)));
    if (skipWithout(state, db))
        return;
    for (auto _ : state) {
        GridView view(db);
        view.open();
        view.key(Qt::Key_End, Qt::ControlModifier);
        view.key(Qt::Key_Home, Qt::ControlModifier);
        while (view.set.FieldByName(QStringLiteral("id"))->AsInteger() < 10000)
            view.key(Qt::Key_PageDown);
        state.counters["MB_above_empty"] = residentMegabytes() - kEmptyProcess;
        state.counters["records_held"] = view.set.BufferedRecords();
    }
}

void BM_TableViewMemory(benchmark::State &state)
{
    const QString db = connection(int(state.range(0)));
    if (skipWithout(state, db))
        return;
    for (auto _ : state) {
        TableView view(db);
        view.open();
        while (view.model.canFetchMore())
            view.model.fetchMore();
        view.key(Qt::Key_End, Qt::ControlModifier);
        view.key(Qt::Key_Home, Qt::ControlModifier);
        state.counters["MB_above_empty"] = residentMegabytes() - kEmptyProcess;
    }
}

} // namespace

BENCHMARK(BM_GridOpen)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TableViewOpen)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_GridCtrlEnd)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TableViewCtrlEnd)
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_GridPageDown)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TableViewPageDown)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_GridMemory)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TableViewMemory)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

OXA_BENCHMARK_MAIN()
