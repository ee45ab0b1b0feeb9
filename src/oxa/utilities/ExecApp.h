#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/WinControl.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <atomic>

namespace oxa {

class TExecThread;

// A call to the operating system failed. Message() is the system's own text
// for ErrorCode() (an errno value on POSIX, a GetLastError value on Windows).
class OXA_EXPORT EOSError : public Exception
{
public:
    explicit EOSError(int errorCode);
    int ErrorCode() const noexcept { return m_errorCode; }

private:
    int m_errorCode;
};

// Starts one external program and watches it on a thread of its own until it
// ends; then OnApplicationEnd fires - twice: first on the watcher thread,
// then once more on the main thread. Both calls pass the launcher as Sender,
// and IsRunnig is false already in the first.
//
// While the program runs, Execute refuses to start it again and shows
// "You cannot run second copy of application" through the message service.
// A program that cannot be started throws EOSError with the system's text
// out of Execute and leaves the launcher idle.
//
// ApplicationName is a command line: the program, then its arguments,
// separated by white space. Double or single quotes group a part with
// spaces (the quotes are removed, "" gives an empty argument); a backslash
// is an ordinary character, as in Windows paths. A program name without a
// slash is looked up in PATH. The program inherits the environment, the
// current directory and the standard input and outputs, no other descriptor.
//
// WindowState is the show-window hint for the program's main window. POSIX
// has no such hint: there the value is kept but has no effect.
//
// A launcher destroyed while its program runs leaves the program running;
// the watcher then reports to nobody and frees itself when the program ends.
// If the first OnApplicationEnd is running on the watcher thread at that
// moment, the destructor waits for it to return, so that handler must not
// wait for the main thread.
class OXA_EXPORT TExecApplication : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString ApplicationName READ ApplicationName WRITE SetApplicationName NOTIFY
                   applicationNameChanged)
    Q_PROPERTY(
        TWindowState WindowState READ WindowState WRITE SetWindowState NOTIFY windowStateChanged)
    Q_PROPERTY(bool IsRunnig READ IsRunnig NOTIFY isRunnigChanged)

public:
    enum TWindowState { wsNormal, wsMinimized, wsMaximized };
    Q_ENUM(TWindowState)

    explicit TExecApplication(QObject *owner = nullptr);
    ~TExecApplication() override;

    QString ApplicationName() const { return FApplicationName; }
    void SetApplicationName(const QString &value)
    {
        if (value == FApplicationName)
            return;
        FApplicationName = value;
        Q_EMIT applicationNameChanged();
    }
    TWindowState WindowState() const { return FWindowState; }
    void SetWindowState(TWindowState value)
    {
        if (value == FWindowState)
            return;
        FWindowState = value;
        Q_EMIT windowStateChanged();
    }
    bool IsRunnig() const { return FIsRunning; }
    // How the last program ended: its exit code, 128 + the signal for a
    // program killed by a signal, -1 before any program ended. Set before
    // OnApplicationEnd fires.
    int ExitCode() const { return FExitCode; }

    void Execute();
    // The end of the program: IsRunnig := false, then OnApplicationEnd.
    void DoApplicationEnd(QObject *Sender);

    TNotifyEvent OnApplicationEnd;

    // Watchers of all launchers that have not freed themselves yet.
    static int WatcherCount();

Q_SIGNALS:
    void applicationNameChanged();
    void windowStateChanged();
    void isRunnigChanged();

private:
    friend class TExecThread;
    void watcherFinished(TExecThread *watcher);

    QString FApplicationName;
    TWindowState FWindowState = wsNormal;
    std::atomic_bool FIsRunning{false};
    std::atomic_int FExitCode{-1};
    QList<QPointer<TExecThread>> fWatchers;
};

OXA_EXPORT void RegisterExecApp();

} // namespace oxa
