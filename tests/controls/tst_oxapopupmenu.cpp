#include "oxa/controls/EditOxa.h"
#include "oxa/controls/MapaZnaku.h"
#include "oxa/controls/OxaPopupMenu.h"
#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/StringGrid.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QPointer>
#include <QPushButton>
#include <QTest>

using namespace oxa;

Q_DECLARE_METATYPE(oxa::TItemTyp)

namespace {

const QString zpet = QStringLiteral("Zpět");
const QString vyjmout = QStringLiteral("Vyjmout");
const QString kopirovat = QStringLiteral("Kopírovat");
const QString vlozit = QStringLiteral("Vložit");
const QString odstranit = QStringLiteral("Odstranit");
const QString vybratVse = QStringLiteral("Vybrat vše");
const QString mapaZnaku = QStringLiteral("Mapa znaků...");
const QChar euro(0x20AC);

// A shown window with the edit under test and a second edit to leave to.
struct Form
{
    QWidget window;
    TEditOxa *edit = new TEditOxa(&window);
    TEditOxa *other = new TEditOxa(&window);

    Form()
    {
        window.resize(240, 80);
        edit->setGeometry(10, 10, 200, 24);
        other->setGeometry(10, 44, 200, 24);
    }
    // Shows the window with the focus on the other edit.
    bool show()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        other->setFocus();
        return other->hasFocus();
    }
};

QAction *itemOf(const QMenu *menu, const QString &caption)
{
    for (QAction *item : menu->actions()) {
        if (item->text() == caption)
            return item;
    }
    return nullptr;
}

int countOf(const QMenu *menu, const QString &caption)
{
    int count = 0;
    for (const QAction *item : menu->actions())
        count += item->text() == caption;
    return count;
}

// Right-clicks the widget as the user does and returns the menu that opened.
QMenu *rightClick(QWidget *widget)
{
    QWidget *top = widget->window();
    QTest::mouseClick(top->windowHandle(), Qt::RightButton, {},
                      widget->mapTo(top, widget->rect().center()));
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

void clickItem(QMenu *menu, const QString &caption)
{
    QAction *item = itemOf(menu, caption);
    QVERIFY2(item, qPrintable(caption));
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
}

// Answers the character map by double-clicking the cell of the character.
test::DialogAnswerer pickByDoubleClick(QChar wanted)
{
    return test::DialogAnswerer([wanted](QDialog *dialog) {
        auto *form = qobject_cast<TMapaZnaku *>(dialog);
        if (!form)
            return mrNone;
        form->show();
        TStringGrid *grid = form->StrGdMapa();
        const int index = int(TMapaZnaku::Znaky().indexOf(wanted));
        const QRect cell = grid->CellRect(index % 11, index / 11);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
        return TModalResult(form->result());
    });
}

} // namespace

class TestOxaPopupMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtItems();
    void itemsReportTheirKind_data();
    void itemsReportTheirKind();
    void onPopupRunsBeforeOpening();

    void ownMenuLivesFromEntryToExit();
    void rightClickOpensCzechMenu();
    void itemEnabling_data();
    void itemEnabling();
    void commandsActOnEdit();
    void deleteWithoutSelectionKeepsText();

    void hostMenuGetsOneCharMapItem();
    void noMenuWork_data();
    void noMenuWork();

    void charMapReplacesSelection();
    void charMapEnterInsertsFocusedCell();
    void charMapClosedLeavesText();
    void hostMenuCharMapItemInserts();

    void registration();
};

