#include "oxa/utilities/ExecApp.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>

using namespace oxa;

namespace {

bool noWatcherLeft()
{
    return test::WaitFor([] { return TExecApplication::WatcherCount() == 0; });
}

// Counts the end reports of a launcher and checks each: sent by the launcher
// with IsRunnig already false, the first of a pair off the main thread, the
// second on it.
struct EndRecorder
{
    std::atomic_int count{0}, wrong{0};

    explicit EndRecorder(TExecApplication &launcher)
    {
        launcher.OnApplicationEnd = [this, &launcher](QObject *sender) {
            const bool onMain = QThread::currentThread() == qApp->thread();
            wrong += sender != &launcher || launcher.IsRunnig() || onMain != (count % 2 == 1);
            ++count;
        };
    }
    // Starts the launcher's program and waits until it has ended and been reported.
    bool RunToEnd(TExecApplication &launcher)
    {
        const int before = count;
        launcher.Execute();
        return test::WaitFor([&] { return count == before + 2; }) && noWatcherLeft() && wrong == 0;
    }
};

} // namespace

class TestExecApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void secondCopyIsRefused_data()
    {
        QTest::addColumn<bool>("destroyLauncher");
        QTest::newRow("program ends") << false;
        QTest::newRow("launcher destroyed while it runs") << true;
    }

    void secondCopyIsRefused()
    {
        QFETCH(bool, destroyLauncher);
        QTemporaryDir dir;
        QFile marker(dir.filePath(QStringLiteral("konec")));
        test::MessageRecorder messages;
        auto launcher = std::make_unique<TExecApplication>();
        EndRecorder ends(*launcher);
        launcher->SetApplicationName(
            QStringLiteral("/bin/sh -c 'while [ ! -e \"$0\" ]; do sleep 0.01; done' ") +
            marker.fileName());

        launcher->Execute();
        launcher->Execute();
        QCOMPARE(messages.Texts(), QStringList{"You cannot run second copy of application"});
        QVERIFY(launcher->IsRunnig());
        QCOMPARE(TExecApplication::WatcherCount(), 1);
        if (destroyLauncher)
            launcher.reset(); // the program runs on, the watcher reports to nobody
        QVERIFY(marker.open(QIODevice::WriteOnly));
        QVERIFY(noWatcherLeft());
        QCOMPARE(ends.count.load(), destroyLauncher ? 0 : 2);
        QCOMPARE(ends.wrong.load(), 0);
        QVERIFY(destroyLauncher || !launcher->IsRunnig());
    }

    void argumentsReachTheProgram_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QStringList>("received");
        QTest::newRow("spaces and tabs") << QStringLiteral("  a \t  b  ") << QStringList{"a", "b"};
        QTest::newRow("double quotes") << QStringLiteral("\"a b\" c") << QStringList{"a b", "c"};
        QTest::newRow("single quotes")
            << QStringLiteral("'x \"y\"' z") << QStringList{"x \"y\"", "z"};
        QTest::newRow("empty argument") << QStringLiteral("\"\" last") << QStringList{"", "last"};
        QTest::newRow("backslash, Czech")
            << QStringLiteral("C:\\Data\\kůň.txt") << QStringList{"C:\\Data\\kůň.txt"};
    }

    void argumentsReachTheProgram()
    {
        QFETCH(QString, arguments);
        QFETCH(QStringList, received);
        QTemporaryDir dir;
        QFile output(dir.filePath(QStringLiteral("argv.txt")));
        TExecApplication launcher;
        EndRecorder ends(launcher);
        launcher.SetApplicationName(
            QStringLiteral("/bin/sh -c 'printf \"%s\\n\" \"$@\" > \"$0\"' %1 %2")
                .arg(output.fileName(), arguments));

        QVERIFY(ends.RunToEnd(launcher));
        QVERIFY(output.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(output.readAll()), received.join(u'\n') + u'\n');
    }

    // Programs that succeed, fail, are killed, are found in PATH or cannot be
    // started (error code given), one after another: a start failure throws the
    // platform's error and leaves the launcher idle for the next program.
    void hundredProgramsInARow()
    {
        struct Program
        {
            QString commandLine;
            int errorCode; // of the start; 0: it starts
            int exitCode;  // how it ends, when it starts
        };
        const QList<Program> programs = {{"/bin/true", 0, 0},
                                         {"/bin/sh -c 'exit 3'", 0, 3},
                                         {"true", 0, 0},
                                         {"/bin/sh -c 'kill -9 $$'", 0, 128 + 9},
                                         {"", ENOENT, 0},
                                         {"/nonexistent/oxa-program -a", ENOENT, 0},
                                         {"oxa-no-such-program", ENOENT, 0},
                                         {QDir::tempPath(), EACCES, 0}};
        test::MessageRecorder messages;
        TExecApplication launcher;
        EndRecorder ends(launcher);
        int started = 0;
        for (int i = 0; i < 100; ++i) {
            const auto &[commandLine, errorCode, exitCode] = programs[i % programs.size()];
            launcher.SetApplicationName(commandLine);
            try {
                QVERIFY(ends.RunToEnd(launcher));
                QCOMPARE(errorCode, 0);
                QCOMPARE(launcher.ExitCode(), exitCode);
                ++started;
            } catch (const EOSError &error) {
                QCOMPARE(error.ErrorCode(), errorCode);
                QCOMPARE(error.Message(), QString::fromLocal8Bit(std::strerror(errorCode)));
            }
            QVERIFY(!launcher.IsRunnig());
            QCOMPARE(TExecApplication::WatcherCount(), 0);
        }
        QCOMPARE(started, 52);
        QCOMPARE(ends.count.load(), 2 * started);
        QVERIFY(messages.Shown().isEmpty());
    }
};

QTEST_MAIN(TestExecApp)
#include "tst_execapp.moc"
