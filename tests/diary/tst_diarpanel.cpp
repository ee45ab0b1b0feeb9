#include "oxa/diary/DiarPanel.h"
#include "oxa/diary/MonthGrid.h"

#include "support/TestSupport.h"

#include <QAction>
#include <QDrag>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

using namespace oxa;

namespace {

TDate Den(int month, int day, int year = 2026)
{
    return EncodeDate(year, month, day);
}

TTime Cas(int h, int n)
{
    return EncodeTime(h, n, 0, 0);
}

TDayRecord Zaznam(qint32 id, TDate datum, TTime od, TTime doCasu, const char *popis = "",
                  TZdrojKontaktu zdroj = zkNone)
{
    TDayRecord z;
    z.ID_DIAR = id;
    int y = 0, m = 0, d = 0;
    DecodeDate(datum, y, m, d);
    z.Den = qint16(d);
    z.RokMesic = DateToMesicRok(datum);
    z.CasOd = od;
    z.CasDo = doCasu;
    z.Popis = popis;
    z.TABULKA_REFERENCE = zdroj;
    return z;
}

QList<qint32> Ids(TDayGroupBox *box)
{
    QList<qint32> ids;
    for (int i = 0; box && i < box->DayListView()->Count(); ++i)
        ids << box->DayListView()->ItemRecord(i)->ID_DIAR;
    return ids;
}

QPoint ItemCenter(TDayListView *list, int index)
{
    return list->visualItemRect(list->topLevelItem(index)).center();
}

void Wheel(QWidget *target, int angle)
{
    const QPoint pos(10, 10);
    QWheelEvent event(pos, target->mapToGlobal(pos), QPoint(), QPoint(0, angle), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &event);
}

// Sends the drag events the platform delivers to the list under the mouse;
// returns whether the last one was accepted.
bool DragOnto(TDayListView *target, QDrag *drag)
{
    const QPoint pos(20, 20);
    QDragEnterEvent enter(pos, Qt::MoveAction, drag->mimeData(), Qt::LeftButton, {});
    QApplication::sendEvent(target->viewport(), &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent drop(pos, Qt::MoveAction, drag->mimeData(), Qt::LeftButton, {});
    drop.setAccepted(false);
    QApplication::sendEvent(target->viewport(), &drop);
    return drop.isAccepted();
}

// A shown panel with a week of entries around Monday 16 November 2026.
struct Diar
{
    TDiarPanel panel;
    QList<TDate> clicks;
    QList<TDayRecord> edited, pacient, opened;

    explicit Diar(TDiarSize size = dsWeek)
    {
        panel.resize(900, 500);
        panel.SetDiarSize(size);
        panel.GotoDate(Den(11, 17));
        panel.AddDayRecord_BeginUpdate();
        panel.AddDayRecord(Zaznam(1, Den(11, 17), Cas(10, 0), Cas(11, 0), "Kontrola", zkPacient));
        panel.AddDayRecord(Zaznam(2, Den(11, 17), Cas(8, 0), Cas(9, 0), "Porada", zkPartner));
        panel.AddDayRecord(Zaznam(3, Den(11, 19), Cas(8, 30), Cas(9, 30), "Odběr"));
        panel.AddDayRecord_EndUpdate();
        panel.OnDayClick = [this](QObject *, TDate d) { clicks << d; };
        panel.OnDayEditEvent = [this](QObject *, const TDayRecord &z) { edited << z; };
        panel.OnChangePacient = [this](QObject *, const TDayRecord &z) { pacient << z; };
    }
    TDayListView *List(TDate d) { return panel.GetDayGroupBox(d)->DayListView(); }
};

} // namespace

class TestDiarPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void views_data();
    void views();
    void boxGeometry();
    void storeFollowsTheMonth();
    void bulkLoading();
    void wheel();
    void clicksSelectTheDay();
    void arrowKeys_data();
    void arrowKeys();
    void popupMenu();
    void doubleClicks();
    void monthGridDoubleClick();
    void monthGridFollowsTheDay();
    void dragAndDrop();
    void keyboardMoveAndDelete();
    void selectionEvents();
};