void TestOxaPopupMenu::builtItems()
{
    TOxaPopUpMenu menu;
    const QList<QPair<QString, QString>> expected = {
        {"_zpet", zpet},         {"_1", QString()},          {"_vyjmout", vyjmout},
        {"_kopirovat", kopirovat}, {"_vlozit", vlozit},        {"_odstranit", odstranit},
        {"_2", QString()},       {"_vybratvse", vybratVse}, {"_popupmapaznaku", mapaZnaku},
    };
    const QList<QAction *> items = menu.actions();
    QCOMPARE(items.size(), expected.size());
    for (int i = 0; i < items.size(); ++i) {
        QCOMPARE(items[i]->objectName(), expected[i].first);
        QCOMPARE(items[i]->isSeparator(), expected[i].second.isEmpty());
        if (!items[i]->isSeparator())
            QCOMPARE(items[i]->text(), expected[i].second);
        QVERIFY(items[i]->isEnabled());
        QVERIFY(!items[i]->isChecked());
        QVERIFY(items[i]->shortcut().isEmpty());
    }
    QCOMPARE(menu.FindItem(vlozit), menu.Item(QStringLiteral("_vlozit")));
}

void TestOxaPopupMenu::itemsReportTheirKind_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<TItemTyp>("kind");

    QTest::newRow("Zpět") << "_zpet" << itUndo;
    QTest::newRow("Vyjmout") << "_vyjmout" << itCut;
    QTest::newRow("Kopírovat") << "_kopirovat" << itCopy;
    QTest::newRow("Vložit") << "_vlozit" << itPaste;
    QTest::newRow("Odstranit") << "_odstranit" << itDelete;
    QTest::newRow("Vybrat vše") << "_vybratvse" << itSelectAll;
}

void TestOxaPopupMenu::itemsReportTheirKind()
{
    QFETCH(QString, name);
    QFETCH(TItemTyp, kind);

    TOxaPopUpMenu menu;
    menu.Item(name)->trigger(); // no handler: nothing happens
    QList<TItemTyp> reported;
    menu.OnItemClick = [&](QObject *sender, TItemTyp item, QChar key) {
        QCOMPARE(sender, &menu);
        QVERIFY(key.isNull());
        reported.append(item);
    };
    menu.Item(name)->trigger();
    QCOMPARE(reported, QList<TItemTyp>{kind});
}

void TestOxaPopupMenu::onPopupRunsBeforeOpening()
{
    TOxaPopUpMenu menu;
    bool visibleInHandler = true;
    menu.OnPopup = [&](QObject *sender) {
        QCOMPARE(sender, &menu);
        visibleInHandler = menu.isVisible();
    };
    menu.popup(QPoint(10, 10));
    QVERIFY(menu.isVisible());
    QVERIFY(!visibleInHandler);
    menu.hide();
}

void TestOxaPopupMenu::ownMenuLivesFromEntryToExit()
{
    Form form;
    QVERIFY(form.show());
    QCOMPARE(form.edit->PopupMenu(), nullptr);
    form.edit->setFocus();
    QPointer<QMenu> first = form.edit->PopupMenu();
    QVERIFY(qobject_cast<TOxaPopUpMenu *>(first));
    QCOMPARE(first->parent(), form.edit);

    form.other->setFocus();
    QCOMPARE(form.edit->PopupMenu(), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(first.isNull());

    form.edit->setFocus();
    QVERIFY(qobject_cast<TOxaPopUpMenu *>(form.edit->PopupMenu()));
}

void TestOxaPopupMenu::rightClickOpensCzechMenu()
{
    Form form;
    QVERIFY(form.show());
    QMenu *menu = rightClick(form.edit); // also gives the edit the focus
    QVERIFY(form.edit->hasFocus());
    QVERIFY(menu);
    QCOMPARE(menu, form.edit->PopupMenu());

    // An empty edit: nothing to undo, select, cut or copy.
    for (const QString &caption : {zpet, vyjmout, kopirovat, odstranit, vybratVse})
        QVERIFY2(!itemOf(menu, caption)->isEnabled(), qPrintable(caption));
    QVERIFY(itemOf(menu, vlozit)->isEnabled());
    QVERIFY(itemOf(menu, mapaZnaku)->isEnabled());
    menu->hide();
    QVERIFY(form.edit->IsFocused());
}

void TestOxaPopupMenu::itemEnabling_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("selStart");
    QTest::addColumn<int>("selLength");
    QTest::addColumn<bool>("selection");
    QTest::addColumn<bool>("all");

    QTest::newRow("no selection") << "abc" << 1 << 0 << false << true;
    QTest::newRow("part selected") << "abc" << 1 << 1 << true << true;
    QTest::newRow("all selected") << "abc" << 0 << 3 << true << false;
}

