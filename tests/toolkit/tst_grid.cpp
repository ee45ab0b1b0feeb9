#include "oxa/toolkit/Grid.h"
#include "oxa/toolkit/StringGrid.h"

#include "support/TestSupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

using namespace oxa;

namespace {

// A string grid that records what it draws.
class ProbeGrid : public TStringGrid
{
public:
    using TStringGrid::TStringGrid;
    struct Drawn
    {
        int col, row;
        TGridDrawState state;
        bool canvasValid;
    };
    QList<Drawn> drawn;
    using TStringGrid::SelectCell;

protected:
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override
    {
        drawn.append({ACol, ARow, State, Canvas() != nullptr});
        TStringGrid::DrawCell(ACol, ARow, Rect, State);
    }
};

// A shown, active window holding one grid of a known viewport size.
struct GridWindow
{
    QWidget window;
    ProbeGrid *grid;
    explicit GridWindow(QSize size = {404, 204})
    {
        grid = new ProbeGrid(&window);
        grid->SetScrollBars(ssNone);
        grid->setGeometry(QRect(QPoint(0, 0), size));
        window.resize(size + QSize(20, 20));
    }
    bool show()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        grid->setFocus();
        return grid->hasFocus();
    }
    void key(Qt::Key k, Qt::KeyboardModifiers m = {}) { QTest::keyClick(grid, k, m); }
    QPoint centre(int col, int row) const { return grid->CellRect(col, row).center(); }
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
    void cellGeometry();
    void cellGeometryWithoutLines();
    void mouseToCellRoundTrip_data();
    void mouseToCellRoundTrip();
    void mouseToCellOutside();
    void fixedCountsAreChecked();
    void fixedCellsDoNotScroll();
    void keyboardMovement_data();
    void keyboardMovement();
    void keyboardMovesReportClick();
    void tabsWithGoTabs();
    void selectCellCanRefuse();
    void rangeSelectionByKeys();
    void rangeSelectionByMouse();
    void rowSelect();
    void setSelection();
    void scrollingKeepsCurrentVisible();
    void scrollBarFollowsTopRow();
    void mouseClicks();
    void wheelMovesCurrentRow();
    void sizingAndMovingByMouse();
    void paintsOnlyVisibleCellsWithState();
    void variableRowHeights();
    void stringGridStorage();
    void stringGridMovesData();
    void editing();
    void editingByTyping();
};

void TestGrid::cellGeometry()
{
    GridWindow w;
    QVERIFY(w.show());
    w.grid->SetDefaultColWidth(20);
    w.grid->SetColWidths(0, 35);
    w.grid->SetRowHeights(0, 14);
    w.grid->SetGridLineWidth(2);
    QCOMPARE(w.grid->CellRect(0, 0), QRect(0, 0, 35, 14));
    QCOMPARE(w.grid->CellRect(2, 1), QRect(35 + 2 + 20 + 2, 14 + 2, 20, 24));
    QCOMPARE(w.grid->BoxRect(1, 1, 2, 2), QRect(37, 16, 44, 52));
    // Setting the default again resets every width.
    w.grid->SetDefaultColWidth(30);
    QCOMPARE(w.grid->ColWidths(0), 30);
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, w.grid->SetColWidths(5, 10));
}

void TestGrid::cellGeometryWithoutLines()
{
    GridWindow w;
    QVERIFY(w.show());
    w.grid->SetOptions(TGridOptions(goFixedVertLine | goFixedHorzLine));
    // Fixed cells keep their lines, scrollable ones lose them.
    QCOMPARE(w.grid->CellRect(1, 1), QRect(65, 25, 64, 24));
    QCOMPARE(w.grid->CellRect(2, 2), QRect(65 + 64, 25 + 24, 64, 24));
}

void TestGrid::mouseToCellRoundTrip_data()
{
    QTest::addColumn<int>("col");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("leftCol");
    QTest::newRow("fixed corner") << 0 << 0 << 1;
    QTest::newRow("header") << 3 << 0 << 1;
    QTest::newRow("data") << 2 << 3 << 1;
    QTest::newRow("scrolled") << 12 << 4 << 10;
    QTest::newRow("fixed column while scrolled") << 0 << 2 << 10;
}

