#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/RVToolBar.h"
#include "oxa/utilities/ColorDlg.h"
#include "support/TestSupport.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QTest>
#include <QToolButton>

#include <memory>

using namespace oxa;
using namespace oxa::test;

Q_DECLARE_METATYPE(oxa::TRVToolButtonType)
Q_DECLARE_METATYPE(oxa::TRVToolButtonKind)

namespace {

// A window with a toolbar of the groups above a shown editor that has the focus.
struct Bench
{
    QWidget form;
    TRVToolBar *bar;
    TOxaRichView *editor;

    explicit Bench(const TRVToolButtonGroups &groups = {tbgAll})
        : bar(new TRVToolBar(&form)), editor(new TOxaRichView(&form))
    {
        form.resize(1900, 330);
        bar->setGeometry(0, 0, 1900, 34);
        editor->setGeometry(0, 40, 600, 280);
        bar->AddObjectGroups(groups, true);
        bar->Init(editor);
        ShowAndActivate(&form);
        editor->setFocus();
    }
    QToolButton *Button(TRVToolButtonType typ) const
    {
        return qobject_cast<QToolButton *>(bar->GetButton(typ).Obj);
    }
    QComboBox *Combo(TRVToolButtonType typ) const
    {
        return qobject_cast<QComboBox *>(bar->GetButton(typ).Obj);
    }
    void Click(TRVToolButtonType typ) const
    {
        QToolButton *button = Button(typ);
        QVERIFY2(button && button->isVisible(), "the button is on the toolbar");
        QTest::mouseClick(button, Qt::LeftButton);
    }
    QString Hint(TRVToolButtonType typ) const { return Button(typ)->toolTip(); }
    QString Text() const { return editor->GetText(0, editor->ItemCount() - 1); }
    const TFontInfo &Font(int item = 0) const
    {
        return editor->Style().TextStyle(editor->GetItemStyle(item));
    }
    void Type(const QString &text) const { QTest::keyClicks(editor, text); }
    void SelectAll() const { QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier); }
};

} // namespace

class TestRVToolBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buttonTable_data();
    void buttonTable();
    void formatButtons_data();
    void formatButtons();
    void buttonsFollowTheCaret();
    void undoAndRedoNameTheirSteps();
    void clipboardButtons();
    void hostHandlesTheClickFirst_data();
    void hostHandlesTheClickFirst();
    void colourButtonsOpenThePicker_data();
    void colourButtonsOpenThePicker();
    void comboBoxesSetTheFont();
    void enablingAndALostEditor();
};

void TestRVToolBar::buttonTable_data()
{
    QTest::addColumn<TRVToolButtonType>("typ");
    QTest::addColumn<QString>("hint");
    QTest::addColumn<TRVToolButtonKind>("kind");
    const auto row = [](const char *name, TRVToolButtonType typ, const char *hint,
                        TRVToolButtonKind kind) {
        QTest::newRow(name) << typ << QString::fromUtf8(hint) << kind;
    };
    // One type of each kind (a grouped check is a check), the texts as users know them.
    row("check", tbtStrikeOut, "Preškrtnuté [Ctrl+S]", tbkCheck);
    row("speed button", tbtInclude, "Vložit", tbkSpeedButton);
    row("drop-down", tbtIncludeSmall, "Vložit...", tbkDropDown);
    row("combo box", tbtFontSize, "Velikost písma", tbkComboBox);
    row("button", tbtInTrvaleDiagnozy, "Vložit trvalé diagnozy ...", tbkButton);
}

// A type makes the control of its kind, with its hint and picture.
void TestRVToolBar::buttonTable()
{
    QFETCH(TRVToolButtonType, typ);
    QFETCH(QString, hint);
    QFETCH(TRVToolButtonKind, kind);
    QMenu menu;
    TRVToolBar bar;
    bar.AddObjects({typ}, &menu);
    QObject *control = bar.GetButton(typ).Obj;
    QVERIFY(control);
    QCOMPARE(qobject_cast<QWidget *>(control)->toolTip(), hint);
    if (kind == tbkComboBox) {
        QVERIFY(qobject_cast<QComboBox *>(control));
        return;
    }
    auto *button = qobject_cast<QToolButton *>(control);
    QVERIFY(button);
    QVERIFY(!button->icon().isNull());
    QCOMPARE(button->isCheckable(), kind == tbkCheck || kind == tbkCheckGrouped);
    QCOMPARE(button->menu() == &menu, kind == tbkDropDown);
    QCOMPARE(button->text(), kind == tbkSpeedButton ? hint : QString());
}