void TestDiarPanel::views_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<TDate>("goTo");
    QTest::addColumn<TDate>("selected");
    QTest::addColumn<TDate>("firstBox");
    QTest::addColumn<int>("boxes");
    QTest::addColumn<TDate>("visibleMax");

    QTest::newRow("day") << int(dsDay) << Den(11, 18) << Den(11, 18) << Den(11, 18) << 1 << Den(11, 18);
    QTest::newRow("work week") << int(dsWorkWeek) << Den(11, 18) << Den(11, 18) << Den(11, 16) << 5
                               << Den(11, 20);
    QTest::newRow("work week, Saturday") << int(dsWorkWeek) << Den(11, 21) << Den(11, 20) << Den(11, 16)
                                         << 5 << Den(11, 20);
    QTest::newRow("work week, Sunday") << int(dsWorkWeek) << Den(11, 22) << Den(11, 20) << Den(11, 16)
                                       << 5 << Den(11, 20);
    QTest::newRow("week across months") << int(dsWeek) << Den(10, 1) << Den(10, 1) << Den(9, 28) << 7
                                        << Den(10, 4);
    QTest::newRow("month") << int(dsMonth) << Den(2, 10, 2027) << Den(2, 10, 2027) << Den(2, 10, 2027)
                           << 1 << Den(2, 28, 2027);
}

void TestDiarPanel::views()
{
    QFETCH(int, size);
    QFETCH(TDate, goTo);
    QFETCH(TDate, selected);
    QFETCH(TDate, firstBox);
    QFETCH(int, boxes);
    QFETCH(TDate, visibleMax);

    TDiarPanel panel;
    panel.SetDiarSize(TDiarSize(size));
    panel.GotoDate(goTo);
    QCOMPARE(panel.SelectedDay(), selected);
    QCOMPARE(panel.DayGroupBoxCount(), boxes);
    QCOMPARE(panel.DayGroupBox(0)->Date(), firstBox);
    QCOMPARE(panel.VisibleDateMax(), visibleMax);
    QCOMPARE(panel.VisibleDateMin(), FirstVisibleDate(selected, TDiarSize(size)));
    for (int i = 0; i < boxes; ++i) {
        QCOMPARE(panel.DayGroupBox(i)->Date(), firstBox + i);
        QCOMPARE(panel.DayGroupBox(i)->Active(), panel.DayGroupBox(i)->Date() == selected);
    }
    QCOMPARE(panel.ActiveDayGroupBox()->Date(), selected);
    QCOMPARE(panel.DayListView(), panel.ActiveDayGroupBox()->DayListView());
    QCOMPARE(panel.MonthGridShowing(), size == dsMonth);
}

void TestDiarPanel::boxGeometry()
{
    TDiarPanel panel;
    panel.resize(703, 400);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    int left = 0;
    for (int i = 0; i < 7; ++i) {
        const QRect r = panel.DayGroupBox(i)->geometry();
        QCOMPARE(r.left(), left);
        QVERIFY(r.width() == 100 || r.width() == 101);
        QCOMPARE(r.height(), 400);
        left += r.width();
    }
    QCOMPARE(left, 703);

    // The month: the grid above, the selected day's box below it.
    QVERIFY_THROWS_EXCEPTION(Exception, panel.getMonthGridSelectStartTime());
    try {
        panel.getMonthGridSelectEndTime();
    } catch (const Exception &e) {
        QCOMPARE(e.Message(), QStringLiteral("MonthGrid je nil"));
    }
    panel.resize(1000, 700);
    panel.SetDiarSize(dsMonth);
    const QRect grid = panel.MonthGrid()->geometry();
    const QRect box = panel.DayGroupBox(0)->geometry();
    QCOMPARE(grid.top(), 0);
    QCOMPARE(box.top(), grid.bottom() + 1);
    QCOMPARE(box.bottom(), 699);
    QVERIFY(box.height() >= 90);
    QCOMPARE(panel.DayGroupBoxCount(), 1);
}

