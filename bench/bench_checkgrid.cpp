// Code lists at their real sizes:
//  - a check tree of 100,000 nodes on ten levels (every node has four
//    children, breadth first, until the count is reached), shown at 800x600
//    with its first two levels expanded: toggling the root sets the whole
//    tree and recomputes the ancestors (BM_CheckTreeToggleRoot), optionally
//    with the synchronous repaint that follows (…Repaint). Next to it, the
//    Qt tool a host would otherwise pick: a QTreeWidget whose nodes are
//    Qt::ItemIsAutoTristate, where checking the root sets its subtree
//    (BM_QtAutoTristateToggleRoot);
//  - a check grid of 100,000 rows (code, name, note; every seventh row
//    marked) sorted ascending by the name column with the marks travelling
//    (BM_SortGrid), against std::sort of the same 100,000 keys with the same
//    comparison (BM_StdSortKeys). The argument picks the comparison: 0 the
//    plain QString::compare, 1 a Czech QCollator (the demo's).

#include "oxa/grids/CheckTreeView.h"
#include "oxa/grids/StringGridCheck.h"
#include "oxa/grids/StringGridCheck_p.h"

#include <QApplication>
#include <QCollator>
#include <QMouseEvent>
#include <QRandomGenerator>
#include <QTreeWidget>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <numeric>

namespace {

using namespace oxa;

constexpr int kNodes = 100000;
constexpr int kRows = 100000;

// Breadth first, four children a node: levels of 1, 4, ..., 65,536 and the
// remaining 12,619 nodes on the tenth level.
template<class Tree>
QTreeWidgetItem *BuildTree(Tree &tree, const std::function<void(QTreeWidgetItem *)> &prepare)
{
    QList<QTreeWidgetItem *> nodes;
    nodes.reserve(kNodes);
    auto *root = new QTreeWidgetItem(&tree, {QStringLiteral("Vyšetření")});
    prepare(root);
    nodes.append(root);
    for (int parent = 0; nodes.size() < kNodes; ++parent) {
        for (int c = 0; c < 4 && nodes.size() < kNodes; ++c) {
            auto *node = new QTreeWidgetItem(nodes.at(parent),
                                             {QStringLiteral("Položka %1").arg(nodes.size())});
            prepare(node);
            nodes.append(node);
        }
    }
    root->setExpanded(true);
    for (int i = 0; i < root->childCount(); ++i)
        root->child(i)->setExpanded(true);
    return root;
}

int Depth(QTreeWidgetItem *node)
{
    int depth = 1;
    while (node->childCount() > 0) {
        node = node->child(0);
        ++depth;
    }
    return depth;
}

void BM_CheckTreeToggleRoot(benchmark::State &state)
{
    const bool repaint = state.range(0) != 0;
    TCheckTreeView tree;
    tree.resize(800, 600);
    QTreeWidgetItem *root = BuildTree(
        tree, [](QTreeWidgetItem *node) { TCheckTreeView::SetStateIndex(node, itvUnchecked); });
    tree.show();
    QApplication::processEvents();
    for (auto _ : state) {
        tree.StateImageClick(root);
        if (repaint)
            tree.viewport()->repaint();
    }
    state.counters["depth"] = Depth(root);
    state.counters["rootState"] = TCheckTreeView::StateIndex(root);
}
BENCHMARK(BM_CheckTreeToggleRoot)
    ->ArgName("repaint")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

void BM_QtAutoTristateToggleRoot(benchmark::State &state)
{
    const bool repaint = state.range(0) != 0;
    QTreeWidget tree;
    tree.setHeaderHidden(true);
    tree.resize(800, 600);
    QTreeWidgetItem *root = BuildTree(tree, [](QTreeWidgetItem *node) {
        node->setFlags(node->flags() | Qt::ItemIsUserCheckable | Qt::ItemIsAutoTristate);
        node->setCheckState(0, Qt::Unchecked);
    });
    tree.show();
    QApplication::processEvents();
    bool checked = false;
    for (auto _ : state) {
        checked = !checked;
        root->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
        if (repaint)
            tree.viewport()->repaint();
    }
}
BENCHMARK(BM_QtAutoTristateToggleRoot)
    ->ArgName("repaint")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

TStringGridSortCompare Comparison(int kind)
{
    if (kind == 0)
        return [](const QString &a, const QString &b) { return QString::compare(a, b); };
    auto collator = std::make_shared<QCollator>(QLocale(QLocale::Czech, QLocale::CzechRepublic));
    return [collator](const QString &a, const QString &b) { return collator->compare(a, b); };
}

// 100,000 diagnosis-like names of three words and a number, with repeats.
QStringList Names()
{
    const char *const words[] = {"Akutní",  "chronická",  "zánět",  "infekce",   "průdušek",
                                 "žaludku", "srdce",      "ledvin", "plic",      "kůže",
                                 "horních", "dolních",    "cest",   "dýchacích", "močových",
                                 "bez",     "komplikací", "jiná",   "neurčená",  "čelisti",
                                 "Úraz",    "hlavy",      "ruky",   "nohy",      "šíje",
                                 "Ekzém",   "Řasa",       "Ústní",  "Chřipka",   "Cévní"};
    QRandomGenerator rng(2026);
    QStringList names;
    names.reserve(kRows);
    for (int i = 0; i < kRows; ++i) {
        QString name;
        for (int w = 0; w < 3; ++w) {
            if (w)
                name += QLatin1Char(' ');
            name += QString::fromUtf8(words[rng.bounded(int(std::size(words)))]);
        }
        names.append(name + QLatin1Char(' ') + QString::number(rng.bounded(1000)));
    }
    return names;
}

void FillGrid(TStringGridCheck &grid, const QStringList &names)
{
    for (int r = 1; r <= kRows; ++r) {
        grid.SetCells(0, r, QStringLiteral("X%1").arg(r, 5, 10, QLatin1Char('0')));
        grid.SetCells(1, r, names.at(r - 1));
        grid.SetCells(2, r, QStringLiteral("pozn. %1").arg(r));
        grid.SetOznacene(r, r % 7 == 0);
    }
}

// A header click as the user makes it: press and release on the cell.
void ClickHeader(TStringGridCheck &grid, int col)
{
    const QPointF at = grid.CellRect(col, 0).center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, at, grid.viewport()->mapToGlobal(at), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(grid.viewport(), &event);
    }
}

