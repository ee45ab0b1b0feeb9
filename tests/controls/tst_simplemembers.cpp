#include "oxa/controls/ButtonOxa.h"
#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/controls/LabeledEditOxa.h"
#include "oxa/controls/MemoOxa.h"
#include "oxa/toolkit/Catalogue.h"
#include "support/TestSupport.h"

#include <QAbstractItemView>
#include <QHash>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTextBlock>

using namespace oxa;

namespace {

// The members with their Loaded made callable, as the form loader calls it.
template <class T>
class TLoadable : public T
{
public:
    using T::T;
    using T::Loaded;
};

// A shown window holding the control under test and an edit to move to.
template <class T>
struct Form
{
    QWidget window;
    TLoadable<T> *control = new TLoadable<T>(&window);
    TEditOxa *edit = new TEditOxa(&window);
    Word seenKey = 0xFFFF;

    Form()
    {
        window.resize(300, 200);
        control->setGeometry(80, 40, 160, 80);
        edit->setGeometry(80, 150, 160, 24);
        control->OnKeyDown = [this](QObject *, Word &key, TShiftState) { seenKey = key; };
    }
    bool show()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        control->setFocus();
        return control->hasFocus();
    }
};

} // namespace

class TestSimpleMembers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comboSwallowsCtrlArrowWithoutNeighbour();
    void comboMovesAndColours();
    void comboSpace_data();
    void comboSpace();
    void comboReportsTypedText();

    void memoPlainDownMovesCaret();
    void memoCtrlDownLeaves();

    void loadedResetsColour();
    void labeledEditLoadedKeepsColour();
    void labeledEditPlacesLabel_data();
    void labeledEditPlacesLabel();
    void labeledEditLabelFollowsEdit();
    void labeledEditFocus();

    void buttonFlagOnly();

    void registration_data();
    void registration();
};

