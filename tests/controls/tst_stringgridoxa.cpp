#include "oxa/controls/StringGridOxa.h"

#include "support/TestSupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QPainter>
#include <QTest>

using namespace oxa;

namespace {

// A grid of 5 x 5 cells of 64 x 24 and an edit right of it.
struct GridForm : test::TestForm
{
    TStringGridOxa *grid = new TStringGridOxa(this);
    QLineEdit *right = new QLineEdit(this);
    GridForm()
    {
        grid->SetScrollBars(ssNone);
        grid->setGeometry(0, 0, 334, 129);
        right->setGeometry(340, 0, 80, 24);
        resize(430, 170);
    }
};

} // namespace

class TestStringGridOxa : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cellColours_data()
    {
        QTest::addColumn<bool>("focused");
        QTest::addColumn<TGridCoord>("cell");
        QTest::addColumn<TColor>("background");
        QTest::addColumn<TColor>("text");
        // Column 3 is refused by CanSelectCell; the fixed colour is set to lime.
        QTest::newRow("selected, focused") << true << TGridCoord{1, 1} << clYellow << clWindowText;
        QTest::newRow("selected, unfocused")
            << false << TGridCoord{1, 1} << TColor(0x00B9FFFF) << clBlue;
        QTest::newRow("refused") << true << TGridCoord{3, 2} << clInactiveBorder << clWindowText;
        QTest::newRow("fixed over refused") << true << TGridCoord{3, 0} << clLime << clWindowText;
    }

    void cellColours()
    {
        QFETCH(bool, focused);
        QFETCH(TGridCoord, cell);
        QFETCH(TColor, background);
        QFETCH(TColor, text);
        GridForm form;
        form.grid->SetDeactiveTextColor(clBlue);
        form.grid->SetFixedColor(clLime);
        form.grid->CanSelectCell = [](int col, int, bool &can) { can = col != 3; };
        QMap<QPair<int, int>, QPair<QColor, QColor>> seen;
        form.grid->BeforeDrawCell = [&](QObject *, int col, int row, const QRect &,
                                        TGridDrawState) {
            seen[{col, row}] = {form.grid->Canvas()->brush().color(),
                                form.grid->Canvas()->pen().color()};
        };
        QVERIFY(form.Show(form.grid));
        if (!focused) {
            form.right->setFocus();
            QTRY_VERIFY(form.right->hasFocus());
        }
        seen.clear();
        const QImage image = form.grid->viewport()->grab().toImage();
        QCOMPARE(seen.size(), 25);
        const QPalette palette = QApplication::palette(form.grid);
        const QRgb expected = ColorToQColor(background, palette).rgb();
        QCOMPARE(seen.value({cell.X, cell.Y}).first.rgb(), expected);
        QCOMPARE(seen.value({cell.X, cell.Y}).second.rgb(), ColorToQColor(text, palette).rgb());
        QCOMPARE(image.pixel(form.grid->CellRect(cell.X, cell.Y).center()), expected);
    }

    void selectCellOrder()
    {
        TStringGridOxa grid;
        QStringList log;
        grid.CanSelectCell = [&](int col, int row, bool &can) {
            log << QStringLiteral("CanSelectCell %1,%2 %3").arg(col).arg(row).arg(can);
            can = false;
        };
        grid.SetCol(2);
        QCOMPARE(grid.Col(), 1);
        grid.OnSelectCell = [&](QObject *, int col, int row, bool &can) {
            log << QStringLiteral("OnSelectCell %1,%2 %3").arg(col).arg(row).arg(can);
            can = true;
        };
        grid.SetCol(2); // OnSelectCell has the last word
        QCOMPARE(grid.Col(), 2);
        QCOMPARE(log,
                 (QStringList{"CanSelectCell 2,1 1", "CanSelectCell 2,1 1", "OnSelectCell 2,1 0"}));
    }

    void keys_data()
    {
        QTest::addColumn<QKeyCombination>("key");
        QTest::addColumn<int>("focus"); // 0 the grid, 1 the edit right of it
        QTest::addColumn<TGridCoord>("cell");
        const auto ctrl = Qt::ControlModifier;
        QTest::newRow("plain right") << QKeyCombination(Qt::Key_Right) << 0 << TGridCoord{2, 1};
        QTest::newRow("ctrl right") << (ctrl | Qt::Key_Right) << 1 << TGridCoord{1, 1};
        // Not exactly Ctrl: the grid takes the key and pages sideways.
        QTest::newRow("ctrl shift right")
            << (ctrl | Qt::ShiftModifier | Qt::Key_Right) << 0 << TGridCoord{4, 1};
    }

    void keys()
    {
        QFETCH(QKeyCombination, key);
        QFETCH(int, focus);
        GridForm form;
        form.grid->SetFocRight(form.right);
        QVERIFY(form.Show(form.grid));
        QTest::keyClick(form.grid, key.key(), key.keyboardModifiers());
        QWidget *const widgets[] = {form.grid, form.right};
        QTRY_COMPARE(QApplication::focusWidget(), widgets[focus]);
        QTEST((TGridCoord{form.grid->Col(), form.grid->Row()}), "cell");
    }
};

QTEST_MAIN(TestStringGridOxa)
#include "tst_stringgridoxa.moc"