void TestDiarPanel::storeFollowsTheMonth()
{
    TDiarPanel panel;
    panel.GotoDate(Den(6, 1));
    QSignalSpy changed(&panel, &TDiarPanel::monthYearChanged);
    panel.GotoDate(Den(11, 30));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.last().at(0).toInt(), 12611);
    QCOMPARE(panel.DataDateMin(), Den(10, 25));
    QCOMPARE(panel.DataDateMax(), Den(12, 7));

    // The week of 30 November shows the first days of December from the store.
    panel.AddDayRecord(Zaznam(5, Den(12, 3), Cas(9, 0), Cas(9, 30)));
    panel.AddDayRecord(Zaznam(6, Den(12, 9), Cas(9, 0), Cas(9, 30))); // past the store
    QCOMPARE(Ids(panel.GetDayGroupBox(Den(12, 3))), QList<qint32>{5});
    QVERIFY(!panel.IsDayEmpty(Den(12, 3)));
    QVERIFY(panel.IsDayEmpty(Den(12, 9)));
    TDayRecord bad = Zaznam(7, Den(11, 30), 0, 0);
    bad.Den = 31;
    QVERIFY_THROWS_EXCEPTION(EConvertError, panel.AddDayRecord(bad));

    // Moving within the month keeps the store; into another month empties it.
    panel.GotoDate(Den(11, 2));
    QCOMPARE(changed.count(), 1);
    panel.GotoDate(Den(12, 3));
    QCOMPARE(changed.count(), 2);
    QVERIFY(Ids(panel.GetDayGroupBox(Den(12, 3))).isEmpty());

    // GotoMonth keeps the day where the month has it.
    panel.GotoDate(Den(1, 31, 2027));
    panel.GotoMonth(2, 2027);
    QCOMPARE(panel.SelectedDay(), Den(2, 28, 2027));
    panel.GotoMonth(qint16(12703));
    QCOMPARE(panel.SelectedDay(), Den(3, 28, 2027));
    QVERIFY_THROWS_EXCEPTION(EConvertError, panel.GotoMonth(13, 2027));
    QVERIFY_THROWS_EXCEPTION(EConvertError, panel.GotoDate(30, qint16(12702)));
}

void TestDiarPanel::bulkLoading()
{
    TDiarPanel panel;
    panel.SetDiarSize(dsWeek);
    panel.GotoDate(Den(11, 17));
    panel.AddDayRecord_BeginUpdate();
    panel.AddDayRecord_BeginUpdate();
    panel.AddDayRecord(Zaznam(1, Den(11, 17), Cas(10, 0), Cas(11, 0)));
    panel.AddDayRecord(Zaznam(2, Den(11, 17), Cas(8, 0), Cas(9, 0)));
    panel.AddDayRecord_EndUpdate();
    QVERIFY(Ids(panel.GetDayGroupBox(Den(11, 17))).isEmpty());
    QCOMPARE(panel.getZaznamyCount(17), 2);
    panel.AddDayRecord_EndUpdate();
    QCOMPARE(Ids(panel.GetDayGroupBox(Den(11, 17))), (QList<qint32>{2, 1}));
    QCOMPARE(panel.GetDayGroupBox(Den(11, 17))->title().right(6), QStringLiteral("  (2) "));

    TCalDaysArray days;
    panel.getAktualniPocty(days);
    QCOMPARE(days[17], 17u);
    QCOMPARE(days[18], 0u);
    QCOMPARE(panel.returnRecords(Cas(8, 30), Cas(10, 30)).size(), 2);

    TDayRecord changed = Zaznam(2, Den(11, 20), Cas(7, 0), Cas(7, 30));
    panel.ChangeDayRecord(changed);
    QCOMPARE(Ids(panel.GetDayGroupBox(Den(11, 17))), QList<qint32>{1});
    QCOMPARE(Ids(panel.GetDayGroupBox(Den(11, 20))), QList<qint32>{2});

    QStringList keys{"1", "9"};
    QVERIFY(panel.RemoveRecords(keys));
    QCOMPARE(keys, QStringList{"9"});
    QVERIFY(Ids(panel.GetDayGroupBox(Den(11, 17))).isEmpty());
    panel.Clear();
    QVERIFY(Ids(panel.GetDayGroupBox(Den(11, 20))).isEmpty());
}