void TestGrid::mouseToCellRoundTrip()
{
    QFETCH(int, col);
    QFETCH(int, row);
    QFETCH(int, leftCol);
    GridWindow w;
    QVERIFY(w.show());
    w.grid->SetColCount(30);
    w.grid->SetLeftCol(leftCol);
    const QRect r = w.grid->CellRect(col, row);
    QVERIFY(!r.isEmpty());
    for (const QPoint &p : {r.topLeft(), r.center(), r.bottomRight()}) {
        int c = -2, rr = -2;
        w.grid->MouseToCell(p.x(), p.y(), c, rr);
        QCOMPARE(c, col);
        QCOMPARE(rr, row);
    }
    // The grid line right of a cell belongs to that cell.
    QCOMPARE(w.grid->MouseCoord(r.right() + 1, r.top()), (TGridCoord{col, row}));
}

void TestGrid::mouseToCellOutside()
{
    GridWindow w;
    QVERIFY(w.show());
    // Five 64-pixel columns end at 325, five rows at 125.
    QCOMPARE(w.grid->MouseCoord(330, 10), (TGridCoord{-1, -1}));
    QCOMPARE(w.grid->MouseCoord(10, 130), (TGridCoord{-1, -1}));
    QCOMPARE(w.grid->MouseCoord(-1, 10), (TGridCoord{-1, -1}));
    w.grid->SetLeftCol(3);
    QVERIFY(w.grid->CellRect(1, 1).isEmpty());
    QVERIFY(w.grid->CellRect(9, 1).isEmpty());
}

void TestGrid::fixedCountsAreChecked()
{
    TStringGrid grid;
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetFixedCols(5));
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetFixedRows(-1));
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetCol(0));
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetRow(5));
    grid.SetFixedRows(3);
    QCOMPARE(grid.Row(), 3);
    QCOMPARE(grid.TopRow(), 3);
    // Fewer lines than fixed ones lower the fixed count.
    grid.SetRowCount(2);
    QCOMPARE(grid.FixedRows(), 1);
    QCOMPARE(grid.Row(), 1);
    grid.SetColCount(0);
    QCOMPARE(grid.ColCount(), 1);
    QCOMPARE(grid.FixedCols(), 0);
    QCOMPARE(grid.Col(), 0);
}

void TestGrid::fixedCellsDoNotScroll()
{
    GridWindow w;
    QVERIFY(w.show());
    w.grid->SetColCount(40);
    w.grid->SetRowCount(40);
    w.grid->SetFixedCols(2);
    const QRect corner = w.grid->CellRect(1, 0);
    w.grid->SetLeftCol(20);
    w.grid->SetTopRow(30);
    QCOMPARE(w.grid->CellRect(1, 0), corner);
    QCOMPARE(w.grid->CellRect(20, 30).topLeft(), QPoint(130, 25));
    QCOMPARE(w.grid->CellRect(20, 0).left(), 130);
    QCOMPARE(w.grid->CellRect(0, 30).top(), 25);
}

void TestGrid::keyboardMovement_data()
{
    QTest::addColumn<QList<int>>("keys"); // Qt key, modifiers, repeated
    QTest::addColumn<int>("col");
    QTest::addColumn<int>("row");
    const int ctrl = int(Qt::ControlModifier);
    QTest::newRow("right down") << QList<int>{Qt::Key_Right, 0, Qt::Key_Down, 0} << 2 << 2;
    QTest::newRow("stops at edges") << QList<int>{Qt::Key_Left, 0, Qt::Key_Up, 0} << 1 << 1;
    QTest::newRow("end") << QList<int>{Qt::Key_End, 0} << 9 << 1;
    QTest::newRow("home") << QList<int>{Qt::Key_End, 0, Qt::Key_Home, 0} << 1 << 1;
    QTest::newRow("ctrl end") << QList<int>{Qt::Key_End, ctrl} << 9 << 29;
    QTest::newRow("ctrl home") << QList<int>{Qt::Key_End, ctrl, Qt::Key_Home, ctrl} << 1 << 1;
    QTest::newRow("page down") << QList<int>{Qt::Key_PageDown, 0} << 1 << 8;
    QTest::newRow("page up at top") << QList<int>{Qt::Key_PageUp, 0} << 1 << 1;
    QTest::newRow("page down, up") << QList<int>{Qt::Key_PageDown, 0, Qt::Key_PageDown, 0,
                                                 Qt::Key_PageUp, 0} << 1 << 8;
}

