#include "oxa/richtext/RVPopupMenu.h"
#include "oxa/richtext/SpellChecker.h"
#include "oxa/toolkit/Exceptions.h"
#include "richtext/RichTestSupport.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QSignalSpy>

using namespace oxa;
using namespace oxa::test;

namespace {

// A shown editor with the menu as its context menu.
struct Bench : EditorWindow
{
    TRVPopupMenu *menu;

    Bench() : EditorWindow(380, 150), menu(new TRVPopupMenu(&form)) { menu->Init(editor); }
    QString Text() const { return editor->GetText(0, editor->ItemCount() - 1); }
    const TFontInfo &Font() const { return editor->Style().TextStyle(editor->GetItemStyle(0)); }
    // Right-clicks the editor; the menu that opened.
    QMenu *Open() const { return RightClick(editor->viewport()); }
    // Opens the menu and clicks the item, in the "Formát" submenu when it is there.
    bool Choose(const QString &caption) const
    {
        if (Open() != menu)
            return false;
        QMenu *sub = menu->FormatMenu();
        if (!Captions(menu).contains(caption)) {
            menu->setActiveAction(sub->menuAction());
            QTest::keyClick(menu, Qt::Key_Right);
            if (WaitFor([sub] { return sub->isVisible(); }, 2000) && ClickItem(sub, caption))
                return true;
        } else if (ClickItem(menu, caption)) {
            return true;
        }
        menu->close();
        return false;
    }
};

} // namespace

class TestRVPopupMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initAcceptsTheEditorOrNothing();
    void rightClickAndMenuKeyOpenTheMenu();
    void itemsDoWhatTheToolbarDoes_data();
    void itemsDoWhatTheToolbarDoes();
    void checksAndEnablingFollowTheEditor();
    void misspeltWordGetsSuggestionsFirst();
};

void TestRVPopupMenu::initAcceptsTheEditorOrNothing()
{
    QWidget owner;
    TRVPopupMenu menu(&owner);
    TOxaRichView editor(&owner);
    QLineEdit edit(&owner);
    menu.Init(&editor);
    try {
        menu.Init(&edit);
        QFAIL("Init took another object than the editor");
    } catch (const Exception &e) {
        QCOMPARE(e.Message(), QStringLiteral("Povolene parametry jsou \"TOxaRichView\" a \"nil\""));
    }
    QCOMPARE(menu.Editor(), &editor);
    menu.Init(nullptr);
    QVERIFY(!menu.Editor());

    auto *gone = new TOxaRichView(&owner);
    menu.Init(gone);
    delete gone;
    QVERIFY(!menu.Editor());
}

void TestRVPopupMenu::rightClickAndMenuKeyOpenTheMenu()
{
    Bench b;
    QSignalSpy popups(b.editor, &TOxaRichView::OnPopup);
    QCOMPARE(b.Open(), b.menu);
    QCOMPARE(popups.count(), 1);
    b.menu->close();

    // The menu key opens it at the caret.
    QTest::keyClicks(b.editor, QStringLiteral("abc"));
    const QPoint caret = b.editor->viewport()->mapToGlobal(b.editor->cursorRect().center());
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
    QApplication::sendEvent(b.editor, &key);
    QCOMPARE(QApplication::activePopupWidget(), b.menu);
    QVERIFY((b.menu->pos() - caret).manhattanLength() < 4);
    b.menu->close();

    // Unbound, the editor shows its standard menu again.
    b.menu->Init(nullptr);
    QMenu *shown = b.Open();
    QVERIFY(shown && shown != b.menu);
    QCOMPARE(popups.count(), 3);
    shown->close();
}

void TestRVPopupMenu::itemsDoWhatTheToolbarDoes_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("alignment");
    QTest::newRow("strike-out") << "Preškrtnuté" << int(fsStrikeOut) << int(rvaLeft);
    QTest::newRow("center") << "Na střed" << 0 << int(rvaCenter);
}

