// Writing a worksheet of 1,000,000 cells (numbers, small integers and short
// Czech texts) with TXLSfile, side by side with
//  - one sequential write of the same number of bytes (what the disk allows),
//    also taken in turn with TXLSfile's, so that both see the same load,
//  - python3-xlwt writing the same cells (timed by the script itself, from
//    the workbook's creation to its saving; skipped when xlwt is missing).

#include "oxa/spreadsheet/XLSfile.h"
#include "oxa/spreadsheet/XLSfile_p.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace {

constexpr int Rows = 10000;
constexpr int Cols = 100; // 1,000,000 cells; within xlwt's 65536 x 256

const char *const Names[] = {"Novák",  "Svobodová", "Dvořák", "Černá",   "Procházka", "Kučerová",
                             "Veselý", "Horáková",  "Němec",  "Pokorná", "Růžička",   "Beneš"};
constexpr int NameCount = int(std::size(Names));

// The same cells as the xlwt script below makes: by i = row * Cols + col.
void FillSheet(oxa::TXLSfile &xls)
{
    for (int row = 0; row < Rows; ++row) {
        for (int col = 0; col < Cols; ++col) {
            const int i = row * Cols + col;
            const quint16 c = quint16(col + 1), r = quint16(row + 1);
            if (i % 3 == 0)
                xls.AddDoubleCell(c, r, {}, i * 0.25 - 1000.0);
            else if (i % 3 == 1)
                xls.AddWordCell(c, r, {}, quint16(i % 60000));
            else
                xls.AddStrCell(c, r, {}, QString::fromUtf8(Names[i % NameCount]));
        }
    }
}

const char *const XlwtScript = R"(
import sys, time
try:
    import xlwt
except ImportError:
    sys.exit(3)
ROWS, COLS = %1, %2
NAMES = ["Novák", "Svobodová", "Dvořák", "Černá", "Procházka", "Kučerová",
         "Veselý", "Horáková", "Němec", "Pokorná", "Růžička", "Beneš"]
start = time.perf_counter()
book = xlwt.Workbook(encoding="cp1250")
sheet = book.add_sheet("List1")
for row in range(ROWS):
    for col in range(COLS):
        i = row * COLS + col
        if i % 3 == 0:
            sheet.write(row, col, i * 0.25 - 1000.0)
        elif i % 3 == 1:
            sheet.write(row, col, i % 60000)
        else:
            sheet.write(row, col, NAMES[i % len(NAMES)])
book.save(sys.argv[1])
print(time.perf_counter() - start)
)";

struct TFixture
{
    QTemporaryDir dir;
    oxa::TXLSfile xls;
    qint64 fileSize = 0;

    TFixture()
    {
        FillSheet(xls);
        xls.SetFileName(dir.filePath(QStringLiteral("oxa.xls")));
        xls.write();
        fileSize = QFileInfo(xls.FileName()).size();
    }
};

TFixture &Fixture()
{
    static TFixture fixture;
    return fixture;
}

void ReportSize(benchmark::State &state, qint64 bytes)
{
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["file_MB"] = double(bytes) / 1e6;
}

// The file is written on a second thread: the CPU time counted is the
// process's, of both threads.
void BM_XLSfileWrite(benchmark::State &state)
{
    TFixture &f = Fixture();
    for (auto _ : state)
        f.xls.write();
    ReportSize(state, f.fileSize);
}

// Bytes prepared in memory, written to name in one call (open, write, close).
bool SequentialWrite(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
        file.write(bytes) == bytes.size();
}

void BM_SequentialWrite(benchmark::State &state)
{
    TFixture &f = Fixture();
    const QByteArray bytes(f.fileSize, 'x');
    const QString name = f.dir.filePath(QStringLiteral("sequential.bin"));
    for (auto _ : state) {
        if (!SequentialWrite(name, bytes)) {
            state.SkipWithError("the sequential write failed");
            break;
        }
    }
    ReportSize(state, f.fileSize);
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

// TXLSfile's write and the sequential write in turn, one of each per
// iteration: on a shared machine both then see the same load. The time is
// the pair's; the counters are the medians of each (ms) and their ratio.
void BM_XLSfileVsSequential(benchmark::State &state)
{
    using Clock = std::chrono::steady_clock;
    const auto ms = [](Clock::duration d) {
        return std::chrono::duration<double, std::milli>(d).count();
    };
    TFixture &f = Fixture();
    const QByteArray bytes(f.fileSize, 'x');
    const QString name = f.dir.filePath(QStringLiteral("sequential.bin"));
    std::vector<double> xls, sequential;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        f.xls.write();
        const Clock::time_point middle = Clock::now();
        if (!SequentialWrite(name, bytes)) {
            state.SkipWithError("the sequential write failed");
            break;
        }
        const Clock::time_point end = Clock::now();
        xls.push_back(ms(middle - start));
        sequential.push_back(ms(end - middle));
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
    }
    state.counters["xls_ms"] = Median(xls);
    state.counters["seq_ms"] = Median(sequential);
    state.counters["ratio"] = Median(sequential) > 0 ? Median(xls) / Median(sequential) : 0.0;
}

// A device that takes every byte and keeps none.
class TDiscard : public QIODevice
{
protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 len) override { return len; }
};

// The writer's own work without the file: records into a discarding device.
void BM_XLSfileEncodeOnly(benchmark::State &state)
{
    TFixture &f = Fixture();
    TDiscard discard;
    discard.open(QIODevice::WriteOnly);
    for (auto _ : state)
        oxa::WriteRecordsInBlocks(f.xls.Dispatcher(), discard);
    ReportSize(state, f.fileSize);
}

// Filling the component, for comparison: not part of the writer's figure.
void BM_XLSfileFill(benchmark::State &state)
{
    for (auto _ : state) {
        oxa::TXLSfile xls;
        FillSheet(xls);
        benchmark::DoNotOptimize(xls.Dispatcher().Count());
    }
}

void BM_XlwtWrite(benchmark::State &state)
{
    TFixture &f = Fixture();
    const QString name = f.dir.filePath(QStringLiteral("xlwt.xls"));
    const QString script = QString::fromUtf8(XlwtScript).arg(Rows).arg(Cols);
    for (auto _ : state) {
        QProcess python;
        python.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), script, name});
        if (!python.waitForFinished(600000) || python.exitCode() != 0) {
            state.SkipWithError(python.exitCode() == 3 ? "python3-xlwt is not installed"
                                                       : "the xlwt script failed");
            break;
        }
        state.SetIterationTime(python.readAllStandardOutput().trimmed().toDouble());
    }
    ReportSize(state, QFileInfo(name).size());
}

} // namespace

BENCHMARK(BM_XLSfileWrite)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();
BENCHMARK(BM_SequentialWrite)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();
BENCHMARK(BM_XLSfileVsSequential)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseManualTime();
BENCHMARK(BM_XLSfileEncodeOnly)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_XLSfileFill)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_XlwtWrite)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    QCoreApplication app(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
