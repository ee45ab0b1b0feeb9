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

// Bounds every wait inside a job, so that a failing test ends instead of hanging.
constexpr int JobWaitMs = 5000;

QThread *mainThread()
{
    return QCoreApplication::instance()->thread();
}

QString thrownMessage(const std::function<void()> &fn)
{
    try {
        fn();
    } catch (const Exception &error) {
        return error.Message();
    }
    return QStringLiteral("<no exception>");
}

// Runs the event loop until done() holds, handling each event as it arrives.
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

// A worker that records its completions.
struct Job
{
    struct Done
    {
        QString error;
        TDateTime time;
        QObject *data;
        QThread *thread;
    };
    TBackgroundWorker worker;
    QList<Done> done;

    Job()
    {
        worker.OnDone = [this](const QString &error, TDateTime time, QObject *data) {
            done.append({error, time, data, QThread::currentThread()});
        };
    }
    bool WaitDone(int count = 1)
    {
        return waitFor([&] { return done.size() >= count; }) && done.size() == count;
    }
};

enum TOutcome { Returns, ThrowsOxa, ThrowsStd, ThrowsOther };

} // namespace

class TestBackgroundWorker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusalsLeaveTheWorkerAsItWas();
    void doneReportsErrorAndTime_data();
    void doneReportsErrorAndTime();
    void progressWaitsForOnProgress();
    void progressOnTheMainThreadRunsAtOnce();
    void handlerExceptions();
    void terminateIsCooperative();
    void setPrioritaActsOnTheRunningThreadOnly();
    void destroyedWhileAJobRuns_data();
    void destroyedWhileAJobRuns();
    void thousandJobsInARow();
    void registeredOnTheOxaPage();
};

void TestBackgroundWorker::refusalsLeaveTheWorkerAsItWas()
{
    const QString progressBeforeRun = "\"Progress\" lze volat jen po zavolání metody \"Run\"";
    Job job;
    TWorkerData first, second;
    QSemaphore release;
    job.worker.OnProgress = [](qint16, const QString &, QObject *) {};

    QCOMPARE(thrownMessage([&] { job.worker.Run(&first); }),
             "Chyba !\r\nMusí být implementována alespoň událost OnDoInBackGround, \r\n"
             "když už ne všechny (OnDoInBackGround, OnDone, OnProgress)");
    QCOMPARE(thrownMessage([&] { job.worker.Progress(1, {}); }), progressBeforeRun);

    job.worker.OnDoInBackGround = [&](QObject *) { release.tryAcquire(1, JobWaitMs); };
    job.worker.Run(&first);
    QCOMPARE(thrownMessage([&] { job.worker.Run(&second); }), "Nelze spustit. Probíhá výpočet");
    release.release();
    QVERIFY(job.WaitDone());
    QCOMPARE(job.done[0].data, &first);
    QCOMPARE(job.done[0].error, QString());
    QCOMPARE(thrownMessage([&] { job.worker.Progress(1, {}); }), progressBeforeRun);
}

void TestBackgroundWorker::doneReportsErrorAndTime_data()
{
    QTest::addColumn<int>("outcome");
    QTest::addColumn<int>("workMs");
    QTest::addColumn<QString>("error");

    QTest::newRow("returns at once") << int(Returns) << 0 << QString();
    QTest::newRow("works for a while") << int(Returns) << 20 << QString();
    QTest::newRow("library exception") << int(ThrowsOxa) << 0 << QStringLiteral("Výpočet selhal: žádná data");
    QTest::newRow("standard exception") << int(ThrowsStd) << 0 << QStringLiteral("x");
    QTest::newRow("anything else") << int(ThrowsOther) << 0 << QStringLiteral("Neznámá chyba");
}

void TestBackgroundWorker::doneReportsErrorAndTime()
{
    QFETCH(int, outcome);
    QFETCH(int, workMs);
    QFETCH(QString, error);
    Job job;
    TWorkerData data;
    job.worker.OnDoInBackGround = [&](QObject *) {
        QThread::msleep(workMs);
        switch (outcome) {
        case ThrowsOxa: throw Exception(error);
        case ThrowsStd: throw std::runtime_error(error.toStdString());
        case ThrowsOther: throw 42;
        }
    };

    job.worker.Run(&data);
    QVERIFY(job.WaitDone());
    QTest::qWait(1);
    QCOMPARE(job.done.size(), 1);
    QCOMPARE(job.done[0].error, error);
    QCOMPARE(job.done[0].data, &data);
    QCOMPARE(job.done[0].thread, mainThread());
    QVERIFY(job.done[0].time >= 0);
    QVERIFY(job.done[0].time * 86400000.0 >= workMs - 1);
}

