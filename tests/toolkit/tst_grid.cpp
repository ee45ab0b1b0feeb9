#include "oxa/toolkit/Grid.h"
#include "oxa/toolkit/StringGrid.h"

#include "support/TestSupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>

using namespace oxa;

Q_DECLARE_METATYPE(oxa::TGridRect)

namespace {

// A string grid that records what it draws.
class ProbeGrid : public TStringGrid
{
public:
    using TStringGrid::TStringGrid;
    struct Drawn
    {
        int col, row;
        QRect rect;
        TGridDrawState state;
        bool canvasValid;
    };
    QList<Drawn> drawn;
    // The cell whose drawing fails, as a host's drawing code may.
    TGridCoord failAt{-1, -1};

protected:
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override
    {
        if (TGridCoord{ACol, ARow} == failAt)
            throw Exception(QStringLiteral("Buňku nelze vykreslit"));
        drawn.append({ACol, ARow, Rect, State, Canvas() != nullptr});
        TStringGrid::DrawCell(ACol, ARow, Rect, State);
    }
};

// A window holding one grid with a 400 x 200 viewport.
struct GridWindow
{
    QWidget window;
    ProbeGrid *grid;
    int clicks = 0;
    GridWindow()
    {
        grid = new ProbeGrid(&window);
        grid->SetScrollBars(ssNone);
        grid->setGeometry(0, 0, 404, 204);
        grid->OnClick = [this](QObject *) { ++clicks; };
        window.resize(424, 240);
    }
    bool show()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        grid->setFocus();
        return grid->hasFocus();
    }
    void key(QKeyCombination k) { QTest::keyClick(grid, k.key(), k.keyboardModifiers()); }
    QPoint centre(int col, int row) const { return grid->CellRect(col, row).center(); }
    TGridCoord current() const { return {grid->Col(), grid->Row()}; }
};

bool FullyShown(const TCustomGrid *grid, int col, int row)
{
    const QRect r = grid->CellRect(col, row);
    return !r.isEmpty() && grid->viewport()->rect().contains(r);
}

} // namespace

class TestGrid : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mouseToCell_data();
    void mouseToCell();
    void unshownGrid();
    void keyboard_data();
    void keyboard();
    void tabsWithGoTabs();
    void selectCellCanRefuse();
    void mouseAndWheel();
    void scrolling();
    void paintsOnlyVisibleCellsWithState();
    void drawCellFailureIsReportedOnce();
    void stringGridStorage();
    void editing();
};

void TestGrid::mouseToCell_data()
{
    QTest::addColumn<int>("col");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("leftCol");
    QTest::addColumn<int>("topRow");
    QTest::addColumn<QRect>("rect");
    // Two fixed columns, one fixed row; cells 64 x 24 plus a line.
    QTest::newRow("fixed corner") << 0 << 0 << 2 << 1 << QRect(0, 0, 64, 24);
    QTest::newRow("scrolled") << 22 << 33 << 20 << 30 << QRect(260, 100, 64, 24);
    QTest::newRow("fixed column, scrolled") << 1 << 33 << 20 << 30 << QRect(65, 100, 64, 24);
}

void TestGrid::mouseToCell()
{
    QFETCH(int, col);
    QFETCH(int, row);
    QFETCH(int, leftCol);
    QFETCH(int, topRow);
    QFETCH(QRect, rect);
    GridWindow w;
    w.grid->SetColCount(30);
    w.grid->SetRowCount(40);
    w.grid->SetFixedCols(2);
    QVERIFY(w.show());
    w.grid->SetLeftCol(leftCol);
    w.grid->SetTopRow(topRow);
    QCOMPARE(w.grid->CellRect(col, row), rect);
    for (const QPoint &p : {rect.topLeft(), rect.center(), rect.bottomRight()}) {
        int c = -2, r = -2;
        w.grid->MouseToCell(p.x(), p.y(), c, r);
        QCOMPARE((TGridCoord{c, r}), (TGridCoord{col, row}));
    }
    // The grid line right of a cell belongs to that cell.
    QCOMPARE(w.grid->MouseCoord(rect.right() + 1, rect.top()), (TGridCoord{col, row}));
}

