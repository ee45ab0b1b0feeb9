#include "oxa/controls/ButtonOxa.h"
#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/controls/LabeledEditOxa.h"
#include "oxa/controls/MemoOxa.h"
#include "oxa/toolkit/Catalogue.h"
#include "support/TestSupport.h"

#include <QAbstractItemView>
#include <QHash>
#include <QPointer>
#include <QTest>

using namespace oxa;

namespace {

template <class T>
class TLoadable : public T // Loaded made callable, as the form loader calls it
{
public:
    using T::T;
    using T::Loaded;
};

// A shown window: the control under test and an edit to move to.
template <class T>
struct Form
{
    QWidget window;
    TLoadable<T> *control = new TLoadable<T>(&window);
    TEditOxa *edit = new TEditOxa(&window);
    Word seenKey = 0xFFFF; // the key as the base control got it; 0 = consumed

    Form()
    {
        control->setGeometry(80, 40, 160, 80);
        edit->setGeometry(80, 150, 160, 24);
        control->OnKeyDown = [this](QObject *, Word &key, TShiftState) { seenKey = key; };
    }
    bool show()
    {
        window.resize(300, 200);
        if (!test::ShowAndActivate(&window))
            return false;
        control->setFocus();
        return control->hasFocus();
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(control, key, modifiers);
    }
};

} // namespace

class TestSimpleMembers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comboSwallowsCtrlArrow();
    void comboSpace_data();
    void comboSpace();
    void memoArrows();
    void loadedColour();
    void labeledEditPlacesLabel_data();
    void labeledEditPlacesLabel();
    void labeledEditLabelFollowsEdit();
    void buttonFlagOnly();
    void registration_data();
    void registration();
};

void TestSimpleMembers::comboSwallowsCtrlArrow()
{
    Form<TComboBoxOxa> form;
    form.control->setEditable(true);
    form.control->setEditText(QStringLiteral("abc def"));
    form.control->SetFocDown(form.edit);
    QVERIFY(form.show());
    QCOMPARE(form.control->Color(), clYellow);

    form.key(Qt::Key_Left, Qt::ControlModifier); // no FocLeft, still consumed
    QCOMPARE(form.seenKey, Word(0));
    QCOMPARE(form.control->lineEdit()->cursorPosition(), 7);
    form.key(Qt::Key_Down, Qt::ControlModifier);
    QVERIFY(form.edit->hasFocus());
    QVERIFY(!form.control->IsFocused());
    QCOMPARE(form.control->Color(), clWindow);
}

void TestSimpleMembers::comboSpace_data()
{
    QTest::addColumn<bool>("editable");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("expected");

    QTest::newRow("next") << false << 3 << 0 << 1;
    QTest::newRow("wraps to first") << false << 3 << 2 << 0;
    QTest::newRow("single item") << false << 1 << 0 << 0;
    QTest::newRow("editable types it") << true << 3 << 2 << 2;
}

void TestSimpleMembers::comboSpace()
{
    QFETCH(bool, editable);
    QFETCH(int, count);
    QFETCH(int, index);
    QFETCH(int, expected);

    Form<TComboBoxOxa> form;
    form.control->setEditable(editable);
    for (int i = 0; i < count; ++i)
        form.control->addItem(QString::number(i));
    form.control->setCurrentIndex(index);
    int changed = 0;
    form.control->OnChange = [&](QObject *) { ++changed; };
    QVERIFY(form.show());

    form.key(Qt::Key_Space);
    QCOMPARE(form.control->currentIndex(), expected);
    QCOMPARE(changed, 1); // also for the single item, and for typed text
    QVERIFY(!form.control->view()->isVisible());
    QCOMPARE(form.control->currentText().endsWith(' '), editable);
}

void TestSimpleMembers::memoArrows()
{
    Form<TMemoOxa> form;
    form.control->setPlainText(QStringLiteral("one\ntwo\nthree"));
    form.control->SetFocDown(form.edit);
    QVERIFY(form.show());
    QVERIFY(form.control->IsFocused());
    QCOMPARE(form.control->Color(), clYellow);

    form.key(Qt::Key_Down);
    QVERIFY(form.control->hasFocus());
    QCOMPARE(form.control->textCursor().blockNumber(), 1);
    form.key(Qt::Key_Down, Qt::ControlModifier);
    QVERIFY(form.edit->hasFocus());
    QCOMPARE(form.control->textCursor().blockNumber(), 1);
    QVERIFY(!form.control->IsFocused());
    QCOMPARE(form.control->Color(), clWindow);
}

void TestSimpleMembers::loadedColour()
{
    TLoadable<TComboBoxOxa> combo;
    TLoadable<TMemoOxa> memo;
    TLoadable<TLabeledEditOxa> labeled;
    combo.SetDefaultColor(clCream);
    combo.SetColor(clRed);
    memo.SetDefaultColor(clAqua);
    labeled.SetDefaultColor(clCream);
    labeled.SetColor(clRed);
    combo.Loaded();
    memo.Loaded();
    labeled.Loaded();
    QCOMPARE(combo.Color(), clCream);
    QCOMPARE(memo.Color(), clAqua);
    QCOMPARE(labeled.Color(), clRed); // the labeled edit keeps its colour
}

