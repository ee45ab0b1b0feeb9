#include "oxa/toolkit/Catalogue.h"
#include "oxa/utilities/ExecApp.h"
#include "support/TestSupport.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QMutex>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <cerrno>
#include <cstring>
#include <memory>

using namespace oxa;

namespace {

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

bool noWatcherLeft()
{
    return waitFor([] { return TExecApplication::WatcherCount() == 0; });
}

// A command line that runs until the file exists.
QString waitForFile(const QString &path)
{
    return QStringLiteral("/bin/sh -c 'while [ ! -e \"$0\" ]; do sleep 0.01; done' ") + path;
}

bool touch(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly);
}

// Records the end reports of a launcher; the first arrives on the watcher thread.
struct EndRecorder
{
    struct Report
    {
        QObject *sender;
        QThread *thread;
        bool running;
    };
    mutable QMutex mutex;
    QList<Report> reports;

    explicit EndRecorder(TExecApplication &launcher)
    {
        launcher.OnApplicationEnd = [this, &launcher](QObject *sender) {
            const QMutexLocker lock(&mutex);
            reports.append({sender, QThread::currentThread(), launcher.IsRunnig()});
        };
    }
    int Count() const
    {
        const QMutexLocker lock(&mutex);
        return reports.size();
    }
    // Starts the launcher's program and waits until it has ended and been reported.
    bool RunToEnd(TExecApplication &launcher)
    {
        const int before = Count();
        launcher.Execute();
        return waitFor([&] { return Count() == before + 2; }) && noWatcherLeft();
    }
};

} // namespace

class TestExecApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endIsReportedTwice_data();
    void endIsReportedTwice();
    void secondCopyIsRefused();
    void startFailureLeavesTheLauncherIdle_data();
    void startFailureLeavesTheLauncherIdle();
    void argumentsReachTheProgram_data();
    void argumentsReachTheProgram();
    void destroyedWhileTheProgramRuns();
    void hundredProgramsInARow();
    void registeredOnTheOxaPage();
};

void TestExecApp::endIsReportedTwice_data()
{
    QTest::addColumn<QString>("commandLine");
    QTest::newRow("succeeds") << QStringLiteral("/bin/true");
    QTest::newRow("fails") << QStringLiteral("/bin/false");
    QTest::newRow("exit code 3") << QStringLiteral("/bin/sh -c 'exit 3'");
    QTest::newRow("killed by a signal") << QStringLiteral("/bin/sh -c 'kill -9 $$'");
    QTest::newRow("bare name looked up in PATH") << QStringLiteral("true");
}

void TestExecApp::endIsReportedTwice()
{
    QFETCH(QString, commandLine);
    TExecApplication launcher;
    EndRecorder ends(launcher);
    launcher.SetApplicationName(commandLine);

    QVERIFY(ends.RunToEnd(launcher));
    QCOMPARE(ends.reports.size(), 2);
    QVERIFY(ends.reports[0].thread != QThread::currentThread());
    QCOMPARE(ends.reports[1].thread, QThread::currentThread());
    for (const EndRecorder::Report &report : ends.reports)
        QVERIFY(report.sender == &launcher && !report.running);
    QVERIFY(!launcher.IsRunnig());
}

void TestExecApp::secondCopyIsRefused()
{
    QTemporaryDir dir;
    const QString marker = dir.filePath(QStringLiteral("konec"));
    test::MessageRecorder messages;
    TExecApplication launcher;
    EndRecorder ends(launcher);
    launcher.SetApplicationName(waitForFile(marker));

    launcher.Execute();
    launcher.Execute();
    QCOMPARE(messages.Texts(), QStringList{"You cannot run second copy of application"});
    QVERIFY(launcher.IsRunnig());
    QCOMPARE(TExecApplication::WatcherCount(), 1);

    QVERIFY(touch(marker));
    QVERIFY(noWatcherLeft());
    QCOMPARE(ends.Count(), 2);
    QVERIFY(!launcher.IsRunnig());
}

void TestExecApp::startFailureLeavesTheLauncherIdle_data()
{
    QTest::addColumn<QString>("commandLine");
    QTest::addColumn<int>("errorCode");
    QTest::newRow("empty") << QString() << ENOENT;
    QTest::newRow("blank") << QStringLiteral("   ") << ENOENT;
    QTest::newRow("empty program") << QStringLiteral("\"\" -x") << ENOENT;
    QTest::newRow("missing program") << QStringLiteral("/nonexistent/oxa-program -a") << ENOENT;
    QTest::newRow("missing in PATH") << QStringLiteral("oxa-no-such-program") << ENOENT;
    QTest::newRow("a directory") << QDir::tempPath() << EACCES;
}