void TestGrid::keyboardMovement()
{
    QFETCH(QList<int>, keys);
    QFETCH(int, col);
    QFETCH(int, row);
    GridWindow w; // viewport 200 high: header + 7 whole rows
    w.grid->SetColCount(10);
    w.grid->SetRowCount(30);
    QVERIFY(w.show());
    QCOMPARE(w.grid->VisibleRowCount(), 7);
    for (int i = 0; i < keys.size(); i += 2)
        w.key(Qt::Key(keys[i]), Qt::KeyboardModifiers(keys[i + 1]));
    QCOMPARE(w.grid->Col(), col);
    QCOMPARE(w.grid->Row(), row);
    QVERIFY(FullyShown(w.grid, col, row));
}

void TestGrid::keyboardMovesReportClick()
{
    GridWindow w;
    int clicks = 0;
    w.grid->OnClick = [&](QObject *) { ++clicks; };
    QVERIFY(w.show());
    w.key(Qt::Key_Right);
    w.key(Qt::Key_Up); // no move, no click
    QCOMPARE(clicks, 1);
    w.grid->SetRow(3);
    QCOMPARE(clicks, 2);
    w.grid->SetRow(3);
    QCOMPARE(clicks, 2);
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
    QCOMPARE(w.grid->Col(), 2);
    w.key(Qt::Key_Tab); // wraps to the next row, skipping column 1
    QCOMPARE(w.grid->Col(), 2);
    QCOMPARE(w.grid->Row(), 2);
    w.key(Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(w.grid->Row(), 1);
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
    QCOMPARE(w.grid->Col(), 1);
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(3, 2));
    QCOMPARE(w.grid->Col(), 3);
    QCOMPARE(w.grid->Row(), 2);
    QCOMPARE(asked, (QList<TGridCoord>{{2, 1}, {3, 2}}));
}