void TestDiarPanel::wheel()
{
    Diar d(dsWeek);
    QVERIFY(test::ShowAndActivate(&d.panel));
    QWidget *viewport = d.List(Den(11, 17))->viewport();
    Wheel(viewport, -120);
    QCOMPARE(d.panel.SelectedDay(), Den(11, 18));
    Wheel(&d.panel, -240);
    QCOMPARE(d.panel.SelectedDay(), Den(11, 20));
    Wheel(viewport, 120);
    QCOMPARE(d.clicks, (QList<TDate>{Den(11, 18), Den(11, 20), Den(11, 19)}));

    // The last day shown and the first day of the month are walls.
    d.panel.GotoDate(Den(11, 22));
    d.clicks.clear();
    Wheel(&d.panel, -120);
    QCOMPARE(d.panel.SelectedDay(), Den(11, 22));
    d.panel.GotoDate(Den(11, 1));
    Wheel(&d.panel, 120);
    QCOMPARE(d.panel.SelectedDay(), Den(11, 1));
    QVERIFY(d.clicks.isEmpty());

    // The day view shows one day, so the wheel only goes back.
    d.panel.SetDiarSize(dsDay);
    d.panel.GotoDate(Den(11, 10));
    Wheel(&d.panel, -120);
    QCOMPARE(d.panel.SelectedDay(), Den(11, 10));
    Wheel(&d.panel, 120);
    QCOMPARE(d.panel.SelectedDay(), Den(11, 9));
}

void TestDiarPanel::clicksSelectTheDay()
{
    Diar d(dsWeek);
    QVERIFY(test::ShowAndActivate(&d.panel));
    TDayGroupBox *thursday = d.panel.GetDayGroupBox(Den(11, 19));
    QTest::mouseClick(thursday->DayListView()->viewport(), Qt::LeftButton, {}, QPoint(10, 60));
    QVERIFY(thursday->Active());
    QCOMPARE(d.panel.GetDayGroupBox(Den(11, 17))->Active(), false);
    TDayGroupBox *saturday = d.panel.GetDayGroupBox(Den(11, 21));
    QTest::mouseClick(saturday, Qt::LeftButton, {}, QPoint(saturday->width() / 2, 5));
    QCOMPARE(d.clicks, (QList<TDate>{Den(11, 19), Den(11, 21)}));
    QCOMPARE(d.panel.SelectedDay(), Den(11, 21));
}

void TestDiarPanel::arrowKeys_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<TDate>("from");
    QTest::addColumn<int>("key");
    QTest::addColumn<TDate>("to");

    QTest::newRow("day, left") << int(dsDay) << Den(11, 17) << int(Qt::Key_Left) << Den(11, 16);
    QTest::newRow("day, up") << int(dsDay) << Den(11, 17) << int(Qt::Key_Up) << Den(11, 16);
    QTest::newRow("day, down") << int(dsDay) << Den(11, 30) << int(Qt::Key_Down) << Den(12, 1);
    QTest::newRow("week, right") << int(dsWeek) << Den(11, 22) << int(Qt::Key_Right) << Den(11, 23);
    QTest::newRow("week, up") << int(dsWeek) << Den(11, 17) << int(Qt::Key_Up) << Den(11, 10);
    QTest::newRow("work week, Friday right") << int(dsWorkWeek) << Den(11, 20) << int(Qt::Key_Right)
                                             << Den(11, 23);
    QTest::newRow("work week, Monday left") << int(dsWorkWeek) << Den(11, 16) << int(Qt::Key_Left)
                                            << Den(11, 13);
    QTest::newRow("work week, down") << int(dsWorkWeek) << Den(11, 18) << int(Qt::Key_Down) << Den(11, 25);
    QTest::newRow("month, down") << int(dsMonth) << Den(11, 17) << int(Qt::Key_Down) << Den(11, 18);
    QTest::newRow("month, left") << int(dsMonth) << Den(11, 1) << int(Qt::Key_Left) << Den(10, 31);
}

