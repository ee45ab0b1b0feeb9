// Files written by TXLSfile, opened by independent spreadsheet readers: the
// xlrd library and the LibreOffice Calc converter. A reader that is not
// installed makes its test report itself skipped.

#include "oxa/spreadsheet/CodePage1250.h"
#include "oxa/spreadsheet/XLSfile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

using namespace oxa;

namespace {

struct TExpected
{
    bool isText;
    double number;
    QString text;
};

using TCellKey = QPair<int, int>; // zero-based row, column

// Splits one line of comma-separated values, with "" quoting.
QStringList SplitCsvLine(const QString &line)
{
    QStringList fields(1);
    bool quoted = false;
    for (int i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        if (quoted && c == u'"' && i + 1 < line.size() && line[i + 1] == u'"')
            fields.last() += line[++i];
        else if (c == u'"')
            quoted = !quoted;
        else if (c == u',' && !quoted)
            fields.append(QString());
        else
            fields.last() += c;
    }
    return fields;
}

QString Python()
{
    const QString debian = QStringLiteral("/usr/bin/python3");
    return QFile::exists(debian) ? debian : QStandardPaths::findExecutable(QStringLiteral("python3"));
}

} // namespace

class TestXLSreaders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void xlrdReadsEveryCell();
    void libreOfficeReadsEveryCell();

private:
    QTemporaryDir m_dir;
    QString m_file;
    QMap<TCellKey, TExpected> m_expected;
};

// One sheet with small integers, numbers and Czech texts, a blank cell, a
// character outside code page 1250 and every character the code page has.
void TestXLSreaders::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_file = m_dir.filePath(QStringLiteral("pacienti.xls"));
    const QStringList texts = {
        QStringLiteral("Příliš žluťoučký kůň úpěl ďábelské ódy"),
        QStringLiteral("PŘÍLIŠ ŽLUŤOUČKÝ KŮŇ ÚPĚL ĎÁBELSKÉ ÓDY"),
        QStringLiteral("Dvořáková Věra, MUDr."),
        QStringLiteral("„Čech“ – 100 € ™"),
        QStringLiteral("Ωmega"), // Ω is not in the code page: "?mega"
    };
    TXLSfile xls;
    for (int i = 0; i < 30; ++i) {
        const quint16 word = quint16(i * 2259);
        xls.AddWordCell(1, i + 1, acRight, word);
        m_expected[{i, 0}] = {false, double(word), {}};
        const double number = -12.375 * i + 0.5;
        xls.AddDoubleCell(2, i + 1, acCenter | acBottomBorder, number);
        m_expected[{i, 1}] = {false, number, {}};
        const QString &text = texts[i % texts.size()];
        xls.AddStrCell(3, i + 1, acLeft, text);
        m_expected[{i, 2}] = {true, 0, QString(text).replace(QChar(0x03A9), u'?')};
    }
    QString all;
    for (int b = 0x20; b < 0x100; ++b) {
        const char16_t u = CodePage1250::ToUnicode(uchar(b));
        if (u != 0xFFFD && u != u'"' && u != u',' && b != 0x7F)
            all += QChar(u);
    }
    xls.AddStrCell(4, 1, {}, all);
    m_expected[{0, 3}] = {true, 0, all};
    xls.AddCell(4, 2, {}, CellClassOf<TBlankCell>());
    xls.SetFileName(m_file);
    xls.write();
}

void TestXLSreaders::xlrdReadsEveryCell()
{
    const QString python = Python();
    if (python.isEmpty())
        QSKIP("python3 is not installed: the xlrd check cannot run");
    QProcess process;
    process.start(python, {QStringLiteral(OXA_SPREADSHEET_TEST_DIR "/xlrd_dump.py"), m_file});
    QVERIFY(process.waitForFinished(30000));
    if (process.exitCode() == 3)
        QSKIP("python3-xlrd is not installed: the xlrd check cannot run");
    QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());

    const QJsonObject dump = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    QCOMPARE(dump.value(QStringLiteral("encoding")).toString(), QStringLiteral("cp1250"));
    QMap<TCellKey, TExpected> read;
    for (const QJsonValue &v : dump.value(QStringLiteral("cells")).toArray()) {
        const QJsonArray c = v.toArray();
        const bool isText = c[2].toString() == QStringLiteral("text");
        read[{c[0].toInt(), c[1].toInt()}] = {isText, c[3].toDouble(), c[3].toString()};
    }
    QCOMPARE(read.keys(), m_expected.keys());
    for (auto it = m_expected.cbegin(); it != m_expected.cend(); ++it) {
        const TExpected &got = read[it.key()];
        QCOMPARE(got.isText, it->isText);
        QCOMPARE(got.text, it->text);
        QCOMPARE(got.number, it->number);
    }
}

void TestXLSreaders::libreOfficeReadsEveryCell()
{
    QString office = QStandardPaths::findExecutable(QStringLiteral("soffice"));
    if (office.isEmpty())
        office = QStandardPaths::findExecutable(QStringLiteral("libreoffice"));
    if (office.isEmpty())
        QSKIP("LibreOffice (libreoffice-calc-nogui) is not installed: the Calc check cannot run");

    // A profile of its own, so that parallel runs do not share one.
    QTemporaryDir profile;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), profile.path());
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(office, {QStringLiteral("--headless"),
                           QStringLiteral("-env:UserInstallation=") + QUrl::fromLocalFile(profile.path()).toString(),
                           QStringLiteral("--convert-to"), QStringLiteral("csv:Text - txt - csv (StarCalc):44,34,76"),
                           QStringLiteral("--outdir"), m_dir.path(), m_file});
    QVERIFY2(process.waitForFinished(50000), "LibreOffice did not finish the conversion in time");
    QCOMPARE(process.exitCode(), 0);

    QFile csv(m_dir.filePath(QStringLiteral("pacienti.csv")));
    QVERIFY2(csv.open(QIODevice::ReadOnly), qPrintable(process.readAllStandardError()));
    const QStringList lines = QString::fromUtf8(csv.readAll()).split(u'\n', Qt::SkipEmptyParts);
    int filled = 0;
    for (int row = 0; row < lines.size(); ++row) {
        const QStringList fields = SplitCsvLine(QString(lines[row]).remove(u'\r'));
        for (int col = 0; col < fields.size(); ++col) {
            if (fields[col].isEmpty())
                continue;
            ++filled;
            QVERIFY2(m_expected.contains({row, col}), qPrintable(QStringLiteral("unexpected cell %1,%2").arg(row).arg(col)));
            const TExpected &want = m_expected[{row, col}];
            if (want.isText)
                QCOMPARE(fields[col], want.text);
            else
                QCOMPARE(fields[col].toDouble(), want.number);
        }
    }
    QCOMPARE(filled, m_expected.size());
}

QTEST_MAIN(TestXLSreaders)
#include "tst_xlsreaders.moc"
