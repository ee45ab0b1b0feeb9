// The key classification the record grids decide by, with its deliberate
// asymmetries, and the name lists the grids match.

#include "oxa/grids/CheckDBGrid.h"

#include <QtTest>

using namespace oxa;

Q_DECLARE_METATYPE(oxa::TShiftState)

class TestGridKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void moves_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<TShiftState>("shift");
        QTest::addColumn<bool>("right");
        QTest::addColumn<bool>("left");
        QTest::newRow("Tab") << int(VK_TAB) << TShiftState() << true << false;
        QTest::newRow("Right") << int(VK_RIGHT) << TShiftState() << true << false;
        QTest::newRow("Down") << int(VK_DOWN) << TShiftState() << true << false;
        QTest::newRow("Alt+Right") << int(VK_RIGHT) << TShiftState(ssAlt) << false << false;
        QTest::newRow("Shift+Tab") << int(VK_TAB) << TShiftState(ssShift) << false << true;
        QTest::newRow("Ctrl+Shift+Tab")
            << int(VK_TAB) << TShiftState(ssShift | ssCtrl) << false << true;
        QTest::newRow("Left") << int(VK_LEFT) << TShiftState() << false << true;
        QTest::newRow("Up") << int(VK_UP) << TShiftState() << false << true;
        QTest::newRow("Shift+Left") << int(VK_LEFT) << TShiftState(ssShift) << false << false;
        QTest::newRow("Ctrl+Tab") << int(VK_TAB) << TShiftState(ssCtrl) << false << false;
    }
    void moves()
    {
        QFETCH(int, key);
        QFETCH(TShiftState, shift);
        QFETCH(bool, right);
        QFETCH(bool, left);
        QCOMPARE(MoveRight(Word(key), shift), right);
        QCOMPARE(MoveLeft(Word(key), shift), left);
    }

    void directionOfSetting_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<TShiftState>("shift");
        QTest::addColumn<bool>("forward");
        QTest::newRow("plus") << int(VK_ADD) << TShiftState() << true;
        QTest::newRow("Space") << int(VK_SPACE) << TShiftState() << true;
        QTest::newRow("Shift+plus") << int(VK_ADD) << TShiftState(ssShift) << false;
        QTest::newRow("Shift+Space") << int(VK_SPACE) << TShiftState(ssShift) << false;
        QTest::newRow("minus") << int(VK_SUBTRACT) << TShiftState() << false;
        QTest::newRow("Shift+minus") << int(VK_SUBTRACT) << TShiftState(ssShift) << true;
        QTest::newRow("Shift+A") << int('A') << TShiftState(ssShift) << true;
        QTest::newRow("Ctrl+plus") << int(VK_ADD) << TShiftState(ssCtrl) << true;
    }
    void directionOfSetting()
    {
        QFETCH(int, key);
        QFETCH(TShiftState, shift);
        QFETCH(bool, forward);
        QCOMPARE(UrciSmerNastaveni(Word(key), shift), forward);
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
        QTest::newRow("Shift+Tab on the first wraps behind the last")
            << int(VK_TAB) << TShiftState(ssShift) << 0 << 4 << 4 << true << false;
        QTest::newRow("Tab on the last wraps before the first")
            << int(VK_TAB) << TShiftState() << 3 << 4 << -1 << false << true;
        QTest::newRow("Tab with one column")
            << int(VK_TAB) << TShiftState() << 0 << 1 << -1 << false << true;
        QTest::newRow("Ctrl+Right with one column")
            << int(VK_RIGHT) << TShiftState(ssCtrl) << 0 << 1 << 1 << false << true;
        QTest::newRow("Ctrl+Left")
            << int(VK_LEFT) << TShiftState(ssCtrl) << 3 << 4 << 1 << true << false;
        QTest::newRow("Ctrl+Right")
            << int(VK_RIGHT) << TShiftState(ssCtrl) << 0 << 4 << 3 << false << true;
        QTest::newRow("Right in the middle")
            << int(VK_RIGHT) << TShiftState() << 1 << 4 << 1 << false << true;
        QTest::newRow("Down is not sideways")
            << int(VK_DOWN) << TShiftState() << 1 << 4 << 1 << false << false;
    }
    void sidewaysMoves()
    {
        QFETCH(int, key);
        QFETCH(TShiftState, shift);
        QFETCH(int, index);
        QFETCH(int, count);
        QFETCH(int, newIndex);
        QFETCH(bool, left);
        QFETCH(bool, right);
        bool movesLeft = !left;
        bool movesRight = !right;
        JeStranovyPohyb(Word(key), shift, index, movesLeft, movesRight, count);
        QCOMPARE(index, newIndex);
        QCOMPARE(movesLeft, left);
        QCOMPARE(movesRight, right);
    }

    void valueMatch_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("match");
        QTest::newRow("one of several") << "id;Jmeno; stav"
                                        << "STAV" << true;
        QTest::newRow("Czech letters") << "příjmení;věk"
                                       << "PŘÍJMENÍ" << true;
        QTest::newRow("part of a name") << "prijmeni"
                                        << "prijm" << false;
        QTest::newRow("empty list") << ""
                                    << "x" << false;
    }
    void valueMatch()
    {
        QFETCH(QString, list);
        QFETCH(QString, value);
        QFETCH(bool, match);
        QCOMPARE(ValueMatch(list, value), match);
    }
};

QTEST_MAIN(TestGridKeys)
#include "tst_gridkeys.moc"
