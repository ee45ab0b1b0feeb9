#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/utilities/BackgroundWorker.h"
#include "support/TestSupport.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QHash>
#include <QSemaphore>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace oxa;

namespace {

const QString RunningText = QStringLiteral("Nelze spustit. Probíhá výpočet");
const QString MissingWorkText = QStringLiteral(
    "Chyba !\r\nMusí být implementována alespoň událost OnDoInBackGround, \r\n"
    "když už ne všechny (OnDoInBackGround, OnDone, OnProgress)");
const QString ProgressBeforeRunText =
    QStringLiteral("\"Progress\" lze volat jen po zavolání metody \"Run\"");

constexpr double MSecsPerDay = 86400000.0;
// Bounds every wait of a job, so that a failing test ends instead of hanging.
constexpr int JobWaitMs = 5000;

QThread *mainThread()
{
    return QCoreApplication::instance()->thread();
}

// The message of the oxa::Exception fn throws, or a marker.
QString thrownMessage(const std::function<void()> &fn)
{
    try {
        fn();
    } catch (const Exception &error) {
        return error.Message();
    }
    return QStringLiteral("<no exception>");
}

// Runs the event loop until done() holds; false on time-out. Unlike
// QTRY_*, it handles each event as it arrives.
bool waitFor(const std::function<bool()> &done, int timeoutMs = 20000)
{
    const QDeadlineTimer deadline(timeoutMs);
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done() || deadline.hasExpired())
            loop.quit();
    });
    poll.start(1);
    if (!done())
        loop.exec();
    return done();
}

struct TDone
{
    QString error;
    TDateTime time;
    QObject *data;
    QThread *thread;
};

TProcDone recordInto(QList<TDone> &done)
{
    return [&done](const QString &error, TDateTime time, QObject *data) {
        done.append({error, time, data, QThread::currentThread()});
    };
}

enum TOutcome { Returns, ThrowsOxa, ThrowsStd, ThrowsOther };

} // namespace

Q_DECLARE_METATYPE(TOutcome)

class TestBackgroundWorker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runWhileRunningLeavesTheJobAlone();
    void runWithoutWorkIsRefused();
    void progressOutsideAJobIsRefused();
    void doneReportsErrorAndTime_data();
    void doneReportsErrorAndTime();
    void progressWaitsForOnProgress();
    void progressOnTheMainThreadRunsAtOnce();
    void onProgressExceptionReachesTheWork();
    void onDoneExceptionGoesToTheMessageService();
    void terminateIsCooperative();
    void setPrioritaActsOnTheRunningThreadOnly();
    void destroyedWhileAJobRuns_data();
    void destroyedWhileAJobRuns();
    void thousandJobsInARow();
    void registeredOnTheOxaPage();
};

void TestBackgroundWorker::runWhileRunningLeavesTheJobAlone()
{
    TBackgroundWorker worker;
    TWorkerData first, second;
    QSemaphore release;
    QList<TDone> done;
    worker.OnDoInBackGround = [&](QObject *) { release.tryAcquire(1, JobWaitMs); };
    worker.OnDone = recordInto(done);

    worker.Run(&first);
    QCOMPARE(thrownMessage([&] { worker.Run(&second); }), RunningText);
    release.release();

    QVERIFY(waitFor([&] { return !done.isEmpty(); }));
    QCOMPARE(done.size(), 1);
    QCOMPARE(done[0].data, &first);
    QCOMPARE(done[0].error, QString());
}

void TestBackgroundWorker::runWithoutWorkIsRefused()
{
    TBackgroundWorker worker;
    QList<TDone> done;
    worker.OnDone = recordInto(done);
    worker.OnProgress = [](qint16, const QString &, QObject *) {};

    QCOMPARE(thrownMessage([&] { worker.Run(nullptr); }), MissingWorkText);
    QCoreApplication::processEvents();
    QVERIFY(done.isEmpty());
    QCOMPARE(thrownMessage([&] { worker.Progress(1, {}); }), ProgressBeforeRunText);
}

