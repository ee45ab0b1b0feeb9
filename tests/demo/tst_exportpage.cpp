#include "ExportPage.h"
#include "SampleDatabase.h"

#include "support/TestSupport.h"

#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <map>

using namespace oxa;

namespace {

struct Cell
{
    quint16 opcode;
    double number; // of a number cell
};

// The cells of a worksheet file by (row, column), read record by record.
std::map<std::pair<int, int>, Cell> ReadCells(const QString &fileName)
{
    QFile file(fileName);
    std::map<std::pair<int, int>, Cell> cells;
    if (!file.open(QIODevice::ReadOnly))
        return cells;
    const QByteArray bytes = file.readAll();
    const auto *data = reinterpret_cast<const uchar *>(bytes.constData());
    for (qsizetype at = 0; at + 4 <= bytes.size();) {
        const quint16 opcode = qFromLittleEndian<quint16>(data + at);
        const quint16 length = qFromLittleEndian<quint16>(data + at + 2);
        const uchar *payload = data + at + 4;
        if (opcode >= 2 && opcode <= 4 && length >= 7) {
            double number = 0;
            if (opcode == 3)
                number = std::bit_cast<double>(qFromLittleEndian<quint64>(payload + 7));
            cells[{qFromLittleEndian<quint16>(payload), qFromLittleEndian<quint16>(payload + 2)}] =
                {opcode, number};
        }
        at += 4 + length;
    }
    return cells;
}

// The rows of a worksheet: the map is ordered by row first.
int Rows(const std::map<std::pair<int, int>, Cell> &cells)
{
    return cells.empty() ? 0 : cells.rbegin()->first.first + 1;
}

} // namespace

// The export writes every patient or says clearly why not.
class TestExportPage : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    static void Execute(const QString &sql)
    {
        QSqlQuery q(SampleDatabase::Database());
        QVERIFY2(q.exec(sql), qPrintable(sql));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(SampleDatabase::Open(m_dir.filePath(QStringLiteral("clinic.sqlite"))));
    }
    void cleanupTestCase() { SampleDatabase::Close(); }

    void missingFolderIsMadeWhenAsked()
    {
        test::MessageRecorder messages(mrNo);
        ExportPage page;
        const QString target = m_dir.filePath(QStringLiteral("nová/složka/pacienti.xls"));
        QCOMPARE(page.ExportAndWait(target), QStringLiteral("Export nebyl spuštěn."));
        QVERIFY(!QFile::exists(target));
        messages.SetAnswer(mrYes);
        QCOMPARE(page.ExportAndWait(target), QString());
        QVERIFY(Rows(ReadCells(target)) > 1);
        QCOMPARE(messages.Shown().size(), 2);
    }

    void failedExportIsNotShownDone()
    {
        test::MessageRecorder messages(mrYes);
        ExportPage page;
        QVERIFY(!page.ExportAndWait(QStringLiteral("/dev/full")).isEmpty());
        QCOMPARE(page.findChild<QProgressBar *>()->value(), 0);
        bool reported = false;
        for (const QLabel *label : page.findChildren<QLabel *>())
            reported |= label->text().startsWith(QStringLiteral("Export se nezdařil"));
        QVERIFY(reported);
    }

    // 65,540 patients: two files, after a question that says so; signed
    // numbers in number cells.
    void longListGoesIntoSeveralFiles()
    {
        Execute(QStringLiteral("DELETE FROM pacient"));
        Execute(QStringLiteral("INSERT INTO pacient (prijmeni, jmeno, deti, vaha) VALUES ('Aaa', "
                               "'Záporný', -30, 70000.5)"));
        Execute(QStringLiteral(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 65539)"
            " INSERT INTO pacient (prijmeni, jmeno) SELECT 'Pacient', i FROM n"));
        test::MessageRecorder messages(mrNo);
        ExportPage page;
        const QString target = m_dir.filePath(QStringLiteral("velky.xls"));
        QCOMPARE(page.ExportAndWait(target), QStringLiteral("Export nebyl spuštěn."));
        QCOMPARE(messages.Texts(),
                 QStringList{QStringLiteral(
                     "Sešit pojme nejvýše 65\u00A0534 pacientů. Exportuje se 65\u00A0540 pacientů, "
                     "zapíšou se proto do 2 souborů: velky.xls až velky-2.xls. Pokračovat?")});
        messages.SetAnswer(mrYes);
        QCOMPARE(page.ExportAndWait(target), QString());
        const auto first = ReadCells(target);
        const auto second = ReadCells(m_dir.filePath(QStringLiteral("velky-2.xls")));
        QCOMPARE(Rows(first), 1 + ExportPage::PatientsPerFile);
        QCOMPARE(Rows(second), 1 + 65540 - ExportPage::PatientsPerFile);
        QCOMPARE(first.at({1, 6}).opcode, quint16(3));
        QCOMPARE(first.at({1, 6}).number, -30.0);
        QCOMPARE(first.at({1, 5}).number, 70000.5);
        QVERIFY(!first.count({2, 5})); // no weight known: no cell
    }
};

QTEST_MAIN(TestExportPage)
#include "tst_exportpage.moc"
