#include "oxa/diary/DiarPanel.h"
#include "oxa/diary/MonthGrid_p.h"

#include "DiaryTestSupport.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QDrag>
#include <QMenu>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>

using namespace oxa;
using test::Cas;
using test::ItemCenter;

namespace {

TDate Den(int month, int day, int year = 2026)
{
    return EncodeDate(year, month, day);
}
TDate Nov(int day)
{
    return EncodeDate(2026, 11, day);
}

TDayRecord Zaznam(qint32 id, TDate datum, TTime od, TTime doCasu, const char *popis = "",
                  TZdrojKontaktu zdroj = zkNone)
{
    TDayRecord z = test::Polozka(id, od, doCasu, popis);
    z.Den = qint16(DateTimeToQDate(datum).day());
    z.RokMesic = DateToMesicRok(datum);
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

QPoint BelowItems(TDayListView *list)
{
    return QPoint(10, list->viewport()->height() - 4);
}

void Wheel(QWidget *target, int angle)
{
    const QPoint pos(10, 10);
    QWheelEvent event(pos, target->mapToGlobal(pos), QPoint(), QPoint(0, angle), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &event);
}

// Sends the drag events the platform delivers to the list under the mouse;
// returns whether the drop was accepted.
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

// A panel with entries on Tuesday 17 and Thursday 19 November 2026; the
// host's events are recorded.
struct Diar
{
    TDiarPanel panel;
    QList<TDate> clicks, dblClicks, inserted;
    QList<TDayRecord> edited, pacient;
    // Entries moved with Ctrl+arrows and by dragging (old, new); the host's
    // answer to the questions before moving and deleting.
    QList<std::pair<TDayRecord, TDayRecord>> keyMoves, dragMoves;
    QList<qint32> askedToMove, askedToDelete;
    bool allow = true;

    explicit Diar(TDiarSize size)
    {
        panel.resize(900, 500);
        panel.SetDiarSize(size);
        panel.GotoDate(Nov(17));
        Load();
        panel.OnDayClick = [this](QObject *, TDate d) { clicks << d; };
        panel.OnDayDblClick = [this](QObject *, TDate d) { dblClicks << d; };
        panel.OnDayInsertEvent = [this](QObject *, TDate d) { inserted << d; };
        panel.OnDayEditEvent = [this](QObject *, const TDayRecord &z) { edited << z; };
        panel.OnChangePacient = [this](QObject *, const TDayRecord &z) { pacient << z; };
        panel.OnDayMoveEvent = [this](QObject *, const TDayRecord &o, const TDayRecord &n) {
            keyMoves << std::pair(o, n);
        };
        panel.OnDayItemMoveEvent = [this](QObject *, const TDayRecord &o, const TDayRecord &n) {
            dragMoves << std::pair(o, n);
        };
        panel.OnDayItemBeforeMoveEvent = [this](QObject *, const TDayRecord &o, const TDayRecord &,
                                                bool &a) {
            askedToMove << o.ID_DIAR;
            a = allow;
        };
        panel.OnDayDeleteEvent = [this](QObject *, PDayRecord z, bool &a) {
            askedToDelete << z->ID_DIAR;
            a = allow;
        };
    }
    void Load()
    {
        panel.AddDayRecord_BeginUpdate();
        panel.AddDayRecord(Zaznam(1, Nov(17), Cas(10, 0), Cas(11, 0), "Kontrola", zkPacient));
        panel.AddDayRecord(Zaznam(2, Nov(17), Cas(8, 0), Cas(9, 0), "Porada", zkPartner));
        panel.AddDayRecord(Zaznam(3, Nov(19), Cas(8, 30), Cas(9, 30), "Odběr"));
        panel.AddDayRecord_EndUpdate();
    }
    TDayListView *List(TDate d) { return panel.GetDayGroupBox(d)->DayListView(); }
};

// The entries shown selected in all the panel's lists.
QList<qint32> ShownSelection(const TDiarPanel &panel)
{
    QList<qint32> ids;
    for (int i = 0; i < panel.DayGroupBoxCount(); ++i) {
        for (QTreeWidgetItem *item : panel.DayGroupBox(i)->DayListView()->selectedItems())
            ids << TDayListView::ItemRecord(item)->ID_DIAR;
    }
    return ids;
}

// The active box, the focused list and the selection the user sees agree.
void CheckOneSelection(const TDiarPanel &panel, qint32 expected)
{
    const QList<qint32> none;
    QCOMPARE(ShownSelection(panel), expected < 0 ? none : QList<qint32>{expected});
    QCOMPARE(panel.GetSelectedItemID(), expected);
    QCOMPARE(QApplication::focusWidget(), panel.DayListView());
}

} // namespace

class TestDiarPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void views_data();
    void views();
    void storeFollowsTheMonth();
    void bulkLoading();
    void navigation_data();
    void navigation();
    void doubleClicks();
    void monthGrid();
    void dragAndDrop();
    void selectionEvents();
    void oneSelection_data();
    void oneSelection();
    void timeColumnHoldsTheTimes_data();
    void timeColumnHoldsTheTimes();
};