void TestBackgroundWorker::progressOutsideAJobIsRefused()
{
    TBackgroundWorker worker;
    QString inOnDone;
    worker.OnDoInBackGround = [](QObject *) {};
    worker.OnDone = [&](const QString &, TDateTime, QObject *) {
        inOnDone = thrownMessage([&] { worker.Progress(1, {}); });
    };

    QCOMPARE(thrownMessage([&] { worker.Progress(1, {}); }), ProgressBeforeRunText);
    worker.Run(nullptr);
    QVERIFY(waitFor([&] { return !inOnDone.isEmpty(); }));
    QCOMPARE(inOnDone, ProgressBeforeRunText);
    QCOMPARE(thrownMessage([&] { worker.Progress(1, {}); }), ProgressBeforeRunText);
}

void TestBackgroundWorker::doneReportsErrorAndTime_data()
{
    QTest::addColumn<TOutcome>("outcome");
    QTest::addColumn<int>("workMs");
    QTest::addColumn<QString>("error");

    QTest::newRow("returns at once") << Returns << 0 << QString();
    QTest::newRow("works for a while") << Returns << 20 << QString();
    QTest::newRow("throws the library's exception")
        << ThrowsOxa << 0 << QStringLiteral("Výpočet selhal: žádná data");
    QTest::newRow("throws a standard exception") << ThrowsStd << 0 << QStringLiteral("x");
    QTest::newRow("throws something else") << ThrowsOther << 0 << QStringLiteral("Neznámá chyba");
}

void TestBackgroundWorker::doneReportsErrorAndTime()
{
    QFETCH(TOutcome, outcome);
    QFETCH(int, workMs);
    QFETCH(QString, error);

    TBackgroundWorker worker;
    TWorkerData data;
    QList<TDone> done;
    worker.OnDone = recordInto(done);
    worker.OnDoInBackGround = [&](QObject *) {
        QThread::msleep(workMs);
        switch (outcome) {
        case Returns: return;
        case ThrowsOxa: throw Exception(error);
        case ThrowsStd: throw std::runtime_error(error.toStdString());
        case ThrowsOther: throw 42;
        }
    };

    worker.Run(&data);
    QVERIFY(waitFor([&] { return !done.isEmpty(); }));
    QCoreApplication::processEvents();
    QCOMPARE(done.size(), 1);
    QCOMPARE(done[0].error, error);
    QCOMPARE(done[0].data, &data);
    QCOMPARE(done[0].thread, mainThread());
    QVERIFY(done[0].time >= 0);
    QVERIFY(done[0].time * MSecsPerDay >= workMs - 1);
}

void TestBackgroundWorker::progressWaitsForOnProgress()
{
    TBackgroundWorker worker;
    TWorkerData data;
    std::atomic_int shown{-1};
    std::atomic_int overtaken{0};
    QList<TDone> done;
    QStringList texts;
    QList<QThread *> threads;
    worker.OnDone = recordInto(done);
    worker.OnProgress = [&](qint16 proc, const QString &text, QObject *aData) {
        QCOMPARE(aData, &data);
        texts.append(text);
        threads.append(QThread::currentThread());
        shown = proc;
    };
    worker.OnDoInBackGround = [&](QObject *) {
        for (qint16 i = 0; i < 50; ++i) {
            worker.Progress(i, QStringLiteral("Krok %1").arg(i));
            if (shown != i)
                ++overtaken;
        }
    };

    worker.Run(&data);
    QVERIFY(waitFor([&] { return !done.isEmpty(); }));
    QCOMPARE(done[0].error, QString());
    QCOMPARE(overtaken.load(), 0);
    QCOMPARE(texts.size(), 50);
    QCOMPARE(texts.last(), QStringLiteral("Krok 49"));
    QCOMPARE(threads.count(mainThread()), 50);
}

void TestBackgroundWorker::progressOnTheMainThreadRunsAtOnce()
{
    TBackgroundWorker worker;
    QSemaphore release;
    QList<TDone> done;
    QList<QThread *> progressThreads;
    worker.OnDone = recordInto(done);
    worker.OnProgress = [&](qint16, const QString &, QObject *) {
        progressThreads.append(QThread::currentThread());
    };
    worker.OnDoInBackGround = [&](QObject *) { release.tryAcquire(1, JobWaitMs); };

    worker.Run(nullptr);
    worker.Progress(7, QStringLiteral("z hlavního vlákna"));
    QCOMPARE(progressThreads, QList<QThread *>{mainThread()});
    release.release();
    QVERIFY(waitFor([&] { return !done.isEmpty(); }));
    QCOMPARE(done[0].error, QString());
}