void TestGrid::unshownGrid()
{
    TDrawGrid grid;
    int clicks = 0;
    grid.OnClick = [&](QObject *) { ++clicks; };
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetFixedCols(5));
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetFixedRows(-1));
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetCol(0));
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetRow(5));
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetColWidths(5, 10));
    grid.SetFixedRows(3);
    QCOMPARE(grid.Row(), 3);
    QCOMPARE(grid.TopRow(), 3);
    grid.SetRowCount(2); // fewer lines than fixed ones lower the fixed count
    QCOMPARE(grid.FixedRows(), 1);
    QCOMPARE(grid.Row(), 1);
    grid.SetColCount(0);
    QCOMPARE(grid.ColCount(), 1);
    QCOMPARE(grid.FixedCols(), 0);
    QCOMPARE(grid.Col(), 0);

    grid.SetColCount(100);
    grid.SetRowCount(5);
    grid.SetFixedCols(1);
    grid.SetSelection({41, 1, 44, 1});
    QCOMPARE(grid.Col(), 44);
    grid.SetSelection({5, 3, 2, 0}); // normalised and kept off the fixed cells
    QCOMPARE(grid.Selection(), (TGridRect{2, 1, 5, 3}));
    QCOMPARE(clicks, 0);
    grid.SetRow(4);
    grid.SetRow(4); // no move, no click
    QCOMPARE(clicks, 1);
}

void TestGrid::keyboard_data()
{
    QTest::addColumn<TGridOptions>("options");
    QTest::addColumn<QString>("keys"); // up to four, as a key sequence spells them
    QTest::addColumn<TGridCoord>("current");
    QTest::addColumn<TGridRect>("selection"); // empty: the current cell alone
    QTest::addColumn<int>("clicks");
    const TGridOptions d = DefaultGridOptions, rows = d | goRowSelect;
    using C = TGridCoord;
    using R = TGridRect;
    // 10 x 30 cells, 7 whole rows shown below the header.
    QTest::newRow("right down") << d << "Right, Down" << C{2, 2} << R() << 2;
    QTest::newRow("stops at edges") << d << "Left, Up" << C{1, 1} << R() << 0;
    QTest::newRow("end") << d << "End" << C{9, 1} << R() << 1;
    QTest::newRow("ctrl end") << d << "Ctrl+End" << C{9, 29} << R() << 1;
    QTest::newRow("page down") << d << "PgDown" << C{1, 8} << R() << 1;
    QTest::newRow("ctrl page down") << d << "Ctrl+PgDown" << C{1, 7} << R() << 1;
    QTest::newRow("shift extends")
        << d << "Shift+Right, Shift+Down" << C{2, 2} << R{1, 1, 2, 2} << 2;
    QTest::newRow("shift back to the anchor row")
        << d << "Shift+Right, Shift+Down, Shift+Up, Shift+Up" << C{2, 1} << R{1, 1, 2, 1} << 3;
    QTest::newRow("plain move collapses") << d << "Shift+Right, Down" << C{2, 2} << R() << 2;
    QTest::newRow("no goRangeSelect")
        << (d & ~TGridOptions(goRangeSelect)) << "Shift+Right" << C{2, 1} << R() << 1;
    QTest::newRow("row select") << rows << "Down" << C{1, 2} << R{1, 2, 9, 2} << 1;
    QTest::newRow("row select range")
        << rows << "Shift+Down, Shift+Down" << C{1, 3} << R{1, 1, 9, 3} << 2;
}