void TestRVPopupMenu::itemsDoWhatTheToolbarDoes()
{
    QFETCH(QString, caption);
    QFETCH(int, style);
    QFETCH(int, alignment);
    Bench b;
    QTest::keyClicks(b.editor, QStringLiteral("anamneza"));
    QTest::keyClick(b.editor, Qt::Key_A, Qt::ControlModifier);
    QVERIFY(b.Choose(caption));
    QCOMPARE(int(b.Font().Style), style);
    QCOMPARE(int(b.editor->Style().ParaStyle(b.editor->GetItemPara(0)).Alignment), alignment);
    QCOMPARE(b.Text(), QStringLiteral("anamneza"));
    QVERIFY(b.editor->hasFocus());
    // The same item again takes a style off; an alignment stays.
    QVERIFY(b.Choose(caption));
    QCOMPARE(int(b.Font().Style), 0);
    QCOMPARE(int(b.editor->Style().ParaStyle(b.editor->GetItemPara(0)).Alignment), alignment);
}

void TestRVPopupMenu::checksAndEnablingFollowTheEditor()
{
    Bench b;
    // Enabled cut, copy, paste and bold ("E"), then checked bold, left and centre ("C").
    auto states = [&] {
        b.Open();
        QString marks;
        for (TRVToolButtonType t : {tbtCut, tbtCopy, tbtPaste, tbtBold})
            marks += b.menu->Item(t)->isEnabled() ? u'E' : u'-';
        for (TRVToolButtonType t : {tbtBold, tbtLeftAlign, tbtCenterAlign})
            marks += b.menu->Item(t)->isChecked() ? u'C' : u'-';
        b.menu->close();
        return marks;
    };
    QTest::keyClicks(b.editor, QStringLiteral("TK 130/85"));
    QCOMPARE(states(), QStringLiteral("--EE-C-"));
    QTest::keyClick(b.editor, Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
    QTest::keyClick(b.editor, Qt::Key_B, Qt::ControlModifier);
    QTest::keyClick(b.editor, Qt::Key_E, Qt::ControlModifier);
    QTest::keyClick(b.editor, Qt::Key_End);
    QCOMPARE(states(), QStringLiteral("--EEC-C"));
    QTest::keyClick(b.editor, Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
    QCOMPARE(states().left(4), QStringLiteral("EEEE"));

    QVERIFY(b.Choose(QStringLiteral("Vyjmout")));
    QCOMPARE(b.Text(), QStringLiteral("TK 130/"));
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("85"));
    QVERIFY(b.Choose(QStringLiteral("Vložit jako text")));
    QCOMPARE(b.Text(), QStringLiteral("TK 130/85"));
    QTest::keyClick(b.editor, Qt::Key_Home, Qt::ShiftModifier);
    QVERIFY(b.Choose(QStringLiteral("Kopírovat")));
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("TK 130/85"));

    b.editor->setReadOnly(true);
    QCOMPARE(states().left(4), QStringLiteral("-E--"));
}

// Over a misspelt word the menu starts with its corrections and
// "Přidat do slovníku"; elsewhere it has its own items only.
void TestRVPopupMenu::misspeltWordGetsSuggestionsFirst()
{
    OXA_REQUIRE_OR_SKIP(SpellChecker::Shared()->EnsureLoaded(), "OXA_REQUIRE_DICTIONARY",
                        QStringLiteral("The Czech dictionary (hunspell-cs) is not installed"));
    Bench b;
    b.editor->InsertText(QStringLiteral("Pacient udává bolesit hlavy"));
    QCOMPARE(RightClickOn(b.editor, QStringLiteral("bolesit")), b.menu);
    const QStringList captions = Captions(b.menu);
    const int add = int(captions.indexOf(QStringLiteral("Přidat do slovníku")));
    QVERIFY2(add > 0 && add <= 5 && captions.mid(0, add).contains(QStringLiteral("bolest")),
             qPrintable(captions.join(u'|')));
    QCOMPARE(captions.mid(add + 1, 2), QStringList({"-", "Vyjmout"}));
    b.menu->close();
    QCOMPARE(RightClickOn(b.editor, QStringLiteral("hlavy")), b.menu);
    QCOMPARE(Captions(b.menu).first(), QStringLiteral("Vyjmout"));
    b.menu->close();
}

QTEST_MAIN(TestRVPopupMenu)
#include "tst_rvpopupmenu.moc"
