#include "oxa/utilities/ExecApp.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/MessageService.h"

#include <QCoreApplication>
#include <QFile>
#include <QMetaObject>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>
#include <QWidget>
#include <exception>
#include <system_error>
#include <utility>
#include <vector>

#ifdef _WIN32
#error \
    "TExecApplication: the Windows process start (CreateProcessW with the show-window hint, WaitForSingleObject, GetExitCodeProcess) is not written yet; add it to StartProcess and WaitForProcess below."
#else
#include <cerrno>
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;
#endif

namespace oxa {

namespace {

QString secondCopyMessage()
{
    return QStringLiteral("You cannot run second copy of application");
}

// The platform's show-window values (SW_SHOWNORMAL, SW_SHOWMINIMIZED,
// SW_SHOWMAXIMIZED) for the window states.
constexpr quint16 ShowNormal = 1;
constexpr quint16 ShowMinimized = 2;
constexpr quint16 ShowMaximized = 3;

quint16 ShowWindowValue(TExecApplication::TWindowState state)
{
    switch (state) {
    case TExecApplication::wsNormal:
        return ShowNormal;
    case TExecApplication::wsMinimized:
        return ShowMinimized;
    case TExecApplication::wsMaximized:
        return ShowMaximized;
    }
    return ShowNormal;
}

// Splits a command line at white space outside quotes. Double and single
// quotes group and are removed; a quoted empty part is an empty argument.
QStringList SplitCommandLine(const QString &commandLine)
{
    QStringList parts;
    QString part;
    bool inPart = false;
    QChar quote;
    for (const QChar ch : commandLine) {
        if (!quote.isNull()) {
            if (ch == quote)
                quote = QChar();
            else
                part += ch;
        } else if (ch == u'"' || ch == u'\'') {
            quote = ch;
            inPart = true;
        } else if (ch.isSpace()) {
            if (inPart)
                parts.append(std::exchange(part, QString()));
            inPart = false;
        } else {
            part += ch;
            inPart = true;
        }
    }
    if (inPart)
        parts.append(part);
    return parts;
}

// The started program as the platform identifies it.
struct TProcessInfo
{
    pid_t Pid = 0;
};

// The program's argument vector in the file-name encoding.
class TArgv
{
public:
    explicit TArgv(const QStringList &parts)
    {
        for (const QString &part : parts)
            m_bytes.push_back(QFile::encodeName(part));
        for (QByteArray &bytes : m_bytes)
            m_pointers.push_back(bytes.data());
        m_pointers.push_back(nullptr);
    }
    char *const *Data() { return m_pointers.data(); }
    const char *Program() const { return m_bytes.front().constData(); }

private:
    std::vector<QByteArray> m_bytes;
    std::vector<char *> m_pointers;
};

// Starts the command line; the show-window hint has no meaning on POSIX.
// The child gets a clear signal mask, the default SIGPIPE and only the
// standard descriptors of the caller.
TProcessInfo StartProcess(const QString &commandLine, quint16 /*visibility*/)
{
    const QStringList parts = SplitCommandLine(commandLine);
    if (parts.isEmpty() || parts.front().isEmpty())
        throw EOSError(ENOENT);
    TArgv argv(parts);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
#ifdef __GLIBC__
#if __GLIBC_PREREQ(2, 34)
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
#endif
#endif

    TProcessInfo info;
    const bool searchPath = !parts.front().contains(u'/');
    const int error = searchPath
        ? posix_spawnp(&info.Pid, argv.Program(), &actions, &attributes, argv.Data(), environ)
        : posix_spawn(&info.Pid, argv.Program(), &actions, &attributes, argv.Data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        throw EOSError(error);
    return info;
}

// Waits for the program to end and returns its exit code (128 + the signal
// for a program killed by a signal, as shells report it).
int WaitForProcess(const TProcessInfo &info)
{
    int status = 0;
    while (waitpid(info.Pid, &status, 0) < 0) {
        if (errno != EINTR)
            throw EOSError(errno);
    }
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return WEXITSTATUS(status);
}

std::atomic_int &watcherCount()
{
    static std::atomic_int count{0};
    return count;
}

// Shows an exception thrown on the watcher thread on the main thread.
void ShowExceptionLater(std::exception_ptr error)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [error] { HandleExceptions(nullptr, [&] { std::rethrow_exception(error); }); },
        Qt::QueuedConnection);
}

} // namespace

