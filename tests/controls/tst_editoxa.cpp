#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/toolkit/Catalogue.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QPointer>
#include <QTest>

using namespace oxa;

namespace {

// A member of the edit's family, as a derived edit of the library would be.
class TDerivedEdit : public TEditOxa
{
public:
    using TEditOxa::TEditOxa;
};

// Records the components whose removal the edit was notified of.
class TRecordingEdit : public TEditOxa
{
public:
    using TEditOxa::TEditOxa;
    QList<QObject *> removed;

protected:
    void Notification(QObject *component, TOperation operation) override
    {
        TEditOxa::Notification(component, operation);
        if (operation == opRemove)
            removed.append(component);
    }
};

// A shown window with a starting edit and a chain of further edits below it.
struct Form
{
    QWidget window;
    TEditOxa *start = nullptr;
    QList<TEditOxa *> chain;
    Word seenKey = 0xFFFF;

    explicit Form(int chainLength = 0)
    {
        window.resize(300, 40 + 30 * chainLength);
        start = place(new TEditOxa(&window), 0);
        start->OnKeyDown = [this](QObject *, Word &key, TShiftState) { seenKey = key; };
        for (int i = 0; i < chainLength; ++i)
            chain.append(place(new TEditOxa(&window), i + 1));
    }
    template <class T>
    T *place(T *control, int row)
    {
        control->setGeometry(10, 10 + 30 * row, 200, 24);
        return control;
    }
    bool show()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        start->setFocus();
        return start->hasFocus();
    }
    // Each edit of the chain names the next one as its FocDown.
    void linkDown()
    {
        start->SetFocDown(chain.first());
        for (int i = 0; i + 1 < chain.size(); ++i)
            chain[i]->SetFocDown(chain[i + 1]);
    }
};

void ctrlKey(QWidget *target, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
{
    QTest::keyClick(target, key, modifiers);
}

} // namespace

class TestEditOxa : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void correctionWhileTyping_data();
    void correctionWhileTyping();
    void pastedSequencesNeedFurtherPasses_data();
    void pastedSequencesNeedFurtherPasses();
    void nothingReplacedMeansOneChange();
    void correctionKeepsUndoOfPlainTyping();
    void provedKorekciTextu_data();
    void provedKorekciTextu();
    void getKorigovanySubString_data();
    void getKorigovanySubString();

    void coloursFollowFocus();
    void disabledNeighbourIsSkipped();
    void chainTriesFourControlsAtMost_data();
    void chainTriesFourControlsAtMost();
    void chainEndsAtAnotherFamily();
    void mutuallyDisabledPairEnds();
    void ctrlShiftArrowPassesThrough();
    void ctrlArrowWithoutNeighbourReachesEdit();
    void removedNeighbourIsClearedEverywhere();
    void setFocOutOfRangeStoresNothing();
    void hiddenNeighbourReportsToolkitError();
    void registration();
};

void TestEditOxa::correctionWhileTyping_data()
{
    QTest::addColumn<bool>("korekce");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("expected");

    QTest::newRow("Mull\"a") << true << "Mull\"a" << QStringLiteral("Mullä");
    QTest::newRow("all eight") << true << "\"a\"e\"o\"u\"A\"E\"O\"U"
                               << QStringLiteral("äëöüÄËÖÜ");
    QTest::newRow("quote x kept") << true << "\"x" << "\"x";
    QTest::newRow("apostrophe kept") << true << "'a" << "'a";
    QTest::newRow("capital kept") << true << "x\"A" << QStringLiteral("xÄ");
    QTest::newRow("switched off") << false << "Mull\"a" << "Mull\"a";
}

void TestEditOxa::correctionWhileTyping()
{
    QFETCH(bool, korekce);
    QFETCH(QString, typed);
    QFETCH(QString, expected);

    Form form;
    QVERIFY(form.show());
    form.start->SetKorekceTextu(korekce);
    QTest::keyClicks(form.start, typed);

    QCOMPARE(form.start->text(), expected);
    QCOMPARE(form.start->cursorPosition(), expected.length());
}

void TestEditOxa::pastedSequencesNeedFurtherPasses_data()
{
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("changes");

    // Both pairs go in the first pass; the second finds nothing.
    QTest::newRow("\"a\"o") << "\"a\"o" << QStringLiteral("äö") << 2;
    // A pass replaces the first occurrence only; the rewrite runs the next.
    QTest::newRow("\"a\"a\"a") << "\"a\"a\"a" << QStringLiteral("äää") << 4;
}

void TestEditOxa::pastedSequencesNeedFurtherPasses()
{
    QFETCH(QString, pasted);
    QFETCH(QString, expected);
    QFETCH(int, changes);

    Form form;
    QVERIFY(form.show());
    form.start->SetKorekceTextu(true);
    int changed = 0;
    form.start->OnChange = [&](QObject *sender) {
        QCOMPARE(sender, form.start);
        ++changed;
    };
    QGuiApplication::clipboard()->setText(pasted);
    ctrlKey(form.start, Qt::Key_V);

    QCOMPARE(form.start->text(), expected);
    QCOMPARE(form.start->cursorPosition(), expected.length());
    QCOMPARE(changed, changes);
}

