#include "oxa/controls/EditOxa.h"
#include "oxa/controls/MapaZnaku.h"
#include "oxa/controls/OxaPopupMenu.h"
#include "oxa/toolkit/StringGrid.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QPushButton>
#include <QTest>

using namespace oxa;

namespace {

const QString zpet = QStringLiteral("Zpět"), vyjmout = QStringLiteral("Vyjmout"),
              kopirovat = QStringLiteral("Kopírovat"), vlozit = QStringLiteral("Vložit"),
              odstranit = QStringLiteral("Odstranit"), vybratVse = QStringLiteral("Vybrat vše"),
              mapaZnaku = QStringLiteral("Mapa znaků...");

// A shown window: the edit under test and a second edit holding the focus.
struct Form
{
    QWidget window;
    TEditOxa *edit = new TEditOxa(&window);
    TEditOxa *other = new TEditOxa(&window);

    bool show()
    {
        window.resize(240, 80);
        edit->setGeometry(10, 10, 200, 24);
        other->setGeometry(10, 44, 200, 24);
        if (!test::ShowAndActivate(&window))
            return false;
        other->setFocus();
        return other->hasFocus();
    }
};

int countOf(const QMenu *menu, const QString &caption)
{
    const QList<QAction *> items = menu->actions();
    return int(std::count_if(items.begin(), items.end(),
                             [&](QAction *item) { return item->text() == caption; }));
}

// Right-clicks the widget as the user does; returns the menu that opened.
QMenu *rightClick(QWidget *widget)
{
    QWidget *top = widget->window();
    QTest::mouseClick(top->windowHandle(), Qt::RightButton, {},
                      widget->mapTo(top, widget->rect().center()));
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

void chooseFromContextMenu(QWidget *widget, const QString &caption)
{
    QMenu *menu = rightClick(widget);
    QVERIFY(menu);
    QAction *item = FindMenuItem(menu, caption);
    QVERIFY2(item, qPrintable(caption));
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
}

} // namespace

class TestOxaPopupMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtItemsReportTheirKind();
    void rightClickEnablesItems_data();
    void rightClickEnablesItems();
    void commandsActOnEdit();
    void hostMenuGetsOneCharMapItem();
    void noMenuWork_data();
    void noMenuWork();
    void charMap_data();
    void charMap();
};

void TestOxaPopupMenu::builtItemsReportTheirKind()
{
    struct Expected { const char *name; QString caption; int kind; };
    const QList<Expected> expected = {
        {"_zpet", zpet, itUndo},         {"_1", {}, -1},
        {"_vyjmout", vyjmout, itCut},    {"_kopirovat", kopirovat, itCopy},
        {"_vlozit", vlozit, itPaste},    {"_odstranit", odstranit, itDelete},
        {"_2", {}, -1},                  {"_vybratvse", vybratVse, itSelectAll},
        {"_popupmapaznaku", mapaZnaku, itCharMap},
    };
    TOxaPopUpMenu menu;
    QList<int> reported;
    menu.OnItemClick = [&](QObject *sender, TItemTyp item, QChar key) {
        QCOMPARE(sender, &menu);
        QVERIFY(key.isNull());
        reported.append(item);
    };
    const QList<QAction *> items = menu.actions();
    QCOMPARE(items.size(), expected.size());
    for (int i = 0; i < items.size(); ++i) {
        QCOMPARE(items[i]->objectName(), QString::fromLatin1(expected[i].name));
        QCOMPARE(items[i]->isSeparator(), expected[i].caption.isEmpty());
        QVERIFY(items[i]->isEnabled() && !items[i]->isChecked() && items[i]->shortcut().isEmpty());
        if (items[i]->isSeparator() || expected[i].kind == itCharMap)
            continue;
        QCOMPARE(items[i]->text(), expected[i].caption);
        items[i]->trigger();
        QCOMPARE(reported.takeLast(), expected[i].kind);
    }
}

void TestOxaPopupMenu::rightClickEnablesItems_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("selStart");
    QTest::addColumn<int>("selLength");
    QTest::addColumn<bool>("selection");
    QTest::addColumn<bool>("notAll");

    QTest::newRow("empty edit") << "" << 0 << 0 << false << false;
    QTest::newRow("no selection") << "abc" << 1 << 0 << false << true;
    QTest::newRow("part selected") << "abc" << 1 << 1 << true << true;
    QTest::newRow("all selected") << "abc" << 0 << 3 << true << false;
}

