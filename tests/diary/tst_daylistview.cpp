#include "oxa/diary/DayListView.h"

#include "support/TestSupport.h"

#include <QDrag>
#include <QHelpEvent>
#include <QMimeData>
#include <QTest>
#include <QToolTip>

using namespace oxa;

namespace {

TTime Cas(int h, int n)
{
    return EncodeTime(h, n, 0, 0);
}

TDayRecord Zaznam(qint32 id, TTime od, TTime doCasu, const char *popis = "")
{
    TDayRecord z;
    z.ID_DIAR = id;
    z.CasOd = od;
    z.CasDo = doCasu;
    z.Popis = popis;
    return z;
}

QStringList Captions(const TDayListView &list)
{
    QStringList captions;
    for (int i = 0; i < list.Count(); ++i)
        captions << list.topLevelItem(i)->text(0);
    return captions;
}

QPoint ItemCenter(const TDayListView *list, int index)
{
    return list->visualItemRect(list->topLevelItem(index)).center();
}

void ClickItem(TDayListView *list, int index)
{
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, ItemCenter(list, index));
}

// Whether the row of an item shows pure blue pixels.
bool RowShowsBlue(TDayListView &list, int index)
{
    const QImage image = list.viewport()->grab().toImage();
    const QRect row = list.visualItemRect(list.topLevelItem(index)) & image.rect();
    for (int y = row.top(); y <= row.bottom(); ++y) {
        for (int x = row.left(); x <= row.right(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.blue() > 200 && c.red() < 60 && c.green() < 60)
                return true;
        }
    }
    return false;
}

// A diary panel as its day boxes see it.
class FakePanel : public QWidget, public TDayGroupBoxHost
{
public:
    bool readOnly = false;
    bool allowDelete = true;
    QList<qint32> askedToDelete;
    QList<Word> moves;
    TDayGroupBox *box = new TDayGroupBox(this);
    TDayListView *list = box->DayListView();

    FakePanel()
    {
        resize(240, 200);
        box->setGeometry(rect());
        list->AddItem(Zaznam(1, Cas(8, 0), Cas(9, 0)));
        list->AddItem(Zaznam(2, Cas(9, 0), Cas(10, 0)));
        box->SetDate(EncodeDate(2019, 4, 15));
    }

    bool ReadOnly() const override { return readOnly; }
    void DayDeleteEvent(QObject *, PDayRecord aData, bool &AllowDelete) override
    {
        askedToDelete << aData->ID_DIAR;
        AllowDelete = allowDelete;
    }
    void RemoveDayRecord(const TDayRecord &aZaznam) override { list->RemoveItem(aZaznam.ID_DIAR); }
    void OnDayMove(QObject *, Word &Key, TShiftState) override { moves << Key; }
    void OnDayResize(QObject *) override {}
};

} // namespace

class TestDayListView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void packedMonths();
    void visibleDates_data();
    void visibleDates();
    void itemsFollowTheirTimes();
    void columnsAndTexts();
    void itemsLook();
    void boxCaption_data();
    void boxCaption();
    void boxColours();
    void deleteKeyGoesThroughThePanel();
    void clicksOfTheList();
    void dragFromTheItemUnderTheMouse();
    void dropOnAList();
};

void TestDayListView::packedMonths()
{
    QCOMPARE(DateToMesicRok(EncodeDate(2000, 1, 15)), qint16(10001));
    QCOMPARE(DateToMesicRok(EncodeDate(2019, 4, 30) + Cas(23, 59)), qint16(11904));
    QCOMPARE(SpocitejDatum(1, 10001), EncodeDate(2000, 1, 1));
    QVERIFY_THROWS_EXCEPTION(EConvertError, SpocitejDatum(29, 11902));
    QCOMPARE(SpocitejHodiny(Cas(8, 0), Cas(8, 0)), QStringLiteral("08:00-08:00"));
    QCOMPARE(SpocitejHodiny(Cas(8, 30), Cas(9, 15)), QStringLiteral("08:30-09:15"));
}

void TestDayListView::visibleDates_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<int>("size");
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");

    const QDate wednesday(2019, 4, 17);
    QTest::newRow("day") << wednesday << int(dsDay) << wednesday << wednesday;
    QTest::newRow("work week") << wednesday << int(dsWorkWeek) << QDate(2019, 4, 14) << QDate(2019, 4, 19);
    QTest::newRow("week from Sunday") << QDate(2019, 4, 21) << int(dsWeek) << QDate(2019, 4, 14) << QDate(2019, 4, 21);
    QTest::newRow("new year week") << QDate(2020, 1, 1) << int(dsWorkWeek) << QDate(2019, 12, 29) << QDate(2020, 1, 3);
    QTest::newRow("month") << wednesday << int(dsMonth) << QDate(2019, 3, 31) << QDate(2019, 4, 30);
    QTest::newRow("leap March") << QDate(2020, 3, 1) << int(dsMonth) << QDate(2020, 2, 29) << QDate(2020, 3, 31);
}