void TestOxaPopupMenu::itemEnabling()
{
    QFETCH(QString, typed);
    QFETCH(int, selStart);
    QFETCH(int, selLength);
    QFETCH(bool, selection);
    QFETCH(bool, all);

    Form form;
    QVERIFY(form.show());
    form.edit->setFocus();
    QTest::keyClicks(form.edit, typed);
    form.edit->setSelection(selStart, selLength);
    QMenu *menu = rightClick(form.edit);
    QVERIFY(menu);

    QVERIFY(itemOf(menu, zpet)->isEnabled());
    QCOMPARE(itemOf(menu, vyjmout)->isEnabled(), selection);
    QCOMPARE(itemOf(menu, kopirovat)->isEnabled(), selection);
    QCOMPARE(itemOf(menu, odstranit)->isEnabled(), selection);
    QCOMPARE(itemOf(menu, vybratVse)->isEnabled(), all);
    menu->hide();
}

void TestOxaPopupMenu::commandsActOnEdit()
{
    Form form;
    QVERIFY(form.show());
    form.edit->setFocus();
    QTest::keyClicks(form.edit, QStringLiteral("abc def"));

    form.edit->setSelection(0, 4);
    clickItem(rightClick(form.edit), vyjmout);
    QCOMPARE(form.edit->text(), QStringLiteral("def"));
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("abc "));

    form.edit->end(false);
    clickItem(rightClick(form.edit), vlozit);
    QCOMPARE(form.edit->text(), QStringLiteral("defabc "));

    clickItem(rightClick(form.edit), vybratVse);
    QCOMPARE(form.edit->selectedText(), form.edit->text());
    clickItem(rightClick(form.edit), kopirovat);
    clickItem(rightClick(form.edit), odstranit);
    QCOMPARE(form.edit->text(), QString());
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("defabc "));

    clickItem(rightClick(form.edit), zpet);
    QCOMPARE(form.edit->text(), QStringLiteral("defabc "));
}

void TestOxaPopupMenu::deleteWithoutSelectionKeepsText()
{
    TEditOxa edit;
    edit.setText(QStringLiteral("abc"));
    edit.setCursorPosition(1);
    edit.PopUpOnItemClick(nullptr, itDelete, QChar());
    QCOMPARE(edit.text(), QStringLiteral("abc"));
    edit.PopUpOnItemClick(nullptr, TItemTyp(42), QChar('x'));
    QCOMPARE(edit.text(), QStringLiteral("abc"));
}

void TestOxaPopupMenu::hostMenuGetsOneCharMapItem()
{
    Form form;
    QMenu host;
    QAction *print = host.addAction(QStringLiteral("Tisk"));
    form.edit->SetPopupMenu(&host);
    QVERIFY(form.show());

    for (int round = 0; round < 2; ++round) {
        form.edit->setFocus();
        QCOMPARE(countOf(&host, mapaZnaku), 1);
        QCOMPARE(host.actions().last()->text(), mapaZnaku);
        form.other->setFocus();
        QCOMPARE(countOf(&host, mapaZnaku), 0);
    }
    QCOMPARE(host.actions(), QList<QAction *>{print});
    QCOMPARE(form.edit->PopupMenu(), &host);

    QMenu *shown = rightClick(form.edit);
    QCOMPARE(shown, &host);
    host.hide();
}

void TestOxaPopupMenu::noMenuWork_data()
{
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<bool>("withMap");

    QTest::newRow("read-only") << true << true;
    QTest::newRow("MapaZnaku off") << false << false;
}

