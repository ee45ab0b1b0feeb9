#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/controls/NumEditOxa.h"
#include "support/TestSupport.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

using namespace oxa;

namespace {

// The starting edit, a chain of further edits, and the key as the starting
// edit's base control got it (0: consumed).
struct Form : test::TestForm
{
    TEditOxa *start = Add<TEditOxa>();
    QList<TEditOxa *> chain;
    Word seenKey = 0xFFFF;

    explicit Form(int chainLength = 0)
    {
        start->OnKeyDown = [this](QObject *, Word &key, TShiftState) { seenKey = key; };
        for (int i = 0; i < chainLength; ++i)
            chain.append(Add<TEditOxa>());
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
    void correction_data()
    {
        QTest::addColumn<bool>("korekce");
        QTest::addColumn<bool>("paste");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("changes"); // OnChange count of a paste

        const auto row = [](const char *name, bool korekce, bool paste, const char *input,
                            const char *expected, int changes) {
            QTest::newRow(name) << korekce << paste << QString(input) << QString(expected)
                                << changes;
        };
        row("typed all eight", true, false, "\"a\"e\"o\"u\"A\"E\"O\"U", "äëöüÄËÖÜ", 0);
        row("quote x, apostrophe a kept", true, false, "\"x'a", "\"x'a", 0);
        row("switched off", false, false, "Mull\"a", "Mull\"a", 0);
        // Both pairs in the first pass; the rewrite's pass finds nothing.
        row("pasted \"a\"o", true, true, "\"a\"o", "äö", 2);
        // One occurrence of a sequence per pass; each rewrite runs the next.
        row("pasted \"a\"a\"a", true, true, "\"a\"a\"a", "äää", 4);
        row("nothing, no loop", true, true, "x", "x", 1);
    }

    void correction()
    {
        QFETCH(bool, korekce);
        QFETCH(bool, paste);
        QFETCH(QString, input);
        QFETCH(QString, expected);
        Form form;
        QVERIFY(form.Show(form.start));
        form.start->SetKorekceTextu(korekce);
        int changed = 0;
        form.start->OnChange = [&](QObject *) { ++changed; };
        if (paste) {
            QGuiApplication::clipboard()->setText(input);
            form.ctrl(Qt::Key_V);
            QTEST(changed, "changes");
        } else {
            QTest::keyClicks(form.start, input);
            if (expected == input) // writing back an unchanged text keeps the undo history
                QVERIFY(form.start->isUndoAvailable());
        }
        QCOMPARE(form.start->text(), expected);
        QCOMPARE(form.start->cursorPosition(), expected.length());
    }

    void provedKorekciTextu_data()
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
    }

    void provedKorekciTextu()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QLineEdit edit(text); // any edit, without a change hook of its own
        edit.setCursorPosition(caret);
        QTEST(ProvedKorekciTextu(&edit), "changed");
        QTEST(edit.text(), "expected");
        QTEST(edit.cursorPosition(), "expectedCaret");
    }

    void chainTriesFourControlsAtMost_data()
    {
        QTest::addColumn<int>("firstEnabled"); // position in the chain, 1-based
        for (int i = 1; i <= 5; ++i)
            QTest::addRow("enabled at %d", i) << i;
    }

    void chainTriesFourControlsAtMost()
    {
        QFETCH(int, firstEnabled);
        Form form(5);
        form.start->SetFocDown(form.chain[0]); // each edit names the next one as FocDown
        for (int i = 0; i < 4; ++i)
            form.chain[i]->SetFocDown(form.chain[i + 1]);
        for (int i = 0; i + 1 < firstEnabled; ++i)
            form.chain[i]->setEnabled(false);
        QVERIFY(form.Show(form.start));
        form.ctrl(Qt::Key_Down);
        const bool reached = firstEnabled <= 4;
        QCOMPARE(form.chain[firstEnabled - 1]->hasFocus(), reached);
        QCOMPARE(form.start->hasFocus(), !reached);
        QCOMPARE(form.seenKey, Word(0));
    }

    void chainStaysInFamilyAndEndsCycles()
    {
        Form form(3);
        auto *derived = form.Add<TNumEditOxa>();
        auto *combo = form.Add<TComboBoxOxa>();
        form.start->SetFocRight(derived); // a derived edit is followed ...
        derived->SetFocRight(form.chain[0]);
        form.start->SetFocUp(combo); // ... a combo box is not
        combo->SetFocUp(form.chain[0]);
        form.start->SetFocDown(form.chain[1]); // two disabled edits naming each other
        form.chain[1]->SetFocDown(form.chain[2]);
        form.chain[2]->SetFocDown(form.chain[1]);
        for (QWidget *w : QList<QWidget *>{derived, combo, form.chain[1], form.chain[2]})
            w->setEnabled(false);
        QVERIFY(form.Show(form.start));

        form.ctrl(Qt::Key_Up);
        QVERIFY(form.start->hasFocus());
        QCOMPARE(form.seenKey, Word(0));
        form.ctrl(Qt::Key_Down);
        QVERIFY(form.start->hasFocus());
        form.ctrl(Qt::Key_Right);
        QVERIFY(form.chain[0]->hasFocus());
    }

    void neighbourWithoutMove()
    {
        test::MessageRecorder messages;
        Form form(1);
        for (int index : {fdUp, fdDown, fdLeft})
            form.start->SetFoc(index, form.chain[0]);
        form.chain[0]->hide();
        QVERIFY(form.Show(form.start));
        form.ctrl(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier); // not exactly Ctrl
        QCOMPARE(form.seenKey, VK_DOWN);
        QVERIFY(messages.Shown().isEmpty());

        // An enabled but hidden neighbour is asked all the same.
        form.ctrl(Qt::Key_Down);
        QCOMPARE(messages.Texts(), QStringList{CannotFocusMessage()});
        QVERIFY(form.start->hasFocus());
    }
};

QTEST_MAIN(TestEditOxa)
#include "tst_editoxa.moc"