void TestSimpleMembers::comboSwallowsCtrlArrowWithoutNeighbour()
{
    Form<TComboBoxOxa> form;
    form.control->setEditable(true);
    form.control->setEditText(QStringLiteral("abc def"));
    QVERIFY(form.show());
    form.control->lineEdit()->end(false);

    QTest::keyClick(form.control, Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(form.seenKey, Word(0));
    QCOMPARE(form.control->lineEdit()->cursorPosition(), 7);
    QTest::keyClick(form.control, Qt::Key_Left);
    QCOMPARE(form.control->lineEdit()->cursorPosition(), 6);
}

void TestSimpleMembers::comboMovesAndColours()
{
    Form<TComboBoxOxa> form;
    form.control->addItems({QStringLiteral("a"), QStringLiteral("b")});
    form.control->SetFocDown(form.edit);
    QVERIFY(form.show());
    QVERIFY(form.control->IsFocused());
    QCOMPARE(form.control->Color(), clYellow);

    QTest::keyClick(form.control, Qt::Key_Down, Qt::ControlModifier);
    QVERIFY(form.edit->hasFocus());
    QCOMPARE(form.control->currentIndex(), 0);
    QVERIFY(!form.control->IsFocused());
    QCOMPARE(form.control->Color(), clWindow);
}

void TestSimpleMembers::comboSpace_data()
{
    QTest::addColumn<bool>("editable");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("expected");
    QTest::addColumn<int>("changes");

    QTest::newRow("next") << false << 3 << 0 << 1 << 1;
    QTest::newRow("wraps to first") << false << 3 << 2 << 0 << 1;
    QTest::newRow("single item") << false << 1 << 0 << 0 << 1;
    QTest::newRow("editable types") << true << 3 << 2 << 2 << 1;
}

void TestSimpleMembers::comboSpace()
{
    QFETCH(bool, editable);
    QFETCH(int, count);
    QFETCH(int, index);
    QFETCH(int, expected);
    QFETCH(int, changes);

    Form<TComboBoxOxa> form;
    form.control->setEditable(editable);
    for (int i = 0; i < count; ++i)
        form.control->addItem(QString::number(i));
    form.control->setCurrentIndex(index);
    int changed = 0;
    form.control->OnChange = [&](QObject *) { ++changed; };
    QVERIFY(form.show());

    QTest::keyClick(form.control, Qt::Key_Space);
    QCOMPARE(form.control->currentIndex(), expected);
    QCOMPARE(changed, changes);
    QCOMPARE(form.control->view()->isVisible(), false);
    if (editable)
        QCOMPARE(form.control->currentText(), QStringLiteral("2 "));
}

void TestSimpleMembers::comboReportsTypedText()
{
    Form<TComboBoxOxa> form;
    form.control->setEditable(true);
    form.control->addItems({QStringLiteral("a"), QStringLiteral("b")});
    int changed = 0;
    form.control->OnChange = [&](QObject *) { ++changed; };
    form.control->setCurrentIndex(1);
    QCOMPARE(changed, 0); // the program's own change is not reported
    QVERIFY(form.show());
    QTest::keyClick(form.control, Qt::Key_Up);
    QCOMPARE(changed, 1);
    QTest::keyClick(form.control, 'x');
    QCOMPARE(changed, 2);
}

void TestSimpleMembers::memoPlainDownMovesCaret()
{
    Form<TMemoOxa> form;
    form.control->setPlainText(QStringLiteral("one\ntwo"));
    form.control->SetFocDown(form.edit);
    QVERIFY(form.show());
    form.control->moveCursor(QTextCursor::Start);

    QTest::keyClick(form.control, Qt::Key_Down);
    QVERIFY(form.control->hasFocus());
    QCOMPARE(form.control->textCursor().blockNumber(), 1);
    QCOMPARE(form.seenKey, VK_DOWN);
}

void TestSimpleMembers::memoCtrlDownLeaves()
{
    Form<TMemoOxa> form;
    form.control->setPlainText(QStringLiteral("one\ntwo"));
    form.control->SetFocDown(form.edit);
    QVERIFY(form.show());
    form.control->moveCursor(QTextCursor::Start);
    QVERIFY(form.control->IsFocused());
    QCOMPARE(form.control->Color(), clYellow);

    QTest::keyClick(form.control, Qt::Key_Down, Qt::ControlModifier);
    QVERIFY(form.edit->hasFocus());
    QCOMPARE(form.control->textCursor().blockNumber(), 0);
    QVERIFY(!form.control->IsFocused());
    QCOMPARE(form.control->Color(), clWindow);
}

void TestSimpleMembers::loadedResetsColour()
{
    TLoadable<TComboBoxOxa> combo;
    TLoadable<TMemoOxa> memo;
    combo.SetDefaultColor(clCream);
    combo.SetColor(clRed);
    memo.SetDefaultColor(clAqua);
    combo.Loaded();
    memo.Loaded();
    QCOMPARE(combo.Color(), clCream);
    QCOMPARE(memo.Color(), clAqua);
}

void TestSimpleMembers::labeledEditLoadedKeepsColour()
{
    TLoadable<TLabeledEditOxa> edit;
    edit.SetDefaultColor(clCream);
    edit.SetColor(clRed);
    edit.Loaded();
    QCOMPARE(edit.Color(), clRed);
}

void TestSimpleMembers::labeledEditPlacesLabel_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("spacing");

    QTest::newRow("above") << int(TLabeledEditOxa::lpAbove) << 3;
    QTest::newRow("left") << int(TLabeledEditOxa::lpLeft) << 5;
    QTest::newRow("below") << int(TLabeledEditOxa::lpBelow) << 0;
    QTest::newRow("right") << int(TLabeledEditOxa::lpRight) << 2;
}

void TestSimpleMembers::labeledEditPlacesLabel()
{
    QFETCH(int, position);
    QFETCH(int, spacing);

    QWidget window;
    auto *edit = new TLabeledEditOxa(&window);
    edit->SetLabelCaption(QStringLiteral("Příjmení:"));
    edit->SetLabelSpacing(spacing);
    edit->SetLabelPosition(TLabeledEditOxa::TLabelPosition(position));
    edit->setGeometry(100, 50, 120, 24);
    window.show(); // a hidden edit hears of its moves when it is shown
    QLabel *label = edit->EditLabel();
    QCOMPARE(label->parentWidget(), &window);
    QCOMPARE(label->buddy(), edit);
    QCOMPARE(label->size(), label->sizeHint());

    const QRect l = label->geometry();
    const QRect e = edit->geometry();
    switch (TLabeledEditOxa::TLabelPosition(position)) {
    case TLabeledEditOxa::lpAbove:
        QCOMPARE(l.left(), e.left());
        QCOMPARE(l.bottom() + 1 + spacing, e.top());
        break;
    case TLabeledEditOxa::lpBelow:
        QCOMPARE(l.left(), e.left());
        QCOMPARE(l.top(), e.bottom() + 1 + spacing);
        break;
    case TLabeledEditOxa::lpLeft:
        QCOMPARE(l.right() + 1 + spacing, e.left());
        QVERIFY(qAbs(l.center().y() - e.center().y()) <= 1);
        break;
    case TLabeledEditOxa::lpRight:
        QCOMPARE(l.left(), e.right() + 1 + spacing);
        QVERIFY(qAbs(l.center().y() - e.center().y()) <= 1);
        break;
    }
}

