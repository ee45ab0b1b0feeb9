// The Progress round trip of TBackgroundWorker - a call on the job's thread
// until OnProgress has run on the main thread and the call has returned -
// side by side with Qt's bare blocking queued call from a thread to the main
// thread (QMetaObject::invokeMethod with Qt::BlockingQueuedConnection)
// carrying the same values. Both loops run on the background thread while
// the main thread runs its event loop; times are wall-clock per round trip.

#include "oxa/utilities/BackgroundWorker.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QThread>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

const QString ProgressText = QStringLiteral("Zpracováno 50 %");

// What the main thread does with each call: as little as possible.
struct TSink
{
    qint64 calls = 0;
    qint64 sum = 0;
    void Take(qint16 proc, const QString &text)
    {
        ++calls;
        sum += proc + text.size();
    }
};

void BM_WorkerProgress(benchmark::State &state)
{
    oxa::TBackgroundWorker worker;
    TSink sink;
    QEventLoop loop;
    worker.OnDoInBackGround = [&](QObject *) {
        for (auto _ : state)
            worker.Progress(50, ProgressText);
    };
    worker.OnProgress = [&](qint16 proc, const QString &text, QObject *) { sink.Take(proc, text); };
    worker.OnDone = [&](const QString &error, oxa::TDateTime, QObject *) {
        if (!error.isEmpty())
            state.SkipWithError(qPrintable(error));
        loop.quit();
    };
    worker.Run(nullptr);
    loop.exec();
    benchmark::DoNotOptimize(sink.sum);
}
BENCHMARK(BM_WorkerProgress)->UseRealTime();

void BM_QtBlockingQueuedCall(benchmark::State &state)
{
    QObject receiver;
    TSink sink;
    QEventLoop loop;
    const std::unique_ptr<QThread> caller(QThread::create([&] {
        for (auto _ : state) {
            QMetaObject::invokeMethod(
                &receiver,
                [&sink, proc = qint16(50), text = ProgressText] { sink.Take(proc, text); },
                Qt::BlockingQueuedConnection);
        }
    }));
    QObject::connect(caller.get(), &QThread::finished, &loop, &QEventLoop::quit);
    caller->start();
    loop.exec();
    caller->wait();
    benchmark::DoNotOptimize(sink.sum);
}
BENCHMARK(BM_QtBlockingQueuedCall)->UseRealTime();

} // namespace

OXA_BENCHMARK_MAIN()
