#include "oxa/utilities/BackgroundWorker.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"

#include <QElapsedTimer>
#include <QMetaObject>
#include <QSemaphore>
#include <QWidget>
#include <exception>
#include <memory>
#include <utility>

namespace oxa {

namespace {

QString runningMessage()
{
    return QStringLiteral("Nelze spustit. Probíhá výpočet");
}

QString missingWorkMessage()
{
    return QStringLiteral("Chyba !\r\nMusí být implementována alespoň událost OnDoInBackGround, "
                          "\r\nkdyž už ne všechny (OnDoInBackGround, OnDone, OnProgress)");
}

QString progressBeforeRunMessage()
{
    return QStringLiteral("\"Progress\" lze volat jen po zavolání metody \"Run\"");
}

QString neverRanMessage()
{
    return QStringLiteral("Vlákno ani neběželo");
}

QString unknownErrorMessage()
{
    return QStringLiteral("Neznámá chyba");
}

// How often a job waiting for the main thread looks whether its worker is
// being destroyed, which would never answer the wait.
constexpr int AbandonPollMs = 10;

constexpr double MSecsPerDay = 24.0 * 60 * 60 * 1000;

// One call handed to the main thread: released once the call has run there.
struct TSyncCall
{
    QSemaphore done;
    std::exception_ptr error;
};

} // namespace

// The thread of one job. It lives (as a QObject) in the worker's thread and
// is freed by the worker right after its termination handler has run.
class TVlaknoEx : public QThread
{
public:
    using TDoInBackgroundProc = std::function<void(QObject *Sender)>;

    TVlaknoEx() { fTimeStart.start(); }

    bool Terminated() const { return isInterruptionRequested(); }
    // Called on the job's thread: hands the progress to the main thread and
    // waits until the worker has reported it.
    void DoProgress(qint16 aProc, const QString &aText);
    // The termination handler, on the main thread.
    void VlaknoTerminated(QObject *Sender);
    // The worker is being destroyed: stop the job and stop waiting for it.
    void Abandon();

    TDoInBackgroundProc fDoInBackgroudProc;
    TProcDoneInt fDoneProc;
    TProcProgress fProgressProc;
    bool fOk = false;
    QString fErrorDoDone = neverRanMessage();
    // Monotonic, so that a change of the clock does not distort the elapsed time.
    QElapsedTimer fTimeStart;
    qint16 fProcDoProgress = 0;
    QString fTextDoProgress;

protected:
    void run() override { Execute(); }

private:
    void Execute();
    void DoProgressSyn();
    void DoDone();
    void Synchronize(const std::function<void()> &method);