void TestDiarPanel::views_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<TDate>("goTo");
    QTest::addColumn<TDate>("selected");
    QTest::addColumn<TDate>("firstBox");
    QTest::addColumn<int>("boxes");
    QTest::addColumn<TDate>("visibleMin");
    QTest::addColumn<TDate>("visibleMax");

    // The visible dates of a week start on the Sunday before it, those of a
    // month on the day before its first.
    QTest::newRow("day") << int(dsDay) << Nov(18) << Nov(18) << Nov(18) << 1 << Nov(18) << Nov(18);
    QTest::newRow("work week, Sunday")
        << int(dsWorkWeek) << Nov(22) << Nov(20) << Nov(16) << 5 << Nov(15) << Nov(20);
    QTest::newRow("week across the year") << int(dsWeek) << Den(1, 1, 2027) << Den(1, 1, 2027)
                                          << Den(12, 28) << 7 << Den(12, 27) << Den(1, 3, 2027);
    QTest::newRow("leap month") << int(dsMonth) << Den(3, 10, 2028) << Den(3, 10, 2028)
                                << Den(3, 10, 2028) << 1 << Den(2, 29, 2028) << Den(3, 31, 2028);
}

void TestDiarPanel::views()
{
    QFETCH(int, size);
    QFETCH(TDate, goTo);
    QFETCH(TDate, selected);
    QFETCH(TDate, firstBox);
    QFETCH(int, boxes);
    QFETCH(TDate, visibleMin);
    QFETCH(TDate, visibleMax);

    TDiarPanel panel;
    panel.SetDiarSize(TDiarSize(size));
    panel.GotoDate(goTo);
    QCOMPARE(panel.SelectedDay(), selected);
    QCOMPARE(panel.DayGroupBoxCount(), boxes);
    QCOMPARE(panel.VisibleDateMin(), visibleMin);
    QCOMPARE(panel.VisibleDateMax(), visibleMax);
    for (int i = 0; i < boxes; ++i) {
        QCOMPARE(panel.DayGroupBox(i)->Date(), firstBox + i);
        QCOMPARE(panel.DayGroupBox(i)->Active(), firstBox + i == selected);
    }
    QCOMPARE(panel.MonthGridShowing(), size == dsMonth);
    if (size != dsMonth)
        QVERIFY_THROWS_EXCEPTION(Exception, panel.getMonthGridSelectEndTime());
}

void TestDiarPanel::storeFollowsTheMonth()
{
    TDiarPanel panel;
    panel.GotoDate(Den(6, 1));
    QSignalSpy changed(&panel, &TDiarPanel::monthYearChanged);
    panel.GotoDate(Nov(30));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(panel.DataDateMin(), Den(10, 25));
    QCOMPARE(panel.DataDateMax(), Den(12, 7));

    // The week of 30 November shows the first days of December from the store.
    panel.AddDayRecord(Zaznam(5, Den(12, 3), Cas(9, 0), Cas(9, 30)));
    panel.AddDayRecord(Zaznam(6, Den(12, 9), Cas(9, 0), Cas(9, 30))); // past the store
    QCOMPARE(Ids(panel.GetDayGroupBox(Den(12, 3))), QList<qint32>{5});
    QVERIFY(panel.IsDayEmpty(Den(12, 9)));
    TDayRecord bad = Zaznam(7, Nov(30), 0, 0);
    bad.Den = 31;
    QVERIFY_THROWS_EXCEPTION(EConvertError, panel.AddDayRecord(bad));

    // Moving within the month keeps the store; into another month empties it.
    panel.GotoDate(Nov(2));
    QCOMPARE(changed.count(), 1);
    panel.GotoDate(Den(12, 3));
    QCOMPARE(changed.count(), 2);
    QVERIFY(Ids(panel.GetDayGroupBox(Den(12, 3))).isEmpty());

    // GotoMonth keeps the day where the month has it.
    panel.GotoDate(Den(1, 31, 2027));
    panel.GotoMonth(2, 2027);
    QCOMPARE(panel.SelectedDay(), Den(2, 28, 2027));
    QVERIFY_THROWS_EXCEPTION(EConvertError, panel.GotoMonth(13, 2027));
    QVERIFY_THROWS_EXCEPTION(EConvertError, panel.GotoDate(30, qint16(12702)));
}