void TestDiarPanel::arrowKeys()
{
    QFETCH(int, size);
    QFETCH(TDate, from);
    QFETCH(int, key);
    QFETCH(TDate, to);

    Diar d{TDiarSize(size)};
    d.panel.GotoDate(from);
    QVERIFY(test::ShowAndActivate(&d.panel));
    d.panel.DayListView()->setFocus();
    QTest::keyClick(d.panel.DayListView(), Qt::Key(key));
    QCOMPARE(d.panel.SelectedDay(), to);
    QCOMPARE(d.clicks, QList<TDate>{to});
    // The keys go on from the new day's list.
    QCOMPARE(QApplication::focusWidget(), d.panel.DayListView());
}

void TestDiarPanel::popupMenu()
{
    Diar d(dsWeek);
    QVERIFY(test::ShowAndActivate(&d.panel));
    TDayListView *list = d.List(Den(11, 17));
    QMenu *menu = d.panel.PopupMenu();
    // Right-clicking an item selects it; the platform then asks for the menu.
    auto rightClick = [&](const QPoint &pos) {
        QTest::mouseClick(list->viewport(), Qt::RightButton, {}, pos);
        QContextMenuEvent event(QContextMenuEvent::Mouse, pos, list->viewport()->mapToGlobal(pos));
        QApplication::sendEvent(list->viewport(), &event);
        QVERIFY(menu->isVisible());
    };
    struct Case { QPoint pos; bool edit, pacient; };
    const QList<Case> cases{{ItemCenter(list, 1), true, true},   // the patient's entry
                            {ItemCenter(list, 0), true, false},  // a partner's
                            {QPoint(10, list->viewport()->height() - 4), false, false}};
    for (const Case &c : cases) {
        rightClick(c.pos);
        QCOMPARE(d.panel.MenuItemEdit()->isEnabled(), c.edit);
        QCOMPARE(d.panel.MenuItemPacient()->isEnabled(), c.pacient);
        menu->hide();
    }
    QCOMPARE(d.panel.MenuItemEdit()->text(), QStringLiteral("Editovat"));
    QCOMPARE(d.panel.MenuItemPacient()->text(), QStringLiteral("Přejít na pacienta"));

    rightClick(ItemCenter(list, 1));
    d.panel.MenuItemEdit()->trigger();
    d.panel.MenuItemPacient()->trigger();
    QCOMPARE(d.edited.size(), 1);
    QCOMPARE(d.edited.first().ID_DIAR, 1);
    QCOMPARE(d.pacient.size(), 1);
    menu->hide();

    // A right click in another day's box selects that day first.
    TDayListView *thursday = d.List(Den(11, 19));
    QTest::mouseClick(thursday->viewport(), Qt::RightButton, {}, ItemCenter(thursday, 0));
    QContextMenuEvent event(QContextMenuEvent::Mouse, ItemCenter(thursday, 0),
                            thursday->viewport()->mapToGlobal(ItemCenter(thursday, 0)));
    QApplication::sendEvent(thursday->viewport(), &event);
    QCOMPARE(d.panel.SelectedDay(), Den(11, 19));
    QCOMPARE(d.panel.GetSelectedItemID(), 3);
    menu->hide();
}

void TestDiarPanel::doubleClicks()
{
    Diar d(dsWeek);
    QList<TDate> dayDblClicks;
    d.panel.OnDayDblClick = [&dayDblClicks](QObject *, TDate datum) { dayDblClicks << datum; };
    QVERIFY(test::ShowAndActivate(&d.panel));
    TDayListView *list = d.List(Den(11, 17));
    const QPoint patient = ItemCenter(list, 1);

    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, patient);
    TDiarNastaveni nastaveni;
    nastaveni.dblklikSchuzkaChangePac = true;
    d.panel.SetDiarNastaveni(nastaveni);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, patient);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, ItemCenter(list, 0)); // a partner
    QCOMPARE(d.edited.size(), 2);
    QCOMPARE(d.pacient.size(), 1);

    QList<qint32> items;
    d.panel.OnDoubleClickItemEvent = [&items](QObject *, const TDayRecord &z) { items << z.ID_DIAR; };
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, patient);
    QCOMPARE(items, QList<qint32>{1});
    QCOMPARE(d.pacient.size(), 1);

    // Below the entries the day itself is meant, not the selected entry.
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, QPoint(10, list->viewport()->height() - 4));
    QCOMPARE(dayDblClicks, QList<TDate>{Den(11, 17)});
    QCOMPARE(items.size(), 1);

    d.panel.SetReadOnly(true);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, patient);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, QPoint(10, list->viewport()->height() - 4));
    QCOMPARE(items.size(), 1);
    QCOMPARE(dayDblClicks.size(), 1);
}