    std::atomic_bool fAbandoned{false};
};

void TVlaknoEx::Execute()
{
    fTimeStart.start();
    fOk = false;
    fErrorDoDone = neverRanMessage();
    try {
        fDoInBackgroudProc(this);
        fOk = true;
        fErrorDoDone.clear();
    } catch (const Exception &error) {
        fErrorDoDone = error.Message();
    } catch (const std::exception &error) {
        fErrorDoDone = QString::fromLocal8Bit(error.what());
    } catch (...) {
        fErrorDoDone = unknownErrorMessage();
    }
}

void TVlaknoEx::DoProgress(qint16 aProc, const QString &aText)
{
    if (fAbandoned)
        return;
    fProcDoProgress = aProc;
    fTextDoProgress = aText;
    Synchronize([this] { DoProgressSyn(); });
}

void TVlaknoEx::DoProgressSyn()
{
    // Copies: the handler may destroy the worker and with it this object.
    const qint16 proc = fProcDoProgress;
    const QString text = fTextDoProgress;
    fProgressProc(proc, text);
}

void TVlaknoEx::VlaknoTerminated(QObject *)
{
    DoDone();
}

void TVlaknoEx::DoDone()
{
    fDoneProc(fErrorDoDone, TDateTime(fTimeStart.elapsed()) / MSecsPerDay);
}

void TVlaknoEx::Abandon()
{
    fAbandoned = true;
    requestInterruption();
}

// A blocking queued call to the thread this object lives in. The wait is
// released by the call having run there (an exception it threw is rethrown
// here) or by the worker giving the job up, since a worker that is being
// destroyed - possibly from inside the very call - never answers.
void TVlaknoEx::Synchronize(const std::function<void()> &method)
{
    auto call = std::make_shared<TSyncCall>();
    QMetaObject::invokeMethod(
        this,
        [call, method] {
            try {
                method();
            } catch (...) {
                call->error = std::current_exception();
            }
            call->done.release();
        },
        Qt::QueuedConnection);
    while (!call->done.tryAcquire(1, AbandonPollMs)) {
        if (fAbandoned)
            return;
    }
    if (call->error)
        std::rethrow_exception(call->error);
}

TBackgroundWorker::TBackgroundWorker(QObject *owner) : QObject(owner) { }

TBackgroundWorker::~TBackgroundWorker()
{
    if (fVlakno)
        abandonJob();
}

void TBackgroundWorker::Run(QObject *aData)
{
    if (fVlakno)
        throw Exception(runningMessage());
    if (!OnDoInBackGround)
        throw Exception(missingWorkMessage());
    fData = aData;
    fWasTerminated = false;

    auto *vlakno = new TVlaknoEx();
    vlakno->fDoInBackgroudProc = [this](QObject *Sender) { DoInBackground(Sender); };
    vlakno->fDoneProc = [this](const QString &aError, TDateTime aTime) { DoDone(aError, aTime); };
    vlakno->fProgressProc = [this](qint16 aProc, const QString &aText) {
        DoProgress(aProc, aText);
    };
    connect(
        vlakno, &QThread::finished, this, [this, vlakno] { finishJob(vlakno); },
        Qt::QueuedConnection);
    fVlakno = vlakno;
    vlakno->start();
    // A thread the platform refused to create never finishes: complete the
    // job at once, with the text of a job that never ran.
    if (!vlakno->isRunning() && !vlakno->isFinished())
        QMetaObject::invokeMethod(
            this, [this, vlakno] { finishJob(vlakno); }, Qt::QueuedConnection);
}

void TBackgroundWorker::Progress(qint16 aProc, const QString &aText)
{
    if (!fVlakno)
        throw Exception(progressBeforeRunMessage());
    // On the main thread a hand-over to itself would wait for ever.
    if (QThread::currentThread() == thread())
        DoProgress(aProc, aText);
    else
        fVlakno->DoProgress(aProc, aText);
}

void TBackgroundWorker::Terminate()
{
    fWasTerminated = true;
    if (fVlakno)
        fVlakno->requestInterruption();
}

bool TBackgroundWorker::isTerminated() const
{
    return fWasTerminated;
}

void TBackgroundWorker::SetPriorita(QThread::Priority Value)
{
    if (fVlakno && fVlakno->isRunning())
        fVlakno->setPriority(Value);
}

void TBackgroundWorker::DoInBackground(QObject *)
{
    if (OnDoInBackGround)
        OnDoInBackGround(fData);
}

void TBackgroundWorker::DoProgress(qint16 aProc, const QString &aText)
{
    if (OnProgress)
        OnProgress(aProc, aText, fData);
}

void TBackgroundWorker::DoDone(const QString &aError, TDateTime aTime)
{
    fVlakno = nullptr;
    if (OnDone) {
        QObject *data = fData;
        HandleExceptions(nullptr, [&] { OnDone(aError, aTime, data); });
    }
}

// Runs on the main thread once the job's thread has ended. The handlers may
// start the next job or destroy the worker, so nothing of the worker is
// touched after the termination handler.
void TBackgroundWorker::finishJob(TVlaknoEx *vlakno)
{
    const std::unique_ptr<TVlaknoEx> freed(vlakno);
    vlakno->wait();
    vlakno->VlaknoTerminated(vlakno);
}

void TBackgroundWorker::abandonJob()
{
    fWasTerminated = true;
    fVlakno->Abandon();
    fVlakno->wait();
    delete std::exchange(fVlakno, nullptr);
}

TWorkerData::TWorkerData(QObject *parent) : QObject(parent) { }

void RegisterBackgroundWorker()
{
    Catalogue::Instance().RegisterComponents({ComponentEntry<TBackgroundWorker>(
        QStringLiteral("Oxa"), QStringLiteral("TBackgroundWorker"),
        QStringLiteral("BackgroundWorker"), QStringLiteral("oxa/utilities/BackgroundWorker.h"))});
}

} // namespace oxa