void TestDiarPanel::bulkLoading()
{
    TDiarPanel panel;
    panel.GotoDate(Nov(17));
    panel.AddDayRecord_BeginUpdate();
    panel.AddDayRecord_BeginUpdate();
    panel.AddDayRecord(Zaznam(1, Nov(17), Cas(10, 0), Cas(11, 0)));
    panel.AddDayRecord(Zaznam(2, Nov(17), Cas(8, 0), Cas(9, 0)));
    panel.AddDayRecord_EndUpdate();
    QVERIFY(Ids(panel.GetDayGroupBox(Nov(17))).isEmpty());
    QCOMPARE(panel.getZaznamyCount(17), 2);
    panel.AddDayRecord_EndUpdate();
    QCOMPARE(Ids(panel.GetDayGroupBox(Nov(17))), (QList<qint32>{2, 1}));
    QCOMPARE(panel.GetDayGroupBox(Nov(17))->title().right(6), QStringLiteral("  (2) "));

    panel.ChangeDayRecord(Zaznam(2, Nov(20), Cas(7, 0), Cas(7, 30)));
    QCOMPARE(Ids(panel.GetDayGroupBox(Nov(17))), QList<qint32>{1});
    QCOMPARE(Ids(panel.GetDayGroupBox(Nov(20))), QList<qint32>{2});
    QStringList keys{"1"};
    QVERIFY(panel.RemoveRecords(keys));
    QVERIFY(Ids(panel.GetDayGroupBox(Nov(17))).isEmpty());
    panel.Clear();
    QVERIFY(Ids(panel.GetDayGroupBox(Nov(20))).isEmpty());
}

// The arrow keys and the wheel move the selected day; the wheel stops at the
// last day shown and at the first day of the month.
void TestDiarPanel::navigation_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<TDate>("from");
    QTest::addColumn<int>("key"); // 0: the wheel turned by the angle
    QTest::addColumn<int>("angle");
    QTest::addColumn<TDate>("to");

    QTest::newRow("day, down") << int(dsDay) << Nov(30) << int(Qt::Key_Down) << 0 << Den(12, 1);
    QTest::newRow("week, up") << int(dsWeek) << Nov(17) << int(Qt::Key_Up) << 0 << Nov(10);
    QTest::newRow("work week, Friday right")
        << int(dsWorkWeek) << Nov(20) << int(Qt::Key_Right) << 0 << Nov(23);
    QTest::newRow("work week, Monday left")
        << int(dsWorkWeek) << Nov(16) << int(Qt::Key_Left) << 0 << Nov(13);
    QTest::newRow("month, left") << int(dsMonth) << Nov(1) << int(Qt::Key_Left) << 0 << Den(10, 31);
    QTest::newRow("wheel, two days") << int(dsWeek) << Nov(17) << 0 << -240 << Nov(19);
    QTest::newRow("wheel, last day shown") << int(dsWeek) << Nov(22) << 0 << -120 << Nov(22);
    QTest::newRow("wheel, first of the month") << int(dsWeek) << Nov(1) << 0 << 120 << Nov(1);
}

void TestDiarPanel::navigation()
{
    QFETCH(int, size);
    QFETCH(TDate, from);
    QFETCH(int, key);
    QFETCH(int, angle);
    QFETCH(TDate, to);

    Diar d{TDiarSize(size)};
    d.panel.GotoDate(from);
    QVERIFY(test::ShowAndActivate(&d.panel));
    d.panel.DayListView()->setFocus();
    if (key)
        QTest::keyClick(d.panel.DayListView(), Qt::Key(key));
    else
        Wheel(d.panel.DayListView()->viewport(), angle);
    QCOMPARE(d.panel.SelectedDay(), to);
    QCOMPARE(d.clicks, to == from ? QList<TDate>{} : QList<TDate>{to});
    // The keys go on from the new day's list.
    QCOMPARE(QApplication::focusWidget(), d.panel.DayListView());
}