void TestDiarPanel::monthGridDoubleClick()
{
    Diar d(dsMonth);
    d.panel.AddDayRecord(Zaznam(4, Den(11, 17), Cas(8, 30), Cas(9, 15), "Převaz & kontrola"));
    d.panel.AddDayRecord(Zaznam(5, Den(11, 17), Cas(8, 45), Cas(8, 45), "Telefon"));
    QList<TDate> dayDblClicks;
    d.panel.OnDayDblClick = [&dayDblClicks](QObject *, TDate datum) { dayDblClicks << datum; };
    QVERIFY(test::ShowAndActivate(&d.panel));
    TMonthGrid *grid = d.panel.MonthGrid();
    QVERIFY(grid);
    auto doubleClickAt = [&](TTime cas) {
        grid->SetCasOd(7);
        const int col = grid->SlotColumn(cas);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, grid->CellRect(col, 17).center());
    };

    // 08:45-09:00 meets the entries 2, 4 and 5, in the day's stored order.
    doubleClickAt(Cas(8, 50));
    QMenu *menu = d.panel.MonthGridMenu();
    QVERIFY(menu->isVisible());
    QStringList captions, names;
    for (QAction *a : menu->actions())
        captions << a->text(), names << a->objectName();
    QCOMPARE(captions, (QStringList{"08:00-09:00 Porada", "08:30-09:15 Převaz && kontrola",
                                    "08:45-08:45 Telefon"}));
    QCOMPARE(names, (QStringList{"MenuItem1", "MenuItem2", "MenuItem3"}));
    QCOMPARE(d.panel.getMonthGridSelectStartTime(), Cas(8, 45));
    QCOMPARE(d.panel.getMonthGridSelectEndTime(), Cas(9, 0));
    menu->actions().at(1)->trigger();
    QCOMPARE(d.edited.size(), 1);
    QCOMPARE(d.edited.first().ID_DIAR, 4);
    menu->hide();

    doubleClickAt(Cas(10, 15)); // one entry opens at once
    QCOMPARE(d.edited.size(), 2);
    QCOMPARE(d.edited.last().ID_DIAR, 1);
    QVERIFY(!menu->isVisible());
    doubleClickAt(Cas(12, 0)); // nothing there: the day itself
    QCOMPARE(dayDblClicks, QList<TDate>{Den(11, 17)});

    d.panel.SetReadOnly(true);
    doubleClickAt(Cas(8, 50));
    QVERIFY(!menu->isVisible());
    QCOMPARE(d.edited.size(), 2);
}