void TestGrid::keyboard()
{
    QFETCH(TGridOptions, options);
    QFETCH(QString, keys);
    QFETCH(TGridCoord, current);
    QFETCH(TGridRect, selection);
    QFETCH(int, clicks);
    GridWindow w;
    w.grid->SetColCount(10);
    w.grid->SetRowCount(30);
    w.grid->SetOptions(options);
    QVERIFY(w.show());
    QCOMPARE(w.grid->VisibleRowCount(), 7);
    const QKeySequence sequence(keys);
    QVERIFY(!sequence.isEmpty());
    for (int i = 0; i < sequence.count(); ++i)
        w.key(sequence[i]);
    QCOMPARE(w.current(), current);
    if (selection == TGridRect())
        selection = {current.X, current.Y, current.X, current.Y};
    QCOMPARE(w.grid->Selection(), selection);
    QCOMPARE(w.clicks, clicks);
    QVERIFY(FullyShown(w.grid, current.X, current.Y));
}

void TestGrid::tabsWithGoTabs()
{
    GridWindow w;
    QLineEdit after(&w.window);
    after.move(0, 210);
    w.grid->SetColCount(3);
    w.grid->SetOptions(w.grid->Options() | goTabs);
    w.grid->SetTabStops(1, false);
    QVERIFY(w.show());
    w.key(Qt::Key_Tab);
    QCOMPARE(w.current(), (TGridCoord{2, 1}));
    w.key(Qt::Key_Tab); // next row, skipping column 1
    QCOMPARE(w.current(), (TGridCoord{2, 2}));
    w.key(Qt::ShiftModifier | Qt::Key_Backtab);
    QCOMPARE(w.current(), (TGridCoord{2, 1}));
    QVERIFY(w.grid->hasFocus());
    // Without goTabs Tab passes the focus on.
    w.grid->SetOptions(w.grid->Options() & ~TGridOptions(goTabs));
    w.key(Qt::Key_Tab);
    QCOMPARE(w.grid->Col(), 2);
    QTRY_VERIFY(after.hasFocus());
}

void TestGrid::selectCellCanRefuse()
{
    GridWindow w;
    QList<TGridCoord> asked;
    w.grid->OnSelectCell = [&](QObject *sender, int c, int r, bool &can) {
        QCOMPARE(sender, static_cast<QObject *>(w.grid));
        asked.append({c, r});
        can = c != 2;
    };
    QVERIFY(w.show());
    w.key(Qt::Key_Right);
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(3, 2));
    QCOMPARE(w.current(), (TGridCoord{3, 2}));
    QCOMPARE(asked, (QList<TGridCoord>{{2, 1}, {3, 2}}));
}