void TestDiarPanel::doubleClicks()
{
    Diar d(dsWeek);
    QVERIFY(test::ShowAndActivate(&d.panel));
    TDayListView *list = d.List(Nov(17));
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
    d.panel.OnDoubleClickItemEvent = [&items](QObject *, const TDayRecord &z) {
        items << z.ID_DIAR;
    };
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, patient);
    QCOMPARE(items, QList<qint32>{1});
    QCOMPARE(d.pacient.size(), 1);

    // Below the entries the day itself is meant, not the selected entry.
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, BelowItems(list));
    QCOMPARE(d.dblClicks, QList<TDate>{Nov(17)});
    QCOMPARE(items.size(), 1);

    d.panel.SetReadOnly(true);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, patient);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, BelowItems(list));
    QCOMPARE(items.size(), 1);
    QCOMPARE(d.dblClicks.size(), 1);
}

void TestDiarPanel::monthGrid()
{
    Diar d(dsMonth);
    d.panel.AddDayRecord(Zaznam(4, Nov(17), Cas(8, 30), Cas(9, 15), "Převaz & kontrola"));
    d.panel.AddDayRecord(Zaznam(5, Nov(17), Cas(8, 45), Cas(8, 45), "Telefon"));
    QVERIFY(test::ShowAndActivate(&d.panel));
    TMonthGrid *grid = d.panel.MonthGrid();
    QCOMPARE(grid->Row(), 17);
    auto doubleClickAt = [&](TTime cas) {
        grid->SetCasOd(7);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {},
                           grid->CellRect(grid->SlotColumn(cas), 17).center());
    };

    // 08:45-09:00 meets the entries 2, 4 and 5, in the day's stored order.
    doubleClickAt(Cas(8, 50));
    QMenu *menu = d.panel.MonthGridMenu();
    QVERIFY(menu->isVisible());
    QStringList captions;
    for (QAction *a : menu->actions())
        captions << a->text();
    QCOMPARE(captions,
             (QStringList{"08:00-09:00 Porada", "08:30-09:15 Převaz && kontrola",
                          "08:45-08:45 Telefon"}));
    QCOMPARE(d.panel.getMonthGridSelectStartTime(), Cas(8, 45));
    QCOMPARE(d.panel.getMonthGridSelectEndTime(), Cas(9, 0));
    menu->actions().at(1)->trigger();
    QCOMPARE(test::Klice(d.edited), QList<qint32>{4});
    menu->hide();

    doubleClickAt(Cas(10, 15)); // one entry opens at once
    QCOMPARE(d.edited.last().ID_DIAR, 1);
    QVERIFY(!menu->isVisible());
    doubleClickAt(Cas(12, 0)); // nothing there: the day itself
    QCOMPARE(d.dblClicks, QList<TDate>{Nov(17)});

    // A click on another row selects that day; keys move on from the grid.
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
                      grid->CellRect(grid->LeftCol(), 19).center());
    QCOMPARE(Ids(d.panel.DayGroupBox(0)), QList<qint32>{3});
    QCOMPARE(d.clicks.last(), Nov(19));
    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_Down);
    QTest::keyClick(grid, Qt::Key_Insert);
    QCOMPARE(d.inserted, QList<TDate>{Nov(20)});

    // Entries added later, and a new month, reach the grid's cells.
    d.panel.AddDayRecord(Zaznam(9, Nov(20), Cas(14, 0), Cas(15, 0)));
    QVERIFY(grid->DataPaint(20, grid->SlotColumn(Cas(14, 30))).zaznam);
    d.panel.GotoDate(Den(2, 3, 2027));
    QVERIFY(!grid->DataPaint(20, grid->SlotColumn(Cas(14, 30))).zaznam);
}