void TestDiarPanel::monthGridFollowsTheDay()
{
    Diar d(dsMonth);
    QVERIFY(test::ShowAndActivate(&d.panel));
    TMonthGrid *grid = d.panel.MonthGrid();
    QCOMPARE(grid->Row(), 17);
    QVERIFY(grid->DataPaint(17, grid->SlotColumn(Cas(10, 30))).zaznam);

    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->CellRect(grid->LeftCol(), 19).center());
    QCOMPARE(d.panel.SelectedDay(), Den(11, 19));
    QCOMPARE(Ids(d.panel.DayGroupBox(0)), QList<qint32>{3});
    QCOMPARE(d.clicks, QList<TDate>{Den(11, 19)});

    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_Down);
    QCOMPARE(d.panel.SelectedDay(), Den(11, 20));
    QList<TDate> inserted;
    d.panel.OnDayInsertEvent = [&inserted](QObject *, TDate datum) { inserted << datum; };
    QTest::keyClick(grid, Qt::Key_Insert);
    QCOMPARE(inserted, QList<TDate>{Den(11, 20)});

    // Entries added later, and a new month, reach the grid's cells.
    d.panel.AddDayRecord(Zaznam(9, Den(11, 20), Cas(14, 0), Cas(15, 0)));
    QVERIFY(grid->DataPaint(20, grid->SlotColumn(Cas(14, 30))).zaznam);
    d.panel.GotoDate(Den(2, 3, 2027));
    QCOMPARE(grid->RowCount(), 29);
    QCOMPARE(grid->Row(), 3);
    QVERIFY(!grid->DataPaint(20, grid->SlotColumn(Cas(14, 30))).zaznam);

    // A new slot length needs a new grid.
    TDiarNastaveni nastaveni;
    nastaveni.minutDilek = 20;
    d.panel.SetDiarNastaveni(nastaveni);
    QVERIFY(d.panel.MonthGrid() != grid);
    QCOMPARE(d.panel.MonthGrid()->dilkyHodinyDen(), 72);
}

void TestDiarPanel::dragAndDrop()
{
    Diar d(dsWeek);
    QList<std::pair<TDayRecord, TDayRecord>> asked, told;
    bool allow = false;
    d.panel.OnDayItemBeforeMoveEvent = [&](QObject *, const TDayRecord &o, const TDayRecord &n, bool &a) {
        asked << std::pair(o, n);
        a = allow;
    };
    d.panel.OnDayItemMoveEvent = [&](QObject *, const TDayRecord &o, const TDayRecord &n) {
        told << std::pair(o, n);
    };
    QVERIFY(test::ShowAndActivate(&d.panel));
    TDayListView *tuesday = d.List(Den(11, 17));
    TDayListView *thursday = d.List(Den(11, 19));

    // The drag starts from the item under the mouse, unless read-only.
    QList<bool> starts;
    const TStartDragEvent panelsAnswer = tuesday->OnStartDrag;
    tuesday->OnStartDrag = [&](QObject *s, TTextDragObject &o, bool &a) {
        panelsAnswer(s, o, a);
        starts << a;
        a = false;
    };
    for (bool readOnly : {false, true}) {
        d.panel.SetReadOnly(readOnly);
        const QPoint start = ItemCenter(tuesday, 0);
        QTest::mousePress(tuesday->viewport(), Qt::LeftButton, {}, start);
        QTest::mouseMove(tuesday->viewport(), start + QPoint(5, 0));
        QTest::mouseMove(tuesday->viewport(), start + QPoint(40, 30));
        QTest::mouseRelease(tuesday->viewport(), Qt::LeftButton, {}, start + QPoint(40, 30));
    }
    QCOMPARE(starts, (QList<bool>{true, false}));

    TTextDragObject entry(tuesday->topLevelItem(1));
    std::unique_ptr<QDrag> drag(entry.CreateDrag(tuesday));
    QVERIFY(!DragOnto(thursday, drag.get())); // read-only
    d.panel.SetReadOnly(false);
    QVERIFY(!DragOnto(tuesday, drag.get()));   // its own day
    QVERIFY(DragOnto(thursday, drag.get()));   // asked and refused
    QCOMPARE(Ids(d.panel.GetDayGroupBox(Den(11, 17))), (QList<qint32>{2, 1}));
    QVERIFY(told.isEmpty());

    allow = true;
    QVERIFY(DragOnto(thursday, drag.get()));
    QCOMPARE(asked.size(), 2);
    QCOMPARE(told.size(), 1);
    const auto [old, moved] = told.first();
    QCOMPARE(old.Den, qint16(17));
    QCOMPARE(moved.Den, qint16(19));
    QCOMPARE(moved.RokMesic, old.RokMesic);
    QCOMPARE(moved.CasOd, old.CasOd);
    QCOMPARE(moved.CasDo, old.CasDo);
    QCOMPARE(Ids(d.panel.GetDayGroupBox(Den(11, 17))), QList<qint32>{2});
    QCOMPARE(Ids(d.panel.GetDayGroupBox(Den(11, 19))), (QList<qint32>{3, 1}));
    QCOMPARE(d.panel.getZaznamyCount(19), 2);
    QCOMPARE(d.panel.SelectedDay(), Den(11, 19));
    QCOMPARE(d.panel.GetSelectedItemID(), 1);

    // A failing handler refuses the move and is reported.
    test::MessageRecorder messages;
    d.panel.OnDayItemBeforeMoveEvent = [](QObject *, const TDayRecord &, const TDayRecord &, bool &) {
        throw Exception(QStringLiteral("Databáze nedostupná"));
    };
    TTextDragObject back(thursday->topLevelItem(1));
    std::unique_ptr<QDrag> backDrag(back.CreateDrag(thursday));
    DragOnto(tuesday, backDrag.get());
    QCOMPARE(messages.Texts(), QStringList{"Databáze nedostupná"});
    QCOMPARE(Ids(d.panel.GetDayGroupBox(Den(11, 19))), (QList<qint32>{3, 1}));
}