void TestDayListView::visibleDates()
{
    QFETCH(QDate, date);
    QFETCH(int, size);
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    QCOMPARE(DateTimeToQDate(FirstVisibleDate(QDateToDateTime(date), TDiarSize(size))), first);
    QCOMPARE(DateTimeToQDate(LastVisibleDate(QDateToDateTime(date), TDiarSize(size))), last);
}

void TestDayListView::itemsFollowTheirTimes()
{
    TDayListView list;
    list.AddItem(Zaznam(1, Cas(10, 0), Cas(10, 30)));
    list.AddItem(Zaznam(2, Cas(8, 30), Cas(9, 0)));
    list.AddItem(Zaznam(3, Cas(9, 15), Cas(9, 45)));
    list.AddItem(Zaznam(4, Cas(8, 30), Cas(8, 45)));
    list.AddItem(Zaznam(5, Cas(11, 0), Cas(12, 0)));
    list.AddItem(Zaznam(6, Cas(11, 0), Cas(12, 0)));
    QCOMPARE(Captions(list), (QStringList{"08:30-08:45", "08:30-09:00", "09:15-09:45", "10:00-10:30",
                                          "11:00-12:00", "11:00-12:00"}));
    QCOMPARE(list.ItemRecord(5)->ID_DIAR, 6); // equal times keep their arrival order

    list.ChangeItem(Zaznam(1, Cas(7, 0), Cas(7, 15), "změna"));
    QCOMPARE(list.VratIndexPrvku(1), 0);
    QCOMPARE(list.topLevelItem(0)->text(1), QStringLiteral("změna"));
    list.ChangeItem(Zaznam(99, Cas(1, 0), Cas(2, 0)));
    list.RemoveItem(99);
    list.RemoveItem(3);
    QCOMPARE(list.Count(), 5);
    QCOMPARE(list.VratIndexPrvku(3), -1);
    list.Clear();
    QCOMPARE(list.Count(), 0);
}

void TestDayListView::columnsAndTexts()
{
    TDayListView list;
    list.resize(300, 200);
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    QCOMPARE(list.headerItem()->text(0), QStringLiteral("Od - do:"));
    QCOMPARE(list.headerItem()->text(1), QStringLiteral("Popis:"));
    QCOMPARE(list.columnWidth(0), 65);
    list.resize(400, 200);
    QCOMPARE(list.columnWidth(1), list.viewport()->width() - 65);
    list.SetNoTime(true);
    QVERIFY(list.isColumnHidden(0));
    QCOMPARE(list.columnWidth(1), list.viewport()->width());

    TDayRecord z = Zaznam(1, Cas(8, 0), Cas(9, 0), " Převaz ");
    z.KONTAKT = QStringLiteral("Novák Jan");
    z.PODROBNOSTI = QStringLiteral("zpráva\r\nz RTG");
    list.AddItem(z);
    QCOMPARE(list.topLevelItem(0)->text(1), QStringLiteral("Převaz : Novák Jan, zpráva z RTG"));
    QCOMPARE(TDayListView::FormatPopis("", "Novák", "zpráva"), QStringLiteral("Novák, zpráva"));
    QCOMPARE(TDayListView::FormatPopis("Převaz", " ", "zpráva"), QStringLiteral("Převaz : zpráva"));
    QCOMPARE(TDayListView::FormatPopis(" ", "", " "), QString());
}

void TestDayListView::itemsLook()
{
    TDayListView list;
    list.resize(300, 200);
    TDayRecord hotovy = Zaznam(1, Cas(8, 0), Cas(9, 0), "hotovo");
    hotovy.SPLNENO = 100;
    hotovy.PODROBNOSTI = QStringLiteral("Přinést výsledky z laboratoře");
    TDayRecord soukromy = Zaznam(2, Cas(9, 0), Cas(10, 0), "soukromé");
    soukromy.Soukrome = true;
    list.AddItem(hotovy);
    list.AddItem(soukromy);
    list.addTopLevelItem(new QTreeWidgetItem(QStringList{"12:00", "bez záznamu"}));
    QVERIFY(test::ShowAndActivate(&list));

    QVERIFY(list.topLevelItem(0)->font(1).strikeOut());
    QVERIFY(!list.topLevelItem(1)->font(0).strikeOut());
    QVERIFY(!list.topLevelItem(2)->font(0).strikeOut());
    QVERIFY(!RowShowsBlue(list, 0));
    QVERIFY(RowShowsBlue(list, 1));
    QVERIFY(!RowShowsBlue(list, 2));

    auto tipAt = [&list](int index) {
        const QPoint pos = ItemCenter(&list, index);
        QHelpEvent help(QEvent::ToolTip, pos, list.viewport()->mapToGlobal(pos));
        QApplication::sendEvent(list.viewport(), &help);
        return help.isAccepted() ? QToolTip::text() : QString();
    };
    QCOMPARE(tipAt(0), hotovy.PODROBNOSTI);
    QCOMPARE(tipAt(1), QString());
    QToolTip::hideText();
}