void TestRVToolBar::formatButtons_data()
{
    QTest::addColumn<TRVToolButtonType>("typ");
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("alignment");
    QTest::newRow("bold") << tbtBold << int(fsBold) << int(rvaLeft);
    QTest::newRow("center") << tbtCenterAlign << 0 << int(rvaCenter);
    QTest::newRow("left") << tbtLeftAlign << 0 << int(rvaLeft);
}

// A style button toggles its style; an alignment button is one of a group.
void TestRVToolBar::formatButtons()
{
    QFETCH(TRVToolButtonType, typ);
    QFETCH(int, style);
    QFETCH(int, alignment);
    const bool align = TRVToolBar::GroupTypes(tbgAlign).contains(typ);
    Bench b;
    b.Type(QStringLiteral("nalez"));
    b.SelectAll();
    if (typ == tbtLeftAlign)
        b.Click(tbtRighAlign);
    b.Click(typ);
    QCOMPARE(int(b.Font().Style), style);
    QCOMPARE(int(b.editor->Style().ParaStyle(b.editor->GetItemPara(0)).Alignment), alignment);
    for (TRVToolButtonType other : TRVToolBar::GroupTypes(tbgAlign))
        QCOMPARE(b.Button(other)->isChecked(), align ? other == typ : other == tbtLeftAlign);
    QVERIFY(b.Button(typ)->isChecked());
    QCOMPARE(b.Hint(tbtUndo),
             align ? QStringLiteral("Zpět (modifikace odstavce)")
                   : QStringLiteral("Zpět (formátování)"));
    QVERIFY(b.editor->hasFocus());
    b.Click(typ);
    QCOMPARE(int(b.Font().Style), 0);
    QCOMPARE(b.Button(typ)->isChecked(), align);
    QCOMPARE(b.Text(), QStringLiteral("nalez"));
}

// The controls show the state at the caret, whichever way it moved.
void TestRVToolBar::buttonsFollowTheCaret()
{
    Bench b;
    b.Type(QStringLiteral("obycejne "));
    QTest::keyClick(b.editor, Qt::Key_B, Qt::ControlModifier);
    b.Type(QStringLiteral("tucne"));
    QTest::keyClick(b.editor, Qt::Key_E, Qt::ControlModifier);
    QVERIFY(b.Button(tbtBold)->isChecked());
    QVERIFY(b.Button(tbtCenterAlign)->isChecked());
    QTest::keyClick(b.editor, Qt::Key_Home);
    QVERIFY(!b.Button(tbtBold)->isChecked());
    QTest::keyClick(b.editor, Qt::Key_Return);
    QTest::keyClick(b.editor, Qt::Key_Up);
    QVERIFY(b.Button(tbtCenterAlign)->isChecked());

    b.editor->CaretToEnd();
    b.editor->SetFontSize(14);
    QCOMPARE(b.Combo(tbtFontSize)->currentText(), QStringLiteral("14"));
    QTest::keyClick(b.editor, Qt::Key_Home);
    QCOMPARE(b.Combo(tbtFontSize)->currentText(), QStringLiteral("10"));
}