void TestExecApp::startFailureLeavesTheLauncherIdle()
{
    QFETCH(QString, commandLine);
    QFETCH(int, errorCode);
    TExecApplication launcher;
    EndRecorder ends(launcher);
    launcher.SetApplicationName(commandLine);

    try {
        launcher.Execute();
        QFAIL("Execute did not throw");
    } catch (const EOSError &error) {
        QCOMPARE(error.ErrorCode(), errorCode);
        QCOMPARE(error.Message(), QString::fromLocal8Bit(std::strerror(errorCode)));
    }
    QVERIFY(!launcher.IsRunnig());
    QCOMPARE(TExecApplication::WatcherCount(), 0);

    launcher.SetApplicationName(QStringLiteral("/bin/true"));
    QVERIFY(ends.RunToEnd(launcher));
}

void TestExecApp::argumentsReachTheProgram_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QStringList>("received");
    QTest::newRow("spaces and tabs") << QStringLiteral("  a \t  b  ") << QStringList{"a", "b"};
    QTest::newRow("double quotes") << QStringLiteral("\"a b\" c") << QStringList{"a b", "c"};
    QTest::newRow("single quotes") << QStringLiteral("'x \"y\"' z") << QStringList{"x \"y\"", "z"};
    QTest::newRow("quotes inside a word") << QStringLiteral("ab\"c d\"e") << QStringList{"abc de"};
    QTest::newRow("empty argument") << QStringLiteral("\"\" last") << QStringList{"", "last"};
    QTest::newRow("backslash") << QStringLiteral("C:\\Data\\x.txt") << QStringList{"C:\\Data\\x.txt"};
    QTest::newRow("Czech") << QStringLiteral("Žluťoučký kůň") << QStringList{"Žluťoučký", "kůň"};
}

void TestExecApp::argumentsReachTheProgram()
{
    QFETCH(QString, arguments);
    QFETCH(QStringList, received);
    QTemporaryDir dir;
    const QString output = dir.filePath(QStringLiteral("argv.txt"));
    TExecApplication launcher;
    EndRecorder ends(launcher);
    launcher.SetApplicationName(
        QStringLiteral("/bin/sh -c 'printf \"%s\\n\" \"$@\" > \"$0\"' %1 %2").arg(output, arguments));

    QVERIFY(ends.RunToEnd(launcher));
    QFile file(output);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    QCOMPARE(lines.takeLast(), QString());
    QCOMPARE(lines, received);
}

void TestExecApp::destroyedWhileTheProgramRuns()
{
    QTemporaryDir dir;
    const QString marker = dir.filePath(QStringLiteral("konec"));
    auto launcher = std::make_unique<TExecApplication>();
    EndRecorder ends(*launcher);
    launcher->SetApplicationName(waitForFile(marker));

    launcher->Execute();
    launcher.reset();
    QVERIFY(touch(marker));
    QVERIFY(noWatcherLeft());
    QCOMPARE(ends.Count(), 0);
}

void TestExecApp::hundredProgramsInARow()
{
    const QStringList commandLines = {"/bin/true", "/bin/sh -c 'exit 3'", "true", "/bin/false",
                                      "/nonexistent/oxa-program"};
    test::MessageRecorder messages;
    TExecApplication launcher;
    EndRecorder ends(launcher);
    int started = 0;
    for (int i = 0; i < 100; ++i) {
        launcher.SetApplicationName(commandLines[i % commandLines.size()]);
        try {
            QVERIFY2(ends.RunToEnd(launcher), qPrintable(launcher.ApplicationName()));
            ++started;
        } catch (const EOSError &error) {
            QCOMPARE(error.ErrorCode(), ENOENT);
        }
        QVERIFY(!launcher.IsRunnig());
    }
    QCOMPARE(started, 80);
    QCOMPARE(ends.Count(), 2 * started);
    QVERIFY(messages.Shown().isEmpty());
}

void TestExecApp::registeredOnTheOxaPage()
{
    RegisterExecApp();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TExecApplication"));
    QVERIFY(entry && !entry->IsWidget);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QWidget owner;
    QObject *created = Catalogue::Instance().Create(QStringLiteral("TExecApplication"), &owner);
    QVERIFY(qobject_cast<TExecApplication *>(created));
    QCOMPARE(created->property("IsRunnig").toBool(), false);
    QCOMPARE(created->property("WindowState").value<TExecApplication::TWindowState>(),
             TExecApplication::wsNormal);
}

QTEST_MAIN(TestExecApp)
#include "tst_execapp.moc"
