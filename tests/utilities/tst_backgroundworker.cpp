#include "oxa/toolkit/Exceptions.h"
#include "oxa/utilities/BackgroundWorker.h"
#include "support/TestSupport.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QSemaphore>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <memory>
#include <stdexcept>

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
    bool WaitDone()
    {
        return test::WaitFor([&] { return !done.isEmpty(); });
    }
};

enum TOutcome { Returns, ThrowsOxa, ThrowsStd, ThrowsOther, OnProgressThrows };

} // namespace

class TestBackgroundWorker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusalsAndFailuresLeaveTheWorkerUsable()
    {
        const QString progressBeforeRun = "\"Progress\" lze volat jen po zavolání metody \"Run\"";
        Job job;
        TWorkerData first, second;
        QSemaphore release;
        QList<QThread *> progressThreads;
        job.worker.OnProgress = [&](qint16, const QString &, QObject *) {
            progressThreads.append(QThread::currentThread());
        };

        QCOMPARE(thrownMessage([&] { job.worker.Run(&first); }),
                 "Chyba !\r\nMusí být implementována alespoň událost OnDoInBackGround, \r\n"
                 "když už ne všechny (OnDoInBackGround, OnDone, OnProgress)");
        QCOMPARE(thrownMessage([&] { job.worker.Progress(1, {}); }), progressBeforeRun);

        job.worker.OnDoInBackGround = [&](QObject *) { release.tryAcquire(1, JobWaitMs); };
        job.worker.Run(&first);
        QCOMPARE(thrownMessage([&] { job.worker.Run(&second); }), "Nelze spustit. Probíhá výpočet");
        job.worker.Progress(7, {}); // on the main thread itself: at once, no deadlock
        QCOMPARE(progressThreads, QList<QThread *>{mainThread()});
        release.release(3); // this job and the two below
        QVERIFY(job.WaitDone());
        QCOMPARE(job.done[0].data, &first);
        QCOMPARE(thrownMessage([&] { job.worker.Progress(1, {}); }), progressBeforeRun);

        // A failing OnDone is shown to the user; the worker is idle all the same.
        test::MessageRecorder messages;
        job.worker.OnDone = [](const QString &, TDateTime, QObject *) {
            throw Exception("Chyba v obsluze");
        };
        job.worker.Run(nullptr);
        QVERIFY(test::WaitFor([&] { return !messages.Shown().isEmpty(); }));
        job.worker.Run(nullptr);
        QVERIFY(
            test::WaitFor([&] { return messages.Texts() == QStringList(2, "Chyba v obsluze"); }));
    }

    void doneReportsErrorAndTime_data()
    {
        QTest::addColumn<int>("outcome");
        QTest::addColumn<int>("workMs");
        QTest::addColumn<QString>("error");
        QTest::newRow("works for a while") << int(Returns) << 20 << QString();
        QTest::newRow("library exception")
            << int(ThrowsOxa) << 0 << QStringLiteral("Výpočet selhal");
        QTest::newRow("standard exception") << int(ThrowsStd) << 0 << QStringLiteral("x");
        QTest::newRow("anything else") << int(ThrowsOther) << 0 << QStringLiteral("Neznámá chyba");
        QTest::newRow("OnProgress throws")
            << int(OnProgressThrows) << 0 << QStringLiteral("Přerušeno");
    }

    void doneReportsErrorAndTime()
    {
        QFETCH(int, outcome);
        QFETCH(int, workMs);
        QFETCH(QString, error);
        Job job;
        TWorkerData data;
        job.worker.OnProgress = [&](qint16, const QString &, QObject *) { throw Exception(error); };
        job.worker.OnDoInBackGround = [&](QObject *) {
            QThread::msleep(workMs);
            switch (outcome) {
            case ThrowsOxa:
                throw Exception(error);
            case ThrowsStd:
                throw std::runtime_error(error.toStdString());
            case ThrowsOther:
                throw 42;
            case OnProgressThrows:
                job.worker.Progress(1, {}); // rethrows OnProgress's exception
            }
        };

        job.worker.Run(&data);
        QVERIFY(job.WaitDone());
        QTest::qWait(1);
        QCOMPARE(job.done.size(), 1);
        QCOMPARE(job.done[0].error, error);
        QCOMPARE(job.done[0].data, &data);
        QCOMPARE(job.done[0].thread, mainThread());
        QVERIFY(job.done[0].time >= 0 && job.done[0].time * 86400000.0 >= workMs - 1);
    }

    // The worker asks the job to stop, releases its waiting Progress without
    // running OnProgress, waits for the work to return and reports no completion.
    void destroyedWhileAJobRuns()
    {
        auto *worker = new TBackgroundWorker;
        QSemaphore started;
        std::atomic_bool workReturned{false};
        bool handlerRan = false;
        worker->OnDone = [&](const QString &, TDateTime, QObject *) { handlerRan = true; };
        worker->OnProgress = [&](qint16, const QString &, QObject *) { handlerRan = true; };
        worker->OnDoInBackGround = [&, worker](QObject *) {
            started.release();
            const QDeadlineTimer deadline(JobWaitMs);
            while (!worker->isTerminated() && !deadline.hasExpired())
                worker->Progress(1, QStringLiteral("běží"));
            workReturned = true;
        };

        worker->Run(nullptr);
        QVERIFY(started.tryAcquire(1, JobWaitMs));
        delete worker;
        QVERIFY(workReturned);
        QTest::qWait(1);
        QVERIFY(!handlerRan);
    }

    // Every seventh job throws, every fifth is stopped from OnProgress; OnDone
    // starts the next job. `wrong` counts broken promises: a handler off the main
    // thread, Progress returning before its OnProgress ran, a stop flag not raised
    // or not cleared by Run.
    void thousandJobsInARow()
    {
        constexpr int Jobs = 1000;
        test::MessageRecorder messages;
        TBackgroundWorker worker;
        const std::unique_ptr<TWorkerData[]> data(new TWorkerData[Jobs]);
        auto jobOf = [&](QObject *aData) {
            return int(static_cast<TWorkerData *>(aData) - data.get());
        };
        auto stopped = [](int job) { return job % 5 == 1; };
        auto throws = [&](int job) { return job % 7 == 3 && !stopped(job); };
        auto offMain = [] { return QThread::currentThread() != mainThread(); };
        QList<int> doneCount(Jobs, 0);
        QStringList errors(Jobs);
        int progressCalls = 0, finished = 0;
        std::atomic_int wrong{0}, shown{-1};

        worker.OnDoInBackGround = [&](QObject *aData) {
            const int job = jobOf(aData);
            QThread *self = QThread::currentThread();
            wrong += worker.isTerminated();
            for (qint16 i = 0; i < 3 || (stopped(job) && !worker.isTerminated()); ++i) {
                worker.Progress(i, QStringLiteral("Krok"));
                wrong += shown != i;
                if (throws(job))
                    throw Exception(QString::number(job));
            }
            wrong += self->isInterruptionRequested() != stopped(job);
        };
        worker.OnProgress = [&](qint16 proc, const QString &text, QObject *aData) {
            ++progressCalls;
            shown = proc;
            wrong += offMain() || text != QStringLiteral("Krok");
            if (proc == 2 && stopped(jobOf(aData)))
                worker.Terminate();
        };
        worker.OnDone = [&](const QString &error, TDateTime, QObject *aData) {
            const int job = jobOf(aData);
            ++doneCount[job];
            errors[job] = error;
            wrong += offMain() || worker.isTerminated() != stopped(job);
            if (++finished < Jobs)
                worker.Run(&data[finished]);
        };

        worker.Run(&data[0]);
        QVERIFY(test::WaitFor([&] { return finished == Jobs; }, 60000));
        QTest::qWait(1);
        int expectedProgress = 0;
        for (int job = 0; job < Jobs; ++job) {
            QCOMPARE(doneCount[job], 1);
            QCOMPARE(errors[job], throws(job) ? QString::number(job) : QString());
            expectedProgress += throws(job) ? 1 : 3;
        }
        QCOMPARE(progressCalls, expectedProgress);
        QCOMPARE(wrong.load(), 0);
        QVERIFY(messages.Shown().isEmpty());
    }
};

QTEST_MAIN(TestBackgroundWorker)
#include "tst_backgroundworker.moc"