void TestRVToolBar::undoAndRedoNameTheirSteps()
{
    Bench b({tbgUndoRedo});
    // The hints of both buttons, "(off)" where a button is disabled.
    auto hints = [&] {
        QStringList texts;
        for (QToolButton *button : {b.Button(tbtUndo), b.Button(tbtRedo)})
            texts << button->toolTip() + (button->isEnabled() ? "" : " (off)");
        return texts.join(u'|');
    };
    const QString noRedo = QStringLiteral("|Vpřed [Ctrl+Shift+Z] (off)");
    QCOMPARE(hints(), QStringLiteral("Zpět [Ctrl+Z] (off)") + noRedo);
    b.Type(QStringLiteral("abc"));
    QCOMPARE(hints(), QStringLiteral("Zpět (psaní)") + noRedo);
    QTest::keyClick(b.editor, Qt::Key_Backspace);
    QCOMPARE(hints(), QStringLiteral("Zpět (mazání)") + noRedo);
    b.Click(tbtUndo);
    QCOMPARE(b.Text(), QStringLiteral("abc"));
    QCOMPARE(hints(), QStringLiteral("Zpět (psaní)|Vpřed (mazání)"));
    b.Click(tbtRedo);
    QCOMPARE(b.Text(), QStringLiteral("ab"));
    QCOMPARE(hints(), QStringLiteral("Zpět (mazání)") + noRedo);

    // The engine's custom step carries its own name; tag changes keep their English one.
    b.editor->RVData()->BeginUndoCustom(QStringLiteral("vložení vzoru"));
    b.editor->InsertText(QStringLiteral("x"));
    QCOMPARE(hints(), QStringLiteral("Zpět (vložení vzoru)") + noRedo);
    b.editor->SetItemTag(0, QStringLiteral("7"));
    QCOMPARE(hints(), QStringLiteral("Zpět (tag modification)") + noRedo);
}

void TestRVToolBar::clipboardButtons()
{
    Bench b({tbgFontStyle, tbgClipboard, tbgUndoRedo});
    b.Type(QStringLiteral("tlak 120/80"));
    QTest::keyClick(b.editor, Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
    b.Click(tbtCut);
    QCOMPARE(b.Text(), QStringLiteral("tlak 120/"));
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("80"));
    QCOMPARE(b.Hint(tbtUndo), QStringLiteral("Zpět (mazání)"));
    b.Click(tbtPaste);
    QCOMPARE(b.Text(), QStringLiteral("tlak 120/80"));
    QCOMPARE(b.Hint(tbtUndo), QStringLiteral("Zpět (vkládání)"));
}

void TestRVToolBar::hostHandlesTheClickFirst_data()
{
    QTest::addColumn<TRVToolButtonType>("typ");
    QTest::newRow("bold") << tbtBold;
    QTest::newRow("templates") << tbtInTextoveVzory;
    QTest::newRow("include small") << tbtIncludeSmall;
}

// The host sees every click first and may answer it itself; left to the
// toolbar, an insertion button does nothing.
void TestRVToolBar::hostHandlesTheClickFirst()
{
    QFETCH(TRVToolButtonType, typ);
    Bench b({tbgFontStyle, tbgInclude, tbgUndoRedo});
    b.Type(QStringLiteral("Dg: "));
    QList<QPair<QObject *, TRVToolButtonType>> seen;
    bool handle = true;
    b.bar->OnButtonClick = [&](QObject *sender, TRVToolButtonType t, bool &Handled) {
        QVERIFY(!Handled);
        seen.append({sender, t});
        if (handle)
            b.editor->InsertFormatText(QStringLiteral("<b>I10</b> hypertenze"));
        Handled = handle;
    };
    b.Click(typ);
    QCOMPARE(seen, (QList<QPair<QObject *, TRVToolButtonType>>{{b.Button(typ), typ}}));
    QCOMPARE(b.Text(), QStringLiteral("Dg: I10 hypertenze"));
    QVERIFY(!b.Button(tbtBold)->isChecked());

    handle = false;
    b.Click(typ);
    QCOMPARE(seen.size(), 2);
    QCOMPARE(b.Text(), QStringLiteral("Dg: I10 hypertenze"));
    QCOMPARE(b.Button(tbtBold)->isChecked(), typ == tbtBold);
}

void TestRVToolBar::colourButtonsOpenThePicker_data()
{
    QTest::addColumn<TRVToolButtonType>("typ");
    QTest::addColumn<int>("mode");
    QTest::newRow("background") << tbtBgColor << int(cdmTransparent);
    QTest::newRow("font") << tbtFontColor << int(cdmAutomatic);
}