void TestSimpleMembers::labeledEditPlacesLabel_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("spacing");
    QTest::newRow("above") << int(TLabeledEditOxa::lpAbove) << 3;
    QTest::newRow("left") << int(TLabeledEditOxa::lpLeft) << 5;
}

void TestSimpleMembers::labeledEditPlacesLabel()
{
    QFETCH(int, position);
    QFETCH(int, spacing);

    Form<TLabeledEditOxa> form;
    form.control->SetLabelCaption(QStringLiteral("Příjmení:"));
    form.control->SetLabelSpacing(spacing);
    form.control->SetLabelPosition(TLabeledEditOxa::TLabelPosition(position));
    form.control->SetFocRight(form.edit);
    QVERIFY(form.show());
    QLabel *label = form.control->EditLabel();
    QCOMPARE(label->parentWidget(), &form.window);
    QCOMPARE(label->buddy(), form.control);

    const QRect l = label->geometry(), e = form.control->geometry();
    if (position == TLabeledEditOxa::lpAbove) {
        QCOMPARE(l.left(), e.left());
        QCOMPARE(l.bottom() + 1 + spacing, e.top());
    } else {
        QCOMPARE(l.right() + 1 + spacing, e.left());
        QVERIFY(qAbs(l.center().y() - e.center().y()) <= 1);
    }
    QVERIFY(form.control->IsFocused());
    QCOMPARE(form.control->Color(), clYellow);
    form.key(Qt::Key_Right, Qt::ControlModifier);
    QVERIFY(form.edit->hasFocus());
    QCOMPARE(form.control->Color(), clWindow);
}

void TestSimpleMembers::labeledEditLabelFollowsEdit()
{
    QWidget window;
    auto *edit = new TLabeledEditOxa;
    QPointer<QLabel> label = edit->EditLabel();
    edit->setParent(&window);
    QVERIFY(test::ShowAndActivate(&window));
    QCOMPARE(label->parentWidget(), &window);
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

void TestSimpleMembers::buttonFlagOnly()
{
    Form<TButtonOxa> form;
    form.control->SetFocLeft(form.edit);
    const QColor face = form.control->palette().color(QPalette::Button);
    QVERIFY(form.show());
    QVERIFY(form.control->IsFocused());
    QCOMPARE(form.control->palette().color(QPalette::Button), face);

    form.key(Qt::Key_Left, Qt::ControlModifier);
    QVERIFY(form.edit->hasFocus());
    QVERIFY(!form.control->IsFocused());
    // Disabled while focused: the exit is not followed, the flag stays.
    form.control->setFocus();
    form.control->setEnabled(false);
    QVERIFY(!form.control->hasFocus());
    QVERIFY(form.control->IsFocused());
}

void TestSimpleMembers::registration_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<bool>("widget");

    QTest::newRow("edit") << "TEditOxa" << "EditOxa" << true;
    QTest::newRow("menu") << "TOxaPopUpMenu" << "OxaPopupMenu" << false;
    QTest::newRow("combo") << "TComboBoxOxa" << "ComboBoxOxa" << true;
    QTest::newRow("memo") << "TMemoOxa" << "MemoOxa" << true;
    QTest::newRow("labeled") << "TLabeledEditOxa" << "LabeledEditOxa" << true;
    QTest::newRow("button") << "TButtonOxa" << "ButtonOxa" << true;
}

void TestSimpleMembers::registration()
{
    QFETCH(QString, className);
    QFETCH(QString, unit);
    QFETCH(bool, widget);
    const QHash<QString, void (*)()> registerOf = {
        {"EditOxa", &RegisterEditOxa},     {"OxaPopupMenu", &RegisterOxaPopupMenu},
        {"ComboBoxOxa", &RegisterComboBoxOxa}, {"MemoOxa", &RegisterMemoOxa},
        {"LabeledEditOxa", &RegisterLabeledEditOxa}, {"ButtonOxa", &RegisterButtonOxa},
    };

    Catalogue::Instance().Clear();
    registerOf.value(unit)();
    const TComponentEntry *entry = Catalogue::Instance().Find(className);
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QCOMPARE(entry->Unit, unit);
    QCOMPARE(entry->IsWidget, widget);
    QWidget owner;
    QObject *created = Catalogue::Instance().Create(className, &owner);
    QVERIFY(created);
    QCOMPARE(QString::fromLatin1(created->metaObject()->className()), "oxa::" + className);
    Catalogue::Instance().Clear();
}

QTEST_MAIN(TestSimpleMembers)
#include "tst_simplemembers.moc"