EOSError::EOSError(int errorCode)
    : Exception(QString::fromLocal8Bit(std::system_category().message(errorCode))),
      m_errorCode(errorCode)
{ }

// The watcher of one started program. The program is started by the
// constructor; Start then waits for it on the watcher thread at a lower
// priority. The watcher lives (as a QObject) in the main thread and frees
// itself there after it has finished.
class TExecThread : public QThread
{
public:
    TExecThread(TExecApplication *MyApplication, quint16 Visibility);
    ~TExecThread() override;

    void Start();
    // The launcher goes away: report the end to nobody.
    void Detach();

protected:
    void run() override;

private:
    void Execute();
    void ExecuteEnd();

    QMutex fLink; // guards FApplication against the launcher's destructor
    TExecApplication *FApplication;
    QString FApplicationName;
    int FExitCode = -1;
    quint16 FVisibility;
    TProcessInfo ProcessInfo;
};

TExecThread::TExecThread(TExecApplication *MyApplication, quint16 Visibility)
    : FApplication(MyApplication), FApplicationName(MyApplication->ApplicationName()),
      FVisibility(Visibility), ProcessInfo(StartProcess(FApplicationName, FVisibility))
{
    ++watcherCount();
}

TExecThread::~TExecThread()
{
    wait();
    --watcherCount();
}

// Started apart from the constructor, after the launcher has hooked the end
// report: a program that ends at once cannot finish unobserved.
void TExecThread::Start()
{
    connect(this, &QThread::finished, this, &QObject::deleteLater);
    start(QThread::LowPriority);
}

void TExecThread::Detach()
{
    const QMutexLocker lock(&fLink);
    FApplication = nullptr;
}

void TExecThread::run()
{
    // A failed wait ends the watcher without the report on this thread; the
    // report on the main thread still comes.
    try {
        Execute();
    } catch (...) {
        ShowExceptionLater(std::current_exception());
    }
}

void TExecThread::Execute()
{
    FExitCode = WaitForProcess(ProcessInfo);
    ExecuteEnd();
}

void TExecThread::ExecuteEnd()
{
    const QMutexLocker lock(&fLink);
    if (!FApplication)
        return;
    FApplication->FExitCode = FExitCode;
    FApplication->DoApplicationEnd(this);
}

TExecApplication::TExecApplication(QObject *owner) : QObject(owner) { }

TExecApplication::~TExecApplication()
{
    for (const QPointer<TExecThread> &watcher : std::as_const(fWatchers)) {
        if (watcher)
            watcher->Detach();
    }
}

void TExecApplication::Execute()
{
    if (FIsRunning) {
        MessageService::ShowMessage(secondCopyMessage());
        return;
    }
    auto *watcher = new TExecThread(this, ShowWindowValue(FWindowState));
    fWatchers.append(watcher);
    connect(watcher, &QThread::finished, this, [this, watcher] { watcherFinished(watcher); });
    FIsRunning = true;
    Q_EMIT isRunnigChanged();
    watcher->Start();
}

void TExecApplication::DoApplicationEnd(QObject *)
{
    FIsRunning = false;
    Q_EMIT isRunnigChanged();
    if (OnApplicationEnd)
        OnApplicationEnd(this);
}

int TExecApplication::WatcherCount()
{
    return watcherCount();
}

// The watcher's termination handler, on the main thread.
void TExecApplication::watcherFinished(TExecThread *watcher)
{
    fWatchers.removeAll(watcher);
    HandleExceptions(nullptr, [&] { DoApplicationEnd(watcher); });
}

void RegisterExecApp()
{
    Catalogue::Instance().RegisterComponents({ComponentEntry<TExecApplication>(
        QStringLiteral("Oxa"), QStringLiteral("TExecApplication"), QStringLiteral("ExecApp"),
        QStringLiteral("oxa/utilities/ExecApp.h"))});
}

} // namespace oxa
