#include "oxa/controls/StringGridOxa.h"
#include "oxa/toolkit/Catalogue.h"

#include "support/TestSupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QPainter>
#include <QTest>

using namespace oxa;

namespace {

QColor Resolved(TColor color, const QWidget *widget)
{
    return ColorToQColor(color, QApplication::palette(widget));
}

// A window with a grid and two edits around it.
struct GridForm
{
    QWidget window;
    TStringGridOxa *grid;
    QLineEdit *right;
    QLineEdit *below;
    GridForm()
    {
        grid = new TStringGridOxa(&window);
        grid->SetScrollBars(ssNone);
        grid->setGeometry(0, 0, 334, 129); // 5 x 5 cells of 64 x 24 with lines
        right = new QLineEdit(&window);
        right->setGeometry(340, 0, 80, 24);
        below = new QLineEdit(&window);
        below->setGeometry(0, 140, 80, 24);
        window.resize(430, 170);
    }
    bool show()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        grid->setFocus();
        return grid->hasFocus();
    }
    QColor pixel(int col, int row) const
    {
        const QImage image = grid->viewport()->grab().toImage();
        return image.pixelColor(grid->CellRect(col, row).center());
    }
};

struct CanvasColors
{
    QColor brush, pen;
};

} // namespace

class TestStringGridOxa : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void cellColoursWhileFocused();
    void selectedCellWhileUnfocused();
    void beforeDrawCellSeesCanvasColours();
    void selectCellOrder_data();
    void selectCellOrder();
    void plainArrowsMoveBetweenCells();
    void ctrlArrowLeavesTheGrid();
    void chainPassesDisabledGrids();
    void freedNeighbourIsCleared();
    void registration();
};

void TestStringGridOxa::defaults()
{
    TStringGridOxa grid;
    QCOMPARE(grid.CantSelectColor(), TColor(0xFF00000B));
    QCOMPARE(grid.ActiveColor(), TColor(0x0000FFFF));
    QCOMPARE(grid.DefaultColor(), TColor(0xFF000005));
    QCOMPARE(grid.DeactiveTextColor(), TColor(0xFF000008));
    QCOMPARE(grid.DeactiveColor(), TColor(0x00B9FFFF));
    QCOMPARE(grid.property("DeactiveColor").value<TColor>(), TColor(0x00B9FFFF));
    QCOMPARE(grid.FocUp(), nullptr);
}

void TestStringGridOxa::cellColoursWhileFocused()
{
    GridForm form;
    form.grid->SetCantSelectColor(clRed);
    form.grid->CanSelectCell = [](int col, int, bool &can) { can = col != 3; };
    QVERIFY(form.show());
    const QColor yellow(0xFF, 0xFF, 0x00);
    QCOMPARE(form.pixel(1, 1), yellow);                                    // selected
    QCOMPARE(form.pixel(2, 2), Resolved(clWindow, form.grid));             // default
    QCOMPARE(form.pixel(3, 2), QColor(Qt::red));                           // can't select
    QCOMPARE(form.pixel(3, 0), Resolved(form.grid->FixedColor(), form.grid)); // fixed
}

void TestStringGridOxa::selectedCellWhileUnfocused()
{
    GridForm form;
    QVERIFY(form.show());
    form.right->setFocus();
    QTRY_VERIFY(form.right->hasFocus());
    QCOMPARE(form.pixel(1, 1), QColor(0xFF, 0xFF, 0xB9));
    QCOMPARE(form.pixel(2, 1), Resolved(clWindow, form.grid));
}

void TestStringGridOxa::beforeDrawCellSeesCanvasColours()
{
    GridForm form;
    form.grid->SetDeactiveTextColor(clBlue);
    QMap<QPair<int, int>, CanvasColors> seen;
    form.grid->BeforeDrawCell = [&](QObject *, int col, int row, const QRect &, TGridDrawState) {
        QPainter *canvas = form.grid->Canvas();
        seen[{col, row}] = {canvas->brush().color(), canvas->pen().color()};
    };
    QVERIFY(form.show());
    form.below->setFocus();
    QTRY_VERIFY(form.below->hasFocus());
    seen.clear();
    form.grid->viewport()->repaint();
    QCOMPARE(seen.size(), 25); // every cell drawn
    QCOMPARE(seen.value({1, 1}).brush, QColor(0xFF, 0xFF, 0xB9));
    QCOMPARE(seen.value({1, 1}).pen, QColor(Qt::blue));
    QCOMPARE(seen.value({2, 2}).brush, Resolved(clWindow, form.grid));
}

