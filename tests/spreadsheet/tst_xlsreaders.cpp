// Files written by TXLSfile, opened by an independent spreadsheet reader, the
// xlrd library, which is strict about the records' structure. A reader that
// is not installed makes the test report itself skipped, or fail where the
// full test command requires the readers.

#include "oxa/spreadsheet/XLSfile.h"
#include "oxa/toolkit/CodePage1250.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace oxa;

using TCells = QMap<QPair<int, int>, QVariant>; // (row, column) from 0: a double or a QString

#define REQUIRE_READER(present, reason) \
    OXA_REQUIRE_OR_SKIP(present, "OXA_REQUIRE_READERS", QStringLiteral(reason))

class TestXLSreaders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void xlrdReadsEveryCell();
};

// One sheet with small integers, numbers and Czech texts, a blank cell, a
// character outside code page 1250 and every character the code page has,
// read back cell by cell, so that a failure names the cell.
void TestXLSreaders::xlrdReadsEveryCell()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("pacienti.xls"));
    const QStringList texts = {
        QStringLiteral("Dvořáková Věra, MUDr."), QStringLiteral("„Čech“ – 100 € ™"),
        QStringLiteral("Ωmega"), // Ω is not in the code page: "?mega"
    };
    TXLSfile xls;
    TCells expected;
    for (int i = 0; i < 30; ++i) {
        const quint16 word = quint16(i * 2259);
        xls.AddWordCell(1, i + 1, acRight, word);
        expected[{i, 0}] = double(word);
        const double number = -12.375 * i + 0.5;
        xls.AddDoubleCell(2, i + 1, acCenter | acBottomBorder, number);
        expected[{i, 1}] = number;
        const QString &text = texts[i % texts.size()];
        xls.AddStrCell(3, i + 1, acLeft, text);
        expected[{i, 2}] = QString(text).replace(QChar(0x03A9), u'?');
    }
    QString all;
    for (int b = 0x20; b < 0x100; ++b) {
        const char16_t u = CodePage1250::ToUnicode(uchar(b));
        if (u != 0xFFFD && b != 0x7F)
            all += QChar(u);
    }
    xls.AddStrCell(4, 1, {}, all);
    expected[{0, 3}] = all;
    xls.AddCell(4, 2, {}, CellClassOf<TBlankCell>());
    xls.SetFileName(file);
    xls.write();

    QString python = QStringLiteral("/usr/bin/python3"); // the one Debian's python3-xlrd serves
    if (!QFile::exists(python))
        python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    REQUIRE_READER(!python.isEmpty(), "python3 is not installed: the xlrd check cannot run");
    QProcess process;
    process.start(python, {QStringLiteral(OXA_SPREADSHEET_TEST_DIR "/xlrd_dump.py"), file});
    QVERIFY(process.waitForFinished(30000));
    REQUIRE_READER(process.exitCode() != 3,
                   "python3-xlrd is not installed: the xlrd check cannot run");
    QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());

    const QJsonObject dump = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    QCOMPARE(dump.value(QStringLiteral("encoding")).toString(), QStringLiteral("cp1250"));
    TCells read;
    for (const QJsonValue &v : dump.value(QStringLiteral("cells")).toArray()) {
        const QJsonArray c = v.toArray();
        read[{c[0].toInt(), c[1].toInt()}] = c[3].toVariant();
    }
    for (auto it = expected.cbegin(); it != expected.cend(); ++it)
        QCOMPARE(std::pair(it.key(), read.value(it.key())), std::pair(it.key(), it.value()));
    QCOMPARE(read.keys(), expected.keys());
}

QTEST_MAIN(TestXLSreaders)
#include "tst_xlsreaders.moc"
