#include "oxa/controls/EditOxa.h"
#include "oxa/controls/MapaZnaku.h"
#include "oxa/controls/OxaPopupMenu.h"
#include "oxa/toolkit/StringGrid.h"
#include "support/TestSupport.h"

#include <QClipboard>
#include <QTest>

using namespace oxa;

namespace {

const QString zpet = QStringLiteral("Zpět"), vyjmout = QStringLiteral("Vyjmout"),
              kopirovat = QStringLiteral("Kopírovat"), vlozit = QStringLiteral("Vložit"),
              odstranit = QStringLiteral("Odstranit"), vybratVse = QStringLiteral("Vybrat vše"),
              mapaZnaku = QStringLiteral("Mapa znaků...");

// The edit under test and a second edit holding the focus.
struct Form : test::TestForm
{
    TEditOxa *edit = Add<TEditOxa>();
    TEditOxa *other = Add<TEditOxa>();
    bool show() { return Show(other); }
};

} // namespace

class TestOxaPopupMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtItems()
    {
        // Hosts find items by name; the character map's is the odd one.
        TOxaPopUpMenu menu;
        QCOMPARE(menu.Item(QStringLiteral("_popupmapaznaku"))->text(), mapaZnaku);
        // A click is one event with the item's kind and no character.
        int reported = -1;
        menu.OnItemClick = [&](QObject *sender, TItemTyp item, QChar key) {
            reported = sender == &menu && key.isNull() ? item : -2;
        };
        menu.Item(QStringLiteral("_odstranit"))->trigger();
        QCOMPARE(reported, int(itDelete));
    }

    void rightClickEnablesItems_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("selStart");
        QTest::addColumn<int>("selLength");
        QTest::addColumn<bool>("selection");
        QTest::addColumn<bool>("notAll");
        QTest::newRow("empty edit") << "" << 0 << 0 << false << false;
        QTest::newRow("no selection") << "abc" << 1 << 0 << false << true;
        QTest::newRow("all selected") << "abc" << 0 << 3 << true << false;
    }

    void rightClickEnablesItems()
    {
        QFETCH(QString, typed);
        QFETCH(int, selStart);
        QFETCH(int, selLength);
        Form form;
        QVERIFY(form.show());
        QTest::keyClicks(form.edit, typed); // typed before entry: the menu is made on entry
        form.edit->setSelection(selStart, selLength);
        QCOMPARE(form.edit->PopupMenu(), nullptr);
        QMenu *menu = test::RightClick(form.edit);
        QVERIFY(form.edit->hasFocus());
        QVERIFY(qobject_cast<TOxaPopUpMenu *>(menu));
        QCOMPARE(menu, form.edit->PopupMenu());

        QCOMPARE(FindMenuItem(menu, zpet)->isEnabled(), !typed.isEmpty());
        for (const QString &caption : {vyjmout, kopirovat, odstranit})
            QTEST(FindMenuItem(menu, caption)->isEnabled(), "selection");
        QTEST(FindMenuItem(menu, vybratVse)->isEnabled(), "notAll");
        QVERIFY(FindMenuItem(menu, vlozit)->isEnabled() &&
                FindMenuItem(menu, mapaZnaku)->isEnabled());
        menu->hide();
    }

    void commandsActOnEdit()
    {
        Form form;
        QVERIFY(form.Show(form.edit));
        QTest::keyClicks(form.edit, QStringLiteral("abc def"));
        form.edit->setSelection(0, 4);
        // Each item after the other, and the text it leaves.
        const QList<std::pair<QString, QString>> steps = {
            {vyjmout, "def"},       {vlozit, "abc def"}, {vybratVse, "abc def"},
            {kopirovat, "abc def"}, {odstranit, ""},     {zpet, "abc def"}};
        for (const auto &[item, text] : steps) {
            QVERIFY(test::RightClick(form.edit, item));
            QCOMPARE(form.edit->text(), text);
        }
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("abc def"));
    }

    void menuWork_data()
    {
        QTest::addColumn<bool>("readOnly");
        QTest::newRow("writable") << false;
        QTest::newRow("read-only") << true;
    }

    // A host's menu gets one "Mapa znaků..." item while the edit is focused;
    // an edit without a host's menu gets a menu of its own.
    void menuWork()
    {
        QFETCH(bool, readOnly);
        const bool works = !readOnly;
        Form form;
        QMenu host;
        QAction *print = host.addAction(QStringLiteral("Tisk"));
        for (TEditOxa *edit : {form.edit, form.other})
            edit->setReadOnly(readOnly);
        form.edit->SetPopupMenu(&host);
        QVERIFY(form.show());
        for (int round = 0; round < 2; ++round) {
            form.edit->setFocus();
            QCOMPARE(host.actions().size(), works ? 2 : 1);
            QCOMPARE(host.actions().last()->text(), works ? mapaZnaku : QStringLiteral("Tisk"));
            form.other->setFocus();
            QCOMPARE(host.actions(), QList<QAction *>{print});
        }
        QCOMPARE(test::RightClick(form.edit), &host);
        host.hide();
        // Without a menu of its own the edit shows the standard one of Qt.
        QMenu *shown = test::RightClick(form.other);
        QVERIFY(shown);
        QCOMPARE(bool(qobject_cast<TOxaPopUpMenu *>(shown)), works);
        shown->close();
    }

    void charMap_data()
    {
        QTest::addColumn<bool>("hostMenu");
        QTest::newRow("own menu") << false;
        QTest::newRow("host menu") << true;
    }

    void charMap()
    {
        QFETCH(bool, hostMenu);
        // The dialog itself is driven in its own test; here € is picked and
        // inserted in place of the selected "Kc".
        test::DialogAnswerer answerer([](QDialog *dialog) {
            auto *form = qobject_cast<TMapaZnaku *>(dialog);
            form->show();
            const int index = int(TMapaZnaku::Znaky().indexOf(QChar(0x20AC)));
            const QPoint cell = form->StrGdMapa()->CellRect(index % 11, index / 11).center();
            QTest::mouseClick(form->StrGdMapa()->viewport(), Qt::LeftButton, {}, cell);
            return mrOk;
        });
        Form form;
        QMenu host;
        if (hostMenu)
            form.edit->SetPopupMenu(&host);
        QVERIFY(form.Show(form.edit));
        QTest::keyClicks(form.edit, QStringLiteral("100 Kc"));
        form.edit->setSelection(4, 2);
        QVERIFY(test::RightClick(form.edit, mapaZnaku));
        QCOMPARE(answerer.Count(), 1);
        QCOMPARE(form.edit->text(), QStringLiteral("100 €"));
    }
};

QTEST_MAIN(TestOxaPopupMenu)
#include "tst_oxapopupmenu.moc"