void TestDiarPanel::keyboardMoveAndDelete()
{
    Diar d(dsWeek);
    QList<std::pair<TDayRecord, TDayRecord>> moves;
    d.panel.OnDayMoveEvent = [&](QObject *, const TDayRecord &o, const TDayRecord &n) {
        moves << std::pair(o, n);
    };
    QVERIFY(test::ShowAndActivate(&d.panel));
    TDayListView *tuesday = d.List(Den(11, 17));
    QTest::mouseClick(tuesday->viewport(), Qt::LeftButton, {}, ItemCenter(tuesday, 1));
    QTest::keyClick(tuesday, Qt::Key_Right, Qt::ControlModifier);
    QCOMPARE(moves.size(), 1);
    QCOMPARE(moves.first().second.Den, qint16(18));
    QCOMPARE(d.panel.SelectedDay(), Den(11, 18));
    QCOMPARE(d.panel.GetSelectedItemID(), 1);

    // Delete asks the host; a refusal keeps the entry.
    QList<qint32> asked;
    bool allow = false;
    d.panel.OnDayDeleteEvent = [&](QObject *, PDayRecord z, bool &a) {
        asked << z->ID_DIAR;
        a = allow;
    };
    TDayListView *wednesday = d.panel.DayListView();
    QCOMPARE(QApplication::focusWidget(), wednesday);
    QTest::keyClick(wednesday, Qt::Key_Delete);
    QCOMPARE(d.panel.getZaznamyCount(18), 1);
    allow = true;
    QTest::keyClick(wednesday, Qt::Key_Delete);
    QCOMPARE(asked, (QList<qint32>{1, 1}));
    QCOMPARE(d.panel.getZaznamyCount(18), 0);
    QCOMPARE(wednesday->Count(), 0);

    QList<TDate> inserted;
    d.panel.OnDayInsertEvent = [&inserted](QObject *, TDate datum) { inserted << datum; };
    QTest::keyClick(wednesday, Qt::Key_Insert);
    QCOMPARE(inserted, QList<TDate>{Den(11, 18)});
}

void TestDiarPanel::selectionEvents()
{
    Diar d(dsDay);
    QList<std::pair<qint32, bool>> events;
    d.panel.OnDaySelectItemEvent = [&events](QObject *, QTreeWidgetItem *item, bool selected) {
        events << std::pair(TDayListView::ItemRecord(item)->ID_DIAR, selected);
    };
    QVERIFY(test::ShowAndActivate(&d.panel));
    TDayListView *list = d.panel.DayListView();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, ItemCenter(list, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, ItemCenter(list, 1));
    QCOMPARE(events, (QList<std::pair<qint32, bool>>{{2, true}, {2, false}, {1, true}}));
    // Refills by the panel are no selection of the user's.
    d.panel.ChangeDayRecord(Zaznam(1, Den(11, 17), Cas(12, 0), Cas(13, 0)));
    d.panel.GotoDate(Den(11, 18));
    QCOMPARE(events.size(), 3);
    QCOMPARE(d.panel.GetSelectedItemID(), -1);
}

QTEST_MAIN(TestDiarPanel)
#include "tst_diarpanel.moc"