void TestDayListView::boxCaption_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("entries");
    QTest::addColumn<QString>("caption");

    QTest::newRow("89 pixels") << 89 << 0 << " 15.04 ";
    QTest::newRow("90 pixels") << 90 << 0 << " po 15. duben ";
    QTest::newRow("with entries") << 200 << 2 << " po 15. duben   (2) ";
}

void TestDayListView::boxCaption()
{
    QFETCH(int, width);
    QFETCH(int, entries);
    QFETCH(QString, caption);

    TDayGroupBox box;
    box.resize(width, 150);
    QList<qint16> months;
    box.DayListView()->OnDateOfMonthListView = [&months](QObject *, qint16 m) { months << m; };
    for (int i = 0; i < entries; ++i)
        box.DayListView()->AddItem(Zaznam(i + 1, Cas(8 + i, 0), Cas(9 + i, 0)));
    box.SetDayMonthYear(15, 11904);
    QCOMPARE(box.title(), caption);
    QCOMPARE(box.DayListView()->Den(), 15);
    QCOMPARE(months, QList<qint16>{11904});
}

void TestDayListView::boxColours()
{
    TDayGroupBox box;
    box.resize(200, 150);
    box.SetDate(EncodeDate(2019, 4, 15)); // Monday
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    // A point of the caption row right of the caption text.
    auto background = [&box] { return box.grab().toImage().pixelColor(box.width() - 3, 2); };

    QCOMPARE(background(), QColor(255, 255, 255));
    box.SetDate(EncodeDate(2019, 4, 20)); // Saturday
    QCOMPARE(background(), QColor(0xE0, 0xE0, 0xE0));

    box.SetActive(true);
    box.SetDate(EncodeDate(2019, 4, 21));
    QCOMPARE(background(), QColor(0, 0, 0x80));
    QCOMPARE(box.palette().color(QPalette::Text), ColorToQColor(clWindow));
    QCOMPARE(box.DayListView()->palette().color(QPalette::Base), ColorToQColor(clInfoBk));
    QCOMPARE(box.DayListView()->palette().color(QPalette::Text), ColorToQColor(clWindowText));

    box.SetActive(false);
    QCOMPARE(background(), QColor(0xE0, 0xE0, 0xE0));
    QCOMPARE(box.palette().color(QPalette::Text), ColorToQColor(clWindowText));
    QCOMPARE(box.DayListView()->palette().color(QPalette::Base), ColorToQColor(clWindow));
}

void TestDayListView::deleteKeyGoesThroughThePanel()
{
    FakePanel panel;
    QVERIFY(test::ShowAndActivate(&panel));
    ClickItem(panel.list, 1);
    panel.allowDelete = false;
    QTest::keyClick(panel.list, Qt::Key_Delete);
    QCOMPARE(panel.askedToDelete, QList<qint32>{2});
    QCOMPARE(panel.list->Count(), 2);

    panel.allowDelete = true;
    QTest::keyClick(panel.list, Qt::Key_Delete);
    QCOMPARE(panel.list->Count(), 1);
    QCOMPARE(panel.box->title(), QStringLiteral(" po 15. duben   (1) "));

    panel.list->clearSelection();
    QTest::keyClick(panel.list, Qt::Key_Delete);
    ClickItem(panel.list, 0);
    panel.readOnly = true;
    QTest::keyClick(panel.list, Qt::Key_Delete);
    QCOMPARE(panel.askedToDelete.size(), 2);

    QTest::keyClick(panel.list, Qt::Key_Right);
    QTest::keyClick(panel.list, Qt::Key_PageDown);
    QCOMPARE(panel.moves, (QList<Word>{VK_RIGHT, VK_NEXT}));
}

