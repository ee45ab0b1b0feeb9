#include "oxa/controls/ButtonOxa.h"
#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/controls/LabeledEditOxa.h"
#include "oxa/controls/MemoOxa.h"
#include "support/TestSupport.h"

#include <QAbstractItemView>
#include <QTest>

using namespace oxa;

namespace {

// What every member does: plain Down keeps its meaning, Ctrl+Down leaves for
// FocDown, IsFocused and the focus colours follow the focus. Where the
// members differ: whether Ctrl+Left without FocLeft is swallowed, whether
// loading keeps a colour given before, and whether a control disabled while
// focused keeps its flag (its exit then runs disabled).
template<class T>
void checkMember(bool swallowsCtrlArrow, bool loadKeepsColour, bool disabledKeepsFlag)
{
    constexpr bool coloured = requires(T & t)
    {
        t.ActiveColor();
    };
    test::TestForm form;
    auto *next = form.Add<TEditOxa>();
    auto *control = form.Add<T>(60);
    control->SetFocDown(next);
    Word seenKey = 0xFFFF; // as the base control got it; 0 = consumed
    control->OnKeyDown = [&](QObject *, Word &key, TShiftState) { seenKey = key; };
    if constexpr (coloured) {
        control->SetDefaultColor(clCream);
        control->SetColor(clRed);
    }
    QVERIFY(form.Show(next));
    if constexpr (coloured)
        QCOMPARE(control->Color(), loadKeepsColour ? clRed : clCream);

    control->setFocus();
    QVERIFY(control->IsFocused());
    if constexpr (coloured)
        QCOMPARE(control->Color(), clYellow);
    if constexpr (!std::is_same_v<T, TButtonOxa>) { // a button's Down is Qt's focus move
        QTest::keyClick(control, Qt::Key_Down);
        QVERIFY(control->hasFocus());
    }
    QTest::keyClick(control, Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(seenKey, swallowsCtrlArrow ? Word(0) : VK_LEFT);
    QTest::keyClick(control, Qt::Key_Down, Qt::ControlModifier);
    QVERIFY(next->hasFocus());
    QVERIFY(!control->IsFocused());
    if constexpr (coloured)
        QCOMPARE(control->Color(), clCream);

    control->setFocus();
    control->setEnabled(false);
    QVERIFY(!control->hasFocus());
    QCOMPARE(control->IsFocused(), disabledKeepsFlag);
}

} // namespace

class TestSimpleMembers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void members_data()
    {
        QTest::addColumn<int>("member");
        QTest::addColumn<bool>("swallowsCtrlArrow");
        QTest::addColumn<bool>("loadKeepsColour");
        QTest::addColumn<bool>("disabledKeepsFlag");
        QTest::newRow("edit: no Loaded, colour only when enabled") << 0 << false << true << true;
        QTest::newRow("combo box: every Ctrl+arrow consumed") << 1 << true << false << false;
        QTest::newRow("memo") << 2 << false << false << false;
        QTest::newRow("labeled edit: Loaded keeps the colour") << 3 << false << true << false;
        QTest::newRow("button: flag only when enabled") << 4 << false << false << true;
    }

    void members()
    {
        QFETCH(int, member);
        QFETCH(bool, swallowsCtrlArrow);
        QFETCH(bool, loadKeepsColour);
        QFETCH(bool, disabledKeepsFlag);
        void (*const check[])(bool, bool, bool) = {
            &checkMember<TEditOxa>, &checkMember<TComboBoxOxa>, &checkMember<TMemoOxa>,
            &checkMember<TLabeledEditOxa>, &checkMember<TButtonOxa>};
        check[member](swallowsCtrlArrow, loadKeepsColour, disabledKeepsFlag);
    }

    void comboSpace_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("expected");
        QTest::newRow("next") << 3 << 0 << 1;
        QTest::newRow("wraps to first") << 3 << 2 << 0;
        QTest::newRow("single item") << 1 << 0 << 0;
    }

    void comboSpace()
    {
        QFETCH(int, count);
        QFETCH(int, index);
        test::TestForm form;
        auto *combo = form.Add<TComboBoxOxa>();
        for (int i = 0; i < count; ++i)
            combo->addItem(QString::number(i));
        combo->setCurrentIndex(index);
        int changed = 0;
        combo->OnChange = [&](QObject *) { ++changed; };
        QVERIFY(form.Show(combo));

        QTest::keyClick(combo, Qt::Key_Space);
        QTEST(combo->currentIndex(), "expected");
        QCOMPARE(changed, 1); // also for the single item
        QVERIFY(!combo->view()->isVisible());
    }

    // Tab leaves a memo unless it wants tabs, Ctrl+Tab types one; Enter
    // presses a focused button as Space does.
    void platformKeys()
    {
        test::TestForm form;
        auto *memo = form.Add<TMemoOxa>(60);
        auto *button = form.Add<TButtonOxa>();
        int clicks = 0;
        connect(button, &QPushButton::clicked, this, [&] { ++clicks; });
        QVERIFY(form.Show(memo));
        QTest::keyClick(memo, Qt::Key_Tab);
        QVERIFY(button->hasFocus());
        QTest::keyClick(button, Qt::Key_Enter, Qt::KeypadModifier);
        QTRY_COMPARE(clicks, 1);
        memo->setFocus();
        QTest::keyClick(memo, Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(memo->toPlainText(), QStringLiteral("\t"));
        memo->SetWantTabs(true);
        QTest::keyClick(memo, Qt::Key_Tab);
        QCOMPARE(memo->toPlainText(), QStringLiteral("\t\t"));
    }
};

QTEST_MAIN(TestSimpleMembers)
#include "tst_simplemembers.moc"