void TestGrid::mouseAndWheel()
{
    GridWindow w;
    int doubleClicks = 0;
    w.grid->OnDblClick = [&](QObject *) { ++doubleClicks; };
    w.grid->SetRowCount(20);
    QVERIFY(w.show());
    QWidget *vp = w.grid->viewport();
    QTest::mouseClick(vp, Qt::LeftButton, {}, w.centre(0, 0)); // fixed: nothing
    QCOMPARE(w.clicks, 0);
    QTest::mousePress(vp, Qt::LeftButton, {}, w.centre(1, 1));
    QTest::mouseMove(vp, w.centre(3, 3));
    QTest::mouseRelease(vp, Qt::LeftButton, {}, w.centre(3, 3));
    QCOMPARE(w.grid->Selection(), (TGridRect{1, 1, 3, 3}));
    QCOMPARE(w.current(), (TGridCoord{3, 3}));
    QCOMPARE(w.clicks, 1);
    QTest::mouseClick(vp, Qt::LeftButton, Qt::ShiftModifier, w.centre(2, 4));
    QCOMPARE(w.grid->Selection(), (TGridRect{1, 1, 2, 4}));
    QTest::mouseDClick(vp, Qt::LeftButton, {}, w.centre(2, 3));
    QCOMPARE(w.current(), (TGridCoord{2, 3}));
    QCOMPARE(doubleClicks, 1);
    const int clicks = w.clicks;
    const QPointF at(50, 50);
    for (const auto &[delta, row] : {std::pair{-240, 5}, {60, 5}, {60, 4}}) { // half notches add up
        QWheelEvent event(at, vp->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(vp, &event);
        QCOMPARE(w.grid->Row(), row);
    }
    QCOMPARE(w.clicks, clicks + 3); // one per row moved
}

void TestGrid::scrolling()
{
    GridWindow w;
    w.grid->SetScrollBars(ssBoth);
    w.grid->SetColCount(50);
    w.grid->SetRowCount(100);
    int topLeftChanges = 0;
    w.grid->OnTopLeftChanged = [&](QObject *) { ++topLeftChanges; };
    QVERIFY(w.show());
    w.key(Qt::ControlModifier | Qt::Key_End);
    QVERIFY(FullyShown(w.grid, 49, 99));
    QCOMPARE(topLeftChanges, 1);
    w.key(Qt::ControlModifier | Qt::Key_Home);
    QCOMPARE(w.grid->TopRow(), 1);
    QCOMPARE(w.grid->LeftCol(), 1);
    w.key(Qt::ControlModifier | Qt::Key_Down); // scrolls, the current cell stays
    QCOMPARE(w.grid->TopRow(), 2);
    QCOMPARE(w.grid->Row(), 1);

    QScrollBar *bar = w.grid->verticalScrollBar();
    QTRY_VERIFY(bar->isVisible());
    w.grid->SetRow(60);
    QCOMPARE(bar->value(), w.grid->TopRow());
    QVERIFY(FullyShown(w.grid, 1, 60));
    bar->setValue(10); // the user drags the bar: only the view moves
    QCOMPARE(w.grid->TopRow(), 10);
    QCOMPARE(w.grid->Row(), 60);
}

void TestGrid::paintsOnlyVisibleCellsWithState()
{
    GridWindow w;
    w.grid->SetColCount(200);
    w.grid->SetRowCount(200);
    QVERIFY(w.show());
    w.key(Qt::ShiftModifier | Qt::Key_Right);
    w.grid->SetRowHeights(2, 40);
    w.grid->drawn.clear();
    w.grid->viewport()->repaint();
    // 400 x 200 pixels show 7 columns and 8 rows, the last of each in part.
    QCOMPARE(w.grid->drawn.size(), 7 * 8);
    for (const ProbeGrid::Drawn &d : std::as_const(w.grid->drawn)) {
        QVERIFY(d.canvasValid);
        QCOMPARE(d.rect, w.grid->CellRect(d.col, d.row));
        QCOMPARE(d.state.testFlag(gdFixed), d.col == 0 || d.row == 0);
        QCOMPARE(d.state.testFlag(gdSelected), d.row == 1 && (d.col == 1 || d.col == 2));
        QCOMPARE(d.state.testFlag(gdFocused), d.row == 1 && d.col == 2);
    }
    QCOMPARE(w.grid->Canvas(), nullptr);
    w.grid->drawn.clear();
    w.grid->viewport()->repaint(w.grid->CellRect(3, 3));
    QCOMPARE(w.grid->drawn.size(), 1);
}

// A cell that cannot be drawn ends that paint, leaves no canvas behind and is
// reported once, after the painting, not from inside it.
void TestGrid::drawCellFailureIsReportedOnce()
{
    test::MessageRecorder messages;
    GridWindow w;
    QVERIFY(w.show());
    w.grid->failAt = {2, 1};
    w.grid->drawn.clear();
    w.grid->viewport()->repaint();
    QVERIFY(messages.Shown().isEmpty());
    QCOMPARE(w.grid->Canvas(), nullptr);
    QCOMPARE(w.grid->drawn.size(), w.grid->ColCount() + 2); // row 0, then (0,1) and (1,1)
    QTRY_COMPARE(messages.Texts(), QStringList{QStringLiteral("Buňku nelze vykreslit")});
    w.grid->failAt = {-1, -1};
    w.grid->viewport()->repaint();
    QCOMPARE(messages.Shown().size(), 1);
    QVERIFY(w.grid->drawn.size() > 10);
}

void TestGrid::stringGridStorage()
{
    TStringGrid grid;
    grid.SetCells(2, 3, QStringLiteral("x"));
    QCOMPARE(grid.Cells(40, 3), QString());
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetCells(5, 0, QStringLiteral("y")));
    QCOMPARE(grid.Rows(3), (QStringList{{}, {}, QStringLiteral("x"), {}, {}}));
    grid.SetRows(0, {QStringLiteral("a"), QStringLiteral("b")});
    QCOMPARE(grid.Cols(1), (QStringList{QStringLiteral("b"), {}, {}, {}, {}}));
    QObject object;
    grid.SetObjects(4, 4, &object);
    QCOMPARE(grid.Objects(4, 4), &object);
    // Shrinking drops what no longer fits; growing back shows nothing.
    grid.SetColCount(2);
    grid.SetColCount(5);
    QCOMPARE(grid.Cells(2, 3), QString());
    QCOMPARE(grid.Objects(4, 4), nullptr);

    // Moving a row moves the rows between up.
    grid.SetRows(1, {QStringLiteral("0"), QStringLiteral("1")});
    grid.SetCells(0, 2, QStringLiteral("r2"));
    grid.MoveRow(1, 4);
    QCOMPARE(grid.Cols(0), (QStringList{"a", "r2", {}, {}, "0"}));
    QCOMPARE(grid.Cells(1, 4), QStringLiteral("1"));
}

