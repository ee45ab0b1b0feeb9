#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/EditOxa.h"
#include "support/TestSupport.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

using namespace oxa;

namespace {

class TDerivedEdit : public TEditOxa // a member of the edit's family
{
    using TEditOxa::TEditOxa;
};

class TRecordingEdit : public TEditOxa // counts removal notifications
{
public:
    int removals = 0;

protected:
    void Notification(QObject *component, TOperation operation) override
    {
        TEditOxa::Notification(component, operation);
        removals += operation == opRemove;
    }
};

// A shown window: the starting edit and a chain of further edits.
struct Form
{
    QWidget window;
    TEditOxa *start = new TEditOxa(&window);
    QList<TEditOxa *> chain;
    Word seenKey = 0xFFFF; // the key as the base control got it; 0 = consumed

    explicit Form(int chainLength = 0)
    {
        start->OnKeyDown = [this](QObject *, Word &key, TShiftState) { seenKey = key; };
        for (int i = 0; i < chainLength; ++i)
            chain.append(new TEditOxa(&window));
    }
    bool show()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        start->setFocus();
        return start->hasFocus();
    }
    void linkDown() // each edit names the next one as FocDown
    {
        start->SetFocDown(chain.first());
        for (int i = 0; i + 1 < chain.size(); ++i)
            chain[i]->SetFocDown(chain[i + 1]);
    }
    void ctrl(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        QTest::keyClick(start, key, modifiers);
    }
};

} // namespace

class TestEditOxa : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void correction_data();
    void correction();
    void correctionKeepsUndo();
    void provedKorekciTextu_data();
    void provedKorekciTextu();
    void getKorigovanySubString_data();
    void getKorigovanySubString();

    void coloursFollowFocus();
    void chainTriesFourControlsAtMost_data();
    void chainTriesFourControlsAtMost();
    void chainStaysInFamilyAndEndsCycles();
    void keysWithoutMovePassThrough();
    void removedNeighbourIsCleared();
    void hiddenNeighbourReportsToolkitError();
};

void TestEditOxa::correction_data()
{
    QTest::addColumn<bool>("korekce");
    QTest::addColumn<bool>("paste");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("changes"); // OnChange count of a paste

    QTest::newRow("typed Mull\"a") << true << false << "Mull\"a" << QStringLiteral("Mullä") << 0;
    QTest::newRow("typed all eight") << true << false << "\"a\"e\"o\"u\"A\"E\"O\"U"
                                     << QStringLiteral("äëöüÄËÖÜ") << 0;
    QTest::newRow("quote x kept") << true << false << "\"x" << "\"x" << 0;
    QTest::newRow("apostrophe kept") << true << false << "'a" << "'a" << 0;
    QTest::newRow("switched off") << false << false << "Mull\"a" << "Mull\"a" << 0;
    // Both pairs in the first pass; the rewrite's pass finds nothing.
    QTest::newRow("pasted \"a\"o") << true << true << "\"a\"o" << QStringLiteral("äö") << 2;
    // One occurrence of a sequence per pass; each rewrite runs the next.
    QTest::newRow("pasted \"a\"a\"a") << true << true << "\"a\"a\"a" << QStringLiteral("äää") << 4;
    QTest::newRow("nothing, no loop") << true << true << "x" << "x" << 1;
}

void TestEditOxa::correction()
{
    QFETCH(bool, korekce);
    QFETCH(bool, paste);
    QFETCH(QString, input);
    QFETCH(QString, expected);
    QFETCH(int, changes);

    Form form;
    QVERIFY(form.show());
    form.start->SetKorekceTextu(korekce);
    int changed = 0;
    form.start->OnChange = [&](QObject *) { ++changed; };
    if (paste) {
        QGuiApplication::clipboard()->setText(input);
        form.ctrl(Qt::Key_V);
        QCOMPARE(changed, changes);
    } else {
        QTest::keyClicks(form.start, input);
    }
    QCOMPARE(form.start->text(), expected);
    QCOMPARE(form.start->cursorPosition(), expected.length());
}

void TestEditOxa::correctionKeepsUndo()
{
    Form form;
    QVERIFY(form.show());
    form.start->SetKorekceTextu(true);
    QTest::keyClicks(form.start, QStringLiteral("ab"));
    QVERIFY(form.start->isUndoAvailable());
}

void TestEditOxa::provedKorekciTextu_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("caret");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("expectedCaret");
    QTest::addColumn<bool>("changed");

    QTest::newRow("caret before pair") << "x\"ay" << 1 << QStringLiteral("xäy") << 1 << true;
    // The 1-based position of the pair equals the 0-based caret.
    QTest::newRow("caret inside pair") << "x\"ay" << 2 << QStringLiteral("xäy") << 1 << true;
    QTest::newRow("caret after pair") << "x\"ay" << 3 << QStringLiteral("xäy") << 2 << true;
    QTest::newRow("first occurrence only") << "\"a\"a" << 4 << QStringLiteral("ä\"a") << 3 << true;
    QTest::newRow("empty") << "" << 0 << "" << 0 << false;
}

void TestEditOxa::provedKorekciTextu()
{
    QFETCH(QString, text);
    QFETCH(int, caret);
    QFETCH(QString, expected);
    QFETCH(int, expectedCaret);
    QFETCH(bool, changed);

    QLineEdit edit(text); // any edit, without a change hook of its own
    edit.setCursorPosition(caret);
    QCOMPARE(ProvedKorekciTextu(&edit), changed);
    QCOMPARE(edit.text(), expected);
    QCOMPARE(edit.cursorPosition(), expectedCaret);
}