void TestGrid::rangeSelectionByKeys()
{
    GridWindow w;
    QVERIFY(w.show());
    w.key(Qt::Key_Right, Qt::ShiftModifier);
    w.key(Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(w.grid->Selection(), (TGridRect{1, 1, 2, 2}));
    QCOMPARE(w.grid->Col(), 2);
    w.key(Qt::Key_Up, Qt::ShiftModifier);
    w.key(Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(w.grid->Selection(), (TGridRect{1, 1, 2, 1}));
    w.key(Qt::Key_Down); // a plain move collapses the range
    QCOMPARE(w.grid->Selection(), (TGridRect{2, 2, 2, 2}));
    // Without goRangeSelect Shift does not extend.
    w.grid->SetOptions(w.grid->Options() & ~TGridOptions(goRangeSelect));
    w.key(Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(w.grid->Selection(), (TGridRect{3, 2, 3, 2}));
}

void TestGrid::rangeSelectionByMouse()
{
    GridWindow w;
    int clicks = 0;
    w.grid->OnClick = [&](QObject *) { ++clicks; };
    QVERIFY(w.show());
    QWidget *vp = w.grid->viewport();
    QTest::mousePress(vp, Qt::LeftButton, {}, w.centre(1, 1));
    QTest::mouseMove(vp, w.centre(3, 3));
    QCOMPARE(w.grid->GridState(), gsSelecting);
    QTest::mouseRelease(vp, Qt::LeftButton, {}, w.centre(3, 3));
    QCOMPARE(w.grid->Selection(), (TGridRect{1, 1, 3, 3}));
    QCOMPARE((TGridCoord{w.grid->Col(), w.grid->Row()}), (TGridCoord{3, 3}));
    QCOMPARE(w.grid->GridState(), gsNormal);
    QCOMPARE(clicks, 1);
    QTest::mouseClick(vp, Qt::LeftButton, Qt::ShiftModifier, w.centre(2, 4));
    QCOMPARE(w.grid->Selection(), (TGridRect{1, 1, 2, 4}));
}

void TestGrid::rowSelect()
{
    GridWindow w;
    w.grid->SetOptions(w.grid->Options() | goRowSelect);
    QVERIFY(w.show());
    w.key(Qt::Key_Down);
    QCOMPARE(w.grid->Selection(), (TGridRect{1, 2, 4, 2}));
    w.key(Qt::Key_End);
    QCOMPARE(w.grid->Row(), 4);
    w.key(Qt::Key_Down, Qt::ShiftModifier);
    w.key(Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(w.grid->Selection(), (TGridRect{1, 3, 4, 4}));
}

void TestGrid::setSelection()
{
    TDrawGrid grid;
    grid.SetColCount(100);
    int clicks = 0;
    grid.OnClick = [&](QObject *) { ++clicks; };
    grid.SetSelection({41, 1, 44, 1});
    QCOMPARE(grid.Selection(), (TGridRect{41, 1, 44, 1}));
    QCOMPARE(grid.Col(), 44);
    grid.SetSelection({5, 3, 2, 0}); // normalised and kept off the fixed cells
    QCOMPARE(grid.Selection(), (TGridRect{2, 1, 5, 3}));
    QCOMPARE(clicks, 0);
}

void TestGrid::scrollingKeepsCurrentVisible()
{
    GridWindow w;
    w.grid->SetColCount(50);
    w.grid->SetRowCount(50);
    int topLeftChanges = 0;
    w.grid->OnTopLeftChanged = [&](QObject *) { ++topLeftChanges; };
    QVERIFY(w.show());
    for (int i = 0; i < 12; ++i) {
        w.key(Qt::Key_Down);
        w.key(Qt::Key_Right);
        QVERIFY(FullyShown(w.grid, w.grid->Col(), w.grid->Row()));
    }
    QVERIFY(w.grid->TopRow() > 1);
    QVERIFY(w.grid->LeftCol() > 1);
    QVERIFY(topLeftChanges > 0);
    w.key(Qt::Key_End, Qt::ControlModifier);
    QVERIFY(FullyShown(w.grid, 49, 49));
    QVERIFY(w.grid->CellRect(48 - w.grid->VisibleColCount(), 49).isEmpty());
    w.key(Qt::Key_Home, Qt::ControlModifier);
    QCOMPARE(w.grid->TopRow(), 1);
    QCOMPARE(w.grid->LeftCol(), 1);
    // Ctrl+Down scrolls without moving the current cell.
    w.key(Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(w.grid->TopRow(), 2);
    QCOMPARE(w.grid->Row(), 1);
}

void TestGrid::scrollBarFollowsTopRow()
{
    GridWindow w;
    w.grid->SetScrollBars(ssBoth);
    w.grid->SetRowCount(100);
    QVERIFY(w.show());
    QScrollBar *bar = w.grid->verticalScrollBar();
    QTRY_VERIFY(bar->isVisible());
    w.grid->SetRow(60);
    QCOMPARE(bar->value(), w.grid->TopRow());
    QVERIFY(FullyShown(w.grid, 1, 60));
    bar->setValue(10); // the user drags the bar: only the view moves
    QCOMPARE(w.grid->TopRow(), 10);
    QCOMPARE(w.grid->Row(), 60);
    QCOMPARE(bar->maximum(), 100 - w.grid->VisibleRowCount());
}

void TestGrid::mouseClicks()
{
    GridWindow w;
    int clicks = 0, doubleClicks = 0;
    w.grid->OnClick = [&](QObject *) { ++clicks; };
    w.grid->OnDblClick = [&](QObject *) { ++doubleClicks; };
    QSignalSpy spy(w.grid, &TCustomGrid::doubleClicked);
    QVERIFY(w.show());
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(0, 0)); // fixed: nothing
    QCOMPARE(clicks, 0);
    QTest::mouseDClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(2, 3));
    QCOMPARE((TGridCoord{w.grid->Col(), w.grid->Row()}), (TGridCoord{2, 3}));
    QCOMPARE(doubleClicks, 1);
    QCOMPARE(spy.count(), 1);
    QVERIFY(clicks >= 1);
}

void TestGrid::wheelMovesCurrentRow()
{
    GridWindow w;
    int clicks = 0;
    w.grid->OnClick = [&](QObject *) { ++clicks; };
    QVERIFY(w.show());
    auto wheel = [&](int delta) {
        const QPointF at(50, 50);
        QWheelEvent event(at, w.grid->viewport()->mapToGlobal(at), QPoint(), QPoint(0, delta),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(w.grid->viewport(), &event);
    };
    wheel(-240);
    QCOMPARE(w.grid->Row(), 3);
    wheel(60); // half notches add up
    QCOMPARE(w.grid->Row(), 3);
    wheel(60);
    QCOMPARE(w.grid->Row(), 2);
    QCOMPARE(clicks, 3);
}

void TestGrid::sizingAndMovingByMouse()
{
    GridWindow w;
    w.grid->SetOptions(w.grid->Options() | goColSizing | goColMoving);
    w.grid->SetRows(1, {QStringLiteral("0"), QStringLiteral("1")});
    QVERIFY(w.show());
    QWidget *vp = w.grid->viewport();
    const QRect header = w.grid->CellRect(1, 0);
    const QPoint line(header.right() + 1, header.center().y());
    QTest::mousePress(vp, Qt::LeftButton, {}, line);
    QCOMPARE(w.grid->GridState(), gsColSizing);
    QTest::mouseMove(vp, line + QPoint(20, 0));
    QTest::mouseRelease(vp, Qt::LeftButton, {}, line + QPoint(20, 0));
    QCOMPARE(w.grid->ColWidths(1), 84);
    QCOMPARE(w.grid->GridState(), gsNormal);
    // Dragging a header moves its column, width and texts included.
    QTest::mousePress(vp, Qt::LeftButton, {}, w.centre(1, 0));
    QCOMPARE(w.grid->GridState(), gsColMoving);
    QTest::mouseRelease(vp, Qt::LeftButton, {}, w.centre(3, 0));
    QCOMPARE(w.grid->Cells(3, 1), QStringLiteral("1"));
    QCOMPARE(w.grid->ColWidths(3), 84);
}

void TestGrid::paintsOnlyVisibleCellsWithState()
{
    GridWindow w;
    w.grid->SetColCount(200);
    w.grid->SetRowCount(200);
    QVERIFY(w.show());
    w.key(Qt::Key_Right, Qt::ShiftModifier);
    w.grid->drawn.clear();
    w.grid->viewport()->repaint();
    // 400 x 200 pixels show 7 columns (the last in part) and 8 rows.
    QCOMPARE(w.grid->drawn.size(), 7 * 8);
    for (const ProbeGrid::Drawn &d : std::as_const(w.grid->drawn)) {
        QVERIFY(d.canvasValid);
        QCOMPARE(d.state.testFlag(gdFixed), d.col == 0 || d.row == 0);
        QCOMPARE(d.state.testFlag(gdSelected), d.row == 1 && (d.col == 1 || d.col == 2));
        QCOMPARE(d.state.testFlag(gdFocused), d.row == 1 && d.col == 2);
    }
    QCOMPARE(w.grid->Canvas(), nullptr);
    // A repaint of one cell draws that cell only.
    w.grid->drawn.clear();
    w.grid->viewport()->repaint(w.grid->CellRect(3, 3));
    QCOMPARE(w.grid->drawn.size(), 1);
}

void TestGrid::variableRowHeights()
{
    GridWindow w;
    QVERIFY(w.show());
    w.grid->SetRowCount(32);
    w.grid->SetDefaultRowHeight(13);
    w.grid->SetRowHeights(0, 14);
    w.grid->SetRowHeights(5, 40);
    QCOMPARE(w.grid->CellRect(1, 6).top(), 15 + 4 * 14 + 41);
    QCOMPARE(w.grid->MouseCoord(70, 15 + 4 * 14 + 39).Y, 5);
    // Painting follows the same layout: a cell is filled where CellRect says.
    w.grid->SetCells(1, 5, QString());
    w.grid->OnDrawCell = [&](QObject *, int c, int r, const QRect &rect, TGridDrawState) {
        if (c == 1 && r == 5)
            w.grid->Canvas()->fillRect(rect, Qt::red);
    };
    const QImage image = w.grid->viewport()->grab().toImage();
    const QRect r = w.grid->CellRect(1, 5);
    QCOMPARE(image.pixelColor(r.center()), QColor(Qt::red));
    QVERIFY(image.pixelColor(r.center().x(), r.bottom() + 2) != QColor(Qt::red));
}

void TestGrid::stringGridStorage()
{
    TStringGrid grid;
    grid.SetCells(2, 3, QStringLiteral("x"));
    QCOMPARE(grid.Cells(2, 3), QStringLiteral("x"));
    QCOMPARE(grid.Cells(40, 3), QString());
    QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, grid.SetCells(5, 0, QStringLiteral("y")));
    QCOMPARE(grid.Rows(3), (QStringList{{}, {}, QStringLiteral("x"), {}, {}}));
    grid.SetRows(0, {QStringLiteral("a"), QStringLiteral("b")});
    QCOMPARE(grid.Cols(1), (QStringList{QStringLiteral("b"), {}, {}, {}, {}}));
    QObject object;
    grid.SetObjects(4, 4, &object);
    QCOMPARE(grid.Objects(4, 4), &object);
    QCOMPARE(grid.Objects(3, 4), nullptr);
    // Shrinking drops the texts that no longer fit; growing back shows none.
    grid.SetColCount(2);
    grid.SetColCount(5);
    QCOMPARE(grid.Cells(2, 3), QString());
    QCOMPARE(grid.Cells(1, 0), QStringLiteral("b"));
    QCOMPARE(grid.Objects(4, 4), nullptr);
}

void TestGrid::stringGridMovesData()
{
    TStringGrid grid;
    QList<int> moved;
    grid.OnColumnMoved = [&](QObject *, int from, int to) { moved << from << to; };
    grid.SetRows(1, {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2")});
    grid.SetColWidths(1, 11);
    grid.MoveColumn(1, 3);
    QCOMPARE(grid.Rows(1), (QStringList{QStringLiteral("0"), QStringLiteral("2"), {}, QStringLiteral("1"), {}}));
    QCOMPARE(grid.ColWidths(3), 11);
    QCOMPARE(moved, (QList<int>{1, 3}));
    grid.MoveRow(1, 4);
    QCOMPARE(grid.Cells(3, 4), QStringLiteral("1"));
    QCOMPARE(grid.Cells(3, 1), QString());
}

void TestGrid::editing()
{
    GridWindow w;
    w.grid->SetOptions(w.grid->Options() | goEditing);
    w.grid->SetCells(1, 1, QStringLiteral("old"));
    QList<QString> stored;
    w.grid->OnSetEditText = [&](QObject *, int c, int r, const QString &value) {
        QCOMPARE((TGridCoord{c, r}), (TGridCoord{1, 1}));
        stored.append(value);
    };
    int exits = 0;
    w.grid->OnExit = [&](QObject *) { ++exits; };
    QVERIFY(w.show());

    w.key(Qt::Key_F2);
    QVERIFY(w.grid->EditorMode());
    QLineEdit *editor = w.grid->InplaceEditor();
    QVERIFY(editor->hasFocus());
    QCOMPARE(editor->text(), QStringLiteral("old"));
    QCOMPARE(editor->geometry(), w.grid->CellRect(1, 1));
    QTest::keyClick(editor, Qt::Key_End);
    QTest::keyClicks(editor, QStringLiteral("er"));
    QTest::keyClick(editor, Qt::Key_Escape);
    QVERIFY(!w.grid->EditorMode());
    QCOMPARE(w.grid->Cells(1, 1), QStringLiteral("old"));
    QVERIFY(w.grid->hasFocus());

    w.key(Qt::Key_Return); // Enter opens the editor too
    QVERIFY(w.grid->EditorMode());
    QTest::keyClick(editor, Qt::Key_End);
    QTest::keyClicks(editor, QStringLiteral("er"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(w.grid->Cells(1, 1), QStringLiteral("older"));
    QCOMPARE(stored, QList<QString>{QStringLiteral("older")});
    QVERIFY(w.grid->hasFocus());
    QCOMPARE(exits, 0); // the focus never left the grid
}

void TestGrid::editingByTyping()
{
    GridWindow w;
    w.grid->SetOptions(w.grid->Options() | goEditing);
    w.grid->SetCells(1, 1, QStringLiteral("old"));
    QVERIFY(w.show());
    QTest::keyClicks(w.grid, QStringLiteral("n"));
    QLineEdit *editor = w.grid->InplaceEditor();
    QVERIFY(w.grid->EditorMode());
    QTest::keyClicks(editor, QStringLiteral("ew"));
    QCOMPARE(editor->text(), QStringLiteral("new"));
    QTest::keyClick(editor, Qt::Key_Down); // commits and moves
    QVERIFY(!w.grid->EditorMode());
    QCOMPARE(w.grid->Cells(1, 1), QStringLiteral("new"));
    QCOMPARE(w.grid->Row(), 2);
    // Clicking elsewhere commits as well.
    QTest::keyClicks(w.grid, QStringLiteral("x"));
    QTest::mouseClick(w.grid->viewport(), Qt::LeftButton, {}, w.centre(3, 3));
    QCOMPARE(w.grid->Cells(1, 2), QStringLiteral("x"));
    QCOMPARE(w.grid->Col(), 3);
}

QTEST_MAIN(TestGrid)
#include "tst_grid.moc"