void TestEditOxa::nothingReplacedMeansOneChange()
{
    Form form;
    QVERIFY(form.show());
    form.start->SetKorekceTextu(true);
    int changed = 0;
    form.start->OnChange = [&](QObject *) { ++changed; };
    QTest::keyClick(form.start, 'x');
    QCOMPARE(changed, 1);
    form.start->setText(QStringLiteral("x"));
    QCOMPARE(changed, 1);
}

void TestEditOxa::correctionKeepsUndoOfPlainTyping()
{
    Form form;
    QVERIFY(form.show());
    form.start->SetKorekceTextu(true);
    QTest::keyClicks(form.start, QStringLiteral("ab"));
    QVERIFY(form.start->isUndoAvailable());
    ctrlKey(form.start, Qt::Key_Z);
    QVERIFY(form.start->text().length() < 2);
}

void TestEditOxa::provedKorekciTextu_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("caret");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("expectedCaret");
    QTest::addColumn<bool>("changed");

    QTest::newRow("caret before pair") << "x\"ay" << 1 << QStringLiteral("xäy") << 1 << true;
    QTest::newRow("caret after pair") << "x\"ay" << 3 << QStringLiteral("xäy") << 2 << true;
    // The pair starts right before the caret: 1-based p equals the caret.
    QTest::newRow("caret inside pair") << "x\"ay" << 2 << QStringLiteral("xäy") << 1 << true;
    QTest::newRow("caret at end") << "x\"ay" << 4 << QStringLiteral("xäy") << 3 << true;
    QTest::newRow("first occurrence only") << "\"a\"a" << 4 << QStringLiteral("ä\"a") << 3 << true;
    QTest::newRow("nothing to do") << "abc" << 1 << "abc" << 1 << false;
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
    QVERIFY(!edit.hasSelectedText());
}

void TestEditOxa::getKorigovanySubString_data()
{
    QTest::addColumn<QString>("s");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("changed");

    QTest::newRow("\"o") << "\"o" << QStringLiteral("ö") << true;
    QTest::newRow("\"U") << "\"U" << QStringLiteral("Ü") << true;
    QTest::newRow("\"oo, not whole") << "\"oo" << "\"oo" << false;
    QTest::newRow("\"x") << "\"x" << "\"x" << false;
    QTest::newRow("empty") << "" << "" << false;
}

void TestEditOxa::getKorigovanySubString()
{
    QFETCH(QString, s);
    QFETCH(QString, expected);
    QFETCH(bool, changed);

    bool flag = !changed;
    QCOMPARE(GetKorigovanySubString(s, flag), expected);
    QCOMPARE(flag, changed);
}

void TestEditOxa::coloursFollowFocus()
{
    Form form(1);
    TEditOxa *other = form.chain.first();
    other->SetActiveColor(clAqua);
    other->SetDefaultColor(clCream);
    QCOMPARE(form.start->Color(), clWindow);
    QVERIFY(form.show());

    QCOMPARE(form.start->Color(), clYellow);
    QCOMPARE(form.start->palette().color(QPalette::Base), ColorToQColor(clYellow));
    QVERIFY(form.start->IsFocused());

    other->setFocus();
    QCOMPARE(form.start->Color(), clWindow);
    QVERIFY(!form.start->IsFocused());
    QCOMPARE(other->Color(), clAqua);

    form.start->setFocus();
    QCOMPARE(other->Color(), clCream);
    QCOMPARE(other->palette().color(QPalette::Base), ColorToQColor(clCream));
}

void TestEditOxa::disabledNeighbourIsSkipped()
{
    Form form(2);
    form.start->SetFocRight(form.chain[0]);
    form.chain[0]->SetFocRight(form.chain[1]);
    form.chain[0]->setEnabled(false);
    QVERIFY(form.show());

    ctrlKey(form.start, Qt::Key_Right);
    QVERIFY(form.chain[1]->hasFocus());
    QCOMPARE(form.seenKey, Word(0));
}

void TestEditOxa::chainTriesFourControlsAtMost_data()
{
    QTest::addColumn<int>("firstEnabled");
    QTest::addColumn<bool>("reached");

    for (int i = 1; i <= 4; ++i)
        QTest::addRow("enabled at %d", i) << i << true;
    QTest::newRow("enabled at 5") << 5 << false;
}

void TestEditOxa::chainTriesFourControlsAtMost()
{
    QFETCH(int, firstEnabled);
    QFETCH(bool, reached);

    Form form(5);
    form.linkDown();
    for (int i = 0; i + 1 < firstEnabled; ++i)
        form.chain[i]->setEnabled(false);
    QVERIFY(form.show());

    ctrlKey(form.start, Qt::Key_Down);
    QCOMPARE(form.chain[firstEnabled - 1]->hasFocus(), reached);
    QCOMPARE(form.start->hasFocus(), !reached);
    QCOMPARE(form.seenKey, Word(0));
}