void TestEditOxa::getKorigovanySubString_data()
{
    QTest::addColumn<QString>("s");
    QTest::addColumn<QString>("expected");

    QTest::newRow("\"o") << "\"o" << QStringLiteral("ö");
    QTest::newRow("\"U") << "\"U" << QStringLiteral("Ü");
    QTest::newRow("\"oo, not whole") << "\"oo" << "\"oo";
    QTest::newRow("\"x") << "\"x" << "\"x";
}

void TestEditOxa::getKorigovanySubString()
{
    QFETCH(QString, s);
    QFETCH(QString, expected);
    bool changed = expected == s;
    QCOMPARE(GetKorigovanySubString(s, changed), expected);
    QCOMPARE(changed, expected != s);
}

void TestEditOxa::coloursFollowFocus()
{
    Form form(1);
    TEditOxa *other = form.chain.first();
    other->SetActiveColor(clAqua);
    other->SetDefaultColor(clCream);
    QCOMPARE(form.start->Color(), clWindow);
    QVERIFY(form.show());
    QCOMPARE(form.start->palette().color(QPalette::Base), ColorToQColor(clYellow));
    QVERIFY(form.start->IsFocused());

    other->setFocus();
    QCOMPARE(form.start->Color(), clWindow);
    QVERIFY(!form.start->IsFocused());
    QCOMPARE(other->Color(), clAqua);
    form.start->setFocus();
    QCOMPARE(other->palette().color(QPalette::Base), ColorToQColor(clCream));
}

void TestEditOxa::chainTriesFourControlsAtMost_data()
{
    QTest::addColumn<int>("firstEnabled"); // position in the chain, 1-based
    for (int i = 1; i <= 5; ++i)
        QTest::addRow("enabled at %d", i) << i;
}

void TestEditOxa::chainTriesFourControlsAtMost()
{
    QFETCH(int, firstEnabled);
    Form form(5);
    form.linkDown();
    for (int i = 0; i + 1 < firstEnabled; ++i)
        form.chain[i]->setEnabled(false);
    QVERIFY(form.show());

    form.ctrl(Qt::Key_Down);
    const bool reached = firstEnabled <= 4;
    QCOMPARE(form.chain[firstEnabled - 1]->hasFocus(), reached);
    QCOMPARE(form.start->hasFocus(), !reached);
    QCOMPARE(form.seenKey, Word(0));
}

void TestEditOxa::chainStaysInFamilyAndEndsCycles()
{
    Form form(3);
    auto *derived = new TDerivedEdit(&form.window);
    auto *combo = new TComboBoxOxa(&form.window);
    form.start->SetFocRight(derived); // a derived edit is followed ...
    derived->SetFocRight(form.chain[0]);
    form.start->SetFocUp(combo); // ... a combo box is not
    combo->SetFocUp(form.chain[0]);
    form.start->SetFocDown(form.chain[1]); // two disabled edits naming each other
    form.chain[1]->SetFocDown(form.chain[2]);
    form.chain[2]->SetFocDown(form.chain[1]);
    const QList<QWidget *> disabled = {derived, combo, form.chain[1], form.chain[2]};
    for (QWidget *w : disabled)
        w->setEnabled(false);
    QVERIFY(form.show());

    form.ctrl(Qt::Key_Up);
    QVERIFY(form.start->hasFocus());
    QCOMPARE(form.seenKey, Word(0));
    form.ctrl(Qt::Key_Down);
    QVERIFY(form.start->hasFocus());
    form.ctrl(Qt::Key_Right);
    QVERIFY(form.chain[0]->hasFocus());
}

void TestEditOxa::keysWithoutMovePassThrough()
{
    Form form(1);
    form.linkDown();
    QVERIFY(form.show());
    form.ctrl(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(form.start->hasFocus());
    QCOMPARE(form.seenKey, VK_DOWN);

    // No FocLeft: the edit itself moves the caret a word to the left.
    form.start->setText(QStringLiteral("abc def"));
    form.ctrl(Qt::Key_Left);
    QCOMPARE(form.start->cursorPosition(), 4);
    QCOMPARE(form.seenKey, VK_LEFT);
}

void TestEditOxa::removedNeighbourIsCleared()
{
    Form form(1);
    TEditOxa *neighbour = form.chain[0];
    form.start->SetFocUp(neighbour);
    form.start->SetFocLeft(neighbour);
    QVERIFY(form.show());
    delete neighbour;
    QCOMPARE(form.start->FocUp(), nullptr);
    QCOMPARE(form.start->FocLeft(), nullptr);
    form.ctrl(Qt::Key_Up);
    QCOMPARE(form.seenKey, VK_UP);

    // An index outside 1..4 stores nothing but still asks to be told.
    TRecordingEdit recorder;
    auto *other = new QWidget;
    recorder.SetFoc(5, other);
    QVERIFY(!recorder.FocUp() && !recorder.FocDown() && !recorder.FocLeft() && !recorder.FocRight());
    delete other;
    QCOMPARE(recorder.removals, 1);
}

void TestEditOxa::hiddenNeighbourReportsToolkitError()
{
    test::MessageRecorder messages;
    Form form(1);
    form.linkDown();
    form.chain[0]->hide();
    QVERIFY(form.show());

    form.ctrl(Qt::Key_Down);
    QCOMPARE(messages.Texts(), QStringList{CannotFocusMessage()});
    QCOMPARE(messages.Shown().first().Type, mtError);
    QVERIFY(form.start->hasFocus());
}

QTEST_MAIN(TestEditOxa)
#include "tst_editoxa.moc"
