// The rich-text editor on a 100-page clinical report (about 250,000
// characters: mixed fonts, sizes, colours and alignments, links and twenty
// tables): typing one character to the painted frame, the tagged text of a
// document that writes 1 MB against Qt's HTML, the stream format, memory.

#include "BenchMain.h"

#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/Oxarichview_ftfunc.h"
#include "oxa/richtext/SpellHighlighter_p.h"

#include <QAbstractTextDocumentLayout>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QKeyEvent>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextTable>
#include <QTimer>
#include <algorithm>
#include <malloc.h>
#include <vector>

using namespace oxa;

namespace {

// One paragraph of the report in tagged text, varied by its number.
QString Paragraph(int n)
{
    static const char *const fonts[] = {"Arial", "Times New Roman", "Courier New", "Verdana"};
    static const char *const aligns[] = {"l", "c", "r", "j"};
    return QStringLiteral(
               "<p=%1><fn=%2><fs=%3>Pacient %4 udává bolesti v <b>pravém podžebří</b> "
               "od včerejšího večera, <i>bez teploty</i>, nauzea <c=%5>bez zvracení</c>. "
               "Stolice bez příměsi, močení v normě. <a=%4>výsledky</a>Dieta šetřící, "
               "<u>kontrola</u> za týden, při zhoršení ihned.</fs></fn>\r\n")
        .arg(QLatin1String(aligns[n % 4]), QLatin1String(fonts[n % 4]))
        .arg(9 + n % 6)
        .arg(n)
        .arg((n * 2654435761u) & 0xFFFFFF);
}

// Paragraphs up to about chars characters, with tables spread through it.
void FillReport(TOxaRichView &e, int chars, int tables)
{
    int paragraphs = 0;
    while (e.document()->characterCount() < chars) {
        SetFormatedText(&e, Paragraph(paragraphs++));
        if (tables > 0 && paragraphs % std::max(1, chars / 300 / (tables + 1)) == 0 &&
            tables-- > 0) {
            e.InsTable({4, 5, 0, clBlack, 1});
            for (int cell = 0; cell < 20; ++cell) {
                e.InsertText(QStringLiteral("hodnota %1").arg(cell));
                e.moveCursor(QTextCursor::NextBlock);
            }
            e.CaretToEnd();
        }
    }
    e.RVData()->ClearUndo();
}

const QByteArray &ReportStream()
{
    static const QByteArray bytes = [] {
        TOxaRichView e;
        FillReport(e, 250000, 20);
        return e.SaveOxaRVFToString();
    }();
    return bytes;
}

void ReportPercentiles(benchmark::State &state, std::vector<double> &ms)
{
    std::sort(ms.begin(), ms.end());
    if (ms.empty())
        return;
    state.counters["median_ms"] = ms[ms.size() / 2];
    state.counters["p99_ms"] = ms[std::min(ms.size() - 1, size_t(double(ms.size()) * 0.99))];
}

// Key press to a painted frame: the event, then a synchronous repaint.
void TypeAndPaint(benchmark::State &state, QTextEdit &edit)
{
    edit.resize(900, 700);
    edit.show();
    QApplication::processEvents();
    QTextCursor c = edit.textCursor();
    c.setPosition(edit.document()->characterCount() / 2);
    edit.setTextCursor(c);
    std::vector<double> ms;
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
        QApplication::sendEvent(&edit, &press);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
        QApplication::sendEvent(&edit, &release);
        edit.viewport()->repaint();
        ms.push_back(double(timer.nsecsElapsed()) / 1e6);
        // A space now and then keeps the stuck-key guard from refusing the key.
        QKeyEvent space(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
        if (ms.size() % 40 == 0)
            QApplication::sendEvent(&edit, &space);
    }
    ReportPercentiles(state, ms);
}

// Spell checking: the first full check of the loaded report runs in the
// event loop's background; measured are its total time (from the end of the
// load to the last slice; when it is the first check of the process, the
// dictionary may still be read on its own thread), its longest slice and the
// longest stall of the event loop meanwhile, seen by a 1 ms timer. Beside it
// the same loaded report with checking off, its event loop watched for as
// long, so that the stalls of Qt's own layout and painting show. It runs
// first, so the dictionary's word cache is cold.
void LoadedReportInTheEventLoop(benchmark::State &state, bool spellCheck,
                                const QByteArray &stream = ReportStream())
{
    for (auto _ : state) {
        TOxaRichView e;
        e.SetSpellCheck(spellCheck);
        e.resize(900, 700);
        e.show();
        QApplication::processEvents();
        auto *spell = e.findChild<SpellHighlighter *>();
        e.LoadOxaRVFFromString(stream);
        QElapsedTimer total;
        total.start();
        spell->ResetStatistics();
        QEventLoop loop;
        QObject::connect(spell, &SpellHighlighter::Idle, &loop, &QEventLoop::quit);
        QElapsedTimer sinceTick;
        qint64 longestGap = 0;
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, [&] {
            longestGap = std::max(longestGap, sinceTick.nsecsElapsed());
            sinceTick.restart();
        });
        tick.start(1);
        sinceTick.start();
        QTimer::singleShot(spellCheck ? 10000 : 500, &loop, &QEventLoop::quit);
        if (!spellCheck || spell->IsPending())
            loop.exec();
        state.counters["longest_stall_ms"] = double(longestGap) / 1e6;
        if (!spellCheck)
            continue;
        state.counters["total_ms"] = double(total.nsecsElapsed()) / 1e6;
        state.counters["longest_slice_ms"] = double(spell->Statistics().LongestSliceNs) / 1e6;
        state.counters["longest_slice_cpu_ms"] =
            double(spell->Statistics().LongestSliceCpuNs) / 1e6;
        state.counters["slices"] = spell->Statistics().Slices;
        state.counters["paragraphs"] = spell->Statistics().BlocksChecked;
    }
}