void TestSimpleMembers::labeledEditLabelFollowsEdit()
{
    QWidget window;
    auto *edit = new TLabeledEditOxa;
    QPointer<QLabel> label = edit->EditLabel();
    edit->SetLabelCaption(QStringLiteral("Jméno:"));
    edit->setParent(&window);
    edit->move(20, 60);
    QCOMPARE(label->parentWidget(), &window);
    QVERIFY(test::ShowAndActivate(&window));
    QVERIFY(label->isVisible());

    edit->hide();
    QVERIFY(!label->isVisible());
    edit->show();
    QVERIFY(label->isVisible());
    edit->setEnabled(false);
    QVERIFY(!label->isEnabled());

    delete edit;
    QVERIFY(label.isNull());
}

void TestSimpleMembers::labeledEditFocus()
{
    Form<TLabeledEditOxa> form;
    form.control->SetFocRight(form.edit);
    QVERIFY(form.show());
    QVERIFY(form.control->IsFocused());
    QCOMPARE(form.control->Color(), clYellow);

    QTest::keyClick(form.control, Qt::Key_Right, Qt::ControlModifier);
    QVERIFY(form.edit->hasFocus());
    QVERIFY(!form.control->IsFocused());
    QCOMPARE(form.control->Color(), clWindow);
}

void TestSimpleMembers::buttonFlagOnly()
{
    Form<TButtonOxa> form;
    form.control->SetFocLeft(form.edit);
    const QColor face = form.control->palette().color(QPalette::Button);
    QVERIFY(form.show());
    QVERIFY(form.control->IsFocused());
    QCOMPARE(form.control->palette().color(QPalette::Button), face);

    QTest::keyClick(form.control, Qt::Key_Left, Qt::ControlModifier);
    QVERIFY(form.edit->hasFocus());
    QVERIFY(!form.control->IsFocused());

    // Disabled while focused: the exit is not followed, the flag stays.
    form.control->setFocus();
    QVERIFY(form.control->IsFocused());
    form.control->setEnabled(false);
    QVERIFY(!form.control->hasFocus());
    QVERIFY(form.control->IsFocused());
}

void TestSimpleMembers::registration_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("unit");

    QTest::newRow("combo") << "TComboBoxOxa" << "ComboBoxOxa";
    QTest::newRow("memo") << "TMemoOxa" << "MemoOxa";
    QTest::newRow("labeled") << "TLabeledEditOxa" << "LabeledEditOxa";
    QTest::newRow("button") << "TButtonOxa" << "ButtonOxa";
}

void TestSimpleMembers::registration()
{
    QFETCH(QString, className);
    QFETCH(QString, unit);
    const QHash<QString, void (*)()> registerOf = {
        {"ComboBoxOxa", &RegisterComboBoxOxa},
        {"MemoOxa", &RegisterMemoOxa},
        {"LabeledEditOxa", &RegisterLabeledEditOxa},
        {"ButtonOxa", &RegisterButtonOxa},
    };

    Catalogue::Instance().Clear();
    registerOf.value(unit)();
    const TComponentEntry *entry = Catalogue::Instance().Find(className);
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QCOMPARE(entry->Unit, unit);
    QWidget owner;
    QObject *created = Catalogue::Instance().Create(className, &owner);
    QVERIFY(created);
    QCOMPARE(QString::fromLatin1(created->metaObject()->className()), "oxa::" + className);
    QCOMPARE(created->property("FocUp").value<QWidget *>(), nullptr);
    Catalogue::Instance().Clear();
}

QTEST_MAIN(TestSimpleMembers)
#include "tst_simplemembers.moc"
