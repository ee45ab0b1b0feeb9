#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/DateUtils.h"

#include <QObject>
#include <QString>
#include <QThread>
#include <QtGlobal>
#include <atomic>
#include <functional>

namespace oxa {

class TVlaknoEx;

// The worker's events. aData is the object handed to Run; the worker never
// owns it. aTime is the elapsed time of the job as a TDateTime (days).
using TProcDoInBackGround = std::function<void(QObject *aData)>;
using TProcProgress = std::function<void(qint16 aProc, const QString &aText)>;
using TProcProgressWorker = std::function<void(qint16 aProc, const QString &aText, QObject *aData)>;
using TProcDoneInt = std::function<void(const QString &aError, TDateTime aTime)>;
using TProcDone = std::function<void(const QString &aError, TDateTime aTime, QObject *aData)>;

// Runs one piece of application work on a background thread and reports its
// progress and completion on the thread the worker lives in (the main
// thread):
//
//   worker->OnDoInBackGround = [&](QObject *data) { ... worker->Progress(50, "Půl"); ... };
//   worker->OnProgress = [&](qint16 proc, const QString &text, QObject *data) { ... };
//   worker->OnDone = [&](const QString &error, TDateTime time, QObject *data) { ... };
//   worker->Run(data);
//
// One job runs at a time. OnDoInBackGround runs on the job's thread; an
// exception it throws ends the job and its message becomes OnDone's aError
// (empty on success). Progress, called by the work, returns only after
// OnProgress has run on the main thread; an exception thrown by OnProgress
// is rethrown to the caller of Progress. Called on the main thread itself,
// Progress runs OnProgress directly. OnDone runs once per job on the main
// thread, after the worker has become idle, so it may start the next job.
//
// Stopping is cooperative: Terminate raises a flag that the work reads with
// isTerminated (or through its thread's isInterruptionRequested).
//
// A worker destroyed while its job runs asks the job to stop, releases a
// Progress call that waits for the main thread (it returns without running
// OnProgress), waits until the work has returned and reports no completion.
// The work must therefore look at isTerminated to let the owner close.
class OXA_EXPORT TBackgroundWorker : public QObject
{
    Q_OBJECT

public:
    explicit TBackgroundWorker(QObject *owner = nullptr);
    ~TBackgroundWorker() override;

    // Starts a job with aData. Throws Exception when a job runs already or
    // OnDoInBackGround is not assigned; the worker is unchanged then.
    void Run(QObject *aData);
    // Reports progress from the work; throws Exception when no job runs.
    void Progress(qint16 aProc, const QString &aText);
    // Asks the running job to stop; the flag stays up until the next Run.
    void Terminate();
    bool isTerminated() const;
    // Sets the priority of the running job's thread; without a job it does
    // nothing, and the value is not kept for later jobs.
    void SetPriorita(QThread::Priority Value);

    TProcDone OnDone;
    TProcDoInBackGround OnDoInBackGround;
    TProcProgressWorker OnProgress;

private:
    // The bridges the job's thread calls.
    void DoInBackground(QObject *Sender);
    void DoProgress(qint16 aProc, const QString &aText);
    void DoDone(const QString &aError, TDateTime aTime);

    void finishJob(TVlaknoEx *vlakno);
    void abandonJob();

    QObject *fData = nullptr;
    TVlaknoEx *fVlakno = nullptr;
    std::atomic_bool fWasTerminated{false};
};

// A small data object for applications that want to hand the worker a
// result flag and a back reference; the worker itself does not use it.
class OXA_EXPORT TWorkerData : public QObject
{
    Q_OBJECT

public:
    explicit TWorkerData(QObject *parent = nullptr);

    bool volaniOK = true;
    TBackgroundWorker *worker = nullptr;
};

OXA_EXPORT void RegisterBackgroundWorker();

} // namespace oxa