void TestEditOxa::chainEndsAtAnotherFamily()
{
    Form form(2);
    auto *derived = form.place(new TDerivedEdit(&form.window), 3);
    auto *combo = form.place(new TComboBoxOxa(&form.window), 4);
    // A derived edit is followed ...
    form.start->SetFocDown(derived);
    derived->SetFocDown(form.chain[0]);
    derived->setEnabled(false);
    // ... a combo box is not, even though it knows a neighbour.
    form.start->SetFocUp(combo);
    combo->SetFocUp(form.chain[1]);
    combo->setEnabled(false);
    QVERIFY(form.show());

    ctrlKey(form.start, Qt::Key_Up);
    QVERIFY(form.start->hasFocus());
    QCOMPARE(form.seenKey, Word(0));
    ctrlKey(form.start, Qt::Key_Down);
    QVERIFY(form.chain[0]->hasFocus());
}

void TestEditOxa::mutuallyDisabledPairEnds()
{
    Form form(2);
    form.start->SetFocDown(form.chain[0]);
    form.chain[0]->SetFocDown(form.chain[1]);
    form.chain[1]->SetFocDown(form.chain[0]);
    form.chain[0]->setEnabled(false);
    form.chain[1]->setEnabled(false);
    QVERIFY(form.show());

    ctrlKey(form.start, Qt::Key_Down);
    QVERIFY(form.start->hasFocus());
    QCOMPARE(form.seenKey, Word(0));
}

void TestEditOxa::ctrlShiftArrowPassesThrough()
{
    Form form(1);
    form.linkDown();
    QVERIFY(form.show());

    ctrlKey(form.start, Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(form.start->hasFocus());
    QCOMPARE(form.seenKey, VK_DOWN);
    ctrlKey(form.start, Qt::Key_Down, Qt::NoModifier);
    QVERIFY(form.start->hasFocus());
}

void TestEditOxa::ctrlArrowWithoutNeighbourReachesEdit()
{
    Form form(1);
    form.start->SetFocRight(form.chain[0]);
    QVERIFY(form.show());
    form.start->setText(QStringLiteral("abc def"));

    ctrlKey(form.start, Qt::Key_Left);
    QCOMPARE(form.start->cursorPosition(), 4);
    QCOMPARE(form.seenKey, VK_LEFT);
}

void TestEditOxa::removedNeighbourIsClearedEverywhere()
{
    Form form(1);
    QPointer<TEditOxa> neighbour = form.chain[0];
    form.start->SetFocUp(neighbour);
    form.start->SetFocLeft(neighbour);
    form.start->SetFocDown(neighbour);
    QVERIFY(form.show());

    delete neighbour;
    QCOMPARE(form.start->FocUp(), nullptr);
    QCOMPARE(form.start->FocLeft(), nullptr);
    QCOMPARE(form.start->FocDown(), nullptr);
    ctrlKey(form.start, Qt::Key_Up);
    QCOMPARE(form.seenKey, VK_UP);
    QVERIFY(form.start->hasFocus());
}

void TestEditOxa::setFocOutOfRangeStoresNothing()
{
    QWidget window;
    auto *edit = new TRecordingEdit(&window);
    auto *other = new TEditOxa(&window);
    edit->SetFoc(5, other);
    QCOMPARE(edit->FocUp(), nullptr);
    QCOMPARE(edit->FocDown(), nullptr);
    QCOMPARE(edit->FocLeft(), nullptr);
    QCOMPARE(edit->FocRight(), nullptr);

    delete other;
    QCOMPARE(edit->removed.size(), 1);
}

void TestEditOxa::hiddenNeighbourReportsToolkitError()
{
    test::MessageRecorder messages;
    Form form(1);
    form.linkDown();
    form.chain[0]->hide();
    QVERIFY(form.show());

    ctrlKey(form.start, Qt::Key_Down);
    QCOMPARE(messages.Texts(), QStringList{CannotFocusMessage()});
    QCOMPARE(messages.Shown().first().Type, mtError);
    QVERIFY(form.start->hasFocus());
}

void TestEditOxa::registration()
{
    Catalogue::Instance().Clear();
    RegisterEditOxa();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TEditOxa"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QCOMPARE(entry->Unit, QStringLiteral("EditOxa"));
    QWidget owner;
    QObject *created = Catalogue::Instance().Create(QStringLiteral("TEditOxa"), &owner);
    auto *edit = qobject_cast<TEditOxa *>(created);
    QVERIFY(edit);
    QCOMPARE(edit->property("MapaZnaku").toBool(), true);
    QCOMPARE(edit->property("KorekceTextu").toBool(), false);
    QCOMPARE(edit->property("ActiveColor").toUInt(), clYellow);
    QCOMPARE(edit->property("DefaultColor").toUInt(), clWindow);
    Catalogue::Instance().Clear();
}

QTEST_MAIN(TestEditOxa)
#include "tst_editoxa.moc"
