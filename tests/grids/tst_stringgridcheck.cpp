#include "oxa/grids/StringGridCheck.h"

#include "support/TestSupport.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>

using namespace oxa;

namespace {

const QRgb kArrow = qRgb(64, 64, 64);

const TStringGridSortCompare TextCompare = [](const QString &a, const QString &b) {
    return QString::compare(a, b);
};

// A code list of five diagnoses under a header row: column 0 the check
// boxes, 1 the code, 2 the name. Every row carries an object named after
// its code. The host's OnSort sorts with a plain text comparison.
struct CodeListForm : test::TestForm
{
    TStringGridCheck *grid = new TStringGridCheck(this);
    QList<int> sortRequests;
    std::vector<std::unique_ptr<QObject>> objects;

    CodeListForm()
    {
        grid->SetScrollBars(ssNone);
        grid->SetColCount(3);
        grid->SetRowCount(6);
        grid->SetFixedCols(0);
        grid->setGeometry(0, 0, 3 * 65 + 4, 6 * 25 + 4);
        resize(220, 170);
        const QStringList header = {QString(), QStringLiteral("Kód"), QStringLiteral("Název")};
        grid->SetRows(0, header);
        const QStringList codes = {"J06", "A09", "I10", "E11", "B01"};
        const QStringList names = {"Akutní infekce", "Průjem", "Hypertenze", "Diabetes",
                                   "Plané neštovice"};
        for (int r = 0; r < 5; ++r) {
            grid->SetCells(1, r + 1, codes[r]);
            grid->SetCells(2, r + 1, names[r]);
            objects.push_back(std::make_unique<QObject>());
            objects.back()->setObjectName(codes[r]);
            grid->SetObjects(1, r + 1, objects.back().get());
        }
        grid->SetCheckBox(true);
        grid->SetSorting(true);
        grid->OnSort = [this](QObject *, int col) {
            sortRequests.append(col);
            grid->Sort(TextCompare, col);
        };
    }
    QPoint centre(int col, int row) const { return grid->CellRect(col, row).center(); }
    void click(int col, int row)
    {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, centre(col, row));
    }
    // The codes of the rows (only the marked ones), in row order.
    QStringList codes(bool markedOnly = false) const
    {
        QStringList codes;
        for (int r = 1; r < grid->RowCount(); ++r) {
            if (!markedOnly || grid->Oznacene(r))
                codes.append(grid->Cells(1, r));
        }
        return codes;
    }
    QImage image() const { return grid->viewport()->grab().toImage(); }
};

// Where the header arrow of a column goes: 8 x 7 pixels, 3 in from the
// cell's right edge, centred on the header row's height.
QRect ArrowRect(const TStringGridCheck *grid, int col)
{
    const QRect cell = grid->CellRect(col, 0);
    return QRect(cell.x() + cell.width() - 11, grid->RowHeights(0) / 2 - 4, 8, 7);
}

// The arrow's pixels as a picture: one string per row, '#' where the arrow
// colour is.
QStringList ArrowPixels(const QImage &image, const QRect &rect)
{
    QStringList rows;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        QString row;
        for (int x = rect.left(); x <= rect.right(); ++x)
            row += image.pixel(x, y) == kArrow ? QLatin1Char('#') : QLatin1Char('.');
        rows.append(row);
    }
    return rows;
}

const QStringList kAscending = {"...##...", "...##...", "..####..", "..####..",
                                ".######.", ".######.", "########"};
const QStringList kDescending = {"########", ".######.", ".######.", "..####..",
                                 "..####..", "...##...", "...##..."};
const QStringList kNoArrow(7, QStringLiteral("........"));

} // namespace

class TestStringGridCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Any row may be marked, beyond the rows too; the others read unmarked.
    void marks()
    {
        TStringGridCheck grid;
        QSignalSpy changes(&grid, &TStringGridCheck::OznaceneChanged);
        grid.SetOznacene(40, true);
        grid.SetOznacene(40, true);
        QCOMPARE(changes.size(), 1);
        QVERIFY(grid.Oznacene(40));
        QVERIFY(!grid.Oznacene(39) && !grid.Oznacene(100));
        QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetOznacene(-1, true));
    }

    void keysToggleTheCheckColumnOnly_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<int>("col");
        QTest::addColumn<bool>("checkBox");
        QTest::addColumn<bool>("toggled");
        QTest::newRow("space") << Qt::Key_Space << 0 << true << true;
        QTest::newRow("enter") << Qt::Key_Return << 0 << true << true;
        QTest::newRow("keypad enter") << Qt::Key_Enter << 0 << true << true;
        QTest::newRow("space, other column") << Qt::Key_Space << 1 << true << false;
        QTest::newRow("enter, check boxes off") << Qt::Key_Return << 0 << false << false;
        QTest::newRow("a letter") << Qt::Key_X << 0 << true << false;
    }

    void keysToggleTheCheckColumnOnly()
    {
        QFETCH(Qt::Key, key);
        QFETCH(int, col);
        QFETCH(bool, checkBox);
        QFETCH(bool, toggled);
        CodeListForm form;
        form.grid->SetOptions(form.grid->Options() | goEditing);
        form.grid->SetCheckBox(checkBox);
        QVERIFY(form.Show(form.grid));
        // A click selects the cell and does not toggle it.
        form.click(col, 3);
        QVERIFY(!form.grid->Oznacene(3));

        QTest::keyClick(form.grid, key);
        QCOMPARE(form.grid->Oznacene(3), toggled);
        // A consumed key opens no editor.
        if (toggled)
            QVERIFY(!form.grid->EditorMode());
        QTest::keyClick(form.grid, key);
        QVERIFY(!form.grid->Oznacene(3));
        QCOMPARE(form.codes(true), QStringList());
    }

    void headerClicks_data()
    {
        QTest::addColumn<QList<QPoint>>("clicks"); // press and release at each cell (col, row)
        QTest::addColumn<bool>("sorting");
        QTest::addColumn<int>("fixedCols");
        QTest::addColumn<TSortOrder>("order");
        QTest::addColumn<QList<int>>("requests");
        const QPoint code(1, 0), name(2, 0);
        using P = QList<QPoint>;
        using R = QList<int>;
        QTest::newRow("twice") << P{code, code} << true << 0 << soDescending << R{1, 1};
        // The order belongs to the grid, not to the column.
        QTest::newRow("another column") << P{code, name} << true << 0 << soDescending << R{1, 2};
        QTest::newRow("data cell") << P{QPoint(1, 2)} << true << 0 << soNone << R{};
        QTest::newRow("sorting off") << P{code} << false << 0 << soNone << R{};
        QTest::newRow("fixed column") << P{QPoint(0, 0)} << true << 1 << soNone << R{};
    }

    void headerClicks()
    {
        QFETCH(QList<QPoint>, clicks);
        QFETCH(bool, sorting);
        QFETCH(int, fixedCols);
        QFETCH(QList<int>, requests);
        CodeListForm form;
        form.grid->SetSorting(sorting);
        form.grid->SetFixedCols(fixedCols);
        QSignalSpy signalled(form.grid, &TStringGridCheck::sortRequested);
        QVERIFY(form.Show(form.grid));
        for (const QPoint &cell : clicks)
            form.click(cell.x(), cell.y());
        QTEST(form.grid->SortOrder(), "order");
        QCOMPARE(form.sortRequests, requests);
        QCOMPARE(signalled.size(), requests.size());
    }

    // A header click sorts through the host's OnSort: each row keeps its mark,
    // its object and its other cells; the header and the current row stay.
    void sortedRowsKeepTheirMarks()
    {
        CodeListForm form;
        form.grid->SetOznacene(1, true); // J06
        form.grid->SetOznacene(4, true); // E11
        QVERIFY(form.Show(form.grid));
        form.grid->SetRow(2);
        form.click(2, 0);
        QCOMPARE(form.codes(), (QStringList{"J06", "E11", "I10", "B01", "A09"}));
        QCOMPARE(form.codes(true), (QStringList{"J06", "E11"}));
        for (int r = 1; r < 6; ++r)
            QCOMPARE(form.grid->Objects(1, r)->objectName(), form.grid->Cells(1, r));
        QCOMPARE(form.grid->Cells(2, 5), QStringLiteral("Průjem"));
        QCOMPARE(form.grid->Cells(1, 0), QStringLiteral("Kód"));
        QCOMPARE(form.grid->Row(), 2);
    }

    void headerArrow_data()
    {
        QTest::addColumn<int>("clicks");
        QTest::addColumn<bool>("sortInHandler");
        QTest::addColumn<QStringList>("arrow");
        QTest::newRow("ascending") << 1 << true << kAscending;
        QTest::newRow("descending") << 2 << true << kDescending;
        // Without Sort the header shows no arrow.
        QTest::newRow("asked, not sorted") << 1 << false << kNoArrow;
    }

    void headerArrow()
    {
        QFETCH(int, clicks);
        QFETCH(bool, sortInHandler);
        QFETCH(QStringList, arrow);
        CodeListForm form;
        if (!sortInHandler)
            form.grid->OnSort = nullptr;
        QVERIFY(form.Show(form.grid));
        QCOMPARE(ArrowPixels(form.image(), ArrowRect(form.grid, 2)), kNoArrow);
        for (int i = 0; i < clicks; ++i)
            form.click(2, 0);
        QImage image = form.image();
        QCOMPARE(ArrowPixels(image, ArrowRect(form.grid, 2)), arrow);
        QCOMPARE(ArrowPixels(image, ArrowRect(form.grid, 1)), kNoArrow);
        if (!sortInHandler)
            return;
        // The arrow stands in the column pressed last, even a data cell's.
        QTest::mousePress(form.grid->viewport(), Qt::LeftButton, {}, form.centre(1, 3));
        image = form.image();
        QCOMPARE(ArrowPixels(image, ArrowRect(form.grid, 1)), arrow);
        QCOMPARE(ArrowPixels(image, ArrowRect(form.grid, 2)), kNoArrow);
        QTest::mouseRelease(form.grid->viewport(), Qt::LeftButton, {}, form.centre(1, 3));
        // Sorting off hides it.
        form.grid->SetSorting(false);
        QCOMPARE(ArrowPixels(form.image(), ArrowRect(form.grid, 1)), kNoArrow);
    }

    // Many rows with repeated keys: the order is the one std::sort gives the
    // same keys, and each row's mark and second column still belong to it.
    void sortOfManyRowsMatchesStdSort()
    {
        constexpr int kRows = 3000;
        TStringGridCheck grid;
        grid.SetColCount(2);
        grid.SetRowCount(kRows + 1);
        QRandomGenerator rng(14);
        QStringList keys;
        for (int r = 1; r <= kRows; ++r) {
            const QString key =
                QString::number(rng.bounded(500)).rightJustified(3, QLatin1Char('0'));
            keys.append(key);
            grid.SetCells(0, r, key);
            grid.SetCells(1, r, key + QLatin1Char('/') + QString::number(r));
            grid.SetOznacene(r, r % 3 == 0);
        }
        grid.SetFixedCols(0);
        grid.SetSorting(true);
        grid.resize(200, 100);
        QVERIFY(test::ShowAndActivate(&grid));
        for (const TSortOrder order : {soAscending, soDescending}) {
            // A header click sets the order: ascending first, then descending.
            QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.CellRect(0, 0).center());
            QCOMPARE(grid.SortOrder(), order);
            grid.Sort(TextCompare, 0);
            QStringList expected = keys;
            std::sort(expected.begin(), expected.end());
            if (order == soDescending)
                std::reverse(expected.begin(), expected.end());
            for (int r = 1; r <= kRows; ++r) {
                QCOMPARE(grid.Cells(0, r), expected.at(r - 1));
                const QStringList parts = grid.Cells(1, r).split(QLatin1Char('/'));
                QCOMPARE(parts.at(0), grid.Cells(0, r));
                QCOMPARE(grid.Oznacene(r), parts.at(1).toInt() % 3 == 0);
            }
        }
    }

    void locate_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("col");
        QTest::addColumn<bool>("found");
        QTest::addColumn<int>("row");
        // The current row is 3 (I10).
        QTest::newRow("empty finds the first data row") << "" << 1 << true << 1;
        QTest::newRow("prefix") << "B" << 1 << true << 5;
        QTest::newRow("name prefix, case sensitive") << "pr" << 2 << false << 3;
        QTest::newRow("not a prefix") << "11" << 1 << false << 3;
        QTest::newRow("the header is not searched") << "Kód" << 1 << false << 3;
    }

    void locate()
    {
        QFETCH(QString, value);
        QFETCH(int, col);
        QFETCH(int, row);
        CodeListForm form;
        form.grid->SetRow(3);
        int located = -1;
        // The comparison is accepted and never called.
        const TStringGridSortCompare never = [](const QString &, const QString &) -> int {
            throw std::logic_error("Locate compared");
        };
        QTEST(form.grid->Locate(never, value, col, located), "found");
        QCOMPARE(located, row);
        QCOMPARE(form.grid->Row(), 3);
    }
};

QTEST_MAIN(TestStringGridCheck)
#include "tst_stringgridcheck.moc"