// A report of the same size whose words are all different: words of the
// Czech dictionary's word list, every fiftieth with two letters swapped, so
// that no word is found in the checker's cache.
const QByteArray &DiverseReportStream()
{
    static const QByteArray bytes = [] {
        QFile file(QStringLiteral("/usr/share/hunspell/cs_CZ.dic"));
        QStringList words;
        if (file.open(QIODevice::ReadOnly)) {
            int line = 0;
            while (!file.atEnd()) {
                const QString word =
                    QString::fromUtf8(file.readLine()).trimmed().section(u'/', 0, 0);
                if (++line % 7 == 0 && word.size() >= 3 && word.front().isLower())
                    words.append(word);
            }
        }
        TOxaRichView e;
        e.SetSpellCheck(false);
        QString text;
        for (int i = 0; i < words.size() && text.size() < 250000; ++i) {
            QString word = words[i];
            if (i % 50 == 0)
                std::swap(word[1], word[2]);
            text += word + (i % 40 == 39 ? QStringLiteral(".\r\n") : QStringLiteral(" "));
        }
        SetFormatedText(&e, text);
        return e.SaveOxaRVFToString();
    }();
    return bytes;
}

void BM_SpellFirstFullCheckOfReport(benchmark::State &state)
{
    LoadedReportInTheEventLoop(state, true);
}
BENCHMARK(BM_SpellFirstFullCheckOfReport)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_LoadedReportEventLoopSpellCheckOff(benchmark::State &state)
{
    LoadedReportInTheEventLoop(state, false);
}
BENCHMARK(BM_LoadedReportEventLoopSpellCheckOff)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_SpellFirstFullCheckOfDiverseReport(benchmark::State &state)
{
    SpellChecker::Shared()->EnsureLoaded();
    LoadedReportInTheEventLoop(state, true, DiverseReportStream());
}
BENCHMARK(BM_SpellFirstFullCheckOfDiverseReport)->Unit(benchmark::kMillisecond)->Iterations(1);

// Typing with the report checked whole, spell checking on and off.
void RunUntilChecked(TOxaRichView &e)
{
    auto *spell = e.findChild<SpellHighlighter *>();
    QEventLoop loop;
    QObject::connect(spell, &SpellHighlighter::Idle, &loop, &QEventLoop::quit);
    if (spell->IsPending())
        loop.exec();
}

void BM_TypeInReportSpellCheckOn(benchmark::State &state)
{
    TOxaRichView e;
    e.LoadOxaRVFFromString(ReportStream());
    e.resize(900, 700);
    e.show();
    RunUntilChecked(e);
    auto *spell = e.findChild<SpellHighlighter *>();
    spell->ResetStatistics();
    TypeAndPaint(state, e);
    // The part of each key that went to checking its paragraph.
    const auto &stats = spell->Statistics();
    state.counters["check_mean_ms"] =
        double(stats.ImmediateNs) / std::max(1, stats.Immediate) / 1e6;
    state.counters["check_max_ms"] = double(stats.LongestImmediateNs) / 1e6;
}
BENCHMARK(BM_TypeInReportSpellCheckOn)->Unit(benchmark::kMillisecond)->Iterations(400);

void BM_TypeInReportSpellCheckOff(benchmark::State &state)
{
    TOxaRichView e;
    e.SetSpellCheck(false);
    e.LoadOxaRVFFromString(ReportStream());
    TypeAndPaint(state, e);
}
BENCHMARK(BM_TypeInReportSpellCheckOff)->Unit(benchmark::kMillisecond)->Iterations(400);

void BM_TypeInReport(benchmark::State &state)
{
    TOxaRichView e;
    e.LoadOxaRVFFromString(ReportStream());
    TypeAndPaint(state, e);
}
BENCHMARK(BM_TypeInReport)->Unit(benchmark::kMillisecond)->Iterations(400);

void BM_TypeInReportBareQTextEdit(benchmark::State &state)
{
    TOxaRichView e;
    e.LoadOxaRVFFromString(ReportStream());
    QTextEdit bare;
    bare.setDocument(e.document()->clone(&bare));
    TypeAndPaint(state, bare);
}
BENCHMARK(BM_TypeInReportBareQTextEdit)->Unit(benchmark::kMillisecond)->Iterations(400);