void BM_SortGrid(benchmark::State &state)
{
    const TStringGridSortCompare compare = Comparison(int(state.range(0)));
    const QStringList names = Names();
    TStringGridCheck grid;
    grid.SetColCount(3);
    grid.SetFixedCols(0);
    grid.SetRowCount(kRows + 1);
    grid.SetCheckBox(true);
    grid.SetSorting(true);
    grid.resize(600, 400);
    grid.show();
    QApplication::processEvents();
    ClickHeader(grid, 1);
    if (grid.SortOrder() != soAscending)
        state.SkipWithError("the header click did not set the order");
    for (auto _ : state) {
        state.PauseTiming();
        FillGrid(grid, names);
        state.ResumeTiming();
        grid.Sort(compare, 1);
    }
    // The marks travelled: the row of X00007 is still marked.
    const int row = grid.Locate(compare, QStringLiteral("X00007"), 0);
    state.counters["markKept"] = grid.Oznacene(row) ? 1 : 0;
}
BENCHMARK(BM_SortGrid)->ArgName("collator")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_StdSortKeys(benchmark::State &state)
{
    const TStringGridSortCompare compare = Comparison(int(state.range(0)));
    const QStringList names = Names();
    for (auto _ : state) {
        state.PauseTiming();
        QStringList keys = names;
        keys.detach();
        state.ResumeTiming();
        std::sort(keys.begin(), keys.end(),
                  [&](const QString &a, const QString &b) { return compare(a, b) < 0; });
        benchmark::DoNotOptimize(keys.constData());
    }
    long comparisons = 0;
    QStringList keys = names;
    std::sort(keys.begin(), keys.end(), [&](const QString &a, const QString &b) {
        ++comparisons;
        return compare(a, b) < 0;
    });
    state.counters["comparisons"] = double(comparisons);
}
BENCHMARK(BM_StdSortKeys)->ArgName("collator")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// The grid's partition sort alone, over an index array of the same keys:
// what Sort spends before it moves any row.
void BM_PartitionSortIndexes(benchmark::State &state)
{
    const TStringGridSortCompare compare = Comparison(int(state.range(0)));
    const QStringList names = Names();
    const std::vector<QString> keys(names.begin(), names.end());
    std::vector<int> indexy(kRows);
    for (auto _ : state) {
        std::iota(indexy.begin(), indexy.end(), 0);
        QuickSort(0, kRows - 1, 1, indexy, keys, compare);
        benchmark::DoNotOptimize(indexy.data());
    }
    long comparisons = 0;
    std::iota(indexy.begin(), indexy.end(), 0);
    QuickSort(0, kRows - 1, 1, indexy, keys, [&](const QString &a, const QString &b) {
        ++comparisons;
        return compare(a, b);
    });
    state.counters["comparisons"] = double(comparisons);
}
BENCHMARK(BM_PartitionSortIndexes)
    ->ArgName("collator")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

} // namespace

OXA_BENCHMARK_MAIN()