void TestBackgroundWorker::onProgressExceptionReachesTheWork()
{
    TBackgroundWorker worker;
    QList<TDone> done;
    bool continued = false;
    worker.OnDone = recordInto(done);
    worker.OnProgress = [](qint16, const QString &, QObject *) {
        throw Exception(QStringLiteral("Přerušeno uživatelem"));
    };
    worker.OnDoInBackGround = [&](QObject *) {
        worker.Progress(1, {});
        continued = true;
    };

    worker.Run(nullptr);
    QVERIFY(waitFor([&] { return !done.isEmpty(); }));
    QCOMPARE(done[0].error, QStringLiteral("Přerušeno uživatelem"));
    QVERIFY(!continued);
}

void TestBackgroundWorker::onDoneExceptionGoesToTheMessageService()
{
    test::MessageRecorder messages;
    TBackgroundWorker worker;
    int doneCount = 0;
    worker.OnDoInBackGround = [](QObject *) {};
    worker.OnDone = [&](const QString &, TDateTime, QObject *) {
        ++doneCount;
        throw Exception(QStringLiteral("Chyba v obsluze"));
    };

    worker.Run(nullptr);
    QVERIFY(waitFor([&] { return doneCount == 1; }));
    QCOMPARE(messages.Texts(), QStringList{QStringLiteral("Chyba v obsluze")});
    worker.Run(nullptr);
    QVERIFY(waitFor([&] { return doneCount == 2; }));
}

void TestBackgroundWorker::terminateIsCooperative()
{
    TBackgroundWorker worker;
    QList<TDone> done;
    int progressCalls = 0;
    std::atomic_bool threadFlag{false};
    std::atomic_bool terminatedAtStart{true};
    worker.OnDone = recordInto(done);
    worker.OnProgress = [&](qint16 proc, const QString &, QObject *) {
        ++progressCalls;
        if (proc == 3)
            worker.Terminate();
    };
    worker.OnDoInBackGround = [&](QObject *) {
        terminatedAtStart = worker.isTerminated();
        for (qint16 i = 0; !worker.isTerminated() && i < 1000; ++i)
            worker.Progress(i, {});
        threadFlag = QThread::currentThread()->isInterruptionRequested();
    };

    worker.Run(nullptr);
    QVERIFY(waitFor([&] { return !done.isEmpty(); }));
    QCOMPARE(done[0].error, QString());
    QCOMPARE(progressCalls, 4);
    QVERIFY(!terminatedAtStart);
    QVERIFY(threadFlag);
    QVERIFY(worker.isTerminated());

    // The flag stays up until the next job starts.
    worker.OnProgress = {};
    worker.Run(nullptr);
    QVERIFY(waitFor([&] { return done.size() == 2; }));
    QVERIFY(!terminatedAtStart);
    QVERIFY(!worker.isTerminated());
}

void TestBackgroundWorker::setPrioritaActsOnTheRunningThreadOnly()
{
    TBackgroundWorker worker;
    QList<TDone> done;
    QThread::Priority before = QThread::InheritPriority;
    QThread::Priority after = QThread::InheritPriority;
    worker.OnDone = recordInto(done);
    worker.OnProgress = [&](qint16, const QString &, QObject *) {
        worker.SetPriorita(QThread::LowPriority);
    };
    worker.OnDoInBackGround = [&](QObject *) {
        before = QThread::currentThread()->priority();
        worker.Progress(0, {});
        after = QThread::currentThread()->priority();
    };

    worker.SetPriorita(QThread::LowestPriority);
    worker.Run(nullptr);
    QVERIFY(waitFor([&] { return !done.isEmpty(); }));
    QVERIFY(before != QThread::LowestPriority);
    QCOMPARE(after, QThread::LowPriority);
}

void TestBackgroundWorker::destroyedWhileAJobRuns_data()
{
    QTest::addColumn<bool>("reportsProgress");
    QTest::addColumn<bool>("deleteInOnProgress");

    QTest::newRow("while working") << false << false;
    QTest::newRow("while Progress waits for the main thread") << true << false;
    QTest::newRow("from inside OnProgress") << true << true;
}