void BM_TypeInTable200Rows(benchmark::State &state)
{
    TOxaRichView e;
    e.InsTable({4, 200, 0, clBlack, 1});
    for (int cell = 0; cell < 800; ++cell) {
        e.InsertText(QStringLiteral("řádek %1").arg(cell / 4));
        e.moveCursor(QTextCursor::NextBlock);
    }
    e.resize(900, 700);
    e.show();
    QApplication::processEvents();
    QTextTable *table =
        e.RVData()->GetItemTable(e.ItemCount() > 1 && e.GetItemStyle(0) != rvsTableItem ? 1 : 0);
    e.setTextCursor(table->cellAt(100, 2).lastCursorPosition());
    std::vector<double> ms;
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
        QApplication::sendEvent(&e, &press);
        e.viewport()->repaint();
        ms.push_back(double(timer.nsecsElapsed()) / 1e6);
        QKeyEvent space(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
        if (ms.size() % 40 == 0)
            QApplication::sendEvent(&e, &space);
    }
    ReportPercentiles(state, ms);
}
BENCHMARK(BM_TypeInTable200Rows)->Unit(benchmark::kMillisecond)->Iterations(400);

// A document that writes about 1 MB of tagged text.
TOxaRichView &MegabyteDocument()
{
    static TOxaRichView *e = [] {
        auto *editor = new TOxaRichView;
        FillReport(*editor, 720000, 0);
        return editor;
    }();
    return *e;
}

QString WholeTagged(const TOxaRichView &e)
{
    const int last = e.ItemCount() - 1;
    return GetFormatedText(&e, 0, 1, last, int(e.GetItemText(last).size()) + 1);
}

void BM_GetFormatedText1MB(benchmark::State &state)
{
    TOxaRichView &e = MegabyteDocument();
    qsizetype size = 0;
    for (auto _ : state)
        size = WholeTagged(e).size();
    state.counters["chars"] = double(size);
}
BENCHMARK(BM_GetFormatedText1MB)->Unit(benchmark::kMillisecond);

void BM_QtToHtml(benchmark::State &state)
{
    TOxaRichView &e = MegabyteDocument();
    qsizetype size = 0;
    for (auto _ : state)
        size = e.document()->toHtml().size();
    state.counters["chars"] = double(size);
}
BENCHMARK(BM_QtToHtml)->Unit(benchmark::kMillisecond);

void BM_SetFormatedText1MB(benchmark::State &state)
{
    const QString tagged = WholeTagged(MegabyteDocument());
    for (auto _ : state) {
        TOxaRichView e;
        SetFormatedText(&e, tagged);
        benchmark::DoNotOptimize(e.ItemCount());
    }
    state.counters["chars"] = double(tagged.size());
}
BENCHMARK(BM_SetFormatedText1MB)->Unit(benchmark::kMillisecond);

void BM_QtSetHtml(benchmark::State &state)
{
    const QString html = MegabyteDocument().document()->toHtml();
    for (auto _ : state) {
        QTextDocument doc;
        doc.setHtml(html);
        benchmark::DoNotOptimize(doc.blockCount());
    }
    state.counters["chars"] = double(html.size());
}
BENCHMARK(BM_QtSetHtml)->Unit(benchmark::kMillisecond);

void BM_SaveReportStream(benchmark::State &state)
{
    TOxaRichView e;
    e.LoadOxaRVFFromString(ReportStream());
    for (auto _ : state)
        benchmark::DoNotOptimize(e.SaveOxaRVFToString());
    state.counters["bytes"] = double(ReportStream().size());
    state.counters["chars"] = double(e.document()->characterCount());
}
BENCHMARK(BM_SaveReportStream)->Unit(benchmark::kMillisecond);

void BM_LoadReportStream(benchmark::State &state)
{
    TOxaRichView e;
    for (auto _ : state)
        e.LoadOxaRVFFromString(ReportStream());
}
BENCHMARK(BM_LoadReportStream)->Unit(benchmark::kMillisecond);

// Bytes of the heap in use (glibc), so that memory freed earlier and used
// again still counts.
double HeapInUseMB()
{
    return double(mallinfo2().uordblks) / (1024.0 * 1024.0);
}

void BM_MemoryOfLoadedReport(benchmark::State &state)
{
    ReportStream();
    double grown = 0;
    for (auto _ : state) {
        const double before = HeapInUseMB();
        auto *e = new TOxaRichView;
        e->LoadOxaRVFFromString(ReportStream());
        e->resize(900, 700);
        e->show();
        QApplication::processEvents();
        e->document()->documentLayout()->documentSize(); // laid out whole
        grown = HeapInUseMB() - before;
        delete e;
    }
    state.counters["heap_MB"] = grown;
}
BENCHMARK(BM_MemoryOfLoadedReport)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

OXA_BENCHMARK_MAIN();