void TestRVToolBar::colourButtonsOpenThePicker()
{
    QFETCH(TRVToolButtonType, typ);
    QFETCH(int, mode);
    Bench b({tbgColors, tbgUndoRedo});
    b.Type(QStringLiteral("alergie"));
    b.SelectAll();
    b.Click(typ);
    QPointer<TColorForm> picker = b.bar->ColorDialog();
    QVERIFY(picker && picker->isVisible());
    QCOMPARE(int(picker->Mode()), mode);
    QToolButton *button = b.Button(typ);
    QVERIFY(button->isChecked());

    QTest::mouseClick(picker->PaletteButtons().at(9), Qt::LeftButton); // "červená"
    QVERIFY(!b.bar->ColorDialog());
    QVERIFY(!button->isChecked());
    const TFontInfo &font = b.Font();
    QCOMPARE(typ == tbtBgColor ? font.BackColor : font.Color, clRed);
    QCOMPARE(b.Hint(tbtUndo), QStringLiteral("Zpět (formátování)"));

    // Escape closes the picker without a colour.
    b.Click(typ);
    QVERIFY(b.bar->ColorDialog());
    QTest::keyClick(b.bar->ColorDialog(), Qt::Key_Escape);
    QVERIFY(!b.bar->ColorDialog());
    QCOMPARE(typ == tbtBgColor ? b.Font().BackColor : b.Font().Color, clRed);
}

void TestRVToolBar::comboBoxesSetTheFont()
{
    Bench b({tbgFont, tbgUndoRedo});
    b.Type(QStringLiteral("Zaver"));
    b.SelectAll();
    auto typeInto = [](QComboBox *combo, const QString &text) {
        QTest::mouseClick(combo->lineEdit(), Qt::LeftButton);
        combo->lineEdit()->selectAll();
        QTest::keyClicks(combo->lineEdit(), text);
        QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
    };
    auto chooseFromList = [](QComboBox *combo, QList<Qt::Key> keys) {
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Down, Qt::AltModifier);
        for (Qt::Key key : keys << Qt::Key_Return)
            QTest::keyClick(combo->view(), key);
    };
    typeInto(b.Combo(tbtFontSize), QStringLiteral("13"));
    QCOMPARE(b.Font().Size, 13);
    QVERIFY(b.editor->hasFocus());
    typeInto(b.Combo(tbtFontName), QStringLiteral("Pismo lekare"));
    QCOMPARE(b.Font().FontName, QStringLiteral("Pismo lekare"));
    QCOMPARE(b.Font().Size, 13);

    chooseFromList(b.Combo(tbtTextStyle), {Qt::Key_Home, Qt::Key_Down});
    QCOMPARE(b.editor->GetItemStyle(0), 1);
    QCOMPARE(b.Font().FontName, QStringLiteral("Arial"));
    QCOMPARE(b.Text(), QStringLiteral("Zaver"));
}

void TestRVToolBar::enablingAndALostEditor()
{
    auto b = std::make_unique<Bench>(TRVToolButtonGroups{tbgFontStyle, tbgUndoRedo, tbgFont});
    b->Type(QStringLiteral("a"));
    b->bar->SetEnable(false);
    for (const TObjectProp &object : b->bar->Objects()) {
        if (auto *widget = qobject_cast<QWidget *>(object.Obj))
            QVERIFY(!widget->isEnabled());
    }
    b->bar->SetEnable(true);
    QVERIFY(b->Button(tbtUndo)->isEnabled());
    QVERIFY(!b->Button(tbtRedo)->isEnabled());

    // The editor goes away: the toolbar forgets it and its clicks reach only the host.
    delete b->editor;
    QVERIFY(!b->bar->Editor());
    QVERIFY(!b->Button(tbtUndo)->isEnabled());
    QCOMPARE(b->Hint(tbtUndo), QStringLiteral("Zpět [Ctrl+Z]"));
    int clicks = 0;
    b->bar->OnButtonClick = [&](QObject *, TRVToolButtonType, bool &) { ++clicks; };
    QTest::mouseClick(b->Button(tbtBold), Qt::LeftButton);
    QCOMPARE(clicks, 1);
    QVERIFY(!b->Button(tbtBold)->isChecked());
}

QTEST_MAIN(TestRVToolBar)
#include "tst_rvtoolbar.moc"