void TestDayListView::clicksOfTheList()
{
    FakePanel panel;
    QList<int> selected;
    QList<qint32> opened;
    panel.box->OnSelectDayItem = [&selected](QObject *, int index) { selected << index; };
    panel.box->OnDoubleClickDayItem = [&opened](QObject *, const TDayRecord &z) { opened << z.ID_DIAR; };
    QVERIFY(test::ShowAndActivate(&panel));

    ClickItem(panel.list, 1);
    QTest::mouseClick(panel.list->viewport(), Qt::LeftButton, {},
                      QPoint(10, panel.list->viewport()->height() - 5));
    QCOMPARE(selected, (QList<int>{1, -1}));

    QTest::mouseDClick(panel.list->viewport(), Qt::LeftButton, {}, ItemCenter(panel.list, 0));
    panel.readOnly = true;
    QTest::mouseDClick(panel.list->viewport(), Qt::LeftButton, {}, ItemCenter(panel.list, 1));
    QCOMPARE(opened, QList<qint32>{1});

    // A box with no panel above it opens nothing and deletes nothing.
    TDayGroupBox single;
    TDayListView *list = single.DayListView();
    list->AddItem(Zaznam(5, Cas(8, 0), Cas(9, 0)));
    single.OnDoubleClickDayItem = [&opened](QObject *, const TDayRecord &z) { opened << z.ID_DIAR; };
    QVERIFY(test::ShowAndActivate(&single));
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, ItemCenter(list, 0));
    QTest::keyClick(list, Qt::Key_Delete);
    QCOMPARE(opened, QList<qint32>{1});
    QCOMPARE(list->Count(), 1);
}

void TestDayListView::dragFromTheItemUnderTheMouse()
{
    TTextDragObject nothing;
    QCOMPARE(nothing.DragText(), QStringLiteral("- nevybráno -"));
    QVERIFY(!nothing.GetDragImages().isNull());

    TDayListView list;
    list.resize(300, 200);
    list.AddItem(Zaznam(1, Cas(8, 0), Cas(9, 0)));
    list.AddItem(Zaznam(2, Cas(9, 15), Cas(10, 0)));
    QStringList texts;
    QImage image;
    list.OnStartDrag = [&](QObject *, TTextDragObject &drag, bool &allow) {
        texts << drag.DragText();
        image = drag.GetDragImages().toImage();
        allow = false;
    };
    QVERIFY(test::ShowAndActivate(&list));
    const QPoint start = ItemCenter(&list, 1);
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, start);
    QTest::mouseMove(list.viewport(), start + QPoint(5, 0));
    QTest::mouseMove(list.viewport(), start + QPoint(40, 30));
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, start + QPoint(40, 30));
    QCOMPARE(texts, QStringList{"09:15-10:00"});

    // The image shows the text: its middle row holds the text colour.
    bool inked = false;
    for (int x = 2; x < image.width() - 2 && !inked; ++x)
        inked = image.pixelColor(x, image.height() / 2) == ColorToQColor(clInfoText);
    QVERIFY(inked);
}

void TestDayListView::dropOnAList()
{
    TDayListView source;
    TDayListView target;
    source.AddItem(Zaznam(7, Cas(8, 0), Cas(9, 0)));
    bool accept = false;
    QPoint droppedAt;
    target.OnDragOver = [&accept](QObject *, QObject *, const QPoint &, bool &Accept) { Accept = accept; };
    target.OnDragDrop = [&droppedAt](QObject *, QObject *, const QPoint &pos) { droppedAt = pos; };

    TTextDragObject entry(source.topLevelItem(0)), nothing;
    std::unique_ptr<QDrag> drag(entry.CreateDrag(&source)), emptyDrag(nothing.CreateDrag(&source));
    // The events the platform delivers to the list under the mouse.
    const QPoint pos(30, 40);
    auto deliver = [&target, &pos]<class Event>(Event *, QDrag *d) {
        Event event(pos, Qt::MoveAction, d->mimeData(), Qt::LeftButton, {});
        event.setAccepted(false);
        QApplication::sendEvent(target.viewport(), &event);
        return event.isAccepted();
    };
    QDragEnterEvent *enter = nullptr;
    QVERIFY(!deliver(enter, drag.get()));
    accept = true;
    QVERIFY(!deliver(enter, emptyDrag.get()));
    QVERIFY(deliver(enter, drag.get()));
    QVERIFY(deliver(static_cast<QDropEvent *>(nullptr), drag.get()));
    QCOMPARE(droppedAt, pos);
    qint32 id = 0;
    QVERIFY(TTextDragObject::DraggedID(drag->mimeData(), id));
    QCOMPARE(id, 7);
}

QTEST_MAIN(TestDayListView)
#include "tst_daylistview.moc"