void TestStringGridOxa::selectCellOrder_data()
{
    QTest::addColumn<bool>("canSelect");  // CanSelectCell's answer
    QTest::addColumn<bool>("withEvent");  // OnSelectCell assigned, overriding to true
    QTest::addColumn<int>("expectedCol");
    QTest::newRow("both allow") << true << true << 2;
    QTest::newRow("refused, event overrides") << false << true << 2;
    QTest::newRow("refused, no event") << false << false << 1;
}

void TestStringGridOxa::selectCellOrder()
{
    QFETCH(bool, canSelect);
    QFETCH(bool, withEvent);
    QFETCH(int, expectedCol);
    GridForm form;
    QStringList log;
    bool logging = false;
    form.grid->CanSelectCell = [&](int col, int row, bool &can) {
        if (logging)
            log << QStringLiteral("CanSelectCell %1,%2 %3").arg(col).arg(row).arg(can);
        can = canSelect;
    };
    if (withEvent) {
        form.grid->OnSelectCell = [&](QObject *, int col, int row, bool &can) {
            log << QStringLiteral("OnSelectCell %1,%2 %3").arg(col).arg(row).arg(can);
            can = true;
        };
    }
    QVERIFY(form.show());
    logging = true;
    QTest::keyClick(form.grid, Qt::Key_Right);
    logging = false;
    QStringList expected{QStringLiteral("CanSelectCell 2,1 1")};
    if (withEvent)
        expected << QStringLiteral("OnSelectCell 2,1 %1").arg(canSelect);
    QCOMPARE(log, expected);
    QCOMPARE(form.grid->Col(), expectedCol);
}

void TestStringGridOxa::plainArrowsMoveBetweenCells()
{
    GridForm form;
    form.grid->SetFocRight(form.right);
    form.grid->SetFocDown(form.below);
    QVERIFY(form.show());
    QTest::keyClick(form.grid, Qt::Key_Right);
    QTest::keyClick(form.grid, Qt::Key_Down);
    QCOMPARE(form.grid->Col(), 2);
    QCOMPARE(form.grid->Row(), 2);
    QVERIFY(form.grid->hasFocus());
    // Shift+Ctrl is not Ctrl: the grid keeps the key.
    QTest::keyClick(form.grid, Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(form.grid->hasFocus());
}

void TestStringGridOxa::ctrlArrowLeavesTheGrid()
{
    GridForm form;
    form.grid->SetFocRight(form.right);
    form.grid->SetFocDown(form.below);
    QVERIFY(form.show());
    QTest::keyClick(form.grid, Qt::Key_Right, Qt::ControlModifier);
    QTRY_VERIFY(form.right->hasFocus());
    QCOMPARE(form.grid->Col(), 1);
    form.grid->setFocus();
    QTest::keyClick(form.grid, Qt::Key_Down, Qt::ControlModifier);
    QTRY_VERIFY(form.below->hasFocus());
    QCOMPARE(form.grid->Row(), 1);
    // Without a neighbour the grid scrolls as it always does.
    form.grid->setFocus();
    QTest::keyClick(form.grid, Qt::Key_Left, Qt::ControlModifier);
    QVERIFY(form.grid->hasFocus());
}

void TestStringGridOxa::chainPassesDisabledGrids()
{
    GridForm form;
    auto *middle = new TStringGridOxa(&form.window);
    middle->setGeometry(200, 140, 50, 25);
    middle->setEnabled(false);
    middle->SetFocDown(form.below);
    form.grid->SetFocDown(middle);
    QVERIFY(form.show());
    QTest::keyClick(form.grid, Qt::Key_Down, Qt::ControlModifier);
    QTRY_VERIFY(form.below->hasFocus());
}

void TestStringGridOxa::freedNeighbourIsCleared()
{
    GridForm form;
    form.grid->SetFocUp(form.right);
    form.grid->SetFocLeft(form.right);
    delete form.right;
    QCOMPARE(form.grid->FocUp(), nullptr);
    QCOMPARE(form.grid->FocLeft(), nullptr);
}

void TestStringGridOxa::registration()
{
    Catalogue::Instance().Clear();
    RegisterStringGridOxa();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TStringGridOxa"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QCOMPARE(entry->Unit, QStringLiteral("StringGridOxa"));
    QWidget owner;
    QVERIFY(qobject_cast<TStringGridOxa *>(Catalogue::Instance().Create(entry->ClassName, &owner)));
}

QTEST_MAIN(TestStringGridOxa)
#include "tst_stringgridoxa.moc"