void TestOxaPopupMenu::rightClickEnablesItems()
{
    QFETCH(QString, typed);
    QFETCH(int, selStart);
    QFETCH(int, selLength);
    QFETCH(bool, selection);
    QFETCH(bool, notAll);

    Form form;
    QVERIFY(form.show());
    QTest::keyClicks(form.edit, typed); // typed before entry: the menu is made on entry
    form.edit->setSelection(selStart, selLength);
    QCOMPARE(form.edit->PopupMenu(), nullptr);
    QMenu *menu = rightClick(form.edit);
    QVERIFY(form.edit->hasFocus());
    QVERIFY(qobject_cast<TOxaPopUpMenu *>(menu));
    QCOMPARE(menu, form.edit->PopupMenu());

    QCOMPARE(FindMenuItem(menu, zpet)->isEnabled(), !typed.isEmpty());
    QCOMPARE(FindMenuItem(menu, vyjmout)->isEnabled(), selection);
    QCOMPARE(FindMenuItem(menu, kopirovat)->isEnabled(), selection);
    QCOMPARE(FindMenuItem(menu, odstranit)->isEnabled(), selection);
    QCOMPARE(FindMenuItem(menu, vybratVse)->isEnabled(), notAll);
    QVERIFY(FindMenuItem(menu, vlozit)->isEnabled() && FindMenuItem(menu, mapaZnaku)->isEnabled());
    menu->hide();
}

void TestOxaPopupMenu::commandsActOnEdit()
{
    Form form;
    QVERIFY(form.show());
    form.edit->setFocus();
    QTest::keyClicks(form.edit, QStringLiteral("abc def"));

    form.edit->setSelection(0, 4);
    chooseFromContextMenu(form.edit, vyjmout);
    QCOMPARE(form.edit->text(), QStringLiteral("def"));
    form.edit->end(false);
    chooseFromContextMenu(form.edit, vlozit);
    QCOMPARE(form.edit->text(), QStringLiteral("defabc "));
    form.edit->setCursorPosition(0);
    form.edit->PopUpOnItemClick(nullptr, itDelete, QChar()); // deletes a selection only
    QCOMPARE(form.edit->text(), QStringLiteral("defabc "));

    chooseFromContextMenu(form.edit, vybratVse);
    QCOMPARE(form.edit->selectedText(), form.edit->text());
    chooseFromContextMenu(form.edit, kopirovat);
    chooseFromContextMenu(form.edit, odstranit);
    QCOMPARE(form.edit->text(), QString());
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("defabc "));
    chooseFromContextMenu(form.edit, zpet);
    QCOMPARE(form.edit->text(), QStringLiteral("defabc "));
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
        QCOMPARE(host.actions(), QList<QAction *>{print});
    }
    QCOMPARE(rightClick(form.edit), &host);
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
    QMenu host;
    host.addAction(QStringLiteral("Tisk"));
    for (TEditOxa *edit : {form.edit, form.other}) {
        edit->setReadOnly(readOnly);
        edit->SetMapaZnaku(withMap);
    }
    form.other->SetPopupMenu(&host); // gets the focus on show
    QVERIFY(form.show());
    QCOMPARE(host.actions().size(), 1);

    // Without a menu of its own the edit shows the standard one of Qt.
    QMenu *shown = rightClick(form.edit);
    QCOMPARE(form.edit->PopupMenu(), nullptr);
    QVERIFY(shown && !qobject_cast<TOxaPopUpMenu *>(shown));
    shown->close();
}

void TestOxaPopupMenu::charMap_data()
{
    QTest::addColumn<bool>("hostMenu");
    QTest::addColumn<bool>("close");
    QTest::addColumn<QString>("expected");

    // "100 Kc" with "Kc" selected; € is picked by a double click.
    QTest::newRow("own menu") << false << false << QStringLiteral("100 €");
    QTest::newRow("host menu") << true << false << QStringLiteral("100 €");
    QTest::newRow("Zavřít") << false << true << QStringLiteral("100 Kc");
}

void TestOxaPopupMenu::charMap()
{
    QFETCH(bool, hostMenu);
    QFETCH(bool, close);
    QFETCH(QString, expected);

    test::DialogAnswerer answerer([close](QDialog *dialog) {
        auto *form = qobject_cast<TMapaZnaku *>(dialog);
        form->show();
        TStringGrid *grid = form->StrGdMapa();
        const int index = int(TMapaZnaku::Znaky().indexOf(QChar(0x20AC)));
        const QPoint cell = grid->CellRect(index % 11, index / 11).center();
        if (close) {
            QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell);
            QTest::mouseClick(form->btnZavrit(), Qt::LeftButton);
        } else {
            QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, cell);
        }
        return TModalResult(form->result());
    });
    Form form;
    QMenu host;
    if (hostMenu)
        form.edit->SetPopupMenu(&host);
    QVERIFY(form.show());
    form.edit->setFocus();
    QTest::keyClicks(form.edit, QStringLiteral("100 Kc"));
    form.edit->setSelection(4, 2);

    chooseFromContextMenu(form.edit, mapaZnaku);
    QCOMPARE(answerer.Count(), 1);
    QCOMPARE(form.edit->text(), expected);
}

QTEST_MAIN(TestOxaPopupMenu)
#include "tst_oxapopupmenu.moc"