void TestGrid::editing()
{
    GridWindow w;
    w.grid->SetOptions(w.grid->Options() | goEditing);
    w.grid->SetCells(1, 1, QStringLiteral("old"));
    QStringList stored;
    w.grid->OnSetEditText = [&](QObject *, int c, int r, const QString &value) {
        stored << QStringLiteral("%1,%2 %3").arg(c).arg(r).arg(value);
    };
    int exits = 0;
    w.grid->OnExit = [&](QObject *) { ++exits; };
    QVERIFY(w.show());

    w.key(Qt::Key_F2);
    QVERIFY(w.grid->EditorMode());
    QLineEdit *editor = w.grid->InplaceEditor();
    QVERIFY(editor->hasFocus());
    QCOMPARE(editor->geometry(), w.grid->CellRect(1, 1));
    QTest::keyClick(editor, Qt::Key_End);
    QTest::keyClicks(editor, QStringLiteral("er"));
    QTest::keyClick(editor, Qt::Key_Escape); // drops the text
    QVERIFY(!w.grid->EditorMode());
    QCOMPARE(w.grid->Cells(1, 1), QStringLiteral("old"));
    QVERIFY(w.grid->hasFocus());

    w.key(Qt::Key_Return);
    QTest::keyClick(editor, Qt::Key_End);
    QTest::keyClicks(editor, QStringLiteral("er"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(w.grid->Cells(1, 1), QStringLiteral("older"));

    QTest::keyClicks(w.grid, QStringLiteral("n")); // typing replaces the text
    QVERIFY(w.grid->EditorMode());
    QTest::keyClicks(editor, QStringLiteral("ew"));
    QTest::keyClick(editor, Qt::Key_Down); // commits and moves
    QVERIFY(!w.grid->EditorMode());
    QCOMPARE(w.grid->Row(), 2);
    QTest::keyClicks(w.grid, QStringLiteral("x"));
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(3, 3)); // commits too
    QCOMPARE(w.grid->Col(), 3);
    QCOMPARE(stored,
             (QStringList{QStringLiteral("1,1 older"), QStringLiteral("1,1 new"),
                          QStringLiteral("1,2 x")}));
    QCOMPARE(w.grid->Cells(1, 2), QStringLiteral("x"));
    QCOMPARE(exits, 0); // the focus never left the grid
}

QTEST_MAIN(TestGrid)
#include "tst_grid.moc"