void TestDiarPanel::dragAndDrop()
{
    Diar d(dsWeek);
    QVERIFY(test::ShowAndActivate(&d.panel));
    TDayListView *tuesday = d.List(Nov(17));
    TDayListView *thursday = d.List(Nov(19));
    TTextDragObject entry(tuesday->topLevelItem(1));
    std::unique_ptr<QDrag> drag(entry.CreateDrag(tuesday));
    d.panel.SetReadOnly(true);
    QVERIFY(!DragOnto(thursday, drag.get()));
    d.panel.SetReadOnly(false);
    QVERIFY(!DragOnto(tuesday, drag.get())); // its own day
    d.allow = false;
    QVERIFY(DragOnto(thursday, drag.get()));
    QCOMPARE(Ids(d.panel.GetDayGroupBox(Nov(17))), (QList<qint32>{2, 1}));
    QVERIFY(d.dragMoves.isEmpty());

    d.allow = true;
    QVERIFY(DragOnto(thursday, drag.get()));
    QCOMPARE(d.askedToMove, (QList<qint32>{1, 1}));
    QCOMPARE(d.dragMoves.size(), 1);
    const auto [old, moved] = d.dragMoves.first();
    QCOMPARE(old.Den, qint16(17));
    QCOMPARE(moved.Den, qint16(19));
    QCOMPARE(moved.RokMesic, old.RokMesic);
    QCOMPARE(Ids(d.panel.GetDayGroupBox(Nov(19))), (QList<qint32>{3, 1}));

    // A failing handler refuses the move and is reported.
    test::MessageRecorder messages;
    d.panel.OnDayItemBeforeMoveEvent = [](QObject *, const TDayRecord &, const TDayRecord &,
                                          bool &) {
        throw Exception(QStringLiteral("Databáze nedostupná"));
    };
    TTextDragObject back(thursday->topLevelItem(1));
    std::unique_ptr<QDrag> backDrag(back.CreateDrag(thursday));
    DragOnto(tuesday, backDrag.get());
    QCOMPARE(messages.Texts(), QStringList{"Databáze nedostupná"});
    QCOMPARE(Ids(d.panel.GetDayGroupBox(Nov(19))), (QList<qint32>{3, 1}));
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
    d.panel.ChangeDayRecord(Zaznam(1, Nov(17), Cas(12, 0), Cas(13, 0)));
    d.panel.GotoDate(Nov(18));
    QCOMPARE(events.size(), 3);
    QCOMPARE(d.panel.GetSelectedItemID(), -1);
}

// Each view keeps one selection: after clicks into other days, a drop, a
// move of the period by the host and a reload, every key and menu command
// reaches the host with the entry the user sees selected, or does nothing.
void TestDiarPanel::oneSelection_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("sequence");
    QTest::addColumn<int>("expected");
    const QList<std::pair<const char *, TDiarSize>> views{
        {"day", dsDay}, {"work week", dsWorkWeek}, {"week", dsWeek}, {"month", dsMonth}};
    for (const auto &[name, size] : views) {
        const bool boxes = size == dsWorkWeek || size == dsWeek;
        QTest::addRow("%s click", name) << int(size) << "click" << 1;
        if (boxes) {
            QTest::addRow("%s drop", name) << int(size) << "drop" << 1;
            // Tab does not walk into another day's list behind its back.
            QTest::addRow("%s Tab", name) << int(size) << "tab" << 1;
        }
        QTest::addRow("%s GotoDate", name) << int(size) << "goto" << -1;
        QTest::addRow("%s reload", name) << int(size) << "reload" << -1;
    }
}

