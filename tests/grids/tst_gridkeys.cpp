// The key classification the record grids decide by, with its deliberate
// asymmetries, and the name lists the grids match.

#include "oxa/grids/CheckDBGrid.h"

#include <QtTest>

using namespace oxa;

Q_DECLARE_METATYPE(oxa::TShiftState)

namespace {

const TShiftState none, shift(ssShift), ctrl(ssCtrl);

} // namespace

class TestGridKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Plus, minus and Shift+minus are driven through a grid in tst_checkdbgrid.
    void keyClasses_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<TShiftState>("shift");
        QTest::addColumn<bool>("right");
        QTest::addColumn<bool>("left");
        QTest::addColumn<bool>("forward"); // the direction a value is set in
        const int tab = VK_TAB, plus = VK_ADD, space = VK_SPACE;
        QTest::newRow("Tab") << tab << none << true << false << false;
        QTest::newRow("Down") << int(VK_DOWN) << none << true << false << false;
        QTest::newRow("Alt+Right")
            << int(VK_RIGHT) << TShiftState(ssAlt) << false << false << false;
        QTest::newRow("Shift+Tab") << tab << shift << false << true << true;
        QTest::newRow("Ctrl+Shift+Tab") << tab << (shift | ssCtrl) << false << true << true;
        QTest::newRow("Left") << int(VK_LEFT) << none << false << true << false;
        QTest::newRow("Shift+Left") << int(VK_LEFT) << shift << false << false << true;
        QTest::newRow("Ctrl+Tab") << tab << ctrl << false << false << false;
        QTest::newRow("Space") << space << none << false << false << true;
        QTest::newRow("Shift+plus") << plus << shift << false << false << false;
        QTest::newRow("Shift+Space") << space << shift << false << false << false;
        QTest::newRow("Shift+A") << int('A') << shift << false << false << true;
        QTest::newRow("Ctrl+plus") << plus << ctrl << false << false << true;
    }
    void keyClasses()
    {
        QFETCH(int, key);
        QFETCH(TShiftState, shift);
        QTEST(MoveRight(Word(key), shift), "right");
        QTEST(MoveLeft(Word(key), shift), "left");
        QTEST(UrciSmerNastaveni(Word(key), shift), "forward");
    }

    void sidewaysMoves_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<TShiftState>("shift");
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("newIndex");
        QTest::addColumn<bool>("left");
        QTest::addColumn<bool>("right");
        const int tab = VK_TAB, right = VK_RIGHT;
        QTest::newRow("Shift+Tab on the first: behind the last")
            << tab << shift << 0 << 4 << 4 << true << false;
        QTest::newRow("Tab on the last: before the first")
            << tab << none << 3 << 4 << -1 << false << true;
        QTest::newRow("Tab with one column") << tab << none << 0 << 1 << -1 << false << true;
        QTest::newRow("Ctrl+Right with one column")
            << right << ctrl << 0 << 1 << 1 << false << true;
        QTest::newRow("Ctrl+Left") << int(VK_LEFT) << ctrl << 3 << 4 << 1 << true << false;
        QTest::newRow("Right in the middle") << right << none << 1 << 4 << 1 << false << true;
        QTest::newRow("Down is not sideways")
            << int(VK_DOWN) << none << 1 << 4 << 1 << false << false;
    }
    void sidewaysMoves()
    {
        QFETCH(int, key);
        QFETCH(TShiftState, shift);
        QFETCH(int, index);
        QFETCH(int, count);
        QFETCH(bool, left);
        QFETCH(bool, right);
        bool movesLeft = !left, movesRight = !right;
        JeStranovyPohyb(Word(key), shift, index, movesLeft, movesRight, count);
        QTEST(index, "newIndex");
        QCOMPARE(movesLeft, left);
        QCOMPARE(movesRight, right);
    }

    // Whole names, any case, spaces around them ignored (more in tst_checkdbgrid's columnOrder).
    void valueMatch()
    {
        QVERIFY(ValueMatch(QStringLiteral("id;Jmeno; stav"), QStringLiteral("STAV")));
        QVERIFY(!ValueMatch(QStringLiteral("prijmeni"), QStringLiteral("prijm")));
        QVERIFY(!ValueMatch(QString(), QStringLiteral("x")));
    }
};

QTEST_MAIN(TestGridKeys)
#include "tst_gridkeys.moc"