void TestBackgroundWorker::destroyedWhileAJobRuns()
{
    QFETCH(bool, reportsProgress);
    QFETCH(bool, deleteInOnProgress);

    auto *worker = new TBackgroundWorker;
    QSemaphore started;
    std::atomic_bool workReturned{false};
    int progressCalls = 0;
    bool doneCalled = false;
    worker->OnDone = [&](const QString &, TDateTime, QObject *) { doneCalled = true; };
    worker->OnProgress = [&](qint16, const QString &, QObject *) {
        ++progressCalls;
        if (deleteInOnProgress)
            delete worker; // the last statement: it frees this handler too
    };
    worker->OnDoInBackGround = [&, worker](QObject *) {
        started.release();
        const QDeadlineTimer deadline(JobWaitMs);
        while (!worker->isTerminated() && !deadline.hasExpired()) {
            if (reportsProgress)
                worker->Progress(1, QStringLiteral("běží"));
            else
                QThread::msleep(1);
        }
        workReturned = true;
    };

    worker->Run(nullptr);
    if (deleteInOnProgress) {
        QVERIFY(waitFor([&] { return workReturned.load(); }));
        QCOMPARE(progressCalls, 1);
    } else {
        QVERIFY(started.tryAcquire(1, JobWaitMs));
        delete worker;
        QVERIFY(workReturned);
        QCOMPARE(progressCalls, 0);
    }
    QTest::qWait(1);
    QVERIFY(!doneCalled);
}

// Each job reports progress; every seventh throws, every fifth is stopped
// from OnProgress. OnDone starts the next job.
void TestBackgroundWorker::thousandJobsInARow()
{
    constexpr int Jobs = 1000;
    test::MessageRecorder messages;
    TBackgroundWorker worker;
    std::vector<std::unique_ptr<TWorkerData>> data;
    QHash<QObject *, int> jobOf;
    for (int i = 0; i < Jobs; ++i) {
        data.push_back(std::make_unique<TWorkerData>());
        jobOf.insert(data.back().get(), i);
    }
    QList<int> doneCount(Jobs, 0);
    QStringList errors(Jobs);
    int offMainThread = 0;
    int progressCalls = 0;
    int finished = 0;
    auto throws = [](int job) { return job % 7 == 3; };
    auto stopped = [](int job) { return job % 5 == 1; };

    worker.OnDoInBackGround = [&](QObject *aData) {
        const int job = jobOf.value(aData);
        for (qint16 i = 0; i < 3 || (stopped(job) && !worker.isTerminated()); ++i) {
            worker.Progress(i, {});
            if (throws(job))
                throw Exception(QString::number(job));
        }
    };
    worker.OnProgress = [&](qint16 proc, const QString &, QObject *aData) {
        ++progressCalls;
        offMainThread += QThread::currentThread() != mainThread();
        if (proc == 2 && stopped(jobOf.value(aData)))
            worker.Terminate();
    };
    worker.OnDone = [&](const QString &error, TDateTime, QObject *aData) {
        const int job = jobOf.value(aData);
        ++doneCount[job];
        errors[job] = error;
        offMainThread += QThread::currentThread() != mainThread();
        if (++finished < Jobs)
            worker.Run(data[finished].get());
    };

    worker.Run(data[0].get());
    QVERIFY(waitFor([&] { return finished == Jobs; }, 60000));
    QTest::qWait(1);

    int expectedProgress = 0;
    for (int job = 0; job < Jobs; ++job) {
        QCOMPARE(doneCount[job], 1);
        QCOMPARE(errors[job], throws(job) ? QString::number(job) : QString());
        expectedProgress += throws(job) ? 1 : 3;
    }
    QCOMPARE(progressCalls, expectedProgress);
    QCOMPARE(offMainThread, 0);
    QVERIFY(messages.Shown().isEmpty());
}

void TestBackgroundWorker::registeredOnTheOxaPage()
{
    RegisterBackgroundWorker();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TBackgroundWorker"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QCOMPARE(entry->Unit, QStringLiteral("BackgroundWorker"));
    QVERIFY(!entry->IsWidget);

    QWidget owner;
    QObject *created = Catalogue::Instance().Create(QStringLiteral("TBackgroundWorker"), &owner);
    QVERIFY(qobject_cast<TBackgroundWorker *>(created));
    QCOMPARE(created->parent(), &owner);
}

QTEST_MAIN(TestBackgroundWorker)
#include "tst_backgroundworker.moc"