void TestDiarPanel::oneSelection()
{
    QFETCH(int, size);
    QFETCH(QString, sequence);
    QFETCH(int, expected);
    Diar d{TDiarSize(size)};
    QVERIFY(test::ShowAndActivate(&d.panel));
    const bool boxes = size == dsWorkWeek || size == dsWeek;
    TDayListView *tuesday = d.List(Nov(17));
    // Another day (or another entry) selected first.
    if (boxes)
        QTest::mouseClick(d.List(Nov(19))->viewport(), Qt::LeftButton, {},
                          ItemCenter(d.List(Nov(19)), 0));
    else
        QTest::mouseClick(tuesday->viewport(), Qt::LeftButton, {}, ItemCenter(tuesday, 0));

    if (sequence == QLatin1String("drop")) {
        // The button goes down on the entry; the drag ends on Wednesday.
        QTest::mousePress(tuesday->viewport(), Qt::LeftButton, {}, ItemCenter(tuesday, 1));
        TTextDragObject entry(tuesday->topLevelItem(1));
        std::unique_ptr<QDrag> drag(entry.CreateDrag(tuesday));
        QVERIFY(DragOnto(d.List(Nov(18)), drag.get()));
        QTest::mouseRelease(d.List(Nov(18))->viewport(), Qt::LeftButton, {}, QPoint(20, 20));
        QCOMPARE(d.dragMoves.size(), 1);
        QCOMPARE(d.dragMoves.first().first.ID_DIAR, 1);
    } else {
        QTest::mouseClick(tuesday->viewport(), Qt::LeftButton, {}, ItemCenter(tuesday, 1));
        QCOMPARE(d.panel.GetSelectedItemID(), 1);
    }
    if (sequence == QLatin1String("tab")) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    } else if (sequence == QLatin1String("goto")) {
        d.panel.GotoDate(Nov(19));
    } else if (sequence == QLatin1String("reload")) {
        d.panel.Clear();
        d.Load();
    }
    CheckOneSelection(d.panel, expected);
    if (QTest::currentTestFailed())
        return;

    const QList<qint32> none;
    const QList<qint32> once = expected < 0 ? none : QList<qint32>{expected};
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    d.panel.MenuItemEdit()->trigger();
    d.panel.MenuItemPacient()->trigger();
    QCOMPARE(test::Klice(d.edited), expected < 0 ? none : (QList<qint32>{expected, expected}));
    QCOMPARE(test::Klice(d.pacient), once);

    const TDate day = d.panel.SelectedDay();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right, Qt::ControlModifier);
    QList<qint32> moved;
    for (const auto &[old, moving] : std::as_const(d.keyMoves)) {
        moved << old.ID_DIAR;
        QCOMPARE(moving.Den, qint16(DateTimeToQDate(day).day() + 1));
    }
    QCOMPARE(moved, once);
    CheckOneSelection(d.panel, expected);
    if (QTest::currentTestFailed())
        return;

    // Delete asks the host, unless read-only; a refusal keeps the entry.
    TDayListView *list = d.panel.DayListView();
    d.panel.SetReadOnly(true);
    QTest::keyClick(list, Qt::Key_Delete);
    d.panel.SetReadOnly(false);
    d.allow = false;
    QTest::keyClick(list, Qt::Key_Delete);
    d.allow = true;
    QTest::keyClick(list, Qt::Key_Delete);
    QCOMPARE(d.askedToDelete, expected < 0 ? none : (QList<qint32>{expected, expected}));
    QCOMPARE(list->VratIndexPrvku(expected), -1);
    QTest::keyClick(list, Qt::Key_Insert);
    QCOMPARE(d.inserted, QList<TDate>{d.panel.SelectedDay()});
}

void TestDiarPanel::timeColumnHoldsTheTimes_data()
{
    QTest::addColumn<int>("points"); // 0: Qt's default font
    QTest::addColumn<int>("size");
    QTest::newRow("default font, week") << 0 << int(dsWeek);
    QTest::newRow("12 points, month") << 12 << int(dsMonth);
}

// With the application's font, whatever its size, the time column shows a
// whole time range, not "07:00-0...".
void TestDiarPanel::timeColumnHoldsTheTimes()
{
    QFETCH(int, points);
    QFETCH(int, size);
    const test::ApplicationFontScope font(points);

    TDiarPanel panel;
    panel.resize(1600, 900);
    panel.SetDiarSize(TDiarSize(size));
    panel.GotoDate(Nov(18));
    panel.AddDayRecord(Zaznam(1, Nov(18), Cas(7, 0), Cas(7, 30), "Odběr krve"));
    QVERIFY(test::ShowAndActivate(&panel));

    TDayGroupBox *box = panel.GetDayGroupBox(Nov(18));
    QVERIFY(box);
    TDayListView *list = box->DayListView();
    const QTreeWidgetItem *item = list->topLevelItem(0);
    QCOMPARE(item->text(0), QStringLiteral("07:00-07:30"));
    // What the view draws: the item's font on the list's, inside the text
    // margins of the style.
    const QFontMetrics metrics(item->font(0).resolve(list->font()));
    const int margin = list->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, list) + 1;
    QCOMPARE_LE(metrics.horizontalAdvance(item->text(0)) + 2 * margin, list->columnWidth(0));
}

QTEST_MAIN(TestDiarPanel)
#include "tst_diarpanel.moc"