void TestOxaPopupMenu::noMenuWork()
{
    QFETCH(bool, readOnly);
    QFETCH(bool, withMap);

    Form form;
    form.edit->setReadOnly(readOnly);
    form.edit->SetMapaZnaku(withMap);
    QMenu host;
    host.addAction(QStringLiteral("Tisk"));
    TEditOxa *hosted = form.other;
    hosted->setReadOnly(readOnly);
    hosted->SetMapaZnaku(withMap);
    hosted->SetPopupMenu(&host);
    QVERIFY(form.show());

    hosted->setFocus();
    QCOMPARE(host.actions().size(), 1);
    // Without a menu of its own the edit shows the standard one of Qt.
    QMenu *shown = rightClick(form.edit);
    QVERIFY(form.edit->hasFocus());
    QCOMPARE(form.edit->PopupMenu(), nullptr);
    QVERIFY(shown);
    QVERIFY(!qobject_cast<TOxaPopUpMenu *>(shown));
    shown->close();
}

void TestOxaPopupMenu::charMapReplacesSelection()
{
    auto answerer = pickByDoubleClick(euro);
    Form form;
    QVERIFY(form.show());
    form.edit->setFocus();
    QTest::keyClicks(form.edit, QStringLiteral("100 Kc"));
    form.edit->setSelection(4, 2);

    clickItem(rightClick(form.edit), mapaZnaku);
    QCOMPARE(answerer.Count(), 1);
    QCOMPARE(form.edit->text(), QStringLiteral("100 ") + euro);
    QCOMPARE(form.edit->cursorPosition(), 5);
}

void TestOxaPopupMenu::charMapEnterInsertsFocusedCell()
{
    const QChar wanted = TMapaZnaku::Znaky().at(12); // second row, second column
    test::DialogAnswerer answerer([](QDialog *dialog) {
        auto *form = qobject_cast<TMapaZnaku *>(dialog);
        form->show();
        QTest::keyClick(form->StrGdMapa(), Qt::Key_Down);
        QTest::keyClick(form->StrGdMapa(), Qt::Key_Right);
        QTest::keyClick(form->StrGdMapa(), Qt::Key_Return);
        return TModalResult(form->result());
    });
    TOxaPopUpMenu menu;
    QChar picked;
    menu.OnItemClick = [&](QObject *, TItemTyp item, QChar key) {
        QCOMPARE(item, itCharMap);
        picked = key;
    };
    menu.Item(QStringLiteral("_popupmapaznaku"))->trigger();
    QCOMPARE(picked, wanted);
}

void TestOxaPopupMenu::charMapClosedLeavesText()
{
    test::DialogAnswerer answerer([](QDialog *dialog) {
        auto *form = qobject_cast<TMapaZnaku *>(dialog);
        form->show();
        QTest::mouseClick(form->btnZavrit(), Qt::LeftButton);
        return TModalResult(form->result());
    });
    Form form;
    QVERIFY(form.show());
    form.edit->setFocus();
    QTest::keyClicks(form.edit, QStringLiteral("abc"));

    clickItem(rightClick(form.edit), mapaZnaku);
    QCOMPARE(answerer.Count(), 1);
    QCOMPARE(form.edit->text(), QStringLiteral("abc"));
}

void TestOxaPopupMenu::hostMenuCharMapItemInserts()
{
    auto answerer = pickByDoubleClick(euro);
    Form form;
    QMenu host;
    form.edit->SetPopupMenu(&host);
    QVERIFY(form.show());
    form.edit->setFocus();
    QTest::keyClicks(form.edit, QStringLiteral("5"));

    clickItem(rightClick(form.edit), mapaZnaku);
    QCOMPARE(form.edit->text(), QStringLiteral("5") + euro);
}

void TestOxaPopupMenu::registration()
{
    Catalogue::Instance().Clear();
    RegisterOxaPopupMenu();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TOxaPopUpMenu"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QCOMPARE(entry->Unit, QStringLiteral("OxaPopupMenu"));
    QVERIFY(!entry->IsWidget);
    QWidget owner;
    auto *menu = qobject_cast<TOxaPopUpMenu *>(
        Catalogue::Instance().Create(QStringLiteral("TOxaPopUpMenu"), &owner));
    QVERIFY(menu);
    QCOMPARE(menu->actions().size(), 9);
    Catalogue::Instance().Clear();
}

QTEST_MAIN(TestOxaPopupMenu)
#include "tst_oxapopupmenu.moc"
