#include "oxa/toolkit/Catalogue.h"
#include "oxa/utilities/ExecApp.h"
#include "support/TestSupport.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QDir>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <cerrno>
#include <cstring>
#include <memory>

using namespace oxa;

namespace {

const QString SecondCopyText = QStringLiteral("You cannot run second copy of application");

QThread *mainThread()
{
    return QCoreApplication::instance()->thread();
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

// A command line that runs until the file exists.
QString waitForFile(const QString &path)
{
    return QStringLiteral("/bin/sh -c 'while [ ! -e \"$0\" ]; do sleep 0.01; done' %1").arg(path);
}

bool touch(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly);
}

// Records the end reports; the first one arrives on the watcher thread.
class EndRecorder
{
public:
    struct Report
    {
        QObject *sender;
        QThread *thread;
        bool running;
    };

    explicit EndRecorder(TExecApplication &launcher)
    {
        launcher.OnApplicationEnd = [this, &launcher](QObject *sender) {
            const QMutexLocker lock(&m_mutex);
            m_reports.append({sender, QThread::currentThread(), launcher.IsRunnig()});
        };
    }
    QList<Report> Reports() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_reports;
    }
    int Count() const { return Reports().size(); }

private:
    mutable QMutex m_mutex;
    QList<Report> m_reports;
};

// Starts the launcher's program and waits for both end reports.
bool runToEnd(TExecApplication &launcher, const EndRecorder &ends)
{
    const int before = ends.Count();
    launcher.Execute();
    return waitFor([&] { return ends.Count() == before + 2; })
        && waitFor([] { return TExecApplication::WatcherCount() == 0; });
}

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
    void handlerExceptionsGoToTheMessageService();
    void destroyedWhileTheProgramRuns();
    void hundredProgramsInARow();
    void registeredOnTheOxaPage();
};

void TestExecApp::endIsReportedTwice_data()
{
    QTest::addColumn<QString>("commandLine");

    QTest::newRow("program that succeeds") << QStringLiteral("/bin/true");
    QTest::newRow("program that fails") << QStringLiteral("/bin/false");
    QTest::newRow("exit code 3") << QStringLiteral("/bin/sh -c 'exit 3'");
    QTest::newRow("double-quoted argument") << QStringLiteral("/bin/sh -c \"exit 4\"");
    QTest::newRow("killed by a signal") << QStringLiteral("/bin/sh -c 'kill -9 $$'");
    QTest::newRow("bare name looked up in PATH") << QStringLiteral("true");
}

void TestExecApp::endIsReportedTwice()
{
    QFETCH(QString, commandLine);

    TExecApplication launcher;
    EndRecorder ends(launcher);
    launcher.SetApplicationName(commandLine);

    QVERIFY(runToEnd(launcher, ends));
    const QList<EndRecorder::Report> reports = ends.Reports();
    QCOMPARE(reports.size(), 2);
    QVERIFY(reports[0].thread != mainThread());
    QCOMPARE(reports[1].thread, mainThread());
    for (const EndRecorder::Report &report : reports) {
        QCOMPARE(report.sender, &launcher);
        QVERIFY(!report.running);
    }
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
    QVERIFY(launcher.IsRunnig());
    launcher.Execute();
    QCOMPARE(messages.Texts(), QStringList{SecondCopyText});
    QVERIFY(launcher.IsRunnig());
    QCOMPARE(TExecApplication::WatcherCount(), 1);

    QVERIFY(touch(marker));
    QVERIFY(waitFor([&] { return TExecApplication::WatcherCount() == 0; }));
    QCOMPARE(ends.Count(), 2);
    QVERIFY(!launcher.IsRunnig());
    QCOMPARE(messages.Shown().size(), 1);
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
    QVERIFY(runToEnd(launcher, ends));
    QCOMPARE(ends.Count(), 2);
}

void TestExecApp::argumentsReachTheProgram_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QStringList>("received");

    QTest::newRow("plain") << QStringLiteral("one two") << QStringList{"one", "two"};
    QTest::newRow("extra spaces") << QStringLiteral("  a \t  b  ") << QStringList{"a", "b"};
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

    QVERIFY(runToEnd(launcher, ends));
    QFile file(output);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    QCOMPARE(lines.takeLast(), QString());
    QCOMPARE(lines, received);
}

void TestExecApp::handlerExceptionsGoToTheMessageService()
{
    test::MessageRecorder messages;
    TExecApplication launcher;
    launcher.SetApplicationName(QStringLiteral("/bin/true"));
    launcher.OnApplicationEnd = [](QObject *) { throw Exception(QStringLiteral("Chyba v obsluze")); };

    launcher.Execute();
    QVERIFY(waitFor([&] { return messages.Shown().size() == 2; }));
    QCOMPARE(messages.Texts(), QStringList(2, QStringLiteral("Chyba v obsluze")));
    QVERIFY(!launcher.IsRunnig());
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
    QVERIFY(waitFor([] { return TExecApplication::WatcherCount() == 0; }));
    QCOMPARE(ends.Count(), 0);
}

void TestExecApp::hundredProgramsInARow()
{
    const QStringList commandLines = {
        QStringLiteral("/bin/true"), QStringLiteral("/bin/sh -c 'exit 3'"),
        QStringLiteral("true"),      QStringLiteral("/bin/false"),
        QStringLiteral("/nonexistent/oxa-program"),
    };
    TExecApplication launcher;
    EndRecorder ends(launcher);
    int started = 0;
    int refused = 0;

    for (int i = 0; i < 100; ++i) {
        launcher.SetApplicationName(commandLines[i % commandLines.size()]);
        try {
            QVERIFY2(runToEnd(launcher, ends), qPrintable(launcher.ApplicationName()));
            ++started;
        } catch (const EOSError &error) {
            QCOMPARE(error.ErrorCode(), ENOENT);
            ++refused;
        }
        QVERIFY(!launcher.IsRunnig());
    }
    QCOMPARE(started, 80);
    QCOMPARE(refused, 20);
    QCOMPARE(ends.Count(), 2 * started);
    QCOMPARE(TExecApplication::WatcherCount(), 0);
}

void TestExecApp::registeredOnTheOxaPage()
{
    RegisterExecApp();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TExecApplication"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QCOMPARE(entry->Unit, QStringLiteral("ExecApp"));
    QVERIFY(!entry->IsWidget);

    QWidget owner;
    QObject *created = Catalogue::Instance().Create(QStringLiteral("TExecApplication"), &owner);
    QVERIFY(qobject_cast<TExecApplication *>(created));
    QCOMPARE(created->property("IsRunnig").toBool(), false);
    QCOMPARE(created->property("WindowState").value<TExecApplication::TWindowState>(),
             TExecApplication::wsNormal);
    QVERIFY(created->setProperty("ApplicationName", QStringLiteral("/bin/true")));
}

QTEST_MAIN(TestExecApp)
#include "tst_execapp.moc"