void TestBackgroundWorker::progressWaitsForOnProgress()
{
    Job job;
    TWorkerData data;
    std::atomic_int shown{-1}, overtaken{0};
    QStringList texts;
    job.worker.OnProgress = [&](qint16 proc, const QString &text, QObject *aData) {
        if (QThread::currentThread() == mainThread() && aData == &data)
            texts.append(text);
        shown = proc;
    };
    job.worker.OnDoInBackGround = [&](QObject *) {
        for (qint16 i = 0; i < 50; ++i) {
            job.worker.Progress(i, QStringLiteral("Krok %1").arg(i));
            overtaken += shown != i;
        }
    };

    job.worker.Run(&data);
    QVERIFY(job.WaitDone());
    QCOMPARE(overtaken.load(), 0);
    QCOMPARE(texts.size(), 50);
    QCOMPARE(texts.last(), QStringLiteral("Krok 49"));
}

void TestBackgroundWorker::progressOnTheMainThreadRunsAtOnce()
{
    Job job;
    QSemaphore release;
    QList<QThread *> progressThreads;
    job.worker.OnProgress = [&](qint16, const QString &, QObject *) {
        progressThreads.append(QThread::currentThread());
    };
    job.worker.OnDoInBackGround = [&](QObject *) { release.tryAcquire(1, JobWaitMs); };

    job.worker.Run(nullptr);
    job.worker.Progress(7, QStringLiteral("z hlavního vlákna"));
    QCOMPARE(progressThreads, QList<QThread *>{mainThread()});
    release.release();
    QVERIFY(job.WaitDone());
}

// OnProgress's exception reaches the work through Progress; OnDone's goes to
// the message service and leaves the worker usable.
void TestBackgroundWorker::handlerExceptions()
{
    test::MessageRecorder messages;
    Job job;
    job.worker.OnProgress = [](qint16, const QString &, QObject *) {
        throw Exception(QStringLiteral("Přerušeno uživatelem"));
    };
    job.worker.OnDoInBackGround = [&](QObject *) { job.worker.Progress(1, {}); };
    job.worker.Run(nullptr);
    QVERIFY(job.WaitDone());
    QCOMPARE(job.done[0].error, QStringLiteral("Přerušeno uživatelem"));

    job.worker.OnDone = [](const QString &, TDateTime, QObject *) {
        throw Exception(QStringLiteral("Chyba v obsluze"));
    };
    job.worker.Run(nullptr);
    QVERIFY(waitFor([&] { return !messages.Shown().isEmpty(); }));
    QCOMPARE(messages.Texts(), QStringList{QStringLiteral("Chyba v obsluze")});
    job.worker.Run(nullptr); // idle again despite the failed handler
    QVERIFY(waitFor([&] { return messages.Shown().size() == 2; }));
}

void TestBackgroundWorker::terminateIsCooperative()
{
    Job job;
    int progressCalls = 0;
    std::atomic_bool threadFlag{false}, terminatedAtStart{true};
    job.worker.OnProgress = [&](qint16 proc, const QString &, QObject *) {
        ++progressCalls;
        if (proc == 3)
            job.worker.Terminate();
    };
    job.worker.OnDoInBackGround = [&](QObject *) {
        terminatedAtStart = job.worker.isTerminated();
        for (qint16 i = 0; !job.worker.isTerminated() && i < 1000; ++i)
            job.worker.Progress(i, {});
        threadFlag = QThread::currentThread()->isInterruptionRequested();
    };

    job.worker.Run(nullptr);
    QVERIFY(job.WaitDone());
    QCOMPARE(job.done[0].error, QString());
    QCOMPARE(progressCalls, 4);
    QVERIFY(!terminatedAtStart && threadFlag);
    QVERIFY(job.worker.isTerminated());

    job.worker.OnProgress = {};
    job.worker.Run(nullptr);
    QVERIFY(job.WaitDone(2));
    QVERIFY(!terminatedAtStart && !job.worker.isTerminated());
}

void TestBackgroundWorker::setPrioritaActsOnTheRunningThreadOnly()
{
    Job job;
    QThread::Priority before = QThread::InheritPriority, after = QThread::InheritPriority;
    job.worker.OnProgress = [&](qint16, const QString &, QObject *) {
        job.worker.SetPriorita(QThread::LowPriority);
    };
    job.worker.OnDoInBackGround = [&](QObject *) {
        before = QThread::currentThread()->priority();
        job.worker.Progress(0, {});
        after = QThread::currentThread()->priority();
    };

    job.worker.SetPriorita(QThread::LowestPriority);
    job.worker.Run(nullptr);
    QVERIFY(job.WaitDone());
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
            delete worker; // the last statement: this handler goes with the worker
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
    } else {
        QVERIFY(started.tryAcquire(1, JobWaitMs));
        delete worker;
        QVERIFY(workReturned);
    }
    QTest::qWait(1);
    QCOMPARE(progressCalls, deleteInOnProgress ? 1 : 0);
    QVERIFY(!doneCalled);
}

// Every seventh job throws, every fifth is stopped from OnProgress; OnDone
// starts the next job.
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
    int offMainThread = 0, progressCalls = 0, finished = 0;
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
    QVERIFY(entry && !entry->IsWidget);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QWidget owner;
    QObject *created = Catalogue::Instance().Create(QStringLiteral("TBackgroundWorker"), &owner);
    QVERIFY(qobject_cast<TBackgroundWorker *>(created) && created->parent() == &owner);
}

QTEST_MAIN(TestBackgroundWorker)
#include "tst_backgroundworker.moc"
